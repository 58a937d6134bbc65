// Mantel: matrices of a [[Mantel]] section and the results of their correlation analysis.
#pragma once

#include <array>
#include <iosfwd>
#include <vector>

#include "base/arrays.h"
#include "base/cstring.h"
#include "base/trimat.h"
#include "input/profile.h"

namespace tov {

class Population;
class RectMat;
struct ProjectView;

/// Counts of permuted values equal to, larger and smaller than an observed one.
struct MantelCounts {
    int equal = 0;
    int larger = 0;
    int smaller = 0;
};

/// Correlation of a matrix Y with one or two matrices X1, X2, and its test by permuting Y.
class Mantel {
public:
    static constexpr int nb_y_types = 6;

    Mantel();

    /// Empties results, matrices and labels.
    void reset();
    /// Fills the table of type words: fst, log_fst, slatkinlinearfst, log_slatkinlinearfst, nm, custom.
    void init_YTypes();

    // --- The reader (input/read_mantel.cpp) ---
    struct SeenKeys {
        bool matrix_size = false;
        bool matrix_number = false;
        bool y_matrix_labels = false;
        bool dist_mat_mantel = false;
        bool used_y_matrix_labels = false;
    };
    /// Reads a section [[Mantel]] line by line up to the end of the file.
    ///
    /// @param line  line number, raised with each line read.
    /// @param text  current upper-cased line; in: the section's opening line.
    /// @return 1, or 0 after a log line on the first fault.
    int NewOpenMantel(std::istream& ifs, ProfileSettings const& profile, int& line, my_string& text, SeenKeys& seen);
    /// Reads the rows of one matrix into `matrix`, which has its dimension already.
    int newReadMatrixData(std::istream& is, TriMat& matrix, bool brace_required, int& line,
                          my_string const& first_line = my_string());

    // --- The test ---
    /// The whole test, with its print.
    ///
    /// @param fst          FST between the populations.
    /// @param populations  in the order of `fst`.
    void do_mantel_test(TriMat& fst, std::vector<Population*> const& populations, ProjectView const& view, int nperm);
    /// Element (i, j) of Y, by the type of Y.
    [[nodiscard]] double FstMatr_funct(int i, int j, TriMat& fst);
    /// Y is given by the project: no distances between samples are needed.
    [[nodiscard]] bool has_custom_Y() const { return Y_type == Y_types[5]; }
    void compute_correlation(RectMat& Y, RectMat& X1);
    void compute_correlation(RectMat& Y, RectMat& X1, RectMat& X2);
    void test_correlation(RectMat& Y, RectMat& X1, int const& nperm);
    void test_correlation(RectMat& Y, RectMat& X1, RectMat& X2, int const& nperm);
    void print_correlations(std::ostream& os) const;
    void print_p_values(std::ostream& os) const;

    // --- Results ---
    double ZY1 = 0.0, ZY2 = 0.0, Z12 = 0.0;
    double SPY1 = 0.0, SPY2 = 0.0, SP12 = 0.0;
    double bY1 = 0.0, bY2 = 0.0, b21 = 0.0, b12 = 0.0;
    double bY1_2 = 0.0, bY2_1 = 0.0;
    double rY1 = 0.0, rY2 = 0.0, r12 = 0.0;
    double rY1_2 = 0.0, rY2_1 = 0.0;
    double P_rY1 = 0.0, P_rY2 = 0.0, P_rY1_2 = 0.0, P_rY2_1 = 0.0;
    double b1 = 0.0, b2 = 0.0;
    double R2 = 0.0, unexplained = 0.0;
    double meanY = 0.0, SSXY = 0.0, meanX1 = 0.0, SSX1 = 0.0, meanX2 = 0.0, SSX2 = 0.0;
    MantelCounts count_rY1, count_rY2, count_rY1_2, count_rY2_1;
    int nperm_done = 0;

    // --- Data of the section ---
    int nb_matrices = 0;  ///< key MatrixNumber: 2 or 3, Y included
    TriMat X1;
    TriMat X2;
    TriMat Y_custom;
    MY_TArrayAsVector<my_string> used_labels{9, 10};  ///< rows of Y in use; none: no test
    my_string Y_type;
    std::array<my_string, nb_y_types> Y_types;
    int nb_labels = 0;              ///< key MatrixSize: dimension of all matrices
    std::vector<my_string> labels;  ///< nb_labels of them: rows of the given matrices
};

}  // namespace tov
