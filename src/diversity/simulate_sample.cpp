// Coalescent simulation of a sample: tree, mutations, and the haplotypes that the tips show.
#include <algorithm>
#include <string>

#include "diversity/popgen.h"
#include "run/errors.h"
#include "simulation/genealgy.h"

namespace tov {

namespace {

/// Sequence of a tip: one character a site, or whole numbers with the separator between them.
std::string sequence_text(myVectInt const& states, Mut_Type type, char separator) {
    std::string text(static_cast<std::size_t>(states.size()), 'x');
    if (has_state_characters(type)) {
        for (int site = 0; site < states.size(); ++site) {
            text[static_cast<std::size_t>(site)] = state_character(type, states[site]);
        }
        return text;
    }
    text.clear();
    for (int site = 0; site < states.size(); ++site) {
        if (site > 0) {
            text += separator;
        }
        text += std::to_string(states[site]);
    }
    return text;
}

}  // namespace

int PopGenetics::fast_build_tree() {
    TTree& tree = getGeneTree();
    TNode::reset_node_count();
    tree.set_sample_size(static_cast<int>(nb_genes()));
    tree.build_tree();
    return 1;
}

int PopGenetics::build_tree_fast_one_pop(double t, double factor, int const& scale) {
    fast_build_tree();
    getGeneTree().bottleneck(t, factor);
    getGeneTree().scale_to_num_generations(scale);
    return 1;
}

int PopGenetics::build_tree_fast_range_exp(double tau, double m, int const& scale) {
    TTree& tree = getGeneTree();
    TNode::reset_node_count();
    tree.set_sample_size(static_cast<int>(nb_genes()));
    tree.build_tree_range_exp(tau, m);
    tree.scale_to_num_generations(scale);
    return 1;
}

int PopGenetics::sprinkle_mutations(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                                    double const& first_rate, double const& first_fraction,
                                    double const& transition_share) {
    TTree& tree = getGeneTree();
    if (!TTree::prepare_hits(sites)) {
        E.error(ErrorType::Warning, "PopGenetics::sprinkle_mutations()", 177);
        tree.clear_mutations();
        return 0;
    }
    return tree.add_mutations({.mu = mu,
                               .sites = sites,
                               .type = type,
                               .gamma_a = gamma_a,
                               .first_rate = first_rate,
                               .first_fraction = first_fraction,
                               .transition_share = transition_share});
}

int PopGenetics::simulate_sample(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                                 double const& first_rate, double const& first_fraction,
                                 double const& transition_share) {
    fast_build_tree();
    sprinkle_mutations(mu, sites, type, gamma_a, first_rate, first_fraction, transition_share);
    return 1;
}

int PopGenetics::simulate_sample_exp(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                                     double const& first_rate, double const& first_fraction,
                                     double const& transition_share, double t, double factor, int const& scale) {
    build_tree_fast_one_pop(t, factor, scale);
    sprinkle_mutations(mu, sites, type, gamma_a, first_rate, first_fraction, transition_share);
    return 1;
}

int PopGenetics::simulate_range_exp(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                                    double const& first_rate, double const& first_fraction,
                                    double const& transition_share, double tau, double m, int const& scale) {
    build_tree_fast_range_exp(tau, m, scale);
    sprinkle_mutations(mu, sites, type, gamma_a, first_rate, first_fraction, transition_share);
    return 1;
}

int PopGenetics::read_simulated_sample(TTree& tree, Haplo_DB& database, Mut_Type const& type) {
    tree.write_sequences();
    if (tree.sample_size() < 1 || !tree[0].sequence || tree[0].sequence->size() == 0) {
        return 1;
    }
    tree.compute_hapl_freq();
    set_sample_size(tree.sample_size());
    int copies = 0;
    for (int i = 0; i < tree.sample_size(); ++i) {
        TNode const& tip = tree[i];
        if (tip.is_unique == 0) {
            continue;
        }
        std::string const text = sequence_text(*tip.sequence, type, profile.LocusSeparator);
        auto* const definition = new HaploDef(my_string(std::to_string(i + 1)), my_string(text));
        database.Add(definition);  // owns it from here on
        definition->copies = tip.frequency;
        haplotypes.Add(new PHaploDef(definition, tip.frequency));
        copies += tip.frequency;
    }
    if (copies != tree.sample_size()) {
        E.error(ErrorType::Error, "PopGenetics::read_simulated sample()", 147);
        return 0;
    }
    return 1;
}

}  // namespace tov
