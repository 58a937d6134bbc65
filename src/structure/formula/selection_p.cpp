// P-values and quantiles of a statistic given the heterozygosity.
#include "structure/formula/selection_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "structure/formula/kernel.h"

namespace tov {

namespace {

double tail(ConditionalSample const& sample, double hStat, double lo, double hi, int points) {
    double const step = (hi - lo) / points;
    double sum = 0.0;
    for (double const density : density_at_midpoints(sample, hStat, lo, step, points)) sum += density * step;
    return sum;
}

}  // namespace

double calcFSTpvalue(double const& obs, std::span<double const> het, std::span<double const> stat, double const& hStat,
                     double const& obsHet, double const& hHet, int const& gridPoints) {
    if (!std::isfinite(obs) || gridPoints < 1) return 0.0;
    ConditionalSample const sample = points_near(het, stat, obsHet, hHet);
    double const lowest = obs < 0.0 ? obs - 0.1 : 0.0;
    double const lower = tail(sample, hStat, lowest, obs, gridPoints);
    double const upper = tail(sample, hStat, obs, 1.0, gridPoints);
    return std::min(lower, upper);
}

void calcCILimits(std::span<double const> het, std::span<double const> stat, double const& hStat, double const& atHet,
                  double const& hHet, int const& gridPoints, std::span<double const> quantiles,
                  std::vector<double>& limits) {
    limits.assign(quantiles.size(), 0.0);
    if (gridPoints < 1) return;
    double const step = 1.0 / gridPoints;
    std::vector<double> const density =
        density_at_midpoints(points_near(het, stat, atHet, hHet), hStat, 0.0, step, gridPoints);
    double total = 0.0;
    for (double const d : density) total += d;
    if (!(total > 0.0)) return;
    limits.assign(quantiles.size(), 2.0);
    std::size_t next = 0;
    double cumulated = 0.0;
    for (std::size_t i = 0; i < density.size() && next < quantiles.size(); ++i) {
        cumulated += density[i];
        // kept on purpose: where the density is steep, the quantiles spread over as many midpoints.
        if (quantiles[next] < cumulated / total) limits[next++] = (static_cast<double>(i) + 0.5) * step;
    }
}

}  // namespace tov
