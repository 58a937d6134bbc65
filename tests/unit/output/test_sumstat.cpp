#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>

#include "output/sumstat.h"
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
    for (SumStatKeyword const& keyword : sum_stat_keywords) {
        EXPECT_TRUE(choice_of(std::string(keyword.word)).flag(keyword.word)) << keyword.word;
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

/// Lines of the table after one project a text was collected, at the level of groups when `groups`.
std::vector<std::string> lines_of(TSumStat& choice, std::vector<std::string> const& projects, bool groups,
                                  std::string* log = nullptr) {
    ScratchDirectory const directory;
    choice.set_output("out.txt");
    for (std::string const& project : projects) {
        AnalysedProject analysed(project);
        for (int i = 0; i < analysed.project.samples.NbPopulations(); ++i) {
            analysed.run(task::standard_indices | task::molecular_diversity, i);
        }
        choice.collect({analysed.set, analysed.project.samples}, groups);
        if (choice.lines() == 0) {
            choice.outputHeader(DNA);
        }
        choice.outputStats(DNA);
        choice.writeToFile(choice.lines() == 0);
        if (log != nullptr) {
            *log += analysed.log();
        }
    }
    std::istringstream in(directory.read("out.txt"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(SumStat, TitlesAndValuesAgreeForEachKeywordAndForAll) {
    std::string all;
    std::vector<std::string> texts;
    for (SumStatKeyword const& keyword : sum_stat_keywords) {
        texts.emplace_back(keyword.word);
        all += texts.back() + "\n";
    }
    texts.push_back(all);
    for (std::string const& text : texts) {
        TSumStat choice = choice_of(text);
        auto const lines = lines_of(choice, {dna_text()}, true);
        ASSERT_EQ(lines.size(), 2U) << text;
        auto const tabs = [](std::string const& line) { return std::count(line.begin(), line.end(), '\t'); };
        EXPECT_EQ(tabs(lines[0]), tabs(lines[1])) << text;
        EXPECT_TRUE(lines[0].empty() || lines[0].rfind("gr_", 0) == 0) << lines[0];
    }
}

TEST(SumStat, TheFileBeginsWithItsHeadAndGoesOnWithLines) {
    TSumStat choice = choice_of("ALL_K");
    EXPECT_EQ(lines_of(choice, {dna_text(), dna_text()}, false),
              (std::vector<std::string>{"K_1\tK_2\t", "2\t3\t", "2\t3\t"}));
    EXPECT_EQ(choice.lines(), 2);
}

TEST(SumStat, EveryLineHasTheColumnsOfTheHead) {
    std::string const one = test::profile_text("DNA", 1) + "[[Samples]]\n" +
                            test::sample_text("Alone", "4", "h1 3 ACGTACGTAC\nh2 1 ACGTACGTAT\n");
    std::string const three = dna_text() + test::sample_text("West", "2", "h1 1 ACGTACGTAC\nh4 1 TCTTACGTAC\n");
    TSumStat choice = choice_of("ALL_K MEAN_K");
    std::string log;
    EXPECT_EQ(lines_of(choice, {dna_text(), one, three}, false, &log),
              (std::vector<std::string>{"K_1\tK_2\tmean_K\t", "2\t3\t2.5\t", "2\t-1\t2\t", "2\t3\t2.3333333\t"}));
    EXPECT_NE(log.find("Warning: 1 chosen statistics of this project have no column in out.txt"), std::string::npos);
}

TEST(SumStat, AHeadThatWasNotWrittenIsDroppedWithItsProject) {
    AnalysedProject analysed(dna_text());
    TSumStat choice = choice_of("ALL_K");
    choice.collect({analysed.set, analysed.project.samples}, true);
    choice.outputHeader(DNA);
    choice.outputStats(DNA);
    choice.drop_line();
    EXPECT_EQ(lines_of(choice, {dna_text()}, false).front(), "K_1\tK_2\t");
}

TEST(SumStat, NeighbouringLociHaveAColumnEachWhateverIsPolymorphic) {
    AnalysedProject analysed(dna_text());
    auto const columns = columns_of(analysed, choice_of("ALL_ADJ_R2"));
    ASSERT_EQ(columns.size(), 2U * 9U);
    EXPECT_EQ(columns.front().title, "adj_R2_1_1");
    EXPECT_EQ(columns.back().title, "adj_R2_9_2");
}

TEST(SumStat, AStatisticWhoseTaskIsOffIsMinusOne) {
    AnalysedProject analysed(dna_text());
    columns_of(analysed, choice_of("ALL_K"));
    analysed.set.TaskNumber = task::molecular_diversity;
    for (SumStatColumn const& column : sum_stat_columns(choice_of("ALL_K ALLSD_K MEAN_K SD_K TOT_K ALL_H"),
                                                        {analysed.set, analysed.project.samples})) {
        EXPECT_EQ(column.value, -1.0) << column.title;
    }
    for (SumStatColumn const& column :
         sum_stat_columns(choice_of("ALL_S ALL_PI"), {analysed.set, analysed.project.samples})) {
        EXPECT_GT(column.value, 0.0) << column.title;
    }
}

}  // namespace
}  // namespace tov
