#!/usr/bin/env bash
# Builds and runs all benchmarks, and prints the ratio of each to its floor, its limit, and which are above it.
#
# usage: scripts/run_benchmarks.sh [NAME...]     e.g. run_benchmarks.sh chains em
#
# The machine should be idle. The status is 1 when a ratio is above its limit or a program fails.
set -uo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$top" || exit 1
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
need_packages cmake ninja-build g++ python3 libgtest-dev libbenchmark-dev || exit 1

if [ $# -eq 0 ]; then
    for source in bench/bench_*.cpp; do
        name=${source#bench/bench_}
        set -- "$@" "${name%.cpp}"
    done
fi
cmake --preset release >/dev/null && cmake --build --preset release --target "${@/#/bench_}" >/dev/null || exit 1

results=$(mktemp -d)
trap 'rm -r "$results"' EXIT
files=()
failed=0
for name in "$@"; do
    echo "running bench_$name" >&2
    # In the directory of results: an analysis may write tables where it runs.
    if (cd "$results" && "$top/build/release/bench/bench_$name" --benchmark_format=json >"$name.json"); then
        files+=("$results/$name.json")
    else
        echo "bench_$name failed" >&2
        failed=1
    fi
done
python3 scripts/benchmark_table.py "${files[@]}" || failed=1
exit "$failed"
