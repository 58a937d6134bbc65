// P-values and quantiles of loci under a kernel density, against direct integration.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "base/random.h"
#include "structure/formula/kernel.h"
#include "structure/formula/selection_p.h"
#include "support/structure_data.h"

namespace tov {
namespace {

constexpr double hs = 0.025, hh = 0.04;

struct Points {
    std::vector<double> het, stat;
};

Points random_points(int n) {
    test::seed_one();
    Points p;
    for (int i = 0; i < n; ++i) {
        double const h = uniform();
        p.het.push_back(h);
        p.stat.push_back(-0.05 + 0.5 * h * uniform());
    }
    return p;
}

/// Density of the statistic at x, from the definition.
double slow_density(Points const& p, double x, double het) {
    double sum = 0.0, weights = 0.0;
    for (std::size_t i = 0; i < p.het.size(); ++i) {
        if (std::fabs(p.het[i] - het) > hh) continue;
        double const w = 0.75 * (1.0 - (p.het[i] - het) * (p.het[i] - het) / (hh * hh)) / hh;
        double const u = (p.stat[i] - x) / hs;
        weights += w;
        if (u * u <= 1.0) sum += 0.75 * (1.0 - u * u) / hs * w;
    }
    return weights > 0.0 ? sum / weights : 0.0;
}

double slow_integral(Points const& p, double lo, double hi, double het, int steps) {
    double const step = (hi - lo) / steps;
    double sum = 0.0;
    for (int i = 0; i < steps; ++i) sum += slow_density(p, lo + (i + 0.5) * step, het) * step;
    return sum;
}

TEST(Kernel, IsAParabolaWithinItsBandwidth) {
    EXPECT_DOUBLE_EQ(EpanechnikovKernel(0.5, 0.0), 1.5);
    EXPECT_DOUBLE_EQ(EpanechnikovKernel(0.5, 0.25), 0.75 * 0.75 / 0.5);
    EXPECT_EQ(EpanechnikovKernel(0.5, 0.5), 0.0);
    EXPECT_EQ(EpanechnikovKernel(0.5, -0.500001), 0.0);
}

TEST(Kernel, HasWeightOne) {
    double sum = 0.0;
    for (int i = 0; i < 1000; ++i) sum += EpanechnikovKernel(0.04, -0.05 + (i + 0.5) * 0.0001) * 0.0001;
    EXPECT_NEAR(sum, 1.0, 1e-6);
}

TEST(Kernel, DensityOnAGridEndsAtZeroAndOne) {
    Points const p = random_points(300);
    std::vector<double> densities;
    calcFSTDensityWeightedByHeterozDistEpanechnikov(densities, 11, p.het, p.stat, hs, 0.6, hh);
    ASSERT_EQ(densities.size(), 11u);
    for (int i = 0; i < 11; ++i)
        EXPECT_NEAR(densities[static_cast<std::size_t>(i)], slow_density(p, i * 0.1, 0.6), 1e-9);
    calcFSTDensityWeightedByHeterozDistEpanechnikov(densities, 0, p.het, p.stat, hs, 0.6, hh);
    EXPECT_TRUE(densities.empty());
}

TEST(SelectionP, IsTheSmallerTailOfTheMidpointSum) {
    Points const p = random_points(500);
    for (double const het : {0.1, 0.5, 0.9}) {
        for (double const obs : {-0.02, 0.0, 0.03, 0.2, 0.9}) {
            double const lower = slow_integral(p, obs < 0.0 ? obs - 0.1 : 0.0, obs, het, 200);
            double const upper = slow_integral(p, obs, 1.0, het, 200);
            EXPECT_NEAR(calcFSTpvalue(obs, p.het, p.stat, hs, het, hh, 200), std::min(lower, upper), 1e-13)
                << het << " " << obs;
        }
    }
}

TEST(SelectionP, IsCloseToTheIntegralOfTheDensity) {
    Points const p = random_points(500);
    for (double const obs : {0.05, 0.15, 0.3}) {
        double const lower = slow_integral(p, 0.0, obs, 0.7, 20000);
        double const upper = slow_integral(p, obs, 1.0, 0.7, 20000);
        EXPECT_NEAR(calcFSTpvalue(obs, p.het, p.stat, hs, 0.7, hh, 200), std::min(lower, upper), 5e-4);
    }
}

TEST(SelectionP, OfOnePointIsTheTailOfItsKernel) {
    std::vector<double> const het{0.3}, stat{0.2};
    double const x = 0.01 / hs;  // upper tail of the parabola from x on
    double const tail = 0.5 - 0.75 * (x - x * x * x / 3.0);
    EXPECT_NEAR(calcFSTpvalue(0.21, het, stat, hs, 0.3, hh, 2000), tail, 1e-5);
    EXPECT_NEAR(calcFSTpvalue(0.2, het, stat, hs, 0.3, hh, 2000), 0.5, 1e-4);
    EXPECT_EQ(calcFSTpvalue(0.25, het, stat, hs, 0.3, hh, 200), 0.0);
}

TEST(SelectionP, NegativeValuesIntegrateFromATenthBelow) {
    std::vector<double> const het{0.3, 0.3}, stat{-0.13, 0.4};
    // the point at -0.13 is seen from -0.02 - 0.1 on only: part of its kernel
    double const z = 0.01 / hs;
    double const seen = 0.5 * (0.5 - 0.75 * (z - z * z * z / 3.0));
    EXPECT_NEAR(calcFSTpvalue(-0.02, het, stat, hs, 0.3, hh, 2000), seen, 1e-4);
}

TEST(SelectionP, WithoutPointsNearIsZero) {
    Points const p = random_points(50);
    EXPECT_EQ(calcFSTpvalue(0.1, p.het, p.stat, hs, 2.0, hh, 200), 0.0);
    EXPECT_EQ(calcFSTpvalue(0.1, {}, {}, hs, 0.5, hh, 200), 0.0);
    EXPECT_EQ(calcFSTpvalue(std::nan(""), p.het, p.stat, hs, 0.5, hh, 200), 0.0);
    EXPECT_EQ(calcFSTpvalue(0.1, p.het, p.stat, hs, 0.5, hh, 0), 0.0);
}

TEST(SelectionP, PointsAtTheBandwidthAreKeptWithoutWeight) {
    std::vector<double> const het{0.5 - 0.25, 0.5}, stat{0.9, 0.1};
    ConditionalSample const sample = points_near(het, stat, 0.5, 0.25);
    EXPECT_EQ(sample.stat.size(), 2u);
    EXPECT_EQ(sample.weight[0], 0.0);
}

TEST(SelectionLimits, AreTheFirstMidpointsBeyondTheirShares) {
    Points const p = random_points(800);
    std::vector<double> const quantiles{0.01, 0.05, 0.1, 0.5, 0.9, 0.95, 0.99};
    std::vector<double> limits;
    for (double const het : {0.2, 0.6, 0.95}) {
        calcCILimits(p.het, p.stat, hs, het, hh, 200, quantiles, limits);
        ASSERT_EQ(limits.size(), 7u);
        double const total = slow_integral(p, 0.0, 1.0, het, 200);
        double last = -1.0;
        for (std::size_t q = 0; q < 7; ++q) {
            int i = 0;
            while (i < 200 && slow_integral(p, 0.0, (i + 1) / 200.0, het, i + 1) / total <= quantiles[q]) ++i;
            double const expected = std::max((i + 0.5) / 200.0, last + 1.0 / 200.0);
            EXPECT_NEAR(limits[q], expected, 1e-9) << het << " " << q;
            last = limits[q];
        }
    }
}

TEST(SelectionLimits, AreTwoWhenNotReachedAndZeroWithoutDensity) {
    std::vector<double> const het{0.5}, stat{0.3}, quantiles{0.5, 1.0};
    std::vector<double> limits;
    calcCILimits(het, stat, hs, 0.5, hh, 200, quantiles, limits);
    EXPECT_NEAR(limits[0], 0.3, 0.004);
    EXPECT_EQ(limits[1], 2.0);
    calcCILimits(het, stat, hs, 0.7, hh, 200, quantiles, limits);
    EXPECT_EQ(limits, (std::vector<double>{0.0, 0.0}));
}

}  // namespace
}  // namespace tov
