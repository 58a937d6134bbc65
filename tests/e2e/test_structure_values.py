"""Genetic structure in whole runs: the printed numbers of small structures whose analyses are known to the last digit."""
import re
import unittest

import support
from structure_projects import known_genotypes, known_haplotypes, mantel_section, value_after

TWO_PAIRS = (("s0", "s1"), ("s2", "s3"))
THREE_AND_TWO = (("s0", "s1", "s2"), ("s3", "s4"))
ALL_FIVE = (("s0", "s1", "s2", "s3", "s4"),)
SIZES = dict(TaskNumber=512, HaplAMOVA=1, NumPermutationsAMOVA=100, DistanceMethodAMOVA=1)
GIVEN_MATRIX = dict(ComputeDistanceMatrixAMOVA=0)


def matrix_below(text, title):
    """Rows of the matrix behind a title, without the labels of its rows and columns."""
    rows = []
    for line in text[text.index("\n" + title + "\n"):].splitlines()[3:]:
        found = re.match(r" +\d+((?: +(?:-?\d+\.\d\S*|[*0]))+)$", line)
        if found:
            rows.append(found.group(1).split())
        elif rows:
            break
    return rows


class KnownStructure(support.RunTestCase):
    def assert_tests(self, text, *tests):
        """Each test as printed: component, index, sense, share beyond, share equal, P-value, its deviation."""
        found = re.findall(r"(V[a-d]) and (F[A-Z]+) : P\(rand. value (&lt;|>) obs. value\)  =  (\d\.\d{5})\n"
                           r" {13}P\(rand. value = obs. value\)  =  (\d\.\d{5})\n"
                           r" {34}P-value =  (\d\.\d{5})\+-(\d\.\d{5})\n\n", text)
        self.assertEqual(found, [tuple(test.split()) for test in tests])

    def assert_indices(self, text, **indices):
        for name, value in indices.items():
            self.assertEqual(value_after(text, name + " :"), value, name)


class Designs(KnownStructure):
    def test_groups_of_haplotypes_then_pairs_then_exact_tests_in_one_run(self):
        self.run_project(known_haplotypes(TWO_PAIRS), TaskNumber=512 + 1024 + 8192, HaplAMOVA=1,
                         NumPermutationsAMOVA=100, ComputePairwiseFST=1, PrintFstVals=1, PrintMissIntermatchs=1,
                         PrintSlatkinsDist=1, NumPermutationsFST=100, NumPermutPopDiff=20000, NumDememoPopDiff=1000,
                         PrecProbPopDiff=0, **GIVEN_MATRIX)
        text = self.document()
        self.assertIn(" Among\n groups           1          3.810        0.18723 Va            19.32\n\n"
                      " Among\n populations\n within\n groups           2          0.578       -0.05815 Vb"
                      "            -6.00\n\n"
                      " Within\n populations     34         28.559        0.83997 Vc            86.68\n\n", text)
        self.assertIn("\n Total           37         32.947        0.96906\n", text)
        self.assert_indices(text, FST=0.13320, FSC=-0.07438, FCT=0.19321)
        self.assert_tests(text, "Vc FST &lt; 0.09091 0.00000 0.09091 0.02347", "Vb FSC > 0.86364 0.00000 0.86364 0.02794",
                          "Va FCT > 0.00000 0.22727 0.22727 0.02794")
        self.assertEqual(matrix_below(text, "Population pairwise FSTs"),
                         [["0.00000"], ["-0.07609", "0.00000"], ["0.14686", "0.04841", "0.00000"],
                          ["0.19312", "0.11819", "-0.06783", "0.00000"]])
        p = matrix_below(text, "FST P values")
        self.assertEqual(p[1][0].split("+-")[0], "0.75676")
        self.assertEqual(p[3][2].split("+-")[0], "0.88288")
        self.assertIn("Number of permutations : 110\n", text)
        self.assertEqual(matrix_below(text, "Population average pairwise differences")[0],
                         ["1.00000", "1.02778", "1.82222", "2.00000"])
        self.assertIn("Exact P value = 0.49390 +- 0.02128  (20000 Markov steps done)", text)

    def test_one_group_of_haplotypes_with_the_0_1_distance(self):
        self.run_project(known_haplotypes((("s0", "s1", "s2", "s3"),)), TaskNumber=512, HaplAMOVA=1,
                         NumPermutationsAMOVA=100, ComputeConventionalFST=1, PopSpecificFST=1)
        text = self.document()
        self.assertIn("\nComputing conventional F-Statistics from haplotype frequencies", text)
        self.assert_indices(text, FST=-0.00716)
        self.assert_tests(text, "Va FST > 0.47273 0.00000 0.47273 0.04655")
        table = text[text.index("\n-------------------------------\nPopulation specific FST indices\nPop#"):]
        self.assertEqual(re.findall(r"s(\d) +(-?\d\.\d{5})\n", table)[:4],
                         [("0", "0.01166"), ("1", "-0.00681"), ("2", "-0.01800"), ("3", "-0.01295")])

    def test_groups_of_individuals(self):
        self.run_project(known_genotypes(THREE_AND_TWO), IncludeIndividualLevel=1, PopSpecificFIS=1, **SIZES)
        text = self.document()
        self.assertIn("\n Total           51         51.308        1.16017\n", text)
        self.assert_indices(text, FIS=0.21894, FSC=-0.04930, FCT=0.27189, FIT=0.40327)
        self.assert_tests(text, "Vd FIT &lt; 0.04545 0.02727 0.07273 0.02642", "Vc FIS > 0.10909 0.05455 0.16364 0.02642",
                          "Vb FSC > 0.61818 0.00000 0.61818 0.03534", "Va FCT > 0.16364 0.08182 0.24545 0.02727")
        table = text[text.index("\n" + 55 * "-" + "\nPopulation specific FIS indices (110 permutations)\nPop#"):]
        self.assertEqual(re.findall(r"s(\d) +(-?\d\.\d{5}) +(\d\.\d{5})\n", table),
                         [("0", "-0.11111", "0.74545"), ("1", "0.73529", "0.11818"), ("2", "0.52941", "0.31818"),
                          ("3", "0.20354", "0.40000"), ("4", "-0.57895", "0.91818")])

    def test_one_group_of_individuals(self):
        self.run_project(known_genotypes(ALL_FIVE), IncludeIndividualLevel=1, PopSpecificFIS=1, **SIZES)
        text = self.document()
        self.assert_indices(text, FIS=0.21894, FST=0.14744, FIT=0.33410)
        self.assert_tests(text, "Vb FIS > 0.11818 0.07273 0.19091 0.02517", "Va FST > 0.19091 0.00000 0.19091 0.02859",
                          "Vc FIT &lt; 0.01818 0.00000 0.01818 0.01212")
        self.assertEqual(re.findall(r"s\d +-?\d\.\d{5} +(\d\.\d{5})\n", text),
                         ["0.70000", "0.08182", "0.25455", "0.35455", "0.95455"])

    def test_whole_individuals_exchanged_in_one_group(self):
        self.run_project(known_genotypes(ALL_FIVE), **SIZES)
        text = self.document()
        self.assert_indices(text, FST=0.16751)
        self.assert_tests(text, "Va FST > 0.07273 0.00000 0.07273 0.02268")

    def test_whole_individuals_exchanged_among_groups(self):
        self.run_project(known_genotypes(THREE_AND_TWO), **SIZES)
        text = self.document()
        self.assert_indices(text, FST=0.25371, FSC=-0.02378, FCT=0.27105)
        self.assert_tests(text, "Vc FST &lt; 0.07273 0.00000 0.07273 0.02268", "Vb FSC > 0.49091 0.00909 0.50000 0.07203",
                          "Va FCT > 0.08182 0.11818 0.20000 0.03534")

    def test_one_population_of_individuals(self):
        self.run_project(known_genotypes((("s0",),), samples=[0]), IncludeIndividualLevel=1, PopSpecificFIS=1, **SIZES)
        text = self.document()
        self.assertIn(" Fixation Index     FIS :     -0.11111\n", text)
        self.assert_tests(text, "Va FIS > 0.40000 0.29091 0.69091 0.04733")

    def test_the_batch_table_has_the_same_numbers(self):
        self.write("p.tvp", known_genotypes(THREE_AND_TWO))
        self.write("p.tvs", support.settings_text(IncludeIndividualLevel=1, **SIZES))
        self.write("glbstreams.txt", self.directory + "/\n_AMOVA_RES_\n")
        self.tovcore("p.tvp", "p.tvs", "run_silent")
        row = self.read("amovares.sum").splitlines()[-1].split("\t")
        self.assertEqual(row[1:5], ["1", "3", "21", "26"])
        self.assertEqual(row[9:13], ["0.218945", "-0.0492976", "0.271888", "0.403269"])
        self.assertEqual(row[13], "110")
        self.assertEqual(row[14:], ["0.0727273", "0.163636", "0.618182", "0.245455"])


class Pairs(KnownStructure):
    KEYS = dict(TaskNumber=1024, ComputePairwiseFST=1, PrintFstVals=1, PrintMissIntermatchs=1, PrintSlatkinsDist=1,
                NumPermutationsFST=100)

    def test_haplotypes(self):
        self.run_project(known_haplotypes(TWO_PAIRS), **self.KEYS, **GIVEN_MATRIX)
        text = self.document()
        self.assertEqual(matrix_below(text, "FST P values")[1:],
                         [["0.70270+-0.0379", "*"], ["0.09910+-0.0252", "0.22523+-0.0389", "*"],
                          ["0.06306+-0.0273", "0.08108+-0.0212", "0.77477+-0.0389", "*"]])
        self.assertEqual(matrix_below(text, "PXY P value")[1:],
                         [["0.64545", "*"], ["0.11818", "0.42727", "*"], ["0.10000", "0.22727", "0.80000", "*"]])
        self.assertEqual(matrix_below(text, "Corrected PXY P value")[1:],
                         [["0.70909", "*"], ["0.10000", "0.22727", "*"], ["0.05455", "0.08182", "0.78182", "*"]])
        derived = text[text.index("<slatkinFst"):]
        self.assertRegex(derived, r"\n +2 {9}0 +0\.00000\n", "a negative FST has no distance")

    def test_individuals_of_unknown_phase(self):
        self.run_project(known_genotypes((("s0", "s1", "s2"),), samples=[0, 1, 2]), DistanceMethodAMOVA=1, **self.KEYS)
        text = self.document()
        self.assertEqual(matrix_below(text, "FST P values")[1:],
                         [["0.36036+-0.0429", "*"], ["0.37838+-0.0424", "0.67568+-0.0339", "*"]])
        self.assertEqual(matrix_below(text, "Population pairwise FSTs")[1:],
                         [["0.12984", "0.00000"], ["0.01282", "-0.04686", "0.00000"]])


class MantelTest(KnownStructure):
    LABELS = ("s0", "s1", "s2", "s3")
    X1 = ((0,), (10, 0), (40, 35, 0), (55, 50, 20, 0))
    X2 = ((0,), (1, 0), (3, 2, 0), (2, 4, 1, 0))

    def test_fst_against_one_matrix(self):
        extra = mantel_section("fst", [self.X1], self.LABELS)
        self.run_project(known_haplotypes(TWO_PAIRS, extra=extra), TaskNumber=65536, NumPermMantel=1000, **GIVEN_MATRIX)
        text = self.document()
        self.assertIn("\nZY1                                : 21.982278\n", text)
        self.assertIn("\n\nCorrelation coefficient (rY1)    : 0.950712\n", text)
        self.assertIn("\n\nSignificance testing (1000 permutations for Mantel test)\n====================\n\n"
                      "P(rY1 rand >= rY1 obs)            : 0.104000\n"
                      "No. of smaller rand rY1           : 896\n"
                      "No. of equal rand rY1             : 60\n"
                      "No. of larger rand rY1            : 44\n", text)

    def test_fst_against_two_matrices(self):
        extra = mantel_section("fst", [self.X1, self.X2], self.LABELS)
        self.run_project(known_haplotypes(TWO_PAIRS, extra=extra), TaskNumber=65536, NumPermMantel=1000, **GIVEN_MATRIX)
        text = self.document()
        for line in ("\nZ12                               : 530.000000\n",
                     "\nSum of products (SP(X1,X1))       : 75.000000\n",
                     "\nTotal determination of Y (%)      : 0.903879\n",
                     "\n\nP(rY2 rand >= rY2 obs)            : 0.269000\n",
                     "\n\nP(rY1_2 rand >= rY1_2 obs)        : 0.104000\n",
                     "\n\nP(rY2_1 rand >= rY2_1 obs)        : 0.640000\n"):
            self.assertIn(line, text)


if __name__ == "__main__":
    unittest.main()
