#!/usr/bin/env bash
# demo.sh [FOLDER]
#
# Builds and installs the library, builds the example with the installed package, and runs it: the
# example packs FOLDER, by default a copy of the project's files, and checks the archive. The archive
# is written to a temporary folder, which is removed at the end.
. "$(dirname "$0")/common.sh"

folder=${1:-}
if [ -n "$folder" ]; then
    [ -d "$folder" ] || { echo "demo.sh: no such folder: $folder" >&2; exit 1; }
    folder=$(cd -- "$folder" >/dev/null && pwd)
fi

need_build_tools
cd "$project"

say "Building and installing the library"
cmake --preset linux-release >/dev/null
cmake --build --preset linux-release --target VORNUtility
cmake --install build/linux-release --prefix build/stage >/dev/null

say "Building the example against the installed package"
cmake -S examples/results_archive -B build/demo -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DVORNUtility_ROOT="$project/build/stage" >/dev/null
cmake --build build/demo

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
if [ -z "$folder" ]; then
    folder=$scratch/VORNUtility
    mkdir "$folder"
    tar -C "$project" --exclude=./build --exclude=./.git -cf - . | tar -C "$folder" -xf -
fi

say "Packing $folder"
mkdir "$scratch/log"
status=0
build/demo/results-archive --archive "$scratch/results.7z" --log "$scratch/log/demo.log" \
    -- "$folder" || status=$?
say "The log"
find "$scratch/log" -type f -exec cat {} +
exit $status
