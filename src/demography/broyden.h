/// Globally convergent Broyden solver, and the divergence time of two populations of unequal sizes.
#pragma once

#include <array>
#include <functional>
#include <vector>

namespace tov {

/// How a run of the solver ended.
enum class BroydenStatus {
    converged,           ///< the function values are within tolerance, or the step became negligible
    spurious,            ///< stopped at a local minimum of the squared length of the function, or met a NaN
    singular_jacobian,   ///< error 182
    singular_r,          ///< error 183
    too_many_rounds,     ///< error 184
    roundoff_in_lnsrch,  ///< error 185
};

/// Solver of n equations in n unknowns: Broyden's rank-one update of a QR-factored Jacobian with a backtracking line
/// search along the quasi-Newton step. Works in long double; roots are taken through double precision.
///
/// Source: Dennis & Schnabel 1983, Numerical Methods for Unconstrained Optimization and Nonlinear Equations,
/// chapters 6 and 8, algorithm A6.
class TBroyden {
public:
    using Vector = std::vector<long double>;
    using Matrix = std::vector<Vector>;
    /// Fills f with the n function values at x.
    using System = std::function<void(Vector const& x, Vector& f)>;
    /// Fills the n x n matrix j with df_i/dx_j at x, row by row.
    using Jacobian = std::function<void(Vector const& x, Matrix& j)>;

    static constexpr int MAXITS = 200;
    static constexpr long double TOLF = 0.0001L;
    static constexpr long double TOLX = 1e-07L;
    static constexpr long double TOLMIN = 1e-06L;
    static constexpr long double STPMX = 1000.0L;
    static constexpr long double ALF = 1e-04L;

    /// @param jacobian  an empty function asks for forward differences (approx_fdjac).
    TBroyden(int n, System system, Jacobian jacobian);

    /// Solves from the unknowns as they stand; reports errors 182 to 185; true when `check` came back as 0.
    bool solve_equations();

    /// The solver itself, from x in place. Draws: none. Nothing is reported.
    BroydenStatus broydn(Vector& x);

    [[nodiscard]] Vector const& unknowns() const { return x_; }
    [[nodiscard]] bool solved() const { return solved_; }
    /// Sets the starting point of solve_equations.
    void start(Vector const& values) { x_ = values; }

private:
    struct Search {
        BroydenStatus status = BroydenStatus::converged;
        bool check = false;  ///< the step shrank to nothing
        long double f = 0.0L;
    };

    long double fmin(Vector const& x);
    bool factor_jacobian(Vector const& x);
    bool update_factors(Vector const& x, Vector const& x_old, Vector const& f_old);
    Search lnsrch(Vector const& x_old, long double f_old, Vector const& gradient, Vector& step, Vector& x,
                  long double longest);
    void approx_fdjac(Vector const& x, Matrix& j);
    bool qrdcmp();
    void qrupdt(Vector& u, Vector const& v);
    void rotate(int i, long double a, long double b);
    void rsolv(Vector& b) const;
    [[nodiscard]] Vector project(Vector const& v) const;
    [[nodiscard]] Vector gradient_of(Vector const& step) const;

    int n_;
    System system_;
    Jacobian jacobian_;
    Vector x_;
    bool solved_ = false;
    Vector fvec_;    ///< the last function values
    Matrix r_, qt_;  ///< R and the transpose of Q
    Vector c_, d_;   ///< of the Householder factoring; d is R's diagonal
};

/// Divergence time T, ancestral theta K and proportion p of two populations that may differ in size, from three mean
/// numbers of pairwise differences. Solves, with q = 1 - p and g(e) = exp(e),
///   K (p + q g(-T / (p K))) = d1,   K (q + p g(-T / (q K))) = d2,   T + K = d3.
///
/// Draws: none on the first try; three uniforms on each later one, for K, T and p in this order.
/// Source: Takahata & Nei 1985, Genetics 110: 325-344, for unequal sizes.
class TSolveDivTimes {
public:
    TSolveDivTimes(long double const& d1, long double const& d2, long double const& d3);

    /// Tries at most `tries` starting points. false: a solution was found; true: none (the last try's values stay).
    bool solve(int const& tries);

    [[nodiscard]] double theta0() const { return static_cast<double>(k_); }
    [[nodiscard]] double k() const { return static_cast<double>(p_); }
    [[nodiscard]] double T() const { return static_cast<double>(t_); }

private:
    std::array<long double, 3> data_;
    long double k_ = 0.0L, p_ = 0.0L, t_ = 0.0L;
};

/// The three equations at x = (K, p, T) for the data d.
void vecfunc2(std::array<long double, 3> const& d, TBroyden::Vector const& x, TBroyden::Vector& f);
/// Their analytic derivatives.
void my_jacobian2(TBroyden::Vector const& x, TBroyden::Matrix& j);

}  // namespace tov
