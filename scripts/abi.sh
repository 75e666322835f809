#!/usr/bin/env bash
# abi.sh [update]
#
# Compares the binary interface of the release build with the recorded one, tests/data/abi: exported
# functions, virtual functions, and the layouts of the types in the public headers. Every difference is
# an error, also an addition. "abi.sh update" records the interface anew after a deliberate change.
. "$(dirname "$0")/common.sh"
case "$*" in
"" | update) ;;
*) echo "Usage: abi.sh [update]" >&2; exit 2 ;;
esac
need_build_tools
need abigail-tools
cd "$project"

recorded=tests/data/abi/libVORNUtility-x86_64.abi
library=build/linux-release/Utility/libVORNUtility.so
[ "$(uname -m)" = x86_64 ] || { echo "abi.sh: the interface is recorded for x86_64 only" >&2; exit 1; }

cmake --preset linux-release >/dev/null
cmake --build --preset linux-release --target VORNUtility

# The public headers in a folder of their own, as they are installed.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install build/linux-release --prefix "$scratch" >/dev/null
headers=$scratch/include/vornutility/Utility

options=(--headers-dir "$headers" --drop-private-types --exported-interfaces-only
    --suppressions tests/data/abi/suppressions.ini
    # Without paths, line numbers and names of parameters: only a change of the interface shows.
    --no-show-locs --no-comp-dir-path --no-corpus-path --no-elf-needed --no-parameter-names
    --type-id-style hash) # an addition does not change the ids of the others
# The sources are named from the folder of the project or from that of the build.
abidw "${options[@]}" "$library" | sed "s,path='[^']*/\(Utility/[^']*\)',path='\1'," > "$scratch/library.abi"

if [ "${1:-}" = update ]; then
    cp "$scratch/library.abi" "$recorded"
    say "Recorded in $recorded; add a line to CHANGELOG.md"
    exit 0
fi

say "abi"
if ! abidiff --harmless --no-show-locs "$recorded" "$scratch/library.abi"; then
    echo "The binary interface has changed: see \"Changing the interface\" in CONTRIBUTING.md" >&2
    exit 1
fi
