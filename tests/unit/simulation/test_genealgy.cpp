// Genealogies: their draws, times and shapes, against known vectors and coalescent theory.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "tree_support.h"

namespace tov {
namespace {

using test::Moments;

constexpr int REPLICATES = 20000;

TEST(BuildTree, FollowsItsDrawsNodeByNode) {
    test::seed();
    TTree tree;
    tree.allocate_tree(6);
    tree.build_tree();
    EXPECT_EQ(test::draws_since_seed(), 15);
    double const times[] = {.023609719, .1491781509, .1547745861, .8463086097, 1.610295561};
    int const children[][2] = {{3, 4}, {1, 5}, {6, 2}, {7, 8}, {0, 9}};
    for (int i = 0; i < 5; ++i) {
        TNode const& node = tree[6 + i];
        EXPECT_NEAR(node.time, times[i], 1e-9);
        EXPECT_EQ(node.left, &tree[children[i][0]]);
        EXPECT_EQ(node.right, &tree[children[i][1]]);
        EXPECT_EQ(node.left->ancestor, &node);
        EXPECT_EQ(node.right->ancestor, &node);
    }
    EXPECT_EQ(tree.root().ancestor, nullptr);
    EXPECT_EQ(tree.root().node_id, 10);
}

TEST(BuildTree, OneCopyGivesOneNodeAndNoDraw) {
    test::seed();
    TTree tree;
    tree.allocate_tree(1);
    tree.build_tree();
    EXPECT_EQ(tree.nb_nodes(), 1);
    EXPECT_EQ(&tree.root(), &tree[0]);
    EXPECT_EQ(tree[0].time, 0.0);
    EXPECT_EQ(test::draws_since_seed(), 0);
    EXPECT_EQ(tree.compute_moments_of_coalescence_times(), 0);
}

TEST(BuildTree, ASmallerSampleUsesTheSameNodes) {
    TTree tree;
    tree.allocate_tree(20);
    tree.build_tree();
    tree.set_sample_size(5);
    TNode const* const first = &tree[0];
    test::seed();
    tree.build_tree();
    EXPECT_EQ(&tree[0], first);
    EXPECT_EQ(tree.root().ancestor, nullptr);
    EXPECT_EQ(tree.root().count_desc(), 5);
}

TEST(BuildTree, TimesAndHeightHaveTheirMeansAndVariances) {
    for (int const n : {2, 5, 20}) {
        test::seed(-n);
        TTree tree;
        tree.allocate_tree(n);
        Moments height;
        std::vector<Moments> interval(static_cast<std::size_t>(n + 1));
        for (int r = 0; r < REPLICATES; ++r) {
            tree.build_tree();
            height.add(tree.root().time);
            for (int k = n; k >= 2; --k) {
                double const before = k == n ? 0.0 : tree[2 * n - k - 1].time;
                interval[static_cast<std::size_t>(k)].add(tree[2 * n - k].time - before);
            }
        }
        double variance = 0.0;
        for (int k = 2; k <= n; ++k) {
            double const expected = 2.0 / (k * (k - 1.0));  // exponential with rate k (k - 1) / 2
            variance += expected * expected;
            Moments const& t = interval[static_cast<std::size_t>(k)];
            EXPECT_NEAR(t.mean(), expected, 4.0 * t.error_of_mean()) << "n " << n << " k " << k;
            EXPECT_NEAR(t.variance(), expected * expected, 4.0 * t.error_of_variance()) << "n " << n << " k " << k;
        }
        EXPECT_NEAR(height.mean(), 2.0 * (1.0 - 1.0 / n), 4.0 * height.error_of_mean()) << n;
        EXPECT_NEAR(height.variance(), variance, 4.0 * height.error_of_variance()) << n;
    }
}

TEST(BuildTree, PairsCoalesceAfterOneUnitOnAverage) {
    test::seed(-7);
    TTree tree;
    tree.allocate_tree(20);
    Moments pair_time;
    for (int r = 0; r < REPLICATES; ++r) {
        tree.build_tree();
        ASSERT_EQ(tree.compute_moments_of_coalescence_times(), 1);
        pair_time.add(tree.mean);
    }
    EXPECT_NEAR(pair_time.mean(), 1.0, 4.0 * pair_time.error_of_mean());
}

TEST(BuildTree, EveryTipIsEquallyLikelyToJoinFirst) {
    test::seed(-3);
    TTree tree;
    constexpr int n = 5;
    tree.allocate_tree(n);
    std::vector<int> joined(n);
    for (int r = 0; r < REPLICATES; ++r) {
        tree.build_tree();
        ++joined[static_cast<std::size_t>(tree[n].left->node_id)];
        ++joined[static_cast<std::size_t>(tree[n].right->node_id)];
    }
    double const p = 2.0 / n;
    for (int const count : joined) {
        EXPECT_NEAR(count, p * REPLICATES, 4.0 * std::sqrt(REPLICATES * p * (1.0 - p)));
    }
}

TEST(RangeExpansion, FollowsItsDrawsEventByEvent) {
    test::seed();
    TTree tree;
    tree.allocate_tree(5);
    tree.build_tree_range_exp(0.5, 1.0);
    EXPECT_EQ(test::draws_since_seed(), 15);
    double const times[] = {.023609719, .1000084141, .6082289456, 1.365580932};
    int const children[][2] = {{0, 3}, {5, 4}, {2, 6}, {7, 1}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(tree[5 + i].time, times[i], 1e-9);
        EXPECT_EQ(tree[5 + i].left, &tree[children[i][0]]);
        EXPECT_EQ(tree[5 + i].right, &tree[children[i][1]]);
    }
}

TEST(RangeExpansion, WithTauZeroPairsCoalesceAtRateOne) {
    test::seed(-5);
    TTree tree;
    tree.allocate_tree(2);
    Moments t;
    for (int r = 0; r < REPLICATES; ++r) {
        tree.build_tree_range_exp(0.0, 3.0);
        t.add(tree.root().time);
    }
    EXPECT_NEAR(t.mean(), 1.0, 4.0 * t.error_of_mean());
}

// Two lineages in the deme: a coalescence at rate 1 or the first departure at rate 2m, whichever comes first before
// tau. A pair that is parted coalesces at tau plus an exponential time of mean 1, as does one that saw no event.
TEST(RangeExpansion, PairTimesFollowTheCompetingRates) {
    for (double const m : {0.5, 2.0}) {
        test::seed(-11);
        double const tau = 0.8;
        TTree tree;
        tree.allocate_tree(2);
        Moments early;
        Moments t;
        for (int r = 0; r < REPLICATES; ++r) {
            tree.build_tree_range_exp(tau, m);
            early.add(tree.root().time < tau ? 1.0 : 0.0);
            t.add(tree.root().time);
        }
        double const a = 1.0 + 2.0 * m;
        double const p = (1.0 - std::exp(-a * tau)) / a;
        double const early_time = (1.0 - std::exp(-a * tau) * (1.0 + a * tau)) / (a * a);
        EXPECT_NEAR(early.mean(), p, 4.0 * early.error_of_mean());
        EXPECT_NEAR(t.mean(), early_time + (1.0 - p) * (tau + 1.0), 4.0 * t.error_of_mean());
    }
}

// With a large sample nothing but migration matters once m is large: each of n lineages leaves at rate m, so the number
// that has stayed until tau is close to n exp(-m tau) less those that coalesced; for n = 2 the law is exact:
// both still present with probability exp(-(1 + 2 m) tau), none moved.
TEST(RangeExpansion, MigrantsLeaveAtTheirRate) {
    test::seed(-13);
    double const tau = 0.3;
    double const m = 1.5;
    TTree tree;
    tree.allocate_tree(2);
    Moments migrants;
    for (int r = 0; r < REPLICATES; ++r) {
        RandomState const before = random_state;
        tree.build_tree_range_exp(tau, m);
        // replay the draws: time, kind, pick
        random_state = before;
        double t = 0.0;
        int left = 0;
        int k = 2;
        while (k > 0) {
            t += -1.0 / (((k - 1) / 2.0 + m) * k) * std::log(1.0 - uniform());
            if (t >= tau) break;
            bool const moves = uniform() < 2.0 * m / (2.0 * m + k - 1);
            if (!moves) break;
            uniform();
            ++left;
            --k;
        }
        migrants.add(left);
        random_state = before;
        tree.build_tree_range_exp(tau, m);
        EXPECT_EQ(tree.root().time >= tau, left > 0 || t >= tau);
    }
    // one of the pair leaves: density 2m exp(-(1+2m) s); the other then follows at rate m
    double const a = 1.0 + 2.0 * m;
    double const first = 2.0 * m * (1.0 - std::exp(-a * tau)) / a;
    double const stays = 2.0 * m * (std::exp(-m * tau) - std::exp(-a * tau)) / (a - m);
    EXPECT_NEAR(migrants.mean(), first + (first - stays), 4.0 * migrants.error_of_mean());
}

TEST(RangeExpansion, OddParametersStillGiveATree) {
    double const inf = std::numeric_limits<double>::infinity();
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (double const tau : {-1.0, 0.0, 1e-300, 5.0, inf, nan}) {
        for (double const m : {-2.0, 0.0, 1.0, 1e300, inf, nan}) {
            test::seed(-17);
            TTree tree;
            tree.allocate_tree(6);
            tree.build_tree_range_exp(tau, m);
            EXPECT_EQ(tree.root().count_desc(), 6) << tau << ' ' << m;
        }
    }
}

TEST(Bottleneck, RescalesInternalNodesAboveItsTimeAlone) {
    test::seed();
    TTree tree;
    tree.allocate_tree(6);
    tree.build_tree();
    tree.bottleneck(0.15, 0.1);
    EXPECT_NEAR(tree[7].time, .1491781509, 1e-9);
    EXPECT_NEAR(tree[8].time, .15 + .0047745861 * .1, 1e-9);
    EXPECT_NEAR(tree[10].time, .15 + 1.460295561 * .1, 1e-9);
    EXPECT_EQ(tree[0].time, 0.0);
}

TEST(ScaleToGenerations, LeavesTipsAtZero) {
    test::seed();
    TTree tree;
    tree.allocate_tree(6);
    tree.build_tree();
    tree.scale_to_num_generations(4000000);
    EXPECT_NEAR(tree[10].time, 1.610295561 * 4e6, 0.01);
    EXPECT_EQ(tree[5].time, 0.0);
}

TEST(PairwiseDivergence, OfThreeCopiesByHand) {
    // ((0, 1) at 1/4, 2) at 2: pairs of divergence 1/2, 4 and 4.
    TNode nodes[5];
    nodes[3].left = &nodes[0];
    nodes[3].right = &nodes[1];
    nodes[3].time = 0.25;
    nodes[4].left = &nodes[3];
    nodes[4].right = &nodes[2];
    nodes[4].time = 2.0;
    ASSERT_EQ(nodes[4].count_desc(), 3);
    double sum = 1.0;
    double squares = 10.0;
    nodes[4].compute_moments_of_pairwise_divergence(sum, squares);
    EXPECT_DOUBLE_EQ(sum, 1.0 + 0.5 + 4.0 + 4.0) << "added to what was there";
    EXPECT_DOUBLE_EQ(squares, 10.0 + 0.25 + 16.0 + 16.0);
    nodes[0].compute_moments_of_pairwise_divergence(sum, squares);
    EXPECT_DOUBLE_EQ(sum, 9.5);
}

TEST(CoalescenceMoments, AgreeWithTheTimesOfAllPairs) {
    test::seed();
    TTree tree;
    tree.allocate_tree(6);
    tree.build_tree();
    ASSERT_EQ(tree.compute_moments_of_coalescence_times(), 1);
    double sum = 0.0;
    double squares = 0.0;
    for (int i = 0; i < 6; ++i) {
        for (int j = 0; j < i; ++j) {
            TNode const* a = &tree[i];
            TNode const* b = &tree[j];
            while (a != b) (a->node_id < b->node_id ? a : b) = (a->node_id < b->node_id ? a : b)->ancestor;
            sum += a->time;
            squares += a->time * a->time;
        }
    }
    EXPECT_NEAR(tree.mean, sum / 15.0, 1e-12);
    EXPECT_NEAR(tree.sd, std::sqrt((squares - sum * sum / 15.0) / 14.0), 1e-12);
}

TEST(Descendants, ListsHoldEveryNodeBelow) {
    test::seed();
    TTree tree;
    tree.allocate_tree(6);
    tree.build_tree();
    tree.root().build_lists_of_descendent_nodes();
    EXPECT_EQ(tree[10].left_nodes, std::vector<int>{0});
    EXPECT_EQ(tree[10].right_nodes.size(), 9U);
    EXPECT_EQ(tree[7].left_nodes, std::vector<int>{1});
    EXPECT_EQ(tree[7].right_nodes, std::vector<int>{5});
    tree.count_descendants();
    EXPECT_EQ(tree[9].num_desc(), 5);
    EXPECT_EQ(tree.root().count_desc(), 6);
}

TEST(OldDriver, SaysThatItShouldNotBeCalled) {
    test::seed();
    TNode::hits.Flush();
    std::ostringstream out;
    TGenealogy tree;
    EXPECT_EQ(tree.build_genealogy(out, 4, 0.5, 1.0, 1.0), 1);
    EXPECT_EQ(out.str(),
              "Building tree structure\nDone !\nApplying bottleneck: Factor 0.5, Time : 1\nSould never be called\n");
    TNode::hits.Flush();
}

}  // namespace
}  // namespace tov
