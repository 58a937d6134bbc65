"""The extractors and the runner of the reference cases, on small documents written by hand in the printed form."""
import json
import os
import pathlib
import stat
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(os.environ.get("TOV_SOURCE_DIR", pathlib.Path(__file__).resolve().parents[2]))
CASES = ROOT / "tests" / "cases"
sys.path.insert(0, str(CASES))

import case_checks  # noqa: E402
from case_document import Document, Missing, Printed, cells, matrix_rows, numbers, project_haplotypes  # noqa: E402

RULE = "=" * 32


def in_xml(text):
    return ('<?xml version="1.0" encoding="ISO-8859-1"?>\n<!--Tovenia results file--><Tovenia>\n<data>\n' + text.replace("&", "&amp;").replace("<", "&lt;")
            + "</data>\n\n</Tovenia>\n\n")


def in_html(text):
    return "\n<html>\n<style>\nBODY {x: y}\n</style>\n<body bgcolor=white>\n\n<PRE>" + text.replace("<", "&lt;") + "\n</body>\n</PRE>\n</html>\n"


def section(title, name, body):
    return f"\n{RULE}\n== {title} : ({name})\n{RULE}\n\n{body}\n"


def found(text, where, label, sample=None, name="x.y", project=""):
    """What the table's extractor finds, in both forms of the document, which must agree."""
    check = {"section": where, "label": label, "id": name}
    if sample:
        check["sample"] = sample
    extract = case_checks.extractor(check)
    assert extract is not None, (where, label)
    values = [extract(Document(form(text), project), check) for form in (in_xml, in_html)]
    assert values[0] == values[1]
    return values[0]


STANDARD = section("Standard diversity indices", "first", """No. of gene copies       : 8
No. of sequences         : 6
No. of loci              : 150
No. of usable loci       : 148 loci with less than  0.00 % missing data
No. of polymorphic sites : 7

Results are only shown for polymorphic loci

----------------------------------------
  Locus#      Num.      Num.      Exp.
              gene   alleles       Het
            copies
----------------------------------------
       6         8         2   0.25000
      12         8         3   0.46429
----------------------------------------
    Mean     8.000   2.50000   0.35714
    s.d.     0.000   0.70711   0.15152
----------------------------------------

Haplotype-level computations
----------------------------

Sum of square freqs.     :  0.1875
Gene diversity           :  0.9286 +/-  0.0844
""") + section("Standard diversity indices", "second", "No. of gene copies       : 7\n")

GENOTYPES = section("Standard diversity indices", "P01", """No. of gene copies       : 20

Results are only shown for polymorphic loci

--------------------------------------------------------------------
  Locus#      Num.      Num.      Obs.      Exp.   Allelic       G-W
              gene   alleles      Het.       Het     range     stat.
            copies
--------------------------------------------------------------------
       1        16         4   0.75000   0.64167        10   0.36364
       2        20         5   0.70000   0.72105        14   0.33333
--------------------------------------------------------------------
    Mean    18.000   4.50000   0.72500   0.68136  12.00000   0.34848
    s.d.     2.828   0.70711   0.03536   0.05613   2.82843   0.02143
--------------------------------------------------------------------
""")

MOLECULAR = section("Molecular diversity indices", "first", """Sample size                                  : 15
No. of sites with substitutions              : 50
Number of usable nucleotide sites            : 910

Nucleotide composition (Relative values)
   C :  25.96 %
   T :  30.77 %
   A :  30.12 %
   G :  13.15 %
   Total : 100.00 %

Distance method                              : Kimura 2P (no Gamma correction)

Inter-haplotypic distance matrix (s.d. above diagonal):

          0.0039  0.0040
  0.0143          0.0019
  0.0132  0.0033

List of Haplotypes:

1 : W01
2 : W02
3 : W03

Mean number of pairwise differences          :    11.780952 +/-     5.653231

Nucleotide diversity (average over loci)     :     0.012946 +/-     0.006965

         Theta(Hom) :     2.064540
    S.D. Theta(Hom) :     0.911111
           Theta(k) :     5.438205
95 % confidence interval limits for theta(k) : [     1.717456 ,    11.564503 ]
           Theta(S) :     3.291374
      S.D. Theta(S) :     1.220000
          Theta(Pi) :     3.583333
     S.D. Theta(Pi) :     2.064197
""")

NEUTRALITY = section("Tajima's test of selective neutrality", "all", """Sample size                           : 15
No. of sites with substitutions (S)   : 50
Mean No. of pairwise differences (Pi) :     11.78095

Distance method                       : Pairwise difference (no Gamma correction, indels not taken into account)

Tajima's D                            :     -1.00691

No. of simulations                    : 20000
Obs. Theta(S)                         :     15.37722
Mean Theta(S)                         :     15.40000
S.D. Theta(S)                         :      6.30000
Mean D                                :     -0.08861
S.D. D                                :      0.88532

P(D simul < D obs)                    :      0.15402
""") + section("Fu's Fs test of selective neutrality", "all", """Original No. of alleles(k)   : 15
Theta(Pi)                    :     11.78095
Exp. No. of alleles          :      9.96035
Fs                           :     -6.57675

No. of simulations           : 20000
Mean Theta(Pi)               :     11.70000
S.D. Theta(Pi)               :      6.33854
Mean k                       :      9.95000
S.D. k                       :      1.71630

Prob(sim_Fs <=obs_Fs)        :      0.00436
""") + section("Ewens-Watterson tests of selective neutrality", "all", """Observed F value             :     0.14286
Expected F value             :     0.16651
No. of simulated samples     : 100000
Watterson F P.Value          :     0.97884
Slatkin's Exact P.Value      :     0.98653
""") + section("Chakraborty's test of selective neutrality", "all", """Observed Homozygosity        :     0.14286
Exp. No. of alleles          :     7.28216
P(exactly k alleles)         :     0.22297
P(k or more alleles)         :     0.01459
""")

HARDY = section("Hardy-Weinberg equilibrium", "P01", """
Exact test using a Markov chain (for all Loci):
Forecasted chain length     :1000000
Dememorization steps        :100000

------------------------------------------------------------------------
Locus  #Genot       Obs.Het.     Exp.Het.   P-value     s.d.  Steps done
------------------------------------------------------------------------
    1           8  0.75000    0.64167      0.68673       0.00045 1001000
    2   This locus is monomorphic: no test done.
    3          10  0.70000    0.77895      0.00312       0.00002 1001000
------------------------------------------------------------------------
""")

LINKAGE = section("Pairwise linkage disequilibrium", "USA2003", """Test of linkage disequilibrium for all pairs of loci:
-----------------------------------------------------

Exact test using a Markov chain :
Chain length     :100000
Dememorization   :10000
Note: The test is only performed for polymorphic pairs of loci

Pair (0, 1) Exact P= 0.00000  +-     0.00000 (100172 Steps done)
Pair (0, 12) Exact P= 0.43505  +-     0.00111 (100172 Steps done)

--------------------
Loci 0 and 1
--------------------

  1: Observed contingency table

Locus 0   \\Locus 1
                  a         g
        t   24.00000  10.00000
        c    1.00000   0.00000
  Total number of gametes : 60

  2: Expected table

                  a         g
        t   14.16667  19.83333
        c    0.41667   0.58333

 3: Table of disequilibrium values (D=pab-pa*pb) for all two-locus haplotypes

    0.16389  -0.16389
    0.00972  -0.00972

 4: Table of standardized disequilibrium values (D'=D/Dmax)

                  a         g
        t    0.90769  -0.90769
        c    1.00000  -1.00000

 4: Table of standardized disequilibrium values (r2)

                  a         g
        t    0.67084  -0.67084
        c    0.15404  -0.15404

 5: Table of Chi-square values ( Chi2=sqr(D)*n/(pa*(1-pa)*pb*(1-pb)) )

                  a         g
        t   27.00194  27.00194
        c    1.42373   1.42373

 6: Table of Chi-square P values (1 d.f.)

                  a         g
        t    0.00000   0.00000
        c    0.23279   0.23279

--------------------
Loci 0 and 12
--------------------
""")

DIFFERENTIATION = """
========================================================================
== Exact Test of Sample Differentiation Based on Haplotype Frequencies
========================================================================

List of labels for population samples used below:
-------------------------------------------------
Label  \tPopulation name
-----  \t---------------
  1\tA
  2\tB
  3\tC

--------------------------------------------------------------------------
Global test of differentiation among sample:
--------------------------------------------

 Non-differentiation: Exact P value = 0.37581 +- 0.00210  (1000000 Markov steps done)

--------------------------------------------------------------------------
Differentiation test between all pairs of samples:
--------------------------------------------------

Markov chain length : 1000000 steps)

Non-differentiation exact P values :

           1                2                3
     1
     2   0.91404+-0.0031
     3   0.11840+-0.0012  0.35311+-0.0020


--------------------------------
Table of significant differences (significance level=0.050000):
--------------------------------
"""

AMOVA = """
========================================
== GENETIC STRUCTURE ANALYSIS
========================================

--------------------------
AMOVA design and results :
--------------------------

Reference: </data>
----------------------------------------------------------------------
 Source of                  Sum of      Variance         Percentage
 variation      d.f.        squares     components       of variation
----------------------------------------------------------------------
 Among
 groups           1          8.333        0.51667 Va             8.64

 Among
 populations
 within
 groups           1          4.733       -0.32333 Vb            -5.41

 Within
 populations     12         69.400        5.78333 Vc            96.77

----------------------------------------------------------------------
 Total           14         82.467        5.97667
----------------------------------------------------------------------
 Fixation Indices
      FST :      0.03235
      FSC :     -0.05922
      FCT :      0.08645
----------------------------------------------------------------------

Significance tests (20022 permutations)
------------------

Vc and FST : P(rand. value < obs. value)  =  0.27000
             P(rand. value = obs. value)  =  0.00087
                                  P-value =  0.27087+-0.00300

Vb and FSC : P(rand. value > obs. value)  =  0.31000
             P(rand. value = obs. value)  =  0.00728
                                  P-value =  0.31728+-0.00300

Va and FCT : P(rand. value > obs. value)  =  0.00000
             P(rand. value = obs. value)  =  0.66766
                                  P-value =  0.66766+-0.00300


-------------------------------------------------------
Population specific FIS indices (10100 permutations)
Pop#  Name          FIS  P(Rand FIS>=Obs FIS)
   1  Borgou     0.04771     0.21232
   2  Zebu       0.11543     0.02290

-------------------------------
Population specific FST indices
Pop#  Name          FST
   1  Borgou     0.15704
   2  Zebu       0.15660

"""

LOCI = """
== GENETIC STRUCTURE ANALYSIS

********************
Locus by locus AMOVA:
********************
------------------------------------------
AMOVA Results for polymorphic loci only:
------------------------------------------
        Among populations:                       Within populations:                      Fixation indices:
  Locus     SSD   d.f.      Va% variation     SSD   d.f.      Vb% variation     FST   P-value
      1  25.20283     16 0.04673  10.69833162.65892    417 0.39007  89.30167 0.10698   0.00000
      3  18.73561     16 0.02883   7.20223169.75806    457 0.37146  92.79777 0.07202   0.00010

=====================================================
Global AMOVA results as a weighted average over loci
=====================================================

AMOVA design and results (average over 2 loci):

 Source of               Sum of           Variance            Percentage
 variation               squares          components          variation

 Among
 populations             43.938          0.07556 Va             9.03

 Within
 populations            332.417          0.76153 Vb            90.97

 Total                  376.355          0.83709

Average F-Statistics over all loci
 Fixation Indices
       FST :      0.09026

FST bootstrap percentile values (over 20000 bootstraps)
"""

PAIRS = """
======================================================================================
== Comparisons of pairs of population samples
======================================================================================

List of labels for population samples used below:
-------------------------------------------------
Label  \tPopulation name
-----  \t---------------
  1:\tnorth
  2:\tmiddle
  3:\tsouth

------------------------
Population pairwise FSTs
------------------------

Distance method: Pairwise difference
                   1         2         3
         1   0.00000
         2   0.03558   0.00000
         3   0.06722  -0.08757   0.00000

-------------
FST P values
-------------
Number of permutations : 20022

                   1         2         3
         1         *
         2   0.12345+-0.0023         *
         3   0.23456+-0.0031   0.99099+-0.0007         *

------------------------------------
Matrix of significant Fst P values
Significance Level=0.050000
------------------------------------

                   1         2         3
         1
         2         -
         3         -         -

------------------------------------------
Population average pairwise differences
------------------------------------------

Above diagonal    : Average number of pairwise differences between populations (PiXY)
Diagonal elements : Average number of pairwise differences within population (PiX)
Below diagonal    : Corrected average pairwise difference (PiXY-(PiX+PiY)/2)

Distance method: Pairwise difference
                   1         2         3
         1  11.60000  12.20000  12.80000
         2   0.40000  12.00000  11.00000
         3   1.00000  -0.90000  11.80000

PXY P value
                   1         2         3
         1   0.50000
         2   0.50000   0.50000
         3   0.50000   0.50000   0.50000

Matrix of coancestry coefficients as t/M=-ln(1-FST)
(M=N for haploid data, M=2N for diploid data)

                   1         2         3
         1   0.00000
         2   0.03623   0.00000
         3   0.06959         0   0.00000

Matrix of Slatkin linearized FSTs as t/M=FST/(1-FST)
(M=N for haploid data, M=2N for diploid data)

                   1         2         3
         1   0.00000
         2   0.03689   0.00000
         3      inf\t         0   0.00000
"""

TREE = section("Molecular diversity indices", "flu", """

===========================================
MINIMUM SPANNING TREE between 4 OTUs
===========================================
OTU 1  OTU 2    Connection length
=====  =====    =================
F01    F03      2.00000
F03    F02      2.00000
F02    F04      3.50000

-------------------------------------------
NEXUS notation for MST
-------------------------------------------
#NEXUS
begin trees;  [NEXUS Treefile section generated by Tovenia]
tree flu_MST = [&U] ((F01:0, F03:2.0):0);
end;


===================================================================
Alternative connections between OTUs
to extend the minimum spanning tree into a MINIMUM SPANNING NETWORK
===================================================================
OTU    List of alternative links
===    =========================
F01    F02 (2.00000) F04 (3.50000)

Mean number of pairwise differences          :     3.000000 +/-     1.600000
""")

PROJECT = '[[Samples]]\n\tSampleName="other"\n\tSampleData={\n\tF09 1 ACGT\n\t}\n\tSampleName="flu"\n\tSampleData={\n' + \
    "\t\tF01\t20\tACGT\n\t\tF02\t1\tACGA\n\t\tF03\t1\tACCA\n\t\tF04\t1\tAAAA\n\t}\n"


class DocumentReading(unittest.TestCase):
    def test_numbers_keep_their_printed_decimals(self):
        self.assertEqual([n.places for n in numbers("a 12 1.50 -0.00010 1e-05")], [0, 2, 5, 0])

    def test_cells_that_touch_are_taken_apart(self):
        self.assertEqual(cells("  1 12.34567162.65892    417", 4), [1, 12.34567, 162.65892, 417])

    def test_a_row_of_words_is_no_row(self):
        self.assertIsNone(cells("Distance method: none"))

    def test_a_matrix_that_ends_early_is_missing(self):
        with self.assertRaises(Missing):
            matrix_rows(["   1   2   3", " 1 0.00000", " 2 0.10000 0.00000", ""], 0)

    def test_tags_and_headers_end_lines_and_entities_come_back(self):
        document = Document("<data>a &lt; b</data> <run time=\"1\">c\n<header>\nTitle\n</header>x<i>y</i>")
        self.assertIn("a < b", document.lines)
        self.assertEqual(document.section("Title")[-1], "xy")

    def test_haplotypes_come_in_file_order(self):
        self.assertEqual(project_haplotypes(PROJECT), ["F09", "F01", "F02", "F03", "F04"])
        self.assertEqual(project_haplotypes(PROJECT, "flu"), ["F01", "F02", "F03", "F04"])


class SampleSections(unittest.TestCase):
    SI, MD = "== Standard diversity indices", "== Molecular diversity indices"

    def test_standard_indices_of_the_right_sample(self):
        for label, value in (("No. of gene copies", 8), ("No. of sequences", 6), ("No. of usable loci", 148), ("No. of polymorphic sites", 7),
                             ("Sum of square freqs.", 0.1875), ("Gene diversity", 0.9286), ("Gene diversity, behind +/-", 0.0844)):
            self.assertEqual(found(STANDARD, self.SI, label, "first"), value, label)
        self.assertEqual(found(STANDARD, self.SI, "No. of gene copies", "second"), 7)
        with self.assertRaises(Missing):
            found(STANDARD, self.SI, "No. of gene copies", "third")

    def test_locus_table_of_haplotypes(self):
        self.assertEqual(found(STANDARD, self.SI, "Locus# (polymorphic loci only)", "first"), [6, 12])
        self.assertEqual(found(STANDARD, self.SI, "Exp. Het, polymorphic loci in order", "first"), [0.25, 0.46429])
        with self.assertRaises(Missing):
            found(STANDARD, self.SI, "Exp. Het, polymorphic loci in order", "second")

    def test_locus_table_of_genotypes(self):
        for label, value in (("Num. gene copies", [16, 20]), ("Num. alleles", [4, 5]), ("Obs. Het.", [0.75, 0.7]), ("Exp. Het", [0.64167, 0.72105]),
                             ("Allelic range", [10, 14]), ("G-W stat.", [0.36364, 0.33333]),
                             ("Mean row: alleles, Obs. Het., Exp. Het., range, G-W", [4.5, 0.725, 0.68136, 12, 0.34848]),
                             ("s.d. row, same order", [0.70711, 0.03536, 0.05613, 2.82843, 0.02143])):
            self.assertEqual(found(GENOTYPES, self.SI, label, "P01"), value, label)

    def test_molecular_indices(self):
        for label, value in (("A :", 30.12), ("C :", 25.96), ("G :", 13.15), ("T :", 30.77),
                             ("No. of observed sites with substitutions (label of the pattern 'No. of observed ...')", 50),
                             ("Mean number of pairwise differences", 11.780952), ("Mean number of pairwise differences, behind +/-", 5.653231),
                             ("Nucleotide diversity (average over loci)", 0.012946), ("Nucleotide diversity (average over loci), behind +/-", 0.006965),
                             ("Theta(Hom)", 2.06454), ("S.D. Theta(Hom)", 0.911111), ("Theta(k)", 5.438205), ("Theta(S)", 3.291374),
                             ("S.D. Theta(S)", 1.22), ("Theta(Pi)", 3.583333), ("S.D. Theta(Pi)", 2.064197)):
            self.assertEqual(found(MOLECULAR, self.MD, label, "first"), value, label)
        self.assertEqual(found(MOLECULAR, self.MD, "95 % confidence interval limits for theta(k)", "first"), [1.717456, 11.564503])

    def test_distance_matrix_with_and_without_labels(self):
        where = "Inter-haplotypic distance matrix (s.d. above diagonal):"
        plain = MOLECULAR
        labels = MOLECULAR.replace("          0.0039  0.0040\n  0.0143          0.0019\n  0.0132  0.0033\n",
                                   "           1      2       3\n  1  0.0000  0.0039  0.0040\n  2  0.0143  0.0000  0.0019\n  3  0.0132  0.0033 0.0000\n")
        self.assertNotEqual(plain, labels)
        for text in (plain, labels):
            self.assertEqual(found(text, where, "lower triangle, rows 2..15 in file order", "first"), [[0.0143], [0.0132, 0.0033]])
            self.assertEqual(found(text, where, "upper triangle, given by rows of the lower one", "first"), [[0.0039], [0.0040, 0.0019]])

    def test_neutrality_tests(self):
        tajima, fu = "== Tajima's test of selective neutrality", "== Fu's Fs test of selective neutrality"
        ewens, chakraborty = "== Ewens-Watterson tests of selective neutrality", "== Chakraborty's test of selective neutrality"
        for where, label, value in (
                (tajima, "Tajima's D", -1.00691), (tajima, "Mean No. of pairwise differences (Pi)", 11.78095), (tajima, "Mean D", -0.08861),
                (tajima, "S.D. D", 0.88532), (tajima, "P(D simul < D obs)", 0.15402), (tajima, "Obs. Theta(S)", 15.37722),
                (tajima, "No. of sites with substitutions (S)", 50), (fu, "Fs", -6.57675), (fu, "Original No. of alleles(k)", 15),
                (fu, "Mean k", 9.95), (fu, "S.D. k", 1.7163), (fu, "Prob(sim_Fs <=obs_Fs)", 0.00436), (fu, "Exp. No. of alleles", 9.96035),
                (ewens, "Watterson F P.Value", 0.97884), (ewens, "Slatkin's Exact P.Value", 0.98653), (ewens, "Expected F value", 0.16651),
                (chakraborty, "Exp. No. of alleles", 7.28216), (chakraborty, "P(k or more alleles)", 0.01459)):
            self.assertEqual(found(NEUTRALITY, where, label, "all"), value, label)

    def test_hardy_weinberg_skips_monomorphic_loci(self):
        where = "Exact test using a Markov chain (for all Loci):"
        self.assertEqual(found(HARDY, where, "#Genot column", "P01"), [8, 10])
        self.assertEqual(found(HARDY, where, "Obs.Het. column", "P01"), [0.75, 0.7])
        self.assertEqual(found(HARDY, where, "Exp.Het. column", "P01"), [0.64167, 0.77895])
        self.assertEqual(found(HARDY, where, "P-value column, polymorphic loci in order", "P01"), [0.68673, 0.00312])

    def test_linkage_of_a_pair(self):
        chain, tables = "Exact test using a Markov chain :", "heading 'Loci a and b' between rules of dashes (sites counted from 0)"
        self.assertEqual(found(LINKAGE, chain, "Pair (0, 12) Exact P", "USA2003"), 0.43505)
        self.assertEqual(found(LINKAGE, chain, "Pair (0, 1) Exact P", "USA2003"), 0)
        for label, corner, other in (("1: Observed contingency table", 24, 0), ("2: Expected table", 14.16667, 0.58333),
                                     ("3: Table of disequilibrium values", 0.16389, -0.00972),
                                     ("4: Table of standardized disequilibrium values (D'=D/Dmax)", 0.90769, -1),
                                     ("4: Table of standardized disequilibrium values (r2): D/sqrt(..)", 0.67084, -0.15404),
                                     ("5: Table of Chi-square values", 27.00194, 1.42373), ("6: Table of Chi-square P values (1 d.f.)", 0, 0.23279)):
            table = found(LINKAGE, tables, label, "USA2003", "USA2003.0-1.x")
            self.assertEqual((table["t/a"], table["c/g"], len(table)), (corner, other, 4), label)
        with self.assertRaises(Missing):
            found(LINKAGE, tables, "2: Expected table", "USA2003", "USA2003.0-12.x")


class StructureSections(unittest.TestCase):
    def test_exact_test_of_differentiation(self):
        where = "== Exact Test of Sample Differentiation Based on Haplotype Frequencies"
        self.assertEqual(found(DIFFERENTIATION, where, "Non-differentiation: Exact P value"), 0.37581)
        self.assertEqual(found(DIFFERENTIATION, where, "Non-differentiation exact P values"), [[0.91404], [0.1184, 0.35311]])

    def test_amova_table(self):
        where = "AMOVA design and results :"
        self.assertEqual(found(AMOVA, where, "rows in order"), [1, 1, 12])
        self.assertEqual(found(AMOVA, where, "Sum of squares"), [8.333, 4.733, 69.4])
        self.assertEqual(found(AMOVA, where, "Variance components column"), [0.51667, -0.32333, 5.78333])
        self.assertEqual(found(AMOVA, where, "Percentage of variation"), [8.64, -5.41, 96.77])
        for name, value in (("g2.total_df", 14), ("g2.total_SSD", 82.467), ("g2.total_V", 5.97667)):
            self.assertEqual(found(AMOVA, where, "Total", name=name), value)
        for name, value in (("FST", 0.03235), ("FSC", -0.05922), ("FCT", 0.08645)):
            self.assertEqual(found(AMOVA, where, name), value)
        with self.assertRaises(Missing):
            found(AMOVA, where, "FIS")

    def test_amova_significance(self):
        for label, value in (("Vc and FST : P-value", 0.27087), ("FST : P-value", 0.27087), ("FSC : P-value", 0.31728), ("Va and FCT : P-value", 0.66766)):
            self.assertEqual(found(AMOVA, "Significance tests", label), value)
        with self.assertRaises(Missing):
            found(AMOVA, "Significance tests", "FIT : P-value")

    def test_population_specific_indices(self):
        self.assertEqual(found(AMOVA, "Population specific FIS indices", "FIS, samples in order"), [0.04771, 0.11543])
        self.assertEqual(found(AMOVA, "Population specific FIS indices (.. permutations)", "P(Rand FIS>=Obs FIS)"), [0.21232, 0.0229])
        self.assertEqual(found(AMOVA, "Population specific FST indices", "FST, samples in order"), [0.15704, 0.1566])

    def test_locus_by_locus_with_touching_cells(self):
        where = "AMOVA Results for polymorphic loci only:"
        self.assertEqual(found(LOCI, where, "Locus column"), [[1], [3]])
        self.assertEqual(found(LOCI, where, "SSD of both levels"), [[25.20283, 162.65892], [18.73561, 169.75806]])
        self.assertEqual(found(LOCI, where, "d.f. of both levels"), [[16, 417], [16, 457]])
        self.assertEqual(found(LOCI, where, "Va, Vb"), [[0.04673, 0.39007], [0.02883, 0.37146]])
        self.assertEqual(found(LOCI, where, "FST per locus"), [[0.10698], [0.07202]])
        with self.assertRaises(Missing):
            found(LOCI, where, "d.f. (all loci alike)")

    def test_average_over_loci(self):
        where = "Global AMOVA results as a weighted average over loci"
        self.assertEqual(found(LOCI, where, "Sum of squares"), [43.938, 332.417])
        self.assertEqual(found(LOCI, where, "Variance components"), [0.07556, 0.76153])
        self.assertEqual(found(LOCI, where, "Percentage variation"), [9.03, 90.97])
        self.assertEqual(found(LOCI, where, "Average F-Statistics over all loci, FST"), 0.09026)

    def test_pairs_of_samples(self):
        where = "Population average pairwise differences"
        self.assertEqual(found(PAIRS, "Population pairwise FSTs", "lower triangle"), [[0.03558], [0.06722, -0.08757]])
        self.assertEqual(found(PAIRS, "FST P values", "lower triangle"), [[0.12345], [0.23456, 0.99099]])
        self.assertEqual(found(PAIRS, where, "diagonal"), [11.6, 12, 11.8])
        self.assertEqual(found(PAIRS, where, "above the diagonal, rows of the transposed"), [[12.2], [12.8, 11]])
        self.assertEqual(found(PAIRS, where, "below the diagonal"), [[0.4], [1, -0.9]])
        self.assertEqual(found(PAIRS, "Matrix of coancestry coefficients as t/M=-ln(1-FST)", "lower triangle; x"), [[0.03623], [0.06959, 0]])
        self.assertEqual(found(PAIRS, "Matrix of Slatkin linearized FSTs as t/M=FST/(1-FST)", "lower triangle; x"), [[0.03689], [float("inf"), 0]])
        with self.assertRaises(Missing):
            found(PAIRS, "Delta mu-square distance between all pairs of populations", "lower triangle")

    def test_minimum_spanning_tree(self):
        where = "MINIMUM SPANNING TREE between n OTUs"
        self.assertEqual(found(TREE, where, "sum of the column Connection length", "flu"), 7.5)
        self.assertEqual(found(TREE, where, "Connection length, sorted: the same", "flu"), [2, 2, 3.5])
        links = found(TREE, "Alternative connections between OTUs", "every link printed, x", "flu", project=PROJECT)
        self.assertEqual(links, [(1, 2), (1, 3), (1, 4), (2, 3), (2, 4)])


class Comparison(unittest.TestCase):
    def check(self, value, tolerance, kind="exact"):
        return {"value": value, "tol": tolerance, "kind": kind}

    def test_tolerance_is_absolute_and_closed(self):
        self.assertIsNone(case_checks.compare(self.check(1.0, 0.01), 1.01))
        self.assertIsNotNone(case_checks.compare(self.check(1.0, 0.01), 1.02))

    def test_rounding_of_the_print_is_allowed_from_three_decimals_on(self):
        self.assertIsNone(case_checks.compare(self.check(0.12345678, 1e-8), Printed("0.12346")))
        self.assertIsNotNone(case_checks.compare(self.check(0.12345678, 1e-8), Printed("0.12")))

    def test_shapes_must_agree(self):
        self.assertIsNotNone(case_checks.compare(self.check([[1], [2, 3]], 0), [[1], [2]]))
        self.assertIsNone(case_checks.compare(self.check(0.5, 0), [0.5]))
        self.assertIsNotNone(case_checks.compare(self.check({"a/a": 1}, 0), {"a/g": 1}))

    def test_numbers_that_are_none_or_not_finite_fail(self):
        self.assertIsNotNone(case_checks.compare(self.check([1.0], 9), [None]))
        self.assertIsNotNone(case_checks.compare(self.check([1.0], 9), [float("nan")]))

    def test_a_superset_holds_every_link(self):
        check = self.check({"count": 2, "links": [[1, 2], [2, 3]]}, 0, "superset")
        self.assertIsNone(case_checks.compare(check, [(1, 2)]))
        self.assertIsNotNone(case_checks.compare(check, [(1, 3)]))
        self.assertIsNotNone(case_checks.compare(check, []))

    def test_every_check_has_one_extractor(self):
        for check in case_checks.read_cases(CASES):
            rows = [e for s, l, e in case_checks.TABLE if s.fullmatch(check["section"]) and l.fullmatch(check["label"])]
            self.assertEqual(len(rows), 1, check["id"])

    def test_no_check_passes_without_a_document_or_on_an_empty_one(self):
        empty = Document("")
        for check in case_checks.read_cases(CASES):
            self.assertFalse(case_checks.judge(check, None)[0])
            self.assertFalse(case_checks.judge(check, empty)[0], check["id"])


class Runner(unittest.TestCase):
    """The runner on a case of its own with a program that copies a prepared document."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tov_runner_"))
        self.addCleanup(lambda: __import__("shutil").rmtree(self.folder, ignore_errors=True))
        case = self.folder / "small"
        case.mkdir()
        (case / "p.tvp").write_text(PROJECT)
        (case / "s.tvs").write_text("TaskNumber=1\nXMLOutput=1\n")
        common = {"tol": 0, "kind": "exact", "project": "p.tvp", "run": "s.tvs", "section": "== Standard diversity indices", "sample": "first"}
        checks = [dict(common, id="good", label="No. of gene copies", value=8), dict(common, id="bad", label="No. of sequences", value=7)]
        (case / "expected.json").write_text(json.dumps({"case": "small", "checks": checks}))
        (self.folder / "d.xml").write_text(in_xml(STANDARD))
        self.program = self.folder / "program"
        self.program.write_text(f"#!/bin/sh\ntest \"$3\" = run_silent && mkdir p.res && cp {self.folder}/d.xml p.res/p.xml\n")
        self.program.chmod(self.program.stat().st_mode | stat.S_IXUSR)

    def run_it(self, listed, *options):
        (self.folder / "expected_failures.txt").write_text(listed)
        done = subprocess.run([sys.executable, str(CASES / "run_cases.py"), str(self.program), "--folder", str(self.folder), *options],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        return done.returncode, done.stdout

    def test_a_listed_failure_is_no_error(self):
        status, text = self.run_it("small bad\n")
        self.assertEqual(status, 0, text)
        self.assertIn("1 passed, 1 failed\n1 expected failures\n", text)

    def test_a_failure_that_is_not_listed_is_named(self):
        status, text = self.run_it("")
        self.assertEqual(status, 1)
        self.assertIn("fails: small bad: 6.0 instead of 7", text)

    def test_a_listed_check_that_passes_is_an_error(self):
        status, text = self.run_it("small bad\nsmall good\n")
        self.assertEqual(status, 1)
        self.assertIn("passes, but is listed as an expected failure: small good", text)

    def test_a_listed_check_that_does_not_exist_is_an_error(self):
        status, text = self.run_it("small bad\nsmall old\n")
        self.assertEqual(status, 1)
        self.assertIn("no such check: small old", text)

    def test_update_writes_the_list_sorted_and_keeps_what_was_not_chosen(self):
        status, text = self.run_it("small good\nsmall bad\n", "--update", "--id", "good")
        self.assertEqual(status, 0, text)
        self.assertEqual((self.folder / "expected_failures.txt").read_text(), "small bad\n")
        self.run_it("small old\n", "--update")
        self.assertEqual((self.folder / "expected_failures.txt").read_text(), "small bad\n")

    def test_verbose_shows_both_sides(self):
        self.assertIn("expected 7\n     found    6.0", self.run_it("small bad\n", "--verbose")[1])

    def test_a_program_that_fails_is_reported(self):
        self.program.write_text("#!/bin/sh\nexit 3\n")
        status, text = self.run_it("small bad\nsmall good\n")
        self.assertEqual(status, 0)
        self.assertIn("exit status 3", text)
        self.assertIn("0 passed, 2 failed", text)


if __name__ == "__main__":
    unittest.main()
