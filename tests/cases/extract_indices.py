"""Extractors of the diversity indices of a sample: standard and molecular indices, thetas, distances of haplotypes."""
import re

from case_document import Missing, after, cells, is_number, is_rule, labelled, numbers

STANDARD = "Standard diversity indices"
MOLECULAR = "Molecular diversity indices"


def label_of(section, pattern, where=0):
    """Extractor of the number behind a label of a sample's section."""
    return lambda doc, check: labelled(doc.section(section, check["sample"]), pattern, where)


def locus_table(doc, check):
    """Per-locus table of a sample: (column names, rows of polymorphic loci, {title: closing row}), rows by column name."""
    lines = doc.section(STANDARD, check["sample"])
    start = after(lines, "Results are only shown for polymorphic loci")
    optional = {"Obs.": "obs", "Exp.": "exp", "Allelic": "range", "G-W": "gw"}
    places, rows, closing, columns = {}, [], {}, None
    for line in lines[start:]:
        words = line.split()
        if not words or is_rule(line):
            continue
        if words[0].isdigit() or words[0] in ("Mean", "s.d."):
            if columns is None:
                columns = ["locus", "copies", "alleles"] + sorted(places, key=places.get)
            if words[0].isdigit():
                row = cells(line, len(columns))
                if row is None:
                    raise Missing(f"a locus row without its {len(columns)} columns: {line.strip()}")
                rows.append(dict(zip(columns, row)))
            else:
                row = cells(line.split(words[0], 1)[1]) or []
                closing[words[0]] = dict(zip(columns[-len(row):], row)) if row else {}
                if words[0] == "s.d.":
                    break
        elif columns is None:
            for word, name in optional.items():
                if word in words and name not in places:
                    places[name] = line.index(word)
        else:
            break
    return columns, rows, closing


def locus_column(name):
    return lambda doc, check: [row[name] for row in locus_table(doc, check)[1]]


def closing_row(title):
    """Mean or s.d. row: alleles, observed and expected heterozygosity, allelic range, Garza-Williamson ratio."""
    def extract(doc, check):
        row = locus_table(doc, check)[2].get(title)
        if row is None:
            raise Missing(f"no row '{title}' under the locus table")
        return [row[name] for name in ("alleles", "obs", "exp", "range", "gw")]
    return extract


def composition(doc, check):
    lines = doc.section(MOLECULAR, check["sample"])
    return labelled(lines[after(lines, "Nucleotide composition"):], check["label"][0])


def theta_k_limits(doc, check):
    lines = doc.section(MOLECULAR, check["sample"])
    for line in lines:
        match = re.match(r"\s*95 % confidence interval limits for theta\(k\)\s*:\s*\[(.*),(.*)\]", line)
        if match:
            return numbers(match.group(1)) + numbers(match.group(2))
    raise Missing("no confidence limits of theta(k)")


def haplotype_matrix(lines):
    """Square matrix between haplotypes as rows of n cells, None on a diagonal that is left blank.

    Row numbers, a head line of numbers and the diagonal are optional.
    """
    start = after(lines, r"Inter-haplotypic distance matrix \(s\.d\. above diagonal\):")
    rows = []
    for line in lines[start:]:
        if "List of Haplotypes" in line or line.startswith("== "):
            break
        words = line.split()
        if not words or is_rule(line):
            continue
        if not rows and len(words) > 1 and words == [str(k + 1) for k in range(len(words))]:
            continue
        if not all(is_number(word) for word in words):
            if rows:
                break
            continue
        rows.append((words, numbers(line)))
    size = len(rows)
    if size < 2:
        raise Missing("no distance matrix between haplotypes")
    if all(words[0] == str(k + 1) for k, (words, _) in enumerate(rows)):
        rows = [(words[1:], values[1:]) for words, values in rows]
    result = []
    for index, (_, values) in enumerate(rows):
        if len(values) == size - 1:
            values = values[:index] + [None] + values[index:]
        if len(values) != size:
            raise Missing(f"row {index + 1} of the distance matrix has {len(values)} cells, {size} are wanted")
        result.append(values)
    return result


def distances(doc, check):
    matrix = haplotype_matrix(doc.section(MOLECULAR, check["sample"]))
    return [row[:index] for index, row in enumerate(matrix) if index]


def deviations(doc, check):
    """Cells above the diagonal, as the rows of the triangle of (j, i)."""
    matrix = haplotype_matrix(doc.section(MOLECULAR, check["sample"]))
    return [[matrix[j][i] for j in range(i)] for i in range(1, len(matrix))]


_MATRIX = r"Inter-haplotypic distance matrix.*"
_SI = r"== Standard diversity indices"
_MD = r"== Molecular diversity indices"
_THETA = r"(?:Theta\((?:Hom|S|k|Pi)\))"

# (section, label, extractor); the patterns must match the whole text
TABLE = [
    (_SI, r"No\. of gene copies", label_of(STANDARD, r"No\. of gene copies")),
    (_SI, r"No\. of (?:sequences|haplotypes)", label_of(STANDARD, r"No\. of (?:sequences|haplotypes|alleles)")),
    (_SI, r"No\. of usable loci", label_of(STANDARD, r"No\. of usable loci")),
    (_SI, r"No\. of polymorphic sites", label_of(STANDARD, r"No\. of polymorphic (?:sites|loci)")),
    (_SI, r"Sum of square freqs\.", label_of(STANDARD, r"Sum of square freqs\.")),
    (_SI, r"Gene diversity", label_of(STANDARD, r"Gene diversity")),
    (_SI, r"Gene diversity, behind \+/-", label_of(STANDARD, r"Gene diversity", 1)),
    (_SI, r"Locus# \(polymorphic loci only\)", locus_column("locus")),
    (_SI, r"Num\. gene copies", locus_column("copies")),
    (_SI, r"Num\. alleles", locus_column("alleles")),
    (_SI, r"Obs\. Het\.", locus_column("obs")),
    (_SI, r"Exp\. Het(?:, polymorphic loci in order)?", locus_column("exp")),
    (_SI, r"Allelic range", locus_column("range")),
    (_SI, r"G-W stat\.", locus_column("gw")),
    (_SI, r"Mean row: .*", closing_row("Mean")),
    (_SI, r"s\.d\. row, same order", closing_row("s.d.")),
    (_MD, r"No\. of observed sites with substitutions.*",
     label_of(MOLECULAR, r"(?:No\.|Number) of (?:observed )?sites with substitutions")),
    (_MD, r"[ACGT] :", composition),
    (_MD, r"Mean number of pairwise differences", label_of(MOLECULAR, r"Mean number of pairwise differences")),
    (_MD, r"Mean number of pairwise differences, behind \+/-",
     label_of(MOLECULAR, r"Mean number of pairwise differences", 1)),
    (_MD, r"Nucleotide diversity \(average over loci\)",
     label_of(MOLECULAR, r"Nucleotide diversity \(average over loci\)")),
    (_MD, r"Nucleotide diversity \(average over loci\), behind \+/-",
     label_of(MOLECULAR, r"Nucleotide diversity \(average over loci\)", 1)),
    (_MD, r"Average gene diversity over loci", label_of(MOLECULAR, r"Average gene diversity over loci")),
    (_MD, _THETA, lambda doc, check: label_of(MOLECULAR, re.escape(check["label"]))(doc, check)),
    (_MD, r"S\.D\. " + _THETA, lambda doc, check: label_of(MOLECULAR, re.escape(check["label"]))(doc, check)),
    (_MD, r"95 % confidence interval limits for theta\(k\)", theta_k_limits),
    (_MATRIX, r"lower triangle.*", distances),
    (_MATRIX, r"upper triangle.*", deviations),
]
