// Numbers and padded texts of the document.
#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>

#include "output/style.h"

namespace tov {
namespace {

std::string printed(auto const& x) {
    std::ostringstream out;
    out << x;
    return out.str();
}

TEST(StyleScope, PrintsFixedRightWithPointAndRestoresTheStream) {
    std::ostringstream out;
    out << std::scientific << std::left << std::setprecision(3) << std::setfill('*');
    auto const flags = out.flags();
    {
        StyleScope const style(out, 2);
        out << std::setw(8) << 3.14159 << '|' << 2.0;
    }
    EXPECT_EQ(out.str(), "    3.14|2.00");
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.precision(), 3);
    EXPECT_EQ(out.fill(), '*');
}

TEST(StyleScope, ScopesNest) {
    std::ostringstream out;
    StyleScope const outer(out, 4);
    {
        StyleScope const inner(out, 1);
        out << 0.25 << ' ';
    }
    out << 0.25;
    EXPECT_EQ(out.str(), "0.2 0.2500");
}

TEST(StyleScope, ShowsThePointOfWholeNumbers) {
    std::ostringstream out;
    StyleScope const style(out, 0);
    out << 7.0;
    EXPECT_EQ(out.str(), "7.");
}

TEST(Num, PrintsWidthAndPrecisionAndLeavesNoTrace) {
    std::ostringstream out;
    out << num{0.125, 12, 6} << '|' << 0.125 << '|' << num{-1.0, 7, 4};
    EXPECT_EQ(out.str(), "    0.125000|0.125|-1.0000");
    EXPECT_EQ(out.flags(), std::ostringstream().flags());
}

TEST(Num, IgnoresAWidthAndAFillLeftOnTheStream) {
    std::ostringstream out;
    out << std::setfill('0') << std::setw(20) << num{1.5, 6, 1};
    EXPECT_EQ(out.str(), "   1.5");
}

TEST(Num, AgreesWithAStreamInFixedFormat) {
    for (double const value :
         {0.0, 0.5, 1.5, 2.5, 0.125, 1e-9, 123456.789, -3.4028234663852886e+38, 1e22, 9.9999995}) {
        for (int const precision : {0, 1, 3, 5, 8}) {
            std::ostringstream out;
            out << std::fixed << std::showpoint << std::setprecision(precision) << value;
            EXPECT_EQ(number_text(value, precision), out.str()) << value << " at " << precision;
        }
    }
}

TEST(Num, ZeroHasNoSign) {
    EXPECT_EQ(number_text(-0.0, 5), "0.00000");
    EXPECT_EQ(number_text(-4e-6, 5), "0.00000");
    EXPECT_EQ(number_text(-6e-6, 5), "-0.00001");
    EXPECT_EQ(number_text(-0.4, 0), "0.");
    EXPECT_EQ(printed(num{-1e-17, 8, 3}), "   0.000");
}

TEST(Num, PrintsWhatIsNoFiniteNumber) {
    double const infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(printed(num{infinity, 6, 2}), "   inf");
    EXPECT_EQ(printed(num{-infinity, 6, 2}), "  -inf");
    EXPECT_EQ(printed(num{std::numeric_limits<double>::quiet_NaN(), 6, 2}), "   nan");
}

TEST(Num, HoldsTheLargestDoubleAtAnyPrecision) {
    EXPECT_EQ(number_text(std::numeric_limits<double>::max(), 60).size(), 309u + 1 + 60);
    EXPECT_EQ(number_text(-std::numeric_limits<double>::max(), 1000).size(), 1 + 309u + 1 + 60);
    EXPECT_EQ(number_text(1.0, -3), "1.");
}

TEST(PlusMinus, PrintsBothValuesAlike) {
    EXPECT_EQ(printed(plus_minus{0.5, 0.25, 7, 4}), " 0.5000 +/-  0.2500");
    EXPECT_EQ(printed(plus_minus{0.5, 0.25, 0, 2, "+-"}), "0.50+-0.25");
}

TEST(Fields, PadToTheirWidthAndNeverCut) {
    EXPECT_EQ(printed(label{"S.D. : ", 10}), "   S.D. : ");
    EXPECT_EQ(printed(left_label{"Locus", 8}), "Locus   ");
    EXPECT_EQ(printed(label{"longer", 2}), "longer");
    EXPECT_EQ(printed(integer{42, 5}), "   42");
    EXPECT_EQ(printed(integer{-7}), "-7");
}

TEST(Rule, RepeatsItsMark) {
    EXPECT_EQ(printed(rule{5}), "-----");
    EXPECT_EQ(printed(rule{3, '='}), "===");
    EXPECT_EQ(printed(rule{-1}), "");
}

}  // namespace
}  // namespace tov
