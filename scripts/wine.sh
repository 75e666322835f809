# Sourced by the scripts that run programs for Windows with Wine.
# shellcheck shell=bash

# start_wine LIBRARY_FOLDER QT: prepares a private Wine prefix, in which programs find the DLLs of the
# library, of Qt and of the compiler. The script calls stop_wine when it ends.
start_wine() {
    local folder
    WINEPATH=$(windows_path "$1")
    for folder in "$2/bin" "$(compiler_file libstdc++-6.dll)" "$(compiler_file libwinpthread-1.dll)"; do
        WINEPATH="$WINEPATH;$(windows_path "$(cd "$folder" && pwd)")"
    done
    export WINEPATH WINEPREFIX=$project/build/wine WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
    mkdir -p "$WINEPREFIX"
    # Started here, so that it is not kept on the core of a program. Fails if it runs already.
    wineserver --persistent 2>/dev/null || true
    wine wineboot --init >/dev/null 2>&1
}

# stop_wine: ends all programs in the private prefix, if it was prepared.
stop_wine() { [ "${WINEPREFIX:-}" != "$project/build/wine" ] || wineserver -k 2>/dev/null || true; }

windows_path() { printf 'Z:%s' "${1//\//\\}"; }
compiler_file() { dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name="$1")"; }
