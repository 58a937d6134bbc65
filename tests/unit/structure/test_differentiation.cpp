// Exact test of population differentiation against reference values and full enumeration.
#include "structure/formula/differentiation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "oracle/table_enumeration.h"
#include "support/fresh_process.h"

namespace tov {
namespace {

using oracle::Rows;
using oracle::table_of;

TEST(Differentiation, GlobalTestReproducesTheReferenceChain) {
    test::FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    ContingencyTable const observed = table_of({{5, 3, 1, 0, 0}, {3, 3, 1, 1, 0}, {3, 1, 3, 1, 2}, {3, 2, 2, 0, 4}});
    ChainOutcome const outcome = test_differentiation(observed, DifferentiationChain::samples,
                                                      DifferentiationPlan(20000), 1000, 0.0);
    EXPECT_NEAR(outcome.p, 0.4656, 1e-12);
    EXPECT_NEAR(outcome.sd, 0.01486248073, 1e-11);
    EXPECT_EQ(outcome.steps, 20000);
    EXPECT_EQ(test::draws_since(before), 128561);
    EXPECT_NEAR(uniform(), 0.474038180, 1e-12);
}

TEST(Differentiation, PairTestsReproduceTheReferenceChains) {
    test::FreshProcess fresh;
    struct Reference {
        Rows rows;
        double p;
        double sd;
    };
    // Columns in order of first occurrence, the sample of the higher number first.
    std::vector<Reference> const pairs = {
        {{{3, 3, 1, 1}, {5, 3, 0, 1}}, 0.88765, 0.002741881957},
        {{{3, 1, 2, 3, 1}, {1, 0, 0, 5, 3}}, 0.29445, 0.01089026706},
        {{{3, 1, 2, 3, 1}, {1, 1, 0, 3, 3}}, 0.5177, 0.01077489366},
        {{{2, 4, 2, 3}, {1, 0, 3, 5}}, 0.2324, 0.01080833012},
        {{{2, 4, 2, 3, 0}, {1, 0, 3, 3, 1}}, 0.3163, 0.01043543642},
        {{{2, 4, 2, 3, 0}, {3, 2, 1, 3, 1}}, 0.9068, 0.002198484326}};
    for (Reference const& pair : pairs) {
        ChainOutcome const outcome = test_differentiation(table_of(pair.rows), DifferentiationChain::pair,
                                                          DifferentiationPlan(20000), 1000, 0.0);
        EXPECT_NEAR(outcome.p, pair.p, 1e-12);
        EXPECT_NEAR(outcome.sd, pair.sd, 1e-11);
    }
    EXPECT_NEAR(uniform(), 0.745048661, 1e-12);
}

// Samples in rows, haplotypes in columns.
std::vector<Rows> const small_tables = {
    {{9, 3}, {2, 8}},
    {{5, 0}, {4, 6}},
    {{7, 5}, {4, 6}},
    {{12, 1}, {9, 3}},
    {{7, 3, 4}, {2, 8, 4}},
    {{10, 4, 1}, {3, 9, 0}},
    {{6, 2, 2}, {3, 5, 4}},
    {{4, 0, 3}, {1, 5, 2}},
    {{5, 3, 1}, {3, 3, 1}, {3, 1, 3}},
    {{6, 1, 0}, {2, 4, 1}, {1, 2, 4}},
    {{4, 2, 2}, {2, 4, 2}, {2, 1, 5}},
    {{8, 1, 1}, {7, 3, 0}, {5, 2, 2}}};

TEST(Differentiation, ChainsLieWithinThreeDeviationsOfFullEnumeration) {
    test::FreshProcess fresh;
    auto const compare = [](ContingencyTable const& observed, DifferentiationChain chain, double exact) {
        DifferentiationPlan const plan(1000000);
        ASSERT_GE(plan.batches, 5);
        ChainOutcome const outcome = test_differentiation(observed, chain, plan, 10000, 0.0);
        ASSERT_GT(outcome.sd, 0.0);
        EXPECT_LE(std::abs(outcome.p - exact), 3.0 * outcome.sd) << "exact " << exact << ", chain " << outcome.p;
    };
    for (std::size_t i = 0; i < small_tables.size(); ++i) {
        SCOPED_TRACE("table " + std::to_string(i));
        ContingencyTable const observed = table_of(small_tables[i]);
        double const exact = oracle::exact_two_way(observed);
        ASSERT_GT(exact, 0.0);
        ASSERT_LT(exact, 1.0);
        compare(observed, DifferentiationChain::samples, exact);
        if (observed.rows == 2) compare(observed, DifferentiationChain::pair, exact);
    }
}

TEST(Differentiation, ShortChainIsRaisedToTwentyThousandSteps) {
    test::FreshProcess fresh;
    ContingencyTable const observed = table_of({{5, 3, 1, 0}, {3, 2, 2, 4}});
    ChainOutcome const outcome =
        test_differentiation(observed, DifferentiationChain::pair, DifferentiationPlan(1000), 500, 0.0);
    EXPECT_NEAR(outcome.p, 0.23185, 1e-12);
    EXPECT_NEAR(outcome.sd, 0.009075686766, 1e-11);
    EXPECT_EQ(outcome.steps, 20000);
    EXPECT_NEAR(uniform(), 0.560446894, 1e-12);
}

TEST(Differentiation, BatchLengthFollowsTheNumberOfSteps) {
    auto const lengths = [](long steps) {
        DifferentiationPlan const plan(steps);
        return std::pair(plan.batches, plan.batch_length);
    };
    EXPECT_EQ(lengths(1000), std::pair(10L, 2000L));
    EXPECT_EQ(lengths(19999), std::pair(10L, 2000L));
    EXPECT_EQ(lengths(20000), std::pair(4L, 5000L));
    EXPECT_EQ(lengths(50000), std::pair(10L, 5000L));
    EXPECT_EQ(lengths(60000), std::pair(6L, 10000L));
    EXPECT_EQ(lengths(0), std::pair(0L, 0L));
    EXPECT_EQ(lengths(-5), std::pair(0L, 0L));
}

TEST(Differentiation, SamplesWithOneHaplotypeCannotBeTested) {
    test::FreshProcess fresh;
    for (Rows const& rows : {Rows{{5}, {4}}, Rows{{2, 3}}}) {
        ChainOutcome const outcome = test_differentiation(table_of(rows), DifferentiationChain::pair,
                                                          DifferentiationPlan(20000), 100, 0.0);
        EXPECT_TRUE(outcome.failed);
        EXPECT_EQ(outcome.p, -1.0);
        EXPECT_EQ(outcome.sd, 1.0);
        EXPECT_EQ(outcome.steps, 0);
    }
}

TEST(Differentiation, ZeroDeviationEndsOnlyTheGlobalChainEarly) {
    test::FreshProcess fresh;
    ContingencyTable const apart = table_of({{60, 0}, {0, 60}});
    ChainOutcome const global =
        test_differentiation(apart, DifferentiationChain::samples, DifferentiationPlan(20000), 1000, 0.0);
    EXPECT_EQ(global.p, 0.0);
    EXPECT_EQ(global.sd, 0.0);
    EXPECT_EQ(global.steps, 15000);
    ChainOutcome const pair =
        test_differentiation(apart, DifferentiationChain::pair, DifferentiationPlan(20000), 1000, 0.0);
    EXPECT_EQ(pair.p, 0.0);
    EXPECT_EQ(pair.steps, 20000);
}

TEST(Differentiation, LargePrecisionEndsAfterTheThirdBatch) {
    test::FreshProcess fresh;
    int ended = 0;
    ChainOutcome const outcome =
        test_differentiation(table_of({{5, 3}, {2, 6}}), DifferentiationChain::pair, DifferentiationPlan(100000), 100,
                             10000.0, {}, [&](long length) {
                                 EXPECT_EQ(length, 10000);
                                 ++ended;
                             });
    EXPECT_EQ(outcome.steps, 30000);
    EXPECT_EQ(ended, 2);
}

TEST(Differentiation, IdenticalSamplesGiveAProbabilityOfOne) {
    test::FreshProcess fresh;
    ChainOutcome const outcome = test_differentiation(table_of({{6, 6}, {6, 6}}), DifferentiationChain::pair,
                                                      DifferentiationPlan(20000), 1000, 0.0);
    EXPECT_EQ(outcome.p, 1.0);
    EXPECT_EQ(outcome.sd, 0.0);
}

TEST(Differentiation, StopRequestEndsTheChainBeforeABatch) {
    test::FreshProcess fresh;
    int asked = 0;
    ChainOutcome const outcome =
        test_differentiation(table_of({{5, 3}, {2, 6}}), DifferentiationChain::pair, DifferentiationPlan(20000), 10,
                             0.0, [&] { return ++asked > 2; });
    EXPECT_TRUE(outcome.stopped);
    EXPECT_EQ(outcome.steps, 10000);
}

TEST(Differentiation, StepsKeepTheMarginsAndAreUndoneByTheirLogarithms) {
    test::FreshProcess fresh;
    ContingencyTable t = table_of({{5, 3, 1, 0}, {3, 2, 2, 4}});
    ContingencyTable const start = t;
    TableWalk const walk(t);
    DrawBlock draws(chain_generator());
    ExactLnSum sum;
    int returns = 0;
    for (int s = 0; s < 20000; ++s) {
        sum.add(two_row_step(walk, draws).ln_ratio);
        for (int c = 0; c < 4; ++c) ASSERT_EQ(t.at(0, c) + t.at(1, c), start.at(0, c) + start.at(1, c));
        ASSERT_EQ(t.at(0, 0) + t.at(0, 1) + t.at(0, 2) + t.at(0, 3), 9);
        if (t.cells == start.cells) {
            ++returns;
            ASSERT_TRUE(sum.at_most(0) && !sum.at_most(-1));
        }
    }
    EXPECT_GT(returns, 10);
}

}  // namespace
}  // namespace tov
