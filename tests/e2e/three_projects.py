"""A run list of three projects of different data with nearly all analyses, and a reader of its documents."""
import re

from support import RunTestCase, dna_project, settings_text

FLAGS = ["_GENE_DIVERSITY_", "_NUCLEOTIDE_COMPOSITION_", "_MOLECULAR_DIVERSITY_", "_MISMATCH_", "_THETA_",
         "_LINKAGE_DISEQUILIBRIUM_", "_HARDY_WEINBERG_", "_TAJIMA_", "_FU_FS_", "_EWENS_WATTERSON_", "_CHAKRABORTY_",
         "_PAIRWISE_DIST_", "_AMOVA_RES_", "_ALLELE_FREQS_", "_DETECT_SELECTION_"]
TASKS = sum(1 << bit for bit in range(11)) + 16384
SAMPLES = (("North", (("h1", 4, "ACGTACGTAC"), ("h2", 3, "ACGTACGTAT"), ("h3", 2, "TCGTACGTAC"))),
           ("South", (("h1", 2, "ACGTACGTAC"), ("h4", 3, "TCTTACGTAC"), ("h2", 4, "ACGTACGTAT"))),
           ("West", (("h3", 5, "TCGTACGTAC"), ("h5", 2, "TCTTACGTAT"), ("h1", 1, "ACGTACGTAC"))))
STRUCTURE = (("North", "South", "West"),)


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
    people = {"D": (("a x", "b y"), ("a y", "a x"), ("b x", "b y"), ("a x", "b x"), ("a y", "b y")),
              "E": (("a x", "a x"), ("a x", "b y"), ("b y", "b y"), ("a y", "b x"), ("b y", "b y")),
              "F": (("c x", "a x"), ("c x", "c x"), ("a z", "c x"), ("c x", "a z"), ("a z", "b z"))}
    for name, pairs in people.items():
        lines += ['SampleName="%s"' % name, "SampleSize=%d" % len(pairs), "SampleData={"]
        for k, (first, second) in enumerate(pairs):
            lines += ["%s%d 1 %s" % (name.lower(), k, first), "  " + second]
        lines.append("}")
    return "\n".join(lines + structure_lines("DEF")) + "\n"


class Report:
    """The document of a project as plain text, to look numbers up in."""

    def __init__(self, text):
        self.text = re.sub(r"<[^>]*>", "", text).replace("&lt;", "<")

    def samples(self):
        """Text of each sample, by its name."""
        parts = re.split(r"== Sample : \t(.*)\n", self.text.split("== Summary of computations")[0])
        return dict(zip(parts[1::2], (Report(part) for part in parts[2::2])))

    def block(self, title):
        """The analysis of a sample that begins with this title, up to the next one."""
        return Report(re.split(r"\n=+\n== ", self.text.split("== " + title, 1)[1])[0])

    def numbers(self, label, count=1, nth=0):
        """The numbers that follow a label, as texts."""
        number = r"-?(?:\d+\.?\d*|inf)"
        found = re.findall(re.escape(label) + r"\s*:?" + r"[^\d\n-]*?(%s)" % number * count, self.text)
        return list(found[nth]) if count > 1 else [found[nth]]

    def row(self, label, section):
        """Values of a row in the summary of samples, without mean and deviation."""
        table = self.text.split("\n%s\n" % section, 1)[1]
        return re.search(r"(?m)^%s +(.*)$" % re.escape(label), table).group(1).split()

    def matrix(self, title):
        """Rows of the first labelled matrix behind a title."""
        rows = []
        for line in self.text.split(title, 1)[1].splitlines():
            cells = line.split()
            if cells and cells[0] == str(len(rows) + 1) and (rows or cells[1:] not in ([], ["2", "3"])):
                rows.append(cells[1:])
            elif rows:
                break
        return rows


class ThreeProjects(RunTestCase):
    """A run list of sequences, microsatellites and genotypes of unknown phase, with nearly all analyses."""

    def write_settings(self, **keys):
        all_keys = dict(
            TaskNumber=TASKS, MakeHWExactTest=1, MakeExactTestLD=1, ComputeDvalues=1, MarkovChainStepsHW=2000,
            MarkovChainDememorisationStepsHW=100, MarkovChainStepsLD=200, MarkovChainDememorisationStepsLD=100,
            ComputeTheta=15, HaplAMOVA=1, NumPermutationsAMOVA=10, NumPermutationsFST=10, ComputePairwiseFST=1,
            PrintFstVals=1, PrintMissIntermatchs=1, ComputeDeltaMuSqr=1, UnequalPopSizeDiv=1, PrintSlatkinsDist=1,
            AllowedLevelOfMissingData=1, NumSimulFuTest=20, NumIterationsNeutralityTests=50)
        all_keys.update(keys)
        self.write("tov_run.tvs", settings_text(**all_keys))

    def run_three(self, **keys):
        self.write_settings(**keys)
        projects = {"dna": dna_project(SAMPLES, STRUCTURE), "mic": microsat_project(), "gen": genotypes_project()}
        lines = ["", "use_interf_settings"]
        for name, text in projects.items():
            self.write(name + ".tvp", text)
            lines += [name + ".tvp", "0", "0"]
        self.write("tov_run.txt", "\n".join(lines + ["end"]) + "\n")
        self.tovcore()
