"""Diversity indices of whole runs against plain counts over generated data."""
import os
import random
import sys
import unittest

from support import RunTestCase, SOURCE_DIR, dna_project, mask_times

sys.path.insert(0, os.path.join(SOURCE_DIR, "tests", "cases"))
from case_document import Document, labelled  # noqa: E402
from extract_indices import MOLECULAR, STANDARD, locus_table  # noqa: E402

LOCI = 60
FIXED, FIXED_BUT_MISSING, PRIVATE = 10, 20, 30


def genotypes(seed=5, samples=5, individuals=20):
    """Per sample a list of individuals, each two lists of LOCI alleles; '?' is missing."""
    rng = random.Random(seed)
    frequencies = [rng.uniform(0.1, 0.9) for _ in range(LOCI)]
    result = []
    for sample in range(samples):
        people = []
        for _ in range(individuals):
            pair = [["a" if rng.random() < frequencies[locus] else "b" for locus in range(LOCI)] for _ in range(2)]
            for locus in range(LOCI):
                if locus in (FIXED, FIXED_BUT_MISSING):
                    pair[0][locus] = pair[1][locus] = "a"
                if locus == PRIVATE and sample != 3:
                    pair[0][locus] = pair[1][locus] = "b"
                if locus != FIXED and rng.random() < 0.03:
                    pair[0][locus] = pair[1][locus] = "?"
            people.append(pair)
        result.append(people)
    return result


def genotypic_project(data):
    lines = ["[Profile]", 'Title="generated"', "NbSamples=%d" % len(data), "DataType=STANDARD", "GenotypicData=1",
             "GameticPhase=0", "RecessiveData=0", "LocusSeparator=WHITESPACE", "MissingData='?'", "[Data]", "[[Samples]]"]
    for number, people in enumerate(data, 1):
        lines += ['SampleName="s%d"' % number, "SampleSize=%d" % len(people), "SampleData={"]
        for index, (first, second) in enumerate(people):
            lines += ["i%d_%d 1 %s" % (number, index, " ".join(first)), "  " + " ".join(second)]
        lines.append("}")
    return "\n".join(lines) + "\n"


def count_locus(people, locus):
    """(copies, alleles, observed, expected heterozygosity) of one locus, counted one by one."""
    alleles = [pair[k][locus] for pair in people for k in (0, 1) if pair[k][locus] != "?"]
    known = [pair for pair in people if "?" not in (pair[0][locus], pair[1][locus])]
    m = len(alleles)
    different = sum(alleles[i] != alleles[j] for i in range(m) for j in range(m) if i != j)
    return (m, len(set(alleles)), sum(p[0][locus] != p[1][locus] for p in known) / len(known),
            different / (m * (m - 1)))


class IndicesOfGenotypes(RunTestCase):
    def test_equal_a_plain_count_in_both_formats(self):
        data = genotypes()
        for xml in (1, 0):
            name = "g%d" % xml
            self.run_project(genotypic_project(data), name=name, TaskNumber=3, AllowedLevelOfMissingData=1, ComputeTheta=15,
                             XMLOutput=xml)
            document = self.document(name, "xml" if xml else "htm")
            self.assertNotIn("\x01", document)
            parsed = Document(document)
            for number, people in enumerate(data, 1):
                check = {"sample": "s%d" % number}
                rows = {int(row["locus"]) - 1: row for row in locus_table(parsed, check)[1]}
                for locus in range(LOCI):
                    copies, alleles, observed, expected = count_locus(people, locus)
                    self.assertEqual(locus in rows, alleles > 1, (number, locus))
                    if locus in rows:
                        self.assertEqual((rows[locus]["copies"], rows[locus]["alleles"]), (copies, alleles))
                        self.assertAlmostEqual(rows[locus]["obs"], observed, delta=5.1e-6)
                        self.assertAlmostEqual(rows[locus]["exp"], expected, delta=5.1e-6)
                self.assertNotIn(FIXED, rows)
                self.assertNotIn(FIXED_BUT_MISSING, rows)
                self.assertEqual(PRIVATE in rows, number == 4)

    def test_are_the_same_at_each_run(self):
        text = genotypic_project(genotypes(seed=9, samples=2, individuals=6))
        self.run_project(text, name="one", TaskNumber=3, ComputeTheta=15)
        first = mask_times(self.document("one"))
        os.remove(self.path("one.res", "one.xml"))
        self.run_project(text, name="one", TaskNumber=3, ComputeTheta=15)
        self.assertEqual(mask_times(self.document("one")).replace("NUMBER 2", "NUMBER 1"), first)


class IndicesOfHaplotypes(RunTestCase):
    def test_of_sequences_equal_a_plain_count(self):
        rng = random.Random(3)
        counts = [rng.randint(1, 6) for _ in range(12)]
        sequences = ["".join(rng.choice("ACGT") if rng.random() < 0.2 else "A" for _ in range(80)) for _ in counts]
        samples = (("x", tuple(("h%d" % i, n, s) for i, (n, s) in enumerate(zip(counts, sequences)))),)
        self.run_project(dna_project(samples), TaskNumber=3, DistanceMethod=0, PrintHaplDistMat=1, ComputeTheta=15,
                         AllowedLevelOfMissingData=0.05)
        self.assert_well_formed("p.res", "p.xml")
        document = Document(self.document())
        copies = [s for n, s in zip(counts, sequences) for _ in range(n)]
        n = len(copies)
        pairs = [sum(a != b for a, b in zip(copies[i], copies[j])) for i in range(n) for j in range(i)]
        molecular = document.section(MOLECULAR, "x")
        self.assertAlmostEqual(labelled(molecular, "Mean number of pairwise differences"), sum(pairs) / len(pairs), delta=1e-6)
        self.assertAlmostEqual(labelled(molecular, r"Nucleotide diversity \(average over loci\)"),
                               sum(pairs) / len(pairs) / 80, delta=1e-6)
        segregating = sum(len(set(column)) > 1 for column in zip(*copies))
        self.assertEqual(labelled(molecular, "No. of polymorphic sites"), segregating)
        self.assertAlmostEqual(labelled(molecular, r"Theta\(S\)"), segregating / sum(1 / i for i in range(1, n)), delta=1e-6)
        standard = document.section(STANDARD, "x")
        self.assertEqual(labelled(standard, "No. of gene copies"), n)
        self.assertEqual(labelled(standard, "No. of sequences"), len(set(sequences)))
        different = sum(copies[i] != copies[j] for i in range(n) for j in range(i))
        self.assertAlmostEqual(labelled(standard, "Gene diversity"), different / (n * (n - 1) / 2), delta=5.1e-5)

    def test_of_names_with_special_characters_stand_in_a_well_formed_document(self):
        samples = (('a & b < c > "d" \xe9', (("h&1", 2, "ACGT"), ("<h2>", 1, "ACGA"))),)
        text = dna_project(samples).replace('"d"', "'d'")
        self.run_project(text, TaskNumber=3, PrintHaplDistMat=1, PrintMinSpannNetworkPop=1, ComputeTheta=15,
                         AllowedLevelOfMissingData=1)
        self.assert_well_formed("p.res", "p.xml")

    def test_of_a_failed_correction_leave_the_other_samples_alone(self):
        samples = (("far", (("f1", 2, "ACGTACGT"), ("f2", 1, "TGCATGCA"))), ("near", (("n1", 2, "ACGTACGT"), ("n2", 1, "ACGTACGA"))))
        log = self.run_project(dna_project(samples), TaskNumber=3, DistanceMethod=1, AllowedLevelOfMissingData=1)
        self.assertIn("sequences too divergent for Jukes and Cantor correction", log)
        self.assertIn("distance matrix could not be computed", log)
        document = Document(self.document())
        self.assertFalse(any("Mean number of pairwise" in line for line in document.section(MOLECULAR, "far")))
        self.assertTrue(any("Mean number of pairwise" in line for line in document.section(MOLECULAR, "near")))
        self.assert_finished()

    def test_of_frequency_data_come_from_the_frequencies_alone(self):
        project = ('[Profile]\nTitle="f"\nNbSamples=1\nDataType=FREQUENCY\nGenotypicData=0\n[Data]\n[[Samples]]\n'
                   'SampleName="x"\nSampleSize=10\nSampleData={\na 5\nb 3\nc 2\n}\n')
        self.run_project(project, TaskNumber=3, ComputeTheta=15, AllowedLevelOfMissingData=1)
        document = Document(self.document())
        self.assertAlmostEqual(labelled(document.section(STANDARD, "x"), "Gene diversity"), 0.6889, delta=5.1e-5)
        molecular = document.section(MOLECULAR, "x")
        self.assertAlmostEqual(labelled(molecular, r"Theta\(Hom\)"), 1.689130, delta=1e-6)
        self.assertFalse(any("Average gene diversity" in line for line in molecular))


if __name__ == "__main__":
    unittest.main()
