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
    as_root apt-get -qq update
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get -qq install -y --no-install-recommends "${missing[@]}" >/dev/null
}

need_build_tools() {
    need g++ cmake ninja-build ccache qtbase5-dev 7zip python3
    export CCACHE_DIR=${CCACHE_DIR:-$cache_home/ccache}
    # Clones in other folders share the cached objects.
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$project} CCACHE_NOHASHDIR=1
}
