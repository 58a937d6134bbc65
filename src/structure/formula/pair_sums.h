/// Sums of distances over pairs of gene copies: the sums of squared deviations of an analysis of molecular variance.
#pragma once

#include <span>
#include <vector>

namespace tov {

class TriMat;

/// Distances between n haplotypes, laid out for sums over pairs: row i holds d(i,i) .. d(i,n-1). The 0/1 distance
/// (0 on the diagonal, 1 elsewhere) takes no memory. Number n is a gene copy without a known haplotype: it counts
/// nowhere.
class PairDistances {
public:
    PairDistances() = default;
    /// @param n  number of haplotypes; a conventional matrix may be smaller.
    PairDistances(TriMat const& matrix, int n);

    [[nodiscard]] int size() const noexcept { return n_; }
    [[nodiscard]] bool conventional() const noexcept { return conventional_; }
    /// d(i, i + k) at position k.
    [[nodiscard]] double const* row(int i) const noexcept { return upper_.data() + start_[i]; }
    /// Any pair; the number n is at distance 0 of everything.
    [[nodiscard]] double at(int i, int j) const noexcept {
        if (i > j) {
            int const k = i;
            i = j;
            j = k;
        }
        if (j >= n_) {
            return 0.0;
        }
        return conventional_ ? (i == j ? 0.0 : 1.0) : row(i)[j - i];
    }

private:
    int n_ = 0;
    bool conventional_ = true;
    std::vector<double> upper_;
    std::vector<std::size_t> start_;
};

/// Where a population's gene copies lie in the gene vector: [begin, end).
struct GeneSlice {
    int begin = 0;
    int end = 0;
};

/// Slices of trunc(np) copies each, one behind the other; np that are not whole read one copy more.
///
/// @param length  entries of the gene vector; no slice reaches beyond.
[[nodiscard]] std::vector<GeneSlice> gene_slices(std::span<double const> copies, int length);

/// Undivided sums within populations, for one gene vector after the other.
///
/// S[p] = sum over haplotypes i present, ascending, of 0.5 f_i (f_i - 1) d(i,i) + sum over later j of f_i f_j d(i,j).
/// The additions of a population come in this order on every path, so that all give the same digits.
/// Cost: linear in the copies for the 0/1 distance, else quadratic in the haplotypes present. No allocation.
class WithinSums {
public:
    WithinSums(PairDistances const& distances, std::vector<GeneSlice> slices);

    [[nodiscard]] int populations() const noexcept { return static_cast<int>(slices_.size()); }
    /// @param genes  haplotype numbers, 0 .. size() of the distances.
    /// @param sums   receives S[p], one a population.
    void compute(std::span<int const> genes, std::span<double> sums);

private:
    void by_equal_pairs(std::span<int const> genes, std::span<double> sums);
    void by_all_haplotypes(std::span<int const> genes, std::span<double> sums);
    void by_all_haplotypes_whole(std::span<int const> genes, std::span<double> sums);
    void by_present_haplotypes(std::span<int const> genes, std::span<double> sums);

    PairDistances const* distances_;  // borrowed
    std::vector<GeneSlice> slices_;
    bool dense_ = false;
    bool whole_ = false;           ///< dense, and all sums are whole numbers that single precision holds
    int lanes_ = 0;                ///< populations rounded up to whole tiles
    std::vector<double> counts_;   ///< dense: haplotype by population; else one population's counts
    std::vector<float> whole_counts_, whole_distances_;  ///< the same of the whole form; rows as in PairDistances
    std::vector<int> tally_;       ///< 0/1 distance: counts of one population
    std::vector<int> present_;     ///< haplotypes present, ascending
    std::vector<double> present_counts_;
};

/// Sum over pairs of one copy of each slice: sum over i of f_i g_j d(i,j), both ascending.
[[nodiscard]] double among_sum(PairDistances const& distances, std::span<int const> a, std::span<int const> b);

/// Populations by populations, lower triangle row by row: within sums on the diagonal, among sums elsewhere.
///
/// @return  P (P + 1) / 2 values; element (p, q), q <= p, at p (p + 1) / 2 + q.
[[nodiscard]] std::vector<double> population_sums(PairDistances const& distances, std::span<GeneSlice const> slices,
                                                  std::span<int const> genes);

/// 0.5 times the sum of d(v[2k], v[2k+1]) over the pairs of a slice: the sum within individuals.
[[nodiscard]] double within_individuals(PairDistances const& distances, std::span<int const> genes) noexcept;

}  // namespace tov
