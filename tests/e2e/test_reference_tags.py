"""Every literature reference that an analysis prints has its citation."""
import os
import re
import unittest

SOURCE = os.path.join(os.environ.get("TOV_SOURCE_DIR", os.path.join(os.path.dirname(__file__), "..", "..")), "src")
CALL = re.compile(r"\b(?:References(?:\s+\w+)?|print_references)\s*[({]([^;]*?)\)\s*;", re.DOTALL)


def text_of(path):
    with open(path, encoding="utf-8") as handle:
        return handle.read()


class ReferenceTags(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.rows = re.findall(r'^    \{"([^"]+)",\s*((?:"[^"]*"\s*)+)\}', text_of(os.path.join(SOURCE, "output", "references.cpp")),
                              re.MULTILINE)

    def test_table_is_sorted_without_repeats_and_plain(self):
        tags = [tag for tag, _ in self.rows]
        self.assertGreater(len(tags), 60)
        self.assertEqual(tags, sorted(set(tags)))
        for tag, citation in self.rows:
            text = "".join(re.findall(r'"([^"]*)"', citation))
            self.assertRegex(text, r"^[A-Z].*\b(1[89]|20)\d\d\. .*[.]$", tag)
            self.assertNotRegex(text, r"[&<]|  ", tag)

    def test_every_printed_tag_has_a_citation(self):
        known = {tag for tag, _ in self.rows}
        unknown = []
        for folder, _, names in os.walk(SOURCE):
            for name in sorted(names):
                path = os.path.join(folder, name)
                if not name.endswith(".cpp") or folder.endswith("output"):
                    continue
                for call in CALL.findall(text_of(path)):
                    unknown += [f"{name}: {tag}" for tag in re.findall(r'"([^"]*)"', call) if tag not in known]
        self.assertEqual(unknown, [])


if __name__ == "__main__":
    unittest.main()
