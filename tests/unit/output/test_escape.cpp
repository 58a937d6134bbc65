// Escaping of text from the user's data.
#include <gtest/gtest.h>

#include <sstream>

#include "output/escape.h"

namespace tov {
namespace {

TEST(DocText, EscapesMarkupAndNothingElse) {
    EXPECT_EQ(doc_text("a<b & \"c\" > 'd'"), "a&lt;b &amp; \"c\" > 'd'");
    EXPECT_EQ(doc_text(""), "");
}

TEST(DocText, BreaksTheEndOfAnXmlSection) {
    EXPECT_EQ(doc_text("a]]>b]]]>c]>d>>"), "a]]&gt;b]]]&gt;c]>d>>");
    EXPECT_EQ(doc_text("]]<>&>"), "]]&lt;>&amp;>");
    EXPECT_EQ(doc_attribute("]]>"), "]]&gt;");
}

TEST(DocText, EscapesAnAmpersandThatLooksEscapedAlready) { EXPECT_EQ(doc_text("&lt;"), "&amp;lt;"); }

TEST(DocText, DropsControlCharactersButTabAndNewline) {
    EXPECT_EQ(doc_text(std::string("a\0b\x01\x1b[0m\tc\nd\r", 13)), "ab[0m\tc\nd");
}

TEST(DocText, KeepsBytesOfLatin1) { EXPECT_EQ(doc_text("Gen\xe8ve \x80\xff"), "Gen\xe8ve \x80\xff"); }

TEST(DocAttribute, EscapesDoubleQuotesToo) { EXPECT_EQ(doc_attribute("a \"b\" <c>&"), "a &quot;b&quot; &lt;c>&amp;"); }

TEST(JsText, EscapesBackslashAndItsOwnQuote) {
    EXPECT_EQ(js_text("a\"b\\c'd\n"), "a\\\"b\\\\c'd");
    EXPECT_EQ(js_text("a\"b'c", '\''), "a\"b\\'c");
}

TEST(UserText, PadsByWhatTheReaderSees) {
    std::ostringstream out;
    out << user_text{"a<b", 6} << '|' << user_text{"a&b", 6, false} << '|' << user_text{"\x01x", 3} << '|'
        << user_text{"long", 2};
    EXPECT_EQ(out.str(), "a&lt;b   |   a&amp;b|x  |long");
    EXPECT_EQ(shown_length("a<\x02z"), 3);
}

}  // namespace
}  // namespace tov
