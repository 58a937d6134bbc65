// Null distributions of an AMOVA's tests: the files and the histogram.
#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <ostream>

#include "input/settings.h"
#include "model/popbase.h"
#include "output/style.h"
#include "output/table.h"
#include "run/errors.h"
#include "structure/amova.h"

namespace tov {

namespace {

constexpr char const* component_names[] = {"Va", "Vb", "Vc", "Vd"};
constexpr int missing_file_codes[] = {4, 5, 6, 7};

/// One value of a null distribution: sign, ten digits, 13 columns filled with zeros.
void print_TOV_DOUBLE(double const& value, std::ostream& out) {
    std::string text = number_text(value, 10);
    if (!std::signbit(value)) {
        text.insert(text.begin(), '+');
    }
    if (text.size() < 13) {
        text.insert(0, 13 - text.size(), '0');
    }
    out << text;
}

/// Counts of values in K classes of equal width; the last two starts lie beyond the largest value.
struct Histogram {
    std::vector<float> start;
    std::vector<int> count;
    float width = 0.0F;
};

Histogram histogram_of(std::vector<double> const& sorted, int classes) {
    Histogram h;
    if (sorted.empty()) {
        return h;
    }
    h.width = static_cast<float>((sorted.back() - sorted.front()) / (classes - 2));
    h.count.assign(classes, 0);
    for (int k = 0; k < classes; ++k) {
        h.start.push_back(static_cast<float>(sorted.front()) + static_cast<float>(k) * h.width);
    }
    for (double const exact : sorted) {
        // Rounded as the starts are: the smallest value could lie below the start that it gave.
        auto const value = static_cast<float>(exact);
        for (int k = 0; k <= classes - 2; ++k) {
            if (h.start[k] <= value && value < h.start[k + 1]) {
                ++h.count[k];
                break;
            }
        }
    }
    return h;
}

}  // namespace

void Amova::print_p(FloatsAndPops const& permuted, std::ostream& out) const {
    out << "[";
    std::size_t at = 0;
    for (int g = 0; g < sizes_.groups(); ++g) {
        if (g > 0) {
            out << "],[";
        }
        for (int k = 0; k < sizes_.group_size[g]; ++k) {
            out << (k > 0 ? "," : "") << permuted.pops[at++] + 1;
        }
    }
    out << "]\t\t";
    print_TOV_DOUBLE(permuted.value, out);
    out << "\n";
}

void Amova::print_popvect(std::ostream& out) const {
    out << "\nList of populations:\n\n";
    for (std::size_t p = 0; p < populations_.size(); ++p) {
        out << "   " << p + 1 << " : " << populations_[p]->pop_name() << "\n";
    }
    out << "\n\n";
}

/// @return false when there is no file name: the design ends.
bool Amova::write_null_file(AmovaTest const& test, int elapsed_ms) {
    std::string const& name = view_.set.sigm_histo_files[test.component];
    if (name.empty()) {
        E.error(ErrorType::Warning, "Amova::write_null_file()", missing_file_codes[test.component]);
        return false;
    }
    std::ofstream out(name, std::ios::trunc);
    std::string const component = component_names[test.component];
    out << "File creation time    " << time_text_ << "\n" << rule{47, '='} << "\n\n"
        << "Number of permutations : " << plan_.permutations << "\n"
        << "Time for computation   : " << elapsed_ms << " ms\n\n"
        << "Results : " << component << "\n============\n" << std::endl;
    if (test.populations) {
        for (FloatsAndPops const& permuted : local_orders_) {
            print_p(permuted, out);
        }
        print_popvect(out);
    } else {
        for (double const value : local_values_) {
            print_TOV_DOUBLE(value, out);
            out << "\n";
        }
    }
    *_AOS_ << "\t\tdone ! (" << elapsed_ms << " ms)" << "\tResults in file : \"" << name << "\"\n";
    return true;
}

void Amova::print_histogram(AmovaDesign const& design) {
    std::ostream& out = view_.set.ofs();
    int const classes = std::clamp(static_cast<int>(std::sqrt(static_cast<double>(plan_.permutations))), 3, 20);
    out << "\n\nHistogram of variance components null distributions\n" << rule{51, '='} << "\n";
    std::vector<Histogram> columns;
    for (int k = 0; k < table_.levels; ++k) {
        bool const tested = std::any_of(design.tests.begin(), design.tests.end(),
                                        [k](AmovaTest const& test) { return test.component == k; });
        if (tested) {
            out << label{component_names[k], 22};
            columns.push_back(histogram_of(sorted_null_[k], classes));
        }
    }
    out << "\n";
    for (int row = 0; row < classes; ++row) {
        for (Histogram const& h : columns) {
            if (!h.count.empty()) {
                out << num{static_cast<double>(h.start[row] + 0.5F * h.width), 14, 5} << integer{h.count[row], 8};
            }
        }
        out << "\n";
    }
    out << "\nObserved  values:\n-----------------";
    for (int k = 0; k < table_.levels; ++k) {
        out << "\n" << component_names[k] << " : " << num{table_.variance[k], 0, 5};
    }
    out << "\n";
}

}  // namespace tov
