// The run of the task blocks over a sample: their order, headings, refusals and tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "diversity/popdna.h"
#include "output/glbobj.h"
#include "support/analysed_project.h"
#include "support/scratch_directory.h"
#include "support/text.h"

namespace tov {
namespace {

using test::AnalysedProject;
using test::genotypic_profile_text;
using test::holds;
using test::profile_text;
using test::sample_text;

constexpr long standard = task::standard_indices;
constexpr long molecular = task::molecular_diversity;

std::string one_sample(std::string const& profile, std::string const& size, std::string const& data) {
    return profile + "[[Samples]]\n" + sample_text("one & only", size, data);
}

std::string dna(std::string const& size, std::string const& data) {
    return one_sample(profile_text("DNA"), size, data);
}

/// Puts the project-wide list of substituted sites back.
class Blocks : public testing::Test {
protected:
    ~Blocks() override { PopGenetics::globalSubstPolymSites.Flush(); }
};

TEST_F(Blocks, PrintStandardIndicesOfSequences) {
    AnalysedProject p(dna("10", "a 5 ACGT\nb 3 ACGA\nc 2 GC?T\n"));
    p.set.AllowedLevelOfMissingData = 0.05;
    std::string const text = p.run(standard);
    EXPECT_TRUE(holds(text,
                      "\n===============================\n== Standard diversity indices : (one &amp; only)\n"
                      "===============================\n\n"));
    EXPECT_TRUE(holds(text,
                      "No. of gene copies       : 10\nNo. of sequences         : 3\nNo. of loci              : 4\n"
                      "No. of usable loci       : 3 loci with less than  5.00 % missing data\n"
                      "No. of polymorphic sites : 2\n"))
        << text;
    EXPECT_TRUE(holds(text,
                      "\n\nResults are only shown for polymorphic loci\n--------------------------------------\n"
                      "  Locus#      Num.      Num.      Exp.\n              gene   alleles       Het\n"
                      "            copies                    \n--------------------------------------\n"
                      "       1        10         2   0.35556\n       4        10         2   0.46667\n"
                      "--------------------------------------\n"
                      "    Mean    10.000   2.00000   0.41111\n    s.d.     0.000   0.00000   0.07857\n"))
        << text;
    EXPECT_TRUE(
        holds(text,
              "\nHaplotype-level computations\n----------------------------\n\nSum of square freqs.     :  0.3800\n"
              "Gene diversity           :  0.6889 +/-  0.1038\n\n"
              "(Standard deviation is for the sampling process)\n"))
        << text;
    EXPECT_TRUE(holds(p.log(), "\tComputing standard diversity indices ...\n\tdone !\n"));
}

TEST_F(Blocks, PrintTheBannerOfASampleOnlyForAnalysesWithinSamples) {
    AnalysedProject p(dna("2", "a 1 AC\nb 1 AT\n"));
    p.set.print_sample_banner = true;
    std::string const text = p.run(standard);
    EXPECT_TRUE(holds(
        text, "\n" + std::string(79, '=') + "\n== Sample : \tone &amp; only\n\n" + std::string(79, '=') + "\n\n"));
    EXPECT_LT(text.find("== Sample"), text.find("== Standard"));
    EXPECT_FALSE(holds(p.run(task::pairwise_distances), "== Sample"));
}

TEST_F(Blocks, MakeTheDistanceMatrixInSilence) {
    AnalysedProject p(dna("10", "a 5 ACGT\nb 3 ACGA\nc 2 GCTT\n"));
    p.set.DistanceMethodAMOVA = 3;
    EXPECT_EQ(p.run(task::pairwise_distances), "");
    ASSERT_TRUE(p.sample().has_dist_mat());
    EXPECT_DOUBLE_EQ(p.sample().get_dist_mat()(1, 0), 1.0);  // a share, times the four usable sites
    p.set.ComputeConventionalFST = 1;
    EXPECT_EQ(p.run(task::pairwise_distances), "");
    EXPECT_EQ(p.sample().get_dist_mat().conventional_fst(), 1);
}

TEST_F(Blocks, RefuseStandardIndicesOfRecessiveDataUnderTheHeading) {
    AnalysedProject p(dna("2", "a 1 AC\nb 1 AT\n"));
    p.set.RecessiveAllelesEM = 1;
    std::string const text = p.run(standard);
    EXPECT_TRUE(holds(text, "== Standard diversity indices"));
    EXPECT_TRUE(holds(text,
                      "Most standard diversity indices cannot be computed \nfor recessive data\n\n"
                      "No. of gene copies in sample       : 2"));
    EXPECT_FALSE(holds(text, "No. of loci"));
    EXPECT_EQ(p.sample().recessive_loci(), 1);
    EXPECT_TRUE(holds(p.log(), "\tdone !"));
}

TEST_F(Blocks, RefuseMolecularDiversityOfRecessiveDataWithoutAHeading) {
    AnalysedProject p(dna("2", "a 1 AC\nb 1 AT\n"));
    p.set.RecessiveAllelesEM = 1;
    EXPECT_EQ(p.run(molecular), "Molecular diversity indices cannot be computed \nfor recessive data\n");
}

TEST_F(Blocks, PrintMolecularDiversityOfSequences) {
    AnalysedProject p(dna("10", "a 5 ACGTACGTAC\nb 3 ACGTACGTAT\nc 2 GCGTACGTAA\n"));
    p.set.ComputeTheta = 15;
    p.set.DeletionWeight = 0.5;
    std::string const text = p.run(molecular);
    EXPECT_TRUE(holds(text,
                      "\n================================\n== Molecular diversity indices : (one &amp; only)\n"
                      "================================\n\n"));
    EXPECT_TRUE(holds(text,
                      "Sample size                                  : 10\n"
                      "No. of haplotypes                            : 3\n\n"
                      "Deletion weight                              : 0.5000\n"
                      "Transition weight                            : 1.0000\n"
                      "Transversion weight                          : 1.0000\n"
                      "Allowed level of missing data                : 100.00 %\n\n"
                      "No. of observed transitions                  : 2\n"
                      "No. of observed transversions                : 1\n"
                      "No. of observed substitutions                : 3\n"
                      "No. of observed indels                       : 0\n"
                      "No. of polymorphic sites                     : 2\n"
                      "No. of observed sites with transitions       : 2\n"
                      "No. of observed sites with transversions     : 1\n"
                      "No. of observed sites with substitutions     : 2\n"
                      "No. of observed sites with indels            : 0\n\n"
                      "Number of observed nucleotide sites          : 10\n"
                      "Number of usable nucleotide sites            : 10\n\n"
                      "Nucleotide composition (Relative values)\n"))
        << text;
    EXPECT_TRUE(
        holds(text, "\nDistance method                              : Pairwise difference (no Gamma correction)\n"))
        << text;
    EXPECT_TRUE(holds(text, "\nMean number of pairwise differences          :     1.044444 +/-     "));
    EXPECT_TRUE(holds(text, "\nNucleotide diversity (average over loci)     :     0.104444 +/-     "));
    EXPECT_TRUE(holds(text, "\n\n(Standard deviations are for both the sampling and the stochastic processes)"));
    EXPECT_TRUE(holds(text, "       Theta(Hom) :     1.689130\n  S.D. Theta(Hom) :     0.856983\n")) << text;
    EXPECT_TRUE(holds(text, "\n95 % confidence interval limits for theta(k) : [ "));
    EXPECT_TRUE(holds(text, "         Theta(S) :     0.706972\n"));
    EXPECT_TRUE(holds(text, "        Theta(Pi) :     1.044444\n"));
    EXPECT_FALSE(holds(text, "Inter-haplotypic"));
    EXPECT_TRUE(holds(p.log(), "\t\tComputing BMat ...\t\tdone ! ("));
}

TEST_F(Blocks, PrintTheMatrixAndTheNetworkWhenAskedFor) {
    AnalysedProject p(dna("3", "a 1 AC\nb<2> 1 AT\nc 1 GT\n"));
    p.set.PrintHaplDistMat = 1;
    std::string const text = p.run(molecular);
    EXPECT_TRUE(holds(text, "\nInter-haplotypic distance matrix (s.d. above diagonal):\n\n"));
    EXPECT_TRUE(holds(text, "          0.7071  0.0000\n  1.0000          0.7071\n  2.0000  1.0000        \n")) << text;
    EXPECT_TRUE(holds(text, "1 : a\n2 : b&lt;2>\n3 : c\n")) << text;
    EXPECT_FALSE(holds(text, "MINIMUM SPANNING TREE"));
    p.set.PrintHaplDistMat = 0;
    p.set.PrintMinSpannNetworkPop = 1;
    std::string const network = p.run(molecular);
    EXPECT_FALSE(holds(network, "Inter-haplotypic"));
    EXPECT_TRUE(holds(network, "MINIMUM SPANNING TREE between 3 OTUs"));
}

TEST_F(Blocks, SkipIndicesButNotThetaWhenTheMatrixFails) {
    AnalysedProject p(dna("3", "a 2 ACGT\nb 1 AAAA\n"));
    p.set.DistanceMethod = 1;
    p.set.ComputeTheta = 15;
    std::string const text = p.run(molecular);
    EXPECT_FALSE(holds(text, "Mean number of pairwise differences"));
    EXPECT_TRUE(holds(text, "Theta(S) : "));
    EXPECT_TRUE(holds(text, "        Theta(Pi) :    -1.000000\n   S.D. Theta(Pi) :    -1.000000\n")) << text;
    EXPECT_EQ(p.sample().pi(), -1.0);
    EXPECT_EQ(test::reported_codes(), (std::vector<int>{162, 136}));
}

TEST_F(Blocks, PrintThetaOfSitesWhenAllCopiesAreDistinct) {
    AnalysedProject p(dna("2", "a 1 AC\nb 1 AT\n"));
    p.set.ComputeTheta = 15;
    std::string const text = p.run(molecular);
    EXPECT_TRUE(holds(text,
                      "\nUnable to compute Theta(Hom) when all gene copies are different"
                      "\nUnable to compute Theta(k) when all gene copies are different\n"));
    EXPECT_TRUE(holds(text, "         Theta(S) :     1.000000\n"));
    p.set.ComputeTheta = theta_bit::S;
    EXPECT_FALSE(holds(p.run(molecular), "Unable to compute"));
}

TEST_F(Blocks, LeaveTheLimitsOfThetaKOutForLargeSamples) {
    AnalysedProject p(dna("5000", "a 4990 AC\nb 10 AT\n"));
    p.set.ComputeTheta = theta_bit::k;
    std::string const text = p.run(molecular);
    EXPECT_TRUE(holds(text, "Theta(k) : "));
    EXPECT_FALSE(holds(text, "confidence interval"));
    EXPECT_TRUE(holds(p.log(), "\t\t\tToo many aleles or gene copies in sample to compute Theta(k)\n"));
    EXPECT_EQ(p.sample().thetaKInf(), 0.0);
    EXPECT_EQ(p.sample().thetaKSup(), 1e8);
    p.sample().clean_bnum();
}

TEST_F(Blocks, PrintTheFallBackLimitsJustBelowTheLimitOfTheTable) {
    AnalysedProject p(dna("4995", "a 4990 AC\nb 5 AT\n"));
    p.set.ComputeTheta = theta_bit::k;
    EXPECT_TRUE(holds(p.run(molecular), "[ 0.000000, 100000000.000000 ]"));
    p.sample().clean_bnum();
}

TEST_F(Blocks, PrintMicrosatellitesWithSizesAndOneTheta) {
    AnalysedProject p(one_sample(profile_text("MICROSAT", 1, "WHITESPACE"), "4", "a 2 10 20\nb 1 14 20\nc 1 10 ?\n"));
    p.set.ComputeTheta = 15;
    std::string const text = p.run(standard | molecular);
    EXPECT_TRUE(holds(text,
                      "       1         4         2   0.50000         4   0.40000\n"
                      "----------------------------------------------------------\n"));
    EXPECT_FALSE(holds(text, "       2         3"));
    EXPECT_TRUE(holds(text, "Unable to compute some theta values for microsatellite data type\n"));
    EXPECT_TRUE(holds(text, "Theta(Hom) : "));
    EXPECT_FALSE(holds(text, "Theta(k)"));
    EXPECT_FALSE(holds(text, "Theta(S)"));
    EXPECT_FALSE(holds(text, "Theta(Pi)"));
    EXPECT_TRUE(holds(text, "No. of different alleles") || holds(text, "Distance method"));
    PopGenetics const& s = p.sample();
    EXPECT_EQ(s.locus_table().min_size, (std::vector<int>{10, 20}));
    EXPECT_EQ(s.locus_table().max_size, (std::vector<int>{14, 20}));
    EXPECT_EQ(s.locus_table().mean_size, (std::vector<double>{11.0, 20.0}));
    EXPECT_DOUBLE_EQ(s.locus_table().garza_williamson[1], 1.0);
}

TEST_F(Blocks, PrintStandardDataInTheirOwnWords) {
    AnalysedProject p(one_sample(profile_text("STANDARD", 1, "WHITESPACE"), "4", "a 2 x y\nb 1 w y\nc 1 x q\n"));
    p.set.ComputeTheta = 15;
    std::string const text = p.run(standard | molecular);
    EXPECT_TRUE(holds(text, "No. of haplotypes        : 3\n"));
    EXPECT_TRUE(holds(text, "No. of polymorphic loci  : 2\n"));
    EXPECT_TRUE(holds(text, "\nAverage gene diversity over loci             : "));
    EXPECT_TRUE(holds(text, "Unable to compute theta(S) for standard data type"));
    EXPECT_TRUE(holds(text, "Unable to compute theta(Pi) for standard data type"));
    EXPECT_TRUE(holds(text, "Theta(k) : "));
    EXPECT_TRUE(holds(p.log(), "\tComputing molecular diversity...\n"));
    AnalysedProject distinct(one_sample(profile_text("STANDARD", 1, "WHITESPACE"), "2", "a 1 x\nb 1 w\n"));
    distinct.set.ComputeTheta = 15;
    EXPECT_TRUE(holds(distinct.run(molecular),
                      "\nUnable to compute theta(Hom) and theta(k) when all gene copies are different"));
}

TEST_F(Blocks, SkipTheMatrixOfFrequencyData) {
    AnalysedProject p(one_sample(profile_text("FREQUENCY"), "5", "a 2\nb 3\n"));
    p.set.ComputeTheta = theta_bit::hom;
    std::string const text = p.run(standard | molecular);
    EXPECT_FALSE(holds(text, "Average gene diversity"));
    EXPECT_FALSE(holds(text, "Results are only shown"));
    EXPECT_TRUE(holds(text, "Gene diversity           :  0.6000"));
    EXPECT_TRUE(holds(text, "Theta(Hom) : "));
    EXPECT_FALSE(p.sample().has_dist_mat());
}

TEST_F(Blocks, PrintTheOriginalNumberOfSequencesWhenEqualOnesWereMerged) {
    AnalysedProject p(dna("3", "a 2 AC\nb 1 AT\n"));
    p.set.InferHaplotypeDefinitionFromDistanceMatrix = 1;
    p.sample().nb_original_haplotypes = 7;
    std::string const text = p.run(standard | molecular);
    EXPECT_TRUE(holds(text, "\nNo. of original \nsequences in sample      : 7\n"));
    EXPECT_TRUE(holds(text, "No. of original haplotypes in sample         : 7\n"));
}

TEST_F(Blocks, PrintGenotypesWithObservedHeterozygosity) {
    AnalysedProject p(
        one_sample(genotypic_profile_text("STANDARD"), "4", "i 2 A x\n    B x\nj 1 A x\n    A ?\nk 1 A y\n    ? y\n"),
        true);
    std::string const text = p.run(standard);
    EXPECT_FALSE(holds(text, "No. of haplotypes  "));
    EXPECT_FALSE(holds(text, "Haplotype-level computations"));
    // Locus 1: A 5, B 2; two of three known individuals differ. Locus 2: x 5, y 2; none differs.
    EXPECT_TRUE(holds(text, "       1         7         2   0.66667   0.47619\n")) << text;
    EXPECT_TRUE(holds(text, "       2         7         2   0.00000   0.47619\n")) << text;
    EXPECT_TRUE(holds(text,
                      "\nNo. of Heterozygotes     : 4\nNo. of Homozygotes       : 0\n"
                      "Obs.Heter.               : 1.00000\n"))
        << text;
}

TEST_F(Blocks, NameTheDistanceThatTheyCompute) {
    std::string const label = "\nDistance method                              : ";
    AnalysedProject sequences(dna("3", "a 2 AC\nb 1 AT\n"));
    sequences.set.DistanceMethod = 9;
    sequences.set.GammaAValue = 0.5;
    EXPECT_TRUE(holds(sequences.run(molecular), label + "DIFF (Gamma correction : a=0.5"));
    AnalysedProject sites(one_sample(profile_text("RFLP"), "3", "a 2 01\nb 1 00\n"));
    sites.set.DistanceMethod = 1;
    EXPECT_TRUE(holds(sites.run(molecular), label + "Proportion of difference\n"));
    AnalysedProject sizes(one_sample(profile_text("MICROSAT", 1, "WHITESPACE"), "3", "a 2 10\nb 1 14\n"));
    sizes.set.DistanceMethod = 3;  // any number but 0 squares the sizes
    EXPECT_TRUE(holds(sizes.run(molecular), label + "Sum of squared size difference (RST)\n"));
    EXPECT_EQ(sizes.sample().get_dist_mat()(1, 0), 16.0);
    AnalysedProject alleles(one_sample(profile_text("STANDARD", 1, "WHITESPACE"), "3", "a 2 x\nb 1 y\n"));
    alleles.set.DistanceMethod = 3;
    EXPECT_TRUE(holds(alleles.run(molecular), label + "Pairwise difference\n"));
}

TEST_F(Blocks, RefuseMismatchDistributionsOfUnknownPhaseWithoutAHeading) {
    AnalysedProject p(one_sample(genotypic_profile_text("STANDARD"), "2", "i 1 A\n    B\nj 1 A\n    A\n"));
    p.sample().p_fus_FS_ = 0.5;
    EXPECT_EQ(p.run(task::mismatch), "Mismatch distribution cannot be computed \n"
                                     "in case of genotypic data with unknown gametic phase\n\n"
                                     "We hope to change it in a future release...\n");
    p.run(task::fu_fs);
    EXPECT_EQ(p.sample().pFusFS(), -1.0);
}

TEST_F(Blocks, RefuseMismatchDistributionsOfFrequencies) {
    AnalysedProject p(one_sample(profile_text("FREQUENCY"), "5", "a 2\nb 3\n"));
    EXPECT_EQ(p.run(task::mismatch), "Mismatch distribution cannot be computed \nin case of FREQUENCY data type.");
}

TEST_F(Blocks, PrintMismatchDistributionsWithTheirDistance) {
    std::string const heading = "\n==========================\n== Mismatch distribution : (one &amp; only)\n"
                                "==========================\n\n";
    AnalysedProject p(dna("4", "a 2 ACGT\nb 2 ACGA\n"));
    p.set.MismatchDistanceMethod = 9;
    p.set.MismatchGammaAValue = 0.5;
    std::string text = p.run(task::mismatch);
    EXPECT_EQ(text.substr(0, heading.size()), heading);
    EXPECT_TRUE(holds(text, "Distance method : Pairwise difference (Gamma correction : a=0.5)\n\n")) << text;
    EXPECT_EQ(p.sample().mismatch_[0], 2);
    EXPECT_EQ(p.sample().mismatch_[4], 4);  // a number that is no method is scaled by the four sites
    EXPECT_TRUE(holds(p.log(), "\tComputing mismatch distribution...\n\tdone ! ("));
    AnalysedProject sites(one_sample(profile_text("RFLP"), "3", "a 2 01\nb 1 00\n"));
    sites.set.MismatchGammaAValue = 0.5;  // of sequences alone
    EXPECT_TRUE(holds(sites.run(task::mismatch), "Distance method : Pairwise difference (no Gamma correction)\n\n"));
    AnalysedProject alleles(one_sample(profile_text("STANDARD", 1, "WHITESPACE"), "3", "a 2 x\nb 1 y\n"));
    alleles.set.MismatchDemogExp = alleles.set.MismatchSpatialExp = 1;
    text = alleles.run(task::mismatch);
    EXPECT_TRUE(holds(text, "Distance method : Pairwise difference (no Gamma correction)\n\n"));
    EXPECT_FALSE(holds(text, "expansion model"));
}

TEST_F(Blocks, PrintTheDistributionOfAllelesByItself) {
    AnalysedProject alleles(one_sample(profile_text("STANDARD", 1, "WHITESPACE"), "4", "a 2 x v\nb 1 y v\nc 1 y w\n"));
    EXPECT_TRUE(holds(alleles.run(task::mismatch), "Distance method : Pairwise difference (no Gamma correction)\n\n"
                                                   "Mismatch observed mean              :      1.167\n"
                                                   "Mismatch observed variance          :      0.567\n\n"
                                                   "---------------------------\n"
                                                   "        #Diff     Observed\n"
                                                   "---------------------------\n"
                                                   "          0.0          1.0\n"
                                                   "          1.0          3.0\n"
                                                   "          2.0          2.0\n"
                                                   "---------------------------\n"
                                                   "Classes without pairs of gene copies are left out\n"));
    AnalysedProject sizes(one_sample(profile_text("MICROSAT", 1, "WHITESPACE"), "3", "a 2 10\nb 1 14\n"));
    EXPECT_TRUE(holds(sizes.run(task::mismatch), "Distance method : No. of different alleles (FST) (no Gamma"));
    sizes.set.MismatchDistanceMethod = 1;
    std::string const text = sizes.run(task::mismatch);
    EXPECT_TRUE(holds(text, "Distance method : Sum of squared size difference (RST) (no Gamma correction)\n\n"));
    EXPECT_TRUE(holds(text, "          0.0          1.0\n         16.0          2.0\n-"));
    AnalysedProject alike(one_sample(profile_text("STANDARD", 1, "WHITESPACE"), "3", "a 3 x\n"));
    EXPECT_TRUE(holds(alike.run(task::mismatch),
                      ":      0.000\n\nNo pair of gene copies with a difference was counted\n"));
}

TEST_F(Blocks, GiveNoMomentsOfDistancesThatCannotBeComputed) {
    AnalysedProject p(dna("4", "a 2 AAAA\nb 2 GGGA\n"));
    p.set.MismatchDistanceMethod = 1;  // three sites of four are too many for Jukes and Cantor
    p.set.MismatchDemogExp = p.set.MismatchSpatialExp = 1;
    std::string const text = p.run(task::mismatch);
    EXPECT_TRUE(
        holds(text, "Mismatch distribution cannot be computed \nwithout the distances between all haplotypes.\n"));
    EXPECT_FALSE(holds(text, "Mismatch observed mean"));
    EXPECT_TRUE(p.sample().mismatch_.empty());
}

TEST_F(Blocks, GiveNoDistributionToDistancesOfBillions) {
    AnalysedProject p(one_sample(profile_text("MICROSAT", 1, "WHITESPACE"), "3", "a 2 1\nb 1 90000\n"));
    p.set.MismatchDistanceMethod = 1;
    EXPECT_TRUE(holds(p.run(task::mismatch), "== Mismatch distribution"));
    EXPECT_EQ(p.sample().max_mismatch(), 0);
    EXPECT_TRUE(p.sample().mismatch_.empty());
    EXPECT_TRUE(holds(p.log(), "have no mismatch distribution\n"));
}

TEST_F(Blocks, PrepareAlleleVectorsOnlyForTheMaskOfThatTaskAlone) {
    AnalysedProject p(one_sample(genotypic_profile_text("STANDARD"), "2", "i 1 A\n    B\nj 1 A\n    A\n"));
    double const before = p.alleles.locus(0)->find_allele_by_name(my_string("A"))->freq();
    p.set.print_sample_banner = true;
    EXPECT_EQ(p.run(task::prepare_permutations), "");
    EXPECT_EQ(p.alleles.locus(0)->find_allele_by_name(my_string("A"))->freq(), 2.0 * before);
    EXPECT_EQ(p.sample().phenotypes.phenotype(0).pheno_length(), 1);
    EXPECT_TRUE(holds(p.run(task::prepare_permutations | standard), "== Standard diversity indices"));
    EXPECT_EQ(p.sample().use_site().size(), 1U);
}

TEST_F(Blocks, EndAtAStopOfTheUser) {
    AnalysedProject p(dna("2", "a 1 AC\nb 1 AT\n"));
    p.set.stop = 1;
    EXPECT_EQ(p.run(standard | molecular), "");
}

TEST_F(Blocks, RepeatTheirWorkAtASecondCall) {
    AnalysedProject p(dna("10", "a 5 ACGT\nb 3 ACGA\nc 2 GCTT\n"));
    p.set.ComputeTheta = 15;
    EXPECT_EQ(p.run(standard | molecular), p.run(standard | molecular));
}

/// An open batch table in memory.
class TableInMemory {
public:
    explicit TableInMemory(BatchStream& table) : table_(table) { table_ = std::make_unique<std::ostringstream>(); }
    ~TableInMemory() { table_.reset(); }
    TableInMemory(TableInMemory const&) = delete;
    TableInMemory& operator=(TableInMemory const&) = delete;
    [[nodiscard]] std::string text() const { return static_cast<std::ostringstream&>(*table_).str(); }

private:
    BatchStream& table_;
};

TEST_F(Blocks, WriteTheRowsOfTheBatchTables) {
    AnalysedProject p(dna("10", "a 5 ACGTACGTAC\nb 3 ACGTACGTAT\nc 2 GCGTACGTAA\n"));
    p.set.ComputeTheta = theta_bit::S;
    TableInMemory const diversity(ofs_gen_div);
    TableInMemory const composition(ofs_nuc_comp);
    TableInMemory const molecular_table(ofs_mol_div);
    TableInMemory const thetas(ofs_theta);
    std::string const input = settings::input_file;
    settings::input_file = "p.tvp";
    p.run(standard | molecular);
    settings::input_file = input;
    std::string const names = "\"p.tvp\"\t\"one & only\"\t";
    EXPECT_EQ(diversity.text(), names + "10\t3\t10\t10\t2\t0.688889\n");
    EXPECT_EQ(composition.text(), names + "0.25\t0.23\t0.3\t0.22\t1\n");
    EXPECT_EQ(molecular_table.text(), names +
                                          "10\t3\t1\t1\t1\t1\t2\t1\t3\t0\t2\t2\t1\t2\t0\t10\t10\t#Diff\t inf\t"
                                          "1.04444\t0.755419\t0.104444\t0.085433\n");
    EXPECT_EQ(thetas.text(), names + "(S)\t0.706972\t0.538727\n");
}

TEST_F(Blocks, RowOfASampleWithoutDistancesKeepsItsColumns) {
    AnalysedProject p(dna("10", "a 5 AAAAAAAAAA\nb 5 TTTTTTTTTT\n"));
    p.set.DistanceMethod = 1;  // no such distance between sequences that share nothing
    TableInMemory const table(ofs_mol_div);
    p.run(standard | molecular);
    std::string const row = table.text();
    EXPECT_EQ(std::count(row.begin(), row.end(), '\t'), 24);
    EXPECT_TRUE(row.ends_with("\tJC\t inf\t-1\t-1\t-1\t-1\n")) << row;
}

TEST_F(Blocks, MismatchRowsHoldTheEstimatesOfTheirModels) {
    AnalysedProject p(dna("10", "a 5 ACGTACGTAC\nb 3 ACGTACGTAT\nc 2 GCGTACGTAA\n"));
    test::ScratchDirectory const directory;  // a table of estimates begins in the working directory
    TableInMemory const sudden(ofs_mismatch), one(ofs_mismatch_sp3), two(ofs_mismatch_sp4), alone(ofs_only_mismatch);
    p.set.MismatchDemogExp = p.set.MismatchSpatialExp = 1;
    p.set.MismatchSpatialExpNumParams = 2;
    p.set.NumBootExpDem = 0;
    p.run(task::mismatch);
    PopGenetics const& sample = p.sample();
    auto const row = [](ExpansionFit const& fit, bool theta0, bool m) {
        std::ostringstream text;
        text << "\t#Diff\t0\t" << fit.tau.value;
        if (theta0) text << '\t' << fit.theta0.value;
        text << '\t' << fit.theta1.value;
        if (m) text << '\t' << fit.m.value;
        return text.str();
    };
    std::string const counts = "14\t15\t16\n";
    EXPECT_EQ(alone.text(), counts);
    EXPECT_TRUE(sudden.text().ends_with(row(sample.demographic_fit_, true, false) + '\t' + counts)) << sudden.text();
    EXPECT_TRUE(one.text().ends_with(row(sample.spatial_one_size_fit_, false, true) + '\t' + counts)) << one.text();
    EXPECT_TRUE(two.text().ends_with(row(sample.spatial_two_sizes_fit_, true, true) + '\n')) << two.text();
    EXPECT_NE(sample.spatial_one_size_fit_.theta1.value, sample.spatial_two_sizes_fit_.theta1.value);
    EXPECT_GT(sample.spatial_two_sizes_fit_.tau.value, 0.0);
}

TEST_F(Blocks, WriteTheNumberOfPairsWithoutADistribution) {
    AnalysedProject one(dna("5", "a 5 ACGT\n"));
    AnalysedProject two(dna("4", "a 2 ACGT\nb 2 ACGA\n"));
    TableInMemory const table(ofs_mismatch);
    TableInMemory const sp3(ofs_mismatch_sp3);
    TableInMemory const sp4(ofs_mismatch_sp4);
    TableInMemory const alone(ofs_only_mismatch);
    std::string const input = settings::input_file;
    settings::input_file = "p.tvp";
    one.run(task::mismatch);
    two.run(task::mismatch);
    settings::input_file = input;
    std::string const names = "\"p.tvp\"\t\"one & only\"\t#Diff\t0\t";
    std::string const unset = "-1\t-1\t-1\t";  // no estimates
    EXPECT_EQ(table.text(), names + unset + "10\n" + names + unset + "2\t4\n");
    EXPECT_EQ(sp3.text(), table.text());
    EXPECT_EQ(sp4.text(), names + unset + "-1\n" + names + unset + "-1\n");
    EXPECT_EQ(alone.text(), "2\t4\n");
}

TEST(LocusTable, GivesEachAlleleItsFrequencyInTheSample) {
    AnalysedProject p(profile_text("STANDARD", 2, "WHITESPACE") + "[[Samples]]\n" +
                      sample_text("s", "4", "a 3 x\nb 1 w\n") + sample_text("t", "2", "c 1 x\nd 1 ?\n"));
    p.alleles.create_pop_freq_vector(2);
    for (int i = 0; i < 2; ++i) {
        p.sample(i).set_index(i);
        p.run(standard, i);
    }
    TAllele* const x = p.alleles.locus(0)->find_allele_by_name(my_string("x"));
    TAllele* const w = p.alleles.locus(0)->find_allele_by_name(my_string("w"));
    EXPECT_DOUBLE_EQ(x->pop_freq()[0], 0.75);
    EXPECT_DOUBLE_EQ(x->pop_freq()[1], 1.0);
    EXPECT_DOUBLE_EQ(w->pop_freq()[0], 0.25);
    EXPECT_DOUBLE_EQ(w->pop_freq()[1], 0.0);
    EXPECT_EQ(p.sample(1).locus_table().copies[0], 1);
}

TEST(LocusTable, LeavesAmbiguousBasesOut) {
    AnalysedProject p(dna("4", "a 2 A\nb 1 R\nc 1 -\n"));
    p.run(standard);
    EXPECT_EQ(p.sample().locus_table().copies[0], 3);
    EXPECT_EQ(p.sample().locus_table().alleles[0], 2);
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(MeanAlleleSizes, WeighHaplotypesAndIndividuals) {
    AnalysedProject haploid(one_sample(profile_text("MICROSAT", 1, "WHITESPACE"), "4", "a 3 10 ?\nb 1 14 ?\n"));
    haploid.sample().computeMeanAlleleSizes();
    EXPECT_EQ(haploid.sample().mean_allele_sizes(), (std::vector<double>{11.0, 0.0}));
    AnalysedProject diploid(one_sample(genotypic_profile_text("MICROSAT"), "3", "i 2 10\n    12\nj 1 ?\n    20\n"));
    diploid.sample().computeMeanAlleleSizes();
    EXPECT_EQ(diploid.sample().mean_allele_sizes(), (std::vector<double>{(20.0 + 24.0 + 20.0) / 5.0}));
}

}  // namespace
}  // namespace tov
