"""The tab-separated tables that a run list fills: banners, heads, rows and columns, and the chosen statistics."""
import os
import re
import unittest

from support import RunTestCase, settings_text, dna_project

FLAGS = ["_GENE_DIVERSITY_", "_NUCLEOTIDE_COMPOSITION_", "_MOLECULAR_DIVERSITY_", "_MISMATCH_", "_THETA_",
         "_LINKAGE_DISEQUILIBRIUM_", "_HARDY_WEINBERG_", "_TAJIMA_", "_FU_FS_", "_EWENS_WATTERSON_", "_CHAKRABORTY_",
         "_PAIRWISE_DIST_", "_AMOVA_RES_", "_ALLELE_FREQS_", "_DETECT_SELECTION_"]
BANNER = 'Tovenia batch run summary file"'
TASKS = sum(1 << bit for bit in range(11)) + 16384
SAMPLES = (("North", (("h1", 4, "ACGTACGTAC"), ("h2", 3, "ACGTACGTAT"), ("h3", 2, "TCGTACGTAC"))),
           ("South", (("h1", 2, "ACGTACGTAC"), ("h4", 3, "TCTTACGTAC"), ("h2", 4, "ACGTACGTAT"))),
           ("West", (("h3", 5, "TCGTACGTAC"), ("h5", 2, "TCTTACGTAT"), ("h1", 1, "ACGTACGTAC"))))
STRUCTURE = (("North", "South", "West"),)
WORDS = """ALL_K ALLSD_K MEAN_K SD_K TOT_K ALL_H ALLSD_H MEAN_H SD_H TOT_H ALL_S ALLSD_S PRIVATE_S MEAN_S SD_S TOT_S
ALL_TAJIMAD ALLSD_TAJIMAD MEAN_TAJIMAD SD_TAJIMAD ALL_FUFS ALLSD_FUFS MEAN_FUFS SD_FUFS ALL_PI MEAN_PI SD_PI ALL_GW
ALLSD_GW MEAN_GW SD_GW TOT_GW ALL_NGW ALLSD_NGW MEAN_NGW SD_NGW ALL_RANGE ALLSD_RANGE MEAN_RANGE SD_RANGE TOT_RANGE
MEAN_ALL_DPRIME MEAN_ALL_R2 ALL_ADJ_DPRIME ALL_ADJ_R2 MEAN_ADJ_DPRIME MEAN_ADJ_R2 FLANK_DPRIME FLANK_R2 GLOBAL_FSTAT
PAIRWISE_FST PAIRWISE_PI PAIRWISE_DMUSQR""".split()


def structure_lines(names):
    return ["[[Structure]]", 'StructureName="g"', "NbGroups=1", "Group={"] + ['"%s"' % n for n in names] + ["}"]


def microsat_project():
    lines = ["[Profile]", 'Title="m"', "NbSamples=3", "DataType=MICROSAT", "GenotypicData=0",
             "LocusSeparator=WHITESPACE", "MissingData='?'", "[Data]", "[[Samples]]"]
    for name, rows in (("A", ((3, "10 22 31"), (4, "11 22 33"), (2, "13 25 31"))),
                       ("B", ((5, "11 23 31"), (2, "10 22 30"))),
                       ("C", ((4, "12 22 33"), (4, "10 24 30")))):
        lines += ['SampleName="%s"' % name, "SampleSize=%d" % sum(r[0] for r in rows), "SampleData={"]
        lines += ["%s%d %d %s" % (name.lower(), k, count, text) for k, (count, text) in enumerate(rows)] + ["}"]
    return "\n".join(lines + structure_lines("ABC")) + "\n"


def genotypes_project():
    lines = ["[Profile]", 'Title="g"', "NbSamples=3", "DataType=STANDARD", "GenotypicData=1", "GameticPhase=0",
             "RecessiveData=0", "LocusSeparator=WHITESPACE", "MissingData='?'", "[Data]", "[[Samples]]"]
    people = (("a x", "b y"), ("a y", "a x"), ("b x", "b y"), ("a x", "b x"), ("a y", "b y"))
    for s, name in enumerate("DEF"):
        lines += ['SampleName="%s"' % name, "SampleSize=%d" % len(people), "SampleData={"]
        for k in range(len(people)):
            first, second = people[(k * (s + 1)) % len(people)]
            lines += ["%s%d 1 %s" % (name.lower(), k, first), "  " + second]
        lines.append("}")
    return "\n".join(lines + structure_lines("DEF")) + "\n"


class ThreeProjects(RunTestCase):
    """A run list of sequences, microsatellites and genotypes of unknown phase, with nearly all analyses."""

    def run_three(self, **keys):
        self.write("tov_run.tvs", settings_text(
            TaskNumber=TASKS, MakeHWExactTest=1, MakeExactTestLD=1, ComputeDvalues=1, MarkovChainStepsHW=2000,
            MarkovChainDememorisationStepsHW=100, MarkovChainStepsLD=200, MarkovChainDememorisationStepsLD=100,
            ComputeTheta=15, HaplAMOVA=1, NumPermutationsAMOVA=10, NumPermutationsFST=10, ComputePairwiseFST=1,
            PrintFstVals=1, PrintMissIntermatchs=1, ComputeDeltaMuSqr=1, UnequalPopSizeDiv=1, PrintSlatkinsDist=1,
            AllowedLevelOfMissingData=1, NumSimulFuTest=20,
            NumIterationsNeutralityTests=50, **keys))
        projects = {"dna": dna_project(SAMPLES, STRUCTURE), "mic": microsat_project(), "gen": genotypes_project()}
        lines = ["", "use_interf_settings"]
        for name, text in projects.items():
            self.write(name + ".tvp", text)
            lines += [name + ".tvp", "0", "0"]
        self.write("tov_run.txt", "\n".join(lines + ["end"]) + "\n")
        self.tovcore()


class TablesOfARunList(ThreeProjects):
    def rows(self, table):
        """Data rows behind the last banner and the head, split at tabs."""
        text = self.read(table + ".sum").rsplit(BANNER + "\n", 1)[1].splitlines()
        return [line.split("\t") for line in text if line.startswith('"')]

    def with_tables(self):
        self.write("glbstreams.txt", self.directory + "/\n" + "\n".join(FLAGS) + "\n")
        self.run_three()

    def test_all_flags_give_all_tables_with_one_banner_a_start(self):
        self.with_tables()
        tables = [f for f in os.listdir(self.directory) if f.endswith(".sum")]
        self.assertEqual(len(tables), 27)
        for table in tables:
            self.assertEqual(self.read(table).count(BANNER), 1, table)
        first = {table: self.read(table) for table in tables}
        self.tovcore()
        for table in tables:
            text = self.read(table)
            self.assertTrue(text.startswith(first[table]), table)
            self.assertEqual(text.count(BANNER), 2, table)

    def test_rows_and_columns(self):
        self.with_tables()
        for table, rows, columns in (("gen_div", 9, None), ("nucl_comp", 3, 7), ("tajima", None, 11),
                                     ("link_dis", None, 7), ("hw", None, None), ("amovares", 3, 18),
                                     ("allele_freqs", None, 4), ("chakra", None, 8)):
            found = self.rows(table)
            self.assertTrue(found, table)
            if rows is not None:
                self.assertEqual(len(found), rows, table)
            if columns is not None:
                self.assertEqual({len(row) for row in found}, {columns}, table)
        for row in self.rows("hw"):
            self.assertEqual((len(row) - 2) % 7, 0, row)

    def test_matrices_of_pairs(self):
        self.with_tables()
        triangle = [1, 2, 3]
        shapes = {"pairdist": triangle + [1] + triangle, "FSTdist": triangle, "VCompdist": triangle,
                  "pairdiff": [3, 3, 3], "tau_uneq": triangle, "coanst_c": triangle, "slatkin": triangle,
                  "NM_value": triangle}
        for table, shape in shapes.items():
            lines = self.read(table + ".sum").split("\tfile_name\n", 1)[1].splitlines()
            length = 2 + len(shape)
            self.assertEqual(len(lines), 3 * length, table)
            for block in range(3):
                head, labels, *matrix = lines[length * block:length * (block + 1)]
                self.assertRegex(head, r'^".*\.tvp"$')
                self.assertEqual(len(labels.split("\t")), 3)
                self.assertEqual([len(row.split("\t")) for row in matrix], shape, table)

    def test_p_values_of_the_pairs_stand_below_their_fst(self):
        self.with_tables()
        lines = self.read("pairdist.sum").split("\tfile_name\n", 1)[1].splitlines()[:9]
        self.assertEqual(lines[5], "p-Values matrix : No of permutations : 12")
        for i, line in enumerate(lines[6:]):
            *p_values, last = line.split("\t")
            self.assertEqual(last, "*")
            self.assertEqual(len(p_values), i)
            for p in p_values:
                self.assertAlmostEqual(float(p) * 13, round(float(p) * 13), delta=1e-4)

    def test_linkage_side_table_names_each_sample_once(self):
        self.run_three()
        for name, samples in (("mic", "ABC"), ("gen", "DEF")):
            lines = self.read(name + ".res", "ld_dis.xl").splitlines()
            self.assertEqual([line for line in lines if not re.match(r"[-\d]", line)], list(samples), name)


class ChosenStatistics(ThreeProjects):
    def table(self, definition):
        """Titles, and the values of each project, of a run with this definition."""
        self.write("sumstat_def.txt", definition)
        self.run_three()
        head, *lines = [line.split("\t") for line in self.read("sumstat_out.txt").splitlines()]
        self.assertEqual(head.pop(), "")
        for line in lines:
            self.assertEqual(line.pop(), "")
        return head, lines

    def test_each_keyword_alone_gives_what_all_together_give(self):
        head, lines = self.table("\n".join(WORDS))
        together = dict(zip(head, lines[0]))
        self.assertEqual(len(together), len(head), "titles differ")
        seen = set()
        for word in WORDS:
            head, lines = self.table(word)
            self.assertTrue(head, word)
            self.assertEqual(len(head), len(lines[0]), word)
            for title, value in zip(head, lines[0]):
                self.assertEqual(value, together[title], (word, title))
            seen |= set(head)
        self.assertEqual(seen, set(together))

    def test_titles_and_values_agree_for_all_keywords_together(self):
        self.write("sumstat_def.txt", "\n".join(WORDS) + "\n")
        self.run_three()
        head, *lines = self.read("sumstat_out.txt").splitlines()
        self.assertEqual(len(lines), 3)
        self.assertEqual(head.count("\t"), lines[0].count("\t"))
        self.assertIn("DMUSQ_3_2", head.split("\t"))
        values = dict(zip(head.split("\t"), lines[0].split("\t")))
        self.assertEqual([values["K_1"], values["K_2"], values["tot_K"]], ["3", "3", "5"])
        self.assertEqual(values["GW_1"], "-1")

    def test_groups_come_first_with_their_prefix(self):
        self.write("sumstat_def.txt", "POP_LEVEL\nGROUP_LEVEL\nALL_K\n")
        self.run_three()
        head, *lines = self.read("sumstat_out.txt").splitlines()
        self.assertEqual(head, "gr_K_1\tK_1\tK_2\tK_3\t")
        self.assertEqual(lines[0], "5\t3\t3\t3\t")

    def test_without_a_definition_there_is_no_table(self):
        self.run_three()
        self.assertFalse(self.exists("sumstat_out.txt"))


if __name__ == "__main__":
    unittest.main()
