/// Distances between two samples from sums over pairs of gene copies, and the permutation of a pair.
#pragma once

#include <span>
#include <vector>

#include "structure/formula/pair_sums.h"

namespace tov {

/// Undivided sums of a pair of samples: within the first, within the second, among them.
struct PairOfSums {
    double first = 0.0;
    double second = 0.0;
    double among = 0.0;
};

/// Everything that two samples' sums give.
struct PairStatistics {
    double n = 0.0;            ///< coefficient of the among-sample component; 0: the rest is not set
    double c = 0.0;            ///< 1 / (N - 2), or 100000 for N <= 2
    double W = 0.0;            ///< sum of the two within terms
    double ssd_among = 0.0;
    double Va = 0.0;           ///< among-sample component
    double FST = 0.0;
    double PiX = 0.0, PiY = 0.0;  ///< mean differences within each sample
    double PiXY = 0.0;         ///< mean differences between them
    double corrected = 0.0;    ///< PiXY - (PiX + PiY) / 2
};

/// FST and mean differences of a pair of samples of a and b gene copies.
///
/// kept on purpose: without a positive total variance FST is 100000 Va, so a pair without any variance has 0 and a
/// negative total gives a large negative number.
/// Source: Weir & Cockerham 1984; Nei & Li 1979 for the mean differences.
[[nodiscard]] PairStatistics pair_statistics(double a, double b, PairOfSums const& sums) noexcept;

/// Shuffles the gene copies of a pair between its samples: for i from N - 1 down while above a: j = trunc(i r).
///
/// kept on purpose: position a is never drawn as i. With `individuals` whole pairs of copies are exchanged.
/// @param v  N entries, the first sample's trunc(a) copies in front.
/// Draws: N - 1 - a, or half of that with individuals.
void shuffle_pair(std::span<int> v, int a, bool individuals) noexcept;

/// The sums of one pair for one arrangement after the other, on the haplotypes that the pair holds.
class PairSums {
public:
    /// @param first, second  haplotype numbers of the two samples.
    PairSums(PairDistances const& distances, std::span<int const> first, std::span<int const> second);

    /// Gene copies of both samples, as numbers among the pair's haplotypes: what is shuffled.
    [[nodiscard]] std::vector<int> const& genes() const noexcept { return genes_; }
    /// Sums with the first `a` entries of v as the first sample. No allocation.
    [[nodiscard]] PairOfSums compute(std::span<int const> v, int a);

private:
    PairOfSums by_equal_pairs(std::span<int const> v, int a);
    PairOfSums in_whole_numbers();
    PairOfSums in_order();

    bool conventional_ = false;
    bool whole_ = false;  ///< all distances are whole numbers: every order of additions gives the same sum
    int n_ = 0;           ///< haplotypes of the pair
    int stride_ = 0;      ///< n_ rounded up to whole vectors
    std::vector<int> genes_;
    std::vector<double> d_;         ///< n_ rows of stride_ distances
    std::vector<double> f_, g_;     ///< counts in the two samples
    std::vector<int> tally_;
    double all_pairs_ = 0.0;        ///< sum over all pairs of both samples
};

/// Coancestry distance -ln(1 - FST); 0 for a negative FST; infinite from 1 on. Source: Reynolds, Weir & Cockerham 1983.
[[nodiscard]] double coancestry_distance(double fst) noexcept;
/// FST / (1 - FST); 0 for a negative FST; infinite from 1 on. Source: Slatkin 1995.
[[nodiscard]] double linearised_fst(double fst) noexcept;
/// Migrants (1 - FST) / (2 FST); infinite for an FST of 0 or below. Source: Wright 1931, for haploid data.
[[nodiscard]] double migrants_of_fst(double fst) noexcept;

}  // namespace tov
