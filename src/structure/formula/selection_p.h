/// P-values and quantiles of a statistic given the heterozygosity, from simulated loci.
///
/// The joint distribution of both is smoothed with Epanechnikov kernels and integrated at midpoints.
/// Source: Beaumont and Nichols 1996 for the test of a locus against the null distribution at its heterozygosity.
#pragma once

#include <span>
#include <vector>

namespace tov {

/// Bandwidths and grid of the detection of selected loci.
struct SelectionKernel {
    double h_stat = 0.025;  ///< F-statistic
    double h_het = 0.04;    ///< heterozygosity
    int grid_points = 200;
};

/// The smaller of the two tails beyond `obs` of the density of the statistic near a heterozygosity: at most about 0.5.
///
/// The lower tail runs from 0, or from obs - 0.1 for a negative obs, up to obs; the upper tail from obs to 1. A value
/// that is not finite, and no points near, give 0.
/// @param het, stat  parallel: heterozygosity and statistic of simulated loci.
[[nodiscard]] double calcFSTpvalue(double const& obs, std::span<double const> het, std::span<double const> stat,
                                   double const& hStat, double const& obsHet, double const& hHet,
                                   int const& gridPoints);

/// Values of the statistic at quantiles of its density near a heterozygosity.
///
/// The grid has gridPoints midpoints on 0 to 1. A quantile takes the first midpoint whose cumulative share exceeds it,
/// each midpoint serving one quantile at most; a quantile that is not reached gets 2.0. Without any density all limits
/// are 0.
/// @param quantiles  ascending. @param limits  receives as many values.
void calcCILimits(std::span<double const> het, std::span<double const> stat, double const& hStat, double const& atHet,
                  double const& hHet, int const& gridPoints, std::span<double const> quantiles,
                  std::vector<double>& limits);

}  // namespace tov
