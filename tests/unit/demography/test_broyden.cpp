// The Broyden solver and the divergence times of two populations of unequal sizes.
#include "demography/broyden.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "base/random.h"
#include "support/fresh_process.h"

using namespace tov;

namespace {

/// The three mean numbers of differences that (K, p, T) produce.
std::array<double, 3> differences_of(double k, double p, double t) {
    double const q = 1.0 - p;
    return {k * (p + q * std::exp(-t / (p * k))), k * (q + p * std::exp(-t / (q * k))), t + k};
}

void seed() {
    long idum = -1;
    ran3(&idum);
}

/// Uniforms spent by the call, counted by replaying the stream.
template <class Call>
int draws_of(Call&& call) {
    seed();
    call();
    long one = 1;
    double const next = ran3(&one);
    seed();
    for (int spent = 0; spent < 1000; ++spent) {
        if (ran3(&one) == next) {
            return spent;
        }
    }
    return -1;
}

}  // namespace

TEST(Broyden, SolvesALinearSystemWithForwardDifferences) {
    TBroyden solver(
        2,
        [](TBroyden::Vector const& x, TBroyden::Vector& f) {
            f[0] = 2.0L * x[0] + x[1] - 5.0L;
            f[1] = x[0] - 3.0L * x[1] + 1.0L;
        },
        {});
    TBroyden::Vector x{0.0L, 0.0L};
    EXPECT_EQ(solver.broydn(x), BroydenStatus::converged);
    EXPECT_NEAR(static_cast<double>(x[0]), 2.0, 1e-6);
    EXPECT_NEAR(static_cast<double>(x[1]), 1.0, 1e-6);
}

TEST(Broyden, ASingularJacobianIsTold) {
    TBroyden solver(
        2,
        [](TBroyden::Vector const& x, TBroyden::Vector& f) {
            f[0] = x[0] - 1.0L;
            f[1] = x[0] - 2.0L;
        },
        [](TBroyden::Vector const&, TBroyden::Matrix& j) {
            j[0] = {1.0L, 0.0L};
            j[1] = {1.0L, 0.0L};
        });
    TBroyden::Vector x{0.0L, 0.0L};
    EXPECT_EQ(solver.broydn(x), BroydenStatus::singular_jacobian);
}

TEST(Broyden, ANotANumberEndsTheTry) {
    TBroyden solver(1, [](TBroyden::Vector const&, TBroyden::Vector& f) { f[0] = std::nanl(""); }, {});
    TBroyden::Vector x{1.0L};
    EXPECT_EQ(solver.broydn(x), BroydenStatus::spurious);
}

TEST(DivergenceTime, TwoKnownCasesToTenDigits) {
    TSolveDivTimes first(2.0L, 3.0L, 5.0L);
    EXPECT_FALSE(first.solve(50));
    EXPECT_NEAR(first.theta0(), 3.575409015, 5e-10);
    EXPECT_NEAR(first.k(), 0.3508485093, 5e-11);
    EXPECT_NEAR(first.T(), 1.424590985, 5e-10);
    TSolveDivTimes second(1.2L, 0.4L, 2.5L);
    EXPECT_FALSE(second.solve(50));
    EXPECT_NEAR(second.theta0(), 1.422267937, 5e-10);
    EXPECT_NEAR(second.k(), 0.7535637062, 5e-11);
    EXPECT_NEAR(second.T(), 1.077732063, 5e-10);
}

TEST(DivergenceTime, AllZeroIsSolvedAtOnceWithoutADraw) {
    TSolveDivTimes zero(0.0L, 0.0L, 0.0L);
    EXPECT_EQ(draws_of([&] { EXPECT_FALSE(zero.solve(50)); }), 0);
    EXPECT_EQ(zero.T(), 0.0);
    EXPECT_EQ(zero.k(), 0.5);
}

TEST(DivergenceTime, ASolutionAtTheFirstTrySpendsNoDraw) {
    TSolveDivTimes pair(2.0L, 3.0L, 5.0L);
    EXPECT_EQ(draws_of([&] { pair.solve(50); }), 0);
}

TEST(DivergenceTime, EveryRetrySpendsThreeDraws) {
    // Hardly any differences between populations of which one is diverse: no start comes near a solution.
    TSolveDivTimes impossible(0.001L, 1.0L, 0.01L);
    bool failed = false;
    int const draws = draws_of([&] { failed = impossible.solve(4); });
    EXPECT_TRUE(failed);
    EXPECT_EQ(draws, 9);
}

TEST(DivergenceTime, ANegativeAncestralThetaIsNoSolution) {
    // Started at negative differences, the equations hold at once with a negative theta.
    TSolveDivTimes negative(-2.0L, -2.0L, -2.0L);
    bool failed = false;
    EXPECT_GT(draws_of([&] { failed = negative.solve(3); }), 0);
    EXPECT_TRUE(failed);
    EXPECT_LT(negative.theta0(), 0.0);
}

TEST(DivergenceTime, AFailedTryIsReportedAndTheNextFollows) {
    test::FreshProcess fresh;
    static std::vector<int> codes;
    codes.clear();
    Errors::ErrorProc = [](ErrorType type, my_string const& function, int code) {
        EXPECT_EQ(type, ErrorType::Error);
        EXPECT_NE(function.str().find(code == 185 ? "lnsrch" : "broydn"), std::string::npos) << code;
        codes.push_back(code);
    };
    TSolveDivTimes impossible(2.8042603350526805L, 0.8536699790069064L, 1.743296569289637L);
    EXPECT_TRUE(impossible.solve(50));
    EXPECT_GT(codes.size(), 0u);
    EXPECT_LE(codes.size(), 50u);
    for (int const code : codes) {
        EXPECT_GE(code, 182);
        EXPECT_LE(code, 185);
    }
}

TEST(DivergenceTime, ValueBeforeTheFirstTryIsThatOfTheMoments) {
    // Equal sizes without divergence: theta is their mean and nothing is left to solve.
    TSolveDivTimes same(3.0L, 3.0L, 3.0L);
    EXPECT_EQ(draws_of([&] { EXPECT_FALSE(same.solve(50)); }), 0);
    EXPECT_DOUBLE_EQ(same.theta0(), 3.0);
    EXPECT_DOUBLE_EQ(same.k(), 0.5);
    EXPECT_DOUBLE_EQ(same.T(), 0.0);
}

TEST(DivergenceTime, RecoversAGridOfKnownParameters) {
    for (double const k : {1.0, 3.0, 10.0}) {
        for (double const p : {0.3, 0.4, 0.5, 0.6, 0.7}) {
            for (double const t : {0.5, 1.0, 2.0}) {
                auto const d = differences_of(k, p, t);
                seed();
                TSolveDivTimes solver(d[0], d[1], d[2]);
                ASSERT_FALSE(solver.solve(50)) << k << ' ' << p << ' ' << t;
                // The solver stops when the scaled equations hold within 1e-4; judge the equations, then the values.
                auto const back = differences_of(solver.theta0(), solver.k(), solver.T());
                for (int i = 0; i < 3; ++i) {
                    EXPECT_NEAR(back[i], d[i], 1.1e-4 * d[2]) << k << ' ' << p << ' ' << t;
                }
                EXPECT_NEAR(solver.theta0(), k, 0.05 * (k + t)) << k << ' ' << p << ' ' << t;
                EXPECT_NEAR(solver.T(), t, 0.05 * (k + t)) << k << ' ' << p << ' ' << t;
                EXPECT_NEAR(solver.k(), p, 0.05) << k << ' ' << p << ' ' << t;
            }
        }
    }
}
