// The run list: lines cut to their buffers, directives, the working directory.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "run/run_list.h"

namespace tov {
namespace {

std::string first_line(std::string const& text, std::size_t max_length) {
    std::istringstream in(text);
    std::string line = "untouched";
    read_run_list_line(in, line, max_length);
    return line;
}

/// A run list in a file of its own, removed at the end.
class ListFile {
public:
    explicit ListFile(std::string const& text) : path_(testing::TempDir() + "tov_run_list_test.txt") {
        std::ofstream(path_, std::ios::binary) << text;
    }
    ~ListFile() { std::remove(path_.c_str()); }
    [[nodiscard]] std::string const& path() const { return path_; }

private:
    std::string path_;
};

TEST(RunListLine, LosesCarriageReturnAndTrailingBlanks) {
    EXPECT_EQ(first_line("a b.tvp  \r\nnext", 399), "a b.tvp");
    EXPECT_EQ(first_line("   \r\n", 399), "");
}

TEST(RunListLine, OfTheLastLineCountsWithoutANewline) {
    std::istringstream in("p.tvp");
    std::string line;
    EXPECT_TRUE(read_run_list_line(in, line, 399));
    EXPECT_EQ(line, "p.tvp");
    EXPECT_FALSE(in.fail());
    EXPECT_FALSE(read_run_list_line(in, line, 399));
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(line, "p.tvp");
}

TEST(RunListLine, IsCutToItsBufferAndTheRestIsDropped) {
    std::istringstream in(std::string(500, 'x') + "\nnext\n");
    std::string line;
    EXPECT_TRUE(read_run_list_line(in, line, RunList::path_length));
    EXPECT_EQ(line, std::string(399, 'x'));
    EXPECT_TRUE(read_run_list_line(in, line, RunList::path_length));
    EXPECT_EQ(line, "next");
}

TEST(RunListLine, EndsAtANulCharacter) { EXPECT_EQ(first_line(std::string("ab\0cd\n", 6), 399), "ab"); }

TEST(RunDirective, KnowsFourWordsAndTakesAllOthersForTheInterface) {
    EXPECT_EQ(run_directive("translate"), RunDirective::translate);
    EXPECT_EQ(run_directive("use_spe_settings"), RunDirective::special_settings);
    EXPECT_EQ(run_directive("use_ass_settings"), RunDirective::associated_settings);
    EXPECT_EQ(run_directive("explore"), RunDirective::explore);
    EXPECT_EQ(run_directive("use_interf_settings"), RunDirective::interface_settings);
    EXPECT_EQ(run_directive("Explore"), RunDirective::interface_settings);
    EXPECT_EQ(run_directive(""), RunDirective::interface_settings);
}

TEST(RunListHead, AppendsASlashToTheDirectoryUnlessItEndsInOne) {
    for (auto const& [line, directory] :
         {std::pair{"/a/b", "/a/b/"}, {"/a/b/", "/a/b/"}, {"c:\\x\\", "c:\\x\\"}, {"", ""}}) {
        ListFile const file(std::string(line) + "\nexplore\np.tvp\n");
        RunList list(file.path());
        std::string read = "old";
        list.read_head(read);
        EXPECT_EQ(read, directory);
        EXPECT_EQ(list.directive, RunDirective::explore);
        EXPECT_TRUE(list.good());
    }
}

TEST(RunListHead, OfAnEmptyFileGivesTheCurrentDirectoryAndFails) {
    ListFile const file("");
    RunList list(file.path());
    std::string read = "old";
    list.read_head(read);
    EXPECT_EQ(read, "");
    EXPECT_FALSE(list.good());
}

TEST(RunList, OfAMissingFileIsNotGood) {
    RunList const list("/nonexistent/tov_run.txt");
    EXPECT_FALSE(list.good());
}

}  // namespace
}  // namespace tov
