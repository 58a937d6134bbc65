"""A printed result document as plain lines cut into sections, and the readers of its numbers and tables."""
import html
import re

NUMBER = r"[-+]?(?:\d+\.\d*|\.\d+|\d+)(?:[eE][-+]?\d+)?|[-+]?inf|[-+]?nan"
NUMBER_RE = re.compile(rf"(?:{NUMBER})(?![\w.])", re.IGNORECASE)
FIXED5 = re.compile(r"-?\d+\.\d{5}|-?\d+(?!\.)|[-+]?inf|[-+]?nan|\*|N\.A\.")
SD_SUFFIX = re.compile(rf"\s*\+-\s*(?:{NUMBER})", re.IGNORECASE)


class Missing(Exception):
    """The document does not hold the text that an extractor looks for; the message says which."""


class Printed(float):
    """A number as printed: its value and `places`, the decimals that stand in the document."""

    def __new__(cls, text):
        value = super().__new__(cls, text)
        mantissa = re.split("[eE]", text)[0]
        value.places = len(mantissa.split(".")[1]) if "." in mantissa else 0
        value.exponent = "e" in text.lower() and "inf" not in text.lower()
        return value


def numbers(text):
    """All numbers of a text, in order."""
    return [Printed(m.group(0)) for m in NUMBER_RE.finditer(text)]


def is_number(token):
    return re.fullmatch(NUMBER, token, re.IGNORECASE) is not None


def cells(text, count=None):
    """The cells of a table row: numbers, '*' and 'N.A.' (as None); an s.d. behind '+-' is dropped.

    Cells of five decimals may touch each other; they are taken apart when `count` cells are wanted and blanks give
    another number.
    """
    text = SD_SUFFIX.sub("", text.replace("|", " "))
    words = text.split()
    if not all(is_number(w) or w in ("*", "N.A.") for w in words) or (count is not None and len(words) != count):
        words = FIXED5.findall(text)
        if FIXED5.sub("", text).strip():
            return None
    if count is not None and len(words) != count:
        return None
    return [Printed(w) if is_number(w) else None for w in words]


def plain_lines(markup):
    """Text of an XML or HTML document as lines: a tag ends a line, a <header> becomes a line that opens with '== '."""
    markup = re.sub(r"<header>\s*", "\n== ", markup)
    markup = re.sub(r"</?[iIbB]>", "", markup)
    markup = re.sub(r"<[!?/]?[A-Za-z-][^>]*>", "\n", markup)
    return html.unescape(markup).replace("\r", "").expandtabs(8).split("\n")


class Document:
    """One printed document, and the text of its project."""

    def __init__(self, markup, project_text=""):
        self.lines = plain_lines(markup)
        self.project_text = project_text
        self.sections = self._cut()

    def _cut(self):
        """List of (heading, sample, lines behind the heading); the sample is the name in the heading's parentheses."""
        found = []
        for line in self.lines:
            match = re.match(r"\s*== (.*\S)\s*$", line)
            if match:
                heading = match.group(1)
                named = re.match(r"(.*?)\s*: \((.*)\)$", heading)
                found.append((named.group(1), named.group(2), []) if named else (heading, None, []))
            elif found:
                found[-1][2].append(line)
        return found

    def section(self, heading, sample=None):
        """Lines of the first section with this heading (its text before ' : (') and sample."""
        for name, owner, lines in self.sections:
            if name == heading and owner == sample:
                return lines
        raise Missing(f"no section '== {heading}'" + (f" of sample {sample}" if sample else ""))

    def behind(self, heading):
        """All lines behind the first section heading that begins with this text, to the end of the document."""
        for index, (name, _, _) in enumerate(self.sections):
            if name.startswith(heading):
                return [line for _, _, lines in self.sections[index:] for line in lines]
        raise Missing(f"no section '== {heading}'")

    def haplotypes(self, sample=None):
        return project_haplotypes(self.project_text, sample)


def project_haplotypes(text, sample=None):
    """Identifiers of the haplotypes of one sample, or the distinct ones of the project, in file order."""
    order, current, inside, in_list = [], None, False, False
    for line in text.splitlines():
        line = line.strip()
        name = re.fullmatch(r'SampleName="(.*)"', line)
        if name:
            current = name.group(1)
        elif line.endswith("={"):
            inside, in_list = line == "SampleData={" or line == "HaplList={", line == "HaplList={"
        elif line == "}":
            inside = False
        elif inside and line and (sample is None or (current == sample and not in_list)):
            word = line.split()[0]
            if word not in order:
                order.append(word)
    return order


def after(lines, pattern, start=0):
    """Index of the line behind the first one that the pattern matches at its start (leading blanks allowed)."""
    compiled = re.compile(r"\s*" + pattern)
    for index in range(start, len(lines)):
        if compiled.match(lines[index]):
            return index + 1
    raise Missing(f"no line '{pattern}'")


def labelled(lines, label, where=0):
    """Numbers behind 'label :' of the first such line; `where` picks one (1: behind '+/-')."""
    compiled = re.compile(r"\s*" + label + r"\s*:\s*(.*)$")
    for line in lines:
        match = compiled.match(line)
        if match:
            values = numbers(match.group(1).replace("+/-", " "))
            if len(values) > where:
                return values[where]
            raise Missing(f"no number {where + 1} behind '{label}'")
    raise Missing(f"no label '{label}'")


def is_rule(line):
    return bool(re.fullmatch(r"\s*[-=*][-=*\s]*", line)) and bool(line.strip())


def matrix_rows(lines, start, stop=None):
    """Rows of a matrix with labels 1..R: list of R lists of cells without the label.

    An optional head line holds the labels; each row begins with its own label. Reading ends behind row R, or, without
    a head, at the first line that is not the next row. `stop(line)` ends the search for the first row.
    """
    size, rows = None, []
    for line in lines[start:]:
        if not line.strip() or is_rule(line):
            continue
        if stop is not None and not rows and stop(line):
            break
        head = line.split()
        if not rows and size is None and len(head) > 1 and head == [str(k + 1) for k in range(len(head))]:
            size = len(head)
            continue
        match = re.match(r"\s*(\d+)(?![\d.])\s*[:.]?(.*)$", line)
        row = None
        if match and int(match.group(1)) == len(rows) + 1:
            row = cells(match.group(2))
        if row is None:
            if rows:
                break
            continue
        rows.append(row)
        if len(rows) == size:
            break
    if size is not None and len(rows) != size:
        raise Missing(f"matrix of {size} labels has {len(rows)} rows")
    if not rows:
        raise Missing("no matrix")
    return rows


def lower_triangle(rows):
    """Cells below the diagonal; the diagonal may be printed or not, and cells above it may follow."""
    result = []
    for index, row in enumerate(rows):
        if len(row) < index:
            raise Missing(f"row {index + 1} has {len(row)} cells")
        if index:
            result.append(row[:index])
    return result


def square(rows):
    """The rows of a full square matrix."""
    if any(len(row) != len(rows) for row in rows):
        raise Missing(f"not a square of {len(rows)} rows")
    return rows
