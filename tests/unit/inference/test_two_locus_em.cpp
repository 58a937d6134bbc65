// Two loci of unknown phase: likelihoods against those of whole samples, permutations, and the memory they take.
#include "inference/formula/two_locus_em.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/allocations.h"
#include "unit/inference/em_fixture.h"

namespace tov::test {
namespace {

TwoLocusGenotype genotype(std::string_view a, std::string_view b) {
    auto const number = [](char c) { return c >= 'a' && c <= 'z' ? 1 : 0; };
    TwoLocusGenotype g{};
    g.first[0] = number(a[0]);
    g.first[1] = number(b[0]);
    g.second[0] = number(a[1]);
    g.second[1] = number(b[1]);
    return g;
}

TwoLocusSample sample_of(std::initializer_list<ModelData::Entry> entries) {
    TwoLocusSample sample;
    for (ModelData::Entry const& e : entries) sample.add(genotype(e.a, e.b), e.count);
    return sample;
}

EmOptions starts(int n) {
    EmOptions options;
    options.starts = n;
    return options;
}

// ln likelihood under equilibrium, individual by individual.
double direct_equilibrium(TwoLocusSample const& sample) {
    double copies = 0.0;
    double upper[2] = {0.0, 0.0};
    for (std::size_t i = 0; i < sample.counts.size(); ++i) {
        copies += 2.0 * sample.counts[i];
        for (std::size_t c = 0; c < 2; ++c) {
            upper[0] += sample.counts[i] * (sample.genotypes[i].first[c] == 0);
            upper[1] += sample.counts[i] * (sample.genotypes[i].second[c] == 0);
        }
    }
    auto const term = [](double p, int a, int b) {
        double const pa = a == 0 ? p : 1.0 - p;
        double const pb = b == 0 ? p : 1.0 - p;
        return std::log(a == b ? pa * pb : 2.0 * pa * pb);
    };
    double sum = 0.0;
    for (std::size_t i = 0; i < sample.counts.size(); ++i) {
        TwoLocusGenotype const& g = sample.genotypes[i];
        sum += sample.counts[i] * (term(upper[0] / copies, g.first[0], g.first[1]) +
                                   term(upper[1] / copies, g.second[0], g.second[1]));
    }
    return sum;
}

TEST(TwoLocusEm, AgreesWithTheEmOfTheWholeSample) {
    EmSample reference(two_loci);
    double const lnL = reference.estimate(2);
    FreshProcess fresh;
    TwoLocusEm em;
    LinkageLikelihoods const found = em.evaluate(sample_of(two_loci), starts(2));
    EXPECT_NEAR(found.lnLD, lnL, 1e-10);
    EXPECT_NEAR(found.lnLE, -63.6361083367, 5e-11);
    EXPECT_NEAR(found.lnLE, direct_equilibrium(sample_of(two_loci)), 1e-10);
    EXPECT_EQ(em.data().haplotypes(), 4);
    EXPECT_EQ(em.data().phenotypes(), 7);
}

TEST(TwoLocusEm, PutsEqualIndividualsTogether) {
    FreshProcess fresh;
    AllelePermutation exploded(sample_of(two_loci));
    ASSERT_EQ(exploded.sample().genotypes.size(), 30U);
    TwoLocusEm em;
    LinkageLikelihoods const apart = em.evaluate(exploded.sample(), starts(2));
    EXPECT_EQ(em.data().phenotypes(), 7);
    EXPECT_DOUBLE_EQ(em.data().individuals, 30.0);
    fresh.reseed();
    LinkageLikelihoods const together = em.evaluate(sample_of(two_loci), starts(2));
    EXPECT_NEAR(apart.lnLD, together.lnLD, 1e-11);
    EXPECT_NEAR(apart.lnLE, together.lnLE, 1e-11);
}

TEST(TwoLocusEm, DoubleHeterozygotesMayBeEitherPhase) {
    FreshProcess fresh;
    TwoLocusEm em;
    TwoLocusSample const sample = sample_of({{"Ab", "aB", 2}});
    em.evaluate(sample, starts(1));
    ASSERT_EQ(em.data().pairs.size(), 2U);
    EXPECT_EQ(em.data().haplotypes(), 4);
    EXPECT_EQ(em.data().pairs[0].first, 1);  // the second haplotype is numbered first
    EXPECT_EQ(em.data().pairs[0].second, 0);
    EXPECT_EQ(em.data().pairs[1].first, 3);
    EXPECT_EQ(em.data().pairs[1].second, 2);
}

TEST(TwoLocusEm, HiddenBlanksGiveTheGenotypesOfTheWholeSample) {
    // Upper case is dominant; number 0 stands for the blank, so the letters are numbered from 1.
    for (auto const& [a, b] :
         {std::pair("AB", "AB"), std::pair("Ab", "AB"), std::pair("Ab", "aB"), std::pair("AB", "aB"),
          std::pair("..", "AB"), std::pair("..", ".."), std::pair("A.", "AB")}) {
        ModelData data;
        for (int l = 0; l < 2; ++l) data.db.insert_allele(l, ".", 0.0);
        auto const phenotype = data.phenotype(a, b);
        TPopHaploDB pool;
        phenotype->build_genotypes(pool, &data.db, 1, false);
        TwoLocusSample sample;
        sample.recessive = true;
        TwoLocusGenotype g{};
        auto const number = [](char c) { return c == '.' ? 0 : c >= 'a' && c <= 'z' ? 2 : 1; };
        g.first = {number(a[0]), number(b[0])};
        g.second = {number(a[1]), number(b[1])};
        sample.add(g, 1.0);
        TwoLocusEm em;
        em.evaluate(sample, starts(1));
        EXPECT_EQ(em.data().haplotypes(), pool.nb_haplotypes()) << a << '/' << b;
        EXPECT_EQ(static_cast<int>(em.data().pairs.size()), phenotype->genot_real_count()) << a << '/' << b;
        for (int h = 0; h < pool.nb_haplotypes(); ++h) {
            EXPECT_EQ(em.data().blank[static_cast<std::size_t>(h)] != 0, pool.haplotype(h).has_blank() != 0)
                << a << '/' << b << " haplotype " << h;
        }
    }
}

TEST(AllelePermutation, ShufflesTheFirstLocusAlone) {
    FreshProcess fresh;
    TwoLocusSample const sample = sample_of(two_loci);
    AllelePermutation permutation(sample);
    std::vector<TwoLocusGenotype> const before = permutation.sample().genotypes;
    int upper = 0;
    for (TwoLocusGenotype const& g : before) upper += (g.first[0] == 0) + (g.first[1] == 0);
    Ran3State const start = random_state.ran3;
    TwoLocusSample const& shuffled = permutation.next(random_state.ran3);
    EXPECT_EQ(draws_since(start), 60);
    int after = 0;
    int moved = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(shuffled.genotypes[i].second, before[i].second);
        after += (shuffled.genotypes[i].first[0] == 0) + (shuffled.genotypes[i].first[1] == 0);
        moved += shuffled.genotypes[i].first != before[i].first;
    }
    EXPECT_EQ(after, upper);
    EXPECT_GT(moved, 5);
}

TEST(AllelePermutation, CopiesStandBehindAllOriginals) {
    AllelePermutation const permutation(sample_of({{"AB", "AB", 3}, {"ab", "ab", 2}, {"Ab", "Ab", 0.25}}));
    std::vector<int> first;
    for (TwoLocusGenotype const& g : permutation.sample().genotypes) first.push_back(g.first[0]);
    EXPECT_EQ(first, (std::vector<int>{0, 1, 0, 0, 0, 1}));
    EXPECT_EQ(permutation.sample().counts, (std::vector<double>{1.0, 1.0, 0.25, 1.0, 1.0, 1.0}));
}

TEST(AllelePermutation, AllocatesNothingOnceTheSampleIsKnown) {
    FreshProcess fresh;
    TwoLocusSample sample;
    for (int i = 0; i < 60; ++i) {
        TwoLocusGenotype g{};
        for (std::size_t c = 0; c < 2; ++c) {
            g.first[c] = static_cast<std::int32_t>(7 * uniform());
            g.second[c] = static_cast<std::int32_t>(5 * uniform());
        }
        sample.add(g, 1 + i % 3);
    }
    EmOptions const options = starts(3);
    EmGoesOn const goes_on = [] { return true; };
    TwoLocusEm em;
    em.reserve(sample, options);
    AllelePermutation permutation(sample);
    double observed = em.evaluate(sample, options, goes_on).statistic();
    NullCounts counts;
    counts.add(em.evaluate(permutation.next(random_state.ran3), options, goes_on).statistic(), observed);
    long const before = allocations();
    for (int p = 0; p < 200; ++p) {
        counts.add(em.evaluate(permutation.next(random_state.ran3), options, goes_on).statistic(), observed);
    }
    EXPECT_EQ(allocations() - before, 0);
    EXPECT_GT(before, 10);
}

TEST(NullCounts, EqualWithinTenToTheMinusTenCounts) {
    NullCounts counts;
    counts.add(-3.0, -2.0);
    counts.add(-2.0 + 5e-11, -2.0);
    counts.add(-2.0 + 5e-10, -2.0);
    counts.add(-1.0, -2.0);
    EXPECT_EQ(counts.smaller, 1);
    EXPECT_EQ(counts.equal, 1);
}

TEST(KeyIndex, KeepsKeysApartAndForgetsThemAtARestart) {
    KeyIndex index;
    index.restart(100);
    for (std::int32_t i = 0; i < 100; ++i) {
        EXPECT_EQ(index.number(static_cast<std::uint64_t>(i), static_cast<std::uint64_t>(i % 3), i), i);
    }
    for (std::int32_t i = 0; i < 100; ++i) {
        EXPECT_EQ(index.number(static_cast<std::uint64_t>(i), static_cast<std::uint64_t>(i % 3), 1000), i);
    }
    index.restart(100);
    EXPECT_EQ(index.number(5, 2, 77), 77);
}

}  // namespace
}  // namespace tov::test
