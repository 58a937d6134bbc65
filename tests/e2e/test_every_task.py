"""Every kind of data with every analysis it allows, for samples and for groups, as XML and as HTML."""
import re
import unittest

import support
from every_task import GROUPS, SAMPLES, projects, settings_of

UNITS = SAMPLES + tuple("Group%d" % (i + 1) for i in range(len(GROUPS)))

# Analyses within a sample, by the kinds of data that have them.
HAPLOTYPIC = {"dna", "dna_list", "rflp", "microsat", "standard"}
PHASED = {"dna_phased", "microsat_phased", "standard_phased"}
UNPHASED = {"dna_unphased", "rflp_unphased", "microsat_unphased", "standard_unphased"}
KNOWN = HAPLOTYPIC | PHASED | {"frequency"}
ALL = KNOWN | UNPHASED | {"recessive"}
MICROSAT = {"microsat", "microsat_phased", "microsat_unphased"}
WITHIN = {
    "Standard diversity indices": ALL,
    "Molecular diversity indices": ALL - {"recessive"},
    "Mismatch distribution": KNOWN - {"frequency"},
    "Haplotypes frequency estimation": ALL,
    "Pairwise linkage disequilibrium": ALL,
    "Hardy-Weinberg equilibrium": PHASED | UNPHASED,
    "Tajima's test of selective neutrality": KNOWN,
    "Fu's Fs test of selective neutrality": KNOWN,
    "Ewens-Watterson tests of selective neutrality": KNOWN - MICROSAT,
    "Chakraborty's test of selective neutrality": KNOWN - MICROSAT,
}
# Analyses between samples, and how often each stands in the document: once a level, or at the sample level alone.
BETWEEN = {
    "GENETIC STRUCTURE ANALYSIS": (2, ALL - {"recessive"}),
    "Comparisons of pairs of population samples": (2, ALL - {"recessive"}),
    "Exact Test of Sample Differentiation": (2, ALL - {"recessive"}),
    "LIKELIHOOD OF INDIVIDUAL GENOTYPES": (2, PHASED | UNPHASED | {"recessive"}),
    "MATRIX CORRELATION ANALYSIS": (1, ALL - {"recessive"}),
    "DETECTION OF LOCI UNDER SELECTION": (1, ALL),
}




def sections(text, name):
    """How often a section of this name stands in the document."""
    return len(re.findall(r"(?m)^== %s" % re.escape(name), text))


class EveryTask(support.RunTestCase):
    def run_kind(self, kind, form):
        """The result document of one run, with every analysis asked for."""
        self.write(kind + ".tvp", projects()[kind])
        self.write(kind + ".tvs", settings_of(kind, XMLOutput=1 if form == "xml" else 0))
        self.tovcore(kind + ".tvp", kind + ".tvs", "run_silent")
        self.assert_finished()
        self.assertIn("Successful run of %s.tvp" % kind, self.log(kind))
        return self.document(kind, form)

    def assert_whole(self, kind, text):
        """Each analysis stands in the document as often as this kind of data allows, and each number is one."""
        for name, kinds in WITHIN.items():
            self.assertEqual(sections(text, name), len(UNITS) if kind in kinds else 0, name)
            if kind in kinds:
                for unit in UNITS:
                    self.assertRegex(text, r"(?m)^== %s *:\s*\(%s\)" % (re.escape(name), unit))
        for name, (times, kinds) in BETWEEN.items():
            self.assertEqual(sections(text, name), times if kind in kinds else 0, name)
        self.assertIsNone(re.search(r"(?i)[\s=(,;]-?(nan|inf)[\s),;<]", text))
        self.assertEqual(text.count("END OF RUN NUMBER 1"), 1)


class RunList(support.RunTestCase):
    """What one project leaves in the process changes no digit of the next one."""

    def results(self, *kinds):
        """Documents of these projects in one run list, without times and running numbers."""
        lines = [self.directory, "use_ass_settings"]
        for number, kind in enumerate(kinds):
            self.write("p%d.tvp" % number, projects()[kind])
            self.write("p%d.tvs" % number, settings_of(kind))
            lines += ["p%d.tvp" % number, "0", "1"]
        self.write("tov_run.txt", "\n".join(lines + ["end"]) + "\n")
        self.tovcore("run_silent")
        # Runs and reports of errors are numbered through.
        return [re.sub(r"(RUN NUMBER|ERROR #|WARNING #) \d+|\bp%d\b|^ *\d+ (?=#\[)" % number, r"\1",
                       support.mask_times(self.document("p%d" % number)), flags=re.M) for number in range(len(kinds))]

    def test_a_project_after_another_one_gives_its_own_digits(self):
        for first, between in (("dna", "microsat_unphased"), ("standard_phased", "dna"), ("rflp_unphased", "frequency")):
            with self.subTest(first=first, between=between):
                before, _, after = self.results(first, between, first)
                self.assertEqual(before, after)


def add_kind(kind):
    def as_xml(self):
        text = self.run_kind(kind, "xml")
        self.assert_well_formed(kind + ".res", kind + ".xml")
        self.assert_whole(kind, text)

    def as_html(self):
        text = self.run_kind(kind, "htm")
        self.assert_whole(kind, text)
        self.assertTrue(text.rstrip().lower().endswith("</html>"))
        anchors = set(re.findall(r'name="?([^">]+)', text, re.I))
        links = re.findall(r'%s\.htm#([^"\\]+)' % kind, self.read(kind + ".res", kind + ".js"))
        self.assertGreater(len(links), len(UNITS))
        self.assertEqual([link for link in links if link not in anchors], [])

    setattr(EveryTask, "test_%s_as_xml" % kind, as_xml)
    setattr(EveryTask, "test_%s_as_html" % kind, as_html)


for each in sorted(ALL):
    add_kind(each)


if __name__ == "__main__":
    unittest.main()
