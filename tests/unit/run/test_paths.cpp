// Path helpers of the run control.
#include <gtest/gtest.h>

#include "run/paths.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

TEST(Paths, ExtensionIsCutAtTheLastPointWhereverItStands) {
    EXPECT_EQ(without_extension("p/name.tvp"), "p/name");
    EXPECT_EQ(without_extension("name"), "name");
    EXPECT_EQ(without_extension("a.b/name"), "a");
    EXPECT_EQ(without_extension(""), "");
}

TEST(Paths, DirectoryAndNameTogetherAreThePath) {
    for (char const* path : {"p/name.tvp", "name.tvp", "a\\b", "/", ""})
        EXPECT_EQ(directory_of(path) + file_name_of(path), path);
    EXPECT_EQ(directory_of("a/b/c.tvp"), "a/b/");
    EXPECT_EQ(directory_of("c.tvp"), "");
    EXPECT_EQ(file_name_of("a\\c.tvp"), "c.tvp");
}

TEST(Paths, BackslashesTurnForward) { EXPECT_EQ(forward_slashes("c:\\a\\b/c"), "c:/a/b/c"); }

TEST(Paths, AFileOpensAMissingOneAndADirectoryDoNot) {
    test::ScratchDirectory const scratch;
    scratch.write("empty", "");
    scratch.write("full", "x");
    EXPECT_TRUE(file_opens("empty"));
    EXPECT_TRUE(file_opens("full"));
    EXPECT_FALSE(file_opens("missing"));
    EXPECT_FALSE(file_opens("."));
    EXPECT_FALSE(file_opens(""));
}

TEST(Paths, CurrentDirectoryIsKnown) { EXPECT_FALSE(current_directory().empty()); }

}  // namespace
}  // namespace tov
