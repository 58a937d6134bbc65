#!/usr/bin/env python3
"""Prints the ratios of benchmarks to their floors with their limits, from the JSON that the programs write.

usage: benchmark_table.py FILE.json...

The status is 1 when a ratio is above its limit, and the last lines name it.
"""
import json
import sys


def rows(path):
    """Name, ratio and limit of each benchmark that is held against a floor."""
    with open(path) as file:
        for run in json.load(file)["benchmarks"]:
            if "ratio" in run:
                name = run["name"].replace("/iterations:%d" % run["iterations"], "").replace("/manual_time", "")
                yield name + (" " + run["label"] if run.get("label") else ""), run["ratio"], run["limit"]


def main(paths):
    table = [row for path in paths for row in rows(path)]
    width = max([len(name) for name, _, _ in table], default=9)
    print("%-*s %7s %7s" % (width, "benchmark", "ratio", "limit"))
    for name, ratio, limit in table:
        print("%-*s %7.2f %7.2f%s" % (width, name, ratio, limit, "  above" if ratio > limit else ""))
    above = [name for name, ratio, limit in table if ratio > limit]
    print("\n%d benchmarks, %d above their limit%s" % (len(table), len(above), ":" if above else "."))
    for name in above:
        print("  " + name)
    return 1 if above or not table else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
