// Project: designs that can be analysed, groups pooled into samples, allele vectors, adapted tasks, distances.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "base/dmat.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "run/project.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

constexpr char profile[] =
    "[Profile]\nTitle=\"t\"\nDataType=DNA\nGenotypicData=0\nLocusSeparator=NONE\nMissingData='?'\n";
constexpr char four_samples[] =
    "NbSamples=4\n[Data]\n[[Samples]]\n"
    "SampleName=\"a\"\nSampleSize=4\nSampleData={\nh1 3 ACGT\nh2 1 ACGA\n}\n"
    "SampleName=\"b\"\nSampleSize=2\nSampleData={\nh2 2 ACGA\n}\n"
    "SampleName=\"c\"\nSampleSize=3\nSampleData={\nh3 3 TCGA\n}\n"
    "SampleName=\"d\"\nSampleSize=2\nSampleData={\nh1 1 ACGT\nh4 1 ACGT\n}\n";
constexpr char two_groups[] =
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=2\nGroup={\n\"a\"\n\"b\"\n}\nGroup={\n\"c\"\n\"d\"\n}\n";
constexpr char four_groups[] =
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=4\nGroup={\n\"a\"\n}\nGroup={\n\"b\"\n}\n"
    "Group={\n\"c\"\n}\nGroup={\n\"d\"\n}\n";
constexpr char two_genotypic_samples[] =
    "[Profile]\nTitle=\"g\"\nNbSamples=2\nDataType=MICROSAT\nGenotypicData=1\nGameticPhase=0\n"
    "LocusSeparator=WHITESPACE\nMissingData='?'\nRecessiveData=0\n[Data]\n[[Samples]]\n"
    "SampleName=\"a\"\nSampleSize=3\nSampleData={\ni1 2 10 20\n11 20\ni2 1 10 21\n10 20\n}\n"
    "SampleName=\"b\"\nSampleSize=2\nSampleData={\ni3 2 12 20\n10 ?\n}\n"
    "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={\n\"a\"\n\"b\"\n}\n";

/// A project read from a text, in a directory and a process state of its own.
class ProjectTest : public testing::Test {
protected:
    ProjectTest() {
        fresh.keep(settings::input_file, std::string("p.tvp"));
        project.p_set().set_ofs(&document);
        project.p_set().tree_script = "p.js";
    }

    void open(std::string const& text) {
        directory.write("p.tvp", text);
        ASSERT_EQ(project.open(), 1) << log();
        project.p_set().DataType = project.DataType;
        project.p_set().GenotypicData = project.GenotypicData;
        project.p_set().GameticPhase = project.GameticPhase;
        project.p_sam().init_all_pointers(&project.p_alldb());
    }
    [[nodiscard]] std::string log() const { return fresh.log(); }

    test::FreshProcess fresh;
    test::ScratchDirectory directory;
    std::ostringstream document;
    Project project;
};

std::string haplotypic(char const* structure) { return std::string(profile) + four_samples + structure; }

TEST_F(ProjectTest, WithoutStructureIsNoDesignAndTellsBothReasons) {
    open(haplotypic(""));
    EXPECT_FALSE(project.IsAmovaStructure());
    EXPECT_NE(log().find("\"Project::IsAmovaStructure()\" : no samples have been defined"), std::string::npos);
    EXPECT_NE(log().find("\"Project::IsAmovaStructure()\" : no group(s) have been defined"), std::string::npos);
}

TEST_F(ProjectTest, WithOneSampleAGroupIsNoDesign) {
    open(haplotypic(four_groups));
    EXPECT_FALSE(project.IsAmovaStructure());
    EXPECT_NE(log().find("invalid structure: only one population per group"), std::string::npos);
}

TEST_F(ProjectTest, WithFewerGroupsThanSamplesIsADesign) {
    open(haplotypic(two_groups));
    EXPECT_TRUE(project.IsAmovaStructure());
    EXPECT_EQ(log().find("IsAmovaStructure"), std::string::npos);
}

TEST_F(ProjectTest, PoolsTheSamplesOfEachGroup) {
    open(haplotypic(two_groups));
    ASSERT_EQ(project.build_all_vectors(project.p_alldb()), 1);
    Samples pooled;
    Structure flat;
    project.poolSamplesInGroups(project.p_sam(), project.p_str(), pooled, flat);
    ASSERT_EQ(pooled.NbPopulations(), 2);
    EXPECT_EQ(pooled[0]->pop_name(), "Group1");
    EXPECT_EQ(pooled[1]->pop_name(), "Group2");
    EXPECT_DOUBLE_EQ(pooled[0]->sample_size(), 6.0);
    EXPECT_DOUBLE_EQ(pooled[1]->sample_size(), 5.0);
    EXPECT_EQ(pooled[0]->nb_haplotypes(), 2);
    ASSERT_EQ(flat.nb_groups(), 1);
    EXPECT_EQ(flat.group(0).nb_samples(), 2);
    EXPECT_EQ(flat.population(0, 1), pooled[1]);
    EXPECT_EQ(project.p_sam().NbPopulations(), 4);
}

TEST_F(ProjectTest, PoolingGenotypesConvertsThemAndLeavesTheCountsOfTheList) {
    open(two_genotypic_samples);
    project.p_sam()[0]->make_all_blanks(' ');
    project.p_sam().build_all_vectors(' ');
    Samples pooled;
    Structure flat;
    project.poolSamplesInGroups(project.p_sam(), project.p_str(), pooled, flat);
    ASSERT_EQ(pooled.NbPopulations(), 1);
    EXPECT_EQ(project.phenToGamDone, 1);
    EXPECT_DOUBLE_EQ(pooled[0]->sample_size(), 10.0);
    for (int i = 0; i < project.p_hdb().size(); ++i) EXPECT_EQ(project.p_hdb()[i].copies, 0);
}

TEST_F(ProjectTest, BuildsAlleleVectorsWithTheCountsOfAllSamples) {
    open(haplotypic(""));
    ASSERT_EQ(project.build_all_vectors(project.p_alldb()), 1);
    EXPECT_EQ(project.vectorsBuilt, 1);
    ASSERT_EQ(project.p_alldb().nb_loci(), 4);
    TAllele const* const a = project.p_alldb()(0, my_string("A"));
    TAllele const* const t = project.p_alldb()(0, my_string("T"));
    ASSERT_TRUE(a && t);
    EXPECT_DOUBLE_EQ(a->freq(), 8.0);
    EXPECT_DOUBLE_EQ(t->freq(), 3.0);
}

TEST_F(ProjectTest, GenotypesAreCountedOnceInTheAlleleDatabase) {
    open(two_genotypic_samples);
    project.p_set().TaskNumber = task::standard_indices;
    ASSERT_EQ(project.make_run_possible(), 1) << log();
    EXPECT_EQ(project.phenToGamDone, 1);
    EXPECT_EQ(project.vectorsBuilt, 1);
    double total = 0.0;
    for (int a = 0; a < project.p_alldb().locus(0)->nb_alleles(); ++a)
        total += project.p_alldb().locus(0)->allele(a)->freq();
    EXPECT_DOUBLE_EQ(total, 10.0);
}

TEST_F(ProjectTest, TasksThatHaplotypesDoNotAllowAreDropped) {
    open(haplotypic(""));
    project.p_set().TaskNumber = task::hardy_weinberg | task::genotype_assignment | task::amova | task::tajima;
    project.p_set().HaplAMOVA = 1;
    ASSERT_EQ(project.make_run_possible(), 1) << log();
    EXPECT_EQ(project.p_set().TaskNumber, task::tajima);
    EXPECT_NE(document.str().find("  An AMOVA analysis was selected and no Genetic structure\n"), std::string::npos);
}

TEST_F(ProjectTest, MicrosatellitesLoseTwoNeutralityTestsWithoutAWord) {
    open(two_genotypic_samples);
    std::string const before = log();
    project.p_set().TaskNumber = task::ewens_watterson | task::chakraborty | task::standard_indices;
    ASSERT_EQ(project.make_run_possible(), 1);
    EXPECT_EQ(project.p_set().TaskNumber, task::standard_indices);
    EXPECT_EQ(log().find("Ewens"), std::string::npos);
}

TEST_F(ProjectTest, AMantelTestOfFstsAsksForThem) {
    open(haplotypic(two_groups));
    project.p_set().TaskNumber = task::mantel;
    ASSERT_EQ(project.make_run_possible(), 1);
    EXPECT_TRUE(project.p_set().wants(task::pairwise_fst));
}

TEST_F(ProjectTest, UnknownPhasePrintsNoHaplotypeDistances) {
    open(two_genotypic_samples);
    settings& set = project.p_set();
    set.PrintMinSpannNetworkPop = set.PrintMinSpannNetworkGlob = set.PrintDistanceMatrix = 1;
    set.PrintPopDistMat = set.PrintHaplDistMat = 1;
    ASSERT_EQ(project.make_run_possible(), 1);
    EXPECT_EQ(set.PrintMinSpannNetworkPop + set.PrintMinSpannNetworkGlob + set.PrintDistanceMatrix +
                  set.PrintPopDistMat + set.PrintHaplDistMat,
              0);
}

TEST_F(ProjectTest, RecessiveDataOfKnownPhaseRefuseStructureAnalyses) {
    open(
        std::string("[Profile]\nTitle=\"r\"\nNbSamples=1\nDataType=STANDARD\nGenotypicData=1\nGameticPhase=1\n"
                    "RecessiveData=1\nRecessiveAllele=\"0\"\nLocusSeparator=WHITESPACE\nMissingData='?'\n[Data]\n"
                    "[[Samples]]\nSampleName=\"a\"\nSampleSize=2\nSampleData={\ni 2 A B\nA 0\n}\n"));
    for (long const task : {task::exact_test, task::amova, task::pairwise_fst}) {
        project.p_set().TaskNumber = task;
        EXPECT_EQ(project.make_run_possible(), 0);
    }
    EXPECT_NE(log().find("incompatibility between known gametic phase and recessive data"), std::string::npos);
}

TEST_F(ProjectTest, DistancesCountTheDifferencesBetweenHaplotypes) {
    open(haplotypic(two_groups));
    project.p_set().TaskNumber = task::pairwise_fst;
    project.p_set().ComputePairwiseFST = 1;
    ASSERT_EQ(project.make_run_possible(), 1);
    ASSERT_EQ(project.calc_dist_matrix(0, 0.0), 1) << log();
    DistMat const& d = project.p_dmt();
    ASSERT_EQ(d.dimension(), 4);
    // h1 ACGT, h2 ACGA, h3 TCGA, h4 ACGT
    EXPECT_DOUBLE_EQ(d(0, 1), 1.0);
    EXPECT_DOUBLE_EQ(d(0, 2), 2.0);
    EXPECT_DOUBLE_EQ(d(1, 2), 1.0);
    EXPECT_DOUBLE_EQ(d(0, 3), 0.0);
    EXPECT_EQ(project.p_set().TaskNumber, task::pairwise_fst);
    EXPECT_NE(document.str().find("\nNumber of usable loci for distance computation : 4"), std::string::npos);
    EXPECT_NE(document.str().find("List of loci with too much missing data :\n"), std::string::npos);
    EXPECT_EQ(directory.read("MissDataPerLocus.txt").substr(0, 27), "Locus#\tFreq. missing data\n1");
}

TEST_F(ProjectTest, ConventionalStatisticsLeaveAnEmptyMatrixWithItsMark) {
    open(haplotypic(two_groups));
    project.p_set().ComputeConventionalFST = 1;
    project.p_set().TaskNumber = task::pairwise_fst;
    ASSERT_EQ(project.make_run_possible(), 1);
    ASSERT_EQ(project.calc_dist_matrix(0, 0.0), 1);
    EXPECT_NE(project.p_dmt().conventional_fst(), 0);
    EXPECT_DOUBLE_EQ(project.p_dmt()(2, 2), 0.0);
    EXPECT_DOUBLE_EQ(project.p_dmt()(2, 0), 1.0);
}

TEST_F(ProjectTest, HaplotypesAtDistanceZeroAreMergedWithinTheirSample) {
    open(haplotypic(two_groups));
    project.p_set().InferHaplotypeDefinitionFromDistanceMatrix = 1;
    project.p_set().TaskNumber = task::standard_indices;
    ASSERT_EQ(project.make_run_possible(), 1) << log();
    EXPECT_EQ(project.p_sam()[0]->nb_haplotypes(), 2);
    EXPECT_EQ(project.p_sam()[3]->nb_haplotypes(), 1);
    EXPECT_NE(document.str().find("== Checking for haplotypes shared among populations:"), std::string::npos);
    EXPECT_EQ(project.p_set().InferHaplotypeDefinitionFromDistanceMatrix, 1);
}

}  // namespace
}  // namespace tov
