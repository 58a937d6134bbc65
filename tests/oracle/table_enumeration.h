// Exact probabilities of contingency tables by visiting every table with the same margins.
#pragma once

#include <vector>

#include "inference/formula/contingency_table.h"

namespace tov::oracle {

/// Cells of a table, row by row.
using Rows = std::vector<std::vector<int>>;
ContingencyTable table_of(Rows const& rows);

/// Probability, given the allele counts, of a table of genotypes no more probable than the observed one.
double exact_hardy_weinberg(ContingencyTable const& observed);
/// Probability, given the margins, of a two-way table no more probable than the observed one.
double exact_two_way(ContingencyTable const& observed);

}  // namespace tov::oracle
