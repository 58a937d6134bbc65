// Replicates of a sample under neutrality and constant size.
#include "diversity/neutral_simulation.h"

#include <algorithm>
#include <cmath>

#include "base/scoped_swap.h"
#include "diversity/formula/mean_differences.h"
#include "diversity/popdna.h"
#include "diversity/poprflp.h"
#include "input/settings.h"
#include "simulation/genealgy.h"

namespace tov {

namespace {

/// Whether sums of this weight are exact in any order.
bool is_whole(double weight) noexcept { return weight <= 0.0 || (weight <= 1e6 && weight == std::floor(weight)); }

/// Sequences of the tree's tips as a sample of class Copy, analysed like any other.
template <class Copy>
SimulatedSample analyse(TTree& tree, settings& s, Mut_Type type, SiteWeights const& weights) {
    // the copy's sites are not those of the project
    ScopedSwap const keep_global_sites(PopGenetics::globalSubstPolymSites);
    Copy copy;
    Haplo_DB database;
    SimulatedSample result;
    if (copy.read_simulated_sample(tree, database, type) == 0) {
        return result;
    }
    copy.check_data();
    copy.evaluate_polymorphism(s);
    copy.set_distance({0, 0.0, weights});
    if (copy.compute_distance_matrix(nullptr, &s, 0) != 0) {
        copy.compute_molecular_diversity(s);
        result.pi = copy.pi();
    }
    result.sites = copy.segregating_sites();
    result.haplotypes = copy.nb_haplotypes();
    return result;
}

}  // namespace

NeutralSimulation::NeutralSimulation(PopGenetics& sample, settings& s, Mut_Type type, double theta,
                                     SiteWeights const& weights)
    : sample_(sample),
      set_(s),
      type_(type),
      theta_(theta),
      weights_(weights),
      exact_(type == MUT_BINARY || (is_whole(weights.transition) && is_whole(weights.transversion))) {
    TNode::hits.Flush();
    sample_.getGeneTree().allocate_tree(static_cast<int>(sample_.nb_genes()));
}

NeutralSimulation::~NeutralSimulation() { TNode::hits.Flush(); }

void NeutralSimulation::simulate() {
    sample_.simulate_sample(theta_ / 2.0, sample_.nb_usable_loci(), type_, 0.0, 1.0, 1.0, 0.33);
}

SimulatedSample NeutralSimulation::count_sites() {
    SiteStatistics const s = sample_.getGeneTree().site_statistics();
    double const ts = static_cast<double>(s.transitions);
    double const tv = static_cast<double>(s.transversions);
    double const sum = type_ == MUT_BINARY
                           ? ts + tv
                           : ts * std::max(0.0, weights_.transition) + tv * std::max(0.0, weights_.transversion);
    SimulatedSample result;
    result.pi = mean_pairwise_differences(sum, sample_.getGeneTree().sample_size(), VarianceRoot::guarded).mean;
    result.sites = s.segregating_sites;
    return result;
}

SimulatedSample NeutralSimulation::next_sites() {
    simulate();
    return exact_ ? count_sites() : analyse_sequences();
}

SimulatedSample NeutralSimulation::next_haplotypes() {
    simulate();
    if (!exact_) {
        return analyse_sequences();
    }
    SimulatedSample result = count_sites();
    result.haplotypes = sample_.getGeneTree().distinct_tips();
    return result;
}

SimulatedSample NeutralSimulation::analyse_sequences() {
    TTree& tree = sample_.getGeneTree();
    return type_ == MUT_BINARY ? analyse<PopulRFLP>(tree, set_, type_, weights_)
                               : analyse<PopulDNA>(tree, set_, type_, weights_);
}

}  // namespace tov
