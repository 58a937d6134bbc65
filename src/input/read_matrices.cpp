// Readers of the distance matrix of a project.
#include <istream>

#include "base/dmat.h"
#include "input/block_lines.h"
#include "input/matrix_rows.h"
#include "input/public.h"

namespace tov {

int DistMat::ReadDistanceMatrix(std::istream& is, bool labels_in_line, int& line, my_string const& first_line,
                                bool brace_required) {
    MatrixRows rows;
    MatrixRowsRequest const request{nb_labels, labels_in_line ? LabelPlace::first_line : LabelPlace::row_head,
                                    brace_required};
    if (!read_matrix_rows(is, request, rows, line, first_line) || !fill_triangle(*this, rows)) return 0;
    labels = std::move(rows.labels);
    return 1;
}

int DistMat::get_mat_name(std::istream& is) {
    my_string ident;
    while (get_next_ident(is, ident) && !(ident == "matrixdata")) {
        if (ident == "matrixname") return get_qstring(is, name);
    }
    return 0;
}

}  // namespace tov
