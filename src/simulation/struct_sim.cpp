// Genealogies under island models, and the simulation of a locus on them.
#include "simulation/struct_sim.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <numeric>

#include "base/random.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr int spare_demes = 20;
constexpr long long most_demes = 10000000;  // more would only fill the memory

int truncated(double x) noexcept { return static_cast<int>(x); }

/// Draws numbers 0 .. n-1 without replacement; the last one fills the hole. Draws: 1 each.
class Urn {
public:
    explicit Urn(int n) : left_(static_cast<std::size_t>(n)) { std::iota(left_.begin(), left_.end(), 0); }
    int draw() {
        auto const j = static_cast<std::size_t>(uniform() * static_cast<double>(left_.size()));
        int const drawn = left_[j];
        left_[j] = left_.back();
        left_.pop_back();
        return drawn;
    }

private:
    std::vector<int> left_;
};

/// Numbers of the process-wide generator.
struct GlobalDraws {
    static double next() noexcept { return uniform(); }
};

/// The same numbers from a copy of the seeded generator, which goes back at the end: a local state stays in registers.
class BorrowedDraws {
public:
    BorrowedDraws() : state_(random_state.ran3) {}
    ~BorrowedDraws() { random_state.ran3 = state_; }
    BorrowedDraws(BorrowedDraws const&) = delete;
    BorrowedDraws& operator=(BorrowedDraws const&) = delete;
    double next() noexcept { return state_.draw(); }

private:
    Ran3State state_;
};

/// Adds up exponential waiting times. Nothing but a coalescence asks for the time, so that the logarithms of the
/// migrations before it are taken in one go.
class IslandClock {
public:
    /// @param u  uniform number. @param R  rate of the next event.
    void wait(double u, double R) noexcept {
        u_[waiting_] = u;
        R_[waiting_] = R;
        if (++waiting_ == most) add_up();
    }
    [[nodiscard]] double time() noexcept {
        add_up();
        return t_;
    }

private:
    static constexpr std::size_t most = 64;

    void add_up() noexcept {
        for (std::size_t i = 0; i < waiting_; ++i) t_ += -std::log(1.0 - u_[i]) / R_[i];
        waiting_ = 0;
    }

    std::array<double, most> u_;
    std::array<double, most> R_;
    std::size_t waiting_ = 0;
    double t_ = 0.0;
};

/// Demes of each simulated group: fewer than a group has samples become that and some more.
int enough_demes_per_group(SampledCopies const& sampled, int wanted) {
    auto const largest = std::max_element(sampled.group_sizes.begin(), sampled.group_sizes.end());
    bool const too_few = largest != sampled.group_sizes.end() && wanted < *largest;
    return too_few ? *largest + spare_demes : wanted;
}

int enough_groups(SampledCopies const& sampled, int wanted) {
    return std::max(wanted, static_cast<int>(sampled.group_sizes.size()));
}

int cannot_build() {
    std::cout << "\tTTree::build_tree_struct_pop(): unable to build Tree\n";
    return 0;
}

}  // namespace

// --- TTree: demes ---

void TTree::createDemes(MigrationModel model, int const& n) {
    if (n == 0) return;
    int const d = model == ISLAND ? n : model == STEPPING_STONE ? n * n : 0;
    demes_.create(d, std::max(1, d));
}

void TTree::createDemes(MigrationModel model, int demes_per_group, int groups) {
    if (model != ISLAND) return;
    demes_.create(demes_per_group * groups, demes_per_group);
}

void TTree::start_structured(SampledCopies const& sampled) {
    TNode::reset_node_count();
    TNode::hits.Flush();
    set_sample_size(sampled.total());
    active_.start(sample_size(), nodes_.data());
}

void TTree::createInitialNodes(SampledCopies const& sampled, int demes) {
    int const samples = static_cast<int>(sampled.copies.size());
    createDemes(ISLAND, demes < samples ? samples + spare_demes : demes);
    demes_.clean();
    start_structured(sampled);
    Urn urn(demes_.demes());
    int first = 0;
    for (int const copies : sampled.copies) {
        demes_.settle(urn.draw(), first, copies);
        first += copies;
    }
}

void TTree::createInitialNodes(SampledCopies const& sampled, int demes_per_group, int groups) {
    int const s = enough_demes_per_group(sampled, demes_per_group);
    createDemes(ISLAND, s, enough_groups(sampled, groups));
    demes_.clean();
    start_structured(sampled);
    Urn groups_left(demes_.groups());
    int first = 0;
    std::size_t sample = 0;
    for (int const samples : sampled.group_sizes) {
        int const base = demes_.first_of_group(groups_left.draw());
        Urn demes_left(s);
        for (int i = 0; i < samples; ++i, ++sample) {
            demes_.settle(base + demes_left.draw(), first, sampled.copies[sample]);
            first += sampled.copies[sample];
        }
    }
}

// --- TTree: events ---

template <class Draws>
inline void TTree::join_in_a_deme(Draws& draws, double t) {
    int const slot = demes_.slot_of_rate(draws.next() * demes_.coalescence_rate());
    if (slot < 0) return;
    int const id = 2 * sample_size() - demes_.active();
    int const c = demes_.count(demes_.deme_at(slot));
    int const left = truncated(c * draws.next());
    int const right = truncated((c - 1) * draws.next());
    DemeLineages::Pair const pair = demes_.coalesce(slot, left, right, id);
    TNode& node = (*this)[id];
    node.time = t;
    node.left = &(*this)[pair.left];
    node.right = &(*this)[pair.right];
    node.left->ancestor = &node;
    node.right->ancestor = &node;
}

template <class Draws>
inline void TTree::move_among_demes(Draws& draws) {
    int const d = demes_.demes();
    if (d < 2 || demes_.active() == 0) return;
    DemeLineages::Place const from = demes_.place_of(truncated(demes_.active() * draws.next()));
    int const source = demes_.deme_at(from.slot);
    int target = source;
    while (target == source) target = truncated(draws.next() * d);
    demes_.move(from, target);
}

template <class Draws>
inline void TTree::move_on_two_levels(Draws& draws, int demes_per_group, int groups, double m_within,
                                      double m_between) {
    double const m = m_within + m_between;
    if (m == 0.0 || demes_.active() == 0) return;
    bool const between = m_within / m <= draws.next();
    if (between ? groups < 2 : demes_per_group < 2) return;
    DemeLineages::Place const from = demes_.place_of(truncated(demes_.active() * draws.next()));
    int const source = demes_.deme_at(from.slot);
    int const group = demes_.group_of(source);
    if (between) {
        int target = group;
        while (target == group) target = truncated(draws.next() * groups);
        // kept on purpose: the truncation comes before the product, so that the deme is always the group's first one.
        int const deme = truncated(draws.next()) * demes_per_group;
        demes_.move(from, demes_.first_of_group(target) + deme);
    } else {
        int const base = demes_.first_of_group(group);
        int target = source;
        while (target == source) target = base + truncated(draws.next() * demes_per_group);
        demes_.move(from, target);
    }
}

void TTree::coalesceWithinAPop(double const& t) {
    GlobalDraws draws;
    join_in_a_deme(draws, t);
}

void TTree::sendMigrant() {
    GlobalDraws draws;
    move_among_demes(draws);
}

void TTree::sendMigrant2Levels(int demes_per_group, int groups, double m_within, double m_between) {
    GlobalDraws draws;
    move_on_two_levels(draws, demes_per_group, groups, m_within, m_between);
}

int TTree::run_islands(MigrationRates const& rates, bool two_levels) {
    double const m = rates.total();
    int const s = demes_.per_group();
    int const g = demes_.groups();
    IslandClock clock;
    BorrowedDraws draws;
    while (demes_.active() > 1) {
        double const coalescence = demes_.coalescence_rate();
        double const R = coalescence + demes_.active() * m * deme_size;
        if (!(R > 0.0) || !std::isfinite(R)) return 0;
        clock.wait(draws.next(), R);
        if (draws.next() * R < coalescence) {
            join_in_a_deme(draws, clock.time());
        } else if (two_levels) {
            move_on_two_levels(draws, s, g, rates.within, rates.between);
        } else {
            move_among_demes(draws);
        }
    }
    if (sample_size() > 0) root().ancestor = nullptr;
    return 1;
}

// --- TTree: models ---

int TTree::build_tree_struct_pop(SampledCopies const& sampled, double const& Fst, int demes) {
    if (sampled.total() < 1 || demes > most_demes) return cannot_build();
    createInitialNodes(sampled, demes);
    if (demes < 1 || !(Fst > 0.0)) return cannot_build();
    return run_islands(flat_island_rates(Fst, demes_.demes()), false) ? 1 : cannot_build();
}

int TTree::build_tree_struct_pop(SampledCopies const& sampled, double const& Fst, double const& Fct,
                                 int demes_per_group, int groups) {
    if (sampled.total() < 1 || demes_per_group < 1 || groups < 1) return cannot_build();
    long long const s = enough_demes_per_group(sampled, demes_per_group);
    if (s * enough_groups(sampled, groups) > most_demes) return cannot_build();
    createInitialNodes(sampled, demes_per_group, groups);
    MigrationRates const rates = two_level_island_rates(Fst, Fct, demes_.per_group(), demes_.groups());
    return run_islands(rates, true) ? 1 : cannot_build();
}

// --- LocusSimulator ---

int LocusSimulator::build_tree(IslandModel const& model) {
    if (model.two_levels) {
        return tree_.build_tree_struct_pop(sampled_, model.Fst, model.Fct, model.demes, model.groups);
    }
    return tree_.build_tree_struct_pop(sampled_, model.Fst, model.demes);
}

bool LocusSimulator::simulateSample(IslandModel const& model, LocusMutation const& mutation) {
    mutations_ = 0;
    states_.clear();
    bool const built = build_tree(model) != 0;
    if (built) {
        sprinkle_mutations(mutation);
    } else {
        std::cout << "\tProject::simulateSample(): Unable to simulate samples\n";
    }
    tree_.cleanDemes();
    return built;
}

int LocusSimulator::sprinkle_mutations(LocusMutation const& mutation) {
    constexpr int sites = 1;
    mutations_ = 0;
    states_.assign(static_cast<std::size_t>(tree_.nb_nodes()), 0);
    if (!TTree::prepare_hits(sites)) {
        E.error(ErrorType::Warning, "Samples::sprinkle_mutations()", 177);
        tree_.clear_mutations();
        return 0;
    }
    if (has_state_characters(mutation.type)) return mutations_ = place_snp(mutation);
    MutationModel model;
    model.mu = mutation.theta / 2.0;
    model.sites = sites;
    model.type = mutation.type;
    model.transition_share = 1.0 / 3.0;
    model.allele_steps = true;
    model.constrained = mutation.constrained;
    mutations_ = tree_.add_mutations(model);
    states_from_mutations();
    return mutations_;
}

int LocusSimulator::place_snp(LocusMutation const& mutation) {
    tree_.count_descendants();
    tree_.flush_branches();
    int new_state = 0;
    TNode const* node = tree_.getRootNodeForMutation(0, mutation.least_derived);
    if (node == nullptr) {
        // kept on purpose: without a branch that carries enough copies, what stands right of the mutated branch under
        // the same parent shows a third state.
        new_state = mutation.type == MUT_BINARY ? 1 : 2;  // shown alike by sites of two states
        tree_.flush_branches();
        node = tree_.getRootNodeForMutation(0, 0.0);
    }
    tree_.flush_branches();
    if (node != nullptr) mark_snp(*node, new_state);
    return 1;
}

/// The states that TNode::new_Add_SNP_Mutation writes, for the whole tree: parents stand behind their children.
void LocusSimulator::mark_snp(TNode const& mutated, int new_state) {
    TNode const* const parent = mutated.ancestor;
    if (parent == nullptr) return;
    TNode const* const turned = parent->left == &mutated ? parent->right : nullptr;
    for (int id = tree_.nb_nodes() - 2; id >= 0; --id) {
        TNode const& node = tree_[id];
        int& state = states_[static_cast<std::size_t>(id)];
        state = &node == &mutated ? 1
                : &node == turned ? new_state
                                  : states_[static_cast<std::size_t>(node.ancestor->node_id)];
    }
}

/// A node's state is that of its ancestor, or the one after the last mutation on its branch.
void LocusSimulator::states_from_mutations() {
    MutationLog const& log = tree_.log();
    for (int id = tree_.nb_nodes() - 2; id >= 0; --id) {
        TNode const& node = tree_[id];
        auto const last = static_cast<std::size_t>(log.first_event[static_cast<std::size_t>(id)] + node.num_mutations);
        states_[static_cast<std::size_t>(id)] = node.num_mutations > 0
                                                    ? log.events[last - 1].to
                                                    : states_[static_cast<std::size_t>(node.ancestor->node_id)];
    }
}

}  // namespace tov
