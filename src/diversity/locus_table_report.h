// The per-locus table of a sample as text.
#pragma once

#include <iosfwd>

namespace tov {

struct LocusTable;

/// What the table shows.
struct LocusTableForm {
    bool genotypes;  ///< a column of observed heterozygosities
    bool sizes;      ///< columns of allelic range and Garza-Williamson ratio
    bool rows;       ///< a row for each polymorphic locus
    bool means;      ///< the rows of means and deviations over polymorphic loci
};

void print_locus_table(std::ostream& out, LocusTable const& table, LocusTableForm const& form);

}  // namespace tov
