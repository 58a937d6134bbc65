#include <gtest/gtest.h>

#include <sstream>

#include "translate/project_text.h"

using namespace tov;

TEST(ForeignLines, BlanksAndCarriageReturnsAtTheEndGo) {
    std::string line = " a b \t\r\x1a";
    strip_line_end(line);
    EXPECT_EQ(line, " a b");
    line = " \r";
    strip_line_end(line);
    EXPECT_EQ(line, "");
}

TEST(ForeignLines, ContentLinesSkipBlankOnes) {
    std::istringstream in("\r\n  \n\tx\r\n\ny");
    std::string line;
    EXPECT_TRUE(read_content_line(in, line));
    EXPECT_EQ(line, "\tx");
    EXPECT_TRUE(read_content_line(in, line));
    EXPECT_EQ(line, "y");
    EXPECT_FALSE(read_content_line(in, line));
}

TEST(EntryName, BlanksDropOutAndSpecialCharactersBecomeUnderlines) {
    EXPECT_EQ(entry_name(" Grange des Peres ", "x"), "GrangedesPeres");
    EXPECT_EQ(entry_name("a#b{c}d\x01", "x"), "a_b_c_d_");
    EXPECT_EQ(entry_name(" \t ", "noname"), "noname");
    EXPECT_EQ(entry_name("\xe9t\xe9", "x"), "\xe9t\xe9");
}

TEST(QuotedText, QuotesPoundSignsAndControlsBecomeBlanks) { EXPECT_EQ(quoted_text("a \"b\" #1\t"), "a  b   1 "); }

TEST(DataText, CharactersThatEndALineOrABlockBreakData) {
    EXPECT_TRUE(breaks_data("AC#T"));
    EXPECT_TRUE(breaks_data("AC}T"));
    EXPECT_TRUE(breaks_data(std::string("A\0C", 3)));
    EXPECT_FALSE(breaks_data("AC GT\t-?*."));
}

TEST(HaplotypeNames, ANameKeepsOneDefinition) {
    HaplotypeNames names;
    EXPECT_EQ(names.for_content("a", "01 02"), "a");
    EXPECT_EQ(names.for_content("a", "01 02"), "a");
    EXPECT_EQ(names.for_content("a", "01 03"), "a_2");
    EXPECT_EQ(names.for_content("a", "01 04"), "a_3");
    EXPECT_EQ(names.for_content("a", "01 03"), "a_2");
    EXPECT_EQ(names.for_content("b", "01 03"), "b");
}
