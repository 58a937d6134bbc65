// my_string: every operation, with the cases that the scanners rely on.
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <utility>

#include "base/cstring.h"

using namespace tov;

TEST(MyString, IsBuiltFromTextCharactersAndNumbers) {
    EXPECT_EQ("", my_string());
    EXPECT_EQ("abc", my_string("abc"));
    EXPECT_EQ("x", my_string('x'));
    EXPECT_EQ("-12", my_string(-12));
    EXPECT_EQ("s", my_string(std::string("s")));
    EXPECT_EQ("v", my_string(std::string_view("v")));
    EXPECT_EQ("", my_string(static_cast<char const*>(nullptr)));
    EXPECT_TRUE(my_string().is_null());
    EXPECT_FALSE(my_string(" ").is_null());
    EXPECT_EQ(3, my_string("abc").length());
    EXPECT_STREQ("abc", my_string("abc").c_str());
}

TEST(MyString, IsAssignedTextAndNumbers) {
    my_string s;
    s = "abc";
    EXPECT_EQ("abc", s);
    s = s.c_str() + 1;
    EXPECT_EQ("bc", s) << "from its own buffer";
    s = 42;
    EXPECT_EQ("42", s);
    s = 0.1;
    EXPECT_EQ("0.1", s);
    s = 1234567.0;
    EXPECT_EQ("1.23457e+06", s) << "six significant digits";
    s = 'c';
    EXPECT_EQ("c", s);
    s = std::string("t");
    EXPECT_EQ("t", s);
    s = std::string_view("view");
    EXPECT_EQ("view", s);
}

TEST(MyString, ATextOfHundredFiftyThousandCharactersBecomesEmpty) {
    EXPECT_EQ(149999, my_string(std::string(149999, 'A').c_str()).length());
    EXPECT_EQ(0, my_string(std::string(150000, 'A').c_str()).length());
    my_string built;
    for (int i = 0; i < 200000; ++i) built += 'A';
    EXPECT_EQ(200000, built.length()) << "building has no limit";
}

TEST(MyString, AppendsAndConcatenates) {
    my_string s("a");
    s += my_string("b");
    s += "c";
    s += 'd';
    s += s;
    EXPECT_EQ("abcdabcd", s);
    EXPECT_EQ("xy", my_string("x") + my_string("y"));
    EXPECT_EQ("xy", my_string("x") + "y");
    EXPECT_EQ("xy", "x" + my_string("y"));
}

TEST(MyString, ComparesInTheOrderOfCStrings) {
    EXPECT_TRUE(my_string("abc") == "abc");
    EXPECT_TRUE("abc" == my_string("abc"));
    EXPECT_TRUE(my_string("abc") != my_string("abd"));
    EXPECT_TRUE(my_string("ab") < my_string("abc"));
    EXPECT_TRUE(my_string("B") < my_string("a"));
    EXPECT_TRUE(my_string("z") < my_string("\xe9")) << "characters are unsigned";
    EXPECT_FALSE(my_string("a") < my_string("a"));
}

TEST(MyString, IndexOutsideNeverReachesForeignMemory) {
    my_string s("ab");
    s[0] = 'x';
    EXPECT_EQ("xb", s);
    EXPECT_EQ('\0', s[2]);
    s[7] = 'q';
    EXPECT_EQ('\0', s[7]);
    EXPECT_EQ('\0', std::as_const(s)[-1]);
    EXPECT_EQ("xb", s);
}

TEST(MyString, IsWrittenWithTheWidthOfTheStreamAndReadByWords) {
    std::ostringstream out;
    out << std::setw(5) << my_string("ab") << '|';
    EXPECT_EQ("   ab|", out.str());
    std::istringstream in("  one two");
    my_string s;
    in >> s;
    EXPECT_EQ("one", s);
}

TEST(MyString, ChangesCase) {
    my_string s("aBc-1");
    EXPECT_EQ("abc-1", s.Lower());
    EXPECT_EQ("ABC-1", s.Upper());
    EXPECT_EQ("aBc-1", s);
    s.to_upper();
    EXPECT_EQ("ABC-1", s);
    s.to_lower();
    EXPECT_EQ("abc-1", s);
}

TEST(MyStringReading, TokenEndsAtABlankWhichIsConsumed) {
    std::istringstream in(" \t\n one\ttwo\nthree");
    my_string s("old");
    s.read_token(in);
    EXPECT_EQ("one", s);
    EXPECT_EQ('t', in.peek());
    s.read_token(in);
    EXPECT_EQ("two", s);
    s.read_token(in);
    EXPECT_EQ("three", s);
    EXPECT_FALSE(in.fail());
    s.read_token(in);
    EXPECT_EQ("", s);
    EXPECT_TRUE(in.fail());
}

TEST(MyStringReading, DelimiterNewlineNulAndCharacter255AllStop) {
    std::istringstream in(
        std::string("a;b\nc\0d\xff"
                    "e",
                    9));
    my_string s;
    for (char const* const expected : {"a", "b", "c", "d", "e"}) {
        s.read_to_delim(in, ';');
        EXPECT_EQ(expected, s);
    }
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.fail()) << "a last line without a newline counts";
}

TEST(MyStringReading, FailedStreamLeavesTheEmptyString) {
    std::istringstream in("abc");
    in.setstate(std::ios::failbit);
    my_string s("old");
    s.read_to_delim(in, ';');
    EXPECT_EQ("", s);
}

TEST(MyStringReading, LinesComeOneByOne) {
    std::istringstream in("one\n\nthree\r\n");
    my_string s;
    s.read_line(in);
    EXPECT_EQ("one", s);
    s.read_line(in);
    EXPECT_EQ("", s);
    EXPECT_FALSE(in.fail());
    s.read_line(in);
    EXPECT_EQ("three\r", s);
    s.read_line(in);
    EXPECT_TRUE(in.fail());
}

TEST(MyStringReading, NextQuotedStringIsFoundAcrossLines) {
    std::istringstream in("x = \"first\" and\n \"\" \"open");
    my_string s;
    s.GetNextQuota(in);
    EXPECT_EQ("first", s);
    s.GetNextQuota(in);
    EXPECT_EQ("", s);
    s.GetNextQuota(in);
    EXPECT_EQ("open", s);
    s.GetNextQuota(in);
    EXPECT_EQ("", s);
    EXPECT_TRUE(in.fail());
}

TEST(MyStringSearching, EmptyPatternIsNotContained) {
    my_string const s("abab");
    EXPECT_EQ(0, s.contains(""));
    EXPECT_EQ(0, s.contains("ababa"));
    EXPECT_EQ(1, s.contains("ba"));
    EXPECT_EQ(0, s.contains("BA"));
}

TEST(MyStringSearching, RfindGivesTheFirstOccurrence) {
    EXPECT_EQ(0, my_string("abab").rfind("ab"));
    EXPECT_EQ(2, my_string("xxab").rfind("ab"));
    EXPECT_EQ(-1, my_string("abab").rfind("c"));
    EXPECT_EQ(1, my_string("abab").find_first_of('b'));
    EXPECT_EQ(3, my_string("abab").find_last_of('b'));
    EXPECT_EQ(-1, my_string("abab").find_first_of('c'));
    EXPECT_EQ(-1, my_string("").find_last_of('c'));
}

TEST(MyStringCutting, RemoveIgnoresRangesThatAreNone) {
    EXPECT_EQ("abcdef", my_string("abcdef").remove(2, 0));
    EXPECT_EQ("abcdef", my_string("abcdef").remove(2, -1));
    EXPECT_EQ("abcdef", my_string("abcdef").remove(-1, 2));
    EXPECT_EQ("abcdef", my_string("abcdef").remove(6, 2));
    EXPECT_EQ("abef", my_string("abcdef").remove(2, 2));
    EXPECT_EQ("ab", my_string("abcdef").remove(2, 4));
    EXPECT_EQ("ab", my_string("abcdef").remove(2, 2147483647));
}

TEST(MyStringCutting, ExtractSubStrTakesPieceAfterPiece) {
    my_string s(";;one;two;;three");
    EXPECT_EQ("one", s.extract_sub_str(';'));
    EXPECT_EQ("two;;three", s);
    EXPECT_EQ("two", s.extract_sub_str(';'));
    EXPECT_EQ("three", s.extract_sub_str(';'));
    EXPECT_EQ("", s);
    EXPECT_EQ("", s.extract_sub_str(';'));
    my_string only(";;;");
    EXPECT_EQ("", only.extract_sub_str(';'));
    EXPECT_EQ("", only);
}

TEST(MyStringCutting, ExtractAfterAndBeforeTheFirst) {
    my_string const s("key=a=b");
    EXPECT_EQ("a=b", s.extract_after('='));
    EXPECT_EQ("key", s.extract_before('='));
    EXPECT_EQ("", s.extract_after('#'));
    EXPECT_EQ("key=a=b", s.extract_before('#'));
    EXPECT_EQ("", my_string("k=").extract_after('='));
}

TEST(MyStringFileNames, PathsAreCutAtTheLastSeparator) {
    EXPECT_EQ("c.tvp", my_string("/a\\b/c.tvp").rm_path());
    EXPECT_EQ("c.tvp", my_string("a\\c.tvp").rm_path());
    EXPECT_EQ("c.tvp", my_string("c.tvp").rm_path());
    EXPECT_EQ("/a/b/", my_string("/a/b/c.tvp").extract_path());
    EXPECT_EQ("a\\", my_string("a\\c.tvp").extract_path());
    EXPECT_EQ("", my_string("c.tvp").extract_path());
}

TEST(MyStringFileNames, ExtensionIsCutFromTheLastDot) {
    EXPECT_EQ("a.b", my_string("a.b.tvp").remove_extension());
    EXPECT_EQ("name", my_string("name").remove_extension());
    EXPECT_EQ("/dir", my_string("/dir.v1/name").remove_extension()) << "wherever the dot stands";
}

TEST(MyStringFileNames, SeparatorsAndBlanksAreReplaced) {
    EXPECT_EQ("a/b/c", my_string("a\\b/c").convert_to_slash());
    EXPECT_EQ("a\\b\\c", my_string("a\\b/c").convert_to_backslash());
    EXPECT_EQ("a/b/c", my_string("a\\b/c").convert_to_html_slash());
    EXPECT_EQ("a%20b%20", my_string("a b ").convert_blank_to_html_blank());
    EXPECT_EQ("a\\ b", my_string("a b").convert_blank_to_linux_blank());
    EXPECT_EQ("a_b", my_string("a b").convert_blank_to_underline());
}

TEST(MyString, RemovesBlanksAndLineEndsAndReverses) {
    EXPECT_EQ("ab\tc", my_string(" a b\tc ").remove_blanks());
    EXPECT_EQ("ab", my_string("a\r\nb\n").remove_eol_and_lf());
    EXPECT_EQ("cba", my_string("abc").reverse_string());
    my_string s("abc");
    s.extendSize(1000);
    s.extendSize(-1);
    EXPECT_EQ("abc", s);
}
