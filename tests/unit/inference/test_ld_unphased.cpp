// Linkage disequilibrium with unknown phase: reference values, missing and recessive data, and the text.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "base/special.h"
#include "inference/chain_run.h"
#include "unit/inference/em_fixture.h"

namespace tov::test {
namespace {

// 31 individuals without much disequilibrium.
std::initializer_list<ModelData::Entry> const weakly_linked = {
    {"AB", "AB", 4}, {"AB", "ab", 5}, {"ab", "ab", 3}, {"AB", "Ab", 4}, {"AB", "aB", 4},
    {"Ab", "ab", 3}, {"aB", "ab", 3}, {"Ab", "Ab", 2}, {"aB", "aB", 2}};

struct LinkageSample : EmSample {
    explicit LinkageSample(std::initializer_list<ModelData::Entry> entries) : EmSample(entries) {
        data.process.keep(settings::global_work_done);
        data.process.keep(settings::message);
        data.process.keep(settings::old_message);
        set.MakeExactTestLD = 1;
        set.InitialCondEMLD = 2;
        set.set_ofs(&document);
        int const loci = sample.phenotypes.num_loci();
        sample.polym_sites.assign(static_cast<std::size_t>(loci), 1);
        sample.profile.MissingData = '?';
    }
    double test(long permutations = 100, int l1 = 0, int l2 = 1) {
        int loci[] = {2, l1, l2};
        return sample.calc_pairwise_LD(loci, sample.phenotypes, set, steps, chi, lnLD, lnLE, 1000, permutations, 2,
                                       1e-7);
    }
    std::string report(int permutations = 30) {
        document.str("");
        sample.calc_all_link_dis(document, sample.phenotypes, set, permutations, 1, 2, 1e-7);
        return document.str();
    }

    std::ostringstream document;
    long steps = -1;
    double chi = -1.0;
    double lnLD = -1.0;
    double lnLE = -1.0;
};

TEST(GenotypicLinkage, ReproducesTheReferenceValues) {
    LinkageSample x(weakly_linked);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(x.test(), 0.3909090909, 5e-11);
    EXPECT_NEAR(x.lnLD, -65.8600188883, 5e-11);
    EXPECT_NEAR(x.lnLE, -66.2752647842, 5e-11);
    EXPECT_NEAR(x.chi, 0.8304917918, 5e-11);
    EXPECT_NEAR(x.set.p_value, 0.3909090909, 5e-11);
    EXPECT_NEAR(x.set.sd_p_value, 0.0575757576, 5e-11);
    EXPECT_EQ(x.steps, 110);
    EXPECT_EQ(draws_since(before), 7488);
    EXPECT_EQ(x.sample.degrees_of_freedom, 1.0);
    EXPECT_NEAR(Prob_of_chi_sq(1.0F, static_cast<float>(x.chi)), 0.3621304, 1e-6);
}

TEST(GenotypicLinkage, StrongDisequilibriumMayGiveAProbabilityOfZero) {
    LinkageSample x(two_loci);
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(x.test(), 0.0);
    EXPECT_EQ(x.set.sd_p_value, 0.0);
    EXPECT_NEAR(x.lnLD, -54.8393399996, 1e-6);  // two starts
    EXPECT_NEAR(x.lnLE, -63.6361083367, 5e-11);
    EXPECT_NEAR(x.chi, 17.5935366744, 1e-6);
    EXPECT_NEAR(Prob_of_chi_sq(1.0F, static_cast<float>(x.chi)), 2.735164e-05, 1e-10);
    EXPECT_EQ(draws_since(before), 7488);
}

TEST(GenotypicLinkage, AllelesOfTheSampleAreUpdated) {
    LinkageSample x(weakly_linked);
    x.test(4);
    EXPECT_NEAR(x.data.db(0, my_string("A"))->freq() + x.data.db(0, my_string("a"))->freq(), 1.0, 1e-12);
    EXPECT_EQ(x.steps, 6);  // 2 groups of 3
}

TEST(GenotypicLinkage, MonomorphicLocusHasNoTest) {
    LinkageSample x(weakly_linked);
    x.sample.polym_sites[1] = 0;
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(x.test(), 1.0);
    EXPECT_EQ(x.set.p_value, 1.0);
    EXPECT_EQ(x.set.sd_p_value, 0.0);
    EXPECT_EQ(x.lnLD, 0.0);
    EXPECT_EQ(x.lnLE, 0.0);
    EXPECT_EQ(x.steps, 0);
    EXPECT_EQ(draws_since(before), 0);
}

TEST(GenotypicLinkage, WrongNumberOfLociIsReported) {
    LinkageSample x(weakly_linked);
    int loci[] = {3, 0, 1};
    EXPECT_EQ(x.sample.calc_link_dis_prob(loci, x.sample.phenotypes, x.set, x.steps, x.chi, x.lnLD, x.lnLE, 10, 10, 1,
                                          1e-7),
              0.0);
    EXPECT_EQ(x.sample.calc_link_dis_recess(loci, x.sample.phenotypes, x.set, x.steps, x.chi, x.lnLD, x.lnLE, 10, 10,
                                            1, 1e-7),
              0.0);
    EXPECT_EQ(Reports::codes(), (std::vector<int>{118, 118}));
}

TEST(GenotypicLinkage, IndividualsWithMissingDataAreLeftOut) {
    LinkageSample complete(weakly_linked);
    complete.test();
    double const lnLD = complete.lnLD;
    LinkageSample x({{"AB", "AB", 4}, {"?B", "ab", 9}, {"AB", "ab", 5}, {"ab", "ab", 3}, {"AB", "Ab", 4},
                     {"AB", "aB", 4}, {"Ab", "ab", 3}, {"aB", "ab", 3}, {"??", "??", 2}, {"Ab", "Ab", 2},
                     {"aB", "aB", 2}});
    EXPECT_NEAR(x.test(), 0.3909090909, 5e-11);
    EXPECT_NEAR(x.lnLD, lnLD, 1e-11);
    LinkageSample missing({{"?A", "?B", 4}, {"?A", "?A", 3}});
    EXPECT_EQ(missing.test(), 1.0);
    EXPECT_EQ(missing.steps, 0);
}

TEST(GenotypicLinkage, OneIndividualAlwaysTies) {
    LinkageSample x({{"AB", "AB", 2}});
    EXPECT_EQ(x.test(), 1.0);
    EXPECT_EQ(x.steps, 110);
}

// A single individual of unknown phase: all permuted samples look like the observed one, but the likelihoods that the
// EM ends with differ by what is left of its convergence, and equal within 1e-10 is what counts.
TEST(GenotypicLinkage, LikelihoodsOfEqualSamplesTieWhenTheyConvergedEquallyFar) {
    LinkageSample x({{"AB", "ab", 1}});
    EXPECT_NEAR(x.test(), 0.7090909091, 5e-11);
    EXPECT_NEAR(x.set.sd_p_value, 0.0445361771, 5e-11);
    EXPECT_NEAR(x.lnLD, std::log(0.5), 1e-9);
    EXPECT_NEAR(x.lnLE, std::log(0.25), 1e-12);
}

TEST(GenotypicLinkage, MoreIndividualsThanMemoryHoldsEndTheRun) {
    LinkageSample x({{"AB", "ab", 900000000}, {"AB", "AB", 3}});
    EXPECT_THROW(x.test(), ExceptionType);
    EXPECT_EQ(Reports::codes(), std::vector<int>{0});
    EXPECT_EQ(Reports::origins(), std::vector<std::string>{"Population::calc_link_dis_prob()"});
    x.sample.set_recessive_loci(1);
    EXPECT_THROW(x.test(), ExceptionType);
    EXPECT_EQ(Reports::origins().back(), "Population::calc_link_dis_recess()");
}

TEST(GenotypicLinkage, StopRequestEndsTheTest) {
    LinkageSample x(weakly_linked);
    x.set.stop = 1;
    EXPECT_EQ(x.test(), stopped_by_user);
    EXPECT_EQ(x.steps, 0);
    EXPECT_EQ(x.report().find("Pair("), std::string::npos);
}

TEST(GenotypicLinkage, RecessiveSampleIsResampled) {
    auto const recessive = [] {
        auto x = std::make_unique<LinkageSample>(std::initializer_list<ModelData::Entry>{});
        for (int l = 0; l < 2; ++l) x->data.db.insert_allele(l, ".", 0.0);
        x->data.fill(x->sample.phenotypes, {{"AB", "AB", 12}, {"..", "..", 6}, {"A.", "A.", 2}, {".B", ".B", 3}});
        x->sample.polym_sites.assign(2, 1);
        x->sample.set_sample_size(46.0);
        x->sample.set_recessive_loci(1);
        return x;
    };
    auto const first = recessive();
    double const p = first->test();
    EXPECT_GE(p, 0.0);
    EXPECT_LT(p, 0.2);  // strongly linked
    EXPECT_EQ(first->steps, 110);
    EXPECT_EQ(first->sample.degrees_of_freedom, 1.0);
    EXPECT_NE(first->report().find("Resampling test using the EM algorithm (recessive data)\n"), std::string::npos);
    auto const second = recessive();
    EXPECT_EQ(second->test(), p);
    // The same likelihood as the EM of the list itself.
    auto const third = recessive();
    EXPECT_NEAR(third->estimate(2), first->lnLD, 1e-10);
}

// --- All pairs ---

std::initializer_list<ModelData::Entry> const three_loci = {{"ABx", "ABx", 6}, {"abx", "aby", 7}, {"ABy", "abx", 4},
                                                            {"ABy", "ABx", 3}, {"aby", "aby", 2}};

TEST(GenotypicLinkage, ReportShowsEveryPolymorphicPair) {
    LinkageSample x(three_loci);
    x.set.MaximumNumOfIterationsEM = 1000;
    std::string const text = x.report();
    EXPECT_EQ(text.find("Test of linkage disequilibrium for all pairs of loci:\n"
                        "-----------------------------------------------------\n\n"
                        "Permutation test using the EM algorithm\n"
                        "Number of permutations               : 30\n"
                        "Number of initial conditions for EM  : 2\n\n"
                        "Pair(0, 1)\nLnLHood LD : "),
              0U);
    EXPECT_NE(text.find("  LnLHood LE : "), std::string::npos);
    EXPECT_NE(text.find(" (35 permutations done)   \n  Chi-square test value="), std::string::npos);
    EXPECT_NE(text.find(",  1 d.f.)\n\nPair(0, 2)\n"), std::string::npos);
    EXPECT_NE(text.find("\n\nPair(1, 2)\n"), std::string::npos);
    EXPECT_NE(text.find("\nHistogram of the number of linked loci per locus\n"), std::string::npos);
    EXPECT_NE(text.find("\nTable of significant linkage disequilibrium (significance level=0.0500):\n"),
              std::string::npos);
    x.sample.polym_sites[1] = 0;
    std::string const fewer = x.report();
    EXPECT_EQ(fewer.find("Pair(0, 1)"), std::string::npos);
    EXPECT_NE(fewer.find("Pair(0, 2)"), std::string::npos);
}

TEST(GenotypicLinkage, BlockOfAPairHoldsItsLikelihoodsAndBothProbabilities) {
    LinkageSample x(weakly_linked);
    EXPECT_NE(x.report(100).find("\n\nPair(0, 1)\n"
                                 "LnLHood LD : -65.86002  LnLHood LE : -66.27526\n"
                                 "Exact P=  0.39091  +-     0.05758 (110 permutations done)   \n"
                                 "  Chi-square test value=0.83049 (P = 0.36213,  1 d.f.)\n\n"),
              std::string::npos)
        << x.document.str();
}

TEST(GenotypicLinkage, ReportNeedsItsKeyAndPermutations) {
    LinkageSample x(three_loci);
    EXPECT_EQ(x.report(0), "");
    x.set.MakeExactTestLD = 0;
    x.set.PrintFlagHistogramLD = 0;
    EXPECT_EQ(x.report(), "");
    x.set.PrintFlagHistogramLD = 1;
    EXPECT_NE(x.report(), "");
    EXPECT_EQ(x.set.PrintFlagHistogramLD, 1);
}

TEST(GenotypicLinkage, OneLocusOrNoPolymorphicLocusHasNoPairs) {
    LinkageSample one({{"A", "a", 5}, {"A", "A", 3}});
    EXPECT_NE(one.report().find("\nThe permutation test is not possible with only 1 locus\n"), std::string::npos);
    LinkageSample none(three_loci);
    none.sample.polym_sites.assign(3, 0);
    std::string const text = none.report();
    EXPECT_EQ(text.find("Pair("), std::string::npos);
    EXPECT_EQ(text.find("Histogram"), std::string::npos);
}

TEST(GenotypicLinkage, LocusIsFlaggedOnlyWhenLinkedToAllOthers) {
    LinkageSample x(three_loci);
    int selected[] = {7, 7, 7};
    ASSERT_EQ(x.sample.calc_all_pairwise_LDs(x.sample.phenotypes, x.set, selected, 0.0, 0.0, 1000, 30, 2, 1e-7), 1);
    EXPECT_EQ(std::vector<int>(selected, selected + 3), (std::vector<int>{0, 0, 0}));
    ASSERT_EQ(x.sample.calc_all_pairwise_LDs(x.sample.phenotypes, x.set, selected, 1.1, 0.5, 1000, 30, 2, 1e-7), 1);
    EXPECT_EQ(std::vector<int>(selected, selected + 3), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(x.document.str(), "");
    // The first two loci are linked to each other alone: one of two others is not enough.
    LinkageSample half({{"ABx", "ABy", 6}, {"abx", "aby", 7}, {"ABx", "ABx", 2}, {"ABy", "ABy", 2}, {"abx", "abx", 3},
                        {"aby", "aby", 3}});
    ASSERT_EQ(
        half.sample.calc_all_pairwise_LDs(half.sample.phenotypes, half.set, selected, 0.05, 0.0, 1000, 100, 2, 1e-7),
        1);
    EXPECT_EQ(half.test(), 0.0);
    EXPECT_GT(half.test(100, 0, 2), 0.05);
    EXPECT_EQ(std::vector<int>(selected, selected + 3), (std::vector<int>{0, 0, 0}));
    x.set.stop = 1;
    EXPECT_EQ(x.sample.calc_all_pairwise_LDs(x.sample.phenotypes, x.set, selected, 1.1, 0.5, 1000, 30, 2, 1e-7), 0);
}

}  // namespace
}  // namespace tov::test
