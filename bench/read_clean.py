#!/usr/bin/env python3
"""Cost of cleaning and reading a large project, against a floor measured in the same run.

    read_clean.py TOVCORE [--sequences 5000] [--sites 10000] [--individuals 2000] [--loci 500] [--repeats 3]

Two generated projects: DNA haplotypes, and microsatellite genotypes of unknown phase. No task is asked for, so that a
run cleans and reads the project, checks it and writes an empty document. The floor is `wc` on the same file with
LC_ALL=C. Processor times are user and system seconds of the child, the least of the repeats; memory is the peak
resident set. Prints one line a project with both figures, their ratio and the limit; the status is 1 beyond a limit.
"""
import argparse
import os
import random
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
from support import read, set_keys, write  # noqa: E402

DEFAULT_SETTINGS = os.path.join(HERE, "..", "examples", "default.tvs")
PROFILE = ('[Profile]\n\tTitle="%s"\n\tNbSamples=%d\n\tDataType=%s\n\tGenotypicData=%d\n\tGameticPhase=0\n'
           "\tLocusSeparator=%s\n\tRecessiveData=0\n\tMissingData='?'\n\n[Data]\n\n[[Samples]]\n\n")


def dna_project(path, sequences, sites):
    """Haplotypes in ten samples: one ancestor, a few substitutions in each."""
    generator = random.Random(1)
    ancestor = [generator.choice("ACGT") for _ in range(sites)]
    samples = min(10, sequences)
    with open(path, "w") as file:
        file.write(PROFILE % ("Generated sequences", samples, "DNA", 0, "NONE"))
        for s in range(samples):
            members = range(s, sequences, samples)
            file.write('\tSampleName="Sample %d"\n\tSampleSize=%d\n\tSampleData={\n' % (s + 1, len(members)))
            for i in members:
                sequence = ancestor[:]
                for _ in range(20):
                    sequence[generator.randrange(sites)] = generator.choice("ACGT")
                file.write("\t\tseq%05d\t1\t%s\n" % (i, "".join(sequence)))
            file.write("\t}\n")


def microsatellite_project(path, individuals, loci):
    """Diploids in ten samples, eight alleles a locus, some missing."""
    generator = random.Random(2)
    alleles = [str(100 + 2 * i) for i in range(8)] + ["?"]
    weights = [12] * 8 + [1]
    samples = min(10, individuals)
    with open(path, "w") as file:
        file.write(PROFILE % ("Generated genotypes", samples, "MICROSAT", 1, "WHITESPACE"))
        for s in range(samples):
            members = range(s, individuals, samples)
            file.write('\tSampleName="Sample %d"\n\tSampleSize=%d\n\tSampleData={\n' % (s + 1, len(members)))
            for i in members:
                for head in ("\t\tind%05d\t1\t" % i, "\t\t\t"):
                    file.write(head + " ".join(generator.choices(alleles, weights, k=loci)) + "\n")
            file.write("\t}\n")


def cost(command, directory):
    """Processor seconds and peak resident bytes of a command."""
    environment = dict(os.environ, LC_ALL="C")
    process = subprocess.Popen(command, cwd=directory, env=environment, stdout=subprocess.DEVNULL,
                               stdin=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit("%s ended with status %d" % (command[0], process.returncode))
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def held(label, command, source, directory, repeats, time_limit, memory_limit, check):
    """Measures a command against `wc` on its source file, and prints a line of both. Returns whether limits were held.

    check  is called once the command has run, and ends the benchmark when it did not do its work
    """
    size = os.path.getsize(os.path.join(directory, source))
    floor = min(cost(["wc", source], directory)[0] for _ in range(repeats))
    runs = [cost(command, directory) for _ in range(repeats)]
    check()
    seconds, memory = min(run[0] for run in runs), max(run[1] for run in runs)
    good = seconds <= time_limit * floor and memory <= memory_limit * size
    print("%s: %.1f MB, %.2f s, wc %.2f s, ratio %.1f (limit %g); peak %.1f MB, %.1f times the file (limit %g): %s"
          % (label, size / 1e6, seconds, floor, seconds / floor, time_limit, memory / 1e6, memory / size,
             memory_limit, "good" if good else "BEYOND THE LIMIT"))
    return good


def measure(program, name, time_limit, memory_limit, repeats, directory):
    project = name + ".tvp"
    write(os.path.join(directory, "s.tvs"), set_keys(read(DEFAULT_SETTINGS), {"TaskNumber": 0}))

    def check():
        log = read(os.path.join(directory, name + ".res", "Tovenia_log.txt"))
        if "Successful run of " + project not in log:
            raise SystemExit("the run of %s failed:\n%s" % (project, log[-2000:]))

    return held(name, [program, project, "s.tvs", "run_silent"], project, directory, repeats, time_limit, memory_limit,
                check)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--sequences", type=int, default=5000)
    parser.add_argument("--sites", type=int, default=10000)
    parser.add_argument("--individuals", type=int, default=2000)
    parser.add_argument("--loci", type=int, default=500)
    parser.add_argument("--repeats", type=int, default=3)
    arguments = parser.parse_args()
    program = os.path.abspath(arguments.program)
    with tempfile.TemporaryDirectory(prefix="tovcore_bench_") as directory:
        dna_project(os.path.join(directory, "sequences.tvp"), arguments.sequences, arguments.sites)
        microsatellite_project(os.path.join(directory, "genotypes.tvp"), arguments.individuals, arguments.loci)
        results = [measure(program, "sequences", 12, 4, arguments.repeats, directory),
                   measure(program, "genotypes", 20, 12, arguments.repeats, directory)]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
