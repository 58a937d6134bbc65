// Coefficients of linkage disequilibrium of two loci from the counts of their two-locus haplotypes.
#pragma once

#include <vector>

#include "inference/formula/contingency_table.h"

namespace tov {

/// Coefficients of each pair of alleles, r x c, row-major; and of the pair of loci.
struct LdCoefficients {
    std::vector<double> expected;  ///< n p_a p_b
    std::vector<double> D;         ///< p_ab - p_a p_b
    std::vector<double> Dprime;    ///< D / Dmax; D where Dmax is 0
    std::vector<double> r;         ///< D / sqrt(p_a (1 - p_a) p_b (1 - p_b)), with its sign
    std::vector<double> chi2;      ///< n r^2
    std::vector<double> chi2_p;    ///< upper tail, 1 degree of freedom
    double mean_abs_Dprime = 0.0;  ///< sum of |D'| p_a p_b
    double mean_r2 = 0.0;          ///< sum of r^2 p_a p_b
    int without_Dmax = 0;          ///< cells whose Dmax is 0
};

/// Dmax is min((1 - p_a) p_b, (1 - p_b) p_a) for D > 0, otherwise min(p_a p_b, (1 - p_a) (1 - p_b)).
///
/// @param counts  gametes by allele of the first locus (rows) and of the second; an empty row or column gives r and
///                chi2 of 0 there; no gametes give zeros throughout.
/// Errors: none. Draws: none. Precision: D is taken from whole numbers, so that equilibrium gives exactly 0; chi2_p is
/// single precision. Source: Lewontin and Kojima 1960; Lewontin 1964; Hill and Robertson 1968.
[[nodiscard]] LdCoefficients ld_coefficients(ContingencyTable const& counts);

}  // namespace tov
