// DistMat: a triangle of distances between haplotypes with a name and labels, and the reader of its section.
#pragma once

#include <iosfwd>
#include <vector>

#include "base/cstring.h"
#include "base/trimat.h"
#include "input/profile.h"

namespace tov {

class Project;

/// Distance matrix between haplotypes: the lower triangle with its diagonal, a name and one label a row.
class DistMat : public TriMat {
public:
    DistMat() = default;
    explicit DistMat(int const& dim) : TriMat(dim) {}
    DistMat(DistMat const& other);
    /// Resets the target first, so that a self-assignment loses the labels.
    DistMat& operator=(DistMat const& other);

    /// No labels, empty name, zeroed triangle, conventional flag off; the dimension stays.
    void reset();
    /// A zeroed triangle of dimension n and n empty labels. @return 1, or 0 when the memory does not suffice.
    int initializeMatrixAndArrays(int const& n);

    /// Reads the rows of a triangle of nb_labels rows behind the opening brace, up to the closing one.
    ///
    /// @param labels_in_line  true: the labels stand in the first line; false: each row begins with its label.
    /// @param line            line number, raised with each line read.
    /// @param first_line      text behind the opening brace on its own line; treated as a line of data when not blank.
    /// @param brace_required  false for a file of its own, which may end without a brace.
    /// @return 1, or 0 after a log line on the first fault.
    int ReadDistanceMatrix(std::istream& is, bool labels_in_line, int& line, my_string const& first_line = my_string(),
                           bool brace_required = true);

    /// Skips to the key MatrixName of the section and reads the name (used by the explore path). @return 1 or 0.
    int get_mat_name(std::istream& is);

    ProfileSettings profile;
    Project* project = nullptr;  ///< borrowed
    my_string name;
    int nb_labels = 0;
    std::vector<my_string> labels;  ///< nb_labels of them, or none before initializeMatrixAndArrays
};

/// Writes the section [[DistanceMatrix]] in project file form; nothing without labels.
/// Errors: 11 when there are no label strings; writing goes on.
std::ostream& operator<<(std::ostream& os, DistMat& matrix);

}  // namespace tov
