// What the AMOVA locus by locus prints.
#include "structure/loc_by_loc_report.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>

#include "input/settings.h"
#include "model/sample.h"
#include "model/struct.h"
#include "output/html_out.h"
#include "output/style.h"
#include "output/table.h"
#include "run/errors.h"
#include "structure/amova.h"
#include "structure/amova_table.h"

namespace tov {

namespace {

void print_single_allele(std::ostream& out, std::vector<int> const& loci) {
    out << "\nList of loci with only one allele:\n==================================\n";
    int count = 0;
    for (int const locus : loci) {
        out << integer{locus + 1, 5};
        ++count;
        if (std::fmod(static_cast<double>(count), 30.0) == 0.0) {
            out << "\n";
        }
    }
    out << "\n";
}

using PrintRows = void (AMOVA_table::*)(std::ostream&, int, bool) const;

/// The pair of tables, absolute and relative, of an index of single populations.
void print_population_tables(ProjectView const& view, AMOVA_table const& table, std::string const& index,
                             PrintRows rows) {
    std::ostream& out = view.set.ofs();
    auto const populations = view.structure->all_populations();
    int column = 10;
    for (Population const* const population : view.structure->group(0).populations) {
        column = std::max(column, shown_length(population->pop_name().c_str()) + 2);
    }
    column = table.population_width(column, index == "FIS");
    int const line = column * static_cast<int>(populations.size()) + 21;
    auto const one = [&](std::string const& title, bool relative) {
        out << title << rule{line} << "\n" << label{"Locus", 7} << label{"Average " + index, 14};
        for (Population const* const population : populations) {
            out << user_text{population->pop_name().c_str(), column, false};
        }
        out << "\n" << rule{line} << "\n";
        (table.*rows)(out, column, relative);
    };
    one("\nPopulation specific " + index + " indices per polymorphic locus (absolute values)\n", false);
    one("\nPopulation specific " + index + " indices per polymorphic locus (relative values (%) compared to average " +
            index + ")\n",
        true);
}

}  // namespace

void print_locus_by_locus_heading(ProjectView const& view) {
    settings const& set = view.set;
    std::ostream& out = set.ofs();
    if (set.silent_structure) {
        return;
    }
    out << "\n********************\nLocus by locus AMOVA:\n********************\n";
    if (set.ComputeConventionalFST != 0) {
        out << "Computing conventional F-Statistics from haplotype frequencies\n";
    } else if (set.ComputeDistanceMatrixAMOVA != 0) {
        out << "Distance method for locus-by-locus analysis: ";
        if (view.samples->DataType == STANDARD) {
            out << "Pairwise differences\n";
        } else {
            set.print_distance_method(out, set.DistanceMethodAMOVA);
        }
    }
}

void print_locus_by_locus_results(ProjectView const& view, AMOVA_table const& table,
                                  std::vector<int> const& single_allele) {
    settings const& set = view.set;
    if (set.silent_structure) {
        return;
    }
    std::ostream& out = set.ofs();
    bool const groups = view.samples->pooled != 0;
    print_single_allele(out, single_allele);
    print_js_doc_entry(set, 2, groups ? "gr_Loc_by_Loc_AMOVA" : "pop_Loc_by_Loc_AMOVA", "Locus by locus AMOVA");
    heading(out, "AMOVA Results for polymorphic loci only:", 0, '-');
    *_AOS_ << "\tPrinting locus-by_locus AMOVA results in table...";
    table.print_table_header(out);
    table.print_table(out);
    *_AOS_ << " done!\n";
    int const first = table.first_case();
    if (set.PopSpecificFST != 0 && (first == 1 || first == 7)) {
        print_population_tables(view, table, "FST", &AMOVA_table::print_Fst_per_pop_table);
    }
    table.print_average_loci(out, set, groups);
    if (set.PopSpecificFIS != 0 && (first == 2 || first == 4)) {
        print_amova_anchor(2, set, groups ? "FIS per group per locus" : "FIS per pop per locus",
                           groups ? "LBL_GR_AMOVA_FIS" : "LBL_POP_AMOVA_FIS");
        print_population_tables(view, table, "FIS", &AMOVA_table::print_Fis_per_pop_table);
    }
}

}  // namespace tov
