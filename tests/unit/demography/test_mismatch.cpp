// Mismatch distributions: moments, reference, model curves and fits.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "base/random.h"
#include "demography/formula/hooke_jeeves.h"
#include "demography/formula/mismatch_model.h"

using namespace tov;

namespace {

std::vector<std::int64_t> const histogram{12, 16, 20, 22, 21, 18, 15, 11, 8, 6, 4};

/// Frequencies of the histogram, with a last class of 0 as the fits have it.
std::vector<double> frequencies() {
    std::vector<double> y;
    for (auto const count : histogram) {
        y.push_back(static_cast<double>(count) / 153.0);
    }
    return y;
}

/// The first draw to come is the first of the stream.
void seed_one() { random_state.ran3.seed(-1); }

double sum(std::vector<double> const& v) { return std::accumulate(v.begin(), v.end(), 0.0); }

}  // namespace

TEST(Mismatch, MomentsOfAKnownHistogram) {
    MismatchMoments const m = mismatch_moments(histogram);
    EXPECT_EQ(m.pairs, 153.0);
    EXPECT_NEAR(m.mean, 4.058823529, 5e-10);
    EXPECT_NEAR(m.variance, 6.818885449, 5e-10);
    EXPECT_NEAR(m.theta, 1.661343408, 5e-10);
    EXPECT_NEAR(m.tau, 2.397480121, 5e-10);
    EXPECT_NEAR(m.raggedness, 0.0044427357, 5e-11);
}

TEST(Mismatch, ReferenceAndItsFitOfAKnownHistogram) {
    MismatchReference const r = mismatch_reference(mismatch_moments(histogram), 21);
    double const expected[] = {5.228512204, 15.79915239, 24.88913084, 27.54562524};
    for (int c = 0; c < 4; ++c) {
        EXPECT_NEAR(r.counts[c], expected[c], 6e-9);
    }
    EXPECT_EQ(r.last_class, 20);
    MismatchFit const fit = mismatch_fit(histogram, r);
    EXPECT_NEAR(fit.chi_square, 16.73755849, 6e-9);
    EXPECT_EQ(fit.df, 8);
    EXPECT_NEAR(fit.p, 0.0329609, 5e-7);
}

TEST(Mismatch, VarianceBelowTheMeanGivesThetaZeroAndTauTheMean) {
    MismatchMoments const m = mismatch_moments(std::vector<std::int64_t>{0, 0, 10, 1});
    EXPECT_LT(m.variance, m.mean);
    EXPECT_EQ(m.theta, 0.0);
    EXPECT_EQ(m.tau, m.mean);
    MismatchReference const r = mismatch_reference(m, 7);
    EXPECT_EQ(r.last_class, 0);
    EXPECT_EQ(sum(r.counts), 0.0);
    MismatchFit const fit = mismatch_fit(std::vector<std::int64_t>{0, 0, 10, 1}, r);
    EXPECT_EQ(fit.df, 0);
    EXPECT_EQ(fit.p, 0.0);
}

TEST(Mismatch, NoPairsGiveZeros) {
    MismatchMoments const m = mismatch_moments(std::vector<std::int64_t>{0, 0});
    EXPECT_EQ(m.mean, 0.0);
    EXPECT_EQ(m.raggedness, 0.0);
    EXPECT_EQ(mismatch_moments({}).pairs, 0.0);
}

TEST(Mismatch, FewClassesLeaveNoDegreeOfFreedom) {
    MismatchReference const r = mismatch_reference(mismatch_moments(std::vector<std::int64_t>{6, 0, 5}), 5);
    EXPECT_EQ(mismatch_fit(std::vector<std::int64_t>{6, 0, 5}, r).p, -1.0);
}

TEST(MismatchModel, SpatialCurvesAtKnownParameters) {
    CurveScratch scratch;
    std::vector<double> f(11);
    ExpansionParameters p{2.0, 2.0, 3.0, 5.0};
    spatial_expansion_curve_3p(p, f, scratch);
    EXPECT_NEAR(f[0], 0.1388293145, 5e-11);
    EXPECT_NEAR(f[1], 0.08195780663, 5e-12);
    EXPECT_NEAR(f[4], 0.1313367864, 5e-11);
    EXPECT_NEAR(f[10], 0.02144534608, 5e-12);
    p = {0.5, 2.0, 3.0, 5.0};
    spatial_expansion_curve_4p(p, f, scratch);
    EXPECT_NEAR(f[0], 0.1526593971, 5e-11);
    EXPECT_NEAR(f[1], 0.1234480543, 5e-11);
    EXPECT_NEAR(f[4], 0.1525727928, 5e-11);
    EXPECT_NEAR(f[10], 0.00267980187, 5e-13);
}

TEST(MismatchModel, SuddenCurvesAtKnownParameters) {
    CurveScratch scratch;
    std::vector<double> f(11);
    ExpansionParameters p{1.0, 20.0, 4.0, 0.0};
    sudden_expansion_curve(p, f, scratch);
    EXPECT_NEAR(f[0], 0.05440276094, 5e-12);
    EXPECT_NEAR(f[1], 0.07555514991, 5e-12);
    EXPECT_NEAR(f[4], 0.1552467604, 5e-11);
    EXPECT_NEAR(f[10], 0.01792708266, 5e-12);
    p = {2.0, 1.0, 4.0, 0.0};
    sudden_expansion_curve(p, f, scratch);
    EXPECT_NEAR(f[3], 0.0987654321, 5e-11);
    EXPECT_EQ(p.theta1, 2.0);
}

TEST(MismatchModel, WithoutTimeClassZeroIsThatOfTheOldSize) {
    CurveScratch scratch;
    std::vector<double> f(5);
    ExpansionParameters p{0.0, 20.0, -1.0, 0.0};
    sudden_expansion_curve(p, f, scratch);
    EXPECT_EQ(p.theta0, 1e-7);
    EXPECT_EQ(p.tau, 1e-7);
    EXPECT_EQ(f[0], f_Watt(1e-7, 0));
    EXPECT_NE(f[1], f_Watt(1e-7, 1)) << "the other classes meet the repaired time";
    ExpansionParameters after{1e-7, 20.0, 1e-7, 0.0};
    std::vector<double> g(5);
    sudden_expansion_curve(after, g, scratch);
    EXPECT_NE(f[0], g[0]);
    for (int i = 1; i < 5; ++i) {
        EXPECT_EQ(f[i], g[i]);
    }
}

TEST(MismatchModel, SpatialCurvesRepairWhatIsNotPositive) {
    CurveScratch scratch;
    std::vector<double> f(5);
    ExpansionParameters p{3.0, -1.0, 0.0, -2.0};
    spatial_expansion_curve_4p(p, f, scratch);
    EXPECT_EQ(p.theta0, 3.0);
    EXPECT_EQ(p.theta1, 0.01);
    EXPECT_EQ(p.tau, 1e-5);
    EXPECT_EQ(p.M, 1e-5);
    p = {3.0, -1.0, 1.0, 2.0};
    spatial_expansion_curve_3p(p, f, scratch);
    EXPECT_EQ(p.theta0, 0.01);
    EXPECT_EQ(p.theta1, 0.01);
}

TEST(MismatchModel, CurvesSumToOne) {
    CurveScratch scratch;
    std::vector<double> f(400);
    ExpansionParameters p{1.0, 20.0, 5.0, 3.0};
    sudden_expansion_curve(p, f, scratch);
    EXPECT_NEAR(sum(f), 1.0, 1e-6);
    spatial_expansion_curve_4p(p, f, scratch);
    EXPECT_NEAR(sum(f), 1.0, 1e-6);
    spatial_expansion_curve_3p(p, f, scratch);
    EXPECT_NEAR(sum(f), 1.0, 1e-6);
}

TEST(MismatchModel, WithoutGrowthTheCurveIsTheEquilibrium) {
    CurveScratch scratch;
    std::vector<double> f(30);
    ExpansionParameters p{4.0, 4.0, 3.0, 0.0};
    sudden_expansion_curve(p, f, scratch);
    for (int i = 0; i < 30; ++i) {
        EXPECT_NEAR(f[i], f_Watt(4.0, i), 1e-15);
    }
    ExpansionParameters shrinking{4.0, 2.0, 3.0, 0.0};
    sudden_expansion_curve(shrinking, f, scratch);
    EXPECT_EQ(shrinking.theta1, 4.0) << "the repair stays";
    EXPECT_NEAR(f[3], f_Watt(4.0, 3), 1e-15);
}

TEST(MismatchModel, LargeThetaStaysFinite) {
    CurveScratch scratch;
    std::vector<double> f(200);
    ExpansionParameters p{1.0, 99999.0, 20.0, 0.0};
    sudden_expansion_curve(p, f, scratch);
    for (double const value : f) {
        EXPECT_TRUE(std::isfinite(value));
    }
    EXPECT_NEAR(sum(f), 1.0, 0.01);
}

TEST(MismatchFit, SuddenExpansionOfAKnownHistogram) {
    auto const y = frequencies();
    ExpansionFitter fitter(ExpansionModel::sudden, y);
    SearchOutcome const fit = hook_jeeves_rh(fitter, {1.0, 5.0, 3.0, 0.0});
    EXPECT_TRUE(fit.converged);
    EXPECT_EQ(fit.steps, 37);
    EXPECT_NEAR(fit.largest_step, 0.00087890625, 1e-12);
    EXPECT_NEAR(fit.best.theta0, 1.979101562, 5e-10);
    EXPECT_NEAR(fit.best.theta1, 13.58886719, 5e-9);
    EXPECT_NEAR(fit.best.tau, 3.125, 1e-12);
    EXPECT_NEAR(fit.ssd, 0.0002363604587, 5e-14);
    ExpansionParameters start{1.0, 5.0, 3.0, 0.0};
    EXPECT_NEAR(fitter.ssd(start), 0.02176659462, 5e-12);
}

TEST(MismatchFit, SpatialExpansionOfAKnownHistogram) {
    auto const y = frequencies();
    ExpansionFitter fitter(ExpansionModel::spatial_3p, y);
    seed_one();
    SearchOutcome const fit = hook_jeeves_spatial_exp(fitter);
    EXPECT_TRUE(fit.converged);
    EXPECT_NEAR(fit.ssd, 0.0006573722241, 5e-14);
    EXPECT_NEAR(fit.best.theta1, 2.552464865, 5e-10);
    EXPECT_NEAR(fit.best.tau, 2.272931405, 5e-10);
    EXPECT_NEAR(fit.best.M, 16.66695795, 5e-9);
    double const next = uniform();
    seed_one();
    for (int draw = 0; draw < 9; ++draw) {
        uniform();
    }
    EXPECT_EQ(uniform(), next);
}

TEST(MismatchFit, WithoutClassZeroTheStartsScaleMByAHundred) {
    std::vector<double> const y{0.0, 0.25, 0.75};
    ExpansionFitter fitter(ExpansionModel::spatial_3p, y);
    seed_one();
    SearchOutcome const start = hook_jeeves_spatial_exp(fitter, 0);  // no steps: the first start stays
    EXPECT_NEAR(start.best.theta1, 5.0 * .298227348, 1e-8);
    EXPECT_EQ(start.best.theta0, start.best.theta1);
    EXPECT_NEAR(start.best.tau, 1.5 * .715119168 * 1.75 + 1.75 / 2.0, 1e-8);
    EXPECT_NEAR(start.best.M, 1.5 * .033021107 * 100.0 + 50.0, 1e-6);
}

TEST(MismatchFit, FourParametersSpendTheDrawsOfTenStarts) {
    auto const y = frequencies();
    ExpansionFitter fitter(ExpansionModel::spatial_4p, y);
    seed_one();
    EXPECT_TRUE(hook_jeeves_spatial_exp(fitter).converged);
    double const next = uniform();
    seed_one();
    for (int draw = 0; draw < 40; ++draw) {
        uniform();
    }
    EXPECT_EQ(uniform(), next);
}

TEST(MismatchFit, Theta0NeverExceedsTheta1) {
    CurveScratch scratch;
    std::vector<double> y(30);
    ExpansionParameters equilibrium{6.0, 6.0, 1.0, 0.0};
    sudden_expansion_curve(equilibrium, y, scratch);
    ExpansionFitter fitter(ExpansionModel::sudden, y);
    SearchOutcome const fit = hook_jeeves_rh(fitter, {4.0, 4.5, 3.0, 0.0});
    EXPECT_LE(fit.best.theta0, fit.best.theta1);
    EXPECT_GT(fit.best.theta0, 4.5) << "theta0 has pushed theta1";
}

TEST(MismatchFit, APoolThatNeverReachesFiveIsDropped) {
    MismatchReference r;
    r.counts = {20.0, 3.0, 30.0, 2.5, 4.0, 0.5};  // 3 and 2.5 are a pool of 5.5, 4 and 0.5 remain below 5
    r.last_class = 5;
    MismatchFit const fit = mismatch_fit(std::vector<std::int64_t>{20, 3, 30, 2, 40, 7}, r);
    EXPECT_EQ(fit.df, 1);
    EXPECT_NEAR(fit.chi_square, 0.25 / 5.5, 1e-12);
}

TEST(MismatchFit, ReturnsTheParametersOfAMadeCurve) {
    CurveScratch scratch;
    std::vector<double> y(40);
    ExpansionParameters truth{0.5, 40.0, 6.0, 0.0};
    sudden_expansion_curve(truth, y, scratch);
    ExpansionFitter fitter(ExpansionModel::sudden, y);
    SearchOutcome const fit = hook_jeeves_rh(fitter, {1.0, 5.0, 3.0, 0.0});
    EXPECT_NEAR(fit.best.tau, 6.0, 0.05);
    EXPECT_NEAR(fit.best.theta1, 40.0, 2.0);
    EXPECT_NEAR(fit.best.theta0, 0.5, 0.05);
}

TEST(MismatchFit, AZeroDeviationAtTheStartStillShrinksTheSteps) {
    CurveScratch scratch;
    std::vector<double> y(20);
    ExpansionParameters start{1.0, 5.0, 3.0, 0.0};
    sudden_expansion_curve(start, y, scratch);
    ExpansionFitter fitter(ExpansionModel::sudden, y);
    SearchOutcome const fit = hook_jeeves_rh(fitter, start);
    EXPECT_EQ(fit.ssd, 0.0);
    EXPECT_TRUE(fit.converged);
    EXPECT_GT(fit.steps, 5);
    EXPECT_EQ(fit.best.theta1, 5.0);
}

TEST(MismatchFit, RaggednessOfTheFitEqualsThatOfTheCounts) {
    std::vector<double> y = frequencies();
    EXPECT_NEAR(raggedness_index(y), 0.0044427357, 5e-11);
}
