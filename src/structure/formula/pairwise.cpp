// Distances between two samples.
#include "structure/formula/pairwise.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
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

PairSums::PairSums(PairDistances const& distances, std::span<int const> first, std::span<int const> second)
    : conventional_(distances.conventional()), genes_(first.begin(), first.end()) {
    genes_.insert(genes_.end(), second.begin(), second.end());
    std::vector<int> kinds(genes_);
    std::sort(kinds.begin(), kinds.end());
    kinds.erase(std::unique(kinds.begin(), kinds.end()), kinds.end());
    for (int& h : genes_) {
        h = static_cast<int>(std::lower_bound(kinds.begin(), kinds.end(), h) - kinds.begin());
    }
    n_ = static_cast<int>(kinds.size());
    tally_.assign(kinds.size(), 0);
    std::int64_t const all = static_cast<std::int64_t>(genes_.size());
    if (conventional_) {
        std::int64_t equal = 0;
        for (int const h : genes_) {
            equal += tally_[h]++;
        }
        all_pairs_ = static_cast<double>(all * (all - 1) / 2 - equal);
        std::fill(tally_.begin(), tally_.end(), 0);
        return;
    }
    stride_ = (n_ + 3) / 4 * 4;
    d_.assign(static_cast<std::size_t>(n_) * stride_, 0.0);
    f_.assign(stride_, 0.0);
    g_.assign(stride_, 0.0);
    whole_ = true;
    for (int i = 0; i < n_; ++i) {
        for (int j = 0; j < n_; ++j) {
            double const dij = distances.at(kinds[i], kinds[j]);
            d_[static_cast<std::size_t>(i) * stride_ + j] = dij;
            whole_ = whole_ && dij == std::floor(dij) && std::fabs(dij) < 1e6 && (i != j || dij == 0.0);
        }
    }
    whole_ = whole_ && genes_.size() < 50000;
    if (whole_) {
        for (int const h : genes_) {
            f_[h] += 1.0;
        }
        all_pairs_ = in_whole_numbers().first;
    }
}

PairOfSums PairSums::compute(std::span<int const> v, int a) {
    if (conventional_) {
        return by_equal_pairs(v, a);
    }
    std::fill(f_.begin(), f_.end(), 0.0);
    std::fill(g_.begin(), g_.end(), 0.0);
    for (int k = 0; k < a; ++k) {
        f_[v[k]] += 1.0;
    }
    for (std::size_t k = a; k < v.size(); ++k) {
        g_[v[k]] += 1.0;
    }
    return whole_ ? in_whole_numbers() : in_order();
}

PairOfSums PairSums::by_equal_pairs(std::span<int const> v, int a) {
    auto const different = [this](std::span<int const> slice) {
        std::int64_t equal = 0;
        for (int const h : slice) {
            equal += tally_[h]++;
        }
        for (int const h : slice) {
            tally_[h] = 0;
        }
        std::int64_t const n = static_cast<std::int64_t>(slice.size());
        return static_cast<double>(n * (n - 1) / 2 - equal);
    };
    double const first = different(v.first(a));
    double const second = different(v.subspan(a));
    return {first, second, all_pairs_ - first - second};
}

/// Half the quadratic forms f D f and g D g, several columns at a time; the among sum is what is left of all pairs.
PairOfSums PairSums::in_whole_numbers() {
    double first[4] = {}, second[4] = {};
    for (int i = 0; i < n_; ++i) {
        double const* const d = d_.data() + static_cast<std::size_t>(i) * stride_;
        double const fi = f_[i], gi = g_[i];
        double row_f[4] = {}, row_g[4] = {};
        for (int j = i / 4 * 4; j < stride_; j += 4) {
            for (int t = 0; t < 4; ++t) {
                row_f[t] += f_[j + t] * d[j + t];
                row_g[t] += g_[j + t] * d[j + t];
            }
        }
        // Columns of the first block below the diagonal count twice; take them out.
        for (int j = i / 4 * 4; j < i; ++j) {
            row_f[0] -= f_[j] * d[j];
            row_g[0] -= g_[j] * d[j];
        }
        for (int t = 0; t < 4; ++t) {
            first[t] += fi * row_f[t];
            second[t] += gi * row_g[t];
        }
    }
    double const a = (first[0] + first[1]) + (first[2] + first[3]);
    double const b = (second[0] + second[1]) + (second[2] + second[3]);
    return {a, b, all_pairs_ - a - b};
}

/// Ascending haplotypes, one addition a pair: the order that fixes the digits of broken distances.
PairOfSums PairSums::in_order() {
    PairOfSums s;
    for (int i = 0; i < n_; ++i) {
        double const* const d = d_.data() + static_cast<std::size_t>(i) * stride_;
        double const fi = f_[i], gi = g_[i];
        s.first += 0.5 * fi * (fi - 1.0) * d[i];
        s.second += 0.5 * gi * (gi - 1.0) * d[i];
        for (int j = i + 1; j < n_; ++j) {
            s.first += fi * f_[j] * d[j];
            s.second += gi * g_[j] * d[j];
        }
        for (int j = 0; j < n_; ++j) {
            s.among += fi * g_[j] * d[j];
        }
    }
    return s;
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
