// An EM iteration over G genotypes held against a loop that reads G index pairs and does their multiply-adds.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

#include "floors.h"
#include "inference/formula/em_terms.h"

namespace {

// A sample of n individuals over some biallelic loci, each phenotype with its 2^(h - 1) pairs, as an estimation sees it.
struct Sample {
    Sample(int individuals, int loci) {
        std::mt19937 engine(5);
        data.clear(1 << loci);
        std::uniform_int_distribution<int> any(0, (1 << loci) - 1);
        for (int i = 0; i < individuals; ++i) {
            // Half of the second chromosomes resemble the first, so that there are few heterozygous loci and many.
            int const a = any(engine);
            int const b = i % 2 ? any(engine) : a ^ (any(engine) & any(engine));
            int const differ = a ^ b;
            data.add_phenotype(1.0, differ == 0);
            int const low = differ & -differ;
            int const rest = differ ^ low;
            int subset = 0;
            do {  // all subsets of the other heterozygous loci
                data.add_pair(a ^ subset, b ^ subset);
                subset = (subset - rest) & rest;
            } while (subset != 0);
        }
        tov::em_start(data, {}, work);
        start = work.freq;
        for (tov::HaplotypePair const pair : data.pairs) {
            pairs.push_back(pair.first);
            pairs.push_back(pair.second);
        }
        gain.assign(data.blank.size(), 0.0);
    }
    // One iteration from the start: frequencies that have run for long hold subnormal numbers, which cost more.
    double iterate() {
        work.freq = start;
        return tov::em_iteration(data, {}, work);
    }
    double floor() {
        std::fill(gain.begin(), gain.end(), 0.0);
        return tov::floors::share_pairs(pairs.data(), data.pairs.size(), start.data(), gain.data());
    }

    tov::EmData data;
    tov::EmWork work;
    std::vector<double> start;
    std::vector<std::int32_t> pairs;
    std::vector<double> gain;
};

struct Size {
    int individuals;
    int loci;
};
constexpr Size sizes[] = {{200, 6}, {2000, 10}};

void em_iterations(benchmark::State& state) {
    Sample sample(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) benchmark::DoNotOptimize(sample.iterate());
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(sample.data.pairs.size()));
}
BENCHMARK(em_iterations)->Args({sizes[0].individuals, sizes[0].loci})->Args({sizes[1].individuals, sizes[1].loci});

void pair_loops(benchmark::State& state) {
    Sample sample(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) benchmark::DoNotOptimize(sample.floor());
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(sample.data.pairs.size()));
}
BENCHMARK(pair_loops)->Args({sizes[0].individuals, sizes[0].loci})->Args({sizes[1].individuals, sizes[1].loci});

/// Processor time of enough runs, in nanoseconds a genotype.
template <class Run>
double timed(std::size_t genotypes, Run run) {
    int const runs = static_cast<int>(2000000 / genotypes) + 1;
    std::clock_t const start = std::clock();
    for (int i = 0; i < runs; ++i) benchmark::DoNotOptimize(run());
    return static_cast<double>(std::clock() - start) * (1e9 / CLOCKS_PER_SEC) / runs / static_cast<double>(genotypes);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    for (Size const size : sizes) {
        Sample sample(size.individuals, size.loci);
        std::size_t const n = sample.data.pairs.size();
        double ours = 1e300;
        double floor = 1e300;
        for (int round = 0; round < 25; ++round) {  // in turn, so that a busy machine slows both; the shortest count
            ours = std::min(ours, timed(n, [&] { return sample.iterate(); }));
            floor = std::min(floor, timed(n, [&] { return sample.floor(); }));
        }
        std::printf("EM iteration over %zu genotypes %.2f ns a genotype, pair loop %.2f ns, ratio %.2f (limit 3)\n", n,
                    ours, floor, ours / floor);
    }
    return 0;
}
