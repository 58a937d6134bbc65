// Kernel density of one statistic around a value of another.
#include "structure/formula/kernel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tov {

namespace {

/// Index of a midpoint near x, within 0 .. points.
int clamped_index(double x, int points) noexcept {
    if (!(x > 0.0)) return 0;
    return x < points ? static_cast<int>(x) : points;
}

}  // namespace

double EpanechnikovKernel(double const& h, double const& x) noexcept {
    double const u = x / h;
    return u * u > 1.0 ? 0.0 : 0.75 * (1.0 - u * u) / h;
}

ConditionalSample points_near(std::span<double const> het, std::span<double const> stat, double atHet, double hHet) {
    ConditionalSample sample;
    for (std::size_t i = 0; i < std::min(het.size(), stat.size()); ++i) {
        double const difference = het[i] - atHet;
        if (!(std::fabs(difference) <= hHet) || !std::isfinite(stat[i])) continue;
        sample.stat.push_back(stat[i]);
        sample.weight.push_back(EpanechnikovKernel(hHet, difference));
        sample.total += sample.weight.back();
    }
    return sample;
}

std::vector<double> density_at_midpoints(ConditionalSample const& sample, double hStat, double lo, double step,
                                         int points) {
    std::vector<double> density(static_cast<std::size_t>(std::max(0, points)), 0.0);
    if (!(sample.total > 0.0)) return density;
    for (std::size_t k = 0; k < sample.stat.size(); ++k) {
        double const s = sample.stat[k];
        int first = 0;
        int last = points;
        if (step > 0.0) {  // midpoints out of reach add nothing: a little more than those in reach is enough
            first = clamped_index((s - hStat - lo) / step - 2.0, points);
            last = clamped_index((s + hStat - lo) / step + 2.0, points);
        }
        for (int i = first; i < last; ++i) {
            double const x = lo + (i + 0.5) * step;
            density[static_cast<std::size_t>(i)] += EpanechnikovKernel(hStat, s - x) * sample.weight[k];
        }
    }
    for (double& d : density) d /= sample.total;
    return density;
}

void calcFSTDensityWeightedByHeterozDistEpanechnikov(std::vector<double>& densities, int const& points,
                                                     std::span<double const> het, std::span<double const> stat,
                                                     double const& hStat, double const& atHet, double const& hHet) {
    densities.clear();
    if (points < 1) return;
    double const step = points > 1 ? 1.0 / (points - 1) : 0.0;
    // The values themselves are the midpoints of cells that begin half a step below.
    densities = density_at_midpoints(points_near(het, stat, atHet, hHet), hStat, -0.5 * step, step, points);
}

}  // namespace tov
