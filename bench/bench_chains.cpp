// Steps of the Markov chains on tables held against their own draws and one table look-up a cell.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "base/random.h"
#include "floors.h"
#include "inference/formula/contingency_chain.h"
#include "structure/formula/differentiation.h"

namespace {

using tov::ContingencyTable;
using tov::TableKind;

constexpr long steps = 1 << 20;
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

void hardy_weinberg_chain(benchmark::State& state) {
    int const k = static_cast<int>(state.range(0));
    ContingencyTable const start = table_of(k, k, 50, true);
    for (auto _ : state) benchmark::DoNotOptimize(walk(start, TableKind::genotypes));
    state.SetItemsProcessed(state.iterations() * steps);
}
BENCHMARK(hardy_weinberg_chain)->Arg(3)->Arg(10);

void linkage_chain(benchmark::State& state) {
    int const k = static_cast<int>(state.range(0));
    ContingencyTable const start = table_of(k, k, 100, false);
    for (auto _ : state) benchmark::DoNotOptimize(walk(start, TableKind::two_way));
    state.SetItemsProcessed(state.iterations() * steps);
}
BENCHMARK(linkage_chain)->Arg(2)->Arg(6);

void differentiation_chain(benchmark::State& state) {
    ContingencyTable const start = table_of(2, static_cast<int>(state.range(0)), 80, false);
    for (auto _ : state) benchmark::DoNotOptimize(compare(start));
    state.SetItemsProcessed(state.iterations() * steps);
}
BENCHMARK(differentiation_chain)->Arg(4)->Arg(20);

/// Processor time of one run, in nanoseconds.
template <class Run>
double timed(Run run) {
    std::clock_t const start = std::clock();
    run();
    return static_cast<double>(std::clock() - start) * (1e9 / CLOCKS_PER_SEC);
}

template <class Run>
void report(char const* name, ContingencyTable const& start, Run run) {
    long done = 0;
    long const draws = draws_of([&] { done = run().steps; });
    tov::Ran3State generator;
    generator.seed(3);
    double ours = 1e300;
    double floor = 1e300;
    for (int round = 0; round < 15; ++round) {  // in turn, so that a busy machine slows both; the shortest times count
        ours = std::min(ours, timed([&] { benchmark::DoNotOptimize(run()); }));
        floor = std::min(floor, timed([&] {
                             benchmark::DoNotOptimize(tov::floors::draws_and_look_ups(
                                 generator, start.cells.data(), static_cast<int>(start.cells.size()), done, draws,
                                 cells_of_a_step));
                         }));
    }
    auto const n = static_cast<double>(done);
    std::printf("%-28s %6.2f ns a step, %.2f draws; draws and look-ups %6.2f ns, ratio %.2f (limit 3)\n", name,
                ours / n, static_cast<double>(draws) / n, floor / n, ours / floor);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    long idum = -1;
    tov::ran3(&idum);
    benchmark::RunSpecifiedBenchmarks();
    for (int const k : {3, 10}) {
        ContingencyTable const t = table_of(k, k, 50, true);
        report(k == 3 ? "Hardy-Weinberg, 3 alleles" : "Hardy-Weinberg, 10 alleles", t,
               [&] { return walk(t, TableKind::genotypes); });
    }
    for (int const k : {2, 6}) {
        ContingencyTable const t = table_of(k, k, 100, false);
        report(k == 2 ? "linkage, 2 x 2" : "linkage, 6 x 6", t, [&] { return walk(t, TableKind::two_way); });
    }
    for (int const k : {4, 20}) {
        ContingencyTable const t = table_of(2, k, 80, false);
        report(k == 4 ? "differentiation, 2 x 4" : "differentiation, 2 x 20", t, [&] { return compare(t); });
    }
    return 0;
}
