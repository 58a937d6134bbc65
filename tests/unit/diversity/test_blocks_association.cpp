// The task blocks of haplotype frequencies, linkage disequilibrium, Hardy-Weinberg proportions and distance matrices.
#include <gtest/gtest.h>

#include <string>

#include "support/analysed_project.h"
#include "support/text.h"

namespace tov {
namespace {

using test::AnalysedProject;
using test::genotypic_profile_text;
using test::holds;
using test::profile_text;
using test::sample_text;

constexpr long frequencies = task::haplotype_frequencies;
constexpr long linkage = task::linkage_disequilibrium;
constexpr long proportions = task::hardy_weinberg;

/// A sample "one" of genotypes or of haplotypes, its progress kept from the process.
struct Association {
    explicit Association(std::string const& text) : project(text) {
        project.project.fresh.keep(settings::global_work_done);
        project.project.fresh.keep(settings::message);
        project.project.fresh.keep(settings::old_message);
        project.set.InitialConditionsEM = 2;
        project.set.MarkovChainStepsLD = 30;
        project.set.MarkovChainStepsHW = 100;
        project.set.MarkovChainDememorisationStepsHW = 10;
        project.set.MarkovChainDememorisationStepsLD = 10;
    }
    static std::string genotypes(std::string const& type = "STANDARD") {
        return genotypic_profile_text(type) + "[[Samples]]\n" +
               sample_text("one", "5", "i 2 1 3\n    2 4\nj 1 1 3\n    1 3\nk 2 2 4\n    2 4\n");
    }
    static std::string haplotypes() {
        return profile_text("STANDARD", 1, "WHITESPACE") + "[[Samples]]\n" +
               sample_text("one", "7", "a 3 1 3\nb 4 2 4\n");
    }
    std::string run(long tasks) {
        project.project.fresh.clear_log();
        return project.run(tasks);
    }

    AnalysedProject project;
};

std::string heading(std::string const& title, int length) {
    std::string const rule(static_cast<std::size_t>(length), '=');
    return "\n" + rule + "\n== " + title + " : (one)\n" + rule + "\n\n";
}

TEST(FrequencyBlock, HeadingHangsOnTheBanner) {
    Association x(Association::genotypes());
    x.project.set.ComputeAllHaplotypesEM = 1;
    std::string const without = x.run(frequencies);
    EXPECT_EQ(without.find("\n-------------------------------------\nConventional EM algorithm"), 0U) << without;
    x.project.set.print_sample_banner = true;
    EXPECT_TRUE(holds(x.run(frequencies), heading("Haplotypes frequency estimation", 36)));
    Association known(Association::haplotypes());
    EXPECT_EQ(known.run(frequencies).find("\nNo. of gene copies in sample                : 7\n"), 0U);
    EXPECT_EQ(known.project.log(), "\tComputing haplotype frequencies ...\n\tdone !");
}

TEST(FrequencyBlock, PhasesComeBeforeFrequenciesAndEachHangsOnItsKey) {
    Association x(Association::genotypes());
    x.project.set.GibbsBurnIn = 10;
    x.project.set.GibbsSamplingInterval = 2;
    x.project.set.GibbsNumSamples = 5;
    EXPECT_EQ(x.run(frequencies), "");
    x.project.set.ComputeAllSubHaplotypesEM = 1;
    EXPECT_EQ(x.run(frequencies), "");
    x.project.set.ComputeAllAllelesEM = 1;
    EXPECT_TRUE(holds(x.run(frequencies), "Allele frequencies for the pair of loci( 2 , 1 )\n"));
    x.project.set.GibbsInferGamPhase = 1;
    std::string const both = x.run(frequencies);
    std::size_t const phases = both.find("Estimation of gametic phase from multi-locus diploid data");
    EXPECT_LT(phases, both.find("Allele frequencies for the locus 1\n"));
    EXPECT_NE(phases, std::string::npos);
}

TEST(LinkageBlock, SaysWhichDataItTests) {
    Association x(Association::genotypes());
    x.project.set.MakeExactTestLD = 1;
    std::string const text = x.run(linkage);
    EXPECT_EQ(text.find(heading("Pairwise linkage disequilibrium", 36)), 0U);
    EXPECT_TRUE(holds(text, "\nNumber of permutations               : 30\n"));
    EXPECT_TRUE(holds(text, "Pair(0, 1)\n"));
    EXPECT_EQ(x.project.log(), "\tTesting linkage disequilibrium (phenotypic data)...\n\tdone !");
    Association known(Association::haplotypes());
    known.project.set.MakeExactTestLD = 1;
    EXPECT_TRUE(holds(known.run(linkage), "\nChain length     :30\n"));
    EXPECT_EQ(known.project.log(), "\tTesting linkage disequilibrium (haplotypic data)...\n\tdone !");
}

TEST(LinkageBlock, AnyNumberOfPermutationsIsANumber) {
    Association x(genotypic_profile_text("STANDARD") + "[[Samples]]\n" + sample_text("one", "1", "i 1 1 3\n    1 3\n"));
    x.project.set.MakeExactTestLD = 1;
    x.project.set.MarkovChainStepsLD = 3000000000L;
    EXPECT_TRUE(holds(x.run(linkage), "\nNumber of permutations               : 2147483647\n"));
}

TEST(ProportionsBlock, PrintsItsHeadingAndItsTable) {
    Association x(Association::genotypes());
    x.project.set.MakeHWExactTest = 1;
    std::string const text = x.run(proportions);
    EXPECT_EQ(text.find(heading("Hardy-Weinberg equilibrium", 31)), 0U);
    EXPECT_TRUE(holds(text, "\nForecasted chain length     :100\nDememorization steps        :10\n\n"));
    EXPECT_TRUE(holds(text, "\n    1           5  0.40000    0.53333"));
    EXPECT_EQ(x.project.log(), "\tTesting Hardy-Weinberg equilibrium ...\n\tdone !\n");
}

TEST(AssociationBlocks, AStopLeavesTheHeadingAlone) {
    Association x(Association::genotypes());
    x.project.set.MakeExactTestLD = 1;
    x.project.set.MakeHWExactTest = 1;
    x.project.set.ComputeAllHaplotypesEM = 1;
    x.project.set.stop = 1;
    for (long const tasks : {frequencies, linkage, proportions}) {
        std::string const text = x.run(tasks | task::fu_fs);
        EXPECT_FALSE(holds(text, "Conventional"));
        EXPECT_FALSE(holds(text, "Test of linkage"));
        EXPECT_FALSE(holds(text, "Exact test"));
        EXPECT_FALSE(holds(text, "Fu"));
        EXPECT_EQ(x.project.log(), "");
    }
}

// Sizes, and not names, tell microsatellite alleles apart; -1 as a size is no missing data.
TEST(FrequencyBlock, PhasesOfMicrosatellitesCompareSizes) {
    auto const ambiguous = [](std::string const& alleles) {
        Association x(genotypic_profile_text("MICROSAT") + "[[Samples]]\n" +
                      sample_text("one", "2", "i 1 " + alleles + "\nj 1 10 20\n    10 20\n"));
        x.project.set.GibbsInferGamPhase = 1;
        x.project.set.GibbsBurnIn = 10;
        x.project.set.GibbsSamplingInterval = 2;
        x.project.set.GibbsNumSamples = 5;
        std::string const text = x.run(frequencies);
        return text.substr(text.find("\nNum. ambiguous individuals : ") + 30, 1);
    };
    EXPECT_EQ(ambiguous("10 20\n    11 21"), "1");
    EXPECT_EQ(ambiguous("10 20\n    010 21"), "0");
    EXPECT_EQ(ambiguous("-2 20\n    -1 21"), "1");
    EXPECT_EQ(ambiguous("99999999999 20\n    11 21"), "1");
}

}  // namespace
}  // namespace tov
