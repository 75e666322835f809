#!/usr/bin/env bash
# test-packages.sh [PART...]
#
# Tests the packages in build/packages, and makes them with package.sh if they are missing. The program that
# is built with them is the one in README.md. The parts, debian and windows by default:
#   debian      in a bare Debian 12: installs the packages, runs the example programs, builds a program with
#               CMake and with pkg-config and runs it, and checks that nothing is left after the removal
#   debian-qt6  builds the program with the packages for Qt 6, which are installed beside those for Qt 5
#   windows     builds the program with the unpacked zip and runs it with Wine and the DLLs of the zip
#
# The bare Debian lies in a temporary folder (about 1 GiB), which is removed at the end, also after a failure.
# It needs root. Exit code 77: a part cannot run on this machine, and the message says why.
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/wine.sh"
cd "$project"
[ $# -gt 0 ] || set -- debian windows

cannot_run() {
    echo "test-packages.sh: the packages were not tested: $1" >&2
    exit 77
}
case " $* " in
*" debian"*) [ "$(id -u)" -eq 0 ] || cannot_run "root is needed" ;;
esac
need_build_tools

major=$(sed -nE 's/.*int Major = ([0-9]+);.*/\1/p' Utility/Version.h) # a part of the names of the packages
scratch=$(mktemp -d)
root=$scratch/root
copy= # of the bare Debian, while it is being written
clean_up() {
    local folder
    cd /
    stop_wine
    # What is mounted, also by debootstrap, must never be removed. Lazily, since a program may still use it.
    mounts | while read -r folder; do umount "$folder" 2>/dev/null || umount --lazy "$folder"; done
    [ -z "$(mounts)" ] || { echo "test-packages.sh: still mounted, so not removed: $scratch" >&2; return 1; }
    rm -rf --one-file-system "$scratch" ${copy:+"$copy"}
}
mounts() { awk -v folder="$scratch/" 'index($2, folder) == 1 { print $2 }' /proc/self/mounts | sort -r; }
trap clean_up EXIT
trap 'exit 130' INT TERM HUP

# copy_program FOLDER: the program of README.md.
copy_program() {
    mkdir -p "$1"
    cp docs/samples/pack/* "$1"
}

# check_result FOLDER: the program has packed its sources in FOLDER. Removes what it wrote.
check_result() {
    grep -q 'Packed [1-9][0-9]* bytes' "$1"/pack_*.log || { cat "$1"/pack_*.log; return 1; }
    [ "$(head -c 2 "$1/source.7z")" = 7z ]
    rm "$1"/pack_*.log "$1/source.7z"
}

in_root() {
    chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}

apt_in_root() {
    in_root apt-get -qq "$@" >"$scratch/apt.log" 2>&1 || { cat "$scratch/apt.log"; return 1; }
}

# make_root: a bare Debian, from a copy that is kept in the cache folder.
make_root() {
    local kept
    kept=$cache_home/debian-bookworm-$(dpkg --print-architecture).tar
    if [ ! -e "$kept" ]; then
        say "Fetching a bare Debian"
        need debootstrap
        debootstrap --variant=minbase bookworm "$root" "${VORNUTILITY_DEBIAN_MIRROR:-http://deb.debian.org/debian}" \
            >"$scratch/debootstrap.log" 2>&1 || {
            tail "$scratch/debootstrap.log"
            cannot_run "debootstrap failed"
        }
        rm -f "$root"/var/cache/apt/archives/*.deb
        mkdir -p "$cache_home"
        copy=$(mktemp "$kept.XXXXXX")
        tar -C "$root" -cf "$copy" .
        mv "$copy" "$kept"
        copy=
    else
        mkdir "$root"
        tar -C "$root" -xf "$kept"
    fi
    mount -t proc proc "$root/proc" || cannot_run "/proc cannot be mounted"
    # The network, as this machine uses it.
    cp -L /etc/resolv.conf "$root/etc/resolv.conf"
    apt-config dump Acquire >"$root/etc/apt/apt.conf.d/90acquire"
    rm -f "$root/etc/apt/sources.list"
    cp -r /etc/apt/sources.list* "$root/etc/apt/"
    find "$root/etc/apt/sources.list.d" -type f ! -name 'debian*' -delete # only Debian's own packages
    mkdir -p "$root/usr/share/keyrings" "$root/packages"
    cp -n /usr/share/keyrings/debian-archive-* "$root/usr/share/keyrings/"
    apt_in_root update
}

# The files in the bare Debian, without those that every use of the package manager changes.
files_in_root() {
    in_root find / -xdev '(' -path /proc -o -path /tmp -o -path /root -o -path /packages -o -path /var/cache \
        -o -path /var/log -o -path /var/lib/apt -o -path /var/lib/dpkg ')' -prune -o -print | sort
}

# with_packages COMMAND TOOLS PACKAGE...: installs the packages in the bare Debian, where TOOLS are
# installed too, runs the command, removes them, and checks that nothing is left of them.
with_packages() {
    local name dependencies files=()
    for name in "${@:3}"; do
        cp build/packages/*/"${name}"_*.deb "$root/packages/"
        files+=("/packages/$(basename build/packages/*/"${name}"_*.deb)")
    done
    dependencies=$(in_root apt-get -s install --no-install-recommends "${files[@]}" |
        sed -n 's/^Inst \([^ ]*\).*/\1/p' | grep -v '^libvornutility')
    # shellcheck disable=SC2086
    apt_in_root install -y --no-install-recommends $dependencies $2
    apt_in_root clean
    files_in_root >"$scratch/before"
    apt_in_root install -y --no-install-recommends "${files[@]}"
    "$1"
    apt_in_root purge -y "${@:3}"
    files_in_root >"$scratch/after"
    diff "$scratch/before" "$scratch/after" || { echo "test-packages.sh: not removed completely" >&2; return 1; }
    if in_root dpkg-query -W 'libvornutility*' 2>/dev/null | grep .; then return 1; fi
}

run_examples() {
    local program
    for program in "$root"/usr/bin/*; do
        program=${program#"$root"}
        if in_root dpkg -S "$program" 2>/dev/null | grep -q '^libvornutility-tools:'; then
            say "$program --help"
            in_root "$program" --help >"$scratch/help"
            grep -qi usage "$scratch/help"
            in_root test -e "/usr/share/man/man1/$(basename "$program").1.gz"
        fi
    done
    [ -s "$scratch/help" ]
    # Slurm is not there, so that the tool fails.
    { in_root /usr/libexec/vornutility/NodeInformation -cluster || true; } | grep '^Error: '
}

tools="g++ cmake make pkg-config 7zip gdb-minimal" # for build_program
build_program() {
    local folder=$root/root/program qt6=${1:-}
    copy_program "$folder"
    if [ -n "$qt6" ]; then sed -i 's/find_package(VORNUtility /find_package(VORNUtilityQt6 /' "$folder/CMakeLists.txt"; fi
    say "With CMake"
    in_root sh -ec 'cd /root/program; cmake -S . -B build >/dev/null; cmake --build build; build/pack'
    check_result "$folder"
    say "With pkg-config"
    in_root sh -ec 'cd /root/program; g++ -std=c++17 -fPIC main.cpp $(pkg-config --cflags --libs "$0") -o pack; ./pack' \
        "vornutility$qt6"
    check_result "$folder"
    in_root pkg-config --modversion "vornutility$qt6"
    say "In the debugger"
    in_root sh -c 'cd /root/program; gdb -batch -ex "set breakpoint pending on" -ex "break Log.cpp:$0" -ex run \
        -ex backtrace pack' Vorn::Util::Log::append >"$scratch/backtrace" 2>&1 || true
    grep -E '^#0 .*Vorn::Util::Log::append \(.*\) at .*Utility/Log\.cpp:[0-9]+$' "$scratch/backtrace" ||
        { cat "$scratch/backtrace"; return 1; }
    rm -r "$folder"
}

build_with_both() {
    build_program
    build_program -qt6
}

test_debian() {
    make_root
    say "The library and the tools"
    with_packages run_examples "" "libvornutility$major" libvornutility-tools
    say "The library and the development files"
    with_packages build_program "$tools" "libvornutility$major" libvornutility-dev "libvornutility$major-dbgsym"
    umount "$root/proc"
    rm -rf --one-file-system "$root"
}

test_debian_qt6() {
    [ -d build/packages/debian ] || scripts/package.sh debian
    make_root
    say "The libraries for both versions of Qt"
    with_packages build_with_both "$tools" "libvornutility$major" libvornutility-dev "libvornutility$major-dbgsym" \
        "libvornutility-qt6-$major" libvornutility-qt6-dev "libvornutility-qt6-$major-dbgsym"
    umount "$root/proc"
    rm -rf --one-file-system "$root"
}

test_windows() {
    local unpacked program=$scratch/program archivers
    need g++-mingw-w64-x86-64-posix wine wine64
    VORNUTILITY_QT_WINDOWS=$(scripts/qt-windows.sh)
    archivers=$(scripts/test-archivers.sh 7zip-16.04)
    export LC_ALL=C.UTF-8 # for Wine, which converts the names of files
    unpacked="$scratch/Any folder, früher oder später"
    python3 -m zipfile -e build/packages/windows/*.zip "$unpacked"
    unpacked=$(echo "$unpacked"/*)
    copy_program "$program"
    cmake -S "$program" -B "$program/build" -G Ninja -DVORNUtility_ROOT="$unpacked" \
        -DCMAKE_TOOLCHAIN_FILE="$project/cmake/windows-x86_64.cmake" \
        -DVORNUTILITY_QT_WINDOWS="$VORNUTILITY_QT_WINDOWS" >/dev/null
    grep -qF "VORNUtility_DIR:PATH=$unpacked/" "$program/build/CMakeCache.txt"
    cmake --build "$program/build"
    cp "$archivers"/7zip-16.04/7z.* "$program/build/"

    start_wine "$unpacked/bin" "$VORNUTILITY_QT_WINDOWS"
    WINEPATH=$(windows_path "$unpacked/bin") # only the DLLs of the zip
    say "A program that was built with the zip"
    (cd "$program" && wine build/pack.exe)
    check_result "$program"
    unset WINEPATH
    local example
    for example in "$unpacked"/bin/*.exe; do
        say "$(basename "$example") --help"
        wine "$example" --help # prints nothing without a console; fails if a DLL is missing
    done
    stop_wine
}

for part in "$@"; do
    [ -d "build/packages/$part" ] || scripts/package.sh "$part"
    say "Testing the packages: $part"
    case $part in
    debian) test_debian ;;
    debian-qt6) test_debian_qt6 ;;
    windows) test_windows ;;
    esac
done
say "The packages work"
