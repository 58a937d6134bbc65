/// Sums within populations, for one gene vector after the other or for a block of them at once.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "base/registers.h"
#include "structure/formula/pair_kernels.h"
#include "structure/formula/pair_sums.h"

namespace tov {

/// Counts of haplotypes that give back, in ascending order, those that they hold.
class PresentCounts {
public:
    PresentCounts() = default;
    /// @param n  numbers 0 .. n may be counted; n itself, a copy without a known haplotype, is never given back.
    explicit PresentCounts(int n);

    void add(int haplotype) noexcept {
        ++counts_[haplotype];
        present_[static_cast<std::size_t>(haplotype) / 64] |= std::uint64_t{1} << (haplotype % 64);
    }
    /// Calls each(haplotype, count), ascending, and forgets all.
    template <class Each>
    void drain(Each&& each);

private:
    int n_ = 0;
    std::vector<int> counts_;
    std::vector<std::uint64_t> present_;  ///< a bit a haplotype
};

/// Undivided sums within populations.
///
/// S[p] = sum over haplotypes i present, ascending, of 0.5 f_i (f_i - 1) d(i,i) + sum over later j of f_i f_j d(i,j).
/// The additions of a population come in this order on every path, so that all give the same digits; sums of whole
/// numbers that single precision holds are exact in any order. Nothing is allocated after construction.
///
/// A block holds several vectors (permutations), which are summed together in one walk over the distances, a lane of a
/// register for each population of each vector:
/// - the 0/1 distance: linear in the copies, vector by vector;
/// - few haplotypes, or populations that hold most of them: tables of counts, every haplotype of every population;
/// - else: lists of the haplotypes present, quadratic in their number, for which wider registers do nothing;
/// - distances that are not finite: vector by vector, as an absent haplotype must not meet them.
///
/// Where two populations hold all copies and most haplotypes have one copy, one table does for both populations: what
/// one lacks the other holds.
class WithinSums {
public:
    /// @param distances  borrowed.
    /// @param genes      one of the vectors: the others hold the same copies in another order.
    WithinSums(PairDistances const& distances, std::vector<GeneSlice> slices, std::span<int const> genes,
               Registers registers = best_registers());

    [[nodiscard]] int populations() const noexcept { return static_cast<int>(slices_.size()); }
    /// One vector on its own.
    ///
    /// @param genes  haplotype numbers, 0 .. size() of the distances.
    /// @param sums   receives S[p], one a population.
    void compute(std::span<int const> genes, std::span<double> sums);

    /// Vectors that a block holds at most.
    [[nodiscard]] int block() const noexcept { return block_; }
    /// Takes the next vector into the block; it may change afterwards.
    void add(std::span<int const> genes);
    /// Sums all vectors taken since the last call.
    void evaluate();
    /// S of the k-th vector of the block that was evaluated last.
    [[nodiscard]] std::span<double const> sums(int k) const noexcept {
        return std::span(sums_).subspan(static_cast<std::size_t>(k) * slices_.size(), slices_.size());
    }

private:
    enum class Path { one_by_one, whole_table, table, table_of_two, lists };

    [[nodiscard]] Path choose_path(std::span<int const> genes) const;
    [[nodiscard]] int most_present(GeneSlice const& slice) const noexcept {
        return std::min(slice.end - slice.begin, distances_->size());
    }
    [[nodiscard]] std::span<int const> copies_of(std::span<int const> genes, std::size_t p) const {
        return genes.subspan(slices_[p].begin, slices_[p].end - slices_[p].begin);
    }
    [[nodiscard]] bool most_are_single(std::span<int const> genes) const;
    void set_up_tables(std::span<int const> genes);
    void set_up_table_of_two(std::span<int const> genes);
    void set_up_lists();
    void by_equal_pairs(std::span<int const> genes, std::span<double> sums);
    void by_present_haplotypes(std::span<int const> genes, std::span<double> sums);
    template <class Count>
    void add_to_table(std::span<int const> genes, Count* table);
    void add_to_lists(std::span<int const> genes);
    void add_to_table_of_two(std::span<int const> genes);
    void evaluate_table();
    void clear_table_of_two();
    void evaluate_table_of_two();
    void evaluate_whole_table();
    void sort_chain_entries();
    void evaluate_lists();

    PairDistances const* distances_;  // borrowed
    std::vector<GeneSlice> slices_;
    Registers registers_;
    Path path_ = Path::one_by_one;
    int block_ = 1;
    int added_ = 0;
    std::vector<double> sums_;             ///< vector by population
    std::vector<int> tally_;               ///< 0/1 distance: counts of one population
    PresentCounts counts_;
    std::vector<int> present_;             ///< haplotypes of a population, ascending, and their counts
    std::vector<double> present_counts_;
    // Tables: haplotype by lane; the lane of population p in vector k is k P + p.
    int stride_ = 0;
    std::vector<char> single_;             ///< haplotypes of one copy in all
    LineVector<double> table_, table_sums_;
    std::vector<double> halves_;           ///< of the copies of each haplotype, for the table of two; its lane is k
    LineVector<float> whole_table_, whole_sums_, whole_distances_;
    // Lists: chain k P + p is population p of vector k.
    std::vector<int> by_size_;             ///< populations, the largest first
    std::vector<int> chain_begin_, chain_end_;
    std::vector<int> chain_haplotypes_;    ///< entries of all chains, padded
    std::vector<double> chain_counts_;
    std::vector<int> row_begin_, row_end_;
    std::vector<ChainEntry> row_entries_;  ///< the same entries, haplotype by haplotype
};

}  // namespace tov
