// Distances between the haplotypes of a sample as the result document shows them.
#include <algorithm>
#include <cmath>
#include <ctime>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "base/timing.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/escape.h"
#include "output/style.h"
#include "output/xml.h"
#include "run/errors.h"
#include "structure/minspanet.h"

namespace tov {
namespace {

constexpr int least_width = 8;
constexpr int digits = 4;

/// Columns of a cell: 8, or as many as keep the largest distance apart from its neighbour.
int cell_width(RectMat const& matrix) {
    double largest = 0.0;
    for (int i = 0; i < matrix.dimension(); ++i) {
        for (double const x : std::as_const(matrix).row(i)) {
            largest = std::isfinite(x) ? std::max(largest, x) : largest;
        }
    }
    return std::max(least_width, static_cast<int>(number_text(largest, digits).size()) + 1);
}

/// Lower elements, a blank cell, upper elements; one row a line.
void print_rows(std::ostream& out, RectMat const& matrix) {
    int const n = matrix.dimension();
    int const width = cell_width(matrix);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            if (i == j) {
                out << label{"", width};
            } else {
                out << num{matrix(i, j), width, digits};
            }
        }
        out << '\n';
    }
}

}  // namespace

int PopGenetics::finish_distance_matrix(std::ostream* out) {
    dist_mat_complete_ = true;
    if (out != nullptr) {
        std::clock_t const start = std::clock();
        *_AOS_ << "\t\t\tWriting matrix to file ...\n";
        *out << "\nInter-haplotypic distance matrix:\n";
        print_rows(*out, *dist_mat_);
        *_AOS_ << "\t\t\tdone ! (" << milliseconds_since(start) << " ms)\n";
    }
    return 1;
}

void PopGenetics::print_out_dist_mat(std::ostream& out, settings const& s) {
    if (!has_dist_mat()) {
        return;
    }
    std::vector<std::string> labels;
    for (int i = 0; i < nb_haplotypes(); ++i) {
        labels.push_back(haplotype(i).name().str());
    }
    if (s.PrintHaplDistMat != 0) {
        *_AOS_ << "\t\t\tWriting matrix to file ...\n";
        out << "\nInter-haplotypic distance matrix (s.d. above diagonal):\n\n";
        {
            XmlSection const section(out, "interHapDistMatrix", "pop", pop_name().str());
            print_rows(out, *dist_mat_);
        }
        out << "\nList of Haplotypes:\n\n";
        XmlSection const section(out, "interHapDistMatrixLabels", "pop", pop_name().str());
        for (std::size_t i = 0; i < labels.size(); ++i) {
            out << i + 1 << " : " << doc_text(labels[i]) << '\n';
        }
    }
    if (s.PrintMinSpannNetworkPop != 0) {
        print_spanning_network(out, *dist_mat_, pop_name().str(), labels);
    }
}

}  // namespace tov
