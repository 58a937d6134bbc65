// Trees, replicates of Tajima's test and configurations of the Ewens-Watterson test, held against their bare draws.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "base/random.h"
#include "diversity/formula/ewens.h"
#include "diversity/formula/tajima.h"
#include "diversity/neutral_simulation.h"
#include "diversity/popdna.h"
#include "floors.h"
#include "input/settings.h"
#include "simulation/genealgy.h"

namespace {

void seed(long s) {
    tov::random_state = tov::RandomState{};
    tov::random_state.ran3.seed(s);
}

/// A DNA sample of n copies and 500 sites whose replicates have the given theta.
class TajimaReplicate {
public:
    TajimaReplicate(int n, double theta)
        : first_(tov::my_string("1"), tov::my_string(std::string(500, 'A'))),
          terms_(tov::tajima_terms(n, tov::SquaredTerms::inverse_twice)) {
        pop_.haplotypes.Add(new tov::PHaploDef(&first_, n));
        pop_.set_sample_size(n);
        pop_.evaluate_polymorphism(set_);
        simulation_ = std::make_unique<tov::NeutralSimulation>(pop_, set_, tov::MUT_NUCLEOTIDES, theta,
                                                               tov::SiteWeights{1.0, 1.0, 0.0});
    }
    double D() {
        tov::SimulatedSample const sample = simulation_->next_sites();
        return tov::fast_tajima_d(terms_, sample.pi, sample.sites).D;
    }
    int haplotypes() { return simulation_->next_haplotypes().haplotypes; }

private:
    tov::HaploDef first_;
    tov::TajimaTerms terms_;
    tov::settings set_;
    tov::PopulDNA pop_;
    std::unique_ptr<tov::NeutralSimulation> simulation_;
};

/// Replicates of the Ewens-Watterson and the exact test, and the bare draws and scans of the same configurations.
class EwensReplicate {
public:
    EwensReplicate(int n, int k) {
        pop_.set_sample_size(n);
        tov::PopGenetics::extend_B_num_mat(n, k);
        sampler_ = std::make_unique<tov::EwensSampler>(tov::PopGenetics::BMat, n, k);
        pop_.exact_neutr_test_ = true;
        for (int i = 0; i < k; ++i) ranks_.Add(new tov::AHaplFreq());
        seed(-1);
        for (int r = 0; r < recorded; ++r) {
            auto const counts = sampler_->draw();
            steps_.insert(steps_.end(), counts.begin(), counts.end() - 1);
        }
        table_.assign(static_cast<std::size_t>(n), 0.37);
    }
    /// As many replicates as there are recorded scans.
    double run() {
        double sum = 0.0;
        for (int r = 0; r < recorded; ++r) {
            sum += pop_.compute_rand_frequencies_and_F(*sampler_, ranks_, 0.2, n_F_, n_exact_);
        }
        return sum;
    }
    double floor() { return tov::floors::draws_and_scans(steps_.data(), steps_.size(), table_.data(), table_.size()); }

    static constexpr int recorded = 2000;

private:
    tov::PopulDNA pop_;
    std::unique_ptr<tov::EwensSampler> sampler_;
    tov::MY_TISArrayAsVector<tov::AHaplFreq> ranks_;
    std::vector<int> steps_;
    std::vector<double> table_;
    double n_F_ = 0.0;
    double n_exact_ = 0.0;
};

void build_tree(benchmark::State& state) {
    tov::TTree tree;
    tree.allocate_tree(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        tree.build_tree();
        benchmark::DoNotOptimize(tree.root().time);
    }
}
BENCHMARK(build_tree)->Arg(50)->Arg(100)->Arg(1000);

void tajima_replicate(benchmark::State& state) {
    TajimaReplicate replicate(static_cast<int>(state.range(0)), 10.0);
    for (auto _ : state) benchmark::DoNotOptimize(replicate.D());
}
BENCHMARK(tajima_replicate)->Arg(50)->Arg(1000);

void fu_replicate_without_fs(benchmark::State& state) {
    TajimaReplicate replicate(static_cast<int>(state.range(0)), 10.0);
    for (auto _ : state) benchmark::DoNotOptimize(replicate.haplotypes());
}
BENCHMARK(fu_replicate_without_fs)->Arg(50)->Arg(1000);

void ewens_replicates(benchmark::State& state) {
    EwensReplicate replicate(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) benchmark::DoNotOptimize(replicate.run());
}
BENCHMARK(ewens_replicates)->Args({50, 10})->Args({1000, 20})->Unit(benchmark::kMicrosecond);

template <class Run>
double microseconds(int times, Run run) {
    std::clock_t const start = std::clock();
    for (int i = 0; i < times; ++i) benchmark::DoNotOptimize(run());
    return static_cast<double>(std::clock() - start) * 1e6 / CLOCKS_PER_SEC / times;
}

/// Prints the ratio of `ours` to `floor`, measured in turn so that a busy machine slows both.
template <class Ours, class Floor>
bool hold(char const* title, double limit, int times, Ours ours, Floor floor) {
    double best_ours = 1e300;
    double best_floor = 1e300;
    for (int round = 0; round < 15; ++round) {
        best_floor = std::min(best_floor, microseconds(times, floor));
        best_ours = std::min(best_ours, microseconds(times, ours));
    }
    double const ratio = best_ours / best_floor;
    std::printf("%-60s %9.3f us, floor %9.3f us, ratio %5.2f (limit %.1f)\n", title, best_ours, best_floor, ratio,
                limit);
    return ratio <= limit;
}

bool hold_trees() {
    bool good = true;
    for (int const n : {100, 1000}) {
        tov::TTree tree;
        tree.allocate_tree(n);
        std::string const title = "tree of " + std::to_string(n) + " tips, draws and logarithms";
        good = hold(title.c_str(), 3.0, 200000 / n, [&] { tree.build_tree(); return tree.root().time; },
                    [&] { return tov::floors::tree_draws_and_logarithms(n); }) && good;
    }
    return good;
}

bool hold_tajima() {
    bool good = true;
    for (int const n : {50, 1000}) {
        TajimaReplicate replicate(n, 10.0);
        tov::TTree tree;
        tree.allocate_tree(n);
        std::string const title = "Tajima replicate, n = " + std::to_string(n) + ", theta 10, 500 sites; its tree";
        good = hold(title.c_str(), 10.0, 100000 / n, [&] { return replicate.D(); },
                    [&] { tree.build_tree(); return tree.root().time; }) && good;
    }
    return good;
}

bool hold_ewens() {
    bool good = true;
    for (auto const& [n, k] : {std::pair{50, 10}, std::pair{1000, 20}}) {
        EwensReplicate replicate(n, k);
        std::string const title = std::to_string(EwensReplicate::recorded) + " Ewens-Watterson replicates, n = " +
                                  std::to_string(n) + ", k = " + std::to_string(k) + "; draws, scans";
        good = hold(title.c_str(), 3.0, 3, [&] { return replicate.run(); }, [&] { return replicate.floor(); }) && good;
    }
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    seed(-1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    bool const trees = hold_trees();
    bool const tajima = hold_tajima();
    bool const ewens = hold_ewens();
    return trees && tajima && ewens ? 0 : 1;
}
