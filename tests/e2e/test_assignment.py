"""Genotype assignment against a direct computation from allele counts, on the cat colonies."""
import math
import os
import re
import unittest

import support

PROJECT = os.path.join(support.SOURCE_DIR, "tests", "cases", "microsat", "nancy17.tvp")


def read_samples(text):
    """[(name, [(individual, [(allele, allele), ...])])] of a genotypic project of microsatellites."""
    samples = []
    for name, body in re.findall(r'SampleName\s*=\s*"([^"]*)".*?SampleData\s*=\s*\{(.*?)\}', text, re.DOTALL):
        lines = [line.split() for line in body.splitlines() if line.split()]
        individuals = [(lines[k][0], list(zip(lines[k][2:], lines[k + 1]))) for k in range(0, len(lines), 2)]
        samples.append((name, individuals))
    return samples


def frequencies(individuals, loci):
    """Allele frequencies of each locus, over the individuals with both alleles known."""
    tables = []
    for locus in range(loci):
        alleles = [allele for _, genotype in individuals for allele in genotype[locus]
                   if "?" not in genotype[locus]]
        tables.append({a: alleles.count(a) / len(alleles) for a in alleles})
    return tables


def log_likelihood(genotype, tables, individuals):
    floor = 1.0 - math.exp(math.log(0.95) / (2.0 * individuals))
    total = 0.0
    for (x, y), table in zip(genotype, tables):
        if "?" in (x, y):
            continue
        total += math.log(table.get(x, floor)) + math.log(table.get(y, floor)) + (math.log(2.0) if x != y else 0.0)
    return total


class Assignment(support.RunTestCase):
    def test_all_likelihoods_equal_a_direct_computation(self):
        text = support.read(PROJECT)
        samples = read_samples(text)
        loci = len(samples[0][1][0][1])
        tables = [frequencies(individuals, loci) for _, individuals in samples]
        self.run_project(text, TaskNumber=32768, InitialConditionsEM=5)
        self.assert_well_formed("p.res", "p.xml")
        document = self.document()
        compared = 0
        for name, individuals in samples:
            start = document.index('<genotypeLikelihoodMatrix pop="%s"' % name)
            body = document[start:document.index("</genotypeLikelihoodMatrix>", start)]
            rows = {}
            for line in body.splitlines()[2:]:
                cells = line.split()
                rows[cells[0]] = [float(cell) for cell in cells[1:]]
            for individual, genotype in individuals:
                expected = [log_likelihood(genotype, table, len(others))
                            for table, (_, others) in zip(tables, samples)]
                for found, wanted in zip(rows[individual], expected):
                    self.assertAlmostEqual(found, wanted, delta=0.0011)
                    compared += 1
        self.assertEqual(compared, sum(len(individuals) for _, individuals in samples) * len(samples))

    def test_the_whole_section_to_the_blank(self):
        """Two loci; allele 12 is in the second sample only, c lacks a locus, and e stands for two individuals."""
        text = ('[Profile]\nTitle="t"\nNbSamples=2\nDataType=MICROSAT\nGenotypicData=1\nGameticPhase=%d\n'
                'LocusSeparator=WHITESPACE\nMissingData="?"\n[Data]\n[[Samples]]\n'
                'SampleName="North & co"\nSampleSize=3\nSampleData={\na 1 10 20\n10 21\nb 1 10 20\n11 20\n'
                'c 1 11 ?\n11 20\n}\nSampleName="South"\nSampleSize=3\nSampleData={\nd 1 12 20\n10 20\n'
                'e 2 10 20\n10 20\n}\n')
        tables = ([{"10": 3 / 6, "11": 3 / 6}, {"20": 3 / 4, "21": 1 / 4}], [{"12": 1 / 6, "10": 5 / 6}, {"20": 1.0}])
        genotypes = (("North &amp; co", (("a", ("10", "10"), ("20", "21")), ("b", ("10", "11"), ("20", "20")),
                                         ("c", ("11", "11"), ("?", "20")))),
                     ("South", (("d", ("12", "10"), ("20", "20")), ("e", ("10", "10"), ("20", "20")))))
        expected = ("\n===========================================================\n"
                    "== LIKELIHOOD OF INDIVIDUAL GENOTYPES IN ALL POPULATIONS ==\n"
                    "===========================================================\n\nREFERENCES"
                    "\nList of labels for population samples used below:"
                    "\n=================================================\n"
                    "</data> <genotPopLabels time=\"TIME\">Sample label  \tSample name\n------------  \t----------\n"
                    "       1:\tNorth &amp; co\n       2:\tSouth\n</genotPopLabels> <data>\n")
        for name, rows in genotypes:
            expected += '</data> <genotypeLikelihoodMatrix pop="%s" time="TIME">' % name
            expected += "    Sample            1         2\n----------\n"
            for individual, *genotype in rows:
                likelihoods = [log_likelihood(genotype, table, entries) for table, entries in zip(tables, (3, 2))]
                expected += "%10s   " % individual + "".join("%10.3f" % value for value in likelihoods) + "\n"
            expected += "</genotypeLikelihoodMatrix> <data>\n"
        for phase in (0, 1):
            self.run_project(text % phase, TaskNumber=32768, InitialConditionsEM=3)
            document = re.sub(r' time="[^"]*"', ' time="TIME"', self.document())
            start = document.index("\n====", document.index("genot_assignment"))
            section = document[start:document.rindex("</genotypeLikelihoodMatrix>")]
            section = re.sub(r"(?s)</data>\n<Reference>.*</Reference>\n<data>\n", "REFERENCES", section)
            self.assertEqual(section + "</genotypeLikelihoodMatrix> <data>\n", expected)
            self.assertIn('"Genotype assignment"', self.read("p.res", "p.js"))
            self.assert_well_formed("p.res", "p.xml")

    def test_haplotypes_are_not_assigned(self):
        self.run_project(support.dna_project(), TaskNumber=32768)
        self.assertIn("skipping the task...", self.log())
        self.assertNotIn("LIKELIHOOD OF INDIVIDUAL GENOTYPES", self.document())


if __name__ == "__main__":
    unittest.main()
