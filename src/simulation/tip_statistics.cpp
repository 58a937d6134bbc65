// Segregating sites, pairwise differences and distinct tips of a mutated tree, straight from its mutations.
#include <algorithm>
#include <cstddef>

#include "simulation/genealgy.h"

namespace tov {

namespace {

/// Whether two codes differ by a transition: both purines (0, 1) or both pyrimidines (2, 3).
constexpr bool is_transition(int a, int b) noexcept { return (a >> 1) == (b >> 1); }

}  // namespace

SiteStatistics TTree::site_statistics() {
    SiteStatistics s;
    count_descendants();
    if (log_.sites_hit_again > 0) {
        count_states(s);
        return s;
    }
    long long const n = sample_size_;
    for (MutationEvent const& event : log_.events) {
        long long const d = (*this)[event.node].num_desc();
        if (d >= n) continue;
        ++s.segregating_sites;
        (is_transition(event.from, event.to) ? s.transitions : s.transversions) += d * (n - d);
    }
    return s;
}

void TTree::count_states(SiteStatistics& s) {
    std::size_t const sites = log_.root.size();
    hits_.assign(sites, 0);
    state_counts_.resize(sites);
    for (MutationEvent const& event : log_.events) {
        auto const site = static_cast<std::size_t>(event.site);
        std::array<long long, 4>& counts = state_counts_[site];
        if (hits_[site]++ == 0) {
            counts = {0, 0, 0, 0};
            counts[static_cast<std::size_t>(log_.root[site] & 3)] = sample_size_;
        }
        // all tips below the node have the state that the event changes
        int const d = (*this)[event.node].num_desc();
        counts[static_cast<std::size_t>(event.from & 3)] -= d;
        counts[static_cast<std::size_t>(event.to & 3)] += d;
    }
    for (std::size_t site = 0; site < sites; ++site) {
        if (hits_[site] == 0) continue;
        auto const& c = state_counts_[site];
        long long const transitions = c[0] * c[1] + c[2] * c[3];
        long long const transversions = (c[0] + c[1]) * (c[2] + c[3]);
        s.transitions += transitions;
        s.transversions += transversions;
        if (transitions + transversions > 0) ++s.segregating_sites;
    }
}

int TTree::distinct_tips() {
    if (nb_nodes() == 0) return 0;
    int const labels = label_tips();
    return log_.sites_hit_again > 0 ? compare_labelled_tips() : labels;
}

/// Gives every node the number of the last node with mutations on its way from the root; tips of one number are
/// identical, and without repeated hits those of different numbers differ. Lists one tip of each number.
int TTree::label_tips() {
    auto const nodes = static_cast<std::size_t>(nb_nodes());
    labels_.resize(nodes);
    hits_.assign(nodes, 0);
    representatives_.clear();
    for (std::size_t i = nodes; i > 0; --i) {  // a node's ancestor stands behind it
        TNode const& node = nodes_[i - 1];
        bool const own = node.num_mutations > 0 || !node.ancestor;
        labels_[i - 1] = own ? node.node_id : labels_[static_cast<std::size_t>(node.ancestor->node_id)];
    }
    for (int tip = 0; tip < sample_size_; ++tip) {
        int& seen = hits_[static_cast<std::size_t>(labels_[static_cast<std::size_t>(tip)])];
        if (seen++ == 0) representatives_.push_back(tip);
    }
    return static_cast<int>(representatives_.size());
}

/// Number of different sequences among the tips that label_tips() listed.
int TTree::compare_labelled_tips() {
    std::size_t const sites = log_.root.size();
    rows_.resize(representatives_.size() * sites);
    row_views_.clear();
    char* row = rows_.data();
    for (int const tip : representatives_) {
        std::fill(row, row + sites, static_cast<char>(-1));
        for (TNode const* node = &(*this)[tip]; node; node = node->ancestor) {  // the last change of a site counts
            int const first = log_.first_event[static_cast<std::size_t>(node->node_id)];
            for (int e = first + node->num_mutations; e > first; --e) {
                MutationEvent const& event = log_.events[static_cast<std::size_t>(e - 1)];
                if (row[event.site] == static_cast<char>(-1)) row[event.site] = static_cast<char>(event.to);
            }
        }
        for (std::size_t site = 0; site < sites; ++site) {
            if (row[site] == static_cast<char>(-1)) row[site] = static_cast<char>(log_.root[site]);
        }
        row_views_.emplace_back(row, sites);
        row += sites;
    }
    std::sort(row_views_.begin(), row_views_.end());
    return static_cast<int>(std::unique(row_views_.begin(), row_views_.end()) - row_views_.begin());
}

}  // namespace tov
