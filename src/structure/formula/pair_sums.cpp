// Sums of distances over pairs of gene copies.
#include "structure/formula/pair_sums.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <utility>

#include "base/trimat.h"

namespace tov {

namespace {

constexpr int tile = 4;  // populations summed side by side are a multiple of this

/// Vectors of the compiler: element-wise arithmetic, so that each population's additions keep their order.
using Doubles = double __attribute__((vector_size(16)));
using Floats = float __attribute__((vector_size(16)));

template <class Vector, class Value>
Vector load(Value const* from) {
    Vector v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

/// Sums of 2 N populations of a dense table, in the order of the haplotypes.
template <int N>
void sum_tile(PairDistances const& distances, double const* counts, int lanes, double* sums) {
    int const n = distances.size();
    Doubles sum[N] = {};
    for (int i = 0; i < n; ++i) {
        double const* const d = distances.row(i);
        double const* const row = counts + static_cast<std::size_t>(i) * lanes;
        Doubles f[N];
        for (int t = 0; t < N; ++t) {
            f[t] = load<Doubles>(row + 2 * t);
            sum[t] += 0.5 * f[t] * (f[t] - 1.0) * d[0];
        }
        double const* g = row + lanes;
        for (int j = i + 1; j < n; ++j, g += lanes) {
            double const dij = d[j - i];
            for (int t = 0; t < N; ++t) {
                sum[t] += f[t] * load<Doubles>(g + 2 * t) * dij;
            }
        }
    }
    std::memcpy(sums, sum, sizeof sum);
}

/// The same of 4 N populations where every sum is a whole number that a float holds, so that any order is exact.
template <int N>
void sum_tile_whole(int n, float const* d, float const* counts, int lanes, float* sums) {
    Floats sum[N] = {};
    for (int i = 0; i < n; ++i) {
        float const* const row = counts + static_cast<std::size_t>(i) * lanes;
        Floats weighted[N] = {};
        float const* g = row + lanes;
        ++d;  // the diagonal, 0
        for (int j = i + 1; j < n; ++j, ++d, g += lanes) {
            for (int t = 0; t < N; ++t) {
                weighted[t] += load<Floats>(g + 4 * t) * *d;
            }
        }
        for (int t = 0; t < N; ++t) {
            sum[t] += load<Floats>(row + 4 * t) * weighted[t];
        }
    }
    std::memcpy(sums, sum, sizeof sum);
}

/// All distances are whole, the diagonal is 0, and a sum over `copies` gene copies stays below 2^24.
bool sums_fit_floats(PairDistances const& d, double copies) {
    double largest = 0.0;
    for (int i = 0; i < d.size(); ++i) {
        double const* const row = d.row(i);
        if (row[0] != 0.0) {
            return false;
        }
        for (int k = 1; k < d.size() - i; ++k) {
            if (row[k] != std::floor(row[k]) || row[k] < 0.0) {
                return false;
            }
            largest = std::max(largest, row[k]);
        }
    }
    return largest * copies * copies < 16777216.0;
}

/// Haplotypes of a slice with their counts, ascending.
struct Counted {
    std::vector<int> haplotype;
    std::vector<double> count;
};

Counted count_copies(std::span<int const> genes, int n) {
    std::vector<int> sorted(genes.begin(), genes.end());
    std::sort(sorted.begin(), sorted.end());
    Counted result;
    for (int const h : sorted) {
        if (h >= n) {
            break;
        }
        if (result.haplotype.empty() || result.haplotype.back() != h) {
            result.haplotype.push_back(h);
            result.count.push_back(0.0);
        }
        result.count.back() += 1.0;
    }
    return result;
}

double within_counted(PairDistances const& d, Counted const& c) {
    double sum = 0.0;
    for (std::size_t i = 0; i < c.haplotype.size(); ++i) {
        double const f = c.count[i];
        sum += 0.5 * f * (f - 1.0) * d.at(c.haplotype[i], c.haplotype[i]);
        for (std::size_t j = i + 1; j < c.haplotype.size(); ++j) {
            sum += f * c.count[j] * d.at(c.haplotype[i], c.haplotype[j]);
        }
    }
    return sum;
}

double among_counted(PairDistances const& d, Counted const& a, Counted const& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.haplotype.size(); ++i) {
        for (std::size_t j = 0; j < b.haplotype.size(); ++j) {
            sum += a.count[i] * b.count[j] * d.at(a.haplotype[i], b.haplotype[j]);
        }
    }
    return sum;
}

}  // namespace

PairDistances::PairDistances(TriMat const& matrix, int n) : n_(n), conventional_(matrix.conventional_fst() != 0) {
    if (conventional_) {
        return;
    }
    start_.resize(static_cast<std::size_t>(n) + 1);
    std::size_t at = 0;
    for (int i = 0; i < n; ++i) {
        start_[i] = at;
        at += static_cast<std::size_t>(n - i);
    }
    start_[n] = at;
    upper_.resize(at);
    int const known = std::min(n, matrix.dimension());
    for (int j = 0; j < known; ++j) {
        auto const lower = matrix.row(j);
        for (int i = 0; i <= j; ++i) {
            upper_[start_[i] + (j - i)] = lower[i];
        }
    }
}

std::vector<GeneSlice> gene_slices(std::span<double const> copies, int length) {
    std::vector<GeneSlice> slices;
    int begin = 0;
    for (double const np : copies) {
        int const end = begin + static_cast<int>(std::ceil(np));
        slices.push_back({std::min(begin, length), std::min(end, length)});
        begin += static_cast<int>(np);
    }
    return slices;
}

WithinSums::WithinSums(PairDistances const& distances, std::vector<GeneSlice> slices)
    : distances_(&distances), slices_(std::move(slices)) {
    int const n = distances.size();
    if (distances.conventional()) {
        tally_.assign(static_cast<std::size_t>(n) + 1, 0);
        return;
    }
    lanes_ = (populations() + tile - 1) / tile * tile;
    double sparse = 0.0;
    std::size_t most = 0;
    for (GeneSlice const& slice : slices_) {
        double const copies = slice.end - slice.begin;
        sparse += 6.0 * copies + 1.2 * std::min(copies, static_cast<double>(n)) * std::min(copies, static_cast<double>(n));
        most = std::max(most, static_cast<std::size_t>(copies));
    }
    double const dense = 0.3 * n * (n + 1.0) * lanes_;
    dense_ = dense < sparse;
    whole_ = dense_ && sums_fit_floats(distances, static_cast<double>(most));
    if (whole_) {
        whole_counts_.assign(static_cast<std::size_t>(n + 1) * lanes_, 0.0F);
        for (int i = 0; i < n; ++i) {
            for (int k = 0; k < n - i; ++k) {
                whole_distances_.push_back(static_cast<float>(distances.row(i)[k]));
            }
        }
    } else {
        counts_.assign(dense_ ? static_cast<std::size_t>(n + 1) * lanes_ : static_cast<std::size_t>(n) + 1, 0.0);
    }
    present_.reserve(most);
    present_counts_.reserve(most);
}

void WithinSums::compute(std::span<int const> genes, std::span<double> sums) {
    if (distances_->conventional()) {
        by_equal_pairs(genes, sums);
    } else if (whole_) {
        by_all_haplotypes_whole(genes, sums);
    } else if (dense_) {
        by_all_haplotypes(genes, sums);
    } else {
        by_present_haplotypes(genes, sums);
    }
}

/// The 0/1 distance: all pairs less the pairs of equal copies, in whole numbers.
void WithinSums::by_equal_pairs(std::span<int const> genes, std::span<double> sums) {
    int const unknown = distances_->size();
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        auto const slice = genes.subspan(slices_[p].begin, slices_[p].end - slices_[p].begin);
        std::int64_t equal = 0;
        for (int const h : slice) {
            equal += tally_[h]++;
        }
        std::int64_t const lost = tally_[unknown];
        std::int64_t const n = static_cast<std::int64_t>(slice.size()) - lost;
        equal -= lost * (lost - 1) / 2;
        for (int const h : slice) {
            tally_[h] = 0;
        }
        sums[p] = static_cast<double>(n * (n - 1) / 2 - equal);
    }
}

/// Few haplotypes: every haplotype of every population, several populations side by side.
void WithinSums::by_all_haplotypes(std::span<int const> genes, std::span<double> sums) {
    std::fill(counts_.begin(), counts_.end(), 0.0);
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        for (int k = slices_[p].begin; k < slices_[p].end; ++k) {
            counts_[static_cast<std::size_t>(genes[k]) * lanes_ + p] += 1.0;
        }
    }
    double sum[2 * tile];
    for (int first = 0; first < lanes_;) {
        bool const two = first + 2 * tile <= lanes_;
        double const* const counts = counts_.data() + first;
        if (two) {
            sum_tile<tile>(*distances_, counts, lanes_, sum);
        } else {
            sum_tile<tile / 2>(*distances_, counts, lanes_, sum);
        }
        for (int t = 0; t < (two ? 2 : 1) * tile && first + t < populations(); ++t) {
            sums[first + t] = sum[t];
        }
        first += (two ? 2 : 1) * tile;
    }
}

/// Few haplotypes at whole distances.
void WithinSums::by_all_haplotypes_whole(std::span<int const> genes, std::span<double> sums) {
    std::fill(whole_counts_.begin(), whole_counts_.end(), 0.0F);
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        for (int k = slices_[p].begin; k < slices_[p].end; ++k) {
            whole_counts_[static_cast<std::size_t>(genes[k]) * lanes_ + p] += 1.0F;
        }
    }
    float sum[2 * tile];
    for (int first = 0; first < lanes_;) {
        bool const two = first + 2 * tile <= lanes_;
        float const* const counts = whole_counts_.data() + first;
        if (two) {
            sum_tile_whole<2>(distances_->size(), whole_distances_.data(), counts, lanes_, sum);
        } else {
            sum_tile_whole<1>(distances_->size(), whole_distances_.data(), counts, lanes_, sum);
        }
        for (int t = 0; t < (two ? 2 : 1) * tile && first + t < populations(); ++t) {
            sums[first + t] = sum[t];
        }
        first += (two ? 2 : 1) * tile;
    }
}

/// Many haplotypes: those present in each population.
void WithinSums::by_present_haplotypes(std::span<int const> genes, std::span<double> sums) {
    int const n = distances_->size();
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        present_.clear();
        present_counts_.clear();
        for (int k = slices_[p].begin; k < slices_[p].end; ++k) {
            int const h = genes[k];
            if (h < n) {
                if (counts_[h] == 0.0) {
                    present_.push_back(h);
                }
                counts_[h] += 1.0;
            }
        }
        std::sort(present_.begin(), present_.end());
        for (int const h : present_) {
            present_counts_.push_back(counts_[h]);
            counts_[h] = 0.0;
        }
        double sum = 0.0;
        std::size_t const many = present_.size();
        for (std::size_t i = 0; i < many; ++i) {
            double const f = present_counts_[i];
            double const* const d = distances_->row(present_[i]) - present_[i];
            sum += 0.5 * f * (f - 1.0) * d[present_[i]];
            for (std::size_t j = i + 1; j < many; ++j) {
                sum += f * present_counts_[j] * d[present_[j]];
            }
        }
        sums[p] = sum;
    }
}

double among_sum(PairDistances const& distances, std::span<int const> a, std::span<int const> b) {
    return among_counted(distances, count_copies(a, distances.size()), count_copies(b, distances.size()));
}

namespace {

/// Sums of two rows of counts, ascending haplotypes; zero counts add nothing.
double dense_among(PairDistances const& d, double const* f, double const* g, int n) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        if (f[i] == 0.0) {
            continue;
        }
        for (int j = 0; j < n; ++j) {
            sum += f[i] * g[j] * d.at(i, j);
        }
    }
    return sum;
}

double dense_within(PairDistances const& d, double const* f, int n) {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        if (f[i] == 0.0) {
            continue;
        }
        sum += 0.5 * f[i] * (f[i] - 1.0) * d.at(i, i);
        for (int j = i + 1; j < n; ++j) {
            sum += f[i] * f[j] * d.at(i, j);
        }
    }
    return sum;
}

/// Pairs of different haplotypes of two rows of counts, for the 0/1 distance: whole numbers, in any order. Element n + 1
/// of a row is the sum of the n counts.
double different_pairs(double const* f, double const* g, int n) {
    double equal = 0.0;
    for (int i = 0; i < n; ++i) {
        equal += f[i] * g[i];
    }
    return f[n + 1] * g[n + 1] - equal;
}

/// As population_sums, for few haplotypes: all counts in one table.
std::vector<double> dense_population_sums(PairDistances const& d, std::span<GeneSlice const> slices,
                                          std::span<int const> genes) {
    int const n = d.size();
    // A row holds n counts, the copies without a known haplotype, and the sum of the n.
    std::size_t const width = static_cast<std::size_t>(n) + 2;
    std::vector<double> counts(slices.size() * width, 0.0);
    auto const row = [&](std::size_t p) { return counts.data() + p * width; };
    for (std::size_t p = 0; p < slices.size(); ++p) {
        for (int k = slices[p].begin; k < slices[p].end; ++k) {
            row(p)[genes[k]] += 1.0;
        }
        row(p)[n + 1] = std::accumulate(row(p), row(p) + n, 0.0);
    }
    std::vector<double> sums;
    sums.reserve(slices.size() * (slices.size() + 1) / 2);
    for (std::size_t p = 0; p < slices.size(); ++p) {
        for (std::size_t q = 0; q < p; ++q) {
            sums.push_back(d.conventional() ? different_pairs(row(p), row(q), n)
                                            : dense_among(d, row(p), row(q), n));
        }
        sums.push_back(d.conventional() ? 0.5 * different_pairs(row(p), row(p), n) : dense_within(d, row(p), n));
    }
    return sums;
}

}  // namespace

std::vector<double> population_sums(PairDistances const& distances, std::span<GeneSlice const> slices,
                                    std::span<int const> genes) {
    if (distances.size() <= 16) {
        return dense_population_sums(distances, slices, genes);
    }
    std::vector<Counted> counted;
    for (GeneSlice const& slice : slices) {
        counted.push_back(count_copies(genes.subspan(slice.begin, slice.end - slice.begin), distances.size()));
    }
    std::vector<double> sums;
    for (std::size_t p = 0; p < slices.size(); ++p) {
        for (std::size_t q = 0; q < p; ++q) {
            sums.push_back(among_counted(distances, counted[p], counted[q]));
        }
        sums.push_back(within_counted(distances, counted[p]));
    }
    return sums;
}

double within_individuals(PairDistances const& distances, std::span<int const> genes) noexcept {
    double sum = 0.0;
    for (std::size_t k = 0; k + 1 < genes.size(); k += 2) {
        sum += distances.at(genes[k], genes[k + 1]);
    }
    return 0.5 * sum;
}

}  // namespace tov
