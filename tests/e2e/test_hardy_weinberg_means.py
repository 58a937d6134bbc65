"""Exact Hardy-Weinberg P-values of real data against uniform shuffles of the alleles, by the mean of several chains.

One chain of 1,000,000 steps has a deviation of up to 0.01 at loci of many alleles, so that a single run of 17 colonies by
9 loci misses the reference by more than its tolerance at a locus or two. The mean of eight chains does not.
"""
import json
import os
import re
import unittest

import support

CASE = os.path.join(support.SOURCE_DIR, "tests", "cases", "microsat")
COLONIES = ("P11", "P14")
CHAINS = 8


def samples_of(text):
    """Text of each sample of a project by its name."""
    found = re.findall(r'(?ms)^[ \t]*SampleName="([^"]+)"(.*?)^[ \t]*\}', text)
    return {name: "SampleName=\"%%s\"%s}\n" % body.replace("%", "%%") for name, body in found}


class HardyWeinbergMeans(support.RunTestCase):
    def test_the_mean_of_eight_chains_is_the_reference(self):
        text = support.read(os.path.join(CASE, "nancy17.tvp"))
        samples = samples_of(text)
        head = re.sub(r"NbSamples=\d+", "NbSamples=%d" % (CHAINS * len(COLONIES)), text[:text.index("[[Samples]]")])
        lines = [head, "[[Samples]]\n"]
        lines += [samples[colony] % ("%s_%d" % (colony, chain)) for chain in range(CHAINS) for colony in COLONIES]
        self.write("p.tvp", "\n".join(lines))
        settings = support.read(os.path.join(CASE, "nancy-hw.tvs"))
        self.write("p.tvs", support.set_keys(settings, {"XMLOutput": 1}))
        self.tovcore("p.tvp", "p.tvs", "run_silent", timeout=500)

        document = self.document()
        checks = json.loads(support.read(os.path.join(CASE, "expected.json")))["checks"]
        wanted = {check["id"]: check for check in checks}
        for colony in COLONIES:
            check = wanted["nancy.%s.hw_P" % colony]
            chains = [self.p_values(document, "%s_%d" % (colony, chain)) for chain in range(CHAINS)]
            self.assertGreater(len({tuple(chain) for chain in chains}), CHAINS // 2, "the chains are not independent")
            for locus, reference in enumerate(check["value"]):
                mean = sum(chain[locus] for chain in chains) / CHAINS
                self.assertAlmostEqual(mean, reference, delta=check["tol"], msg="%s, locus %d" % (colony, locus + 1))

    def p_values(self, document, sample):
        section = re.search(r"(?s)== Hardy-Weinberg equilibrium : \(%s\)(.*?)(?=\n== |\Z)" % sample, document).group(1)
        rows = re.findall(r"(?m)^\s*\d+\s+\d+\s+[0-9.]+\s+[0-9.]+\s+([0-9.]+)\s+[0-9.]+\s+\d+\s*$", section)
        self.assertGreater(len(rows), 7)
        return [float(p) for p in rows]


if __name__ == "__main__":
    unittest.main()
