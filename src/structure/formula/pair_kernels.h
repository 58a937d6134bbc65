/// Inner loops of the sums over pairs of gene copies, for many arrangements side by side: a lane an arrangement.
///
/// The additions of a lane come in the order of the haplotypes, whatever the register, so that all widths and the plain
/// loops give the same digits. Distances are rows d(i,i) .. d(i,n-1) one behind the other.
#pragma once

#include <cstddef>
#include <cstring>

#include "base/registers.h"

namespace tov {

/// Lanes of a table of counts are a multiple of this: whole registers of single precision.
inline constexpr int lane_step = 16;

/// Lanes that hold `used` arrangements.
[[nodiscard]] constexpr int rounded_lanes(int used) noexcept { return (used + lane_step - 1) / lane_step * lane_step; }

#define TOV_KERNEL [[gnu::always_inline]] inline

/// Calls kernel.tile<bytes, T>(first lane) for all lanes: four registers side by side as long as there are as many.
template <class Value, int bytes, class Kernel>
TOV_KERNEL void run_tiles(Kernel const& kernel) {
    constexpr int per = bytes / static_cast<int>(sizeof(Value));
    int first = 0;
    for (; first + 4 * per <= kernel.lanes; first += 4 * per) {
        kernel.template tile<bytes, 4>(first);
    }
    for (; first < kernel.lanes; first += per) {
        kernel.template tile<bytes, 1>(first);
    }
}

/// Sum over haplotypes i of 0.5 f_i (f_i - 1) d(i,i) + sum over later j of f_i f_j d(i,j), for each lane.
///
/// A haplotype of which there is one copy in all adds f_j d(i,j) to all lanes, and those that lack it go back to their
/// sum afterwards: a factor of 1 changes no digit.
struct DenseWithin {
    int n;                    ///< haplotypes
    double const* distances;
    char const* single;       ///< n flags: one copy in all
    double const* counts;     ///< n rows of `stride` lanes
    int stride;
    int lanes;                ///< those to sum; a multiple of lane_step
    double* sums;

    template <int bytes>
    TOV_KERNEL void run() const {
        run_tiles<double, bytes>(*this);
    }

    template <int bytes, int T>
    TOV_KERNEL void tile(int first) const {
        using Doubles = typename Packed<double, bytes>::type;
        Doubles sum[T] = {};
        double const* d = distances;
        for (int i = 0; i < n; ++i) {
            double const* const row = counts + static_cast<std::size_t>(i) * stride + first;
            if (single[i] != 0) {
                single_row<bytes, T>(i, d, row, sum);
            } else {
                common_row<bytes, T>(i, d, row, sum);
            }
            d += n - i;
        }
        std::memcpy(sums + first, sum, sizeof sum);
    }

private:
    template <int bytes, int T, class Doubles>
    TOV_KERNEL void common_row(int i, double const* d, double const* row, Doubles (&sum)[T]) const {
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        Doubles f[T];
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            std::memcpy(&f[t], row + t * per, bytes);
            sum[t] += 0.5 * f[t] * (f[t] - 1.0) * *d;
        }
        double const* g = row + stride;
        for (int j = i + 1; j < n; ++j, g += stride) {
            double const dij = *++d;
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles later;
                std::memcpy(&later, g + t * per, bytes);
                sum[t] += f[t] * later * dij;
            }
        }
    }

    template <int bytes, int T, class Doubles>
    TOV_KERNEL void single_row(int i, double const* d, double const* row, Doubles (&sum)[T]) const {
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        Doubles with[T];
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            with[t] = sum[t];
        }
        double const* g = row + stride;
        for (int j = i + 1; j < n; ++j, g += stride) {
            double const dij = *++d;
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles later;
                std::memcpy(&later, g + t * per, bytes);
                with[t] += later * dij;
            }
        }
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            Doubles f;
            std::memcpy(&f, row + t * per, bytes);
            sum[t] = f != 0.0 ? with[t] : sum[t];
        }
    }
};

/// The sums of DenseWithin for two samples that hold all copies, a lane an arrangement.
///
/// A haplotype of 2h copies, h + u of them in the first sample, has h - u in the second: one table of u tells both. A
/// haplotype of one copy has terms in one sample only, so that a lane makes the additions of that sample alone. All
/// lanes take a row of distances while it is near.
struct DenseTwo {
    int n;
    double const* distances;
    double const* halves;  ///< h of each haplotype
    double const* excess;  ///< u: n rows of `stride` lanes
    int stride;
    int lanes;             ///< those to sum; a multiple of lane_step
    double* first;         ///< sums within the first sample
    double* second;

    template <int bytes>
    TOV_KERNEL void run() const {
        std::memset(first, 0, lanes * sizeof *first);
        std::memset(second, 0, lanes * sizeof *second);
        double const* d = distances;
        for (int i = 0; i < n; ++i) {
            if (halves[i] == 0.5) {
                single_rows<bytes>(i, d);
            } else if (halves[i] == 1.0) {
                common_rows<bytes, true>(i, d);
            } else if (halves[i] != 0.0) {
                common_rows<bytes, false>(i, d);
            }
            d += n - i;
        }
    }

private:
    template <int bytes>
    TOV_KERNEL void single_rows(int i, double const* d) const {
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        int lane = 0;
        for (; lane + 4 * per <= lanes; lane += 4 * per) {
            single_row<bytes, 4>(i, d, lane);
        }
        if constexpr (4 * per > lane_step) {
            for (; lane < lanes; lane += 2 * per) {
                single_row<bytes, 2>(i, d, lane);
            }
        }
    }

    template <int bytes, bool two>
    TOV_KERNEL void common_rows(int i, double const* d) const {
        constexpr int T = 2;  // what sixteen registers hold
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        for (int lane = 0; lane < lanes; lane += T * per) {
            common_row<bytes, T, two>(i, d, lane);
        }
    }

    template <int bytes, int T>
    TOV_KERNEL void single_row(int i, double const* d, int lane) const {
        using Doubles = typename Packed<double, bytes>::type;
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        double const* row = excess + static_cast<std::size_t>(i) * stride + lane;
        Doubles sign[T], sum[T];  // 1 where the first sample holds the copy, else -1
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            Doubles u, a, b;
            std::memcpy(&u, row + t * per, bytes);
            std::memcpy(&a, first + lane + t * per, bytes);
            std::memcpy(&b, second + lane + t * per, bytes);
            sign[t] = u + u;
            sum[t] = u > 0.0 ? a : b;
        }
        for (int j = i + 1; j < n; ++j) {
            row += stride;
            double const dij = *++d;
            Doubles const h = halves[j] - Doubles{};
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles later;
                std::memcpy(&later, row + t * per, bytes);
                multiply_and_add<bytes>(later, sign[t], h);
                sum[t] += later * dij;
            }
        }
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            Doubles a, b;
            std::memcpy(&a, first + lane + t * per, bytes);
            std::memcpy(&b, second + lane + t * per, bytes);
            a = sign[t] > 0.0 ? sum[t] : a;
            b = sign[t] > 0.0 ? b : sum[t];
            std::memcpy(first + lane + t * per, &a, bytes);
            std::memcpy(second + lane + t * per, &b, bytes);
        }
    }

    /// @tparam two  there are two copies in all: products with 0, 1 or 2 are exact, so that they may come last.
    template <int bytes, int T, bool two>
    TOV_KERNEL void common_row(int i, double const* d, int lane) const {
        using Doubles = typename Packed<double, bytes>::type;
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        double const* row = excess + static_cast<std::size_t>(i) * stride + lane;
        Doubles f[T], g[T], a[T], b[T];
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            Doubles u;
            std::memcpy(&u, row + t * per, bytes);
            std::memcpy(&a[t], first + lane + t * per, bytes);
            std::memcpy(&b[t], second + lane + t * per, bytes);
            f[t] = halves[i] + u;
            g[t] = halves[i] - u;
            a[t] += 0.5 * f[t] * (f[t] - 1.0) * *d;
            b[t] += 0.5 * g[t] * (g[t] - 1.0) * *d;
        }
        for (int j = i + 1; j < n; ++j) {
            row += stride;
            double const dij = *++d;
            double const h = halves[j];
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles u;
                std::memcpy(&u, row + t * per, bytes);
                if constexpr (two) {
                    add_product<bytes>(a[t], f[t], (h + u) * dij);
                    add_product<bytes>(b[t], g[t], (h - u) * dij);
                } else {
                    a[t] += f[t] * (h + u) * dij;
                    b[t] += g[t] * (h - u) * dij;
                }
            }
        }
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            std::memcpy(first + lane + t * per, &a[t], bytes);
            std::memcpy(second + lane + t * per, &b[t], bytes);
        }
    }
};

/// The same where every sum is a whole number that single precision holds, so that any order is exact; the diagonal
/// is 0.
struct WholeWithin {
    int n;
    float const* distances;
    float const* counts;
    int stride;
    int lanes;
    float* sums;

    template <int bytes>
    TOV_KERNEL void run() const {
        run_tiles<float, bytes>(*this);
    }

    template <int bytes, int T>
    TOV_KERNEL void tile(int first) const {
        using Floats = typename Packed<float, bytes>::type;
        constexpr int per = bytes / static_cast<int>(sizeof(float));
        Floats sum[T] = {};
        float const* d = distances;
        for (int i = 0; i < n; ++i) {
            float const* const row = counts + static_cast<std::size_t>(i) * stride + first;
            Floats weighted[T] = {};
            float const* g = row + stride;
            ++d;
            for (int j = i + 1; j < n; ++j, ++d, g += stride) {
                float const dij = *d;
#pragma GCC unroll 4
                for (int t = 0; t < T; ++t) {
                    Floats later;
                    std::memcpy(&later, g + t * per, bytes);
                    weighted[t] += later * dij;
                }
            }
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Floats f;
                std::memcpy(&f, row + t * per, bytes);
                sum[t] += f * weighted[t];
            }
        }
        std::memcpy(sums + first, sum, sizeof sum);
    }
};

/// Sums within the first sample, within the second, and among them: sum over i, then over all j, of f_i g_j d(i,j).
/// Haplotypes of one copy in all are summed as in DenseWithin.
struct DensePair {
    int n;
    double const* distances;  ///< n rows of n, symmetric
    char const* single;       ///< n flags: one copy in both samples
    double const* first;      ///< counts f: n rows of `stride` lanes
    double const* second;     ///< counts g
    int stride;
    int lanes;                ///< those to sum; a multiple of lane_step
    double* sums;             ///< three rows of `stride`: first, second, among

    template <int bytes>
    TOV_KERNEL void run() const {
        constexpr int T = 2;
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        for (int lane = 0; lane < lanes; lane += T * per) {
            tile<bytes, T>(lane);
        }
    }

private:
    template <class Doubles, int T>
    struct Sums {
        Doubles first[T] = {}, second[T] = {}, among[T] = {};
    };

    template <int bytes, int T>
    TOV_KERNEL void tile(int lane) const {
        using Doubles = typename Packed<double, bytes>::type;
        Sums<Doubles, T> sum;
        for (int i = 0; i < n; ++i) {
            if (single[i] != 0) {
                single_row<bytes, T>(i, lane, sum);
            } else {
                common_row<bytes, T>(i, lane, sum);
            }
        }
        std::memcpy(sums + lane, sum.first, sizeof sum.first);
        std::memcpy(sums + stride + lane, sum.second, sizeof sum.second);
        std::memcpy(sums + 2 * stride + lane, sum.among, sizeof sum.among);
    }

    template <int bytes, int T, class Doubles>
    TOV_KERNEL void common_row(int i, int lane, Sums<Doubles, T>& sum) const {
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        double const* const d = distances + static_cast<std::size_t>(i) * n;
        double const* fj = first + static_cast<std::size_t>(i) * stride + lane;
        double const* gj = second + lane;
        Doubles f[T], g[T];
        std::memcpy(f, fj, sizeof f);
        std::memcpy(g, gj + static_cast<std::size_t>(i) * stride, sizeof g);
        for (int j = 0; j < i; ++j, gj += stride) {
            double const dij = d[j];
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles other;
                std::memcpy(&other, gj + t * per, bytes);
                sum.among[t] += f[t] * other * dij;
            }
        }
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            sum.first[t] += 0.5 * f[t] * (f[t] - 1.0) * d[i];
            sum.second[t] += 0.5 * g[t] * (g[t] - 1.0) * d[i];
            sum.among[t] += f[t] * g[t] * d[i];
        }
        for (int j = i + 1; j < n; ++j) {
            fj += stride;
            gj += stride;
            double const dij = d[j];
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles same, other;
                std::memcpy(&same, fj + t * per, bytes);
                std::memcpy(&other, gj + t * per, bytes);
                sum.first[t] += f[t] * same * dij;
                sum.second[t] += g[t] * other * dij;
                sum.among[t] += f[t] * other * dij;
            }
        }
    }

    template <int bytes, int T, class Doubles>
    TOV_KERNEL void single_row(int i, int lane, Sums<Doubles, T>& sum) const {
        constexpr int per = bytes / static_cast<int>(sizeof(double));
        double const* const d = distances + static_cast<std::size_t>(i) * n;
        double const* const fi = first + static_cast<std::size_t>(i) * stride + lane;
        double const* gj = second + lane;
        Sums<Doubles, T> with = sum;
        for (int j = 0; j < i; ++j, gj += stride) {
            double const dij = d[j];
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles other;
                std::memcpy(&other, gj + t * per, bytes);
                with.among[t] += other * dij;
            }
        }
        double const* fj = fi;
        for (int j = i + 1; j < n; ++j) {
            fj += stride;
            gj += stride;
            double const dij = d[j];
#pragma GCC unroll 4
            for (int t = 0; t < T; ++t) {
                Doubles same, other;
                std::memcpy(&same, fj + t * per, bytes);
                std::memcpy(&other, gj + t * per, bytes);
                other *= dij;
                with.first[t] += same * dij;
                with.second[t] += other;
                with.among[t] += other;
            }
        }
#pragma GCC unroll 4
        for (int t = 0; t < T; ++t) {
            Doubles f;
            std::memcpy(&f, fi + t * per, bytes);
            sum.first[t] = f != 0.0 ? with.first[t] : sum.first[t];
            sum.second[t] = f == 0.0 ? with.second[t] : sum.second[t];
            sum.among[t] = f != 0.0 ? with.among[t] : sum.among[t];
        }
    }
};

/// An entry of a chain, as it stands in the row of its haplotype.
struct ChainEntry {
    int at;     ///< where it stands among the entries of all chains
    int later;  ///< entries of the chain behind it
    int chain;
};

/// The sum of DenseWithin where few of the haplotypes are present: each arrangement and population is a chain, an
/// ascending list of the haplotypes that it holds.
///
/// The triangle is walked once, row by row; all chains that hold the row's haplotype read it while it is near, several
/// at a time, so that their additions, each in its own order, do not wait for one another. Behind its last entry a
/// chain has `padding` entries of the haplotype n and count 0, so that chains of about the same length end together.
struct ListedWithin {
    static constexpr int padding = 16;

    int n;
    double const* distances;
    std::size_t const* row_start;  ///< where d(i,i) stands
    int const* row_begin;          ///< n + 1 positions in `row_entries`
    ChainEntry const* row_entries;
    int const* haplotypes;         ///< entries of all chains
    double const* counts;
    double* sums;                  ///< one a chain

    void run() const noexcept {
        for (int i = 0; i < n; ++i) {
            for (int at = row_begin[i]; at < row_begin[i + 1]; at += together) {
                int const left = row_begin[i + 1] - at;
                several(i, row_entries + at, left < together ? left : together);
            }
        }
    }

private:
    static constexpr int together = 4;
    using Two = Packed<double, 16>::type;

    /// Terms of `used` entries of row i, two of each chain at a time.
    void several(int i, ChainEntry const* entries, int used) const noexcept {
        double const* const row = distances + row_start[i] - i;
        int const* h[together];
        double const* c[together];
        double f[together], sum[together];
        int fewest = entries[0].later, most = fewest;
#pragma GCC unroll 4
        for (int t = 0; t < together; ++t) {
            ChainEntry const& e = entries[t < used ? t : 0];
            h[t] = haplotypes + e.at + 1;
            c[t] = counts + e.at + 1;
            f[t] = counts[e.at];
            sum[t] = sums[e.chain] + 0.5 * f[t] * (f[t] - 1.0) * row[i];
            fewest = e.later < fewest ? e.later : fewest;
            most = e.later > most ? e.later : most;
        }
        int const common = most < fewest + padding ? most : fewest + padding - 1;
        int k = 0;
        for (; k < common; k += 2) {
#pragma GCC unroll 4
            for (int t = 0; t < together; ++t) {
                Two later;
                std::memcpy(&later, c[t] + k, sizeof later);
                Two const terms = Two{f[t], f[t]} * later * Two{row[h[t][k]], row[h[t][k + 1]]};
                sum[t] += terms[0];
                sum[t] += terms[1];
            }
        }
        for (int t = 0; t < used; ++t) {
            for (int rest = k; rest < entries[t].later; ++rest) {
                sum[t] += f[t] * c[t][rest] * row[h[t][rest]];
            }
            sums[entries[t].chain] = sum[t];
        }
    }
};

#undef TOV_KERNEL

}  // namespace tov
