// One evaluation of the sum of squares of an expansion model, held against its exponentials and powers done once each.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <vector>

#include "base/random.h"
#include "base/special.h"
#include "demography/formula/hooke_jeeves.h"

namespace {

using namespace tov;

std::vector<double> frequencies(int classes) {
    CurveScratch scratch;
    std::vector<double> y(classes);
    ExpansionParameters truth{1.0, 20.0, 6.0, 0.0};
    sudden_expansion_curve(truth, y, scratch);
    return y;
}

/// The transcendental functions of one curve of the sudden expansion.
double functions_alone(double theta0, double theta1, double tau, int classes) {
    double sum = std::exp(-tau);
    double const log_tau = std::log(tau);
    for (int i = 0; i < classes; ++i) {
        sum += std::pow(theta1, i) / std::pow(theta1 + 1.0, i + 1);
        sum += std::pow(theta0, i) / std::pow(theta0 + 1.0, i + 1);
        sum += std::exp(i * log_tau - factln(i));
    }
    return sum;
}

template <class Run>
double shortest(Run run) {
    double best = 1e300;
    for (int round = 0; round < 20; ++round) {
        std::clock_t const start = std::clock();
        for (int k = 0; k < 2000; ++k) {
            run();
        }
        best = std::min(best, static_cast<double>(std::clock() - start) * (1e6 / CLOCKS_PER_SEC) / 2000);
    }
    return best;
}

void evaluation(benchmark::State& state) {
    ExpansionFitter fitter(ExpansionModel::sudden, frequencies(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        ExpansionParameters p{1.1, 21.0, 5.9, 0.0};
        benchmark::DoNotOptimize(fitter.ssd(p));
    }
}
BENCHMARK(evaluation)->Arg(30)->Arg(120);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    for (int const classes : {30, 120}) {
        ExpansionFitter fitter(ExpansionModel::sudden, frequencies(classes));
        double const floor =
            shortest([&] { benchmark::DoNotOptimize(functions_alone(1.1, 21.0, 5.9, classes)); });
        double const full = shortest([&] {
            ExpansionParameters p{1.1, 21.0, 5.9, 0.0};
            benchmark::DoNotOptimize(fitter.ssd(p));
        });
        std::printf("sum of squares over %d classes: %.2f us, its exponentials and powers %.2f us, ratio %.2f", classes,
                    full, floor, full / floor);
        std::printf(classes == 30 ? " (limit 2)\n" : "\n");
    }
    return 0;
}
