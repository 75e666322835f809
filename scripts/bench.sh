#!/usr/bin/env bash
# Measures each figure beside its peer in one run, five repetitions, interleaved, and prints the
# ratios of the medians. The raw figures stay in build/bench/results.json.
# "bench.sh FILTER" runs only the benchmarks whose names match the regular expression.
. "$(dirname "$0")/common.sh"
need_build_tools
need libbenchmark-dev libspdlog-dev python3
cd "$project"

cmake -S . -B build/bench -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
    -DVORNUTILITY_BUILD_TESTS=OFF -DVORNUTILITY_BUILD_BENCHMARKS=ON >/dev/null
cmake --build build/bench
cd build/bench
benchmarks/vorn_benchmarks --benchmark_filter="${1:-^[^g]|^g[^r]}" --benchmark_repetitions=5 \
    --benchmark_enable_random_interleaving=true --benchmark_out=results.json \
    --benchmark_out_format=json >/dev/null
python3 "$project/benchmarks/table.py" results.json
