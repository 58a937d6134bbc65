// Settings: the summary in the result document.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "input/distance_names.h"
#include "input/settings.h"

namespace tov {
namespace {

class SettingsSummary : public testing::Test {
protected:
    std::string summary() const {
        std::ostringstream out;
        set.print_pretty_settings(out);
        return out.str();
    }

    settings set;
};

std::string line(std::string const& name, std::string const& value) {
    return "\n       " + name + std::string(32 - name.size(), ' ') + " = " + value + "\n";
}

TEST_F(SettingsSummary, OpensWithTheGeneralSettings) {
    EXPECT_EQ(summary(),
              "==============================\n"
              "Settings used for Calculations\n"
              "==============================\n"
              " General settings:\n"
              " -----------------\n"
              "        Deletion weight                  = 1\n"
              "        Transition weight                = 1\n"
              "        Transversion weight              = 1\n"
              "        Epsilon value                    = 1e-07\n"
              "        Use original haplotype definition\n"
              "        Alllowed level of missing data = 0.05\n"
              "\n"
              " Active Tasks:\n"
              " -------------\n"
              "\n");
}

TEST_F(SettingsSummary, TellsThatDefinitionsAreInferred) {
    set.InferHaplotypeDefinitionFromDistanceMatrix = 1;
    EXPECT_NE(summary().find("\n        Infer haplotype definition from distance matrix\n"), std::string::npos);
    EXPECT_EQ(summary().find("Use original"), std::string::npos);
}

struct Title {
    long bit;
    std::string text;
};
Title const titles[] = {
    {task::standard_indices, "    Standard indices:\n    -----------------\n"},
    {task::molecular_diversity, "    Molecular Diversity:\n    --------------------\n"},
    {task::mismatch, "    Mismatch Distribution:\n    ----------------------\n"},
    {task::haplotype_frequencies, "    Haplotypic Frequency estimation:\n    --------------------------------\n"},
    {task::linkage_disequilibrium, "    Linkage disequilibrium test:\n    ----------------------------\n"},
    {task::hardy_weinberg, "    Hardy-Weinberg equilibrium test:\n    --------------------------------\n"},
    {task::tajima, "    Tajima's selective neutrality test\n    ----------------------------------\n"},
    {task::ewens_watterson, "    Ewens-Watterson neutrality test\n    -------------------------------\n"},
    {task::chakraborty, "    Chakraborty's amalgammation test\n    --------------------------------\n"},
    {task::fu_fs, "    Fu's Neutraliy test:\n    --------------------\n"},
    {task::amova, "    Analysis of Molecular Variance:\n    -------------------------------\n"},
    {task::pairwise_fst, "    Population pairwise Fst values:\n    -------------------------------\n"},
    {task::exact_test,
     "    Exact test of population differentiation:\n    -----------------------------------------\n"},
    {task::genotype_assignment,
     "\n    Assignement of individual genotypes to populations\n"
     "    --------------------------------------------------\n"},
    {task::mantel, "\n    Correlation between distance matrices.\n    --------------------------------------\n"},
};

TEST_F(SettingsSummary, HasABlockForEachTaskThatIsOn) {
    for (Title const& wanted : titles) {
        set.TaskNumber = wanted.bit;
        std::string const text = summary();
        for (Title const& title : titles) {
            EXPECT_EQ(text.find(title.text) != std::string::npos, title.bit == wanted.bit) << title.text;
        }
    }
}

TEST_F(SettingsSummary, KeepsTheOrderOfTheTasks) {
    set.TaskNumber = -1;
    std::string const text = summary();
    std::size_t last = 0;
    for (Title const& title : titles) {
        std::size_t const position = text.find(title.text);
        ASSERT_NE(position, std::string::npos) << title.text;
        EXPECT_GT(position, last) << title.text;
        last = position;
    }
}

TEST_F(SettingsSummary, NamesNoBlockForTheTwoPreparingTasks) {
    std::string const nothing = summary();
    set.TaskNumber = task::pairwise_distances | task::prepare_permutations;
    EXPECT_EQ(summary(), nothing);
}

TEST_F(SettingsSummary, ShowsMolecularParameters) {
    set.DataType = DNA;
    set.TaskNumber = task::molecular_diversity;
    set.DistanceMethod = 2;
    set.GammaAValue = 0.25;
    set.ComputeTheta = theta_bit::S | theta_bit::pi;
    set.PrintHaplDistMat = 1;
    std::string const text = summary();
    EXPECT_NE(text.find(line("Molecular distance", "Kimura 2P")), std::string::npos);
    EXPECT_NE(text.find(line("Gamma a value", "0.25")), std::string::npos);
    EXPECT_NE(text.find(line("Theta estimators", "S, Pi")), std::string::npos);
    EXPECT_NE(text.find(line("Print distance matrix", "Yes")), std::string::npos);
    EXPECT_NE(text.find(line("Print minimum spanning tree", "No")), std::string::npos);
}

TEST_F(SettingsSummary, ShowsTheLevelOfTheHardyWeinbergTest) {
    set.TaskNumber = task::hardy_weinberg;
    char const* const levels[] = {"Locus", "Haplotype", "Locus and haplotype"};
    for (int level = 0; level < 3; ++level) {
        set.TypeOfTestHW = level;
        EXPECT_NE(summary().find(line("Level of the test", levels[level])), std::string::npos);
    }
    EXPECT_NE(summary().find(line("Steps in Markov chain", "1000000")), std::string::npos);
}

TEST_F(SettingsSummary, NamesTheKeysThatAnAnalysisReadsInTheOrderOfTheFile) {
    struct {
        long bit;
        std::string lines;
    } const blocks[] = {
        {task::standard_indices, line("Allele frequencies at all loci", "No")},
        {task::linkage_disequilibrium, line("Perform test", "No") + line("Dememorisation steps", "1000") +
                                           line("Steps or permutations", "100000") + line("Required precision", "0") +
                                           line("Significance level", "0.05") + line("Summary of tests", "No") +
                                           line("Initial conditions of EM", "2") + line("Compute D and D'", "No") +
                                           line("Maximum no. of iterations", "1000") + line("Epsilon value", "1e-07")},
        {task::genotype_assignment, line("No. of initial conditions", "50") +
                                        line("Maximum no. of iterations", "1000") + line("Epsilon value", "1e-07")},
        {task::mantel, line("No. of permutations", "1000")},
        {task::chakraborty, "\n"},
    };
    set.GenotypicData = 1;
    for (auto const& block : blocks) {
        set.TaskNumber = block.bit;
        std::string lines = block.lines;
        for (std::size_t at; (at = lines.find("\n\n")) != std::string::npos;) lines.erase(at, 1);
        EXPECT_TRUE(summary().ends_with("-" + lines + "\n")) << summary();
    }
    set.TaskNumber = task::haplotype_frequencies;
    EXPECT_NE(summary().find(line("Recessive alleles", "No") + line("Compact haplotype database", "No").substr(1)),
              std::string::npos);
}

TEST_F(SettingsSummary, SkipsGenotypeAssignmentUnlessThePhaseIsUnknown) {
    set.TaskNumber = task::genotype_assignment;
    std::string const sentence =
        "\n      Test is only possible for genotypic data with unknown gametic phase, skipping this task.\n";
    EXPECT_NE(summary().find(sentence), std::string::npos);
    set.GenotypicData = 1;
    EXPECT_EQ(summary().find(sentence), std::string::npos);
    set.GameticPhase = 1;
    EXPECT_NE(summary().find(sentence), std::string::npos);
}

TEST_F(SettingsSummary, LeavesTheStyleOfTheDocumentAlone) {
    std::ostringstream out;
    out << std::hex << std::left;
    out.precision(3);
    out.fill('*');
    auto const flags = out.flags();
    set.TaskNumber = -1;
    set.print_pretty_settings(out);
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.precision(), 3);
    EXPECT_EQ(out.fill(), '*');
    EXPECT_EQ(out.str().find('*'), std::string::npos);
    EXPECT_NE(out.str().find(line("No. of permutations", "1000")), std::string::npos);
}

TEST_F(SettingsSummary, NamesDistanceMethodsByDataType) {
    EXPECT_EQ(distance_method_name(DNA, 0), "Pairwise difference");
    EXPECT_EQ(distance_method_name(DNA, 6), "Tamura and Nei");
    EXPECT_EQ(distance_method_name(DNA, 7), "Pairwise differences");
    EXPECT_EQ(distance_method_name(DNA, -1), "Pairwise differences");
    EXPECT_EQ(distance_method_name(RFLP, 0), "Pairwise difference");
    EXPECT_EQ(distance_method_name(RFLP, 1), "Proportion of difference");
    EXPECT_EQ(distance_method_name(RFLP, 2), "Pairwise differences");
    EXPECT_EQ(distance_method_name(MICROSAT, 0), "No. of different alleles (FST)");
    EXPECT_EQ(distance_method_name(MICROSAT, 1), "Sum of squared size difference (RST)");
    EXPECT_EQ(distance_method_name(STANDARD, 0), "Pairwise difference");
    EXPECT_EQ(distance_method_name(STANDARD, 1), "Pairwise differences");
    EXPECT_EQ(distance_method_name(static_cast<TDataType>(9), 0), "Pairwise differences");
}

TEST_F(SettingsSummary, PrintsADistanceMethodWithALineEnd) {
    std::ostringstream out;
    set.DataType = DNA;
    set.print_distance_method(out, 5);
    set.DataType = MICROSAT;
    set.print_distance_method(out, 1);
    EXPECT_EQ(out.str(), "Tamura\nSum of squared size difference (RST)\n");
}

}  // namespace
}  // namespace tov
