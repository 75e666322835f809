#!/usr/bin/env bash
# Builds Qt (Core, Xml, Network, Test) for Windows x86-64 from Debian's source package, if that was
# not done before, and prints the folder where it is installed. The script may be interrupted (the
# finished tree is moved to its place in one step), and two runs at once wait for each other.
. "$(dirname "$0")/common.sh"

options=(-xplatform win32-g++ -opensource -confirm-license -release -shared
    -no-gui -no-widgets -no-dbus -no-opengl -no-openssl -no-schannel -no-icu -no-feature-sql
    -qt-zlib -qt-pcre -qt-doubleconversion -no-pch -nomake examples -nomake tests -make libs)

exec 3>&1 1>&2 # the standard output is for the result only

need g++ make python3 dpkg-dev g++-mingw-w64-x86-64-posix ca-certificates

# A private package list with source entries; the lists of the system are not changed.
apt_dir=$cache_home/apt-source
apt_private() {
    "$1" -o Dir::Etc::sourcelist="$apt_dir/sources.list" -o Dir::Etc::sourceparts=/dev/null \
        -o Dir::State::lists="$apt_dir/lists" -o Dir::Cache="$apt_dir/cache" "${@:2}"
}

fetch_source() { # fetch_source VERSION: unpacks into ./source
    mkdir -p "$apt_dir/lists/partial" "$apt_dir/cache/archives/partial"
    apt-get indextargets --format '$(ORIGIN)|deb-src $(REPO_URI) $(RELEASE) $(COMPONENT)' \
        'Identifier: Packages' | sed -n 's/^Debian|//p' | sort -u > "$apt_dir/sources.list"
    apt_private apt-get -qq update
    apt_private apt-get -qq source --only-source "qtbase-opensource-src=$1"
    mv qtbase-opensource-src-*/ source
}

build() {
    local version=$1 prefix=$2
    work=$(mktemp -d "$cache_home/qt-windows-build.XXXXXX")
    trap 'rm -rf "$work"' EXIT
    cd "$work"
    say "Fetching Qt's source ($version)"
    fetch_source "$version"
    mkdir bin build
    local tool found
    for tool in gcc g++ ar ranlib strip windres nm objcopy objdump dlltool ld as; do
        found=$(command -v "x86_64-w64-mingw32-$tool-posix" || command -v "x86_64-w64-mingw32-$tool") || continue
        ln -s "$found" "bin/x86_64-w64-mingw32-$tool"
    done
    export PATH=$work/bin:$PATH
    say "Building Qt for Windows (once; about ten minutes on two cores)"
    cd build
    ../source/configure -prefix "$prefix" -extprefix "$work/install" -hostprefix "$work/install" \
        -device-option CROSS_COMPILE=x86_64-w64-mingw32- "${options[@]}" > ../build.log 2>&1 &&
        make -j"$(nproc)" >> ../build.log 2>&1 && make install >> ../build.log 2>&1 ||
        { tail -n 40 ../build.log; exit 1; }
    cp ../source/LICENSE* "$work/install/" 2>/dev/null || true
    rm -rf "$prefix"
    mv "$work/install" "$prefix"
}

version=$(apt-cache show qtbase5-dev 2>/dev/null | sed -n 's/^Version: *//p' | head -n 1)
if [ -z "$version" ]; then
    as_root apt-get -qq update
    version=$(apt-cache show qtbase5-dev | sed -n 's/^Version: *//p' | head -n 1)
fi
key=$(printf '%s\n' "$version" "${options[@]}" "$(x86_64-w64-mingw32-g++-posix -dumpfullversion)" |
    sha256sum | cut -c1-12)
prefix=$cache_home/qt-windows-$key

mkdir -p "$cache_home"
exec 9> "$cache_home/qt-windows.lock"
flock 9
if [ ! -e "$prefix/lib/cmake/Qt5Test/Qt5TestConfig.cmake" ]; then
    (build "$version" "$prefix" 9>&-)
fi
echo "$prefix" >&3
