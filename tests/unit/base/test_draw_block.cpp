// Numbers drawn in blocks against the same numbers drawn one by one.
#include "base/draw_block.h"

#include <gtest/gtest.h>

#include "support/fresh_process.h"

namespace tov {
namespace {

TEST(DrawBlock, GivesTheNumbersOfSingleDrawsAndLeavesTheGeneratorBehindThem) {
    for (int const n : {0, 1, 2, 54, 55, 56, 219, 220, 221, 1000, 12345}) {
        for (long const seed : {1L, 2L, 777L}) {
            test::FreshProcess fresh(seed);
            Ran3State single = random_state.ran3;
            {
                DrawBlock draws(random_state.ran3);
                for (int i = 0; i < n; ++i) ASSERT_EQ(draws.draw(), single.draw()) << i << " of " << n;
            }
            for (int i = 0; i < 200; ++i) ASSERT_EQ(uniform(), single.draw()) << i << " behind " << n;
        }
    }
}

TEST(DrawBlock, ReadsAheadWithoutSpending) {
    test::FreshProcess fresh;
    Ran3State single = random_state.ran3;
    {
        DrawBlock draws(random_state.ran3);
        for (int round = 0; round < 500; ++round) {
            int const used = round % 7;
            draws.require(DrawBlock::most_required);
            double const* const next = draws.ahead();
            for (int i = 0; i < used; ++i) ASSERT_EQ(next[i], single.draw());
            draws.use_until(next + used);
        }
    }
    EXPECT_EQ(uniform(), single.draw());
}

TEST(DrawBlock, WorksFromTheVeryStartOfASequence) {
    test::FreshProcess fresh;
    Ran3State single;
    single.seed(5);
    Ran3State other;
    other.seed(5);
    {
        DrawBlock draws(other);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(draws.draw(), single.draw());
    }
    for (int i = 0; i < 100; ++i) ASSERT_EQ(other.draw(), single.draw());
}

TEST(DrawBlock, UnusedBlockLeavesTheGeneratorAlone) {
    test::FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    {
        DrawBlock draws(random_state.ran3);
        draws.require(10);
    }
    EXPECT_EQ(random_state.ran3.ma, before.ma);
    EXPECT_EQ(random_state.ran3.inext, before.inext);
    EXPECT_EQ(random_state.ran3.inextp, before.inextp);
}

}  // namespace
}  // namespace tov
