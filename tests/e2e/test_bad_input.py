"""Bad projects and settings: each is told in the log, the document is closed, the next project of the list still runs."""
import os
import random
import unittest

from support import RunTestCase, dna_project, settings_text

GOOD = dna_project()
ONE_SAMPLE = (("S", (("h1", 2, "ACGT"), ("h2", 1, "ACGA"))),)
ONE = dna_project(samples=ONE_SAMPLE)


class BadProject(RunTestCase):
    def run_bad(self, text, *messages, fails=True, name="bad", tasks=1):
        """Runs a project, then a good one; the bad one's log must hold the messages."""
        self.write(name + ".tvp", text)
        self.write("good.tvp", GOOD)
        self.write("tov_run.tvs", settings_text(TaskNumber=tasks))
        self.write("tov_run.txt", "\nuse_interf_settings\n%s.tvp\n0\n0\ngood.tvp\n0\n0\nend\n" % name)
        self.tovcore("run_silent")
        self.assert_finished()
        log = self.log(name)
        for message in messages:
            self.assertIn(message, log)
        self.assertIn(("Error during" if fails else "Successful") + " run of %s.tvp" % name, log)
        self.assertEqual(self.exists("tov_pro.txt"), fails)
        self.assert_well_formed("%s.res" % name, "%s.xml" % name)
        self.assertIn("Successful run of good.tvp", self.log("good"))
        return log


class Samples(BadProject):
    def test_missing_closing_brace_before_a_section(self):
        text = dna_project(structure=(("North",), ("South",)))
        head, tail = text.rsplit("\t}\n\n[[Structure]]", 1)
        self.run_bad(head + "\n[[Structure]]" + tail,
                     "Missing closing brace for sample \"South\". New section found on line ",
                     " before finding closing brace.  Aborting reading procedure")

    def test_missing_closing_brace_at_the_end(self):
        self.run_bad(GOOD.rstrip().rstrip("}"), "Samples section")

    def test_wrong_number_of_loci(self):
        self.run_bad(GOOD.replace("ACTTACGTAC", "ACTTACGTA"),
                     "\tNumber of loci for haplotype \"h3\" is different (9) from that previously defined (10) on line ")

    def test_two_definitions_of_one_haplotype(self):
        self.run_bad(GOOD.replace("h3", "h2"), "\tDefinition of haplotype h2 does not match its previous definition, "
                     "aborting reading project.")

    def test_the_same_definition_again_is_a_warning(self):
        self.run_bad(GOOD, "\tHaplotype h1 defined on line ", " has already been defined previously...", fails=False)

    def test_a_frequency_that_is_no_number(self):
        self.run_bad(ONE.replace("h2\t1\t", "h2\t1x\t"), "\tProblem reading haplotype frequency (\"1x\") on line ")

    def test_a_missing_frequency(self):
        self.run_bad(ONE.replace("h2\t1\tACGA", "h2"), "\tUnable to read haplotype \"h2\" frequency on line ")

    def test_a_missing_definition(self):
        self.run_bad(ONE.replace("\tACGA", ""), "\tUnable to read haplotype definition on line ")

    def test_a_character_that_is_no_base(self):
        self.run_bad(ONE.replace("ACGA", "AC*A"), 'from function "HaploDef::read_data()"',
                     "\tUnable to read haplotype definition on line ")

    def test_frequencies_that_do_not_add_up_to_the_size(self):
        self.run_bad(ONE.replace("SampleSize=3", "SampleSize=7"),
                     "Population::New_read_gametic_data() (SampleSize=7; Sum. Freq.=3)", fails=False)

    def test_relative_frequencies_that_do_not_add_up_to_1(self):
        self.run_bad(dna_project(samples=ONE_SAMPLE, Frequency="REL").replace("h1\t2", "h1\t0.5")
                     .replace("h2\t1", "h2\t0.2"), "sum", fails=False)

    def test_fewer_samples_than_declared(self):
        self.run_bad(dna_project(NbSamples=3), "Warning: 2 samples are actually listed in project file, while ",
                     fails=False)

    def test_no_samples_declared(self):
        self.run_bad(dna_project(NbSamples=0), fails=True)

    def test_missing_external_sample_file(self):
        text = ONE.replace("SampleData={\n\t\th1\t2\tACGT\n\t\th2\t1\tACGA\n\t}", 'SampleData= EXTERN "none.dat"')
        self.run_bad(text, "\tWarning: External file \"none.dat\" listed on line ",
                     " cannot be open. Check that it exists...")


class Profile(BadProject):
    def test_unknown_data_type(self):
        self.run_bad(dna_project(DataType="PROTEIN"), 'from function "ProfileSettings::read_DataType()"', fails=False)

    def test_missing_keys_are_told_one_by_one(self):
        rows = (
            ({"NbSamples": None}, '\tKeyword "NbSamples" not found. Undefined number of samples to read. '
                                  "Check your project file.\n", True),
            ({"DataType": None}, '\tKeyword "DataType" not found. Undefined data type. Check your project file.\n', True),
            ({"GenotypicData": None}, '\tKeyword "GenotypicData" not found. Undefined data type. '
                                      "Check your project file.\n", True),
            ({"LocusSeparator": None}, '\tKeyword "LocusSeparator" not found. Check your project file.\n', True),
            ({"MissingData": None}, '\tKeyword "MissingData" not found. Using default value ("?"). '
                                    "Check your project file.\n", False),
            ({"RecessiveData": 1}, '\tKeyword "RecessiveAllele" not found. Undefined recessive allele for '
                                   "recessive data. ", False),
        )
        for keys, message, fails in rows:
            with self.subTest(str(keys)):
                self.run_bad(dna_project(samples=ONE_SAMPLE, **keys), message, fails=fails)
                for name in ("tov_pro.txt",):
                    if self.exists(name):
                        os.remove(self.path(name))

    def test_missing_sections_are_told(self):
        for text, message in (
                (GOOD.replace("[Profile]", ""), "\t[PROFILE] section not defined. Check your project file.\n"),
                (GOOD.replace("[Data]", ""), "\t[DATA] section not defined. Check your project file.\n"),
                (GOOD.split("[[Samples]]")[0], '\tSection "Samples" not found in project. '
                 "At least one sample needs to be defined. Check your project file.\n")):
            with self.subTest(message):
                self.run_bad(text, message)

    def test_a_number_of_samples_that_is_no_number(self):
        self.run_bad(dna_project(NbSamples="x"), 'Keyword "NbSamples" not found')

    def test_a_comment_cuts_a_quoted_title(self):
        self.run_bad(dna_project(title="a # b"), " : Open", fails=False)


class Files(BadProject):
    def test_empty_file(self):
        self.run_bad("", "\t[PROFILE] section not defined. Check your project file.\n")

    def test_binary_garbage(self):
        generator = random.Random(7)
        self.run_bad("".join(chr(generator.randrange(256)) for _ in range(200000)),
                     "\t[PROFILE] section not defined. Check your project file.\n")

    def test_garbage_behind_a_good_beginning(self):
        generator = random.Random(8)
        noise = "".join(chr(generator.randrange(256)) for _ in range(50000))
        for mark in ("[[Samples]]", "SampleData={", "\t}"):
            with self.subTest(mark):
                self.write("bad.tvp", GOOD.split(mark)[0] + mark + noise)
                self.write("s.tvs", settings_text(TaskNumber=1))
                self.tovcore("bad.tvp", "s.tvs", "run_silent")
                self.assert_finished()
                self.assert_well_formed("bad.res", "bad.xml")

    def test_every_beginning_of_a_project_is_survived(self):
        self.write("s.tvs", settings_text(TaskNumber=1))
        text = dna_project(structure=(("North",), ("South",)))
        for length in range(0, len(text), 37):
            self.write("bad.tvp", text[:length])
            self.tovcore("bad.tvp", "s.tvs", "run_silent")
            self.assert_finished()

    def test_carriage_returns_and_no_final_newline(self):
        self.run_bad(GOOD.replace("\n", "\r\n").rstrip(), fails=False)

    def test_a_line_of_a_megabyte(self):
        self.run_bad(GOOD.replace("[[Samples]]", "# " + "x" * 1000000 + "\n[[Samples]]"), fails=False)
        self.run_bad(GOOD.replace("[[Samples]]", "x" * 1000000 + "\n[[Samples]]"), fails=False)
        long = "ACGT" * 250000
        self.run_bad(dna_project(samples=(("S", (("h1", 2, long), ("h2", 1, long[:-1] + "A"))),)), fails=False,
                     tasks=0)

    def test_ten_thousand_samples(self):
        samples = tuple(("s%d" % i, (("h%d" % (i % 3), 2, "ACG" + "ACG"[i % 3]),)) for i in range(10000))
        self.run_bad(dna_project(samples=samples), fails=False)

    def test_a_name_of_500_characters(self):
        self.run_bad(dna_project(samples=(("n" * 500, (("h" * 500, 2, "ACGT"),)),), title="t" * 5000), fails=False)


class Settings(RunTestCase):
    def test_garbage_as_settings(self):
        generator = random.Random(9)
        noise = "".join(chr(generator.randrange(256)) for _ in range(100000))
        for text in ("", noise, "TaskNumber=", "TaskNumber=99999999999999999999999\nXMLOutput=1\n", "=" * 100000,
                     settings_text(TaskNumber="x-1-2-")):
            with self.subTest(text[:20]):
                self.write("p.tvp", GOOD)
                self.write("p.tvs", text)
                self.tovcore("p.tvp", "p.tvs", "run_silent")
                self.assert_finished()


if __name__ == "__main__":
    unittest.main()
