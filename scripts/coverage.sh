#!/usr/bin/env bash
# Runs the Linux tests on an instrumented build and prints which lines and branches of Utility/ they
# reach, file by file; fails below 95 % of the lines or 85 % of the branches. Branches that only an
# exception of the C++ runtime takes are not counted. The lines not reached are in
# build/coverage/index.html.
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
