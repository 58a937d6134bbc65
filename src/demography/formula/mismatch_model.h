/// Mismatch distributions: observed moments, the stepwise reference, and the curves of expanding populations.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tov {

/// Moments of an observed distribution and the parameters that they give.
struct MismatchMoments {
    double pairs = 0.0;       ///< sum of the counts
    double mean = 0.0;
    double variance = 0.0;
    double theta = 0.0;       ///< sqrt(variance - mean), 0 below
    double tau = 0.0;         ///< mean - theta, 0 below
    double raggedness = 0.0;
};

/// @param counts  pairs of gene copies that differ at 0, 1, ... sites; all zero gives a record of zeros.
/// Source: Rogers & Harpending 1992, Mol. Biol. Evol. 9: 552-569, for the moments; Harpending 1994, Hum. Biol. 66:
/// 591-600, for the raggedness.
[[nodiscard]] MismatchMoments mismatch_moments(std::span<std::int64_t const> counts) noexcept;

/// Sum over neighbouring classes of the squared difference, plus the square of the last, over the squared sum.
[[nodiscard]] double raggedness_index(std::span<double const> y) noexcept;

/// Counts that the moment estimate predicts.
struct MismatchReference {
    std::vector<double> counts;  ///< as many classes as asked for
    int last_class = 0;          ///< last class with a count above 1e-5
};
/// kept on purpose: with theta = 0 and tau > 0 the counts are 0, though the limit is a Poisson law.
[[nodiscard]] MismatchReference mismatch_reference(MismatchMoments const& moments, int classes);

/// Chi-square of counts against the reference, classes below 5 pooled.
struct MismatchFit {
    double chi_square = 0.0;
    int df = 0;
    double p = 0.0;  ///< -1 without degrees of freedom
};
[[nodiscard]] MismatchFit mismatch_fit(std::span<std::int64_t const> counts, MismatchReference const& reference);

/// Frequency of class i at equilibrium: theta^i / (theta + 1)^(i + 1). Source: Watterson 1975.
[[nodiscard]] double f_Watt(double const& theta, int const& i) noexcept;

/// Parameters of the models; a curve repairs impossible values in place, and the repairs stay.
struct ExpansionParameters {
    double theta0 = 0.0;
    double theta1 = 0.0;
    double tau = 0.0;
    double M = 0.0;
};

/// Work space of the curves, kept so that an evaluation allocates nothing.
struct CurveScratch {
    std::vector<double> poisson, first, second;
    void resize(std::size_t n);
};

/// Frequencies of classes 0 .. n-1 under a sudden expansion from theta0 to theta1 at tau.
///
/// Repairs: theta0 <= 0 becomes 1e-7; tau <= 0 becomes 1e-7; theta1 < theta0 becomes theta0 (the equilibrium curve).
/// Source: Rogers & Harpending 1992; Li 1977, Genetics 85: 331-337.
void sudden_expansion_curve(ExpansionParameters& p, std::span<double> frequencies, CurveScratch& scratch);

/// Frequencies under an expansion in space of demes of size theta that exchange M migrants since tau; theta0 = theta1.
/// Repairs: theta1 <= 0 makes both 0.01; M, tau <= 0 become 1e-5.
void spatial_expansion_curve_3p(ExpansionParameters& p, std::span<double> frequencies, CurveScratch& scratch);
/// The same with another size before the expansion. Repairs: theta0, theta1 <= 0 become 0.01; M, tau <= 0 1e-5.
void spatial_expansion_curve_4p(ExpansionParameters& p, std::span<double> frequencies, CurveScratch& scratch);

/// Sum of squared deviations of two vectors of one length.
[[nodiscard]] double sum_of_squared_deviations(std::span<double const> model, std::span<double const> y) noexcept;

}  // namespace tov
