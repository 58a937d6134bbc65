// Distances between two samples.
#include "structure/formula/pairwise.h"

#include <cmath>
#include <limits>
#include <utility>

#include "base/random.h"

namespace tov {

PairStatistics pair_statistics(double a, double b, PairOfSums const& s) noexcept {
    PairStatistics r;
    double const N = a + b;
    r.c = N > 2.0 ? 1.0 / (N - 2.0) : 100000.0;
    r.n = N - (a * a + b * b) / N;
    if (!(r.n != 0.0)) {
        r.n = 0.0;
        return r;
    }
    double const wa = s.first / a;
    double const wb = s.second / b;
    r.W = wa + wb;
    r.ssd_among = (s.first + s.second + s.among) / N - r.W;
    double const Vw = r.W * r.c;
    r.Va = (r.ssd_among - Vw) / r.n;
    r.FST = r.Va + Vw > 0.0 ? r.Va / (r.Va + Vw) : 100000.0 * r.Va;
    r.PiX = a > 1.0 ? 2.0 * wa / (a - 1.0) : 0.0;
    r.PiY = b > 1.0 ? 2.0 * wb / (b - 1.0) : 0.0;
    r.PiXY = a * b > 0.0 ? s.among / (a * b) : 0.0;
    r.corrected = r.PiXY - 0.5 * (r.PiX + r.PiY);
    return r;
}

void shuffle_pair(std::span<int> v, int a, bool individuals) noexcept {
    int const N = static_cast<int>(v.size());
    if (!individuals) {
        for (int i = N - 1; i > a; --i) {
            int const j = static_cast<int>(i * uniform());
            std::swap(v[i], v[j]);
        }
        return;
    }
    for (int i = N - 1; i > a + 1; i -= 2) {
        int j = static_cast<int>(i * uniform());
        if (j % 2 == 0) {
            ++j;
        }
        if (j >= N) {
            j -= 2;
        }
        std::swap(v[i], v[j]);
        std::swap(v[i - 1], v[j - 1]);
    }
}

double coancestry_distance(double fst) noexcept {
    if (fst <= 0.0) {
        return 0.0;  // not -0 for an FST of 0
    }
    return fst >= 1.0 ? std::numeric_limits<double>::infinity() : -std::log(1.0 - fst);
}

double linearised_fst(double fst) noexcept {
    if (fst < 0.0) {
        return 0.0;
    }
    return fst >= 1.0 ? std::numeric_limits<double>::infinity() : fst / (1.0 - fst);
}

double migrants_of_fst(double fst) noexcept {
    return fst > 0.0 ? (1.0 - fst) / (2.0 * fst) : std::numeric_limits<double>::infinity();
}

}  // namespace tov
