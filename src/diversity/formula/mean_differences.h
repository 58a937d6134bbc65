// Mean number of pairwise differences and nucleotide diversity, with their deviations.
#pragma once

#include <span>

namespace tov {

class RectMat;

/// A mean and its standard deviation over sampling and stochastic processes.
struct DifferenceMean {
    double mean = 0.0;
    double sd = 0.0;
};

/// How a variance is turned into a deviation: guarded gives 0 for a variance that is not positive.
enum class VarianceRoot { guarded, plain };

/// Sum over pairs i > j of f_i f_j d_ij, row by row.
///
/// @param copies     k counts of gene copies, one a distinct haplotype.
/// @param distances  k x k; only (i, j), j < i, is read.
[[nodiscard]] double sum_of_pair_differences(std::span<double const> copies, RectMat const& distances);

/// Mean number of pairwise differences (Pi) of n gene copies.
///
/// Pi = sum / (n (n - 1) / 2); var = (3 (n + m) Pi + 2 (3 + n + m) Pi^2) / (6 + 11 m - 7 n), with m = `square` n^2.
/// n <= 1 gives {0, 0}. Source: Tajima 1993 (square = 1).
/// @param sum  sum over pairs of gene copies, in differences of a pair of sequences (not per site).
[[nodiscard]] DifferenceMean mean_pairwise_differences(double sum, double n, VarianceRoot root,
                                                       double square = 1.0) noexcept;

/// Nucleotide diversity p = Pi / L of L usable sites; n <= 1 or L = 0 gives {0, 0}.
///
/// var = (n + 1) p / (3 L (n - 1)) + 2 (3 + n + n^2) p^2 / (9 (n^2 - n)). Source: Nei 1987, 10.9.
[[nodiscard]] DifferenceMean nucleotide_diversity(double mean_differences, double n, double L,
                                                  VarianceRoot root) noexcept;

}  // namespace tov
