"""Whole runs of the detection of loci under selection."""
import os
import random
import re
import unittest

import every_task
from support import RunTestCase, read, settings_text, write


def allele_counts(rng, copies, frequency):
    """Alleles of one sample at one locus: 1 with the given frequency, else 2."""
    return [1 if rng.random() < frequency else 2 for _ in range(copies)]


def project(data_type="STANDARD", samples=4, copies=20, loci=12, groups=2, genotypic=False, planted=None, spread=0.12,
            missing=None, seed=1):
    """A project of two-allele loci whose frequencies differ between samples; `planted` nearly fixed in halves of
    the samples, at `missing` one sample has no data."""
    rng = random.Random(seed)
    sites = data_type in ("DNA", "RFLP")
    names = {"DNA": ".AG", "RFLP": ".10"}.get(data_type, (None, "1", "2"))
    columns = [[] for _ in range(samples)]
    for locus in range(loci):
        mean = rng.uniform(0.3, 0.7)
        for s in range(samples):
            frequency = min(0.95, max(0.05, rng.gauss(mean, spread)))
            if locus == planted:
                frequency = 0.95 if s < samples // 2 else 0.05
            column = [names[a] for a in allele_counts(rng, copies, frequency)]
            if locus == missing and s == 0:
                column = ["?"] * copies
            columns[s].append(column)
    lines = ["[Profile]", '\tTitle="selection"', "\tNbSamples=%d" % samples, "\tDataType=%s" % data_type,
             "\tGenotypicData=%d" % genotypic, "\tLocusSeparator=%s" % ("NONE" if sites else "WHITESPACE"),
             "\tMissingData='?'"]
    if genotypic:
        lines.append("\tGameticPhase=0")
    lines += ["", "[Data]", "[[Samples]]"]
    number = 0
    for s in range(samples):
        lines += ['\tSampleName="S%d"' % (s + 1), "\tSampleSize=%d" % (copies // 2 if genotypic else copies),
                  "\tSampleData={"]
        rows = [("" if sites else " ").join(locus[k] for locus in columns[s]) for k in range(copies)]
        for k, row in enumerate(rows):
            if genotypic and k % 2:
                lines.append("\t\t\t\t" + row)
            else:
                number += 1
                lines.append("\t\t%d\t1\t%s" % (number, row))
        lines.append("\t}")
    lines += ["[[Structure]]", '\tStructureName="all"', "\tNbGroups=%d" % groups]
    for g in range(groups):
        members = ['\t\t"S%d"' % (s + 1) for s in range(samples) if s * groups // samples == g]
        lines += ["\tGroup={"] + members + ["\t}"]
    return "\n".join(lines) + "\n"


KEYS = dict(TaskNumber=0, DetectSelectedLoci=1, NumberOfSimsForFDist2=300, NumberOfDemesForFDist2=20,
            NumberOfGroupsForFDist2=4)


class Selection(RunTestCase):
    def detect(self, text, name="p", **keys):
        self.run_project(text, name, **dict(KEYS, **keys))
        return self.document(name)

    def rows(self, file="fdist2_ObsOut.txt", name="p"):
        return [line.split("\t") for line in self.read(name + ".res", file).splitlines()[1:]]

    def test_document_and_side_tables(self):
        document = self.detect(project())
        self.assert_well_formed("p.res", "p.xml")
        for part in ("== DETECTION OF LOCI UNDER SELECTION FROM GENOME SCANS BASED ON F-STATISTICS",
                     "Beaumont, M.A. and Nichols, R.A. 1996.", "Slatkin, M. and Voelm, L. 1991.",
                     "Tested Genetic Structure:", "No. of groups : 1", "Finite island model:",
                     "No. of simulated demes:       20", "No. of coalescent simulations performed: 300",
                     "<detSel_FStat_Pval", "<detSel_FST_CI", "FST null distribution quantiles",
                     'Additional results can be found in files "fdist2_ObsOut.txt" and  "fdist2_simOut.txt"'):
            self.assertIn(part, document)
        self.assertNotIn("detSel_FCT_CI", document)
        self.assertNotIn("Locus by locus AMOVA", document)
        self.assertNotIn("Locus by locus AMOVA", self.read("p.res", "p.js"))
        self.assertIn("Loci under selection", self.read("p.res", "p.js"))
        self.assertEqual(len(self.rows()), 12)
        self.assertEqual(len(self.rows("fdist2_simOut.txt")), 300)
        self.assertTrue(all(len(row) == 5 for row in self.rows("fdist2_simOut.txt")))
        log = self.log()
        self.assertIn("Detecting loci under selection based on F-statistics\n", log)
        self.assertRegex(log, r"done with detection of loci under selection! \(\d+ ms\)\n")
        self.assertNotIn("[ERROR", log)
        curve = document.split("FST null distribution quantiles")[1].split("</detSel_FST_CI>")[0].splitlines()[2:22]
        self.assertEqual(len(curve), 20)
        head = self.read("p.res", "fdist2_simOut.txt").splitlines()[0]
        target = float(head.rsplit("= ", 1)[1])
        self.assertGreater(target, 0.0)
        weights = [float(r[1]) for r in self.rows()]
        mean = sum(float(r[2]) * w for r, w in zip(self.rows(), weights)) / sum(weights)
        self.assertAlmostEqual(mean, target, 12)

    def test_planted_locus_is_found(self):
        self.detect(project(planted=5, loci=20), NumberOfSimsForFDist2=1000)
        rows = self.rows()
        p = {int(row[0]): float(row[3]) for row in rows}
        self.assertLess(p[6], 0.01)
        self.assertEqual(float(rows[5][2]), max(float(row[2]) for row in rows))
        self.assertLess(sum(value < 0.01 for value in p.values()), 6)

    def test_all_p_values_are_small_tails(self):
        self.detect(project())
        for row in self.rows():
            value = float(row[3])
            self.assertTrue(0.0 < value < 0.51 or value == 2.0, row)

    def test_groups(self):
        document = self.detect(project(samples=6, groups=3), UseHierarchicalIslandModel=1)
        for part in ("Hierarchical island model:", "No. of simulated groups:                 4",
                     "No. of simulated demes per groups:       20", "No. of groups : 3", "FCT P-value",
                     "<detSel_FCT_CI", "FCT null distribution quantiles"):
            self.assertIn(part, document)
        self.assertTrue(all(len(row) == 6 for row in self.rows()))
        self.assertTrue(all(len(row) == 7 for row in self.rows("fdist2_simOut.txt")))
        self.assertIn("Target Mean FCT = ", self.read("p.res", "fdist2_simOut.txt"))

    def test_all_data_types(self):
        for data_type in ("DNA", "RFLP", "MICROSAT", "STANDARD"):
            for genotypic in (False, True):
                name = "%s%d" % (data_type, genotypic)
                with self.subTest(name):
                    self.detect(project(data_type, genotypic=genotypic), name, IncludeIndividualLevel=int(genotypic),
                                NumberOfSimsForFDist2=60)
                    self.assertEqual(len(self.rows(name=name)), 12)
                    simulated = self.rows("fdist2_simOut.txt", name)
                    self.assertEqual(len(simulated), 60)
                    self.assertEqual(data_type in ("DNA", "RFLP"), all(row[1] == "NA" for row in simulated))
                    self.assertNotIn("[ERROR", self.log(name))

    def test_simulations_of_an_earlier_run_give_the_same_p_values(self):
        for hierarchical in (0, 1):
            with self.subTest(hierarchical=hierarchical):
                text = project("DNA" if hierarchical else "STANDARD", samples=6, groups=3)
                first = self.detect(text, "a", UseHierarchicalIslandModel=hierarchical)
                second = self.detect(text, "b", UseHierarchicalIslandModel=hierarchical, UseSimFileForFDist2=1,
                                     SimFileNameForFDist2="a.res/fdist2_simOut.txt")
                self.assertEqual(self.rows(name="a"), self.rows(name="b"))
                table = re.compile(r"<detSel_FStat_Pval[^>]*>(.*?)</detSel_FStat_Pval>", re.S)
                self.assertEqual(table.search(first).group(1), table.search(second).group(1))
                self.assertFalse(self.exists("b.res", "fdist2_simOut.txt"))

    def test_a_project_can_be_tested_against_its_own_earlier_simulations(self):
        self.detect(project())
        first = self.rows()
        table = self.read("p.res", "fdist2_simOut.txt")
        self.detect(project(), UseSimFileForFDist2=1, SimFileNameForFDist2="p.res/fdist2_simOut.txt",
                    NumberOfSimsForFDist2=7)
        self.assertEqual(self.rows(), first)
        self.assertEqual(self.read("p.res", "fdist2_simOut.txt"), table)

    def test_missing_simulation_file_is_no_failure(self):
        self.detect(project(), UseSimFileForFDist2=1, SimFileNameForFDist2="nowhere.txt")
        self.assertEqual(len(self.rows("fdist2_simOut.txt")), 300)
        self.assertNotIn("[ERROR", self.log())

    def test_bad_simulation_files_are_no_failure(self):
        self.detect(project(), "good")
        good = self.read("good.res", "fdist2_simOut.txt")
        cut = good[:len(good) // 2]
        bad = {"empty": "", "head": good.splitlines()[0], "no_numbers": "head\n" + "x\ty\tz\n" * 9,
               "nan": "head\n" + "nan\tnan\tinf\t1\t1\n" * 9, "bytes": "".join(map(chr, range(256))) * 40}
        for name, text in bad.items():
            with self.subTest(name):
                self.write(name + ".sims", text)
                self.detect(project(), name, UseSimFileForFDist2=1, SimFileNameForFDist2=name + ".sims")
                self.assertEqual(self.rows(name=name), self.rows(name="good"))  # simulated as without a file
                self.assert_well_formed(name + ".res", name + ".xml")
        self.write("cut.sims", cut)
        document = self.detect(project(), "cut", UseSimFileForFDist2=1, SimFileNameForFDist2="cut.sims")
        self.assertIn("No. of coalescent simulations performed: %d\n" % (cut.count("\n") - 1 + (cut[-1] != "\n")),
                      document)
        self.assert_well_formed("cut.res", "cut.xml")

    def test_bad_parameter_files_are_no_failure(self):
        for name, text in (("nothing", ""), ("title", "title"), ("words", "a\nb\nc\nd\ne\nf\n" * 4),
                           ("out_of_range", "t\nf\n-1\nl\n-5\ng\n1e300\nd\n1e300\nFSC\n7\nFCT\n-1e300\n"),
                           ("bytes", "".join(map(chr, range(256))) * 4)):
            with self.subTest(name):
                self.write("simParamFile.txt", text)
                self.detect(project(), name, NumberOfSimsForFDist2=20)
                self.assert_well_formed(name + ".res", name + ".xml")
                self.assertFalse(self.exists(name + ".res", "fdist2_ObsOut.txt"))

    def test_too_many_demes_leave_all_loci_without_a_value(self):
        document = self.detect(project(), NumberOfDemesForFDist2=2000000000, NumberOfSimsForFDist2=5)
        self.assertIn("No. of coalescent simulations performed: 0\n", document)
        self.assertEqual({row[3] for row in self.rows()}, {"2"})
        self.assert_well_formed("p.res", "p.xml")

    def test_no_differentiation_is_no_heterozygosity_of_a_simulated_locus(self):
        self.detect(project("DNA", samples=6, groups=1, copies=40), NumberOfSimsForFDist2=1000)
        simulated = [[float(row[0])] + [float(x) for x in row[2:4]] for row in self.rows("fdist2_simOut.txt")]
        self.assertFalse([row for row in simulated if 0.0 < abs(row[0]) < 1e-12])
        without = [row for row in simulated if row[0] == 0.0]
        self.assertGreater(len(without), 30)  # derived alleles in one copy
        self.assertEqual({tuple(row) for row in without}, {(0.0, 0.0, 0.0)})

    def test_single_copy_of_an_allele_differentiates_nothing(self):
        lines = project("DNA", samples=5, copies=40, groups=1, loci=3).splitlines()
        rows = [i for i, line in enumerate(lines) if re.match(r"\t\t\d+\t1\t[AG]{3}$", line)]
        for i in rows:
            lines[i] = lines[i][:-1] + ("G" if i == rows[50] else "A")
        self.detect("\n".join(lines) + "\n")
        het, fst, p = map(float, self.rows()[2][1:])
        self.assertAlmostEqual(het, 0.01, 12)
        self.assertEqual((fst, p), (0.0, 1e-07))  # the tail below 0 is empty

    def test_runs_are_reproducible(self):
        self.detect(project(), "a")
        self.detect(project(), "b")
        self.assertEqual(self.read("a.res", "fdist2_simOut.txt"), self.read("b.res", "fdist2_simOut.txt"))

    def test_locus_without_data_in_a_sample_has_no_row(self):
        document = self.detect(project(missing=3))
        self.assertEqual([int(row[0]) for row in self.rows()], [1, 2, 3] + list(range(5, 13)))
        self.assertNotRegex(document, r"(?m)^ +4 +1\.000000 +-2")

    def test_heterozygosity_out_of_bounds_is_not_computed(self):
        self.write("sims.txt", "head\n" + "0.1\tNA\t0.05\t0.04\t1\n" * 10)
        self.detect(project(), UseSimFileForFDist2=1, SimFileNameForFDist2="sims.txt")
        self.assertEqual({row[3] for row in self.rows()}, {"2"})

    def test_empty_tail_within_bounds_is_a_small_number(self):
        self.write("sims.txt", "head\n" + "0.9\tNA\t0.9\t0.04\t1\n" * 10)
        self.detect(project(), UseSimFileForFDist2=1, SimFileNameForFDist2="sims.txt")
        self.assertEqual({float(row[3]) for row in self.rows()}, {1e-07})

    def test_undifferentiated_samples_are_not_simulated(self):
        text = project(samples=2, groups=1, loci=1, copies=4)
        text = re.sub(r"\t\t(\d+)\t1\t\d", lambda m: "\t\t%s\t1\t%d" % (m.group(1), 1 + int(m.group(1)) % 2), text)
        document = self.detect(text)
        self.assertIn("Mean FST is not positive: no simulations", document)
        self.assertFalse(self.exists("p.res", "fdist2_ObsOut.txt"))
        self.assert_well_formed("p.res", "p.xml")

    def test_data_without_f_statistics_say_so(self):
        for kind, reason in (("frequency", "The data have no loci to be tested"),
                             ("recessive", "There are no F-statistics of recessive data")):
            document = self.detect(every_task.projects()[kind], kind)
            self.assertIn("\n%s\nMean FST is not positive: no simulations\n" % reason, document)

    def test_one_sample_is_refused(self):
        document = self.detect(project(samples=1, groups=1))
        self.assertIn("Only one sample in structure", document)

    def test_one_sample_per_group_is_refused_but_makes_projects(self):
        text = project(samples=3, groups=3)
        document = self.detect(text, UseHierarchicalIslandModel=1, NumberOfSimsForFDist2=100000)
        self.assertIn("\nOnly one sample per group in structure\n", document)
        self.assertNotIn("<detSel_", document)
        self.assertFalse(self.exists("p.res", "fdist2_simOut.txt"))
        self.assertFalse(self.exists("p.res", "fdist2_ObsOut.txt"))
        self.assertIn('function "Project::IsAmovaStructure()" : invalid structure: only one population per group\n',
                      self.log())
        self.assert_well_formed("p.res", "p.xml")
        self.assertNotIn("Only one sample", self.detect(text, "flat"))
        made = self.simulate_projects("made", text, (1, 5, 4, 20, 0.1, 0.1), UseHierarchicalIslandModel=1)
        self.assertEqual(read(made[0]).count("SampleName"), 3)

    def test_no_structure_is_refused(self):
        document = self.detect(project().split("[[Structure]]")[0])
        self.assertIn("Only one sample in structure", document)

    def test_other_analyses_keep_their_settings(self):
        keys = dict(TaskNumber=512 + 1024, HaplAMOVA=1, ComputePairwiseFST=1, NumPermutationsAMOVA=20)
        with_detection = self.detect(project(), "a", **keys)
        without = self.detect(project(), "b", **dict(keys, DetectSelectedLoci=0))
        blocks = []
        for document in (with_detection, without):
            block = re.search(r"== GENETIC STRUCTURE ANALYSIS(.*?)(?:\n=+\n== DETECTION|\n/{68})", document, re.S).group(1)
            blocks.append(re.sub(r"time=\"[^\"]*\"|NAME=\"[^\"]*\"", "", block).strip())
        self.assertIn("Among", blocks[0])
        self.assertEqual(blocks[0], blocks[1])

    def test_batch_table(self):
        self.write("glbstreams.txt", "out_\n_DETECT_SELECTION_\n")
        self.detect(project(planted=2, loci=20), NumberOfSimsForFDist2=1000)
        row = self.read("out_selectionDetection.sum").splitlines()[-1].split("\t")
        self.assertEqual(row[1:3], ["1000", "20"])
        self.assertEqual(len(row), 13)
        target = float(self.read("p.res", "fdist2_simOut.txt").splitlines()[0].rsplit("= ", 1)[1])
        for column, above in ((3, False), (8, True)):
            for k, level in enumerate((0.001, 0.005, 0.01, 0.025, 0.05)):
                count = sum((float(r[2]) >= target) == above and float(r[3]) <= level for r in self.rows())
                self.assertEqual(int(row[column + k]), count)

    def write_parameters(self, files, loci, groups, demes, fsc, fct):
        lines = ["simulation", "files:", files, "loci:", loci, "groups:", groups, "demes:", demes, "FSC:", fsc,
                 "FCT:", fct]
        self.write("simParamFile.txt", "\n".join(map(str, lines)) + "\n")

    def simulate_projects(self, name, text, parameters, **keys):
        """The projects that a file of parameters makes of a project; the file is gone afterwards."""
        self.write_parameters(*parameters)
        document = self.detect(text, name, **keys)
        os.remove(self.path("simParamFile.txt"))
        self.assertNotIn("detSel_FStat_Pval", document)
        self.assertFalse(self.exists(name + ".res", "fdist2_ObsOut.txt"))
        made = [self.path(name + ".res", "%s_sim%d.tvp" % (name, k + 1)) for k in range(parameters[0])]
        listed = [os.path.basename(line) for line in self.read(name + ".res", "sims.tvb").splitlines()]
        self.assertEqual(listed, [os.path.basename(path) for path in made] if len(made) > 1 else [])
        return made

    def test_simulated_projects_can_be_read_again(self):
        for data_type, genotypic in (("STANDARD", False), ("DNA", True), ("MICROSAT", True), ("RFLP", False)):
            with self.subTest(data_type):
                made = self.simulate_projects(data_type, project(data_type, genotypic=genotypic), (2, 30, 4, 20, 0.1, 0.1))
                again = data_type + "_again"
                write(self.path(again + ".tvp"), read(made[1]))
                write(self.path(again + ".tvs"), settings_text(**KEYS))
                self.tovcore(again + ".tvp", again + ".tvs", "run_silent")
                self.assertNotIn("[ERROR", self.log(again))
                rows = self.rows(name=again)
                self.assertEqual(len(rows), 30)
                self.assertGreater(sum(float(row[1]) > 0 for row in rows), 15)

    def test_parameters_of_groups_replace_those_of_the_settings(self):
        text = project(samples=6, groups=3)
        keys = dict(UseHierarchicalIslandModel=1, NumberOfGroupsForFDist2=50, NumberOfDemesForFDist2=30)
        made = self.simulate_projects("a", text, (1, 40, 5, 10, 0.1, 0.2), **keys)
        same = self.simulate_projects("b", text, (1, 40, 5, 10, 0.1, 0.2), UseHierarchicalIslandModel=1,
                                      NumberOfGroupsForFDist2=5, NumberOfDemesForFDist2=10)
        self.assertEqual(read(made[0]), read(same[0]))
        few = self.simulate_projects("c", text, (1, 40, 1, 10, 0.1, 0.2), **keys)  # never below the real groups
        three = self.simulate_projects("d", text, (1, 40, 3, 10, 0.1, 0.2), **keys)
        self.assertEqual(read(few[0]), read(three[0]))
        self.assertNotEqual(read(few[0]), read(made[0]))

    def test_loci_simulated_under_the_model_have_uniform_tails(self):
        for data_type, least in (("STANDARD", 0), ("DNA", 0.05)):
            with self.subTest(data_type):
                text = project(data_type, samples=10, copies=40, groups=1, loci=1)
                keys = dict(NumberOfSimsForFDist2=3000, NumberOfDemesForFDist2=100, MinDafFreq=least)
                made = self.simulate_projects(data_type, text, (1, 600, 1, 100, 0.1, 0), **keys)
                again = data_type + "_again"
                self.detect(read(made[0]), again, **keys)
                p = [float(row[3]) for row in self.rows(name=again) if float(row[1]) > 0.0]
                self.assertGreaterEqual(len(p), 500)
                self.assertTrue(0.03 <= sum(x < 0.025 for x in p) / len(p) <= 0.08)
                self.assertTrue(0.07 <= sum(x < 0.05 for x in p) / len(p) <= 0.15)

    def test_one_simulated_project_is_not_listed(self):
        made = self.simulate_projects("p", project(), (1, 5, 4, 20, 0.1, 0.1))
        self.assertTrue(os.path.exists(made[0]))
        self.assertEqual(len(self.read("p.res", "fdist2_simOut.txt").splitlines()), 1)  # its head alone

    def test_undifferentiated_projects_are_not_simulated(self):
        self.write_parameters(1, 5, 4, 20, 0, 0)
        document = self.detect(project())
        self.assertIn("Mean FST is not positive: no simulations", document)
        self.assertFalse(self.exists("p.res", "p_sim1.tvp"))


if __name__ == "__main__":
    unittest.main()
