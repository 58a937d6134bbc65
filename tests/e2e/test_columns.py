"""Columns of numbers and names stay apart, however long these are."""
import random
import re
import unittest

import support
from structure_projects import project
from three_projects import Report

NAMES = ("Population of the great northern lake", "Population of the great northern bay", "s", "t")
GROUPS = (NAMES[:2], NAMES[2:])


def sizes(copies=6, loci=3):
    """Samples whose allele sizes are hundreds apart: their squared differences have six digits."""
    dice = random.Random(20260401)
    return [(name, [" ".join(str(dice.randrange(100, 999)) for _ in range(loci)) for _ in range(copies)])
            for name in NAMES]


class Columns(support.RunTestCase):
    def report(self, text, **keys):
        self.run_project(text, **keys)
        self.assert_well_formed("p.res", "p.xml")
        return Report(self.document()).text

    def table(self, text, head, rows):
        """The words of so many lines behind the line that matches `head`."""
        lines = text.split("\n")
        start = next(i for i, line in enumerate(lines) if re.search(head, line))
        return [line.split() for line in lines[start + 1:start + 1 + rows]]

    def structure_of_sizes(self, **keys):
        return self.report(project(sizes(), GROUPS, DataType="MICROSAT"),
                           **dict(dict(TaskNumber=512 + 1024, DistanceMethodAMOVA=1, ComputeDistanceMatrixAMOVA=1,
                                       NumPermutationsAMOVA=0, NumPermutationsFST=0), **keys))

    def test_squared_sizes_between_samples(self):
        text = self.structure_of_sizes(ComputePairwiseFST=1, PrintMissIntermatchs=1, ComputeDeltaMuSqr=1)
        rows = self.table(text, "^<?Distance method: Sum of squared size", 6)[2:]
        self.assertEqual([row[0] for row in rows], ["1", "2", "3", "4"])
        self.assertEqual([len(row) for row in rows], [5] * 4)
        within = [float(rows[i][i + 1]) for i in range(4)]
        self.assertGreater(max(within), 99999)
        for i in range(4):
            for j in range(i):
                self.assertAlmostEqual(float(rows[i][j + 1]), float(rows[j][i + 1]) - (within[i] + within[j]) / 2, 4)
        delta = self.table(text[text.index("Delta mu-square distance"):], r"^ +1 +2 +3 +4$", 4)
        self.assertEqual([len(row) for row in delta], [2, 3, 4, 5])

    def test_squared_sizes_between_haplotypes(self):
        text = self.structure_of_sizes(HaplAMOVA=1, PrintDistanceMatrix=1)
        rows = self.table(text[text.index("Matrix of Euclidian square distances"):], r"^ +1 +2 +3", 24)
        self.assertEqual([len(row) for row in rows], list(range(2, 26)))
        self.assertEqual([int(row[0]) for row in rows], list(range(1, 25)))

    def test_squared_sizes_locus_by_locus(self):
        text = self.structure_of_sizes(LocByLocAMOVA=1)
        lines = text.split("AMOVA Results for polymorphic loci only:\n")[1].split("\n")
        blocks, heads, *rows = lines[1:6]
        self.assertEqual([int(row.split()[0]) for row in rows], [1, 2, 3])
        for row in rows:
            self.assertEqual(len(row.split()), 1 + 3 * 4 + 3 * 2)
            self.assertEqual(len(row), len(heads))
            values = [float(word) for word in row.split()]
            self.assertAlmostEqual(sum(values[4:13:4]), 100, 3)  # shares of the variance
        self.assertEqual(len(blocks) - len("Fixation indices:"), blocks.index("Fixation indices:"))

    def test_thetas_of_nearly_all_different_sizes(self):
        samples = [("A", [str(k) for k in range(40)] + ["0"]), ("B", [str(k) for k in range(39)] + ["0", "1"])]
        text = self.report(project(samples, [("A", "B")], DataType="MICROSAT"), TaskNumber=1)
        row = next(line for line in text.split("Theta(H) under the stepwise")[1].split("\n") if line.startswith("1 "))
        values = [float(word) for word in row.split()]
        self.assertEqual(len(values), 5)
        # One pair of 820 is alike, then two.
        for value, alike in zip(values[1:3], (1, 2)):
            self.assertAlmostEqual(value / (0.5 * ((820 / alike) ** 2 - 1)), 1, 6)

    def test_chi_squares_of_thousands(self):
        text = project([("A", ["a x", "b y"])], [("A",)]).replace("SampleSize=2", "SampleSize=9000")
        text = self.report(text.replace("_x 1 ", "_x 4500 ").replace("_y 1 ", "_y 4500 "),
                           TaskNumber=16, MakeExactTestLD=1, ComputeDvalues=1, MarkovChainStepsLD=500)
        for title, values in (("2: Expected table", [2250.0] * 4), ("5: Table of Chi-square values", [9000.0] * 4)):
            rows = self.table(text[text.index(title):], "^-+$", 2)
            self.assertEqual([float(word) for row in rows for word in row[1:]], values)

    def test_names_of_samples_over_haplotypes(self):
        samples = [(name, ["a x", "b y"]) for name in NAMES]
        text = self.report(project(samples, GROUPS), TaskNumber=1, EliminateRedondHaplodefs=1)
        head, *rows = text.split("Haplotype frequency distribution among the samples:")[1].split("\n")[3:6]
        self.assertEqual(re.split("  +", head), ["Class Haplotypes", *NAMES])
        for row in rows:
            self.assertEqual(len(row), len(head))
            self.assertEqual(row.split()[-4:], ["1"] * 4)


if __name__ == "__main__":
    unittest.main()
