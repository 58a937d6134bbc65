// The rows of a lower triangle as project files hold them.
#pragma once

#include <iosfwd>
#include <vector>

#include "base/cstring.h"
#include "base/trimat.h"

namespace tov {

/// Where the labels of a triangle stand.
enum class LabelPlace { none, first_line, row_head };

/// How the rows of a triangle are to be read.
struct MatrixRowsRequest {
    int size = 0;  ///< rows
    LabelPlace label_place = LabelPlace::none;
    bool brace_required = true;  ///< false for a file of its own, which may end without a brace
};

/// Rows as read: row i (from 0) holds i + 1 values.
struct MatrixRows {
    std::vector<std::vector<double>> values;
    std::vector<my_string> labels;  ///< none when the text holds none
};

/// Reads `size` rows, row i holding i values (i from 1), up to the closing brace.
///
/// @param line        line number, raised with each line read.
/// @param first_line  text behind the opening brace; empty when no brace has been met yet.
/// @return 1, or 0 after a log line on the first fault. Memory: in proportion to the text, whatever `size` says.
int read_matrix_rows(std::istream& is, MatrixRowsRequest const& request, MatrixRows& rows, int& line,
                     my_string const& first_line);

/// Gives the matrix the size of the rows and moves their values into it.
/// @return 1, or 0 after a log line when the memory does not suffice.
int fill_triangle(TriMat& matrix, MatrixRows& rows);

}  // namespace tov
