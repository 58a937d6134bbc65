// Tajima's D and its density.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "diversity/formula/tajima.h"
#include "diversity/popgen.h"

namespace tov {
namespace {

TajimaTerms terms_of(int n) { return tajima_terms(n, SquaredTerms::inverse_of_square); }

TEST(TajimaD, HasTheKnownValues) {
    struct Case {
        int n;
        double S, pi, D, e2, var;
    };
    for (Case const& c : {Case{20, 10, 2.5, -.3953805584, .004508364882, .6497150496},
                          Case{10, 5, 2.2, .9813912318, .00494892777, .1942812244},
                          Case{50, 25, 3, -1.51229828, .003705318509, 2.91351941}}) {
        TajimaTerms const t = terms_of(c.n);
        EXPECT_NEAR(t.e2, c.e2, 1e-12);
        EXPECT_NEAR((c.S - 1) * c.S * t.e2 + c.S * t.linear / t.a1, c.var, 1e-9);
        TajimaD const d = tajima_d(t, c.pi, c.S);
        EXPECT_TRUE(d.computed);
        EXPECT_NEAR(d.D, c.D, 1e-9);
        TajimaD const fast = fast_tajima_d(tajima_terms(c.n, SquaredTerms::inverse_twice), c.pi, c.S);
        EXPECT_TRUE(fast.computed);
        EXPECT_NEAR(fast.D, c.D, 1e-9);
    }
}

// The form of the paper, with its constants named as there.
TEST(TajimaD, EqualsThePublishedForm) {
    for (int n = 4; n < 60; n += 7) {
        double a1 = 0.0;
        double a2 = 0.0;
        for (int i = 1; i < n; ++i) {
            a1 += 1.0 / i;
            a2 += 1.0 / (i * static_cast<double>(i));
        }
        double const b1 = (n + 1.0) / (3.0 * (n - 1.0));
        double const b2 = 2.0 * (n * n + n + 3.0) / (9.0 * n * (n - 1.0));
        double const c1 = b1 - 1.0 / a1;
        double const c2 = b2 - (n + 2.0) / (a1 * n) + a2 / (a1 * a1);
        double const S = 3.0 + n;
        double const pi = 0.3 * S;
        double const D = (pi - S / a1) / std::sqrt(c1 / a1 * S + c2 / (a1 * a1 + a2) * S * (S - 1.0));
        EXPECT_NEAR(tajima_d(terms_of(n), pi, S).D, D, 1e-11);
    }
}

TEST(TajimaD, ZeroSitesGiveZeroAndNoProbability) {
    for (double const S : {0.0, -1.0}) {
        EXPECT_EQ(tajima_d(terms_of(10), 1.0, S).D, 0.0);
        EXPECT_FALSE(tajima_d(terms_of(10), 1.0, S).computed);
        EXPECT_FALSE(fast_tajima_d(terms_of(10), 1.0, S).computed);
    }
}

TEST(TajimaD, TwoOrThreeCopiesGiveNone) {
    for (int const n : {0, 1, 2, 3}) {
        TajimaTerms const t = terms_of(n);
        EXPECT_EQ(t.e2, 0.0);
        EXPECT_EQ(tajima_d(t, 3.0, 4.0).D, 0.0);
        EXPECT_FALSE(tajima_d(t, 3.0, 4.0).computed);
        EXPECT_FALSE(fast_tajima_d(t, 3.0, 4.0).computed);
    }
    EXPECT_TRUE(tajima_d(terms_of(4), 3.0, 4.0).computed);
}

TEST(TajimaD, ATinyDifferenceIsZero) {
    TajimaTerms const t = terms_of(10);
    double const pi = 4.0 / t.a1;
    TajimaD const d = tajima_d(t, pi + 4e-16, 4.0);
    EXPECT_EQ(d.D, 0.0);
    EXPECT_TRUE(d.computed);
    EXPECT_NE(fast_tajima_d(t, pi + 4e-16, 4.0).D, 0.0);
}

TEST(TajimaD, WhatIsNoNumberGivesNone) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(tajima_d(terms_of(10), 1.0, nan).computed);
    EXPECT_EQ(fast_tajima_d(terms_of(10), 1.0, nan).D, 0.0);
}

TEST(TajimaDensity, IntegratesToOne) {
    double const low = -2.0;
    double const high = 3.0;
    constexpr int steps = 200000;
    double sum = 0.0;
    for (int i = 0; i < steps; ++i) {
        sum += tajima_d_density(2.5, 1.7, low, high, low + (high - low) * (i + 0.5) / steps);
    }
    EXPECT_NEAR(sum * (high - low) / steps, 1.0, 1e-5);
}

TEST(TajimaDensity, IsZeroAtTheEnds) {
    EXPECT_EQ(tajima_d_density(2.0, 2.0, -1.0, 1.0, 1.0), 0.0);
    EXPECT_EQ(tajima_d_density(2.0, 2.0, -1.0, 1.0, -1.0), 0.0);
    EXPECT_EQ(tajima_d_density(2.0, 2.0, 1.0, 1.0, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(tajima_d_density(0.0, 2.0, 0.0, 1.0, 0.5), 0.5 / 0.5);
}

TEST(TajimaDensity, OfTheShapesOfDHasMeanZeroAndVarianceOne) {
    // Tajima (1989) chose the shapes so that D on (low, high) has these two moments.
    for (auto const& [low, high] : {std::pair{-1.7, 2.2}, std::pair{-2.5, 3.5}}) {
        double const a = -(1.0 + low * high) * high / (high - low);
        double const b = (1.0 + low * high) * low / (high - low);
        constexpr int steps = 20000;
        double const half_pi = std::acos(0.0);
        double mass = 0.0;
        double mean = 0.0;
        double square = 0.0;
        for (int i = 0; i < steps; ++i) {
            // x = low + (high - low) sin^2 t, which is smooth at both ends
            double const t = half_pi * (i + 0.5) / steps;
            double const x = low + (high - low) * std::sin(t) * std::sin(t);
            double const dx = (high - low) * 2.0 * std::sin(t) * std::cos(t) * half_pi / steps;
            double const part = PopGenetics::Tajima_D_density(a, b, low, high, x) * dx;
            mass += part;
            mean += part * x;
            square += part * x * x;
        }
        EXPECT_NEAR(mass, 1.0, 1e-6) << low;
        EXPECT_NEAR(mean, 0.0, 1e-6) << low;
        EXPECT_NEAR(square, 1.0, 1e-6) << low;
    }
}

TEST(TajimaDOfASimulatedSample, IsThatOfFourCopiesByHand) {
    // n = 4: a1 = 11/6, e1 = 6/1089, e2 = 83 * 36 / (6534 * 170).
    PopGenetics pop;
    pop.p_tajima_D_ = 0.25;
    pop.fast_tajimaD(4, 3.0, 5.0);
    double const variance = 6.0 / 1089.0 * 5.0 + 83.0 * 36.0 / (6534.0 * 170.0) * 5.0 * 4.0;
    EXPECT_NEAR(pop.tajimaD(), (3.0 - 30.0 / 11.0) / std::sqrt(variance), 1e-13);
    EXPECT_EQ(pop.pTajimaD(), 0.25);
    pop.tajimaD(4, 3.0, 5.0);
    EXPECT_NEAR(pop.tajimaD(), (3.0 - 30.0 / 11.0) / std::sqrt(variance), 1e-13);
    pop.fast_tajimaD(4, 0.0, 0.0);
    EXPECT_EQ(pop.tajimaD(), 0.0);
    EXPECT_EQ(pop.pTajimaD(), -1.0);
}

}  // namespace
}  // namespace tov
