// Numbered reports: their form, their counters, the log and the document.
#include <gtest/gtest.h>

#include <filesystem>

#include "run/errors.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"

using namespace tov;
using tov::test::FreshProcess;
using tov::test::ScratchDirectory;

TEST(Errors, BeforeTheLogIsOpenNothingIsCountedPrintedOrThrown) {
    FreshProcess fresh;
    E.active = 0;
    E.results = &fresh.document_stream();
    E.error(ErrorType::Error, "f()", 1);
    EXPECT_NO_THROW(E.error(ErrorType::Memory, "f()", 0));
    E.counters.error_count = 5;
    E.error(ErrorType::Error, "f()", -1);
    EXPECT_EQ(5, E.counters.error_count) << "not even reset";
    EXPECT_EQ(1, E.counters.mess_count);
    EXPECT_EQ("", fresh.log());
    EXPECT_EQ("", fresh.document());
}

TEST(Errors, EachTypeHasItsTagAndItsCounter) {
    FreshProcess fresh;
    E.error(ErrorType::Warning, "a()", 2);
    E.error(ErrorType::Error, "Project::newOpen()", 126);
    E.error(ErrorType::Information, "b()", 11);
    E.error(ErrorType::Warning, "a()", 2);
    E.error(static_cast<ErrorType>(9), "c()", 1);
    EXPECT_EQ(
        "   1 #[WARNING # 1] from function \"a()\" : ill-defined genetic structure\n"
        "   2 #[ERROR # 1] from function \"Project::newOpen()\" : unable to open project file\n"
        "   3 #[INFO # 1] from function \"b()\" : missing haplotype label(s)\n"
        "   4 #[WARNING # 2] from function \"a()\" : ill-defined genetic structure\n"
        "   5 #[ERROR # 2] from function \"c()\" : array out of bounds\n",
        fresh.log());
}

TEST(Errors, DocumentGetsTheShortFormWithoutDebugReports) {
    FreshProcess fresh;
    fresh.document_stream();
    E.error(ErrorType::Error, "f()", 14);
    E.error(ErrorType::Debug, "at line 3", 0);
    E.error(ErrorType::Error, "f()", 0);
    EXPECT_EQ(" #[ERROR # 1] : no value assigned to \"MatrixSize\"\n #[ERROR # 3] : not enough memory\n",
              fresh.document());
    EXPECT_NE(std::string::npos, fresh.log().find("   2 #[DEBUG # 2] at line 3\n")) << fresh.log();
}

TEST(Errors, MemoryReportThrowsAfterWriting) {
    FreshProcess fresh;
    fresh.document_stream();
    try {
        E.error(ErrorType::Memory, "f()", 0);
        FAIL() << "nothing thrown";
    } catch (ExceptionType const& exception) {
        EXPECT_EQ(0, exception.value);
    }
    EXPECT_EQ("   1 #[MEMORY # 1] from function \"f()\" : not enough memory\n", fresh.log());
    EXPECT_EQ(" #[MEMORY # 1] : not enough memory\n", fresh.document());
}

TEST(Errors, CodeMinusOneResetsTheNumbering) {
    FreshProcess fresh;
    E.error(ErrorType::Error, "f()", 1);
    E.error(ErrorType::Warning, "f()", 1);
    E.error(ErrorType::Error, "f()", -1);
    fresh.clear_log();
    E.error(ErrorType::Error, "f()", 1);
    EXPECT_EQ("   1 #[ERROR # 1] from function \"f()\" : array out of bounds\n", fresh.log());
}

TEST(Errors, WideNumbersAndUnknownCodesKeepTheLine) {
    FreshProcess fresh;
    E.counters.mess_count = 12345;
    E.error(ErrorType::Error, "f()", 9999);
    EXPECT_EQ("12345 #[ERROR # 1] from function \"f()\" : \n", fresh.log());
}

TEST(Errors, TableHasTwoHundredAndNineTexts) {
    EXPECT_EQ(209U, error_messages().size());
    EXPECT_EQ(209, E.messages.GetItemsInContainer());
    EXPECT_EQ("not enough memory", E.messages[0]);
    EXPECT_EQ("invalid value assigned to \"GenotypicData: setting to default\"", E.messages[74]);
    EXPECT_EQ("a nucleotide is not found, impossible to apply Tajima-Nei correction ", E.messages[164]);
    EXPECT_EQ("A population does not contain any data for a given locus", E.messages[208]);
    for (std::string_view const text : error_messages()) EXPECT_FALSE(text.empty());
}

TEST(Log, IsTruncatedOrContinued) {
    FreshProcess fresh;
    ScratchDirectory scratch;
    scratch.write("log.txt", "old\n");
    E.init_log_file("log.txt", true);
    EXPECT_EQ(1, E.active);
    EXPECT_EQ("log.txt", E.log_name);
    *_AOS_ << "line\n";
    E.CloseLog_file();
    EXPECT_EQ("old\nline\n", scratch.read("log.txt"));
    E.init_log_file("log.txt", false);
    E.error(ErrorType::Error, "f()", 1);
    E.CloseLog_file();
    EXPECT_EQ("   1 #[ERROR # 1] from function \"f()\" : array out of bounds\n", scratch.read("log.txt"));
}

TEST(Log, SecondProjectContinuesTheNumbering) {
    FreshProcess fresh;
    ScratchDirectory scratch;
    E.init_log_file("one.txt", false);
    E.error(ErrorType::Error, "f()", 1);
    E.CloseLog_file();
    E.init_log_file("two.txt", false);
    E.error(ErrorType::Error, "f()", 1);
    E.CloseLog_file();
    EXPECT_EQ("   2 #[ERROR # 2] from function \"f()\" : array out of bounds\n", scratch.read("two.txt"));
}

TEST(Log, ReportsAfterTheCloseAreCountedAndLost) {
    FreshProcess fresh;
    ScratchDirectory scratch;
    E.init_log_file("log.txt", false);
    E.CloseLog_file();
    EXPECT_EQ(1, E.active);
    E.error(ErrorType::Error, "f()", 1);
    *_AOS_ << "lost";
    EXPECT_EQ(2, E.counters.error_count);
    EXPECT_EQ("", scratch.read("log.txt"));
    E.CloseLog_file();
}

TEST(Log, ThatCannotBeOpenedLeavesTheProgramSilent) {
    FreshProcess fresh;
    ScratchDirectory scratch;
    E.init_log_file("no/such/directory/log.txt", false);
    EXPECT_EQ(0, E.active);
    ASSERT_NE(nullptr, _AOS_);
    *_AOS_ << "dropped";
    E.error(ErrorType::Memory, "f()", 0);
    EXPECT_EQ(1, E.counters.mess_count);
}

TEST(LogNames, FollowTheProject) {
    EXPECT_EQ("/d/p.res/Tovenia_log.txt", buildToveniaLogFileName("/d/p.tvp"));
    EXPECT_EQ("a.b.res/", results_directory("a.b.tvp"));
}

TEST(CreateLogDir, MakesTheResultsDirectory) {
    ScratchDirectory scratch;
    scratch.write("p.tvp", "");
    my_string log_dir;
    EXPECT_EQ(1, create_log_dir("", "p.tvp", log_dir));
    EXPECT_EQ("p.res/", log_dir);
    EXPECT_TRUE(std::filesystem::is_directory("p.res"));
    EXPECT_EQ(1, create_log_dir("", "p.tvp", log_dir)) << "whether or not it exists";
    EXPECT_FALSE(scratch.has("tov_pro.txt"));
}

TEST(CreateLogDir, MissingProjectLeavesAnErrorFile) {
    ScratchDirectory scratch;
    scratch.write("tov_pro.txt", "something longer than that\n");
    my_string log_dir("kept");
    EXPECT_EQ(0, create_log_dir((scratch.path().string() + "/").c_str(), "none.tvp", log_dir));
    EXPECT_EQ("error\n", scratch.read("tov_pro.txt"));
    EXPECT_EQ("kept", log_dir);
    EXPECT_FALSE(scratch.has("none.res"));
}
