// Tajima's D.
#pragma once

namespace tov {

/// How the squares of the harmonic sum are added up; the two differ in the last digits.
enum class SquaredTerms {
    inverse_of_square,  ///< 1 / (i i)
    inverse_twice       ///< (1 / i) / i
};

/// What D takes from the sample size alone.
struct TajimaTerms {
    double a1 = 0.0;      ///< sum of 1 / i, i = 1 .. n - 1
    double a2 = 0.0;      ///< sum of 1 / i^2
    double e2 = 0.0;      ///< factor of S (S - 1) in the variance; 0 for n <= 3
    double linear = 0.0;  ///< (n + 1) / (3 (n - 1)) - 1 / a1: factor of S / a1 in the variance
};
/// n < 2 gives zeros.
[[nodiscard]] TajimaTerms tajima_terms(int n, SquaredTerms squares) noexcept;

/// A value of D; `computed` is false where 0 stands for a D that does not exist.
struct TajimaD {
    double D = 0.0;
    bool computed = false;
};

/// D = (Pi - S / a1) / sqrt(e1 S + e2 S (S - 1)) of a sample (Tajima 1989).
///
/// Not computed: S <= 0, a variance or an e2 that is not positive. |Pi - S / a1| < 1e-15 gives 0.
/// @param pi  mean number of pairwise differences.
/// @param S   segregating sites.
[[nodiscard]] TajimaD tajima_d(TajimaTerms const& terms, double pi, double S) noexcept;
/// The same without the test of the difference, for simulated samples.
[[nodiscard]] TajimaD fast_tajima_d(TajimaTerms const& terms, double pi, double S) noexcept;

/// Beta density of D on (low, high) with shapes a (towards high) and b; 0 when two of low, x and high coincide.
[[nodiscard]] double tajima_d_density(double a, double b, double low, double high, double x) noexcept;

}  // namespace tov
