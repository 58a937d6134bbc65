"""Mismatch distributions and expansions in whole runs."""
import random
import unittest

import support

KEYS = dict(TaskNumber=4, MismatchDemogExp=1, MismatchSpatialExp=1, MismatchSpatialExpNumParams=3, NumBootExpDem=0)


def sample(seed, copies=12, sites=40):
    generator = random.Random(seed)
    base = [generator.choice("ACGT") for _ in range(sites)]
    rows = []
    for number in range(copies):
        row = list(base)
        for _ in range(generator.randrange(1, 5)):
            at = generator.randrange(sites)
            row[at] = {"A": "G", "G": "A", "C": "T", "T": "C"}[base[at]]
        rows.append(("h%d_%d" % (seed, number), 1, "".join(row)))
    return ("S%d" % seed, tuple(rows))


class Mismatch(support.RunTestCase):
    def test_no_bootstraps_print_the_plain_table(self):
        self.run_project(support.dna_project(samples=(sample(1),)), **KEYS)
        text = self.document()
        self.assertIn("        #Diff     Observed    Model Freq.\n", text)
        self.assertNotIn("Test of goodness-of-fit", text)

    def test_bootstraps_print_test_intervals_and_region(self):
        self.run_project(support.dna_project(samples=(sample(1),)), **dict(KEYS, NumBootExpDem=20))
        self.assert_well_formed("p.res", "p.xml")
        text = self.document()
        self.assertIn("Based on 20 replicates\n", text)
        self.assertEqual(text.count("Test of goodness-of-fit:"), 2)
        self.assertEqual(text.count("Confidence region for the observed mismatch:"), 2)
        for label in ("Tau:", "Theta0:", "Theta1:", "M:", "Theta:", "Mean No. of pairwise diff.", "No. pol. sites:"):
            self.assertIn(label, text)

    def test_the_number_of_parameters_chooses_the_spatial_fits(self):
        four = "Parameters of the spatial expansion assuming different deme size"
        three = "Parameters of the spatial expansion assuming constant deme size"
        for parameters, expected in ((2, [four, three]), (3, [three]), (4, [four]), (0, [])):
            self.run_project(support.dna_project(samples=(sample(1),)),
                             **dict(KEYS, MismatchSpatialExpNumParams=parameters))
            text = self.document()
            found = sorted((text.index(title), title) for title in (three, four) if title in text)
            self.assertEqual([title for _, title in found], expected)

    def test_an_estimate_without_upper_bound_has_no_intervals(self):
        samples = (("Few", (("a", 2, "ACGTACGTAC"), ("b", 1, "ACGTACGTAT"))),)
        log = self.run_project(support.dna_project(samples=samples),
                               **dict(KEYS, MismatchSpatialExpNumParams=4, NumBootExpDem=20))
        self.assertIn("Successful run of", log)
        spatial = self.document().split("Parameters of the spatial expansion assuming different deme size")[1]
        self.assertRegex(spatial, r"\nTheta1                              : \d{12,}\.")
        self.assertIn("        #Diff     Observed    Model Freq.\n", spatial)
        self.assertNotIn("Test of goodness-of-fit", spatial)

    def test_a_single_haplotype_has_no_estimates(self):
        self.run_project(support.dna_project(samples=(("One", (("h", 5, "ACGTACGT"),)),)), **KEYS)
        self.assertIn("The variance of the mismatch distribution is to small,", self.document())
        self.assertIn("Successful run of", self.log())

    def test_two_haplotypes_at_one_distance_have_no_variance(self):
        samples = (("Two", (("a", 1, "ACGTACGT"), ("b", 1, "ACGTACGA"))),)
        self.run_project(support.dna_project(samples=samples), **KEYS)
        self.assertIn("no demographic parameters can be estimated.", self.document())


if __name__ == "__main__":
    unittest.main()
