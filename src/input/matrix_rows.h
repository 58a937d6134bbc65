// The rows of a lower triangle as project files hold them, read line by line into a TriMat.
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
    int size = 0;                              ///< rows
    LabelPlace label_place = LabelPlace::none;
    bool brace_required = true;                ///< false for a file of its own
};

/// Reads `size` rows into `target` (dimension `size`), row i holding i values (i from 1), up to the closing brace.
///
/// @param labels      filled with `size` labels when they stand in the text; untouched otherwise.
/// @param line        line number, raised with each line read.
/// @param first_line  text behind the opening brace; taken as a line of its own when not blank.
/// @return 1, or 0 after a log line on the first fault. Cost: linear in the text.
int read_matrix_rows(std::istream& is, MatrixRowsRequest const& request, TriMat& target,
                     std::vector<my_string>& labels, int& line, my_string const& first_line);

}  // namespace tov
