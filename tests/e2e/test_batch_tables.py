"""The batch and side tables that a run list fills: banners, heads, rows, columns, values."""
import os
import re
import shutil
import tempfile
import unittest

from support import SOURCE_DIR, read
from three_projects import FLAGS, Report, ThreeProjects

BANNER = 'Tovenia batch run summary file"'
MORE_TABLES = {"DetectSelectedLoci": 1, "NumberOfSimsForFDist2": 200, "MismatchDemogExp": 1, "MismatchSpatialExp": 1,
               "MismatchSpatialExpNumParams": 2, "NumBootExpDem": 0, "EwensWattersonHomozygosityTest": 1,
               "ComputeAllAlleleFreqs": 1}
PAIR_TABLES = {"pairdist.sum", "FSTdist.sum", "VCompdist.sum", "pairdiff.sum", "tau_uneq.sum", "coanst_c.sum",
               "slatkin.sum", "NM_value.sum"}
ONE_LINE_HEADS = PAIR_TABLES | {"hw.sum", "theta.sum", "only_mismatch_sp.txt"}


def told_tables():
    """What docs/tables.md tells of each table: words of its head, and the columns of each kind.

    Columns are (least, most); most is None for any number.
    """
    tables = {}
    for section in re.split(r"(?m)^### ", read(os.path.join(SOURCE_DIR, "docs", "tables.md")))[1:]:
        name = re.match(r"`(.*?)`", section).group(1)
        words, counts = [], []
        for word, count in re.findall(r"(?m)^\| (?:`([^|]*)`)? \| (any|1 or more|\d+|\d+ (?:or|to) \d+) \|", section):
            words += [word] if word else []
            numbers = [int(n) for n in re.findall(r"\d+", count)] or [0]
            counts.append((numbers[0], None if count in ("any", "1 or more") else numbers[-1]))
        tables[name] = (words, counts)
    return tables


class TablesOfARunList(ThreeProjects):
    """One run list with all flags, run once for all tests."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.directory = tempfile.mkdtemp(prefix="tovcore_test_")
        cls.addClassCleanup(shutil.rmtree, cls.directory, True)
        run = cls("assert_finished")
        run.write("glbstreams.txt", cls.directory + "/\n" + "\n".join(FLAGS) + "\n")
        run.run_three(**MORE_TABLES)
        cls.documents = {name: Report(run.document(name)) for name in ("dna", "mic", "gen")}

    def setUp(self):
        self.directory = type(self).directory

    def table(self, name):
        """Rows behind the last banner and the head, split at tabs."""
        head = self.read(name).rsplit(BANNER + "\n", 1)[1]
        lines = head.splitlines()[1 if name in ONE_LINE_HEADS else 2:]
        return [line.split("\t") for line in lines]

    def sample_rows(self, name):
        """(project, sample) -> values of its only row."""
        rows = {}
        for file, sample, *values in self.table(name):
            key = (os.path.basename(file.strip('"'))[:-len(".tvp")], sample.strip('"'))
            self.assertNotIn(key, rows, name)
            rows[key] = values
        return rows

    def assert_same(self, value, printed, where):
        """A value of a table, with 6 digits, is the one that the document prints with its decimals."""
        decimals = len(printed.partition(".")[2])
        tolerance = 0.5001 * 10 ** -decimals + 5e-6 * abs(float(value))
        self.assertLessEqual(abs(float(value) - float(printed)), tolerance, (where, value, printed))

    def compare(self, table, title, columns, projects=("dna", "mic", "gen"), first=None):
        """Values of the rows of samples against numbers behind labels in a block of the document.

        columns  (column behind the names, label, how many numbers stand behind it, which of them)
        """
        rows = self.sample_rows(table)
        expected = {(p, s) for p in projects for s in self.documents[p].samples()}
        self.assertEqual(set(rows), expected, table)
        for (project, sample), values in rows.items():
            block = self.documents[project].samples()[sample].block(title)
            for column, label, count, which in columns:
                printed = block.numbers(label, count)[which]
                self.assert_same(values[column], printed, (table, project, sample, label))

    # --- Files, banners, heads, columns ---

    def test_every_table_of_the_document_is_there_with_its_head(self):
        told = told_tables()
        batch = [f for f in os.listdir(self.directory) if f.endswith(".sum")] + ["only_mismatch_sp.txt"]
        self.assertEqual(len(batch), 28)
        for name in batch:
            text = self.read(name)
            self.assertTrue(text.startswith("\n\n" + "-" * 67 + "\n" + BANNER + "\n"), name)
            self.assertEqual(text.count(BANNER), 1, name)
            words = told[name][0]
            head = "\t".join(words) + "\n" if words else ""
            self.assertEqual(text.count(head), 1 if words else len(text) + 1, name)

    def test_a_second_start_appends(self):
        with tempfile.TemporaryDirectory(prefix="tovcore_test_") as directory:
            again = type(self)("assert_finished")
            again.directory = os.path.join(directory, "run")
            shutil.copytree(self.directory, again.directory)
            again.write("glbstreams.txt", "\n" + "\n".join(FLAGS) + "\n")
            again.tovcore()
            for name in (f for f in os.listdir(self.directory) if f.endswith(".sum")):
                first = self.read(name)
                self.assertEqual(again.read(name), first + first, name)
            self.assertEqual(again.read("only_mismatch_sp.txt"), self.read("only_mismatch_sp.txt"))

    def test_every_row_has_the_columns_that_are_told(self):
        told = told_tables()
        for name in (f for f in os.listdir(self.directory) if f.endswith(".sum")):
            if name in PAIR_TABLES:
                continue
            counts = told[name][1]
            least = sum(n for n, _ in counts)
            most = sum(m for _, m in counts) if all(m is not None for _, m in counts) else None
            rows = self.table(name)
            self.assertTrue(rows or name.startswith("l_d_"), name)
            for row in rows:
                self.assertGreaterEqual(len(row), least, (name, row))
                if most is not None:
                    self.assertLessEqual(len(row), most, (name, row))
                self.assertNotIn("", row, (name, row))
        for row in self.table("hw.sum"):
            self.assertEqual((len(row) - 2) % 7, 0, row)

    def test_side_tables_have_the_columns_that_are_told(self):
        told = told_tables()
        seen = set()
        for project in ("dna", "mic", "gen"):
            for name in os.listdir(self.path(project + ".res")):
                known = re.sub(r"AllFreqLocus_\d+", "AllFreqLocus_1", name)
                if known not in told or known in ("ld_dis.xl", "fdist2_simOut.txt", "PopNames.txt"):
                    continue
                seen.add(known)
                head, *rows = [line.split("\t") for line in self.read(project + ".res", name).splitlines()]
                self.assertTrue(rows, name)
                self.assertEqual({len(row) for row in rows}, {len(head)}, (project, name))
                words = told[known][0]
                found = [re.sub(r" \(if P-value=2.*", "", word) for word in head]
                if len(words) > len(found) or known == "sumMolecDivIndexes.sum" and project != "dna":
                    words = words[:len(found)] if known == "fdist2_ObsOut.txt" else words[:-1]
                self.assertEqual([w for w in found if w in words], words, (project, name))
        self.assertEqual(len(seen), 12, seen)

    # --- Values ---

    def test_gene_diversity(self):
        sizes = [(0, "No. of gene copies", 1, 0), (-4, "No. of loci", 1, 0), (-3, "No. of usable loci", 1, 0)]
        title = "Standard diversity indices"
        self.compare("gen_div.sum", title, sizes)
        for (project, sample), row in self.sample_rows("gen_div.sum").items():
            block = self.documents[project].samples()[sample].block(title)
            self.assertEqual(len(row), 6)
            polymorphic = re.search(r"No. of polymorphic \w+\s*: (\d+)", block.text).group(1)
            self.assertEqual(row[4], polymorphic)
            if project == "gen":
                self.assertEqual(row[5], "-1")
            else:
                self.assert_same(row[5], block.numbers("Gene diversity")[0], (project, sample))
                haplotypes = re.search(r"No. of (?:sequences|haplotypes|alleles) +: (\d+)", block.text).group(1)
                self.assertEqual(row[1], haplotypes)

    def test_nucleotide_composition(self):
        rows = self.sample_rows("nucl_comp.sum")
        self.assertEqual({project for project, _ in rows}, {"dna"})
        for (project, sample), row in rows.items():
            block = self.documents[project].samples()[sample].block("Molecular diversity indices")
            for value, label in zip(row, ("   C :", "   T :", "   A :", "   G :", "   Total :")):
                self.assert_same(100 * float(value), block.numbers(label)[0], (sample, label))

    def test_molecular_diversity(self):
        dna = ("No. of observed transitions", "No. of observed transversions", "No. of observed substitutions",
               "No. of observed indels", "No. of polymorphic sites", "No. of observed sites with transitions",
               "No. of observed sites with transversions", "No. of observed sites with substitutions",
               "No. of observed sites with indels", "Number of observed nucleotide sites",
               "Number of usable nucleotide sites")
        for (project, sample), row in self.sample_rows("mold_div.sum").items():
            block = self.documents[project].samples()[sample].block("Molecular diversity indices")
            where = (project, sample)
            self.assertEqual(len(row), 23, where)
            self.assertEqual(row[0], block.numbers("Sample size")[0], where)
            self.assertEqual(row[2:6], ["1", "1", "1", "1"], where)
            if project == "dna":
                self.assertEqual(row[6:17], [block.numbers(label)[0] for label in dna], where)
            else:
                self.assertEqual([row[i] for i in (6, 7, 8, 9, 11, 12, 13, 14)], ["0"] * 8, where)
                self.assertEqual([row[10], row[15], row[16]],
                                 [block.numbers(label)[0] for label in ("No. of polymorphic loci",
                                                                        "Number of observed loci",
                                                                        "Number of usable loci")], where)
            self.assertEqual(row[17:19], ["#Diff", " inf"], where)
            printed = re.findall(r"[Aa]verage.*:\s+([\d.]+) \+/-\s+([\d.]+)", block.text)[0]
            self.assert_same(row[21], printed[0], where)
            self.assert_same(row[22], printed[1], where)
            if project != "gen":
                printed = re.findall(r"pairwise differences +:\s+([\d.]+) \+/-\s+([\d.]+)", block.text)[0]
                self.assert_same(row[19], printed[0], where)
                self.assert_same(row[20], printed[1], where)

    def test_theta(self):
        for (project, sample), row in self.sample_rows("theta.sum").items():
            block = self.documents[project].samples()[sample].block("Molecular diversity indices")
            tags = [i for i, cell in enumerate(row) if cell.startswith("(")]
            names = ["(Hom)", "(k)", "(S)", "(Pi)"] if project == "dna" else ["(Hom)"]
            self.assertEqual([row[i] for i in tags], names)
            for i, end in zip(tags, tags[1:] + [len(row)]):
                values = row[i + 1:end]
                self.assert_same(values[0], block.numbers(" Theta%s" % row[i])[0], (project, sample, row[i]))
                if row[i] == "(k)":
                    limits = re.search(r"theta\(k\) : \[ (\S+), (\S+) \]", block.text).groups()
                    for value, printed in zip(values[1:], limits):
                        self.assert_same(value, printed, (project, sample))
                    self.assertEqual(len(values), 3)
                else:
                    self.assert_same(values[1], block.numbers("S.D. Theta%s" % row[i])[0], (project, sample, row[i]))
                    self.assertEqual(len(values), 2)

    def test_mismatch_distributions(self):
        sudden, one, two = (self.sample_rows("mismatch%s.sum" % end) for end in ("", "_sp3", "_sp4"))
        self.assertEqual(set(sudden), set(one))
        self.assertEqual(set(sudden), set(two))
        alone = self.table("only_mismatch_sp.txt")
        self.assertEqual([row[5:] for row in sudden.values()], alone)
        self.assertEqual([row[5:] for row in one.values()], alone)
        for (project, sample), row in sudden.items():
            where = (project, sample)
            estimates = (row[2:5], one[where][2:5], two[where][2:])
            for values in (row, one[where], two[where]):
                self.assertEqual(values[:2], ["#Diff", "0"])
            if project == "mic":
                self.assertEqual(estimates, (["-1"] * 3, ["-1"] * 3, ["-1"] * 4))
                continue
            block = self.documents[project].samples()[sample].block("Mismatch distribution")
            observed = re.findall(r"(?m)^ +\d+\.0 +(\d+)\.0 +", block.text)
            self.assertEqual(row[5:], observed[:len(row) - 5])
            first, second, third = re.split(r"Parameters estimated under the spatial|Parameters .* constant deme size",
                                            block.text)
            for values, part, labels in ((estimates[0], first, ("Tau", "Theta0", "Theta1")),
                                         (estimates[2], second, ("Tau", "Theta0", "Theta1", "M")),
                                         (estimates[1], third, ("Tau", "Theta", "M"))):
                printed = [re.search(r"(?m)^%s +: +(\S+)" % label, part).group(1) for label in labels]
                for value, text in zip(values, printed):
                    self.assert_same(value, text, where)
                self.assertEqual(len(values), len(labels))

    def test_linkage(self):
        rows = self.table("link_dis.sum")
        printed = []
        for project in ("dna", "mic", "gen"):
            for sample, report in self.documents[project].samples().items():
                tests = re.findall(r"Pair ?\((\d+), (\d+)\)[^(]*?Exact P= *(\S+) +\+- +(\S+) \((\d+) ", report.text)
                printed += [(project, sample) + test for test in tests]
        self.assertEqual(len(rows), len(printed))
        self.assertGreater(len({row[5] for row in rows}), 8)
        for (file, name, first, second, steps, p, sd), expected in zip(rows, printed):
            project, sample, *pair, p_text, sd_text, steps_text = expected
            self.assertEqual((name, [first, second], steps), ('"%s"' % sample, pair, steps_text))
            self.assertIn(project + ".tvp", file)
            self.assert_same(p, p_text, expected)
            self.assert_same(sd, sd_text, expected)
        for name in ("l_d_pro.sum", "l_d_proIBD.sum", "l_d_val.sum"):
            self.assertEqual(self.table(name), [])

    def test_hardy_weinberg(self):
        rows = self.sample_rows("hw.sum")
        self.assertEqual(set(rows), {("gen", s) for s in "DEF"})
        for (project, sample), row in rows.items():
            block = self.documents[project].samples()[sample].block("Hardy-Weinberg equilibrium")
            printed = re.findall(r"(?m)^ +(\d+) +(\d+) +(\S+) +(\S+) +(\S+) +(\S+) +(\d+)$", block.text)
            self.assertEqual(len(row), 7 * len(printed))
            for i, texts in enumerate(printed):
                for value, text in zip(row[7 * i:7 * i + 7], texts):
                    self.assert_same(value, text, (sample, i))

    def test_neutrality(self):
        self.compare("tajima.sum", "Tajima's test", (
            (0, "Sample size", 1, 0), (1, "substitutions (S)", 1, 0), (3, "differences (Pi)", 1, 0),
            (2, "Obs. Theta(S)", 1, 0), (4, "\nTajima's D  ", 1, 0), (6, "P(D simul < D obs)", 1, 0),
            (8, "No. of simulations", 1, 0)), ("dna",))
        self.compare("fu_fs.sum", "Fu's Fs test", (
            (1, "alleles(k)", 1, 0), (2, "\nTheta(Pi)", 1, 0), (3, "Exp. No. of alleles", 1, 0), (4, "\nFs", 1, 0),
            (5, "Prob(sim_Fs <=obs_Fs)", 1, 0), (7, "No. of simulations", 1, 0)), ("dna",))
        self.compare("ewens.sum", "Ewens-Watterson tests", (
            (0, "No. of genes in sample", 1, 0), (1, "No. of haplotypes in sample", 1, 0),
            (2, "Observed F value", 1, 0), (3, "Expected F value", 1, 0), (4, "Watterson F P.Value", 1, 0),
            (5, "Slatkin's Exact P.Value", 1, 0)), ("dna",))
        self.compare("chakra.sum", "Chakraborty's test", (
            (0, "No. of genes in sample", 1, 0), (1, "No. of alleles in sample (k)", 1, 0),
            (2, "Observed Homozygosity", 1, 0), (3, "Exp. No. of alleles", 1, 0), (4, "P(exactly k alleles)", 1, 0),
            (5, "P(k or more alleles)", 1, 0)), ("dna",))
        self.assertEqual({len(row) for row in self.sample_rows("tajima.sum").values()}, {9})
        self.assertEqual({len(row) for row in self.sample_rows("fu_fs.sum").values()}, {8})

    def test_variance_analyses(self):
        rows = self.table("amovares.sum")
        self.assertEqual(len(rows), 3)
        for (file, *values), project in zip(rows, ("dna", "mic", "gen")):
            self.assertIn(project + ".tvp", file)
            text = self.documents[project].text.split("AMOVA design and results", 1)[1]
            levels = re.findall(r"populations +(\d+) +\S+ +(\S+) V", text)
            self.assertEqual(len(levels), 2)
            for i, (df, component) in enumerate(levels):
                self.assertEqual(values[i], df)
                self.assert_same(values[4 + i], component, project)
            self.assert_same(values[8], re.search(r"FST : +(\S+)", text).group(1), project)
            self.assertEqual(values[12], re.search(r"\((\d+) permutations\)", text).group(1))
            self.assert_same(values[13], re.search(r"P-value = +([\d.]+)\+-", text).group(1), project)
            self.assertEqual([values[i] for i in (2, 3, 6, 7, 9, 10, 11, 14, 15, 16)], ["0"] * 10)

    def test_matrices_of_pairs(self):
        titles = {"pairdist.sum": "Population pairwise FSTs", "FSTdist.sum": "Population pairwise FSTs",
                  "VCompdist.sum": None, "pairdiff.sum": "Population average pairwise differences",
                  "tau_uneq.sum": "\ntau values", "coanst_c.sum": "Matrix of coancestry coefficients",
                  "slatkin.sum": "Matrix of Slatkin linearized FSTs", "NM_value.sum": None}
        names = {"dna": ["North", "South", "West"], "mic": list("ABC"), "gen": list("DEF")}
        self.assertEqual(set(titles), PAIR_TABLES)
        for table, title in titles.items():
            shape = [3, 3, 3] if table == "pairdiff.sum" else [1, 2, 3]
            size = 9 if table == "pairdist.sum" else 5
            lines = self.table(table)
            self.assertEqual(len(lines), 3 * size, table)
            for block, project in enumerate(("dna", "mic", "gen")):
                head, labels, *matrix = lines[size * block:size * (block + 1)]
                matrix, tested = matrix[:3], matrix[3:]
                self.assertRegex(head[0], r'^"%s.res/%s.tvp"$' % (project, project))
                self.assertEqual(labels, ['"%s"' % name for name in names[project]])
                self.assertEqual([len(row) for row in matrix], shape, table)
                if title is None:
                    continue
                printed = self.documents[project].matrix(title)
                for row, texts in zip(matrix, printed):
                    self.assertEqual(len(row), len(texts), (table, project))
                    for value, text in zip(row, texts):
                        self.assert_same(value, text.rstrip("*"), (table, project))
                if tested:
                    self.assertEqual(tested[0], ["p-Values matrix : No of permutations : 12"])
                    for row, texts in zip(tested[1:], self.documents[project].matrix("FST P values")):
                        self.assertEqual((len(row), row[-1]), (len(texts), "*"))
                        for value, text in zip(row[:-1], texts):
                            self.assert_same(value, text.split("+")[0], (table, project))
        fst, variance, migrants = (self.table(t) for t in ("FSTdist.sum", "VCompdist.sum", "NM_value.sum"))
        for at, line in enumerate(fst):
            for column, value in enumerate(line):
                if at % 5 < 2 or column == at % 5 - 2:
                    continue
                f = float(value)
                self.assertEqual(f > 0, float(variance[at][column]) > 0)
                if f <= 0:
                    self.assertEqual(migrants[at][column], "inf")
                else:
                    self.assertAlmostEqual(float(migrants[at][column]) / ((1 - f) / (2 * f)), 1, 4)

    def test_frequencies_of_haplotypes_and_alleles(self):
        rows = self.table("allele_freqs.sum")
        printed = []
        for project in ("dna", "mic"):
            for sample, report in self.documents[project].samples().items():
                block = report.block("Haplotypes frequency estimation")
                found = re.findall(r"(?m)^ +\d+ +(\S+) +(\d\.\d{6}) ", block.text)
                printed += [(project, sample, name, share) for name, share in found]
        self.assertEqual(sorted(row[1:3] for row in rows), sorted(['"%s"' % s, n] for _, s, n, _ in printed))
        shares = {(s, n): share for _, s, n, share in printed}
        for _, sample, name, share in rows:
            self.assert_same(share, shares[(sample.strip('"'), name)], (sample, name))
        self.assertEqual(self.read("dna.res", "PopNames.txt"), "Pop_1\tNorth\nPop_2\tSouth\nPop_3\tWest\n")
        joint = self.read("gen.res", "AllAlleleFreqs.txt").splitlines()
        self.assertEqual(joint[0], "Locus\tAllele\tPop_1\tPop_2\tPop_3")
        for locus in (1, 2):
            head, *lines = self.read("gen.res", "AllFreqLocus_%d.txt" % locus).splitlines()
            self.assertEqual(head, "Allele\tPop_1\tPop_2\tPop_3")
            self.assertEqual([line for line in joint if line.startswith("Locus_%d\t" % locus)],
                             ["Locus_%d\t%s" % (locus, line) for line in lines])
        self.assertIn("Locus_1\ta\t0.5\t0.4\t0.4", joint)

    def test_detected_loci(self):
        rows = self.table("selectionDetection.sum")
        self.assertEqual([os.path.basename(row[0].strip('"')) for row in rows], ["dna.tvp", "mic.tvp", "gen.tvp"])
        for row, project in zip(rows, ("dna", "mic", "gen")):
            self.assertEqual(len(row), 13)
            observed = [line.split("\t") for line in self.read(project + ".res", "fdist2_ObsOut.txt").splitlines()[1:]]
            simulated = self.read(project + ".res", "fdist2_simOut.txt").splitlines()
            mean = float(re.search(r"Target Mean FST = (\S+)", simulated[0]).group(1))
            self.assertEqual(row[1:3], [str(len(simulated) - 1), str(len(observed))])
            for first, below in ((3, True), (8, False)):
                for k, level in enumerate((0.001, 0.005, 0.01, 0.025, 0.05)):
                    count = sum(1 for _, het, fst, p in observed
                                if float(het) != 0 and 0 <= float(p) <= level and (float(fst) < mean) == below)
                    self.assertEqual(row[first + k], str(count), (project, level, below))

    def test_side_tables_repeat_the_summary_of_the_document(self):
        for project in ("dna", "mic", "gen"):
            document = self.document(project)
            tables = [f for f in os.listdir(self.path(project + ".res")) if f.startswith("sum")]
            self.assertGreaterEqual(len(tables), 3)
            for name in tables:
                printed = re.search(r"<%s [^>]*>(.*?)</%s>" % (name[:-4], name[:-4]), document, re.S).group(1)
                cells = [line.split() for line in printed.splitlines()]
                lines = [line.replace("\t", " ").split() for line in self.read(project + ".res", name).splitlines()]
                self.assertEqual(lines, cells, (project, name))

    def test_linkage_side_table_names_each_sample_once(self):
        for name, samples in (("mic", "ABC"), ("gen", "DEF")):
            lines = self.read(name + ".res", "ld_dis.xl").splitlines()
            self.assertEqual([line for line in lines if not re.match(r"[-\d]", line)], list(samples), name)


class TablesOfGroups(ThreeProjects):
    def test_side_tables_of_groups_stay_beside_those_of_samples(self):
        self.run_three(ComputeSumStatsWithinGroups=1, ComputeAllAlleleFreqs=1)
        groups = self.read("dna.res", "gr_sumNumAlleles.sum").splitlines()
        samples = self.read("dna.res", "sumNumAlleles.sum").splitlines()
        self.assertEqual(len(groups[0].split("\t")), 5)
        self.assertEqual(samples[0].split("\t")[1:4], ["North", "South", "West"])
        self.assertEqual([line.split("\t")[-1] for line in groups[1:-2]],
                         [line.split("\t")[-1] for line in samples[1:-2]])
        self.assertEqual(len(self.read("dna.res", "gr_PopNames.txt").splitlines()), 1)
        self.assertEqual(len(self.read("dna.res", "PopNames.txt").splitlines()), 3)


if __name__ == "__main__":
    unittest.main()
