// A thousand bootstrap replicates of a sudden expansion of fifty gene copies: where the time goes.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <sstream>

#include "base/random.h"
#include "demography/formula/hooke_jeeves.h"
#include "diversity/popdna.h"
#include "input/settings.h"
#include "simulation/genealgy.h"

namespace {

using namespace tov;

constexpr int replicates = 1000;
constexpr ExpansionParameters estimates{1.0, 50.0, 5.0, 0.0};

void seed() {
    long idum = -1;
    ran3(&idum);
}

double seconds_since(std::clock_t start) { return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC; }

/// A sample of fifty copies with a smooth distribution of pairwise differences.
void prepare(PopulDNA& sample) {
    sample.set_sample_size(50);
    CurveScratch scratch;
    std::vector<double> curve(20);
    ExpansionParameters p = estimates;
    sudden_expansion_curve(p, curve, scratch);
    sample.max_mismatch_ = 19;
    sample.exp_max_mismatch_ = 19;
    sample.mismatch_.assign(39, 0);
    for (int c = 0; c < 20; ++c) {
        sample.mismatch_[c] = static_cast<std::int64_t>(curve[c] * 1225.0);
    }
}

void simulate(PopulDNA& sample) {
    sample.simulate_sample_exp(0.5 * estimates.theta1 / 4000000.0, 400, MUT_INFINITE_ALLELES, -1.0, 1.0, 1.0, 0.33,
                               estimates.tau / estimates.theta1, estimates.theta0 / estimates.theta1, 4000000);
    sample.getGeneTree().write_sequences();
    TNode::hits.Flush();
}

double time_of_simulation(PopulDNA& sample) {
    seed();
    std::clock_t const start = std::clock();
    for (int k = 0; k < replicates; ++k) {
        simulate(sample);
    }
    return seconds_since(start);
}

/// Frequencies of the pairs of tips by the sites at which they differ.
void count_pairs(TTree& tree, std::vector<double>& y) {
    std::fill(y.begin(), y.end(), 0.0);
    for (int i = 1; i < tree.sample_size(); ++i) {
        for (int j = 0; j < i; ++j) {
            std::size_t d = 0;
            for (int s = 0; s < 400; ++s) {
                d += (*tree[i].sequence)[s] != (*tree[j].sequence)[s];
            }
            if (d < y.size()) {
                y[d] += 1.0 / 1225.0;
            }
        }
    }
}

/// The refits alone, on simulated distributions.
double time_of_refits(PopulDNA& sample) {
    seed();
    double seconds = 0.0;
    std::vector<double> y(20);
    for (int k = 0; k < replicates; ++k) {
        simulate(sample);
        count_pairs(sample.getGeneTree(), y);
        std::clock_t const start = std::clock();
        ExpansionFitter fitter(ExpansionModel::sudden, y);
        benchmark::DoNotOptimize(hook_jeeves_rh(fitter, estimates));
        seconds += seconds_since(start);
    }
    return seconds;
}

void bootstrap(benchmark::State& state) {
    PopulDNA sample;
    prepare(sample);
    settings set;
    set.NumBootExpDem = replicates;
    std::ostringstream out;
    double whole = 0.0;
    for (auto _ : state) {
        seed();
        std::clock_t const start = std::clock();
        sample.est_demog_mis(&set, out);
        whole = seconds_since(start);
    }
    state.counters["simulation"] = time_of_simulation(sample) / whole;
    state.counters["refits"] = time_of_refits(sample) / whole;
}
BENCHMARK(bootstrap)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
