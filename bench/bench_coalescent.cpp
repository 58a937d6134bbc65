// Trees, replicates of Tajima's test and configurations of the Ewens-Watterson test, held against their bare draws.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "base/random.h"
#include "diversity/formula/ewens.h"
#include "diversity/formula/tajima.h"
#include "diversity/neutral_simulation.h"
#include "diversity/popdna.h"
#include "floors.h"
#include "held.h"
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

/// A tree against its draws and logarithms.
void tree(benchmark::State& state) {
    int const n = static_cast<int>(state.range(0));
    tov::TTree tree;
    tree.allocate_tree(n);
    tov::bench::hold(
        state, 3.0,
        [&] {
            tree.build_tree();
            return tree.root().time;
        },
        [n] { return tov::floors::tree_draws_and_logarithms(n); });
}
BENCHMARK(tree)->ArgName("tips")->Arg(100)->Arg(1000)->Apply(tov::bench::held);

/// A replicate of Tajima's test with theta 10 and 500 sites against its tree.
void tajima_replicate(benchmark::State& state) {
    int const n = static_cast<int>(state.range(0));
    TajimaReplicate replicate(n, 10.0);
    tov::TTree tree;
    tree.allocate_tree(n);
    tov::bench::hold(state, 10.0, [&] { return replicate.D(); },
                     [&] {
                         tree.build_tree();
                         return tree.root().time;
                     });
}
BENCHMARK(tajima_replicate)->ArgName("copies")->Arg(50)->Arg(1000)->Apply(tov::bench::held);

void fu_replicate_without_fs(benchmark::State& state) {
    TajimaReplicate replicate(static_cast<int>(state.range(0)), 10.0);
    for (auto _ : state) benchmark::DoNotOptimize(replicate.haplotypes());
}
BENCHMARK(fu_replicate_without_fs)->Arg(50)->Arg(1000);

/// Replicates of the Ewens-Watterson test against their draws and scans.
void ewens_replicates(benchmark::State& state) {
    EwensReplicate replicate(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    tov::bench::hold(state, 3.0, [&] { return replicate.run(); }, [&] { return replicate.floor(); });
}
BENCHMARK(ewens_replicates)
    ->ArgNames({"copies", "alleles"})
    ->Args({50, 10})
    ->Args({1000, 20})
    ->Apply(tov::bench::held);

}  // namespace

BENCHMARK_MAIN();
