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
    /// All rows one behind the other, and where each starts; row n is a single 0. Empty for the 0/1 distance.
    [[nodiscard]] std::span<double const> upper() const noexcept { return upper_; }
    [[nodiscard]] std::span<std::size_t const> row_starts() const noexcept { return start_; }
    /// No distance is undefined, infinite or so large that its product with two counts might be.
    [[nodiscard]] bool products_are_finite() const noexcept;
    /// All distances are whole, the diagonal is 0, and a sum over pairs of `copies` gene copies stays below 2^24, so
    /// that single precision holds it exactly.
    [[nodiscard]] bool sums_are_whole(double copies) const noexcept;
    /// Any pair; the number n is at distance 0 of everything.
    [[nodiscard]] double at(int i, int j) const noexcept {
        int const first = i < j ? i : j;
        int const last = i < j ? j : i;
        if (last >= n_) {
            return 0.0;
        }
        return conventional_ ? (first == last ? 0.0 : 1.0) : row(first)[last - first];
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

/// Populations by populations, lower triangle row by row: within sums on the diagonal, among sums elsewhere.
///
/// @return  P (P + 1) / 2 values; element (p, q), q <= p, at p (p + 1) / 2 + q.
[[nodiscard]] std::vector<double> population_sums(PairDistances const& distances, std::span<GeneSlice const> slices,
                                                  std::span<int const> genes);

/// 0.5 times the sum of d(v[2k], v[2k+1]) over the pairs of a slice: the sum within individuals.
[[nodiscard]] double within_individuals(PairDistances const& distances, std::span<int const> genes) noexcept;

}  // namespace tov
