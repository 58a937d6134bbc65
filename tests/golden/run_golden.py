#!/usr/bin/env python3
"""Runs every golden case and compares what it leaves with the files under its expected/, byte for byte.

    run_golden.py TOVCORE [--rewrite] [CASE...]

A case is a folder beside this script with in.tvp and in.tvs. It is run as `tovcore in.tvp in.tvs run_silent` in a
directory of its own. Dates, times, run ids, milliseconds and the path of that directory are masked; everything else
counts. --rewrite stores the outputs as the new expected ones: look at `git diff` before keeping them, since no number
belongs there that nobody has confirmed.
"""
import argparse
import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "e2e"))
from support import mask_times, read, write  # noqa: E402

INPUTS = {"in.tvp", "in.tvs", "tov_run.tvs"}


def run_case(program, case):
    """Masked texts of all files that a run of the case leaves, by relative path; `console` is standard output."""
    with tempfile.TemporaryDirectory(prefix="tovcore_golden_") as directory:
        for name in os.listdir(os.path.join(HERE, case)):
            if name != "expected":
                shutil.copy(os.path.join(HERE, case, name), directory)
        given = set(os.listdir(directory))
        process = subprocess.run([program, "in.tvp", "in.tvs", "run_silent"], cwd=directory, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL, timeout=600, check=False)
        outputs = {"console": process.stdout.decode("latin-1") + "status %d\n" % process.returncode}
        for folder, _, names in os.walk(directory):
            for name in names:
                path = os.path.relpath(os.path.join(folder, name), directory)
                if path not in given | INPUTS:
                    outputs[path] = read(os.path.join(folder, name))
        paths = {directory, os.path.realpath(directory)}
        return {name: mask(text, paths, program) for name, text in outputs.items()}


def mask(text, paths, program):
    for path in paths:
        text = text.replace(path, "<directory>")
    return re.sub(r"\d\d/\d\d/19\d\d", "<date>", mask_times(text.replace(program, "<program>")))


def expected_files(case):
    root = os.path.join(HERE, case, "expected")
    found = {}
    for folder, _, names in os.walk(root):
        for name in names:
            path = os.path.join(folder, name)
            found[os.path.relpath(path, root)] = read(path)
    return found


def store(case, outputs):
    root = os.path.join(HERE, case, "expected")
    shutil.rmtree(root, ignore_errors=True)
    for name, text in outputs.items():
        path = os.path.join(root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        write(path, text)


def differences(expected, outputs):
    """Lines that tell how the outputs differ; none when they are the same."""
    lines = []
    for name in sorted(expected.keys() | outputs.keys()):
        if name not in outputs:
            lines.append("missing file: " + name)
        elif name not in expected:
            lines.append("unexpected file: " + name)
        elif expected[name] != outputs[name]:
            lines += list(difflib.unified_diff(expected[name].splitlines(), outputs[name].splitlines(),
                                               "expected/" + name, "now/" + name, lineterm="", n=1))[:60]
    return lines


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--rewrite", action="store_true")
    parser.add_argument("cases", nargs="*")
    arguments = parser.parse_intermixed_args()
    program = os.path.abspath(arguments.program)
    cases = arguments.cases or sorted(name for name in os.listdir(HERE)
                                      if os.path.exists(os.path.join(HERE, name, "in.tvp")))
    if not cases:
        print("no cases")
        return 1
    failed = 0
    for case in cases:
        outputs = run_case(program, case)
        if arguments.rewrite:
            store(case, outputs)
            print("rewritten:", case)
            continue
        lines = differences(expected_files(case), outputs)
        print("FAILED:" if lines else "same:", case)
        print("\n".join(lines) + "\n" if lines else "", end="")
        failed += bool(lines)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
