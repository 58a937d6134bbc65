// The divergence time of two populations of unequal sizes, on the general solver.
#include <algorithm>
#include <cmath>

#include "base/random.h"
#include "base/special.h"
#include "demography/broyden.h"

namespace tov {

namespace {

/// exp(e) with its values for exponents beyond +-300.
long double bounded_exp(long double e, long double least, long double most) {
    if (e < -300.0L) {
        return least;
    }
    if (e > 300.0L) {
        return most;
    }
    return my_expl(e);
}

long double exponent(long double t, long double part, long double k) {
    return k == 0.0L || part == 0.0L ? -400.0L : -t / (part * k);
}

}  // namespace

void vecfunc2(std::array<long double, 3> const& d, TBroyden::Vector const& x, TBroyden::Vector& f) {
    long double constexpr MY_MIN = 1e-50L, MY_MAX = 1e+50L;
    long double const k = x[0], p = x[1], t = x[2], q = 1.0L - p;
    f[0] = k * (p + q * bounded_exp(exponent(t, p, k), MY_MIN, MY_MAX)) - d[0];
    f[1] = k * (q + p * bounded_exp(exponent(t, q, k), MY_MIN, MY_MAX)) - d[1];
    f[2] = t + k - d[2];
}

void my_jacobian2(TBroyden::Vector const& x, TBroyden::Matrix& j) {
    // kept on purpose: other limits than those of the function.
    long double constexpr MY_MIN = 1.1754943508222876e-39L, MY_MAX = 3.4028234663852886e+39L;
    long double const k = x[0], p = x[1], t = x[2], q = 1.0L - p;
    long double const g = bounded_exp(exponent(t, p, k), MY_MIN, MY_MAX);
    long double const h = bounded_exp(exponent(t, q, k), MY_MIN, MY_MAX);
    j[0] = {g * t * q / (k * p) + p + g * q, k * (1.0L + g * t * q / (p * p * k) - g), -g * q / p};
    j[1] = {h * t * p / (k * q) + q + h * p, -k * (1.0L + h * t * p / (q * q * k) - h), -h * p / q};
    j[2] = {1.0L, 0.0L, 1.0L};
}

TSolveDivTimes::TSolveDivTimes(long double const& d1, long double const& d2, long double const& d3)
    : data_{d1, d2, d3} {}

bool TSolveDivTimes::solve(int const& tries) {
    long double scale = std::max({data_[0], data_[1], data_[2]});
    if (scale == 0.0L) {
        scale = 1.0L;
    }
    std::array<long double, 3> const d{data_[0] / scale, data_[1] / scale, data_[2] / scale};
    TBroyden solver(3, [&d](TBroyden::Vector const& x, TBroyden::Vector& f) { vecfunc2(d, x, f); }, my_jacobian2);
    bool solved = false;
    for (int attempt = 0; attempt < tries && !solved; ++attempt) {
        long double const sum = d[0] + d[1];
        long double k = sum / 2.0L;
        long double t = d[2] - k;
        long double p = sum == 0.0L ? 0.5L : d[0] / sum;
        if (attempt > 0) {
            for (long double* const value : {&k, &t, &p}) {
                long one = 1;
                *value *= (1.0L + 200.0L * static_cast<long double>(ran3(&one))) / 100.0L;
            }
        }
        solver.start({k, p, t});
        solved = solver.solve_equations();
        k_ = solver.unknowns()[0] * scale;
        p_ = solver.unknowns()[1];
        t_ = solver.unknowns()[2] * scale;
        if (k_ < 0.0L) {
            solved = false;
        }
    }
    return !solved;
}

}  // namespace tov
