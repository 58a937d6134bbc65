// The dense matrix: access, Mantel sums against slow recomputation, permutation, file form.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>

#include "base/random.h"
#include "base/recmat.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"
#include "support/text.h"

using namespace tov;
using tov::test::bytes;
using tov::test::draws_since;
using tov::test::FreshProcess;
using tov::test::ScratchDirectory;

namespace {

RectMat random_symmetric(int n) {
    RectMat m(n, n);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j) m(i, j) = m(j, i) = uniform();
    }
    return m;
}

std::string const BOUNDS = " from function \"RectMat::operator()\" : array out of bounds\n";

}  // namespace

TEST(RectMat, DimensionIsTheSmallerOfRowsAndColumns) {
    RectMat m(3, 5);
    EXPECT_EQ(3, m.rows());
    EXPECT_EQ(5, m.columns());
    EXPECT_EQ(3, m.dimension());
    EXPECT_EQ(0.0, m(2, 4));
    m(2, 4) = 7.0;
    EXPECT_EQ(7.0, m.row(2)[4]);
    EXPECT_EQ(0.0, m(1, 4));
    EXPECT_EQ(0.0, m.mean());
    EXPECT_EQ(0.0, m.SSX());
    EXPECT_EQ(0.0, m.Z());
    EXPECT_TRUE(m.index().empty());
}

TEST(RectMat, ConventionalFlagHidesTheElements) {
    RectMat m(2, 2);
    m(1, 0) = 7.0;
    m.set_conventional_fst(1);
    EXPECT_EQ(1.0, m(1, 0));
    EXPECT_EQ(0.0, m(1, 1));
    EXPECT_EQ(1.0, m(-4, 900));
    m.set_conventional_fst(0);
    EXPECT_EQ(7.0, m(1, 0));
}

TEST(RectMat, IndexBeyondIsReportedAndReachesASpareCell) {
    FreshProcess fresh;
    RectMat m(2, 3);
    m(1, 2) = 4.0;
    EXPECT_EQ(0.0, m(2, 0));
    EXPECT_EQ("   1 #[ERROR # 1]" + BOUNDS, fresh.log());
    m(0, 3) = 5.0;
    EXPECT_EQ(0.0, m(0, 3));
    EXPECT_EQ(0.0, m(1, 0)) << "the next row isn't touched";
    EXPECT_EQ(0.0, m(1000000, 1000000));
    fresh.clear_log();
    EXPECT_EQ(0.0, m(-1, 0));
    EXPECT_EQ(0.0, m(0, -1));
    EXPECT_EQ("", fresh.log()) << "negative indices aren't tested";
}

TEST(RectMat, AllocateLeavesAnExistingMatrixAlone) {
    RectMat m(2, 2);
    m(0, 1) = 3.0;
    EXPECT_EQ(1, m.allocate_matrix());
    EXPECT_EQ(3.0, m(0, 1));
    EXPECT_EQ(1, m.de_allocate_matrix());
    EXPECT_EQ(0, m.rows());
    EXPECT_EQ(0, m.columns());
    EXPECT_EQ(1, m.de_allocate_matrix());
}

TEST(RectMat, CopySharesTheElements) {
    RectMat target;
    {
        RectMat source(2, 2);
        source.create_index();
        target = source;
        source(1, 0) = 6.0;
        EXPECT_EQ(6.0, target(1, 0));
    }
    EXPECT_EQ(6.0, target(1, 0)) << "the elements outlive the source";
    EXPECT_EQ(2U, target.index().size());
}

TEST(RectMat, DisplaysRowsInTheStreamsFormat) {
    RectMat m(2, 2);
    m(0, 1) = 1.5;
    m(1, 0) = -2;
    std::ostringstream out;
    EXPECT_EQ(1, m.display_matrix(out));
    EXPECT_EQ("   0 1.5 \n   -2 0 \n", out.str());
    std::ostringstream none;
    EXPECT_EQ(1, RectMat().display_matrix(none));
    EXPECT_EQ("Matrix contains no data\n", none.str());
}

TEST(RectMat, SumsFollowTheirDefinitions) {
    FreshProcess fresh;
    for (int n : {2, 3, 7, 12}) {
        RectMat Y = random_symmetric(n);
        RectMat X = random_symmetric(n);
        double const pairs = n * (n - 1) / 2.0;
        double sum_y = 0.0;
        double sum_x = 0.0;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < i; ++j) {
                sum_y += Y(i, j);
                sum_x += X(i, j);
            }
        }
        double ssx = 0.0;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < i; ++j) ssx += (Y(i, j) - sum_y / pairs) * (Y(i, j) - sum_y / pairs);
        }
        EXPECT_NEAR(ssx, Y.compute_SSX(), 1e-14);
        EXPECT_EQ(Y.SSX(), Y.compute_SSX());
        EXPECT_NEAR(sum_y / pairs, Y.mean(), 1e-15);
        X.compute_SSX();

        Y.create_index();
        for (int round = 0; round < 3; ++round) {
            double z = 0.0;
            for (int i = 0; i < n; ++i) {
                for (int j = 0; j < i; ++j) {
                    z += Y(Y.index()[static_cast<std::size_t>(i)], Y.index()[static_cast<std::size_t>(j)]) * X(i, j);
                }
            }
            EXPECT_NEAR(z, Y.computeZ(X), 1e-13);
            EXPECT_EQ(Y.Z(), Y.computeZ(X));
            EXPECT_NEAR(z - sum_y * sum_x / pairs, Y.sum_of_products(X), 1e-13);
            Y.permute_index();
        }
    }
    EXPECT_EQ("", fresh.log());
}

TEST(RectMat, TwoRowsCountAsOnePair) {
    RectMat Y(2, 2);
    RectMat X(2, 2);
    Y(1, 0) = Y(0, 1) = 3.0;
    X(1, 0) = X(0, 1) = 5.0;
    Y.compute_SSX();
    X.compute_SSX();
    Y.create_index();
    EXPECT_EQ(0.0, Y.sum_of_products(X));
    EXPECT_EQ(15.0, Y.Z());
}

TEST(RectMat, ElementIsReadThroughThePermutationWithoutASwap) {
    FreshProcess fresh;
    RectMat Y(2, 2);
    Y(1, 0) = 3.0;  // the upper triangle stays 0
    RectMat X(2, 2);
    X(1, 0) = 1.0;
    Y.create_index();
    EXPECT_EQ(3.0, Y.computeZ(X));
    while (Y.index()[0] == 0) Y.permute_index();
    EXPECT_EQ(0.0, Y.computeZ(X)) << "row 0, column 1";
}

TEST(RectMat, RefusedSumsTellTheLogAndKeepTheStoredValues) {
    FreshProcess fresh;
    RectMat wide(2, 3);
    RectMat square = random_symmetric(3);
    EXPECT_EQ(0.0, wide.compute_SSX());
    EXPECT_EQ(0.0, wide.computeZ(square));
    EXPECT_EQ(0.0, wide.sum_of_products(square));
    EXPECT_EQ(0.0, square.computeZ(square));
    EXPECT_EQ(
        "RectMat::compute_SSX() : unable to proceed on non-square matrix\n"
        "RectMat::Z(const RectMat& M) : unable to proceed on non-square matrix\n"
        "RectMat::sum_of_products(const RectMat& M) : unable to proceed on non-square matrix\n"
        "RectMat::Z(const RectMat& M) : index matrix not available, Z value cannot be computed\n",
        fresh.log());
    square.create_index();
    double const z = square.computeZ(square);
    fresh.clear_log();
    EXPECT_EQ(0.0, square.sum_of_products(RectMat(2, 2)));
    EXPECT_EQ(
        "RectMat::sum_of_products(const RectMat& M) : unable to compute correlation between matrices of different "
        "size\n",
        fresh.log());
    EXPECT_EQ(0.0, square.computeZ(RectMat(2, 2)));
    EXPECT_EQ(z, square.Z());
}

TEST(RectMat, ConventionalMatricesHaveTheSumsOfZeroAndOne) {
    RectMat Y(4, 4);
    Y.set_conventional_fst(1);
    EXPECT_EQ(0.0, Y.compute_SSX());
    EXPECT_EQ(1.0, Y.mean());
    Y.create_index();
    EXPECT_EQ(6.0, Y.computeZ(Y));
}

TEST(RectMat, OneRowHasNoPairs) {
    RectMat m(1, 1);
    EXPECT_EQ(0.0, m.compute_SSX());
    EXPECT_EQ(0.0, m.mean());
}

TEST(RectMat, PermuteIndexFollowsTheReferenceAndGoesOnFromItsState) {
    FreshProcess fresh;
    RectMat m(8, 8);
    EXPECT_EQ(1, m.create_index());
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(1, m.permute_index());
    EXPECT_EQ(8, draws_since(before));
    EXPECT_EQ((std::vector<int>{1, 6, 3, 4, 2, 7, 0, 5}), std::vector<int>(m.index().begin(), m.index().end()));
    m.permute_index();
    std::vector<int> sorted(m.index().begin(), m.index().end());
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ((std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}), sorted);
    m.create_index();
    EXPECT_EQ(0, m.index()[0]);
}

TEST(RectMat, PermuteIndexOfOneRowDrawsOnceAndLeavesTheIndex) {
    FreshProcess fresh;
    RectMat m(1, 1);
    m.create_index();
    Ran3State const before = random_state.ran3;
    m.permute_index();
    EXPECT_EQ(1, draws_since(before));
    EXPECT_EQ(0, m.index()[0]);
}

TEST(RectMatFile, AWholeFileIsReadAndReportedForTheRowPastTheEnd) {
    FreshProcess fresh;
    ScratchDirectory directory;
    std::string text = bytes<std::int32_t>(2) + bytes<std::int32_t>(2);
    for (double const x : {1.0, 2.0, 3.0, 4.0}) text += bytes(x);
    directory.write("m.bin", text);
    RectMat const m("m.bin");
    EXPECT_EQ("m.bin", m.file_name());
    EXPECT_EQ(2, m.rows());
    EXPECT_EQ(2.0, m(0, 1));
    EXPECT_EQ(4.0, m(1, 1));
    EXPECT_EQ(
        "   1 #[ERROR # 1]" + BOUNDS +
            "   2 #[ERROR # 2] from function \"operator>>(istream& is, RectMat& M)\" : error while reading matrix\n",
        fresh.log());
}

TEST(RectMatFile, AShortFileLeavesZeros) {
    FreshProcess fresh;
    ScratchDirectory directory;
    directory.write("m.bin", bytes<std::int32_t>(3) + bytes<std::int32_t>(3) + bytes(1.5) + bytes(2.5) + "abc");
    RectMat const m("m.bin");
    EXPECT_EQ(1.5, m(0, 0));
    EXPECT_EQ(2.5, m(0, 1));
    EXPECT_EQ(0.0, m(0, 2));
    EXPECT_EQ(0.0, m(2, 2));
}

TEST(RectMatFile, MissingAndBadFilesAreReported) {
    FreshProcess fresh;
    ScratchDirectory directory;
    RectMat m;
    EXPECT_EQ(1, m.read_from_file("none.bin"));
    EXPECT_EQ(0, m.read_from_file());
    EXPECT_EQ(
        "   1 #[ERROR # 1] from function \"RectMat::read_from_file()\" : unable to open matrix file\n"
        "   2 #[ERROR # 2] from function \"RectMat::read_from_file()\" : unable to open matrix file\n",
        fresh.log());
    std::string const refused = "from function \"operator>>(istream& is, RectMat& S)\" : error while reading matrix\n";
    std::string const sizes[] = {bytes<std::int32_t>(2) + bytes<std::int32_t>(3), "abc",
                                 bytes<std::int32_t>(-1) + bytes<std::int32_t>(-2),
                                 bytes<std::int32_t>(2147483647) + bytes<std::int32_t>(2147483647)};
    for (std::string const& text : sizes) {
        fresh.clear_log();
        directory.write("m.bin", text);
        EXPECT_EQ(1, m.read_from_file("m.bin"));
        EXPECT_NE(std::string::npos, fresh.log().find(refused)) << fresh.log();
    }
    fresh.clear_log();
    std::istringstream bad;
    bad.setstate(std::ios::failbit);
    bad >> m;
    EXPECT_NE(std::string::npos,
              fresh.log().find("\"operator>>(ifstream& is, RectMat& S)\" : unable to open matrix file\n"));
}

TEST(RectMat, ExhaustedMemoryIsTheMemoryError) {
    FreshProcess fresh;
    EXPECT_THROW(RectMat(2147483647, 2147483647), ExceptionType);
    EXPECT_EQ("   1 #[MEMORY # 1] from function \"RectMat::allocate_matrix()\" : not enough memory\n", fresh.log());
}
