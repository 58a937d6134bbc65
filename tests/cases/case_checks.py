"""The checks of the cases: reading expected.json, choosing the extractor of a check, comparing what it finds."""
import json
import math
import re

import extract_amova
import extract_association
import extract_indices
import extract_mst
import extract_neutrality
import extract_pairs
from case_document import Missing

MODULES = (extract_indices, extract_neutrality, extract_association, extract_amova, extract_pairs, extract_mst)
TABLE = [(re.compile(section), re.compile(label), extract)
         for module in MODULES
         for section, label, extract in module.TABLE]
LEAST_PLACES = 3  # a number printed with fewer decimals gets no allowance for its rounding beyond the tolerance


def read_cases(folder):
    """All checks of the case folders in order, each with its case under 'case'."""
    checks = []
    for path in sorted(folder.glob("*/expected.json")):
        for check in json.loads(path.read_text(encoding="utf-8"))["checks"]:
            checks.append(dict(check, case=path.parent.name))
    return checks


def extractor(check):
    """Extractor of the first table row whose patterns match the whole section and label of the check, or None."""
    for section, label, extract in TABLE:
        if section.fullmatch(check["section"]) and label.fullmatch(check["label"]):
            return extract
    return None


def flat(value):
    """Numbers of nested lists in order; a single number is a list of one."""
    if isinstance(value, (list, tuple)):
        return [number for item in value for number in flat(item)]
    return [value]


def allowance(number, tolerance):
    """The tolerance, or half a unit of the last printed place where that is more and LEAST_PLACES decimals stand."""
    places = getattr(number, "places", None)
    if places is None or places < LEAST_PLACES or getattr(number, "exponent", False):
        return tolerance
    return max(tolerance, 0.5 * 10.0 ** -places * (1 + 1e-9))


def compare(check, found):
    """None when `found` agrees with the check, else a short text that says where it does not."""
    value, tolerance = check["value"], check["tol"]
    if check["kind"] == "superset":
        allowed = {tuple(sorted(link)) for link in value["links"]}
        outside = [link for link in found if tuple(link) not in allowed]
        return f"links outside the set: {outside}" if outside or not found else None
    if isinstance(value, dict):
        if set(found) != set(value):
            return f"names {sorted(found)} instead of {sorted(value)}"
        names = list(value)
        expected, got = [value[name] for name in names], [found[name] for name in names]
    else:
        expected, got = flat(value), flat(found)
        names = [str(k + 1) for k in range(len(expected))]
        if len(got) != len(expected):
            return f"{len(got)} numbers instead of {len(expected)}"
    for name, want, have in zip(names, expected, got):
        if have is None or not math.isfinite(have) or abs(have - want) > allowance(have, tolerance) * (1 + 1e-12):
            where = f"number {name}: " if len(expected) > 1 else ""
            return f"{where}{have} instead of {want} (tolerance {tolerance:g})"
    return None


def judge(check, document):
    """(passed, found value or None, reason of the failure or None) of one check on the document of its run or None."""
    if document is None:
        return False, None, "the run left no document"
    try:
        found = extractor(check)(document, check)
        reason = None if check["kind"] == "information" else compare(check, found)
    except Missing as gap:
        return False, None, str(gap)
    except (IndexError, KeyError, TypeError, ValueError) as error:
        return False, None, f"the printed form was not understood: {type(error).__name__}: {error}"
    return reason is None, found, reason
