#!/usr/bin/env bash
# Runs the Linux tests with an instrumented build and prints, file by file, which lines and branches of
# Utility/ they reach. Fails below 95 % of the lines or 85 % of the branches. Branches that are taken
# only for an exception of the C++ run-time are not counted. build/coverage/index.html shows the lines
# that were not reached.
. "$(dirname "$0")/common.sh"
need_build_tools
need gcovr
cd "$project"

say "linux-coverage"
cmake --preset linux-coverage >/dev/null
cmake --build --preset linux-coverage
find build/linux-coverage -name '*.gcda' -delete
ctest --preset linux-coverage --output-on-failure | tail -n 5

mkdir -p build/coverage
gcovr --root . --filter Utility/ --exclude-throw-branches --exclude-unreachable-branches \
    --html-details build/coverage/index.html --txt --print-summary \
    --fail-under-line 95 --fail-under-branch 85 build/linux-coverage
