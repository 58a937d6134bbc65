"""Genetic structure in whole runs: the limits of its analyses, what they refuse, and what follows from one another."""
import re
import unittest

import support
from structure_projects import (individuals, known_genotypes, known_haplotypes, mantel_section, microsatellites,
                                project, value_after)

AMOVA = dict(TaskNumber=512, HaplAMOVA=1)
FOUR = [("A", 6), ("B", 7), ("C", 5), ("D", 8)]
TWO_GROUPS = (("A", "B"), ("C", "D"))
ONE_GROUP = (("A", "B", "C", "D"),)
FIXED = [("A", ["1 1"] * 6), ("B", ["2 2"] * 6)]


class EdgeTestCase(support.RunTestCase):
    def run_with_null_files(self, text, **keys):
        """A run whose run list keeps the null distributions."""
        self.write("p.tvp", text)
        self.write("p.tvs", support.settings_text(**keys))
        self.write("tov_run.txt", "\nuse_spe_settings\np.tvs\np.tvp\n0\n1\nend\n")
        self.tovcore()


class Permutations(EdgeTestCase):
    def test_none_make_no_test_and_no_file(self):
        self.run_with_null_files(microsatellites(1, FOUR, 4, groups=TWO_GROUPS), NumPermutationsAMOVA=0, **AMOVA)
        self.assertIn("AMOVA design and results", self.document())
        self.assertNotIn("Significance tests", self.document())
        self.assertNotIn("Histogram", self.document())
        self.assertEqual([f for f in self.files() if re.search(r"\.v[a-d]$", f)], [])

    def test_five_are_six_in_two_batches_and_three_classes(self):
        self.run_with_null_files(microsatellites(1, FOUR, 4, groups=TWO_GROUPS), NumPermutationsAMOVA=5,
                                 IncludeIndividualLevel=1, **AMOVA)
        text = self.document()
        self.assertIn("\nSignificance tests (6 permutations)\n------------------\n\nVd and FIT : ", text)
        histogram = text[text.index("\n\nHistogram of variance components null distributions\n" + 51 * "=" + "\n"):]
        head, *rows = histogram.split("\n\nObserved  values:\n-----------------\nVa : ")[0].splitlines()[4:]
        self.assertEqual(head.split(), ["Va", "Vb", "Vc", "Vd"])
        self.assertEqual([len(row.split()) for row in rows], [8, 8, 8])
        for component in range(4):
            self.assertEqual(sum(int(row.split()[2 * component + 1]) for row in rows), 6)

    def test_every_permutation_stands_in_the_histogram(self):
        for seed in range(8):
            self.run_with_null_files(microsatellites(seed, FOUR, 4, groups=TWO_GROUPS), NumPermutationsAMOVA=50,
                                     IncludeIndividualLevel=1, **AMOVA)
            histogram = self.document().split("Histogram of variance components null distributions\n")[1]
            rows = histogram.split("\n\nObserved  values:")[0].splitlines()[2:]
            for component in range(4):
                counts = [int(row.split()[2 * component + 1]) for row in rows]
                self.assertEqual(sum(counts), 56, "component %d of seed %d" % (component, seed))

    def test_null_files_hold_the_sorted_values_of_their_component(self):
        self.run_with_null_files(microsatellites(1, FOUR, 4, groups=TWO_GROUPS), NumPermutationsAMOVA=20,
                                 IncludeIndividualLevel=1, **AMOVA)
        for letter in "abcd":
            text = self.read("p.res", "p.v" + letter)
            self.assertRegex(text, r"^File creation time    \d\d/\d\d/\d\d at [\d:]{8}\n={47}\n\n"
                                   r"Number of permutations : 24\nTime for computation   : \d+ ms\n\n"
                                   r"Results : V%s\n============\n\n" % letter)
            values = [float(x) for x in re.findall(r"(?m)[+-]\d\.\d{10}$", text)]
            self.assertEqual(len(values), 24, letter)
            self.assertEqual(values, sorted(values), letter)
        orders = self.read("p.res", "p.va")
        self.assertEqual(len(re.findall(r"(?m)^\[\d,\d\],\[\d,\d\]\t\t[+-]\d\.\d{10}$", orders)), 24)
        self.assertTrue(orders.endswith("\nList of populations:\n\n   1 : A\n   2 : B\n   3 : C\n   4 : D\n\n\n"))
        for letter in "abcd":
            self.assertIn('\tResults in file : "p.res/p.v%s"\n' % letter, self.log())


class DistancesThatCannotBeComputed(EdgeTestCase):
    """Sequences that differ at nine sites of ten are beyond the correction of Jukes and Cantor."""

    SAMPLES = (("A", (("h1", 3, "ACGTACGTAC"), ("h2", 2, "ACGTACGTAT"))),
               ("B", (("h3", 2, "GTACGTACGC"), ("h1", 2, "ACGTACGTAC"))),
               ("C", (("h3", 3, "GTACGTACGC"), ("h2", 2, "ACGTACGTAT"))))

    def structure(self, **keys):
        self.run_project(support.dna_project(self.SAMPLES, (("A", "B"), ("C",))),
                         **dict(dict(TaskNumber=512 + 1024, HaplAMOVA=1, LocByLocAMOVA=1, ComputePairwiseFST=1,
                                     PrintFstVals=1, ComputeDistanceMatrixAMOVA=1, DistanceMethodAMOVA=1,
                                     PrintDistanceMatrix=1, PrintMinSpannNetworkGlob=1), **keys))
        return self.document()

    def test_nothing_is_computed_from_a_matrix_that_is_not_there(self):
        for keys in ({}, dict(EliminateRedondHaplodefs=1), dict(ComputeSumStatsWithinGroups=1)):
            with self.subTest(**keys):
                text = self.structure(**keys)
                self.assertIn("sequences too divergent for Jukes and Cantor correction", text)
                for section in ("AMOVA design and results :", "Population pairwise FSTs", "MINIMUM SPANNING TREE",
                                "Matrix of Euclidian square distances", "array out of bounds"):
                    self.assertNotIn(section, text)
                self.assertIn('"Project::AMOVA()" : haplotype list incompatible with distance matrix\n', self.log())
                self.assertIn("AMOVA Results for polymorphic loci only:", text)

    def test_differences_of_the_same_sequences_are_analysed(self):
        text = self.structure(DistanceMethodAMOVA=0)
        for section in ("AMOVA design and results :", "Population pairwise FSTs", "MINIMUM SPANNING TREE"):
            self.assertIn(section, text)


class Designs(EdgeTestCase):
    def test_two_fixed_populations_have_an_fst_of_one(self):
        self.run_project(project(FIXED, [("A", "B")]), TaskNumber=512 + 1024, HaplAMOVA=1, NumPermutationsAMOVA=0,
                         ComputePairwiseFST=1, PrintFstVals=1, PrintSlatkinsDist=1, NumPermutationsFST=0)
        text = self.document()
        self.assertIn(" Fixation Index      FST :      1.00000\n", text)
        self.assertRegex(text, r"<PairFstMat[^>]*> +1 +2\n +1 +0\.00000\n +2 +1\.00000 +0\.00000\n</PairFstMat>")
        for tag in ("coancestryCoefficients", "slatkinFst"):
            self.assertRegex(text, r"<%s[^>]*> +1 +2\n +1 +0\.00000\n +2 +inf\t +0\.00000\n" % tag)

    def test_one_population_of_haplotypes_is_accepted_and_has_no_design(self):
        self.run_project(project(FIXED[:1], [("A",)]), **AMOVA)
        self.assertIn("Genetic structure to test :", self.document())
        self.assertNotIn("AMOVA design and results", self.document())
        self.assertNotIn("#[", self.log())

    def test_a_single_individual_is_ill_defined(self):
        self.run_project(project([("A", [["1 2", "2 2"]])], [("A",)], genotypic=1), IncludeIndividualLevel=1, **AMOVA)
        self.assertIn('#[ERROR # 1] from function "Amova::AMOVA_1G_1P_I()" : ', self.log())
        self.assertNotIn("AMOVA design and results", self.document())

    def test_a_population_of_one_homozygote_has_no_fis(self):
        samples = [("A", [["1 1", "1 1"]]), ("B", individuals(1, 2, 6)), ("C", individuals(2, 2, 5)),
                   ("D", individuals(3, 2, 5))]
        self.run_project(project(samples, TWO_GROUPS, genotypic=1), IncludeIndividualLevel=1, PopSpecificFIS=1,
                         NumPermutationsAMOVA=0, LocByLocAMOVA=1, **AMOVA)
        text = self.document()
        self.assertRegex(text, r"\n-{31}\nPopulation specific FIS indices\nPop#  Name +FIS\n +1  A +-9\.99999\n")
        self.assertRegex(text, r"\n +1 +-?\d\.\d{5} +N\.A\.( +-?\d\.\d{5}){3}\n")

    def test_equal_gene_copies_print_percentages_of_a_tiny_total(self):
        same = [(name, [["A A", "A A"]] * 4) for name in "ABCD"]
        self.run_project(project(same, TWO_GROUPS, genotypic=1), IncludeIndividualLevel=1, NumPermutationsAMOVA=0,
                         **AMOVA)
        text = self.document()
        self.assertEqual(re.findall(r"V[a-d] +(-?\d+\.\d\d)\n", text), ["0.00"] * 4)
        self.assertEqual(re.findall(r"(F[A-Z]{2}) : +(-?\d\.\d{5})\n", text),
                         [(name, "0.00000") for name in ("FIS", "FSC", "FCT", "FIT")])

    def test_conventional_statistics_of_unknown_phase_leave_the_exact_test(self):
        self.run_project(microsatellites(1, FOUR, 3, groups=ONE_GROUP), TaskNumber=512 + 1024 + 8192, HaplAMOVA=1,
                         ComputeConventionalFST=1, ComputePairwiseFST=1, PrintFstVals=1, NumPermutPopDiff=1000,
                         NumDememoPopDiff=100)
        message = ('\n\nThe computation of AMOVA with the option "CONVENTIONAL FST" is'
                   "\nnot possible with unknown gametic phase data.\nSKIPPING COMPUTATION OF GENETIC STRUCTURE\n")
        text = self.document()
        self.assertIn(message, text)
        self.assertIn(message, self.log())
        self.assertIn('#[ERROR # 1] from function "GenStructCalculations()" : ', self.log())
        self.assertNotIn("AMOVA design and results", text)
        self.assertNotIn("Population pairwise FSTs", text)
        self.assertIn("== Exact Test of Sample Differentiation Based on Genotype Frequencies\n", text)

    def test_repeat_lengths_are_passed_over_after_the_conversion_of_genotypes(self):
        self.run_project(microsatellites(1, FOUR, 3, groups=ONE_GROUP), NumPermutationsAMOVA=0, **AMOVA)
        log = self.log()
        self.assertLess(log.index("\tConverting phenotypic to haplotypic data ...\n"),
                        log.index("\nSkipping microsat repeat length detection\n"))

    def test_recessive_data_are_refused(self):
        samples = [("A", individuals(1, 2, 6)), ("B", individuals(2, 2, 5))]
        self.run_project(project(samples, [("A", "B")], genotypic=1, RecessiveData=1, RecessiveAllele='"B"'),
                         TaskNumber=512 + 1024, HaplAMOVA=1, ComputePairwiseFST=1, PrintFstVals=1)
        text = self.document()
        self.assertIn("\n\nThe computation of AMOVA and PAIRWISE FST is"
                      "\nnot implemented yet with recessive data, sorry\n", text)
        self.assertNotIn("AMOVA design and results", text)
        self.assertNotIn("Population pairwise FSTs", text)


class Pairs(EdgeTestCase):
    KEYS = dict(TaskNumber=1024, ComputePairwiseFST=1, PrintFstVals=1)

    def test_samples_outside_the_structure_are_paired_too(self):
        self.run_project(microsatellites(1, FOUR, 3, groups=(("B", "A"),)), NumPermutationsFST=0, **self.KEYS)
        text = self.document()
        self.assertIn("  1:\tA\n  2:\tB\n  3:\tC\n  4:\tD\n", text)
        self.assertRegex(text, r"\n +4( +-?\d\.\d{5}){4}\n</PairFstMat>")

    def test_the_tests_of_differences_need_no_matrix_of_differences(self):
        self.run_project(microsatellites(1, FOUR, 3, groups=ONE_GROUP), NumPermutationsFST=10, **self.KEYS)
        text = self.document()
        self.assertNotIn("Population average pairwise differences", text)
        for title in ("PXY P value", "Corrected PXY P value"):
            self.assertIn("\n%s\n%s\n%s\n" % (len(title) * "-", title, len(title) * "-"), text)

    def test_without_permutations_nothing_is_tested(self):
        self.run_project(microsatellites(1, FOUR, 3, groups=ONE_GROUP), NumPermutationsFST=0, PrintMissIntermatchs=1,
                         **self.KEYS)
        text = self.document()
        self.assertIn("Population pairwise FSTs", text)
        self.assertIn("Population average pairwise differences", text)
        self.assertNotIn("P value", text)
        self.assertNotIn(" and test significance", self.log())

    def test_identical_samples_have_no_fst(self):
        self.run_project(project([("A", ["1 1"] * 3), ("B", ["1 1"] * 4)], [("A", "B")]), NumPermutationsFST=0,
                         PrintMissIntermatchs=1, **self.KEYS)
        self.assertRegex(self.document(), r"<PairFstMat[^>]*> +1 +2\n +1 +0\.00000\n +2 +0\.00000 +0\.00000\n")

    def test_two_samples_of_one_copy_each(self):
        self.run_project(project([("A", ["1 1"]), ("B", ["2 2"])], [("A", "B")]), NumPermutationsFST=10, **self.KEYS)
        text = self.document()
        self.assertRegex(text, r"\n +2 +1\.00000 +0\.00000\n</PairFstMat>")
        # Nothing can be shuffled: all 12 permutations are the observed arrangement.
        self.assertIn("Number of permutations : 12\n", text)
        self.assertRegex(text, r"\n +2 +0\.92308\+-\d\.\d{4}")

    def test_unsolved_divergence_times_stay_out_of_the_document(self):
        self.run_project(microsatellites(5, FOUR, 4, phase=1, groups=ONE_GROUP), NumPermutationsFST=30,
                         UnequalPopSizeDiv=1, PrintMissIntermatchs=1, **self.KEYS)
        text, log = self.document(), self.log()
        self.assertIn("equation solving did not converge, too many iterations", log)
        self.assertNotIn("#[ERROR", text)
        for title in ("tau values", "tau P values", "Unequal population sizes (k)", "k P values",
                      "Ancestral population sizes (theta0)", "theta0 P values"):
            self.assertIn("\n%s\n%s\n%s\n" % (len(title) * "-", title, len(title) * "-"), text)
        self.assertIn("\nAn * denotes the cases where the estimation of divergence time did not converge\n", text)
        self.assert_well_formed("p.res", "p.xml")


class LocusByLocus(EdgeTestCase):
    KEYS = dict(TaskNumber=512, LocByLocAMOVA=1)

    def test_alone_it_has_the_banner_and_no_global_analysis(self):
        self.run_project(microsatellites(1, FOUR, 4, groups=ONE_GROUP), NumPermutationsAMOVA=0, **self.KEYS)
        text = self.document()
        self.assertIn("\n== GENETIC STRUCTURE ANALYSIS\n", text)
        self.assertNotIn("\nAMOVA design and results :\n", text)
        self.assertIn("\nAMOVA design and results (average over 3 loci):", text)

    def test_loci_of_one_allele_alone_leave_an_empty_table(self):
        samples = [(name, [["1 1 1", "1 1 1"]] * 3) for name in "AB"]
        self.run_project(project(samples, [("A", "B")], genotypic=1), NumPermutationsAMOVA=0, **self.KEYS)
        text = self.document()
        self.assertIn("\nList of loci with only one allele:\n==================================\n    1    2    3\n", text)
        self.assertIn("\nAMOVA Results for polymorphic loci only:\n", text)
        self.assertNotIn("Locus", text[text.index("AMOVA Results for polymorphic loci only"):])
        self.assertNotIn("Global AMOVA results", text)

    def test_loci_with_one_allele_stand_thirty_to_a_line(self):
        row = " ".join(["1"] * 32)
        samples = [(name, [[row, row]] * 3) for name in "AB"]
        self.run_project(project(samples, [("A", "B")], genotypic=1), NumPermutationsAMOVA=0, **self.KEYS)
        lines = self.document().split("\nList of loci with only one allele:\n", 1)[1].splitlines()
        self.assertEqual([len(line.split()) for line in lines[1:3]], [30, 2])

    def test_averages_are_ratios_of_the_sums_of_the_table_in_every_design(self):
        designs = (("one group of whole individuals", ONE_GROUP, 0, {"FST": ((0,), (0, 1))}),
                   ("one group with individuals", ONE_GROUP, 1,
                    {"FIS": ((1,), (1, 2)), "FST": ((0,), (0, 1, 2)), "FIT": ((0, 1), (0, 1, 2))}),
                   ("groups of whole individuals", TWO_GROUPS, 0,
                    {"FST": ((0, 1), (0, 1, 2)), "FSC": ((1,), (1, 2)), "FCT": ((0,), (0, 1, 2))}),
                   ("groups with individuals", TWO_GROUPS, 1,
                    {"FIS": ((2,), (2, 3)), "FSC": ((1,), (1, 2, 3)), "FCT": ((0,), (0, 1, 2, 3)),
                     "FIT": ((0, 1, 2), (0, 1, 2, 3))}))
        for name, groups, level, indices in designs:
            with self.subTest(name):
                self.run_project(microsatellites(2, FOUR, 9, groups=groups), IncludeIndividualLevel=level,
                                 NumPermutationsAMOVA=0, **self.KEYS)
                self.check_averages(indices)

    def check_averages(self, indices):
        text = self.document()
        levels = 1 + max(k for _, whole in indices.values() for k in whole)
        columns = 4 * levels + 2 * len(indices)
        table, rest = text[text.index("AMOVA Results for polymorphic loci only"):].split("Global AMOVA results", 1)
        rows = [[float(x) for x in line.split()] for line in table.splitlines()
                if re.match(r" +\d+( +-?[0-9.]+){%d}$" % columns, line)]
        self.assertEqual(len(rows), 8)
        sums = [sum(row[3 + 4 * k] for row in rows) for k in range(levels)]
        squares = [sum(row[1 + 4 * k] for row in rows) for k in range(levels)]
        printed = re.findall(r"(-?\d+\.\d{3}) +(-?\d+\.\d{5}) V[a-d] +(-?\d+\.\d\d)\n", rest)
        self.assertEqual(len(printed), levels)
        for k, (ssd, variance, share) in enumerate(printed):
            self.assertAlmostEqual(float(ssd), squares[k], delta=1e-3)
            self.assertAlmostEqual(float(variance), sums[k], delta=1e-4)
            self.assertAlmostEqual(float(share), 100 * sums[k] / sum(sums), delta=1e-2)
        averages = rest[rest.index("\nAverage F-Statistics over all loci\n Fixation Indices\n"):]
        for name, (part, whole) in indices.items():
            average = value_after(averages, "       %s :" % name)
            self.assertAlmostEqual(average, sum(sums[k] for k in part) / sum(sums[k] for k in whole), delta=1e-4)
            start = averages.index("\n%s bootstrap percentile values (over 20000 bootstraps)\n" % name)
            percentiles = [float(x) for x in re.findall(r"(?m)^ +[\d.]+ +% +: +(-?\d+\.\d+)$", averages[start:])[:17]]
            self.assertEqual(len(percentiles), 17)
            self.assertEqual(percentiles, sorted(percentiles))
            self.assertLess(percentiles[0], average)
            self.assertGreater(percentiles[-1], average)
        self.assertIn("\nNo permutations were done and significance levels cannot be reported\n", rest)

    def test_the_columns_of_the_average_stand_in_line(self):
        self.run_project(microsatellites(2, FOUR, 4, groups=TWO_GROUPS), IncludeIndividualLevel=1,
                         NumPermutationsAMOVA=0, **self.KEYS)
        part = self.document().split("AMOVA design and results (average", 1)[1]
        ends = [re.match(r" \S+ +-?\d+\.\d{3}", line).end() for line in part.splitlines()
                if re.match(r" \S+ +-?\d+\.\d{3} ", line)]
        self.assertEqual(ends, [32] * 5)

    def test_population_specific_tables_are_as_wide_as_their_populations(self):
        samples = [("A", 6), ("a long name", 7), ("C", 5)]
        for level, index, width in ((0, "FST", 13), (1, "FIS", 13)):
            self.run_project(microsatellites(2, samples, 4, groups=(("A", "a long name", "C"),)),
                             IncludeIndividualLevel=level, PopSpecificFST=1, PopSpecificFIS=1, NumPermutationsAMOVA=0,
                             **self.KEYS)
            text = self.document()
            line = (3 * width + 21) * "-"
            head = "  Locus   Average %s" % index + "".join(name.rjust(width) for name, _ in samples)
            for kind, decimals in (("absolute values", 5), ("relative values (%%) compared to average %s" % index, 3)):
                title = "\nPopulation specific %s indices per polymorphic locus (%s)\n" % (index, kind)
                self.assertRegex(text, re.escape(title + line + "\n" + head + "\n" + line) +
                                 r"(\n +\d +-?\d\.\d{5}( +-?\d+\.\d{%d}){3}){3}\n" % decimals)

    def test_a_structure_of_one_population_a_group_ends_the_analysis(self):
        # The pairwise task keeps the block alive after the AMOVA itself has been refused.
        groups = tuple((name,) for name, _ in FOUR)
        self.run_project(microsatellites(1, FOUR, 4, groups=groups), TaskNumber=512 + 1024 + 8192, LocByLocAMOVA=1,
                         ComputePairwiseFST=1, NumPermutationsFST=0, NumPermutPopDiff=1000, NumDememoPopDiff=100)
        self.assertIn('from function "Project::AMOVA()" : project contains invalid data after check', self.log())
        self.assertIn("== Exact Test of Sample Differentiation", self.document())
        self.assertNotIn("AMOVA Results for polymorphic loci only", self.document())


class ExactTests(EdgeTestCase):
    KEYS = dict(TaskNumber=8192, NumPermutPopDiff=1000, NumDememoPopDiff=100, PrintHistoPopDiff=1)

    def test_a_pair_of_one_haplotype_is_told(self):
        samples = [("A", ["1 1"] * 5), ("B", ["1 1"] * 6), ("C", ["2 2"] * 25)]
        self.run_project(project(samples, [("A", "B", "C")]), **self.KEYS)
        text = self.document()
        self.assertRegex(text, r"\n +2 +-1\.00000\+-1\.0000\n")
        self.assertTrue("\nAt for one population pair the test was not possible to\n"
                        "be done. This is indicated by an absurde P-value of -1:" in text)
        self.assertIn("\nMarkov chain length : 20000 steps)\n\n", text)
        table = text[text.index("Table of significant differences"):].splitlines()[3:7]
        self.assertEqual([line.split() for line in table],
                         [["1", "2", "3"], ["1", "-", "+"], ["2", "-", "+"], ["3", "+", "+"]])
        self.assertIn("|     1|     2|     3|", text)
        self.assertIn("|     1|     1|     2|", text)

    def test_two_samples_of_one_haplotype_have_no_test_at_all(self):
        self.run_project(project([("A", ["1 1"] * 5), ("B", ["1 1"] * 6)], [("A", "B")]), **self.KEYS)
        text = self.document()
        self.assertIn("Exact P value = -1.00000 +- 1.00000  (0 Markov steps done)", text)
        self.assertIn("absurde P-value of -1:", text)

    def test_the_chain_length_is_the_number_asked(self):
        samples = [("A", ["1 1", "2 2"] * 5), ("B", ["1 1", "2 2", "2 2"] * 4)]
        for asked, shown, steps in ((22000, 22000, 20000), (60000, 60000, 60000), (1000, 20000, 20000)):
            self.run_project(project(samples, [("A", "B")]), **dict(self.KEYS, NumPermutPopDiff=asked, PrecProbPopDiff=0))
            text = self.document()
            self.assertIn("\nMarkov chain length : %d steps)\n\n" % shown, text)
            self.assertRegex(text, r"\(%d Markov steps done\)" % steps)

    def test_individuals_of_unknown_phase_are_tested_by_their_genotypes(self):
        genotypes = (["AA", "AB", "BA", "BB", "AC"] * 3, ["AA", "BB", "BB", "CB", "BC"] * 3)
        diploid = [(name, [[g[0], g[1]] for g in sample]) for name, sample in zip("XY", genotypes)]
        haploid = [(name, ["".join(sorted(g)) for g in sample]) for name, sample in zip("XY", genotypes)]
        found = []
        for samples, genotypic in ((diploid, 1), (haploid, 0)):
            self.run_project(project(samples, [("X", "Y")], genotypic=genotypic), **self.KEYS)
            text = self.document()
            self.assertIn("Based on %s Frequencies" % ("Genotype" if genotypic else "Haplotype"), text)
            found.append(re.findall(r"\d\.\d+ ?\+- ?\d\.\d+", text))
        self.assertEqual(len(found[0]), 2)
        self.assertEqual(found[0], found[1])

    def test_one_sample_has_no_test(self):
        self.run_project(project([("A", ["1 1", "2 2"] * 5)], [("A",)]), **self.KEYS)
        self.assertNotIn("Exact Test", self.document())


class MantelTest(EdgeTestCase):
    LABELS = ("s0", "s1", "s2", "s3")
    X = ((0,), (10, 0), (40, 35, 0), (55, 50, 20, 0))
    Y = ((0,), (1, 0), (3, 2, 0), (4, 3, 1, 0))
    PAIRS = (("s0", "s1"), ("s2", "s3"))

    def test_frequencies_alone_take_the_conventional_distance(self):
        extra = mantel_section("fst", [self.X], self.LABELS)
        for matrix in (0, 1):
            self.run_project(known_haplotypes(self.PAIRS, matrix=False, extra=extra), TaskNumber=65536,
                             NumPermMantel=10, ComputeDistanceMatrixAMOVA=matrix)
            self.assertIn("haplotype frequencies will be used, and conventional Fst will be computed", self.log())
            self.assertLess(abs(value_after(self.document(), "Correlation coefficient (rY1)    :")), 1.0)
            self.assertNotIn("#[", self.log())

    def test_a_given_matrix_needs_no_distances(self):
        extra = mantel_section("custom", [self.Y, self.X], self.LABELS)
        self.run_project(known_haplotypes(self.PAIRS, matrix=False, extra=extra), TaskNumber=65536, NumPermMantel=10,
                         ComputeDistanceMatrixAMOVA=0)
        text = self.document()
        self.assertIn('\nLabels of Y matrix rows={\n   "s0"\n', text)
        self.assertIn("\nList of matrices:\n  X1={   0.000000 10.000000 40.000000 55.000000 \n", text)
        self.assertIn("\n  }\n  Y (custom)={   0.000000 1.000000 3.000000 4.000000 \n", text)
        self.assertGreater(value_after(text, "Correlation coefficient (rY1)    :"), 0.5)
        self.assertNotIn("#[", self.log())

    def test_no_permutations_leave_p_values_of_zero(self):
        extra = mantel_section("custom", [self.Y, self.X], self.LABELS)
        self.run_project(known_haplotypes(self.PAIRS, extra=extra), TaskNumber=65536, NumPermMantel=0)
        self.assertIn("\n\nSignificance testing (0 permutations for Mantel test)\n====================\n\n"
                      "P(rY1 rand >= rY1 obs)            : 0.000000\n"
                      "No. of smaller rand rY1           : 0\n", self.document())
        self.assertNotIn("Starting", self.log())

    def test_three_labels_are_too_few_for_two_explanatory_matrices(self):
        extra = mantel_section("fst", [self.X, self.Y], self.LABELS, used=self.LABELS[:3])
        self.run_project(known_haplotypes(self.PAIRS, extra=extra), TaskNumber=65536, NumPermMantel=10)
        text = self.document()
        self.assertIn("}The minimum size of matrices is 4 in order to perform a Mantel test\n"
                      "Computations were not performed...", text)
        self.assertNotIn("List of matrices", text)

    def test_pooled_groups_know_the_labels_of_a_given_matrix_alone(self):
        keys = dict(TaskNumber=65536, NumPermMantel=10, ComputeSumStatsWithinGroups=1)
        self.run_project(known_haplotypes(self.PAIRS, extra=mantel_section("custom", [self.Y, self.X], self.LABELS)),
                         **keys)
        self.assertEqual(self.document().count("\n\nCorrelation coefficient (rY1)    : "), 2)
        self.run_project(known_haplotypes(self.PAIRS, extra=mantel_section("fst", [self.X], self.LABELS)), **keys)
        self.assertEqual(self.document().count("\n\nCorrelation coefficient (rY1)    : "), 1)
        self.assertEqual(self.document().count("  Error while checking matrices, Label(s) not found\n"), 1)


class GroupLevel(EdgeTestCase):
    """Groups of one sample each: what draws no random number has the same digits at both levels."""

    KEYS = dict(TaskNumber=1 + 2 + 4 + 8 + 1024, ComputeSumStatsWithinGroups=1, ComputePairwiseFST=1, PrintFstVals=1,
                PrintSlatkinsDist=1, PrintMissIntermatchs=1, NumPermutationsFST=0, UnequalPopSizeDiv=1,
                ComputeStandardDiversityIndices=1, ComputeTheta=15)

    @staticmethod
    def level(text, groups):
        """Lines of a level without anchors, times and the names of its samples."""
        text = re.sub(r"<A NAME=[^>]*></A>|time=\"[^\"]*\"", "", text)
        for number, (name,) in enumerate(groups, 1):
            text = re.sub(r"\bGroup%d\b" % number, name, text)
        lines = [re.sub(r"\s+", " ", line) for line in text.splitlines()]
        return [line for line in lines if line.strip() and not line.startswith((" Tot", "==", "--", " --"))]

    def assert_equal_levels(self, text, groups):
        document = self.document()
        first = document.index("== ANALYSES AT THE INTRA-GROUP LEVEL")
        second = document.index("== ANALYSES AT THE INTRA-POPULATION LEVEL")
        end = document.index("END OF RUN NUMBER")
        of_groups, of_samples = (self.level(part, groups) for part in (document[first:second], document[second:end]))
        start = next(k for k, line in enumerate(of_groups) if line == of_samples[1])
        numbers = [line for line in of_samples if re.search(r"\d\.\d", line)]
        self.assertGreater(len(numbers), 100, text)
        self.assertEqual([line for line in of_groups[start:] if re.search(r"\d\.\d", line)], numbers, text)

    def test_a_group_is_the_sum_of_its_samples(self):
        samples = [(name, individuals(number, 4, 5 + number, 0.1 * number)) for number, name in enumerate("ABCD")]
        merged = [("Group1", samples[0][1] + samples[1][1]), ("Group2", samples[2][1] + samples[3][1])]
        keys = dict(self.KEYS, TaskNumber=1 + 1024 + 8192, NumPermutationsFST=20, NumPermutPopDiff=1000,
                    NumDememoPopDiff=100)
        self.run_project(project(samples, TWO_GROUPS, genotypic=1), **keys)
        document = self.document()
        of_groups = document[document.index("== ANALYSES AT THE INTRA-GROUP LEVEL"):
                             document.index("== ANALYSES AT THE INTRA-POPULATION LEVEL")]
        self.run_project(project(merged, None, genotypic=1), **dict(keys, ComputeSumStatsWithinGroups=0))
        by_hand = self.document()
        pooled, written = (re.findall(r"-?\d+\.\d{3,}(?:\+-\d\.\d+)?", part[part.index("Standard diversity"):])
                           for part in (of_groups, by_hand[:by_hand.index("END OF RUN")]))
        self.assertGreater(len(pooled), 40)
        self.assertEqual(pooled, written)

    def test_microsatellites(self):
        groups = tuple((name,) for name, _ in FOUR)
        for phase in (0, 1):
            self.run_project(microsatellites(3, FOUR, 4, phase=phase, groups=groups), ComputeDeltaMuSqr=1, **self.KEYS)
            self.assert_equal_levels("phase %d" % phase, groups)

    def test_sequences(self):
        samples = tuple((name, (("h0", 3, "ACGTACGTACTT"), ("h%s1" % name, 2, "ACGTACGT" + tail),
                                ("h%s2" % name, 4, "GTACACGT" + tail)))
                        for name, tail in zip("ABCD", ("ACTA", "GCTT", "ACGT", "TTTT")))
        groups = tuple((name,) for name in "ABCD")
        self.run_project(support.dna_project(samples, structure=groups), **self.KEYS)
        self.assert_equal_levels("DNA", groups)

    def test_frequencies(self):
        groups = tuple((name,) for name in ("s0", "s1", "s2", "s3"))
        keys = dict(self.KEYS, TaskNumber=1 + 1024)
        self.run_project(known_haplotypes(groups), **keys)
        document = self.document()
        part = document[document.index("== ANALYSES AT THE INTRA-GROUP LEVEL"):]
        matrices = re.findall(r"(?s)<PairFstMat[^>]*>(.*?)</PairFstMat>", part)
        self.assertEqual(len(matrices), 2)
        self.assertEqual(matrices[0], matrices[1])


if __name__ == "__main__":
    unittest.main()
