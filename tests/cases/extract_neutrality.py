"""Extractors of the neutrality tests of a sample: Tajima, Fu, Ewens-Watterson, Chakraborty."""
import re

from case_document import labelled

LABELS = {
    "Tajima's test of selective neutrality": (
        "No. of sites with substitutions (S)", "Mean No. of pairwise differences (Pi)", "Tajima's D", "Obs. Theta(S)",
        "Mean Theta(S)", "S.D. Theta(S)", "Mean D", "S.D. D", "P(D simul < D obs)"),
    "Fu's Fs test of selective neutrality": (
        "Original No. of alleles(k)", "Exp. No. of alleles", "Fs", "Mean Theta(Pi)", "S.D. Theta(Pi)", "Mean k",
        "S.D. k", "Prob(sim_Fs <=obs_Fs)"),
    "Ewens-Watterson tests of selective neutrality": (
        "Observed F value", "Expected F value", "Watterson F P.Value", "Slatkin's Exact P.Value"),
    "Chakraborty's test of selective neutrality": (
        "Observed Homozygosity", "Exp. No. of alleles", "P(exactly k alleles)", "P(k or more alleles)"),
}


def value_of(section, label):
    pattern = re.escape(label)
    return lambda doc, check: labelled(doc.section(section, check["sample"]), pattern)


TABLE = [(re.escape("== " + section), re.escape(label), value_of(section, label))
         for section, labels in LABELS.items() for label in labels]
