"""Small made-up projects, one a kind of data, with settings that ask for every analysis.

    every_task.py DIRECTORY

writes them all into DIRECTORY as kind.tvp and kind.tvs. The numbers of steps, permutations and simulations are small, so
that a run takes a second or two; the data are drawn from a fixed seed.
"""
import os
import random
import sys

from support import set_keys, settings_text, write

SAMPLES = ("North lake", "North bay", "South hill", "South delta", "East fen")
GROUPS = (("North lake", "North bay"), ("South hill", "South delta", "East fen"))

ALL_TASKS = 2 ** 17 - 1
SETTINGS = {
    "TaskNumber": ALL_TASKS, "ComputeSumStatsWithinGroups": 1, "EliminateRedondHaplodefs": 1,
    "AllowedLevelOfMissingData": "0.200000", "KeepNullDistrib": 1, "MakeHWExactTest": 1, "TypeOfTestHW": 2,
    "MarkovChainStepsHW": 2000, "MarkovChainDememorisationStepsHW": 600, "MakeExactTestLD": 1,
    "MarkovChainStepsLD": 600, "MarkovChainDememorisationStepsLD": 600, "PrintFlagHistogramLD": 1,
    "InitialCondEMLD": 2, "ComputeDvalues": 1, "ComputeStandardDiversityIndices": 1, "ComputeAllAlleleFreqs": 1,
    "ComputeTheta": 15, "PrintHaplDistMat": 1, "PrintPopDistMat": 1, "PrintMinSpannNetworkPop": 1,
    "MismatchDemogExp": 1, "MismatchSpatialExp": 1, "NumBootExpDem": 20, "ComputeAllHaplotypesEM": 1,
    "ComputeAllAllelesEM": 1, "InitialConditionsEM": 3, "NumBootstrapReplicatesEM": 3, "NumInitCondBootstrapEM": 2,
    "ComputeAllSubHaplotypesEM": 1, "EMUseZipper": 0, "GibbsInferGamPhase": 1, "GibbsBurnIn": 200,
    "GibbsSamplingInterval": 10, "GibbsNumSamples": 20, "HaplAMOVA": 1, "LocByLocAMOVA": 1, "PopSpecificFST": 1,
    "PopSpecificFIS": 1, "TestSignificanceAMOVA": 1, "NumPermutationsAMOVA": 50, "ComputeDistanceMatrixAMOVA": 1,
    "PrintDistanceMatrix": 1, "PrintMinSpannNetworkGlob": 1, "TestSignificancePairewiseFST": 1,
    "NumPermutationsFST": 50, "ComputePairwiseFST": 1, "PrintFstVals": 1, "PrintConcestryCoeff": 1,
    "PrintSlatkinsDist": 1, "PrintMissIntermatchs": 1, "UnequalPopSizeDiv": 1, "NumPermutPopDiff": 1000,
    "NumDememoPopDiff": 500, "PrintHistoPopDiff": 1, "DetectSelectedLoci": 1, "NumberOfDemesForFDist2": 20,
    "NumberOfGroupsForFDist2": 4, "NumberOfSimsForFDist2": 200, "EwensWattersonHomozygosityTest": 1,
    "NumIterationsNeutralityTests": 100, "NumSimulFuTest": 50, "NumPermMantel": 50,
}


def _profile(title, **keys):
    lines = ["[Profile]", '\tTitle="%s"' % title, "\tNbSamples=%d" % len(SAMPLES)]
    return lines + ["\t%s=%s" % item for item in keys.items()] + ["", "[Data]", ""]


def _structure():
    lines = ["", "[[Structure]]", "", '\tStructureName="Regions"', "\tNbGroups=%d" % len(GROUPS)]
    for group in GROUPS:
        lines += ["\tGroup={"] + ['\t\t"%s"' % name for name in group] + ["\t}"]
    return lines


def _mantel(dice):
    """Distances between the samples, to be compared with the pairwise FST."""
    lines = ["", "[[Mantel]]", "", "\tMatrixSize=%d" % len(SAMPLES), "\tMatrixNumber=2", '\tYMatrix="fst"',
             "\tYMatrixLabels={"] + ['\t\t"%s"' % name for name in SAMPLES] + ["\t}", "\tDistMatMantel={"]
    for row in range(1, len(SAMPLES) + 1):
        lines.append("\t\t" + " ".join(["%.2f" % dice.uniform(1, 9) for _ in range(row - 1)] + ["0.00"]))
    return lines + ["\t}", "\tUsedYMatrixLabels={"] + ['\t\t"%s"' % name for name in SAMPLES] + ["\t}"]


def _pool(dice, loci, alleles, shift):
    """Haplotypes of one sample: frequencies of the alleles differ with `shift`, loci are linked in blocks of two."""
    founders = [[alleles(locus)[(dice.randrange(len(alleles(locus))) + shift) % len(alleles(locus))]
                 for locus in range(loci)] for _ in range(5)]
    weights = [5, 3, 2, 1, 1]
    if shift:
        founders[0] = list(founders[1])
    return lambda: list(dice.choices(founders, weights)[0])


def _haplotypic(dice, draw, join, copies):
    counts = {}
    for _ in range(copies):
        text = join(draw())
        counts[text] = counts.get(text, 0) + 1
    return counts


def _samples_haplotypic(dice, loci, alleles, join, missing=None, copies=14):
    lines = ["[[Samples]]", ""]
    common = _pool(dice, loci, alleles, 0)
    for number, name in enumerate(SAMPLES):
        own = _pool(dice, loci, alleles, number)

        def draw():
            values = common() if dice.random() < 0.6 else own()
            if dice.random() < 0.3:
                locus = dice.randrange(loci)
                values[locus] = dice.choice(alleles(locus))
            if missing and dice.random() < 0.1:
                values[dice.randrange(loci)] = missing
            return values

        counts = _haplotypic(dice, draw, join, copies)
        lines += ['\tSampleName="%s"' % name, "\tSampleSize=%d" % copies, "\tSampleData={"]
        lines += ["\t\t%d_%d %d %s" % (number + 1, i + 1, count, text) for i, (text, count) in enumerate(counts.items())]
        lines += ["\t}", ""]
    return lines


def _samples_genotypic(dice, loci, alleles, join, missing=None, individuals=12):
    lines = ["[[Samples]]", ""]
    common = _pool(dice, loci, alleles, 0)
    for number, name in enumerate(SAMPLES):
        own = _pool(dice, loci, alleles, number)
        lines += ['\tSampleName="%s"' % name, "\tSampleSize=%d" % individuals, "\tSampleData={"]
        for i in range(individuals):
            first, second = (common() if dice.random() < 0.6 else own() for _ in range(2))
            if dice.random() < 0.5:
                locus = dice.randrange(loci)
                first[locus] = dice.choice(alleles(locus))
            if missing and dice.random() < 0.1:
                locus = dice.randrange(loci)
                first[locus] = second[locus] = missing
            lines += ["\t\t%d_%d 1 %s" % (number + 1, i + 1, join(first)), "\t\t        %s" % join(second)]
        lines += ["\t}", ""]
    return lines


def _bases(locus):
    return "AG" if locus % 3 else "CT"


def _sites(_locus):
    return "01"


def _repeats(locus):
    return [str(100 + 2 * k + locus) for k in range(5)]


def _letters(locus):
    return ["A%d" % locus, "B%d" % locus, "C%d" % locus]


def _recessive(locus):
    return ["nul", "x%d" % locus, "y%d" % locus]


def _frequencies(dice):
    lines = ["[[Samples]]", ""]
    for number, name in enumerate(SAMPLES):
        counts = [dice.randrange(0 if k else 1, 9) for k in range(6)]
        lines += ['\tSampleName="%s"' % name, "\tSampleSize=%d" % sum(counts), "\tSampleData={"]
        lines += ["\t\thap%d %d" % (k, count) for k, count in enumerate(counts) if count] + ["\t}", ""]
    return lines


def _with_list(lines):
    """The same samples with the definitions of their haplotypes in a list."""
    names, result, data = {}, [], False
    for line in lines:
        words = line.split()
        if data and len(words) == 3:
            line = "\t\t%s %s" % (names.setdefault(words[2], "H%02d" % len(names)), words[1])
        data = line.endswith("SampleData={") or (data and line.strip() != "}")
        result.append(line)
    head = ["[[HaplotypeDefinition]]", "", '\tHaplListName="segment"', "\tHaplList={"]
    return head + ["\t\t%s %s" % (name, text) for text, name in names.items()] + ["\t}", ""] + result


def projects():
    """Text of each project by the name of its kind."""
    haplotypic = {"GenotypicData": 0, "MissingData": "'?'"}
    genotypic = {"GenotypicData": 1, "GameticPhase": 0, "RecessiveData": 0, "MissingData": "'?'"}
    phased = dict(genotypic, GameticPhase=1)
    recessive = dict(genotypic, RecessiveData=1, RecessiveAllele='"nul"')
    joined, blank = {"LocusSeparator": "NONE"}, {"LocusSeparator": "WHITESPACE"}

    def sequence(values):
        return "".join(values)

    def words(values):
        return " ".join(values)

    dice = random.Random(20260301)
    made = {
        "dna": (dict(DataType="DNA", **haplotypic, **joined),
                _samples_haplotypic(dice, 16, _bases, sequence, "?")),
        "dna_list": (dict(DataType="DNA", **haplotypic, **joined),
                     _with_list(_samples_haplotypic(dice, 16, _bases, sequence, "-"))),
        "dna_phased": (dict(DataType="DNA", **phased, **joined), _samples_genotypic(dice, 10, _bases, sequence, "?")),
        "dna_unphased": (dict(DataType="DNA", **genotypic, **joined), _samples_genotypic(dice, 6, _bases, sequence, "?")),
        "rflp": (dict(DataType="RFLP", **haplotypic, **joined), _samples_haplotypic(dice, 20, _sites, sequence, "?")),
        "rflp_unphased": (dict(DataType="RFLP", **genotypic, **joined),
                          _samples_genotypic(dice, 6, _sites, sequence, "?")),
        "microsat": (dict(DataType="MICROSAT", **haplotypic, **blank), _samples_haplotypic(dice, 5, _repeats, words, "?")),
        "microsat_phased": (dict(DataType="MICROSAT", **phased, **blank),
                            _samples_genotypic(dice, 5, _repeats, words, "?")),
        "microsat_unphased": (dict(DataType="MICROSAT", **genotypic, **blank),
                              _samples_genotypic(dice, 5, _repeats, words, "?")),
        "standard": (dict(DataType="STANDARD", **haplotypic, **blank), _samples_haplotypic(dice, 6, _letters, words, "?")),
        "standard_phased": (dict(DataType="STANDARD", **phased, **blank),
                            _samples_genotypic(dice, 5, _letters, words, "?")),
        "standard_unphased": (dict(DataType="STANDARD", **genotypic, **blank),
                              _samples_genotypic(dice, 4, _letters, words, "?")),
        "recessive": (dict(DataType="STANDARD", **recessive, **blank), _samples_genotypic(dice, 3, _recessive, words)),
        "frequency": ({"DataType": "FREQUENCY", "GenotypicData": 0, "Frequency": "ABS"}, _frequencies(dice)),
    }
    return {kind: "\n".join(_profile("All of " + kind, **profile) + samples + _structure() + _mantel(dice)) + "\n"
            for kind, (profile, samples) in made.items()}


def settings_of(kind, **keys):
    """Settings that ask for everything that this kind of data allows."""
    wanted = dict(SETTINGS)
    if kind == "recessive":
        wanted["RecessiveAllelesEM"] = 1
    if kind.endswith("unphased") or kind == "recessive":
        wanted["IncludeIndividualLevel"] = 1
    wanted.update(keys)
    return set_keys(settings_text(), wanted)


def main():
    directory = sys.argv[1]
    os.makedirs(directory, exist_ok=True)
    for kind, text in projects().items():
        write(os.path.join(directory, kind + ".tvp"), text)
        write(os.path.join(directory, kind + ".tvs"), settings_of(kind))


if __name__ == "__main__":
    main()
