"""The summary that compares the samples of a project: its sections, their rows, and the tables beside the document."""
import re
import unittest

from three_projects import Report, ThreeProjects


class SummaryOfSamples(ThreeProjects):
    def sections(self, project):
        """Title of each section and the text behind it."""
        text = self.document(project).split("== Summary of computations done within populations\n", 1)[1]
        parts = re.split(r"<header>\n(.*)\n</header>", text.split("== GENETIC STRUCTURE")[0])
        return dict(zip(parts[1::2], parts[2::2]))

    def test_sections_are_those_of_the_families_that_were_computed(self):
        self.run_three()
        common = {"Basic indices", "Heterozygosity", "No. of alleles", "Molecular diversity", "Neutrality tests"}
        sizes = {"Theta(H)", "Allelic range", "Garza-Williamson index", "Garza-Williamson modified index"}
        self.assertEqual(set(self.sections("dna")), common)
        self.assertEqual(set(self.sections("mic")), common | sizes)
        self.assertEqual(set(self.sections("gen")), common | {"Theta(H)"})

    def test_tests_of_neutrality_have_their_headings(self):
        self.run_three()
        lines = self.sections("dna")["Neutrality tests"].splitlines()
        self.assertEqual([line for line in lines if line.endswith(" test")],
                         ["Ewens-Watterson test", "Chakraborty's test", "Tajima's test", "Fu's Fs test"])
        row = next(line for line in self.sections("mic")["Neutrality tests"].splitlines() if line.startswith("FS  "))
        self.assertEqual(row.split()[1:], ["-1.00000"] * 5)

    def rows(self, project):
        """Values of the rows of the neutrality tests, by test and label."""
        rows, test = {}, None
        for line in self.sections(project)["Neutrality tests"].splitlines():
            label, *values = re.split(r"  +", line.strip())
            test = line if line.endswith(" test") else test
            rows[test, label] = [float(value) for value in values if re.match(r"-?\d", value)][:3]
        return rows

    def test_tajimas_rows_are_what_the_test_compared(self):
        self.run_three(DistanceMethod=2, ComputeTheta=15)
        report = Report(self.document("dna"))
        rows = self.rows("dna")
        for label, printed in (("S", "No. of sites with substitutions (S)   :"),
                               ("Pi", "Mean No. of pairwise differences (Pi) :"),
                               ("Tajima's D", "Tajima's D                            :")):
            expected = [float(sample.block("Tajima's test").numbers(printed)[0])
                        for sample in report.samples().values()]
            self.assertEqual(rows["Tajima's test", label], expected, label)
        label = "Mean number of pairwise differences          :"
        corrected = [float(sample.block("Molecular diversity").numbers(label)[0])
                     for sample in report.samples().values()]
        self.assertTrue(all(x > y for x, y in zip(corrected, rows["Tajima's test", "Pi"])))

    def test_refused_tests_have_no_values(self):
        self.run_three(ComputeTheta=15)
        for project in ("mic", "gen"):
            for label in ("S", "Pi", "Tajima's D", "Tajima's D p-value"):
                self.assertEqual(self.rows(project)["Tajima's test", label], [-1] * 3, label)
        for label in ("Obs. homozygosity", "Exp. no. of alleles", "P(k or more alleles)"):
            self.assertEqual(self.rows("gen")["Chakraborty's test", label], [-1] * 3, label)

    def test_expansions_have_their_headings_and_all_rows(self):
        self.run_three(MismatchDemogExp=1, MismatchSpatialExp=1, MismatchSpatialExpNumParams=3, NumBootExpDem=0)
        text = self.sections("dna")["Mismatch analysis"]
        demographic, spatial = text.split("\n\nDemographic expansion\n", 1)[1].split("\n\nSpatial expansion\n", 1)

        def labels(part):
            return [re.split(r"  +", line)[0] for line in part.splitlines() if re.match(r"\w.*\d$", line)]

        def quantiles(name):
            return [name] + ["%s qt %s%%" % (name, share) for share in ("2.5", "5", "95", "97.5")]

        fit = ["SSD", "Model (SSD) p-value", "Raggedness index", "Raggedness p-value"]
        self.assertEqual(labels(demographic), quantiles("Tau") + quantiles("Theta0") + quantiles("Theta1") + fit)
        self.assertEqual(labels(spatial), quantiles("Tau") + quantiles("Theta") + quantiles("M") + fit)

    def test_sites_with_substitutions_have_a_total(self):
        self.run_three()
        lines = self.sections("dna")["Molecular diversity"].splitlines()
        head = next(line for line in lines if line.endswith("s.d.      Total:"))
        row = next(line for line in lines if line.startswith("No. of subst. sites"))
        self.assertEqual(len(row), len(head.split(">")[-1]))
        self.assertEqual(row.split()[-1], "3")
        table = [line.split("\t") for line in self.read("dna.res", "sumMolecDivIndexes.sum").splitlines()]
        self.assertEqual(table[0][-1], "Total:")
        self.assertEqual([line[-1] for line in table[1:] if line[-1]], ["3"])

    def test_recessive_data_have_no_tables_of_loci(self):
        self.run_three(RecessiveAllelesEM=1, ComputeAllAlleleFreqs=1)
        for name in ("Heterozygosity", "No. of alleles"):
            self.assertNotIn(name, self.sections("dna"))
        for name in ("sumExpHeterozygosity.sum", "AllAlleleFreqs.txt", "PopNames.txt"):
            self.assertFalse(self.exists("dna.res", name), name)


if __name__ == "__main__":
    unittest.main()
