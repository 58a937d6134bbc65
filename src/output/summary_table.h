// A table that compares all samples of a project: one row a statistic or locus, one column a sample.
#pragma once

#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tov {

class settings;

struct SummaryRow {
    std::string label;
    std::vector<double>
        values;  ///< one a sample; -1 where nothing was computed; none at all: a sub-heading, printed as it is
    int precision = 5;                ///< 0 for counts, whose mean has 3
    std::optional<double> total = {}; ///< over all samples together
    bool is_locus = true;             ///< enters mean and deviation over loci
};

struct SummaryTable {
    std::string title;
    std::string anchor;
    std::string head;         ///< line above the table
    std::string row_head;     ///< over the labels of the rows
    std::string total_head;   ///< over the totals; empty for none
    std::string side_file;    ///< name of the tab-separated copy and of the XML element; empty for neither
    bool per_locus = false;   ///< rows are loci: their mean and deviation follow as rows
    std::vector<SummaryRow> rows;
};

/// Path of a side table of a project in its result directory. The tables of pooled groups begin with "gr_", so that
/// those of the samples leave them be.
[[nodiscard]] std::string side_table_path(settings const& set, std::string_view file, bool groups);

/// Prints a table with its tree entry, and its tab-separated copy `<project>.res/<side_file>.sum`. A table
/// without rows is that of statistics that nobody asked for: it is left out.
///
/// @param names   of the samples.
/// @param groups  the samples are pooled groups.
void print_summary_table(std::ostream& out, settings const& set, SummaryTable const& table,
                         std::span<std::string const> names, bool groups);

}  // namespace tov
