// Headings, tables and matrices of the document.
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <sstream>

#include "output/table.h"

namespace tov {
namespace {

class Table : public ::testing::Test {
protected:
    std::ostringstream out;
};

TEST_F(Table, HeadingStandsBetweenRules) {
    heading(out, "Title", 3);
    heading(out, "Title", 0, '-');
    EXPECT_EQ(out.str(), "\n===\nTitle\n===\n\n-----\nTitle\n-----\n");
}

TEST_F(Table, SampleHeadingNamesTheSample) {
    sample_heading(out, "Standard diversity indices", "A<1", 31);
    EXPECT_EQ(out.str(),
              "\n===============================\n"
              "== Standard diversity indices : (A&lt;1)\n"
              "===============================\n\n");
}

TEST_F(Table, LevelBannerHasRulesOf78) {
    level_banner(out, "\n== ANALYSES AT THE INTRA-POPULATION LEVEL");
    std::string const line(78, '=');
    EXPECT_EQ(out.str(), "\n" + line + "\n== ANALYSES AT THE INTRA-POPULATION LEVEL\n" + line + "\n");
}

TEST_F(Table, GammaNoteTellsTheShapeOrItsAbsence) {
    out << gamma_note{0.5} << gamma_note{0.0};
    EXPECT_EQ(out.str(), " (Gamma correction : a=0.5) (no Gamma correction)");
}

TEST_F(Table, LabelListNumbersTheSamples) {
    label_list(out, std::array<std::string, 2>{"North", "A&B"});
    EXPECT_EQ(out.str(), "Label  \tPopulation name\n-----  \t---------------\n  1:\tNorth\n  2:\tA&amp;B\n");
}

TEST_F(Table, LocusListBreaksAfterFifteen) {
    std::array<int, 16> loci{};
    for (int i = 0; i < 16; ++i) loci[static_cast<std::size_t>(i)] = i;
    locus_list(out, loci);
    EXPECT_EQ(out.str(), "   1    2    3    4    5    6    7    8    9   10   11   12   13   14   15 \n  16 ");
    out.str("");
    locus_list(out, std::span(loci).first(15));
    EXPECT_EQ(out.str().find('\n'), std::string::npos);
    out.str("");
    locus_list(out, {});
    EXPECT_EQ(out.str(), "NONE");
}

TEST_F(Table, LowerTriangleHasNumbersForLabels) {
    lower_triangle(out, 2, [](int i, int j) { return i + j / 4.0; });
    EXPECT_EQ(out.str(),
              "                   1         2\n"
              "         1   0.00000\n"
              "         2   1.00000   1.25000\n");
}

TEST_F(Table, LowerTriangleOfTextsPadsItsCells) {
    lower_triangle(
        out, 2, [](int i, int j) { return i == j ? std::string("*") : std::string("0.5+-0.1"); }, 9);
    EXPECT_EQ(out.str(),
              "                  1        2\n"
              "         1        *\n"
              "         2 0.5+-0.1        *\n");
}

TEST_F(Table, CellsThatWouldTouchWidenTheirMatrix) {
    lower_triangle(out, 2, [](int i, int j) { return i == j ? -1234.5 : 0.25; });
    EXPECT_EQ(out.str(),
              "                     1           2\n"
              "         1 -1234.50000\n"
              "         2     0.25000 -1234.50000\n");
    out.str("");
    lower_triangle(
        out, 2, [](int i, int j) { return std::string(i == j ? "*" : "12345"); }, 5);
    EXPECT_EQ(out.str(),
              "               1     2\n"
              "         1     *\n"
              "         2 12345     *\n");
}

TEST(FittingWidth, KeepsABlankInFrontOfTheLongestNumber) {
    double const infinity = std::numeric_limits<double>::infinity();
    std::array<double, 4> const values{-12.5, 3.0, infinity, std::numeric_limits<double>::quiet_NaN()};
    EXPECT_EQ(fitting_width(4, values, 1), 6);
    EXPECT_EQ(fitting_width(10, values, 1), 10);
    EXPECT_EQ(fitting_width(3, std::span<double const>{}, 1), 4);
    EXPECT_EQ(fitting_width(10, std::size_t{9}), 10);
    EXPECT_EQ(fitting_width(10, std::size_t{10}), 11);
}

TEST_F(Table, MatrixCanLeaveOutTheDiagonalOrShowAll) {
    std::array<std::string, 2> const labels{"a", "b<"};
    auto const cell = [](int i, int j) { return std::to_string(10 * i + j); };
    MatrixForm form;
    form.cells = Cells::below_diagonal;
    form.label_width = 3;
    form.cell_width = 4;
    form.corner = "x";
    form.bar = " |";
    text_matrix(out, labels, form, cell);
    EXPECT_EQ(out.str(),
              "  x     a  b&lt;\n"
              "  a |\n"
              " b&lt; |  10\n");
    out.str("");
    form = {};
    form.cells = Cells::square;
    form.label_width = 2;
    form.cell_width = 3;
    form.label_line = false;
    text_matrix(out, labels, form, cell);
    EXPECT_EQ(out.str(), " a  0  1\nb&lt; 10 11\n");
}

TEST_F(Table, MatrixOfNothingHasNoRows) {
    lower_triangle(out, 0, [](int, int) { return 1.0; });
    EXPECT_EQ(out.str(), "          \n");
}

TEST(Significance, NeedsAPValueBelowTheLevel) {
    EXPECT_EQ(significance_mark(0.049, 0.05), '+');
    EXPECT_EQ(significance_mark(0.0, 0.05), '+');
    EXPECT_EQ(significance_mark(0.05, 0.05), '-');
    EXPECT_EQ(significance_mark(-1.0, 0.05), '-');
    EXPECT_EQ(significance_mark(std::numeric_limits<double>::quiet_NaN(), 0.05), '-');
}

double three_samples(int i, int j) {
    EXPECT_LT(j, i);
    return i == 1 ? 0.01 : j == 0 ? 0.5 : 0.04;
}

TEST(Significance, CountsThePartnersOfEachSample) {
    EXPECT_EQ(significant_partners(3, three_samples, 0.05), (std::vector<int>{1, 2, 1}));
    EXPECT_TRUE(significant_partners(0, three_samples, 0.05).empty());
}

TEST_F(Table, SignificanceMatrixIsSymmetricWithABlankDiagonal) {
    MatrixForm form;
    form.cells = Cells::square;
    form.label_width = 2;
    form.cell_width = 3;
    significance_matrix(out, number_labels(3), form, three_samples, 0.05);
    EXPECT_EQ(out.str(),
              "    1  2  3\n"
              " 1     +  -\n"
              " 2  +     +\n"
              " 3  -  +   \n");
}

TEST_F(Table, FramedRowShowsOneValueALabel) {
    framed_row(out, number_labels(2), std::array{2.0, 13.0}, {4, "y\\Locus: ", "   No. of Loci", 0});
    EXPECT_EQ(out.str(),
              "--------------------\n"
              "         |   1|   2|\n"
              "--------------------\n"
              "y\\Locus: |   2|  13|   No. of Loci\n"
              "--------------------\n");
    out.str("");
    framed_row(out, number_labels(1), std::array{50.0}, {6, "", "", 2});
    EXPECT_EQ(out.str(), "--------\n|     1|\n--------\n| 50.00|\n--------\n");
}

TEST_F(Table, IntervalsKeepTheirColumns) {
    interval_row(out, "Tau:", {1.5, 0.25});
    EXPECT_EQ(out.str(), "                       Tau:           1.500           0.250\n");
}

TEST_F(Table, PercentilesTakeFixedPositions) {
    std::array<double, 4> const sorted{0.1, 0.2, 0.3, 0.4};
    std::array<Percentile, 3> const rows{{{" 2.5 %     : ", 0}, {" 50 %      : ", 2}, {" 97.5 %    : ", 9}}};
    percentile_table(out, sorted, rows, 8, 2);
    EXPECT_EQ(out.str(), " 2.5 %     :     0.10\n 50 %      :     0.30\n 97.5 %    :     0.40\n");
    out.str("");
    percentile_table(out, {}, rows);
    EXPECT_EQ(out.str(), "");
}

TEST(RowSummary, LeavesOutValuesThatAreNotThere) {
    RowSummary const row = summarize_row(std::array{1.0, -1.0, 3.0, 3.4028234663852886e+38, 5.0});
    EXPECT_EQ(row.values, 3);
    EXPECT_DOUBLE_EQ(row.mean, 3.0);
    EXPECT_DOUBLE_EQ(row.sd, 2.0);
}

TEST(RowSummary, OneValueHasNoDeviationAndNoneIsMarked) {
    RowSummary const one = summarize_row(std::array{-1.0, 7.0});
    EXPECT_DOUBLE_EQ(one.mean, 7.0);
    EXPECT_DOUBLE_EQ(one.sd, 0.0);
    RowSummary const none = summarize_row(std::array{-1.0, -1.0});
    EXPECT_EQ(none.values, 0);
    EXPECT_DOUBLE_EQ(none.mean, -1.0);
    EXPECT_DOUBLE_EQ(none.sd, -1.0);
    EXPECT_DOUBLE_EQ(summarize_row({}).mean, -1.0);
}

TEST(ValueOrNa, NamesInfiniteEstimates) {
    EXPECT_EQ(value_or_na(0.5, 3), "0.500");
    EXPECT_EQ(value_or_na(3.4028234663852886e+38, 3), "N.A.");
    EXPECT_EQ(value_or_na(-3.4028234663852886e+38, 3), "N.A.");
    EXPECT_EQ(value_or_na(std::numeric_limits<double>::quiet_NaN(), 3), "N.A.");
    EXPECT_EQ(value_or_na(-1.0, 1), "-1.0");
}

}  // namespace
}  // namespace tov
