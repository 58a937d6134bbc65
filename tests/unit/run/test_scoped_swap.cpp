// ScopedSwap: the old value returns on every way out.
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "base/scoped_swap.h"

namespace tov {
namespace {

TEST(ScopedSwap, PutsTheOldValueBackAtTheEndOfTheScope) {
    int value = 1;
    {
        ScopedSwap<int> const swap(value, 2);
        EXPECT_EQ(value, 2);
        EXPECT_EQ(swap.saved(), 1);
    }
    EXPECT_EQ(value, 1);
}

TEST(ScopedSwap, PutsTheOldValueBackWhenAnExceptionPasses) {
    std::string text = "old";
    try {
        ScopedSwap<std::string> const swap(text, "new");
        throw std::runtime_error(text);
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(error.what(), "new");
    }
    EXPECT_EQ(text, "old");
}

TEST(ScopedSwap, WithoutAValueUndoesWhatWasDoneInPlace) {
    std::string text = "old";
    {
        ScopedSwap<std::string> const keep(text);
        EXPECT_EQ(text, "old");
        text += " and more";
    }
    EXPECT_EQ(text, "old");
}

TEST(ScopedSwap, MovesOwnersThereAndBack) {
    auto owner = std::make_unique<int>(1);
    int const* const first = owner.get();
    {
        ScopedSwap<std::unique_ptr<int>> const swap(owner, std::make_unique<int>(2));
        EXPECT_EQ(*owner, 2);
    }
    EXPECT_EQ(owner.get(), first);
}

}  // namespace
}  // namespace tov
