#!/usr/bin/env bash
# package-manager-locks.sh PROJECT: apt_get waits while another process holds a lock of the package
# manager. Uses package lists, downloads and a dpkg status of its own, so that root is not needed.
. "$1/scripts/common.sh"
as_root() { "$@"; }
folder=$(mktemp -d)
trap 'kill "${holder:-}" 2>/dev/null || true; rm -rf "$folder"' EXIT

mkdir -p "$folder"/{lists/partial,archives/partial,dpkg,etc,repository}
cat >"$folder/apt.conf" <<END
Dir::State "$folder";
Dir::State::lists "$folder/lists";
Dir::State::status "$folder/dpkg/status";
Dir::Cache "$folder";
Dir::Cache::archives "$folder/archives";
Dir::Etc "$folder/etc";
Dir::Bin::dpkg "/bin/true";
APT::Sandbox::User "";
END
export APT_CONFIG=$folder/apt.conf
touch "$folder/dpkg/status"
mkdir -p "$folder/package/DEBIAN"
printf '%s\n' 'Package: sample' 'Version: 1' 'Architecture: all' 'Maintainer: A <a@example.com>' \
    'Description: sample' >"$folder/package/DEBIAN/control"
dpkg-deb --build "$folder/package" "$folder/repository/sample.deb" >/dev/null
(
    cd "$folder/repository"
    { dpkg-deb -f sample.deb; printf 'Filename: ./sample.deb\nSize: %s\nSHA256: %s\n' \
        "$(stat -c %s sample.deb)" "$(sha256sum sample.deb | cut -d' ' -f1)"; } >Packages
)
echo "deb [trusted=yes] file:$folder/repository ./" >"$folder/etc/sources.list"

# while_held LOCK ARGUMENT...: runs apt_get while another process holds the lock for a second.
while_held() {
    local lock=$1 begin=$EPOCHREALTIME
    python3 - "$lock" "$folder/held" <<'END' &
import fcntl, pathlib, sys, time
with open(sys.argv[1], "a") as lock:
    fcntl.lockf(lock, fcntl.LOCK_EX)
    pathlib.Path(sys.argv[2]).touch()
    time.sleep(1)
END
    holder=$!
    until [ -e "$folder/held" ]; do sleep 0.05; done
    rm "$folder/held"
    apt_get "${@:2}" || { echo "apt-get $2 failed while $lock was held"; exit 1; }
    wait "$holder"
    python3 -c "import sys; sys.exit($EPOCHREALTIME - $begin < 1)" ||
        { echo "apt-get $2 did not need $lock"; exit 1; }
}

while_held "$folder/lists/lock" update
while_held "$folder/archives/lock" install sample
while_held "$folder/dpkg/lock-frontend" install sample
while_held "$folder/dpkg/lock" install sample

if apt_get install no-such-package 2>"$folder/errors"; then
    echo "the installation of a package that does not exist succeeded"
    exit 1
fi
grep -q no-such-package "$folder/errors"
