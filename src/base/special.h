/// Special functions: log-gamma, log-factorial, incomplete gamma, the chi-square tail and a root finder.
#pragma once

#include <array>

namespace tov {

/// Log-factorials computed so far; 0 marks an entry that wasn't needed yet.
struct FactorialCaches {
    std::array<double, 101> factln{};
    std::array<long double, 101> factlnl{};
};
/// The process-wide instance.
extern FactorialCaches factorial_caches;

/// ln Gamma(x), x > 0. Precision: about 2e-10 relative. Source: Lanczos 1964.
[[nodiscard]] double gammln(double x) noexcept;
/// The same in long double.
/// kept on purpose: the inner logarithm is taken in double precision, the outer one in long double.
[[nodiscard]] long double gammlnl(long double x) noexcept;

/// ln n!, by gammln; 2 <= n <= 100 is cached. Errors: n < 0 reports error 105 and gives 0.
double factln(int n);
/// The same in long double; n < 0 writes a line to standard output and gives 0.
long double factlnl(int n);
/// ln of the factorial of the integer part of x + 0.1, by summing logarithms.
[[nodiscard]] double factorial(float const& x) noexcept;

/// Incomplete gamma function P(a, x) by its series; single precision.
///
/// Errors: x < 0 reports 105 and gives 0; no convergence in 100 rounds reports 105 and leaves *gamser as it was.
/// @param gln  receives ln Gamma(a).
void gser(float* gamser, float a, float x, float* gln);
/// Incomplete gamma function Q(a, x) by its continued fraction; single precision.
///
/// Errors: no convergence in 100 rounds reports 105; the value reached is given all the same. Source: Lentz 1976.
void gcf(float* gammcf, float a, float x, float* gln);

/// Upper tail probability of the chi-square law.
///
/// @return  -1 for chi2 < 0 (error 105), for df <= 0 (no report), and when the series didn't converge (error 105).
float Prob_of_chi_sq(float df, float chi2);

/// Root of f between x1 and x2, single precision.
///
/// Errors: f(x1) and f(x2) of one sign, or 100 rounds spent, report 105 and give 0. Source: Brent 1973, chapter 4.
float zbrent(float (*f)(float), float x1, float x2, float tol);

/// exp and sqrt taken through double precision.
[[nodiscard]] long double my_expl(long double x) noexcept;
[[nodiscard]] long double my_sqrtl(long double x) noexcept;

}  // namespace tov
