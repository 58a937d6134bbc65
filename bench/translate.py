#!/usr/bin/env python3
"""Cost of translating a large Genepop file, against a floor measured in the same run.

    translate.py TOVCORE [--individuals 5000] [--loci 1000] [--repeats 3]

One generated file, translated into a project, into Biosys and into Phylip, and the project back into Genepop. The floor
is `wc` on the source with LC_ALL=C. Processor times are user and system seconds of the child, the least of the repeats;
memory is the peak resident set. Prints one line a translation with both figures, their ratio and the limit; the status
is 1 beyond a limit.
"""
import argparse
import os
import random
import sys
import tempfile

from read_clean import held

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
from support import read, write  # noqa: E402

TIME_LIMIT = 15
MEMORY_LIMIT = 6


def genepop_file(path, individuals, loci):
    """Diploids in ten samples, eight alleles a locus, some missing."""
    generator = random.Random(3)
    alleles = ["%02d" % a for a in range(1, 9)]
    pairs = [a + b for a in alleles for b in alleles] + ["0000"] * 2
    samples = min(10, individuals)
    with open(path, "w") as file:
        file.write("Generated genotypes\n" + "".join("Locus%04d\n" % (l + 1) for l in range(loci)))
        for s in range(samples):
            file.write("Pop\n")
            for i in range(s, individuals, samples):
                file.write("ind%05d , %s\n" % (i, " ".join(generator.choices(pairs, k=loci))))


def measure(program, source_format, target_format, source, target, repeats, directory):
    lines = ["", "translate", source_format, target_format, source, target] + ["1"] * (source_format == "Genepop")
    write(os.path.join(directory, "tov_run.txt"), "\n".join(lines) + "\n")

    def check():
        log = read(os.path.join(directory, "Tovenia_log.txt"))
        if "    Writing  %s... done." % target not in log:
            raise SystemExit("the translation into %s failed:\n%s" % (target_format, log[-2000:]))

    return held("%s to %s" % (source_format, target_format), [program, "run_silent"], source, directory, repeats,
                TIME_LIMIT, MEMORY_LIMIT, check)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--individuals", type=int, default=5000)
    parser.add_argument("--loci", type=int, default=1000)
    parser.add_argument("--repeats", type=int, default=3)
    arguments = parser.parse_args()
    program = os.path.abspath(arguments.program)
    with tempfile.TemporaryDirectory(prefix="tovcore_bench_") as directory:
        genepop_file(os.path.join(directory, "in.gen"), arguments.individuals, arguments.loci)
        results = [measure(program, *row, arguments.repeats, directory)
                   for row in (("Genepop", "Tovenia", "in.gen", "out.tvp"), ("Genepop", "Biosys", "in.gen", "out.bio"),
                               ("Genepop", "Phylip", "in.gen", "out.phy"),
                               ("Tovenia", "Genepop", "out.tvp", "out.gen"))]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
