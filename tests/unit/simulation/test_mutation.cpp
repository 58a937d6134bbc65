// Mutations: rates of sites, placing on a tree, and what the tips show, against known vectors and theory.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <sstream>

#include "tree_support.h"

namespace tov {
namespace {

using test::Moments;

constexpr int REPLICATES = 20000;

MutationModel model_of(double mu, int sites, Mut_Type type, double gamma_a = 0.0) {
    MutationModel model;
    model.mu = mu;
    model.sites = sites;
    model.type = type;
    model.gamma_a = gamma_a;
    return model;
}

/// A tree with mutations, made anew from a seed.
class MutatedTree : public testing::Test {
protected:
    void SetUp() override { TNode::hits.Flush(); }
    void TearDown() override { TNode::hits.Flush(); }

    void make(int n, MutationModel const& model) {
        if (tree.sample_size() != n) tree.allocate_tree(n);
        again(model);
    }
    void again(MutationModel const& model) {
        TNode::reset_node_count();
        tree.build_tree();
        ASSERT_TRUE(TTree::prepare_hits(model.sites));
        tree.add_mutations(model);
    }

    TTree tree;
};

using Mutations = MutatedTree;

TEST_F(Mutations, FollowTheirDrawsEventByEvent) {
    test::seed();
    make(6, model_of(1.5, 20, MUT_NUCLEOTIDES));
    EXPECT_EQ(test::draws_since_seed(), 67);
    int const expected[][4] = {{0, 0, 2, 1}, {0, 1, 3, 0}, {0, 2, 0, 1}, {0, 3, 2, 1},
                               {8, 4, 2, 0}, {8, 5, 2, 3}, {8, 6, 0, 3}, {2, 7, 0, 3}};
    auto const& events = tree.log().events;
    ASSERT_EQ(events.size(), 8U);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(events[i].node, expected[i][0]);
        EXPECT_EQ(events[i].site, expected[i][1]);
        EXPECT_EQ(events[i].from, expected[i][2]);
        EXPECT_EQ(events[i].to, expected[i][3]);
    }
    for (int site = 0; site < 20; ++site) EXPECT_EQ(TNode::hits[site], site < 8 ? 1 : 0);
    EXPECT_EQ(TNode::_tot_mut, 8);
    tree.write_sequences();
    EXPECT_EQ(test::text_of(tree[0]), "GAGGCCAACTTCGACACGTG");
    EXPECT_EQ(test::text_of(tree[1]), "CTACCCAACTTCGACACGTG");
    EXPECT_EQ(test::text_of(tree[2]), "CTACATTTCTTCGACACGTG");
    EXPECT_EQ(test::text_of(tree[3]), "CTACATTACTTCGACACGTG");
    EXPECT_EQ(test::text_of(tree[4]), "CTACATTACTTCGACACGTG");
    EXPECT_EQ(test::text_of(tree[5]), "CTACCCAACTTCGACACGTG");
}

TEST_F(Mutations, OfANodeAreThoseOfTheTree) {
    test::seed();
    make(6, model_of(1.5, 20, MUT_NUCLEOTIDES));
    test::seed();
    TNode::reset_node_count();
    tree.build_tree();
    ASSERT_TRUE(TTree::prepare_hits(20));
    long idum = 1;
    EXPECT_EQ(tree.root().add_mutations(1.5, &idum, 0, 20, MUT_NUCLEOTIDES, 0.0, 0.33), 8);
    EXPECT_EQ(test::draws_since_seed(), 67);
    EXPECT_EQ(test::text_of(tree[10]), "CTACCCAACTTCGACACGTG");
    EXPECT_EQ(test::text_of(tree[8]), "CTACATTACTTCGACACGTG");
    EXPECT_EQ(test::text_of(tree[2]), "CTACATTTCTTCGACACGTG");
    EXPECT_EQ(tree[0].num_mutations, 4);
    EXPECT_EQ(tree[8].num_mutations, 3);
}

TEST_F(Mutations, OfANodeInStepsOfAllelesAreThoseOfTheTree) {
    TNode::min_mic = -3;
    TNode::max_mic = 3;
    MutationModel model = model_of(5.0, 2, MUT_STEPWISE);
    model.allele_steps = true;
    model.constrained = 1;
    model.geometric_p = 0.6;
    test::seed();
    make(6, model);
    tree.write_sequences();
    long const draws = test::draws_since_seed();
    std::vector<int> states;
    for (int tip = 0; tip < 6; ++tip) {
        for (int site = 0; site < 2; ++site) states.push_back((*tree[tip].sequence)[site]);
    }
    int const placed = tree.nb_mutations();
    ASSERT_GT(placed, 5);

    test::seed();
    TNode::reset_node_count();
    tree.build_tree();
    ASSERT_TRUE(TTree::prepare_hits(2));
    long idum = 1;
    EXPECT_EQ(tree.root().add_mutations(5.0, &idum, 0, 2, MUT_STEPWISE, 0.0, 0.33, 1, 0.6), placed);
    EXPECT_EQ(test::draws_since_seed(), draws);
    for (int tip = 0; tip < 6; ++tip) {
        for (int site = 0; site < 2; ++site) {
            EXPECT_EQ((*tree[tip].sequence)[site], states[static_cast<std::size_t>(2 * tip + site)]);
        }
    }
    TNode::min_mic = 0;
    TNode::max_mic = 0;
}

TEST_F(Mutations, IdenticalTipsAreGroupedUnderTheFirst) {
    test::seed();
    make(6, model_of(1.5, 20, MUT_NUCLEOTIDES));
    tree.write_sequences();
    tree.compute_hapl_freq();
    int const unique[] = {1, 1, 1, 1, 0, 0};
    int const frequency[] = {1, 2, 1, 2, 1, 1};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(tree[i].is_unique, unique[i]);
        EXPECT_EQ(tree[i].frequency, frequency[i]);
    }
    std::ostringstream out;
    tree.print_sequences(out, MUT_NUCLEOTIDES);
    EXPECT_EQ(out.str(),
              "    1 1 GAGGCCAACTTCGACACGTG\n    2 2 CTACCCAACTTCGACACGTG\n"
              "    3 1 CTACATTTCTTCGACACGTG\n    4 2 CTACATTACTTCGACACGTG\n");
    tree.compute_hapl_freq(4, 2);
    EXPECT_EQ(tree[4].is_unique, 1);
    EXPECT_EQ(tree[5].is_unique, 1);
}

TEST_F(Mutations, PrintsNothingWithoutSites) {
    std::ostringstream out;
    tree.print_sequences(out, MUT_BINARY);
    tree.allocate_tree(3);
    tree.print_sequences(out, MUT_BINARY);
    EXPECT_EQ(out.str(), "");
}

TEST_F(Mutations, FillTheSitesInOrderBeforeAnyIsHitTwice) {
    for (int const seed : {1, 2, 3, 4}) {
        test::seed(-seed);
        TNode::hits.Flush();
        make(10, model_of(4.0, 12, MUT_NUCLEOTIDES));
        auto const& events = tree.log().events;
        for (std::size_t i = 0; i < events.size() && i < 12; ++i) EXPECT_EQ(events[i].site, static_cast<int>(i));
        long total = 0;
        for (int site = 0; site < 12; ++site) total += TNode::hits[site];
        EXPECT_EQ(total, static_cast<long>(events.size()));
        EXPECT_EQ(tree.log().sites_hit_again, std::max(0, static_cast<int>(events.size()) - 12));
    }
}

TEST_F(Mutations, StatisticsEqualThoseOfAllPairsOfTips) {
    for (Mut_Type const type : {MUT_BINARY, MUT_NUCLEOTIDES}) {
        for (int const sites : {3, 10, 60, 400}) {
            for (double const gamma_a : {0.0, 0.4}) {
                TNode::hits.Flush();
                test::seed(-sites);
                for (int r = 0; r < 40; ++r) {
                    make(15, model_of(2.5, sites, type, gamma_a));
                    tree.write_sequences();
                    auto const slow = test::slow_counts(tree);
                    SiteStatistics const fast = tree.site_statistics();
                    ASSERT_EQ(fast.segregating_sites, slow.sites) << type << ' ' << sites << ' ' << r;
                    ASSERT_EQ(fast.transitions, slow.transitions);
                    ASSERT_EQ(fast.transversions, slow.transversions);
                    ASSERT_EQ(tree.distinct_tips(), slow.distinct);
                    tree.compute_hapl_freq();
                    int unique = 0;
                    for (TNode const& tip : tree.tips()) unique += tip.is_unique;
                    ASSERT_EQ(unique, slow.distinct);
                }
            }
        }
    }
}

TEST_F(Mutations, EventsGiveTheStatesThatStepByStepCopyingGives) {
    for (Mut_Type const type : {MUT_STEPWISE, MUT_BINARY, MUT_NUCLEOTIDES, MUT_INFINITE_ALLELES}) {
        TNode::hits.Flush();
        test::seed(-21);
        make(12, model_of(6.0, 8, type));
        std::vector<std::vector<int>> states(static_cast<std::size_t>(tree.nb_nodes()));
        for (int i = tree.nb_nodes() - 1; i >= 0; --i) {
            TNode const& node = tree[i];
            auto& row = states[static_cast<std::size_t>(i)];
            row = node.ancestor ? states[static_cast<std::size_t>(node.ancestor->node_id)] : tree.log().root;
            for (MutationEvent const& event : tree.log().events) {
                if (event.node != i) continue;
                ASSERT_EQ(row[static_cast<std::size_t>(event.site)], event.from);
                ASSERT_NE(event.from, event.to);
                row[static_cast<std::size_t>(event.site)] = event.to;
            }
        }
        tree.write_sequences();
        for (int i = 0; i < 12; ++i) {
            for (int site = 0; site < 8; ++site) {
                ASSERT_EQ((*tree[i].sequence)[site],
                          states[static_cast<std::size_t>(i)][static_cast<std::size_t>(site)]);
            }
        }
    }
}

TEST_F(Mutations, BinarySitesReturnToZeroAtTheSecondHit) {
    test::seed(-2);
    make(4, model_of(10.0, 1, MUT_BINARY));
    ASSERT_GT(tree.nb_mutations(), 2);
    for (MutationEvent const& event : tree.log().events) EXPECT_EQ(event.to, 1 - event.from);
}

TEST_F(Mutations, InfiniteAllelesNeverRepeatAState) {
    test::seed(-2);
    make(8, model_of(10.0, 3, MUT_INFINITE_ALLELES));
    std::map<int, int> last;
    for (MutationEvent const& event : tree.log().events) EXPECT_EQ(event.to, ++last[event.site]);
}

TEST_F(Mutations, ATinyShapeCountsAsUniformButDrawsItsRates) {
    test::seed(-4);
    make(5, model_of(1.0, 10, MUT_BINARY, 1e-8));
    ASSERT_GT(tree.nb_mutations(), 1);
    EXPECT_TRUE(TNode::mut_rates.is_built());
    EXPECT_EQ(TNode::mut_rates.shape(), 1e-8);
    EXPECT_EQ(tree.log().events[1].site, 1);
}

TEST_F(Mutations, ANegativeShapeSpendsOneDrawOnEachSite) {
    test::seed(-6);
    TNode::reset_node_count();
    tree.allocate_tree(2);
    tree.build_tree();
    ASSERT_TRUE(TTree::prepare_hits(400));
    RandomState const before = random_state;
    tree.add_mutations(model_of(8.0, 400, MUT_INFINITE_ALLELES, -1.0));
    random_state = before;
    for (int child = 0; child < 2; ++child) {  // left first; both branches are as long as the root's time
        long idum = 1;
        TNode const& node = child == 0 ? *tree.root().left : *tree.root().right;
        ASSERT_EQ(poidev(static_cast<float>(tree.root().time * 8.0), &idum), node.num_mutations);
        for (int i = 0; i < node.num_mutations; ++i) {
            auto const e = static_cast<std::size_t>(tree.log().first_event[static_cast<std::size_t>(node.node_id)] + i);
            EXPECT_EQ(tree.log().events[e].site, static_cast<int>(400.0 * uniform()));
        }
    }
}

// A population that grew from theta 1 to theta 20, tau 4 ago.
TEST_F(Mutations, FollowTheirDrawsAfterASuddenExpansion) {
    test::seed();
    long const N = 4000000;
    double const mu = 0.5 * 20.0 / static_cast<double>(N);
    TNode::reset_node_count();
    tree.allocate_tree(6);
    tree.build_tree();
    tree.bottleneck(0.5 * 4.0 / (static_cast<double>(N) * mu), 1.0 / 20.0);
    tree.scale_to_num_generations(N);
    ASSERT_TRUE(TTree::prepare_hits(400));
    EXPECT_EQ(tree.add_mutations(model_of(mu, 400, MUT_INFINITE_ALLELES, -1.0)), 12);
    EXPECT_EQ(test::draws_since_seed(), 49);
    tree.write_sequences();
    std::map<int, int> pairs;
    std::map<int, int> polymorphic;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < i; ++j) {
            int differences = 0;
            for (int site = 0; site < 400; ++site) {
                if ((*tree[i].sequence)[site] == (*tree[j].sequence)[site]) continue;
                ++differences;
                polymorphic[site] = 1;
            }
            ++pairs[differences];
        }
    }
    std::map<int, int> const expected{{1, 3}, {2, 1}, {4, 2}, {5, 5}, {6, 2}, {8, 1}, {9, 1}};
    EXPECT_EQ(pairs, expected);
    EXPECT_EQ(polymorphic.size(), 11U);
}

TEST_F(Mutations, ZeroRateStillDrawsOnceABranch) {
    test::seed();
    make(6, model_of(0.0, 5, MUT_BINARY));
    EXPECT_EQ(tree.nb_mutations(), 0);
    EXPECT_EQ(test::draws_since_seed(), 15 + 10);
}

TEST_F(Mutations, ATreeThatExpectsTooManyGetsNone) {
    test::seed();
    make(6, model_of(1.0, 5, MUT_BINARY));
    double const length = tree.length();
    double expected = 0.0;
    for (int i = 0; i < tree.nb_nodes(); ++i) {
        if (tree[i].ancestor) expected += tree[i].ancestor->time - tree[i].time;
    }
    EXPECT_DOUBLE_EQ(length, expected);
    ASSERT_GT(length, 0.0);
    for (double const mu : {1.01 * TTree::most_mutations / length, 1e15, 1e300}) {
        ASSERT_TRUE(TTree::prepare_hits(5));
        EXPECT_EQ(tree.add_mutations(model_of(mu, 5, MUT_BINARY)), 0);
        EXPECT_EQ(tree.nb_mutations(), 0);
        tree.write_sequences();
        EXPECT_EQ((*tree[0].sequence)[0], (*tree[5].sequence)[0]);
    }
    ASSERT_TRUE(TTree::prepare_hits(5));
    EXPECT_GT(tree.add_mutations(model_of(1000.0 / length, 5, MUT_BINARY)), 800);
}

TEST_F(Mutations, NoSitesMeanNoMutations) {
    test::seed();
    make(6, model_of(3.0, 0, MUT_NUCLEOTIDES));
    EXPECT_EQ(tree.nb_mutations(), 0);
    tree.write_sequences();
    EXPECT_EQ(tree[0].sequence->size(), 0);
}

TEST_F(Mutations, AnEmptyTreeHasNone) {
    test::seed();
    make(6, model_of(3.0, 10, MUT_NUCLEOTIDES));
    tree.set_sample_size(0);
    again(model_of(3.0, 10, MUT_NUCLEOTIDES));
    EXPECT_EQ(tree.nb_mutations(), 0);
    EXPECT_EQ(tree.site_statistics().segregating_sites, 0);
    EXPECT_EQ(tree.distinct_tips(), 0);
    tree.flush_branches();
    EXPECT_EQ(tree.getRootNodeForMutation(0, 0.0), nullptr);
    EXPECT_EQ(tree.compute_moments_of_coalescence_times(), 0);
}

TEST_F(Mutations, CountersOfAnotherSizeAreRefused) {
    EXPECT_TRUE(TTree::prepare_hits(10));
    TNode::hits[3] = 5;
    EXPECT_TRUE(TTree::prepare_hits(10));
    EXPECT_EQ(TNode::hits[3], 0);
    EXPECT_FALSE(TTree::prepare_hits(11));
    TNode::hits.Flush();
    EXPECT_TRUE(TTree::prepare_hits(11));
    EXPECT_EQ(TNode::hits.GetItemsInContainer(), 11);
}

TEST_F(Mutations, SegregatingSitesHaveTheirMeanAndVariance) {
    for (int const n : {2, 5, 20}) {
        TNode::hits.Flush();
        test::seed(-100 - n);
        double const theta = 5.0;
        Moments S;
        Moments pi;
        for (int r = 0; r < REPLICATES; ++r) {
            make(n, model_of(theta / 2.0, 2000, MUT_NUCLEOTIDES));
            SiteStatistics const s = tree.site_statistics();
            S.add(s.segregating_sites);
            pi.add(static_cast<double>(s.transitions + s.transversions) / (0.5 * n * (n - 1.0)));
        }
        double a1 = 0.0;
        double a2 = 0.0;
        for (int i = 1; i < n; ++i) {
            a1 += 1.0 / i;
            a2 += 1.0 / (i * static_cast<double>(i));
        }
        // Watterson 1975; Tajima 1983
        EXPECT_NEAR(S.mean(), theta * a1, 4.0 * S.error_of_mean()) << n;
        EXPECT_NEAR(S.variance(), theta * a1 + theta * theta * a2, 4.0 * S.error_of_variance()) << n;
        double const var_pi =
            (n + 1.0) * theta / (3.0 * (n - 1.0)) + 2.0 * (n * n + n + 3.0) * theta * theta / (9.0 * n * (n - 1.0));
        EXPECT_NEAR(pi.mean(), theta, 4.0 * pi.error_of_mean()) << n;
        EXPECT_NEAR(pi.variance(), var_pi, 4.0 * pi.error_of_variance()) << n;
    }
}

TEST_F(Mutations, TransitionsHaveTheirShare) {
    test::seed(-8);
    long transitions = 0;
    long all = 0;
    for (int r = 0; r < 2000; ++r) {
        make(10, model_of(2.0, 500, MUT_NUCLEOTIDES));
        for (MutationEvent const& event : tree.log().events) {
            ++all;
            transitions += (event.from < 2) == (event.to < 2) ? 1 : 0;
        }
    }
    double const n = static_cast<double>(all);
    EXPECT_NEAR(static_cast<double>(transitions), 0.33 * n, 4.0 * std::sqrt(n * 0.33 * 0.67));
}

// Under the infinite-allele model the number of alleles of n copies follows Ewens' sampling formula:
// P(k) = |s(n, k)| theta^k / (theta (theta + 1) ... (theta + n - 1)).
TEST_F(Mutations, NumberOfAllelesFollowsEwensDistribution) {
    constexpr int n = 8;
    double const theta = 2.0;
    std::vector<double> stirling(n + 1, 0.0);
    stirling[0] = 1.0;
    for (int i = 0; i < n; ++i) {  // times (x + i)
        for (int k = n; k >= 0; --k) {
            auto const at = static_cast<std::size_t>(k);
            stirling[at] = (k > 0 ? stirling[at - 1] : 0.0) + i * stirling[at];
        }
    }
    double rising = 1.0;
    for (int i = 0; i < n; ++i) rising *= theta + i;

    test::seed(-31);
    std::vector<int> seen(n + 1, 0);
    for (int r = 0; r < REPLICATES; ++r) {
        make(n, model_of(theta / 2.0, 1, MUT_INFINITE_ALLELES));
        tree.write_sequences();
        tree.compute_hapl_freq();
        int k = 0;
        for (TNode const& tip : tree.tips()) k += tip.is_unique;
        ++seen[static_cast<std::size_t>(k)];
    }
    for (int k = 1; k <= n; ++k) {
        double const p = stirling[static_cast<std::size_t>(k)] * std::pow(theta, k) / rising;
        EXPECT_NEAR(seen[static_cast<std::size_t>(k)], p * REPLICATES,
                    4.0 * std::sqrt(REPLICATES * p * (1.0 - p)) + 1.0)
            << k;
    }
}

// --- Microsatellite alleles ---

class AlleleSteps : public MutatedTree {
protected:
    /// States of one site under the second form, with `draws` uniforms of the walk replayed.
    void place(double mu, int constrained, double p, int sites = 1) {
        TNode::reset_node_count();
        tree.allocate_tree(4);
        tree.build_tree();
        ASSERT_TRUE(TTree::prepare_hits(sites));
        MutationModel model = model_of(mu, sites, MUT_STEPWISE);
        model.allele_steps = true;
        model.constrained = constrained;
        model.geometric_p = p;
        tree.add_mutations(model);
    }
};

TEST_F(AlleleSteps, StayWithinTheirBounds) {
    TNode::min_mic = -2;
    TNode::max_mic = 1;
    for (double const p : {0.0, 0.6}) {
        test::seed(-12);
        TNode::hits.Flush();
        place(30.0, 1, p);
        ASSERT_GT(tree.nb_mutations(), 20);
        for (MutationEvent const& event : tree.log().events) {
            EXPECT_GE(event.to, -2);
            EXPECT_LE(event.to, 1);
            if (event.from == -2) {
                EXPECT_GT(event.to, -2);
            }
            if (event.from == 1) {
                EXPECT_LT(event.to, 1);
            }
        }
    }
    TNode::min_mic = 0;
    TNode::max_mic = 0;
}

TEST_F(AlleleSteps, DirectionsDifferBetweenTheForms) {
    // three draws tell the story: site, (step,) direction
    for (double const p : {0.0, 0.6}) {
        test::seed(-15);
        TNode::hits.Flush();
        place(3.0, 0, p);
        test::seed(-15);
        for (int i = 0; i < 9; ++i) uniform();  // the tree of 4
        long idum = 1;
        std::size_t e = 0;
        // the root's left subtree is walked first
        TNode const* node = tree.root().left;
        int const count = poidev(static_cast<float>((tree.root().time - node->time) * 3.0), &idum);
        ASSERT_EQ(count, node->num_mutations);
        for (int i = 0; i < count; ++i, ++e) {
            uniform();  // the site is drawn, although there is one only
            int const step = p > 0.0 ? geometric(p) + 1 : 1;
            bool const low = uniform() < 0.5;
            int const change = tree.log().events[e].to - tree.log().events[e].from;
            EXPECT_EQ(change, (p > 0.0) == low ? step : -step);
        }
    }
}

TEST_F(AlleleSteps, TheFirstFormGoesDownBelowOneHalf) {
    test::seed(-15);
    make(4, model_of(3.0, 1, MUT_STEPWISE));
    ASSERT_GT(tree.nb_mutations(), 0);
    test::seed(-15);
    for (int i = 0; i < 9; ++i) uniform();
    long idum = 1;
    TNode const* node = tree.root().left;
    int const count = poidev(static_cast<float>((tree.root().time - node->time) * 3.0), &idum);
    for (int i = 0; i < count; ++i) {
        if (i > 0) uniform();  // the first site is filled without a draw
        auto const& event = tree.log().events[static_cast<std::size_t>(i)];
        EXPECT_EQ(event.to - event.from, uniform() < 0.5 ? -1 : 1);
    }
}

// --- Rates ---

TEST(GammaRates, ShareOutTheFirstRate) {
    GammaRates rates;
    rates.build(4, -1.0, 3.0, 0.25);
    EXPECT_EQ(rates.num_first_rate(), 2);
    double const expected[] = {3.0 / 8, 3.0 / 8, 1.0 / 8, 1.0 / 8};
    for (std::size_t i = 0; i < 4; ++i) EXPECT_DOUBLE_EQ(rates.rates()[i], expected[i]);
    rates.get_new_rates(3, 0.0, 5.0, 1.0);
    EXPECT_EQ(rates.num_sites(), 3);
    EXPECT_EQ(rates.num_first_rate(), 3);
    EXPECT_DOUBLE_EQ(rates.rates()[2], 1.0 / 3.0);
}

TEST(GammaRates, DrawTheDeviatesOfTheirShape) {
    test::seed(-9);
    GammaRates rates;
    rates.build(50, 0.7, 1.0, 1.0);
    test::seed(-9);
    std::vector<double> deviates;
    double sum = 0.0;
    for (int i = 0; i < 50; ++i) {
        deviates.push_back(gamma_dev(0.7));
        sum += deviates.back();
    }
    for (std::size_t i = 0; i < 50; ++i) EXPECT_DOUBLE_EQ(rates.rates()[i], deviates[i] / sum);
}

TEST(GammaRates, SitesAreThoseOfAWalk) {
    test::seed(-10);
    GammaRates rates;
    rates.build(30, 0.3, 1.0, 1.0);
    for (int trial = 0; trial < 2000; ++trial) {
        double const u = trial == 0 ? 0.0 : trial == 1 ? 0.999999999 : uniform();
        int site = -1;
        double s = 0.0;
        while (site < 29) {
            ++site;
            s += rates.rates()[static_cast<std::size_t>(site)];
            if (s > u) break;
        }
        EXPECT_EQ(rates.site_from_below(u), site);
        site = 30;
        s = 0.0;
        while (site - 1 >= 0) {
            --site;
            s += rates.rates()[static_cast<std::size_t>(site)];
            if (s > u) break;
        }
        EXPECT_EQ(rates.site_from_above(u), site);
    }
}

// --- One mutation on a branch drawn by length ---

using SingleMutation = MutatedTree;

TEST_F(SingleMutation, MarksTheSubtreeOfItsBranch) {
    test::seed();
    tree.allocate_tree(6);
    tree.build_tree();
    tree.root().count_desc();
    TNode* mutated = &tree[8];
    tree.root().new_Add_SNP_Mutation(0, mutated, 0, 0);
    int const expected[] = {0, 0, 1, 1, 1, 0};
    for (int i = 0; i < 6; ++i) EXPECT_EQ((*tree[i].sequence)[0], expected[i]) << i;
    // node 7 stands left of node 8; node 0's sibling 9 gets the start state
    mutated = &tree[7];
    tree.root().new_Add_SNP_Mutation(0, mutated, 0, 2);
    int const with_new[] = {0, 1, 2, 2, 2, 1};
    for (int i = 0; i < 6; ++i) EXPECT_EQ((*tree[i].sequence)[0], with_new[i]) << i;
}

TEST_F(SingleMutation, FallsOnBranchesByTheirLength) {
    test::seed();
    tree.allocate_tree(6);
    tree.build_tree();
    tree.root().count_desc();
    double total = 0.0;
    std::vector<double> length(11, 0.0);
    for (int i = 0; i < 10; ++i) {
        TNode const& node = tree[i];
        if (node.is_tip()) continue;  // one of six tips is less than 0.3
        if (node.num_desc() / 6.0 < 0.3) continue;
        length[static_cast<std::size_t>(i)] = node.ancestor->time - node.time;
        total += length[static_cast<std::size_t>(i)];
    }
    std::vector<int> seen(11, 0);
    test::seed(-14);
    for (int r = 0; r < REPLICATES; ++r) {
        TNode* const node = tree.getRootNodeForMutation(0, 0.3);
        if (node) ++seen[static_cast<std::size_t>(node->node_id)];
    }
    for (std::size_t i = 0; i < 11; ++i) {
        double const p = length[i] / total;
        EXPECT_NEAR(seen[i], p * REPLICATES, 4.0 * std::sqrt(REPLICATES * p * (1.0 - p)) + 1.0) << i;
    }
}

TEST_F(SingleMutation, HasNoBranchWhenNoneQualifies) {
    test::seed();
    tree.allocate_tree(6);
    tree.build_tree();
    tree.root().count_desc();
    EXPECT_EQ(tree.getRootNodeForMutation(0, 1.1), nullptr);
    tree.flush_branches();
    EXPECT_NE(tree.getRootNodeForMutation(0, 0.0), nullptr);
}

}  // namespace
}  // namespace tov
