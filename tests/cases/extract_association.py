"""Extractors of the Hardy-Weinberg test, linkage disequilibrium of phased data, and the test of differentiation."""
import re

from case_document import (Missing, Printed, after, cells, is_number, is_rule, labelled, lower_triangle, matrix_rows,
                           numbers)

HARDY_WEINBERG = "Hardy-Weinberg equilibrium"
LINKAGE = "Pairwise linkage disequilibrium"
DIFFERENTIATION = "Exact Test of Sample Differentiation Based on Haplotype Frequencies"


def hardy_weinberg_rows(doc, check):
    """Rows locus, genotypes, observed, expected, P, s.d., steps of the polymorphic loci."""
    lines = doc.section(HARDY_WEINBERG, check["sample"])
    start = after(lines, r"Exact test using a Markov chain \(for all Loci\):")
    start = after(lines, r"Locus\s+#Genot", start)
    rows = []
    for line in lines[start:]:
        if not line.strip() or "monomorphic" in line:
            continue
        if is_rule(line):
            if rows:
                break
            continue
        row = cells(line, 7)
        if row is None:
            raise Missing(f"a Hardy-Weinberg row without its 7 columns: {line.strip()}")
        rows.append(row)
    if not rows:
        raise Missing("no rows of the Hardy-Weinberg test")
    return rows


def hardy_weinberg(column):
    return lambda doc, check: [row[column] for row in hardy_weinberg_rows(doc, check)]


def linkage_p(doc, check):
    first, second = numbers(check["label"])
    pattern = re.compile(rf"\s*Pair\s*\(\s*{first:.0f}\s*,\s*{second:.0f}\s*\)\s*Exact P=\s*(.*)")
    for line in doc.section(LINKAGE, check["sample"]):
        match = pattern.match(line)
        if match:
            return numbers(match.group(1).replace("+-", " "))[0]
    raise Missing(f"no line of the pair ({first:.0f}, {second:.0f})")


def read_allele_table(lines):
    """A table of two loci: (alleles of the rows, alleles of the columns, rows of cells); no labels give empty lists."""
    rows, row_alleles, head = [], [], []
    for line in lines:
        words = line.replace("|", " ").split()
        if not words or is_rule(line):
            continue
        if is_number(words[-1]) and not re.search(r"[Ll]oc(us|i)|gametes|Total|total", line):
            label = [] if is_number(words[0]) else words[:1]
            values = words[len(label):]
            if all(is_number(word) for word in values) and (not rows or len(values) == len(rows[0])):
                rows.append([Printed(word) for word in values])
                row_alleles += label
                continue
        if rows:
            break
        head = words
    if not rows:
        raise Missing("no cells in the table of two loci")
    width = len(rows[0])
    return row_alleles, head[-width:] if len(head) >= width else [], rows


LINKAGE_TITLES = {
    "counts": r"1: Observed contingency table",
    "expected": r"2: Expected table",
    "D": r"3: Table of disequilibrium values",
    "Dprime": r"4: Table of standardized disequilibrium values \(D'",
    "r": r"4: Table of standardized disequilibrium values \(r2",
    "chi2": r"5: Table of Chi-square values",
    "chi2P": r"6: Table of Chi-square P values",
}


def pair_block(doc, sample, first, second):
    lines = doc.section(LINKAGE, sample)
    start = after(lines, rf"Loci {first} and {second}\s*$")
    end = next((k for k in range(start, len(lines)) if re.match(r"\s*Loci \d+ and \d+\s*$", lines[k])), len(lines))
    return lines[start:end]


def linkage_table(kind):
    """Extractor of one of the seven tables of a pair of loci as {allele/allele: value}; the id of the check names them."""
    def extract(doc, check):
        first, second = re.search(r"\.(\d+)-(\d+)\.", check["id"]).groups()
        block = pair_block(doc, check["sample"], first, second)
        start = after(block, LINKAGE_TITLES[kind])
        end = next((k for k in range(start, len(block)) if re.match(r"\s*[1-7]: ", block[k])), len(block))
        row_alleles, column_alleles, rows = read_allele_table(block[start:end])
        if kind != "counts" and (len(row_alleles) != len(rows) or not column_alleles):
            observed = read_allele_table(block[after(block, LINKAGE_TITLES["counts"]):])
            row_alleles, column_alleles = observed[0], observed[1]
        if len(row_alleles) != len(rows):
            raise Missing("rows of the table of two loci have no alleles")
        return {f"{a}/{b}": value for a, row in zip(row_alleles, rows) for b, value in zip(column_alleles, row)}
    return extract


def global_differentiation(doc, check):
    lines = doc.section(DIFFERENTIATION)
    lines = [line.replace("=", ":", 1) for line in lines if "Exact P value =" in line]
    return labelled(lines, r"Non-differentiation: Exact P value")


def pairwise_differentiation(doc, check):
    lines = doc.section(DIFFERENTIATION)
    start = after(lines, r"Non-differentiation exact P values")
    return lower_triangle(matrix_rows(lines, start, stop=lambda line: "Table of significant" in line))


_HW = r"Exact test using a Markov chain \(for all Loci\):"
_LD = r"heading 'Loci a and b' between rules of dashes.*"
_EX = re.escape("== " + DIFFERENTIATION)

TABLE = [
    (_HW, r"#Genot column", hardy_weinberg(1)),
    (_HW, r"Obs\.Het\. column", hardy_weinberg(2)),
    (_HW, r"Exp\.Het\. column", hardy_weinberg(3)),
    (_HW, r"P-value column, polymorphic loci in order", hardy_weinberg(4)),
    (r"Exact test using a Markov chain :", r"Pair \(\d+, \d+\) Exact P", linkage_p),
    (_EX, r"Non-differentiation: Exact P value", global_differentiation),
    (_EX, r"Non-differentiation exact P values", pairwise_differentiation),
] + [(_LD, title + r".*", linkage_table(kind)) for kind, title in LINKAGE_TITLES.items()]
