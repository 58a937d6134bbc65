// Making directories.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/files.h"
#include "support/scratch_directory.h"

using namespace tov;
namespace fs = std::filesystem;

TEST(MakeDirectory, MakesADirectoryThatOthersCannotWriteTo) {
    test::ScratchDirectory scratch;
    make_directory("made.res/");
    ASSERT_TRUE(fs::is_directory("made.res"));
    auto const others = fs::perms::group_write | fs::perms::others_write;
    EXPECT_EQ(fs::perms::none, fs::status("made.res").permissions() & others);
}

TEST(MakeDirectory, LeavesWhatExistsAndWhatCannotBeMade) {
    test::ScratchDirectory scratch;
    make_directory("made");
    scratch.write("made/file", "text");
    make_directory("made");
    EXPECT_EQ("text", scratch.read("made/file"));
    make_directory("no/such/parent");
    EXPECT_FALSE(scratch.has("no"));
    make_directory("made/file");
    EXPECT_TRUE(fs::is_regular_file("made/file"));
    make_directory("");
}
