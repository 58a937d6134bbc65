// A ran3 draw held against a std::mt19937_64 draw turned into a double.
#include <benchmark/benchmark.h>

#include <random>

#include "base/random.h"
#include "floors.h"
#include "held.h"

namespace {

constexpr int draws = 1 << 20;

double sum_of_ran3(int n) {
    double sum = 0.0;
    long idum = 1;
    for (int i = 0; i < n; ++i) sum += tov::ran3(&idum);
    return sum;
}

void ran3_draws(benchmark::State& state) {
    std::mt19937_64 engine(1);
    tov::bench::hold(state, 1.5, [] { return sum_of_ran3(draws); },
                     [&] { return tov::floors::sum_of_mt19937_64(engine, draws); });
}
BENCHMARK(ran3_draws)->Apply(tov::bench::held);

}  // namespace

BENCHMARK_MAIN();
