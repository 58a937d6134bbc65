// Simulation of one locus in samples of a structured population.
#pragma once

#include <span>
#include <vector>

#include "simulation/genealgy.h"

namespace tov {

/// An island model, flat or in groups, at equilibrium with its F-statistics.
struct IslandModel {
    bool two_levels = false;
    double Fst = 0.0;
    double Fct = 0.0;  ///< two levels only
    int demes = 0;     ///< islands, of each group with two levels
    int groups = 1;    ///< two levels only
};

/// How a locus of a simulated sample mutates.
struct LocusMutation {
    Mut_Type type = MUT_INFINITE_ALLELES;
    double theta = 0.0;          ///< 2 N mu of a deme; types 1 and 2 always get exactly one mutation
    int constrained = 0;         ///< stepwise alleles stay between the bounds of TNode
    double least_derived = 0.0;  ///< minimum share of the derived allele over all tips, types 1 and 2
};

/// Simulates locus after locus for the same samples, in one tree. Results are states of the tips: whole numbers, 0 the
/// ancestral one; tips stand in the order of the samples.
class LocusSimulator {
public:
    explicit LocusSimulator(SampledCopies sampled) : sampled_(std::move(sampled)) {}
    LocusSimulator(LocusSimulator const&) = delete;
    LocusSimulator& operator=(LocusSimulator const&) = delete;
    /// Leaves no counters of sites behind, which would be of the wrong number for the next simulation.
    ~LocusSimulator() { TNode::hits.Flush(); }

    /// One locus. Draws: the tree, then the mutations.
    /// @return false when no tree could be built (with lines on the console): no states.
    bool simulateSample(IslandModel const& model, LocusMutation const& mutation);
    /// The tree of a locus alone. @return 1 or 0.
    int build_tree(IslandModel const& model);
    /// Mutations on the tree at hand. @return their number.
    ///
    /// Draws: types 1 and 2 one for the branch, two when the first one failed; others those of TTree::add_mutations.
    int sprinkle_mutations(LocusMutation const& mutation);

    [[nodiscard]] std::span<int const> states() const noexcept { return {states_.data(), tips()}; }
    [[nodiscard]] int mutations() const noexcept { return mutations_; }
    [[nodiscard]] SampledCopies const& sampled() const noexcept { return sampled_; }
    [[nodiscard]] TTree& tree() noexcept { return tree_; }

private:
    [[nodiscard]] std::size_t tips() const noexcept { return states_.empty() ? 0 : (states_.size() + 1) / 2; }
    int place_snp(LocusMutation const& mutation);
    void mark_snp(TNode const& mutated, int new_state);
    void states_from_mutations();

    SampledCopies sampled_;
    TTree tree_;
    std::vector<int> states_;  ///< by node number
    int mutations_ = 0;
};

}  // namespace tov
