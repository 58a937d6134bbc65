// Steps of the Markov chains on tables held against their own draws and one table look-up a cell.
#include <benchmark/benchmark.h>

#include "base/random.h"
#include "floors.h"
#include "held.h"
#include "inference/formula/contingency_chain.h"
#include "structure/formula/differentiation.h"

namespace {

using tov::ContingencyTable;
using tov::TableKind;

constexpr long steps = 1 << 18;
constexpr int cells_of_a_step = 4;

/// A table of `rows` x `columns` with about `total` copies, genotypes in the upper triangle only.
ContingencyTable table_of(int rows, int columns, int total, bool genotypes) {
    ContingencyTable t;
    t.shape(rows, columns);
    tov::Ran3State generator;
    generator.seed(7);
    for (int n = 0; n < total; ++n) {
        int const i = static_cast<int>(rows * generator.draw());
        int const j = static_cast<int>(columns * generator.draw());
        ++(genotypes ? t.genotype(i, j) : t.at(i, j));
    }
    return t;
}

tov::ChainOutcome walk(ContingencyTable const& start, TableKind kind) {
    ContingencyTable t = start;
    return tov::walk_table(t, kind, tov::ChainPlan::square(steps, 0));
}

tov::ChainOutcome compare(ContingencyTable const& start) {
    return tov::test_differentiation(start, tov::DifferentiationChain::pair, tov::DifferentiationPlan(steps), 0, 0.0);
}

/// Numbers drawn by `run` from here on.
template <class Run>
long draws_of(Run run) {
    tov::Ran3State before = tov::random_state.ran3;
    run();
    tov::Ran3State const& after = tov::random_state.ran3;
    long draws = 0;
    while (before.inext != after.inext || before.ma != after.ma) {
        before.draw();
        ++draws;
    }
    return draws;
}

/// A chain, whose steps are held against what they draw and look up.
template <class Run>
void hold_steps(benchmark::State& state, ContingencyTable const& start, Run run) {
    long idum = -1;
    tov::ran3(&idum);
    long done = 0;
    long const draws = draws_of([&] { done = run().steps; });
    tov::Ran3State generator;
    generator.seed(3);
    int const cells = static_cast<int>(start.cells.size());
    tov::bench::hold(state, 3.0, run, [&] {
        return tov::floors::draws_and_look_ups(generator, start.cells.data(), cells, done, draws, cells_of_a_step);
    });
    state.counters["draws_a_step"] = static_cast<double>(draws) / static_cast<double>(done);
}

void hardy_weinberg_steps(benchmark::State& state) {
    int const k = static_cast<int>(state.range(0));
    ContingencyTable const start = table_of(k, k, 50, true);
    hold_steps(state, start, [&] { return walk(start, TableKind::genotypes); });
}
BENCHMARK(hardy_weinberg_steps)->ArgName("alleles")->Arg(2)->Arg(3)->Arg(10)->Apply(tov::bench::held);

void linkage_steps(benchmark::State& state) {
    int const k = static_cast<int>(state.range(0));
    ContingencyTable const start = table_of(k, k, 100, false);
    hold_steps(state, start, [&] { return walk(start, TableKind::two_way); });
}
BENCHMARK(linkage_steps)->ArgName("alleles")->Arg(2)->Arg(3)->Arg(6)->Apply(tov::bench::held);

void differentiation_steps(benchmark::State& state) {
    ContingencyTable const start = table_of(2, static_cast<int>(state.range(0)), 80, false);
    hold_steps(state, start, [&] { return compare(start); });
}
BENCHMARK(differentiation_steps)->ArgName("haplotypes")->Arg(4)->Arg(20)->Apply(tov::bench::held);

}  // namespace

BENCHMARK_MAIN();
