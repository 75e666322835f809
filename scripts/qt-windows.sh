#!/usr/bin/env bash
# Builds Qt (Core, Xml, Network, Test) for Windows x86-64 from Debian's source package, if that was
# not done before, and prints the folder where it is installed.
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/debian-source.sh"

options=(-xplatform win32-g++ -opensource -confirm-license -release -shared
    -no-gui -no-widgets -no-dbus -no-opengl -no-openssl -no-schannel -no-icu -no-feature-sql
    -qt-zlib -qt-pcre -qt-doubleconversion -no-pch -nomake examples -nomake tests -make libs)

need g++ make python3 dpkg-dev g++-mingw-w64-x86-64-posix ca-certificates >&2

build() { # build VERSION PREFIX
    local tool found
    fetch_source qtbase-opensource-src "$1"
    mkdir bin build
    for tool in gcc g++ ar ranlib strip windres nm objcopy objdump dlltool ld as; do
        found=$(command -v "x86_64-w64-mingw32-$tool-posix" || command -v "x86_64-w64-mingw32-$tool") || continue
        ln -s "$found" "bin/x86_64-w64-mingw32-$tool"
    done
    export PATH=$PWD/bin:$PATH
    say "Building Qt for Windows (once; about ten minutes on two cores)"
    cd build
    quietly ../source/configure -prefix "$2" -extprefix "$work/install" -hostprefix "$work/install" \
        -device-option CROSS_COMPILE=x86_64-w64-mingw32- "${options[@]}"
    quietly make -j"$(nproc)"
    quietly make install
    cp ../source/LICENSE* "$work/install/" 2>/dev/null || true
}

version=$(package_version qtbase5-dev)
key=$(printf '%s\n' "$version" "${options[@]}" "$(x86_64-w64-mingw32-g++-posix -dumpfullversion)")
build_once qt-windows "$key" lib/cmake/Qt5Test/Qt5TestConfig.cmake build "$version"
