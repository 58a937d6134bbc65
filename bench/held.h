/// Benchmarks held against a floor: one way to measure, to state the limit and to report.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <type_traits>
#include <utility>

namespace tov::bench {

/// Takes the processor time of a run, which it repeats for two milliseconds, as the clock ticks in microseconds.
template <class Run>
class Timer {
public:
    explicit Timer(Run run) : run_(std::move(run)) {}

    /// Seconds of one call.
    double seconds() {
        constexpr std::clock_t long_enough = CLOCKS_PER_SEC / 500;
        for (;; calls_ *= 2) {
            std::clock_t const start = std::clock();
            for (long i = 0; i < calls_; ++i) call();
            std::clock_t const time = std::clock() - start;
            if (time >= long_enough) return static_cast<double>(time) / CLOCKS_PER_SEC / static_cast<double>(calls_);
        }
    }

private:
    void call() {
        if constexpr (std::is_void_v<std::invoke_result_t<Run&>>) {
            run_();
        } else {
            benchmark::DoNotOptimize(run_());
        }
    }

    Run run_;
    long calls_ = 1;  // in a measurement
};

/// Measures `ours` and its floor in turn, so that a busy machine slows both, and compares the shortest times of either:
/// counters `ratio`, `limit` and `floor_us`. scripts/run_benchmarks.sh prints the first two and names what is above its
/// limit.
///
/// Registered by BENCHMARK(...)->Apply(bench::held).
/// @param limit  the largest ratio that is good enough.
template <class Ours, class Floor>
void hold(benchmark::State& state, double limit, Ours ours, Floor floor) {
    Timer timer(std::move(ours));
    Timer floor_timer(std::move(floor));
    double best = std::numeric_limits<double>::max();
    double best_floor = best;
    for (auto _ : state) {
        double const seconds = timer.seconds();
        state.SetIterationTime(seconds);
        best = std::min(best, seconds);
        best_floor = std::min(best_floor, floor_timer.seconds());
    }
    state.counters["ratio"] = best / best_floor;
    state.counters["limit"] = limit;
    state.counters["floor_us"] = best_floor * 1e6;
}

/// How benchmarks are registered that hold().
inline void held(benchmark::internal::Benchmark* b) {
    b->UseManualTime()->Iterations(15)->Unit(benchmark::kMicrosecond);
}

}  // namespace tov::bench
