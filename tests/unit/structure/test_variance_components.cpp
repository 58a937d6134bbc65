// The designs of the analysis of molecular variance: observed tables and permutation tests against reference values.
#include "structure/formula/variance_components.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <numeric>

#include "structure/formula/pairwise.h"
#include "structure/formula/permutation_p.h"
#include "support/structure_data.h"

using namespace tov;
using namespace tov::test;

namespace {

constexpr double ten_digits = 6e-10;

/// One design at work: observed sums, the permuted vector and its sums.
struct Bench {
    Bench(StructureData d, std::vector<int> groups, bool individuals, bool conventional) : data(std::move(d)) {
        data.matrix.set_conventional_fst(conventional);
        distances = PairDistances(data.matrix, data.matrix.dimension());
        sizes = StructureSizes(data.copies, std::move(groups));
        slices = gene_slices(data.copies, static_cast<int>(data.genes.size()));
        within = std::make_unique<WithinSums>(distances, slices, data.genes);
        triangle = population_sums(distances, slices, data.genes);
        S.resize(data.copies.size());
        genes = data.genes;
        within->compute(genes, S);
        order.resize(data.copies.size());
        std::iota(order.begin(), order.end(), 0);
        sums = {total_sum(triangle), within_terms(S, sizes), individual_sum(),
                individuals ? 0.5 * sizes.total : sizes.total};
        groups_observed = arrangement();
        seed_one();
    }

    double individual_sum() const {
        double sum = 0.0;
        for (auto const& slice : slices) {
            sum += within_individuals(distances,
                                      std::span<int const>(genes).subspan(slice.begin, slice.end - slice.begin));
        }
        return sum;
    }
    double W() {
        within->compute(genes, S);
        return within_terms(S, sizes);
    }
    void move(PermutationScheme scheme) { permute(scheme, sizes, genes); }
    void reload() { genes = data.genes; }
    GroupSums arrangement() const { return group_sums(sizes, triangle, order, static_cast<int>(sums.Nu)); }

    PermutationOutcome test(double observed, PermutationTail tail, std::function<double()> const& statistic) {
        PermutationPlan const plan(100);
        return permutation_p<float>(plan, observed, tail, plan.permutations, SinglePermutations(statistic),
                                    [] { return false; }, [](double) {});
    }

    StructureData data;
    PairDistances distances;
    StructureSizes sizes;
    std::vector<GeneSlice> slices;
    std::unique_ptr<WithinSums> within;
    std::vector<double> triangle, S;
    std::vector<int> genes, order;
    AmovaSums sums;
    GroupSums groups_observed;
};

void expect_test(PermutationOutcome const& outcome, int beyond, int equal, double p, double sd) {
    EXPECT_EQ(outcome.beyond, beyond);
    EXPECT_EQ(outcome.equal, equal);
    EXPECT_NEAR(outcome.p, p, 1e-10);
    EXPECT_NEAR(outcome.sd, sd, 1e-11);
}

struct OneGroup {
    double ssd_a, ssd_b, va, vb, fst;
    std::array<double, 4> pop_fst;
    int beyond;
    double p, sd;
};

struct Groups {
    std::array<double, 3> ssd, v;
    double fst, fsc, fct;
    std::array<int, 3> beyond, equal;
    std::array<double, 3> p, sd;
};

void check_groups_of_haplotypes(bool conventional, Groups const& e) {
    Bench b(haplotypes_A(), {2, 2}, false, conventional);
    VarianceTable const t = groups_haplotypes(b.sizes, b.sums, b.groups_observed);
    EXPECT_EQ(t.df, (std::array<int, 4>{1, 2, 34, 0}));
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(t.ssd[k], e.ssd[k], 5e-9);
        EXPECT_NEAR(t.variance[k], e.v[k], ten_digits);
    }
    EXPECT_NEAR(t.FST, e.fst, ten_digits);
    EXPECT_NEAR(t.FSC, e.fsc, ten_digits);
    EXPECT_NEAR(t.FCT, e.fct, ten_digits);
    double const db = t.df[1], dc = t.df[2];
    expect_test(b.test(t.variance[2], PermutationTail::below,
                       [&] {
                           b.move(PermutationScheme::PHAPAG);
                           return b.W() / dc;
                       }),
                e.beyond[0], e.equal[0], e.p[0], e.sd[0]);
    b.reload();
    expect_test(b.test(t.variance[1], PermutationTail::above,
                       [&] {
                           b.move(PermutationScheme::PHAPWG);
                           double const w = b.W();
                           return (b.groups_observed.T - w) / (db * t.n) - w / (dc * t.n);
                       }),
                e.beyond[1], e.equal[1], e.p[1], e.sd[1]);
    expect_test(b.test(t.variance[0], PermutationTail::above,
                       [&] {
                           permute_populations(b.order, 2);
                           return va_of_groups_haplotypes(t, b.sums, b.arrangement());
                       }),
                e.beyond[2], e.equal[2], e.p[2], e.sd[2]);
    EXPECT_NEAR(uniform(), 0.782077573, 1e-12);
}

void check_one_group_of_haplotypes(bool conventional, OneGroup const& e) {
    Bench b(haplotypes_A(), {4}, false, conventional);
    VarianceTable const t = one_group_haplotypes(b.sizes, b.sums);
    EXPECT_EQ(t.df, (std::array<int, 4>{3, 34, 0, 0}));
    EXPECT_NEAR(t.ssd[0], e.ssd_a, ten_digits);
    EXPECT_NEAR(t.ssd[1], e.ssd_b, 5e-9);
    EXPECT_NEAR(t.n, 9.456140351, ten_digits);
    EXPECT_NEAR(t.variance[0], e.va, ten_digits);
    EXPECT_NEAR(t.variance[1], e.vb, ten_digits);
    EXPECT_NEAR(t.FST, e.fst, ten_digits);
    auto const pops = population_fst(t, b.sizes, b.S, b.sums.Nu);
    for (int p = 0; p < 4; ++p) {
        EXPECT_NEAR(pops[p], e.pop_fst[p], ten_digits);
    }
    expect_test(b.test(t.variance[0], PermutationTail::above,
                       [&] {
                           b.move(PermutationScheme::PHAPWG);
                           double const w = b.W();
                           return 1.0 / (t.df[0] * t.n) * (t.ssd_total - w) - 1.0 / (t.df[1] * t.n) * w;
                       }),
                e.beyond, 0, e.p, e.sd);
    EXPECT_NEAR(uniform(), 0.847652677, 1e-12);
}

}  // namespace

TEST(Amova, OneGroupOfHaplotypesWithDifferences) {
    check_one_group_of_haplotypes(
        false, {4.388277512, 28.55909091, 0.06586047642, 0.839973262, 0.07270702517,
                {0.1127786595, 0.1014523141, 0.04811881926, 0.04136839232}, 10, 0.09090909091, 0.02347262717});
}

TEST(Amova, OneGroupOfHaplotypesWithTheConventionalDistance) {
    check_one_group_of_haplotypes(
        true, {1.078654971, 13.10555556, -0.002739580681, 0.3854575163, -0.007158223918,
               {0.01165921035, -0.00680831295, -0.01800320643, -0.01294971219}, 52, 0.4727272727, 0.04655239567});
}

TEST(Amova, GroupsOfHaplotypesWithDifferences) {
    check_groups_of_haplotypes(false, {{3.810113519, 0.5781639929, 28.55909091},
                                       {0.187233683, -0.05815144347, 0.839973262},
                                       0.1332041759, -0.07437940729, 0.1932125484,
                                       {10, 95, 0}, {0, 0, 25},
                                       {0.09090909091, 0.8636363636, 0.2272727273},
                                       {0.02347262717, 0.02793801487, 0.02793801338}});
}

TEST(Amova, GroupsOfHaplotypesWithTheConventionalDistance) {
    check_groups_of_haplotypes(true, {{0.8200648681, 0.2585901027, 13.10555556},
                                      {0.03668918981, -0.02704021289, 0.3854575163},
                                      0.02442120563, -0.07544338019, 0.09285898975,
                                      {52, 105, 0}, {0, 0, 25},
                                      {0.4727272727, 0.9545454545, 0.2272727273},
                                      {0.04655239567, 0.01515150954, 0.02793801338}});
}

TEST(Amova, GroupsOfIndividualsWithSquaredSizes) {
    Bench b(genotypes_B(), {3, 2}, true, false);
    VarianceTable t = groups_individuals(b.sizes, b.sums, b.groups_observed);
    EXPECT_EQ(t.df, (std::array<int, 4>{1, 3, 21, 26}));
    std::array<double, 4> const ssd{8.622843823, 1.995562771, 22.68928571, 18.0};
    std::array<double, 4> const v{0.3154357011, -0.04164323752, 0.1940672423, 0.6923076923};
    for (int k = 0; k < 4; ++k) {
        EXPECT_NEAR(t.ssd[k], ssd[k], 5e-9);
        EXPECT_NEAR(t.variance[k], v[k], ten_digits);
    }
    EXPECT_NEAR(t.FIS, 0.2189448671, ten_digits);
    EXPECT_NEAR(t.FST, 0.2359939298, ten_digits);
    EXPECT_NEAR(t.FSC, -0.04929759078, ten_digits);
    EXPECT_NEAR(t.FCT, 0.2718880927, ten_digits);
    EXPECT_NEAR(t.FIT, 0.4032691374, ten_digits);
    double const db = t.df[1], dc = t.df[2], dd = t.df[3], n = t.n;
    double const I = b.sums.I, T = b.groups_observed.T;
    expect_test(b.test(v[3], PermutationTail::below, [&] { b.move(PermutationScheme::PHAPAG);
                           return 1.0 / dd * within_individuals(b.distances, b.genes); }),
                5, 3, 0.07272727273, 0.02641757029);
    b.reload();
    expect_test(b.test(t.variance[2], PermutationTail::above, [&] { b.move(PermutationScheme::PHAIWP);
                           double const i = b.individual_sum(); double const w = b.W();
                           return -1.0 / (2.0 * dd) * i + 1.0 / (2.0 * dc) * (w - i); }),
                12, 6, 0.1636363636, 0.02641757029);
    b.reload();
    expect_test(b.test(t.variance[1], PermutationTail::above, [&] { b.move(PermutationScheme::PIAPWG);
                           double const w = b.W(); return (T - w) / (db * n) - (w - I) / (dc * n); }),
                68, 0, 0.6181818182, 0.03533910364);
    expect_test(b.test(t.variance[0], PermutationTail::above, [&] { permute_populations(b.order, 3);
                           return va_of_groups_individuals(t, b.sizes, b.sums, b.arrangement()); }),
                18, 9, 0.2454545455, 0.02727272862);
    EXPECT_NEAR(uniform(), 0.755569592, 1e-12);
}

TEST(Amova, OneGroupOfIndividualsWithSquaredSizes) {
    Bench b(genotypes_B(), {5}, true, false);
    VarianceTable const t = one_group_individuals(b.sizes, b.sums);
    EXPECT_EQ(t.df, (std::array<int, 4>{4, 21, 26, 0}));
    EXPECT_NEAR(t.variance[0], 0.1532889373, ten_digits);
    EXPECT_NEAR(t.variance[1], 0.1940672423, ten_digits);
    EXPECT_NEAR(t.variance[2], 0.6923076923, ten_digits);
    EXPECT_NEAR(t.FST, 0.1474408618, ten_digits);
    EXPECT_NEAR(t.FIT, 0.3341043091, ten_digits);
    double const da = t.df[0], db = t.df[1], dc = t.df[2];
    expect_test(b.test(t.variance[1], PermutationTail::above, [&] { b.move(PermutationScheme::PHAIWP);
                           double const i = b.individual_sum();
                           return (b.W() - i) / (2.0 * db) - i / (2.0 * dc); }),
                13, 8, 0.1909090909, 0.02517158877);
    b.reload();
    expect_test(b.test(t.variance[0], PermutationTail::above, [&] { b.move(PermutationScheme::PIAPWG);
                           double const w = b.W(); return (b.sums.total / b.sizes.total - w) / (da * t.n) -
                                                           (w - b.sums.I) / (2.0 * db * t.n); }),
                21, 0, 0.1909090909, 0.02858782154);
    b.reload();
    expect_test(b.test(t.variance[2], PermutationTail::below, [&] { b.move(PermutationScheme::PHAPWG);
                           return 1.0 / dc * within_individuals(b.distances, b.genes); }),
                2, 0, 0.01818181818, 0.01212121298);
    EXPECT_NEAR(uniform(), 0.711650820, 1e-12);
}

TEST(Amova, PopulationSpecificFisOfIndividuals) {
    Bench b(genotypes_B(), {3, 2}, true, false);
    std::array<double, 5> const fis{-0.1111111111, 0.7352941176, 0.5294117647, 0.203539823, -0.5789473684};
    for (int p = 0; p < 5; ++p) {
        auto const slice = std::span<int const>(b.genes).subspan(b.slices[p].begin,
                                                                 b.slices[p].end - b.slices[p].begin);
        EXPECT_NEAR(population_fis(b.S[p] / b.data.copies[p], within_individuals(b.distances, slice),
                                   b.data.copies[p]), fis[p], ten_digits);
    }
    EXPECT_EQ(population_fis(0.0, 0.0, 2.0), undefined_fis);
}

TEST(Amova, IndividualsPermutedUnderTheHaplotypeTables) {
    Bench one(genotypes_B(), {5}, false, false);
    VarianceTable const t = one_group_haplotypes(one.sizes, one.sums);
    EXPECT_NEAR(t.FST, 0.1675091882, ten_digits);
    expect_test(one.test(t.variance[0], PermutationTail::above, [&] { one.move(PermutationScheme::PIAPWG);
                             double const w = one.W();
                             return 1.0 / (t.df[0] * t.n) * (t.ssd_total - w) - 1.0 / (t.df[1] * t.n) * w; }),
                8, 0, 0.07272727273, 0.02267671224);
    Bench b(genotypes_B(), {3, 2}, false, false);
    VarianceTable const g = groups_haplotypes(b.sizes, b.sums, b.groups_observed);
    EXPECT_NEAR(g.FCT, 0.2710466777, ten_digits);
    double const db = g.df[1], dc = g.df[2];
    expect_test(b.test(g.variance[2], PermutationTail::below, [&] { b.move(PermutationScheme::PIAPAG);
                           return b.W() / dc; }),
                8, 0, 0.07272727273, 0.02267671224);
    b.reload();
    expect_test(b.test(g.variance[1], PermutationTail::above, [&] { b.move(PermutationScheme::PIAPWG);
                           double const w = b.W();
                           return (b.groups_observed.T - w) / (db * g.n) - w / (dc * g.n); }),
                54, 1, 0.5, 0.07202947942);
    expect_test(b.test(g.variance[0], PermutationTail::above, [&] { permute_populations(b.order, 3);
                           return va_of_groups_haplotypes(g, b.sums, b.arrangement()); }),
                9, 13, 0.2, 0.03533910364);
    EXPECT_NEAR(uniform(), 0.120949508, 1e-12);
}

TEST(Amova, OnePopulationOfIndividuals) {
    StructureData data = genotypes_B();
    data.genes.resize(12);
    data.copies.resize(1);
    Bench b(std::move(data), {1}, true, false);
    VarianceTable const t = one_population_individuals(b.sums);
    EXPECT_EQ(t.df, (std::array<int, 4>{5, 6, 0, 0}));
    EXPECT_NEAR(t.variance[0], -0.05, ten_digits);
    EXPECT_NEAR(t.FIS, -0.1111111111, ten_digits);
    double const da = t.df[0], db = t.df[1];
    expect_test(b.test(t.variance[0], PermutationTail::above, [&] { b.move(PermutationScheme::PHAIWP);
                           double const i = b.individual_sum(); return (b.W() - i) / (2.0 * da) - i / (2.0 * db); }),
                44, 32, 0.6909090909, 0.04733484557);
    EXPECT_NEAR(uniform(), 0.720870648, 1e-12);
}

TEST(Amova, OnePopulationOfOneIndividualIsIllDefined) {
    EXPECT_TRUE(one_population_individuals({.total = 1.0, .W = 0.5, .I = 0.5, .Nu = 1.0}).ill_defined);
}

TEST(Amova, PermutationsAreRoundedUpToWholeBatches) {
    EXPECT_EQ(PermutationPlan(100).permutations, 110);
    EXPECT_EQ(PermutationPlan(5).permutations, 6);
    EXPECT_EQ(PermutationPlan(1).permutations, 2);
    EXPECT_EQ(PermutationPlan(0).permutations, 0);
    EXPECT_EQ(PermutationPlan(-3).permutations, 0);
}

namespace {

struct PairExpectation {
    int i, j;
    double fst, va, pixy, corrected, p, sd, p_pixy, p_corrected;
    int count;
};

void check_pairs_drawn(StructureData const& data, bool individuals, bool ahead,
                       std::vector<PairExpectation> const& pairs, double next_draw) {
    PairDistances const d(data.matrix, data.matrix.dimension());
    auto const slices = gene_slices(data.copies, static_cast<int>(data.genes.size()));
    auto const of = [&](int p) {
        return std::span<int const>(data.genes).subspan(slices[p].begin, slices[p].end - slices[p].begin);
    };
    PermutationPlan const plan(100);
    seed_one();
    for (PairExpectation const& e : pairs) {
        PairSums sums(d, of(e.i), of(e.j));
        int const a = static_cast<int>(of(e.i).size()), b = static_cast<int>(of(e.j).size());
        PairStatistics const s = pair_statistics(a, b, sums.compute(sums.genes()));
        EXPECT_NEAR(s.FST, e.fst, ten_digits);
        EXPECT_NEAR(s.Va, e.va, ten_digits);
        EXPECT_NEAR(s.PiXY, e.pixy, ten_digits);
        EXPECT_NEAR(s.corrected, e.corrected, ten_digits);
        int pixy = 0, corrected = 0;
        PairPermutations permutations(sums, a, individuals, ahead, [&](PairOfSums const& permuted) {
            PairStatistics const r = pair_statistics(a, b, permuted);
            pixy += r.PiXY >= s.PiXY;
            corrected += r.corrected >= s.corrected;
            return -s.c / s.n * r.W + 1.0 / s.n * r.ssd_among;
        });
        auto const outcome = permutation_p<double>(
            plan, s.Va, PermutationTail::above, plan.permutations + 1, permutations, [] { return false; },
            [](double) {});
        EXPECT_EQ(outcome.beyond + outcome.equal, e.count);
        EXPECT_NEAR(outcome.p, e.p, 1e-10);
        EXPECT_NEAR(outcome.sd, e.sd, ten_digits);
        EXPECT_NEAR(pixy / 110.0, e.p_pixy, ten_digits);
        EXPECT_NEAR(corrected / 110.0, e.p_corrected, ten_digits);
    }
    EXPECT_NEAR(uniform(), next_draw, 1e-12);
}

void check_pairs(StructureData const& data, bool individuals, std::vector<PairExpectation> const& pairs,
                 double next_draw) {
    for (bool const ahead : {false, true}) {
        check_pairs_drawn(data, individuals, ahead, pairs, next_draw);
    }
}

}  // namespace

TEST(PairwiseDistances, AllPairsOfHaplotypes) {
    check_pairs(haplotypes_A(), false,
                {{0, 1, -0.07608695652, -0.03888888889, 1.027777778, -0.07936507937, 0.7027027027, 0.0379083268,
                  0.6454545455, 0.7090909091, 78},
                 {0, 2, 0.1468590832, 0.1356862745, 1.822222222, 0.2777777778, 0.0990990991, 0.02517337871,
                  0.1181818182, 0.1, 11},
                 {0, 3, 0.1931219561, 0.198245077, 2.0, 0.4090909091, 0.06306306306, 0.02727339678, 0.1,
                  0.05454545455, 7},
                 {1, 2, 0.0484074768, 0.0433984375, 1.75, 0.09841269841, 0.2252252252, 0.03893093015, 0.4272727273,
                  0.2272727273, 25},
                 {1, 3, 0.1181887836, 0.1195156782, 1.954545455, 0.2564935065, 0.08108108108, 0.02121354414,
                  0.2272727273, 0.08181818182, 9},
                 {2, 3, -0.06783122583, -0.06789908656, 2.0, -0.1353535354, 0.7747747748, 0.03887776941, 0.8,
                  0.7818181818, 86}},
                0.049929733);
}

TEST(PairwiseDistances, IndividualsOfUnknownPhaseAreShuffledWhole) {
    StructureData data = genotypes_B();
    check_pairs(data, true,
                {{0, 1, 0.1298383146, 0.1150173611, 1.916666667, 0.1942640693, 0.3603603604, 0.042868867,
                  0.1636363636, 0.3636363636, 40},
                 {0, 2, 0.01281806007, 0.005583333333, 0.8666666667, 0.01212121212, 0.3783783784, 0.04243973421,
                  0.5363636364, 0.3181818182, 42},
                 {1, 2, -0.04686229775, -0.03490234375, 1.575, -0.09285714286, 0.6756756757, 0.0339416311,
                  0.4454545455, 0.6818181818, 75}},
                0.305576618);
}

TEST(PairwiseDistances, TwoSamplesOfOneCopyEach) {
    PairStatistics const s = pair_statistics(1.0, 1.0, {0.0, 0.0, 3.0});
    EXPECT_EQ(s.c, 100000.0);
    EXPECT_EQ(s.PiXY, 3.0);
    EXPECT_EQ(s.PiX, 0.0);
    EXPECT_EQ(s.FST, 1.0);
}

TEST(PairwiseDistances, AnEmptySampleHasNoCoefficient) { EXPECT_EQ(pair_statistics(0.0, 5.0, {}).n, 0.0); }

TEST(PairwiseDistances, DerivedDistancesAreZeroBelowZeroAndInfiniteFromOne) {
    EXPECT_EQ(coancestry_distance(-0.2), 0.0);
    EXPECT_FALSE(std::signbit(coancestry_distance(0.0)));
    EXPECT_TRUE(std::isinf(coancestry_distance(1.0)));
    EXPECT_DOUBLE_EQ(coancestry_distance(0.5), std::log(2.0));
    EXPECT_EQ(linearised_fst(-0.2), 0.0);
    EXPECT_TRUE(std::isinf(linearised_fst(1.5)));
    EXPECT_DOUBLE_EQ(linearised_fst(0.2), 0.25);
}
