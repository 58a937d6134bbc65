/// Distances between two samples from sums over pairs of gene copies, and the permutation of a pair.
#pragma once

#include <span>
#include <vector>

#include "base/registers.h"
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

/// The sums of one pair, for one arrangement after the other or for a block of them, on the haplotypes that it holds.
///
/// The additions come in the same order on every path; only sums of whole numbers, exact in any order, leave it. A
/// block is evaluated in one walk over the distances, a lane of a register for each arrangement. Nothing is allocated
/// after construction.
class PairSums {
public:
    /// @param first, second  haplotype numbers of the two samples.
    PairSums(PairDistances const& distances, std::span<int const> first, std::span<int const> second,
             Registers registers = best_registers());

    /// Gene copies of both samples, as numbers among the pair's haplotypes: what is shuffled.
    [[nodiscard]] std::vector<int> const& genes() const noexcept { return genes_; }
    /// Sums of one arrangement of these copies, the first sample in front.
    [[nodiscard]] PairOfSums compute(std::span<int const> v);

    /// Arrangements that a block holds at most.
    [[nodiscard]] int block() const noexcept { return block_; }
    /// Takes the next arrangement into the block; it may change afterwards.
    void add(std::span<int const> v);
    /// Sums all arrangements taken since the last call.
    void evaluate();
    /// Sums of the k-th arrangement of the block that was evaluated last.
    [[nodiscard]] PairOfSums const& sums(int k) const noexcept { return sums_[k]; }

private:
    enum class Path { one_by_one, whole_table, table };

    void set_up_table();
    PairOfSums by_equal_pairs(std::span<int const> v);
    PairOfSums in_order(std::span<int const> v);
    template <class Count>
    void add_to_table(std::span<int const> v, Count* table) const;
    template <class Count>
    void fill_other_sample(Count* table) const;

    int a_ = 0;            ///< copies of the first sample
    int n_ = 0;            ///< haplotypes of the pair
    bool conventional_ = false;
    Registers registers_;
    Path path_ = Path::one_by_one;
    int block_ = 1;
    int added_ = 0;
    std::vector<PairOfSums> sums_;
    std::vector<int> genes_;
    std::vector<double> d_;          ///< n_ rows of n_ distances
    std::vector<double> f_, g_;      ///< counts of one arrangement in the two samples
    std::vector<int> tally_;
    std::vector<double> total_;      ///< copies of each haplotype in both samples
    std::vector<char> single_;       ///< haplotypes of one copy in both
    double all_pairs_ = 0.0;         ///< sum over all pairs of both samples
    // Tables: haplotype by lane; the first sample of every arrangement, then the second of every one.
    int stride_ = 0;
    LineVector<double> table_, table_sums_;
    LineVector<float> whole_table_, whole_sums_, whole_distances_;
};

/// The permutations of a pair's test, as permutation_p takes them.
///
/// @tparam Statistic  double(PairOfSums const&), called once a permutation, in their order.
template <class Statistic>
class PairPermutations {
public:
    /// @param ahead  permutations may be drawn ahead of their statistics: `statistic` draws nothing.
    PairPermutations(PairSums& sums, int a, bool individuals, bool ahead, Statistic const& statistic)
        : sums_(sums), v_(sums.genes()), a_(a), individuals_(individuals), ahead_(ahead), statistic_(statistic) {}

    [[nodiscard]] int block() const noexcept { return ahead_ ? sums_.block() : 1; }
    void draw() {
        shuffle_pair(v_, a_, individuals_);
        if (ahead_) {
            sums_.add(v_);
        } else {
            single_ = sums_.compute(v_);
        }
    }
    void evaluate() {
        if (ahead_) {
            sums_.evaluate();
        }
    }
    [[nodiscard]] double value(int k) { return statistic_(ahead_ ? sums_.sums(k) : single_); }

private:
    PairSums& sums_;
    std::vector<int> v_;
    int a_;
    bool individuals_, ahead_;
    PairOfSums single_;
    Statistic statistic_;
};

/// Coancestry distance -ln(1 - FST); 0 for a negative FST; infinite from 1 on. Source: Reynolds, Weir & Cockerham 1983.
[[nodiscard]] double coancestry_distance(double fst) noexcept;
/// FST / (1 - FST); 0 for a negative FST; infinite from 1 on. Source: Slatkin 1995.
[[nodiscard]] double linearised_fst(double fst) noexcept;
/// Migrants (1 - FST) / (2 FST); infinite for an FST of 0 or below. Source: Wright 1931, for haploid data.
[[nodiscard]] double migrants_of_fst(double fst) noexcept;

}  // namespace tov
