// Headings, tables and matrices of the result document: the forms that all analyses print.
#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/escape.h"
#include "output/style.h"

namespace tov {

// --- Headings ---

/// "\n", rule, "\n", title, "\n", rule, "\n". A length of 0 takes the title's.
void heading(std::ostream& out, std::string_view title, int length = 0, char mark = '=');

/// Heading of an analysis of one sample: "\n", rule of '=', "\n== ", title, " : (", name, ")\n", rule, "\n\n".
/// The name is escaped here.
void sample_heading(std::ostream& out, std::string_view title, std::string_view name, int length);

/// Banner of a level of analyses: "\n", 78 '=', title (which begins with its own newline), "\n", 78 '=', "\n".
void level_banner(std::ostream& out, std::string_view title);

/// " (Gamma correction : a=" value ")", or " (no Gamma correction)" for a = 0; no line end.
struct gamma_note {
    double a;
};
std::ostream& operator<<(std::ostream& out, gamma_note const& note);

// --- Lists ---

/// How a numbered list of samples is printed.
struct LabelListForm {
    std::string_view head = "Label  \tPopulation name\n-----  \t---------------\n";
    std::string_view before = "  ";    ///< in front of a number
    std::string_view between = ":\t";  ///< between number and name
};
/// The samples' numbers, from 1, with their names (escaped here).
void label_list(std::ostream& out, std::span<std::string const> names, LabelListForm const& form = {});

/// Locus numbers, right aligned in 4 columns and each followed by a blank, 15 a line; "NONE" if there are none.
///
/// @param loci  indices from 0; printed from 1.
void locus_list(std::ostream& out, std::span<int const> loci);

// --- Widths ---

/// Columns of a cell: `least`, or as many as keep a text of `longest` characters apart from its neighbour.
[[nodiscard]] int fitting_width(int least, std::size_t longest) noexcept;
/// The same for numbers in fixed notation with `precision` digits.
[[nodiscard]] int fitting_width(int least, std::span<double const> values, int precision);

// --- Matrices with labels ---

/// Cells of a square matrix that are printed.
enum class Cells {
    below_diagonal,  ///< j < i
    lower_triangle,  ///< j <= i
    square           ///< all
};

/// How a matrix with labels is printed: a line of column labels, then one line a row.
struct MatrixForm {
    Cells cells = Cells::lower_triangle;
    int label_width = 10;            ///< row labels, right aligned
    int cell_width = 10;             ///< columns, right aligned; wider when a cell would touch its neighbour
    std::string_view corner{};       ///< in place of a row label in the line of column labels
    std::string_view bar{};          ///< behind the label of a row
    bool label_line = true;          ///< the line of column labels is printed
    bool line_below_labels = false;  ///< an empty line stands under it
};

/// Text of the cell in row i and column j.
using CellText = std::function<std::string(int i, int j)>;
/// Value of the cell in row i and column j.
using CellValue = std::function<double(int i, int j)>;

/// Prints a matrix of texts. Row and column labels are those of `labels`, escaped here.
void text_matrix(std::ostream& out, std::span<std::string const> labels, MatrixForm const& form, CellText const& cell);
/// Prints a matrix of numbers in fixed notation with `precision` digits.
void number_matrix(std::ostream& out, std::span<std::string const> labels, MatrixForm const& form,
                   CellValue const& cell, int precision = 5);

/// The lower triangle with its diagonal, cells of width 10 and precision 5, rows and columns numbered from 1.
void lower_triangle(std::ostream& out, int n, CellValue const& cell);
/// The same with texts, such as a P-value and its deviation, in cells of `cell_width`.
void lower_triangle(std::ostream& out, int n, CellText const& cell, int cell_width);

/// "1" to "n": the labels of a matrix whose rows are numbered.
[[nodiscard]] std::vector<std::string> number_labels(int n);

// --- Tables of significance ---

/// '+' when the P-value is not negative and below the level, '-' otherwise; a P-value of -1 stands for no test.
[[nodiscard]] char significance_mark(double p, double level) noexcept;

/// Number of marks '+' in each row of the symmetric matrix of P-values.
///
/// @param p  P-value of the pair (i, j), asked for j < i only.
/// @return   n counts.
[[nodiscard]] std::vector<int> significant_partners(int n, CellValue const& p, double level);

/// The marks of a matrix of P-values, with a blank on the diagonal. The value is asked for j < i only.
void significance_matrix(std::ostream& out, std::span<std::string const> labels, MatrixForm const& form,
                         CellValue const& p, double level);

/// How a framed row of values is printed.
struct FramedRowForm {
    int cell_width = 6;
    std::string_view head{};  ///< in front of the values; the labels are moved in by as much
    std::string_view tail{};  ///< behind the values
    int precision = 0;        ///< digits of the values; 0 prints integers
};
/// One value for each label, in cells between "|", the line of labels and that of values between rules of '-'.
/// It shows the number of significant partners of each sample or locus. Labels are escaped here.
void framed_row(std::ostream& out, std::span<std::string const> labels, std::span<double const> values,
                FramedRowForm const& form = {});

// --- Intervals, percentiles ---

/// A row of a table of confidence intervals: label of width 27, then the values (estimate, lower and upper bound,
/// mean) of width 16 and precision 3, and a line end.
void interval_row(std::ostream& out, std::string_view text, std::initializer_list<double> values);

/// A row of a percentile table: its label and the position in the sorted values.
struct Percentile {
    std::string_view text;
    std::size_t position;
};
/// The values at the given positions: label, value of the width and precision, line end. A position beyond the last
/// value takes the last; no values print nothing.
void percentile_table(std::ostream& out, std::span<double const> sorted, std::span<Percentile const> rows,
                      int width = 12, int precision = 5);

/// A value, or "N.A." for one that stands for an infinite or impossible estimate (|v| >= 3.4e38, or not a number).
[[nodiscard]] std::string value_or_na(double value, int precision);

/// Mean and standard deviation (divisor count - 1) of the values that exist.
struct RowSummary {
    double mean;  ///< -1 without any value
    double sd;    ///< -1 without any value, 0 with one
    int values;   ///< number of values that entered
};
/// Leaves out values of -1.0 and those of |v| >= 3.4e38.
[[nodiscard]] RowSummary summarize_row(std::span<double const> values) noexcept;

}  // namespace tov
