// The gene vector of a structure: what a haplotype without a row of the distance matrix leads to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "structure/amova.h"
#include "structure/amova_results.h"
#include "support/analysed_project.h"

namespace tov::test {
namespace {

/// Two samples of five copies of three haplotypes in one group.
std::string two_samples() {
    return profile_text("STANDARD", 2) + "[[Samples]]\n" + sample_text("first", "5", "h1 2 A\nh2 3 B\n") +
           sample_text("second", "5", "h2 1 B\nh3 4 C\n") +
           "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={\n\"first\"\n\"second\"\n}\n";
}

struct TwoSamples {
    TwoSamples() : analysed(two_samples()) {
        analysed.set.ComputeConventionalFST = 1;
        analysed.project.distances.set_conventional_fst(1);
        analysed.set.NumPermutationsAMOVA = 0;
        analysed.set.NumPermutationsFST = 0;
        for (int h = 0; h < analysed.project.haplotypes.size(); ++h) {
            analysed.project.haplotypes[h].matrix_index = h;
        }
    }

    /// The whole analysis, and the text that it leaves in the log.
    std::string run(long tasks) {
        analysed.set.TaskNumber = tasks;
        analysed.set.HaplAMOVA = 1;
        analysed.set.ComputePairwiseFST = 1;
        analysed.project.fresh.clear_log();
        Amova const amova(view, &results);
        return analysed.log();
    }

    AnalysedProject analysed;
    amova_results results;
    ProjectView view{analysed.set,
                     &analysed.project.samples,
                     &analysed.project.structure,
                     &analysed.project.haplotypes,
                     &analysed.project.distances,
                     &analysed.alleles,
                     &analysed.project.mantel,
                     &results};
};

/// Places of `part` in `text`.
int occurrences(std::string const& text, std::string const& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace

TEST(GeneVector, KnownHaplotypesAreTakenWithoutAWord) {
    TwoSamples data;
    EXPECT_EQ(data.run(task::amova).find("Abnormal"), std::string::npos);
    EXPECT_TRUE(reported_codes().empty());
    EXPECT_EQ(data.results.df, (std::array<int, 5>{1, 8, 0, 0, 9}));
}

TEST(GeneVector, EveryCopyOfAHaplotypeBeyondTheMatrixIsToldAndReported) {
    TwoSamples data;
    data.analysed.project.haplotypes[1].matrix_index = 3;
    std::string const log = data.run(task::amova);
    std::string const first = "Abnormal behaviour for pop:first\nnb_gene_copies=5 HDB.Nb_haplo3";
    // Behind the two copies of the first haplotype.
    for (char const* const place : {"2", "3", "4"}) {
        EXPECT_EQ(occurrences(log, first + place + " H_vect:3"), 1) << log;
    }
    EXPECT_EQ(occurrences(log, "Abnormal behaviour for pop:second\nnb_gene_copies=5 HDB.Nb_haplo30 H_vect:3"), 1);
    EXPECT_EQ(occurrences(log, "Abnormal"), 4);
    EXPECT_EQ(reported_codes(), (std::vector<int>{2, 2, 2, 2}));
}

TEST(GeneVector, AHaplotypeWithoutARowCountsNowhere) {
    TwoSamples data;
    data.analysed.project.haplotypes[2].matrix_index = -1;
    std::string const log = data.run(task::amova);
    EXPECT_EQ(occurrences(log, "Abnormal behaviour for pop:second\nnb_gene_copies=5 HDB.Nb_haplo3"), 4);
    EXPECT_EQ(occurrences(log, " H_vect:-1"), 4);
    EXPECT_EQ(reported_codes(), (std::vector<int>(4, 2)));
    // Left are 2 and 3 copies of h1 and h2 in the first sample, a copy of h2 in the second: 6 unequal pairs within the
    // first, none within the second, 2 among them.
    EXPECT_DOUBLE_EQ(data.results.ssd[1], 6.0 / 5.0);
    EXPECT_DOUBLE_EQ(data.results.ssd[4], 8.0 / 10.0);
}

TEST(GeneVector, PairsOfSamplesLookAtTheirHaplotypesToo) {
    TwoSamples data;
    data.analysed.project.haplotypes[0].matrix_index = 7;
    std::string const log = data.run(task::pairwise_fst);
    // Once for the structure, once for the pairs.
    EXPECT_EQ(occurrences(log, "Abnormal behaviour for pop:first\nnb_gene_copies=5 HDB.Nb_haplo30 H_vect:7"), 2);
    EXPECT_EQ(reported_codes(), (std::vector<int>(4, 2)));
}

}  // namespace tov::test
