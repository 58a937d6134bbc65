// Mutations on the branches of a tree, and the states and counts that follow from them.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <ostream>
#include <string_view>
#include <unordered_map>

#include "base/random.h"
#include "output/style.h"
#include "simulation/genealgy.h"

namespace tov {

namespace {

/// State after steps, kept within int.
int stepped(int state, long long steps) noexcept {
    long long const x = state + steps;
    return static_cast<int>(std::clamp<long long>(x, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

/// Random nucleotides. Draws: one each.
void draw_nucleotides(std::vector<int>& states) {
    if (states.empty()) return;
    states[0] = static_cast<int>(4.0 * uniform());  // seeds a generator that isn't yet
    std::array<double, 96> draws;
    for (std::size_t done = 1; done < states.size();) {
        std::size_t const n = std::min(draws.size(), states.size() - done);
        random_state.ran3.draw(std::span(draws.data(), n));
        for (std::size_t i = 0; i < n; ++i) states[done + i] = static_cast<int>(4.0 * draws[i]);
        done += n;
    }
}

/// The walk over a subtree in pre-order. One row of states is carried along: a node's changes are made on entry and
/// unmade when its subtree is done, so that a node costs its mutations and not its sites.
class MutationWalk {
public:
    MutationWalk(MutationModel const& model, long* idum, MutationLog& log)
        : model_(model), idum_(idum), log_(log), gamma_(!(std::fabs(model.gamma_a) < 1e-7)), row_(log.row) {}

    /// @param top      first node; its branch gets `num_mut` mutations.
    /// @param nodes    node numbers below this one occur.
    /// @return         mutations placed.
    int run(TNode& top, int num_mut, int nodes) {
        start_row(top);
        log_.first_event.assign(static_cast<std::size_t>(nodes), 0);
        enter(top, num_mut);
        TNode* node = &top;
        TNode const* from = nullptr;  // the child whose subtree was done last
        while (true) {
            TNode* next = nullptr;
            if (!from && node->left) {
                next = node->left;
            } else if (node->right && from != node->right) {
                next = node->right;
            }
            if (next) {
                enter(*next, poidev(static_cast<float>((node->time - next->time) * model_.mu), idum_));
                node = next;
                from = nullptr;
                continue;
            }
            leave(*node);
            if (node == &top) break;
            from = node;
            node = node->ancestor;
        }
        return static_cast<int>(log_.events.size());
    }

private:
    void start_row(TNode const& top) {
        auto const sites = static_cast<std::size_t>(std::max(0, model_.sites));
        log_.events.clear();
        log_.sites_hit_again = 0;
        log_.root.resize(sites);
        if (top.ancestor && top.ancestor->sequence) {
            myVectInt const& start = *top.ancestor->sequence;
            for (std::size_t i = 0; i < sites; ++i) {
                log_.root[i] = static_cast<int>(i) < start.size() ? start[static_cast<int>(i)] : 0;
            }
        } else if (model_.type == MUT_NUCLEOTIDES) {
            draw_nucleotides(log_.root);
        } else {
            std::fill(log_.root.begin(), log_.root.end(), 0);
        }
        row_ = log_.root;
    }

    void enter(TNode& node, int num_mut) {
        node.num_sites = model_.sites;
        node.num_mutations = model_.sites > 0 ? num_mut : 0;
        log_.first_event[static_cast<std::size_t>(node.node_id)] = static_cast<int>(log_.events.size());
        for (int i = 0; i < node.num_mutations; ++i) mutate(node);
    }

    void mutate(TNode const& node) {
        int const site = choose_site();
        long const hit = ++TNode::hits[site];
        if (hit > 1) ++log_.sites_hit_again;
        int& state = row_[static_cast<std::size_t>(site)];
        int const from = state;
        state = next_state(from, hit);
        log_.events.push_back({node.node_id, site, from, state});
        ++TNode::_tot_mut;
    }

    void leave(TNode const& node) {
        auto const first = static_cast<std::size_t>(log_.first_event[static_cast<std::size_t>(node.node_id)]);
        for (std::size_t i = first + static_cast<std::size_t>(node.num_mutations); i > first; --i) {
            row_[static_cast<std::size_t>(log_.events[i - 1].site)] = log_.events[i - 1].from;
        }
    }

    [[nodiscard]] int choose_site() const noexcept {
        if (gamma_) {
            double const u = uniform();
            int const site = model_.allele_steps ? TNode::mut_rates.site_from_above(u)
                                                 : TNode::mut_rates.site_from_below(u);
            return std::clamp(site, 0, model_.sites - 1);
        }
        if (!model_.allele_steps && TNode::_tot_mut < model_.sites) return TNode::_tot_mut;
        return static_cast<int>(model_.sites * uniform());
    }

    [[nodiscard]] int next_state(int state, long hit) const noexcept {
        switch (model_.type) {
            case MUT_STEPWISE: return model_.allele_steps ? next_allele(state) : state + (uniform() < 0.5 ? -1 : 1);
            case MUT_BINARY: return state == 0 ? 1 : 0;
            case MUT_NUCLEOTIDES:
                if (uniform() < model_.transition_share) return state ^ 1;
                if (uniform() < 0.5) return state < 2 ? 2 : 0;
                return state < 2 ? 3 : 1;
            case MUT_INFINITE_ALLELES: return static_cast<int>(hit);
        }
        return state;
    }

    /// One step of a microsatellite allele.
    /// kept on purpose: u < 0.5 is up for free geometric steps and down in all other cases.
    [[nodiscard]] int next_allele(int state) const noexcept {
        bool const geometric_steps = model_.geometric_p > 0.0;
        long long const step = geometric_steps ? geometric(model_.geometric_p) + 1LL : 1LL;
        if (model_.constrained == 0) {
            bool const low = uniform() < 0.5;
            return stepped(state, low == geometric_steps ? step : -step);
        }
        bool const up = state <= TNode::min_mic || (state < TNode::max_mic && !(uniform() < 0.5));
        int const moved = stepped(state, up ? step : -step);
        return std::max(TNode::min_mic, std::min(moved, TNode::max_mic));
    }

    MutationModel const& model_;
    long* idum_;  // borrowed
    MutationLog& log_;
    bool gamma_;
    std::vector<int>& row_;
};

/// Writes the states of a node: the root's, changed by the events on the way down to the node.
void write_row(TNode& node, TNode const* top, MutationLog const& log, std::vector<TNode const*>& path) {
    if (!node.sequence) node.sequence = std::make_unique<myVectInt>();
    node.sequence->assign(log.root);
    path.clear();
    for (TNode const* p = &node; p; p = p == top ? nullptr : p->ancestor) path.push_back(p);
    for (std::size_t i = path.size(); i > 0; --i) {
        TNode const& p = *path[i - 1];
        int const first = log.first_event[static_cast<std::size_t>(p.node_id)];
        for (int e = first; e < first + p.num_mutations; ++e) {
            MutationEvent const& event = log.events[static_cast<std::size_t>(e)];
            (*node.sequence)[event.site] = event.to;
        }
    }
}

int largest_number(TNode const& node) {
    int largest = node.node_id;
    if (node.left) largest = std::max(largest, largest_number(*node.left));
    if (node.right) largest = std::max(largest, largest_number(*node.right));
    return largest;
}

void write_subtree(TNode& node, TNode const* top, MutationLog const& log, std::vector<TNode const*>& path) {
    write_row(node, top, log, path);
    if (node.left) write_subtree(*node.left, top, log, path);
    if (node.right) write_subtree(*node.right, top, log, path);
}

}  // namespace

// --- TNode ---

int TNode::add_mutations(MutationModel const& model, long* idum, int num_mut) {
    MutationLog log;
    int const placed = MutationWalk(model, idum, log).run(*this, num_mut, largest_number(*this) + 1);
    std::vector<TNode const*> path;
    write_subtree(*this, this, log, path);
    return placed;
}

int TNode::add_mutations(double const& mu, long* idum, int num_mut, int const& sites, Mut_Type const& type,
                         double const& gamma_a, double const& transition_share) {
    return add_mutations(
        {.mu = mu, .sites = sites, .type = type, .gamma_a = gamma_a, .transition_share = transition_share}, idum,
        num_mut);
}

int TNode::add_mutations(double const& mu, long* idum, int num_mut, int const& sites, Mut_Type const& type,
                         double const& gamma_a, double const& transition_share, int const& constrained,
                         double geometric_p) {
    return add_mutations({.mu = mu,
                          .sites = sites,
                          .type = type,
                          .gamma_a = gamma_a,
                          .transition_share = transition_share,
                          .allele_steps = true,
                          .constrained = constrained,
                          .geometric_p = geometric_p},
                         idum, num_mut);
}

TNode* TNode::next_flagged(int site) noexcept {
    auto const flagged = [site](TNode const* node) {
        auto const i = static_cast<std::size_t>(site);
        return node && (i >= node->snp_flags.size() || node->snp_flags[i] != 0);
    };
    TNode* node = this;
    while (!node->is_tip()) {
        if (flagged(node) && flagged(node->left) && flagged(node->right)) break;
        node = flagged(node->left) || !node->right ? node->left : node->right;
    }
    return node;
}

int TNode::new_Add_SNP_Mutation(int const& site, TNode*& mutated, int state, int new_state) {
    if (!sequence) sequence = std::make_unique<myVectInt>(site + 1);
    if (site >= 0 && site < sequence->size()) (*sequence)[site] = state;
    num_sites = sequence->size();
    for (TNode* const child : {left, right}) {
        if (!child) continue;
        TNode* const next = child->next_flagged(site);
        if (next == mutated) {
            next->new_Add_SNP_Mutation(site, mutated, 1, new_state);
            state = new_state;
        } else {
            next->new_Add_SNP_Mutation(site, mutated, state, new_state);
        }
    }
    return state;
}

// --- TTree: placing ---

bool TTree::prepare_hits(int sites) {
    MY_TArrayAsVector<long>& hits = TNode::hits;
    if (hits.IsEmpty()) {
        if (hits.limit() < sites) hits.Reallocate(sites);
        for (int i = 0; i < sites; ++i) hits.Add(0);
        return true;
    }
    if (hits.GetItemsInContainer() != sites) return false;
    std::fill(hits.begin(), hits.end(), 0L);
    return true;
}

int TTree::add_mutations(MutationModel const& model) {
    if (nb_nodes() == 0) {
        log_.clear();
        return 0;
    }
    if (model.gamma_a != 0.0) {
        GammaRates& rates = TNode::mut_rates;
        if (rates.is_built()) {
            rates.get_new_rates(model.sites, model.gamma_a, model.first_rate, model.first_fraction);
        } else {
            rates.build(model.sites, model.gamma_a, model.first_rate, model.first_fraction);
        }
    }
    MutationModel feasible = model;
    // No branch is longer than the root is old.
    bool const many = model.mu * root().time * nb_nodes() > most_mutations;
    if (many && model.mu * length() > most_mutations) feasible.mu = 0.0;
    long idum = 1;
    return MutationWalk(feasible, &idum, log_).run(root(), 0, nb_nodes());
}

double TTree::length() const noexcept {
    double sum = 0.0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(nb_nodes()); ++i) {
        TNode const& node = nodes_[i];
        if (node.ancestor) sum += node.ancestor->time - node.time;
    }
    return sum;
}

void TTree::clear_mutations() noexcept {
    log_.clear();
    for (TNode& node : nodes_) node.num_mutations = 0;
}

void TTree::write_sequences() {
    if (log_.first_event.size() != static_cast<std::size_t>(nb_nodes())) return;
    std::vector<TNode const*> path;
    for (TNode& tip : tips()) write_row(tip, nullptr, log_, path);
}

// --- TTree: tips ---

void TTree::compute_hapl_freq() { compute_hapl_freq(0, sample_size_); }

void TTree::compute_hapl_freq(int first, int count) {
    int const begin = std::max(0, first);
    int const end = std::min(sample_size_, first + std::max(0, count));
    std::unordered_map<std::string_view, int> unique;  // states as bytes, index of the first tip that has them
    unique.reserve(static_cast<std::size_t>(std::max(0, end - begin)));
    for (int i = begin; i < end; ++i) {
        TNode& tip = (*this)[i];
        tip.is_unique = 1;
        tip.frequency = 1;
        std::string_view states;
        if (tip.sequence && tip.sequence->size() > 0) {
            states = {reinterpret_cast<char const*>(tip.sequence->beginning()),
                      static_cast<std::size_t>(tip.sequence->size()) * sizeof(int)};
        }
        auto const [known, is_new] = unique.try_emplace(states, i);
        if (is_new) continue;
        tip.is_unique = 0;
        ++(*this)[known->second].frequency;
    }
}

void TTree::print_sequences(std::ostream& out, Mut_Type const& type) {
    if (sample_size_ < 1 || !(*this)[0].sequence || (*this)[0].num_sites < 1) return;
    for (int i = 0; i < sample_size_; ++i) {
        TNode const& tip = (*this)[i];
        if (!tip.is_unique || !tip.sequence) continue;
        out << integer{i + 1, 5} << ' ' << tip.frequency << ' ';
        for (int site = 0; site < tip.sequence->size(); ++site) {
            int const state = (*tip.sequence)[site];
            if (has_state_characters(type)) {
                out << state_character(type, state);
            } else {
                out << (site > 0 ? " " : "") << state;
            }
        }
        out << '\n';
    }
}

// --- TTree: the branch of a single mutation ---

void TTree::getListofMatchingNodesNoRec(BranchList& list, double const& min_freq) {
    list.nodes.clear();
    list.shares.clear();
    list.built = true;
    if (nb_nodes() == 0) return;
    std::vector<TNode*> waiting{&root()};
    double sum = 0.0;
    while (!waiting.empty()) {
        TNode* const node = waiting.back();
        waiting.pop_back();
        if (static_cast<double>(node->num_desc()) / sample_size_ >= min_freq) {
            double const length = node->ancestor ? node->ancestor->time - node->time : 0.0;
            list.nodes.push_back(node);
            list.shares.push_back(length);
            sum += length;
        }
        if (node->right) waiting.push_back(node->right);
        if (node->left) waiting.push_back(node->left);
    }
    for (double& share : list.shares) share /= sum;
}

TNode* TTree::getRootNodeForMutation(int /*site*/, double const& min_freq) {
    if (!branches_.built) getListofMatchingNodesNoRec(branches_, min_freq);
    double const u = uniform();
    double sum = 0.0;
    for (std::size_t i = 0; i < branches_.nodes.size(); ++i) {
        sum += branches_.shares[i];
        if (sum >= u) return branches_.nodes[i];
    }
    return nullptr;
}

}  // namespace tov
