// Permutations evaluated in blocks: the sums, the values, the numbers drawn and the digits of permutations one by one.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>

#include "structure/formula/gene_permutations.h"
#include "structure/formula/pairwise.h"
#include "structure/formula/permutation_p.h"
#include "structure/formula/variance_components.h"
#include "support/allocations.h"
#include "support/structure_data.h"

namespace tov::test {
namespace {

enum class Kind { whole, broken, negative, uneven_diagonal, vast, infinite, equal };

/// A made-up structure of populations of given sizes.
struct Made {
    Made(std::vector<double> copies, int haplotypes, Kind kind, int unknown = 0) : matrix(haplotypes) {
        std::mt19937 random(17);
        for (int i = 0; i < haplotypes; ++i) {
            for (int j = 0; j <= i; ++j) {
                double d = static_cast<double>(random() % 9) + (kind == Kind::whole ? 0.0 : 0.37);
                d = kind == Kind::negative ? d - 4.0 : kind == Kind::vast ? d * 1e307 : d;
                d = i == j && kind != Kind::uneven_diagonal ? 0.0 : d;
                bool const without_end = kind == Kind::infinite && i == 1 && j == 0;
                matrix.set_data(without_end ? std::numeric_limits<double>::infinity() : d, i, j);
            }
        }
        matrix.set_conventional_fst(kind == Kind::equal);
        distances = PairDistances(matrix, haplotypes);
        int const total = static_cast<int>(std::accumulate(copies.begin(), copies.end(), 0.0));
        for (int k = 0; k < total; ++k) {
            // Most haplotypes once where they suffice, one that is common, and copies without a known one.
            int const h = k < haplotypes ? k : static_cast<int>(random() % std::min(haplotypes, 7));
            genes.push_back(k < unknown ? haplotypes : h);
        }
        std::shuffle(genes.begin(), genes.end(), random);
        slices = gene_slices(copies, total);
        int const populations = static_cast<int>(copies.size());
        sizes = StructureSizes(std::move(copies), populations > 3 ? std::vector<int>{2, populations - 2}
                                                                  : std::vector<int>{populations});
    }

    TriMat matrix;
    PairDistances distances;
    StructureSizes sizes;
    std::vector<GeneSlice> slices;
    std::vector<int> genes;
};

/// The same bits, so that signs of zero and undefined values count.
void expect_same_bits(std::span<double const> a, std::span<double const> b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t k = 0; k < a.size(); ++k) {
        ASSERT_EQ(std::bit_cast<std::uint64_t>(a[k]), std::bit_cast<std::uint64_t>(b[k]))
            << "value " << k << ": " << a[k] << ", " << b[k];
    }
}

/// The sum as its definition tells, every pair of haplotypes of a count of its own.
double defined_sum(Made const& m, std::size_t p, std::vector<int> const& genes) {
    std::vector<double> f(static_cast<std::size_t>(m.distances.size()) + 1, 0.0);
    for (int k = m.slices[p].begin; k < m.slices[p].end; ++k) {
        f[genes[k]] += 1.0;
    }
    double sum = 0.0;
    for (int i = 0; i < m.distances.size(); ++i) {
        if (f[i] == 0.0) {
            continue;
        }
        sum += 0.5 * f[i] * (f[i] - 1.0) * m.distances.at(i, i);
        for (int j = i + 1; j < m.distances.size(); ++j) {
            if (f[j] != 0.0) {
                sum += f[i] * f[j] * m.distances.at(i, j);
            }
        }
    }
    return sum;
}

/// Blocks of every length from one vector to a full one, and a second round in the same object.
void check_within(Made const& m, Registers registers) {
    WithinSums within(m.distances, m.slices, m.genes, registers);
    std::vector<int> v = m.genes;
    std::mt19937 random(3);
    for (int const length : {within.block(), 1, (within.block() + 1) / 2, within.block()}) {
        std::vector<std::vector<int>> drawn;
        for (int k = 0; k < length; ++k) {
            std::shuffle(v.begin(), v.end(), random);
            drawn.push_back(v);
            within.add(v);
        }
        within.evaluate();
        std::vector<double> plain(m.slices.size());
        for (int k = 0; k < length; ++k) {
            std::vector<double> const block(within.sums(k).begin(), within.sums(k).end());
            within.compute(drawn[k], plain);
            expect_same_bits(block, plain);
        }
        for (std::size_t p = 0; p < plain.size(); ++p) {
            EXPECT_EQ(plain[p], defined_sum(m, p, drawn.back()));
        }
    }
}

void check_pair(std::vector<double> const& copies, int haplotypes, Kind kind, Registers registers) {
    Made const m(copies, haplotypes, kind, 2);
    auto const first = std::span(m.genes).first(static_cast<std::size_t>(copies[0]));
    PairSums sums(m.distances, first, std::span(m.genes).subspan(first.size()), registers);
    std::vector<int> v = sums.genes();
    std::mt19937 random(3);
    for (int const length : {sums.block(), 1, (sums.block() + 1) / 2, sums.block()}) {
        std::vector<std::vector<int>> drawn;
        for (int k = 0; k < length; ++k) {
            std::shuffle(v.begin(), v.end(), random);
            drawn.push_back(v);
            sums.add(v);
        }
        sums.evaluate();
        for (int k = 0; k < length; ++k) {
            PairOfSums const block = sums.sums(k), plain = sums.compute(drawn[k]);
            expect_same_bits(std::vector{block.first, block.second, block.among},
                             std::vector{plain.first, plain.second, plain.among});
        }
    }
}

bool same_generator(RandomState const& a, RandomState const& b) {
    return a.ran3.ma == b.ran3.ma && a.ran3.inext == b.ran3.inext && a.ran3.inextp == b.ran3.inextp;
}

struct TestRun {
    PermutationOutcome outcome;
    std::vector<double> values;
    std::vector<int> genes;
    RandomState generator;
};

void expect_same_run(TestRun const& a, TestRun const& b) {
    expect_same_bits(a.values, b.values);
    EXPECT_EQ(a.genes, b.genes);
    EXPECT_TRUE(same_generator(a.generator, b.generator));
    EXPECT_EQ(a.outcome.stopped, b.outcome.stopped);
    EXPECT_EQ(a.outcome.beyond, b.outcome.beyond);
    EXPECT_EQ(a.outcome.equal, b.outcome.equal);
    expect_same_bits(std::vector{a.outcome.p, a.outcome.sd}, std::vector{b.outcome.p, b.outcome.sd});
}

/// A test that is stopped at the question of this number, from 0; none for a negative one.
template <class Source>
TestRun run(Source&& source, long permutations, int stop_at) {
    TestRun result;
    seed_one();
    PermutationPlan const plan(permutations);
    int questions = 0;
    result.outcome = permutation_p<float>(
        plan, 0.4, PermutationTail::above, plan.permutations, source, [&] { return questions++ == stop_at; },
        [&](double value) { result.values.push_back(value); });
    result.generator = random_state;
    return result;
}

TestRun run_scheme(Made const& m, PermutationScheme scheme, IndividualSums individuals, bool ahead, long permutations,
                   int stop_at) {
    std::vector<int> genes = m.genes;
    WithinSums within(m.distances, m.slices, genes);
    auto const value = [](PermutedSums const& s) {
        return s.W - 0.3 * s.I + (s.individuals.empty() ? 0.0 : s.individuals[0] / (1.0 + s.S[0]));
    };
    TestRun result;
    if (ahead) {
        result = run(GenePermutations(scheme, m.sizes, m.distances, m.slices, &within, individuals, genes, value),
                     permutations, stop_at);
    } else {
        std::vector<double> S(m.slices.size()), parts(m.slices.size());
        result = run(SinglePermutations([&] {
                         permute(scheme, m.sizes, genes);
                         within.compute(genes, S);
                         PermutedSums s{within_terms(S, m.sizes), 0.0, S, {}};
                         if (individuals == IndividualSums::by_population) {
                             s.I = individual_sums(m.distances, m.slices, genes, parts);
                             s.individuals = parts;
                         } else if (individuals == IndividualSums::whole_vector) {
                             s.I = within_individuals(m.distances, genes);
                         }
                         return value(s);
                     }),
                     permutations, stop_at);
    }
    result.genes = genes;
    return result;
}

TestRun run_pair(Made const& m, int a, bool individuals, bool ahead, bool drawing, long permutations, int stop_at) {
    PairSums sums(m.distances, std::span(m.genes).first(a), std::span(m.genes).subspan(a));
    return run(PairPermutations(sums, a, individuals, ahead,
                                [&](PairOfSums const& s) {
                                    double const noise = drawing ? uniform() : 0.0;
                                    return pair_statistics(a, static_cast<double>(m.genes.size()) - a, s).FST + noise;
                                }),
               permutations, stop_at);
}

std::vector<double> const five_uneven{5, 40, 12, 2, 31};

}  // namespace

TEST(PermutationBlocks, SumsWithinPopulationsAreThoseOfPlainPassesInEveryRegister) {
    for (Registers const registers : usable_registers()) {
        for (Kind const kind : {Kind::whole, Kind::broken, Kind::negative, Kind::uneven_diagonal, Kind::vast,
                                Kind::infinite, Kind::equal}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(registers) << " bytes, distances of kind "
                                            << static_cast<int>(kind));
            check_within(Made(five_uneven, 6, kind), registers);
            check_within(Made(five_uneven, 30, kind, 4), registers);
            check_within(Made({60}, 40, kind, 1), registers);
            check_within(Made({1, 1}, 3, kind), registers);
            check_within(Made({24, 20}, 40, kind, 1), registers);
            check_within(Made({5, 71}, 23, kind, 3), registers);
            check_within(Made({40, 33}, 12, kind), registers);
            check_within(Made({20.5, 20.2}, 30, kind), registers);
            check_within(Made(std::vector<double>(23, 6.0), 9, kind), registers);
            check_within(Made({20, 26, 30, 4, 1, 40}, 160, kind, 3), registers);
        }
    }
}

TEST(PermutationBlocks, ManyHaplotypesAreSummedFromListsAndDistancesThatAreNotFiniteOneByOne) {
    auto const block = [](Made const& m, Registers registers) {
        return WithinSums(m.distances, m.slices, m.genes, registers).block();
    };
    std::vector<double> const eight(8, 30.0);
    for (Registers const registers : usable_registers()) {
        EXPECT_EQ(block(Made(eight, 20, Kind::broken), registers), 4) << "a table: eight populations fill the lanes";
        EXPECT_EQ(block(Made({50}, 20, Kind::broken), registers), 32);
        EXPECT_EQ(block(Made({25, 25}, 20, Kind::broken), registers), 32) << "one table of two samples";
        EXPECT_EQ(block(Made({25, 25}, 9, Kind::broken), registers), 16) << "few haplotypes of one copy";
        EXPECT_EQ(block(Made({25.5, 25.2}, 20, Kind::broken), registers), 16) << "a copy is in both samples";
        EXPECT_EQ(block(Made(eight, 240, Kind::broken), registers), 32) << "lists";
        EXPECT_EQ(block(Made(eight, 240, Kind::infinite), registers), 1);
        EXPECT_EQ(block(Made(eight, 240, Kind::vast), registers), 1);
        EXPECT_EQ(block(Made(eight, 240, Kind::equal), registers), 1);
    }
}

TEST(PermutationBlocks, SumsOfAPairAreThoseOfPlainPassesInEveryRegister) {
    for (Registers const registers : usable_registers()) {
        for (Kind const kind :
             {Kind::whole, Kind::broken, Kind::negative, Kind::uneven_diagonal, Kind::infinite, Kind::equal}) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(registers) << " bytes, distances of kind "
                                            << static_cast<int>(kind));
            check_pair({10, 15}, 5, kind, registers);
            check_pair({15, 10}, 20, kind, registers);
            check_pair({3, 70}, 60, kind, registers);
            check_pair({1, 4}, 3, kind, registers);
        }
    }
}

TEST(PermutationBlocks, ATestInBlocksGivesTheValuesAndTheGeneratorOfSinglePermutations) {
    Made const structures[] = {Made({8, 12, 6, 20}, 9, Kind::broken), Made({8, 12, 6, 20}, 9, Kind::whole),
                               Made({20, 26, 30, 4, 40}, 120, Kind::broken), Made({8, 12, 6, 20}, 9, Kind::equal)};
    for (Made const& m : structures) {
        for (PermutationScheme const scheme :
             {PermutationScheme::PHAPAG, PermutationScheme::PHAPWG, PermutationScheme::PHAIWP,
              PermutationScheme::PIAPWG, PermutationScheme::PIAPAG}) {
            for (IndividualSums const individuals :
                 {IndividualSums::none, IndividualSums::by_population, IndividualSums::whole_vector}) {
                for (long const permutations : {5, 100, 230}) {
                    expect_same_run(run_scheme(m, scheme, individuals, false, permutations, -1),
                                    run_scheme(m, scheme, individuals, true, permutations, -1));
                }
            }
        }
    }
}

TEST(PermutationBlocks, AStopLeavesTheGeneratorAndTheGenesOfSinglePermutations) {
    Made const m({8, 12, 6, 20}, 9, Kind::broken);
    for (int const stop_at : {0, 1, 2, 4}) {
        TestRun const single = run_scheme(m, PermutationScheme::PHAPWG, IndividualSums::none, false, 1000, stop_at);
        TestRun const blocks = run_scheme(m, PermutationScheme::PHAPWG, IndividualSums::none, true, 1000, stop_at);
        EXPECT_EQ(single.values.size(), 100U * stop_at);
        EXPECT_TRUE(blocks.outcome.stopped);
        expect_same_run(single, blocks);
        expect_same_run(run_pair(m, 20, false, false, false, 1000, stop_at),
                        run_pair(m, 20, false, true, false, 1000, stop_at));
    }
}

TEST(PermutationBlocks, PairsDrawnAheadGiveTheValuesAndTheGeneratorOfSinglePermutations) {
    for (Kind const kind : {Kind::whole, Kind::broken, Kind::equal}) {
        Made const m({30, 16}, 12, kind);
        for (bool const individuals : {false, true}) {
            for (long const permutations : {5, 100, 230}) {
                expect_same_run(run_pair(m, 30, individuals, false, false, permutations, -1),
                                run_pair(m, 30, individuals, true, false, permutations, -1));
            }
        }
    }
}

TEST(PermutationBlocks, AStatisticThatDrawsMeetsItsNumbersBetweenThePermutations) {
    // Drawn by hand: shuffle, then the statistic's own number, permutation after permutation.
    Made const m({30, 16}, 12, Kind::broken);
    TestRun const result = run_pair(m, 30, false, false, true, 9, -1);
    PairSums sums(m.distances, std::span(m.genes).first(30), std::span(m.genes).subspan(30));
    std::vector<int> v = sums.genes();
    seed_one();
    for (double const value : result.values) {
        shuffle_pair(v, 30, false);
        double const noise = uniform();
        EXPECT_EQ(value, pair_statistics(30.0, 16.0, sums.compute(v)).FST + noise);
    }
    EXPECT_EQ(result.values.size(), 12U);
    EXPECT_TRUE(same_generator(random_state, result.generator));
}

TEST(PermutationBlocks, NothingIsAllocatedWithinThePermutations) {
    Made const structures[] = {Made({8, 12, 6, 20}, 9, Kind::broken), Made({8, 12, 6, 20}, 9, Kind::whole),
                               Made({20, 26, 30, 4, 40}, 120, Kind::broken), Made({8, 12, 6, 20}, 9, Kind::equal)};
    PermutationPlan const plan(1000);
    for (Made const& m : structures) {
        std::vector<int> genes = m.genes;
        WithinSums within(m.distances, m.slices, genes);
        PairSums sums(m.distances, std::span(m.genes).first(20), std::span(m.genes).subspan(20));
        long first = 0, last = 0;
        int questions = 0;
        auto const poll = [&] {
            last = allocations();
            first = questions++ == 0 ? last : first;
            return false;
        };
        auto const keep = [](double) {};
        seed_one();
        GenePermutations genes_of_all(PermutationScheme::PHAPWG, m.sizes, m.distances, m.slices, &within,
                                      IndividualSums::by_population, genes,
                                      [](PermutedSums const& s) { return s.W - s.I; });
        auto const a =
            permutation_p<float>(plan, 0.4, PermutationTail::above, plan.permutations, genes_of_all, poll, keep);
        EXPECT_EQ(last, first);
        questions = 0;
        for (bool const ahead : {true, false}) {
            PairPermutations pair(sums, 20, false, ahead, [](PairOfSums const& s) { return s.first + s.among; });
            questions = 0;
            auto const b =
            permutation_p<double>(plan, 0.4, PermutationTail::above, plan.permutations, pair, poll, keep);
            EXPECT_EQ(last, first);
            EXPECT_EQ(questions, 11) << "so that the permutations lay between the counts";
            EXPECT_GE(a.p + b.p, 0.0);
        }
    }
}

}  // namespace tov::test
