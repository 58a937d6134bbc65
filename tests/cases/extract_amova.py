"""Extractors of the analysis of molecular variance: table of a design, tests, indices of populations, locus by locus."""
import re

from case_document import Missing, NUMBER, after, cells, is_rule, labelled, numbers

STRUCTURE = "GENETIC STRUCTURE ANALYSIS"
COLUMN_NAMES = re.compile(r"% ?variation|P-value|d\.f\.|SSD|V[abcd]|F(?:ST|SC|CT|IS|IT)|Locus")
VARIANCE_ROW = re.compile(rf"({NUMBER})\s+V([abcd])\s+({NUMBER})\s*$")
INDEX = r"(?:Fixation Ind(?:ex|ices)\s+)?"


def design_lines(doc):
    lines = doc.behind(STRUCTURE)
    start = after(lines, r"AMOVA design and results :")
    end = next((k for k in range(start, len(lines)) if lines[k].startswith("Significance tests")), len(lines))
    return lines[start:end]


def design_rows(doc):
    """Rows d.f., sum of squares, variance, percentage of the levels in order, and the numbers behind 'Total'."""
    rows, total = [], None
    for line in design_lines(doc):
        match = VARIANCE_ROW.search(line)
        if match:
            front = numbers(line[:match.start()])
            if len(front) < 2:
                raise Missing(f"a row without d.f. and sum of squares: {line.strip()}")
            rows.append(front[-2:] + [numbers(match.group(1))[0], numbers(match.group(3))[0]])
        elif re.match(r"\s*Total\s", line) and total is None:
            total = numbers(line)
    if not rows:
        raise Missing("no rows in the AMOVA table")
    return rows, total


def design_column(column):
    return lambda doc, check: [row[column] for row in design_rows(doc)[0]]


def design_total(doc, check):
    """d.f., sum of squares or variance of the Total row; the end of the check's id tells which."""
    total = design_rows(doc)[1]
    if total is None or len(total) < 3:
        raise Missing("no complete Total row in the AMOVA table")
    return total[("total_df", "total_SSD", "total_V").index(check["id"].rsplit(".", 1)[1])]


def design_index(doc, check):
    return labelled(design_lines(doc), INDEX + check["label"])


def significance(doc, check):
    """P-value of the test whose label ends in the index of the check, such as 'Va and FST'."""
    index = check["label"].split(":")[0].strip()
    component = "" if " and " in index else r"V[abcd] and "
    lines = doc.behind(STRUCTURE)
    start = after(lines, r"Significance tests")
    start = after(lines, component + index + r"\s*:", start)
    for line in lines[start - 1:start + 6]:
        match = re.search(r"P-value\s*=\s*(.*)", line)
        if match:
            return numbers(match.group(1).replace("+-", " "))[0]
    raise Missing(f"no P-value of {index}")


def population_table(title, column):
    """Extractor of a column of a table headed 'Pop# Name ...': the index (0) or its P-value (1)."""
    def extract(doc, check):
        lines = doc.behind(STRUCTURE)
        start = after(lines, title + r"(?: \(\d+ permutations\))?\s*$")
        start = after(lines, r"Pop#", start)
        values = []
        for line in lines[start:]:
            words = line.split()
            if not words and not values or is_rule(line):
                continue
            if not words or words[0] != str(len(values) + 1) or len(words) < 3 + column:
                break
            tail = cells(" ".join(words[2:]))
            if tail is None or len(tail) <= column:
                raise Missing(f"a row without its numbers: {line.strip()}")
            values.append(tail[column])
        if not values:
            raise Missing(f"no rows under '{title}'")
        return values
    return extract


def locus_rows(doc):
    """Locus-by-locus table: (column names in order, rows of cells)."""
    lines = doc.behind(STRUCTURE)
    start = after(lines, r"AMOVA Results for polymorphic loci only:")
    start = after(lines, r"Locus.*SSD", start)
    columns = COLUMN_NAMES.findall(lines[start - 1])
    rows = []
    for line in lines[start:]:
        if not line.strip() or is_rule(line):
            if rows:
                break
            continue
        row = cells(line, len(columns))
        if row is None:
            if rows:
                break
            raise Missing(f"a locus row without its {len(columns)} columns: {line.strip()}")
        rows.append(row)
    if not rows:
        raise Missing("no rows in the locus-by-locus table")
    return columns, rows


def locus_columns(pattern, per_locus=True):
    """Extractor of the columns whose names match: one list a locus, or the one that is common to all loci."""
    def extract(doc, check):
        columns, rows = locus_rows(doc)
        chosen = [k for k, name in enumerate(columns) if re.fullmatch(pattern, name)]
        if not chosen:
            raise Missing(f"no column {pattern} in the locus-by-locus table")
        values = [[row[k] for k in chosen] for row in rows]
        if per_locus:
            return values
        if any(row != values[0] for row in values):
            raise Missing("loci differ where all should be alike")
        return values[0]
    return extract


def locus_index(doc, check):
    return locus_columns(check["label"].split()[0])(doc, check)


def average_lines(doc):
    lines = doc.behind(STRUCTURE)
    start = after(lines, r"Global AMOVA results as a weighted average over loci")
    end = next((k for k in range(start, len(lines)) if re.match(r".*bootstrap|Significance tests", lines[k])), len(lines))
    return lines[start:end]


def average_column(column):
    """Column 0 sum of squares, 1 variance, 2 percentage of the weighted average over loci."""
    def extract(doc, check):
        values = []
        for line in average_lines(doc):
            match = VARIANCE_ROW.search(line)
            if match:
                front = numbers(line[:match.start()])
                row = [front[-1] if front else None, numbers(match.group(1))[0], numbers(match.group(3))[0]]
                values.append(row[column])
        if not values or None in values:
            raise Missing("no rows in the average over loci")
        return values
    return extract


def average_index(doc, check):
    lines = average_lines(doc)
    start = after(lines, r"Average F-Statistics over all loci")
    return labelled(lines[start:], INDEX + check["label"].rsplit(" ", 1)[1])


_DESIGN = r"AMOVA design and results :"
_LOCI = r"AMOVA Results for polymorphic loci only:"
_MEAN = r"Global AMOVA results as a weighted average over loci"
_POP_FST = r"Population specific FST indices"
_POP_FIS = r"Population specific FIS indices"
_INDEX = r"F(?:ST|SC|CT|IS|IT)"

TABLE = [
    (_DESIGN, r"rows in order|Among (?:groups|populations) / .*", design_column(0)),
    (_DESIGN, r"Sum of squares(?: column)?", design_column(1)),
    (_DESIGN, r"Variance components(?: column)?", design_column(2)),
    (_DESIGN, r"Percentage of variation(?: column)?", design_column(3)),
    (_DESIGN, r"Total", design_total),
    (_DESIGN, _INDEX, design_index),
    (r"Significance tests", r"(?:V[abcd] and )?" + _INDEX + r" ?: P-value", significance),
    (_POP_FST, r"FST, samples in order", population_table(_POP_FST, 0)),
    (_POP_FIS, r"FIS, samples in order", population_table(_POP_FIS, 0)),
    (_POP_FIS + r" \(.*", r"P\(Rand FIS>=Obs FIS\)", population_table(_POP_FIS, 1)),
    (_LOCI, r"Locus column", locus_columns("Locus")),
    (_LOCI, r"SSD of .*", locus_columns("SSD")),
    (_LOCI, r"d\.f\. of both levels", locus_columns(r"d\.f\.")),
    (_LOCI, r"d\.f\. \(all loci alike\)", locus_columns(r"d\.f\.", per_locus=False)),
    (_LOCI, r"Va, Vb|variance of each level.*", locus_columns("V[abcd]")),
    (_LOCI, _INDEX + r"(?: per locus)?", locus_index),
    (_MEAN, r"Sum of squares", average_column(0)),
    (_MEAN, r"Variance components", average_column(1)),
    (_MEAN, r"Percentage variation", average_column(2)),
    (_MEAN, r"Average F-Statistics over all loci, " + _INDEX, average_index),
]
