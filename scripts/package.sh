#!/usr/bin/env bash
# package.sh [PART...]
#
# Builds the packages, in build/packages. The parts, the first and the last by default:
#   debian      libvornutility24, libvornutility-dev, libvornutility-tools, and their debug symbols
#   debian-qt6  libvornutility-qt6-24 and libvornutility-qt6-dev, and their debug symbols
#   windows     a zip with the library, the example programs and the DLLs that they need
#
# DEBFULLNAME and DEBEMAIL are the maintainer of the Debian packages. VORNUTILITY_BRANCH_REFERENCE is what
# the packages are built from, such as Ref=refs/heads/main.
. "$(dirname "$0")/common.sh"
need_build_tools
need git
cd "$project"
[ $# -gt 0 ] || set -- debian windows

# The time in the packages is that of the last commit.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || date +%s)
export SOURCE_DATE_EPOCH
umask 022

# build FOLDER PRESET OPTION...: builds the library in FOLDER/library and installs it in FOLDER/stage.
build() {
    rm -rf "$1"
    cmake --preset "$2" -B "$1/library" -DVORNUTILITY_BUILD_TESTS=OFF -DVORNUTILITY_BUILD_PACKAGES=ON \
        -DVORNUTILITY_BRANCH_REFERENCE="${VORNUTILITY_BRANCH_REFERENCE:-DetachedHead}" "${@:3}" >/dev/null
    cmake --build "$1/library"
    cmake --install "$1/library" --prefix "$1/stage" >/dev/null
}

# build_examples FOLDER OPTION...: builds the examples in FOLDER/examples with the installed library.
build_examples() {
    local example name
    for example in examples/*/CMakeLists.txt; do
        name=$(basename "$(dirname "$example")")
        cmake -S "examples/$name" -B "$1/examples/$name" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
            -DVORNUtility_ROOT="$project/$1/stage" "${@:2}" >/dev/null
        cmake --build "$1/examples/$name"
    done
}

# pack FOLDER: packs the library, and the examples as a part of its tools.
pack() {
    local folder=$project/$1 projects example
    projects="$folder/library;VORNUtility;ALL;/"
    for example in "$folder"/examples/*/; do
        [ ! -d "$example" ] || projects+=";${example%/};$(basename "$example");tools;/"
    done
    (cd "$folder" && cpack --config library/CPackConfig.cmake -D CPACK_INSTALL_CMAKE_PROJECTS="$projects" \
        >cpack.log 2>&1) || { cat "$folder/cpack.log"; exit 1; }
}

# repack_symbols FOLDER: replaces the packages of the debug symbols. CPack gives them the ending of another
# system, no copyright file, and sums with paths of the build machine.
repack_symbols() {
    local package root name
    for package in "$1"/*-dbgsym_*.ddeb; do
        root=$1/symbols
        name=$(dpkg-deb -f "$package" Package)
        dpkg-deb -R "$package" "$root"
        find "$root/usr" -type f -exec chmod 644 {} +
        mkdir -p "$root/usr/share/doc"
        ln -s "${name%-dbgsym}" "$root/usr/share/doc/$name"
        (cd "$root" && find usr -type f -printf '%P\n' | LC_ALL=C sort | sed 's:^:usr/:' | xargs md5sum >DEBIAN/md5sums)
        sed -i '/^Package-Type:/d' "$root/DEBIAN/control"
        dpkg-deb --root-owner-group --build "$root" "${package%.ddeb}.deb" >/dev/null
        rm -r "$root" "$package"
    done
}

# Builds as Debian does, with its compiler options.
debian() {
    need dpkg-dev file lintian
    (
        DEB_BUILD_MAINT_OPTIONS=hardening=+bindnow
        export DEB_BUILD_MAINT_OPTIONS
        CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
        LDFLAGS=$(dpkg-buildflags --get LDFLAGS)
        export CXXFLAGS LDFLAGS
        "$@"
    )
}

debian_qt5() {
    build build/packages/debian linux-release -DCMAKE_INSTALL_PREFIX=/usr
    build_examples build/packages/debian -DCMAKE_INSTALL_PREFIX=/usr
    pack build/packages/debian
    repack_symbols build/packages/debian
}

debian_qt6() {
    build build/packages/debian-qt6 linux-qt6 -DCMAKE_INSTALL_PREFIX=/usr
    pack build/packages/debian-qt6
    repack_symbols build/packages/debian-qt6
}

windows() {
    need g++-mingw-w64-x86-64-posix
    VORNUTILITY_QT_WINDOWS=$(scripts/qt-windows.sh)
    export VORNUTILITY_QT_WINDOWS
    build build/packages/windows windows-release
    build_examples build/packages/windows -DVORNUTILITY_QT_WINDOWS="$VORNUTILITY_QT_WINDOWS" \
        -DCMAKE_TOOLCHAIN_FILE="$project/cmake/windows-x86_64.cmake"
    pack build/packages/windows
}

for part in "$@"; do
    say "Packages: $part"
    rm -rf "build/packages/$part"
    case $part in
    debian)
        debian debian_qt5
        lintian --allow-root --fail-on error build/packages/debian/*.deb
        ;;
    debian-qt6)
        need qt6-base-dev
        debian debian_qt6
        lintian --allow-root --fail-on error build/packages/debian-qt6/*.deb
        ;;
    windows) windows ;;
    *) echo "package.sh: no such part: $part" >&2; exit 1 ;;
    esac
done
find build/packages -maxdepth 2 '(' -name '*.deb' -o -name '*.zip' ')' -printf '%p  %k KiB\n' | sort
