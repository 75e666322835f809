#!/usr/bin/env bash
# Builds the library, its tests and the example for Windows x86-64 and runs the tests with Wine, in a
# private Wine prefix. The first run builds Qt for Windows and keeps it in the cache folder.
. "$(dirname "$0")/common.sh"
need_build_tools
need g++-mingw-w64-x86-64-posix wine wine64 python3
cd "$project"

VORNUTILITY_QT_WINDOWS=$(scripts/qt-windows.sh)
VORNUTILITY_ARCHIVERS=$(scripts/test-archivers.sh 7zip-15.05 7zip-16.04 7zip-21.07 7zip-24.09)
VORNUTILITY_7ZIP_WINDOWS=$VORNUTILITY_ARCHIVERS/7zip-16.04
export VORNUTILITY_QT_WINDOWS VORNUTILITY_ARCHIVERS VORNUTILITY_7ZIP_WINDOWS

say "windows-release"
cmake --preset windows-release >/dev/null
cmake --build --preset windows-release

# The folders of the DLLs.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
compiler_file() { dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name="$1")"; }
WINEPATH=$(windows_path "$project/build/windows-release/Utility")
for folder in "$VORNUTILITY_QT_WINDOWS/bin" "$(compiler_file libstdc++-6.dll)" \
    "$(compiler_file libwinpthread-1.dll)"; do
    WINEPATH="$WINEPATH;$(windows_path "$(cd "$folder" && pwd)")"
done
export WINEPATH WINEPREFIX=$project/build/wine WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
mkdir -p "$WINEPREFIX"
wine wineboot --init >/dev/null 2>&1
trap 'wineserver -k 2>/dev/null || true' EXIT

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
