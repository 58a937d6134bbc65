"""Whole translations: run list in, files and log out; and translated projects that run."""
import os
import random
import re
import unittest

from support import RunTestCase, dna_project, settings_text

GENEPOP = """Two lakes
LocA
LocB
LocC
POP
North 1 , 0101 0203 1010
North 2 , 0102 0000 1011
POP
South 1 , 0202 0303 1111
South 2 , 0101 0202
  0000
"""
GENEPOP3 = """Microsatellites
Fca8
Fca23
Pop
a1 ,  135143 136146
a2 ,  133135\t000000
pop
b1 ,  135135 146146
"""
PHYLIP = "3 8\nAlpha     ACGTACGT\nBeta      ACGTACG-\nGamma     AC?TACGA\n"
INTERLEAVED = "3 8\nAlpha     ACGT\nBeta      ACGT\nGamma     AC?T\n\nACGT\nACG-\nACGA\n"
MEGA = "#mega\nTITLE: Three taxa\n#Alpha ACGTACGT\n#Beta ACGTACG-\n#Gamma AC?TACGA\n"
MEGA_DISTANCES = "#mega\n!Title d;\n!Format DataType=Distance DataFormat=LowerLeft;\n#A\n#B\n#C\n0.5\n1.5 2.5\n"
BIOSYS = ("Two lakes\nNOTU=2, NLOC=3, NALL=3, CRT;\n(1X,A7))\n LOCI01\n LOCI02\n LOCI03\n\nSTEP DATA:\nDATYP=1,ALPHA\n"
          "(A7,3X,3(1X,A1,A1))\nnorth1     AA BC AA\nnorth2     AB    AC\nNEXT\nsouth1     BB CC CC\nNEXT\nEND;\n")
ZENTARA = "North\nSouth\n+++\nm.dis\n+++\nNorth\nSouth\n"
ZENTARA_FILES = {"North.pop": "h1 3\nh2 1\n", "South.pop": "h1 2\nh3 5\n", "m.dis": "h1 h2 h3\n0\n1 0\n2 1 0\n"}
GENOTYPES = """[Profile]
Title="g"
NbSamples=2
DataType=MICROSAT
GenotypicData=1
GameticPhase=0
LocusSeparator=WHITESPACE
MissingData='?'
[Data]
[[Samples]]
SampleName="a"
SampleSize=3
SampleData={
i1 2 10 20
11 20
i2 1 10 21
? 20
}
SampleName="b"
SampleSize=1
SampleData={
i3 1 12 20
10 ?
}
"""
SITES = """[Profile]
Title="s"
NbSamples=2
DataType=DNA
GenotypicData=1
GameticPhase=1
LocusSeparator=NONE
MissingData='?'
[Data]
[[Samples]]
SampleName="a"
SampleSize=2
SampleData={
i1 2 acgt
ac?t
}
SampleName="b"
SampleSize=1
SampleData={
i2 1 ACGA
ACGA
}
"""
FORMATS = ("Genepop", "Phylip", "Mega", "Biosys", "Zentara")


def genotypes(text):
    """Samples of a Genepop file: lists of (name without blanks, [(allele, allele), ...])."""
    samples = []
    for line in text.split("\n")[1:]:
        if line.strip().lower() == "pop":
            samples.append([])
        elif samples and line.strip():
            fields = line
            if "," in line:
                name, fields = line.split(",", 1)
                samples[-1].append((name.replace(" ", ""), []))
            for field in fields.split():
                half = len(field) // 2
                samples[-1][-1][1].append((field[:half], field[half:]))
    return samples


class Translation(RunTestCase):
    def translate(self, source_format, target_format, source, target, *more, directory=""):
        """One start of the program; returns the log."""
        lines = [directory, "translate", source_format, target_format, source, target] + list(more)
        self.write("tov_run.txt", "\n".join(lines) + "\n")
        self.tovcore("run_silent")
        self.assert_finished()
        for name in ("dum_tov.tvp", "trans_out.txt", os.path.join(directory, "dum_tov.tvp")):
            self.assertFalse(self.exists(name), name)
        return self.read(os.path.dirname(source), "Tovenia_log.txt")

    def to_project(self, source_format, text, *more, name="q"):
        self.write("in.dat", text)
        log = self.translate(source_format, "Tovenia", "in.dat", name + ".tvp", *more)
        return self.read(name + ".tvp"), log

    def from_project(self, target_format, text, name="p"):
        self.write(name + ".tvp", text)
        log = self.translate("Tovenia", target_format, name + ".tvp", "out.dat")
        return self.read("out.dat"), log

    def assert_runs(self, name="q"):
        """The project runs with standard indices, and its log holds no report of an error."""
        self.write(name + ".tvs", settings_text(TaskNumber=1, ComputeStandardDiversityIndices=1))
        self.tovcore(name + ".tvp", name + ".tvs", "run_silent")
        log = self.log(name)
        self.assertIn("Successful run of %s.tvp" % name, log)
        for tag in ("#[ERROR", "#[WARNING", "#[MEMORY"):
            self.assertNotIn(tag, log)
        self.assert_well_formed(name + ".res", name + ".xml")
        return self.document(name)

    def assert_same_genotypes(self, before, after):
        """Same samples, names and genotypes; alleles of a locus may have other numbers."""
        before, after = genotypes(before), genotypes(after)
        self.assertEqual([[name for name, _ in sample] for sample in before],
                         [[name for name, _ in sample] for sample in after])
        forth, back = {}, {}
        for old_sample, new_sample in zip(before, after):
            for (_, old), (_, new) in zip(old_sample, new_sample):
                self.assertEqual(len(old), len(new))
                for locus, (pair, new_pair) in enumerate(zip(old, new)):
                    for allele, new_allele in zip(pair, new_pair):
                        self.assertEqual(int(allele) == 0, int(new_allele) == 0)
                        self.assertEqual(forth.setdefault((locus, int(allele)), int(new_allele)), int(new_allele))
                        self.assertEqual(back.setdefault((locus, int(new_allele)), int(allele)), int(allele))


class RoundTrips(Translation):
    def genepop_again(self, text):
        project, _ = self.to_project("Genepop", text, "1")
        self.assertIn("\t GenotypicData=1\n", project)
        back, log = self.from_project("Genepop", project, name="q")
        self.assertIn("    Writing  out.dat... done.\n", log)
        return back

    def test_genepop_of_two_digits(self):
        self.assert_same_genotypes(GENEPOP, self.genepop_again(GENEPOP))
        document = self.assert_runs()
        self.assertEqual(len(re.findall("No. of gene copies *: *4\n", document)), 2)

    def test_genepop_of_three_digits(self):
        self.assert_same_genotypes(GENEPOP3, self.genepop_again(GENEPOP3))
        self.assert_runs()

    def test_genepop_with_a_locus_of_more_than_99_alleles(self):
        text = "Many\nL1\nL2\nPOP\n" + "".join("i%d , %03d%03d 001002\n" % (a, a, a % 60 + 1) for a in range(1, 141))
        again = self.genepop_again(text)
        self.assert_same_genotypes(text, again)
        self.assert_runs()
        self.assertIn("i140 , ", again)
        self.assertEqual({len(field) for line in again.split("\n") if "," in line
                          for field in line.split(",")[1].split()}, {6})

    def test_random_genepop_files(self):
        generator = random.Random(5)
        for digits in (2, 3):
            lines = ["Random"] + ["L%d" % l for l in range(12)]
            for s in range(5):
                lines.append(generator.choice(["POP", "Pop", "pop"]))
                for i in range(generator.randrange(1, 15)):
                    fields = ["".join("%0*d" % (digits, generator.randrange(0, 9)) for _ in range(2)) for _ in range(12)]
                    cut = generator.randrange(1, 12)
                    lines += ["s%d i%d , %s" % (s, i, " ".join(fields[:cut])), "   " + "\t".join(fields[cut:])]
            text = "\n".join(lines) + "\n"
            self.assert_same_genotypes(text, self.genepop_again(text))
            self.assert_runs()

    def test_haploid_genepop(self):
        project, _ = self.to_project("Genepop", GENEPOP, "0")
        self.assertIn("\t GenotypicData=0\n", project)
        self.assert_runs()
        again, _ = self.from_project("Genepop", project, name="q")
        self.assertIn("North1 , 01 01 01\n", again)
        # One allele a field is no pair: what was written of haplotypes is told to be unreadable, not guessed.
        project, log = self.to_project("Genepop", again, "0")
        self.assertIn("# error in definition of allele 01\n", project)
        self.assertIn("\t\tTranslator is unable to open the Tovenia File\n", log)

    def test_phylip_in_both_layouts(self):
        for text in (PHYLIP, INTERLEAVED):
            project, _ = self.to_project("Phylip", text)
            document = self.assert_runs()
            self.assertRegex(document, "No. of gene copies *: *3\n")
            self.assertRegex(document, "No. of loci *: *8\n")
            self.assertRegex(document, "No. of usable loci *: *7 ")
            again, log = self.from_project("Phylip", project, name="q")
            self.assertEqual([line[10:] for line in again.split("\n")], [line[10:] for line in PHYLIP.split("\n")])
            self.assertNotIn("merged", log)

    def test_phylip_of_a_project_with_several_samples(self):
        again, log = self.from_project("Phylip", dna_project())
        self.assertEqual(again, "7 10\nh11       ACGTACGTAC\nh12       ACGTACGTAC\nh23       ACGTACGTAT\n"
                                "h14       ACGTACGTAC\nh35       ACTTACGTAC\nh36       ACTTACGTAC\nh37       ACTTACGTAC\n")
        self.assertIn("  into PHYLIP format, original population samples have been merged into \n", log)
        self.to_project("Phylip", again)
        self.assert_runs()

    def test_phylip_of_genotypes(self):
        again, log = self.from_project("Phylip", GENOTYPES)
        self.assertEqual(again.split("\n")[:3], ["8 2", "i11       10 20", "i12       11 20"])
        self.assertIn("haplotypic data. We have therefore made two dummy haplotypes with each\n  genotype.\n", log)
        project, _ = self.to_project("Phylip", again)
        self.assertIn("LocusSeparator=WHITESPACE", project)
        self.assert_runs()

    def test_mega(self):
        project, _ = self.to_project("Mega", MEGA)
        self.assert_runs()
        again, _ = self.from_project("Mega", project, name="q")
        self.assertEqual([line.split()[-1] for line in again.split("\n") if line.startswith("#")],
                         ["#mega", "ACGTACGT", "ACGTACG-", "AC?TACGA"])
        project, _ = self.to_project("Mega", again)
        self.assert_runs()

    def test_interleaved_mega(self):
        text = "#mega\n!Title t;\n!Format identical=. missing=N;\n#A ACGT\n#B ..C.\n\n#A AC-T\n#B ....\n#C GNGTACGT\n"
        project, _ = self.to_project("Mega", text)
        self.assertIn("\t\t\tA 1 ACGTAC-T\n\t\t\tB 1 ACCTAC-T\n\t\t\tC 1 G?GTACGT\n", project)
        self.assert_runs()

    def test_mega_of_genotypes(self):
        again, log = self.from_project("Mega", SITES)
        self.assertEqual([line.split()[-1] for line in again.split("\n") if line.startswith("#")],
                         ["#mega", "ACGT", "AC?T", "ACGT", "AC?T", "ACGA", "ACGA"])
        self.assertIn("  into MEGA format, original population samples have been merged into \n", log)
        self.assertIn("  The original data was of genotypic type and MEGA accepts only\n", log)
        self.to_project("Mega", again)
        self.assert_runs()

    def test_mega_distances(self):
        project, _ = self.to_project("Mega", MEGA_DISTANCES)
        self.assertIn("\t\t\t1.5 2.5 0.0\n", project)
        self.assert_runs()

    def test_biosys(self):
        project, _ = self.to_project("Biosys", BIOSYS)
        self.assert_runs()
        again, _ = self.from_project("Biosys", project, name="q")
        self.assertEqual(again.split("STEP DATA:")[1].replace("??", "  "), BIOSYS.split("STEP DATA:")[1])
        second, _ = self.to_project("Biosys", again)
        strip = re.compile("^#.*\n|Title=.*\n", re.MULTILINE)
        self.assertEqual(strip.sub("", second), strip.sub("", project))

    def test_zentara(self):
        for name, text in ZENTARA_FILES.items():
            self.write(name, text)
        project, _ = self.to_project("Zentara", ZENTARA, "", "")
        self.assert_runs()
        again, _ = self.from_project("Zentara", project, name="q")
        self.assertEqual(again, ZENTARA.replace("m.dis", "dist_mat.dis"))
        for name in ("North.pop", "South.pop"):
            self.assertEqual(self.read(name), ZENTARA_FILES[name])
        self.assertEqual(self.read("dist_mat.dis"), ZENTARA_FILES["m.dis"])

    def test_zentara_without_a_directory_of_the_target(self):
        """Populations and matrix lie in the directory of the list's first line then, and else beside the target."""
        self.write("p.tvp", dna_project(structure=(("North",), ("South",))))
        os.mkdir(self.path("work"))
        os.mkdir(self.path("dst"))
        for target, place in (("out.dat", "work/"), ("dst/out.dat", "dst/")):
            self.translate("Tovenia", "Zentara", "p.tvp", target, directory="work")
            self.assertEqual(self.read(target), "North\nSouth\n+++\ndist_mat.dis\n+++\nNorth\n+++\nSouth\n")
            self.assertEqual(self.read(place + "North.pop"), "h1 2\nh2 1\n")
            self.assertEqual(self.read(place + "South.pop"), "h1 1\nh3 3\n")
            self.assertEqual(self.read(place + "dist_mat.dis"), "h1 h2 h3\n0\n1 0\n1 2 0\n")
            for name in ("North.pop", "South.pop", "dist_mat.dis"):
                self.assertFalse(self.exists(name))
                os.remove(self.path(place + name))

    def test_zentara_with_extra_names(self):
        for name, text in ZENTARA_FILES.items():
            self.write(name, text)
        self.write("groups", "North\n+++\nSouth\n")
        project, _ = self.to_project("Zentara", "North\nSouth\n", "m.dis", "groups")
        self.assertIn("MatrixSize=3\n", project)
        self.assertIn("NbGroups=2\n", project)
        self.assert_runs()

    def test_zentara_in_several_directories(self):
        """The project finds the matrix wherever the list, the source and the target lie."""
        for name, text in ZENTARA_FILES.items():
            self.write(name, text)
            self.write("src/" + name, text)
        self.write("src/in.dat", ZENTARA)
        self.write("in.dat", ZENTARA)
        os.mkdir(self.path("dst"))
        os.mkdir(self.path("work"))
        for source, work in (("in.dat", ""), ("in.dat", "work"), ("src/in.dat", ""), ("src/in.dat", "work")):
            for target in ("q.tvp", "dst/q.tvp"):
                with self.subTest(source=source, work=work, target=target):
                    self.translate_into_project(source, target, work)

    def translate_into_project(self, source, target, work):
        log = self.translate("Zentara", "Tovenia", source, target, "", "", directory=work)
        self.assertNotIn("unable", log)
        self.write("s.tvs", settings_text(TaskNumber=1, ComputeStandardDiversityIndices=1))
        self.tovcore(target, "s.tvs", "run_silent")
        log = self.read(target.replace(".tvp", ".res"), "Tovenia_log.txt")
        self.assertIn("Successful run of %s\n" % target, log)
        self.assertNotIn("#[ERROR", log)

    def test_foreign_to_foreign(self):
        self.write("in.dat", GENEPOP)
        self.translate("Genepop", "Biosys", "in.dat", "out.bio", "1")
        self.translate("Biosys", "Genepop", "out.bio", "out.gen")
        self.assert_same_genotypes(GENEPOP.replace("th 1", "th1").replace("th 2", "th2"), self.read("out.gen"))


class RunList(Translation):
    def test_directories_of_source_target_and_work(self):
        for name in ("src", "dst", "work"):
            os.mkdir(self.path(name))
        self.write("src/p.gen", GENEPOP)
        log = self.translate("Genepop", "Tovenia", "src/p.gen", "dst/p.tvp", "1", directory="work")
        # The list itself lies where the program starts; its first line names the directory of the working files.
        self.assertIn("Log file path: src/Tovenia_log.txt\nCore Routine Directory: work/\n", log)
        self.assertIn("\tReading  src/p.gen ...\n\tdone.\n", log)
        self.assertIn("    Writing  dst/p.tvp... done.\n", log)
        self.assertEqual(self.files(), ["compfinished_final", "dst/p.tvp", "randseed.txt", "src/Tovenia_log.txt",
                                        "src/p.gen", "tov_run.txt", "tovenia.ini"])

    def test_equal_formats_do_nothing(self):
        for name in FORMATS + ("Tovenia",):
            self.write("in.dat", GENEPOP)
            self.translate(name, name, "in.dat", "out.dat", "1", "1")
            self.assertFalse(self.exists("out.dat"))
            self.assertEqual(self.read("in.dat"), GENEPOP)

    def test_unknown_target_format(self):
        self.write("in.dat", GENEPOP)
        log = self.translate("Genepop", "Nexus", "in.dat", "out.dat", "1")
        self.assertIn("\tUnknown target format: Nexus\n", log)
        self.assertFalse(self.exists("out.dat"))

    def test_unknown_source_format_is_taken_as_genepop(self):
        self.write("in.dat", GENEPOP)
        log = self.translate("Nexus", "Tovenia", "in.dat", "q.tvp")
        self.assertIn("\tUnknown source format: Nexus", log)
        self.assertIn('with format "GenePop"', self.read("q.tvp"))
        self.assert_runs()

    def test_a_list_that_ends_early(self):
        for lines in range(0, 5):
            self.write("tov_run.txt", "\ntranslate\n" + "".join(["Genepop\n", "Tovenia\n", "in.dat\n", "q.tvp\n"][:lines]))
            self.tovcore("run_silent")
            self.assert_finished()

    def test_the_working_files_are_refused_as_data(self):
        self.write("dum_tov.tvp", dna_project())
        self.write("tov_run.txt", "\ntranslate\nTovenia\nPhylip\ndum_tov.tvp\nout.dat\n")
        self.tovcore("run_silent")
        self.assertEqual(self.read("dum_tov.tvp"), dna_project())
        self.assertIn("nothing is translated", self.read("Tovenia_log.txt"))


class BadInput(Translation):
    TEXTS = {"Genepop": GENEPOP, "Phylip": PHYLIP, "Mega": MEGA, "Biosys": BIOSYS, "Zentara": ZENTARA}

    def other(self, source_format):
        return "Phylip" if source_format != "Phylip" else "Mega"

    def assert_refused(self, source_format, text):
        """The target is empty, the log tells why, and the project made from the text does not run."""
        self.write("in.dat", text)
        log = self.translate(source_format, self.other(source_format), "in.dat", "out.dat", "1", "")
        self.assertEqual(self.read("out.dat"), "", text[:80])
        self.assertTrue("\t\tTranslator is unable to open the Tovenia File\n" in log or "nothing is written" in log, log)

    def test_missing_sources(self):
        for name in FORMATS:
            log = self.translate(name, "Tovenia", "none.dat", "q.tvp", "1", "")
            self.assertIn("\t\tUnable to open the file none.dat\n", log)
            log = self.translate(name, self.other(name), "none.dat", "out.dat", "1", "")
            self.assertEqual(self.read("out.dat"), "")
            self.assertIn("\t\tTranslator is unable to open the Tovenia File\n", log)
        log = self.translate("Tovenia", "Genepop", "none.tvp", "out.dat")
        self.assertIn("\nAn error has occurred while cleaning-up the project...\nnone.tvp\n", log)
        self.assertEqual(self.read("out.dat"), "")

    def test_empty_files_and_garbage(self):
        generator = random.Random(11)
        noise = "".join(chr(generator.randrange(256)) for _ in range(20000))
        for name in FORMATS + ("Tovenia",):
            for text in ("", "\n\n", "nothing of the kind\n", noise):
                with self.subTest(name, text=text[:10]):
                    self.assert_refused(name, text)

    def test_garbage_behind_a_good_beginning(self):
        generator = random.Random(12)
        noise = "".join(chr(generator.randrange(256)) for _ in range(3000))
        for name, text in self.TEXTS.items():
            self.write("in.dat", text[:len(text) // 2] + noise)
            self.translate(name, "Tovenia", "in.dat", "q.tvp", "1", "")

    def test_truncated_files(self):
        """Whatever is cut off in the middle of an entry, no foreign file comes out."""
        for name, text, cuts in (("Genepop", GENEPOP, (-5, -12, -30)), ("Phylip", PHYLIP, (-3, -15, -25)),
                                 ("Genepop", GENEPOP3, (-2, -4, -16, -23)), ("Mega", MEGA, (-3,)),
                                 ("Biosys", BIOSYS, (-7, -16, -30)), ("Zentara", ZENTARA, (-3, -8, -18, -26))):
            for cut in cuts:
                with self.subTest(name, cut=cut):
                    self.assert_refused(name, text[:cut])

    def test_a_genepop_field_of_five_digits(self):
        project, log = self.to_project("Genepop", GENEPOP.replace("0203", "02003"), "1")
        self.assertIn("# error in definition of allele 02003\nNorth1   1  01 10 \n", project)
        self.assertIn("\t\tTranslator is unable to open the Tovenia File\n", log)
        self.assert_refused("Genepop", GENEPOP.replace("0203", "02003"))

    def test_missing_zentara_population(self):
        project, log = self.to_project("Zentara", ZENTARA, "", "")
        self.assertIn("****ERROR**** Population North not found\n", project)
        self.assertIn("\t\tTranslator is unable to open the Tovenia File\n", log)

    def test_missing_zentara_structure(self):
        for name, text in ZENTARA_FILES.items():
            self.write(name, text)
        project, log = self.to_project("Zentara", "North\nSouth\n", "m.dis", "none")
        self.assertIn("****ERROR**** Structure none not found\n", project)
        self.assertIn("\t\tTranslator is unable to open the Tovenia File\n", log)

    def test_data_that_a_format_cannot_hold(self):
        for target, text, message in (
                ("Biosys", dna_project(), "  It is not possible to translate Haplotypic data into the\n  BIOSYS format.\n"),
                ("Mega", GENOTYPES, "  Impossible to write this data into MEGA format, because each\n"
                                    "  character is supposed to be a single allele.\n"),
                ("Zentara", dna_project(), "\tNo genetic structure has been defined, it makes therefore no sense to\n"
                                           " build a Zentara file.\n"),
                ("Genepop", dna_project(DataType="FREQUENCY"), "")):
            back, log = self.from_project(target, text)
            self.assertEqual(back, "")
            self.assertIn(message, log)

    def test_a_target_that_cannot_be_written(self):
        self.write("p.tvp", dna_project())
        log = self.translate("Tovenia", "Phylip", "p.tvp", "none/out.dat")
        self.assertIn("\t\tUnable to write the file none/out.dat\n", log)


if __name__ == "__main__":
    unittest.main()
