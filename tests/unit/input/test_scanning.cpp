// The scanning helpers: line by line, by stream, and on files.
#include <gtest/gtest.h>

#include <sstream>

#include "input/public.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::FreshProcess;
using test::ScratchDirectory;

bool has(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

TEST(Identifiers, AreFortyKeysAndFiveSubSections) {
    EXPECT_EQ(identifier(0), "recessiveallele");
    EXPECT_EQ(identifier(39), "ymatrixlabels");
    EXPECT_EQ(identifier(40), "distancematrix");
    EXPECT_EQ(identifier(44), "mantel");
    EXPECT_EQ(identifier(45), "");
    EXPECT_EQ(identifier(-1), "");
    EXPECT_EQ(sub_section(0), "distancematrix");
    EXPECT_EQ(sub_section(1), "haplotypedefinition");
    EXPECT_EQ(sub_section(2), "samples");
    EXPECT_EQ(sub_section(3), "structure");
    EXPECT_EQ(sub_section(4), "mantel");
    EXPECT_EQ(sub_section(5), "");
}

TEST(Identifiers, KeysMatchAndSubSectionsDoNot) {
    EXPECT_EQ(is_identifier("nbsamples"), 1);
    EXPECT_EQ(is_identifier("ymatrixlabels"), 1);
    EXPECT_EQ(is_identifier("samples"), 0);
    EXPECT_EQ(is_identifier("NbSamples"), 0);
}

TEST(IniFile, WritesItsSectionsAndKeys) {
    ScratchDirectory scratch;
    EXPECT_EQ(INIFILE.write_ini(), 1);
    std::string const text = scratch.read("Tovenia.ini");
    for (char const* part : {"[Tovenia]", "[Directories]", "[Startup]", "[Project]", "[options]", "SaveProject=1",
                             "PrintHaploDataInSamples=1", "PrettyPrintDistMat=1", "GenerateLogFile=1"})
        EXPECT_TRUE(has(text, part)) << part;
}

TEST(LineHelpers, PoundSignCutsAlsoInsideQuotes) {
    my_string text("Title=\"a # b\"");
    clearLineAfterPoundSign(text);
    EXPECT_EQ(text, "Title=\"a ");
    my_string plain("NbSamples=5");
    clearLineAfterPoundSign(plain);
    EXPECT_EQ(plain, "NbSamples=5");
}

TEST(LineHelpers, MissingEqualSignIsReported) {
    FreshProcess fresh;
    EXPECT_EQ(checkForPresenceOfEqualSign("a=b", "Title", 3), 1);
    EXPECT_EQ(fresh.log(), "");
    EXPECT_EQ(checkForPresenceOfEqualSign("Title \"x\"", "Title", 3), 0);
    EXPECT_TRUE(has(fresh.log(), "from function \"checkForPresenceOfEqualSign(...)\" : missing '=' sign in keyword"));
    EXPECT_TRUE(has(fresh.log(), "\tProject file, Line #3 : Missing equal sign after keyword 'Title'\n"));
}

TEST(QuotedString, PrefersTheDoubleQuote) {
    FreshProcess fresh;
    my_string out;
    EXPECT_EQ(getQuotedString("Title = it's \"one\" and 'two'", out, "Title", 1), 1);
    EXPECT_EQ(out, "one");
    EXPECT_EQ(getQuotedString("MissingData='?'", out, "MissingData", 1), 1);
    EXPECT_EQ(out, "?");
    EXPECT_EQ(getQuotedString("Title=\"\"", out, "Title", 1), 1);
    EXPECT_EQ(out, "");
    EXPECT_EQ(fresh.log(), "");
}

TEST(QuotedString, WithoutQuoteIsError190AndLeavesTheOutput) {
    FreshProcess fresh;
    my_string out("kept");
    EXPECT_EQ(getQuotedString("Title=abc", out, "Title", 7), 0);
    EXPECT_EQ(out, "kept");
    EXPECT_TRUE(has(fresh.log(), "\"readStringContent(...)\" : bad value assigned to keyword in project file"));
    EXPECT_TRUE(has(fresh.log(), "\tProject file, Line #7 : No open quote after keyword 'Title'\n"));
}

TEST(QuotedString, WithoutClosingQuoteIsError190) {
    FreshProcess fresh;
    my_string out("kept");
    EXPECT_EQ(getQuotedString("Title=\"a ", out, "Title", 8), 0);
    EXPECT_EQ(out, "kept");
    EXPECT_TRUE(has(fresh.log(),
                    "\tProject file, Line #8 : Opened quote not closed after keyword 'Title'. Unable to assign value "
                    "to key...\n"));
}

TEST(QuotedString, AQuoteBeforeTheEqualSignDoesNotCount) {
    FreshProcess fresh;
    my_string out;
    EXPECT_EQ(getQuotedString("\"Title\"", out, "Title", 1), 0);
    EXPECT_EQ(getQuotedString("\"x\" = 'y'", out, "Title", 1), 1);
    EXPECT_EQ(out, "y");
}

TEST(UnquotedString, IsAllThatStandsBehindTheEqualSign) {
    my_string out;
    EXPECT_EQ(getUnQuotedString("DataType= DNA x", out, "DataType", 1), 1);
    EXPECT_EQ(out, " DNA x");
    EXPECT_EQ(getUnQuotedString("DataType", out, "DataType", 1), 1);
    EXPECT_EQ(out, "");
}

TEST(Value, IsReadWithBlanksAroundIt) {
    FreshProcess fresh;
    double value = -1.0;
    EXPECT_EQ(getValue("NbSamples= 12 ", value, "NbSamples", 1), 1);
    EXPECT_EQ(value, 12.0);
    EXPECT_EQ(getValue("EpsilonValue=1e-7", value, "EpsilonValue", 1), 1);
    EXPECT_EQ(value, 1e-7);
    EXPECT_EQ(getValue("x=+3", value, "x", 1), 1);
    EXPECT_EQ(value, 3.0);
    EXPECT_EQ(getValue("x=-3.5\r", value, "x", 1), 1);
    EXPECT_EQ(value, -3.5);
    EXPECT_EQ(getValue("x=1e-400", value, "x", 1), 1);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(fresh.log(), "");
}

TEST(Value, NothingCountsAsZero) {
    double value = -1.0;
    EXPECT_EQ(getValue("NbSamples=", value, "NbSamples", 1), 1);
    EXPECT_EQ(value, 0.0);
}

TEST(Value, OtherTextAndOverflowAreError190) {
    FreshProcess fresh;
    double value = -1.0;
    for (char const* text : {"NbSamples=x", "NbSamples=3x", "NbSamples=1 2", "NbSamples=1e400", "NbSamples=inf",
                             "NbSamples=nan", "NbSamples=+-3"}) {
        fresh.clear_log();
        EXPECT_EQ(getValue(text, value, "NbSamples", 4), 0) << text;
        EXPECT_EQ(value, -1.0);
        EXPECT_TRUE(has(fresh.log(), "bad value assigned to keyword")) << text;
        EXPECT_TRUE(has(fresh.log(), "\tProject file, Line #4 : Bad value after keyword 'NbSamples'\n")) << text;
    }
}

TEST(FileName, WithASlashHoldsAPath) {
    EXPECT_EQ(detectFullPathInFileName("data.dis"), 0);
    EXPECT_EQ(detectFullPathInFileName("dir/data.dis"), 1);
    EXPECT_EQ(detectFullPathInFileName("dir\\data.dis"), 1);
}

TEST(GetInt, ReadsDigitsAfterBlanks) {
    std::istringstream is("  42 x");
    int value = 0;
    EXPECT_EQ(get_int(is, value), 1);
    EXPECT_EQ(value, 42);
}

TEST(GetInt, ANewlineOrALetterGivesZero) {
    std::istringstream newline(" \n42");
    int value = 7;
    EXPECT_EQ(get_int(newline, value), 0);
    EXPECT_EQ(value, 7);
    std::istringstream letter("x42");
    EXPECT_EQ(get_int(letter, value), 0);
    EXPECT_EQ(letter.get(), '4');  // the letter stays consumed
}

TEST(GetInt, ANumberTooLargeGivesZero) {
    std::istringstream is("99999999999999999999");
    int value = 7;
    EXPECT_EQ(get_int(is, value), 0);
    EXPECT_EQ(value, 7);
}

TEST(GetQchar, TakesACharacterBetweenQuotesOfEitherKind) {
    std::istringstream is(" '?\"");
    char c = 0;
    EXPECT_EQ(get_qchar(is, c), 1);
    EXPECT_EQ(c, '?');
}

TEST(GetQchar, PutsTheCharactersBackWithoutAQuote) {
    char c = 'k';
    std::istringstream open("abc");
    EXPECT_EQ(get_qchar(open, c), 0);
    EXPECT_EQ(open.get(), 'a');
    std::istringstream close("'abc");
    EXPECT_EQ(get_qchar(close, c), 0);
    EXPECT_EQ(close.get(), '\'');
    EXPECT_EQ(close.get(), 'a');
    std::istringstream end("'");
    EXPECT_EQ(get_qchar(end, c), 0);
    EXPECT_EQ(end.get(), '\'');
    std::istringstream newline(" \n'x'");
    EXPECT_EQ(get_qchar(newline, c), 0);
    EXPECT_EQ(c, 'k');
}

TEST(EndOfLine, IsFoundBehindBlanksAndComments) {
    std::istringstream comment("  # note\nnext");
    EXPECT_EQ(test_end_of_line(comment), 1);
    EXPECT_EQ(comment.get(), 'n');
    std::istringstream blank(" \t\n");
    EXPECT_EQ(test_end_of_line(blank), 1);
    std::istringstream end("");
    EXPECT_EQ(test_end_of_line(end), 1);
    std::istringstream text(" x");
    EXPECT_EQ(test_end_of_line(text), 0);
    EXPECT_EQ(text.get(), 'x');
}

TEST(SkipComments, StopsAtAnItem) {
    std::istringstream is(" # one\n\n  #two\n[Data]");
    EXPECT_EQ(skip_comments(is), 1);
    EXPECT_EQ(is.get(), '[');
    for (char const* item : {"a", "5", "[", "}", "\"", "'"}) {
        std::istringstream single(item);
        EXPECT_EQ(skip_comments(single), 1) << item;
    }
}

TEST(SkipComments, AnotherCharacterIsError100) {
    FreshProcess fresh;
    std::istringstream is("  %x");
    EXPECT_EQ(skip_comments(is), 0);
    EXPECT_TRUE(has(fresh.log(), " ** a_public::skip_comments_l_253:the character is not the expected one c:%"));
    EXPECT_TRUE(has(fresh.log(), "\"skip_comments(ifstream& ifs) (\"%\")\" : invalid character in input file"));
    EXPECT_EQ(is.get(), 'x');
}

TEST(SkipComments, TheEndOfTheFileGivesZero) {
    FreshProcess fresh;
    std::istringstream is("  # only a comment");
    EXPECT_EQ(skip_comments(is), 0);
    EXPECT_EQ(fresh.log(), "");
}

TEST(GetWord, ReadsALowerCaseTokenAndStopsAtANewline) {
    std::istringstream is(" -- Word2 \nOther");
    my_string word;
    EXPECT_EQ(get_word(is, word), 1);
    EXPECT_EQ(word, "word2");
    EXPECT_EQ(get_word(is, word), 0);
    EXPECT_EQ(word, "");
    EXPECT_EQ(get_word(is, word), 1);
    EXPECT_EQ(word, "other");
}

TEST(GetWord, GoesOverAComment) {
    std::istringstream is("# comment\nWord");
    my_string word;
    EXPECT_EQ(get_word(is, word), 1);
    EXPECT_EQ(word, "word");
}

TEST(GetNextIdent, CutsAtTheFirstBlankAndStopsAtABracket) {
    std::istringstream is("#c\n NbSamples = 3\n[Data]");
    my_string ident;
    EXPECT_EQ(get_next_ident(is, ident), 1);
    EXPECT_EQ(ident, "nbsamples");
    int value = 0;
    EXPECT_EQ(get_int(is, value), 1);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(get_next_ident(is, ident), 0);
    EXPECT_EQ(ident, "");
    EXPECT_EQ(is.get(), '[');
}

TEST(GetQstring, TakesQuotedTextAsItStands) {
    my_string text;
    std::istringstream is(" # c\n \"a # b\" \"\" 'x'");
    EXPECT_EQ(get_qstring(is, text), 1);
    EXPECT_EQ(text, "a # b");
    EXPECT_EQ(get_qstring(is, text), 1);
    EXPECT_EQ(text, "");
    EXPECT_EQ(get_qstring(is, text), 1);
    EXPECT_EQ(text, "x");
}

TEST(GetQstring, TwoCharactersInSingleQuotesAreError101) {
    FreshProcess fresh;
    my_string text;
    std::istringstream is("'ab'");
    EXPECT_EQ(get_qstring(is, text), 0);
    EXPECT_TRUE(has(fresh.log(), "\"get_qstring(ifstream& ifs, my_string& s)\" : unable to read a character"));
}

TEST(GetQstring, ATokenIsCutAtABraceAndAtASlash) {
    my_string text;
    std::istringstream brace("pop1} x");
    EXPECT_EQ(get_qstring(brace, text), 1);
    EXPECT_EQ(text, "pop1");
    EXPECT_EQ(brace.get(), '}');
    std::istringstream slash("pop1/two x");
    EXPECT_EQ(get_qstring(slash, text), 1);
    EXPECT_EQ(text, "pop1");
    EXPECT_EQ(slash.get(), ' ');
    std::istringstream other("{x");
    EXPECT_EQ(get_qstring(other, text), 0);
    EXPECT_EQ(other.get(), '{');
}

TEST(ReadDirective, FillsTheBufferInLowerCase) {
    char buffer[6];
    std::istringstream is("TRANSLATE next");
    EXPECT_EQ(read_directive_my_string(is, buffer, 6), 1);
    EXPECT_STREQ(buffer, "trans");
    std::istringstream last("End");
    EXPECT_EQ(read_directive_my_string(last, buffer, 6), 0);  // the end of the file was met
    EXPECT_STREQ(buffer, "end");
}

char const project_text[] =
    "# [Data] in a comment\n[Profile]\n Title=\"a\"\n NbSamples=2\n[Data]\n[[Samples]]\nSampleName=\"x\"\n"
    "[[Structure]]\n NbGroups=4\n";

TEST(PositionAfter, FindsSectionSubSectionAndKeyword) {
    FreshProcess fresh;
    std::istringstream is(project_text);
    int value = 0;
    EXPECT_EQ(position_after(is, "PROFILE", "", "NbSamples"), 1);
    EXPECT_EQ(get_int(is, value), 1);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(position_after(is, "data", "structure", "nbgroups"), 1);
    EXPECT_EQ(get_int(is, value), 1);
    EXPECT_EQ(value, 4);
    EXPECT_EQ(fresh.log(), "");
}

TEST(PositionAfter, ReportsTheStepThatFailed) {
    struct Case {
        char const *section, *sub_section, *keyword, *function;
    };
    for (Case const& c :
         {Case{"nothing", "", "", "position_after() (1)"}, Case{"data", "mantel", "", "position_after() (2)"},
          Case{"profile", "", "nbgroups", "position_after() (4)"}}) {
        FreshProcess fresh;
        std::istringstream is(project_text);
        EXPECT_EQ(position_after(is, c.section, c.sub_section, c.keyword), 0);
        EXPECT_TRUE(has(fresh.log(), std::string("\"") + c.function + "\" : unable to find section in profile"))
            << fresh.log();
        EXPECT_TRUE(is.good());
    }
    FreshProcess fresh;
    std::istringstream cut("[data]\n[");
    EXPECT_EQ(position_after(cut, "data", "mantel", ""), 0);
    EXPECT_TRUE(has(fresh.log(), "position_after() (3)"));
    std::istringstream bad("[data]");
    bad.setstate(std::ios::failbit);
    EXPECT_EQ(position_after(bad, "data", "", ""), 0);
    EXPECT_TRUE(has(fresh.log(), "position_after() (5)"));
    EXPECT_TRUE(bad.good());
}

TEST(PositionAfter, GoToSectionAndSubSection) {
    std::istringstream is(project_text);
    EXPECT_EQ(go_to_section(is, "Data"), 1);
    EXPECT_EQ(go_to_sub_section(is, "Structure"), 1);
    my_string ident;
    EXPECT_EQ(get_next_ident(is, ident), 1);
    EXPECT_EQ(ident, "nbgroups");
}

TEST(NextSubSection, GivesPositionsFromOne) {
    FreshProcess fresh;
    std::istringstream is("x [Data] y\n[[Samples]] rest\n[[MANTEL]]\n[[distancematrix]]\n");
    my_string name;
    EXPECT_EQ(get_next_subsection(is, name), 3);
    EXPECT_EQ(name, "samples");
    EXPECT_EQ(get_next_subsection(is, name), 5);
    EXPECT_EQ(get_next_subsection(is, name), 1);
    EXPECT_EQ(get_next_subsection(is, name), 0);
    EXPECT_TRUE(is.good());
    EXPECT_EQ(fresh.log(), "");
}

TEST(NextSubSection, AnUnknownNameIsError105) {
    FreshProcess fresh;
    std::istringstream is("[[Nonsense]]\n");
    my_string name;
    EXPECT_EQ(get_next_subsection(is, name), 0);
    EXPECT_TRUE(has(fresh.log(), "\"get_next_subsection() (\"nonsense\"\""));
}

TEST(NextSubSection, AReadFailureIsError104) {
    FreshProcess fresh;
    std::istringstream is("[[");
    my_string name;
    EXPECT_EQ(get_next_subsection(is, name), 0);
    EXPECT_TRUE(has(fresh.log(), "unable to read subsection id"));
}

TEST(ProfileOfAFile, GivesValuesOrDefaults) {
    FreshProcess fresh;
    ScratchDirectory scratch;
    scratch.write("p.tvp", "[Profile]\nTitle=\"abc\"\nNbSamples=2\nMissingData='?'\n[Data]\n");
    EXPECT_EQ(get_tov_profile_int("p.tvp", "profile", "", "nbsamples", 9), 2);
    EXPECT_EQ(get_tov_profile_int("p.tvp", "profile", "", "nbgroups", 9), 9);
    EXPECT_EQ(get_tov_profile_my_string("p.tvp", "profile", "", "title", "none"), "abc");
    EXPECT_EQ(get_tov_profile_my_string("p.tvp", "profile", "", "label", "none"), "none");
    EXPECT_EQ(get_tov_profile_char("p.tvp", "profile", "", "missingdata", '-'), '?');
    fresh.clear_log();
    EXPECT_EQ(get_tov_profile_int("absent.tvp", "profile", "", "nbsamples", 9), 9);
    EXPECT_TRUE(has(fresh.log(), "unable to open Tovenia input file"));
}

TEST(PrivateProfile, WritesAKeyAndAValue) {
    std::ostringstream os;
    EXPECT_EQ(aWritePrivateProfileString("Key", "value", os), 1);
    EXPECT_EQ(os.str(), "Key=value\n");
}

TEST(Files, AreMadeCopiedAndDeleted) {
    ScratchDirectory scratch;
    EXPECT_EQ(MY_CreateDirectory("dir"), 1);
    EXPECT_EQ(MY_CreateDirectory("dir"), 1);
    EXPECT_TRUE(scratch.has("dir"));
    std::string const long_text(300000, 'x');
    scratch.write("a", long_text);
    EXPECT_EQ(MY_CopyFile("a", "dir/b"), 1);
    EXPECT_EQ(scratch.read("dir/b"), long_text);
    scratch.write("empty", "");
    EXPECT_EQ(MY_CopyFile("empty", "dir/empty"), 1);
    EXPECT_TRUE(scratch.has("dir/empty"));
    EXPECT_EQ(MY_CopyFile("absent", "c"), 0);
    EXPECT_EQ(MY_CopyFile("a", "absent/c"), 0);
    EXPECT_EQ(MY_DeleteFile("a"), 1);
    EXPECT_FALSE(scratch.has("a"));
    EXPECT_EQ(MY_DeleteFile("never_there"), 1);
    EXPECT_FALSE(scratch.has("never_there"));
}

TEST(Files, SlashesAreConverted) {
    char path[] = "a\\b\\c";
    convert_to_slash(path);
    EXPECT_STREQ(path, "a/b/c");
}

}  // namespace
}  // namespace tov
