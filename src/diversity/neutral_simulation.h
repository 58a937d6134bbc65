// Replicates of a sample under neutrality and constant size, reduced to what the tests need.
#pragma once

#include "diversity/formula/nucleotide_distance.h"
#include "simulation/mutation.h"

namespace tov {

class PopGenetics;
class settings;

/// What a test takes from one replicate.
struct SimulatedSample {
    double pi = 0.0;      ///< mean number of pairwise differences
    int sites = 0;        ///< segregating sites
    int haplotypes = 0;   ///< distinct haplotypes
};

/// Simulates a sample of the same number of gene copies and usable sites, again and again, on the sample's own tree.
///
/// Pi, S and k are counted from the mutations. This gives, digit for digit, what the analysis of the simulated
/// sequences gives, as long as the sums of weights are exact; for weights that are not whole numbers the sequences are
/// analysed. The counters of TNode::hits belong to the simulation from its construction to its end.
class NeutralSimulation {
public:
    /// @param sample   borrowed; its gene copies, usable sites and tree are used.
    /// @param s        borrowed; handed on to the analysis of sequences.
    /// @param type     MUT_NUCLEOTIDES or MUT_BINARY.
    /// @param theta    the mutation rate is theta / 2 per sequence and unit of time.
    /// @param weights  of the differences between nucleotides.
    NeutralSimulation(PopGenetics& sample, settings& s, Mut_Type type, double theta, SiteWeights const& weights);
    ~NeutralSimulation();
    NeutralSimulation(NeutralSimulation const&) = delete;
    NeutralSimulation& operator=(NeutralSimulation const&) = delete;

    /// Pi and S of a new replicate. Draws: those of a tree and of its mutations.
    [[nodiscard]] SimulatedSample next_sites();
    /// Pi and k of a new replicate. Draws: the same.
    [[nodiscard]] SimulatedSample next_haplotypes();

    /// The replicate at hand once more, by analysing its sequences.
    [[nodiscard]] SimulatedSample analyse_sequences();
    [[nodiscard]] bool counts_suffice() const noexcept { return exact_; }

private:
    void simulate();
    [[nodiscard]] SimulatedSample count_sites();

    PopGenetics& sample_;
    settings& set_;
    Mut_Type type_;
    double theta_;
    SiteWeights weights_;
    bool exact_;
};

}  // namespace tov
