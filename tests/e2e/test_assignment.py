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

    def test_haplotypes_are_not_assigned(self):
        self.run_project(support.dna_project(), TaskNumber=32768)
        self.assertIn("skipping the task...", self.log())
        self.assertNotIn("LIKELIHOOD OF INDIVIDUAL GENOTYPES", self.document())


if __name__ == "__main__":
    unittest.main()
