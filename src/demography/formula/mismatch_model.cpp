// Moments and model curves of mismatch distributions.
#include "demography/formula/mismatch_model.h"

#include <algorithm>
#include <cmath>

#include "base/special.h"

namespace tov {

namespace {

double squared(double x) { return x * x; }

/// base^i / (base + 1)^(i + 1), in logarithms where the powers leave the range of a double.
double power_ratio(double base, double whole, int i) {
    double const ratio = std::pow(base, i) / std::pow(whole, i + 1);
    return std::isfinite(ratio) ? ratio : std::exp(i * std::log(base / whole)) / whole;
}

/// exp(j ln tau - ln j!) for j = 0 .. n - 1: the Poisson terms without their common factor.
void poisson_terms(double tau, std::vector<double>& terms) {
    double const log_tau = std::log(tau);
    for (std::size_t j = 0; j < terms.size(); ++j) {
        int const k = static_cast<int>(j);
        terms[j] = std::exp(k * log_tau - factln(k));
    }
}

/// Powers 0, 1, ... of a ratio.
void ratio_powers(double ratio, std::vector<double>& powers) {
    double const log_ratio = std::log(ratio);
    for (std::size_t j = 0; j < powers.size(); ++j) {
        powers[j] = std::exp(static_cast<double>(j) * log_ratio);
    }
}

/// Sum over j = 0 .. i of a[j] b[i - j].
double convolution(std::vector<double> const& a, std::vector<double> const& b, std::size_t i) {
    double sum = 0.0;
    for (std::size_t j = 0; j <= i; ++j) {
        sum += a[j] * b[i - j];
    }
    return sum;
}

/// The curve of an expansion in space; e0 is the share of pairs that the equilibrium of one deme loses.
void spatial_curve(ExpansionParameters const& p, bool drop_small_e0, std::span<double> frequencies,
                   CurveScratch& scratch) {
    double const a = p.theta1 + p.M + 1.0;
    double const b = (p.M + 1.0) * p.tau / p.theta1;
    double const exponent = p.tau * a / p.theta1;
    double const e0 = drop_small_e0 && exponent > 300.0 ? 0.0 : std::exp(-exponent);
    double const E = std::exp(-p.tau) * ((b < 300.0 ? std::exp(-b) : 0.0) + p.M);
    scratch.resize(frequencies.size());
    poisson_terms(p.tau, scratch.poisson);
    ratio_powers(p.theta0 / (p.theta0 + 1.0), scratch.first);
    ratio_powers(p.theta1 / a, scratch.second);
    for (std::size_t i = 0; i < frequencies.size(); ++i) {
        double const A = power_ratio(p.theta1, a, static_cast<int>(i));
        double const B = convolution(scratch.first, scratch.poisson, i);
        double const C = convolution(scratch.poisson, scratch.second, i);
        frequencies[i] = A + E * B / ((1.0 + p.theta0) * (1.0 + p.M)) - e0 * C / a;
    }
}

}  // namespace

void CurveScratch::resize(std::size_t n) {
    poisson.resize(n);
    first.resize(n);
    second.resize(n);
}

MismatchMoments mismatch_moments(std::span<std::int64_t const> counts) noexcept {
    MismatchMoments m;
    double sum = 0.0, squares = 0.0;
    for (std::size_t c = 0; c < counts.size(); ++c) {
        double const n = static_cast<double>(counts[c]);
        double const x = static_cast<double>(c);
        m.pairs += n;
        sum += n * x;
        squares += n * x * x;
        if (c > 0) {
            m.raggedness += squared(n - static_cast<double>(counts[c - 1]));
        }
    }
    if (!(m.pairs > 0.0)) {
        m.raggedness = 0.0;
        return m;
    }
    m.raggedness = (m.raggedness + squared(static_cast<double>(counts.back()))) / (m.pairs * m.pairs);
    m.mean = sum / m.pairs;
    m.variance = m.pairs > 1.0 ? (squares - sum * sum / m.pairs) / (m.pairs - 1.0) : 0.0;
    m.theta = m.variance < m.mean ? 0.0 : std::sqrt(m.variance - m.mean);
    m.tau = m.mean < m.theta ? 0.0 : m.mean - m.theta;
    return m;
}

double raggedness_index(std::span<double const> y) noexcept {
    double sum = 0.0, r = 0.0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        sum += y[i];
        if (i > 0) {
            r += squared(y[i] - y[i - 1]);
        }
    }
    if (!y.empty()) {
        r += squared(y.back());
    }
    return sum > 0.0 ? r / (sum * sum) : r;
}

MismatchReference mismatch_reference(MismatchMoments const& m, int classes) {
    MismatchReference r;
    r.counts.assign(classes, 0.0);
    double const d = m.theta + 1.0;
    double sum = 1.0;  // 1 + sum over j = 1 .. c
    double const log_growth = m.theta > 0.0 && m.tau > 0.0 ? std::log(m.tau * d / m.theta) : 0.0;
    for (int c = 0; c < classes; ++c) {
        double const base = m.theta > 0.0 ? std::exp(c * std::log(m.theta / d)) / d : (c == 0 ? 1.0 / d : 0.0);
        if (m.tau > 0.0) {
            if (m.theta > 0.0) {
                if (c > 0) {
                    sum += std::exp(c * log_growth - factln(c));
                }
                r.counts[c] = base * (sum * std::exp(-m.tau)) * m.pairs;
            }
        } else {
            r.counts[c] = base * m.pairs;
        }
        if (r.counts[c] > 1e-5) {
            r.last_class = c;
        }
    }
    return r;
}

MismatchFit mismatch_fit(std::span<std::int64_t const> counts, MismatchReference const& reference) {
    MismatchFit fit;
    if (reference.last_class == 0) {
        return fit;
    }
    std::size_t const n = static_cast<std::size_t>(reference.last_class) + 1;
    std::vector<double> model(reference.counts.begin(), reference.counts.begin() + static_cast<std::ptrdiff_t>(n));
    std::vector<double> observed(n, 0.0);
    for (std::size_t c = 0; c < n && c < counts.size(); ++c) {
        observed[c] = static_cast<double>(counts[c]);
    }
    // A pool takes in later small classes until it holds 5; pooled classes need not be neighbours.
    std::size_t pool = n;
    for (std::size_t c = 0; c < n; ++c) {
        if (model[c] >= 5.0) {
            continue;
        }
        if (pool == n) {
            pool = c;
            continue;
        }
        model[pool] += model[c];
        observed[pool] += observed[c];
        model[c] = observed[c] = 0.0;
        if (model[pool] >= 5.0) {
            pool = n;
        }
    }
    for (std::size_t c = 0; c < n; ++c) {
        if (model[c] < 5.0) {
            model[c] = observed[c] = 0.0;
        }
        if (model[c] > 1.0) {
            ++fit.df;
            fit.chi_square += squared(model[c] - observed[c]) / model[c];
        }
    }
    fit.df -= 2;
    fit.p = fit.df < 1 ? -1.0
                       : static_cast<double>(Prob_of_chi_sq(static_cast<float>(fit.df),
                                                            static_cast<float>(fit.chi_square)));
    return fit;
}

double f_Watt(double const& theta, int const& i) noexcept {
    return i == 0 ? 1.0 / (theta + 1.0) : power_ratio(theta, theta + 1.0, i);
}

void sudden_expansion_curve(ExpansionParameters& p, std::span<double> frequencies, CurveScratch& scratch) {
    if (p.theta0 <= 0.0) {
        p.theta0 = 1e-7;
    }
    bool const not_yet = p.tau <= 0.0;
    if (not_yet) {
        p.tau = 1e-7;
    }
    if (p.theta1 < p.theta0) {
        p.theta1 = p.theta0;
    }
    scratch.resize(frequencies.size());
    for (std::size_t i = 0; i < frequencies.size(); ++i) {
        int const k = static_cast<int>(i);
        scratch.second[i] = f_Watt(p.theta1, k);
        scratch.first[i] = f_Watt(p.theta0, k) - scratch.second[i];
    }
    poisson_terms(p.tau, scratch.poisson);
    double const w = std::exp(-p.tau * (p.theta1 + 1.0) / p.theta1);
    for (std::size_t i = 0; i < frequencies.size(); ++i) {
        frequencies[i] = scratch.second[i] + w * convolution(scratch.poisson, scratch.first, i);
    }
    // kept on purpose: class 0, which meets the tau before its repair, is that of the old size
    if (not_yet && !frequencies.empty()) {
        frequencies[0] = f_Watt(p.theta0, 0);
    }
}

void spatial_expansion_curve_3p(ExpansionParameters& p, std::span<double> frequencies, CurveScratch& scratch) {
    if (p.theta1 <= 0.0) {
        p.theta0 = p.theta1 = 0.01;
    }
    p.M = p.M <= 0.0 ? 1e-5 : p.M;
    p.tau = p.tau <= 0.0 ? 1e-5 : p.tau;
    p.theta0 = p.theta1;
    spatial_curve(p, true, frequencies, scratch);
}

void spatial_expansion_curve_4p(ExpansionParameters& p, std::span<double> frequencies, CurveScratch& scratch) {
    p.theta0 = p.theta0 <= 0.0 ? 0.01 : p.theta0;
    p.theta1 = p.theta1 <= 0.0 ? 0.01 : p.theta1;
    p.M = p.M <= 0.0 ? 1e-5 : p.M;
    p.tau = p.tau <= 0.0 ? 1e-5 : p.tau;
    spatial_curve(p, false, frequencies, scratch);
}

double sum_of_squared_deviations(std::span<double const> model, std::span<double const> y) noexcept {
    double sum = 0.0;
    for (std::size_t i = 0; i < model.size() && i < y.size(); ++i) {
        sum += squared(model[i] - y[i]);
    }
    return sum;
}

}  // namespace tov
