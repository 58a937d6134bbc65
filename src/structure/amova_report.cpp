// What an AMOVA prints: its table, its tests and the indices of single populations.
#include <algorithm>
#include <ostream>

#include "input/settings.h"
#include "model/popbase.h"
#include "model/sample.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"
#include "structure/amova.h"

namespace tov {

namespace {

constexpr char const* component_names[] = {"Va", "Vb", "Vc", "Vd"};

/// Label, degrees of freedom, sum of squares, component.
void print_row(std::ostream& out, AmovaRow const& row, int df, double ssd, double variance) {
    out << row.label << integer{df, row.df_width} << num{ssd, 15, 3} << num{variance, 15, 5};
}

int name_width(std::vector<Population*> const& populations) {
    int width = 4;
    for (Population const* const population : populations) {
        width = std::max(width, shown_length(population->pop_name().c_str()));
    }
    return width + 2;
}

}  // namespace

void Amova::print_table(AmovaDesign const& design) {
    std::ostream& out = view_.set.ofs();
    out << "\n--------------------------\nAMOVA design and results :\n--------------------------\n\n";
    print_references(out, {"weir_cockerham1984", "cockerham1973", "weir1996"});
    out << rule{70}
        << "\n Source of                  Sum of      Variance         Percentage\n"
           " variation      d.f.        squares     components       of variation\n"
        << rule{70} << "\n";
    for (int k = 0; k < table_.levels; ++k) {
        print_row(out, design.rows[k], table_.df[k], table_.ssd[k], table_.variance[k]);
        out << " " << component_names[k] << num{100.0 * table_.variance[k] / table_.v_total, 17, 2} << "\n\n";
    }
    out << rule{70} << "\n";
    print_row(out, {" Total", 13}, table_.df_total(), table_.ssd_total, table_.v_total);
    out << "\n" << rule{70} << "\n";
    if (design.index_head != nullptr) {
        out << design.index_head;
    }
    for (AmovaIndex const& index : design.indices) {
        out << index.text << num{table_.*index.value, 12, 5} << "\n";
    }
    out << rule{70} << std::endl;
}

void Amova::print_test(AmovaDesign const& design, std::size_t number, PermutationOutcome const& outcome) {
    std::ostream& out = view_.set.ofs();
    AmovaTest const& test = design.tests[number];
    if (number == 0) {
        out << "\nSignificance tests (" << plan_.permutations << " permutations)\n------------------\n\n";
    }
    double const all = plan_.permutations;
    out << component_names[test.component] << " and " << test.index << " : P(rand. value "
        << (test.tail == PermutationTail::below ? "&lt;" : ">") << " obs. value)  = " << num{outcome.beyond / all, 8, 5}
        << "\n             P(rand. value = obs. value)  = " << num{outcome.equal / all, 8, 5}
        << "\n                                  P-value = " << num{outcome.p, 8, 5} << "+-" << num{outcome.sd, 0, 5}
        << "\n\n";
}

void Amova::print_population_fst() {
    std::ostream& out = view_.set.ofs();
    bool const groups = view_.samples->pooled != 0;
    print_amova_anchor(2, view_.set, groups ? "FST per group" : "FST per pop",
                       groups ? "GR_AMOVA_FST" : "POP_AMOVA_FST");
    int const width = name_width(populations_);
    out << "\n-------------------------------\nPopulation specific FST indices\n"
        << label{"Pop#", 4} << "  " << left_label{"Name", width} << label{"FST", 10} << "\n";
    for (std::size_t p = 0; p < populations_.size(); ++p) {
        out << integer{static_cast<long long>(p) + 1, 4} << "  "
            << user_text{populations_[p]->pop_name().c_str(), width} << num{results_->fst_per_pop[p], 10, 5} << "\n";
    }
    out << "\n";
}

void Amova::print_population_fis(bool tested) {
    std::ostream& out = view_.set.ofs();
    bool const groups = view_.samples->pooled != 0;
    print_amova_anchor(2, view_.set, groups ? "FIS per group" : "FIS per pop",
                       groups ? "GR_AMOVA_FIS" : "POP_AMOVA_FIS");
    int const width = name_width(populations_);
    if (tested) {
        out << "\n" << rule{55} << "\nPopulation specific FIS indices (" << plan_.permutations << " permutations)\n";
    } else {
        out << "\n" << rule{31} << "\nPopulation specific FIS indices\n";
    }
    out << label{"Pop#", 4} << "  " << left_label{"Name", width} << label{"FIS", 10}
        << (tested ? "  P(Rand FIS>=Obs FIS)\n" : "\n");
    for (std::size_t p = 0; p < populations_.size(); ++p) {
        out << integer{static_cast<long long>(p) + 1, 4} << "  "
            << user_text{populations_[p]->pop_name().c_str(), width} << num{observed_fis_[p], 10, 5};
        if (tested) {
            out << num{fis_hits_[p] / static_cast<double>(plan_.permutations), 12, 5};
        }
        out << "\n";
    }
    out << "\n\n";
}

}  // namespace tov
