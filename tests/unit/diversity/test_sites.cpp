// Usable and polymorphic sites and loci of samples of all data types, and the checks of their counts.
#include <gtest/gtest.h>

#include <map>

#include "diversity/popdna.h"
#include "diversity/popmic.h"
#include "diversity/poprflp.h"
#include "diversity/popsta.h"
#include "support/analysed_project.h"
#include "support/text.h"

namespace tov {
namespace {

using test::AnalysedProject;
using test::profile_text;
using test::reported_codes;
using test::sample_text;

std::string dna_project(std::string const& data, std::string const& size) {
    return profile_text("DNA") + "[[Samples]]\n" + sample_text("s", size, data);
}

TEST(DnaSites, WithMissingDataExactlyAtTheAllowedLevelStayUsable) {
    AnalysedProject p(dna_project("a 3 ACGT\nb 1 A?GA\n", "4"));
    auto& dna = p.sample_as<PopulDNA>();
    p.set.AllowedLevelOfMissingData = 0.25;
    dna.evaluate_polymorphism(p.set);
    EXPECT_EQ(dna.use_site(), (std::vector<int>{1, 1, 1, 1}));
    EXPECT_DOUBLE_EQ(dna.missDataForLocus(1), 0.25);
    EXPECT_EQ(dna.nb_usable_loci(), 4);
    p.set.AllowedLevelOfMissingData = 0.20;
    dna.evaluate_polymorphism(p.set);
    EXPECT_EQ(dna.use_site(), (std::vector<int>{1, 0, 1, 1}));
    EXPECT_EQ(dna.nb_usable_loci(), 3);
    EXPECT_EQ(dna.usableSite(-1), 0);
    EXPECT_EQ(dna.usableSite(4), 0);
    EXPECT_EQ(dna.missDataForLocus(9), 0.0);
}

TEST(DnaSites, AreCountedByTheKindOfChange) {
    //             sites: ts, tv, two tv, ts+tv, indel, ambiguous, none, all missing or gap
    AnalysedProject p(dna_project("a 1 AACAAAA?\nb 1 GCAGAAA-\nc 1 AAGC-BA?\n", "3"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    SubstitutionCounts const& c = dna.substitution_counts();
    EXPECT_EQ(c.transition_sites, 2);
    EXPECT_EQ(c.transitions, 2);
    EXPECT_EQ(c.transversion_sites, 3);
    EXPECT_EQ(c.transversions, 4);  // C against A and against G
    EXPECT_EQ(c.substitutions, 6);
    EXPECT_EQ(c.substitution_sites, 4);
    EXPECT_EQ(c.indel_sites, 1);
    EXPECT_EQ(c.indels, 1);
    EXPECT_EQ(dna.numPolymSites(), 6);
    EXPECT_EQ(dna.polym_sites, (std::vector<int>{1, 1, 1, 1, 1, 1, 0, 0}));
    EXPECT_EQ(dna.use_site(), (std::vector<int>{1, 1, 1, 1, 1, 1, 1, 0}));
    EXPECT_EQ(dna.segregating_sites(), 4);
    EXPECT_TRUE(dna.has_substitution(0));
    EXPECT_FALSE(dna.has_substitution(4));
    EXPECT_FALSE(dna.has_substitution(99));
    EXPECT_EQ(PopGenetics::globalSubstPolymSites[3], 1);
    EXPECT_EQ(PopGenetics::globalSubstPolymSites[4], 0);
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(DnaSites, WithoutWeightAreNotCounted) {
    AnalysedProject p(dna_project("a 1 AAA\nb 1 GC-\n", "2"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.set_distance({0, 0.0, {.transition = 0.0, .transversion = 1.0, .deletion = 0.0}});
    dna.evaluate_polymorphism(p.set);
    EXPECT_EQ(dna.substitution_counts().transition_sites, 0);
    EXPECT_EQ(dna.substitution_counts().indel_sites, 0);
    EXPECT_EQ(dna.numPolymSites(), 1);
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(DnaSites, ClassifyABaseAgainstACodeByTheBasesItStandsFor) {
    PopulDNA const dna;
    std::map<char, std::string> const bases{{'A', "A"},   {'C', "C"},   {'G', "G"},   {'T', "T"},   {'R', "AG"},
                                            {'Y', "CT"},  {'S', "CG"},  {'W', "AT"},  {'K', "GT"},  {'M', "AC"},
                                            {'B', "CGT"}, {'D', "AGT"}, {'H', "ACT"}, {'V', "ACG"}, {'N', "ACGT"}};
    for (char const base : std::string("ACGT")) {
        std::string const partner(1, base == 'A' ? 'G' : base == 'G' ? 'A' : base == 'C' ? 'T' : 'C');
        for (auto const& [code, meant] : bases) {
            if (code == base) continue;
            int expected = 4;  // an ambiguity code that excludes the base
            if (test::holds(meant, std::string(1, base))) {
                expected = 0;
            } else if (meant == partner) {
                expected = 1;
            } else if (!test::holds(meant, partner)) {
                expected = 2;  // transversions alone
            }
            EXPECT_EQ(dna.compare_nucleotides(base, code), expected) << base << code;
        }
        EXPECT_EQ(dna.compare_nucleotides(base, '-'), 3) << base;
        EXPECT_EQ(dna.compare_nucleotides('-', base), 3) << base;
        EXPECT_EQ(dna.compare_nucleotides(base, '?'), 0) << base;
    }
    EXPECT_EQ(dna.compare_nucleotides('0', '1'), 4);
    EXPECT_EQ(dna.compare_nucleotides('1', '-'), 3);
    EXPECT_EQ(dna.compare_nucleotides('-', '1'), 0);
    EXPECT_EQ(dna.compare_nucleotides('B', '-'), 0);
}

TEST(DnaSites, TakeTheirReferenceFromTheFirstHaplotypeThatIsKnown) {
    AnalysedProject p(dna_project("a 1 ?-AC\nb 1 G?A?\nc 1 TTAC\n", "3"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    EXPECT_EQ(dna.reference_, "GTAC");
    EXPECT_EQ(dna.substitution_counts().transversion_sites, 1);
    EXPECT_EQ(dna.nb_usable_loci(), 4);
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(CheckData, ReportsCountsAndLengthsThatDiffer) {
    AnalysedProject p(dna_project("a 1 ACGT\nb 1 ACGA\n", "2"));
    PopGenetics& s = p.sample();
    EXPECT_EQ(s.check_data(), 1);
    s.set_sample_size(3);
    EXPECT_EQ(s.check_data(), 0);
    s.set_sample_size(2);
    s.nb_diff_haplotypes = 5;
    EXPECT_EQ(s.check_data(), 0);
    s.nb_diff_haplotypes = 2;
    p.project.haplotypes[1].content = "ACG";
    EXPECT_EQ(s.check_data(), 0);
    EXPECT_EQ(reported_codes(), (std::vector<int>{110, 111, 161}));
}

TEST(RflpSites, ArePolymorphicByTheirStates) {
    AnalysedProject p(profile_text("RFLP") + "[[Samples]]\n" + sample_text("s", "3", "a 1 01-0\nb 1 0110\nc 1 00?0\n"));
    auto& rflp = p.sample_as<PopulRFLP>();
    rflp.evaluate_polymorphism(p.set);
    EXPECT_EQ(rflp.polym_sites, (std::vector<int>{0, 1, 1, 0}));
    EXPECT_EQ(rflp.numPolymSites(), 2);
    EXPECT_EQ(rflp.segregating_sites(), 2);
    rflp.set_deletion_weight(0.0);
    rflp.evaluate_polymorphism(p.set);
    EXPECT_EQ(rflp.polym_sites, (std::vector<int>{0, 1, 0, 0}));
    EXPECT_EQ(rflp.compare_sites('0', '1'), 1);
    EXPECT_EQ(rflp.compare_sites('0', '-'), 2);
    EXPECT_EQ(rflp.compare_sites('0', '?'), 0);
    EXPECT_EQ(rflp.compare_sites('-', '-'), 0);
}

TEST(Loci, OfGenotypesAreReadFromTheIndividuals) {
    AnalysedProject p(test::genotypic_profile_text("STANDARD") + "[[Samples]]\n" +
                      sample_text("s", "3", "i 1 A B ?\n    A C ?\nj 2 A B Q\n    ? B ?\n"));
    auto& s = p.sample_as<PopulStandard>();
    p.set.AllowedLevelOfMissingData = 0.5;
    s.evaluate_polymorphism(p.set);
    EXPECT_EQ(s.nb_loci(), 3);
    EXPECT_DOUBLE_EQ(s.missDataForLocus(0), 2.0 / 6.0);
    EXPECT_DOUBLE_EQ(s.missDataForLocus(2), 4.0 / 6.0);
    EXPECT_EQ(s.use_site(), (std::vector<int>{1, 1, 0}));
    EXPECT_EQ(s.polym_sites, (std::vector<int>{0, 1, 0}));
}

TEST(NewPopulation, MakesTheClassOfEachDataType) {
    EXPECT_NE(dynamic_cast<PopulDNA*>(new_population(DNA).get()), nullptr);
    EXPECT_NE(dynamic_cast<PopulRFLP*>(new_population(RFLP).get()), nullptr);
    EXPECT_NE(dynamic_cast<PopulMicrosat*>(new_population(MICROSAT).get()), nullptr);
    EXPECT_NE(dynamic_cast<PopulStandard*>(new_population(STANDARD).get()), nullptr);
    EXPECT_NE(dynamic_cast<PopulStandard*>(new_population(FREQUENCY).get()), nullptr);
}

TEST(PopGenetics, BeginsWithUnsetStatistics) {
    PopulDNA s;
    EXPECT_EQ(s.tajimaD(), -1.0);
    EXPECT_EQ(s.thetaK(), -1.0);
    EXPECT_EQ(s.pi(), -1.0);
    EXPECT_EQ(s.heterozygosity(), -1.0);
    EXPECT_EQ(s.mismatch_bin_width_, 1);
    EXPECT_FALSE(s.has_dist_mat());
    s.pi_ = 3.0;
    s.theta_k_ = 2.0;
    s.initialize();
    EXPECT_EQ(s.pi(), -1.0);
    EXPECT_EQ(s.thetaK(), -1.0);
}

}  // namespace
}  // namespace tov
