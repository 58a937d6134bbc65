// Markov chains on tables: exact sums, reference chains, and P-values against full enumeration.
#include "inference/formula/contingency_chain.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "oracle/table_enumeration.h"
#include "support/fresh_process.h"

namespace tov {
namespace {

using oracle::Rows;
using oracle::table_of;

// Genotypes of three alleles: 25 individuals.
ContingencyTable three_alleles() { return table_of({{5, 3, 6}, {0, 4, 2}, {0, 0, 5}}); }

struct Never {
    bool operator()() const { return true; }
};

ChainOutcome hardy_weinberg(ContingencyTable t, ChainPlan const& plan) {
    return walk_table(t, TableKind::genotypes, plan);
}

ChainOutcome two_way(ContingencyTable t, ChainPlan const& plan) { return walk_table(t, TableKind::two_way, plan); }

// --- Logarithms and their sums ---

TEST(ExactLogarithms, EqualProductsHaveEqualLogarithms) {
    LnTable const& ln = ln_table(1000);
    EXPECT_EQ(ln(1), 0);
    for (int a = 2; a < 31; ++a) {
        for (int b = 2; b < 31; ++b) EXPECT_EQ(ln(a) + ln(b), ln(a * b)) << a << " * " << b;
    }
    EXPECT_EQ(ln(6) + ln(35), ln(10) + ln(21));
}

TEST(ExactLogarithms, AgreeWithRealLogarithms) {
    LnTable const& ln = ln_table(5000);
    for (int n = 1; n <= 5000; ++n) {
        EXPECT_NEAR(static_cast<double>(ln(n)) / static_cast<double>(fixed_ln_one), std::log(n), 1e-12);
    }
    for (std::int64_t const n : {std::int64_t{1} << 21, std::int64_t{2000000011}, std::int64_t{1} << 40}) {
        EXPECT_NEAR(static_cast<double>(ln(n)) / static_cast<double>(fixed_ln_one), std::log(static_cast<double>(n)),
                    1e-11);
    }
}

TEST(ExactLogarithms, SumOutgrowsSixtyFourBitsAndComesBack) {
    ExactLnSum sum;
    FixedLn const big = (FixedLn{1} << 60) + 12345;
    for (int i = 0; i < 100; ++i) {
        sum.add(big);
        EXPECT_FALSE(sum.at_most(chain_tie_limit));
    }
    EXPECT_NEAR(sum.value(), 100.0 * static_cast<double>(big) / static_cast<double>(fixed_ln_one), 1.0);
    for (int i = 0; i < 100; ++i) sum.add(-big);
    EXPECT_TRUE(sum.at_most(0));
    EXPECT_FALSE(sum.at_most(-1));
    for (int i = 0; i < 100; ++i) {
        sum.add(-big);
        EXPECT_TRUE(sum.at_most(0));
    }
    for (int i = 0; i < 100; ++i) sum.add(big);
    EXPECT_TRUE(sum.at_most(0));
    EXPECT_FALSE(sum.at_most(-1));
}

TEST(ExactLogarithms, LimitIsOneMillionth) {
    EXPECT_EQ(chain_tie_limit, static_cast<FixedLn>(1e-6 * static_cast<double>(fixed_ln_one)));
}

// --- Steps ---

TEST(HardyWeinbergStep, KeepsAlleleCountsAndComesBackToTheExactSum) {
    test::FreshProcess fresh;
    ContingencyTable t = three_alleles();
    ContingencyTable const start = t;
    auto const copies = [](ContingencyTable const& x) {
        std::vector<int> n(3, 0);
        for (int a = 0; a < 3; ++a) {
            for (int b = a; b < 3; ++b) {
                ++n[static_cast<std::size_t>(a)] += x.genotype(a, b) - 1;
                ++n[static_cast<std::size_t>(b)] += x.genotype(a, b) - 1;
            }
        }
        return n;
    };
    TableWalk const walk(t);
    DrawBlock draws(chain_generator());
    ExactLnSum sum;
    int returns = 0;
    for (int s = 0; s < 200000; ++s) {
        sum.add(hardy_weinberg_step(walk, draws).ln_ratio);
        for (int const n : t.cells) ASSERT_GE(n, 0);
        ASSERT_EQ(copies(t), copies(start));
        if (t.cells == start.cells) {
            ++returns;
            ASSERT_TRUE(sum.at_most(0) && !sum.at_most(-1));
        }
    }
    EXPECT_GT(returns, 10);
}

TEST(HardyWeinbergStep, SpendsADrawForEveryIndexAndOneForTheDecision) {
    test::FreshProcess fresh;
    Ran3State copy = random_state.ran3;
    ContingencyTable t = three_alleles();
    int expected = 5;
    auto const index = [&copy] { return static_cast<int>(3 * copy.draw()); };
    int const i = index();
    int const j = index();
    while (index() == i) ++expected;
    while (index() == j) ++expected;
    Ran3State const before = random_state.ran3;
    {
        DrawBlock draws(chain_generator());
        static_cast<void>(hardy_weinberg_step(TableWalk(t), draws));
    }
    EXPECT_EQ(test::draws_since(before), expected);
}

TEST(TakeOtherIndex, SpendsTheNumbersOfSingleDraws) {
    test::FreshProcess fresh;
    Ran3State single = random_state.ran3;
    {
        DrawBlock draws(chain_generator());
        for (int s = 0; s < 60000; ++s) {
            int const n = 2 + s % 11;
            int const taken = s / 11 % n;
            draws.require(step_look_ahead);
            double const* next = draws.ahead();
            int const x = take_other_index(draws, next, n, taken);
            draws.use_until(next);
            int expected = taken;
            while (expected == taken) expected = static_cast<int>(n * single.draw());
            ASSERT_EQ(x, expected) << n << " numbers, " << taken << " taken";
        }
    }
    EXPECT_EQ(uniform(), single.draw());
}

TEST(TakeOtherPlace, DrawsTheRowThenTheColumn) {
    test::FreshProcess fresh;
    Ran3State single = random_state.ran3;
    auto const other = [&single](int n, int taken) {
        int x = taken;
        while (x == taken) x = static_cast<int>(n * single.draw());
        return x;
    };
    {
        DrawBlock draws(chain_generator());
        for (int s = 0; s < 60000; ++s) {
            int const rows = 2 + s % 5;
            int const columns = 2 + s / 5 % 5;
            Place const taken{s / 25 % rows, s / 50 % columns};
            draws.require(step_look_ahead);
            double const* next = draws.ahead();
            Place const x = take_other_place(draws, next, rows, columns, taken);
            draws.use_until(next);
            ASSERT_EQ(x.row, other(rows, taken.row)) << rows << " x " << columns;
            ASSERT_EQ(x.column, other(columns, taken.column)) << rows << " x " << columns;
        }
    }
    EXPECT_EQ(uniform(), single.draw());
}

TEST(QuotientAgainst, TellsWhatTheRoundedQuotientTells) {
    test::FreshProcess fresh;
    auto const sign = [](double x) { return (x > 0.0) - (x < 0.0); };
    auto const count = [](double most) { return std::floor(most * uniform()); };
    for (int s = 0; s < 200000; ++s) {
        double const most = s % 2 ? 20.0 : 1e9;
        double const above = count(most) * count(most) * 0.25;
        double const below = (count(most) + 1.0) * (count(most) + 1.0);
        double const quotient = above / below;
        for (double const u : {quotient, std::nextafter(quotient, 2.0), std::nextafter(quotient, 0.0),
                               quotient * (1.0 + 0x1p-50), quotient * (1.0 - 0x1p-50), uniform(), 0.0}) {
            ASSERT_EQ(sign(quotient_against(u, above, below)), sign(quotient - u)) << above << " / " << below;
        }
    }
}

TEST(TwoWayStep, ImpossibleMoveSpendsItsDrawAndChangesNothing) {
    test::FreshProcess fresh;
    ContingencyTable t = table_of({{0, 3}, {0, 4}});
    for (int s = 0; s < 100; ++s) {
        ContingencyTable const before = t;
        DrawBlock draws(chain_generator());
        ChainStep const step = two_way_step(TableWalk(t), draws);
        EXPECT_EQ(t.cells, before.cells);
        EXPECT_EQ(step.ratio, 1.0);
        EXPECT_EQ(step.ln_ratio, 0);
    }
}

TEST(TwoWayStep, RatioThatRoundsToOneIsAcceptedWithoutADraw) {
    test::FreshProcess fresh;
    constexpr int n = 1 << 27;
    // (n + 1) (n - 1) is smaller than n n by 1, which no double tells beyond 2^53.
    ContingencyTable t = table_of({{n + 1, n - 1}, {n - 1, n - 1}});
    Ran3State const before = random_state.ran3;
    {
        DrawBlock draws(chain_generator());
        draws.require(step_look_ahead);
        EXPECT_EQ(margin_step(TableWalk(t), 0, 0, 1, 1, draws, draws.ahead()).ratio, 1.0);
    }
    EXPECT_EQ(test::draws_since(before), 0);
    EXPECT_EQ(t.cells, (std::vector<int>{n, n, n, n - 2}));
}

// --- Reference chains ---

TEST(HardyWeinbergChain, ReproducesTheReferenceChain) {
    test::FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    ChainOutcome const outcome = hardy_weinberg(three_alleles(), ChainPlan::square(10000, 1000));
    EXPECT_NEAR(outcome.p, 0.0460396040, 5e-11);
    EXPECT_NEAR(outcome.sd, 0.0025733149, 5e-11);
    EXPECT_EQ(outcome.steps, 10100);
    EXPECT_EQ(test::draws_since(before), 66484);
}

TEST(TwoWayChain, ReproducesTheReferenceChain) {
    test::FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    ChainOutcome const outcome = two_way(table_of({{7, 2}, {3, 8}, {4, 4}}), ChainPlan::square(10000, 1000, 0));
    EXPECT_NEAR(outcome.p, 0.0783168317, 5e-11);
    EXPECT_NEAR(outcome.sd, 0.0023844534, 5e-11);
    EXPECT_EQ(outcome.steps, 10100);
    EXPECT_EQ(test::draws_since(before), 67933);
}

TEST(ChainPlan, OneStepMakesOneBatchOfTwoWithoutDeviation) {
    test::FreshProcess fresh;
    ChainPlan const plan = ChainPlan::square(1, 0);
    EXPECT_EQ(plan.batches, 1);
    EXPECT_EQ(plan.per_batch, 2);
    ChainOutcome const outcome = hardy_weinberg(three_alleles(), plan);
    EXPECT_EQ(outcome.steps, 2);
    EXPECT_EQ(outcome.sd, 0.0);
}

TEST(ChainPlan, NoStepsMakeNoChain) {
    test::FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    for (long const steps : {0L, -1L}) {
        ChainOutcome const outcome = hardy_weinberg(three_alleles(), ChainPlan::square(steps, 100));
        EXPECT_EQ(outcome.p, 1.0);
        EXPECT_EQ(outcome.steps, 0);
    }
    EXPECT_EQ(test::draws_since(before), 0);
    EXPECT_GT(ChainPlan::square(9223372036854775807L, 0).batches, 0);
}

TEST(InterleavedChain, EndsWhenAskedTo) {
    test::FreshProcess fresh;
    ContingencyTable t = three_alleles();
    TableWalk const walk(t);
    DrawBlock draws(chain_generator());
    int rounds = 0;
    auto const step = [&] { return hardy_weinberg_step(walk, draws).ln_ratio; };
    EXPECT_TRUE(interleaved_chain(ChainPlan::square(100, 0), step, Never{}, [&] { return ++rounds < 3; }).stopped);
    EXPECT_EQ(rounds, 3);
    int steps = 0;
    EXPECT_TRUE(interleaved_chain(ChainPlan::square(100, 0), step, [&] { return ++steps < 8; }, Never{}).stopped);
    EXPECT_EQ(steps, 8);
}

TEST(RestartedChain, LooksBackAtTheBatchesBeforeTheCurrentOne) {
    // Batches with shares 1, 0, 1, 1: the sum is 0 in the first and above the limit in the second.
    int batch = -1;
    ChainPlan plan;
    plan.batches = 4;
    plan.per_batch = 10;
    auto const start = [&] {
        ++batch;
        return BatchStart::ready;
    };
    auto const step = [&] { return batch == 1 ? fixed_ln_one : FixedLn{0}; };
    ChainOutcome const outcome = restarted_chain(plan, {0.0, false}, start, step, Never{});
    EXPECT_EQ(outcome.steps, 40);
    EXPECT_DOUBLE_EQ(outcome.p, 0.75);
    double const squares = 0.0625 + 0.5625 + 0.0625;
    EXPECT_DOUBLE_EQ(outcome.sd, std::sqrt(squares / 6.0));
    batch = -1;
    ChainOutcome const early = restarted_chain(plan, {1.0, false}, start, step, Never{});
    EXPECT_EQ(early.steps, 30);
    EXPECT_DOUBLE_EQ(early.sd, std::sqrt((1.0 / 9.0 + 4.0 / 9.0) / 2.0));
    batch = -1;
    plan.batches = 2;
    EXPECT_EQ(restarted_chain(plan, {10.0, false}, start, step, Never{}).sd, 1.0);
}

// --- Exact values ---

struct ExactCase {
    char const* name;
    Rows rows;
    bool genotypes;
    double known = -1.0;  ///< exact P where it is known from elsewhere
};

void PrintTo(ExactCase const& c, std::ostream* out) { *out << c.name; }

class ChainAgainstEnumeration : public testing::TestWithParam<ExactCase> {};

TEST_P(ChainAgainstEnumeration, MeanOverTwentySeedsIsTheExactP) {
    constexpr int seeds = 20;
    constexpr long steps = 1000000;
    test::FreshProcess fresh;
    ExactCase const& c = GetParam();
    ContingencyTable const observed = table_of(c.rows);
    double const exact = c.genotypes ? oracle::exact_hardy_weinberg(observed) : oracle::exact_two_way(observed);
    if (c.known >= 0.0) {
        EXPECT_NEAR(exact, c.known, 1e-6);
    }
    ChainPlan const plan = ChainPlan::square(steps, 1000, c.genotypes ? chain_tie_limit : 0);
    double sum = 0.0;
    double squares = 0.0;
    double first = 0.0;
    for (int seed = 1; seed <= seeds; ++seed) {
        fresh.reseed(seed);
        double const p = (c.genotypes ? hardy_weinberg(observed, plan) : two_way(observed, plan)).p;
        if (seed == 1) first = p;
        sum += p;
        squares += p * p;
    }
    double const mean = sum / seeds;
    double const sd = std::sqrt(std::max(0.0, (squares - sum * mean) / (seeds - 1)));
    // One chain lies within three deviations, the mean of all within three of its own.
    double const rounding = 1e-12;
    EXPECT_LE(std::abs(first - exact), 3.0 * sd + rounding) << "exact " << exact << ", sd " << sd;
    EXPECT_LE(std::abs(mean - exact), 3.0 * sd / std::sqrt(double{seeds}) + rounding)
        << "exact " << exact << ", mean " << mean << ", sd " << sd;
}

std::vector<ExactCase> const exact_cases = {
    {"TwoAllelesExcessOfHomozygotes", {{8, 4}, {0, 6}}, true},
    {"TwoAllelesRareAllele", {{20, 1}, {0, 1}}, true},
    {"TwoAllelesAllHeterozygous", {{0, 9}, {0, 0}}, true},
    {"TwoAllelesInProportion", {{5, 10}, {0, 5}}, true},
    {"ThreeAlleles", {{5, 3, 6}, {0, 4, 2}, {0, 0, 5}}, true, 0.063238},
    {"ThreeAllelesFewIndividuals", {{2, 1, 0}, {0, 1, 3}, {0, 0, 1}}, true},
    {"ThreeAllelesOneRare", {{6, 5, 1}, {0, 3, 0}, {0, 0, 0}}, true},
    {"TwoByTwoTables", {{9, 3}, {2, 8}}, false},
    {"TwoByTwoTablesOneEmptyCell", {{5, 0}, {4, 6}}, false},
    {"TwoByTwoTablesIndependent", {{6, 6}, {6, 6}}, false, 1.0},
    {"TwoByThreeTables", {{7, 3, 4}, {2, 8, 4}}, false},
    {"ThreeByTwoTables", {{7, 2}, {3, 8}, {4, 4}}, false, 0.076843},
    {"TwoByThreeTablesWithRareAllele", {{10, 4, 1}, {3, 9, 0}}, false}};

INSTANTIATE_TEST_SUITE_P(Cases, ChainAgainstEnumeration, testing::ValuesIn(exact_cases),
                         [](auto const& instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace tov
