// The zipper EM, its orders of loci, and the task of haplotype frequencies with its reports.
#include "inference/beyond_em.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

#include "diversity/popgen.h"
#include "inference/em_report.h"
#include "inference/formula/em_terms.h"
#include "output/html_out.h"
#include "output/xml.h"
#include "unit/inference/em_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

// A sample of the class that runs the task, with its document.
struct TaskSample {
    explicit TaskSample(std::initializer_list<ModelData::Entry> entries) {
        sample.alleles = &data.db;
        set.reset_initial_values();
        set.InitialConditionsEM = 3;
        set.ComputeAllHaplotypesEM = 1;
        data.fill(sample.phenotypes, entries);
        sample.set_sample_size(2.0 * sample.phenotypes.nb_individuals());
        set.set_ofs(&document);
    }
    std::string run() {
        document.str("");
        result = sample.comp_gam_phase_EM(set);
        return document.str();
    }

    ModelData data;
    settings set;
    PopGenetics sample;
    std::ostringstream document;
    int result = 1;
};

bool contains(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

int count_of(std::string const& text, std::string const& part) {
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}

int window_size(ZipperResult const& result) {
    return static_cast<int>(std::count(result.in_window.begin(), result.in_window.end(), 1));
}

}  // namespace

// --- Orders ---

TEST(ZipperOrder, NaturalOrderSpendsNoDraw) {
    FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(zipper_order(4, false), (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(draws_since(before), 0);
    EXPECT_TRUE(zipper_order(0, true).empty());
    EXPECT_EQ(zipper_order(1, true), std::vector<int>{0});
}

TEST(ZipperOrder, ARandomOrderIsOneCycleThroughAllLoci) {
    FreshProcess fresh;
    std::set<std::vector<int>> seen;
    for (int i = 0; i < 200; ++i) {
        Ran3State const before = random_state.ran3;
        std::vector<int> const order = zipper_order(5, true);
        ASSERT_EQ(draws_since(before), 4);
        int length = 0;
        int at = 0;
        do {
            at = order[static_cast<std::size_t>(at)];
            ++length;
        } while (at != 0 && length < 10);
        ASSERT_EQ(length, 5);
        seen.insert(order);
    }
    EXPECT_EQ(seen.size(), 24U);  // all (5 - 1)! cycles
}

TEST(ZipperOrder, FollowsTheDraws) {
    FreshProcess fresh;
    // Numbers 2, 3, 4 of the sequence: 0.715119168, 0.033021107, 0.874393600 -> j = 2, 0, 0.
    std::vector<int> expected = {0, 1, 2, 3};
    std::swap(expected[3], expected[2]);
    std::swap(expected[2], expected[0]);
    std::swap(expected[1], expected[0]);
    EXPECT_EQ(zipper_order(4, true), expected);
}

// --- Zipper ---

TEST(Zipper, LociBehindTheLastFullWindowStayOut) {
    EmSample s({{"ABCDE", "abcde", 4}, {"ABCDE", "ABCDE", 5}, {"abcde", "abcde", 3}});
    s.set.EMWinSize = 2;
    ZipperResult const result = run_zipper(s.sample, s.sample.phenotypes, s.set);
    EXPECT_EQ(result.window, 2);
    EXPECT_EQ(result.orders, 1);
    EXPECT_EQ(result.order, (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(result.in_window, (std::vector<int>{1, 1, 1, 1, 0}));
    EXPECT_EQ(result.stage.list->num_loci(), 4);
    EXPECT_NEAR(result.stage.ln_likelihood, 4 * std::log(2 * 14.0 / 24 * 10 / 24) + 10 * std::log(14.0 / 24) +
                                                6 * std::log(10.0 / 24), 1e-5);
}

TEST(Zipper, AWindowOfAllLociIsTheOnePassEstimation) {
    EmSample zipped(four_loci);
    zipped.set.EMWinSize = 99;
    ZipperResult const result = run_zipper(zipped.sample, zipped.sample.phenotypes, zipped.set);
    EXPECT_EQ(result.window, 4);
    EmSample plain(four_loci);
    EXPECT_EQ(plain.estimate(3), result.stage.ln_likelihood);
    EXPECT_EQ(texts(plain.sample.pool), texts(*result.stage.pool));
    for (std::size_t h = 0; h < plain.sample.pool.view().size(); ++h) {
        EXPECT_EQ(plain.sample.pool.view()[h]->freq(), result.stage.pool->view()[h]->freq());
    }
}

TEST(Zipper, StagesOfOneLocusReachTheMaximumOfTheOnePassEstimation) {
    // Haplotypes known from homozygotes: every stage finds them, so that the last one is the estimation in one pass.
    std::initializer_list<ModelData::Entry> const entries = {{"ABCDE", "ABCDE", 9}, {"abcde", "abcde", 7},
                                                             {"ABCDE", "abcde", 8}, {"AbCdE", "AbCdE", 4},
                                                             {"ABCDE", "AbCdE", 3}};
    EmSample plain(entries);
    double const lnL = plain.estimate(5);
    EmSample zipped(entries);
    zipped.set.EMWinSize = 1;
    ZipperResult const result = run_zipper(zipped.sample, zipped.sample.phenotypes, zipped.set);
    EXPECT_NEAR(result.stage.ln_likelihood, lnL, 1e-4);
    EXPECT_LE(result.stage.pool->nb_haplotypes(), plain.sample.pool.nb_haplotypes());
}

TEST(Zipper, AWindowBelowOneCountsAsOne) {
    EmSample s(two_loci);
    s.set.EMWinSize = 0;
    EXPECT_EQ(run_zipper(s.sample, s.sample.phenotypes, s.set).window, 1);
}

TEST(Zipper, EveryStageEstimatesInbreedingAnew) {
    EmSample s(four_loci);
    s.set.EMWinSize = 2;
    s.set.EMEstimateInbreedingCoeff = 1;
    ZipperResult const estimated = run_zipper(s.sample, s.sample.phenotypes, s.set);
    EXPECT_NEAR(estimated.stage.list->F, 0.3046970358, 1e-4);  // that of all four loci at once
    s.set.EMInbreedingFixedVal = 0.2;
    EXPECT_EQ(run_zipper(s.sample, s.sample.phenotypes, s.set).stage.list->F, 0.2);
}

TEST(Zipper, KeepsTheBestOfItsRandomOrders) {
    EmSample s(four_loci);
    s.set.EMWinSize = 3;
    s.set.EMNumZipRandOrders = 6;
    Ran3State const start = random_state.ran3;
    ZipperResult const best = run_zipper(s.sample, s.sample.phenotypes, s.set);
    EXPECT_EQ(best.orders, 6);
    EXPECT_EQ(window_size(best), 3);
    // Six single orders from the same draws: the best of them is the first of the highest likelihood.
    random_state.ran3 = start;
    s.set.EMNumZipRandOrders = 1;
    double highest = -1e300;
    std::vector<int> order;
    for (int o = 0; o < 6; ++o) {
        ZipperResult const one = run_zipper(s.sample, s.sample.phenotypes, s.set);
        if (one.stage.ln_likelihood > highest) {
            highest = one.stage.ln_likelihood;
            order = one.order;
        }
    }
    EXPECT_EQ(best.stage.ln_likelihood, highest);
    EXPECT_EQ(best.order, order);
}

TEST(Zipper, LeavesTheSamplesListAlone) {
    EmSample s(four_loci);
    s.set.EMWinSize = 2;
    (void)run_zipper(s.sample, s.sample.phenotypes, s.set);
    EXPECT_EQ(s.sample.phenotypes.size(), 8);
    EXPECT_EQ(s.sample.phenotypes.num_loci(), 4);
    EXPECT_EQ(s.sample.phenotypes.phenotype(0).genot_real_count(), 0);
}

TEST(Zipper, AStageOfTooManyGenotypesIsImpossible) {
    // The second individual has 2 heterozygous loci in the first window and 30 in the second one.
    std::string const upper(64, 'A');
    std::string const lower = std::string(2, 'a') + std::string(30, 'A') + std::string(30, 'a') + "AA";
    EmSample s({{upper, upper, 6}, {upper, lower, 1}});
    s.set.EMWinSize = 32;
    ZipperResult const result = run_zipper(s.sample, s.sample.phenotypes, s.set);
    EXPECT_EQ(Reports::codes(), std::vector<int>{114});
    EXPECT_EQ(result.stage.ln_likelihood, impossible_ln_likelihood);
    EXPECT_EQ(result.stage.list->phenotype(1).genot_real_count(), 0);
}

TEST(Zipper, EnumeratesMoreHeterozygousLociThanOnePassCan) {
    // 36 heterozygous loci: too many for one pass, but the stage before has left two haplotypes of the first 35.
    std::string const upper(36, 'A');
    std::string const lower(36, 'a');
    EmSample one_pass({{upper, upper, 6}, {lower, lower, 5}, {upper, lower, 1}});
    EXPECT_EQ(one_pass.estimate(), impossible_ln_likelihood);
    EXPECT_EQ(Reports::codes(), std::vector<int>{114});
    TPopHaploDB previous;
    std::vector<int> flags(36, 1);
    flags[35] = 0;
    previous.insert(one_pass.data.haplotype(std::string(35, 'A')), 0.6);
    previous.insert(one_pass.data.haplotype(std::string(35, 'a')), 0.4);
    double F = 0.0;
    TPopHaploDB pool;
    double const lnL = one_pass.sample.calc_ML_hapl_freq_hill95_LD(one_pass.sample.phenotypes, pool, one_pass.set,
                                                                   one_pass.solutions, 0, F, &previous, flags.data(), 0,
                                                                   3, 1000, 1e-7);
    EXPECT_NEAR(lnL, 12 * std::log(13.0 / 24) + 10 * std::log(11.0 / 24) + std::log(2 * 13.0 / 24 * 11 / 24), 1e-5);
}

TEST(Zipper, AStopLeavesNoResult) {
    EmSample s(two_loci);
    s.set.stop = 1;
    EXPECT_TRUE(run_zipper(s.sample, s.sample.phenotypes, s.set).stopped);
}

// --- The task ---

TEST(HaplotypeFrequencyTask, OnePassReport) {
    TaskSample s(two_loci);
    std::string const text = s.run();
    EXPECT_EQ(s.result, 0);
    EXPECT_TRUE(text.starts_with("\n-------------------------------------\n"
                                 "Conventional EM algorithm  (one pass)\n"
                                 "-------------------------------------\n"
                                 "No. of gene copies in sample                : 60\n"
                                 "No. of random initial conditions for EM     : 3\n"
                                 "No. of different maximum likelihoods found  : 1\n"
                                 "Epsilon value for stopping iterations       : 1e-07\n"
                                 "LogLHood  : -54.83934\n\n"))
        << text;
    EXPECT_TRUE(contains(text, "\nStandard deviations not computed \n"));
    EXPECT_TRUE(contains(text, "    1              0.426650    0.000000\tAB\n"));
    EXPECT_FALSE(contains(text, "Inbreeding coefficient"));
    EXPECT_EQ(count_of(text, "Phenotype #"), 7);
    EXPECT_FALSE(contains(text, "Zipper"));
    EXPECT_FALSE(contains(text, "Allele frequencies"));
}

TEST(HaplotypeFrequencyTask, ASecondRunRepeatsTheFirst) {
    TaskSample s(two_loci);
    Ran3State const start = random_state.ran3;
    std::string const first = s.run();
    random_state.ran3 = start;
    EXPECT_EQ(s.run(), first);
}

TEST(HaplotypeFrequencyTask, InbreedingIsEstimatedAndPrinted) {
    TaskSample s(inbred);
    s.set.EMEstimateInbreedingCoeff = 1;
    EXPECT_TRUE(contains(s.run(), "\nInbreeding coefficient                      : 0.544568\n"));
    EXPECT_EQ(s.set.EMInbreedingFixedVal, 0.0);
}

TEST(HaplotypeFrequencyTask, BootstrapDeviationsStandBesideTheFrequencies) {
    TaskSample s(two_loci);
    s.set.NumBootstrapReplicatesEM = 5;
    s.set.NumInitCondBootstrapEM = 2;
    std::string const text = s.run();
    EXPECT_TRUE(contains(text, "\nNo. of bootstraps for generating s.d.'s      : 5\n"));
    EXPECT_TRUE(contains(text, "    1              0.426650    0.053025\tAB\n"));
    EXPECT_TRUE(
        contains(s.data.process.log(), "\t\tComputing ML haplotype frequencies standard deviations ...\n\t\tdone !"));
}

TEST(HaplotypeFrequencyTask, AllelesAndPairsHangOnTheirOwnKeys) {
    TaskSample s({{"ABC", "abc", 4}, {"ABC", "ABC", 5}, {"abc", "abC", 3}});
    s.set.ComputeAllHaplotypesEM = 0;
    s.set.ComputeAllAllelesEM = 1;
    std::string const alleles = s.run();
    EXPECT_FALSE(contains(alleles, "Conventional"));
    EXPECT_TRUE(alleles.starts_with(" \n \n" + std::string(61, '*') +
                                    " \n\nAllele frequencies : \n\n(0 bootstrap replicates)\n"
                                    "Allele frequencies for the locus 1\n--------------------------------\n\n"
                                    "No. of gene copies in sample                : 24\n"
                                    "No. of random initial conditions for EM     : 3\n"
                                    "No bootstrap confidence interval estimation\n"
                                    "No. of different maximum likelihoods found  : 1\n"
                                    "Epsilon value for stopping iterations       : 1e-07\n"
                                    "Logarithm of the sample maximum-likelihood  : "))
        << alleles;
    EXPECT_EQ(count_of(alleles, "for the locus "), 3);
    s.set.ComputeAllAllelesEM = 0;
    s.set.ComputeAllSubHaplotypesEM = 1;
    std::string const pairs = s.run();
    EXPECT_TRUE(contains(pairs, " \n\nBi-locus ML haplotype frequencies : \n\n(0 bootstrap replicates)\n"));
    std::size_t at = 0;
    for (char const* const head : {"pair of loci( 2 , 1 )\n---------------------------------------\n",
                                   "pair of loci( 3 , 1 )\n", "pair of loci( 3 , 2 )\n"}) {
        std::size_t const found = pairs.find(head, at);
        ASSERT_NE(found, std::string::npos) << head;
        at = found;
    }
    EXPECT_EQ(count_of(pairs, "for the pair of loci( "), 3);
}

TEST(HaplotypeFrequencyTask, ZipperReport) {
    TaskSample s({{"ABCDE", "abcde", 4}, {"ABCDE", "ABCDE", 5}, {"abcde", "abcde", 3}});
    s.set.EMUseZipper = 1;
    s.set.EMWinSize = 2;
    std::string const text = s.run();
    EXPECT_EQ(s.sample.phenotypes.size(), 12);  // an entry an individual
    EXPECT_TRUE(text.starts_with("\n----------------------------------\n"
                                 "Zipper version of the EM algorithm\n"
                                 "----------------------------------\n"
                                 "No. of gene copies in sample                : 24\n"
                                 "No. of random initial conditions for EM     : 3\n"
                                 "No. of different maximum likelihoods found  : 1\n"
                                 "Epsilon value for stopping iterations       : 1e-07\n"
                                 "\nWindow size for zipper EM                   : 2\n"
                                 "Number or loci order                        : 1\n"
                                 "Loci within window                          : 1 2 3 4 \n"
                                 "LogLhood  : "))
        << text;
    EXPECT_TRUE(contains(text, "\n//------------------------------------------------------\n\n"));
    EXPECT_FALSE(contains(text, "Conventional"));
    EXPECT_EQ(count_of(text, "Phenotype #"), 12);
    s.set.ComputeAllAllelesEM = 1;
    EXPECT_TRUE(contains(s.run(), "Conventional EM algorithm  (one pass)\n"));
}

TEST(HaplotypeFrequencyTask, AnImpossibleSampleIsReportedAsSuch) {
    TaskSample s({{std::string(33, 'A'), std::string(33, 'a'), 1}, {std::string(33, 'A'), std::string(33, 'A'), 3}});
    std::string const text = s.run();
    EXPECT_EQ(s.result, 0);
    EXPECT_TRUE(contains(text, "LogLHood  : -340282346638528859811704183484516925440.00000\n"));
    EXPECT_TRUE(contains(text, "\nGenotypes are undefined for this phenotype...\n"));
}

TEST(HaplotypeFrequencyTask, NoIndividualsPrintNothing) {
    TaskSample s({});
    EXPECT_EQ(s.run(), "");
    EXPECT_EQ(s.result, 0);
}

TEST(HaplotypeFrequencyTask, AStopEndsIt) {
    TaskSample s(two_loci);
    s.set.stop = 1;
    EXPECT_EQ(s.run(), "");
    EXPECT_EQ(s.result, -1000);
    s.set.EMUseZipper = 1;
    EXPECT_EQ(s.run(), "");
    EXPECT_EQ(s.result, -1000);
}

TEST(HaplotypeFrequencyTask, CompactingLeavesPolymorphicLoci) {
    TaskSample s({{"AXB", "AXB", 3}, {"AXB", "aXb", 4}, {"aXb", "aXb", 2}});
    s.set.CompactHaplotypeDataBaseEM = 1;
    std::string const text = s.run();
    EXPECT_EQ(texts(s.sample.pool), (std::vector<std::string>{"AB", "ab", "aB", "Ab"}));
    EXPECT_TRUE(contains(text, "\tAXB\n"));  // the table shows all loci
}

// --- Known haplotypes ---

TEST(KnownHaplotypes, FrequenciesAndDeviationsByCount) {
    TaskSample s({});
    HaploDef first("h1");
    HaploDef second("h2");
    first.Add(s.data.db.insert_allele(0, "C", 0.0));
    second.Add(s.data.db.insert_allele(0, "A", 0.0));
    s.sample.haplotypes.Add(new PHaploDef(&first, 3));
    s.sample.haplotypes.Add(new PHaploDef(&second, 7));
    s.sample.profile.LocusSeparator = '\0';
    s.sample.calc_hapl_dat_hapl_freq(s.set);
    std::string const text = s.document.str();
    EXPECT_TRUE(text.starts_with("\nNo. of gene copies in sample                : 10\n")) << text;
    // sqrt(0.21 / 9)
    EXPECT_TRUE(contains(text, "    1          h2  0.700000    0.152753\tA\n")) << text;
    EXPECT_TRUE(contains(text, "    2          h1  0.300000    0.152753\tC\n")) << text;
}

TEST(KnownHaplotypes, WithoutAllelesEveryNameStaysALineOfItsOwn) {
    TaskSample s({});
    HaploDef first("alpha");
    HaploDef second("beta");
    s.sample.haplotypes.Add(new PHaploDef(&first, 1));
    s.sample.haplotypes.Add(new PHaploDef(&second, 1));
    s.sample.calc_hapl_dat_hapl_freq(s.set);
    EXPECT_TRUE(contains(s.document.str(), "alpha  0.500000    0.500000\t\n")) << s.document.str();
    EXPECT_TRUE(contains(s.document.str(), " beta  0.500000    0.500000\t\n"));
}

TEST(KnownHaplotypes, OneCopyHasNoDeviationAndNoCopiesNoRow) {
    TaskSample s({});
    HaploDef only("only");
    s.sample.haplotypes.Add(new PHaploDef(&only, 1));
    s.sample.calc_hapl_dat_hapl_freq(s.set);
    EXPECT_TRUE(contains(s.document.str(), "only  1.000000    0.000000\t\n"));
    s.sample.haplotypes.Flush();
    s.document.str("");
    s.sample.calc_hapl_dat_hapl_freq(s.set);
    EXPECT_TRUE(contains(s.document.str(), "No. of gene copies in sample                : 0\n"));
}
