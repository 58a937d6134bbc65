"""Detection of loci under selection: every simulated locus, P-value, quantile and text, computed once more."""
import os
import random
import re
import unittest

import island_loci
from support import RunTestCase, settings_text
from test_selection import project

KINDS = {"DNA": island_loci.NUCLEOTIDES, "RFLP": island_loci.BINARY, "MICROSAT": island_loci.STEPWISE,
         "STANDARD": island_loci.INFINITE_ALLELES}
NOTE = "(if P-value=2 -> uncomputed value due to Obs.Het.BP out. of simulated bounds)"
CLOSING = """
Additional results can be found in files "fdist2_ObsOut.txt" and  "fdist2_simOut.txt"
File "fdist2_ObsOut.txt" contains observed F-statistics and their associated p-values
File "fdist2_simOut.txt" contains all simulated heterozygosities and F-statistics
These files can be used to produce graphical representations of observed  vs. simulated data

"""


# --- F-statistics and heterozygosity of a locus, by pairs of gene copies ---

def ratio(a, b):
    return a / b if b else 0.0


def fixation(samples, groups, distance, individuals=False):
    """FST, FSC and FCT; groups are lists of sample indices, FSC and FCT are 0 with one group."""
    n = [len(sample) for sample in samples]
    number, total = sum(n), sum(n) / 2.0 if individuals else float(sum(n))

    def among(p, q):
        if p == q:
            return sum(distance(a, b) for i, a in enumerate(samples[p]) for b in samples[p][:i])
        return sum(distance(a, b) for a in samples[p] for b in samples[q])

    def over(members):
        return sum(among(p, q) for i, p in enumerate(members) for q in members[:i + 1])

    everyone = [p for group in groups for p in group]
    in_individuals = 0.5 * sum(distance(s[k], s[k + 1]) for s in samples for k in range(0, len(s), 2))
    within = sum(among(p, p) / n[p] for p in everyone)
    sizes = [sum(n[p] for p in group) for group in groups]
    in_groups = sum(over(group) / size for group, size in zip(groups, sizes))
    squares = sum(x * x for x in n)
    by_group = sum(sum(n[p] ** 2 for p in group) / size for group, size in zip(groups, sizes))
    populations, several = len(everyone), len(groups) > 1
    lowest = in_individuals / int(total) if individuals else within / (int(total) - populations)
    sample_level = (within - in_individuals) / (int(total) - populations) if individuals else lowest
    inner = 0.5 * (sample_level - lowest) + lowest if individuals else lowest
    if not several:
        among_samples = (over(everyone) / number - within) / (populations - 1)
        va = (among_samples - sample_level) / ((number - squares / number) / (populations - 1))
        return ratio(va, va + inner), 0.0, 0.0
    b, a = populations - len(groups), len(groups) - 1
    vb = ((in_groups - within) / b - sample_level) / ((number - by_group) / b)
    n1 = (by_group - squares / number) / a
    n2 = (number - sum(size * size for size in sizes) / number) / a
    va = (((over(everyone) / number - in_groups) / a - sample_level) - n1 * vb) / n2
    return ratio(va + vb, va + vb + inner), ratio(vb, vb + inner), ratio(va, va + vb + inner)


def mean_heterozygosity(samples):
    weighted = 0.0
    for sample in samples:
        m = len(sample)
        weighted += m * (1.0 - sum((sample.count(a) / m) ** 2 for a in set(sample))) / (m - 1) * m
    return weighted / sum(map(len, samples))


# --- The test of a locus ---

def kernel(h, x):
    return 0.75 * (1.0 - (x / h) ** 2) / h if (x / h) ** 2 <= 1.0 else 0.0


class Null:
    """Simulated loci as (heterozygosity, statistic), near one heterozygosity."""

    def __init__(self, loci, het):
        self.kept = [(f, kernel(0.04, h - het)) for h, f in loci if abs(h - het) <= 0.04]
        self.weight = sum(w for _, w in self.kept)

    def densities(self, low, high):
        step = (high - low) / 200
        middles = [low + (i + 0.5) * step for i in range(200)]
        return [sum(kernel(0.025, f - x) * w for f, w in self.kept) / self.weight if self.weight > 0.0 else 0.0
                for x in middles]

    def p(self, observed):
        low = observed - 0.1 if observed < 0.0 else 0.0
        return min(sum(self.densities(low, observed)) * (observed - low), sum(self.densities(observed, 1.0)) *
                   (1.0 - observed)) / 200

    def quantiles(self):
        density = self.densities(0.0, 1.0)
        limits, reached = [], 0.0
        if sum(density) <= 0.0:
            return [0.0] * 7
        for i, d in enumerate(density):
            reached += d
            if len(limits) < 7 and (0.01, 0.05, 0.1, 0.5, 0.9, 0.95, 0.99)[len(limits)] < reached / sum(density):
                limits.append((i + 0.5) / 200)
        return limits + [2.0] * (7 - len(limits))


class Detection(RunTestCase):
    def detect(self, text, name="p", **keys):
        keys = dict(dict(TaskNumber=0, DetectSelectedLoci=1, NumberOfSimsForFDist2=40, NumberOfDemesForFDist2=8,
                         NumberOfGroupsForFDist2=4), **keys)
        self.write(name + ".tvp", text)
        self.write(name + ".tvs", settings_text(**keys))
        return self.tovcore(name + ".tvp", name + ".tvs", *keys.pop("arguments", ()))

    def table(self, file, name="p"):
        lines = self.read(name + ".res", file).split("\n")
        self.assertEqual(lines[-1], "")
        return lines[0], [line.split("\t") for line in lines[1:-1]]


class SimulatedLoci(Detection):
    def assert_simulated(self, data_type, groups, genotypic=False, individuals=False, method=0, least=0.0, high=0.8,
                         simulated_groups=4, demes=8):
        """All 40 loci of a run: targets, F-statistics, heterozygosities and numbers of mutations."""
        samples, copies = 5, 8
        members = [[s for s in range(samples) if s * groups // samples == g] for g in range(groups)]
        self.detect(project(data_type, samples=samples, copies=copies, groups=groups, genotypic=genotypic, loci=6,
                            spread=0.2), UseHierarchicalIslandModel=1, IncludeIndividualLevel=int(individuals),
                    DistanceMethodAMOVA=method, MinDafFreq=least, TargetHetLowBound=0.05, TargetHetHighBound=high,
                    NumberOfGroupsForFDist2=simulated_groups, NumberOfDemesForFDist2=demes)
        head, rows = self.table("fdist2_simOut.txt")
        several = groups > 1
        self.assertTrue(head.startswith("FST\tFSC\tFCT\tTarget Het.\tExpHetBP\tMeanHetWP\tNumMutsOnTree\t"
                                        "Target Mean FST = " if several else
                                        "FST\tTarget Het.\tMeanHetBP\tMeanHetWP\tNumMutsOnTree\tTarget Mean FST = "))
        fst, _, fct = head.split(" = ", 1)[1].partition("\tTarget Mean FCT = ")
        fst, fct = float(fst), float(fct or 0)
        squared = data_type == "MICROSAT" and method == 1
        uniform = island_loci.Uniform()
        self.assertEqual(len(rows), 40)
        for row in rows:
            target, states, mutations = island_loci.simulated_states(
                uniform, [copies] * samples, KINDS[data_type], (0.05, high), demes, fst, members if several else None,
                simulated_groups, fct, least)
            if data_type == "RFLP":
                states = [[int(a > 0) for a in sample] for sample in states]
            f = fixation(states, members, lambda a, b: float((a - b) ** 2 if squared else a != b), individuals)
            f = [x if abs(x) >= 1e-12 else 0.0 for x in f]
            het = mean_heterozygosity(states) if f[0] else 0.0
            between = 0.0 if f[0] == 0.0 else 1.0 if f[0] == 1.0 else het / (1.0 - f[0])
            expected = (f if several else f[:1]) + [target, between, het, mutations]
            column = 3 if several else 1
            if data_type in ("DNA", "RFLP"):
                self.assertEqual(row[column], "NA")
                row[column] = target
            self.assertEqual(len(row), len(expected))
            for got, value in zip(row, expected):
                self.assertAlmostEqual(float(got), value, 11, row)

    def test_of_flat_islands(self):
        for case in (dict(data_type="DNA"), dict(data_type="RFLP", least=0.2), dict(data_type="STANDARD"),
                     dict(data_type="STANDARD", genotypic=True, individuals=True, demes=1),
                     dict(data_type="MICROSAT", method=1, high=1.0), dict(data_type="MICROSAT", genotypic=True),
                     dict(data_type="DNA", genotypic=True, least=1.5, demes=3)):
            with self.subTest(**case):
                self.assert_simulated(groups=1, **case)

    def test_of_islands_in_groups(self):
        for case in (dict(data_type="DNA", least=0.1), dict(data_type="RFLP", genotypic=True, individuals=True),
                     dict(data_type="STANDARD", high=1.0, simulated_groups=1), dict(data_type="MICROSAT", method=1),
                     dict(data_type="STANDARD", genotypic=True, demes=2), dict(data_type="RFLP", least=1.5)):
            with self.subTest(**case):
                self.assert_simulated(groups=2, **case)

    def test_a_high_bound_above_a_half_is_cut_for_sites(self):
        for data_type, same in (("DNA", True), ("RFLP", True), ("STANDARD", False)):
            for name, high in (("a", 0.5), ("b", 0.9)):
                self.detect(project(data_type), name, TargetHetHighBound=high)
            self.assertEqual(self.table("fdist2_simOut.txt", "a") == self.table("fdist2_simOut.txt", "b"), same)

    def test_made_projects_hold_the_simulated_states(self):
        for data_type, genotypic in (("DNA", False), ("STANDARD", True), ("MICROSAT", False), ("RFLP", True)):
            with self.subTest(data_type):
                self.write("simParamFile.txt", "t\nfiles\n2\nloci\n15\ngroups\n5\ndemes\n6\nFSC\n0.1\nFCT\n0.2\n")
                self.detect(project(data_type, samples=5, copies=8, groups=2, genotypic=genotypic),
                            UseHierarchicalIslandModel=1)
                uniform = island_loci.Uniform()
                for number in (1, 2):
                    loci = [island_loci.simulated_states(uniform, [8] * 5, KINDS[data_type], (0.0, 1.0), 6,
                                                         1.0 - 0.9 * 0.8, [[0, 1, 2], [3, 4]], 5, 0.2)[1]
                            for _ in range(15)]
                    if data_type in ("DNA", "RFLP"):
                        texts = [[["AGC"[a] if data_type == "DNA" else "01"[a > 0] for a in sample] for sample in locus]
                                 for locus in loci]
                    else:
                        texts = [[[str(a + 1) for a in sample] for sample in locus] for locus in loci]
                    self.assertEqual(self.definitions("p_sim%d.tvp" % number, genotypic),
                                     [[[locus[s][k] for locus in texts] for k in range(8)] for s in range(5)])
                os.remove(self.path("simParamFile.txt"))

    def definitions(self, file, genotypic):
        """Alleles of each gene copy of each sample of a made project."""
        text = self.read("p.res", file)
        separated = "LocusSeparator=NONE" not in text
        samples = []
        for block in re.findall(r"SampleData *= *\{(.*?)\}", text, re.S):
            samples.append([])
            for k, line in enumerate(line for line in block.split("\n") if line.strip()):
                words = line.split()
                words = words if genotypic and k % 2 else words[2:]
                samples[-1].append(words if separated else list("".join(words)))
        return samples


def simulation_file(seed, columns):
    """A table of simulated loci: one group has FST, ignored, heterozygosity; several have seven columns."""
    rng = random.Random(seed)
    lines = ["the head is passed over"]
    for _ in range(400):
        h = rng.uniform(0.1, 0.47)
        fst = rng.gauss(0.08, 0.05)
        row = (fst, "NA", h, 0.1, 2) if columns == 5 else (fst, "x", rng.gauss(0.05, 0.05), "NA", h, 0.3, 7)
        lines.append("\t".join(map(str, row)))
    return "\n".join(lines) + "\n"


class Texts(Detection):
    """The whole result of a test against a given table, to the blank."""

    def curve(self, title, loci):
        hets = [h for h, _ in loci]
        step = (max(hets) - min(hets)) / 19
        text = "  Het. BP.    %s\n" % title + " " * 10 + "".join(
            "%10s" % q for q in ("0.01", "0.05", "0.10", "0.50", "0.90", "0.95", "0.99")) + "\n"
        for i in range(20):
            het = min(hets) + i * step
            text += "%10.6f" % het
            text += "".join("%10.6f" % q if q <= 1.0 else " " * 10 for q in Null(loci, het).quantiles()) + "\n"
        return text

    def expected_p(self, loci, het, statistic):
        p = Null(loci, het).p(statistic)
        return p if p != 0.0 else 1e-07 if het <= max(h for h, _ in loci) else 2.0

    def assert_results(self, hierarchical):
        groups = 3 if hierarchical else 1
        columns = 7 if hierarchical else 5
        self.write("sims.txt", simulation_file(3, columns))
        self.detect(project(samples=6, groups=groups, loci=9, missing=4, planted=2), UseSimFileForFDist2=1,
                    SimFileNameForFDist2="sims.txt", UseHierarchicalIslandModel=int(hierarchical))
        sims = [line.split("\t") for line in self.read("sims.txt").split("\n")[1:-1]]
        loci = [(float(s[4 if hierarchical else 2]), float(s[0])) for s in sims]
        fct_loci = [(float(s[4]), float(s[2])) for s in sims] if hierarchical else []
        head, rows = self.table("fdist2_ObsOut.txt")
        more = "\tObs FCT\tFCT P-value" if hierarchical else ""
        self.assertEqual(head, "Locus\tObs. Het. BP\tObs FST\tFST P-value%s (if P-value=2 -> uncomputed value because "
                               "Obs.Het.BP is out of simulated bounds)" % more)
        self.assertEqual([row[0] for row in rows], list("12346789"))
        table = "%8s%15s%15s%15s" % ("Locus", "Obs. Het. BP", "Obs. FST", "FST P-value")
        table += "%15s%15s" % ("Obs FCT", "FCT P-value") if hierarchical else ""
        table += "\t" + NOTE + "\n"
        for row in rows:
            values = list(map(float, row[1:]))
            expected = [values[0], values[1], self.expected_p(loci, values[0], values[1])]
            if hierarchical:
                expected += [values[3], self.expected_p(fct_loci, values[0], values[3])]
            for got, value in zip(values, expected):
                self.assertAlmostEqual(got, value, 12)
            table += "%8s" % row[0] + "".join(
                "%15.*f" % (7 if k in (2, 4) else 6, value) for k, value in enumerate(values)) + "\n"
        self.assertIn("2", {row[3] for row in rows})
        self.assertGreater(len({row[3] for row in rows}), 5)
        model = ("Hierarchical island model:\nNo. of simulated groups:                 4\n"
                 "No. of simulated demes per groups:       8\n" if hierarchical else
                 "Finite island model:\nNo. of simulated demes:       8\n")
        result = "\n\nTested Genetic Structure:\n-------------------------\nNo. of groups : %d\n" % groups
        result += "".join("\t#Group%d\n\t\tGroup={\n" % (g + 1) +
                          "".join('\t\t"S%d"\n' % (s + 1) for s in range(6) if s * groups // 6 == g) + "\t\t}\n"
                          for g in range(groups))
        parts = [("detSel_FStat_Pval", model + "No. of coalescent simulations performed: 400\n\n" + table),
                 ("detSel_FST_CI", self.curve("FST null distribution quantiles", loci))]
        if hierarchical:
            parts.append(("detSel_FCT_CI", self.curve("FCT null distribution quantiles", fct_loci)))
        for tag, body in parts:
            result += "</data> <%s time=\"TIME\">\n%s</%s> <data>\n" % (tag, body, tag)
        document = re.sub(r'(<detSel_\w+ time=)"[^"]*"', r'\1"TIME"', self.document())
        start = document.index("\n\nTested Genetic Structure:")
        self.assertEqual(document[start:document.index("\n\n////", start) + 1], result + CLOSING)

    def test_of_one_group(self):
        self.assert_results(hierarchical=False)

    def test_of_several_groups(self):
        self.assert_results(hierarchical=True)

    def test_batch_line_of_several_groups_counts_fst_then_fct(self):
        self.write("glbstreams.txt", "out_\n_DETECT_SELECTION_\n")
        self.write("sims.txt", simulation_file(5, 7))
        self.detect(project(samples=6, groups=3, loci=30, spread=0.2, missing=4), UseSimFileForFDist2=1,
                    SimFileNameForFDist2="sims.txt", UseHierarchicalIslandModel=1)
        row = self.read("out_selectionDetection.sum").splitlines()[-1].split("\t")
        self.assertEqual(row[:3], ['"p.res/p.tvp"', "400", "30"])
        loci = [list(map(float, r)) for r in self.table("fdist2_ObsOut.txt")[1]]
        weights = sum(r[1] for r in loci)
        counts = []
        for statistic in (2, 4):
            mean = sum(r[statistic] * r[1] for r in loci) / weights
            for above in (False, True):
                counts += [sum((r[statistic] >= mean) == above and r[statistic + 1] <= level for r in loci)
                           for level in (0.001, 0.005, 0.01, 0.025, 0.05)]
        self.assertEqual(list(map(int, row[3:])), counts)
        self.assertGreater(sum(counts), 5)


class Messages(Detection):
    def console(self, **keys):
        outcome = self.detect(project(), **keys)
        return [line.split("% : ")[-1] for line in outcome.console.split("\n") if "Detecting loci" in line]

    def test_of_simulations(self):
        self.assertEqual(self.console(NumberOfSimsForFDist2=35), [
            "Detecting loci under selection ...",
            "Detecting loci under selection: 10/35 simulations done ... ",
            "Detecting loci under selection: 20/35 simulations done ... ",
            "Detecting loci under selection: 30/35 simulations done ... ",
            "Detecting loci under selection: done ... "])

    def test_of_made_projects(self):
        self.write("simParamFile.txt", "t\nfiles\n2\nloci\n12\ngroups\n1\ndemes\n6\nFSC\n0.1\nFCT\n0\n")
        self.assertEqual(self.console(), [
            "Detecting loci under selection ...",
            "Detecting loci under selection: 10/12 simulations done ... ",
            "Detecting loci under selection: File 1/2 with 12 simulated loci done ... ",
            "Detecting loci under selection: 10/12 simulations done ... ",
            "Detecting loci under selection: File 2/2 with 12 simulated loci done ... "])

    def test_a_project_that_cannot_be_made_is_passed_over(self):
        self.write("simParamFile.txt", "t\nfiles\n2\nloci\n12\ngroups\n1\ndemes\n6\nFSC\n0.1\nFCT\n0\n")
        os.makedirs(self.path("p.res", "p_sim1.tvp"))
        self.detect(project())
        self.assertTrue(os.path.isfile(self.path("p.res", "p_sim2.tvp")))
        self.assertNotIn("[ERROR", self.log())
        self.assert_finished()


if __name__ == "__main__":
    unittest.main()
