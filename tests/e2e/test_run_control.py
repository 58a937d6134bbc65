"""Whole runs: the ways of calling the program, the files it leaves, the run list, repeated and added runs."""
import os
import re
import unittest

from support import RunTestCase, dna_project, mask_times, settings_text

TOO_MANY_SECTIONS = "too many sub-sections found (max=4)"
RESULT_FILES = ["p.js", "p.xml", "p_main.htm", "p_tree.htm", "Tovenia_log.txt"]
SUMMARY_FILES = ["sumExpHeterozygosity.sum", "sumNumAlleles.sum"]  # of the standard indices
SHARED_FILES = ["compfinished_final", "randseed.txt", "tov_run.tvs", "tov_run.txt", "tovenia.ini"]


def run_list(*lines, directory="", directive="use_interf_settings"):
    return "\n".join((directory, directive) + lines) + "\n"


class Calling(RunTestCase):
    def test_one_project_leaves_exactly_the_files_of_a_run(self):
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text(TaskNumber=1))
        outcome = self.tovcore("p.tvp", "p.tvs", "run_silent")
        expected = ["p.tvp", "p.tvs"] + SHARED_FILES
        expected += [os.path.join("p.res", name) for name in RESULT_FILES + SUMMARY_FILES]
        self.assertEqual(self.files(), sorted(expected))
        self.assertTrue(outcome.console.startswith("Running tovcore in silent mode ...\n"))
        self.assertTrue(outcome.console.endswith("Tovcore terminated gracefully\n"))
        self.assert_finished()
        self.assertIn("Successful run of p.tvp", self.log())

    def test_run_list_of_one_project(self):
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text())
        self.tovcore("p.tvp", "p.tvs")
        self.assertEqual(self.read("tov_run.txt"),
                         "%s\nuse_interf_settings\np.tvp\n0\n0\nend\n" % os.path.realpath(self.directory))
        self.assertEqual(self.read("tov_run.tvs"), self.read("p.tvs"))

    def test_front_end_file(self):
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text())
        self.tovcore("p.tvp", "p.tvs")
        lines = self.read("tovenia.ini").split("\n")
        self.assertEqual(lines[:6], ["false", "true", "false", "false", "Web browser", "Text editor"])
        self.assertTrue(lines[6].endswith("tovcore"))
        self.assertEqual(lines[7:9], ["Rcmd", os.path.realpath(self.directory)])
        self.assertEqual(lines[9:], ["false"] * 13 + ["", ""])

    def test_help_writes_no_file_in_any_case_of_its_letters(self):
        for argument in ("-help", "-HELP", "--help"):
            outcome = self.tovcore("p.tvp", argument)
            self.assertIn("\n                             TOVCORE (24.02.10)\n                             ========\n",
                          outcome.console)
            for text in ("TOVCORE is the console version of Tovenia", "Usage:", "| run_silent", "whitepaces",
                         "tovcore <project file name (*.tvp)> | <settings file (*.tvs)>", "Examples:",
                         "tovcore test.tvp test.tvs"):
                self.assertIn(text, outcome.console)
            self.assertEqual(self.files(), [])

    def test_without_a_run_list(self):
        outcome = self.tovcore()
        self.assertTrue(outcome.console.startswith(
            "The necessary file 'tov_run.txt' does not exist, aborting tovcore\n\n"))
        self.assertIn("Usage:", outcome.console)
        self.assertEqual(self.files(), [])

    def test_missing_project_on_the_command_line(self):
        outcome = self.tovcore("none.tvp")
        self.assertTrue(outcome.console.startswith("Project file 'none.tvp' does not exist, aborting tovcore\n\n"))
        self.assertFalse(self.exists("compfinished_final"))

    def test_missing_first_project_of_the_list(self):
        self.write("tov_run.txt", run_list("none.tvp", "0", "0", "end"))
        outcome = self.tovcore()
        self.assertTrue(outcome.console.startswith(
            "Project file 'none.tvp' listed in tov_run.txt does not exist, aborting tovcore\n\n"))
        self.assertFalse(self.exists("compfinished_final"))

    def test_missing_settings_on_the_command_line(self):
        self.write("p.tvp", dna_project())
        outcome = self.tovcore("p.tvp", "none.tvs")
        self.assertTrue(outcome.console.startswith(
            "The setting file 'none.tvs' does not exist, aborting tovcore\n\n"))
        self.assertFalse(self.exists("compfinished_final"))

    def test_a_marker_of_an_earlier_run_goes_when_a_run_fails(self):
        self.write("compfinished_final", "true\n")
        self.tovcore("none.tvp")
        self.assertFalse(self.exists("compfinished_final"))

    def test_the_last_project_of_the_command_line_is_run(self):
        self.write("a.tvp", dna_project())
        self.write("b.tvp", dna_project())
        self.write("s.tvs", settings_text())
        self.tovcore("a.tvp", "b.tvp", "s.tvs")
        self.assertFalse(self.exists("a.res"))
        self.assertTrue(self.exists("b.res", "b.xml"))

    def test_settings_alone_replace_the_default_ones_of_an_existing_list(self):
        self.write("p.tvp", dna_project())
        self.write("tov_run.tvs", "old\n")
        self.write("s.tvs", settings_text(XMLOutput=0))
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "end"))
        self.tovcore("s.tvs")
        self.assertEqual(self.read("tov_run.tvs"), self.read("s.tvs"))
        self.assertTrue(self.exists("p.res", "p.htm"))

    def test_default_settings_under_another_spelling_of_their_name_survive(self):
        self.write("p.tvp", dna_project())
        self.write("tov_run.tvs", settings_text())
        self.tovcore("p.tvp", "./tov_run.tvs")
        self.assertEqual(self.read("tov_run.tvs"), settings_text())

    def test_default_settings_named_as_such_are_not_copied(self):
        self.write("p.tvp", dna_project())
        self.write("tov_run.tvs", settings_text(XMLOutput=0))
        os.utime(self.path("tov_run.tvs"), (1000, 1000))
        self.tovcore("p.tvp", "tov_run.tvs")
        self.assertEqual(os.stat(self.path("tov_run.tvs")).st_mtime, 1000)
        self.assertTrue(self.exists("p.res", "p.htm"))

    def test_a_directory_is_neither_a_project_nor_a_settings_file(self):
        os.mkdir(self.path("d.tvp"))
        os.mkdir(self.path("d.tvs"))
        self.write("p.tvp", dna_project())
        outcome = self.tovcore("p.tvp", "d.tvs")
        self.assertTrue(outcome.console.startswith("The setting file 'd.tvs' does not exist, aborting tovcore\n\n"))
        outcome = self.tovcore("d.tvp")
        self.assertTrue(outcome.console.startswith("Project file 'd.tvp' does not exist, aborting tovcore\n\n"))
        self.assertFalse(self.exists("compfinished_final"))
        os.mkdir(self.path("tov_run.tvs"))
        self.tovcore("p.tvp")
        self.assertIn("Core Routine did not find its settings in:\n", self.log())

    def test_blanks_of_the_working_directory_in_the_path_of_the_style_sheet(self):
        self.directory = os.path.join(self.directory, "my work")
        os.mkdir(self.directory)
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text())
        self.tovcore("p.tvp", "p.tvs")
        self.assertIn('href="file:///%s/ToveniaStyleSheet.xsl"?>'
                      % os.path.realpath(self.directory).replace(" ", "%20"), self.document())
        self.assert_well_formed("p.res", "p.xml")

    def test_missing_default_settings_are_told_in_the_log(self):
        self.write("p.tvp", dna_project())
        self.tovcore("p.tvp")
        self.assertIn("Core Routine did not find its settings in:\n    %s/tov_run.tvs"
                      % os.path.realpath(self.directory), self.log())
        self.assertFalse(self.exists("p.res", "p.xml"))
        self.assert_finished()

    def test_progress_is_shown_unless_silent(self):
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text(TaskNumber=1))
        self.assertIn(" Computations are over\n", self.tovcore("p.tvp", "p.tvs").console)
        self.assertNotIn("Computations are over", self.tovcore("p.tvp", "p.tvs", "RUN_SILENT").console)

    def test_a_project_in_another_directory_has_its_results_beside_it(self):
        self.write("data/p.tvp", dna_project())
        self.write("p.tvs", settings_text())
        self.tovcore("data/p.tvp", "p.tvs")
        self.assertTrue(self.exists("data", "p.res", "Tovenia_log.txt"))
        self.assertTrue(self.exists("data", "p.res", "p.xml"))
        self.assertIn("Log file path: data/p.res/Tovenia_log.txt", self.read("data", "p.res", "Tovenia_log.txt"))


class RunList(RunTestCase):
    def test_two_projects_share_no_state(self):
        self.write("p.tvp", dna_project())
        self.write("tov_run.tvs", settings_text(TaskNumber=1))
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "end"))
        self.tovcore()
        first_document, first_log = self.document(), self.log()
        other = dna_project(samples=(("Else", (("x", 4, "AC-T"), ("y", 2, "ACTT"))),), LocusSeparator="WHITESPACE")
        self.write("q.tvp", other)
        self.write("tov_run.txt", run_list("q.tvp", "0", "0", "p.tvp", "0", "0", "end"))
        self.tovcore()
        renumbered = self.document().replace("RUN NUMBER 2", "RUN NUMBER 1")
        self.assertEqual(mask_times(renumbered), mask_times(first_document))
        log = self.log().replace("RUN NUMBER 2", "RUN NUMBER 1")
        # Running numbers of reports go on from project to project.
        number = re.compile(r"(?m)^ *\d+ (#\[[A-Z]+ # )\d+")
        self.assertEqual(number.sub(r"\1", mask_times(log)), number.sub(r"\1", mask_times(first_log)))

    def test_two_starts_give_the_same_bytes_once_times_are_masked(self):
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text(TaskNumber=1))
        outputs = []
        for _ in range(2):
            self.tovcore("p.tvp", "p.tvs")
            outputs.append([mask_times(self.read("p.res", name)) for name in RESULT_FILES])
        self.assertEqual(outputs[0], outputs[1])

    def test_associated_settings_are_those_beside_each_project(self):
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text(XMLOutput=0))
        self.write("q.tvp", dna_project())
        self.write("q.tvs", settings_text(XMLOutput=1))
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "q.tvp", "0", "0", "end",
                                           directive="use_ass_settings"))
        self.tovcore()
        self.assertTrue(self.exists("p.res", "p.htm"))
        self.assertTrue(self.exists("q.res", "q.xml"))

    def test_missing_associated_settings_end_the_list(self):
        self.write("p.tvp", dna_project())
        self.write("q.tvp", dna_project())
        self.write("q.tvs", settings_text())
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "q.tvp", "0", "0", "end",
                                           directive="use_ass_settings"))
        self.tovcore()
        self.assertIn("The Core Routine did not find the associated settings:\n    p.tvs", self.log())
        self.assertFalse(self.exists("q.res"))
        self.assert_finished()

    def test_settings_named_in_the_list(self):
        self.write("p.tvp", dna_project())
        self.write("mine.tvs", settings_text(XMLOutput=0))
        self.write("tov_run.txt", run_list("mine.tvs", "p.tvp", "0", "0", "end", directive="use_spe_settings"))
        self.tovcore()
        self.assertTrue(self.exists("p.res", "p.htm"))

    def test_any_other_directive_takes_the_default_settings(self):
        self.write("p.tvp", dna_project())
        self.write("tov_run.tvs", settings_text())
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "END", directive="what is this"))
        self.tovcore()
        self.assertTrue(self.exists("p.res", "p.xml"))

    def test_a_list_without_a_final_newline_and_with_carriage_returns(self):
        self.write("p.tvp", dna_project())
        self.write("tov_run.tvs", settings_text())
        self.write("tov_run.txt", run_list("p.tvp", "0", "0").replace("\n", "\r\n").rstrip())
        self.tovcore()
        self.assertIn("Successful run of p.tvp", self.log())

    def test_a_failed_project_does_not_stop_the_list(self):
        self.write("p.tvp", "nothing to see\n")
        self.write("q.tvp", dna_project())
        self.write("tov_run.tvs", settings_text())
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "q.tvp", "0", "0", "end"))
        self.tovcore()
        self.assertIn("Error during run of p.tvp", self.log("p"))
        self.assertIn("Successful run of q.tvp", self.log("q"))
        self.assertIn("RUN NUMBER 2", self.document("q"))

    def test_a_later_project_that_is_missing_ends_the_list(self):
        self.write("p.tvp", dna_project())
        self.write("q.tvp", dna_project())
        self.write("tov_run.tvs", settings_text())
        for missing in ("none.tvp", "n" * 500 + ".tvp"):
            with self.subTest(missing[:10]):
                self.write("tov_run.txt", run_list("p.tvp", "0", "0", missing, "0", "0", "q.tvp", "0", "0", "end"))
                self.tovcore()
                self.assertEqual(self.read("tov_pro.txt"), "error\n")
                self.assertFalse(self.exists("q.res"))
                self.assert_finished()
                os.remove(self.path("tov_pro.txt"))

    def test_without_a_result_directory_a_run_has_no_log_and_its_document_beside_the_project(self):
        project = dna_project()
        self.write("p.tvp", project)
        self.write("q.tvp", project)
        self.write("p.res", "in the way\n")
        self.write("tov_run.tvs", settings_text(TaskNumber=1))
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "q.tvp", "0", "0", "end"))
        self.tovcore()
        self.assertEqual(self.read("p.res"), "in the way\n")
        self.assertEqual(self.read("p.tvp"), project)
        self.assertIn("== Sample : \tSouth", self.read("p.xml"))
        self.assert_well_formed("p.xml")
        self.assertIn("Successful run of q.tvp", self.log("q"))
        self.assert_finished()

    def test_the_integers_of_the_last_group_may_be_missing(self):
        self.write("p.tvp", dna_project())
        self.write("q.tvp", dna_project())
        self.write("tov_run.tvs", settings_text())
        for ending in ([], ["0"]):
            with self.subTest(ending):
                self.write("tov_run.txt", run_list("p.tvp", "0", "0", "q.tvp", *ending))
                self.tovcore()
                self.assertIn("Successful run of q.tvp", self.log("q"))
                self.assertEqual(self.document("q").count("<run "), 1)
                self.assert_finished()

    def test_a_list_without_integers_adds_to_the_results(self):
        self.write("p.tvp", dna_project())
        self.write("tov_run.tvs", settings_text())
        self.write("tov_run.txt", run_list("p.tvp"))
        self.tovcore()
        self.tovcore()
        self.assertEqual(self.document().count("<run "), 2)

    def test_the_second_integer_keeps_null_distributions_whatever_the_settings_say(self):
        north, south = dna_project().split("[[Samples]]")[1].split("\tSampleName=")[1:]
        text = dna_project(structure=(("North", "South"), ("East",)), NbSamples=3)
        text = text.replace("[[Structure]]", "\tSampleName=" + north.replace("North", "East") + "\n[[Structure]]")
        self.write("p.tvp", text)
        for keep in (0, 1):
            self.write("tov_run.tvs", settings_text(TaskNumber=512, HaplAMOVA=1, NumPermutationsAMOVA=10,
                                                    KeepNullDistrib=1 - keep))
            self.write("tov_run.txt", run_list("p.tvp", "0", str(keep), "end"))
            self.tovcore()
            kept = [name for name in self.files() if re.search(r"p\.v[a-d]$", name)]
            self.assertEqual(kept, ["p.res/p.va", "p.res/p.vb", "p.res/p.vc"] if keep else [])

    def test_settings_in_a_directory_that_looks_like_a_project(self):
        self.write("p.tvp", dna_project())
        self.write("x.tvp_dir/mine.tvs", settings_text(XMLOutput=0))
        self.write("tov_run.txt", run_list("x.tvp_dir/mine.tvs", "p.tvp", "0", "0", "end",
                                           directive="use_spe_settings"))
        self.tovcore()
        self.assertTrue(self.exists("p.res", "p.htm"))
        self.write("tov_run.txt", run_list("mine.tvs", "none.tvp", "0", "0", "end", directive="use_spe_settings"))
        self.assertTrue(self.tovcore().console.startswith("Project file 'none.tvp' listed in tov_run.txt"))

    def test_a_first_project_in_capitals_passes_the_check_at_the_start(self):
        self.write("tov_run.tvs", settings_text())
        self.write("tov_run.txt", run_list("NONE.TVP", "0", "0", "end"))
        outcome = self.tovcore()
        self.assertIn("Tovcore terminated gracefully", outcome.console)
        self.assertEqual(self.read("tov_pro.txt"), "error\n")

    def test_a_directory_in_line_1_holds_settings_and_front_end_files(self):
        os.mkdir(self.path("my.tvp_dir"))
        self.write("p.tvp", dna_project())
        self.write("my.tvp_dir/tov_run.tvs", settings_text(XMLOutput=0))
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "none.tvp", directory="my.tvp_dir"))
        self.tovcore()
        self.assertTrue(self.exists("p.res", "p.htm"))
        self.assertEqual(self.read("my.tvp_dir", "tov_pro.txt"), "error\n")

    def test_translation_is_answered_in_the_log_beside_the_source(self):
        self.write("src/p.tvp", dna_project())
        self.write("tov_run.txt", run_list("Tovenia", "Genepop", "src/p.tvp", "out.gen", directive="translate"))
        self.tovcore()
        log = self.read("src", "Tovenia_log.txt")
        self.assertTrue(log.startswith("Log file path: src/Tovenia_log.txt\nCore Routine Directory: "))
        self.assertIn("    Writing  out.gen... done.\n", log)
        self.assertTrue(self.read("out.gen").startswith("Title line:Test data\nLocus_1\n"))
        self.assert_finished()

    def test_empty_and_endless_lists(self):
        self.write("tov_run.tvs", settings_text())
        for text in ("", "\n", "\n\n", "\n\n\n", "\n\nend\n", "x" * 100000, "\n" * 1000, "\nuse_spe_settings\n"):
            with self.subTest(text[:12]):
                self.write("tov_run.txt", text)
                self.assertIn("Tovcore terminated gracefully", self.tovcore().console)


class AddedRuns(RunTestCase):
    def start(self, times, keep, **keys):
        self.write("p.tvp", dna_project(samples=(('A & B <"C"> \xe9t\xe9', (("h&1", 2, "ACGT"), ("h<2>", 3, "ACGA"))),),
                                        title="R&D <x> \xe4"))
        self.write("tov_run.tvs", settings_text(TaskNumber=1, **keys))
        self.write("tov_run.txt", run_list("p.tvp", str(keep), "0", "end"))
        for _ in range(times):
            self.tovcore("run_silent")

    def test_kept_results_make_one_document_of_two_runs(self):
        self.start(2, 1)
        root = self.parse_xml("p.res", "p.xml").documentElement
        self.assertEqual(root.tagName, "Tovenia")
        self.assertEqual(len(root.getElementsByTagName("run")), 2)

    def test_three_kept_runs_of_one_process_and_of_three(self):
        self.start(1, 1)
        self.write("tov_run.txt", run_list("p.tvp", "1", "0", "p.tvp", "1", "0", "end"))
        self.tovcore("run_silent")
        root = self.parse_xml("p.res", "p.xml").documentElement
        self.assertEqual(len(root.getElementsByTagName("run")), 3)

    def assert_anchors_resolve(self, extension="xml"):
        anchors = re.findall(r'<A NAME="([^"]*)"', self.document(extension=extension))
        self.assertEqual(sorted(anchors), sorted(set(anchors)))
        links = re.findall(r'p\.%s#([^"]*)"' % extension, self.read("p.res", "p.js"))
        self.assertEqual(sorted(links), sorted(anchors))

    def test_anchors_of_runs_of_one_second_differ(self):
        self.start(1, 0)
        self.write("tov_run.txt", run_list(*["p.tvp", "1", "0"] * 3, "end"))
        self.tovcore("run_silent")
        self.assertEqual(self.read("p.res", "p.js").count('"Run of '), 4)
        self.assert_anchors_resolve()

    def test_anchors_of_both_levels_differ(self):
        text = ('[Profile]\nTitle="g"\nNbSamples=2\nDataType=MICROSAT\nGenotypicData=1\nGameticPhase=0\n'
                "LocusSeparator=WHITESPACE\nMissingData='?'\nRecessiveData=0\n[Data]\n[[Samples]]\n"
                'SampleName="a"\nSampleSize=3\nSampleData={\ni1 2 10 20\n11 20\ni2 1 10 21\n10 20\n}\n'
                'SampleName="b"\nSampleSize=2\nSampleData={\ni3 2 12 20\n10 ?\n}\n'
                '[[Structure]]\nStructureName="s"\nNbGroups=1\nGroup={\n"a"\n"b"\n}\n')
        for xml, extension in ((1, "xml"), (0, "htm")):
            self.run_project(text, TaskNumber=131071, XMLOutput=xml, ComputeSumStatsWithinGroups=1, HaplAMOVA=1,
                             LocByLocAMOVA=1, ComputePairwiseFST=1, PrintDistanceMatrix=1, NumPermutPopDiff=1000,
                             NumDememoPopDiff=100)
            self.assert_anchors_resolve(extension)
            self.assertIn("_gr_genot_assignment", self.document(extension=extension))

    def test_results_that_are_not_kept_are_replaced(self):
        self.start(2, 0)
        root = self.parse_xml("p.res", "p.xml").documentElement
        self.assertEqual(len(root.getElementsByTagName("run")), 1)
        self.assertEqual(self.read("p.res", "p.js").count("foldersTree = gFld("), 1)

    def test_an_incomplete_document_is_replaced(self):
        self.start(1, 1)
        text = self.document()
        self.write("p.res/p.xml", text[:len(text) // 2])
        self.tovcore("run_silent")
        root = self.parse_xml("p.res", "p.xml").documentElement
        self.assertEqual(len(root.getElementsByTagName("run")), 1)
        self.assertIn("Results file was incomplete and is replaced", self.log())

    def test_kept_html_truncates_the_document_and_goes_on_with_the_tree(self):
        self.start(2, 1, XMLOutput=0)
        self.assertEqual(self.document(extension="htm").count("RUN NUMBER"), 2)  # head and end of one run
        script = self.read("p.res", "p.js")
        self.assertEqual(script.count("foldersTree = gFld("), 1)
        self.assertEqual(script.count("Run of "), 2)

    def test_anchors_of_the_tree_stand_in_the_document(self):
        self.start(1, 0)
        document = self.document()
        anchors = re.findall(r'p\.xml#([^"]*)"', self.read("p.res", "p.js"))
        self.assertGreater(len(anchors), 2)
        for anchor in anchors:
            self.assertIn('<A NAME="%s"></A>' % anchor, document)

    def test_html_document_has_its_head_and_foot(self):
        self.start(1, 0, XMLOutput=0)
        text = self.document(extension="htm")
        self.assertTrue(text.startswith("\n<html>\n<!--Tovenia results file-->\n"))
        self.assertTrue(text.endswith("\n</body>\n</PRE>\n</html>\n"))
        self.assertIn("A &amp; B &lt;", text)


class Banners(RunTestCase):
    def test_log_and_document_frame_the_run(self):
        log = self.run_project(dna_project(structure=(("North",), ("South",))), TaskNumber=1)
        document = self.document()
        slashes = "/" * 68
        for text in (log, document):
            masked = mask_times(text)
            self.assertIn("%s\nRUN NUMBER 1 (<time>)\n%s" % (slashes, slashes), masked)
            self.assertIn("\n%s\nEND OF RUN NUMBER 1 (<time>))\nTotal computing time for this run : <span>\n%s"
                          % (slashes, slashes), masked)
        self.assertIn("\nProject information:\n--------------------\n\tNbSamples      =  2\n"
                      "\tDataType       =  DNA\n\tGenotypicData  =  0\n", document)

    def test_log_tells_the_steps_in_order(self):
        log = self.run_project(dna_project(), TaskNumber=1)
        steps = ["Log file path: p.res/Tovenia_log.txt\n", "Core Routine Directory: ",
                 "Reading project profile section...done !", "Opening next project...\np.tvp\n", "RUN NUMBER 1",
                 "\nReading Project: p.res/p.tvp", "Reading input file ...", "  Checking all selected options...",
                 "\t\tBuilding vectors of alleles...", "  check selected settings...", "END OF RUN NUMBER 1",
                 "Successful run of p.tvp"]
        position = 0
        for step in steps:
            found = log.find(step, position)
            self.assertGreaterEqual(found, position, step)
            position = found

    def test_locus_separator_of_dna_is_removed(self):
        log = self.run_project(dna_project(samples=(("S", (("h1", 2, "A C G T"), ("h2", 1, "A C G A"))),),
                                           LocusSeparator="WHITESPACE"), TaskNumber=1)
        self.assertIn("\nWarning: The locus separator has been removed\n\n", log)
        self.assertIn("\nWarning: The locus separator has been removed\n-------\n\n", self.document())
        self.assertIn("No. of loci              : 4", self.document())

    def test_document_sums_up_the_settings(self):
        self.run_project(dna_project(), TaskNumber=1)
        self.assertIn("\nSettings used for Calculations\n", self.document())


class Document(RunTestCase):
    def test_sections_stand_in_the_order_of_the_run(self):
        project = dna_project(structure=(("North", "South"),))
        self.run_project(project, TaskNumber=1 | 512 | 1024, HaplAMOVA=1, ComputePairwiseFST=1, DetectSelectedLoci=1,
                         NumberOfSimsForFDist2=10, ComputeSumStatsWithinGroups=1, PrintDistanceMatrix=1)
        document = self.document()
        position = 0
        for text in ("<?xml version=", "<Tovenia>\n<data>\n", "\n<header>\nTovenia results\n</header>", "<run time=",
                     "RUN NUMBER 1", "\nProject information:\n--------------------\n", "Settings used for Calculations",
                     "== ANALYSES AT THE INTRA-GROUP LEVEL", "== GENETIC STRUCTURE ANALYSIS",
                     "== ANALYSES AT THE INTRA-POPULATION LEVEL", "== Sample : \tSouth", "== GENETIC STRUCTURE ANALYSIS",
                     "Number of usable loci for distance computation : 10\n",
                     "\nList of usable loci :\n---------------------\n   1    2 ",
                     "\nList of loci with too much missing data :\n-----------------------------------------\nNONE",
                     "Matrix of Euclidian square distances used in the genetic structure section:\n",
                     "\nCorresponding list of Haplotypes: \n\nExt_Id  \tFreq.\nh1      \t0.428571\n",
                     "== DETECTION OF LOCI UNDER SELECTION FROM GENOME SCANS BASED ON F-STATISTICS\n" + "=" * 78 + "\n"
                     "</data>\n<Reference>", "_fdist2_", "END OF RUN NUMBER 1", "</data>\n\n</Tovenia>\n\n"):
            found = document.find(text, position)
            self.assertGreaterEqual(found, position, text)
            position = found + len(text)
        self.assertEqual(position, len(document))

    def test_conventional_statistics_name_their_matrix(self):
        self.run_project(dna_project(structure=(("North", "South"),)), TaskNumber=1024, ComputePairwiseFST=1,
                         ComputeConventionalFST=1, PrintDistanceMatrix=1)
        self.assertIn("\nConventional FST Matrix: Dij=1 if i!=j and O else:\n", self.document())

    def test_a_task_that_is_not_possible_closes_the_document(self):
        text = ('[Profile]\nTitle="r"\nNbSamples=1\nDataType=STANDARD\nGenotypicData=1\nGameticPhase=1\n'
                'RecessiveData=1\nRecessiveAllele="0"\nLocusSeparator=WHITESPACE\nMissingData=\'?\'\n[Data]\n'
                '[[Samples]]\nSampleName="a"\nSampleSize=2\nSampleData={\ni 2 A B\nA 0\n}\n')
        for xml, extension, foot in ((1, "xml", "</data>\n\n</Tovenia>\n\n"), (0, "htm", "\n</body>\n</PRE>\n</html>\n")):
            log = self.run_project(text, TaskNumber=8192, XMLOutput=xml)
            self.assertIn('"Project::make_run_possible()" : incompatibility between known gametic phase', log)
            self.assertIn("Error during run of p.tvp", log)
            self.assertTrue(self.document(extension=extension).endswith(
                "\nOne of the scheduled task is not possible with these data,"
                "\nfor more details look into 'Tovenia_log.txt'\n" + foot))
            self.assertFalse(self.exists("p.res", "p.tvp"))
        self.assert_well_formed("p.res", "p.xml")

    def test_microsatellites_lack_the_ewens_watterson_section_without_a_word(self):
        text = ('[Profile]\nTitle="m"\nNbSamples=1\nDataType=MICROSAT\nGenotypicData=0\nLocusSeparator=WHITESPACE\n'
                "MissingData='?'\n[Data]\n[[Samples]]\n"
                'SampleName="a"\nSampleSize=4\nSampleData={\nh1 3 10 20\nh2 1 11 20\n}\n')
        log = self.run_project(text, TaskNumber=1 | 128 | 256)
        for word in ("Ewens", "Watterson", "Chakraborty"):
            self.assertNotIn(word, log)
            self.assertNotIn("(" + word, self.document().split("Settings used for Calculations")[1].split("====", 2)[2])

    def test_nasty_text_of_every_kind_leaves_well_formed_documents(self):
        nasty = "]]>&<%s>\xe9\xff\x01'"
        allele = nasty.replace("\x01", "")  # a control character is no part of an allele
        genotypes = "".join('i%s%d 1 %s %s\n%s %s\n' % (nasty % "i", i, *(allele % "abcd"[i >> b & 1] for b in range(4)))
                            for i in range(8))
        head = ('[Profile]\nTitle="%s"\nNbSamples=2\nDataType=%s\nGenotypicData=%d\nGameticPhase=%d\n'
                "LocusSeparator=WHITESPACE\nMissingData='?'\nRecessiveData=0\n[Data]\n")
        matrix = ('[[DistanceMatrix]]\nMatrixName="%s"\nMatrixSize=2\nLabelPosition=LINE\nMatrixData={\n%s %s\n0\n1 0\n}\n'
                  % (nasty % "m", nasty % "x", nasty % "y"))
        structure = ('[[Structure]]\nStructureName="%s"\nNbGroups=1\nGroup={\n"%s"\n"%s"\n}\n'
                     % (nasty % "g", nasty % "1", nasty % "2"))

        def samples(entries, size):
            return "[[Samples]]\n" + "".join('SampleName="%s"\nSampleSize=%d\nSampleData={\n%s}\n'
                                             % (nasty % name, size, entries) for name in "12")

        counts = "%s 3\n%s 2\n" % (nasty % "x", nasty % "y")
        definitions = "%s 3 %s a\n%s 2 %s b\n" % (nasty % "x", allele % "p", nasty % "y", allele % "q")
        projects = {"phased": head % (nasty % "t", "STANDARD", 1, 1) + samples(genotypes, 8) + structure,
                    "unphased": head % (nasty % "t", "STANDARD", 1, 0) + samples(genotypes, 8) + structure,
                    "haplotypes": head % (nasty % "t", "STANDARD", 0, 1) + samples(definitions, 5) + structure,
                    "frequencies": head % (nasty % "t", "FREQUENCY", 0, 1) + matrix + samples(counts, 5) + structure}
        keys = {key: 1 for key in (
            "HaplAMOVA", "LocByLocAMOVA", "ComputePairwiseFST", "PrintFstVals", "PrintMissIntermatchs", "MakeExactTestLD",
            "MakeHWExactTest", "ComputeDvalues", "PrintHaplDistMat", "PrintPopDistMat", "PrintMinSpannNetworkPop",
            "PrintDistanceMatrix", "PrintMinSpannNetworkGlob", "ComputeAllHaplotypesEM", "ComputeAllAllelesEM",
            "EliminateRedondHaplodefs", "ComputeSumStatsWithinGroups", "DetectSelectedLoci", "PopSpecificFST",
            "ComputeAllAlleleFreqs")}
        keys.update(TaskNumber=131071, TypeOfTestHW=2, ComputeTheta=15, InitialConditionsEM=2, MarkovChainStepsHW=1000,
                    MarkovChainDememorisationStepsHW=500, MarkovChainStepsLD=100, NumPermutPopDiff=1000,
                    NumDememoPopDiff=100, NumPermutationsAMOVA=10, NumPermutationsFST=10, NumberOfSimsForFDist2=100,
                    NumSimulFuTest=10, NumIterationsNeutralityTests=10)
        for name, text in projects.items():
            for computed in (0, 1):
                with self.subTest("%s %d" % (name, computed)):
                    log = self.run_project(text, nasty % "p", ComputeDistanceMatrixAMOVA=computed, **keys)
                    self.assertIn("Successful run", log)
                    folder = nasty % "p" + ".res"
                    self.assert_well_formed(folder, nasty % "p" + ".xml")
                    document = self.read(folder, nasty % "p" + ".xml")
                    self.assertIn("]]&gt;&amp;&lt;1>", document)


class Checks(RunTestCase):
    def test_hardy_weinberg_on_haplotypes_is_skipped(self):
        log = self.run_project(dna_project(), TaskNumber=32)
        self.assertIn("     !!!Hardy-Weinberg disequilibrium test is not possible on Haplotypic data,\n"
                      "        this task will be skipped.", log)

    def test_genotype_assignment_of_haplotypes_is_skipped(self):
        log = self.run_project(dna_project(), TaskNumber=32768)
        self.assertIn("   !!!The computation of the likelihood of all individuals in each\n"
                      "      population is only possible for Genotypic data \n"
                      "      skipping the task...\n", log)

    def test_amova_without_structure_is_skipped(self):
        log = self.run_project(dna_project(), TaskNumber=512, HaplAMOVA=1)
        text = "  An AMOVA analysis was selected and no Genetic structure\n  is defined, AMOVA task is skipped.\n"
        self.assertIn(text, log)
        self.assertIn(text, self.document())

    def test_too_few_steps_show_the_value_of_the_linkage_test(self):
        log = self.run_project(dna_project(), TaskNumber=1, MarkovChainDememorisationStepsLD=2000,
                               MarkovChainDememorisationStepsHW=100)
        self.assertIn(" Too few steps for dememorization (2000) in Hardy-Weinberg disequilibrium test, "
                      "setting it to 1000...", log)
        self.assertNotIn("in linkage disequilibrium test", log)

    def test_frequency_data_without_a_matrix_take_conventional_statistics(self):
        text = ('[Profile]\nTitle="f"\nNbSamples=2\nDataType=FREQUENCY\nGenotypicData=0\n[Data]\n[[Samples]]\n'
                'SampleName="a"\nSampleSize=5\nSampleData={\nx 2\ny 3\n}\n'
                'SampleName="b"\nSampleSize=4\nSampleData={\nx 4\n}\n')
        log = self.run_project(text, TaskNumber=1024, ComputeDistanceMatrixAMOVA=0, ComputeConventionalFST=0)
        self.assertIn("    !!!No matrix was specified in input file, Tovenia will compute it from the data\n", log)
        self.assertIn("   !!!No molecular information is available for testing genetic structure,\n", log)
        self.assertIn("Successful run", log)


class GroupLevel(RunTestCase):
    def test_groups_are_analysed_before_samples_under_anchors_of_their_own(self):
        self.run_project(dna_project(structure=(("North", "South"),)), TaskNumber=1, ComputeSumStatsWithinGroups=1)
        document = self.document()
        groups = document.index("== ANALYSES AT THE INTRA-GROUP LEVEL")
        samples = document.index("== ANALYSES AT THE INTRA-POPULATION LEVEL")
        self.assertLess(groups, samples)
        self.assertIn("== Sample : \tGroup1", document[groups:samples])
        self.assertIn("No. of gene copies       : 7\n", document[groups:samples])
        self.assertIn("== Sample : \tNorth", document[samples:])
        anchors = re.findall(r'<A NAME="([^"]*)"', document)
        self.assertEqual(sorted(anchors), sorted(set(anchors)))

    def test_the_sample_level_is_the_same_with_and_without_groups(self):
        project = dna_project(structure=(("North", "South"),))
        levels = []
        for wanted in (0, 1):
            self.run_project(project, TaskNumber=1, ComputeSumStatsWithinGroups=wanted)
            document = mask_times(self.document())
            levels.append(document[document.index("== ANALYSES AT THE INTRA-POPULATION LEVEL"):])
        self.assertEqual(levels[0], levels[1])

    def test_without_a_structure_there_is_no_group_to_analyse(self):
        log = self.run_project(dna_project(), TaskNumber=1, ComputeSumStatsWithinGroups=1)
        self.assertIn("Successful run", log)
        self.assert_well_formed("p.res", "p.xml")

    def test_genotypes_are_pooled_too(self):
        text = ('[Profile]\nTitle="g"\nNbSamples=2\nDataType=MICROSAT\nGenotypicData=1\nGameticPhase=0\n'
                "LocusSeparator=WHITESPACE\nMissingData='?'\nRecessiveData=0\n[Data]\n[[Samples]]\n"
                'SampleName="a"\nSampleSize=3\nSampleData={\ni1 2 10 20\n11 20\ni2 1 10 21\n10 20\n}\n'
                'SampleName="b"\nSampleSize=2\nSampleData={\ni3 2 12 20\n10 ?\n}\n'
                '[[Structure]]\nStructureName="s"\nNbGroups=1\nGroup={\n"a"\n"b"\n}\n')
        self.run_project(text, TaskNumber=1, ComputeSumStatsWithinGroups=1)
        document = self.document()
        self.assertIn("No. of gene copies       : 10\n", document)
        self.assertIn("No. of gene copies       : 6\n", document)
        self.assertIn("No. of gene copies       : 4\n", document)


class Explore(RunTestCase):
    def explore(self, text):
        self.write("p.tvp", text)
        self.write("tov_run.txt", run_list("p.tvp", "0", "0", "end", directive="explore"))
        self.tovcore()

    def test_front_end_files_of_a_project(self):
        self.explore(dna_project(structure=(("North",), ("South",)), GameticPhase=1, RecessiveData=0))
        self.assertEqual(self.read("samples.txt").split("\n")[:3], ["2", "North", "South"])
        self.assertTrue(self.read("groups.txt").startswith("2"))
        lines = self.read("tov_pro.txt").split("\n")
        self.assertEqual(lines[:2], ["Test data=Title;", "2=NbSamples;"])
        self.assertEqual(lines[2], "2=NbGroups; ")
        self.assertEqual(lines[3:9], ["0=GenotypicData;", "1=GameticPhase;", "DNA=DataType;", "NONE=LocusSeparator;",
                                      "?=MissingData;", "none=DistMatLabel;"])
        keys = [line.split("=")[1] for line in lines[9:-1]]
        self.assertEqual(keys, ["UsedHaplList; ", "ExtHaplFile; ", "Interleave; ", "IndividualLevel;", "Frequency; ",
                                "RecessiveData; ", "RecessiveAllele;", "GivenDistMat; ", "EpsilonValue;",
                                "FrequencyThreshold;"])
        self.assertEqual(self.files(), sorted(["p.tvp", "tov_run.txt", "samples.txt", "groups.txt", "tov_pro.txt",
                                               "tovenia.ini", "compfinished_final", "randseed.txt",
                                               "p.res/Tovenia_log.txt"]))

    def test_a_project_without_data_is_an_error(self):
        self.explore('[Profile]\nTitle="x"\nNbSamples=1\n[Data]\n')
        self.assertEqual(self.read("tov_pro.txt"), "error\n")
        self.assertIn('from function "Project::explore()" : no subsections found\n', self.log())

    def test_a_project_without_a_profile_is_an_error(self):
        self.explore("nothing\n")
        self.assertEqual(self.read("tov_pro.txt"), "error\n")
        self.assertEqual(self.read("groups.txt"), "0")
        self.assertIn("Exploring  p.tvp ...\nReading general settings in input file ...\n", self.log())
        self.assertIn('from function "Project::explore()" : unable to read Profile Settings\ndone!\n', self.log())

    def test_each_section_is_told_in_the_log(self):
        matrix = '[[DistanceMatrix]]\nMatrixName="given"\nMatrixSize=2\nMatrixData={\nh1 h2\n0\n1 0\n}\n[[Samples]]'
        self.explore(dna_project(structure=(("North",), ("South",))).replace("[[Samples]]", matrix))
        self.assertTrue(self.log().endswith(
            "Exploring  p.tvp ...\nReading general settings in input file ...\ndone ! \n\tReading distance matrix ...\n"
            "\tExploring Samples...\n\tExploring genetic structure...\ndone!\n"))
        self.assertIn("\ngiven=DistMatLabel;\n", self.read("tov_pro.txt"))

    def test_separators_are_named(self):
        for value, shown in (("NONE", "NONE"), ("WHITESPACE", "WHITESPACE"), ("TAB", "TAB"), ("'/'", "/")):
            self.explore(dna_project(LocusSeparator=value))
            self.assertIn("\n%s=LocusSeparator;\n" % shown, self.read("tov_pro.txt"))

    def test_fewer_samples_than_declared_are_an_error(self):
        self.explore(dna_project(NbSamples=3))
        self.assertIn("Samples::explore(): Unable to extract all population names", self.log())
        self.assertEqual(self.read("tov_pro.txt"), "error\n")

    def test_more_than_five_sections_are_an_error(self):
        self.explore(dna_project() + "[[Mantel]]\nMatrixSize=3\n" * 5)
        self.assertEqual(self.read("tov_pro.txt"), "error\n")
        self.assertIn('from function "Project::explore()" : %s' % TOO_MANY_SECTIONS, self.log())


class BatchTables(RunTestCase):
    def test_a_second_start_adds_a_banner(self):
        self.write("glbstreams.txt", "tab_\n_GENE_DIVERSITY_\nnonsense\n")
        self.write("p.tvp", dna_project())
        self.write("p.tvs", settings_text(TaskNumber=1))
        for start in (1, 2):
            self.tovcore("p.tvp", "p.tvs")
            self.assertEqual(self.read("tab_gen_div.sum").count('Tovenia batch run summary file"'), start)


if __name__ == "__main__":
    unittest.main()
