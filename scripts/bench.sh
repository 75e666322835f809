#!/usr/bin/env bash
# bench.sh [FILTER]
#
# Measures the library and, in the same run, a peer: another program or library that does the same
# work. Each benchmark runs five times, in mixed order; the ratios of the medians are printed. FILTER is
# a regular expression for the names of the benchmarks.
#
# "bench.sh growth" measures instead how cost grows with size, and draws docs/growth.svg.
#
# The figures are in build/bench: results.json and ratios.json, or growth.json.
. "$(dirname "$0")/common.sh"
need_build_tools
need libbenchmark-dev libspdlog-dev python3
cd "$project"

cmake -S . -B build/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
    -DVORNUTILITY_BUILD_TESTS=OFF -DVORNUTILITY_BUILD_BENCHMARKS=ON >/dev/null
cmake --build build/bench
cd build/bench

# measure NAME OPTION...: runs benchmarks and writes the figures to NAME.json.
measure() {
    local name=$1
    shift
    benchmarks/vorn_benchmarks --benchmark_out="$name.json" --benchmark_out_format=json "$@" >/dev/null
}

if [ "${1:-}" = growth ]; then
    need gnuplot-nox
    measure growth --benchmark_filter='^growth/' --benchmark_repetitions=3
    python3 "$project/benchmarks/growth.py" growth.json >growth.txt
    gnuplot -e "data='growth.txt'; picture='$project/docs/growth.svg'" "$project/benchmarks/growth.gp"
    say "docs/growth.svg"
else
    measure results --benchmark_filter="${1:--^growth/}" --benchmark_repetitions=5 \
        --benchmark_enable_random_interleaving=true
    python3 "$project/benchmarks/table.py" results.json ratios.json
fi
