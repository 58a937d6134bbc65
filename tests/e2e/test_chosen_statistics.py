"""The table of chosen statistics: each keyword alone and all together, and every value against the document."""
import re
import shutil
import tempfile
import unittest

from three_projects import SAMPLES, Report, ThreeProjects

WORDS = """ALL_K ALLSD_K MEAN_K SD_K TOT_K ALL_H ALLSD_H MEAN_H SD_H TOT_H ALL_S ALLSD_S PRIVATE_S MEAN_S SD_S TOT_S
ALL_TAJIMAD ALLSD_TAJIMAD MEAN_TAJIMAD SD_TAJIMAD ALL_FUFS ALLSD_FUFS MEAN_FUFS SD_FUFS ALL_PI MEAN_PI SD_PI ALL_GW
ALLSD_GW MEAN_GW SD_GW TOT_GW ALL_NGW ALLSD_NGW MEAN_NGW SD_NGW ALL_RANGE ALLSD_RANGE MEAN_RANGE SD_RANGE TOT_RANGE
MEAN_ALL_DPRIME MEAN_ALL_R2 ALL_ADJ_DPRIME ALL_ADJ_R2 MEAN_ADJ_DPRIME MEAN_ADJ_R2 FLANK_DPRIME FLANK_R2 GLOBAL_FSTAT
PAIRWISE_FST PAIRWISE_PI PAIRWISE_DMUSQR""".split()


class ChosenStatistics(ThreeProjects):
    def table(self, definition):
        """Titles, and the values of each project, of a run with this definition."""
        self.write("sumstat_def.txt", definition)
        self.run_three()
        head, *lines = [line.split("\t") for line in self.read("sumstat_out.txt").splitlines()]
        self.assertEqual(head.pop(), "")
        for line in lines:
            self.assertEqual(line.pop(), "")
        return head, lines

    def test_each_keyword_alone_gives_what_all_together_give(self):
        head, lines = self.table("\n".join(WORDS))
        together = dict(zip(head, lines[0]))
        self.assertEqual(len(together), len(head), "titles differ")
        seen = set()
        for word in WORDS:
            head, lines = self.table(word)
            self.assertTrue(head, word)
            self.assertEqual(len(head), len(lines[0]), word)
            for title, value in zip(head, lines[0]):
                self.assertEqual(value, together[title], (word, title))
            seen |= set(head)
        self.assertEqual(seen, set(together))

    def test_every_line_has_the_columns_of_the_head(self):
        head, lines = self.table("POP_LEVEL GROUP_LEVEL\n" + "\n".join(WORDS))
        self.assertEqual(len(lines), 3)
        for line in lines:
            self.assertEqual(len(line), len(head))
        self.assertEqual([t for t in head if t.startswith("gr_")], head[:sum(t.startswith("gr_") for t in head)])

    def test_groups_come_first_with_their_prefix(self):
        self.write("sumstat_def.txt", "POP_LEVEL\nGROUP_LEVEL\nALL_K\n")
        self.run_three()
        head, *lines = self.read("sumstat_out.txt").splitlines()
        self.assertEqual(head, "gr_K_1\tK_1\tK_2\tK_3\t")
        self.assertEqual(lines[0], "5\t3\t3\t3\t")

    def test_detection_of_loci_leaves_the_statistics_be(self):
        plain = self.table("\n".join(WORDS))
        self.write("tov_run.tvs", self.read("tov_run.tvs").replace("DetectSelectedLoci=0", "DetectSelectedLoci=1"))
        self.tovcore()
        self.assertTrue(self.exists("mic.res", "fdist2_ObsOut.txt"))
        text = [line.split("\t")[:-1] for line in self.read("sumstat_out.txt").splitlines()]
        self.assertEqual((text[0], text[1:]), plain)

    def test_without_a_definition_there_is_no_table(self):
        self.run_three()
        self.assertFalse(self.exists("sumstat_out.txt"))



def mean(values):
    return sum(values) / len(values)


def deviation(values):
    return (sum((v - mean(values)) ** 2 for v in values) / (len(values) - 1)) ** 0.5


def diversity(counts):
    n = sum(counts)
    return n / (n - 1) * (1 - sum((c / n) ** 2 for c in counts))


def coefficients(haplotypes, first, second):
    """Mean |D'| and r2 of two loci from (count, alleles) of a sample."""
    n = sum(count for count, _ in haplotypes)
    cells, p, q = {}, {}, {}
    for count, alleles in haplotypes:
        a, b = alleles[first], alleles[second]
        for table, key in ((cells, (a, b)), (p, a), (q, b)):
            table[key] = table.get(key, 0) + count / n
    sum_d, sum_r = 0.0, 0.0
    for a in p:
        for b in q:
            d = cells.get((a, b), 0) - p[a] * q[b]
            most = min((1 - p[a]) * q[b], (1 - q[b]) * p[a]) if d > 0 else min(p[a] * q[b], (1 - p[a]) * (1 - q[b]))
            sum_d += abs(d / most) * p[a] * q[b]
            sum_r += d * d / ((1 - q[b]) * (1 - p[a]) * p[a] * q[b]) * p[a] * q[b]
    return sum_d, sum_r


def linkage_columns(samples, loci):
    """Columns of linkage from the haplotypes of each sample and the project's number of loci."""
    columns = {}
    for i, haplotypes in enumerate(samples, 1):
        n = len(haplotypes[0][1])
        polymorphic = [l for l in range(n) if len({alleles[l] for _, alleles in haplotypes}) > 1]
        pairs = {(a, b): coefficients(haplotypes, polymorphic[b], polymorphic[a])
                 for a in range(len(polymorphic)) for b in range(a)}
        last = len(polymorphic) - 1
        for k, name in enumerate(("D'", "R2")):
            columns["mean_%s_%d" % (name, i)] = mean([v[k] for v in pairs.values()])
            neighbours = [pairs[a, a - 1][k] for a in range(1, last + 1)]
            columns["mean_adj_%s_%d" % (name, i)] = mean(neighbours)
            columns["flank_%s_%d" % (name, i)] = pairs[last, 0][k]
            for pair in range(1, loci):
                columns["adj_%s_%d_%d" % (name, pair, i)] = neighbours[pair - 1] if pair <= last else -1
    return columns


class ValuesOfChosenStatistics(ThreeProjects):
    """Every column of every keyword against the document, or the data where the document has no such number."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.directory = tempfile.mkdtemp(prefix="tovcore_test_")
        cls.addClassCleanup(shutil.rmtree, cls.directory, True)
        run = cls("assert_finished")
        run.write("sumstat_def.txt", "\n".join(WORDS) + "\n")
        run.run_three()
        cls.documents = [Report(run.document(name)) for name in ("dna", "mic", "gen")]
        cls.head, *cls.lines = [line.split("\t")[:-1] for line in run.read("sumstat_out.txt").splitlines()]

    def setUp(self):
        self.directory = type(self).directory

    def over_samples(self, word, values, total=None):
        """Columns of one statistic: each sample, mean and deviation over those with a value, all together."""
        columns = {"%s_%d" % (word, i): v for i, v in enumerate(values, 1)}
        there = [v for v in values if v != -1]
        columns["mean_" + word] = mean(there) if there else -1
        columns["sd_" + word] = deviation(there) if there else -1
        if total is not None:
            columns["tot_" + word] = total
        return columns

    def per_sample(self, prefix, values):
        return {"%s_%d" % (prefix, i): v for i, v in enumerate(values, 1)}

    def of_pairs(self, document):
        columns = {}
        fst = document.matrix("Population pairwise FSTs")
        differences = document.matrix("Population average pairwise differences")
        squares = document.matrix("Delta mu-square distance")
        for i in range(3):
            for j in range(i):
                pair = "_%d_%d" % (i + 1, j + 1)
                columns.update({"FST" + pair: float(fst[i][j]), "PI" + pair: float(differences[j][i]),
                                "DMUSQ" + pair: float(squares[i][j])})
        columns["FST"] = float(re.search(r"FST : +(\S+)", document.text).group(1))
        columns.update({index: -1 for index in ("FIS", "FCT", "FSC", "FIT")})
        return columns

    def loci(self, document, section, total):
        """Mean and deviation over loci of each sample, and the mean of all samples together if the table has one."""
        means = [float(x) for x in document.row("Mean", section)]
        deviations = [float(x) for x in document.row("s.d.", section)]
        return means[:3], deviations[:3], means[5] if total else None

    def check(self, number, expected):
        line = dict(zip(self.head, self.lines[number]))
        self.assertLessEqual(set(expected), set(line), set(expected) - set(line))
        for title, value in line.items():
            self.assertAlmostEqual(float(value), expected.get(title, -1), delta=6e-5, msg=title)

    def test_sequences(self):
        document = self.documents[0]
        samples = document.samples().values()
        standard = [s.block("Standard diversity indices") for s in samples]
        pooled = {}
        for _, haplotypes in SAMPLES:
            for name, count, _ in haplotypes:
                pooled[name] = pooled.get(name, 0) + count

        def row(label, section):
            return [float(x) for x in document.row(label, section)[:3]]

        expected = self.over_samples("K", [float(s.numbers("No. of sequences")[0]) for s in standard], 5)
        expected.update(self.over_samples("H", [float(s.numbers("Gene diversity")[0]) for s in standard],
                                          diversity(pooled.values())))
        expected.update(self.over_samples("S", row("No. of polym. loci", "Basic properties"), 3))
        for word in "KHS":
            expected.update(self.per_sample(word + "sd", [0, 0, 0]))
        expected.update(self.per_sample("prS", row("No. private subst. sites", "Molecular diversity indexes")))
        expected.update(self.over_samples("D", row("Tajima's D", "Neutrality tests")))
        expected.update(self.over_samples("FS", row("FS", "Neutrality tests")))
        expected.update(self.over_samples("Pi", row("Pi", "Molecular diversity indexes")))
        expected.update(self.of_pairs(document))
        expected.update(linkage_columns([[(count, text) for _, count, text in s] for _, s in SAMPLES], 10))
        self.check(0, expected)

    def test_microsatellites(self):
        document = self.documents[1]
        samples = [[(int(count), text.split()) for count, text in re.findall(r"(?m)^[abc]\d (\d+) (.*)$", part)]
                   for part in self.read("mic.tvp").split("SampleData={")[1:]]
        expected = {}
        for word, section, total in (("K", "Number of alleles", True), ("H", "Expected heterozygosity", True),
                                     ("R", "Allelic size range", True), ("GW", "Garza-Williamson index", False),
                                     ("NGW", "Garza-Williamson modified index", False)):
            values, deviations, pooled = self.loci(document, section, total)
            expected.update(self.over_samples(word, values, pooled))
            expected.update(self.per_sample(word + "sd", deviations))
        ratios = []
        for locus in range(3):
            sizes = {int(alleles[locus]) for sample in samples for _, alleles in sample}
            ratios.append(len(sizes) / (max(sizes) - min(sizes) + 1))
        expected["tot_GW"] = mean(ratios)
        expected.update(self.over_samples("S", [3, 3, 3], 3))
        expected.update(self.per_sample("Ssd", [0, 0, 0]))
        differences = document.row("Pi", "Molecular diversity indexes")[:3]
        expected.update(self.over_samples("Pi", [float(x) for x in differences]))
        expected.update(self.of_pairs(document))
        expected.update({t: v for t, v in linkage_columns(samples, 10).items()})
        self.check(1, expected)

    def test_genotypes_of_unknown_phase(self):
        document = self.documents[2]
        expected = {}
        for word, section in (("K", "Number of alleles"), ("H", "Expected heterozygosity")):
            values, deviations, pooled = self.loci(document, section, True)
            expected.update(self.over_samples(word, values, pooled))
            expected.update(self.per_sample(word + "sd", deviations))
        expected.update(self.over_samples("S", [2, 2, 2], 2))
        expected.update(self.per_sample("Ssd", [0, 0, 0]))
        differences = document.row("Pi", "Molecular diversity indexes")[:3]
        expected.update(self.over_samples("Pi", [float(x) for x in differences]))
        expected.update(self.of_pairs(document))
        self.check(2, expected)

    def test_most_columns_of_each_line_have_a_value(self):
        for line, least in zip(self.lines, (80, 90, 40)):
            self.assertGreater(sum(value != "-1" for value in line), least)


if __name__ == "__main__":
    unittest.main()
