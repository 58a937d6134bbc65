// TabRow: cells, numbers, and the end of a row.
#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "output/tab_row.h"

namespace tov {
namespace {

TEST(TabRow, PutsTabsBetweenCellsAndALineEndBehindThem) {
    std::ostringstream out;
    TabRow(out) << "a" << 1 << 0.5 << "" << std::string("b");
    EXPECT_EQ(out.str(), "a\t1\t0.5\t\tb\n");
}

TEST(TabRow, IsWrittenWholeWhenItEnds) {
    std::ostringstream out;
    {
        TabRow row(out);
        row << 1;
        EXPECT_EQ(out.str(), "");
        TabRow moved(std::move(row));
        moved << 2;
    }
    EXPECT_EQ(out.str(), "1\t2\n");
}

TEST(TabRow, WithoutATableTakesCellsAndLeavesTheNextRowAlone) {
    std::ostringstream out;
    {
        TabRow row(nullptr, {});
        TabRow& after = row.quoted("x") << 1 << 2.0 << "y";
        EXPECT_EQ(&after, &row);
        TabRow(out) << "z";
    }
    EXPECT_EQ(out.str(), "z\n");
}

TEST(TabRow, NumbersHaveTheDigitsOfTheTableAndIntegersAll) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    std::ostringstream out;
    out.precision(2);
    out.setf(std::ios::fixed | std::ios::showpoint);
    TabRow(out) << 0.123456789 << 12345678 << 1234567.0 << 1e-7 << -1.0 << std::size_t{7};
    TabRow(out, {.digits = 8}) << 0.123456789 << 1.0 / 3.0;
    TabRow(out, {.digits = 17}) << 0.1;
    TabRow(out) << infinite << -infinite << std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(out.str(),
              "0.123457\t12345678\t1.23457e+06\t1e-07\t-1\t7\n0.12345679\t0.33333333\n0.10000000000000001\n"
              "inf\t-inf\tnan\n");
}

TEST(TabRow, TextCanNeitherEndACellNorALine) {
    std::ostringstream out;
    TabRow(out) << "a\tb\nc";
    TabRow(out).quoted("North \"4\"\t& South");
    EXPECT_EQ(out.str(), "a b c\n\"North \"\"4\"\" & South\"\n");
}

TEST(TabRow, WithoutCellsIsAnEmptyLine) {
    std::ostringstream out;
    { TabRow const row(out); }
    EXPECT_EQ(out.str(), "\n");
}

}  // namespace
}  // namespace tov
