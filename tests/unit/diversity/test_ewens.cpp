// Configurations under Ewens' sampling formula, against known draws and the enumeration of all configurations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <vector>

#include "base/bnum.h"
#include "base/random.h"
#include "diversity/formula/ewens.h"

namespace tov {
namespace {

void seed(long s) {
    random_state = RandomState{};
    random_state.ran3.seed(s);
}

class Ewens : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(B.re_allocate_matrix(200, 80), 1); }
    BnumMat B;
};

/// Calls `f` with every ascending configuration of k positive counts of sum n.
void all_configurations(int n, int k, std::vector<int>& parts, std::function<void(std::vector<int> const&)> const& f) {
    int const smallest = parts.empty() ? 1 : parts.back();
    if (k == 1) {
        if (n < smallest) return;
        parts.push_back(n);
        f(parts);
        parts.pop_back();
        return;
    }
    for (int i = smallest; i * k <= n; ++i) {
        parts.push_back(i);
        all_configurations(n - i, k - 1, parts, f);
        parts.pop_back();
    }
}

/// Weight of a configuration given k: 1 / prod(i^a_i a_i!).
double weight(std::vector<int> const& counts) {
    std::map<int, int> a;
    double w = 1.0;
    for (int const c : counts) {
        ++a[c];
        w /= c * static_cast<double>(a[c]);
    }
    return w;
}

TEST_F(Ewens, ConfigurationsFollowTheirDraws) {
    seed(-1);
    EwensSampler sampler(B, 20, 5);
    int const expected[][5] = {{1, 6, 1, 11, 1}, {3, 4, 9, 1, 3}, {11, 1, 4, 2, 2}};
    for (auto const& configuration : expected) {
        auto const counts = sampler.draw();
        ASSERT_EQ(counts.size(), 5U);
        for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(counts[i], configuration[i]);
    }
    RandomState const after = random_state;
    seed(-1);
    for (int i = 0; i < 12; ++i) uniform();
    EXPECT_EQ(after.ran3.ma, random_state.ran3.ma);
}

TEST_F(Ewens, TheFirstCountAloneIsTheSame) {
    seed(-1);
    EXPECT_EQ(random_allele_count(B, 20, 5), 1);
    for (int r = 0; r < 50; ++r) {
        seed(-2 - r);
        int const alone = random_allele_count(B, 30, 4);
        seed(-2 - r);
        EwensSampler sampler(B, 30, 4);
        EXPECT_EQ(sampler.draw()[0], alone);
    }
}

TEST_F(Ewens, AThousandReplicatesGiveTheKnownTests) {
    seed(-1);
    EwensSampler sampler(B, 20, 5);
    int const observed[] = {1, 2, 3, 6, 8};
    double const F_obs = sampler.homozygosity(observed);
    double const e_obs = sampler.exact_statistic(observed);
    EXPECT_NEAR(F_obs, .285, 1e-12);
    EXPECT_NEAR(e_obs, -5.66296048, 1e-8);
    double sum_F = 0.0;
    int n_F = 0;
    int n_exact = 0;
    double sums[5] = {};
    double squares[5] = {};
    for (int r = 0; r < 1000; ++r) {
        auto const counts = sampler.draw_sorted();
        for (std::size_t i = 0; i < 5; ++i) {
            sums[i] += counts[i];
            squares[i] += counts[i] * static_cast<double>(counts[i]);
        }
        double const F = sampler.homozygosity(counts);
        sum_F += F;
        n_F += F <= F_obs ? 1 : 0;
        n_exact += sampler.exact_statistic(counts) <= e_obs ? 1 : 0;
    }
    EXPECT_NEAR(sum_F / 1000, .36092, 1e-10);
    EXPECT_EQ(n_F, 271);
    EXPECT_EQ(n_exact, 282);
    double const means[] = {.05535, .078, .1326, .23125, .5028};
    double const sds[] = {.01655752553, .03622585144, .05852918644, .07827556812, .1295914887};
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(sums[i] / 1000 / 20, means[i], 1e-10);
        EXPECT_NEAR(std::sqrt((squares[i] - sums[i] * sums[i] / 1000) / 999) / 20, sds[i], 1e-10);
    }
}

TEST_F(Ewens, ConfigurationsHaveTheirProbabilities) {
    constexpr int replicates = 40000;
    struct Case {
        int n, k;
    };
    for (Case const& c : {Case{8, 3}, Case{9, 4}, Case{12, 2}, Case{10, 5}, Case{7, 6}, Case{15, 3}}) {
        double total = 0.0;
        std::vector<int> parts;
        std::map<std::vector<int>, double> probability;
        all_configurations(c.n, c.k, parts, [&](std::vector<int> const& p) { total += probability[p] = weight(p); });
        seed(-c.n);
        EwensSampler sampler(B, c.n, c.k);
        std::map<std::vector<int>, int> seen;
        for (int r = 0; r < replicates; ++r) {
            auto const counts = sampler.draw_sorted();
            ++seen[std::vector<int>(counts.begin(), counts.end())];
        }
        ASSERT_LE(seen.size(), probability.size());
        for (auto const& [configuration, w] : probability) {
            double const p = w / total;
            EXPECT_NEAR(seen[configuration], p * replicates, 4.0 * std::sqrt(replicates * p * (1.0 - p)) + 1.0);
        }
    }
}

TEST_F(Ewens, BothTestsAgreeWithEnumeration) {
    constexpr int replicates = 40000;
    std::vector<std::vector<int>> const samples{{1, 2, 5},    {1, 1, 3, 4},    {2, 10},         {1, 2, 2, 2, 3},
                                                {4, 5, 6},    {1, 1, 1, 1, 8}, {1, 1, 1, 1, 1, 2}, {3, 3, 3, 3, 3, 5}};
    for (auto const& observed : samples) {
        int n = 0;
        for (int const c : observed) n += c;
        int const k = static_cast<int>(observed.size());
        seed(-n - k);
        EwensSampler sampler(B, n, k);
        double const F_obs = sampler.homozygosity(observed);
        double const e_obs = sampler.exact_statistic(observed);
        double total = 0.0;
        double p_F = 0.0;
        double p_exact = 0.0;
        double mean_F = 0.0;
        std::vector<int> parts;
        all_configurations(n, k, parts, [&](std::vector<int> const& p) {
            double const w = weight(p);
            total += w;
            mean_F += w * sampler.homozygosity(p);
            if (sampler.homozygosity(p) <= F_obs) p_F += w;
            if (sampler.exact_statistic(p) <= e_obs) p_exact += w;
        });
        p_F /= total;
        p_exact /= total;
        int n_F = 0;
        int n_exact = 0;
        double sum_F = 0.0;
        for (int r = 0; r < replicates; ++r) {
            auto const counts = sampler.draw_sorted();
            sum_F += sampler.homozygosity(counts);
            n_F += sampler.homozygosity(counts) <= F_obs ? 1 : 0;
            n_exact += sampler.exact_statistic(counts) <= e_obs ? 1 : 0;
        }
        EXPECT_NEAR(n_F, p_F * replicates, 4.0 * std::sqrt(replicates * p_F * (1.0 - p_F)) + 1e-6);
        EXPECT_NEAR(n_exact, p_exact * replicates, 4.0 * std::sqrt(replicates * p_exact * (1.0 - p_exact)) + 1e-6);
        EXPECT_NEAR(sum_F / replicates, mean_F / total, 4.0 * 0.3 / std::sqrt(replicates));
    }
}

TEST_F(Ewens, ConfigurationsAddUpToTheSample) {
    seed(-6);
    for (int const k : {2, 3, 20, 60, 79}) {
        EwensSampler sampler(B, 150, k);
        for (int r = 0; r < 200; ++r) {
            auto const counts = sampler.draw_sorted();
            int sum = 0;
            for (int const c : counts) sum += c;
            EXPECT_EQ(sum, 150);
            EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end()));
        }
    }
}

TEST_F(Ewens, AlmostAllCopiesDistinctLeavesOneConfiguration) {
    seed(-6);
    EwensSampler sampler(B, 10, 9);
    auto const counts = sampler.draw_sorted();
    EXPECT_EQ(counts[0], 1);
    EXPECT_EQ(counts[8], 2);
    EXPECT_NEAR(sampler.exact_statistic(counts), -std::log(2.0), 1e-15);
    EXPECT_NEAR(sampler.homozygosity(counts), 8 * 0.01 + 0.04, 1e-15);
}

}  // namespace
}  // namespace tov
