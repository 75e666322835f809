# Sourced by the other scripts: finds the project, installs missing Debian packages.
# shellcheck shell=bash

set -euo pipefail

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache_home=${XDG_CACHE_HOME:-$HOME/.cache}/vornutility

say() { printf '== %s\n' "$*"; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

is_installed() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# need PACKAGE...: installs the Debian packages that are missing.
need() {
    local missing=() package
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing ${missing[*]}"
    apt_get update
    apt_get install -y --no-install-recommends "${missing[@]}"
}

# apt_get ARGUMENT...: runs apt-get and prints its output only if it fails. Waits up to 30 minutes while
# another package manager runs. apt-get itself can wait for dpkg's lock. If one of its own locks is held,
# that of the package lists or that of the downloaded packages, it fails at once.
apt_get() {
    local output waiting='' end=$((SECONDS + 1800))
    until output=$(as_root env LC_ALL=C DEBIAN_FRONTEND=noninteractive \
        apt-get -qq -o DPkg::Lock::Timeout=1800 "$@" 2>&1); do
        if [[ $output != *'Could not get lock'* ]] || [ $SECONDS -ge $end ]; then
            printf '%s\n' "$output" >&2
            return 1
        fi
        [ -n "$waiting" ] || say "Waiting for another package manager" >&2
        waiting=yes
        sleep 1
    done
}

need_build_tools() {
    need g++ cmake ninja-build ccache qtbase5-dev 7zip python3
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
    export CCACHE_DIR=${CCACHE_DIR:-$cache_home/ccache}
    # Clones in other folders share the cached objects.
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$project} CCACHE_NOHASHDIR=1
}
