#!/usr/bin/env bash
# bench.sh [PART [FILTER]]
#
# Measures the library and, in the same run, its peers: other programs, libraries or system calls that
# do the same work. Writes the figures and pictures into docs/performance.md, which explains them. The
# parts, all by default:
#   linux     beside the peers on Linux
#   windows   the same for Windows: cross-compiled, run with Wine
#   growth    how cost grows with size: draws docs/growth.svg
#
# FILTER is a regular expression for the names of the works, such as '^(size|remove)$'. With it, the
# figures are only printed. What was measured is kept in build/bench and build/bench-windows:
# results.json and growth.json.
. "$(dirname "$0")/common.sh"
. "$(dirname "$0")/wine.sh"
need_build_tools
need libspdlog-dev python3
cd "$project"

# build SYSTEM FOLDER OPTION...: a release build of the library and the benchmarks, in FOLDER.
build() {
    local library
    library=$(scripts/benchmark-library.sh "$1")
    cmake -S . -B "$2" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DVORNUTILITY_BUILD_TESTS=OFF -DVORNUTILITY_BUILD_BENCHMARKS=ON \
        -Dbenchmark_DIR="$library/lib/cmake/benchmark" "${@:3}" >/dev/null
    cmake --build "$2"
}

build_linux() { build linux build/bench; }

build_windows() {
    need g++-mingw-w64-x86-64-posix wine wine64
    VORNUTILITY_QT_WINDOWS=$(scripts/qt-windows.sh)
    build windows build/bench-windows -DVORNUTILITY_QT_WINDOWS="$VORNUTILITY_QT_WINDOWS" \
        -DCMAKE_TOOLCHAIN_FILE="$project/cmake/windows-x86_64.cmake"
}

# measure SYSTEM FOLDER FILTER PROGRAM...: prints the table, and writes it to the page if all was measured.
measure() {
    local results=$2/results.json files=$2/files
    rm -rf "$files" # of an interrupted run
    mkdir "$files"
    python3 benchmarks/measure.py "$1" "$results" "$files" "${@:3}"
    rm -rf "$files"
    python3 benchmarks/table.py "$results"
    [ -n "$3" ] || python3 benchmarks/page.py "$results" docs/performance.md "$1"
}

run_linux() {
    build_linux
    measure linux build/bench "$1" build/bench/benchmarks/vorn_benchmarks
}

run_windows() {
    build_windows
    trap stop_wine EXIT
    start_wine "$project/build/bench-windows/Utility" "$VORNUTILITY_QT_WINDOWS"
    measure windows build/bench-windows "$1" wine build/bench-windows/benchmarks/vorn_benchmarks.exe
}

run_growth() {
    need gnuplot-nox
    build_linux
    build/bench/benchmarks/vorn_benchmarks --benchmark_filter='^growth/' --benchmark_repetitions=3 \
        --benchmark_out=build/bench/growth.json --benchmark_out_format=json >/dev/null
    python3 benchmarks/growth.py build/bench/growth.json >build/bench/growth.txt
    gnuplot -e "data='build/bench/growth.txt'; picture='docs/growth.svg'" benchmarks/growth.gp
    say "docs/growth.svg"
}

for part in ${1:-linux windows growth}; do
    say "$part"
    "run_$part" "${2:-}"
done
