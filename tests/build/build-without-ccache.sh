#!/usr/bin/env bash
# build-without-ccache.sh PROJECT: configures a preset and compiles a file where ccache is not installed.
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

mkdir "$folder/bin"
IFS=: read -ra path <<<"$PATH"
for directory in "${path[@]}"; do
    find "$directory/" -maxdepth 1 ! -name ccache ! -type d -exec ln -sf -t "$folder/bin" {} + 2>/dev/null || true
done
export PATH=$folder/bin
unset CMAKE_CXX_COMPILER_LAUNCHER
if command -v ccache; then
    echo "ccache can still be found"
    exit 1
fi

cd "$1"
cmake --preset linux-release -B "$folder/build" -DVORNUTILITY_BUILD_TESTS=OFF
cmake --build "$folder/build" --target Utility/CMakeFiles/VORNUtilityPolicy.dir/Version.cpp.o
