// Estimators of theta, and Ewens' probabilities of the number of alleles.
#include "diversity/formula/theta.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/bnum.h"
#include "base/special.h"

namespace tov {
namespace {

constexpr int max_steps = 10000;
constexpr double tolerance = 1e-7;
constexpr double largest_theta = 10000.0;

/// Root of a probability that falls with theta; NaN when the search takes no step or meets a value that is no number.
template <class Probability>
double limit_of_theta(Probability probability, double start, double target) {
    double low = start;
    for (int i = 0; i < max_steps && probability(low) < target; ++i) {
        low /= 3.0;
    }
    double high = start;
    for (int i = 0; i < max_steps && probability(high) > target; ++i) {
        high *= 3.0;
    }
    double mid = std::numeric_limits<double>::quiet_NaN();
    for (int i = 0; i < max_steps && std::fabs(high - low) > tolerance; ++i) {
        mid = (high + low) / 2.0;
        double const p = probability(mid);
        if (std::isnan(p)) {
            return p;
        }
        (p > target ? low : high) = mid;
    }
    return mid;
}

/// ln of theta^i n! Gamma(theta) / (Gamma(n + theta) i!), without the term in i.
double log_ewens_factor(int n, double theta) { return gammln(theta) + factln(n) - gammln(n + theta); }

}  // namespace

ThetaEstimate theta_from_sites(int n, double S) noexcept {
    double a1 = 0.0;
    double a2 = 0.0;
    for (int i = 1; i < n; ++i) {
        double const x = i;
        a1 += 1.0 / x;
        a2 += 1.0 / (x * x);
    }
    if (a1 <= 0.0) {
        return {};
    }
    double const q = a1 * a1;
    return {S / a1, std::sqrt((S * S * a2 + S * q) / ((q + a2) * q))};
}

ThetaEstimate theta_from_differences(double n, double pi) noexcept {
    if (n < 2.0) {
        return {};
    }
    return {pi, std::sqrt(pi * pi * (2.0 * (3.0 + n * n + n)) / ((n - 1.0) * 9.0 * n) +
                          pi * (n + 1.0) / (3.0 * (n - 1.0)))};
}

double expected_odds_of_heterozygosity(double x) noexcept {
    return x * (1.0 + 2.0 * (1.0 + x) / ((x + 2.0) * (x + 3.0)));
}

ThetaEstimate theta_from_homozygosity(double H, double sd_het) noexcept {
    if (H == 1.0) {
        return {0.0, 0.0};
    }
    if (!(H > 0.0)) {
        return {theta_infinite, theta_infinite};
    }
    double const t = 1.0 / H - 1.0;
    // kept on purpose: for a large t the root lies below the bracket; the iteration gets there all the same.
    double a = t > 1.0 ? t - 1.0 : 0.001;
    double b = t + 1.0;
    double at_a = expected_odds_of_heterozygosity(a);
    double at_b = expected_odds_of_heterozygosity(b);
    double x = b;
    double r = 1.0;
    for (int i = 0; i < 1000 && std::fabs(r) > tolerance && at_b != at_a; ++i) {
        x = b - (b - a) * (at_b - t) / (at_b - at_a);
        double const at_x = expected_odds_of_heterozygosity(x);
        r = at_x - t;
        if (r > 0.0) {
            b = x;
            at_b = at_x;
        } else {
            a = x;
            at_a = at_x;
        }
    }
    double const u = x + 2.0;
    double const v = x + 3.0;
    double const sd = sd_het * u * u * v * v / ((4.0 + 10.0 * u + (4.0 + x) * u * v) * (x + 1.0) * H * H);
    return {x, sd};
}

double expected_alleles(double theta, int n) noexcept {
    if (theta <= 0.0) {
        return 1.0;
    }
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        sum += theta / (theta + i);
    }
    return sum;
}

double theta_from_alleles(int n, int k) noexcept {
    if (k < 2) {
        return 0.0;
    }
    if (k >= n) {
        return theta_infinite;  // every theta expects fewer alleles than copies
    }
    double low = 0.1;
    for (int i = 0; i < max_steps && expected_alleles(low, n) > k; ++i) {
        low /= 10.0;
    }
    double high = 10.0;
    for (int i = 0; i < max_steps && expected_alleles(high, n) < k; ++i) {
        high *= 10.0;
    }
    double mid = 0.0;
    for (int i = 0; i < max_steps && high - low > tolerance; ++i) {
        double const next = (high + low) / 2.0;
        if (next == mid) {
            break;  // neighbouring doubles: no further step changes anything
        }
        mid = next;
        (expected_alleles(mid, n) > k ? high : low) = mid;
    }
    return mid;
}

double probability_fewer_alleles(BnumMat const& B, int k, int n, double theta) {
    if (theta > largest_theta) {
        return 0.0;
    }
    double const log_theta = std::log(theta);
    double const c = log_ewens_factor(n, theta);
    double sum = 0.0;
    for (int i = 1; i < k; ++i) {
        sum += B(n, i) * std::exp(i * log_theta - factln(i) + c);
    }
    if (!std::isfinite(sum)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return std::clamp(sum, 0.0, 1.0);
}

double probability_exactly_alleles(BnumMat const& B, int k, int n, double theta) {
    if (theta <= 0.0) {
        return k == 1 ? 1.0 : 0.0;
    }
    if (theta > largest_theta || k >= n) {
        return 0.0;
    }
    return B(n, k) * std::exp(k * std::log(theta) + factln(n) + gammln(theta) - (gammln(n + theta) + factln(k)));
}

double probability_at_most_alleles(BnumMat const& B, int k, int n, double theta) {
    return probability_fewer_alleles(B, k, n, theta) + probability_exactly_alleles(B, k, n, theta);
}

ThetaLimits theta_k_limits(BnumMat const& B, int n, int k, double theta, double alpha) {
    double const high =
        limit_of_theta([&](double x) { return probability_fewer_alleles(B, k, n, x); }, theta, alpha / 2.0);
    double const low =
        limit_of_theta([&](double x) { return probability_at_most_alleles(B, k, n, x); }, theta, 1.0 - alpha / 2.0);
    if (!std::isfinite(low) || !std::isfinite(high)) {
        return {};
    }
    return {low, high};
}

}  // namespace tov
