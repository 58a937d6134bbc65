// A permutation of every scheme with its within sums, and a pairwise test, held against their own draws and swaps.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "base/random.h"
#include "base/registers.h"
#include "base/trimat.h"
#include "held.h"
#include "structure/formula/gene_permutations.h"
#include "structure/formula/pairwise.h"
#include "structure/formula/permutation_p.h"
#include "structure/formula/variance_components.h"

namespace {

using namespace tov;

/// Samples in two groups, with a number of haplotypes and broken or whole distances.
struct Samples {
    Samples(int populations, int copies, int haplotypes, bool whole) : matrix(haplotypes) {
        std::mt19937 random(1);
        for (int i = 0; i < haplotypes; ++i) {
            for (int j = 0; j < i; ++j) {
                double const d = 1.0 + static_cast<double>(random() % 9);
                matrix.set_data(whole ? d : d + 0.37, i, j);
            }
        }
        for (int k = 0; k < populations * copies; ++k) {
            genes.push_back(k < haplotypes ? k : static_cast<int>(random() % haplotypes));
        }
        std::shuffle(genes.begin(), genes.end(), random);
        distances = PairDistances(matrix, haplotypes);
        sizes = StructureSizes(std::vector<double>(populations, copies), {populations / 2, populations / 2});
        slices = gene_slices(sizes.copies, populations * copies);
    }

    TriMat matrix;
    PairDistances distances;
    StructureSizes sizes;
    std::vector<GeneSlice> slices;
    std::vector<int> genes;
};

constexpr PermutationScheme schemes[] = {PermutationScheme::PHAPAG, PermutationScheme::PHAPWG,
                                         PermutationScheme::PHAIWP, PermutationScheme::PIAPWG,
                                         PermutationScheme::PIAPAG};
constexpr char const* names[] = {"PHAPAG", "PHAPWG", "PHAIWP", "PIAPWG", "PIAPAG"};

constexpr int permutations = 1000;

/// A whole test.
template <class Real, class Source>
PermutationOutcome whole_test(Source& source) {
    PermutationPlan const plan(permutations);
    return permutation_p<Real>(plan, 0.1, PermutationTail::above, plan.permutations, source, [] { return false; },
                               [](double) {});
}

double limit_of(int haplotypes) { return haplotypes == 5 ? 2.0 : 4.0; }

/// A scheme with the statistic that it serves (within terms, and for haplotypes within populations the individuals),
/// against its draws and swaps.
void permuted_samples(benchmark::State& state) {
    PermutationScheme const scheme = schemes[state.range(0)];
    int const haplotypes = static_cast<int>(state.range(1));
    Samples data(20, 50, haplotypes, state.range(2) != 0);
    WithinSums within(data.distances, data.slices, data.genes);
    GenePermutations source(scheme, data.sizes, data.distances, data.slices, &within,
                            scheme == PermutationScheme::PHAIWP ? IndividualSums::by_population : IndividualSums::none,
                            data.genes, [](PermutedSums const& sums) { return sums.W - sums.I; });
    state.SetLabel(names[state.range(0)]);
    bench::hold(state, limit_of(haplotypes), [&] { return whole_test<float>(source); },
                [&] {
                    for (int k = 0; k < permutations; ++k) {
                        permute(scheme, data.sizes, data.genes);
                    }
                });
}
BENCHMARK(permuted_samples)
    ->ArgNames({"scheme", "haplotypes", "whole"})
    ->ArgsProduct({{0, 1, 2, 3, 4}, {5, 50}, {0, 1}})
    ->Apply(bench::held);

/// The same for two samples of 100 copies.
void permuted_pair(benchmark::State& state) {
    int const haplotypes = static_cast<int>(state.range(0));
    Samples data(2, 100, haplotypes, state.range(1) != 0);
    std::span<int const> const genes(data.genes);
    PairSums sums(data.distances, genes.first(100), genes.subspan(100, 100));
    std::vector<int> v = sums.genes();
    PairPermutations source(sums, 100, false, true, [](PairOfSums const& permuted) {
        PairStatistics const s = pair_statistics(100.0, 100.0, permuted);
        return s.W + s.ssd_among + s.corrected;
    });
    bench::hold(state, limit_of(haplotypes), [&] { return whole_test<double>(source); },
                [&] {
                    for (int k = 0; k < permutations; ++k) {
                        shuffle_pair(v, 100, false);
                    }
                });
}
BENCHMARK(permuted_pair)->ArgNames({"haplotypes", "whole"})->ArgsProduct({{5, 50}, {0, 1}})->Apply(bench::held);

/// 2,000 copies of 1,500 haplotypes: a block of permutations against one plain pass for each; draws apart.
///
/// @param tables  every haplotype is summed, in registers of any width; lists of the haplotypes present have one form.
template <class Sums, class Shuffle, class Plain>
void hold_block(benchmark::State& state, bool tables, Registers registers, Sums& sums, std::vector<int> v,
                Shuffle const& shuffle, Plain const& compute) {
    std::vector<std::vector<int>> drawn;
    for (int k = 0; k < sums.block(); ++k) {
        shuffle(v);
        drawn.push_back(v);
    }
    bench::hold(
        state, registers == Registers::narrow || !tables ? 0.5 : 0.25,
        [&] {
            for (auto const& genes : drawn) {
                sums.add(genes);
            }
            sums.evaluate();
        },
        [&] { std::for_each(drawn.begin(), drawn.end(), compute); });
}

void block_of_samples(benchmark::State& state) {
    int const populations = static_cast<int>(state.range(0));
    auto const registers = static_cast<Registers>(state.range(2));
    Samples data(populations, 2000 / populations, 1500, state.range(1) != 0);
    WithinSums within(data.distances, data.slices, data.genes, registers);
    std::vector<double> S(populations);
    hold_block(
        state, populations == 2, registers, within, data.genes,
        [&](std::vector<int>& genes) { permute(PermutationScheme::PHAPAG, data.sizes, genes); },
        [&](std::vector<int> const& genes) { within.compute(genes, S); });
}

void block_of_pairs(benchmark::State& state) {
    auto const registers = static_cast<Registers>(state.range(1));
    Samples data(2, 1000, 1500, state.range(0) != 0);
    std::span<int const> const genes(data.genes);
    PairSums sums(data.distances, genes.first(1000), genes.subspan(1000), registers);
    hold_block(
        state, true, registers, sums, sums.genes(), [](std::vector<int>& v) { shuffle_pair(v, 1000, false); },
        [&](std::vector<int> const& v) { benchmark::DoNotOptimize(sums.compute(v)); });
}

std::vector<std::int64_t> register_widths() {
    std::vector<std::int64_t> widths;
    for (Registers const registers : usable_registers()) {
        widths.push_back(static_cast<std::int64_t>(registers));
    }
    return widths;
}
BENCHMARK(block_of_samples)
    ->ArgNames({"samples", "whole", "registers"})
    ->ArgsProduct({{2, 20}, {0, 1}, register_widths()})
    ->Apply(bench::held);
BENCHMARK(block_of_pairs)
    ->ArgNames({"whole", "registers"})
    ->ArgsProduct({{0, 1}, register_widths()})
    ->Apply(bench::held);

}  // namespace

BENCHMARK_MAIN();
