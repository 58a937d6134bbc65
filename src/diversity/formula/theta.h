// Estimators of theta = 4Nu (2Nu for haploids), and Ewens' probabilities of the number of alleles.
#pragma once

namespace tov {

class BnumMat;

/// Stands for an infinite estimate.
inline constexpr double theta_infinite = 3.4028234663852886e+38;

/// An estimate and its standard deviation.
struct ThetaEstimate {
    double value = 0.0;
    double sd = 0.0;
};

/// Theta(S) = S / a1 of n gene copies and S segregating sites (Watterson 1975; deviation: Tajima 1989). n < 2: {0, 0}.
[[nodiscard]] ThetaEstimate theta_from_sites(int n, double S) noexcept;

/// Theta(Pi) = Pi, with the deviation of Pi without recombination (Tajima 1983). n < 2 gives {0, 0}.
[[nodiscard]] ThetaEstimate theta_from_differences(double n, double pi) noexcept;

/// E[(1 - H) / H] for theta x: x (1 + 2 (1 + x) / ((x + 2) (x + 3))) (Zouros 1979; Chakraborty and Weiss 1991).
[[nodiscard]] double expected_odds_of_heterozygosity(double x) noexcept;

/// Theta(Hom), the root of E[(1 - H) / H] = 1 / H - 1, by the method of false position.
///
/// H = 1 gives {0, 0}, H <= 0 an infinite estimate with an infinite deviation.
/// @param homozygosity  H of the sample.
/// @param sd_het        deviation of the sample's gene diversity.
[[nodiscard]] ThetaEstimate theta_from_homozygosity(double homozygosity, double sd_het) noexcept;

/// Expected number of alleles among n gene copies, sum of theta / (theta + i), i = 0 .. n - 1 (Ewens 1972); 1 for
/// theta <= 0.
[[nodiscard]] double expected_alleles(double theta, int n) noexcept;

/// Theta(k): the theta under which k alleles are expected among n gene copies. k < 2 gives 0.
[[nodiscard]] double theta_from_alleles(int n, int k) noexcept;

/// Limits of Theta(k).
struct ThetaLimits {
    double low = 0.0;
    double high = 100000000.0;  ///< 0 and this value stand for limits that can't be computed
};

/// Limits at which the probability of fewer than k alleles is alpha / 2 (upper), and that of at most k alleles
/// 1 - alpha / 2 (lower).
///
/// kept on purpose: exact limits would exchange the two probabilities; these are narrower.
/// @param B      table that reaches n and k.
/// @param theta  Theta(k), the start of both searches.
[[nodiscard]] ThetaLimits theta_k_limits(BnumMat const& B, int n, int k, double theta, double alpha);

/// Probability of fewer than k alleles among n gene copies under the infinite-allele model (Ewens 1972).
///
/// theta > 10000 gives 0. A table that overflows (n above about 1550) gives a value that is not a number.
[[nodiscard]] double probability_fewer_alleles(BnumMat const& B, int k, int n, double theta);
/// Probability of exactly k alleles; k >= n gives 0.
[[nodiscard]] double probability_exactly_alleles(BnumMat const& B, int k, int n, double theta);
/// The sum of both.
[[nodiscard]] double probability_at_most_alleles(BnumMat const& B, int k, int n, double theta);

}  // namespace tov
