// The general solver.
#include "demography/broyden.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/special.h"
#include "run/errors.h"

namespace tov {

namespace {

using Vector = TBroyden::Vector;

long double dot(Vector const& a, Vector const& b) {
    long double sum = 0.0L;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

long double largest(Vector const& values) {
    long double most = 0.0L;
    for (long double const value : values) {
        most = std::max(most, std::fabs(value));
    }
    return most;
}

/// Largest change relative to the size of the reference, components below 1 counting as 1.
long double relative_change(Vector const& change, Vector const& reference) {
    long double most = 0.0L;
    for (std::size_t i = 0; i < change.size(); ++i) {
        most = std::max(most, std::fabs(change[i]) / std::max(std::fabs(reference[i]), 1.0L));
    }
    return most;
}

bool any_nan(Vector const& values) {
    return std::any_of(values.begin(), values.end(), [](long double v) { return std::isnan(v); });
}

/// Next step length of the backtracking line search: the minimum of the quadratic (first time) or cubic model.
long double next_length(long double slope, long double f_old, long double now, long double f_now, long double before,
                        long double f_before) {
    if (now == 1.0L) {
        return -slope / (2.0L * (f_now - f_old - slope));
    }
    long double const rhs1 = f_now - f_old - now * slope;
    long double const rhs2 = f_before - f_old - before * slope;
    long double const a = (rhs1 / (now * now) - rhs2 / (before * before)) / (now - before);
    long double const b = (-before * rhs1 / (now * now) + now * rhs2 / (before * before)) / (now - before);
    long double length = 0.0L;
    if (a == 0.0L) {
        length = -slope / (2.0L * b);
    } else {
        long double const disc = b * b - 3.0L * a * slope;
        if (disc < 0.0L) {
            length = 0.5L * now;
        } else if (b <= 0.0L) {
            length = (-b + my_sqrtl(disc)) / (3.0L * a);
        } else {
            length = -slope / (b + my_sqrtl(disc));
        }
    }
    return std::min(length, 0.5L * now);
}

int error_code(BroydenStatus status) {
    switch (status) {
        case BroydenStatus::singular_jacobian: return 182;
        case BroydenStatus::singular_r: return 183;
        case BroydenStatus::too_many_rounds: return 184;
        case BroydenStatus::roundoff_in_lnsrch: return 185;
        default: return 0;
    }
}

}  // namespace

TBroyden::TBroyden(int n, System system, Jacobian jacobian)
    : n_(n),
      system_(std::move(system)),
      jacobian_(std::move(jacobian)),
      x_(n, 0.0L),
      fvec_(n, 0.0L),
      r_(n, Vector(n, 0.0L)),
      qt_(n, Vector(n, 0.0L)),
      c_(n, 0.0L),
      d_(n, 0.0L) {}

bool TBroyden::solve_equations() {
    BroydenStatus const status = broydn(x_);
    if (int const code = error_code(status); code != 0) {
        E.error(ErrorType::Error, code == 185 ? "TBroyden::lnsrch()" : "TBroyden::broydn()", code);
    }
    solved_ = status == BroydenStatus::converged;
    return solved_;
}

BroydenStatus TBroyden::broydn(Vector& x) {
    long double f = fmin(x);
    if (any_nan(fvec_)) {
        return BroydenStatus::spurious;
    }
    if (largest(fvec_) < 1.0000000000000002e-06L) {
        return BroydenStatus::converged;
    }
    long double const longest = STPMX * std::max(my_sqrtl(dot(x, x)), static_cast<long double>(n_));
    bool restart = true;
    Vector x_old, f_old;
    for (int round = 1; round <= MAXITS; ++round) {
        if (restart) {
            if (!factor_jacobian(x)) {
                return BroydenStatus::singular_jacobian;
            }
        } else if (!update_factors(x, x_old, f_old)) {
            return BroydenStatus::singular_r;
        }
        Vector step = project(fvec_);
        Vector const gradient = gradient_of(step);
        x_old = x;
        f_old = fvec_;
        rsolv(step);
        Search const search = lnsrch(x_old, f, gradient, step, x, longest);
        f = search.f;
        if (search.status != BroydenStatus::converged) {
            return search.status;
        }
        if (largest(fvec_) < TOLF) {
            return BroydenStatus::converged;
        }
        if (search.check) {
            if (restart) {
                return BroydenStatus::spurious;
            }
            long double const den = std::max(f, 0.5L * n_);
            long double flat = 0.0L;
            for (int i = 0; i < n_; ++i) {
                flat = std::max(flat, std::fabs(gradient[i]) * std::max(std::fabs(x[i]), 1.0L) / den);
            }
            if (flat < TOLMIN) {
                return BroydenStatus::spurious;
            }
            restart = true;
        } else {
            restart = false;
            Vector change(x);
            for (int i = 0; i < n_; ++i) {
                change[i] -= x_old[i];
            }
            if (relative_change(change, x) < TOLX) {
                return BroydenStatus::converged;
            }
        }
    }
    return BroydenStatus::too_many_rounds;
}

/// Half the squared length of the function at x; the values stay in fvec_.
long double TBroyden::fmin(Vector const& x) {
    system_(x, fvec_);
    return 0.5L * dot(fvec_, fvec_);
}

bool TBroyden::factor_jacobian(Vector const& x) {
    if (jacobian_) {
        jacobian_(x, r_);
    } else {
        approx_fdjac(x, r_);
    }
    if (qrdcmp()) {
        return false;
    }
    for (int i = 0; i < n_; ++i) {
        std::fill(qt_[i].begin(), qt_[i].end(), 0.0L);
        qt_[i][i] = 1.0L;
    }
    for (int k = 0; k < n_ - 1; ++k) {
        if (c_[k] == 0.0L) {
            continue;
        }
        for (int j = 0; j < n_; ++j) {
            long double sum = 0.0L;
            for (int i = k; i < n_; ++i) {
                sum += r_[i][k] * qt_[i][j];
            }
            sum /= c_[k];
            for (int i = k; i < n_; ++i) {
                qt_[i][j] -= sum * r_[i][k];
            }
        }
    }
    for (int i = 0; i < n_; ++i) {
        r_[i][i] = d_[i];
        for (int j = 0; j < i; ++j) {
            r_[i][j] = 0.0L;
        }
    }
    return true;
}

/// Broyden's rank-one update of Q and R for the step from x_old to x. false: R became singular.
bool TBroyden::update_factors(Vector const& x, Vector const& x_old, Vector const& f_old) {
    Vector s(x), t(n_, 0.0L), w(n_, 0.0L);
    for (int i = 0; i < n_; ++i) {
        s[i] -= x_old[i];
    }
    for (int i = 0; i < n_; ++i) {
        for (int j = i; j < n_; ++j) {
            t[i] += r_[i][j] * s[j];
        }
    }
    bool skip = true;
    for (int i = 0; i < n_; ++i) {
        long double sum = 0.0L;
        for (int j = 0; j < n_; ++j) {
            sum += qt_[j][i] * t[j];
        }
        w[i] = fvec_[i] - f_old[i] - sum;
        if (std::fabs(w[i]) >= TOLX * (std::fabs(fvec_[i]) + std::fabs(f_old[i]))) {
            skip = false;
        } else {
            w[i] = 0.0L;
        }
    }
    if (skip) {
        return true;
    }
    for (int i = 0; i < n_; ++i) {
        t[i] = dot(qt_[i], w);
    }
    long double const den = dot(s, s);
    for (long double& value : s) {
        value /= den;
    }
    qrupdt(t, s);
    for (int i = 0; i < n_; ++i) {
        if (r_[i][i] == 0.0L) {
            return false;
        }
        d_[i] = r_[i][i];
    }
    return true;
}

TBroyden::Search TBroyden::lnsrch(Vector const& x_old, long double f_old, Vector const& gradient, Vector& step,
                                  Vector& x, long double longest) {
    Search result;
    result.f = f_old;
    long double const length = my_sqrtl(dot(step, step));
    if (length > longest) {
        for (long double& value : step) {
            value *= longest / length;
        }
    }
    long double const slope = dot(gradient, step);
    if (slope >= 0.0L) {
        result.status = BroydenStatus::roundoff_in_lnsrch;
        return result;
    }
    long double const least = TOLX / relative_change(step, x_old);
    long double now = 1.0L, before = 0.0L, f_before = 0.0L;
    while (true) {
        for (int i = 0; i < n_; ++i) {
            x[i] = x_old[i] + now * step[i];
        }
        result.f = fmin(x);
        if (any_nan(fvec_)) {
            result.status = BroydenStatus::spurious;
            return result;
        }
        if (now < least) {
            x = x_old;
            result.check = true;
            return result;
        }
        if (result.f <= f_old + ALF * now * slope) {
            return result;
        }
        long double const next = next_length(slope, f_old, now, result.f, before, f_before);
        before = now;
        f_before = result.f;
        now = std::max(next, 0.1L * now);
    }
}

/// Forward differences of the function around x; fvec_ must hold its values there.
void TBroyden::approx_fdjac(Vector const& x, Matrix& j) {
    Vector moved(x), f(n_, 0.0L);
    for (int column = 0; column < n_; ++column) {
        long double const kept = moved[column];
        long double h = TOLX * std::fabs(kept);
        if (h == 0.0L) {
            h = TOLX;
        }
        moved[column] = kept + h;
        h = moved[column] - kept;
        system_(moved, f);
        moved[column] = kept;
        for (int row = 0; row < n_; ++row) {
            j[row][column] = (f[row] - fvec_[row]) / h;
        }
    }
}

/// Householder factoring of r_ in place; c_ and d_ as usual. true: singular.
bool TBroyden::qrdcmp() {
    bool singular = false;
    for (int k = 0; k < n_ - 1; ++k) {
        long double scale = 0.0L;
        for (int i = k; i < n_; ++i) {
            scale = std::max(scale, std::fabs(r_[i][k]));
        }
        if (scale == 0.0L) {
            singular = true;
            c_[k] = d_[k] = 0.0L;
            continue;
        }
        long double sum = 0.0L;
        for (int i = k; i < n_; ++i) {
            r_[i][k] /= scale;
            sum += r_[i][k] * r_[i][k];
        }
        long double const sigma = std::copysign(my_sqrtl(sum), r_[k][k]);
        r_[k][k] += sigma;
        c_[k] = sigma * r_[k][k];
        d_[k] = -scale * sigma;
        for (int j = k + 1; j < n_; ++j) {
            long double product = 0.0L;
            for (int i = k; i < n_; ++i) {
                product += r_[i][k] * r_[i][j];
            }
            long double const tau = product / c_[k];
            for (int i = k; i < n_; ++i) {
                r_[i][j] -= tau * r_[i][k];
            }
        }
    }
    d_[n_ - 1] = r_[n_ - 1][n_ - 1];
    return singular || d_[n_ - 1] == 0.0L;
}

/// Q R -> Q (R + u v').
void TBroyden::qrupdt(Vector& u, Vector const& v) {
    int k = n_ - 1;
    while (k > 0 && u[k] == 0.0L) {
        --k;
    }
    for (int i = k - 1; i >= 0; --i) {
        rotate(i, u[i], -u[i + 1]);
        long double const a = std::fabs(u[i]);
        long double const b = std::fabs(u[i + 1]);
        if (u[i] == 0.0L) {
            u[i] = b;
        } else if (a > b) {
            u[i] = a * my_sqrtl(1.0L + (b / a) * (b / a));
        } else {
            u[i] = b * my_sqrtl(1.0L + (a / b) * (a / b));
        }
    }
    for (int j = 0; j < n_; ++j) {
        r_[0][j] += u[0] * v[j];
    }
    for (int i = 0; i < k; ++i) {
        rotate(i, r_[i][i], -r_[i + 1][i]);
    }
}

/// Jacobi rotation of rows i and i + 1 of R and of Q'.
void TBroyden::rotate(int i, long double a, long double b) {
    long double c = 0.0L, s = 0.0L;
    if (a == 0.0L) {
        s = b >= 0.0L ? 1.0L : -1.0L;
    } else if (std::fabs(a) > std::fabs(b)) {
        long double const fact = b / a;
        c = std::copysign(1.0L / my_sqrtl(1.0L + fact * fact), a);
        s = fact * c;
    } else {
        long double const fact = a / b;
        s = std::copysign(1.0L / my_sqrtl(1.0L + fact * fact), b);
        c = fact * s;
    }
    auto const turn = [&](Matrix& m, int from) {
        for (int j = from; j < n_; ++j) {
            long double const y = m[i][j];
            long double const w = m[i + 1][j];
            m[i][j] = c * y - s * w;
            m[i + 1][j] = s * y + c * w;
        }
    };
    turn(r_, i);
    turn(qt_, 0);
}

/// Solves R x = b in place, with d_ as R's diagonal.
void TBroyden::rsolv(Vector& b) const {
    for (int i = n_ - 1; i >= 0; --i) {
        long double sum = 0.0L;
        for (int j = i + 1; j < n_; ++j) {
            sum += r_[i][j] * b[j];
        }
        b[i] = (b[i] - sum) / d_[i];
    }
}

/// -Q' v.
Vector TBroyden::project(Vector const& v) const {
    Vector p(n_, 0.0L);
    for (int i = 0; i < n_; ++i) {
        p[i] = -dot(qt_[i], v);
    }
    return p;
}

/// -R' p: the gradient of half the squared length.
Vector TBroyden::gradient_of(Vector const& step) const {
    Vector g(n_, 0.0L);
    for (int i = n_ - 1; i >= 0; --i) {
        for (int j = 0; j <= i; ++j) {
            g[i] -= r_[j][i] * step[j];
        }
    }
    return g;
}

}  // namespace tov
