"""The house: includes run downwards, formulas know numbers only, files stay readable."""
import os
import re
import unittest

SOURCE = os.path.join(os.environ.get("TOV_SOURCE_DIR", os.path.join(os.path.dirname(__file__), "..", "..")), "src")

# Floor of a header, the first pattern that matches; a header includes only headers of its own floor or a lower one.
FLOORS = [
    (r"base/dmat\.h", 3),
    (r"base/", 0),
    (r".*/formula/", 0),
    (r"run/errors\.h", 0),
    (r"output/style\.h", 0),
    (r"demography/broyden\.h", 0),
    (r"output/sumstat", 7),
    (r"input/(read_|matrix_rows|sample_entries)", 3),
    (r"input/", 1),
    (r"output/", 1),
    (r"simulation/struct_sim", 7),
    (r"simulation/", 2),
    (r"model/", 3),
    (r"inference/", 4),
    (r"diversity/(blocks|block_table|block_words|driver)", 6),
    (r"diversity/", 4),
    (r"demography/", 5),
    (r"structure/", 7),
    (r"run/project", 8),
    (r"run/", 9),
    (r"translate/", 9),
]


def floor_of(path):
    for pattern, floor in FLOORS:
        if re.match(pattern, path):
            return floor
    raise AssertionError("no floor for " + path)


def files(*endings):
    for folder, _, names in os.walk(SOURCE):
        for name in sorted(names):
            if name.endswith(endings):
                yield os.path.relpath(os.path.join(folder, name), SOURCE).replace(os.sep, "/")


def includes(path):
    with open(os.path.join(SOURCE, path), encoding="utf-8") as handle:
        return re.findall(r'^#include "([^"]+)"', handle.read(), re.MULTILINE)


class House(unittest.TestCase):
    def test_headers_include_downwards(self):
        wrong = [f"{path} (floor {floor_of(path)}) includes {other} (floor {floor_of(other)})"
                 for path in files(".h") for other in includes(path) if floor_of(other) > floor_of(path)]
        self.assertEqual(wrong, [])

    def test_formulas_include_numbers_only(self):
        wrong = [f"{path} includes {other}" for path in files(".h", ".cpp") if "/formula/" in path
                 for other in includes(path) if floor_of(other) > 0 or other.startswith(("run/", "output/"))]
        self.assertEqual(wrong, [])

    def test_files_stay_below_eight_hundred_lines(self):
        tables = {"run/error_messages.cpp", "input/settings_keys.cpp"}
        long_files = []
        for path in files(".h", ".cpp"):
            with open(os.path.join(SOURCE, path), encoding="utf-8") as handle:
                lines = sum(1 for _ in handle)
            if lines > 800 and path not in tables:
                long_files.append(f"{path}: {lines}")
        self.assertEqual(long_files, [])

    def test_every_header_is_included_once(self):
        wrong = []
        for path in files(".h"):
            with open(os.path.join(SOURCE, path), encoding="utf-8") as handle:
                if "#pragma once" not in handle.read():
                    wrong.append(path)
        self.assertEqual(wrong, [])

    def test_the_methods_name_code_and_tests_that_exist(self):
        top = os.path.join(SOURCE, "..")
        with open(os.path.join(top, "docs", "methods.md"), encoding="utf-8") as handle:
            rows = [line.split("|") for line in handle if line.startswith("|") and "`" in line]
        self.assertGreater(len(rows), 35)
        wrong = []
        for row in rows:
            for path in re.findall(r"`([^`]+)`", row[-3]):
                if not any(os.path.exists(os.path.join(SOURCE, path + end)) for end in (".h", ".cpp")):
                    wrong.append(path)
            for path in re.findall(r"`([^`]+)`", row[-2]):
                places = ("tests/unit/%s.cpp", "tests/%s.py", "tests/%s/expected.json", "%s")
                if not any(os.path.exists(os.path.join(top, place % path)) for place in places):
                    wrong.append(path)
        self.assertEqual(wrong, [])

    def test_the_architecture_names_files_that_exist(self):
        with open(os.path.join(SOURCE, "..", "docs", "architecture.md"), encoding="utf-8") as handle:
            paths = set(re.findall(r"`(\w+/[\w/.]+\.(?:cpp|h|py|tvs|md))`", handle.read()))
        self.assertGreater(len(paths), 20)
        tops = (SOURCE, os.path.join(SOURCE, ".."))
        self.assertEqual([path for path in sorted(paths)
                          if not any(os.path.exists(os.path.join(top, path)) for top in tops)], [])


if __name__ == "__main__":
    unittest.main()
