#!/usr/bin/env bash
# Builds tovcore and runs it on the woodmouse example; prints where the result document and the log lie.
#
# usage: scripts/run_example.sh
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$top"
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
need_packages cmake ninja-build g++

echo "Building tovcore..."
cmake -S . -B build/example -G Ninja -DCMAKE_BUILD_TYPE=Release -DTOV_TESTS=OFF -DTOV_BENCH=OFF >/dev/null
cmake --build build/example --target tovcore -j"$(nproc)" | tail -n 1

# The run writes beside the project and into the current directory, so it works on a copy.
run="$top/build/example_run"
rm -rf "$run"
mkdir -p "$run"
cp examples/woodmouse/wood1.tvp examples/woodmouse/wood1.tvs "$run"
cd "$run"
"$top/build/example/tovcore" wood1.tvp wood1.tvs

for file in compfinished_final wood1.res/wood1.xml wood1.res/Tovenia_log.txt; do
    if [ ! -s "$file" ]; then
        echo "The run left no $file; see $run/wood1.res/Tovenia_log.txt" >&2
        exit 1
    fi
done
echo
echo "Result document: $run/wood1.res/wood1.xml"
echo "Log:             $run/wood1.res/Tovenia_log.txt"
