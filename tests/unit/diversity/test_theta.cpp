// Theta estimators, their limits, and Ewens' probabilities, against reference values.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "base/bnum.h"
#include "diversity/formula/heterozygosity.h"
#include "diversity/formula/mean_differences.h"
#include "diversity/formula/theta.h"
#include "diversity/popsta.h"

namespace tov {
namespace {

void expect_digits(double value, double wanted, double relative = 1e-9) {
    EXPECT_NEAR(value, wanted, std::fabs(wanted) * relative) << "wanted " << wanted;
}

BnumMat table(int n, int k) {
    BnumMat B;
    EXPECT_EQ(B.re_allocate_matrix(n, k), 1);
    return B;
}

TEST(ThetaS, GivesTheReferenceValues) {
    expect_digits(theta_from_sites(20, 10).value, 2.818696118);
    expect_digits(theta_from_sites(20, 10).sd, 1.264173217);
    expect_digits(theta_from_sites(10, 5).value, 1.767428812);
    expect_digits(theta_from_sites(10, 5).sd, 1.01389845);
    expect_digits(theta_from_sites(50, 25).value, 5.581347161);
    expect_digits(theta_from_sites(50, 25).sd, 1.867186313);
}

TEST(ThetaS, WithoutSegregatingSitesIsZero) {
    EXPECT_EQ(theta_from_sites(20, 0).value, 0.0);
    EXPECT_EQ(theta_from_sites(20, 0).sd, 0.0);
}

TEST(ThetaS, OfTwoCopiesIsTheNumberOfSites) {
    EXPECT_EQ(theta_from_sites(2, 3).value, 3.0);
    EXPECT_EQ(theta_from_sites(1, 3).value, 0.0);
    EXPECT_EQ(theta_from_sites(0, 3).sd, 0.0);
}

struct PiCase {
    double n, pi, theta_sd, pi_sd, standard_sd, diversity_sd;
};

TEST(ThetaPi, AndPiHaveTheReferenceDeviations) {
    for (PiCase const& c : {PiCase{20, 2.5, 1.570702156, 1.406359876, 1.401042354, .01570702156},
                            PiCase{10, 2.2, 1.49890495, 1.325368747, 1.315314546, .0149890495},
                            PiCase{50, 3, 1.767738091, 1.592902952, 1.590511388, .01767738091}}) {
        EXPECT_EQ(theta_from_differences(c.n, c.pi).value, c.pi);
        expect_digits(theta_from_differences(c.n, c.pi).sd, c.theta_sd);
        double const sum = c.pi * 0.5 * c.n * (c.n - 1);
        expect_digits(mean_pairwise_differences(sum, c.n, VarianceRoot::guarded).sd, c.pi_sd);
        expect_digits(mean_pairwise_differences(sum, c.n, VarianceRoot::plain, 1.1).sd, c.standard_sd);
        expect_digits(nucleotide_diversity(c.pi, c.n, 100, VarianceRoot::guarded).sd, c.diversity_sd);
    }
}

TEST(ThetaPi, OfFewerThanTwoCopiesIsZero) {
    EXPECT_EQ(theta_from_differences(1, 2.0).value, 0.0);
    EXPECT_EQ(theta_from_differences(1, 2.0).sd, 0.0);
    EXPECT_EQ(mean_pairwise_differences(5, 1, VarianceRoot::guarded).mean, 0.0);
    EXPECT_EQ(nucleotide_diversity(5, 10, 0, VarianceRoot::guarded).mean, 0.0);
}

struct HomCase {
    std::vector<double> counts;
    double F, het, sd_het, theta, sd;
};

TEST(ThetaHom, GivesTheReferenceValues) {
    std::vector<double> many(33, 1.0);
    for (std::size_t i = 0; i < 5; ++i) {
        many[i] = i < 2 ? 3.0 : 2.0;
    }
    for (HomCase const& c : {HomCase{{5, 3, 2}, .38, .6888888889, .1038374799, 1.689129534, .8569834461},
                             HomCase{{10, 4, 3, 2, 1}, .325, .7105263158, .08481791643, 1.882127462, .8175846008},
                             HomCase{many, .03625, .9884615385, .008839174713, 83.75833921, 66.32236016}}) {
        double n = 0;
        for (double const x : c.counts) {
            n += x;
        }
        FrequencySums const sums = frequency_sums(c.counts, n);
        expect_digits(sums.squares, c.F);
        GeneDiversity const d = gene_diversity(n, static_cast<double>(c.counts.size()), sums.squares);
        expect_digits(d.heterozygosity, c.het);
        double const sd = gene_diversity_sd(n, sums);
        expect_digits(sd, c.sd_het);
        ThetaEstimate const theta = theta_from_homozygosity(d.homozygosity, sd);
        expect_digits(theta.value, c.theta);
        expect_digits(theta.sd, c.sd);
    }
}

TEST(ThetaHom, IsZeroForOneAlleleAndInfiniteWithoutHomozygosity) {
    EXPECT_EQ(theta_from_homozygosity(1.0, 0.1).value, 0.0);
    EXPECT_EQ(theta_from_homozygosity(1.0, 0.1).sd, 0.0);
    EXPECT_EQ(theta_from_homozygosity(0.0, 0.1).value, theta_infinite);
    EXPECT_EQ(theta_from_homozygosity(-0.1, 0.1).sd, theta_infinite);
}

TEST(GeneDiversity, OfDistinctCopiesIsOneAndOfOneCopyZero) {
    EXPECT_EQ(gene_diversity(10, 10, 0.1).heterozygosity, 1.0);
    EXPECT_EQ(gene_diversity(10, 10, 0.1).homozygosity, 0.0);
    std::vector<double> const one = {1.0};
    EXPECT_EQ(frequency_sums(one, 1).squares, 1.0);
    EXPECT_EQ(gene_diversity(1, 1, 1.0).heterozygosity, 0.0);
    EXPECT_EQ(gene_diversity(1, 1, 1.0).homozygosity, 1.0);
    EXPECT_EQ(gene_diversity_sd(1, frequency_sums(one, 1)), 0.0);
    EXPECT_EQ(frequency_sums({}, 10).squares, 0.0);
}

TEST(GeneDiversity, TakesCountsBelowOneAsFrequencies) {
    std::vector<double> const relative = {0.5, 0.3, 0.2};
    EXPECT_DOUBLE_EQ(frequency_sums(relative, 100).squares, 0.38);
}

TEST(PhenotypeHeterozygosity, IsObservedAndExpectedShare) {
    std::vector<double> const copies = {5, 3};  // two homozygotes of the first, one each of the others
    PhenotypeHeterozygosity const r = phenotype_heterozygosity(1, 3, copies);
    EXPECT_DOUBLE_EQ(r.observed, 0.25);
    EXPECT_DOUBLE_EQ(r.expected, 8.0 * (1.0 - 34.0 / 64.0) / 7.0);
    EXPECT_EQ(phenotype_heterozygosity(0, 0, {}).expected, 0.0);
}

TEST(ExpectedAlleles, GivesTheReferenceValues) {
    expect_digits(expected_alleles(2.5, 20), 5.969929674);
    expect_digits(expected_alleles(3, 50), 9.114131852);
    expect_digits(expected_alleles(.5, 10), 2.13325553);
    EXPECT_EQ(expected_alleles(0, 10), 1.0);
    EXPECT_EQ(expected_alleles(-1, 10), 1.0);
}

TEST(EwensProbabilities, GiveTheReferenceValues) {
    BnumMat const B = table(200, 80);
    struct Case {
        int k, n;
        double theta, exact, fewer, at_most;
    };
    for (Case const& c : {Case{5, 20, 1.5, .2255152545, .5196680272, .7451832817},
                          Case{12, 50, 4, .1353370497, .6046531235, .7399901732},
                          Case{3, 10, .5, .2292636844, .6851658696, .9144295539}}) {
        expect_digits(probability_exactly_alleles(B, c.k, c.n, c.theta), c.exact);
        expect_digits(probability_fewer_alleles(B, c.k, c.n, c.theta), c.fewer);
        expect_digits(probability_at_most_alleles(B, c.k, c.n, c.theta), c.at_most);
    }
}

TEST(EwensProbabilities, StayRightWhereTheFactorsAloneOverflow) {
    BnumMat const B = table(1310, 490);
    expect_digits(probability_fewer_alleles(B, 480, 1300, 280), .3677715987, 1e-7);
}

TEST(EwensProbabilities, HaveTheirLimits) {
    BnumMat const B = table(20, 20);
    EXPECT_EQ(probability_fewer_alleles(B, 5, 10, 10001.0), 0.0);
    EXPECT_EQ(probability_exactly_alleles(B, 5, 10, 10001.0), 0.0);
    EXPECT_EQ(probability_exactly_alleles(B, 1, 10, 0.0), 1.0);
    EXPECT_EQ(probability_exactly_alleles(B, 2, 10, 0.0), 0.0);
    EXPECT_EQ(probability_exactly_alleles(B, 10, 10, 1.0), 0.0);
    double sum = 0.0;
    for (int k = 1; k < 10; ++k) {
        sum += probability_exactly_alleles(B, k, 10, 2.0);
    }
    EXPECT_NEAR(sum, probability_fewer_alleles(B, 10, 10, 2.0), 1e-9);
}

TEST(ThetaK, GivesTheReferenceValues) {
    BnumMat const B = table(200, 80);
    struct Case {
        int n, k;
        double theta, low, high;
    };
    for (Case const& c :
         {Case{20, 5, 1.804668786, .6512423697, 4.676555009}, Case{50, 12, 4.693605547, 2.382350193, 8.906617267}}) {
        double const theta = theta_from_alleles(c.n, c.k);
        EXPECT_NEAR(theta, c.theta, 1.01e-7);
        ThetaLimits const limits = theta_k_limits(B, c.n, c.k, theta, 0.05);
        EXPECT_NEAR(limits.low, c.low, 2e-7);
        EXPECT_NEAR(limits.high, c.high, 2e-7);
        EXPECT_NEAR(expected_alleles(theta, c.n), c.k, 1e-6);
        EXPECT_NEAR(probability_fewer_alleles(B, c.k, c.n, limits.high), 0.025, 1e-7);
        EXPECT_NEAR(probability_at_most_alleles(B, c.k, c.n, limits.low), 0.975, 1e-7);
    }
}

TEST(ThetaK, OfFewerThanTwoAllelesIsZero) {
    EXPECT_EQ(theta_from_alleles(10, 1), 0.0);
    EXPECT_EQ(theta_from_alleles(10, 0), 0.0);
}

TEST(ThetaK, WithAllCopiesDistinctIsInfinite) { EXPECT_EQ(theta_from_alleles(10, 10), theta_infinite); }

TEST(ThetaK, LimitsFallBackWhenTheTableOverflows) {
    BnumMat const B = table(2000, 900);
    ThetaLimits const limits = theta_k_limits(B, 1990, 880, theta_from_alleles(1990, 880), 0.05);
    EXPECT_EQ(limits.low, 0.0);
    EXPECT_EQ(limits.high, 1e8);
}

// --- The same of samples ---

// Unsigned Stirling numbers of the first kind, n = 4: 6 11 6 1; n = 5: 24 50 35 10 1. P(k) is the k-th times theta^k
// over theta (theta + 1) ... (theta + n - 1).

TEST(EwensProbabilitiesOfASample, OfAtMostKAllelesIsThePolynomialOfStirlingNumbers) {
    ASSERT_TRUE(PopGenetics::extend_B_num_mat(5, 5));
    for (double const t : {0.3, 1.0, 4.0}) {
        EXPECT_NEAR(PopGenetics::proba_less_or_k(2, 4, t), (6 + 11 * t) / ((t + 1) * (t + 2) * (t + 3)), 1e-12) << t;
        EXPECT_NEAR(PopGenetics::proba_less_or_k(3, 5, t),
                    (24 + 50 * t + 35 * t * t) / ((t + 1) * (t + 2) * (t + 3) * (t + 4)), 1e-12)
            << t;
    }
}

TEST(ChakrabortyOfASample, IsTheProbabilityOfAsManyAllelesOrMore) {
    PopulStandard pop;
    pop.set_sample_size(5);
    ASSERT_TRUE(PopGenetics::extend_B_num_mat(5, 5));
    auto const three_or_more = [](double t) {
        return t * t * (35 + 10 * t + t * t) / ((t + 1) * (t + 2) * (t + 3) * (t + 4));
    };
    for (double const t : {0.3, 1.0, 4.0}) {
        EXPECT_NEAR(pop.calc_p_chakraborty_test(3, t), three_or_more(t), 1e-12) << t;
    }
    // By the sample's own alleles and its theta.
    HaploDef a(my_string("a"), my_string("0"));
    HaploDef b(my_string("b"), my_string("1"));
    HaploDef c(my_string("c"), my_string("2"));
    pop.haplotypes.Add(new PHaploDef(&a, 3));
    pop.haplotypes.Add(new PHaploDef(&b, 1));
    pop.haplotypes.Add(new PHaploDef(&c, 1));
    pop.theta_hom_ = 1.5;
    EXPECT_NEAR(pop.calc_p_chakraborty_test(), three_or_more(1.5), 1e-12);
}

}  // namespace
}  // namespace tov
