// The Mantel test against reference values and closed formulas.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "base/recmat.h"
#include "structure/formula/mantel_stats.h"
#include "structure/mantel.h"
#include "support/structure_data.h"

using namespace tov;
using namespace tov::test;

namespace {

RectMat square(int n, std::vector<double> const& below) {
    RectMat m(n, n);
    std::size_t at = 0;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j) {
            m(i, j) = m(j, i) = below[at++];
        }
    }
    return m;
}

/// FST between four samples, in the order of pairs (1,0), (2,0), (2,1), (3,0), (3,1), (3,2).
RectMat fst() {
    return square(
        4, {-0.07608695652173914, 0.14685908319185052, 0.04840747676, 0.19312195605, 0.11818878364, -0.06783122583});
}

RectMat x1() { return square(4, {10, 40, 35, 55, 50, 20}); }
RectMat x2() { return square(4, {1, 3, 2, 2, 4, 1}); }

}  // namespace

TEST(MantelTest, TwoMatricesOfFourSamples) {
    seed_one();
    Mantel mantel;
    mantel.nb_matrices = 2;
    RectMat Y = fst(), X = x1();
    mantel.compute_correlation(Y, X);
    EXPECT_NEAR(mantel.meanY, 0.06044318621, 1e-9);
    EXPECT_NEAR(mantel.SSXY, 0.06364558019, 1e-9);
    EXPECT_EQ(mantel.meanX1, 35.0);
    EXPECT_EQ(mantel.SSX1, 1500.0);
    EXPECT_NEAR(mantel.ZY1, 21.9822777, 1e-7);
    EXPECT_NEAR(mantel.SPY1, 9.289208591, 1e-7);
    EXPECT_NEAR(mantel.bY1, 0.006192805727, 1e-10);
    EXPECT_NEAR(mantel.rY1, 0.9507119672, 1e-8);
    mantel.test_correlation(Y, X, 1000);
    EXPECT_EQ(mantel.count_rY1.smaller, 896);
    EXPECT_EQ(mantel.count_rY1.equal, 60);
    EXPECT_EQ(mantel.count_rY1.larger, 44);
    EXPECT_NEAR(mantel.P_rY1, 0.104, 1e-12);
    EXPECT_NEAR(uniform(), 0.418687749, 1e-12);
}

TEST(MantelTest, ThreeMatricesOfFourSamples) {
    seed_one();
    Mantel mantel;
    mantel.nb_matrices = 3;
    RectMat Y = fst(), X = x1(), Z = x2();
    mantel.compute_correlation(Y, X, Z);
    EXPECT_NEAR(mantel.SPY2, 0.4667116464, 1e-8);
    EXPECT_NEAR(mantel.SP12, 75.0, 1e-9);
    EXPECT_NEAR(mantel.Z12, 530.0, 1e-9);
    EXPECT_NEAR(mantel.rY2, 0.7076983946, 1e-8);
    EXPECT_NEAR(mantel.r12, 0.7407971975, 1e-9);
    EXPECT_NEAR(mantel.rY1_2, 0.8985743045, 1e-8);
    EXPECT_NEAR(mantel.rY2_1, 0.01638912087, 1e-8);
    EXPECT_NEAR(mantel.bY1_2, 0.006156299508, 1e-9);
    EXPECT_NEAR(mantel.bY2_1, 0.0007301243967, 1e-9);
    EXPECT_NEAR(mantel.R2, 0.90387907, 1e-8);
    mantel.test_correlation(Y, X, Z, 1000);
    EXPECT_EQ(mantel.count_rY1.larger, 44);
    EXPECT_EQ(mantel.count_rY2.smaller, 731);
    EXPECT_EQ(mantel.count_rY1_2.smaller, 896);
    EXPECT_EQ(mantel.count_rY2_1.smaller, 360);
    EXPECT_NEAR(mantel.P_rY2, 0.269, 1e-12);
    EXPECT_NEAR(mantel.P_rY2_1, 0.64, 1e-12);
}

TEST(MantelTest, PartialCorrelationsAreThoseOfTheClosedFormula) {
    for (double const r12 : {-0.5, 0.0, 0.3, 0.9}) {
        MantelPartials const p = mantel_partials(0.6, 0.2, r12);
        EXPECT_DOUBLE_EQ(p.rY1_2, (0.6 - 0.2 * r12) / std::sqrt((1.0 - r12 * r12) * (1.0 - 0.04)));
        EXPECT_DOUBLE_EQ(p.rY2_1, (0.2 - 0.6 * r12) / std::sqrt((1.0 - r12 * r12) * (1.0 - 0.36)));
    }
}

namespace {

/// Elements below the diagonal.
std::vector<double> below(RectMat const& m) {
    std::vector<double> values;
    for (int i = 0; i < m.rows(); ++i) {
        for (int j = 0; j < i; ++j) {
            values.push_back(m(i, j));
        }
    }
    return values;
}

double mean(std::vector<double> const& v) {
    double sum = 0.0;
    for (double const x : v) sum += x;
    return sum / static_cast<double>(v.size());
}

double covariation(std::vector<double> const& a, std::vector<double> const& b) {
    double sum = 0.0;
    for (std::size_t k = 0; k < a.size(); ++k) sum += (a[k] - mean(a)) * (b[k] - mean(b));
    return sum;
}

/// What a regression on `x` leaves of `y`.
std::vector<double> residuals(std::vector<double> y, std::vector<double> const& x) {
    double const slope = covariation(y, x) / covariation(x, x);
    double const my = mean(y), mx = mean(x);
    for (std::size_t k = 0; k < y.size(); ++k) y[k] -= my + slope * (x[k] - mx);
    return y;
}

double correlation(std::vector<double> const& a, std::vector<double> const& b) {
    return covariation(a, b) / std::sqrt(covariation(a, a) * covariation(b, b));
}

RectMat random_square(std::mt19937& random, int n) {
    std::vector<double> values(static_cast<std::size_t>(n * (n - 1) / 2));
    for (double& value : values) value = std::uniform_real_distribution<double>(0.0, 5.0)(random);
    return square(n, values);
}

}  // namespace

TEST(MantelTest, PartialCorrelationsAreThoseOfResiduals) {
    std::mt19937 random(3);
    for (int trial = 0; trial < 20; ++trial) {
        Mantel mantel;
        mantel.nb_matrices = 3;
        RectMat Y = random_square(random, 7), X = random_square(random, 7), Z = random_square(random, 7);
        mantel.compute_correlation(Y, X, Z);
        auto const y = below(Y), x = below(X), z = below(Z);
        EXPECT_NEAR(mantel.rY1, correlation(y, x), 1e-12);
        EXPECT_NEAR(mantel.r12, correlation(x, z), 1e-12);
        EXPECT_NEAR(mantel.rY1_2, correlation(residuals(y, z), residuals(x, z)), 1e-12);
        EXPECT_NEAR(mantel.rY2_1, correlation(residuals(y, x), residuals(z, x)), 1e-12);
        EXPECT_NEAR(mantel.bY1_2,
                    covariation(residuals(y, z), residuals(x, z)) / covariation(residuals(x, z), residuals(x, z)),
                    1e-12);
        double const rest =
            covariation(residuals(residuals(y, z), residuals(x, z)), residuals(residuals(y, z), residuals(x, z)));
        EXPECT_NEAR(mantel.unexplained, rest / covariation(y, y), 1e-12);
    }
}

TEST(MantelTest, PRunsFromZeroToOne) {
    seed_one();
    std::mt19937 random(4), again(4);
    Mantel mantel;
    mantel.nb_matrices = 2;
    RectMat same = random_square(random, 9), copy = random_square(again, 9);
    mantel.compute_correlation(same, copy);
    mantel.test_correlation(same, copy, 20);
    EXPECT_EQ(mantel.count_rY1.smaller, 20);
    EXPECT_EQ(mantel.P_rY1, 0.0) << "the observed matrix is not among the permuted ones";
    RectMat constant = square(4, {2, 2, 2, 2, 2, 2}), X = x1();
    mantel.compute_correlation(constant, X);
    mantel.test_correlation(constant, X, 20);
    EXPECT_EQ(mantel.count_rY1.equal, 20);
    EXPECT_EQ(mantel.P_rY1, 1.0);
}

TEST(MantelTest, NoPermutationsLeaveNoPValue) {
    Mantel mantel;
    RectMat Y = fst(), X = x1();
    mantel.compute_correlation(Y, X);
    mantel.test_correlation(Y, X, 0);
    EXPECT_EQ(mantel.P_rY1, 0.0);
    EXPECT_EQ(mantel.nperm_done, 0);
}

TEST(MantelTest, ValuesOfYFollowItsType) {
    Mantel mantel;
    TriMat f(3);
    f.set_data(0.0, 1, 0);
    f.set_data(0.25, 2, 0);
    f.set_data(1.0, 2, 1);
    auto const value = [&](char const* type, int i, int j) {
        mantel.Y_type = type;
        return mantel.FstMatr_funct(i, j, f);
    };
    EXPECT_EQ(value("fst", 2, 0), 0.25);
    EXPECT_EQ(value("log_fst", 1, 0), -10000000.0);
    EXPECT_EQ(value("log_fst", 1, 1), 0.0);
    EXPECT_DOUBLE_EQ(value("log_fst", 2, 0), std::log(0.25));
    EXPECT_DOUBLE_EQ(value("slatkinlinearfst", 2, 0), 0.25 / 0.75);
    EXPECT_EQ(value("slatkinlinearfst", 2, 1), 10000000.0);
    EXPECT_DOUBLE_EQ(value("log_slatkinlinearfst", 2, 1), std::log(10000000.0));
    EXPECT_DOUBLE_EQ(value("nm", 2, 0), 0.75 / 0.5);
    EXPECT_EQ(value("nm", 1, 0), -10000000.0);
    EXPECT_EQ(value("anything", 2, 0), 0.0);
}
