// Headings, tables and matrices of the result document.
#include "output/table.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <utility>

namespace tov {

namespace {

constexpr int level_rule = 78;
constexpr int loci_per_line = 15;
constexpr int locus_width = 4;
constexpr double estimate_limit = 3.4e38;

bool exists(double value) noexcept {
    return value != -1.0 && std::fabs(value) < estimate_limit;  // false for NaN too
}

/// Smallest and largest of the finite values and 0.
std::pair<double, double> finite_range(std::span<double const> values) noexcept {
    double smallest = 0.0, largest = 0.0;
    for (double const value : values) {
        if (!std::isfinite(value)) continue;
        smallest = std::min(smallest, value);
        largest = std::max(largest, value);
    }
    return {smallest, largest};
}

/// Columns that row i of an n x n matrix shows.
int shown_cells(Cells cells, int i, int n) noexcept {
    switch (cells) {
        case Cells::below_diagonal:
            return i;
        case Cells::lower_triangle:
            return i + 1;
        case Cells::square:
            break;
    }
    return n;
}

}  // namespace

// --- Headings ---

void heading(std::ostream& out, std::string_view title, int length, char mark) {
    rule const line{length > 0 ? length : static_cast<int>(title.size()), mark};
    out << '\n' << line << '\n' << title << '\n' << line << '\n';
}

void sample_heading(std::ostream& out, std::string_view title, std::string_view name, int length) {
    rule const line{length, '='};
    out << '\n' << line << "\n== " << title << " : (" << doc_text(name) << ")\n" << line << "\n\n";
}

void level_banner(std::ostream& out, std::string_view title) {
    rule const line{level_rule, '='};
    out << '\n' << line << title << '\n' << line << '\n';
}

std::ostream& operator<<(std::ostream& out, gamma_note const& note) {
    if (note.a == 0.0) return out << " (no Gamma correction)";
    return out << " (Gamma correction : a=" << note.a << ')';
}

// --- Lists ---

void label_list(std::ostream& out, std::span<std::string const> names, LabelListForm const& form) {
    out << form.head;
    for (std::size_t i = 0; i < names.size(); ++i)
        out << form.before << std::to_string(i + 1) << form.between << doc_text(names[i]) << '\n';
}

void locus_list(std::ostream& out, std::span<int const> loci) {
    if (loci.empty()) {
        out << "NONE";
        return;
    }
    for (std::size_t i = 0; i < loci.size(); ++i) {
        if (i != 0 && i % loci_per_line == 0) out << '\n';
        out << integer{loci[i] + 1LL, locus_width} << ' ';
    }
}

// --- Matrices with labels ---

int fitting_width(int least, std::size_t longest) noexcept { return std::max(least, static_cast<int>(longest) + 1); }

int fitting_width(int least, std::span<double const> values, int precision) {
    auto const [smallest, largest] = finite_range(values);
    return fitting_width(least,
                         std::max(number_text(smallest, precision).size(), number_text(largest, precision).size()));
}

namespace {

/// Prints the cells as wide as the form tells.
void print_matrix(std::ostream& out, std::span<std::string const> labels, MatrixForm const& form,
                  CellText const& cell) {
    int const n = static_cast<int>(labels.size());
    if (form.label_line) {
        out << label{form.corner, form.label_width};
        write_padded(out, {}, static_cast<int>(form.bar.size()));
        for (std::string const& text : labels) out << user_text{text, form.cell_width, false};
        out << '\n';
        if (form.line_below_labels) out << '\n';
    }
    for (int i = 0; i < n; ++i) {
        out << user_text{labels[static_cast<std::size_t>(i)], form.label_width, false} << form.bar;
        int const columns = shown_cells(form.cells, i, n);
        for (int j = 0; j < columns; ++j) write_padded(out, cell(i, j), form.cell_width);
        out << '\n';
    }
}

/// Calls `visit` for each cell that is shown.
template <class Visit>
void for_shown_cells(Cells cells, int n, Visit&& visit) {
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < shown_cells(cells, i, n); ++j) visit(i, j);
}

}  // namespace

void text_matrix(std::ostream& out, std::span<std::string const> labels, MatrixForm const& form, CellText const& cell) {
    std::size_t longest = 0;
    for_shown_cells(form.cells, static_cast<int>(labels.size()),
                    [&](int i, int j) { longest = std::max(longest, cell(i, j).size()); });
    MatrixForm fitted = form;
    fitted.cell_width = fitting_width(form.cell_width, longest);
    print_matrix(out, labels, fitted, cell);
}

void number_matrix(std::ostream& out, std::span<std::string const> labels, MatrixForm const& form,
                   CellValue const& cell, int precision) {
    // In fixed notation the longest number is the largest or the smallest one.
    double extremes[] = {0.0, 0.0};
    for_shown_cells(form.cells, static_cast<int>(labels.size()), [&](int i, int j) {
        double const value = cell(i, j);
        if (!std::isfinite(value)) return;
        extremes[0] = std::min(extremes[0], value);
        extremes[1] = std::max(extremes[1], value);
    });
    MatrixForm fitted = form;
    fitted.cell_width = fitting_width(form.cell_width, extremes, precision);
    print_matrix(out, labels, fitted, [&](int i, int j) { return number_text(cell(i, j), precision); });
}

void lower_triangle(std::ostream& out, int n, CellValue const& cell) { number_matrix(out, number_labels(n), {}, cell); }

void lower_triangle(std::ostream& out, int n, CellText const& cell, int cell_width) {
    MatrixForm form;
    form.cell_width = cell_width;
    text_matrix(out, number_labels(n), form, cell);
}

std::vector<std::string> number_labels(int n) {
    std::vector<std::string> labels;
    for (int i = 1; i <= n; ++i) labels.push_back(std::to_string(i));
    return labels;
}

// --- Tables of significance ---

char significance_mark(double p, double level) noexcept { return p >= 0.0 && p < level ? '+' : '-'; }

std::vector<int> significant_partners(int n, CellValue const& p, double level) {
    std::vector<int> partners(static_cast<std::size_t>(std::max(n, 0)), 0);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < i; ++j)
            if (significance_mark(p(i, j), level) == '+') {
                ++partners[static_cast<std::size_t>(i)];
                ++partners[static_cast<std::size_t>(j)];
            }
    return partners;
}

void significance_matrix(std::ostream& out, std::span<std::string const> labels, MatrixForm const& form,
                         CellValue const& p, double level) {
    text_matrix(out, labels, form, [&](int i, int j) {
        return std::string(1, i == j ? ' ' : significance_mark(i > j ? p(i, j) : p(j, i), level));
    });
}

void framed_row(std::ostream& out, std::span<std::string const> labels, std::span<double const> values,
                FramedRowForm const& form) {
    int const indent = static_cast<int>(form.head.size());
    rule const line{indent + 1 + static_cast<int>(labels.size()) * (form.cell_width + 1)};
    out << line << '\n' << label{{}, indent} << '|';
    for (std::string const& text : labels) out << user_text{text, form.cell_width, false} << '|';
    out << '\n' << line << '\n' << form.head << '|';
    for (double const value : values) {
        if (form.precision > 0)
            out << num{value, form.cell_width, form.precision};
        else
            out << integer{std::llround(value), form.cell_width};
        out << '|';
    }
    out << form.tail << '\n' << line << '\n';
}

// --- Intervals, percentiles ---

void interval_row(std::ostream& out, std::string_view text, std::initializer_list<double> values) {
    out << label{text, 27};
    for (double const value : values) {
        // An unbounded estimate may need more than its column; a blank keeps it apart from its neighbour.
        std::string const digits = number_text(value, 3);
        out << (digits.size() >= 16 ? " " : "") << label{digits, 16};
    }
    out << '\n';
}

void percentile_table(std::ostream& out, std::span<double const> sorted, std::span<Percentile const> rows, int width,
                      int precision) {
    if (sorted.empty()) return;
    for (Percentile const& row : rows)
        out << row.text << num{sorted[std::min(row.position, sorted.size() - 1)], width, precision} << '\n';
}

std::string value_or_na(double value, int precision) {
    return std::fabs(value) < estimate_limit ? number_text(value, precision) : "N.A.";
}

RowSummary summarize_row(std::span<double const> values) noexcept {
    int n = 0;
    double sum = 0.0;
    for (double const value : values)
        if (exists(value)) {
            ++n;
            sum += value;
        }
    if (n == 0) return {-1.0, -1.0, 0};
    double const mean = sum / n;
    double squares = 0.0;
    for (double const value : values)
        if (exists(value)) squares += (value - mean) * (value - mean);
    return {mean, n > 1 ? std::sqrt(squares / (n - 1)) : 0.0, n};
}

}  // namespace tov
