// A permutation of every scheme with its within sums, and a pairwise test, held against their own draws and swaps.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

#include "base/random.h"
#include "base/trimat.h"
#include "structure/formula/gene_vector.h"
#include "structure/formula/pair_sums.h"
#include "structure/formula/pairwise.h"
#include "structure/formula/variance_components.h"

namespace {

using namespace tov;

/// Twenty samples of fifty copies in two groups, with a number of haplotypes and broken or whole distances.
struct Structure20 {
    Structure20(int haplotypes, bool whole) : matrix(haplotypes) {
        std::mt19937 random(1);
        for (int i = 0; i < haplotypes; ++i) {
            for (int j = 0; j < i; ++j) {
                double const d = 1.0 + static_cast<double>(random() % 9);
                matrix.set_data(whole ? d : d + 0.37, i, j);
            }
        }
        for (int k = 0; k < 1000; ++k) {
            genes.push_back(static_cast<int>(random() % haplotypes));
        }
        distances = PairDistances(matrix, haplotypes);
        sizes = StructureSizes(std::vector<double>(20, 50.0), {10, 10});
    }

    TriMat matrix;
    PairDistances distances;
    StructureSizes sizes;
    std::vector<int> genes;
};

constexpr PermutationScheme schemes[] = {PermutationScheme::PHAPAG, PermutationScheme::PHAPWG,
                                         PermutationScheme::PHAIWP, PermutationScheme::PIAPWG,
                                         PermutationScheme::PIAPAG};
constexpr char const* names[] = {"PHAPAG", "PHAPWG", "PHAIWP", "PIAPWG", "PIAPAG"};

template <class Run>
double shortest(Run run, int rounds) {
    double best = 1e300;
    for (int round = 0; round < 15; ++round) {
        std::clock_t const start = std::clock();
        for (int k = 0; k < rounds; ++k) {
            run();
        }
        best = std::min(best, static_cast<double>(std::clock() - start) * (1e6 / CLOCKS_PER_SEC) / rounds);
    }
    return best;
}

void report(int haplotypes, bool whole) {
    Structure20 data(haplotypes, whole);
    auto const slices = gene_slices(data.sizes.copies, 1000);
    WithinSums within(data.distances, slices);
    std::vector<double> S(20);
    for (int k = 0; k < 5; ++k) {
        double const floor = shortest([&] { permute(schemes[k], data.sizes, data.genes); }, 300);
        double const full = shortest(
            [&] {
                permute(schemes[k], data.sizes, data.genes);
                within.compute(data.genes, S);
                benchmark::DoNotOptimize(within_terms(S, data.sizes));
            },
            300);
        std::printf("%s, %d haplotypes, %s distances: %.2f us, its draws and swaps %.2f us, ratio %.2f (limit %d)\n",
                    names[k], haplotypes, whole ? "whole" : "broken", full, floor, full / floor,
                    haplotypes == 5 ? 2 : 4);
    }
}

void report_pair(int haplotypes, bool whole) {
    Structure20 data(haplotypes, whole);
    std::span<int const> const genes(data.genes);
    PairSums sums(data.distances, genes.first(100), genes.subspan(100, 100));
    std::vector<int> v = sums.genes();
    double const floor = shortest([&] { shuffle_pair(v, 100, false); }, 1000);
    double const full = shortest(
        [&] {
            shuffle_pair(v, 100, false);
            benchmark::DoNotOptimize(pair_statistics(100.0, 100.0, sums.compute(v, 100)));
        },
        1000);
    std::printf("pair of 100 copies, %d haplotypes, %s distances: %.2f us, its draws and swaps %.2f us, ratio %.2f "
                "(limit %d)\n",
                haplotypes, whole ? "whole" : "broken", full, floor, full / floor, haplotypes == 5 ? 2 : 4);
}

void permutation(benchmark::State& state) {
    Structure20 data(static_cast<int>(state.range(0)), true);
    WithinSums within(data.distances, gene_slices(data.sizes.copies, 1000));
    std::vector<double> S(20);
    for (auto _ : state) {
        permute(PermutationScheme::PHAPWG, data.sizes, data.genes);
        within.compute(data.genes, S);
        benchmark::DoNotOptimize(within_terms(S, data.sizes));
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
            report(haplotypes, whole);
            report_pair(haplotypes, whole);
        }
    }
    return 0;
}
