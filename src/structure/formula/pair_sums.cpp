// Sums of distances over pairs of gene copies.
#include "structure/formula/pair_sums.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "base/trimat.h"

namespace tov {

namespace {

/// Haplotypes of a slice with their counts, ascending.
struct ExistingHaplotypes {
    std::vector<int> haplotype;
    std::vector<double> count;
};

ExistingHaplotypes SetUpVectorOfExistingHaplotypes(std::span<int const> genes, int n) {
    std::vector<int> sorted(genes.begin(), genes.end());
    std::sort(sorted.begin(), sorted.end());
    ExistingHaplotypes result;
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

/// Sum over haplotypes i of 0.5 f_i (f_i - 1) d(i,i) + sum over later j of f_i f_j d(i,j).
double ComputeSSDWP(PairDistances const& d, ExistingHaplotypes const& c) {
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

/// Sum over haplotypes i of one population and j of the other of f_i g_j d(i,j).
double ComputeSSDAP(PairDistances const& d, ExistingHaplotypes const& a, ExistingHaplotypes const& b) {
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
    upper_.resize(at + 1);
    int const known = std::min(n, matrix.dimension());
    for (int j = 0; j < known; ++j) {
        auto const lower = matrix.row(j);
        for (int i = 0; i <= j; ++i) {
            upper_[start_[i] + (j - i)] = lower[i];
        }
    }
}

bool PairDistances::products_are_finite() const noexcept {
    return std::all_of(upper_.begin(), upper_.end(), [](double d) { return std::abs(d) < 1e280; });
}

bool PairDistances::sums_are_whole(double copies) const noexcept {
    double largest = 0.0;
    for (double const d : upper_) {
        if (d < 0.0 || d != std::floor(d)) {
            return false;
        }
        largest = std::max(largest, d);
    }
    for (int i = 0; i < n_ && !conventional_; ++i) {
        if (row(i)[0] != 0.0) {
            return false;
        }
    }
    return largest * copies * copies < 16777216.0;
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

/// Pairs of different haplotypes of two rows of counts, for the 0/1 distance: whole numbers, in any order. Element
/// n + 1 of a row is the sum of the n counts.
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
    std::vector<ExistingHaplotypes> counted;
    for (GeneSlice const& slice : slices) {
        auto const copies = genes.subspan(slice.begin, slice.end - slice.begin);
        counted.push_back(SetUpVectorOfExistingHaplotypes(copies, distances.size()));
    }
    std::vector<double> sums;
    for (std::size_t p = 0; p < slices.size(); ++p) {
        for (std::size_t q = 0; q < p; ++q) {
            sums.push_back(ComputeSSDAP(distances, counted[p], counted[q]));
        }
        sums.push_back(ComputeSSDWP(distances, counted[p]));
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
