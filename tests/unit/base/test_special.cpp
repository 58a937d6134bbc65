// Special functions against reference values, their caches and their reports.
#include <gtest/gtest.h>

#include <cmath>

#include "base/special.h"
#include "support/fresh_process.h"

using namespace tov;
using tov::test::FreshProcess;

namespace {

std::string report(int number, std::string const& where) {
    return "   " + std::to_string(number) + " #[ERROR # " + std::to_string(number) + "] from function \"" + where +
           "\" : numerical error\n";
}

}  // namespace

TEST(Gammln, FollowsTheSixTermSeries) {
    double const expected[][2] = {{0.5, 0.572364942924743},
                                  {3.5, 1.20097360234707},
                                  {10, 12.801827480082},
                                  {101, 363.739375555668},
                                  {1000.5, 5908.67417584886}};
    for (auto const& [x, value] : expected) EXPECT_NEAR(value, gammln(x), 2e-14 * std::fabs(value)) << x;
    EXPECT_EQ(0.0, gammln(1.0));
    EXPECT_NEAR(-4.44089209850063e-16, gammln(2.0), 1e-20) << "the series' own error at 2";
}

TEST(Gammln, AgreesWithTheLibraryToItsPublishedPrecision) {
    for (double x = 0.1; x < 300.0; x *= 1.3) EXPECT_NEAR(std::lgamma(x), gammln(x), 3e-10) << x;
}

TEST(Gammlnl, AgreesWithTheDoubleSeries) {
    for (long double x = 0.5L; x < 500.0L; x += 3.25L) {
        EXPECT_NEAR(gammln(static_cast<double>(x)), static_cast<double>(gammlnl(x)),
                    1e-12 * (1.0 + static_cast<double>(x)));
    }
}

TEST(Factln, FollowsTheReference) {
    FreshProcess fresh;
    double const expected[][2] = {{2, 0.693147180559944},  {3, 1.79175946922805},  {5, 4.78749174278204},
                                  {10, 15.1044125730764},  {20, 42.3356164607651}, {50, 148.477766951832},
                                  {100, 363.739375555668}, {101, 368.35449607251}, {170, 706.573062245921}};
    for (auto const& [n, value] : expected) {
        EXPECT_NEAR(value, factln(static_cast<int>(n)), 2e-14 * value) << n;
        EXPECT_NEAR(value, static_cast<double>(factlnl(static_cast<int>(n))), 1e-12 * value) << n;
    }
}

TEST(Factln, CachesTwoToHundredOnly) {
    FreshProcess fresh;
    EXPECT_EQ(0.0, factln(0));
    EXPECT_EQ(0.0, factln(1));
    EXPECT_EQ(0.0, factorial_caches.factln[0]);
    EXPECT_EQ(0.0, factorial_caches.factln[1]);
    EXPECT_EQ(0.0, factorial_caches.factln[100]);
    double const hundred = factln(100);
    EXPECT_EQ(hundred, factorial_caches.factln[100]);
    factorial_caches.factln[100] = 1.5;
    EXPECT_EQ(1.5, factln(100)) << "the entry is read";
    factorial_caches.factlnl[7] = 2.5L;
    EXPECT_EQ(2.5L, factlnl(7));
    EXPECT_DOUBLE_EQ(gammln(102.0), factln(101));
}

TEST(Factln, NegativeArgumentIsReportedAndGivesZero) {
    FreshProcess fresh;
    EXPECT_EQ(0.0, factln(-1));
    EXPECT_EQ(report(1, "factln(int n) negative factorial: setting it to zero"), fresh.log());
    EXPECT_EQ("", fresh.console());
    EXPECT_EQ(0.0L, factlnl(-1));
    EXPECT_EQ("factlnl(int n) negative factorial: setting it to zero\n", fresh.console());
}

TEST(Factorial, SumsLogarithmsUpToTheIntegerPart) {
    EXPECT_DOUBLE_EQ(std::log(2.0) + std::log(3.0) + std::log(4.0), factorial(4.0F));
    EXPECT_DOUBLE_EQ(std::log(2.0), factorial(2.5F));
    EXPECT_DOUBLE_EQ(std::log(2.0) + std::log(3.0), factorial(2.95F)) << "0.1 is added first";
    EXPECT_EQ(0.0, factorial(1.0F));
    EXPECT_EQ(0.0, factorial(-3.0F));
}

TEST(ProbOfChiSq, FollowsTheReference) {
    FreshProcess fresh;
    struct Row {
        float df, chi2, p;
    };
    Row const rows[] = {{1, 0, 1},
                        {1, 0.5F, 0.4795002F},
                        {1, 3.841459F, 0.04999998F},
                        {2, 1, 0.6065307F},
                        {2, 5.991465F, 0.04999999F},
                        {3, 20, 0.0001697424F},
                        {5, 2, 0.849145F},
                        {10, 18.307F, 0.05000059F},
                        {50, 40, 0.8432274F},
                        {100, 124.3F, 0.05026607F},
                        {1, 100, 1.52397e-23F}};
    for (Row const& row : rows) {
        EXPECT_NEAR(row.p, Prob_of_chi_sq(row.df, row.chi2), 5e-7F * row.p) << row.df << ", " << row.chi2;
    }
    EXPECT_EQ("", fresh.log());
}

TEST(ProbOfChiSq, InvalidArgumentsGiveMinusOne) {
    FreshProcess fresh;
    EXPECT_EQ(-1.0F, Prob_of_chi_sq(0.0F, 3.0F));
    EXPECT_EQ(-1.0F, Prob_of_chi_sq(-2.0F, 3.0F));
    EXPECT_EQ("", fresh.log()) << "no degrees of freedom: silent";
    EXPECT_EQ(-1.0F, Prob_of_chi_sq(3.0F, -0.5F));
    EXPECT_EQ(report(1, "Prob_of_chi_sq()  invalid arguments"), fresh.log());
}

TEST(ProbOfChiSq, TooManyDegreesOfFreedomForTheSeriesGiveMinusOneAndAReport) {
    FreshProcess fresh;
    EXPECT_EQ(-1.0F, Prob_of_chi_sq(4000.0F, 3990.0F));
    EXPECT_EQ(report(1, "gser() a too large, ITMAX too small "), fresh.log());
}

TEST(Gser, NegativeArgumentIsReportedAndGivesZero) {
    FreshProcess fresh;
    float p = 7.0F;
    float gln = 0.0F;
    gser(&p, 2.0F, -1.0F, &gln);
    EXPECT_EQ(0.0F, p);
    EXPECT_EQ(report(1, "gser() x less than 0"), fresh.log());
    p = 7.0F;
    gser(&p, 2.0F, 0.0F, &gln);
    EXPECT_EQ(0.0F, p);
    EXPECT_EQ(report(1, "gser() x less than 0"), fresh.log()) << "zero is silent";
    EXPECT_NEAR(0.0F, gln, 1e-6F);
}

TEST(Gser, WithoutConvergenceTheResultIsLeftAlone) {
    FreshProcess fresh;
    float p = 7.0F;
    float gln = 0.0F;
    gser(&p, 5000.0F, 4990.0F, &gln);
    EXPECT_EQ(7.0F, p);
    EXPECT_EQ(report(1, "gser() a too large, ITMAX too small "), fresh.log());
}

TEST(Gcf, WithoutConvergenceReportsAndGivesWhatItReached) {
    FreshProcess fresh;
    float q = 7.0F;
    float gln = 0.0F;
    gcf(&q, 1e6F, 1000002.0F, &gln);
    EXPECT_NE(7.0F, q);
    EXPECT_EQ(report(1, "gcf() a too large, ITMAX too small in gcf"), fresh.log());
}

TEST(IncompleteGamma, SeriesAndFractionAreComplements) {
    float gln = 0.0F;
    for (float a = 0.5F; a < 20.0F; a += 1.25F) {
        float const x = a + 1.0F;
        float p = 0.0F;
        float q = 0.0F;
        gser(&p, a, x, &gln);
        gcf(&q, a, x, &gln);
        EXPECT_NEAR(1.0F, p + q, 3e-6F) << a;
    }
}

namespace {

float cubic(float x) { return x * x * x - 2.0F; }
float shifted_cosine(float x) { return std::cos(x) - x; }
float above_zero(float x) { return x * x + 1.0F; }

}  // namespace

TEST(Zbrent, FindsBracketedRoots) {
    FreshProcess fresh;
    EXPECT_NEAR(std::cbrt(2.0), zbrent(cubic, 0.0F, 3.0F, 1e-6F), 2e-6);
    EXPECT_NEAR(std::cbrt(2.0), zbrent(cubic, 3.0F, 0.0F, 1e-6F), 2e-6);
    EXPECT_NEAR(0.7390851332, zbrent(shifted_cosine, 0.0F, 1.0F, 1e-6F), 2e-6);
    EXPECT_EQ("", fresh.log());
}

TEST(Zbrent, RootOutsideTheBracketIsReportedAndGivesZero) {
    FreshProcess fresh;
    EXPECT_EQ(0.0F, zbrent(above_zero, -1.0F, 2.0F, 1e-6F));
    EXPECT_EQ(report(1, "zbrent() root must be bracketed in zbrent"), fresh.log());
}

TEST(MyExpl, GoesThroughDoublePrecision) {
    EXPECT_EQ(static_cast<long double>(std::exp(1.25)), my_expl(1.25L));
    EXPECT_EQ(static_cast<long double>(std::sqrt(2.0)), my_sqrtl(2.0L));
    EXPECT_EQ(static_cast<long double>(std::exp(static_cast<double>(0.1L))), my_expl(0.1L));
}
