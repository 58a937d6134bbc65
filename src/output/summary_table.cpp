// Tables that compare all samples of a project.
#include "output/summary_table.h"

#include <algorithm>
#include <fstream>
#include <numeric>
#include <ostream>

#include "input/settings.h"
#include "output/html_out.h"
#include "output/style.h"
#include "output/tab_row.h"
#include "output/table.h"
#include "output/xml.h"

namespace tov {

namespace {

constexpr int label_width = 28;
constexpr int least_width = 12;

/// The rows of a table with, for loci, the means and deviations over them.
std::vector<SummaryRow> all_rows(SummaryTable const& table) {
    std::vector<SummaryRow> rows = table.rows;
    if (!table.per_locus || rows.empty()) {
        return rows;
    }
    SummaryRow mean{"Mean", {}, 5}, sd{"s.d.", {}, 5};
    for (std::size_t s = 0; s < table.rows.front().values.size(); ++s) {
        std::vector<double> column;
        for (SummaryRow const& row : table.rows) {
            if (row.is_locus) {
                column.push_back(row.values[s]);
            }
        }
        RowSummary const summary = summarize_row(column);
        mean.values.push_back(summary.mean);
        sd.values.push_back(summary.sd);
    }
    std::vector<double> totals;
    for (SummaryRow const& row : table.rows) {
        if (row.total) {
            totals.push_back(*row.total);
        }
    }
    if (!totals.empty()) {
        mean.total = summarize_row(totals).mean;
        sd.total = summarize_row(totals).sd;
    }
    rows.push_back(std::move(mean));
    rows.push_back(std::move(sd));
    return rows;
}

/// A cell's text: counts without decimals, "N.A." for what has no finite value.
std::string cell(double value, int precision) {
    std::string text = value_or_na(value, precision);
    if (precision == 0 && !text.empty() && text.back() == '.' && text != "N.A.") {
        text.pop_back();
    }
    return text;
}

/// Cells of a row: the samples, mean and deviation, and the total where the table has one.
std::vector<std::string> cells_of(SummaryRow const& row, bool totals) {
    std::vector<std::string> cells;
    for (double const value : row.values) {
        cells.push_back(cell(value, row.precision));
    }
    RowSummary const summary = summarize_row(row.values);
    int const precision = row.precision == 0 ? 3 : 5;
    cells.push_back(cell(summary.mean, precision));
    cells.push_back(cell(summary.sd, precision));
    if (totals) {
        cells.push_back(row.total ? cell(*row.total, row.precision) : std::string());
    }
    return cells;
}

void write_side_file(settings const& set, SummaryTable const& table, std::vector<SummaryRow> const& rows,
                     std::span<std::string const> names, bool groups) {
    std::ofstream file(side_table_path(set, table.side_file + ".sum", groups), std::ios::trunc);
    bool const totals = !table.total_head.empty();
    {
        TabRow head(file);
        head << table.row_head;
        for (std::string const& name : names) {
            head << name;
        }
        head << "Mean"
             << "s.d.";
        if (totals) {
            head << table.total_head;
        }
    }
    for (SummaryRow const& row : rows) {
        TabRow line(file);
        line << row.label;
        for (std::string const& text : cells_of(row, totals)) {
            line << text;
        }
    }
}

/// Columns of each sample, of mean and deviation, and of the totals where the table has them.
std::vector<int> column_widths(SummaryTable const& table, std::vector<SummaryRow> const& rows,
                               std::span<std::string const> names) {
    bool const totals = !table.total_head.empty();
    std::vector<int> widths;
    for (std::string const& name : names) {
        widths.push_back(std::max(least_width, shown_length(name) + 2));
    }
    widths.resize(names.size() + (totals ? 3 : 2), least_width);
    for (SummaryRow const& row : rows) {
        if (row.values.empty()) {
            continue;
        }
        std::vector<std::string> const cells = cells_of(row, totals);
        for (std::size_t c = 0; c < cells.size() && c < widths.size(); ++c) {
            widths[c] = fitting_width(widths[c], cells[c].size());
        }
    }
    return widths;
}

void print_rows(std::ostream& out, SummaryTable const& table, std::vector<SummaryRow> const& rows,
                std::span<std::string const> names, std::vector<int> const& widths) {
    out << left_label{table.row_head, label_width};
    std::size_t column = 0;
    for (std::string const& name : names) {
        out << user_text{name, widths[column++], false};
    }
    for (std::string_view const head : {std::string_view("Mean"), std::string_view("s.d.")}) {
        out << label{head, widths[column++]};
    }
    if (!table.total_head.empty()) {
        out << label{table.total_head, widths[column]};
    }
    out << '\n';
    for (SummaryRow const& row : rows) {
        if (row.values.empty()) {
            out << row.label << '\n';
            continue;
        }
        out << left_label{row.label, label_width};
        std::vector<std::string> const cells = cells_of(row, !table.total_head.empty());
        for (std::size_t c = 0; c < cells.size(); ++c) {
            out << label{cells[c], widths[c]};
        }
        out << '\n';
    }
}

}  // namespace

std::string side_table_path(settings const& set, std::string_view file, bool groups) {
    return set.project_dir + (groups ? "gr_" : "") + std::string(file);
}

void print_summary_table(std::ostream& out, settings const& set, SummaryTable const& table,
                         std::span<std::string const> names, bool groups) {
    if (table.rows.empty()) {
        return;
    }
    std::vector<SummaryRow> const rows = all_rows(table);
    std::vector<int> const widths = column_widths(table, rows, names);
    int const width = std::accumulate(widths.begin(), widths.end(), label_width);
    out << THeader{table.title} << '\n';
    print_js_doc_entry(set, 2, (groups ? "_gr_sum_" : "_samp_sum_") + table.anchor, table.title);
    out << rule{width} << table.head << '\n';
    if (table.side_file.empty()) {
        print_rows(out, table, rows, names, widths);
    } else {
        XmlSection const section(out, table.side_file);
        print_rows(out, table, rows, names, widths);
        write_side_file(set, table, rows, names, groups);
    }
    out << rule{width} << "\n\n";
}

}  // namespace tov
