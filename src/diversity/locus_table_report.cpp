// The per-locus table of a sample as text.
#include "diversity/locus_table_report.h"

#include <ostream>
#include <string_view>

#include "diversity/popgen.h"
#include "output/style.h"

namespace tov {
namespace {

constexpr int first_width = 8;
constexpr int width = 10;
constexpr int digits = 5;
constexpr int copies_digits = 3;

int line_length(LocusTableForm const& form) {
    return first_width + width * (3 + (form.genotypes ? 1 : 0) + (form.sizes ? 2 : 0));
}

void print_head(std::ostream& out, LocusTableForm const& form) {
    out << rule{line_length(form)} << '\n';
    auto line = [&](std::string_view locus, std::string_view copies, std::string_view alleles, std::string_view obs,
                    std::string_view exp, std::string_view range, std::string_view ratio) {
        out << label{locus, first_width} << label{copies, width} << label{alleles, width};
        if (form.genotypes) {
            out << label{obs, width};
        }
        out << label{exp, width};
        if (form.sizes) {
            out << label{range, width} << label{ratio, width};
        }
        out << '\n';
    };
    line("Locus#", "Num.", "Num.", "Obs.", "Exp.", "Allelic", "G-W");
    line("", "gene", "alleles", "Het.", "Het", "range", "stat.");
    line("", "copies", "", "", "", "", "");
    out << rule{line_length(form)} << '\n';
}

void print_row(std::ostream& out, LocusTable const& t, std::size_t i, LocusTableForm const& form) {
    out << integer{static_cast<long long>(i) + 1, first_width} << integer{t.copies[i], width}
        << integer{t.alleles[i], width};
    if (form.genotypes) {
        out << num{t.obs_het[i], width, digits};
    }
    out << num{t.exp_het[i], width, digits};
    if (form.sizes) {
        out << integer{t.range[i], width} << num{t.garza_williamson[i], width, digits};
    }
    out << '\n';
}

void print_closing_row(std::ostream& out, std::string_view title, LocusMeans const& m, double MeanSd::*part,
                       LocusTableForm const& form) {
    out << label{title, first_width} << num{m.copies.*part, width, copies_digits}
        << num{m.alleles.*part, width, digits};
    if (form.genotypes) {
        out << num{m.obs_het.*part, width, digits};
    }
    out << num{m.exp_het.*part, width, digits};
    if (form.sizes) {
        out << num{m.range.*part, width, digits} << num{m.garza_williamson.*part, width, digits};
    }
    out << '\n';
}

}  // namespace

void print_locus_table(std::ostream& out, LocusTable const& table, LocusTableForm const& form) {
    if (!form.rows && !form.means) {
        return;
    }
    out << "\n\nResults are only shown for polymorphic loci\n";
    print_head(out, form);
    if (form.rows) {
        for (std::size_t i = 0; i < table.copies.size(); ++i) {
            if (table.alleles[i] > 1) {
                print_row(out, table, i, form);
            }
        }
        out << rule{line_length(form)} << '\n';
    }
    if (form.means) {
        print_closing_row(out, "Mean", table.over_polymorphic, &MeanSd::mean, form);
        print_closing_row(out, "s.d.", table.over_polymorphic, &MeanSd::sd, form);
        out << rule{line_length(form)} << '\n';
    }
}

}  // namespace tov
