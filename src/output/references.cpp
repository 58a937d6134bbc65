// Literature references printed in the result document.
#include "output/references.h"

#include <ostream>

#include "output/escape.h"
#include "output/xml.h"

namespace tov {

namespace {

struct Row {
    std::string_view tag;
    std::string_view citation;
};

// Plain text without '&' and '<'. In the order of authors.
constexpr Row rows[] = {
    {"beaumont_nichols1996",
     "Beaumont, M.A. and Nichols, R.A. 1996. Evaluating loci for use in the genetic analysis of population structure. "
     "Proc. R. Soc. Lond. B 263: 1619-1626."},
    {"chakraborty1990",
     "Chakraborty, R. 1990. Mitochondrial DNA polymorphism reveals hidden heterogeneity within some Asian populations. "
     "Am. J. Hum. Genet. 47: 87-94."},
    {"chakraborty_weiss1991",
     "Chakraborty, R. and Weiss, K.M. 1991. Genetic variation of the mitochondrial DNA genome in American Indians is "
     "at "
     "mutation-drift equilibrium. Am. J. Phys. Anthropol. 86: 497-506."},
    {"cockerham1969", "Cockerham, C.C. 1969. Variance of gene frequencies. Evolution 23: 72-84."},
    {"cockerham1973", "Cockerham, C.C. 1973. Analyses of gene frequencies. Genetics 74: 679-700."},
    {"dempster1977",
     "Dempster, A.P., Laird, N.M. and Rubin, D.B. 1977. Maximum likelihood from incomplete data via the EM algorithm. "
     "J. R. Stat. Soc. B 39: 1-38."},
    {"efron1982",
     "Efron, B. 1982. The jackknife, the bootstrap and other resampling plans. Society for Industrial and Applied "
     "Mathematics, Philadelphia."},
    {"ewens1972",
     "Ewens, W.J. 1972. The sampling theory of selectively neutral alleles. Theor. Popul. Biol. 3: 87-112."},
    {"fu1997",
     "Fu, Y.-X. 1997. Statistical tests of neutrality of mutations against population growth, hitchhiking and "
     "background "
     "selection. Genetics 147: 915-925."},
    {"garza_williamson2001",
     "Garza, J.C. and Williamson, E.G. 2001. Detection of reduction in population size using data from microsatellite "
     "loci. Mol. Ecol. 10: 305-318."},
    {"goldstein1995",
     "Goldstein, D.B., Ruiz Linares, A., Cavalli-Sforza, L.L. and Feldman, M.W. 1995. Genetic absolute dating based on "
     "microsatellites and the origin of modern humans. Proc. Natl. Acad. Sci. USA 92: 6723-6727."},
    {"goudet1996",
     "Goudet, J., Raymond, M., de Meeus, T. and Rousset, F. 1996. Testing differentiation in diploid populations. "
     "Genetics 144: 1933-1940."},
    {"guo_thompson1992",
     "Guo, S.W. and Thompson, E.A. 1992. Performing the exact test of Hardy-Weinberg proportion for multiple alleles. "
     "Biometrics 48: 361-372."},
    {"harpending1994",
     "Harpending, H.C. 1994. Signature of ancient population growth in a low-resolution mitochondrial DNA mismatch "
     "distribution. Hum. Biol. 66: 591-600."},
    {"hill1974",
     "Hill, W.G. 1974. Estimation of linkage disequilibrium in randomly mating populations. Heredity 33: 229-239."},
    {"hill_robertson1968",
     "Hill, W.G. and Robertson, A. 1968. Linkage disequilibrium in finite populations. Theor. Appl. Genet. 38: "
     "226-231."},
    {"hudson1990", "Hudson, R.R. 1990. Gene genealogies and the coalescent process. Oxford Surv. Evol. Biol. 7: 1-44."},
    {"jin_nei1990",
     "Jin, L. and Nei, M. 1990. Limitations of the evolutionary parsimony method of phylogenetic analysis. Mol. Biol. "
     "Evol. 7: 82-102."},
    {"jukes_cantor1969",
     "Jukes, T.H. and Cantor, C.R. 1969. Evolution of protein molecules. In: Munro, H.N. (ed.) Mammalian Protein "
     "Metabolism. Academic Press, New York, pp. 21-132."},
    {"kimura1980",
     "Kimura, M. 1980. A simple method for estimating evolutionary rates of base substitutions through comparative "
     "studies of nucleotide sequences. J. Mol. Evol. 16: 111-120."},
    {"kruskal1956",
     "Kruskal, J.B. 1956. On the shortest spanning subtree of a graph and the traveling salesman problem. Proc. Am. "
     "Math. Soc. 7: 48-50."},
    {"levene1949", "Levene, H. 1949. On a matching problem arising in genetics. Ann. Math. Stat. 20: 91-94."},
    {"lewontin1964",
     "Lewontin, R.C. 1964. The interaction of selection and linkage. I. General considerations; heterotic models. "
     "Genetics 49: 49-67."},
    {"lewontin_kojima1960",
     "Lewontin, R.C. and Kojima, K. 1960. The evolutionary dynamics of complex polymorphisms. Evolution 14: 458-472."},
    {"li1977",
     "Li, W.-H. 1977. Distribution of nucleotide differences between two randomly chosen cistrons in a finite "
     "population. Genetics 85: 331-337."},
    {"long1995",
     "Long, J.C., Williams, R.C. and Urbanek, M. 1995. An E-M algorithm and testing strategy for multiple-locus "
     "haplotypes. Am. J. Hum. Genet. 56: 799-810."},
    {"mantel1967",
     "Mantel, N. 1967. The detection of disease clustering and a generalized regression approach. Cancer Res. 27: "
     "209-220."},
    {"nei1973",
     "Nei, M. 1973. Analysis of gene diversity in subdivided populations. Proc. Natl. Acad. Sci. USA 70: 3321-3323."},
    {"nei1978",
     "Nei, M. 1978. Estimation of average heterozygosity and genetic distance from a small number of individuals. "
     "Genetics 89: 583-590."},
    {"nei1987", "Nei, M. 1987. Molecular Evolutionary Genetics. Columbia University Press, New York."},
    {"nei_li1979",
     "Nei, M. and Li, W.-H. 1979. Mathematical model for studying genetic variation in terms of restriction "
     "endonucleases. Proc. Natl. Acad. Sci. USA 76: 5269-5273."},
    {"ohta_kimura1973",
     "Ohta, T. and Kimura, M. 1973. A model of mutation appropriate to estimate the number of electrophoretically "
     "detectable alleles in a finite population. Genet. Res. 22: 201-204."},
    {"paetkau1995",
     "Paetkau, D., Calvert, W., Stirling, I. and Strobeck, C. 1995. Microsatellite analysis of population structure in "
     "Canadian polar bears. Mol. Ecol. 4: 347-354."},
    {"paetkau1997",
     "Paetkau, D., Waits, L.P., Clarkson, P.L., Craighead, L. and Strobeck, C. 1997. An empirical evaluation of "
     "genetic "
     "distance statistics using microsatellite data from bear (Ursidae) populations. Genetics 147: 1943-1957."},
    {"peakall1995",
     "Peakall, R., Smouse, P.E. and Huff, D.R. 1995. Evolutionary implications of allozyme and RAPD variation in "
     "diploid "
     "populations of dioecious buffalograss Buchloe dactyloides. Mol. Ecol. 4: 135-147."},
    {"prim1957",
     "Prim, R.C. 1957. Shortest connection networks and some generalizations. Bell Syst. Tech. J. 36: 1389-1401."},
    {"raymond_rousset1995",
     "Raymond, M. and Rousset, F. 1995. An exact test for population differentiation. Evolution 49: 1280-1283."},
    {"reynolds1983",
     "Reynolds, J., Weir, B.S. and Cockerham, C.C. 1983. Estimation of the coancestry coefficient: basis for a "
     "short-term genetic distance. Genetics 105: 767-779."},
    {"rogers1995",
     "Rogers, A.R. 1995. Genetic evidence for a Pleistocene population explosion. Evolution 49: 608-615."},
    {"rogers_harpending1992",
     "Rogers, A.R. and Harpending, H. 1992. Population growth makes waves in the distribution of pairwise genetic "
     "differences. Mol. Biol. Evol. 9: 552-569."},
    {"rohlf1973",
     "Rohlf, F.J. 1973. Algorithm 76. Hierarchical clustering using the minimum spanning tree. Comput. J. 16: 93-95."},
    {"rousset1997",
     "Rousset, F. 1997. Genetic differentiation and estimation of gene flow from F-statistics under isolation by "
     "distance. Genetics 145: 1219-1228."},
    {"slatkin1991", "Slatkin, M. 1991. Inbreeding coefficients and coalescence times. Genet. Res. 58: 167-175."},
    {"slatkin1993",
     "Slatkin, M. 1993. Isolation by distance in equilibrium and non-equilibrium populations. Evolution 47: 264-279."},
    {"slatkin1994a",
     "Slatkin, M. 1994. Linkage disequilibrium in growing and stable populations. Genetics 137: 331-336."},
    {"slatkin1994b",
     "Slatkin, M. 1994. An exact test for neutrality based on the Ewens sampling distribution. Genet. Res. 64: 71-74."},
    {"slatkin1995",
     "Slatkin, M. 1995. A measure of population subdivision based on microsatellite allele frequencies. Genetics 139: "
     "457-462."},
    {"slatkin1996",
     "Slatkin, M. 1996. A correction to the exact test based on the Ewens sampling distribution. Genet. Res. 68: "
     "259-260."},
    {"slatkin_hudson1991",
     "Slatkin, M. and Hudson, R.R. 1991. Pairwise comparisons of mitochondrial DNA sequences in stable and "
     "exponentially "
     "growing populations. Genetics 129: 555-562."},
    {"slatkin_voelm1991", "Slatkin, M. and Voelm, L. 1991. FST in a hierarchical island model. Genetics 127: 627-629."},
    {"smouse1986",
     "Smouse, P.E., Long, J.C. and Sokal, R.R. 1986. Multiple regression and correlation extensions of the Mantel test "
     "of matrix correspondence. Syst. Zool. 35: 627-632."},
    {"stephens2001",
     "Stephens, M., Smith, N.J. and Donnelly, P. 2001. A new statistical method for haplotype reconstruction from "
     "population data. Am. J. Hum. Genet. 68: 978-989."},
    {"stephens_donnelly2003",
     "Stephens, M. and Donnelly, P. 2003. A comparison of bayesian methods for haplotype reconstruction from "
     "population "
     "genotype data. Am. J. Hum. Genet. 73: 1162-1169."},
    {"tajima1983",
     "Tajima, F. 1983. Evolutionary relationship of DNA sequences in finite populations. Genetics 105: 437-460."},
    {"tajima1989a",
     "Tajima, F. 1989. Statistical method for testing the neutral mutation hypothesis by DNA polymorphism. Genetics "
     "123: "
     "585-595."},
    {"tajima1989b",
     "Tajima, F. 1989. The effect of change in population size on DNA polymorphism. Genetics 123: 597-601."},
    {"tajima1993",
     "Tajima, F. 1993. Measurement of DNA polymorphism. In: Takahata, N. and Clark, A.G. (eds.) Mechanisms of "
     "Molecular "
     "Evolution. Sinauer, Sunderland, pp. 37-59."},
    {"tajima_nei1984",
     "Tajima, F. and Nei, M. 1984. Estimation of evolutionary distance between nucleotide sequences. Mol. Biol. Evol. "
     "1: "
     "269-285."},
    {"takahata_nei1985",
     "Takahata, N. and Nei, M. 1985. Gene genealogy and variance of interpopulational nucleotide differences. Genetics "
     "110: 325-344."},
    {"tamura1992",
     "Tamura, K. 1992. Estimation of the number of nucleotide substitutions when there are strong "
     "transition-transversion "
     "and G+C content biases. Mol. Biol. Evol. 9: 678-687."},
    {"tamura_nei1993",
     "Tamura, K. and Nei, M. 1993. Estimation of the number of nucleotide substitutions in the control region of "
     "mitochondrial DNA in humans and chimpanzees. Mol. Biol. Evol. 10: 512-526."},
    {"wakeley_hey1997",
     "Wakeley, J. and Hey, J. 1997. Estimating ancestral population parameters. Genetics 145: 847-855."},
    {"waser_strobeck1998",
     "Waser, P.M. and Strobeck, C. 1998. Genetic signatures of interpopulation dispersal. Trends Ecol. Evol. 13: "
     "43-44."},
    {"watterson1975",
     "Watterson, G.A. 1975. On the number of segregating sites in genetical models without recombination. Theor. "
     "Popul. "
     "Biol. 7: 256-276."},
    {"watterson1978", "Watterson, G.A. 1978. The homozygosity test of neutrality. Genetics 88: 405-417."},
    {"watterson1986",
     "Watterson, G.A. 1986. The homozygosity test after a change in population size. Genetics 112: 899-907."},
    {"weir1996", "Weir, B.S. 1996. Genetic Data Analysis II. Sinauer, Sunderland."},
    {"weir_cockerham1984",
     "Weir, B.S. and Cockerham, C.C. 1984. Estimating F-statistics for the analysis of population structure. Evolution "
     "38: 1358-1370."},
    {"weir_hill2002", "Weir, B.S. and Hill, W.G. 2002. Estimating F-statistics. Annu. Rev. Genet. 36: 721-750."},
    {"wright1951", "Wright, S. 1951. The genetical structure of populations. Ann. Eugen. 15: 323-354."},
    {"wright1965",
     "Wright, S. 1965. The interpretation of population structure by F-statistics with special regard to systems of "
     "mating. Evolution 19: 395-420."},
    {"zouros1979",
     "Zouros, E. 1979. Mutation rates, population sizes and amounts of electrophoretic variation of enzyme loci in "
     "natural populations. Genetics 92: 623-646."},
};

std::string citation_or_tag(std::string_view tag) {
    std::string const citation = References::get_reference(tag);
    return doc_text(citation.empty() ? tag : std::string_view(citation));
}

}  // namespace

std::string References::get_reference(std::string_view tag) {
    for (Row const& row : rows)
        if (row.tag == tag) return std::string(row.citation);
    return {};
}

References::References(std::ostream& out, std::string_view tag) {
    std::string const citation = citation_or_tag(tag);
    if (xmlOutput)
        out << "Reference: </data>\n<Reference>" << citation << "</Reference>\n<data>\n";
    else
        out << "Reference: <i>" << citation << "</i>\n";
}

References::References(std::ostream& out, std::string_view tag, int position) {
    std::string const citation = citation_or_tag(tag);
    if (!xmlOutput) {
        out << (position == 0 ? "Reference: <i>" : "           <i>") << citation << "</i>\n";
        return;
    }
    if (position == 0) out << "</data>\n";
    out << "<Reference>" << citation << "</Reference>\n";
    if (position == 2) out << "<data>\n";
}

void print_references(std::ostream& out, std::initializer_list<std::string_view> tags) {
    if (tags.size() == 1) {
        References(out, *tags.begin());
        return;
    }
    std::size_t rank = 0;
    for (std::string_view const tag : tags) {
        int const position = rank == 0 ? 0 : rank + 1 == tags.size() ? 2 : 1;
        References(out, tag, position);
        ++rank;
    }
}

}  // namespace tov
