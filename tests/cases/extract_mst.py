"""Extractors of minimum spanning trees and their alternative links, of one sample or of the whole project."""
import re

from case_document import Missing, after, is_number, is_rule, numbers


def tree_section(doc, sample):
    return doc.section("Molecular diversity indices", sample) if sample else doc.behind("GENETIC STRUCTURE ANALYSIS")


def tree_links(lines):
    """Links of the tree as (identifier, identifier, length)."""
    start = after(lines, r"MINIMUM SPANNING TREE between \d+ OTUs")
    start = after(lines, r"OTU 1\s+OTU 2\s+Connection length", start)
    links = []
    for line in lines[start:]:
        words = line.split()
        if not words or is_rule(line):
            if links:
                break
            continue
        if len(words) < 3 or not is_number(words[2]):
            break
        links.append((words[0], words[1], numbers(words[2])[0]))
    if not links:
        raise Missing("no links in the minimum spanning tree")
    return links


def alternative_links(lines, known):
    """Alternatives as (identifier, identifier): rows 'id  id (length) id (length)' that open with a known one."""
    start = after(lines, r"Alternative connections between OTUs")
    start = after(lines, r"OTU\s+List of alternative links", start)
    links = []
    for line in lines[start:]:
        if is_rule(line) or (not line.strip() and not links):
            continue
        words = re.sub(r"\([^)]*\)", " ", line).replace(",", " ").split()
        if not words or words[0].rstrip(":") not in known:
            break
        links += [(words[0].rstrip(":"), word) for word in words[1:]]
    return links


def total(doc, check):
    return sum(length for _, _, length in tree_links(tree_section(doc, check.get("sample"))))


def lengths(doc, check):
    return sorted(length for _, _, length in tree_links(tree_section(doc, check.get("sample"))))


def network(doc, check):
    """Links of tree and alternatives as pairs of numbers of haplotypes, from 1 in file order, the smaller one first."""
    lines = tree_section(doc, check.get("sample"))
    order = {name: k + 1 for k, name in enumerate(doc.haplotypes(check.get("sample")))}
    pairs = [link[:2] for link in tree_links(lines)] + alternative_links(lines, order)
    try:
        return sorted({tuple(sorted((order[a], order[b]))) for a, b in pairs})
    except KeyError as error:
        raise Missing(f"a link names {error}, which is no haplotype of the project") from error


_TREE = r"MINIMUM SPANNING TREE between n OTUs"

TABLE = [
    (_TREE, r"sum of the column Connection length", total),
    (_TREE, r"Connection length, sorted.*", lengths),
    (r"Alternative connections between OTUs", r"every link printed.*", network),
]
