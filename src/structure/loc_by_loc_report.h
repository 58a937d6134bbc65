// What the AMOVA locus by locus prints.
#pragma once

#include <vector>

#include "model/project_view.h"

namespace tov {

class AMOVA_table;

void print_locus_by_locus_heading(ProjectView const& view);

/// Loci with one allele, the table of the others, indices of single populations and the averages over loci.
///
/// @param single_allele  loci with one allele, from 0.
/// Draws: those of AMOVA_table::print_average_loci.
void print_locus_by_locus_results(ProjectView const& view, AMOVA_table const& table,
                                  std::vector<int> const& single_allele);

}  // namespace tov
