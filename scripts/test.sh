#!/usr/bin/env bash
# test.sh [PART...]
#
# Runs the tests on Linux. The parts are:
#   linux-release   all tests, release build
#   abi             the binary interface of the release build, see abi.sh
#   tidy            clang-tidy on the library
#   linux-qt6       all tests, release build with Qt 6
#   linux-asan      all tests, debug build, address and undefined-behaviour sanitizers
#   linux-tsan      the tests with several threads, thread sanitizer
#   fuzz            each fuzzer for 20 seconds
#   docs            the documentation site: every public member is described, no link is dead
#   linux-valgrind  all tests under valgrind; slow, and run only when it is named
. "$(dirname "$0")/common.sh"
need_build_tools
need calculix-ccx # for tst_beamstudy
cd "$project"
VORNUTILITY_ARCHIVERS=$(scripts/test-archivers.sh p7zip-16.02)
export VORNUTILITY_ARCHIVERS

[ $# -gt 0 ] || set -- linux-release abi tidy linux-qt6 linux-asan linux-tsan fuzz docs

run_tidy() {
    need clang-tidy clang
    cmake --preset linux-release >/dev/null
    say "clang-tidy"
    find Utility -name '*.cpp' -not -path '*/Windows/*' -print0 |
        xargs -0 scripts/tidy.py build/linux-release "$cache_home/clang-tidy"
}

# The thread sanitizer fails where the kernel randomises addresses too much, so this is switched off.
fixed_addresses=(setarch "$(uname -m)" -R)
"${fixed_addresses[@]}" true 2>/dev/null || fixed_addresses=()

run_preset() {
    say "$1"
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1"
    "${fixed_addresses[@]}" ctest --preset "$1"
}

for part in "$@"; do
    case $part in
    abi) scripts/abi.sh ;;
    tidy) run_tidy ;;
    fuzz) scripts/fuzz.sh 20 ;;
    docs) scripts/docs.sh ;;
    linux-qt6)
        need qt6-base-dev
        run_preset linux-qt6
        ;;
    linux-valgrind)
        need valgrind
        run_preset linux-valgrind
        ;;
    *) run_preset "$part" ;;
    esac
done
