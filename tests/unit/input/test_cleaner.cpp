// The cleaner: white space, comments, external files, and the locus separator's key.
#include <gtest/gtest.h>

#include "input/cleaner.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::ScratchDirectory;

std::string cleaned_line(std::string const& line, char separator = ' ') {
    cleaner c;
    c.locus_separator = separator;
    c.curr_line = line;
    c.clean_curr_line();
    return c.curr_line;
}

TEST(CleanerLine, ShrinksBlanksAndDropsComments) {
    EXPECT_EQ(cleaned_line("a\t\tb   c \r"), "a b c");
    EXPECT_EQ(cleaned_line("  NbSamples=2 # two"), " NbSamples=2");
    EXPECT_EQ(cleaned_line("Title=\"a # b\""), "Title=\"a");
    EXPECT_EQ(cleaned_line(""), "");
    EXPECT_EQ(cleaned_line("# all"), "");
    EXPECT_EQ(cleaned_line(" \t "), "");
}

TEST(CleanerLine, TheSeparatorBecomesABlank) {
    EXPECT_EQ(cleaned_line("1/2/3", '/'), "1 2 3");
    EXPECT_EQ(cleaned_line("1/2/3", 0), "1/2/3");
}

TEST(CleanerLine, MoreThanTenThousandCharactersStayAsTheyAre) {
    std::string const at_limit(9999, 'A');
    EXPECT_EQ(cleaned_line(at_limit + "\t"), at_limit);
    std::string const longer = at_limit + "\t\t";
    cleaner c;
    c.curr_line = longer;
    EXPECT_EQ(c.clean_curr_line(), 0);
    EXPECT_EQ(c.curr_line, longer);
}

TEST(CleanerLine, LocusSeparatorKeyMeansWhiteSpace) {
    struct Case {
        char const *line, *expected;
    };
    for (Case const& c :
         {Case{"LocusSeparator=TAB", "LocusSeparator=WHITESPACE"},
          Case{"locusseparator = whitespace", "LocusSeparator=WHITESPACE"},
          Case{"LocusSeparator=' '", "LocusSeparator=WHITESPACE"},
          Case{"LocusSeparator=\" \"", "LocusSeparator=WHITESPACE"}, Case{"LocusSeparator='/'", "LocusSeparator='/'"},
          Case{"LocusSeparator=NONE", "LocusSeparator=NONE"}, Case{"LocusSeparator=\\0", "LocusSeparator=\\0"},
          Case{"LocusSeparator", "LocusSeparator"}}) {
        cleaner cleaning;
        cleaning.locus_separator = ' ';
        cleaning.curr_line = c.line;
        cleaning.line_locus_sep();
        EXPECT_EQ(cleaning.curr_line, c.expected);
    }
    cleaner without;
    without.curr_line = "LocusSeparator=TAB";
    EXPECT_EQ(without.line_locus_sep(), 0);
    EXPECT_EQ(without.curr_line, "LocusSeparator=TAB");
}

TEST(Cleaner, WritesTheCleanedProjectIntoItsDirectory) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "[Profile]\r\n\tNbSamples\t=  2 # two\n\nlast");
    cleaner c;
    EXPECT_EQ(c.get_clean_proj(), nullptr);
    EXPECT_EQ(c.get_orig_proj(), nullptr);
    std::string const path = (scratch.path() / "p.tvp").string();
    EXPECT_EQ(c.execute(' ', path.c_str()), 1);
    EXPECT_EQ(*c.get_orig_proj(), path);
    EXPECT_EQ(c.get_proj_dir(), (scratch.path() / "p.res/").string());
    EXPECT_EQ(*c.get_clean_proj(), (scratch.path() / "p.res/p.tvp").string());
    EXPECT_EQ(scratch.read("p.res/p.tvp"), "[Profile]\n NbSamples = 2\n\nlast\n");
    c.rm_clean_files();
    EXPECT_FALSE(scratch.has("p.res/p.tvp"));
    EXPECT_TRUE(scratch.has("p.tvp"));
}

TEST(Cleaner, ABareNameGetsADirectoryBesideIt) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "a\t b\n");
    cleaner c;
    c.execute(' ', "p.tvp");
    EXPECT_EQ(*c.get_clean_proj(), "p.res/p.tvp");
    EXPECT_EQ(scratch.read("p.res/p.tvp"), "a b\n");
}

TEST(Cleaner, AMissingProjectGivesNoCleanedOne) {
    ScratchDirectory scratch;
    cleaner c;
    EXPECT_EQ(c.execute(' ', "absent.tvp"), 1);
    EXPECT_EQ(c.get_clean_proj(), nullptr);
    EXPECT_FALSE(scratch.has("absent.res"));
}

TEST(Cleaner, APlainFileInPlaceOfTheDirectoryGivesNoCleanedProject) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "a\n");
    scratch.write("p.res", "in the way");
    cleaner c;
    EXPECT_EQ(c.execute(' ', "p.tvp"), 1);
    EXPECT_EQ(c.get_clean_proj(), nullptr);
    EXPECT_EQ(scratch.read("p.res"), "in the way");
}

TEST(Cleaner, AnEmptyProjectGivesAnEmptyCopy) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "");
    cleaner c;
    c.execute(' ', "p.tvp");
    EXPECT_TRUE(scratch.has("p.res/p.tvp"));
    EXPECT_EQ(scratch.read("p.res/p.tvp"), "");
}

TEST(Cleaner, ExternalFilesOfTheProjectDirectoryAreCleanedToo) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "HaplList= EXTERN \"haplos.txt\"\nSampleData= EXTERN \"haplos.txt\"\n");
    scratch.write("haplos.txt", "H1\t\tACGT # one\n");
    cleaner c;
    c.execute(' ', "p.tvp");
    EXPECT_EQ(scratch.read("p.res/haplos.txt"), "H1 ACGT\n");
    EXPECT_EQ(c.orig_files.GetItemsInContainer(), 2);  // named twice, cleaned once
    EXPECT_EQ(c.file_kinds[1], cleaner::HAPLOTYPE_FILE);
    c.rm_clean_files();
    EXPECT_FALSE(scratch.has("p.res/haplos.txt"));
    EXPECT_TRUE(scratch.has("haplos.txt"));
}

TEST(Cleaner, ExternalFilesWithAPathAndSmallLettersAreLeftAlone) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "HaplList= EXTERN \"./haplos.txt\"\nHaplList= extern \"haplos.txt\"\n" +
                               std::string(1001, ' ') + "x EXTERN \"haplos.txt\"\n");
    scratch.write("haplos.txt", "H1\tACGT\n");
    cleaner c;
    c.execute(' ', "p.tvp");
    // The third line shrinks to fewer than 1000 characters before it is looked at.
    EXPECT_EQ(c.orig_files.GetItemsInContainer(), 2);
    cleaner longer;
    longer.curr_line = std::string(990, 'x') + " EXTERN \"a\"";
    EXPECT_EQ(longer.line_has_external(), 0);
}

TEST(Cleaner, ACopyNeverTakesThePlaceOfAResultOrOfTheProject) {
    ScratchDirectory scratch;
    std::string project;
    for (char const* const name : {"p.xml", "p.htm", "p.js", "p_main.htm", "p_tree.htm", "Tovenia_log.txt", "p.tvp"}) {
        project += std::string("SampleData= EXTERN \"") + name + "\"\n";
        scratch.write(name, "h1 3 ACGT\n");
    }
    scratch.write("p.tvp", project);
    cleaner c;
    c.execute(' ', "p.tvp");
    EXPECT_EQ(c.orig_files.GetItemsInContainer(), 1);
    EXPECT_EQ(scratch.read("p.res/p.tvp"), project);
    for (char const* const name : {"p.xml", "p.htm", "p.js", "p_main.htm", "p_tree.htm", "Tovenia_log.txt"})
        EXPECT_FALSE(scratch.has(std::string("p.res/") + name)) << name;
    c.rm_clean_files();
    EXPECT_TRUE(scratch.has("p.xml"));
}

TEST(Cleaner, AMissingExternalFileLeavesNothingBehind) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "HaplList= EXTERN \"absent.txt\"\n");
    cleaner c;
    EXPECT_EQ(c.execute(' ', "p.tvp"), 1);
    EXPECT_FALSE(scratch.has("p.res/absent.txt"));
    // A file that it has not written stays, whatever its name.
    scratch.write("p.res/absent.txt", "of somebody else");
    c.rm_clean_files();
    EXPECT_TRUE(scratch.has("p.res/absent.txt"));
}

}  // namespace
}  // namespace tov
