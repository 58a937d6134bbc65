// Haplotype frequencies of samples by EM. The numbers to ten digits come from an independent model of the method.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

#include "inference/formula/em_terms.h"
#include "unit/inference/em_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

constexpr double ten_digits = 0.6e-10;

void expect_frequencies(TPopHaploDB const& pool, ByHaplotype const& expected) {
    ASSERT_EQ(pool.nb_haplotypes(), static_cast<int>(expected.size()));
    for (std::size_t h = 0; h < expected.size(); ++h) {
        EXPECT_EQ(text(*pool.view()[h]), expected[h].first);
        EXPECT_NEAR(pool.view()[h]->freq(), expected[h].second, ten_digits) << expected[h].first;
    }
}

void expect_deviations(TPopHaploDB const& pool, std::vector<double> const& expected) {
    ASSERT_EQ(pool.view().size(), expected.size());
    for (std::size_t h = 0; h < expected.size(); ++h) {
        EXPECT_NEAR(pool.view()[h]->sd(), expected[h], ten_digits) << text(*pool.view()[h]);
    }
}

// ln likelihood of frequencies by brute force: all ordered pairs of haplotypes that show the phenotype.
double direct_ln_likelihood(TPhenDB const& list, TPopHaploDB const& pool) {
    double sum = 0.0;
    for (TPhenotype const* const p : list.view()) {
        double proba = 0.0;
        for (TPopHaplotype const* const x : pool.view()) {
            for (TPopHaplotype const* const y : pool.view()) {
                if (TPhenotype(x, y, 0) == *p) proba += x->freq() * y->freq();
            }
        }
        sum += p->obs_count() * std::log(proba);
    }
    return sum;
}

}  // namespace

TEST(EmOfASample, TwoLociOfKnownResult) {
    EmSample s(two_loci);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(s.estimate(), -54.8393399996, ten_digits);
    EXPECT_EQ(draws_since(before), 12);
    EXPECT_EQ(s.solutions, 1);
    expect_frequencies(s.sample.pool, {{"AB", 0.4266502456}, {"ab", 0.3933169123}, {"aB", 0.0733497544},
                                       {"Ab", 0.1066830877}});
    EXPECT_EQ(s.sample.phenotypes.F, 0.0);
    EXPECT_NEAR(direct_ln_likelihood(s.sample.phenotypes, s.sample.pool), -54.8393399996, 1e-9);
}

TEST(EmOfASample, BootstrapDeviationsOfKnownResult) {
    EmSample s(two_loci);
    Ran3State const before = random_state.ran3;
    s.estimate();
    s.sample.calc_sd_hapl_freq(s.sample.phenotypes, s.sample.pool, s.set, 2, 5, 1000, 1e-7);
    EXPECT_EQ(draws_since(before), 352);
    expect_deviations(s.sample.pool, {0.0530251803, 0.0428577253, 0.0412328259, 0.0316838129});
    expect_frequencies(s.sample.pool, {{"AB", 0.4266502456}, {"ab", 0.3933169123}, {"aB", 0.0733497544},
                                       {"Ab", 0.1066830877}});
}

TEST(EmOfASample, AFurtherBootstrapStartsFromZeroSums) {
    EmSample s(two_loci);
    s.estimate();
    Ran3State const start = random_state.ran3;
    s.sample.calc_sd_hapl_freq(s.sample.phenotypes, s.sample.pool, s.set, 2, 5, 1000, 1e-7);
    std::vector<double> deviations;
    for (TPopHaplotype const* const h : s.sample.pool.view()) deviations.push_back(h->sd());
    random_state.ran3 = start;
    s.sample.calc_sd_hapl_freq(s.sample.phenotypes, s.sample.pool, s.set, 2, 5, 1000, 1e-7);
    expect_deviations(s.sample.pool, deviations);
}

TEST(EmOfASample, FewerThanTwoReplicatesGiveNoDeviation) {
    EmSample s(two_loci);
    s.estimate();
    for (int const replicates : {0, 1}) {
        s.sample.calc_sd_hapl_freq(s.sample.phenotypes, s.sample.pool, s.set, 2, replicates, 1000, 1e-7);
        expect_deviations(s.sample.pool, {0.0, 0.0, 0.0, 0.0});
    }
}

TEST(EmOfASample, ThreeLociOfKnownResult) {
    EmSample s({{"ABC", "ABC", 4}, {"ABC", "abc", 5}, {"ABc", "abC", 3}, {"AbC", "aBC", 2}, {"abc", "abc", 3},
                {"ABC", "Abc", 3}});
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(s.estimate(), -32.9803598672, ten_digits);
    EXPECT_EQ(draws_since(before), 24);
    EXPECT_EQ(s.solutions, 1);
    EXPECT_EQ(texts(s.sample.pool), (std::vector<std::string>{"ABC", "abc", "aBc", "AbC", "abC", "ABc", "aBC", "Abc"}));
    double const expected[] = {0.525, 0.35, 0, 0, 0.05, 0, 0, 0.075};
    for (std::size_t h = 0; h < 8; ++h) EXPECT_NEAR(s.sample.pool.view()[h]->freq(), expected[h], 0.6e-8);
}

TEST(EmOfASample, EstimatesInbreedingToAKnownResult) {
    EmSample s(inbred);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(s.estimate(3, 1, 0.0), -41.5280587819, ten_digits);
    EXPECT_EQ(draws_since(before), 15);
    EXPECT_NEAR(s.F, 0.5445683782, ten_digits);
    EXPECT_EQ(s.sample.phenotypes.F, s.F);
    expect_frequencies(s.sample.pool, {{"AB", 0.4420643328}, {"ab", 0.4115316956}, {"aB", 0.0295299755},
                                       {"Ab", 0.1168739961}});
}

TEST(EmOfASample, KeepsAFixedInbreedingCoefficient) {
    EmSample s(inbred);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(s.estimate(3, 1, 0.1), -45.6257303160, ten_digits);
    EXPECT_EQ(draws_since(before), 12);
    EXPECT_EQ(s.F, 0.1);
    EXPECT_EQ(s.sample.phenotypes.F, 0.1);
    expect_frequencies(s.sample.pool, {{"AB", 0.4449612335}, {"ab", 0.4215578004}, {"aB", 0.0230382380},
                                       {"Ab", 0.1104427281}});
}

TEST(EmOfASample, FourLociOfKnownResult) {
    EmSample s(four_loci);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(s.estimate(5), -79.0927578294, ten_digits);
    EXPECT_EQ(draws_since(before), 80);
    EXPECT_EQ(s.solutions, 1);
    expect_frequencies(s.sample.pool,
                       {{"abcd", 0.1227748612}, {"ABCD", 0.0540758228}, {"aBcd", 0.0}, {"AbCD", 0.0},
                        {"abCd", 0.0456309619}, {"ABcD", 0.0309966669}, {"aBCd", 0.0416666667}, {"AbcD", 0.0},
                        {"abcD", 0.1188009616}, {"ABCd", 0.0}, {"aBcD", 0.0}, {"AbCd", 0.1666666667},
                        {"abCD", 0.0877932153}, {"ABcd", 0.3315941769}, {"aBCD", 0.0}, {"Abcd", 0.0}});
    EXPECT_NEAR(direct_ln_likelihood(s.sample.phenotypes, s.sample.pool), -79.0927578294, 1e-6);
}

TEST(EmOfASample, FourLociWithInbreedingOfKnownResult) {
    EmSample s(four_loci);
    EXPECT_NEAR(s.estimate(4, 1, 0.0), -75.9424130455, ten_digits);
    EXPECT_NEAR(s.F, 0.3046970358, ten_digits);
    EXPECT_NEAR(s.frequency("abcd"), 0.2411848263, ten_digits);
    EXPECT_NEAR(s.frequency("abCD"), 0.0000000141, ten_digits);
    EmSample t(four_loci);
    EXPECT_NEAR(t.estimate(4, 1, 0.25), -76.0403278086, ten_digits);
    EXPECT_NEAR(t.frequency("ABcd"), 0.1995669477, ten_digits);
    EXPECT_NEAR(t.frequency("abCd"), 0.0529192249, ten_digits);
}

TEST(EmOfASample, BootstrapOfFourLociOfKnownResult) {
    EmSample s(four_loci);
    s.estimate(2);
    s.sample.calc_sd_hapl_freq(s.sample.phenotypes, s.sample.pool, s.set, 2, 4, 1000, 1e-7);
    expect_deviations(s.sample.pool,
                      {0.0595752043, 0.0324636183, 0.0324636183, 0.0324636183, 0.0254090543, 0.0104166668, 0.0199463981,
                       0.0, 0.0514905349, 0.0, 0.0, 0.0394368591, 0.0380283394, 0.0476632128, 0.0476632128,
                       0.0476632128});
}

TEST(EmOfASample, MergedPhenotypesGiveTheSameEstimates) {
    EmSample merged({{"AB", "ab", 1}, {"Ab", "aB", 1}, {"AB", "AB", 1}, {"AB", "AB", 1}, {"ab", "aB", 1}});
    merged.set.EMCheckPhenRedundancy = 1;
    double const lnL = merged.estimate();
    EXPECT_EQ(merged.sample.phenotypes.size(), 3);
    EmSample single({{"AB", "ab", 1}, {"Ab", "aB", 1}, {"AB", "AB", 1}, {"AB", "AB", 1}, {"ab", "aB", 1}});
    EXPECT_NEAR(single.estimate(), lnL, 1e-9);
    EXPECT_EQ(single.sample.phenotypes.size(), 5);
    for (TPopHaplotype const* const h : merged.sample.pool.view()) {
        EXPECT_NEAR(single.frequency(text(*h)), h->freq(), 1e-6);
    }
}

TEST(EmOfASample, RecoversKnownFrequenciesWithinSamplingError) {
    // 400 individuals of seven haplotypes over four loci. With phases known the deviation of p is
    // sqrt(p (1 - p) / 800); 4.5 of them for what the unknown phases add.
    std::map<std::string, double> const known = {{"0000", 0.30}, {"1111", 0.25}, {"0011", 0.15}, {"1100", 0.10},
                                                 {"0101", 0.08}, {"1010", 0.07}, {"0001", 0.05}};
    for (long const seed : {1L, 2L, 3L}) {
        EmSample s({});
        s.data.process.reseed(seed);
        TPopHaploDB truth;
        for (auto const& [alleles, p] : known) truth.insert(s.data.haplotype(alleles), p);
        TPhenDB drawn(400, truth);
        for (TPhenotype const* const p : drawn.view()) s.sample.phenotypes.Add(new TPhenotype(*p));
        s.set.EMCheckPhenRedundancy = 1;
        double const lnL = s.estimate(5);
        for (TPopHaplotype const* const h : s.sample.pool.view()) {
            auto const entry = known.find(text(*h));
            double const p = entry == known.end() ? 0.0 : entry->second;
            EXPECT_NEAR(h->freq(), p, 4.5 * std::sqrt(std::max(p, 0.002) * (1 - p) / 800)) << text(*h);
        }
        EXPECT_NEAR(direct_ln_likelihood(s.sample.phenotypes, s.sample.pool), lnL, 1e-4);
    }
}

TEST(EmOfASample, AHiddenBlankIsFoundAgain) {
    // One locus, blank '0' recessive to A and B: frequencies of the blood group kind, by their closed relations.
    EmSample s({});
    s.data.haplotype("0");
    s.sample.set_recessive_loci(1);
    s.data.fill(s.sample.phenotypes, {{"A", "A", 186}, {"B", "B", 38}, {"A", "B", 13}, {"0", "0", 284}});
    s.estimate(3);
    // Maximum of 186 ln(p^2 + 2pr) + 38 ln(q^2 + 2qr) + 13 ln(2pq) + 284 ln r^2, found by search.
    double best = impossible_ln_likelihood;
    double best_p = 0.0;
    double best_q = 0.0;
    auto const search = [&](double p0, double q0, double width) {
        for (int i = -40; i <= 40; ++i) {
            for (int j = -40; j <= 40; ++j) {
                double const p = p0 + width * i / 40;
                double const q = q0 + width * j / 40;
                double const r = 1 - p - q;
                if (p <= 0 || q <= 0 || r <= 0) continue;
                double const lnL = 186 * std::log(p * p + 2 * p * r) + 38 * std::log(q * q + 2 * q * r) +
                                   13 * std::log(2 * p * q) + 284 * std::log(r * r);
                if (lnL > best) {
                    best = lnL;
                    best_p = p;
                    best_q = q;
                }
            }
        }
    };
    for (double width = 0.3; width > 1e-6; width /= 8)
        search(best_p == 0.0 ? 0.3 : best_p, best_q == 0.0 ? 0.3 : best_q, width);
    EXPECT_NEAR(s.frequency("A"), best_p, 1e-5);
    EXPECT_NEAR(s.frequency("B"), best_q, 1e-5);
    EXPECT_NEAR(s.frequency("0"), 1 - best_p - best_q, 1e-5);
    EXPECT_GT(s.frequency("0"), 0.7);
}

TEST(EmOfASample, AMonomorphicLocusHasOneHaplotypeOfFrequencyOne) {
    EmSample s({{"A", "A", 4}});
    EXPECT_EQ(s.estimate(), 0.0);
    EXPECT_EQ(s.frequency("A"), 1.0);
    EXPECT_EQ(s.solutions, 1);
}

TEST(EmOfASample, OnlyMissingDataCountsAsOneAllele) {
    EmSample s({{"?", "?", 4}, {"?", "?", 1}});
    EXPECT_EQ(s.estimate(), 0.0);
    EXPECT_EQ(s.frequency("?"), 1.0);
}

TEST(EmOfASample, OneIndividualOfTwoHeterozygousLoci) {
    EmSample s({{"AB", "ab", 1}});
    // Either phase alone: both its haplotypes have 1/2 and the probability is 2/4.
    EXPECT_NEAR(s.estimate(), std::log(0.5), 1e-6);
    double sum = 0.0;
    for (TPopHaplotype const* const h : s.sample.pool.view()) sum += h->freq();
    EXPECT_NEAR(sum, 1.0, 1e-12);
}

TEST(EmOfASample, ThirtyThreeHeterozygousLociMakeTheSampleImpossible) {
    EmSample s({{std::string(33, 'A'), std::string(33, 'a'), 1}, {std::string(33, 'A'), std::string(33, 'A'), 3}});
    EXPECT_EQ(s.estimate(), -3.4028234663852886e+38);
    EXPECT_EQ(Reports::codes(), std::vector<int>{114});
    EXPECT_EQ(s.solutions, 1);
    EXPECT_NEAR(s.frequency(std::string(33, 'A')), 6.0 / 8.0, 1e-15);
}

TEST(EmOfASample, NoIndividualsAndNoDatabaseAreNoError) {
    EmSample s({});
    EXPECT_EQ(s.estimate(), 0.0);
    EXPECT_EQ(s.sample.pool.nb_haplotypes(), 0);
    EXPECT_EQ(s.estimate(1, 1, 0.0), 0.0);
}

TEST(EmOfASample, APendingStopEndsItBeforeAnything) {
    EmSample s(two_loci);
    s.set.stop = 1;
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(s.estimate(), -1000.0);
    EXPECT_EQ(s.estimate_equilibrium(), -1000.0);
    EXPECT_EQ(draws_since(before), 0);
    EXPECT_EQ(s.sample.pool.nb_haplotypes(), 0);
}

TEST(EmOfASample, EachRunCountsAHundredUnitsOfWork) {
    EmSample s(two_loci);
    settings::set_work_done(0.0);
    s.estimate(3);
    EXPECT_EQ(settings::global_work_done, 300.0);
    settings::set_work_done(0.0);
}

TEST(EmOfASample, OnlyGenotypesOfKnownPartsSurviveAnEarlierStage) {
    EmSample s({{"ABC", "abc", 4}, {"ABC", "ABC", 2}});
    TPopHaploDB previous;
    std::vector<int> flags = {1, 1, 0};
    for (char const* const alleles : {"AB", "ab"}) previous.insert(s.data.haplotype(alleles), 0.5);
    previous.insert(s.data.haplotype("Ab"), 0.0);
    previous.insert(s.data.haplotype("aB"), 0.2);
    double F = 0.0;
    s.sample.calc_ML_hapl_freq_hill95_LD(s.sample.phenotypes, s.sample.pool, s.set, s.solutions, 0, F, &previous,
                                         flags.data(), 0, 3, 1000, 1e-7);
    EXPECT_EQ(genotype_texts(s.sample.phenotypes.phenotype(0)), (std::vector<std::string>{"ABC/abc", "ABc/abC"}));
    EXPECT_EQ(s.sample.phenotypes.phenotype(1).is_homozygote(), 1);
}

TEST(EmOfASample, NoGenotypeOfKnownPartsMakesTheSampleImpossible) {
    EmSample s({{"ABC", "abc", 4}, {"ABC", "ABC", 2}});
    TPopHaploDB previous;
    std::vector<int> flags = {1, 1, 0};
    previous.insert(s.data.haplotype("AB"), 1.0);
    double F = 0.0;
    double const lnL = s.sample.calc_ML_hapl_freq_hill95_LD(s.sample.phenotypes, s.sample.pool, s.set, s.solutions, 0,
                                                            F, &previous, flags.data(), 0, 3, 1000, 1e-7);
    EXPECT_EQ(lnL, impossible_ln_likelihood);
    EXPECT_EQ(s.sample.phenotypes.phenotype(0).genot_real_count(), 0);
    EXPECT_EQ(s.sample.phenotypes.phenotype(1).genot_real_count(), 1);
    EXPECT_TRUE(Reports::codes().empty());
}

TEST(EmOfASample, AsManyGenotypesAsMemoryHoldsAreEnumerated) {
    // Haplotypes of their own for every genotype: 2^23 of them, and no more beside them.
    EXPECT_TRUE(genotypes_fit(23, 0));
    EXPECT_FALSE(genotypes_fit(24, 0));
    EXPECT_FALSE(genotypes_fit(0, most_room));
    EXPECT_TRUE(genotypes_fit(22, room_of(std::int64_t{1} << 22, std::int64_t{1} << 23)));
    EXPECT_FALSE(genotypes_fit(23, room_of(1, 2)));
    // 3000 individuals of 13 heterozygous loci each, over 14 loci.
    EXPECT_TRUE(genotypes_fit(12, room_of(std::int64_t{3000} << 12, std::int64_t{1} << 14)));
    EXPECT_FALSE(genotypes_fit(31, 0));
    EXPECT_FALSE(genotypes_fit(64, 0));
}

TEST(EmOfASample, TwentyFiveHeterozygousLociAreTooMany) {
    EmSample s({{std::string(25, 'A'), std::string(25, 'a'), 1}, {std::string(25, 'A'), std::string(25, 'A'), 3}});
    EXPECT_EQ(s.estimate(), impossible_ln_likelihood);
    EXPECT_EQ(Reports::codes(), std::vector<int>{114});
    EXPECT_EQ(Reports::origins(), std::vector<std::string>{"TPhenotype::build_genotypes()"});
    EXPECT_EQ(s.sample.phenotypes.phenotype(1).genot_real_count(), 1);
}

TEST(EmOfASample, BlanksOnBothChromosomesHideNothing) {
    // 32 loci: all may hide a blank in one individual, three in the other two.
    for (std::size_t const shown : {std::size_t{3}, std::size_t{32}}) {
        EmSample s({});
        s.data.haplotype(std::string(32, '0'));
        s.sample.set_recessive_loci(1);
        std::string const alleles = std::string(shown, 'A') + std::string(32 - shown, '0');
        s.data.fill(s.sample.phenotypes, {{alleles, alleles, 3}, {std::string(32, '0'), std::string(32, '0'), 5}});
        double const lnL = s.estimate();
        EXPECT_EQ(lnL == impossible_ln_likelihood, shown == 32);
        EXPECT_EQ(Reports::codes(), shown == 32 ? std::vector<int>{114} : std::vector<int>{});
        EXPECT_EQ(s.sample.phenotypes.phenotype(0).genot_real_count(), shown == 32 ? 0 : 8);
        EXPECT_EQ(s.sample.phenotypes.phenotype(1).genot_real_count(), 1);
    }
}

TEST(EmOfASample, AllRunsOfTheSameListGiveTheSameDigits) {
    EmSample a(four_loci);
    a.estimate(4);
    EmSample b(four_loci);
    b.estimate(4);
    for (std::size_t h = 0; h < a.sample.pool.view().size(); ++h) {
        EXPECT_EQ(a.sample.pool.view()[h]->freq(), b.sample.pool.view()[h]->freq());
    }
}

// --- Linkage equilibrium ---

TEST(EmUnderEquilibrium, GivesProductsOfAlleleFrequencies) {
    EmSample s(two_loci);
    Ran3State const before = random_state.ran3;
    EXPECT_NEAR(s.estimate_equilibrium(), -63.6361083367, ten_digits);
    EXPECT_EQ(draws_since(before), 12);  // three starts, four alleles
    EXPECT_EQ(s.solutions, 1);
    double const A = 32.0 / 60;
    double const B = 30.0 / 60;
    EXPECT_NEAR(s.frequency("AB"), A * B, 1e-12);
    EXPECT_NEAR(s.frequency("ab"), (1 - A) * (1 - B), 1e-12);
    EXPECT_NEAR(s.frequency("Ab"), A * (1 - B), 1e-12);
    EXPECT_EQ(s.data.db.locus(0)->allele(0)->pop_freq(), nullptr);
}

TEST(EmUnderEquilibrium, AgreesWithFreeFrequenciesAtOneLocus) {
    std::initializer_list<ModelData::Entry> const one_locus = {{"A", "A", 8}, {"B", "B", 5}, {"C", "C", 2},
                                                               {"A", "B", 4}, {"A", "C", 2}, {"B", "C", 1}};
    for (double const given : {0.0, 0.2}) {
        EmSample free(one_locus);
        double const lnL = free.estimate(3, 1, given);
        EmSample equilibrium(one_locus);
        EXPECT_NEAR(equilibrium.estimate_equilibrium(3, 1, given), lnL, 1e-6);
        EXPECT_NEAR(equilibrium.sample.phenotypes.F, free.F, 1e-6);
        EXPECT_EQ(equilibrium.F, given);
        for (char const* const a : {"A", "B", "C"}) EXPECT_NEAR(equilibrium.frequency(a), free.frequency(a), 1e-6);
    }
}

TEST(EmUnderEquilibrium, WithoutDatabaseItIsNotPossible) {
    EmSample s(two_loci);
    s.sample.alleles = nullptr;
    EXPECT_EQ(s.estimate_equilibrium(), -1000.0);
}
