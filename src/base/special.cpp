// Special functions.
#include "base/special.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <utility>

#include "run/errors.h"

namespace tov {

FactorialCaches factorial_caches;

namespace {

constexpr int NUMERICAL_ERROR = 105;
constexpr int MOST_ROUNDS = 100;
constexpr double CONVERGED = 3e-7;  // relative change of single-precision sums
constexpr double TINY = 1e-30;

constexpr std::array<double, 6> LANCZOS = {76.18009172947146,  -86.50532032941678,    24.01409824083091,
                                           -1.231739572450155, 0.1208650973866179e-2, -0.5395239384953e-5};

void report(char const* where) { E.error(ErrorType::Error, where, NUMERICAL_ERROR); }

/// exp(-x + a ln x - gln), the factor common to series and fraction.
double common_factor(float a, float x, float gln) noexcept {
    return std::exp(-x + a * std::log(static_cast<double>(x)) - gln);
}

/// Both ends of the bracket on one side of zero?
bool same_sign(float fa, float fb) noexcept { return (fa > 0.0F && fb > 0.0F) || (fa < 0.0F && fb < 0.0F); }

}  // namespace

double gammln(double x) noexcept {
    double const tmp = (x + 5.5) - (x + 0.5) * std::log(x + 5.5);
    double ser = 1.000000000190015;
    double y = x;
    for (double const c : LANCZOS) ser += c / ++y;
    return std::log(2.5066282746310007 * ser / x) - tmp;
}

long double gammlnl(long double x) noexcept {
    long double const inner = std::log(static_cast<double>(x + 5.5L));
    long double const tmp = (x + 5.5L) - (x + 0.5L) * inner;
    long double ser = 1.000000000190015;
    long double y = x;
    for (double const c : LANCZOS) ser += c / ++y;
    return std::log(static_cast<long double>(2.5066282746310007) * ser / x) - tmp;
}

double factln(int n) {
    if (n < 0) {
        report("factln(int n) negative factorial: setting it to zero");
        return 0.0;
    }
    if (n < 2) return 0.0;
    if (n > 100) return gammln(n + 1.0);
    double& cached = factorial_caches.factln[static_cast<std::size_t>(n)];
    if (cached == 0.0) cached = gammln(n + 1.0);
    return cached;
}

long double factlnl(int n) {
    if (n < 0) {
        std::cout << "factlnl(int n) negative factorial: setting it to zero\n";
        return 0.0L;
    }
    if (n < 2) return 0.0L;
    if (n > 100) return gammlnl(n + 1.0L);
    long double& cached = factorial_caches.factlnl[static_cast<std::size_t>(n)];
    if (cached == 0.0L) cached = gammlnl(n + 1.0L);
    return cached;
}

double factorial(float const& x) noexcept {
    double const last = std::floor(x + 0.1);
    double sum = 0.0;
    for (double i = 2.0; i <= last && i < 2147483648.0; ++i) sum += std::log(i);
    return sum;
}

void gser(float* gamser, float a, float x, float* gln) {
    *gln = static_cast<float>(gammln(a));
    if (x <= 0.0F) {
        if (x < 0.0F) report("gser() x less than 0");
        *gamser = 0.0F;
        return;
    }
    float ap = a;
    float del = static_cast<float>(1.0 / a);
    float sum = del;
    for (int n = 1; n <= MOST_ROUNDS; ++n) {
        ap += 1.0F;
        del *= x / ap;
        sum += del;
        if (std::fabs(del) < std::fabs(sum) * CONVERGED) {
            *gamser = static_cast<float>(sum * common_factor(a, x, *gln));
            return;
        }
    }
    report("gser() a too large, ITMAX too small ");
}

void gcf(float* gammcf, float a, float x, float* gln) {
    *gln = static_cast<float>(gammln(a));
    auto b = static_cast<float>(x + 1.0 - a);
    auto c = static_cast<float>(1.0 / TINY);
    auto d = static_cast<float>(1.0 / b);
    float h = d;
    bool converged = false;
    for (int i = 1; i <= MOST_ROUNDS && !converged; ++i) {
        auto const round = static_cast<float>(i);
        float const an = -round * (round - a);
        b = static_cast<float>(b + 2.0);
        d = an * d + b;
        if (std::fabs(d) < TINY) d = static_cast<float>(TINY);
        c = b + an / c;
        if (std::fabs(c) < TINY) c = static_cast<float>(TINY);
        d = static_cast<float>(1.0 / d);
        float const del = d * c;
        h *= del;
        converged = std::fabs(del - 1.0) < CONVERGED;
    }
    if (!converged) report("gcf() a too large, ITMAX too small in gcf");
    *gammcf = static_cast<float>(common_factor(a, x, *gln) * h);
}

float Prob_of_chi_sq(float df, float chi2) {
    auto const a = static_cast<float>(0.5 * df);
    auto const x = static_cast<float>(0.5 * chi2);
    if (x < 0.0F) {
        report("Prob_of_chi_sq()  invalid arguments");
        return -1.0F;
    }
    if (!(a > 0.0F)) return -1.0F;
    float gln = 0.0F;
    if (x < a + 1.0) {
        float gamser = 2.0F;  // stays when the series doesn't converge, and marks the probability as -1
        gser(&gamser, a, x, &gln);
        return static_cast<float>(1.0 - gamser);
    }
    float gammcf = 0.0F;
    gcf(&gammcf, a, x, &gln);
    return gammcf;
}

float zbrent(float (*f)(float), float x1, float x2, float tol) {
    float a = x1;
    float b = x2;
    float fa = f(a);
    float fb = f(b);
    if (same_sign(fa, fb)) {
        report("zbrent() root must be bracketed in zbrent");
        return 0.0F;
    }
    float c = b;
    float fc = fb;
    float step = b - a;
    float last_step = step;
    for (int round = 1; round <= MOST_ROUNDS; ++round) {
        if (same_sign(fb, fc)) {  // the root lies between a and b: c joins a
            c = a;
            fc = fa;
            last_step = step = b - a;
        }
        if (std::fabs(fc) < std::fabs(fb)) {  // b is the best guess
            a = std::exchange(b, c);
            c = a;
            fa = std::exchange(fb, fc);
            fc = fa;
        }
        auto const tol1 = static_cast<float>(6e-8 * std::fabs(b) + 0.5 * tol);
        auto const half = static_cast<float>(0.5 * (c - b));
        if (std::fabs(half) <= tol1 || fb == 0.0F) return b;
        bool interpolated = false;
        if (std::fabs(last_step) >= tol1 && std::fabs(fa) > std::fabs(fb)) {
            float const s = fb / fa;
            float p = 0.0F;
            float q = 0.0F;
            if (a == c) {  // secant
                p = 2.0F * half * s;
                q = 1.0F - s;
            } else {  // inverse quadratic
                float const t = fa / fc;
                float const r = fb / fc;
                p = s * (2.0F * half * t * (t - r) - (b - a) * (r - 1.0F));
                q = (t - 1.0F) * (r - 1.0F) * (s - 1.0F);
            }
            if (p > 0.0F) q = -q;
            p = std::fabs(p);
            float const limit = std::min(3.0F * half * q - std::fabs(tol1 * q), std::fabs(last_step * q));
            if (2.0F * p < limit) {
                last_step = step;
                step = p / q;
                interpolated = true;
            }
        }
        if (!interpolated) last_step = step = half;
        a = b;
        fa = fb;
        b += std::fabs(step) > tol1 ? step : std::copysign(tol1, half);
        fb = f(b);
    }
    report("zbrent() maximum number of iterations exceeded in zbrent");
    return 0.0F;
}

long double my_expl(long double x) noexcept { return std::exp(static_cast<double>(x)); }

long double my_sqrtl(long double x) noexcept { return std::sqrt(static_cast<double>(x)); }

}  // namespace tov
