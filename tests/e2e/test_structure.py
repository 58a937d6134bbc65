"""Genetic structure in whole runs: AMOVA, distances between samples, locus by locus, exact tests, Mantel, groups."""
import re
import unittest

import support
from structure_projects import individuals, project, value_after


AMOVA = dict(TaskNumber=512, HaplAMOVA=1, NumPermutationsAMOVA=100, ComputeDistanceMatrixAMOVA=1)
THREE = [("A", individuals(1, 4, 10)), ("B", individuals(2, 4, 12)), ("C", individuals(3, 4, 9, 0.3)),
         ("D", individuals(4, 4, 11, 0.3))]
TWO_GROUPS = [("A", "B"), ("C", "D")]


class Amova(support.RunTestCase):
    def test_groups_of_genotypes_print_their_table_and_tests(self):
        self.run_project(project(THREE, TWO_GROUPS, genotypic=1), IncludeIndividualLevel=1, **AMOVA)
        text = self.document()
        self.assert_well_formed("p.res", "p.xml")
        for label in ("FIS :", "FSC :", "FCT :", "FIT :"):
            self.assertIn(label, text)
        self.assertIn("Significance tests (110 permutations)", text)
        for label in ("Vd and FIT", "Vc and FIS", "Vb and FSC", "Va and FCT"):
            self.assertIn(label + " : P(rand. value ", text)

    def test_no_permutations_print_no_tests(self):
        keys = dict(AMOVA, NumPermutationsAMOVA=0)
        self.run_project(project(THREE, TWO_GROUPS, genotypic=1), **keys)
        self.assertIn("AMOVA design and results", self.document())
        self.assertNotIn("Significance tests", self.document())

    def test_null_distributions_go_to_files(self):
        # The run list decides on these files, whatever the settings say.
        self.write("p.tvp", project(THREE, TWO_GROUPS, genotypic=1))
        self.write("p.tvs", support.settings_text(**AMOVA))
        self.write("tov_run.txt", "\nuse_spe_settings\np.tvs\np.tvp\n0\n1\nend\n")
        self.tovcore()
        for extension in ("va", "vb", "vc"):
            text = self.read("p.res", "p." + extension)
            self.assertIn("Number of permutations : 110\n", text)
        self.assertIn("Results : Vc\n============\n", self.read("p.res", "p.vc"))
        self.assertIn("List of populations:", self.read("p.res", "p.va"))
        self.assertRegex(self.read("p.res", "p.va"), r"\n\[\d,\d\],\[\d,\d\]\t\t[+-]\d+\.\d{10}\n")
        self.assertIn("Histogram of variance components null distributions", self.document())

    def test_as_many_groups_as_samples_are_no_design(self):
        self.run_project(project(THREE, [("A",), ("B",), ("C",), ("D",)], genotypic=1), **AMOVA)
        self.assertIn("AMOVA task is skipped", self.document())
        self.assertIn("invalid structure: only one population per group", self.log())

    def test_a_project_without_structure_skips_the_analysis(self):
        self.run_project(project(THREE, None, genotypic=1), **AMOVA)
        self.assertIn("AMOVA task is skipped", self.document())
        self.assertIn("Successful run of", self.log())

    def test_equal_gene_copies_everywhere_give_indices_of_zero(self):
        same = [(name, [["A A", "A A"]] * 4) for name in "ABCD"]
        self.run_project(project(same, TWO_GROUPS, genotypic=1), IncludeIndividualLevel=1, **AMOVA)
        self.assertRegex(self.document(), r"FCT : +0\.00000\n")


class LocusByLocus(support.RunTestCase):
    KEYS = dict(TaskNumber=512, LocByLocAMOVA=1, NumPermutationsAMOVA=0, ComputeDistanceMatrixAMOVA=1)

    def test_six_loci_have_bootstraps_and_five_have_none(self):
        for loci in (5, 6):
            samples = [(name, individuals(number, loci, 10)) for number, name in enumerate("ABC")]
            self.run_project(project(samples, [("A", "B", "C")], genotypic=1), **self.KEYS)
            self.assertEqual("FST bootstrap percentile values" in self.document(), loci == 6)

    def test_the_average_is_the_ratio_of_the_sums_of_the_table(self):
        samples = [(name, individuals(number, 8, 12)) for number, name in enumerate("ABC")]
        self.run_project(project(samples, [("A", "B", "C")], genotypic=1), **self.KEYS)
        text = self.document()
        table = text[text.index("AMOVA Results for polymorphic loci only"):]
        rows = [line.split() for line in table.splitlines() if re.match(r" +\d+( +[-0-9.]+){10}$", line)]
        self.assertEqual(len(rows), 8)
        va = sum(float(row[3]) for row in rows)
        vb = sum(float(row[7]) for row in rows)
        average = value_after(table[table.index("Average F-Statistics"):], "FST :")
        self.assertAlmostEqual(average, va / (va + vb), delta=1e-4)

    def test_loci_with_one_allele_are_listed(self):
        samples = [(name, [["A " + a, "A " + b] for a, b in individuals(number, 2, 8)])
                   for number, name in enumerate("AB")]
        self.run_project(project(samples, [("A", "B")], genotypic=1), **self.KEYS)
        self.assertRegex(self.document(), r"List of loci with only one allele:\n=+\n +1\n")

    def test_a_population_without_data_leaves_its_locus_out(self):
        samples = [("A", [["A A", "B B"], ["A B", "B A"]]), ("B", [["? A", "? B"], ["? B", "? A"]]),
                   ("C", [["A A", "B A"], ["B B", "B A"]])]
        self.run_project(project(samples, [("A", "B", "C")], genotypic=1, AllowedLevelOfMissingData=1), **self.KEYS)
        self.assertIn("Population 'B' does not contain any data at locus #1", self.log())
        self.assertIn("Successful run of", self.log())


class Pairs(support.RunTestCase):
    KEYS = dict(TaskNumber=1024, ComputePairwiseFST=1, PrintFstVals=1, PrintSlatkinsDist=1, PrintMissIntermatchs=1,
                NumPermutationsFST=100, ComputeDistanceMatrixAMOVA=1)

    def test_every_matrix_is_printed(self):
        self.run_project(project(THREE, TWO_GROUPS, genotypic=1), UnequalPopSizeDiv=1, **self.KEYS)
        self.assert_well_formed("p.res", "p.xml")
        text = self.document()
        for title in ("Population pairwise FSTs", "FST P values", "Matrix of significant Fst P values",
                      "Population average pairwise differences", "PXY P value", "Corrected PXY P value",
                      "Divergence times allowing for unequal population sizes (tau)",
                      "Matrix of coancestry coefficients as t/M=-ln(1-FST)",
                      "Matrix of Slatkin linearized FSTs as t/M=FST/(1-FST)"):
            self.assertIn(title, text)

    def test_one_sample_has_headings_alone(self):
        self.run_project(project(THREE[:1], [("A",)], genotypic=1), **self.KEYS)
        self.assertIn("Comparisons of pairs of population samples", self.document())
        self.assertIn("Successful run of", self.log())


MANTEL = """[[Mantel]]
MatrixSize=4
MatrixNumber=2
YMatrix="%s"
YMatrixLabels={ "A" "B" "C" "D" }
DistMatMantel={
0
1 0
3 2 0
4 3 1 0
}
%sUsedYMatrixLabels={ %s }
"""


class MantelTest(support.RunTestCase):
    def test_fst_against_a_matrix(self):
        extra = MANTEL % ("fst", "", '"A" "B" "C" "D"')
        self.run_project(project(THREE, TWO_GROUPS, genotypic=1, extra=extra), TaskNumber=65536, NumPermMantel=200,
                         ComputeDistanceMatrixAMOVA=1)
        text = self.document()
        self.assertIn("== MATRIX CORRELATION ANALYSIS (MANTEL TESTS)", text)
        self.assertIn("Significance testing (200 permutations for Mantel test)", text)
        self.assertGreater(value_after(text, "Correlation coefficient (rY1)    :"), 0.5)
        self.assert_well_formed("p.res", "p.xml")

    def test_two_labels_are_too_few(self):
        extra = MANTEL % ("fst", "", '"A" "B"')
        self.run_project(project(THREE, TWO_GROUPS, genotypic=1, extra=extra), TaskNumber=65536, NumPermMantel=10)
        self.assertIn("The minimum size of matrices is 3 in order to perform a Mantel test", self.document())


class Groups(support.RunTestCase):
    def test_groups_of_one_sample_give_the_same_digits_at_both_levels(self):
        self.run_project(project(THREE, [("A",), ("B",), ("C",), ("D",)], genotypic=1), ComputeSumStatsWithinGroups=1,
                         TaskNumber=1 + 1024, ComputePairwiseFST=1, PrintFstVals=1, NumPermutationsFST=0,
                         PrintMissIntermatchs=1, ComputeDistanceMatrixAMOVA=1)
        text = self.document()
        split = text.index("== ANALYSES AT THE INTRA-POPULATION LEVEL")
        first, second = text[:split], text[split:]

        def numbers(part):
            start = part.index("Population average pairwise differences")
            return re.findall(r"-?\d+\.\d{5}", part[part.index("== Standard diversity indices"):start + 1500])

        self.assertEqual(numbers(first)[:200], numbers(second)[:200])
        self.assertGreater(len(numbers(first)), 50)

    def test_a_group_level_runs_the_exact_test(self):
        self.run_project(project(THREE, TWO_GROUPS, genotypic=1), ComputeSumStatsWithinGroups=1, TaskNumber=8192,
                         NumPermutPopDiff=1000, NumDememoPopDiff=100)
        text = self.document()
        self.assertEqual(text.count("== Exact Test of Sample Differentiation"), 2)
        self.assertIn("(20000 Markov steps done)", text)


if __name__ == "__main__":
    unittest.main()
