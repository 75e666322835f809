#!/usr/bin/env bash
# Builds the library, its tests and the example for Windows x86-64 and runs the tests with Wine, in a
# private Wine prefix. The first run builds Qt for Windows and keeps it in the cache folder.
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/wine.sh"
need_build_tools
need g++-mingw-w64-x86-64-posix wine wine64 python3
cd "$project"

VORNUTILITY_QT_WINDOWS=$(scripts/qt-windows.sh)
VORNUTILITY_ARCHIVERS=$(scripts/test-archivers.sh 7zip-15.05 7zip-16.04 7zip-21.07 7zip-24.09)
VORNUTILITY_7ZIP_WINDOWS=$VORNUTILITY_ARCHIVERS/7zip-16.04
export VORNUTILITY_QT_WINDOWS VORNUTILITY_ARCHIVERS VORNUTILITY_7ZIP_WINDOWS

say "windows-release"
# Some tests need the name of a branch.
cmake --preset windows-release -DVORNUTILITY_BRANCH_REFERENCE=Ref=refs/heads/fix/log >/dev/null
cmake --build --preset windows-release

trap stop_wine EXIT
start_wine "$project/build/windows-release/Utility" "$VORNUTILITY_QT_WINDOWS"

# A drive for the test that empties the root of a drive.
mkdir -p build/drive
ln -sfn "$project/build/drive" "$WINEPREFIX/dosdevices/q:"
export VORNUTILITY_TEST_DRIVE=Q:

# Sometimes a child process hangs while Wine starts it, so a failed test program is run once more.
status=0
ctest --preset windows-release --repeat until-pass:2 2>&1 | tee build/windows-tests.log || status=$?
python3 scripts/test-table.py build/linux-release/tests/run build/windows-release/tests/run
grep -E 'tests passed|Total Test time' build/windows-tests.log
exit $status
