/// Kernel density of one statistic around a value of another.
#pragma once

#include <span>
#include <vector>

namespace tov {

/// Epanechnikov kernel of bandwidth h at distance x: 0.75 (1 - u^2) / h with u = x / h, and 0 where u^2 is above 1.
/// Source: Epanechnikov 1969, Theory Probab. Appl. 14: 153-158.
[[nodiscard]] double EpanechnikovKernel(double const& h, double const& x) noexcept;

/// Simulated points near one heterozygosity, with their weights.
struct ConditionalSample {
    std::vector<double> stat;
    std::vector<double> weight;  ///< kernel of the distance in heterozygosity
    double total = 0.0;          ///< sum of the weights
};

/// Keeps the points within hHet of `atHet`, in their order.
/// @param het, stat  parallel.
[[nodiscard]] ConditionalSample points_near(std::span<double const> het, std::span<double const> stat, double atHet,
                                            double hHet);

/// Density of the statistic at the midpoints lo + (i + 0.5) step, i = 0 .. points - 1, divided by the sum of the
/// weights (0 when that isn't positive).
///
/// Cost: points of the sample times the midpoints within hStat of each. Each sum runs in the order of the points.
[[nodiscard]] std::vector<double> density_at_midpoints(ConditionalSample const& sample, double hStat, double lo,
                                                       double step, int points);

/// Density of the statistic near a heterozygosity, on `points` values from 0 to 1 inclusive.
/// @param densities  receives `points` values.
void calcFSTDensityWeightedByHeterozDistEpanechnikov(std::vector<double>& densities, int const& points,
                                                     std::span<double const> het, std::span<double const> stat,
                                                     double const& hStat, double const& atHet, double const& hHet);

}  // namespace tov
