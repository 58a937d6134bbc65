"""Extractors of the comparisons of pairs of samples: FST and derived matrices, mean differences, delta mu-square."""
import re

from case_document import Missing, after, lower_triangle, matrix_rows, square

PAIRS = "Comparisons of pairs of population samples"
HEADINGS = (
    "Population pairwise FSTs", "FST P values", "Matrix of significant Fst P values",
    "Population average pairwise differences", "PXY P value", "Corrected PXY P value",
    "Delta mu-square distance between all pairs of populations",
    "Matrix of coancestry coefficients as t/M=-ln(1-FST)", "Matrix of Slatkin linearized FSTs as t/M=FST/(1-FST)")


def rows_under(doc, heading):
    lines = doc.behind(PAIRS)
    start = after(lines, re.escape(heading) + r"\s*:?\s*$")
    return matrix_rows(lines, start, stop=lambda line: line.strip().startswith(HEADINGS))


def triangle(doc, check):
    rows = [[0.0 if cell is None else cell for cell in row] for row in rows_under(doc, check["section"])]
    return lower_triangle(rows)


def differences(doc, check):
    matrix = square(rows_under(doc, check["section"]))
    size = range(len(matrix))
    if check["label"] == "diagonal":
        return [matrix[k][k] for k in size]
    if check["label"].startswith("above"):
        return [[matrix[j][i] for j in range(i)] for i in size if i]
    if check["label"].startswith("below"):
        return [matrix[i][:i] for i in size if i]
    raise Missing(f"unknown part '{check['label']}' of the matrix")


_TRIANGLES = "|".join(re.escape(HEADINGS[k]) for k in (0, 1, 6, 7, 8))

TABLE = [
    (_TRIANGLES, r"lower triangle.*", triangle),
    (r"Population average pairwise differences", r"diagonal|(?:above|below) the diagonal.*", differences),
]
