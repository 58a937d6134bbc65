// The Hardy-Weinberg test of a sample: tables, chains, heterozygosities and their text.
#include <gtest/gtest.h>

#include <sstream>

#include "inference/chain_run.h"
#include "unit/inference/em_fixture.h"

namespace tov::test {
namespace {

// One locus, alleles a, b, c by first appearance: 25 individuals.
std::initializer_list<ModelData::Entry> const three_alleles = {{"a", "a", 5}, {"a", "b", 3}, {"b", "b", 4},
                                                               {"a", "c", 6}, {"b", "c", 2}, {"c", "c", 5}};

struct HardyWeinbergSample : EmSample {
    explicit HardyWeinbergSample(std::initializer_list<ModelData::Entry> entries) : EmSample(entries) {
        set.MakeHWExactTest = 1;
        set.MarkovChainStepsHW = 10000;
        set.MarkovChainDememorisationStepsHW = 1000;
        sample.profile.GameticPhase = 0;
        sample.profile.GenotypicData = 1;
    }
    double single_chain(long chain_steps, int locus = 0) {
        int loci[] = {1, locus};
        double const p = sample.make_hw_test2(chain_steps, stat, set, steps, loci);
        alleles = loci[0];
        return p;
    }
    std::string report() {
        std::ostringstream out;
        sample.make_all_hw(out, sample.phenotypes, set.MarkovChainStepsHW, set);
        return out.str();
    }

    double stat = -1.0;
    long steps = -1;
    int alleles = -1;
};

TEST(HardyWeinbergTest, SingleChainReproducesTheReferenceValues) {
    HardyWeinbergSample x(three_alleles);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(x.single_chain(10000), 0.0460396040, 5e-11);
    EXPECT_NEAR(x.set.p_value, 0.0460396040, 5e-11);
    EXPECT_NEAR(x.set.sd_p_value, 0.0025733149, 5e-11);
    EXPECT_EQ(x.steps, 10100);
    EXPECT_EQ(x.stat, 0.0);
    EXPECT_EQ(x.alleles, 3);
    EXPECT_EQ(draws_since(before), 66484);
    EXPECT_TRUE(x.sample.table.is_empty());
}

TEST(HardyWeinbergTest, LikelihoodRatioStatisticHasItsChiSquareProbability) {
    HardyWeinbergSample x(three_alleles);
    int loci[] = {1, 0};
    double stat = 0.0;
    EXPECT_NEAR(x.sample.make_hw_test1(x.sample.phenotypes, stat, x.set, loci), 0.08875933, 1e-8);
    EXPECT_NEAR(stat, 6.52301276313, 1e-9);
}

TEST(HardyWeinbergTest, TableHoldsEachGenotypeInItsUpperTriangle) {
    HardyWeinbergSample x({{"b", "a", 2}, {"a", "a", 3.9}, {"?", "a", 4}, {"c", "b", 1}});
    int loci[] = {1, 0};
    ASSERT_EQ(x.sample.make_hw_table(loci), 1);
    EXPECT_EQ(loci[0], 3);
    EXPECT_EQ(x.sample.table.cells, (std::vector<int>{0, 2, 1, 0, 3, 0, 0, 0, 0}));
    EXPECT_EQ(x.sample.monomorphic, 0);
    x.sample.clear_table(loci);
    EXPECT_TRUE(x.sample.table.is_empty());
}

TEST(HardyWeinbergTest, LocusOutsideTheDataIsReported) {
    HardyWeinbergSample x(three_alleles);
    int loci[] = {1, 5};
    EXPECT_EQ(x.sample.make_hw_table(loci), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{60});
    EXPECT_EQ(Reports::origins(), std::vector<std::string>{"Population::make_hw_table() "});
    x.set.p_value = 1.0;
    EXPECT_EQ(x.single_chain(100, 5), 1.0);
    EXPECT_EQ(x.steps, 0);
    EXPECT_EQ(x.set.sd_p_value, 0.0);
}

TEST(HardyWeinbergTest, MonomorphicLocusSpendsNoDrawAndCountsItsWork) {
    HardyWeinbergSample x({{"a", "a", 7}});
    x.data.process.keep(settings::global_work_done);
    Ran3State const before = random_state.ran3;
    x.set.p_value = 1.0;
    EXPECT_EQ(x.single_chain(500), 1.0);
    EXPECT_EQ(x.alleles, 0);
    EXPECT_EQ(x.sample.monomorphic, 1);
    EXPECT_EQ(x.set.p_value, 1.0);
    EXPECT_EQ(settings::global_work_done, 500.0);
    EXPECT_EQ(draws_since(before), 0);
}

TEST(HardyWeinbergTest, StepOnTheTableKeepsItsIndividuals) {
    HardyWeinbergSample x(three_alleles);
    int loci[] = {1, 0};
    x.sample.make_hw_table(loci);
    long seed = 1;
    int changed = 0;
    for (int s = 0; s < 200; ++s) {
        std::vector<int> const before = x.sample.table.cells;
        double const ratio = x.sample.swap_in_table2(loci, seed);
        EXPECT_GT(ratio, 0.0);
        if (x.sample.table.cells == before) {
            EXPECT_EQ(ratio, 1.0);
        } else {
            ++changed;
        }
        EXPECT_EQ(x.sample.table.total(), 25);
    }
    EXPECT_GT(changed, 20);
    int wrong[] = {9, 0};
    EXPECT_EQ(x.sample.swap_in_table2(wrong, seed), 1.0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{60});
    EXPECT_EQ(Reports::origins(), std::vector<std::string>{"Population::swap_in_table2()"});
}

TEST(HardyWeinbergTest, HeterozygositiesLeaveOutMissingData) {
    HardyWeinbergSample x({{"a", "b", 3}, {"a", "a", 2}, {"b", "b", 1}, {"?", "b", 5}, {"?", "?", 2}});
    double obs = -1.0;
    double exp = -1.0;
    int n = -1;
    x.sample.compute_locus_heterozygosity(0, obs, exp, n);
    EXPECT_EQ(n, 6);
    EXPECT_DOUBLE_EQ(obs, 0.5);
    EXPECT_DOUBLE_EQ(exp, 12.0 / 11.0 * (1.0 - (49.0 + 25.0) / 144.0));
    HardyWeinbergSample missing({{"?", "?", 2}, {"?", "?", 1}});
    missing.sample.compute_locus_heterozygosity(0, obs, exp, n);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(obs, 0.0);
    EXPECT_EQ(exp, 0.0);
}

TEST(HardyWeinbergTest, ReportHasARowForEachLocus) {
    HardyWeinbergSample x({{"aa?", "aa?", 5}, {"ab?", "aa?", 3}, {"ab?", "ab?", 2}});
    std::string text = x.report();
    std::size_t const at = text.find("0.47895      ");
    ASSERT_NE(at, std::string::npos);
    // Exact: the tables of 13 and 7 copies weigh 1680, 20160 (observed), 40320 and 15360.
    EXPECT_NEAR(std::stod(text.substr(at + 13)), 37200.0 / 77520.0, 0.02);
    EXPECT_LT(std::stod(text.substr(at + 26)), 0.02);
    text.replace(at + 13, 21, "?");
    EXPECT_EQ(text,
              "\nExact test using a Markov chain (for all Loci):"
              "\nForecasted chain length     :10000"
              "\nDememorization steps        :1000\n\n" +
                  std::string(72, '-') +
                  "\nLocus  #Genot       Obs.Het.     Exp.Het.   P-value     s.d.  Steps done\n" +
                  std::string(72, '-') +
                  "\n    1   This locus is monomorphic: no test done."
                  "\n    2          10  0.30000    0.47895      ?   10100"
                  "\n    3   This locus is monomorphic: no test done.\n" +
                  std::string(72, '-') + "\n\n");
}

TEST(HardyWeinbergTest, OneIndividualHasOneTable) {
    HardyWeinbergSample x({{"a", "b", 1}});
    EXPECT_EQ(x.single_chain(100), 1.0);
    EXPECT_EQ(x.steps, 110);
    EXPECT_NE(x.report().find("    1           1  1.00000    1.00000      1.00000       0.00000   10100\n"),
              std::string::npos);
    HardyWeinbergSample homozygote({{"a", "a", 1}});
    EXPECT_NE(homozygote.report().find("monomorphic"), std::string::npos);
}

TEST(HardyWeinbergTest, EmptySamplePrintsTheHeadAlone) {
    HardyWeinbergSample x({});
    std::string const text = x.report();
    EXPECT_NE(text.find("Steps done\n" + std::string(72, '-') + "\n" + std::string(72, '-') + "\n\n"),
              std::string::npos);
}

TEST(HardyWeinbergTest, WithoutTheTestTheRowsAreEmpty) {
    HardyWeinbergSample x(three_alleles);
    x.set.MakeHWExactTest = 0;
    Ran3State const before = random_state.ran3;
    EXPECT_NE(x.report().find(std::string(72, '-') + "\n\n" + std::string(72, '-')), std::string::npos);
    EXPECT_EQ(draws_since(before), 0);
}

TEST(HardyWeinbergTest, StopRequestEndsTheReportWithoutARow) {
    HardyWeinbergSample x({{"aa", "bb", 5}, {"aa", "ab", 3}});
    x.set.stop = 1;
    EXPECT_EQ(x.single_chain(100), stopped_by_user);
    EXPECT_EQ(x.steps, 0);
    std::string const text = x.report();
    EXPECT_EQ(text.substr(text.size() - 7), "\n    1\n");
}

// --- Haplotypes as alleles ---

struct PhasedSample : HardyWeinbergSample {
    PhasedSample() : HardyWeinbergSample({{"ab", "ab", 8}, {"ab", "cd", 3}, {"cd", "cd", 4}, {"cb", "ab", 2}}) {
        sample.profile.GameticPhase = 1;
        set.TypeOfTestHW = 1;
        set.MarkovChainDememorisationStepsHW = 10;
    }
};

TEST(HardyWeinbergTest, WholeHaplotypesCountAsAllelesWhenThePhaseIsKnown) {
    PhasedSample x;
    int loci[] = {1, -1};
    ASSERT_EQ(x.sample.make_hw_table(loci), 1);
    EXPECT_EQ(loci[0], 3);
    EXPECT_EQ(x.sample.table.cells, (std::vector<int>{8, 3, 2, 0, 4, 0, 0, 0, 0}));
    std::string const text = x.report();
    EXPECT_EQ(text.find("(for all Loci)"), std::string::npos);
    EXPECT_NE(text.find("\n\n\n"), std::string::npos);  // an empty line for each locus
    EXPECT_NE(text.find("\nExact test using a Markov chain (for all Haplotypes):"
                        "\nForecasted chain length     :10000"
                        "\nDememorization steps        :10\n\nMarkov Chain test:  P value : "),
              std::string::npos);
    EXPECT_NE(text.find(" (10100 steps done\n"), std::string::npos);
}

TEST(HardyWeinbergTest, BothLevelsFollowEachOther) {
    PhasedSample x;
    x.set.TypeOfTestHW = 2;
    std::string const text = x.report();
    std::size_t const loci = text.find("(for all Loci)");
    ASSERT_NE(loci, std::string::npos);
    EXPECT_GT(text.find("(for all Haplotypes)"), loci);
    x.sample.profile.GameticPhase = 0;
    EXPECT_EQ(x.report().find("(for all Haplotypes)"), std::string::npos);
    x.set.TypeOfTestHW = 1;
    EXPECT_NE(x.report().find("(for all Loci)"), std::string::npos);
}

TEST(HardyWeinbergTest, HaplotypeChainIsRestartedBeyondTwoHundredThousandSteps) {
    PhasedSample x;
    x.set.MarkovChainStepsHW = 200000;
    EXPECT_NE(x.report().find(" (200256 steps done\n"), std::string::npos);  // 447 batches of 448
    x.set.PrecisionOnPValueHW = 2.0;
    EXPECT_NE(x.report().find(" (200256 steps done\n"), std::string::npos);
    x.set.MarkovChainStepsHW = 200001;
    EXPECT_NE(x.report().find(" (1344 steps done\n"), std::string::npos);  // ends after the third batch
    x.set.PrecisionOnPValueHW = 0.0;
    EXPECT_NE(x.report().find(" (200256 steps done\n"), std::string::npos);
}

TEST(HardyWeinbergTest, RestartedChainAgreesWithTheSingleOne) {
    PhasedSample x;
    x.set.MarkovChainDememorisationStepsHW = 500;
    double stat = 0.0;
    long steps = 0;
    int loci[] = {1, -1};
    x.set.sd_p_value = 0.0;
    double const restarted = x.sample.make_hw_test3(300000, stat, x.set, steps, loci);
    EXPECT_EQ(steps, 547 * 549);
    EXPECT_LT(x.set.sd_p_value, 0.01);
    loci[1] = -1;
    EXPECT_NEAR(x.sample.make_hw_test2(300000, stat, x.set, steps, loci), restarted, 0.01);
}

TEST(HardyWeinbergTest, TableOfTooManyHaplotypesCountsAsNone) {
    PhasedSample x;
    x.sample.phenotypes.destroy();
    // 20002 haplotypes of 15 loci with two alleles.
    auto const bits = [](int n) {
        std::string text(15, 'a');
        for (std::size_t b = 0; b < text.size(); ++b) text[b] = n >> b & 1 ? 'b' : 'a';
        return text;
    };
    for (int i = 0; i < 10001; ++i) {
        x.sample.phenotypes.Add(x.data.phenotype(bits(2 * i), bits(2 * i + 1)).release());
    }
    int loci[] = {1, -1};
    EXPECT_EQ(x.sample.make_hw_table(loci), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{155});
    EXPECT_NE(x.report().find("P value :  1.00000 +/-    0.00000 (0 steps done\n"), std::string::npos);
}

TEST(HardyWeinbergTest, OneHaplotypeOnlyHasNoTable) {
    PhasedSample x;
    x.sample.phenotypes.destroy();
    x.data.fill(x.sample.phenotypes, {{"ab", "ab", 8}});
    int loci[] = {1, -1};
    EXPECT_EQ(x.sample.make_hw_table(loci), 1);
    EXPECT_EQ(loci[0], 0);
    EXPECT_EQ(x.sample.monomorphic, 0);
    EXPECT_NE(x.report().find("P value :  1.00000 +/-    0.00000 (0 steps done\n"), std::string::npos);
}

}  // namespace
}  // namespace tov::test
