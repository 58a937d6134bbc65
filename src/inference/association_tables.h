// The batch tables of the tests of association within a sample, and the side table of linkage disequilibrium.
#pragma once

#include <span>
#include <string_view>

#include "output/tab_row.h"

namespace tov {

class TPopHaploDB;
class TriMat;
class settings;
struct HardyWeinbergRow;
struct LinkedPair;

/// The row of a sample in the table of Hardy-Weinberg tests.
[[nodiscard]] TabRow hw_batch_row(std::string_view sample);
/// Appends one locus to the row of a sample of a sample, numbered from 1: individuals, heterozygosities, P-value, its
/// deviation, steps. A locus without a test has a P-value and a deviation of -1 and no steps.
void write_hw_batch_locus(TabRow& table_row, int locus, HardyWeinbergRow const& row);

/// One row of the table of linked pairs, when it is open. Loci are counted from 0, as in the document.
void write_linkage_batch_row(std::string_view sample, LinkedPair const& pair);

/// Appends a sample to the side table of linkage disequilibrium: its name, then the lower triangle of P-values, one
/// row a locus behind the first. Without a project directory nothing is written.
///
/// @param p  P-values by rank of the polymorphic locus, n rows.
void write_linkage_side_table(settings const& set, std::string_view sample, TriMat const& p, int n);

/// One row a haplotype of the sample in the table of frequencies, when it is open.
void write_frequency_batch_rows(std::string_view sample, TPopHaploDB const& pool);

}  // namespace tov
