/// The one uniform generator of the process, and the deviates, shuffles and bootstrap samples drawn from it.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <utility>

#include "base/scoped_swap.h"

namespace tov {

/// Subtractive generator with lags 55 and 24 modulo 10^9.
///
/// Source: Knuth 1981, Seminumerical Algorithms, section 3.2.2.
struct Ran3State {
    static constexpr std::int32_t MBIG = 1000000000;
    static constexpr std::int32_t MSEED = 161803398;
    static constexpr double FAC = 1.0e-9;

    std::array<std::int32_t, 56> ma{};  ///< entries 1 .. 55 are used
    std::int32_t inext = 1;
    std::int32_t inextp = 32;
    std::int32_t iff = 0;  ///< 1 once seeded

    /// Fills the table from |idum|; the next draw is number 1 of that seed's sequence.
    void seed(long idum) noexcept;
    /// Next number, in [0, 1), a multiple of 1e-9.
    double draw() noexcept {
        if (++inext == 56) inext = 1;
        if (++inextp == 56) inextp = 1;
        std::int32_t mj = ma[static_cast<std::size_t>(inext)] - ma[static_cast<std::size_t>(inextp)];
        if (mj < 0) mj += MBIG;
        ma[static_cast<std::size_t>(inext)] = mj;
        double const value = mj * FAC;
        if (value >= 1.0) [[unlikely]]
            report_strange(value);
        return value;
    }

    /// The next out.size() numbers, as so many calls of draw() give them.
    void draw(std::span<double> out) noexcept;

private:
    static void report_strange(double value) noexcept;
};

/// What poidev keeps between calls; recomputed when the mean changes.
struct PoissonState {
    float oldm = -1.0F;
    float sq = 0.0F;
    float alxm = 0.0F;
    float g = 0.0F;
};

/// All state of this module: one struct, so that it can be saved, swapped and restored.
struct RandomState {
    Ran3State ran3;
    PoissonState poisson;
};

/// The process-wide instance.
extern RandomState random_state;

/// Keeps the state of the module and puts it back at the end of the scope.
class SavedRandom {
    ScopedSwap<RandomState> saved_{random_state};
};

/// Uniform number in [0, 1). A negative *idum, or the first call of the process, seeds the generator and sets *idum to
/// 1; the seeding call itself returns number 1 of the sequence.
inline double ran3(long* idum) noexcept {
    if (*idum < 0 || random_state.ran3.iff == 0) [[unlikely]] {
        random_state.ran3.seed(*idum);
        *idum = 1;
    }
    return random_state.ran3.draw();
}

/// ran3 with a local 1: never reseeds a seeded generator.
inline double uniform() noexcept {
    long idum = 1;
    return ran3(&idum);
}

/// Seeds the generator for a run and records the seed on standard output and in `randseed.txt` (working directory).
///
/// The sequence's first number is spent by the seeding.
/// @param seed  s > 0 and s < 0 give the same sequence, that of |s|; 0 takes the clock. |s| > 161803398 is reported
///              (warning 181) and takes the clock.
void initialize_ran3(long const& seed);

/// Seed value from the clock, 1 .. 1999999.
int my_rand();

/// Whole number 0 .. *n - 1; *n must not be negative (that would reseed). Draws: 1.
inline long rand_long(long* n) noexcept {
    double const u = ran3(n);
    long const x = static_cast<long>(static_cast<double>(*n) * u);
    return x == *n ? *n - 1 : x;
}

/// Fills idx[0 .. n-1] with indices 0 .. n-1, with replacement. Draws: n.
void bootstrap_index(int* idx, int const& n) noexcept;

/// Shuffles v in place. Draws: v.size(), the last one with a single choice left.
template <class T>
void permute(std::span<T> v) {
    for (std::size_t m = v.size(); m > 0; --m) {
        auto const j = static_cast<std::size_t>(uniform() * static_cast<double>(m));
        using std::swap;
        swap(v[j], v[m - 1]);
    }
}
void permute(int* v, int n) noexcept;

/// Gamma(a) deviate of scale 1; a <= 0 gives 0 and spends no draw. Draws: those of igamma_dev(floor a), then two per
/// round of the rejection for the fraction. Source: Ahrens and Dieter 1974 for the fraction.
double gamma_dev(double a) noexcept;

/// Gamma(ia) deviate, whole-number shape; ia < 1 gives 0 and spends no draw. Draws: ia below 6; else two per round of
/// the inner loop and one per round of the outer one that gets to its end.
double igamma_dev(int ia) noexcept;

/// Truncation of ln(1 - u) / ln(1 - p). Draws: 1.
/// kept on purpose: the law is geometric, in spite of the name.
int expdev(double const& p) noexcept;

/// Number of failures of a geometric law with continuation probability p. Draws: 1, none for p < 1e-10 and p = 1.
int geometric(double const& p) noexcept;

/// Poisson deviate of mean xm, single precision inside. Draws: result + 1 below mean 12; else two or more.
/// A mean that is no finite number gives 0 and spends no draw.
/// @param idum  handed on to ran3: positive, so that nothing reseeds.
int poidev(float xm, long* idum) noexcept;

}  // namespace tov
