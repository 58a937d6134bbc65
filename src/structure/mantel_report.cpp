// The Mantel test in the document: labels, matrices, correlations and P-values.
#include <optional>
#include <ostream>
#include <string_view>

#include "base/recmat.h"
#include "input/settings.h"
#include "model/popbase.h"
#include "model/project_view.h"
#include "model/sample.h"
#include "output/escape.h"
#include "output/html_out.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"
#include "run/errors.h"
#include "structure/mantel.h"

namespace tov {

namespace {

std::optional<int> place_of(my_string const& label, std::vector<my_string> const& labels) {
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (labels[i] == label) {
            return static_cast<int>(i);
        }
    }
    return std::nullopt;
}

std::optional<int> place_of(my_string const& label, std::vector<Population*> const& populations) {
    for (std::size_t i = 0; i < populations.size(); ++i) {
        if (populations[i]->pop_name() == label) {
            return static_cast<int>(i);
        }
    }
    return std::nullopt;
}

void print_matrix(std::ostream& out, std::string_view name, RectMat const& matrix) {
    out << "  " << name << "={";
    matrix.display_matrix(out);
    out << "  }\n";
}

void print_not_found(std::ostream& out) {
    *_AOS_ << "   Mantel::do_mantel_test(...): error while checking matrices, Label(s) not found\n"
           << "                                check the labels defined in the \n"
           << "                                DistMatMantel and UsedYMatrixLabels sections\n";
    out << "  Error while checking matrices, Label(s) not found\n"
        << "  check the labels defined in the\n"
        << "  DistMatMantel and UsedYMatrixLabels sections";
}

/// A labelled value of the print.
struct Line {
    std::string_view text;
    double value;
};

void print_lines(std::ostream& out, std::initializer_list<Line> lines) {
    for (Line const& line : lines) {
        out << line.text << num{line.value};
    }
}

void print_counts(std::ostream& out, std::string_view name, double p, MantelCounts const& counts) {
    std::string const before = "P(" + std::string(name) + " rand >= " + std::string(name) + " obs)";
    out << "\n\n" << left_label{before, 34} << ": " << num{p};
    auto const count = [&](std::string_view kind, int value) {
        std::string const text = "No. of " + std::string(kind) + " rand " + std::string(name);
        out << "\n" << left_label{text, 34} << ": " << value;
    };
    count("smaller", counts.smaller);
    count("equal", counts.equal);
    count("larger", counts.larger);
}

}  // namespace

void Mantel::do_mantel_test(TriMat& fst, std::vector<Population*> const& populations, ProjectView const& view,
                            int nperm) {
    int const m = static_cast<int>(used_labels.GetItemsInContainer());
    if (m == 0) {
        return;
    }
    std::ostream& out = view.set.ofs();
    bool const custom = has_custom_Y();
    std::vector<int> y_index, x_index;
    bool missing = false;
    for (int i = 0; i < m && !missing; ++i) {
        auto const x = place_of(used_labels[i], labels);
        auto const y = custom ? x : place_of(used_labels[i], populations);
        missing = !x || !y;
        x_index.push_back(x.value_or(0));
        y_index.push_back(y.value_or(0));
    }
    bool const groups = view.samples->pooled != 0;
    bool const two = nb_matrices < 3;
    if (two) {
        print_js_doc_entry(view.set, 2, groups ? "_gr_mantel" : "_pop_mantel", "Mantel test");
    } else {
        print_js_doc_entry(view.set, 2, groups ? "_gr_dm_correl" : "_pop_dm_correl", "Matrix correlation");
    }
    if (missing) {
        print_not_found(out);
        return;
    }
    out << rule{79, '='} << "\n== MATRIX CORRELATION ANALYSIS (MANTEL TESTS)\n" << rule{79, '='} << "\n\n";
    print_references(out, {"mantel1967", "smouse1986"});
    out << (custom ? "Labels of Y matrix rows={\n" : "Labels of population samples={\n");
    for (int i = 0; i < m; ++i) {
        out << "   \"" << doc_text(used_labels[i].c_str()) << "\"\n";
    }
    out << "}";
    int const least = two ? 3 : 4;
    if (m < least) {
        out << "The minimum size of matrices is " << least << " in order to perform a Mantel test\n"
            << "Computations were not performed...";
        return;
    }
    RectMat Y(m, m), Xa(m, m), Xb(m, m);
    for (int i = 0; i < m; ++i) {
        for (int j = 0; j < m; ++j) {
            Xa(i, j) = X1(x_index[i], x_index[j]);
            Y(i, j) = FstMatr_funct(y_index[i], y_index[j], fst);
            if (!two) {
                Xb(i, j) = X2(x_index[i], x_index[j]);
            }
        }
    }
    StyleScope const style(out);
    out << "\nList of matrices:\n";
    print_matrix(out, "X1", Xa);
    if (!two) {
        print_matrix(out, "X2", Xb);
    }
    print_matrix(out, "Y (" + doc_text(Y_type.c_str()) + ")", Y);
    if (two) {
        compute_correlation(Y, Xa);
        print_correlations(out);
        test_correlation(Y, Xa, nperm);
    } else {
        compute_correlation(Y, Xa, Xb);
        print_correlations(out);
        test_correlation(Y, Xa, Xb, nperm);
    }
    print_p_values(out);
}

void Mantel::print_correlations(std::ostream& os) const {
    StyleScope const style(os);
    if (nb_matrices < 3) {
        print_lines(os, {{"\nMean value Y                       : ", meanY},
                         {"\nSums of squares Y                  : ", SSXY},
                         {"\nMean value  X1                     : ", meanX1},
                         {"\nSums of squares X1                 : ", SSX1},
                         {"\nZY1                                : ", ZY1},
                         {"\nSum of products (SP(Y,X1))         : ", SPY1},
                         {"\n\nRegression coefficient (bY1)     : ", bY1},
                         {"\n\nCorrelation coefficient (rY1)    : ", rY1},
                         {"\n\nDetermination of Y by X1(%)      : ", R2}});
        return;
    }
    // The third sum of products is SP(X1,X2); its label stays as it is known.
    print_lines(os, {{"\nMean value Y                      : ", meanY},
                     {"\nSums of squares Y                 : ", SSXY},
                     {"\nMean value  X1                    : ", meanX1},
                     {"\nSums of squares X1                : ", SSX1},
                     {"\nMean value  X2                    : ", meanX2},
                     {"\nSums of squares X2                : ", SSX2},
                     {"\nZY1                               : ", ZY1},
                     {"\nZY2                               : ", ZY2},
                     {"\nZ12                               : ", Z12},
                     {"\nSum of products (SP(Y,X1))        : ", SPY1},
                     {"\nSum of products (SP(Y,X2))        : ", SPY2},
                     {"\nSum of products (SP(X1,X1))       : ", SP12},
                     {"\n\nRegression coefficient (bY1)      : ", bY1},
                     {"\nRegression coefficient (bY2)      : ", bY2},
                     {"\n\nPartial regression coefficient (bY1_2) : ", bY1_2},
                     {"\nPartial regression coefficient (bY2_1) : ", bY2_1},
                     {"\n\nCorrelation coefficient (rY1)     : ", rY1},
                     {"\nCorrelation coefficient (rY2)     : ", rY2},
                     {"\nCorrelation coefficient (r12)     : ", r12},
                     {"\n\nPartial correlation (rY1_2)       : ", rY1_2},
                     {"\nPartial correlation (rY2_1)       : ", rY2_1},
                     {"\n\nDetermination of Y by X1(%)       : ", b1 * b1 + b1 * b2 * r12},
                     {"\nDetermination of Y by X2(%)       : ", b2 * b2 + b1 * b2 * r12},
                     {"\nTotal determination of Y (%)      : ", R2},
                     {"\nUnexplained variance of Y (%)     : ", unexplained}});
}

void Mantel::print_p_values(std::ostream& os) const {
    os << "\n\nSignificance testing (" << nperm_done << " permutations for Mantel test)\n====================";
    print_counts(os, "rY1", P_rY1, count_rY1);
    if (nb_matrices == 3) {
        print_counts(os, "rY2", P_rY2, count_rY2);
        print_counts(os, "rY1_2", P_rY1_2, count_rY1_2);
        print_counts(os, "rY2_1", P_rY2_1, count_rY2_1);
    }
    os << "\n";
}

}  // namespace tov
