// The AMOVA of single loci held against plain sums from allele counts, and a Mantel permutation held against a gathered
// dot product.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <random>
#include <vector>

#include "base/random.h"
#include "base/recmat.h"
#include "base/trimat.h"
#include "input/settings.h"
#include "model/struct.h"
#include "structure/amova.h"

namespace {

using namespace tov;

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

constexpr int loci = 1000, samples = 10, copies = 20;

std::vector<std::vector<int>> genotypes() {
    std::mt19937 random(1);
    std::vector<std::vector<int>> genes(loci, std::vector<int>(samples * copies));
    for (auto& locus : genes) {
        for (int& allele : locus) {
            allele = static_cast<int>(random() % 2);
        }
    }
    return genes;
}

/// Sums of squares within and in total of every locus, from the counts of its two alleles.
double plain_sums(std::vector<std::vector<int>> const& genes) {
    double sum = 0.0;
    for (auto const& locus : genes) {
        double within = 0.0;
        int all[2] = {};
        for (int p = 0; p < samples; ++p) {
            int counts[2] = {};
            for (int k = 0; k < copies; ++k) {
                ++counts[locus[p * copies + k]];
            }
            within += static_cast<double>(counts[0]) * counts[1] / copies;
            all[0] += counts[0];
            all[1] += counts[1];
        }
        sum += static_cast<double>(all[0]) * all[1] / (samples * copies) - within;
    }
    return sum;
}

void report_loci() {
    auto const genes = genotypes();
    settings set;
    set.NumPermutationsAMOVA = 0;
    Structure structure;
    structure.GenotypicData = 0;
    ProjectView view{set};
    view.structure = &structure;
    TriMat matrix;
    matrix.set_conventional_fst(1);
    StructureSizes const sizes(std::vector<double>(samples, copies), {samples});
    double const full = shortest(
        [&] {
            double sum = 0.0;
            for (int l = 0; l < loci; ++l) {
                amova_results results;
                Amova const amova(view, l, {sizes, PairDistances(matrix, 2), genes[l]}, &results);
                sum += results.index[slot_FST];
            }
            benchmark::DoNotOptimize(sum);
        },
        3);
    double const floor = shortest([&] { benchmark::DoNotOptimize(plain_sums(genes)); }, 20);
    std::printf("AMOVA of %d loci, %d samples of %d: %.0f us, plain sums of squares %.0f us, ratio %.2f (limit 5)\n",
                loci, samples, copies, full, floor, full / floor);
}

void report_mantel() {
    int const n = 100;
    RectMat Y(n, n), X(n, n);
    std::mt19937 random(3);
    std::vector<double> y(n * n), x(n * n);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j) {
            y[i * n + j] = y[j * n + i] = Y(i, j) = Y(j, i) = static_cast<double>(random() % 100);
            x[i * n + j] = x[j * n + i] = X(i, j) = X(j, i) = static_cast<double>(random() % 100);
        }
    }
    Y.create_index();
    std::vector<int> index(n);
    std::iota(index.begin(), index.end(), 0);
    std::shuffle(index.begin(), index.end(), random);
    double const full = shortest(
        [&] {
            Y.permute_index();
            benchmark::DoNotOptimize(Y.computeZ(X));
        },
        500);
    double const floor = shortest(
        [&] {
            double sum = 0.0;
            for (int i = 0; i < n; ++i) {
                double const* const row = y.data() + static_cast<std::size_t>(index[i]) * n;
                for (int j = 0; j < i; ++j) {
                    sum += row[index[j]] * x[i * n + j];
                }
            }
            benchmark::DoNotOptimize(sum);
        },
        500);
    std::printf("Mantel permutation of %d labels: %.2f us, a gathered dot product %.2f us, ratio %.2f (limit 1.5)\n", n,
                full, floor, full / floor);
}

void one_locus(benchmark::State& state) {
    auto const genes = genotypes();
    for (auto _ : state) {
        benchmark::DoNotOptimize(plain_sums(genes));
    }
}
BENCHMARK(one_locus);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    long idum = -1;
    tov::ran3(&idum);
    benchmark::RunSpecifiedBenchmarks();
    report_loci();
    report_mantel();
    return 0;
}
