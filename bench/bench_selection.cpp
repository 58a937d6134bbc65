// One simulated locus of the detection of selected loci: its tree held against the tree's own draws and logarithms, its
// statistics and output held against the tree; and the P-value of a locus.
#include <benchmark/benchmark.h>

#include <sstream>
#include <vector>

#include "base/random.h"
#include "floors.h"
#include "held.h"
#include "simulation/struct_sim.h"
#include "structure/formula/locus_fixation.h"
#include "structure/formula/selection_p.h"

namespace {

using namespace tov;

constexpr int samples = 10;
constexpr int copies = 40;  // 20 diploids
constexpr int demes = 100;
constexpr double fst = 0.1;

void seed() {
    long idum = -1;
    ran3(&idum);
}

SampledCopies sampled() { return {std::vector<int>(samples, copies), {}}; }

StructureSizes sizes() { return StructureSizes(std::vector<double>(samples, copies), {samples}); }

IslandModel model() {
    IslandModel m;
    m.Fst = fst;
    m.demes = demes;
    return m;
}

struct Work {
    long draws = 0;
    long events = 0;  ///< each with a logarithm
};

/// What a tree spends: every coalescence takes 5 draws, every migration 4 and a few more for targets drawn again.
Work work_of_a_tree(LocusSimulator& simulator, int trees) {
    Ran3State before = random_state.ran3;
    for (int i = 0; i < trees; ++i) simulator.build_tree(model());
    Ran3State const& now = random_state.ran3;
    long draws = 0;
    while (before.inext != now.inext || before.ma != now.ma) {
        before.draw();
        ++draws;
    }
    double const coalescences = samples * copies - 1.0;
    double const rest = static_cast<double>(draws) / trees - samples - 5.0 * coalescences;
    double const migrations = rest / (3.0 + demes / (demes - 1.0));
    return {draws / trees, static_cast<long>(coalescences + migrations)};
}

/// A locus with its statistics, and its line of the table of simulations.
class Locus {
public:
    Locus() : simulator_(sampled()), walk_(sizes(), FixationUnit::individuals, StateDistance::equality) {
        mutation_.theta = 0.02;
        line_.precision(17);
    }
    double tree() { return simulator_.build_tree(model()); }
    double statistics() {
        double sum = simulator_.sprinkle_mutations(mutation_);
        LocusFixation const locus = walk_.compute(simulator_.states());
        line_.seekp(0);
        line_ << locus.FST << '\t' << mutation_.theta << '\t' << locus.mean_heterozygosity / (1.0 - locus.FST) << '\t'
              << locus.mean_heterozygosity << '\t' << simulator_.mutations() << '\n';
        return sum + locus.FST;
    }
    LocusSimulator& simulator() { return simulator_; }

private:
    LocusSimulator simulator_;
    LocusFixationWalk walk_;
    LocusMutation mutation_;
    std::ostringstream line_;
};

void tree_of_samples(benchmark::State& state) {
    seed();
    Locus locus;
    Work const work = work_of_a_tree(locus.simulator(), 100);
    bench::hold(state, 3.0, [&] { return locus.tree(); },
                [&] { return floors::wander_draws_and_logarithms(work.events, work.draws); });
    state.counters["draws"] = static_cast<double>(work.draws);
    state.counters["logarithms"] = static_cast<double>(work.events);
}
BENCHMARK(tree_of_samples)->Apply(bench::held);

/// Mutations, statistics and output against the tree.
void statistics_of_a_locus(benchmark::State& state) {
    seed();
    Locus locus;
    locus.tree();
    bench::hold(state, 1.0, [&] { return locus.statistics(); }, [&] { return locus.tree(); });
}
BENCHMARK(statistics_of_a_locus)->Apply(bench::held);

void whole_locus(benchmark::State& state) {
    seed();
    Locus locus;
    for (auto _ : state) {
        locus.tree();
        benchmark::DoNotOptimize(locus.statistics());
    }
}
BENCHMARK(whole_locus);

void p_value_of_a_locus(benchmark::State& state) {
    seed();
    std::vector<double> het, stat;
    for (int i = 0; i < state.range(0); ++i) {
        het.push_back(uniform());
        stat.push_back(0.3 * uniform());
    }
    SelectionKernel const k;
    for (auto _ : state) {
        benchmark::DoNotOptimize(calcFSTpvalue(0.12, het, stat, k.h_stat, 0.5, k.h_het, k.grid_points));
    }
}
BENCHMARK(p_value_of_a_locus)->Arg(2000)->Arg(20000);

}  // namespace

BENCHMARK_MAIN();
