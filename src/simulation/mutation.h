// How mutations change a site: the models, the rates of the sites, and the record of what happened on a tree.
#pragma once

#include <span>
#include <vector>

namespace tov {

/// What a mutation does to the state of a site.
enum Mut_Type : int {
    MUT_STEPWISE = 0,         ///< one step up or down (microsatellites)
    MUT_BINARY = 1,           ///< 0 becomes 1 and 1 becomes 0 (restriction sites)
    MUT_NUCLEOTIDES = 2,      ///< 0 A, 1 G, 2 C, 3 T
    MUT_INFINITE_ALLELES = 3  ///< a state that the site never had
};

/// Character of a state in the sequence of a type: '0' and '1', or A, G, C, T and A for anything else.
[[nodiscard]] constexpr char state_character(Mut_Type type, int state) noexcept {
    if (type == MUT_BINARY) return state == 0 ? '0' : '1';
    switch (state) {
        case 1: return 'G';
        case 2: return 'C';
        case 3: return 'T';
        default: return 'A';
    }
}
/// Whether a type's states are single characters; those of the others are written as whole numbers.
[[nodiscard]] constexpr bool has_state_characters(Mut_Type type) noexcept {
    return type == MUT_BINARY || type == MUT_NUCLEOTIDES;
}

/// Relative mutation rates of the sites, with sum 1.
class GammaRates {
public:
    /// Gamma-distributed rates of shape a, or, for a <= 0, `first_rate` for the first sites and 1 for the rest.
    ///
    /// The sites of the first rate are truncation of sites * first_fraction, and one more.
    /// Draws: those of gamma_dev(a) for each site in order; none for a <= 0.
    void build(int sites, double const& a, double const& first_rate, double const& first_fraction);
    /// The same into the same storage.
    void get_new_rates(int sites, double const& a, double const& first_rate, double const& first_fraction);

    [[nodiscard]] bool is_built() const noexcept { return built_; }
    [[nodiscard]] int num_sites() const noexcept { return static_cast<int>(rates_.size()); }
    [[nodiscard]] double shape() const noexcept { return a_; }
    [[nodiscard]] double first_rate() const noexcept { return first_rate_; }
    [[nodiscard]] int num_first_rate() const noexcept { return num_first_rate_; }
    [[nodiscard]] std::span<double const> rates() const noexcept { return rates_; }

    /// First site at which the rates summed from site 0 upward exceed u; the last site when none does.
    [[nodiscard]] int site_from_below(double u) const noexcept;
    /// First site at which the rates summed from the last site downward exceed u; site 0 when none does.
    [[nodiscard]] int site_from_above(double u) const noexcept;

private:
    bool built_ = false;
    double a_ = 0.0;
    double first_rate_ = 1.0;
    int num_first_rate_ = 0;
    std::vector<double> rates_;
    std::vector<double> sums_up_;    ///< entry i: rates 0 .. i, added in this order
    std::vector<double> sums_down_;  ///< entry i: rates last .. last - i, added in this order
};

/// How mutations are placed.
struct MutationModel {
    double mu = 0.0;   ///< mutations per unit of branch length, all sites together
    int sites = 0;
    Mut_Type type = MUT_NUCLEOTIDES;
    double gamma_a = 0.0;         ///< |gamma_a| < 1e-7: uniform rates; otherwise the rates of a GammaRates
    double first_rate = 1.0;      ///< of the GammaRates
    double first_fraction = 1.0;  ///< of the GammaRates
    double transition_share = 0.33;

    bool allele_steps = false;  ///< the form for microsatellite alleles, with the two fields below
    int constrained = 0;        ///< alleles stay between the bounds
    double geometric_p = 0.0;   ///< > 0: steps of geometric(p) + 1
};

/// One mutation on the branch above a node.
struct MutationEvent {
    int node;  ///< number of the node
    int site;
    int from;  ///< state before
    int to;    ///< state after
};

/// The mutations of one tree: the root's states and every change below, from which all states follow.
///
/// Events stand in the order in which they were placed: a node's in order of occurrence, ancestors before descendants.
struct MutationLog {
    std::vector<int> root;
    std::vector<MutationEvent> events;
    std::vector<int> first_event;  ///< by node number: index of the node's first event
    std::vector<int> row;          ///< work space: the states at the place of the walk
    int sites_hit_again = 0;       ///< events at a site that had been hit before

    void clear() noexcept {
        root.clear();
        events.clear();
        first_event.clear();
        sites_hit_again = 0;
    }
};

}  // namespace tov
