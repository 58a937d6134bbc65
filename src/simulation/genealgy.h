// Coalescent genealogies of a sample of gene copies.
#pragma once

#include <array>
#include <iosfwd>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "base/arrays.h"
#include "simulation/demes.h"
#include "simulation/mutation.h"

namespace tov {

/// A sized row of ints: the states of one node at all sites.
class myVectInt {
public:
    myVectInt() = default;
    explicit myVectInt(int size) : values_(static_cast<std::size_t>(size > 0 ? size : 0)) {}

    [[nodiscard]] int size() const noexcept { return static_cast<int>(values_.size()); }
    int& operator[](int i) noexcept { return values_[static_cast<std::size_t>(i)]; }
    int operator[](int i) const noexcept { return values_[static_cast<std::size_t>(i)]; }
    [[nodiscard]] int* beginning() noexcept { return values_.data(); }
    [[nodiscard]] int const* beginning() const noexcept { return values_.data(); }
    bool operator==(myVectInt const& other) const noexcept { return values_ == other.values_; }
    bool operator!=(myVectInt const& other) const noexcept { return values_ != other.values_; }
    /// Takes over the values of a span, in the storage at hand.
    void assign(std::span<int const> values) { values_.assign(values.begin(), values.end()); }

private:
    std::vector<int> values_;
};

/// One node of a tree: a gene copy, or the common ancestor of two lineages.
class TNode {
public:
    [[nodiscard]] bool is_tip() const noexcept { return left == nullptr && right == nullptr; }
    /// Number of tips below the node, 1 for a tip, by the counts of count_desc().
    [[nodiscard]] int num_desc() const noexcept { return is_tip() ? 1 : left_count + right_count; }

    /// Counts the tips below the node and all its descendants; returns the number below this one.
    int count_desc();
    /// Lists the numbers of the nodes on either side, for the node and all its descendants.
    void build_lists_of_descendent_nodes();
    /// Adds left_count right_count 2 t and left_count right_count 4 t^2 of the node and all its descendants.
    void compute_moments_of_pairwise_divergence(double& sum, double& sum_of_squares) const;

    /// Places `num_mut` mutations on this node's branch and Poisson numbers on the branches below, and writes the
    /// sequences of the whole subtree.
    ///
    /// A node with an ancestor starts from that ancestor's sequence; one without starts a sequence of its own.
    /// Draws: see TTree::add_mutations.
    /// @param mu    mutations per unit of branch length.
    /// @param idum  handed on to poidev().
    /// @return      mutations placed, those of this node included.
    int add_mutations(double const& mu, long* idum, int num_mut, int const& sites, Mut_Type const& type,
                      double const& gamma_a, double const& transition_share);
    /// The form for microsatellite alleles.
    int add_mutations(double const& mu, long* idum, int num_mut, int const& sites, Mut_Type const& type,
                      double const& gamma_a, double const& transition_share, int const& constrained,
                      double geometric_p);

    /// Writes the states of one site below this node: 1 under `mutated`, `state` elsewhere.
    ///
    /// kept on purpose: what stands right of the mutated node under the same parent gets `new_state`.
    int new_Add_SNP_Mutation(int const& site, TNode*& mutated, int state, int new_state);

    /// node_count and _tot_mut back to 0; called before each tree is built.
    static void reset_node_count() noexcept {
        node_count = 0;
        _tot_mut = 0;
    }

    double time = 0.0;      ///< coalescent units, 0 for a tip
    TNode* left = nullptr;  ///< borrowed, as are the other two
    TNode* right = nullptr;
    std::vector<unsigned char> snp_flags;  ///< one a site; sites beyond the end count as flagged
    TNode* ancestor = nullptr;
    std::vector<int> left_nodes;  ///< numbers of the nodes on the left, the left child included
    std::vector<int> right_nodes;
    std::unique_ptr<myVectInt> sequence;  ///< made on first use
    int num_sites = 0;
    int num_mutations = 0;  ///< on the branch above
    int node_id = 0;        ///< index in the tree's array
    int deme = 0;
    unsigned char is_unique = 1;
    int frequency = 1;
    int left_count = 0;  ///< tips on the left
    int right_count = 0;

    static MY_TArrayAsVector<long> hits;  ///< mutations a site
    static GammaRates mut_rates;
    static int node_count;  ///< the last number given
    static int _tot_mut;    ///< mutations placed so far in the tree
    static int min_mic;     ///< bounds of a constrained microsatellite allele
    static int max_mic;

private:
    int add_mutations(MutationModel const& model, long* idum, int num_mut);
    TNode* next_flagged(int site) noexcept;
};

/// The active lineages during the construction of a tree.
class TListNode {
public:
    TListNode() = default;
    TListNode(int n, TNode* nodes) { start(n, nodes); }
    /// Points at the first n nodes, with their times and children cleared.
    void start(int n, TNode* nodes);
    void clear() noexcept { length_ = 0; }
    [[nodiscard]] int length() const noexcept { return length_; }
    TNode*& operator[](int i) noexcept { return list_[static_cast<std::size_t>(i)]; }
    void push(TNode* node);
    /// Removes entry i; the last one fills its place.
    TNode* take(int i) noexcept;
    /// Joins two lineages in `node`, which takes the place of the second. Draws: 2, left and right pick.
    void coalesce(TNode& node) noexcept;

private:
    std::vector<TNode*> list_;  // borrowed
    int length_ = 0;
};

/// Nodes that qualify for a mutation, with their shares of the summed branch length.
struct BranchList {
    std::vector<TNode*> nodes;  // borrowed
    std::vector<double> shares;
    bool built = false;
};

/// How the sites of a mutated tree vary among its tips, summed over all pairs of tips.
struct SiteStatistics {
    int segregating_sites = 0;    ///< sites with more than one state among the tips
    long long transitions = 0;    ///< pairs and sites that differ by 0 and 1, or by 2 and 3
    long long transversions = 0;  ///< pairs and sites that differ otherwise
};

/// The genealogy of n gene copies: 2n - 1 nodes in one array, tips first, internal nodes in order of coalescence, the
/// root last. The array is allocated once and used again for tree after tree.
class TTree {
public:
    TTree() = default;
    TTree(TTree const&) = delete;
    TTree& operator=(TTree const&) = delete;

    /// 2n - 1 new nodes, none for n < 1.
    void allocate_tree(int const& n);
    /// Number of gene copies of the trees to come; more than allocated allocates.
    void set_sample_size(int const& n);
    [[nodiscard]] int sample_size() const noexcept { return sample_size_; }
    [[nodiscard]] int nb_nodes() const noexcept { return sample_size_ > 0 ? 2 * sample_size_ - 1 : 0; }
    [[nodiscard]] TNode& operator[](int i) noexcept { return nodes_[static_cast<std::size_t>(i)]; }
    [[nodiscard]] TNode const& operator[](int i) const noexcept { return nodes_[static_cast<std::size_t>(i)]; }
    /// Node 2n - 2; the tree must not be empty.
    [[nodiscard]] TNode& root() noexcept { return (*this)[nb_nodes() - 1]; }
    [[nodiscard]] std::span<TNode> tips() noexcept { return {nodes_.data(), static_cast<std::size_t>(sample_size_)}; }

    /// Constant-size coalescent (Kingman 1982), times in units in which a pair coalesces at rate 1.
    ///
    /// Draws: n - 1 for the times, then 2 (n - 1) for the topology. Source: Hudson 1990.
    void build_tree();
    /// Coalescent of a deme that receives migrants from an unobserved, infinitely large population until time tau, when
    /// all lineages come together; same units.
    ///
    /// Draws: per event the time, before tau its kind, then one pick for a migrant or two for a coalescence; the event
    /// that reaches tau spends its time alone.
    void build_tree_range_exp(double const& tau, double const& m);

    // --- Island models (struct_sim.cpp) ---
    /// n demes for islands, n squared on a square of stepping stones; 0 does nothing.
    void createDemes(MigrationModel model, int const& n);
    /// Groups of `demes_per_group` islands, numbered group by group.
    void createDemes(MigrationModel model, int demes_per_group, int groups);
    /// Puts the tips, in their order, into a random deme for each sample. With fewer demes than samples there will be
    /// samples + 20. Draws: 1 a sample.
    void createInitialNodes(SampledCopies const& sampled, int demes);
    /// The same within a simulated group for each group of samples. Fewer demes a group than a group has samples become
    /// that + 20. Draws: per group 1 for the simulated group, then 1 a sample for the deme.
    void createInitialNodes(SampledCopies const& sampled, int demes_per_group, int groups);
    /// Genealogy of the samples under an island model at equilibrium with FST; a time unit is the size of a deme.
    ///
    /// Draws: createInitialNodes, then per event the time, its kind, and those of the event.
    /// @return 1, or 0 (with a line on the console) without demes, for FST <= 0 or when lineages can't meet.
    int build_tree_struct_pop(SampledCopies const& sampled, double const& Fst, int demes);
    /// The same under a hierarchical island model with FST and FCT.
    int build_tree_struct_pop(SampledCopies const& sampled, double const& Fst, double const& Fct, int demes_per_group,
                              int groups);
    /// Joins two lineages of one deme at time t. Draws: 3, deme, left and right pick.
    void coalesceWithinAPop(double const& t);
    /// Moves a lineage to another deme. Draws: the lineage, then targets until one isn't the source.
    void sendMigrant();
    /// The same with groups. Draws: the kind, the lineage, then within a group demes until one isn't the source, or
    /// groups until one isn't the source's and one more.
    /// kept on purpose: a migrant from another group always enters the first deme of its new group.
    void sendMigrant2Levels(int demes_per_group, int groups, double m_within, double m_between);
    /// Ready for the next locus: no lineage in any deme.
    void cleanDemes() noexcept { demes_.clean(); }
    [[nodiscard]] DemeLineages const& demes() const noexcept { return demes_; }

    /// Internal nodes above t: time = (time - t) factor + t.
    void bottleneck(double t, double factor);
    /// Multiplies the times of the internal nodes.
    void scale_to_num_generations(long const& scale);

    /// Mean and deviation of the coalescence times of all pairs, in `mean` and `sd`. @return 0 for n < 2, else 1.
    int compute_moments_of_coalescence_times();
    /// Tips below every internal node; the same as root().count_desc() without recursion.
    void count_descendants() noexcept;

    /// Whether `sites` fits the counters TNode::hits, which are then cleared; the first call after a flush sizes them.
    [[nodiscard]] static bool prepare_hits(int sites);
    /// Places mutations on the whole tree and keeps them in log(); sequences are not written.
    ///
    /// Rates are built when gamma_a is not 0. The caller has prepared the hits.
    /// Draws: the rates' ones; for nucleotides one a site for the root's states; then in pre-order, left before right,
    /// each branch's poidev() and for each of its mutations the site and the state. Under uniform rates mutations fill
    /// the sites in order without a draw until every site has one.
    /// A tree that expects more than `most_mutations` gets none, as if the rate were 0: an estimate without an upper
    /// bound would take all memory and time.
    /// @return mutations placed.
    int add_mutations(MutationModel const& model);
    static constexpr double most_mutations = 2e7;
    /// Sum of the lengths of all branches.
    [[nodiscard]] double length() const noexcept;
    [[nodiscard]] MutationLog const& log() const noexcept { return log_; }
    [[nodiscard]] int nb_mutations() const noexcept { return static_cast<int>(log_.events.size()); }
    /// No mutations on any branch.
    void clear_mutations() noexcept;
    /// Writes the `sequence` of every tip from the log.
    void write_sequences();
    /// Counts from the log, without sequences, for MUT_BINARY and MUT_NUCLEOTIDES.
    [[nodiscard]] SiteStatistics site_statistics();
    /// Number of different tips, from the log, for the same two types.
    [[nodiscard]] int distinct_tips();

    /// Groups identical tips: the first of each group is unique and has its frequency. Reads sequences.
    void compute_hapl_freq();
    /// The same over `count` tips from `first` on.
    void compute_hapl_freq(int first, int count);
    /// The unique tips with their frequencies and sequences; nothing when the first tip has no sites.
    void print_sequences(std::ostream& out, Mut_Type const& type);

    /// Branch for a mutation, drawn by length among the nodes with at least `min_freq` of the tips below; null when
    /// none is reached. The list is made at the first call after flush_branches(). Draws: 1.
    [[nodiscard]] TNode* getRootNodeForMutation(int site, double const& min_freq);
    /// Lists the nodes that qualify, from the root on, left before right, with their branch lengths.
    void getListofMatchingNodesNoRec(BranchList& list, double const& min_freq);
    void flush_branches() noexcept { branches_.built = false; }

    double mean = 0.0;  ///< of the coalescence times
    double sd = 0.0;

private:
    int sample_size_ = 0;
    std::vector<TNode> nodes_;
    TListNode active_;
    TListNode away_;
    MutationLog log_;
    BranchList branches_;
    DemeLineages demes_;

    void start_structured(SampledCopies const& sampled);
    int run_islands(MigrationRates const& rates, bool two_levels);
    // The events with the source of their numbers.
    template <class Draws>
    void join_in_a_deme(Draws& draws, double t);
    template <class Draws>
    void move_among_demes(Draws& draws);
    template <class Draws>
    void move_on_two_levels(Draws& draws, int demes_per_group, int groups, double m_within, double m_between);
    [[nodiscard]] int label_tips();
    [[nodiscard]] int compare_labelled_tips();
    void count_states(SiteStatistics& statistics);

    // scratch of the statistics, kept so that replicates allocate nothing
    std::vector<int> hits_;
    std::vector<std::array<long long, 4>> state_counts_;
    std::vector<int> labels_;
    std::vector<int> representatives_;
    std::vector<char> rows_;
    std::vector<std::string_view> row_views_;
};

/// An old driver that nothing uses.
class TGenealogy : public TTree {
public:
    int build_genealogy(std::ostream& out, int n, double factor, double t, double mu);
};

}  // namespace tov
