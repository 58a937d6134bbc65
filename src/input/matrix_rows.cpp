// The rows of a lower triangle as project files hold them.
#include "input/matrix_rows.h"

#include <algorithm>
#include <istream>
#include <new>
#include <string_view>

#include "input/block_lines.h"
#include "input/line_text.h"

namespace tov {
namespace {

class RowReader {
public:
    RowReader(BlockLines& lines, MatrixRowsRequest const& request, MatrixRows& rows)
        : lines_(lines), request_(request), rows_(rows) {}

    bool read() {
        if (request_.label_place == LabelPlace::first_line && !read_label_line()) return false;
        for (int i = 1; i <= request_.size; ++i)
            if (!next_line(i - 1) || !read_row(i)) return false;
        return end_of_rows();
    }

private:
    /// Goes to the next line of the block, with `done` rows behind it.
    bool next_line(int done) {
        if (!lines_.next()) {
            log_text("\tInvalid dimension for distance matrix: ", request_.size, " rows were expected, but only ", done,
                     " were found. Aborting reading project.");
            return false;
        }
        return !new_section();
    }

    bool new_section() {
        if (!contains_word(lines_.text(), "[SAMPLES]") && !begins_later_section(lines_.text())) return false;
        no_closing_brace();
        return true;
    }

    bool no_closing_brace() {
        log_text("\tNo closing brace in distance matrix definition up to line ", lines_.number(),
                 ". Aborting reading project.");
        return false;
    }

    bool unexpected_brace() {
        log_text("\tUnexpected closing brace found on line ", lines_.number(), ". Aborting reading distance matrix.");
        return false;
    }

    bool read_label_line() {
        if (!next_line(0)) return false;
        if (lines_.closed()) return unexpected_brace();
        std::string_view rest = lines_.text();
        int found = 0;
        while (!(rest = trimmed(rest)).empty()) {
            std::string_view label;
            if (!next_label(rest, label)) return bad_label(found + 1);
            if (found++ < request_.size) rows_.labels.emplace_back(label);
        }
        if (found > request_.size)
            log_text("\tWarning: More labels than anticipated (", request_.size, ") are declared on line ",
                     lines_.number());
        if (found >= request_.size) return true;
        log_text("\tMissing labels on line ", lines_.number(), ". Only ", found, " labels were found while ",
                 request_.size, " were expected. Last correctly read label was \"", rows_.labels.back(),
                 "\". Aborting reading Distance Matrix");
        return false;
    }

    bool bad_label(int number) {
        log_text("\tUnable to read label #", number, " on line ", lines_.number(),
                 ". Aborting reading Distance Matrix");
        return false;
    }

    bool read_row(int i) {
        if (lines_.closed() && i < request_.size) return unexpected_brace();
        std::string_view rest = lines_.text();
        if (request_.label_place == LabelPlace::row_head) {
            std::string_view label;
            if (!next_label(rest, label)) return bad_label(i);
            rows_.labels.emplace_back(label);
        }
        std::vector<double>& values = rows_.values.emplace_back();
        values.reserve(std::min(static_cast<std::size_t>(i), rest.size()));
        for (int k = 1; k <= i; ++k) {
            std::string_view const text = next_token(rest);
            if (text.empty()) {
                log_text("\tUnable to read distance #", k, " on line ", lines_.number(),
                         ". Aborting reading distance matrix.");
                return false;
            }
            double value = 0.0;
            if (!parse_number(text, value)) {
                log_text("\tBad value (\"", text, "\") for distance #", k, " on line ", lines_.number(),
                         ". Aborting reading distance matrix.");
                return false;
            }
            values.push_back(value);
        }
        if (!trimmed(rest).empty())
            log_text("\tWarning:  Too many distances are defined on line ", lines_.number(), " instead of ", i);
        return true;
    }

    bool end_of_rows() {
        if (lines_.closed()) return true;
        if (lines_.next()) return no_closing_brace();
        return lines_.closed() || !request_.brace_required || no_closing_brace();
    }

    BlockLines& lines_;                 // borrowed
    MatrixRowsRequest const& request_;  // borrowed
    MatrixRows& rows_;                  // borrowed
};

}  // namespace

int read_matrix_rows(std::istream& is, MatrixRowsRequest const& request, MatrixRows& rows, int& line,
                     my_string const& first_line) {
    BlockLines lines(is, line, first_line, !first_line.is_null());
    return RowReader(lines, request, rows).read();
}

int fill_triangle(TriMat& matrix, MatrixRows& rows) {
    int const size = static_cast<int>(rows.values.size());
    try {
        matrix.create(size);
    } catch (std::bad_alloc const&) {
        log_text("\tUnable to allocate memory for distance matrix \"", size, '"');
        return 0;
    }
    for (int i = 0; i < size; ++i) {
        std::vector<double>& values = rows.values[static_cast<std::size_t>(i)];
        std::copy(values.begin(), values.end(), matrix.row(i).begin());
        std::vector<double>().swap(values);
    }
    return 1;
}

}  // namespace tov
