// Distance matrices of samples, and the indices that are read from them.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "diversity/popdna.h"
#include "diversity/popmic.h"
#include "diversity/poprflp.h"
#include "diversity/popsta.h"
#include "support/analysed_project.h"

namespace tov {
namespace {

using test::AnalysedProject;
using test::profile_text;
using test::reported_codes;
using test::sample_text;

std::string project(char const* type, std::string const& data, std::string const& size,
                    std::string const& separator = "NONE") {
    return profile_text(type, 1, separator) + "[[Samples]]\n" + sample_text("s", size, data);
}

constexpr char const* dna_data = "a 5 ACGTACGTAC\nb 3 ACGTACGTAT\nc 2 GCGTACGTAA\n";

TEST(DnaMatrix, HoldsDistancesBelowAndStandardErrorsAboveTheDiagonal) {
    AnalysedProject p(project("DNA", dna_data, "10"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    EXPECT_EQ(dna.compute_distance_matrix(nullptr, &p.set, 0), 1);
    RectMat const& m = dna.get_dist_mat();
    EXPECT_EQ(m(1, 0), 1.0);
    EXPECT_EQ(m(2, 0), 2.0);
    EXPECT_EQ(m(2, 1), 2.0);
    EXPECT_EQ(m(1, 1), 0.0);
    EXPECT_DOUBLE_EQ(m(0, 1), std::sqrt(0.9 * 0.1 * 10));
    EXPECT_EQ(dna.largest_distance(), 2);
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(DnaMatrix, ScalesPerSiteDistancesByTheUsableLoci) {
    AnalysedProject p(project("DNA", dna_data, "10"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    dna.set_distance({P_DIST, 0.0, {}});
    dna.compute_distance_matrix(nullptr, &p.set, 0);
    EXPECT_DOUBLE_EQ(dna.get_dist_mat()(2, 0), 0.2);
    EXPECT_EQ(dna.largest_distance(), 0);
    dna.compute_distance_matrix(nullptr, &p.set, 1);
    EXPECT_DOUBLE_EQ(dna.get_dist_mat()(2, 0), 2.0);
    EXPECT_EQ(dna.largest_distance(), 2);
    dna.set_distance({DIFF, 0.0, {}});
    dna.compute_distance_matrix(nullptr, &p.set, 1);
    EXPECT_EQ(dna.get_dist_mat()(2, 0), 2.0);
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(DnaMatrix, EqualsTheDistanceOfEachPairUnderEveryMethod) {
    AnalysedProject p(
        project("DNA", "a 1 ACGTACGTACGTACGTACGT-A\nb 1 ACGTATGTACGTRCGTAC?TAA\nc 1 ACGTACGTGCGTACTTACGTAA\n", "3"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    using PairFunction = int (PopulDNA::*)(char const*, char const*);
    std::vector<PairFunction> const functions = {&PopulDNA::diff_dist,   &PopulDNA::jk_dist,     &PopulDNA::kim2p_dist,
                                                 &PopulDNA::p_dist,      &PopulDNA::tajnei_dist, &PopulDNA::tamura_dist,
                                                 &PopulDNA::tamnei_dist, &PopulDNA::diff_dist};
    for (int method = 0; method <= 7; ++method) {
        PairFunction const of_pair = functions[static_cast<std::size_t>(method)];
        dna.set_distance({method, 0.0, {}});
        ASSERT_EQ(dna.compute_distance_matrix(nullptr, &p.set, 0), 1) << method;
        for (int i = 1; i < 3; ++i) {
            for (int j = 0; j < i; ++j) {
                ASSERT_EQ((dna.*of_pair)(dna.haplotype(i).haplotype->content.c_str(),
                                         dna.haplotype(j).haplotype->content.c_str()),
                          1);
                EXPECT_EQ(dna.get_dist_mat()(i, j), dna.pair().distance) << method;
                EXPECT_EQ(dna.get_dist_mat()(j, i), std::sqrt(dna.pair().variance)) << method;
            }
        }
    }
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(DnaMatrix, ThatCannotBeCorrectedIsReportedAndNotUsed) {
    struct Case {
        int method;
        double gamma;
        char const* data;
        std::vector<int> codes;
    };
    for (Case const& c :
         {Case{1, 0.0, "a 1 ACGT\nb 1 AAAA\n", {162, 136}}, Case{2, 0.0, "a 1 AC\nb 1 GC\n", {163, 136}},
          Case{4, 0.0, "a 1 ACT\nb 1 ACC\n", {164, 136}}, Case{5, 0.0, "a 1 AAT\nb 1 AAT\n", {171, 136}},
          Case{4, 0.0, "a 1 ACGT\nb 1 CATG\n", {165, 136}}, Case{6, 0.0, "a 1 ACGT\nb 1 GTAC\n", {176, 136}},
          Case{6, 0.7, "a 1 ACGT\nb 1 GTAC\n", {176, 136, 136}}}) {
        AnalysedProject p(project("DNA", c.data, "2"));
        auto& dna = p.sample_as<PopulDNA>();
        dna.evaluate_polymorphism(p.set);
        dna.set_distance({c.method, c.gamma, {}});
        EXPECT_EQ(dna.compute_distance_matrix(nullptr, &p.set, 0), 0) << c.method;
        EXPECT_EQ(reported_codes(), c.codes) << c.method;
        EXPECT_FALSE(dna.has_dist_mat());
        dna.set_distance({0, 0.0, {}});
        EXPECT_EQ(dna.compute_distance_matrix(nullptr, &p.set, 0), 1);
        EXPECT_TRUE(dna.has_dist_mat());
        PopGenetics::globalSubstPolymSites.Flush();
    }
}

TEST(DnaMatrix, WithoutHaplotypesReportsAnEmptyList) {
    test::FreshProcess fresh;
    reported_codes().clear();
    Errors::ErrorProc = [](ErrorType, my_string const&, int code) { reported_codes().push_back(code); };
    settings set;
    PopulDNA dna;
    EXPECT_EQ(dna.compute_distance_matrix(nullptr, &set, 0), 0);
    EXPECT_EQ(dna.comp_nucl_freq(), 0);
    PopulMicrosat microsat;
    EXPECT_EQ(microsat.compute_distance_matrix(nullptr, &set, 0), 0);
    PopulStandard standard;
    EXPECT_EQ(standard.compute_distance_matrix(nullptr, &set, 0), 0);
    PopulRFLP rflp;
    EXPECT_EQ(rflp.compute_distance_matrix(nullptr, &set, 0), 0);
    EXPECT_EQ(reported_codes(), (std::vector<int>{108, 108, 108, 108, 108}));
}

TEST(DnaMatrix, EndsWhenTheUserStops) {
    AnalysedProject p(project("DNA", dna_data, "10"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    p.set.stop = 1;
    EXPECT_EQ(dna.compute_distance_matrix(nullptr, &p.set, 0), 0);
    EXPECT_FALSE(dna.has_dist_mat());
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(DnaMatrix, IsWrittenToAStream) {
    AnalysedProject p(project("DNA", "a 1 AC\nb 1 AT\n", "2"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    std::ostringstream out;
    dna.compute_distance_matrix(&out, &p.set, 0);
    EXPECT_EQ(out.str(), "\nInter-haplotypic distance matrix:\n          0.7071\n  1.0000        \n");
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(NucleotideFrequencies, AreNormalisedOverTheFourBases) {
    AnalysedProject p(project("DNA", "a 3 ACGT-?\nb 1 AAAAAA\n", "4"));
    auto& dna = p.sample_as<PopulDNA>();
    EXPECT_EQ(dna.comp_nucl_freq(), 1);
    NucleotideFrequencies const& f = dna.nucleotide_frequencies();
    EXPECT_DOUBLE_EQ(f.a, 9.0 / 18.0);
    EXPECT_DOUBLE_EQ(f.c, 3.0 / 18.0);
    EXPECT_DOUBLE_EQ(f.theta(), 6.0 / 18.0);
}

TEST(RflpMatrix, CountsSitesOrTheirShare) {
    AnalysedProject p(project("RFLP", "a 1 0101\nb 1 0110\nc 1 0?-1\n", "3"));
    auto& rflp = p.sample_as<PopulRFLP>();
    rflp.evaluate_polymorphism(p.set);
    rflp.compute_distance_matrix(nullptr, &p.set, 1);
    EXPECT_EQ(rflp.get_dist_mat()(1, 0), 2.0);
    EXPECT_EQ(rflp.get_dist_mat()(2, 0), 1.0);
    EXPECT_DOUBLE_EQ(rflp.get_dist_mat()(0, 1), 1.0);
    rflp.set_distance({RFLP_P_DIST, 0.0, {}});
    rflp.compute_distance_matrix(nullptr, &p.set, 0);
    EXPECT_DOUBLE_EQ(rflp.get_dist_mat()(1, 0), 0.5);
    rflp.compute_distance_matrix(nullptr, &p.set, 1);
    EXPECT_DOUBLE_EQ(rflp.get_dist_mat()(1, 0), 2.0);
    rflp.set_distance({0, 0.0, {.deletion = 0.0}});
    rflp.compute_distance_matrix(nullptr, &p.set, 0);
    EXPECT_EQ(rflp.get_dist_mat()(2, 0), 0.0);
}

TEST(RflpPair, CountsByHand) {
    // equal, changed, equal, gap, missing, missing, changed
    AnalysedProject p(project("RFLP", "a 3 0111000\nb 1 001-??1\nc 1 0111000\n", "5"));
    auto& rflp = p.sample_as<PopulRFLP>();
    EXPECT_EQ(rflp.diff_no_weight("0111000", "001-??1"), 0) << "no site is known to be usable yet";
    EXPECT_EQ(rflp.pair().distance, 0.0);
    EXPECT_EQ(rflp.p_diff("0111000", "001-??1"), 0);
    EXPECT_EQ(rflp.pair().distance, 0.0);
    EXPECT_EQ(rflp.pair().variance, 0.0);
    rflp.evaluate_polymorphism(p.set);
    ASSERT_EQ(rflp.nb_usable_loci(), 7);
    ASSERT_EQ(rflp.diff_no_weight("0111000", "001-??1"), 1);
    EXPECT_EQ(rflp.pair().distance, 3.0);
    EXPECT_DOUBLE_EQ(rflp.pair().variance, 7.0 * (4.0 / 7.0) * (3.0 / 7.0));
    ASSERT_EQ(rflp.p_diff("0111000", "001-??1"), 1);
    EXPECT_DOUBLE_EQ(rflp.pair().distance, 3.0 / 7.0);
    EXPECT_DOUBLE_EQ(rflp.pair().variance, (4.0 / 7.0) * (3.0 / 7.0) / 7.0);
    rflp.set_deletion_weight(0.0);
    ASSERT_EQ(rflp.diff_no_weight("0111000", "001-??1"), 1);
    EXPECT_EQ(rflp.pair().distance, 2.0);
    EXPECT_DOUBLE_EQ(rflp.pair().variance, 7.0 * (5.0 / 7.0) * (2.0 / 7.0));
}

TEST(RflpMatrix, WithoutUsableSitesFails) {
    AnalysedProject p(project("RFLP", "a 1 0?\nb 1 1?\n", "2"));
    p.set.AllowedLevelOfMissingData = -1.0;
    auto& rflp = p.sample_as<PopulRFLP>();
    rflp.evaluate_polymorphism(p.set);
    EXPECT_EQ(rflp.compute_distance_matrix(nullptr, &p.set, 0), 0);
    EXPECT_EQ(reported_codes(), (std::vector<int>{136}));
}

TEST(MicrosatMatrix, CountsLociOrSquaresSizes) {
    AnalysedProject p(project("MICROSAT", "a 1 10 20 30\nb 1 12 20 ?\nc 1 10 23 31\n", "3", "WHITESPACE"));
    auto& m = p.sample_as<PopulMicrosat>();
    m.evaluate_polymorphism(p.set);
    m.compute_distance_matrix(nullptr, &p.set, 1);
    EXPECT_EQ(m.get_dist_mat()(1, 0), 1.0);
    EXPECT_EQ(m.get_dist_mat()(2, 0), 2.0);
    EXPECT_EQ(m.get_dist_mat()(0, 2), 0.0);  // the upper triangle stays as it is
    m.set_distance({1, 0.0, {}});
    m.compute_distance_matrix(nullptr, &p.set, 1);
    EXPECT_EQ(m.get_dist_mat()(1, 0), 4.0);
    EXPECT_EQ(m.get_dist_mat()(2, 0), 10.0);
    EXPECT_EQ(m.get_dist_mat()(2, 1), 13.0);
    EXPECT_EQ(m.largest_distance(), 13);
}

TEST(MicrosatMatrix, TellsTheLogItsTime) {
    AnalysedProject p(project("MICROSAT", "a 1 10\nb 1 12\n", "2", "WHITESPACE"));
    auto& m = p.sample_as<PopulMicrosat>();
    m.evaluate_polymorphism(p.set);
    m.compute_distance_matrix(nullptr, &p.set, 0);
    EXPECT_NE(p.log().find("\t\tBeginning distance computations ...\n\t\tdone ! ("), std::string::npos);
}

TEST(MicrosatMatrix, RefusesAnInfiniteSize) {
    AnalysedProject p(project("MICROSAT", "a 1 10\nb 1 " + std::string(400, '9') + "\n", "2", "WHITESPACE"));
    auto& m = p.sample_as<PopulMicrosat>();
    m.evaluate_polymorphism(p.set);
    EXPECT_EQ(m.compute_distance_matrix(nullptr, &p.set, 0), 0);
    EXPECT_EQ(reported_codes(), (std::vector<int>{121}));
}

TEST(StandardMatrix, CountsLociWithDifferentAlleles) {
    AnalysedProject p(project("STANDARD", "a 1 x y z\nb 1 x q ?\nc 1 w q z\n", "3", "WHITESPACE"));
    auto& s = p.sample_as<PopulStandard>();
    s.evaluate_polymorphism(p.set);
    s.compute_distance_matrix(nullptr, &p.set, 0);
    EXPECT_EQ(s.get_dist_mat()(1, 0), 1.0);
    EXPECT_EQ(s.get_dist_mat()(2, 0), 2.0);
    EXPECT_EQ(s.get_dist_mat()(2, 1), 1.0);
    EXPECT_EQ(s.get_dist_mat()(0, 1), 0.0);
}

TEST(StandardMatrix, TakesMoreAllelesThanAByteHolds) {
    std::string data;
    for (int i = 0; i < 300; ++i) data += "h" + std::to_string(i) + " 1 a" + std::to_string(i) + " b\n";
    AnalysedProject p(project("STANDARD", data, "300", "WHITESPACE"));
    auto& s = p.sample_as<PopulStandard>();
    s.evaluate_polymorphism(p.set);
    s.compute_distance_matrix(nullptr, &p.set, 0);
    double sum = 0.0;
    for (int i = 0; i < 300; ++i) {
        for (int j = 0; j < i; ++j) sum += s.get_dist_mat()(i, j);
    }
    EXPECT_EQ(sum, 300 * 299 / 2);
}

TEST(ConventionalMatrix, ReadsAsZeroAndOneOverTheCountsOfLoci) {
    AnalysedProject p(project("STANDARD", "a 1 x y\nb 1 w q\n", "2", "WHITESPACE"));
    auto& s = p.sample_as<PopulStandard>();
    s.evaluate_polymorphism(p.set);
    std::ostringstream out;
    s.compute_dist_mat_for_conventional_FST(out, p.set);
    EXPECT_TRUE(s.has_dist_mat());
    EXPECT_EQ(s.get_dist_mat()(1, 0), 1.0);
    EXPECT_EQ(s.get_dist_mat()(0, 0), 0.0);
    EXPECT_EQ(s.get_dist_mat().row(1)[0], 2.0);
    EXPECT_EQ(s.get_dist_mat().row(0)[1], 2.0);
}

TEST(RealHaplotypes, AreThoseAtADistanceFromEachOther) {
    AnalysedProject p(project("DNA", "a 2 AC\nb 3 A?\nc 4 TC\nd 5 AC\n", "14"));
    PopGenetics& s = p.sample();
    RectMat m(4, 4);
    m(1, 0) = 0;
    m(2, 0) = m(2, 1) = 1;
    m(3, 0) = m(3, 1) = 0;
    m(3, 2) = 1;
    MY_TISArrayAsVector<AHaplFreq> freqs;
    s.check_hapl_freqs(m, freqs);
    ASSERT_EQ(freqs.GetItemsInContainer(), 2);
    EXPECT_EQ(freqs[0]->frequency, 4.0);
    EXPECT_EQ(freqs[1]->frequency, 10.0);
    EXPECT_DOUBLE_EQ(s.calc_F(freqs), (16.0 + 100.0) / 196.0);
}

// --- Molecular diversity against a walk over all pairs of gene copies ---

double mean_over_copies(PopGenetics const& s, RectMat const& m) {
    std::vector<int> copies;
    for (int i = 0; i < s.nb_haplotypes(); ++i) copies.insert(copies.end(), s.haplotype(i).copies, i);
    double sum = 0.0;
    int pairs = 0;
    for (std::size_t a = 0; a < copies.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b, ++pairs) {
            int const i = std::max(copies[a], copies[b]);
            int const j = std::min(copies[a], copies[b]);
            sum += i == j ? 0.0 : m(i, j);
        }
    }
    return sum / pairs;
}

TEST(MolecularDiversity, IsTheMeanOverAllPairsOfGeneCopies) {
    AnalysedProject p(project("DNA", dna_data, "10"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    for (int const method : {0, 1, 3}) {
        dna.set_distance({method, 0.0, {}});
        dna.compute_distance_matrix(nullptr, &p.set, 0);
        EXPECT_EQ(dna.compute_molecular_diversity(p.set), 1);
        double const mean = mean_over_copies(dna, dna.get_dist_mat()) * (method == 0 ? 1.0 : 10.0);
        EXPECT_NEAR(dna.pi(), mean, 1e-12);
        EXPECT_NEAR(dna.nucleotide_diversity(), mean / 10.0, 1e-12);
        EXPECT_GT(dna.sd_pi(), 0.0);
    }
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(MolecularDiversity, MakesTheMatrixWhenThereIsNone) {
    AnalysedProject p(project("DNA", dna_data, "10"));
    auto& dna = p.sample_as<PopulDNA>();
    dna.evaluate_polymorphism(p.set);
    p.set.TransitionWeight = 2.0;
    EXPECT_EQ(dna.compute_molecular_diversity(p.set), 1);
    EXPECT_TRUE(dna.has_dist_mat());
    EXPECT_EQ(dna.get_dist_mat()(1, 0), 2.0);
    PopGenetics::globalSubstPolymSites.Flush();
}

TEST(MolecularDiversity, OfMicrosatellitesBySizeHasNoPairs) {
    AnalysedProject p(project("MICROSAT", "a 2 10\nb 3 12\n", "5", "WHITESPACE"));
    auto& m = p.sample_as<PopulMicrosat>();
    m.evaluate_polymorphism(p.set);
    m.compute_distance_matrix(nullptr, &p.set, 0);
    m.compute_molecular_diversity(p.set);
    EXPECT_DOUBLE_EQ(m.pi(), 0.6);
    m.set_distance({1, 0.0, {}});
    m.compute_distance_matrix(nullptr, &p.set, 0);
    m.compute_molecular_diversity(p.set);
    EXPECT_EQ(m.pi(), 0.0);
}

TEST(MolecularDiversity, OfStandardDataHasItsOwnDeviation) {
    AnalysedProject p(project("STANDARD", "a 10 x y\nb 10 w q\n", "20", "WHITESPACE"));
    auto& s = p.sample_as<PopulStandard>();
    s.evaluate_polymorphism(p.set);
    s.compute_distance_matrix(nullptr, &p.set, 0);
    s.compute_molecular_diversity(p.set);
    double const pi = 2.0 * 100.0 / 190.0;
    double const m = 1.1 * 400.0;
    EXPECT_DOUBLE_EQ(s.pi(), pi);
    EXPECT_DOUBLE_EQ(s.sd_pi(), std::sqrt((3 * (20 + m) * pi + 2 * (3 + 20 + m) * pi * pi) / (6 + 11 * m - 140)));
    EXPECT_DOUBLE_EQ(s.nucleotide_diversity(), pi / 2.0);
}

}  // namespace
}  // namespace tov
