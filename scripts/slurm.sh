#!/usr/bin/env bash
# slurm.sh start|stop FOLDER
#
# start: runs a Slurm cluster on this machine: munged, slurmctld and three slurmd, all in FOLDER (new,
#     absolute, its path short and plain) and reachable on the loopback addresses only. Nothing of the system's own
#     Slurm is used or changed. Afterwards ". FOLDER/environment" makes the commands of Slurm use it.
#     Variables of another cluster have no effect, such as those inside a job. Exit code 77, with the
#     reason, where a cluster cannot be started.
# stop: ends all that belongs to the cluster in FOLDER, its jobs too, and removes FOLDER. Also after a
#     start that failed.
#
# Needs root and the Debian packages slurmctld, slurmd, slurm-client and munge. The partitions:
#   short    n1, n2 (the default)
#   long     n2, n4
#   hidden   n3
# n5 is in no partition. n4 and n5 have no daemon. The nodes claim more cores and memory than the machine
# may have.
set -euo pipefail

usage() { echo "usage: slurm.sh start|stop FOLDER" >&2; exit 2; }
if [ $# -ne 2 ] || [[ $2 != /* ]]; then usage; fi
folder=$(realpath -m -- "$2")
conf=$folder/slurm.conf
mark=$folder/made-by-slurm.sh
daemons=(n1 n2 n3)

cannot() { echo "slurm.sh: cannot start Slurm: $1" >&2; exit 77; }
fail() { echo "slurm.sh: $1" >&2; exit 1; }

# until_true SECONDS COMMAND...
until_true() {
    local end=$((SECONDS + $1))
    until "${@:2}"; do
        [ $SECONDS -lt $end ] || return 1
        sleep 0.1
    done
}

# free_ports COUNT ADDRESS: prints the first of so many ports in a row to which nothing listens. They lie below
# those that the system hands out.
free_ports() {
    local first port
    while :; do
        first=$((20000 + RANDOM % 10000))
        for ((port = first; port < first + $1; port++)); do
            ! (: 3<>"/dev/tcp/$2/$port") 2>/dev/null || continue 2
        done
        echo "$first"
        return
    done
}

write_configuration() {
    local host=$1 address=$2 port=$3
    cat >"$conf" <<END
ClusterName=vornutility
SlurmctldHost=$host($address)
SlurmctldPort=$port
SlurmUser=root
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket=$folder/munge.socket
# Listen at the address of the host's name only, which is a loopback address.
CommunicationParameters=NoInAddrAny,NoCtldInAddrAny
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd-%n.pid
SlurmctldLogFile=$folder/log/slurmctld.log
SlurmdLogFile=$folder/log/slurmd-%n.log
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool/%n
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SwitchType=switch/none
MpiDefault=none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
JobCompType=jobcomp/none
MailProg=/bin/true
# Small, so that studies consist of several arrays.
MaxArraySize=5
# Start waiting jobs at once, not only every three seconds.
SchedulerParameters=batch_sched_delay=0
SlurmdParameters=config_overrides
ReturnToService=2
KillWait=2
NodeName=n1 NodeHostname=$host NodeAddr=$address Port=$((port + 1)) \
    Sockets=2 CoresPerSocket=1 ThreadsPerCore=1 RealMemory=2048
NodeName=n2 NodeHostname=$host NodeAddr=$address Port=$((port + 2)) \
    Sockets=1 CoresPerSocket=2 ThreadsPerCore=2 RealMemory=1536
NodeName=n3 NodeHostname=$host NodeAddr=$address Port=$((port + 3)) \
    Sockets=2 CoresPerSocket=2 ThreadsPerCore=1 RealMemory=4000
NodeName=n4 NodeHostname=$host NodeAddr=$address Port=$((port + 4)) \
    Sockets=4 CoresPerSocket=16 ThreadsPerCore=1 RealMemory=262144
NodeName=n5 NodeHostname=$host NodeAddr=$address Port=$((port + 5)) RealMemory=1024
PartitionName=short Nodes=n1,n2 Default=YES
PartitionName=long Nodes=n2,n4
PartitionName=hidden Nodes=n3 Hidden=YES
END
    # Slurm must not read a configuration of the system instead.
    echo "CgroupAutomount=no" >"$folder/cgroup.conf"
    cat >"$folder/environment" <<END
unset \$(env | sed -n 's/^\(\(SLURM\|SBATCH\|SCANCEL\|SINFO\|SQUEUE\)_[A-Z0-9_]*\)=.*/\1/p')
export SLURM_CONF=$(printf %q "$conf") VORNUTILITY_CLUSTER=$(printf %q "$folder")
END
}

daemons_ready() {
    local states
    states=$(timeout 5 sinfo --noheader --all --Node --nodes "$(IFS=,; echo "${daemons[*]}")" \
        --format '%t' 2>/dev/null) && [ -n "$states" ] && ! grep -qv '^idle$' <<<"$states"
}

start() {
    local host address name
    [ "$(id -u)" -eq 0 ] || cannot "root is needed"
    for name in munged slurmctld slurmd sinfo; do
        PATH=$PATH:/usr/sbin command -v "$name" >/dev/null || cannot "$name is not installed"
    done
    export PATH=$PATH:/usr/sbin
    host=$(hostname -s)
    address=$({ getent ahostsv4 "$host" || true; } | awk '{ print $1; exit }')
    [[ $address == 127.* ]] ||
        cannot "the name of this machine, $host, has no loopback address: see /etc/hosts"
    # Slurm reads a blank as the end of a value, "#" as a comment and "%" as a variable.
    [[ ! $folder =~ [^[:alnum:]/._+-] ]] ||
        fail "letters, digits and . _ + - only in the path of the folder: $folder"

    mkdir "$folder"
    : >"$mark"
    chmod 711 "$folder" # as munged demands
    mkdir -m 700 "$folder/log" "$folder/state" "$folder/spool" "$folder/munge"
    write_configuration "$host" "$address" "$(free_ports 6 "$address")"

    (umask 077 && head -c 128 /dev/urandom >"$folder/munge/key")
    # shellcheck source=/dev/null
    . "$folder/environment"
    cd /
    munged --key-file="$folder/munge/key" --socket="$folder/munge.socket" \
        --pid-file="$folder/munge/munged.pid" --log-file="$folder/munge/munged.log" \
        --seed-file="$folder/munge/seed" || fail "munged does not start"
    slurmctld -f "$conf" || fail "slurmctld does not start: see $folder/log"
    for name in "${daemons[@]}"; do
        mkdir "$folder/spool/$name"
        slurmd -f "$conf" -N "$name" || fail "slurmd does not start: see $folder/log"
    done
    until_true 30 daemons_ready || fail "the nodes do not become idle: see $folder/log"
}

# marked_processes: the daemons that have a file of the folder open or its configuration in their
# environment, and the processes of jobs that have this configuration.
marked_processes() {
    local process
    for process in /proc/[0-9]*; do
        case $(readlink "$process/exe") in
        */munged | */slurmctld* | */slurmd* | */slurmstepd*)
            has_configuration "$process" || has_open_file "$process" || continue ;;
        *)
            has_configuration "$process" || continue
            grep -qz '^SLURM_JOB_ID=' "$process/environ" || continue ;;
        esac
        echo "${process#/proc/}"
    done 2>/dev/null
}

has_configuration() { grep -qzxF "SLURM_CONF=$conf" "$1/environ"; }
has_open_file() { [ -n "$(find "$1/fd" -lname "$folder/*" -print -quit)" ]; }

# processes: these and all that they have started.
processes() {
    local marked
    marked=$(marked_processes | tr "\n" " ")
    ps -e -o pid= -o ppid= | awk -v marked="$marked" '
        BEGIN { count = split(marked, list); for (i = 1; i <= count; i++) ours[list[i]] = 1 }
        { parent[$1] = $2 }
        END {
            do {
                found = 0
                for (process in parent)
                    if (!(process in ours) && parent[process] in ours)
                        ours[process] = found = 1
            } while (found)
            for (process in ours)
                print process
        }'
}

# end_processes: ends the processes; true when there are none. They are stopped first, so that none of
# them starts another one meanwhile.
end_processes() {
    local found signal
    for signal in STOP KILL; do
        mapfile -t found < <(processes)
        [ ${#found[@]} -gt 0 ] || return 0
        kill "-$signal" "${found[@]}" 2>/dev/null || true
    done
    return 1
}

stop() {
    [ -d "$folder" ] || return 0
    [ -f "$mark" ] || [ -z "$(ls -A "$folder")" ] || fail "no folder of this script: $folder"
    until_true 10 end_processes || fail "processes are left: $(processes | tr '\n' ' ')"
    rm -rf "$folder"
}

case $1 in
start) start ;;
stop) stop ;;
*) usage ;;
esac
