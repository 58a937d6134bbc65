// The generator's seeding, and the deviates drawn from it.
#include "base/random.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <iostream>
#include <limits>
#include <string_view>

#include "base/special.h"
#include "run/errors.h"

namespace tov {

RandomState random_state;

namespace {

constexpr long LARGEST_SEED = Ran3State::MSEED;
constexpr std::string_view LIDUM_LINE = "Random number generator initialized with lidum=";
constexpr std::string_view SEED_LINE = "Random generator initialized with seed=";

/// Truncation to int, held at the limits of int; 0 for what is no number.
int truncated(double x) noexcept {
    if (x >= static_cast<double>(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
    if (x <= static_cast<double>(std::numeric_limits<int>::min())) return std::numeric_limits<int>::min();
    return x == x ? static_cast<int>(x) : 0;
}

/// Seeds with a negative number, spends the number that the seeding call returns, and records the seed.
void seed_and_record(long idum, std::string_view console_line) {
    std::cout << console_line << idum << std::endl;
    std::ofstream("randseed.txt", std::ios::trunc) << LIDUM_LINE << idum << '\n';
    ran3(&idum);
}

}  // namespace

void Ran3State::seed(long idum) noexcept {
    iff = 1;
    // |idum| beyond MSEED would turn the start value negative, so it is brought back into 0 .. MBIG - 1.
    unsigned long const magnitude =
        idum < 0 ? 0UL - static_cast<unsigned long>(idum) : static_cast<unsigned long>(idum);
    long const start = (MSEED - static_cast<long>(magnitude % MBIG)) % MBIG;
    auto mj = static_cast<std::int32_t>(start < 0 ? start + MBIG : start);
    ma[0] = 0;
    ma[55] = mj;
    std::int32_t mk = 1;
    for (std::size_t i = 1; i <= 54; ++i) {
        std::size_t const ii = (21 * i) % 55;
        ma[ii] = mk;
        mk = mj - mk;
        if (mk < 0) mk += MBIG;
        mj = ma[ii];
    }
    for (int round = 0; round < 4; ++round) {
        for (std::size_t i = 1; i <= 55; ++i) {
            ma[i] -= ma[1 + (i + 30) % 55];
            if (ma[i] < 0) ma[i] += MBIG;
        }
    }
    inext = 0;
    inextp = 31;
}

void Ran3State::draw(std::span<double> out) noexcept {
    constexpr std::size_t lag = 24;  // entries of a block neither wrap around nor depend on each other
    while (!out.empty()) {
        auto const first = static_cast<std::size_t>(inext % 55);
        auto const second = static_cast<std::size_t>(inextp % 55);
        std::size_t const n = std::min({55 - first, 55 - second, lag, out.size()});
        std::int32_t* const a = ma.data() + first + 1;
        std::int32_t const* const b = ma.data() + second + 1;
        for (std::size_t i = 0; i < n; ++i) {
            std::int32_t const difference = a[i] - b[i];
            a[i] = difference < 0 ? difference + MBIG : difference;
            out[i] = a[i] * FAC;
        }
        inext = static_cast<std::int32_t>(first + n);
        inextp = static_cast<std::int32_t>(second + n);
        out = out.subspan(n);
    }
}

void Ran3State::report_strange(double value) noexcept { std::cout << " ** strange ran3:" << value << std::endl; }

int my_rand() {
    using namespace std::chrono;
    auto const now =
        static_cast<unsigned long long>(duration_cast<microseconds>(system_clock::now().time_since_epoch()).count());
    return static_cast<int>(now % 1999999) + 1;
}

void initialize_ran3(long const& seed) {
    bool const too_large = seed > LARGEST_SEED || seed < -LARGEST_SEED;
    if (too_large) E.error(ErrorType::Warning, "initialize_ran3(const int seed) ", 181);
    if (too_large || seed == 0) {
        seed_and_record(-my_rand(), LIDUM_LINE);
    } else if (seed > 0) {
        seed_and_record(-seed, LIDUM_LINE);
    } else {
        seed_and_record(seed, SEED_LINE);
    }
}

void bootstrap_index(int* idx, int const& n) noexcept {
    for (int i = 0; i < n; ++i) idx[i] = static_cast<int>(n * uniform());
}

void permute(int* v, int n) noexcept {
    if (n > 0) permute(std::span<int>(v, static_cast<std::size_t>(n)));
}

double gamma_dev(double a) noexcept {
    if (!(a > 0.0)) return 0.0;
    double const whole = std::floor(a);
    double const f = a - whole;
    double x = 0.0;
    if (whole > 0.0) {
        x = igamma_dev(truncated(whole));
        if (f == 0.0) return x;
    }
    constexpr double e = 2.718281828459;
    double const b = (e + f) / e;
    while (true) {
        double const p = b * uniform();
        if (p > 1.0) {
            double const y = -std::log((b - p) / f);
            if (uniform() <= std::pow(y, f - 1.0)) return y + x;
        } else {
            double const y = std::pow(p, 1.0 / f);
            if (uniform() <= std::exp(-y)) return y + x;
        }
    }
}

double igamma_dev(int ia) noexcept {
    if (ia < 1) return 0.0;
    if (ia < 6) {
        double product = 1.0;
        for (int i = 0; i < ia; ++i) product *= uniform();
        return -std::log(product);
    }
    double const am = ia - 1;
    double const s = std::sqrt(2.0 * am + 1.0);
    while (true) {
        double v1 = 0.0;
        double v2 = 0.0;
        do {
            v1 = 2.0 * uniform() - 1.0;
            v2 = 2.0 * uniform() - 1.0;
        } while (v1 * v1 + v2 * v2 > 1.0);
        if (v1 == 0.0) continue;  // no tangent
        double const y = v2 / v1;
        double const x = s * y + am;
        if (x <= 0.0) continue;
        double const e = (1.0 + y * y) * std::exp(am * std::log(x / am) - s * y);
        if (!(e < uniform())) return x;
    }
}

int expdev(double const& p) noexcept { return truncated(std::log(1.0 - uniform()) / std::log(1.0 - p)); }

int geometric(double const& p) noexcept {
    if (p < 1e-10 || p == 1.0) return 0;
    return truncated(std::floor(std::log(uniform()) / std::log(p)));
}

namespace {

/// Product of uniforms until it falls to exp(-xm).
int poisson_by_product(float xm, long* idum, PoissonState& state) noexcept {
    if (xm != state.oldm) {
        state.oldm = xm;
        state.g = static_cast<float>(std::exp(-static_cast<double>(xm)));
    }
    int events = -1;
    float t = 1.0F;
    do {
        ++events;
        t = static_cast<float>(t * ran3(idum));
    } while (t > state.g);
    return events;
}

/// Rejection from a Lorentzian of the same mean.
int poisson_by_rejection(float xm, long* idum, PoissonState& state) noexcept {
    if (xm != state.oldm) {
        state.oldm = xm;
        state.sq = static_cast<float>(std::sqrt(2.0 * xm));
        state.alxm = static_cast<float>(std::log(static_cast<double>(xm)));
        state.g = static_cast<float>(xm * state.alxm - gammln(xm + 1.0));
    }
    float em = 0.0F;
    float t = 0.0F;
    do {
        float y = 0.0F;
        do {
            y = static_cast<float>(std::tan(3.141592654 * ran3(idum)));
            em = state.sq * y + xm;
        } while (em < 0.0F);
        em = std::floor(em);
        float const square = y * y;
        float const log_power = em * state.alxm;
        t = static_cast<float>(0.9 * (1.0 + square) * std::exp(log_power - gammln(em + 1.0) - state.g));
    } while (ran3(idum) > t);
    return truncated(em);
}

}  // namespace

int poidev(float xm, long* idum) noexcept {
    if (!std::isfinite(xm)) return 0;
    PoissonState& state = random_state.poisson;
    return xm < 12.0F ? poisson_by_product(xm, idum, state) : poisson_by_rejection(xm, idum, state);
}

}  // namespace tov
