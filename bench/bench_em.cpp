// An EM iteration over G genotypes held against a loop that reads G index pairs and does their multiply-adds.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "floors.h"
#include "held.h"
#include "inference/formula/em_terms.h"

namespace {

// A sample of n individuals over some biallelic loci as an estimation sees it: each phenotype with its 2^(h - 1) pairs.
struct Sample {
    Sample(int individuals, int loci, bool inbreeding) {
        options.inbreeding = inbreeding;
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
        tov::em_start(data, options, work);
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
        return tov::em_iteration(data, options, work);
    }
    double floor() {
        std::fill(gain.begin(), gain.end(), 0.0);
        return tov::floors::share_pairs(pairs.data(), data.pairs.size(), start.data(), gain.data());
    }

    tov::EmData data;
    tov::EmOptions options;
    tov::EmWork work;
    std::vector<double> start;
    std::vector<std::int32_t> pairs;
    std::vector<double> gain;
};

void em_iteration(benchmark::State& state) {
    Sample sample(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), state.range(2) != 0);
    tov::bench::hold(state, 3.0, [&] { return sample.iterate(); }, [&] { return sample.floor(); });
    state.counters["genotypes"] = static_cast<double>(sample.data.pairs.size());
}
BENCHMARK(em_iteration)
    ->ArgNames({"individuals", "loci", "inbreeding"})
    ->Args({200, 6, 0})
    ->Args({200, 6, 1})
    ->Args({2000, 10, 0})
    ->Args({2000, 10, 1})
    ->Apply(tov::bench::held);

}  // namespace

BENCHMARK_MAIN();
