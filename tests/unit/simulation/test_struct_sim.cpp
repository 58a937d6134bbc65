// Genealogies under island models against theory, their draws, and the loci simulated on them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <vector>

#include "simulation/struct_sim.h"
#include "tree_support.h"

namespace tov {
namespace {

struct Mean {
    double sum = 0.0, squares = 0.0;
    long n = 0;
    void add(double x) {
        sum += x;
        squares += x * x;
        ++n;
    }
    [[nodiscard]] double value() const { return sum / static_cast<double>(n); }
    [[nodiscard]] double error() const {
        double const m = value();
        return std::sqrt((squares / static_cast<double>(n) - m * m) / static_cast<double>(n - 1));
    }
};

/// Time of the common ancestor of two tips.
double common_time(TTree const& tree, int a, int b) {
    std::set<TNode const*> above;
    for (TNode const* p = &tree[a]; p != nullptr; p = p->ancestor) above.insert(p);
    TNode const* p = &tree[b];
    while (above.count(p) == 0) p = p->ancestor;
    return p->time;
}

void expect_whole_tree(TTree& tree) {
    int const n = tree.sample_size();
    EXPECT_EQ(tree.root().ancestor, nullptr);
    tree.count_descendants();
    EXPECT_EQ(tree.root().num_desc(), n);
    for (int i = 0; i < tree.nb_nodes() - 1; ++i) {
        TNode const& node = tree[i];
        ASSERT_NE(node.ancestor, nullptr);
        EXPECT_GE(node.ancestor->time, node.time);
        EXPECT_TRUE(node.ancestor->left == &node || node.ancestor->right == &node);
    }
}

SampledCopies samples_of(int samples, int copies, std::vector<int> groups = {}) {
    return {std::vector<int>(static_cast<std::size_t>(samples), copies), std::move(groups)};
}

TEST(IslandRates, GiveTheTargetOfTheCoalescenceTimes) {
    for (int const d : {2, 10, 100}) {
        for (double const F : {0.02, 0.15, 0.5}) {
            double const M = flat_island_rates(F, d).within * deme_size;  // scaled by the deme
            // expected times of two copies of one deme, and of different demes (Slatkin 1991)
            double const T0 = d;
            double const T1 = d + (d - 1) / (2.0 * M);
            // F of a sample against all demes: 1 - T0 / mean time over all pairs of demes weighted (d - 1) / d
            EXPECT_NEAR(1.0 - T0 / T1, F, 1e-12) << d;
        }
    }
}

TEST(IslandRates, OfTwoLevelsTakeTheLeastValueWhereNoModelReachesTheTarget) {
    MigrationRates const least = two_level_island_rates(0.1, 0.001, 10, 5);
    MigrationRates const none = two_level_island_rates(0.1, -0.3, 10, 5);
    EXPECT_EQ(none.within, least.within);
    EXPECT_EQ(none.between, least.between);
    MigrationRates const below = two_level_island_rates(0.1, 0.2, 10, 5);  // FSC would be negative
    EXPECT_NEAR(below.within, 9.0 * (1.0 / 0.001 - 1.0) / (2.0 * 10.0 * deme_size), 1e-12);
    EXPECT_EQ(two_level_island_rates(0.2, 0.2, 10, 5).within, 0.0);
}

TEST(FlatIslands, PairsWithinAndBetweenDemesMeetAfterTheirExpectedTimes) {
    test::seed(-3);
    int const d = 20;
    double const F = 0.2;
    double const M = flat_island_rates(F, d).within * deme_size;
    TTree tree;
    Mean within, between;
    for (int r = 0; r < 20000; ++r) {
        ASSERT_EQ(tree.build_tree_struct_pop({{2, 1}, {}}, F, d), 1);
        within.add(common_time(tree, 0, 1));
        between.add(common_time(tree, 0, 2));
    }
    EXPECT_NEAR(within.value(), d, 4.0 * within.error());
    EXPECT_NEAR(between.value(), d + (d - 1) / (2.0 * M), 4.0 * between.error());
}

TEST(FlatIslands, TreesAreWhole) {
    test::seed(-1);
    TTree tree;
    for (int r = 0; r < 20; ++r) {
        ASSERT_EQ(tree.build_tree_struct_pop(samples_of(5, 8), 0.1, 30), 1);
        expect_whole_tree(tree);
        tree.cleanDemes();
    }
}

TEST(FlatIslands, FewerDemesThanSamplesBecomeSamplesPlusTwenty) {
    test::seed(-1);
    TTree tree;
    tree.createInitialNodes(samples_of(5, 2), 4);
    EXPECT_EQ(tree.demes().demes(), 25);
    tree.createInitialNodes(samples_of(5, 2), 5);
    EXPECT_EQ(tree.demes().demes(), 5);
}

TEST(FlatIslands, SamplesTakeDemesOfTheirOwnInOrderOfTheirTips) {
    test::seed(-1);
    TTree tree;
    tree.createInitialNodes({{3, 1, 2}, {}}, 3);
    EXPECT_EQ(test::draws_since_seed(), 3);
    DemeLineages const& demes = tree.demes();
    std::vector<int> all;
    for (int slot = 0; slot < 3; ++slot) {
        for (int const lineage : demes.lineages(demes.deme_at(slot))) all.push_back(lineage);
    }
    EXPECT_EQ(all, (std::vector<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(demes.count(demes.deme_at(0)), 3);
    EXPECT_EQ(demes.coalescence_rate(), 3.0 + 0.0 + 1.0);
}

/// The events of a small tree once more, with lists in place of counts: the same draws, compared node by node.
class ListedIslands {
public:
    ListedIslands(std::vector<int> const& copies, int d, double F, TTree const& tree)
        : tree_(tree), d_(d), m_((d - 1.0) * (1.0 / F - 1.0) / (2.0 * 1000.0 * d)), demes_(d) {
        std::vector<int> free(static_cast<std::size_t>(d));
        std::iota(free.begin(), free.end(), 0);
        for (int const c : copies) {
            auto const j = static_cast<std::size_t>(uniform() * static_cast<double>(free.size()));
            int const deme = free[j];
            free[j] = free.back();
            free.pop_back();
            for (int i = 0; i < c; ++i) demes_[deme].push_back(tips_++);
            occupied_.push_back(deme);
        }
        active_ = tips_;
    }
    void run() {
        while (active_ > 1) {
            double total = 0.0;
            for (int const deme : occupied_) total += rate(deme);
            double const all = total + active_ * m_ * 1000.0;
            time_ += -std::log(1.0 - uniform()) / all;
            if (uniform() * all < total) {
                coalesce(demes_[deme_at(uniform() * total)]);
            } else {
                migrate();
            }
        }
    }

private:
    [[nodiscard]] double rate(int deme) const {
        double const c = static_cast<double>(demes_[deme].size());
        return c * (c - 1.0) / 2.0;
    }
    /// The occupied deme at which the sum of the rates reaches v.
    [[nodiscard]] int deme_at(double v) const {
        double sum = 0.0;
        for (int const deme : occupied_) {
            sum += rate(deme);
            if (v <= sum && rate(deme) > 0.0) return deme;
        }
        return -1;
    }
    void coalesce(std::vector<int>& here) {
        int const c = static_cast<int>(here.size());
        int const id = 2 * tips_ - active_;
        int j = static_cast<int>(c * uniform());
        int const left = here[j];
        here[j] = here.back();
        here.pop_back();
        j = static_cast<int>((c - 1) * uniform());
        int const right = here[j];
        here[j] = id;
        --active_;
        EXPECT_EQ(tree_[id].left, &tree_[left]);
        EXPECT_EQ(tree_[id].right, &tree_[right]);
        EXPECT_DOUBLE_EQ(tree_[id].time, time_);
    }
    void migrate() {
        int j = static_cast<int>(active_ * uniform());
        std::size_t slot = 0;
        while (j >= static_cast<int>(demes_[occupied_[slot]].size()))
            j -= static_cast<int>(demes_[occupied_[slot++]].size());
        int const source = occupied_[slot];
        int const lineage = demes_[source][j];
        demes_[source][j] = demes_[source].back();
        demes_[source].pop_back();
        int target = source;
        while (target == source) target = static_cast<int>(uniform() * d_);
        if (demes_[source].empty()) {
            occupied_[slot] = occupied_.back();
            occupied_.pop_back();
        }
        if (demes_[target].empty()) occupied_.push_back(target);
        demes_[target].push_back(lineage);
    }

    TTree const& tree_;
    int d_;
    double m_;
    std::vector<std::vector<int>> demes_;  ///< lineages of each deme
    std::vector<int> occupied_;
    int tips_ = 0;
    int active_ = 0;
    double time_ = 0.0;
};

TEST(FlatIslands, EventsSpendTheirDrawsInOrder) {
    std::vector<int> const copies{3, 2};
    for (long s = 1; s <= 200; ++s) {
        test::seed(-s);
        TTree tree;
        ASSERT_EQ(tree.build_tree_struct_pop({copies, {}}, 0.3, 4), 1);
        RandomState const after = random_state;

        test::seed(-s);
        ListedIslands(copies, 4, 0.3, tree).run();
        EXPECT_EQ(after.ran3.ma, random_state.ran3.ma);
        EXPECT_EQ(after.ran3.inext, random_state.ran3.inext);
    }
}

TEST(FlatIslands, CopiesOfDifferentDemesMeetThroughMigrantsOnly) {
    test::seed(-5);
    TTree tree;
    tree.createInitialNodes({{1, 1}, {}}, 2);
    EXPECT_EQ(tree.demes().coalescence_rate(), 0.0);
    tree.sendMigrant();
    EXPECT_EQ(tree.demes().coalescence_rate(), 1.0);
    EXPECT_EQ(tree.demes().occupied(), 1);
    tree.coalesceWithinAPop(0.5);
    EXPECT_EQ(tree.demes().active(), 1);
    EXPECT_EQ(tree.root().time, 0.5);
}

TEST(FlatIslands, WithoutDemesOrWithoutFstThereIsNoTree) {
    test::FreshProcess fresh;
    TTree tree;
    EXPECT_EQ(tree.build_tree_struct_pop(samples_of(2, 2), 0.1, 0), 0);
    EXPECT_EQ(tree.build_tree_struct_pop(samples_of(2, 2), 0.0, 10), 0);
    EXPECT_EQ(tree.build_tree_struct_pop(samples_of(2, 2), -0.1, 10), 0);
    EXPECT_EQ(fresh.console(),
              "\tTTree::build_tree_struct_pop(): unable to build Tree\n"
              "\tTTree::build_tree_struct_pop(): unable to build Tree\n"
              "\tTTree::build_tree_struct_pop(): unable to build Tree\n");
}

TEST(FlatIslands, IsolatedDemesLeaveNoTree) {
    test::FreshProcess fresh;
    LocusSimulator simulator(samples_of(2, 1));
    IslandModel model;
    model.Fst = 1.0;  // no migration
    model.demes = 2;
    EXPECT_FALSE(simulator.simulateSample(model, {}));
    EXPECT_TRUE(simulator.states().empty());
    EXPECT_EQ(simulator.mutations(), 0);
    EXPECT_EQ(fresh.console(),
              "\tTTree::build_tree_struct_pop(): unable to build Tree\n"
              "\tProject::simulateSample(): Unable to simulate samples\n");
    model.Fst = 0.5;
    EXPECT_TRUE(simulator.simulateSample(model, {}));
}

// Mean times in the model in which migrants between groups enter the first deme of their group, as solved from the
// linear equations of the pair's places.
TEST(TwoLevelIslands, MeanTimesSolveTheirEquations) {
    int const s = 2, g = 2, d = s * g;
    double const fst = 0.37, fct = 0.3;
    MigrationRates const rates = two_level_island_rates(fst, fct, s, g);
    double const mw = rates.within * deme_size, mb = rates.between * deme_size;
    // unknowns T[i][j], i <= j
    auto const at = [&](int i, int j) { return std::min(i, j) * d + std::max(i, j); };
    std::vector<std::vector<double>> a(d * d, std::vector<double>(d * d + 1, 0.0));
    for (int i = 0; i < d; ++i) {
        for (int j = i; j < d; ++j) {
            auto& row = a[at(i, j)];
            double const R = (i == j ? 1.0 : 0.0) + 2.0 * (mw + mb);
            row[at(i, j)] += R;
            row[d * d] = 1.0;
            for (int const moving : {i, j}) {
                int const other = moving == i && i != j ? j : i;
                int const rest = i == j ? i : other;
                int const group = moving / s;
                for (int k = 0; k < s; ++k) {
                    if (group * s + k != moving) row[at(group * s + k, rest)] -= mw / (s - 1);
                }
                for (int h = 0; h < g; ++h) {
                    if (h != group) row[at(h * s, rest)] -= mb / (g - 1);
                }
            }
        }
    }
    for (int i = 0; i < d; ++i) {
        for (int j = 0; j < i; ++j) a[i * d + j][i * d + j] = 1.0;  // unused
    }
    int const n = d * d;
    for (int c = 0; c < n; ++c) {
        int pivot = c;
        for (int r = c; r < n; ++r) {
            if (std::fabs(a[r][c]) > std::fabs(a[pivot][c])) pivot = r;
        }
        std::swap(a[c], a[pivot]);
        for (int r = 0; r < n; ++r) {
            if (r == c) continue;
            double const f = a[r][c] / a[c][c];
            for (int k = c; k <= n; ++k) a[r][k] -= f * a[c][k];
        }
    }
    auto const T = [&](int i, int j) { return a[at(i, j)][n] / a[at(i, j)][at(i, j)]; };
    // samples sit in any deme of a group with equal chance, two samples of a group in different demes
    double const own = (T(0, 0) + T(1, 1)) / 2.0;
    double const group = T(0, 1);
    double const apart = (T(0, 2) + T(0, 3) + T(1, 2) + T(1, 3)) / 4.0;
    test::seed(-9);
    TTree tree;
    Mean m_own, m_group, m_apart;
    for (int r = 0; r < 20000; ++r) {
        ASSERT_EQ(tree.build_tree_struct_pop({{2, 1, 1}, {2, 1}}, fst, fct, s, g), 1);
        m_own.add(common_time(tree, 0, 1));
        m_group.add(common_time(tree, 0, 2));
        m_apart.add(common_time(tree, 0, 3));
    }
    EXPECT_NEAR(m_own.value(), own, 4.0 * m_own.error());
    EXPECT_NEAR(m_group.value(), group, 4.0 * m_group.error());
    EXPECT_NEAR(m_apart.value(), apart, 4.0 * m_apart.error());
}

TEST(TwoLevelIslands, TreesAreWhole) {
    test::seed(-2);
    TTree tree;
    for (int r = 0; r < 20; ++r) {
        ASSERT_EQ(tree.build_tree_struct_pop(samples_of(5, 6, {2, 3}), 0.15, 0.05, 8, 4), 1);
        expect_whole_tree(tree);
        EXPECT_EQ(tree.demes().active(), 1);
        int in_groups = 0;
        for (int h = 0; h < tree.demes().groups(); ++h) in_groups += tree.demes().count_in_group(h);
        EXPECT_EQ(in_groups, 1);
    }
}

TEST(TwoLevelIslands, SamplesOfAGroupShareASimulatedGroup) {
    test::seed(-1);
    TTree tree;
    tree.createInitialNodes(samples_of(5, 2, {2, 3}), 6, 4);
    EXPECT_EQ(test::draws_since_seed(), 2 + 5);
    DemeLineages const& demes = tree.demes();
    std::vector<int> by_group;
    for (int h = 0; h < 4; ++h) by_group.push_back(demes.count_in_group(h));
    std::sort(by_group.begin(), by_group.end());
    EXPECT_EQ(by_group, (std::vector<int>{0, 0, 4, 6}));
    EXPECT_EQ(demes.occupied(), 5);
}

TEST(TwoLevelIslands, TooFewDemesOfAGroupBecomeSamplesPlusTwenty) {
    test::seed(-1);
    TTree tree;
    tree.createInitialNodes(samples_of(5, 2, {2, 3}), 2, 2);
    EXPECT_EQ(tree.demes().per_group(), 23);
}

TEST(TwoLevelIslands, MoreDemesThanMemoryHoldsGiveNoTree) {
    test::FreshProcess fresh;
    TTree tree;
    EXPECT_EQ(tree.build_tree_struct_pop(samples_of(2, 2, {1, 1}), 0.2, 0.1, 2000000000, 2000000000), 0);
    // two demes a group would do, but a group of three samples makes them 23
    EXPECT_EQ(tree.build_tree_struct_pop(samples_of(4, 2, {1, 3}), 0.2, 0.1, 2, 4000000), 0);
    EXPECT_EQ(tree.demes().demes(), 0);
    EXPECT_EQ(tree.build_tree_struct_pop(samples_of(4, 2, {}), 0.2, 2000000000), 0);
}

TEST(TwoLevelIslands, MigrantsOfAnotherGroupEnterItsFirstDeme) {
    test::seed(-4);
    TTree tree;
    for (int r = 0; r < 50; ++r) {
        tree.createInitialNodes({{1}, {1}}, 5, 3);
        tree.sendMigrant2Levels(5, 3, 0.0, 0.1);
        int const deme = tree.demes().deme_at(0);
        EXPECT_EQ(deme % 5, 0);
    }
}

TEST(SimulatedLocus, SteppedStatesAreTheSequencesOfTheTips) {
    test::seed(-6);
    LocusSimulator simulator(samples_of(4, 10));
    IslandModel model;
    model.Fst = 0.1;
    model.demes = 10;
    LocusMutation mutation;
    for (Mut_Type const type : {MUT_STEPWISE, MUT_INFINITE_ALLELES}) {
        mutation.type = type;
        mutation.theta = 0.5;
        int seen = 0;
        for (int r = 0; r < 30; ++r) {
            ASSERT_TRUE(simulator.simulateSample(model, mutation));
            simulator.tree().write_sequences();
            ASSERT_EQ(simulator.states().size(), 40u);
            for (int i = 0; i < 40; ++i) {
                EXPECT_EQ(simulator.states()[static_cast<std::size_t>(i)], (*simulator.tree()[i].sequence)[0]);
            }
            EXPECT_EQ(simulator.mutations(), simulator.tree().nb_mutations());
            seen += simulator.mutations();
        }
        EXPECT_GT(seen, 100);
    }
}

TEST(SimulatedLocus, SingleSitesAreMarkedAsTheRecursionMarksThem) {
    test::seed(-7);
    LocusSimulator simulator(samples_of(3, 6));
    IslandModel model;
    model.Fst = 0.2;
    model.demes = 5;
    LocusMutation mutation;
    mutation.type = MUT_NUCLEOTIDES;
    for (double const least : {0.0, 0.2, 2.0}) {
        mutation.least_derived = least;
        for (int r = 0; r < 50; ++r) {
            ASSERT_EQ(simulator.build_tree(model), 1);
            RandomState const before = random_state;
            EXPECT_EQ(simulator.sprinkle_mutations(mutation), 1);
            random_state = before;
            TTree& tree = simulator.tree();
            tree.count_descendants();
            tree.flush_branches();
            int turned = 0;
            TNode* node = tree.getRootNodeForMutation(0, least);
            if (node == nullptr) {
                turned = 2;
                tree.flush_branches();
                node = tree.getRootNodeForMutation(0, 0.0);
            }
            ASSERT_NE(node, nullptr);
            EXPECT_EQ(turned == 2, least > 1.0);
            tree.root().new_Add_SNP_Mutation(0, node, 0, turned);
            int derived = 0;
            for (int i = 0; i < 18; ++i) {
                EXPECT_EQ(simulator.states()[static_cast<std::size_t>(i)], (*tree[i].sequence)[0]);
                derived += (*tree[i].sequence)[0] == 1;
            }
            EXPECT_TRUE(least > 1.0 || derived >= 18 * least);
        }
    }
}

TEST(SimulatedLocus, CountersOfAnotherNumberOfSitesWarnAndPlaceNothing) {
    test::FreshProcess fresh;
    static std::vector<std::string> reports;
    reports.clear();
    Errors::ErrorProc = [](ErrorType type, my_string const& where, int code) {
        reports.push_back(std::to_string(static_cast<int>(type)) + " " + where.str() + " " + std::to_string(code));
    };
    LocusSimulator simulator(samples_of(2, 3));
    IslandModel model;
    model.Fst = 0.2;
    model.demes = 5;
    ASSERT_EQ(simulator.build_tree(model), 1);
    ASSERT_TRUE(TTree::prepare_hits(4));
    RandomState const before = random_state;
    for (Mut_Type const type : {MUT_NUCLEOTIDES, MUT_STEPWISE}) {
        LocusMutation mutation;
        mutation.type = type;
        mutation.theta = 5.0;
        EXPECT_EQ(simulator.sprinkle_mutations(mutation), 0);
        EXPECT_EQ(simulator.mutations(), 0);
        for (int const state : simulator.states()) EXPECT_EQ(state, 0);
    }
    EXPECT_EQ(random_state.ran3.ma, before.ran3.ma);
    std::string const report =
        std::to_string(static_cast<int>(ErrorType::Warning)) + " Samples::sprinkle_mutations() 177";
    EXPECT_EQ(reports, (std::vector<std::string>{report, report}));
    ASSERT_TRUE(simulator.simulateSample(model, {}));  // the next tree sizes them anew
    EXPECT_EQ(reports.size(), 2u);
}

TEST(SimulatedLocus, MutationsFallAtTheirRate) {
    test::seed(-8);
    LocusSimulator simulator(samples_of(2, 2));
    IslandModel model;
    model.Fst = 0.3;
    model.demes = 4;
    LocusMutation mutation;
    mutation.theta = 0.4;
    Mean difference;
    for (int r = 0; r < 20000; ++r) {
        ASSERT_TRUE(simulator.simulateSample(model, mutation));
        double length = 0.0;
        for (int i = 0; i < simulator.tree().nb_nodes() - 1; ++i) {
            length += simulator.tree()[i].ancestor->time - simulator.tree()[i].time;
        }
        difference.add(simulator.mutations() - 0.5 * mutation.theta * length);
    }
    EXPECT_NEAR(difference.value(), 0.0, 4.0 * difference.error());
}

TEST(Demes, AreAsManyAsTheModelHas) {
    TTree tree;
    tree.createDemes(ISLAND, 7);
    EXPECT_EQ(tree.demes().demes(), 7);
    tree.createDemes(ISLAND, 0);
    EXPECT_EQ(tree.demes().demes(), 7) << "none wanted, nothing done";
    tree.createDemes(STEPPING_STONE, 5);
    EXPECT_EQ(tree.demes().demes(), 25);
    tree.createDemes(static_cast<MigrationModel>(2), 5);
    EXPECT_EQ(tree.demes().demes(), 0);
}

TEST(Demes, AreNumberedGroupByGroup) {
    TTree tree;
    tree.createDemes(ISLAND, 4, 3);
    DemeLineages const& demes = tree.demes();
    ASSERT_EQ(demes.demes(), 12);
    ASSERT_EQ(demes.groups(), 3);
    for (int deme = 0; deme < 12; ++deme) {
        EXPECT_EQ(demes.group_of(deme), deme / 4);
        EXPECT_EQ(demes.count(deme), 0);
    }
    for (int group = 0; group < 3; ++group) EXPECT_EQ(demes.first_of_group(group), 4 * group);
}

TEST(Demes, AreEmptyBehindEachLocus) {
    test::seed(-1);
    LocusSimulator simulator(samples_of(3, 4));
    IslandModel model;
    model.Fst = 0.2;
    model.demes = 6;
    for (int r = 0; r < 3; ++r) {
        ASSERT_TRUE(simulator.simulateSample(model, {}));
        DemeLineages const& demes = simulator.tree().demes();
        EXPECT_EQ(demes.demes(), 6);
        EXPECT_EQ(demes.active(), 0);
        EXPECT_EQ(demes.occupied(), 0);
        for (int deme = 0; deme < 6; ++deme) EXPECT_EQ(demes.count(deme), 0);
    }
}

TEST(Demes, SlotOfARateNeedsTwoLineages) {
    DemeLineages demes;
    demes.create(4, 4);
    demes.settle(2, 0, 1);
    EXPECT_EQ(demes.slot_of_rate(0.0), -1);
    demes.settle(1, 1, 3);
    demes.settle(3, 4, 2);
    EXPECT_EQ(demes.slot_of_rate(0.0), 1);
    EXPECT_EQ(demes.slot_of_rate(3.0), 1);
    EXPECT_EQ(demes.slot_of_rate(3.0000001), 2);
    EXPECT_EQ(demes.slot_of_rate(4.0), 2);
}

TEST(Demes, PlacesFollowTheOccupiedDemesInTheirOrder) {
    DemeLineages demes;
    demes.create(12, 12);
    std::vector<int> const counts{3, 1, 2, 4, 1, 1, 5, 2, 1, 3, 2};
    int first = 0;
    for (int i = 0; i < 11; ++i) {
        demes.settle(11 - i, first, counts[static_cast<std::size_t>(i)]);
        first += counts[static_cast<std::size_t>(i)];
    }
    for (int moved = 0; moved < 60; ++moved) {
        int j = 0;
        for (int slot = 0; slot < demes.occupied(); ++slot) {
            for (int k = 0; k < demes.count(demes.deme_at(slot)); ++k, ++j) {
                DemeLineages::Place const place = demes.place_of(j);
                EXPECT_EQ(place.slot, slot);
                EXPECT_EQ(place.position, k);
            }
        }
        EXPECT_EQ(j, 25);
        DemeLineages::Place const from = demes.place_of(7 * moved % 25);
        int const source = demes.deme_at(from.slot);
        demes.move(from, (source + 1 + moved % 11) % 12);  // demes empty and fill
    }
}

TEST(Demes, CleaningKeepsTheirShape) {
    DemeLineages demes;
    demes.create(6, 3);
    demes.settle(4, 0, 5);
    demes.clean();
    EXPECT_EQ(demes.demes(), 6);
    EXPECT_EQ(demes.groups(), 2);
    EXPECT_EQ(demes.occupied(), 0);
    EXPECT_EQ(demes.active(), 0);
    EXPECT_EQ(demes.count(4), 0);
    EXPECT_EQ(demes.count_in_group(1), 0);
    EXPECT_EQ(demes.coalescence_rate(), 0.0);
}

}  // namespace
}  // namespace tov
