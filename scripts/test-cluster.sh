#!/usr/bin/env bash
# Starts a Slurm cluster on the loopback addresses of this machine, runs the tests in tests/cluster on
# it, and stops it, also after a failure, Ctrl-C or a signal. The cluster lies in a temporary folder; no
# service of the system is started. When the tests fail, its logs are kept in build/cluster-log.
#
# Needs root. Exit code 77: the cluster cannot run on this machine, and the message says why. .ci/run
# goes on then, but not where VORNUTILITY_NEED_CLUSTER is set, on machines made for this test: there
# the exit code is 1.
. "$(dirname "$0")/common.sh"

cannot_run() {
    echo "test-cluster.sh: the tests on a cluster were not run: $1" >&2
    [ -z "${VORNUTILITY_NEED_CLUSTER:-}" ] || exit 1
    exit 77
}

policy= folder= cluster= running=
finish() {
    local status=$?
    trap '' INT TERM HUP
    [ -z "$policy" ] || rm -f "$policy"
    if [ -n "$running" ]; then
        kill -- "-$running" 2>/dev/null || true
        wait "$running" 2>/dev/null || true
    fi
    if [ $status -ne 0 ] && [ -d "$cluster/log" ]; then
        rm -rf "$project/build/cluster-log"
        cp -r "$cluster/log" "$project/build/cluster-log"
        say "The logs of Slurm are in build/cluster-log"
    fi
    if [ -n "$folder" ]; then
        # A test may have started another cluster beside the first.
        for cluster in "$folder"/*; do
            "$project/scripts/slurm.sh" stop "$cluster" || status=1
        done
        rmdir "$folder" || status=1
    fi
    exit $status
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
trap 'exit 129' HUP

# Debian starts the services of packages that it installs, unless this file forbids it.
need_but_do_not_start() {
    if [ ! -e /usr/sbin/policy-rc.d ]; then
        policy=/usr/sbin/policy-rc.d
        printf '#!/bin/sh\nexit 101\n' >"$policy"
        chmod +x "$policy"
    fi
    need "$@"
    [ -z "$policy" ] || rm -f "$policy"
    policy=
}

[ "$(id -u)" -eq 0 ] || cannot_run "root is needed"
need_build_tools
need_but_do_not_start slurmctld slurmd slurm-client munge
need calculix-ccx # for tst_slurmstudy
cd "$project"

say "linux-release, for the cluster"
cmake --preset linux-release >/dev/null
cmake --build --preset linux-release --target VORNUtility cluster_tests

folder=$(mktemp -d -p /tmp vorn-cluster.XXXXXX) # short: a socket lies in it
chmod 711 "$folder" # munged demands it
cluster=$folder/slurm

# run COMMAND...: in a process group of its own, which is ended when the command fails or a signal comes.
run() {
    set -m
    "$@" &
    running=$!
    set +m
    wait "$running" || return
    running=
}

say "Starting Slurm in $cluster"
status=0
run scripts/slurm.sh start "$cluster" || status=$?
[ $status -ne 77 ] || cannot_run "see above"
[ $status -eq 0 ] || exit 1
# shellcheck source=/dev/null
. "$cluster/environment"

run ctest --preset linux-release -C Cluster -L cluster --no-tests=error
