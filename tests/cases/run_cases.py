#!/usr/bin/env python3
"""Runs the reference cases and compares every check of expected.json with the printed document.

usage: run_cases.py PATH_TO_TOVCORE [--case NAME] [--id PATTERN] [--format xml|html|both] [--update] [--verbose]

Each pair of project and settings runs once, in an empty directory. Checks that are not reached yet stand in
expected_failures.txt as lines 'case id', sorted. Exit status 1 when a check fails that is not listed, when a listed
check passes, or when a line of the list names no check.
"""
import argparse
import concurrent.futures
import fnmatch
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

from case_checks import extractor, judge, read_cases  # noqa: E402
from case_document import Document  # noqa: E402

SUFFIX = {"xml": ".xml", "html": ".htm"}


def result_document(results, stem, suffix):
    """Path of the result document in the results directory, or None."""
    wanted = results / (stem + suffix)
    if wanted.is_file():
        return wanted
    others = [p for p in sorted(results.glob("*" + suffix)) if not p.stem.endswith(("_main", "_tree"))]
    return others[0] if len(others) == 1 else None


def run_project(program, folder, project, settings, form, limit, keep=None):
    """Runs the program on copies of the two files in an empty directory: (Document or None, seconds, complaint or None)."""
    work = pathlib.Path(tempfile.mkdtemp(prefix="tov_case_"))
    begun = time.monotonic()
    try:
        shutil.copy(folder / project, work / project)
        text = (folder / settings).read_text(encoding="latin-1")
        text = re.sub(r"(?m)^XMLOutput=.*$", f"XMLOutput={1 if form == 'xml' else 0}", text)
        (work / settings).write_text(text, encoding="latin-1")
        complaint = None
        try:
            done = subprocess.run([str(program), project, settings, "run_silent"], cwd=work, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=limit, check=False)
            if done.returncode != 0:
                complaint = f"exit status {done.returncode} {done.stderr.decode('latin-1').strip()[-300:]}"
        except subprocess.TimeoutExpired:
            complaint = f"stopped after {limit} s"
        stem = project.rsplit(".", 1)[0]
        path = result_document(work / (stem + ".res"), stem, SUFFIX[form])
        if path is None:
            return None, time.monotonic() - begun, complaint or "no result document"
        markup = path.read_text(encoding="latin-1")
        if keep is not None:
            keep.mkdir(parents=True, exist_ok=True)
            name = ".".join((folder.name, stem, settings.rsplit(".", 1)[0])) + SUFFIX[form]
            (keep / name).write_text(markup, encoding="latin-1")
        return Document(markup, (folder / project).read_text(encoding="latin-1")), time.monotonic() - begun, complaint
    except OSError as error:
        return None, time.monotonic() - begun, str(error)
    finally:
        shutil.rmtree(work, ignore_errors=True)


def read_list(path):
    """The set of (case, id) in the list of expected failures."""
    if not path.exists():
        return set()
    lines = [line.split("#")[0].split() for line in path.read_text(encoding="utf-8").splitlines()]
    return {tuple(words) for words in lines if len(words) == 2}


def write_list(path, names):
    path.write_text("".join(f"{case} {name}\n" for case, name in sorted(names)), encoding="utf-8")


def select(checks, case, pattern):
    return [c for c in checks if fnmatch.fnmatch(c["case"], case or "*") and fnmatch.fnmatch(c["id"], pattern or "*")]


def arguments(argv):
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("--case", help="cases to run (shell pattern)")
    parser.add_argument("--id", help="checks to compare (shell pattern)")
    parser.add_argument("--format", choices=("xml", "html", "both"), default="xml", help="form of the documents")
    parser.add_argument("--jobs", type=int, default=2, help="runs at the same time")
    parser.add_argument("--limit", type=float, default=1000, help="seconds that a run may take")
    parser.add_argument("--update", action="store_true", help="write the list of expected failures anew")
    parser.add_argument("--verbose", action="store_true", help="print what was found and expected for every check")
    parser.add_argument("--keep", type=pathlib.Path, help="directory in which the documents are left")
    parser.add_argument("--folder", type=pathlib.Path, default=HERE, help="directory of the cases")
    return parser.parse_args(argv)


def run_all(options, checks):
    """Results of all needed runs: {(case, project, settings, form): (Document or None, seconds, complaint)}."""
    forms = ("xml", "html") if options.format == "both" else (options.format,)
    runs = sorted({(c["case"], c["project"], c["run"], form) for c in checks for form in forms})
    program = options.program.resolve()
    with concurrent.futures.ThreadPoolExecutor(max(1, options.jobs)) as pool:
        futures = {run: pool.submit(run_project, program, options.folder / run[0], *run[1:], options.limit, options.keep)
                   for run in runs}
        return {run: future.result() for run, future in futures.items()}


def judge_all(options, checks, results):
    """{(case, id): None or reason of the failure}; a check passes when it passes in every form."""
    verdicts = {}
    for check in checks:
        name = (check["case"], check["id"])
        for run, (document, _, complaint) in results.items():
            if run[:3] != (check["case"], check["project"], check["run"]):
                continue
            passed, found, reason = judge(check, document)
            if document is None and complaint:
                reason = complaint
            if options.verbose:
                print(f"{'ok  ' if passed else 'FAIL'} {' '.join(name)} [{run[3]}]\n     expected {check['value']}")
                print(f"     found    {found}" + ("" if passed else f"\n     {reason}"))
            verdicts[name] = verdicts.get(name) or (None if passed else reason)
    return verdicts


def main(argv=None):
    options = arguments(argv)
    everything = read_cases(options.folder)
    checks = select(everything, options.case, options.id)
    unread = [f"{c['case']} {c['id']}" for c in checks if extractor(c) is None]
    results = run_all(options, [c for c in checks if extractor(c) is not None])
    for run, (_, seconds, complaint) in sorted(results.items()):
        if complaint or options.verbose:
            print(f"run {run[0]}/{run[1]} {run[2]} [{run[3]}]: {seconds:.1f} s{': ' + complaint if complaint else ''}")
    verdicts = judge_all(options, [c for c in checks if extractor(c) is not None], results)

    path = options.folder / "expected_failures.txt"
    listed = read_list(path)
    known = {(c["case"], c["id"]) for c in everything}
    failed = {name for name, reason in verdicts.items() if reason is not None}
    passed = set(verdicts) - failed
    if options.update:
        listed = ((listed & known) - set(verdicts)) | failed
        write_list(path, listed)
    faults = [f"no extractor: {name}" for name in unread]
    faults += [f"listed, but no such check: {' '.join(name)}" for name in sorted(listed - known)]
    faults += [f"passes, but is listed as an expected failure: {' '.join(name)}" for name in sorted(passed & listed)]
    faults += [f"fails: {' '.join(name)}: {verdicts[name]}" for name in sorted(failed - listed)]
    for fault in faults:
        print(fault)
    print(f"{len(passed)} passed, {len(failed)} failed")
    print(f"{len(failed & listed)} expected failures")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
