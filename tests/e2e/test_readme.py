"""What the README tells a new user holds: its example runs, its keys and files exist, the example command's data run."""
import os
import re
import shutil
import unittest

from support import SOURCE_DIR, RunTestCase, read

README = read(os.path.join(SOURCE_DIR, "README.md"))


def example_project():
    return re.search(r"```\n(\[Profile\]\n.*?)```", README, re.DOTALL).group(1)


class Readme(RunTestCase):
    def test_the_example_project_runs(self):
        log = self.run_project(example_project(), TaskNumber=1)
        self.assertIn("Successful run of p.tvp", log)
        self.assertNotIn("#[", log)
        document = self.document()
        self.assertRegex(document, r"== Sample : \tnorth\n")
        self.assertRegex(document, r"== Sample : \tsouth\n")
        self.assertRegex(document, r"No\. of gene copies +: 3\n")
        self.assertRegex(document, r"No\. of gene copies +: 2\n")
        self.assert_well_formed("p.res", "p.xml")
        self.assert_finished()

    def test_the_woodmouse_example_runs(self):
        for ending in (".tvp", ".tvs"):
            shutil.copy(os.path.join(SOURCE_DIR, "examples", "woodmouse", "wood1" + ending), self.directory)
        self.tovcore("wood1.tvp", "wood1.tvs", "run_silent")
        log = self.log("wood1")
        self.assertIn("Successful run of wood1.tvp", log)
        self.assertNotIn("#[ERROR", log)
        document = self.document("wood1")
        self.assertRegex(document, r"No\. of gene copies +: 15\n")
        self.assertRegex(document, r"No\. of polymorphic sites +: 50\n")
        self.assert_well_formed("wood1.res", "wood1.xml")
        self.assert_finished()

    def test_the_keys_of_its_table_are_keys_of_the_settings_file(self):
        table = README[README.index("## A settings file"):README.index("## Working on it")]
        keys = set(re.findall(r"`([A-Z]\w+)`", table))
        self.assertGreater(len(keys), 10)
        settings = read(os.path.join(SOURCE_DIR, "examples", "default.tvs"))
        self.assertEqual([key for key in sorted(keys) if "\n%s=" % key not in settings], [])

    def test_its_task_table_names_every_bit(self):
        table = README[README.index("| `TaskNumber` | Analysis"):README.index("Detection of loci")]
        bits = [int(number) for cell in re.findall(r"\| ([\d, ]+) \|", table) for number in cell.split(",")]
        self.assertEqual(sorted(bits), [2 ** i for i in range(17)])

    def test_the_files_it_names_are_there(self):
        names = set(re.findall(r"\b(?:scripts|docs|examples)/[\w./]+\w", README))
        self.assertGreater(len(names), 4)
        self.assertEqual([name for name in sorted(names) if not os.path.exists(os.path.join(SOURCE_DIR, name))], [])


if __name__ == "__main__":
    unittest.main()
