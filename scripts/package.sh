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

# Everything is built in one folder, and build/packages/PART appears only when its packages are complete.
unfinished=build/packages/unfinished
trap 'rm -rf "$project/$unfinished"' EXIT
trap 'exit 130' INT TERM HUP

# build PRESET OPTION...: builds the library in the folder "library" and installs it in "stage".
build() {
    local folder=$unfinished
    cmake --preset "$1" -B "$folder/library" -DVORNUTILITY_BUILD_TESTS=OFF -DVORNUTILITY_BUILD_PACKAGES=ON \
        -DVORNUTILITY_BRANCH_REFERENCE="${VORNUTILITY_BRANCH_REFERENCE:-DetachedHead}" "${@:2}" >/dev/null
    cmake --build "$folder/library"
    cmake --install "$folder/library" --prefix "$folder/stage" >/dev/null
}

# build_examples OPTION...: builds the examples in the folder "examples" with the installed library.
build_examples() {
    local example name folder=$unfinished
    for example in examples/*/CMakeLists.txt; do
        name=$(basename "$(dirname "$example")")
        cmake -S "examples/$name" -B "$folder/examples/$name" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
            -DVORNUtility_ROOT="$project/$folder/stage" "$@" >/dev/null
        cmake --build "$folder/examples/$name"
    done
}

# cached FOLDER NAME: the value that CMake keeps in a build folder.
cached() { sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt"; }

# write_manual_pages: writes the manual pages of the example programs, from what they print as help.
write_manual_pages() {
    local program description version folder=$unfinished pages=$unfinished/library/packages/man1
    need help2man
    mkdir -p "$pages"
    version=$(cached "$folder/library" CMAKE_PROJECT_VERSION)
    for program in "$folder"/examples/*/*; do
        if [ -f "$program" ] && [ -x "$program" ]; then
            description=$(cached "$(dirname "$program")" CMAKE_PROJECT_DESCRIPTION)
            [ -n "$description" ] || { echo "package.sh: no description: $program" >&2; return 1; }
            help2man --no-info --name="$description" --version-string="$version" "$program" |
                gzip -9n >"$pages/$(basename "$program").1.gz"
        fi
    done
}

# pack: packs the library, and the examples as a part of its tools, in the folder "packages".
pack() {
    local folder=$project/$unfinished projects example
    projects="$folder/library;VORNUtility;ALL;/"
    for example in "$folder"/examples/*/; do
        [ ! -d "$example" ] || projects+=";${example%/};$(basename "$example");tools;/"
    done
    cpack --config "$folder/library/CPackConfig.cmake" -B "$folder/packages" \
        -D CPACK_INSTALL_CMAKE_PROJECTS="$projects" >"$folder/cpack.log" 2>&1 ||
        { cat "$folder/cpack.log"; exit 1; }
    rm -r "$folder/packages/_CPack_Packages"
}

# repack: mends the packages. CPack adds scripts that call ldconfig, which is done by a trigger. It gives the
# packages of the debug symbols the ending of another system, no copyright file, and sums with paths of the
# build machine.
repack() {
    local package name root=$unfinished/root
    for package in "$unfinished"/packages/*.deb; do
        dpkg-deb -R "$package" "$root"
        if [ -e "$root/DEBIAN/triggers" ]; then
            rm "$root"/DEBIAN/post*
            dpkg-deb --root-owner-group --build "$root" "$package" >/dev/null
        fi
        rm -r "$root"
    done
    for package in "$unfinished"/packages/*-dbgsym_*.ddeb; do
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

# debian COMMAND...: runs the command with Debian's compiler options, packs and checks the packages.
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
    pack
    repack
    lintian --allow-root --fail-on error "$unfinished"/packages/*.deb
}

debian_qt5() {
    build linux-release -DCMAKE_INSTALL_PREFIX=/usr
    build_examples -DCMAKE_INSTALL_PREFIX=/usr
    write_manual_pages
}

debian_qt6() { build linux-qt6 -DCMAKE_INSTALL_PREFIX=/usr; }

windows() {
    need g++-mingw-w64-x86-64-posix
    VORNUTILITY_QT_WINDOWS=$(scripts/qt-windows.sh)
    export VORNUTILITY_QT_WINDOWS
    build windows-release
    build_examples -DVORNUTILITY_QT_WINDOWS="$VORNUTILITY_QT_WINDOWS" \
        -DCMAKE_TOOLCHAIN_FILE="$project/cmake/windows-x86_64.cmake"
    pack
}

for part in "$@"; do
    say "Packages: $part"
    rm -rf "$unfinished"
    case $part in
    debian) debian debian_qt5 ;;
    debian-qt6)
        need qt6-base-dev
        debian debian_qt6
        ;;
    windows) windows ;;
    *) echo "package.sh: no such part: $part" >&2; exit 1 ;;
    esac
    rm -rf "build/packages/$part"
    mv "$unfinished/packages" "build/packages/$part"
done
find build/packages -maxdepth 2 '(' -name '*.deb' -o -name '*.zip' ')' -printf '%p  %k KiB\n' | sort
