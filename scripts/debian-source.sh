# Sourced by the scripts that build a library from Debian's source package.
# shellcheck shell=bash

# package_version PACKAGE: prints the version that apt would install.
package_version() {
    local version
    version=$(apt-cache show "$1" 2>/dev/null | sed -n 's/^Version: *//p' | head -n 1)
    if [ -z "$version" ]; then
        apt_get update
        version=$(apt-cache show "$1" | sed -n 's/^Version: *//p' | head -n 1)
    fi
    echo "$version"
}

# fetch_source SOURCE VERSION: unpacks a source package into ./source. The list of the source packages is
# written to ./apt, so that the lists and the locks of the system are not touched.
fetch_source() {
    local apt=$PWD/apt
    local options=(-qq -o "Dir::Etc::sourcelist=$apt/sources.list" -o Dir::Etc::sourceparts=/dev/null
        -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt/cache")
    say "Fetching the source of $1 ($2)"
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial"
    apt-get indextargets --format '$(ORIGIN)|deb-src $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Identifier: Packages' | sed -n 's/^Debian|//p' | sort -u > "$apt/sources.list"
    apt-get "${options[@]}" update
    apt-get "${options[@]}" source --only-source "$1=$2"
    mv "$1"-*/ source
}

# build_once NAME KEY FILE COMMAND...: prints the folder where a library is installed. Its name
# consists of NAME and a hash of the lines of KEY, which says what was built. If FILE is missing there,
# runs "COMMAND... PREFIX" in an empty folder. This must install into ./install, for the folder PREFIX:
# ./install is moved there in one step, so that the script may be interrupted. Two runs at once wait
# for each other.
build_once() {
    local prefix=$cache_home/$1-$(sha256sum <<<"$2" | cut -c1-12)
    mkdir -p "$cache_home"
    (
        flock 9
        [ -e "$prefix/$3" ] || build_into "$prefix" "${@:4}" 9>&- >&2
    ) 9> "$cache_home/$1.lock"
    echo "$prefix"
}

build_into() {
    local prefix=$1
    work=$(mktemp -d "$prefix-build.XXXXXX")
    trap 'rm -rf "$work"' EXIT
    cd "$work"
    "${@:2}" "$prefix"
    rm -rf "$prefix"
    mv "$work/install" "$prefix"
}

# quietly COMMAND...: adds the output to ../build.log and prints its end if the command fails.
quietly() {
    "$@" >> ../build.log 2>&1 || { tail -n 40 ../build.log; return 1; }
}
