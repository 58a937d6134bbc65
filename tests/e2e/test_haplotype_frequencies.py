"""Haplotype frequencies of whole runs: counted, by EM in one pass and by the zipper, and the samples at their edges."""
import math
import re
import unittest

import support

TWO_LOCI = [("AB", "AB", 6), ("AB", "ab", 9), ("ab", "ab", 5), ("AB", "Ab", 3), ("AB", "aB", 2), ("Ab", "ab", 3),
            ("aB", "ab", 2)]


def project(individuals, **profile):
    return support.unphased_project([(count, a, b) for a, b, count in individuals], name="Pop <1 & co", **profile)


class HaplotypeFrequencies(support.RunTestCase):
    def estimate(self, individuals, **keys):
        """Document of a run of the EM over the haplotypes of one sample."""
        settings = {"TaskNumber": 8, "ComputeAllHaplotypesEM": 1, "InitialConditionsEM": 3}
        settings.update(keys)
        self.log_text = self.run_project(project(individuals), **settings)
        self.assertIn("Successful run of p.tvp", self.log_text)
        self.assert_well_formed("p.res", "p.xml")
        return self.document()

    def rows(self, text):
        """Frequency and deviation by haplotype of the first table of a text."""
        table = text[text.index("Maximum-likelihood haplotype frequencies"):]
        table = table[:table.index("Sum of all")]
        found = re.findall(r"^ *\d+ +([\d.]+) +([\d.]+)\t(.*)$", table, re.MULTILINE)
        return {alleles.strip().replace(" ", ""): (float(p), float(sd)) for p, sd, alleles in found}

    def likelihood(self, text):
        return float(re.search(r"^LogL[Hh]ood  : (-?[\d.]+)$", text, re.MULTILINE).group(1))

    def test_one_pass(self):
        text = self.estimate(TWO_LOCI, NumBootstrapReplicatesEM=5, NumInitCondBootstrapEM=2)
        self.assertIn("\n====================================\n"
                      "== Haplotypes frequency estimation : (Pop &lt;1 &amp; co)\n"
                      "====================================\n\n", text)
        self.assertEqual(self.likelihood(text), -54.83934)
        rows = self.rows(text)
        self.assertEqual(rows, {"AB": (0.426650, 0.053025), "Ab": (0.106683, 0.031684),
                                "aB": (0.073350, 0.041233), "ab": (0.393317, 0.042858)})
        # What the document prints must give the likelihood that it prints.
        total = 0.0
        for a, b, count in TWO_LOCI:
            pairs = {tuple(sorted((a, b))), tuple(sorted((a[0] + b[1], b[0] + a[1])))}
            total += count * math.log(sum((1 if x == y else 2) * rows[x][0] * rows[y][0] for x, y in pairs))
        self.assertAlmostEqual(total, -54.83934, delta=1e-4)

    def test_html(self):
        self.estimate(TWO_LOCI, XMLOutput=1)
        xml = self.rows(self.document())
        self.run_project(project(TWO_LOCI), TaskNumber=8, ComputeAllHaplotypesEM=1, InitialConditionsEM=3, XMLOutput=0)
        self.assertEqual(self.rows(self.document(extension="htm")), xml)

    def test_zipper_leaves_out_the_last_locus(self):
        text = self.estimate([("ABCDE", "abcde", 4), ("ABCDE", "ABCDE", 5), ("abcde", "abcde", 3)], EMUseZipper=1,
                             EMWinSize=2)
        self.assertIn("\nLoci within window                          : 1 2 3 4 \n", text)
        self.assertAlmostEqual(self.rows(text)["ABCD"][0], 14 / 24, delta=2e-5)

    def test_inbreeding(self):
        text = self.estimate([("AB", "AB", 8), ("ab", "ab", 8), ("AB", "ab", 4), ("AB", "Ab", 2), ("Ab", "Ab", 2),
                              ("aB", "ab", 1)], EMEstimateInbreedingCoeff=1)
        self.assertIn("\nInbreeding coefficient                      : 0.544568\n", text)
        self.assertEqual(self.likelihood(text), -41.52806)

    def test_a_recessive_allele_is_estimated(self):
        individuals = [(["A"], ["A"], 186), (["B"], ["B"], 38), (["A"], ["B"], 13), (["null"], ["null"], 284)]
        text = project(individuals, RecessiveData=1, RecessiveAllele='"null"')
        self.run_project(text, TaskNumber=8, ComputeAllHaplotypesEM=1, InitialConditionsEM=3, RecessiveAllelesEM=1)
        rows = self.rows(self.document())
        p, q, r = rows["A"][0], rows["B"][0], rows["null"][0]
        self.assertAlmostEqual(p + q + r, 1.0, delta=2e-6)
        # Fixed point of gene counting.
        a, b, ab, o = 186, 38, 13, 284
        self.assertAlmostEqual(p, (a * (2 * p + 2 * r) / (p + 2 * r) + ab) / 1042, delta=1e-5)
        self.assertAlmostEqual(q, (b * (2 * q + 2 * r) / (q + 2 * r) + ab) / 1042, delta=1e-5)
        self.assertAlmostEqual(r, (2 * o + a * 2 * r / (p + 2 * r) + b * 2 * r / (q + 2 * r)) / 1042, delta=1e-5)

    def test_single_loci_and_pairs(self):
        text = self.estimate(TWO_LOCI, ComputeAllHaplotypesEM=0, ComputeAllAllelesEM=1, ComputeAllSubHaplotypesEM=1)
        pair = text[text.index("Allele frequencies for the pair of loci( 2 , 1 )"):]
        self.assertEqual(self.rows(pair)["BA"][0], 0.426650)
        locus = text[text.index("Allele frequencies for the locus 1\n"):]
        self.assertEqual(self.rows(locus)["A"][0], 0.533333)

    def test_a_monomorphic_locus(self):
        self.assertEqual(self.rows(self.estimate([("A", "A", 4)])), {"A": (1.0, 0.0)})

    def test_only_missing_data_at_a_locus(self):
        rows = self.rows(self.estimate([("A?", "a?", 4), ("A?", "A?", 2)], NumBootstrapReplicatesEM=3))
        self.assertAlmostEqual(rows["A?"][0], 8 / 12, delta=1e-6)

    def test_one_individual(self):
        rows = self.rows(self.estimate([("ABC", "abc", 1)], FrequencyThreshold=-1))
        self.assertEqual(len(rows), 8)
        self.assertAlmostEqual(sum(p for p, _ in rows.values()), 1.0, delta=1e-5)

    def test_33_heterozygous_loci(self):
        text = self.estimate([("A" * 33, "a" * 33, 1), ("A" * 33, "A" * 33, 3)], NumBootstrapReplicatesEM=2)
        self.assertIn("too many heterozygous loci", self.log_text)
        self.assertIn("\nGenotypes are undefined for this phenotype...\n", text)
        self.assertEqual(self.likelihood(text), -3.4028234663852886e+38)

    def test_33_heterozygous_loci_in_pairs(self):
        text = self.estimate([("A" * 33, "a" * 33, 1), ("A" * 33, "A" * 33, 3)], ComputeAllHaplotypesEM=0,
                             ComputeAllAllelesEM=1, InitialConditionsEM=1)
        self.assertEqual(text.count("Allele frequencies for the locus "), 33)
        self.assertNotIn("too many heterozygous loci", self.log_text)

    def test_more_individuals_than_memory_holds(self):
        log = self.run_project(project([("AB", "ab", 900000000), ("AB", "AB", 3)]), TaskNumber=8,
                               ComputeAllHaplotypesEM=1, InitialConditionsEM=1, NumBootstrapReplicatesEM=2)
        self.assertIn("#[MEMORY # 1] from function \"TPhenDB::create_random_list()\" : not enough memory", log)
        self.assertNotIn("Successful run", log)
        self.assertFalse(self.exists("compfinished_final"))
        self.assert_well_formed("p.res", "p.xml")

    def test_known_haplotypes_are_counted(self):
        self.run_project(support.dna_project(), TaskNumber=8)
        text = self.document()
        south = text[text.index("(South)"):]
        self.assertIn("\nNo. of gene copies in sample                : 4\n", south)
        self.assertRegex(south, r"\n +1 +h1 +0\.250000 +0\.250000\tACGTACGTAC\n")
        self.assertRegex(south, r"\n +2 +h3 +0\.750000 +0\.250000\tACTTACGTAC\n")


if __name__ == "__main__":
    unittest.main()
