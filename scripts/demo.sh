#!/usr/bin/env bash
# demo.sh [FOLDER]
#
# Builds and installs the library, builds the examples with the installed package, and runs them:
# results-archive packs FOLDER, by default a copy of the project's files, and checks the archive. The
# archive is written to a temporary folder, which is removed at the end. cluster-study runs a small study;
# its results stay in build/demo-study/results.
. "$(dirname "$0")/common.sh"

folder=${1:-}
if [ -n "$folder" ]; then
    [ -d "$folder" ] || { echo "demo.sh: no such folder: $folder" >&2; exit 1; }
    folder=$(cd -- "$folder" >/dev/null && pwd)
fi

need_build_tools
cd "$project"

say "Building and installing the library"
cmake --preset linux-release >/dev/null
cmake --build --preset linux-release --target VORNUtility
cmake --install build/linux-release --prefix build/stage >/dev/null

# build_example SOURCE FOLDER
build_example() {
    cmake -S "$1" -B "$2" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DVORNUtility_ROOT="$project/build/stage" >/dev/null
    cmake --build "$2"
}

say "Building the examples against the installed package"
build_example examples/results_archive build/demo
build_example examples/cluster_study build/demo-study

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
if [ -z "$folder" ]; then
    folder=$scratch/VORNUtility
    mkdir "$folder"
    tar -C "$project" --exclude=./build --exclude=./.git -cf - . | tar -C "$folder" -xf -
fi

say "Packing $folder"
mkdir "$scratch/log"
status=0
build/demo/results-archive --archive "$scratch/results.7z" --log "$scratch/log/demo.log" \
    -- "$folder" || status=$?
say "The log"
find "$scratch/log" -type f -exec cat {} +
[ $status -eq 0 ] || exit $status

say "A study: the area of a circle by random points, more of them in each case"
study=$project/build/demo-study
cat >"$scratch/area.py" <<'END'
import random, sys
points = int(sys.argv[1])
inside = sum(random.random() ** 2 + random.random() ** 2 < 1 for _ in range(points))
with open("result.txt", "w") as result:
    print(f"area={4 * inside / points}", file=result)
END
printf '%s\n' points 100 1000 10000 100000 1000000 >"$scratch/circles.csv"
rm -rf "$study/results"
"$study/cluster-study" --output "$study/results" "$scratch/circles.csv" -- \
    python3 "$scratch/area.py" '{points}'
say "The table of results"
cat "$study/results/results.csv"
say "The times of the cases are in $study/results/times.svg"
