#!/usr/bin/env python3
"""How often the 95 % interval of tau holds the true value: samples simulated under a sudden expansion, run by hand.

usage: coverage_expansion.py PATH_TO_TOVCORE [samples] [bootstraps]

Each sample is a coalescent of 50 gene copies with tau = 5, theta0 = 1, theta1 = 50 and infinitely many sites, made
here by a simulation of its own. Prints the estimates, and the share of intervals that hold tau.
"""
import math
import os
import random
import re
import subprocess
import sys
import tempfile

TAU, THETA0, THETA1, COPIES = 5.0, 1.0, 50.0, 50


def poisson(generator, mean):
    """Poisson deviate by multiplication of uniforms, in pieces that do not underflow."""
    count = 0
    while mean > 0.0:
        piece = min(mean, 500.0)
        mean -= piece
        limit, product = math.exp(-piece), generator.random()
        while product > limit:
            count += 1
            product *= generator.random()
    return count


def mutated_copies(generator):
    """One set of gene copies a mutation: those below the branch that carries it."""
    change, ratio = TAU / THETA1, THETA0 / THETA1
    lineages = [(0.0, frozenset([i])) for i in range(COPIES)]
    time, sites = 0.0, []
    while len(lineages) > 1:
        k = len(lineages)
        wait = generator.expovariate(k * (k - 1) / 2.0)
        if time < change < time + wait:
            wait = change - time + (time + wait - change) * ratio
        elif time >= change:
            wait *= ratio
        time += wait
        generator.shuffle(lineages)
        pair = [lineages.pop(), lineages.pop()]
        for born, below in pair:
            sites += [below] * poisson(generator, 0.5 * THETA1 * (time - born))
        lineages.append((time, pair[0][1] | pair[1][1]))
    return sites


def project(generator, samples):
    drawn = [mutated_copies(generator) for _ in range(samples)]
    length = max(len(sites) for sites in drawn) + 1
    lines = ["[Profile]", 'Title="Sudden expansion"', "NbSamples=%d" % samples, "DataType=DNA", "GenotypicData=0",
             "LocusSeparator=NONE", "MissingData='?'", "[Data]", "[[Samples]]"]
    for number, sites in enumerate(drawn):
        lines += ['SampleName="S%d"' % number, "SampleSize=%d" % COPIES, "SampleData={"]
        for copy in range(COPIES):
            text = "".join("G" if copy in below else "A" for below in sites)
            lines.append("c%d_%d 1 %s" % (number, copy, text + "A" * (length - len(text))))
        lines.append("}")
    return "\n".join(lines) + "\n"


def main():
    program = os.path.abspath(sys.argv[1])
    samples = int(sys.argv[2]) if len(sys.argv) > 2 else 50
    bootstraps = int(sys.argv[3]) if len(sys.argv) > 3 else 200
    source = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "examples", "default.tvs")
    with open(source, encoding="latin-1") as handle:
        settings = handle.read()
    for key, value in dict(TaskNumber=4, MismatchDemogExp=1, NumBootExpDem=bootstraps).items():
        settings = re.sub(r"(?m)^%s=.*$" % key, "%s=%s" % (key, value), settings, count=1)
    with tempfile.TemporaryDirectory() as folder:
        for name, text in (("p.tvp", project(random.Random(1), samples)), ("p.tvs", settings)):
            with open(os.path.join(folder, name), "w", encoding="latin-1") as handle:
                handle.write(text)
        subprocess.run([program, "p.tvp", "p.tvs", "run_silent"], cwd=folder, check=True, stdout=subprocess.DEVNULL)
        with open(os.path.join(folder, "p.res", "p.xml"), encoding="latin-1") as handle:
            document = handle.read()
    rows = [tuple(map(float, row)) for row in re.findall(r" Tau: +([-0-9.]+) +([-0-9.]+) +([-0-9.]+)", document)]
    held = sum(low <= TAU <= high for _, low, high in rows)
    mean = sum(row[0] for row in rows) / len(rows)
    print("tau %.1f: mean estimate %.3f, in %d of %d intervals of 95 %%" % (TAU, mean, held, len(rows)))


if __name__ == "__main__":
    main()
