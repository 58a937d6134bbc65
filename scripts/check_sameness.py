#!/usr/bin/env python3
"""Checks that the same input gives the same digits everywhere.

    scripts/check_sameness.py [--jobs N] [--only WORD] [--valgrind]

Builds tovcore by g++ and clang++, without and with optimisation, and with sanitizers, under build/same/. Then runs the
projects with every analysis, the golden cases and the reference cases with each of them, and with the release build
under other circumstances: a path that holds blanks, another locale, memory that is filled before use, a second place in
a run list. All files that the runs leave must be the same, byte for byte, but for dates, times and paths. --only takes
the builds and circumstances that hold a word; --valgrind runs the projects with every analysis under valgrind instead.
Exit status 1 when anything differs.
"""
import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parent.parent
os.environ.setdefault("TOV_SOURCE_DIR", str(TOP))
sys.path.insert(0, str(TOP / "tests" / "e2e"))
from every_task import projects, settings_of  # noqa: E402
from support import mask_times, read, write  # noqa: E402

SANITIZE = "-fsanitize=address,undefined -fno-sanitize-recover=all"
BUILDS = {
    "g++ -O2": ("g++", "-O2"),
    "g++ -O0": ("g++", "-O0"),
    "g++ -O3": ("g++", "-O3 -Wno-restrict"),  # its false alarm in std::string
    "clang++ -O2": ("clang++", "-O2"),
    "clang++ -O0": ("clang++", "-O0"),
    "g++ -O1 with sanitizers": ("g++", "-O1 " + SANITIZE),
}
FIRST = "g++ -O2"
CIRCUMSTANCES = {
    "a path that holds blanks": ("run in a place", {}),
    "another locale": ("run", {"LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"}),
    "memory filled before use": ("run", {"MALLOC_PERTURB_": "165"}),
}


def build(name, jobs):
    """Path of the program, built by these means."""
    compiler, flags = BUILDS[name]
    place = TOP / "build" / "same" / re.sub(r"\W+", "_", name)
    subprocess.run(["cmake", "-S", TOP, "-B", place, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None", "-DTOV_TESTS=OFF",
                    "-DCMAKE_CXX_COMPILER=" + compiler, "-DCMAKE_CXX_FLAGS=" + flags], check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", place, "--target", "tovcore", "-j", str(jobs)], check=True,
                   stdout=subprocess.DEVNULL)
    return place / "tovcore"


def all_inputs():
    """Texts of all pairs of project and settings by a short name."""
    inputs = {"every_" + kind: (text, settings_of(kind)) for kind, text in projects().items()}
    for case in sorted((TOP / "tests" / "golden").glob("*/in.tvp")):
        inputs["golden_" + case.parent.name] = (read(case), read(case.parent / "in.tvs"))
    for case in sorted((TOP / "tests" / "cases").glob("*/expected.json")):
        for check in json.loads(case.read_text(encoding="utf-8"))["checks"]:
            pair = check["project"], check["run"]
            inputs["%s_%s_%s" % (case.parent.name, *pair)] = tuple(read(case.parent / name) for name in pair)
    return inputs


def masked(text, directory):
    for path in (os.path.realpath(directory), directory):
        text = text.replace(path, "<directory>").replace(path.replace(" ", "%20"), "<directory>")
    text = re.sub(r"(RUN NUMBER|ERROR #|WARNING #) \d+| *\d+ (?=#\[)", r"\1", text, flags=re.M)
    return re.sub(r"\d\d/\d\d/(19|20)\d\d", "<date>", mask_times(text))


def outputs(program, inputs, folder="run", environment=None, before=()):
    """All files that one run leaves, masked, by name. Projects of `before` stand in the run list ahead of this one."""
    with tempfile.TemporaryDirectory(prefix="tov_same_") as place:
        directory = os.path.join(place, folder)
        os.makedirs(directory)
        names = []
        for number, (project, settings) in enumerate([*before, inputs]):
            name = "p" if number == len(before) else "before%d" % number
            write(os.path.join(directory, name + ".tvp"), project)
            write(os.path.join(directory, name + ".tvs"), settings)
            names.append(name)
        if before:
            lines = [directory, "use_ass_settings"] + [l for n in names for l in (n + ".tvp", "0", "1")] + ["end"]
            write(os.path.join(directory, "tov_run.txt"), "\n".join(lines) + "\n")
        arguments = ["run_silent"] if before else ["p.tvp", "p.tvs", "run_silent"]
        subprocess.run([program, *arguments], cwd=directory, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       check=True, env=dict(os.environ, **(environment or {})))
        results = pathlib.Path(directory, "p.res")
        return {path.name: masked(read(path), directory) for path in sorted(results.rglob("*")) if path.is_file()}


def different(wanted, found):
    """Names of the files that differ, with the first line that does."""
    told = []
    for name in sorted(wanted.keys() | found.keys()):
        if wanted.get(name) == found.get(name):
            continue
        if name not in wanted or name not in found:
            told.append(name + " is there only once")
            continue
        pairs = zip(wanted[name].splitlines(), found[name].splitlines())
        line = next((n for n, (a, b) in enumerate(pairs, 1) if a != b), "the last")
        told.append("%s differs on line %s" % (name, line))
    return told


def compare(title, reference, jobs, run):
    """Runs all inputs by `run`, tells what differs from the reference; True when nothing does."""
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        found = dict(zip(reference, pool.map(run, reference)))
    faults = {name: different(reference[name], found[name]) for name in reference}
    faults = {name: told for name, told in faults.items() if told}
    files = sum(len(files) for files in reference.values())
    print("%s: %s" % (title, "differs" if faults else "the same %d files of %d runs" % (files, len(reference))), flush=True)
    for name, told in faults.items():
        print("    %s: %s" % (name, "; ".join(told[:4])))
    return not faults


def in_a_list(program, inputs):
    """A, B, A in one run list: the last A must be as the first, which ran alone."""
    names = sorted(inputs)
    other = {name: names[(i + 1) % len(names)] for i, name in enumerate(names)}

    def run(name):
        return outputs(program, inputs[name], before=(inputs[name], inputs[other[name]]))
    return run


def check(jobs, only):
    inputs = all_inputs()
    program = build(FIRST, jobs)
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        reference = dict(zip(inputs, pool.map(lambda name: outputs(program, inputs[name]), inputs)))
    good = True
    for title, (folder, environment) in CIRCUMSTANCES.items():
        if only not in title:
            continue
        good &= compare(title, reference, jobs, lambda n, f=folder, e=environment: outputs(program, inputs[n], f, e))
    if only in "A, B, A in a run list":
        listed = {name: outputs(program, inputs[name], before=(inputs[name],)) for name in inputs if "every_" in name}
        some = {name: inputs[name] for name in listed}
        good &= compare("A, B, A in a run list", listed, jobs, in_a_list(program, some))
    for name in BUILDS:
        if name != FIRST and only in name:
            other = build(name, jobs)
            good &= compare(name, reference, jobs, lambda n, p=other: outputs(p, inputs[n]))
    return good


def check_by_valgrind(jobs):
    """Every analysis once under valgrind, which must find no fault."""
    program = build(FIRST, jobs)
    complaints = tempfile.mkdtemp(prefix="tov_valgrind_")
    shell = pathlib.Path(complaints, "tovcore")
    shell.write_text("#!/bin/sh\nexec valgrind --quiet --leak-check=full --errors-for-leak-kinds=definite "
                     "--log-file=%s/$$.log %s \"$@\"\n" % (complaints, program), encoding="utf-8")
    shell.chmod(0o755)
    kinds = projects()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        list(pool.map(lambda kind: outputs(shell, (kinds[kind], settings_of(kind))), kinds))
    text = "".join(path.read_text(encoding="utf-8") for path in pathlib.Path(complaints).glob("*.log"))
    print("valgrind, %d runs: %s" % (len(kinds), text or "silent"))
    shutil.rmtree(complaints)
    return not text


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--only", default="", metavar="WORD")
    parser.add_argument("--valgrind", action="store_true")
    options = parser.parse_args()
    good = check_by_valgrind(options.jobs) if options.valgrind else check(options.jobs, options.only)
    sys.exit(0 if good else 1)


if __name__ == "__main__":
    main()
