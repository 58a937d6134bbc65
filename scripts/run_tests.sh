#!/usr/bin/env bash
# Builds everything and runs all tests, first as a release, then under AddressSanitizer and UBSan.
#
# usage: scripts/run_tests.sh
set -uo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$top" || exit 1
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
need_packages cmake ninja-build g++ python3 libgtest-dev libbenchmark-dev libxml2-utils libxml2-dev || exit 1

jobs=$(nproc)
failed=()
for preset in release asan; do
    echo "=== $preset: build"
    if ! { cmake --preset "$preset" >/dev/null && cmake --build --preset "$preset" -j"$jobs"; }; then
        failed+=("$preset build")
        continue
    fi
    echo "=== $preset: tests"
    ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j"$jobs" || failed+=("$preset tests")
done

echo
if [ ${#failed[@]} -gt 0 ]; then
    printf -v list '%s, ' "${failed[@]}"
    echo "FAILED: ${list%, }"
    exit 1
fi
echo "All tests passed (release, and with sanitizers)."
