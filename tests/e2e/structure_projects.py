"""Projects with a genetic structure, and the numbers of their documents."""
import random
import re


def structure_lines(groups):
    lines = ["[[Structure]]", 'StructureName="Test"', "NbGroups=%d" % len(groups)]
    for group in groups:
        lines += ["Group={"] + ['"%s"' % name for name in group] + ["}"]
    return lines


def project(samples, structure, genotypic=0, extra="", **profile):
    """Text of a STANDARD project: samples is a list of (name, list of definitions)."""
    keys = dict(Title='"Structure"', NbSamples=len(samples), DataType="STANDARD", GenotypicData=genotypic,
                LocusSeparator="WHITESPACE", MissingData="'?'")
    if genotypic:
        keys["GameticPhase"] = 0
    keys.update(profile)
    lines = ["[Profile]"] + ["%s=%s" % item for item in keys.items()] + ["[Data]", "[[Samples]]"]
    for name, definitions in samples:
        lines += ['SampleName="%s"' % name, "SampleSize=%d" % len(definitions), "SampleData={"]
        for number, definition in enumerate(definitions):
            if genotypic:
                lines += ["i%d 1 %s" % (number, definition[0]), definition[1]]
            else:
                lines += ["h_%s 1 %s" % (definition.replace(" ", "_").replace("?", "m"), definition)]
        lines += ["}"]
    if structure:
        lines += structure_lines(structure)
    return "\n".join(lines) + "\n" + extra


def individuals(seed, loci, number, shift=0.0):
    generator = random.Random(seed)
    return [[" ".join("A" if generator.random() < 0.4 + shift else "B" for _ in range(loci)) for _ in range(2)]
            for _ in range(number)]


def value_after(text, label):
    return float(re.search(re.escape(label) + r"\s*(-?[0-9.]+)", text).group(1))


# --- Small structures whose analyses are known ---

# Four samples of five haplotypes, with the distances between these.
KNOWN_HAPLOTYPES = (("s0", (("H0", 5), ("H1", 3), ("H2", 1))),
                    ("s1", (("H0", 3), ("H1", 3), ("H3", 1), ("H2", 1))),
                    ("s2", (("H2", 3), ("H3", 1), ("H4", 2), ("H0", 3), ("H1", 1))),
                    ("s3", (("H2", 2), ("H4", 4), ("H1", 2), ("H0", 3))))
KNOWN_DISTANCES = ((0,), (1, 0), (3, 2, 0), (2, 1, 1, 0), (4, 3, 2, 3, 0))
# Five samples of individuals, two sizes each.
KNOWN_GENOTYPES = ("00 01 11 02 00 10", "01 00 12 23", "11 01 12 00 11", "23 03 22 11 33 01 02", "22 12 03 11")


def known_haplotypes(groups, matrix=True, extra=""):
    """FREQUENCY project of KNOWN_HAPLOTYPES, with or without its matrix of distances."""
    lines = ["[Profile]", 'Title="Known"', "NbSamples=4", "DataType=FREQUENCY", "GenotypicData=0", "[Data]"]
    if matrix:
        lines += ["[[DistanceMatrix]]", 'MatrixName="D"', "MatrixSize=5", "LabelPosition=LINE", "MatrixData={",
                  " ".join('"H%d"' % k for k in range(5))]
        lines += [" ".join(map(str, row)) for row in KNOWN_DISTANCES] + ["}"]
    lines += ["[[Samples]]"]
    for name, haplotypes in KNOWN_HAPLOTYPES:
        lines += ['SampleName="%s"' % name, "SampleSize=%d" % sum(count for _, count in haplotypes), "SampleData={"]
        lines += ["%s %d" % haplotype for haplotype in haplotypes] + ["}"]
    return "\n".join(lines + structure_lines(groups)) + "\n" + extra


def known_genotypes(groups, samples=range(5), phase=0):
    """MICROSAT project of some of KNOWN_GENOTYPES."""
    lines = ["[Profile]", 'Title="Known"', "NbSamples=%d" % len(samples), "DataType=MICROSAT", "GenotypicData=1",
             "GameticPhase=%d" % phase, "LocusSeparator=WHITESPACE", "MissingData='?'", "[Data]", "[[Samples]]"]
    for sample in samples:
        genotypes = KNOWN_GENOTYPES[sample].split()
        lines += ['SampleName="s%d"' % sample, "SampleSize=%d" % len(genotypes), "SampleData={"]
        for number, genotype in enumerate(genotypes):
            lines += ["i%d_%d 1 1%s" % (sample, number, genotype[0]), "1%s" % genotype[1]]
        lines += ["}"]
    return "\n".join(lines + structure_lines(groups)) + "\n"


def microsatellites(seed, samples, loci, phase=0, groups=None):
    """MICROSAT project: samples is a list of (name, individuals); the first locus has one allele."""
    generator = random.Random(seed)
    drawn = []
    for name, number in samples:
        base = [20 + generator.randint(0, 2) for _ in range(loci)]

        def chromosome(base=base):
            return " ".join(["9"] + [str(size + generator.choice((0, 0, 0, 1, -1, 2))) for size in base[1:]])

        drawn.append((name, [[chromosome(), chromosome()] for _ in range(number)]))
    return project(drawn, groups, genotypic=1, DataType="MICROSAT", GameticPhase=phase)


def mantel_section(kind, matrices, labels, used=None):
    """Section [[Mantel]]: lower triangles with their diagonal, the given Y first when the kind is custom."""
    lines = ["[[Mantel]]", "MatrixSize=%d" % len(labels), "MatrixNumber=%d" % (len(matrices) + (kind != "custom")),
             'YMatrix="%s"' % kind, "YMatrixLabels={ %s }" % " ".join('"%s"' % name for name in labels)]
    for matrix in matrices:
        lines += ["DistMatMantel={"] + [" ".join(map(str, row)) for row in matrix] + ["}"]
    return "\n".join(lines + ["UsedYMatrixLabels={ %s }" % " ".join('"%s"' % name for name in used or labels)]) + "\n"
