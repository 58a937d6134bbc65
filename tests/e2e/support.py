"""Helpers of the whole-run tests: a directory of one's own, projects and settings, the program, masked outputs.

TOVCORE names the built program; TOV_SOURCE_DIR the source tree.
"""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
import xml.dom.minidom
import xml.parsers.expat

SOURCE_DIR = os.environ.get(
    "TOV_SOURCE_DIR", os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..")))
TOVCORE = os.environ.get("TOVCORE", os.path.join(SOURCE_DIR, "build", "release", "tovcore"))
ENCODING = "latin-1"

_MASKS = (
    (re.compile(r"\d\d/\d\d/\d\d at \d\d:\d\d:\d\d"), "<time>"),
    (re.compile(r"\d\d/\d\d/\d\dat\d\d:\d\d:\d\d"), "<id>"),
    (re.compile(r"\d+h \d+m \d+s \d+ ms"), "<span>"),
    (re.compile(r"\d+ ms\b"), "<ms> ms"),
)


def mask_times(text):
    """`text` with every date, time, run id and number of milliseconds replaced by a fixed word."""
    for pattern, word in _MASKS:
        text = pattern.sub(word, text)
    return text


def read(path):
    with open(path, encoding=ENCODING, newline="") as file:
        return file.read()


def write(path, text):
    with open(path, "w", encoding=ENCODING, newline="") as file:
        file.write(text)


def set_keys(settings_text, keys):
    """Settings with the first line `key=...` of each key replaced; a key that isn't there is appended."""
    for key, value in keys.items():
        settings_text, found = re.subn(r"(?m)^%s=.*$" % re.escape(key), lambda _: "%s=%s" % (key, value),
                                       settings_text, count=1)
        if not found:
            settings_text += "%s=%s\n" % (key, value)
    return settings_text


def settings_text(**keys):
    """The settings file of the examples with some keys changed."""
    return set_keys(read(os.path.join(SOURCE_DIR, "examples", "default.tvs")), keys)


def dna_project(samples=(("North", (("h1", 2, "ACGTACGTAC"), ("h2", 1, "ACGTACGTAT"))),
                         ("South", (("h1", 1, "ACGTACGTAC"), ("h3", 3, "ACTTACGTAC")))),
                structure=None, title="Test data", **profile):
    """Text of a small haplotypic DNA project.

    samples    (name, ((identifier, count, sequence), ...)) each
    structure  tuple of groups, a group being a tuple of sample names
    profile    keys that replace or join those of the [Profile] section; None leaves a key out
    """
    keys = {"Title": '"%s"' % title, "NbSamples": len(samples), "DataType": "DNA", "GenotypicData": 0,
            "LocusSeparator": "NONE", "MissingData": "'?'"}
    keys.update(profile)
    lines = ["[Profile]"] + ["\t%s=%s" % item for item in keys.items() if item[1] is not None]
    lines += ["", "[Data]", "", "[[Samples]]", ""]
    for name, haplotypes in samples:
        lines += ['\tSampleName="%s"' % name, "\tSampleSize=%d" % sum(h[1] for h in haplotypes), "\tSampleData={"]
        lines += ["\t\t%s\t%s\t%s" % h for h in haplotypes] + ["\t}"]
    if structure is not None:
        lines += ["", "[[Structure]]", "", '\tStructureName="Groups"', "\tNbGroups=%d" % len(structure)]
        for group in structure:
            lines += ["\tGroup={"] + ['\t\t"%s"' % name for name in group] + ["\t}"]
    return "\n".join(lines) + "\n"


def unphased_project(individuals, name="Pop 1", **profile):
    """Text of a STANDARD project with one sample of individuals whose phase is unknown.

    individuals  (count, alleles of one chromosome, alleles of the other) each
    profile      keys that join those of the [Profile] section
    """
    lines = ["[Profile]", '  Title="Unknown phase"', "  NbSamples=1", "  DataType=STANDARD", "  GenotypicData=1",
             "  GameticPhase=0", "  LocusSeparator=WHITESPACE", "  MissingData='?'"]
    lines += ["  %s=%s" % item for item in profile.items()]
    lines += ["[Data]", "  [[Samples]]", '    SampleName="%s"' % name,
              "    SampleSize=%d" % sum(count for count, _, _ in individuals), "    SampleData={"]
    for number, (count, first, second) in enumerate(individuals):
        lines += ["ind%d %d %s" % (number, count, " ".join(first)), "    %s" % " ".join(second)]
    return "\n".join(lines + ["    }"]) + "\n"


class Outcome:
    """What one start of the program left: console text, exit status."""

    def __init__(self, process):
        self.status = process.returncode
        self.console = process.stdout.decode(ENCODING)
        self.errors = process.stderr.decode(ENCODING)


class RunTestCase(unittest.TestCase):
    """A test that runs the program in an empty directory of its own."""

    def setUp(self):
        self.directory = tempfile.mkdtemp(prefix="tovcore_test_")
        self.addCleanup(shutil.rmtree, self.directory, True)

    def path(self, *names):
        return os.path.join(self.directory, *names)

    def write(self, name, text):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        write(self.path(name), text)

    def read(self, *names):
        return read(self.path(*names))

    def exists(self, *names):
        return os.path.exists(self.path(*names))

    def files(self):
        """Paths of all files, relative to the directory, sorted."""
        found = []
        for folder, _, names in os.walk(self.directory):
            found += [os.path.relpath(os.path.join(folder, name), self.directory) for name in names]
        return sorted(found)

    def tovcore(self, *arguments, timeout=400):
        """Starts the program here; it must end with status 0 and no word on standard error."""
        process = subprocess.run([TOVCORE, *arguments], cwd=self.directory, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, timeout=timeout, check=False)
        outcome = Outcome(process)
        self.assertEqual(outcome.status, 0, outcome.errors[-3000:])
        self.assertEqual(outcome.errors, "")
        return outcome

    def run_project(self, project_text, name="p", **keys):
        """Runs one project with the default settings and `keys`. Returns the log."""
        self.write(name + ".tvp", project_text)
        self.write(name + ".tvs", settings_text(**keys))
        self.tovcore(name + ".tvp", name + ".tvs", "run_silent")
        return self.log(name)

    def log(self, name="p"):
        return self.read(name + ".res", "Tovenia_log.txt")

    def document(self, name="p", extension="xml"):
        return self.read(name + ".res", "%s.%s" % (name, extension))

    def assert_well_formed(self, *names):
        """An XML parser accepts the file, which may be large."""
        with open(self.path(*names), "rb") as file:
            xml.parsers.expat.ParserCreate().ParseFile(file)

    def parse_xml(self, *names):
        """The document of a well-formed XML file."""
        return xml.dom.minidom.parse(self.path(*names))

    def assert_finished(self):
        self.assertEqual(self.read("compfinished_final"), "true\n")
