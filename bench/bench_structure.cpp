// The AMOVA of single loci held against plain sums from allele counts, and a Mantel permutation held against a gathered
// dot product.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "base/random.h"
#include "base/recmat.h"
#include "base/trimat.h"
#include "held.h"
#include "input/settings.h"
#include "model/struct.h"
#include "structure/amova.h"

namespace {

using namespace tov;

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

void amova_of_loci(benchmark::State& state) {
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
    bench::hold(
        state, 5.0,
        [&] {
            double sum = 0.0;
            for (int l = 0; l < loci; ++l) {
                amova_results results;
                Amova const amova(view, l, {sizes, PairDistances(matrix, 2), genes[l]}, &results);
                sum += results.index[slot_FST];
            }
            return sum;
        },
        [&] { return plain_sums(genes); });
}
BENCHMARK(amova_of_loci)->Apply(bench::held);

void mantel_permutation(benchmark::State& state) {
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
    bench::hold(
        state, 1.5,
        [&] {
            Y.permute_index();
            return Y.computeZ(X);
        },
        [&] {
            double sum = 0.0;
            for (int i = 0; i < n; ++i) {
                double const* const row = y.data() + static_cast<std::size_t>(index[i]) * n;
                for (int j = 0; j < i; ++j) {
                    sum += row[index[j]] * x[i * n + j];
                }
            }
            return sum;
        });
}
BENCHMARK(mantel_permutation)->Apply(bench::held);

}  // namespace

BENCHMARK_MAIN();
