"""Gametic phases by the sampler: the document, and the project file that is read back."""
import re
import unittest

import support

HAPLOTYPES = ["0 0 0 0 0", "1 1 1 1 1", "0 1 0 1 0"]
PAIRS = [(0, 1), (0, 0), (1, 1), (0, 2), (2, 2), (0, 1), (1, 2), (0, 0), (1, 1), (0, 2)]


def project(pairs):
    return support.unphased_project([(1, HAPLOTYPES[a].split(), HAPLOTYPES[b].split()) for a, b in pairs])


class Phase(support.RunTestCase):
    def run_sampler(self, pairs=PAIRS):
        self.run_project(project(pairs), TaskNumber=8, GibbsInferGamPhase=1, GibbsBurnIn=2000,
                         GibbsSamplingInterval=20, GibbsNumSamples=100, GibbsAlphaInitValue=0.01,
                         GibbsEpsilonValue=0.01, GibbsHetSiteInfluenceZone=5, GibbsOutputGamPhase=1)
        return self.document()

    def test_phase_frequencies_of_an_individual_sum_to_one(self):
        text = self.run_sampler()
        table = text[text.index("Constituant haplotypes"):]
        sums = {}
        name = None
        for line in table.splitlines()[2:]:
            match = re.match(r"(\S*)\t([0-9.]+)\t\[", line)
            if not match:
                break
            name = match.group(1) or name
            sums[name] = sums.get(name, 0.0) + float(match.group(2))
        self.assertEqual(len(sums), len(PAIRS))
        for value in sums.values():
            self.assertAlmostEqual(value, 1.0, delta=1e-4)

    def test_linked_haplotypes_are_found(self):
        text = self.run_sampler()
        for haplotype in HAPLOTYPES:
            self.assertRegex(text, r"\]\t *0\.[0-9]+\t" + haplotype + "\n")

    def test_the_file_of_phases_is_read_back_as_a_project(self):
        self.run_sampler()
        self.run_project(self.read("p.res", "p_KPV_1.tvp"), name="q", TaskNumber=1)
        self.assertNotIn("#[ERROR", self.log("q"))
        self.assertIn("Successful run of", self.log("q"))

    def test_a_sample_without_ambiguity_is_told(self):
        self.assertIn(" NO AMBIGUOUS INDIVIDUALS IN THIS SAMPLE, PHASE ESTIMATION SKIPPED",
                      self.run_sampler([(0, 0), (1, 1)]))


if __name__ == "__main__":
    unittest.main()
