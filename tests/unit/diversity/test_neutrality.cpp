// Neutrality tests of samples: simulated samples, what the blocks store and print, and their edge cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "diversity/blocks.h"
#include "diversity/formula/ewens.h"
#include "diversity/formula/tajima.h"
#include "diversity/formula/theta.h"
#include "diversity/neutral_simulation.h"
#include "diversity/popdna.h"
#include "diversity/popmic.h"
#include "diversity/poprflp.h"
#include "diversity/popsta.h"
#include "input/settings.h"
#include "output/glbobj.h"
#include "output/xml.h"
#include "simulation/genealgy.h"
#include "support/fresh_process.h"

namespace tov {
namespace {

struct Entry {
    std::string sequence;
    int copies;
};

/// A sample of class Pop with its settings and its document.
template <class Pop>
class SampleUnderTest {
public:
    explicit SampleUnderTest(std::vector<Entry> const& entries) {
        fresh.keep(xmlOutput, false);
        fresh.keep(PopGenetics::globalSubstPolymSites);
        int n = 0;
        for (Entry const& entry : entries) {
            auto* const definition = new HaploDef(my_string(static_cast<int>(pop.haplotypes.GetItemsInContainer())),
                                                  my_string(entry.sequence));
            definitions_.emplace_back(definition);
            pop.haplotypes.Add(new PHaploDef(definition, entry.copies));
            n += entry.copies;
        }
        pop.set_sample_size(n);
        pop.nb_original_haplotypes = static_cast<int>(entries.size());
        pop.set_name("here");
        set.reset_initial_values();
        set.NumSimulFuTest = 200;
        set.NumIterationsNeutralityTests = 300;
        set.EwensWattersonHomozygosityTest = 1;
        old_stream_ = set.set_ofs(&document_);
        set.print_sample_banner = false;
    }
    ~SampleUnderTest() { set.set_ofs(old_stream_); }
    SampleUnderTest(SampleUnderTest const&) = delete;
    SampleUnderTest& operator=(SampleUnderTest const&) = delete;

    void run(long tasks) {
        set.TaskNumber = tasks;
        document_.str("");
        test::FreshProcess const as_alone;
        pop.test_methods(set);
        log = as_alone.log();
    }
    [[nodiscard]] std::string document() const { return document_.str(); }
    [[nodiscard]] bool prints(std::string const& text) const { return document().find(text) != std::string::npos; }
    [[nodiscard]] bool logs(std::string const& text) const { return log.find(text) != std::string::npos; }

    test::FreshProcess fresh;
    settings set;
    Pop pop;
    std::string log;

private:
    std::vector<std::unique_ptr<HaploDef>> definitions_;
    std::ostringstream document_;
    std::ostream* old_stream_ = nullptr;
};

std::vector<Entry> const dna_entries{{"ACGTACGTACGTACGTACGT", 4},
                                     {"ACGTACGTACGTACGTACGC", 3},
                                     {"GCGTACGTACTTACGTACGT", 2},
                                     {"ACGAACGTACGTACGTACGT", 1},
                                     {"ACGTACGTACGTGCGTAAGT", 2}};
std::vector<Entry> const rflp_entries{{"0101010101", 4}, {"1101010101", 3}, {"0101010011", 2}, {"0101110101", 1}};

// --- Simulated samples ---

/// Counts from the mutations against the analysis of the simulated sequences.
template <class Pop>
void compare_counts(std::vector<Entry> const& entries, Mut_Type type, double theta, SiteWeights const& weights) {
    SampleUnderTest<Pop> s(entries);
    s.pop.check_data();
    s.pop.evaluate_polymorphism(s.set);
    NeutralSimulation simulation(s.pop, s.set, type, theta, weights);
    ASSERT_TRUE(simulation.counts_suffice());
    for (int r = 0; r < 60; ++r) {
        SimulatedSample const counted = simulation.next_haplotypes();
        SimulatedSample const analysed = simulation.analyse_sequences();
        ASSERT_EQ(counted.pi, analysed.pi) << theta << ' ' << r;
        ASSERT_EQ(counted.sites, analysed.sites) << theta << ' ' << r;
        ASSERT_EQ(counted.haplotypes, analysed.haplotypes) << theta << ' ' << r;
    }
}

TEST(SimulatedDnaSample, CountsAreThoseOfItsSequences) {
    for (double const theta : {0.0, 0.5, 4.0, 25.0}) {
        compare_counts<PopulDNA>(dna_entries, MUT_NUCLEOTIDES, theta, {1.0, 1.0, 0.0});
        compare_counts<PopulDNA>(dna_entries, MUT_NUCLEOTIDES, theta, {1.0, 2.0, 1.0});
        compare_counts<PopulDNA>(dna_entries, MUT_NUCLEOTIDES, theta, {0.0, 3.0, 1.0});
        compare_counts<PopulDNA>(dna_entries, MUT_NUCLEOTIDES, theta, {1.0, -1.0, 1.0});
    }
}

TEST(SimulatedRflpSample, CountsAreThoseOfItsSequences) {
    for (double const theta : {0.5, 4.0, 25.0}) {
        compare_counts<PopulRFLP>(rflp_entries, MUT_BINARY, theta, {1.0, 1.0, 1.0});
    }
}

TEST(SimulatedDnaSample, WithFractionalWeightsIsAnalysedAsSequences) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.pop.evaluate_polymorphism(s.set);
    NeutralSimulation simulation(s.pop, s.set, MUT_NUCLEOTIDES, 5.0, {0.5, 1.0, 0.0});
    EXPECT_FALSE(simulation.counts_suffice());
    for (int r = 0; r < 20; ++r) {
        SimulatedSample const sample = simulation.next_haplotypes();
        SiteStatistics const sites = s.pop.getGeneTree().site_statistics();
        double const n = s.pop.nb_genes();
        EXPECT_NEAR(sample.pi,
                    (0.5 * static_cast<double>(sites.transitions) + static_cast<double>(sites.transversions)) /
                        (0.5 * n * (n - 1.0)),
                    1e-12);
        EXPECT_EQ(sample.sites, sites.segregating_sites);
        EXPECT_EQ(sample.haplotypes, s.pop.getGeneTree().distinct_tips());
    }
}

TEST(SimulatedDnaSample, LeavesTheSitesOfTheProjectAlone) {
    SampleUnderTest<PopulDNA> s({{"AAAAAAAAAA", 3}, {"GAAAAAAAAA", 3}});
    s.pop.evaluate_polymorphism(s.set);
    NeutralSimulation simulation(s.pop, s.set, MUT_NUCLEOTIDES, 20.0, {0.5, 1.0, 0.0});
    for (int r = 0; r < 20; ++r) {
        EXPECT_GE(simulation.next_sites().sites, 0);
    }
    EXPECT_EQ(PopGenetics::globalSubstPolymSites[0], 1);
    for (int site = 1; site < 10; ++site) {
        EXPECT_EQ(PopGenetics::globalSubstPolymSites[site], 0);
    }
}

TEST(SimulatedSample, SpellsItsTips) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    test::FreshProcess const seeded(0);
    random_state.ran3.seed(-1);
    s.pop.set_sample_size(6);
    TNode::hits.Flush();
    EXPECT_EQ(s.pop.simulate_sample(1.5, 20, MUT_NUCLEOTIDES, 0.0, 1.0, 1.0, 0.33), 1);
    TNode::hits.Flush();
    PopulDNA copy;
    Haplo_DB database;
    ASSERT_EQ(copy.read_simulated_sample(s.pop.getGeneTree(), database, MUT_NUCLEOTIDES), 1);
    ASSERT_EQ(copy.nb_haplotypes(), 4);
    char const* const ids[] = {"1", "2", "3", "4"};
    char const* const sequences[] = {"GAGGCCAACTTCGACACGTG", "CTACCCAACTTCGACACGTG", "CTACATTTCTTCGACACGTG",
                                     "CTACATTACTTCGACACGTG"};
    int const copies[] = {1, 2, 1, 2};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(copy.haplotype(i).haplotype->id, my_string(ids[i]));
        EXPECT_EQ(copy.haplotype(i).haplotype->content, my_string(sequences[i]));
        EXPECT_EQ(copy.haplotype(i).copies, copies[i]);
    }
    EXPECT_EQ(copy.nb_genes(), 6.0);
    EXPECT_EQ(database.size(), 4);
}

TEST(SimulatedSample, WritesWholeNumbersWithSeparators) {
    test::FreshProcess const fresh;
    PopulMicrosat pop;
    pop.set_sample_size(5);
    TNode::hits.Flush();
    pop.simulate_sample(5.0, 3, MUT_STEPWISE, 0.0, 1.0, 1.0, 0.33);
    TNode::hits.Flush();
    PopulMicrosat copy;
    copy.profile.LocusSeparator = '/';
    Haplo_DB database;
    ASSERT_EQ(copy.read_simulated_sample(pop.getGeneTree(), database, MUT_STEPWISE), 1);
    myVectInt const& first = *pop.getGeneTree()[0].sequence;
    std::ostringstream text;
    text << first[0] << '/' << first[1] << '/' << first[2];
    EXPECT_EQ(copy.haplotype(0).haplotype->content, my_string(text.str()));
}

TEST(SimulatedSample, OfAnotherNumberOfSitesIsRefused) {
    test::FreshProcess fresh;
    PopulDNA pop;
    pop.set_sample_size(5);
    TNode::hits.Flush();
    EXPECT_EQ(pop.sprinkle_mutations(0.0, 10, MUT_BINARY, 0.0, 1.0, 1.0, 0.33), 0);
    pop.fast_build_tree();
    EXPECT_EQ(pop.sprinkle_mutations(50.0, 11, MUT_BINARY, 0.0, 1.0, 1.0, 0.33), 0);
    EXPECT_EQ(pop.getGeneTree().site_statistics().segregating_sites, 0);
    EXPECT_NE(fresh.log().find("hits vector has a bad size"), std::string::npos);
    TNode::hits.Flush();
}

// The mean of D in a constant population is a little below 0; here by an independent simulation of 2e6 samples of 15
// copies with theta = 2.152808 on 150 sites.
TEST(TajimaReplicates, HaveTheKnownMeanOfD) {
    std::vector<Entry> entries{{std::string(150, 'A'), 14}, {"G" + std::string(149, 'A'), 1}};
    SampleUnderTest<PopulDNA> s(entries);
    s.pop.evaluate_polymorphism(s.set);
    double const theta = 2.152808;
    NeutralSimulation simulation(s.pop, s.set, MUT_NUCLEOTIDES, theta, {1.0, 1.0, 0.0});
    TajimaTerms const terms = tajima_terms(15, SquaredTerms::inverse_twice);
    constexpr int m = 40000;
    double sum = 0.0;
    double squares = 0.0;
    for (int r = 0; r < m; ++r) {
        SimulatedSample const sample = simulation.next_sites();
        double const D = fast_tajima_d(terms, sample.pi, sample.sites).D;
        sum += D;
        squares += D * D;
    }
    double const sd = std::sqrt(squares / m - sum / m * sum / m);
    EXPECT_NEAR(sum / m, -0.05848370767, 4.0 * sd / std::sqrt(m));
    EXPECT_NEAR(sd, 0.9443038705, 0.02);
}

// --- Tajima's block ---

TEST(TajimaBlock, StoresAndPrintsItsTest) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.run(task::tajima);
    EXPECT_TRUE(s.prints("== Tajima's test of selective neutrality : (here)\n" + std::string(42, '=')));
    EXPECT_TRUE(s.prints("Sample size                           : 12\n"));
    EXPECT_TRUE(s.prints("No. of sites with substitutions (S)   : 6\n"));
    TajimaD const d = tajima_d(tajima_terms(12, SquaredTerms::inverse_of_square), s.pop.pi(), 6.0);
    EXPECT_EQ(s.pop.tajimaD(), d.D);
    EXPECT_GT(s.pop.pTajimaD(), 0.0);
    EXPECT_LE(s.pop.pTajimaD(), 1.0);
    EXPECT_TRUE(s.prints("\nNo. of simulations                    : 200\n"));
    EXPECT_TRUE(s.prints("\n\nP(D simul &lt; D obs)                    : "));
    EXPECT_TRUE(TNode::hits.IsEmpty());
}

TEST(TajimaBlock, WithoutSitesHasPOneFromItsReplicates) {
    SampleUnderTest<PopulDNA> s({{"ACGT", 5}});
    s.run(task::tajima);
    EXPECT_EQ(s.pop.tajimaD(), 0.0);
    EXPECT_EQ(s.pop.pTajimaD(), 1.0);
}

TEST(TajimaBlock, WithoutReplicatesKeepsItsP) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.set.NumSimulFuTest = 0;
    s.run(task::tajima);
    EXPECT_EQ(s.pop.pTajimaD(), -1.0);
    EXPECT_TRUE(s.prints("Tajima's D                            : "));
    EXPECT_FALSE(s.prints("No. of simulations"));
}

TEST(TajimaBlock, RestoresPiOfTheMolecularBlockOnly) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.set.NumSimulFuTest = 10;
    s.set.DistanceMethod = 1;
    s.set.ComputeTheta = 15;
    s.run(task::molecular_diversity);
    double const pi = s.pop.pi();
    double const theta_pi = s.pop.thetaPi();
    SampleUnderTest<PopulDNA> both(dna_entries);
    both.set.NumSimulFuTest = 10;
    both.set.DistanceMethod = 1;
    both.set.ComputeTheta = 15;
    both.run(task::molecular_diversity | task::tajima | task::fu_fs);
    EXPECT_EQ(both.pop.pi(), pi);
    EXPECT_EQ(both.pop.thetaPi(), theta_pi);
    SampleUnderTest<PopulDNA> alone(dna_entries);
    alone.set.NumSimulFuTest = 10;
    alone.run(task::tajima | task::fu_fs);
    EXPECT_GT(alone.pop.pi(), 0.0);
    EXPECT_LT(alone.pop.pi(), pi);  // uncorrected
}

TEST(TajimaBlock, KeepsWhatItComparedForTheSummary) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.set.NumSimulFuTest = 10;
    s.set.DistanceMethod = 1;
    EXPECT_EQ(s.pop.tajima_pi_, -1.0);
    EXPECT_EQ(s.pop.tajima_S_, -1.0);
    s.run(task::molecular_diversity | task::tajima);
    TajimaD const d = tajima_d(tajima_terms(12, SquaredTerms::inverse_of_square), s.pop.tajima_pi_, s.pop.tajima_S_);
    EXPECT_EQ(s.pop.tajimaD(), d.D);
    EXPECT_LT(s.pop.tajima_pi_, s.pop.pi());  // uncorrected
}

TEST(TajimaBlock, RefusesAlleles) {
    SampleUnderTest<PopulMicrosat> microsat({{"12", 5}});
    microsat.run(task::tajima);
    EXPECT_TRUE(microsat.prints("Tajima's test is not possible for Microsatellite data"));
    SampleUnderTest<PopulStandard> standard({{"A", 5}});
    standard.run(task::tajima);
    EXPECT_TRUE(standard.prints("Tajima's test is not possible for standard data type"));
}

TEST(FuBlock, InfiniteFsIsNotAvailable) {
    SampleUnderTest<PopulDNA> s({{"ACGT", 5}, {"ACGT", 3}});
    s.set.NumSimulFuTest = 0;
    s.run(task::fu_fs);
    EXPECT_EQ(s.pop.fusFS(), 3.4028234663852886e+38);
    EXPECT_TRUE(s.prints("\nFs                           :        N.A.\n")) << s.document();
}

TEST(TajimaBlock, RefusesUnknownPhase) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.pop.profile.GenotypicData = 1;
    s.pop.profile.GameticPhase = 0;
    s.pop.p_fus_FS_ = 0.3;
    s.run(task::tajima | task::ewens_watterson | task::chakraborty | task::fu_fs);
    std::string const why =
        "in case of genotypic data with unknown gametic phase\n\nWe hope to change it in a future release...\n";
    EXPECT_EQ(s.document(),
              "Tajima's test cannot be computed \n" + why + "Ewens-Watterson tests cannot be computed \n" + why +
                  "Chakraborty's test cannot be computed \n" + "Fu's Fs test cannot be computed \n" + why);
    EXPECT_EQ(s.pop.pFusFS(), -1.0);
    EXPECT_EQ(s.pop.fusFS(), 0.0);
    EXPECT_EQ(s.pop.pTajimaD(), -1.0);
}

TEST(TajimaBlock, OfRestrictionSitesReportsAMissingVariance) {
    SampleUnderTest<PopulRFLP> s({{"0101", 5}});
    s.run(task::tajima);
    EXPECT_TRUE(s.logs("attempt to compute negative sqrt"));
    EXPECT_TRUE(s.logs("PopulRFLP::test_methods#Tajima's test()"));
    SampleUnderTest<PopulDNA> dna({{"ACGT", 5}});
    dna.run(task::tajima);
    EXPECT_FALSE(dna.logs("attempt to compute negative sqrt"));
}

TEST(TajimaBlock, CountsPolymorphicRestrictionSites) {
    SampleUnderTest<PopulRFLP> s(rflp_entries);
    s.run(task::tajima);
    EXPECT_TRUE(s.prints("No. of sites with substitutions (S)   : 4\n"));
    EXPECT_GE(s.pop.pTajimaD(), 0.0);
}

TEST(TajimaBlock, StopsWithoutResults) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.set.stop = 1;
    s.run(task::tajima);
    EXPECT_FALSE(s.prints("No. of simulations"));
    EXPECT_EQ(s.pop.pTajimaD(), -1.0);
}

TEST(TajimaBlock, WritesItsRow) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.fresh.keep(settings::input_file, std::string("p.tvp"));
    s.fresh.keep(ofs_tajima, BatchStream(new std::ostringstream));
    s.run(task::tajima);
    std::string const row = static_cast<std::ostringstream&>(*ofs_tajima).str();
    EXPECT_EQ(row.substr(0, 17), "\"p.tvp\"\t\"here\"\t12");
    EXPECT_EQ(std::count(row.begin(), row.end(), '\t'), 10);
    EXPECT_EQ(row.back(), '\n');
    EXPECT_NE(row.find("\t200\n"), std::string::npos);
}

// --- Fu's block ---

TEST(FuBlock, StoresAndPrintsItsTest) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.run(task::fu_fs);
    EXPECT_TRUE(s.prints("== Fu's Fs test of selective neutrality : (here)\n" + std::string(47, '=')));
    EXPECT_TRUE(s.prints("Original No. of alleles(k)   :5\n"));
    double const S = 1.0 - PopGenetics::proba_less_than_k(5, 12, s.pop.thetaPi());
    EXPECT_NEAR(s.pop.fusFS(), std::log(S / (1.0 - S)), 1e-12);
    EXPECT_GE(s.pop.pFusFS(), 0.0);
    EXPECT_TRUE(s.prints("\n\nProb(sim_Fs &lt;=obs_Fs)        :"));
    EXPECT_TRUE(s.prints("\nNo. of simulations           :200\n"));
}

TEST(FuBlock, TellsTheLogWhatItDoes) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.run(task::tajima | task::chakraborty | task::fu_fs);
    EXPECT_TRUE(s.logs("\n\t\tComputing Tajima's D ...\n"));
    EXPECT_TRUE(s.logs("\tPerforming Chakraborty's neutrality and amalgamation test ..."));
    EXPECT_TRUE(s.logs("\t\tComputing BMat ...\tPerforming Fu's Fs neutrality test ...\tdone ! ("));
}

TEST(FuBlock, OfOneHaplotypeSaysSo) {
    SampleUnderTest<PopulDNA> s({{"ACGT", 5}});
    s.run(task::fu_fs);
    EXPECT_TRUE(s.prints("\nSample size                  :5\nObs. k                       :1\n"
                         "Fu's Fs test cannot be computed if only one allele in sample\n"));
    EXPECT_EQ(s.pop.pFusFS(), -1.0);
    EXPECT_EQ(s.pop.fusFS(), 0.0);
}

TEST(FuBlock, OfOneCopySaysSo) {
    SampleUnderTest<PopulDNA> s({{"ACGT", 1}});
    s.run(task::fu_fs);
    EXPECT_TRUE(s.prints("Fu's Fs test cannot be computed if only one gene in sample\n"));
    EXPECT_EQ(s.pop.pFusFS(), -1.0);
}

TEST(FuBlock, WithoutReplicatesHasNoP) {
    SampleUnderTest<PopulDNA> s(dna_entries);
    s.set.NumSimulFuTest = 0;
    s.run(task::fu_fs);
    EXPECT_EQ(s.pop.pFusFS(), -1.0);
    EXPECT_NE(s.pop.fusFS(), 0.0);
}

TEST(FuBlock, MergesHaplotypesThatDoNotDiffer) {
    SampleUnderTest<PopulDNA> s({{"ACGT?", 4}, {"ACGTA", 3}, {"GCGTA", 3}});
    s.set.InferHaplotypeDefinitionFromDistanceMatrix = 1;
    s.set.AllowedLevelOfMissingData = 0.05;
    s.run(task::fu_fs);
    EXPECT_TRUE(s.prints("Original No. of alleles      :3\nActual No. of # alleles  (k) :2\n"));
}

TEST(FuBlock, RefusesAlleles) {
    SampleUnderTest<PopulStandard> s({{"A", 5}});
    s.run(task::fu_fs);
    EXPECT_TRUE(s.prints("Fu's Fs test is not possible for standard data type"));
    EXPECT_EQ(s.pop.fusFS(), -1.0);
    EXPECT_EQ(s.pop.pFusFS(), -1.0);
}

TEST(FuFsOfASample, RefusesLargeSamples) {
    test::FreshProcess fresh;
    PopulDNA pop;
    pop.set_sample_size(5000);
    double Fs = 0.0;
    EXPECT_EQ(pop.Fu_Fs(3.0, 10, Fs, true), 0);
    EXPECT_EQ(Fs, 0.0);
    EXPECT_NE(fresh.log().find("too many alleles, or too large sample"), std::string::npos);
    pop.set_sample_size(1200);
    EXPECT_EQ(pop.Fu_Fs(3.0, 1000, Fs, false), 0);
    EXPECT_EQ(Fs, 0.0);
    pop.set_sample_size(50);
    EXPECT_EQ(pop.Fu_Fs(3.0, 12, Fs, false), 1);
    EXPECT_NEAR(Fs, -1.670835887, 1e-8);
    EXPECT_EQ(pop.Fu_Fs(0.0, 12, Fs, true), 0);
    EXPECT_EQ(Fs, theta_infinite);
    EXPECT_NE(fresh.log().find("No molecular diversity within a sample"), std::string::npos);
}

// --- Ewens-Watterson ---

std::vector<Entry> standard_of(std::vector<int> const& counts) {
    std::vector<Entry> entries;
    for (int const c : counts) {
        entries.push_back({std::to_string(entries.size()), c});
    }
    return entries;
}

TEST(EwensWattersonBlock, HasTheKnownTests) {
    SampleUnderTest<PopulStandard> s(standard_of({6, 2, 8, 1, 3}));
    s.set.NumIterationsNeutralityTests = 1000;
    s.set.TaskNumber = task::ewens_watterson;
    random_state = RandomState{};
    random_state.ran3.seed(-1);
    s.pop.test_methods(s.set);
    EXPECT_NEAR(s.pop.obs_F(), .285, 1e-12);
    EXPECT_NEAR(s.pop.exp_F(), .36092, 1e-10);
    EXPECT_NEAR(s.pop.p_homoz_test(), .271, 1e-12);
    EXPECT_NEAR(s.pop.p_exact_neutr_tst(), .282, 1e-12);
    EXPECT_NEAR(s.pop.obs_exact_statistic_, -5.66296048, 1e-8);
    EXPECT_TRUE(s.prints("Original haplotype definition was used for the tests\n"));
    EXPECT_TRUE(s.prints("Observed F value             :     0.28500\n"));
    EXPECT_TRUE(s.prints("Slatkin's Exact P.Value      :     0.28200\n"));
    EXPECT_TRUE(s.prints(" All.#  Rel. freq.  Abs. Freq.\n"));
    EXPECT_TRUE(s.prints("     5     0.40000     8.00000\n"));
    EXPECT_TRUE(s.prints("     1     0.05535     0.01656     1.10700     0.33115\n"));
}

TEST(EwensWattersonBlock, WithoutItsKeyLeavesOutTheExactTest) {
    SampleUnderTest<PopulStandard> s(standard_of({6, 2, 8, 1, 3}));
    s.set.EwensWattersonHomozygosityTest = 0;
    s.run(task::ewens_watterson);
    EXPECT_EQ(s.pop.p_exact_neutr_tst(), 0.0);
    EXPECT_GT(s.pop.p_homoz_test(), 0.0);
}

TEST(EwensWattersonBlock, WithoutReplicatesHasNoP) {
    SampleUnderTest<PopulStandard> s(standard_of({6, 2, 8, 1, 3}));
    s.set.NumIterationsNeutralityTests = 0;
    s.run(task::ewens_watterson);
    EXPECT_EQ(s.pop.exp_F(), -1.0);
    EXPECT_EQ(s.pop.p_homoz_test(), -1.0);
    EXPECT_EQ(s.pop.p_exact_neutr_tst(), -1.0);
    EXPECT_TRUE(s.prints("Observed haplotype frequencies"));
    EXPECT_FALSE(s.prints("Expected haplotype frequencies"));
}

TEST(EwensWattersonBlock, OfOneHaplotypeNamesATestAndTheTable) {
    std::string const rest = " test of selective neutrality cannot be performed \n";
    SampleUnderTest<PopulDNA> dna({{"ACGT", 5}});
    dna.run(task::ewens_watterson);
    EXPECT_TRUE(dna.prints("Warning: Chakraborty's" + rest +
                           "when there is a single haplotype in the sample. Skipping task...\n"));
    EXPECT_TRUE(dna.logs("\t\tComputing BMat ...\t\tFile 500k100.bnb not found... skipping task !\n"));
    SampleUnderTest<PopulStandard> standard(standard_of({5}));
    standard.run(task::ewens_watterson);
    EXPECT_TRUE(standard.prints("Warning: Ewens-Watterson's" + rest));
    EXPECT_TRUE(standard.logs("\t\t\tFile *.bnb not found... skipping task !\n"));
}

TEST(EwensWattersonBlock, OfDistinctCopiesIsImpossible) {
    SampleUnderTest<PopulStandard> s(standard_of({1, 1, 1}));
    s.run(task::ewens_watterson);
    EXPECT_TRUE(s.prints("No. of genes in sample   : 3\nNo. of alleles in sample : 3\n"
                         "\nThe test is impossible because all gene copies are different\n---"));
    EXPECT_EQ(s.pop.p_homoz_test(), -1.0);
}

TEST(EwensWattersonBlock, CountsTiesWithTheObservedValues) {
    SampleUnderTest<PopulStandard> s(standard_of({1, 2}));  // the only configuration of 3 copies of 2 alleles
    s.run(task::ewens_watterson);
    EXPECT_EQ(s.pop.p_homoz_test(), 1.0);
    EXPECT_EQ(s.pop.p_exact_neutr_tst(), 1.0);
    EXPECT_NEAR(s.pop.exp_F(), s.pop.obs_F(), 1e-12);
    EXPECT_TRUE(s.logs("\t\tComputing BMat ...\tTesting neutrality (Ewens-Watterson )...\tdone ! ("));
}

TEST(EwensWattersonTests, RefuseOneAlleleAndLargeSamples) {
    SampleUnderTest<PopulStandard> s(standard_of({6}));
    std::ostringstream out;
    MY_TISArrayAsVector<AHaplFreq> one;
    one.Add(new AHaplFreq(6));
    s.pop.EW_neutrality_tests(s.set, out, one);
    EXPECT_NE(out.str().find("The test is impossible because there is only one allele in the sample"),
              std::string::npos);

    MY_TISArrayAsVector<AHaplFreq> thousand;
    for (int i = 0; i < 1000; ++i) {
        thousand.Add(new AHaplFreq(1));
    }
    s.pop.set_sample_size(1500);
    out.str("");
    s.pop.EW_neutrality_tests(s.set, out, thousand);
    EXPECT_NE(out.str().find("not possible with more than 1000 alleles or \nwith more than 5000 gene copies"),
              std::string::npos);
    thousand.Add(new AHaplFreq(1));
    out.str("");
    s.pop.EW_neutrality_tests(s.set, out, thousand);
    EXPECT_NE(out.str().find("the number of genes is bigger than5000 or the number of Alleles is bigger than1000 ."),
              std::string::npos);
    s.pop.set_sample_size(5001);
    out.str("");
    MY_TISArrayAsVector<AHaplFreq> two;
    two.Add(new AHaplFreq(5000));
    two.Add(new AHaplFreq(1));
    s.pop.EW_neutrality_tests(s.set, out, two);
    EXPECT_NE(out.str().find("bigger than5000"), std::string::npos);
}

TEST(RandomFrequency, OfTheFirstAlleleSpendsOneDraw) {
    test::FreshProcess const fresh(0);
    ASSERT_EQ(PopGenetics::get_B_num_mat(), 1);
    random_state.ran3.seed(-1);
    PopulStandard pop;
    AHaplFreq f;
    EXPECT_EQ(pop.get_first_rand_freq(f, 5, 20), 1);
    EXPECT_EQ(f.frequency, 1.0);
    EXPECT_NEAR(uniform(), .715119168, 1e-12);
}

// --- Chakraborty ---

TEST(ChakrabortyBlock, HasTheTailUnderThetaHom) {
    SampleUnderTest<PopulStandard> s(standard_of({10, 4, 3, 2, 1}));
    s.run(task::chakraborty);
    EXPECT_NEAR(s.pop.theta_hom(), 1.882127462, 1e-8);
    double const p = 1.0 - PopGenetics::proba_less_than_k(5, 20, s.pop.theta_hom());
    EXPECT_EQ(s.pop.p_chakrab_test(), p);
    EXPECT_TRUE(s.prints("No. of genes in sample       :          20\nNo. of alleles in sample (k) :           5\n"
                         "Observed Homozygosity        :     0.28947\n"));
}

TEST(ChakrabortyBlock, RefusesSmallAndDistinctSamples) {
    SampleUnderTest<PopulDNA> one({{"ACGT", 5}});
    one.run(task::chakraborty);
    EXPECT_TRUE(one.prints("Warning: Chakraborty's test of selective neutrality cannot be performed \n"));
    EXPECT_TRUE(one.logs("\t\tWarning: Chakraborty's test of selective neutrality cannot be performed \n"
                         "\t\twhen there is a single haplotype in the sample. Skipping task...\n"));
    SampleUnderTest<PopulStandard> distinct(standard_of({1, 1, 1}));
    distinct.run(task::chakraborty);
    EXPECT_TRUE(distinct.prints("\nThe test is impossible because all gene copies are different\n"));
    SampleUnderTest<PopulStandard> large(standard_of({4999, 1}));
    large.run(task::chakraborty);
    EXPECT_TRUE(large.prints("Chakraborty neutrality test not possible with more than 1000 alleles or\n"
                             "more than 5000 gene copy.\n"));
}

TEST(ChakrabortyBlock, TakesTheMergedHaplotypes) {
    SampleUnderTest<PopulDNA> s({{"ACGT?", 4}, {"ACGTA", 3}, {"GCGTA", 3}});
    s.set.InferHaplotypeDefinitionFromDistanceMatrix = 1;
    s.set.AllowedLevelOfMissingData = 0.05;
    s.run(task::ewens_watterson | task::chakraborty);
    EXPECT_TRUE(s.prints("No. of original haplotypes in sample  :           3\n"
                         "No. of different haplotypes in sample :           2\n"));
    EXPECT_TRUE(s.prints("No. of alleles in sample (k) :           2\n"));
}

}  // namespace
}  // namespace tov
