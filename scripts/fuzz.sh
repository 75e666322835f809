#!/usr/bin/env bash
# fuzz.sh [SECONDS]
#
# Runs each fuzzer on a copy of its corpus, by default for 20 seconds. Fails if a fuzzer finds an
# error, and prints the file with the input that causes it. The output of each run is in
# build/linux-fuzz/runs.
. "$(dirname "$0")/common.sh"

seconds=${1:-20}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || { echo "usage: fuzz.sh [SECONDS]" >&2; exit 2; }

need_build_tools
need clang libclang-rt-dev
cd "$project"

cmake --preset linux-fuzz >/dev/null
cmake --build --preset linux-fuzz

export runs=$project/build/linux-fuzz/runs seconds
rm -rf "$runs"
mkdir -p "$runs"
scratch=$(mktemp -d -p "$(if [ -w /dev/shm ]; then echo /dev/shm; fi)")
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch # where the targets write the files that the library reads

# run NAME: runs a target and prints one line about it.
run() {
    local name=$1 folder=$runs/$1 count input
    mkdir -p "$folder/found"
    cp -r "fuzz/corpus/$name" "$folder/corpus"
    if "build/linux-fuzz/fuzz/fuzz_$name" -max_total_time="$seconds" -max_len=65536 -timeout=30 \
        -print_final_stats=1 -artifact_prefix="$folder/found/" "$folder/corpus" \
        >"$folder/output.txt" 2>&1 </dev/null; then
        count=$(sed -n 's/^stat::number_of_executed_units: //p' "$folder/output.txt")
        echo "$name: $count runs"
    else
        input=$(find "$folder/found" -type f ! -name 'slow-unit-*' -print -quit)
        echo "$name: FAILED with ${input:-no input}, see $folder/output.txt"
        return 1
    fi
}
export -f run

say "Fuzzing, $seconds seconds for each target"
find fuzz/corpus -mindepth 1 -maxdepth 1 -type d -printf '%f\n' | sort |
    xargs -P "$(nproc)" -I NAME bash -euc 'run NAME'
