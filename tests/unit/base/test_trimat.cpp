// The triangular matrix: access, quirks of access, sums and printing.
#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "base/trimat.h"
#include "support/fresh_process.h"

using namespace tov;
using tov::test::FreshProcess;

namespace {

TriMat counted(int n, double factor = 1.0) {
    TriMat m(n);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j <= i; ++j) m.set_data(factor * (10 * i + j), i, j);
    }
    return m;
}

std::string const BOUNDS = " from function \"TriMat::operator()\" : array out of bounds\n";

}  // namespace

TEST(TriMat, BothOrdersOfTheIndicesAreOneElement) {
    TriMat m(3);
    EXPECT_EQ(3, m.dimension());
    m.set_data(2.5, 0, 2);
    EXPECT_EQ(2.5, m(2, 0));
    EXPECT_EQ(2.5, m(0, 2));
    m(1, 2) = 4.0;
    EXPECT_EQ(4.0, m(2, 1));
    EXPECT_EQ(0.0, m(1, 1));
}

TEST(TriMat, RowsAndTriangleAreSpansOfTheStoredElements) {
    TriMat const m = counted(4);
    EXPECT_EQ(10U, m.triangle().size());
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(static_cast<std::size_t>(i + 1), m.row(i).size());
        for (int j = 0; j <= i; ++j) EXPECT_EQ(m(i, j), m.row(i)[static_cast<std::size_t>(j)]);
    }
    EXPECT_EQ(33.0, m.triangle().back());
}

TEST(TriMat, ConventionalMatrixIsZeroOnTheDiagonalAndOneElsewhereForAnyIndex) {
    FreshProcess fresh;
    for (int n : {0, 1, 5}) {
        TriMat m(n);
        EXPECT_EQ(0, m.conventional_fst());
        m.set_conventional_fst(1);
        EXPECT_EQ(1, m.conventional_fst());
        for (int i : {-7, 0, 1, 4, 1000000}) {
            EXPECT_EQ(0.0, m(i, i));
            EXPECT_EQ(1.0, m(i, i + 1));
            EXPECT_EQ(1.0, m(i + 1, i));
        }
    }
    EXPECT_EQ("", fresh.log());
}

TEST(TriMat, IndexEqualToTheDimensionPassesTheTestOfAccessButNotThatOfSetData) {
    FreshProcess fresh;
    TriMat m = counted(3);
    m.set_data(9.0, 3, 0);
    m.set_data(9.0, 0, 3);
    EXPECT_EQ(0.0, m(3, 0));
    EXPECT_EQ(0.0, m(2, 3));
    EXPECT_EQ(0.0, m(3, 3));
    EXPECT_EQ("", fresh.log());
    m(3, 3) = 5.0;  // a spare row, no element
    EXPECT_EQ(22.0, m(2, 2));
}

TEST(TriMat, IndexOutsideIsReportedAndGivesTheDiagonalValue) {
    FreshProcess fresh;
    TriMat m = counted(3);
    EXPECT_EQ(0.0, m(4, 0));
    EXPECT_EQ("   1 #[WARNING # 1]" + BOUNDS, fresh.log());
    EXPECT_EQ(0.0, m(-1, 2));
    EXPECT_EQ(0.0, m(2, -1));
    m(7, 7) = 3.0;
    EXPECT_EQ(3.0, m(8, 8)) << "the value that failed access gives";
    m.set_data(1.0, -1, 0);
    EXPECT_EQ(21.0, m(2, 1));
}

TEST(TriMat, EmptyMatrixGivesNoWildAccess) {
    FreshProcess fresh;
    TriMat m;
    EXPECT_EQ(0, m.dimension());
    EXPECT_EQ(0.0, m(0, 0)) << "index equal to the dimension";
    EXPECT_EQ("", fresh.log());
    EXPECT_EQ(0.0, m(1, 0));
    EXPECT_EQ("   1 #[WARNING # 1]" + BOUNDS, fresh.log());
    TriMat negative(-5);
    EXPECT_EQ(0, negative.dimension());
    EXPECT_TRUE(m.triangle().empty());
}

TEST(TriMat, CreateZeroesAndDestroyEmpties) {
    TriMat m = counted(3);
    m.create(2);
    EXPECT_EQ(2, m.dimension());
    EXPECT_EQ(0.0, m(1, 1));
    m.set_data(8.0, 1, 0);
    m.initialize();
    EXPECT_EQ(0.0, m(1, 0));
    m.create(m.dimension());
    EXPECT_EQ(2, m.dimension()) << "the size may be the matrix's own";
    m.destroy();
    EXPECT_EQ(0, m.dimension());
    m.destroy();
    EXPECT_EQ(0, m.dimension());
}

TEST(TriMat, CopyTakesElementsButNotTheConventionalFlag) {
    TriMat source = counted(3);
    TriMat target(5);
    target = source;
    EXPECT_EQ(3, target.dimension());
    EXPECT_EQ(21.0, target(2, 1));
    target = *&target;
    EXPECT_EQ(21.0, target(2, 1));

    source.set_conventional_fst(1);
    target = source;
    EXPECT_EQ(0, target.conventional_fst());
    EXPECT_EQ(0.0, target(2, 2));
    EXPECT_EQ(1.0, target(2, 1)) << "a plain matrix of 0 and 1";
    TriMat const copy(source);
    EXPECT_EQ(0, copy.conventional_fst());
    EXPECT_EQ(1.0, copy(0, 1));
    source.set_conventional_fst(0);
    EXPECT_EQ(21.0, source(2, 1)) << "the triangle was there all the time";
}

TEST(TriMat, BothCompoundOperatorsAdd) {
    TriMat a = counted(3);
    TriMat const b = counted(3, 2.0);
    a += b;
    EXPECT_EQ(63.0, a(2, 1));
    a *= b;
    EXPECT_EQ(105.0, a(2, 1));
    a += a;
    EXPECT_EQ(210.0, a(2, 1));
}

TEST(TriMat, SumOfUnequalSizesIsReportedAndChangesNothing) {
    FreshProcess fresh;
    TriMat a = counted(3);
    a += counted(2);
    a *= counted(4);
    EXPECT_EQ(21.0, a(2, 1));
    EXPECT_EQ(
        "   1 #[ERROR # 1] from function \"TriMat::operator+=()\" : attempt to operate on two matrices of different "
        "size\n   2 #[ERROR # 2] from function \"TriMat::operator*=()\" : attempt to operate on two matrices of "
        "different size\n",
        fresh.log());
}

TEST(TriMat, PrintsTenWideColumnsWithoutANewlineAtTheEnd) {
    TriMat m(2);
    m.set_data(1.5, 1, 0);
    m.set_data(-2.0 / 3.0, 1, 1);
    std::ostringstream out;
    out << std::left << std::setprecision(3);
    m.print_data(out);
    EXPECT_EQ("   0.00000\n   1.50000  -0.66667", out.str());
    out << std::setw(5) << 2.0 / 3.0;
    EXPECT_EQ("0.667", out.str().substr(out.str().size() - 5)) << "the stream's own format is back";
    std::ostringstream none;
    TriMat().print_data(none);
    EXPECT_EQ("", none.str());
    m.set_conventional_fst(1);
    std::ostringstream conventional;
    m.print_data(conventional);
    EXPECT_EQ("   0.00000\n   1.00000   0.00000", conventional.str());
}

TEST(TriMat, ExhaustedMemoryIsTheMemoryError) {
    FreshProcess fresh;
    EXPECT_THROW(TriMat(2147483647), ExceptionType);
    EXPECT_EQ("   1 #[MEMORY # 1] from function \"TriMat::TriMat(const int& dim\" : not enough memory\n", fresh.log());
    TriMat m(3);
    EXPECT_THROW(m.create(2147483647), ExceptionType);
    EXPECT_EQ(0, m.dimension());
    EXPECT_NE(std::string::npos, fresh.log().find("\"TriMat::allocate_matrix()\" : not enough memory\n"));
}
