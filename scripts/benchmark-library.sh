#!/usr/bin/env bash
# benchmark-library.sh linux|windows
#
# Builds Google Benchmark from Debian's source package as a release, if that was not done before, and
# prints the folder where it is installed. Debian's own package is built without NDEBUG: its loops have
# assertions, and it warns that it is a debug build.
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/debian-source.sh"

options=(-DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DCMAKE_INSTALL_LIBDIR=lib
    -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_ENABLE_WERROR=OFF)
system=$1 toolchain=() compiler=g++
need g++ cmake ninja-build dpkg-dev ca-certificates >&2
if [ "$system" = windows ]; then
    need g++-mingw-w64-x86-64-posix >&2
    toolchain=(-DCMAKE_TOOLCHAIN_FILE="$project/cmake/windows-x86_64.cmake")
    compiler=x86_64-w64-mingw32-g++-posix
fi

build() { # build VERSION PREFIX
    fetch_source benchmark "$1"
    say "Building Google Benchmark for $system (once)"
    mkdir build
    cd build
    quietly cmake -S ../source -B . -G Ninja "${toolchain[@]}" "${options[@]}" \
        -DGIT_VERSION="${1%-*}" -DCMAKE_INSTALL_PREFIX="$work/install"
    quietly cmake --build .
    quietly cmake --install .
    cp ../source/LICENSE "$work/install/"
}

version=$(package_version libbenchmark-dev)
key=$(printf '%s\n' "$version" "${options[@]}" "$("$compiler" -dumpfullversion)")
build_once "benchmark-$system" "$key" lib/cmake/benchmark/benchmarkConfig.cmake build "$version"
