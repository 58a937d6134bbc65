// A permutation of every scheme with its within sums, and a pairwise test, held against their own draws and swaps.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

#include "base/random.h"
#include "base/registers.h"
#include "base/trimat.h"
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

/// Microseconds of one of `rounds` calls, the shortest of several goes.
template <class Run>
double shortest(Run run, int rounds, int goes = 15) {
    double best = 1e300;
    for (int go = 0; go < goes; ++go) {
        std::clock_t const start = std::clock();
        for (int k = 0; k < rounds; ++k) {
            run();
        }
        best = std::min(best, static_cast<double>(std::clock() - start) * (1e6 / CLOCKS_PER_SEC) / rounds);
    }
    return best;
}

/// Microseconds of one permutation of a test of 1,000 permutations.
template <class Real, class Source>
double of_test(Source& source) {
    PermutationPlan const plan(1000);
    return shortest(
               [&] {
                   benchmark::DoNotOptimize(permutation_p<Real>(plan, 0.1, PermutationTail::above, plan.permutations,
                                                                source, [] { return false; }, [](double) {}));
               },
               1) /
           plan.permutations;
}

int limit_of(int haplotypes) { return haplotypes == 5 ? 2 : 4; }

/// Every scheme with the statistic that it serves: within terms, and for haplotypes within populations the individuals.
void report(int haplotypes, bool whole, Registers registers) {
    Samples data(20, 50, haplotypes, whole);
    WithinSums within(data.distances, data.slices, data.genes, registers);
    for (int k = 0; k < 5; ++k) {
        double const floor = shortest([&] { permute(schemes[k], data.sizes, data.genes); }, 300);
        GenePermutations source(
            schemes[k], data.sizes, data.distances, data.slices, &within,
            schemes[k] == PermutationScheme::PHAIWP ? IndividualSums::by_population : IndividualSums::none, data.genes,
            [](PermutedSums const& sums) { return sums.W - sums.I; });
        double const full = of_test<float>(source);
        std::printf("%s, %d haplotypes, %s distances: %.2f us, its draws and swaps %.2f us, ratio %.2f (limit %d)\n",
                    names[k], haplotypes, whole ? "whole" : "broken", full, floor, full / floor, limit_of(haplotypes));
    }
}

void report_pair(int haplotypes, bool whole, Registers registers) {
    Samples data(2, 100, haplotypes, whole);
    std::span<int const> const genes(data.genes);
    PairSums sums(data.distances, genes.first(100), genes.subspan(100, 100), registers);
    std::vector<int> v = sums.genes();
    double const floor = shortest([&] { shuffle_pair(v, 100, false); }, 1000);
    PairPermutations source(sums, 100, false, true, [](PairOfSums const& permuted) {
        PairStatistics const s = pair_statistics(100.0, 100.0, permuted);
        return s.W + s.ssd_among + s.corrected;
    });
    double const full = of_test<double>(source);
    std::printf("pair of 100 copies, %d haplotypes, %s distances: %.2f us, its draws and swaps %.2f us, ratio %.2f "
                "(limit %d)\n",
                haplotypes, whole ? "whole" : "broken", full, floor, full / floor, limit_of(haplotypes));
}

/// 2,000 copies of 1,500 haplotypes: a block of permutations against one plain pass for each; draws apart.
///
/// @param tables  every haplotype is summed, in registers of any width; lists of the haplotypes present have one form.
template <class Sums, class Shuffle, class Plain>
void compare_block(char const* what, bool whole, bool tables, Registers registers, Sums& sums, std::vector<int> v,
                   Shuffle const& shuffle, Plain const& compute) {
    std::vector<std::vector<int>> drawn;
    for (int k = 0; k < sums.block(); ++k) {
        shuffle(v);
        drawn.push_back(v);
    }
    double const rounds = sums.block();
    double const plain = shortest([&] { std::for_each(drawn.begin(), drawn.end(), compute); }, 1, 5) / rounds;
    double const block = shortest(
                             [&] {
                                 for (auto const& genes : drawn) {
                                     sums.add(genes);
                                 }
                                 sums.evaluate();
                             },
                             1, 5) /
                         rounds;
    std::printf("%s, 1500 haplotypes, %s distances, registers of %d bytes, block of %d: %.0f us, plain pass %.0f us, "
                "ratio %.2f (limit %.2f)\n",
                what, whole ? "whole" : "broken", static_cast<int>(registers), sums.block(), block, plain,
                block / plain, registers == Registers::narrow || !tables ? 0.5 : 0.25);
}

void report_blocks(bool whole, Registers registers) {
    for (int const populations : {2, 20}) {
        Samples data(populations, 2000 / populations, 1500, whole);
        WithinSums within(data.distances, data.slices, data.genes, registers);
        std::vector<double> S(populations);
        compare_block(populations == 2 ? "2 samples of 1000 copies" : "20 samples of 100 copies", whole,
                      populations == 2, registers, within, data.genes,
                      [&](std::vector<int>& v) { permute(PermutationScheme::PHAPAG, data.sizes, v); },
                      [&](std::vector<int> const& v) { within.compute(v, S); });
    }
    Samples data(2, 1000, 1500, whole);
    std::span<int const> const genes(data.genes);
    PairSums sums(data.distances, genes.first(1000), genes.subspan(1000), registers);
    compare_block("pair of 1000 copies", whole, true, registers, sums, sums.genes(),
                  [](std::vector<int>& v) { shuffle_pair(v, 1000, false); },
                  [&](std::vector<int> const& v) { benchmark::DoNotOptimize(sums.compute(v)); });
}

void permutation(benchmark::State& state) {
    Samples data(20, 50, static_cast<int>(state.range(0)), true);
    WithinSums within(data.distances, data.slices, data.genes);
    GenePermutations source(PermutationScheme::PHAPWG, data.sizes, data.distances, data.slices, &within,
                            IndividualSums::none, data.genes, [](PermutedSums const& sums) { return sums.W; });
    PermutationPlan const plan(100);
    for (auto _ : state) {
        benchmark::DoNotOptimize(permutation_p<float>(plan, 0.1, PermutationTail::above, plan.permutations, source,
                                                      [] { return false; }, [](double) {}));
    }
}
BENCHMARK(permutation)->Arg(5)->Arg(50);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    long idum = -1;
    tov::ran3(&idum);
    benchmark::RunSpecifiedBenchmarks();
    for (int const haplotypes : {5, 50}) {
        for (bool const whole : {true, false}) {
            report(haplotypes, whole, tov::best_registers());
            report_pair(haplotypes, whole, tov::best_registers());
        }
    }
    for (tov::Registers const registers : tov::usable_registers()) {
        for (bool const whole : {true, false}) {
            report_blocks(whole, registers);
        }
    }
    return 0;
}
