// Text of the tests of linkage disequilibrium and of its coefficients.
#pragma once

#include <iosfwd>
#include <span>
#include <string>

#include "inference/formula/contingency_table.h"
#include "inference/formula/ld_coefficients.h"

namespace tov {

class TriMat;
class settings;

/// A tested pair of loci, by their indices counted from 0.
struct LinkedPair {
    int first = 0;
    int second = 0;
    double p = 1.0;
    double sd = 0.0;
    long steps = 0;  ///< of the chain, or permutations
};

/// Title of the tests of all pairs.
void print_ld_title(std::ostream& out);
/// Lengths of the chain of the test with known phase.
void print_ld_chain_lengths(std::ostream& out, long steps, long burn_in);
void print_ld_pair(std::ostream& out, LinkedPair const& pair);

/// Lengths of the test with unknown phase. @param recessive  the null samples are drawn, not permuted.
void print_ld_permutation_lengths(std::ostream& out, bool recessive, int permutations, int starts);
/// A pair whose phase is unknown, with the likelihood-ratio statistic.
struct LinkedGenotypePair {
    LinkedPair test;
    double lnLD = 0.0;
    double lnLE = 0.0;
    double chi = 0.0;
    int df = 0;
};
void print_ld_genotype_pair(std::ostream& out, LinkedGenotypePair const& pair);

/// Numbers of significant partners of each locus, and their percentages, each in a framed row.
///
/// @param p      P-values by rank of the locus.
/// @param loci   n indices, counted from 0 and printed so.
void print_linked_loci(std::ostream& out, TriMat const& p, std::span<int const> loci, double level);

/// Two loci with their alleles and counts: the head of the tables of coefficients.
struct LdTableLabels {
    int first_locus = 0;
    int second_locus = 0;
    std::vector<std::string> first_alleles;   ///< rows
    std::vector<std::string> second_alleles;  ///< columns
};
/// The heading of a pair.
void print_ld_loci(std::ostream& out, int first, int second);
/// The seven tables of a pair.
void print_ld_tables(std::ostream& out, LdTableLabels const& labels, ContingencyTable const& counts,
                     LdCoefficients const& x);

}  // namespace tov
