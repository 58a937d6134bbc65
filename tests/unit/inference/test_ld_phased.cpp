// Linkage disequilibrium with known phase: chains, coefficients and their text.
#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <sstream>

#include "base/special.h"
#include "base/trimat.h"
#include "diversity/popsta.h"
#include "inference/chain_run.h"
#include "inference/first_seen.h"
#include "inference/formula/ld_coefficients.h"
#include "unit/model/model_fixture.h"

namespace tov::test {
namespace {

/// A sample of haplotypes, one letter a locus.
struct HaplotypeSample {
    struct Entry {
        std::string_view alleles;
        int copies;
    };
    HaplotypeSample(std::initializer_list<Entry> entries) {
        data.process.keep(settings::global_work_done);
        data.process.keep(settings::message);
        data.process.keep(settings::old_message);
        set.reset_initial_values();
        set.set_ofs(&document);
        set.AllowedLevelOfMissingData = 1.0;
        set.MakeExactTestLD = 1;
        set.MarkovChainStepsLD = 10000;
        set.MarkovChainDememorisationStepsLD = 1000;
        sample.alleles = &data.db;
        sample.profile.MissingData = '?';
        int copies = 0;
        for (Entry const& e : entries) {
            HaploDef& h = definitions.emplace_back(my_string(std::string(e.alleles).c_str()));
            for (std::size_t l = 0; l < e.alleles.size(); ++l) {
                h.Add(data.db.insert_allele(static_cast<int>(l), e.alleles.substr(l, 1), e.copies));
            }
            sample.haplotypes.Add(new PHaploDef(&h, e.copies));
            copies += e.copies;
        }
        sample.set_sample_size(copies);
        sample.evaluate_polymorphism(set);
    }
    double single_chain(int first, int second) {
        int loci[] = {first, second};
        return sample.calc_gam_des_prob2(loci, seed, set, steps);
    }
    std::string report() {
        document.str("");
        sample.calc_all_gam_des(document, set.MarkovChainStepsLD, set);
        return document.str();
    }

    ModelData data;
    std::deque<HaploDef> definitions;
    std::ostringstream document;
    settings set;
    PopulStandard sample;
    long seed = 1;
    long steps = -1;
};

std::initializer_list<HaplotypeSample::Entry> const three_by_two = {{"aA", 7}, {"aB", 2}, {"bA", 3},
                                                                    {"bB", 8}, {"cA", 4}, {"cB", 4}};

ContingencyTable counts_of(std::vector<std::vector<int>> const& rows) {
    ContingencyTable t;
    t.shape(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()));
    for (std::size_t r = 0; r < rows.size(); ++r) {
        for (std::size_t c = 0; c < rows[r].size(); ++c) t.at(static_cast<int>(r), static_cast<int>(c)) = rows[r][c];
    }
    return t;
}

// --- Coefficients ---

TEST(LdCoefficients, FollowTheirDefinitions) {
    LdCoefficients const x = ld_coefficients(counts_of({{24, 10}, {0, 25}, {1, 0}}));
    EXPECT_NEAR(x.expected[0], 34.0 * 25.0 / 60.0, 1e-12);
    double const D = 24.0 / 60.0 - 34.0 / 60.0 * 25.0 / 60.0;
    EXPECT_NEAR(x.D[0], D, 1e-15);
    EXPECT_NEAR(x.D[1], -D, 1e-15);
    EXPECT_NEAR(x.Dprime[0], D / (26.0 / 60.0 * 25.0 / 60.0), 1e-14);
    EXPECT_NEAR(x.Dprime[2], -1.0, 1e-14);
    double const variance = 34.0 / 60.0 * 26.0 / 60.0 * 25.0 / 60.0 * 35.0 / 60.0;
    EXPECT_NEAR(x.r[0], D / std::sqrt(variance), 1e-14);
    EXPECT_NEAR(x.chi2[0], D * D * 60.0 / variance, 1e-11);
    EXPECT_EQ(x.chi2_p[4], static_cast<double>(Prob_of_chi_sq(1.0F, static_cast<float>(x.chi2[4]))));
    double Dprime = 0.0;
    double r2 = 0.0;
    double const rows[] = {34.0, 25.0, 1.0};
    double const columns[] = {25.0, 35.0};
    for (std::size_t a = 0; a < 3; ++a) {
        for (std::size_t b = 0; b < 2; ++b) {
            double const weight = rows[a] * columns[b] / 3600.0;
            Dprime += std::abs(x.Dprime[2 * a + b]) * weight;
            r2 += x.r[2 * a + b] * x.r[2 * a + b] * weight;
        }
    }
    EXPECT_NEAR(x.mean_abs_Dprime, Dprime, 1e-14);
    EXPECT_NEAR(x.mean_r2, r2, 1e-14);
    EXPECT_EQ(x.without_Dmax, 0);
}

TEST(LdCoefficients, EquilibriumIsExactlyZero) {
    LdCoefficients const x = ld_coefficients(counts_of({{3, 6}, {5, 10}}));
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(x.D[i], 0.0);
        EXPECT_EQ(x.Dprime[i], 0.0);
        EXPECT_EQ(x.chi2_p[i], 1.0);
    }
}

TEST(LdCoefficients, EmptyTableAndFixedAlleleHaveNoCoefficients) {
    EXPECT_EQ(ld_coefficients(counts_of({{0, 0}, {0, 0}})).mean_r2, 0.0);
    LdCoefficients const fixed = ld_coefficients(counts_of({{4, 5}, {0, 0}}));
    EXPECT_EQ(fixed.without_Dmax, 4);
    EXPECT_EQ(fixed.r[0], 0.0);
}

// --- Chains ---

TEST(LinkageTest, SingleChainReproducesTheReferenceValues) {
    HaplotypeSample x(three_by_two);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(x.single_chain(0, 1), 0.0783168317, 5e-11);
    EXPECT_NEAR(x.set.p_value, 0.0783168317, 5e-11);
    EXPECT_NEAR(x.set.sd_p_value, 0.0023844534, 5e-11);
    EXPECT_EQ(x.steps, 10100);
    EXPECT_EQ(draws_since(before), 67933);
    EXPECT_TRUE(x.sample.table.is_empty());
}

TEST(LinkageTest, TableLeavesOutHaplotypesWithMissingData) {
    HaplotypeSample x({{"aA", 7}, {"?B", 2}, {"bA", 3}, {"b?", 8}, {"bB", 4}, {"aA", 1}});
    int k[] = {0, 1};
    ASSERT_EQ(x.sample.make_all_table(k), 1);
    EXPECT_EQ(k[0], 2);
    EXPECT_EQ(k[1], 2);
    EXPECT_EQ(x.sample.table.cells, (std::vector<int>{8, 0, 3, 4}));
    EXPECT_EQ(x.sample.monomorphic, 0);
    int outside[] = {0, 2};
    EXPECT_EQ(x.sample.make_all_table(outside), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{60});
}

TEST(LinkageTest, LocusWithOneAlleleGivesOneWithoutAStep) {
    HaplotypeSample x({{"aA", 7}, {"aB", 2}, {"a?", 1}});
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(x.single_chain(0, 1), 1.0);
    EXPECT_EQ(x.steps, 0);
    EXPECT_EQ(x.set.sd_p_value, 0.0);
    EXPECT_EQ(x.sample.monomorphic, 1);
    EXPECT_EQ(settings::global_work_done, 10.0);
    EXPECT_EQ(draws_since(before), 0);
}

TEST(LinkageTest, TableOfTooManyAllelesCountsAsNone) {
    static_assert(table_fits(20000, 20000));
    static_assert(!table_fits(20000, 20001));
    HaplotypeSample x({{"aA", 1}, {"bB", 1}});
    // Each of these haplotypes has an allele of its own at both loci.
    for (int i = 0; i < 20000; ++i) {
        HaploDef& h = x.definitions.emplace_back(my_string(std::to_string(i).c_str()));
        for (int l = 0; l < 2; ++l) h.Add(x.data.db.insert_allele(l, std::to_string(i), 1.0));
        x.sample.haplotypes.Add(new PHaploDef(&h, 1));
    }
    int k[] = {0, 1};
    EXPECT_EQ(x.sample.make_all_table(k), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{155});
    EXPECT_EQ(x.single_chain(0, 1), 1.0);
    EXPECT_EQ(x.steps, 0);
}

TEST(LinkageTest, StepOnTheTableKeepsItsMargins) {
    HaplotypeSample x(three_by_two);
    int k[] = {0, 1};
    x.sample.make_all_table(k);
    for (int s = 0; s < 300; ++s) {
        EXPECT_GT(x.sample.swap_in_table(k, x.seed), 0.0);
        ContingencyTable const& t = x.sample.table;
        ASSERT_EQ(t.at(0, 0) + t.at(0, 1), 9);
        ASSERT_EQ(t.at(0, 0) + t.at(1, 0) + t.at(2, 0), 14);
    }
    int wrong[] = {4, 2};
    EXPECT_EQ(x.sample.swap_in_table(wrong, x.seed), 0.0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{60});
}

TEST(LinkageTest, LongChainIsRestartedInBlocksOfTwentyThousand) {
    HaplotypeSample x(three_by_two);
    int loci[] = {0, 1};
    x.set.MarkovChainStepsLD = 5000;
    x.set.sd_p_value = 0.0;
    double const p = x.sample.calc_gam_des_prob3(loci, x.seed, x.set, x.steps);
    EXPECT_EQ(x.steps, 40000);
    EXPECT_NEAR(p, 0.0768, 0.02);
    EXPECT_EQ(x.set.sd_p_value, 1.0);  // two blocks have no deviation yet
    x.set.MarkovChainStepsLD = 100000;
    x.set.sd_p_value = 0.5;
    x.sample.calc_gam_des_prob3(loci, x.seed, x.set, x.steps);
    EXPECT_EQ(x.steps, 60000);
    EXPECT_LT(x.set.sd_p_value, 0.5);
}

TEST(LinkageTest, ChainIsRestartedBeyondAHundredThousandSteps) {
    HaplotypeSample x(three_by_two);
    x.set.MarkovChainDememorisationStepsLD = 10;
    x.set.MarkovChainStepsLD = 100000;
    EXPECT_NE(x.report().find(" (100172 Steps done)\n"), std::string::npos);
    x.set.MarkovChainStepsLD = 100001;
    EXPECT_NE(x.report().find(" (120000 Steps done)\n"), std::string::npos);
}

TEST(LinkageTest, StopRequestEndsTheChain) {
    HaplotypeSample x(three_by_two);
    x.set.stop = 1;
    EXPECT_EQ(x.single_chain(0, 1), stopped_by_user);
    int loci[] = {0, 1};
    EXPECT_EQ(x.sample.calc_gam_des_prob3(loci, x.seed, x.set, x.steps), stopped_by_user);
    EXPECT_EQ(x.report().find("Pair ("), std::string::npos);
}

// --- Report ---

TEST(LinkageReport, OnePolymorphicSiteIsReported) {
    HaplotypeSample x({{"aA", 7}, {"aB", 2}});
    EXPECT_EQ(x.report(), "");
    EXPECT_EQ(Reports::codes(), std::vector<int>{167});
    HaplotypeSample empty({});
    EXPECT_EQ(empty.report(), "");
    EXPECT_EQ(Reports::codes(), std::vector<int>{108});
}

TEST(LinkageReport, PairsAreSitesFromZeroAndTheLowerComesFirst) {
    HaplotypeSample x({{"axAm", 7}, {"axBm", 2}, {"bxAn", 3}, {"bxBm", 8}});
    x.set.PrintFlagHistogramLD = 0;
    std::string const text = x.report();
    EXPECT_EQ(text.find("Test of linkage disequilibrium for all pairs of loci:\n"
                        "-----------------------------------------------------\n\n"
                        "Exact test using a Markov chain :\nChain length     :10000\nDememorization   :1000"
                        "\nNote: The test is only performed for polymorphic pairs of loci\n\nPair (0, 2) Exact P= "),
              0U);
    std::size_t const second = text.find("\nPair (0, 3) Exact P= ");
    std::size_t const third = text.find("\nPair (2, 3) Exact P= ");
    EXPECT_LT(second, third);
    EXPECT_NE(third, std::string::npos);
    EXPECT_NE(text.find("\nTable of significant linkage disequilibrium (significance level=0.0500):\n\n"),
              std::string::npos);
    EXPECT_NE(text.find("\nNumber of linked loci per polymorphic locus (significance level=0.0500):\n"),
              std::string::npos);
    EXPECT_NE(text.find("\nPercentage of linked loci per locus (significance level=0.0500):\n"), std::string::npos);
    EXPECT_EQ(x.set.PrintFlagHistogramLD, 0);
    EXPECT_EQ(text.find("Loci 0 and 2"), std::string::npos);
}

TEST(LinkageReport, LineOfAPairHoldsItsProbabilityItsDeviationAndItsSteps) {
    HaplotypeSample x(three_by_two);
    EXPECT_NE(x.report().find("\n\nPair (0, 1) Exact P= 0.07832  +-     0.00238 (10100 Steps done)\n\nTable of "),
              std::string::npos);
}

TEST(LinkageReport, SignificanceTableMarksPairsBelowTheLevel) {
    HaplotypeSample x(three_by_two);
    TriMat p(3);
    p(1, 0) = 0.01;
    p(2, 0) = 0.05;
    p(2, 1) = 0.9;
    int loci[] = {0, 4, 11};
    x.set.print_diseq_table(p, 3, loci);
    EXPECT_EQ(x.document.str(),
              "\nTable of significant linkage disequilibrium (significance level=0.0500):\n\n"
              "---------------------\n"
              "Locus  #    0   4  11\n"
              "       0|    \n"
              "       4|   +    \n"
              "      11|   -   -    \n\n");
    x.document.str("");
    x.sample.print_ld_histo(3, loci, p, x.set, x.document);
    EXPECT_EQ(x.document.str(),
              "\nNumber of linked loci per polymorphic locus (significance level=0.0500):\n\n"
              "-------------------------------\n"
              "         |     0|     4|    11|\n"
              "-------------------------------\n"
              "y\\Locus: |     1|     1|     0|   No. of Loci\n"
              "-------------------------------\n"
              "\nPercentage of linked loci per locus (significance level=0.0500):\n\n"
              "-------------------------------------\n"
              "         |       0|       4|      11|\n"
              "-------------------------------------\n"
              "y\\Locus: |   50.00|   50.00|    0.00|   No. of Loci\n"
              "-------------------------------------\n\n");
}

TEST(LinkageReport, CoefficientsArePrintedWithoutTheTest) {
    HaplotypeSample x(three_by_two);
    x.set.MarkovChainStepsLD = 0;
    x.set.ComputeDvalues = 1;
    Ran3State const before = random_state.ran3;
    std::string const text = x.report();
    EXPECT_EQ(draws_since(before), 0);
    EXPECT_EQ(text.find("Exact P="), std::string::npos);
    EXPECT_EQ(text.find("\n--------------------\nLoci 0 and 1\n--------------------\n"
                        "\n  1: Observed contingency table\n"
                        "Locus 0 \\Locus 1         A         B\n"
                        "------------------------------------\n"
                        "               a         7         2\n"
                        "               b         3         8\n"
                        "               c         4         4\n"
                        "  Total number of gametes : 28\n"
                        "\n  2: Expected table\n"
                        "Locus 0 \\Locus 1         A         B\n"
                        "------------------------------------\n"
                        "               a   4.50000   4.50000\n"),
              0U);
    for (char const* const title :
         {"\n 3: Table of disequilibrium values (D=pab-pa*pb) for all two-locus haplotypes\n\n",
          "\n 4: Table of standardized disequilibrium values (D'=D/Dmax)\n",
          "\n 4: Table of standardized disequilibrium values (r2)\n",
          "\n 5: Table of Chi-square values ( Chi2=sqr(D)*n/(pa*(1-pa)*pb*(1-pb)) )\n",
          "\n 6: Table of Chi-square P values (1 d.f.)\n"}) {
        EXPECT_NE(text.find(title), std::string::npos) << title;
    }
}

TEST(LinkageReport, MeansOverPairsAreKeptForTheSummary) {
    HaplotypeSample x({{"aAm", 7}, {"aBn", 2}, {"bAm", 3}, {"bBn", 8}, {"aBm", 5}});
    x.set.ComputeDvalues = 1;
    x.set.MakeExactTestLD = 0;
    x.report();
    x.report();  // begins anew
    EXPECT_EQ(PopGenetics::mean_Dprime.GetItemsInContainer(), 1);
    EXPECT_EQ(PopGenetics::mean_R2.GetItemsInContainer(), 1);
    ASSERT_EQ(PopGenetics::adj_Dprime.GetItemsInContainer(), 2);
    ASSERT_EQ(PopGenetics::adj_R2.GetItemsInContainer(), 2);
    ASSERT_EQ(PopGenetics::flank_Dprime.GetItemsInContainer(), 1);
    ASSERT_EQ(PopGenetics::flank_R2.GetItemsInContainer(), 1);
    LdCoefficients const first = ld_coefficients(counts_of({{7, 7}, {3, 8}}));
    EXPECT_DOUBLE_EQ(PopGenetics::adj_Dprime[0], first.mean_abs_Dprime);
    EXPECT_DOUBLE_EQ(PopGenetics::adj_R2[0], first.mean_r2);
    double const sum = PopGenetics::adj_R2[0] + PopGenetics::adj_R2[1] + PopGenetics::flank_R2[0];
    EXPECT_DOUBLE_EQ(PopGenetics::mean_R2[0], sum / 3.0);
}

TEST(LinkageReport, PairWithoutCoefficientsKeepsItsPlaceInTheSummary) {
    // The second and the third locus are never known together with both alleles of both.
    HaplotypeSample x({{"aA?", 7}, {"bB?", 2}, {"aAm", 3}, {"bAn", 8}});
    x.set.ComputeDvalues = 1;
    x.set.MakeExactTestLD = 0;
    x.report();
    ASSERT_EQ(PopGenetics::adj_Dprime.GetItemsInContainer(), 2);
    EXPECT_GT(PopGenetics::adj_Dprime[0], 0.0);
    EXPECT_EQ(PopGenetics::adj_Dprime[1], -1.0);
    EXPECT_EQ(PopGenetics::adj_R2[1], -1.0);
    ASSERT_EQ(PopGenetics::flank_R2.GetItemsInContainer(), 1);
    EXPECT_DOUBLE_EQ(PopGenetics::mean_R2[0], (PopGenetics::adj_R2[0] + PopGenetics::flank_R2[0]) / 2.0);
}

TEST(LinkageReport, MonomorphicPairPrintsNoTable) {
    HaplotypeSample x({{"aA", 7}, {"aB", 2}});
    double sum_r2 = 0.0;
    double sum_Dprime = 0.0;
    int loci[] = {0, 1};
    EXPECT_EQ(x.sample.calc_d_sd_values(loci, x.set, sum_r2, sum_Dprime, 1, 1), 1);
    EXPECT_EQ(x.document.str(), "");
    EXPECT_TRUE(Reports::codes().empty());
    int outside[] = {0, 7};
    EXPECT_EQ(x.sample.calc_d_sd_values(outside, x.set, sum_r2, sum_Dprime, 1, 1), 1);
    EXPECT_EQ(Reports::codes(), (std::vector<int>{60, 155}));
    EXPECT_EQ(sum_r2, 0.0);
}

TEST(LinkageReport, AlleleNamesAreEscaped) {
    HaplotypeSample x({{"<A", 7}, {"<B", 2}, {"&A", 3}, {"&B", 8}});
    x.set.MakeExactTestLD = 0;
    x.set.ComputeDvalues = 1;
    std::string const text = x.report();
    EXPECT_NE(text.find("               &lt;         7         2\n"), std::string::npos);
    EXPECT_NE(text.find("               &amp;         3         8\n"), std::string::npos);
}

}  // namespace
}  // namespace tov::test
