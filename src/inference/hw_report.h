// Text of the Hardy-Weinberg test.
#pragma once

#include <iosfwd>

namespace tov {

/// The test of one locus.
struct HardyWeinbergRow {
    int individuals = 0;
    double obs_het = 0.0;
    double exp_het = 0.0;
    double p = 1.0;
    double sd = 0.0;
    long steps = 0;
};

/// Title, and the lengths of the chain. @param over "Loci" or "Haplotypes".
void print_hw_lengths(std::ostream& out, char const* over, long steps, long burn_in);
/// Rule, titles of the columns, rule.
void print_hw_head(std::ostream& out);
/// Number of the locus, printed from 1: the beginning of a row.
void print_hw_locus(std::ostream& out, int locus);
void print_hw_row(std::ostream& out, HardyWeinbergRow const& row);
void print_hw_rule(std::ostream& out);
/// The test over haplotypes; its row holds P, deviation and steps alone.
void print_hw_haplotypes(std::ostream& out, HardyWeinbergRow const& row);

}  // namespace tov
