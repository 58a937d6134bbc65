// Text of the Hardy-Weinberg test.
#include "inference/hw_report.h"

#include <ostream>

#include "output/style.h"

namespace tov {

void print_hw_lengths(std::ostream& out, char const* over, long steps, long burn_in) {
    out << "\nExact test using a Markov chain (for all " << over << "):"
        << "\nForecasted chain length     :" << steps << "\nDememorization steps        :" << burn_in << "\n\n";
}

void print_hw_rule(std::ostream& out) { out << rule{72} << '\n'; }

void print_hw_head(std::ostream& out) {
    print_hw_rule(out);
    out << label{"Locus", 5} << label{"#Genot", 8} << label{"Obs.Het.", 15} << label{"Exp.Het.", 13}
        << label{"P-value", 10} << label{"s.d.", 9} << label{"Steps done\n", 13};
    print_hw_rule(out);
}

void print_hw_locus(std::ostream& out, int locus) { out << integer{locus + 1LL, 5}; }

void print_hw_row(std::ostream& out, HardyWeinbergRow const& row) {
    out << integer{row.individuals, 12} << num{row.obs_het, 9, 5} << num{row.exp_het, 11, 5} << num{row.p, 13, 5}
        << num{row.sd, 14, 5} << integer{row.steps, 8};
}

void print_hw_haplotypes(std::ostream& out, HardyWeinbergRow const& row) {
    out << "Markov Chain test:  P value : " << num{row.p, 8, 5} << " +/- " << num{row.sd, 10, 5} << " (" << row.steps
        << " steps done\n";
}

}  // namespace tov
