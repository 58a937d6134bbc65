// Tajima's D.
#include "diversity/formula/tajima.h"

#include <cmath>

#include "base/special.h"

namespace tov {

namespace {

/// D from the difference d = Pi - S / a1.
TajimaD standardized(TajimaTerms const& terms, double d, double S) noexcept {
    double const variance = (S - 1.0) * S * terms.e2 + S * terms.linear / terms.a1;
    if (!(variance > 0.0) || !(terms.e2 > 0.0)) return {};
    return {d / std::sqrt(variance), true};
}

}  // namespace

TajimaTerms tajima_terms(int n, SquaredTerms squares) noexcept {
    if (n < 2) return {};
    TajimaTerms t;
    for (int i = 1; i < n; ++i) {
        double const x = i;
        t.a1 += 1.0 / x;
        t.a2 += squares == SquaredTerms::inverse_of_square ? 1.0 / (x * x) : 1.0 / x / x;
    }
    double const m = n;
    double const c = 3.0 + m + m * m;
    t.e2 = (t.a2 / (t.a1 * t.a1) + 2.0 * c / (9.0 * m * (m - 1.0)) - (m + 2.0) / (m * t.a1)) / (t.a1 * t.a1 + t.a2);
    t.linear = (m + 1.0) / (3.0 * (m - 1.0)) - 1.0 / t.a1;
    return t;
}

TajimaD tajima_d(TajimaTerms const& terms, double pi, double S) noexcept {
    if (!(S > 0.0) || !(terms.a1 > 0.0)) return {};
    double const d = pi - S / terms.a1;
    if (std::fabs(d) < 1e-15) return {0.0, terms.e2 > 0.0};
    return standardized(terms, d, S);
}

TajimaD fast_tajima_d(TajimaTerms const& terms, double pi, double S) noexcept {
    if (!(S > 0.0) || !(terms.a1 > 0.0)) return {};
    return standardized(terms, pi - S / terms.a1, S);
}

double tajima_d_density(double a, double b, double low, double high, double x) noexcept {
    constexpr double closest = 1e-15;
    if (std::fabs(high - x) < closest || std::fabs(x - low) < closest || std::fabs(high - low) < closest) return 0.0;
    double const beta = a == 0.0 || b == 0.0 ? 1.0 : std::exp(gammln(a + b) - gammln(a) - gammln(b));
    return beta * std::pow(high - x, a - 1.0) * std::pow(x - low, b - 1.0) / std::pow(high - low, a + b - 1.0);
}

}  // namespace tov
