#include "output/sumstat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "output/sumstat_columns.h"
#include "support/analysed_project.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::AnalysedProject;
using test::ScratchDirectory;

TSumStat choice_of(std::string const& text) {
    TSumStat choice;
    choice.checkForStat(my_string(text.c_str()));
    return choice;
}

std::string dna_text() {
    return test::profile_text("DNA", 2) + "[[Samples]]\n" +
           test::sample_text("North", "4", "h1 2 ACGTACGTAC\nh2 2 ACGTACGTAT\n") +
           test::sample_text("South", "5", "h1 1 ACGTACGTAC\nh3 1 ACTTACGTAC\nh4 3 TCTTACGTAC\n");
}

std::vector<SumStatColumn> columns_of(AnalysedProject& analysed, TSumStat const& choice) {
    for (int i = 0; i < analysed.project.samples.NbPopulations(); ++i) {
        analysed.run(task::standard_indices | task::molecular_diversity, i);
    }
    return sum_stat_columns(choice, {analysed.set, analysed.project.samples});
}

TEST(SumStat, EveryKeywordSetsItsOwnFlag) {
    for (std::string_view const keyword : sum_stat_keywords) {
        EXPECT_TRUE(choice_of(std::string(keyword)).flag(keyword)) << keyword;
    }
    EXPECT_FALSE(choice_of("ALL_K").flag("ALL_H"));
}

TEST(SumStat, CaseDoesNotCountAndACommentEndsTheLine) {
    EXPECT_TRUE(choice_of("mean_k # all_h").flag("MEAN_K"));
    EXPECT_FALSE(choice_of("mean_k # all_h").flag("ALL_H"));
    EXPECT_FALSE(choice_of("#MEAN_K").in_force());
}

TEST(SumStat, AKeywordCountsInsideALongerWord) {
    TSumStat const choice = choice_of("ALLSD_K");
    EXPECT_TRUE(choice.flag("SD_K"));
    EXPECT_FALSE(choice.flag("ALL_K"));
}

TEST(SumStat, ALevelAloneIsNoListAndNoLevelMeansSamples) {
    EXPECT_FALSE(choice_of("GROUP_LEVEL").in_force());
    EXPECT_TRUE(choice_of("ALL_K").in_force());
    EXPECT_TRUE(choice_of("ALL_K").wants_samples());
    EXPECT_FALSE(choice_of("ALL_K").wants_groups());
    EXPECT_FALSE(choice_of("GROUP_LEVEL ALL_K").wants_samples());
    EXPECT_TRUE(choice_of("GROUP_LEVEL POP_LEVEL ALL_K").wants_samples());
}

TEST(SumStat, AMissingDefinitionLeavesNoListInForce) {
    ScratchDirectory const directory;
    TSumStat choice = choice_of("ALL_K");
    choice.readDefSSFile("absent.txt");
    EXPECT_FALSE(choice.in_force());
}

TEST(SumStat, CountsOfSequencesAreThoseOfHaplotypesAndSites) {
    AnalysedProject analysed(dna_text());
    auto const columns = columns_of(analysed, choice_of("ALL_K MEAN_K SD_K TOT_K ALLSD_K ALL_S TOT_S"));
    std::vector<std::pair<std::string, double>> found;
    for (SumStatColumn const& column : columns) {
        found.emplace_back(column.title, column.value);
    }
    std::vector<std::pair<std::string, double>> const expected = {
        {"K_1", 2},   {"K_2", 3},     {"Ksd_1", 0}, {"Ksd_2", 0}, {"mean_K", 2.5}, {"sd_K", std::sqrt(0.5)},
        {"tot_K", 4}, {"S_1", 1},     {"S_2", 2},   {"tot_S", 3}};
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(found[i].first, expected[i].first);
        EXPECT_NEAR(found[i].second, expected[i].second, 1e-12) << expected[i].first;
    }
}

TEST(SumStat, WhatNoAnalysisComputedIsMinusOne) {
    AnalysedProject analysed(dna_text());
    for (char const* const keyword : {"ALL_TAJIMAD", "MEAN_FUFS", "ALL_GW", "MEAN_ALL_R2", "GLOBAL_FSTAT",
                                      "PAIRWISE_FST", "ALL_ADJ_DPRIME", "TOT_GW"}) {
        auto const columns = columns_of(analysed, choice_of(keyword));
        EXPECT_FALSE(columns.empty()) << keyword;
        for (SumStatColumn const& column : columns) {
            EXPECT_EQ(column.value, -1.0) << keyword << ' ' << column.title;
        }
    }
}

TEST(SumStat, KeywordsWithoutAPatternMakeNoColumn) {
    AnalysedProject analysed(dna_text());
    for (char const* const keyword : {"TOT_TAJIMAD", "TOT_FUFS", "TOT_PI", "GLOBALSD_FSTAT"}) {
        EXPECT_TRUE(choice_of(keyword).in_force()) << keyword;
        EXPECT_TRUE(columns_of(analysed, choice_of(keyword)).empty()) << keyword;
    }
}

TEST(SumStat, TitlesAndValuesAgreeForEachKeywordAndForAll) {
    AnalysedProject analysed(dna_text());
    std::string all;
    for (std::string_view const keyword : sum_stat_keywords) {
        all += std::string(keyword) + "\n";
    }
    std::vector<std::string> texts(sum_stat_keywords.begin(), sum_stat_keywords.end());
    texts.push_back(all);
    for (std::string const& text : texts) {
        TSumStat choice = choice_of(text);
        choice.collect({analysed.set, analysed.project.samples}, true);
        choice.outputHeader(DNA);
        choice.outputStats(DNA);
        auto const tabs = [](std::string const& line) { return std::count(line.begin(), line.end(), '\t'); };
        EXPECT_EQ(tabs(choice.header()), tabs(choice.stats())) << text;
        EXPECT_TRUE(choice.header().empty() || choice.header().rfind("gr_", 0) == 0) << choice.header();
    }
}

TEST(SumStat, TheFileBeginsWithItsHeadAndGoesOnWithLines) {
    ScratchDirectory const directory;
    AnalysedProject analysed(dna_text());
    TSumStat choice = choice_of("ALL_K");
    choice.set_output("out.txt");
    for (int run = 0; run < 2; ++run) {
        choice.collect({analysed.set, analysed.project.samples}, false);
        if (run == 0) {
            choice.outputHeader(DNA);
        }
        choice.outputStats(DNA);
        choice.writeToFile(run == 0);
    }
    EXPECT_EQ(directory.read("out.txt"), "K_1\tK_2\t\n2\t3\t\n2\t3\t\n");
    EXPECT_EQ(choice.lines(), 2);
}

}  // namespace
}  // namespace tov
