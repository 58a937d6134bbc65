// The B number table: recurrence, limits and file form.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>

#include "base/bnum.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"
#include "support/text.h"

using namespace tov;
using tov::test::bytes;
using tov::test::FreshProcess;
using tov::test::ScratchDirectory;

TEST(BnumMat, FollowsTheReference) {
    BnumMat table;
    ASSERT_EQ(1, table.re_allocate_matrix(200, 80));
    BnumMat const& B = table;
    EXPECT_DOUBLE_EQ(1.0, B(1, 1));
    EXPECT_DOUBLE_EQ(0.5, B(2, 1));
    EXPECT_DOUBLE_EQ(1.0, B(3, 2));
    EXPECT_DOUBLE_EQ(0.833333333333333, B(5, 2));
    EXPECT_DOUBLE_EQ(1.75, B(5, 3));
    EXPECT_DOUBLE_EQ(0.1, B(10, 1));
    EXPECT_NEAR(4.78624338624339, B(10, 4), 1e-13);
    EXPECT_DOUBLE_EQ(1.0, B(10, 10));
    EXPECT_NEAR(25.1442524397973, B(50, 5), 1e-12);
    EXPECT_NEAR(1.45206432451577e+34, B(200, 80), 1e20);
}

TEST(BnumMat, IsTheStirlingNumberTimesAFactorialOverAFactorial) {
    BnumMat table;
    table.re_allocate_matrix(12, 12);
    double stirling[13][13] = {{1.0}};
    for (int g = 1; g <= 12; ++g) {
        for (int a = 1; a <= g; ++a) stirling[g][a] = stirling[g - 1][a - 1] + (g - 1) * stirling[g - 1][a];
        for (int a = 1; a <= g; ++a) {
            double const expected = std::tgamma(a + 1.0) * stirling[g][a] / std::tgamma(g + 1.0);
            EXPECT_NEAR(expected, table(g, a), 1e-12 * expected) << g << ", " << a;
        }
    }
}

TEST(BnumMat, SizesBeyondTheLimitsLeaveNoTableAndTheOldSizes) {
    BnumMat table;
    ASSERT_EQ(1, table.re_allocate_matrix(20, 10));
    EXPECT_EQ(0, table.re_allocate_matrix(5001, 1));
    EXPECT_FALSE(table.loaded());
    EXPECT_EQ(20, table.nb_genes());
    EXPECT_EQ(10, table.nb_alleles());
    EXPECT_EQ(0.0, table(3, 2)) << "a spare cell, no wild read";
    EXPECT_EQ(0, table.re_allocate_matrix(10, 1001));
    EXPECT_FALSE(table.loaded());
    EXPECT_EQ(1, table.re_allocate_matrix(5000, 1000));
    EXPECT_TRUE(table.loaded());
    EXPECT_EQ(5000, table.nb_genes());
    EXPECT_DOUBLE_EQ(1.0 / 5000, table(5000, 1));
    EXPECT_DOUBLE_EQ(1.0, table(1000, 1000));
}

TEST(BnumMat, RowsAreRaggedAndReachedAsSpans) {
    BnumMat table;
    table.re_allocate_matrix(6, 3);
    EXPECT_EQ(1U, table.row(1).size());
    EXPECT_EQ(2U, table.row(2).size());
    EXPECT_EQ(3U, table.row(3).size());
    EXPECT_EQ(3U, table.row(6).size());
    for (int g = 1; g <= 6; ++g) {
        for (int a = 1; a <= std::min(g, 3); ++a) EXPECT_EQ(table(g, a), table.row(g)[static_cast<std::size_t>(a - 1)]);
    }
    EXPECT_EQ(0.0, table(0, 1));
    EXPECT_EQ(0.0, table(7, 1));
    EXPECT_EQ(0.0, table(2, 3));
    EXPECT_EQ(0.0, table(6, 4));
}

TEST(BnumMat, EmptyAndNegativeSizesAreHarmless) {
    BnumMat empty;
    EXPECT_FALSE(empty.loaded());
    EXPECT_EQ(0, empty.nb_genes());
    BnumMat negative(-3, -4);
    EXPECT_EQ(0, negative.nb_genes());
    EXPECT_EQ(1, negative.re_allocate_matrix(-1, 5));
    EXPECT_EQ(0.0, negative(1, 1));
    EXPECT_EQ(1, negative.re_allocate_matrix(5, 0));
    EXPECT_EQ(0.0, negative(5, 1));
}

TEST(BnumMat, ReadsItsFileForm) {
    FreshProcess fresh;
    ScratchDirectory directory;
    std::string text = bytes<std::int32_t>(3) + bytes<std::int32_t>(2);
    for (double const x : {1.0, 0.5, 2.0, 0.25, 3.0}) text += bytes(x);
    directory.write("table.bnb", text);
    BnumMat table(my_string("table.bnb"));
    EXPECT_TRUE(table.loaded());
    EXPECT_EQ(3, table.nb_genes());
    EXPECT_EQ(2, table.nb_alleles());
    EXPECT_EQ(1.0, table(1, 1));
    EXPECT_EQ(2.0, table(2, 2));
    EXPECT_EQ(3.0, table(3, 2));
    EXPECT_EQ("", fresh.log());
}

TEST(BnumMat, MissingAndBadFilesAreReported) {
    FreshProcess fresh;
    ScratchDirectory directory;
    BnumMat table;
    EXPECT_EQ(0, table.read_from_file("none.bnb"));
    EXPECT_EQ("   1 #[WARNING # 1] from function \"BnumMat::read_from_file()\" : missing file (BNumMat)\n",
              fresh.log());

    fresh.clear_log();
    directory.write("wide.bnb", bytes<std::int32_t>(2) + bytes<std::int32_t>(3));
    EXPECT_EQ(0, table.read_from_file("wide.bnb"));
    EXPECT_EQ("   2 #[ERROR # 1] from function \"operator>>(istream& is, BnumMat& S)\" : invalid BNumMat file\n",
              fresh.log());

    fresh.clear_log();
    directory.write("empty.bnb", "");
    EXPECT_EQ(0, table.read_from_file("empty.bnb"));
    EXPECT_NE(std::string::npos, fresh.log().find("BnumMat& S)\" : invalid BNumMat file"));

    fresh.clear_log();
    directory.write("short.bnb", bytes<std::int32_t>(3) + bytes<std::int32_t>(2) + bytes(1.0));
    EXPECT_EQ(0, table.read_from_file("short.bnb"));
    EXPECT_NE(std::string::npos, fresh.log().find("\"operator>>(istream& is, BnumMat& M)\" : invalid stream\n"));

    fresh.clear_log();
    std::istringstream bad;
    bad.setstate(std::ios::failbit);
    bad >> table;
    EXPECT_NE(std::string::npos, fresh.log().find("\"operator>>(ifstream& is, BnumMat& S)\" : invalid stream\n"));

    fresh.clear_log();
    directory.write("huge.bnb", bytes<std::int32_t>(2147483647) + bytes<std::int32_t>(2147483647));
    EXPECT_EQ(0, table.read_from_file("huge.bnb"));
    EXPECT_NE(std::string::npos, fresh.log().find("invalid BNumMat file"));
}
