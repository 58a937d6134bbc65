// Minimum spanning tree and network against a slow obvious recomputation and known trees.
#include "structure/formula/mst.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <utility>

using namespace tov;

namespace {

/// Square matrix from a lower triangle given row by row; the upper triangle holds a value that must not be read.
std::vector<double> from_triangle(int n, std::vector<double> const& triangle) {
    std::vector<double> dist(static_cast<std::size_t>(n) * n, -99.0);
    std::size_t at = 0;
    for (int i = 0; i < n; ++i) {
        dist[i * n + i] = 0.0;
        for (int j = 0; j < i; ++j) {
            dist[i * n + j] = triangle[at++];
        }
    }
    return dist;
}

double total_length(SpanningNetwork const& network) {
    double sum = 0.0;
    for (auto const& link : network.links) {
        sum += link.length;
    }
    return sum;
}

/// Length of a minimum spanning tree by taking the shortest link that joins two parts, again and again.
double shortest_length(int n, std::vector<double> const& dist) {
    std::vector<int> part(n);
    for (int i = 0; i < n; ++i) {
        part[i] = i;
    }
    double sum = 0.0;
    for (int t = 0; t < n - 1; ++t) {
        int bi = -1, bj = -1;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < i; ++j) {
                if (part[i] != part[j] && (bi < 0 || dist[i * n + j] < dist[bi * n + bj])) {
                    bi = i;
                    bj = j;
                }
            }
        }
        sum += dist[bi * n + bj];
        int const from = part[bi], to = part[bj];
        std::replace(part.begin(), part.end(), from, to);
    }
    return sum;
}

/// Length of the longest link on the tree path from a to b, by walking the links as a graph.
double longest_on_path(SpanningNetwork const& network, int a, int b) {
    std::function<double(int, int)> const walk = [&](int at, int from) -> double {
        if (at == b) {
            return 0.0;
        }
        for (auto const& link : network.links) {
            int const next = link.first == at ? link.second : link.second == at ? link.first : -1;
            if (next >= 0 && next != from) {
                double const rest = walk(next, at);
                if (rest >= 0.0) {
                    return std::max(rest, link.length);
                }
            }
        }
        return -1.0;
    };
    return walk(a, -1);
}

}  // namespace

TEST(MinimumSpanningTree, FiveHaplotypesWithTiedDistances) {
    auto const dist = from_triangle(5, {1, 3, 2, 2, 1, 1, 4, 3, 2, 3});
    auto const network = minimum_spanning_network(5, dist);
    ASSERT_EQ(network.links.size(), 4u);
    int const expected[4][3] = {{0, 1, 1}, {1, 3, 1}, {3, 2, 1}, {2, 4, 2}};
    for (int t = 0; t < 4; ++t) {
        EXPECT_EQ(network.links[t].first, expected[t][0]);
        EXPECT_EQ(network.links[t].second, expected[t][1]);
        EXPECT_EQ(network.links[t].length, expected[t][2]);
    }
    for (auto const& list : network.alternatives) {
        EXPECT_TRUE(list.empty());
    }
}

TEST(MinimumSpanningTree, AnAlternativeStandsOnceOnTheSideThatFoundIt) {
    auto const dist = from_triangle(5, {1, 1, 2, 2, 1, 1, 2, 2, 3, 1});
    auto const network = minimum_spanning_network(5, dist);
    int const expected[4][2] = {{0, 1}, {0, 2}, {1, 3}, {3, 4}};
    for (int t = 0; t < 4; ++t) {
        EXPECT_EQ(network.links[t].first, expected[t][0]);
        EXPECT_EQ(network.links[t].second, expected[t][1]);
    }
    EXPECT_EQ(network.alternatives[2], std::vector<int>{3});
    EXPECT_TRUE(network.alternatives[3].empty());
}

TEST(MinimumSpanningTree, AllDistancesEqualGiveEachPairOnce) {
    int const n = 5;
    auto const dist = from_triangle(n, std::vector<double>(10, 2.5));
    auto const network = minimum_spanning_network(n, dist);
    std::set<std::pair<int, int>> pairs;
    for (auto const& link : network.links) {
        pairs.emplace(std::min(link.first, link.second), std::max(link.first, link.second));
    }
    for (int i = 0; i < n; ++i) {
        for (int const j : network.alternatives[i]) {
            EXPECT_TRUE(pairs.emplace(std::min(i, j), std::max(i, j)).second) << i << ' ' << j;
        }
    }
    EXPECT_EQ(pairs.size(), 10u);
}

TEST(MinimumSpanningTree, OneOtuHasNoLinkAndNoneIsHarmless) {
    EXPECT_TRUE(minimum_spanning_network(1, std::vector<double>{0.0}).links.empty());
    EXPECT_TRUE(minimum_spanning_network(0, {}).links.empty());
}

TEST(MinimumSpanningTree, ADistanceBeyondTheLimitNeverEntersTheTree) {
    double const limit = std::numeric_limits<float>::max();
    auto const network = minimum_spanning_network(3, from_triangle(3, {1.0, limit, limit}));
    ASSERT_EQ(network.links.size(), 2u);
    EXPECT_EQ(network.links[1].first, 2);
    EXPECT_EQ(network.links[1].second, 2);
    EXPECT_EQ(network.links[1].length, limit);
    EXPECT_EQ(network.unattached, 1);
}

TEST(MinimumSpanningTree, LengthsThatDifferInTheLastBitAreNoAlternatives) {
    double const one = 1.0;
    double const more = std::nextafter(one, 2.0);
    auto const equal = minimum_spanning_network(3, from_triangle(3, {one, one, one}));
    auto const differ = minimum_spanning_network(3, from_triangle(3, {one, one, more}));
    auto const count = [](SpanningNetwork const& network) {
        std::size_t sum = 0;
        for (auto const& list : network.alternatives) {
            sum += list.size();
        }
        return sum;
    };
    EXPECT_EQ(count(equal), 1u);
    EXPECT_EQ(count(differ), 0u);
}

TEST(MinimumSpanningTree, OfEqualCandidatesTheFirstPositionIsTaken) {
    // OTU 3 joins first; OTU 1 then moves to its place, behind OTU 2, which is as far away.
    auto const dist = from_triangle(4, {2, 2, 9, 1, 9, 9});
    auto const network = minimum_spanning_network(4, dist);
    ASSERT_EQ(network.links.size(), 3u);
    int const joined[] = {3, 2, 1};
    for (int t = 0; t < 3; ++t) {
        EXPECT_EQ(network.links[t].first, 0);
        EXPECT_EQ(network.links[t].second, joined[t]);
    }
}

TEST(MinimumSpanningTree, RandomMatricesHaveTheShortestLengthAndTrueAlternatives) {
    std::mt19937 random(7);
    for (int trial = 0; trial < 200; ++trial) {
        int const n = 2 + static_cast<int>(random() % 9);
        std::vector<double> triangle;
        for (int i = 0; i < n * (n - 1) / 2; ++i) {
            triangle.push_back(1.0 + static_cast<double>(random() % 4));
        }
        auto const dist = from_triangle(n, triangle);
        auto const network = minimum_spanning_network(n, dist);
        ASSERT_EQ(network.links.size(), static_cast<std::size_t>(n - 1));
        EXPECT_EQ(total_length(network), shortest_length(n, dist));
        for (int i = 0; i < n; ++i) {
            for (int const j : network.alternatives[i]) {
                double const d = dist[std::max(i, j) * n + std::min(i, j)];
                EXPECT_EQ(longest_on_path(network, i, j), d) << "swapping the links would change the tree's length";
            }
        }
    }
}
