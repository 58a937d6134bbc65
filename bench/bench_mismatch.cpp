// One evaluation of the sum of squares of an expansion model, held against its exponentials and powers done once each.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "base/random.h"
#include "base/special.h"
#include "demography/formula/hooke_jeeves.h"
#include "held.h"

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

void evaluation(benchmark::State& state) {
    int const classes = static_cast<int>(state.range(0));
    ExpansionFitter fitter(ExpansionModel::sudden, frequencies(classes));
    bench::hold(
        state, 2.0,
        [&] {
            ExpansionParameters p{1.1, 21.0, 5.9, 0.0};
            return fitter.ssd(p);
        },
        [&] { return functions_alone(1.1, 21.0, 5.9, classes); });
}
BENCHMARK(evaluation)->ArgName("classes")->Arg(30)->Arg(120)->Apply(bench::held);

}  // namespace

BENCHMARK_MAIN();
