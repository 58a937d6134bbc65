// Random allele configurations under Ewens' sampling formula, and the two statistics that are tested on them.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tov {

class BnumMat;

/// Number of copies of one allele drawn at random among n copies of k alleles, 2 <= k <= n. Draws: 1.
[[nodiscard]] int random_allele_count(BnumMat const& B, int n, int k);

/// Configurations of k alleles among n gene copies, given k (Ewens 1972; sampled as by Stewart 1977).
///
/// Holds its part of the table B(n, k) column by column, and a work vector, so that a configuration allocates nothing.
class EwensSampler {
public:
    /// @param B  table that reaches n and k; it is read here alone.
    /// 2 <= k < n.
    EwensSampler(BnumMat const& B, int n, int k);

    [[nodiscard]] int copies() const noexcept { return n_; }
    [[nodiscard]] int alleles() const noexcept { return k_; }

    /// A random configuration: k counts, in the order drawn. Valid until the next call. Draws: k - 1.
    std::span<int const> draw() noexcept;
    /// The same with the counts ascending.
    std::span<int const> draw_sorted() noexcept;

    /// Homozygosity F: sum of squared relative frequencies, in the order given.
    ///
    /// @param counts  each 0 .. n. Ascending order makes equal configurations give equal digits.
    [[nodiscard]] double homozygosity(std::span<int const> counts) const noexcept;
    /// Statistic of the exact test: minus the sum of a_i ln i, a_i the number of alleles with i copies.
    ///
    /// kept on purpose: the terms ln a_i! of the probability of a configuration are left out.
    /// @param counts  ascending, each 0 .. n. Source: Slatkin 1994, 1996.
    [[nodiscard]] double exact_statistic(std::span<int const> counts) const noexcept;

private:
    int n_;
    int k_;
    std::vector<double> columns_;  ///< k columns of n + 1 entries: B(g, a) at (a - 1) (n + 1) + g
    std::vector<double> squares_;  ///< by count: squared relative frequency
    std::vector<double> logs_;     ///< by count: its logarithm
    std::vector<int> counts_;
};

}  // namespace tov
