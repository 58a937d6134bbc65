// The AMOVA locus by locus.
#pragma once

#include "input/profile.h"
#include "model/project_view.h"
#include "structure/amova.h"
#include "structure/amova_table.h"
#include "structure/formula/locus_distance.h"

namespace tov {

class TLocus;

/// What the alleles of a locus are for its distances, by data type and distance method.
[[nodiscard]] AlleleKind allele_kind(TDataType type, int method) noexcept;

/// Alleles of one locus over the samples of a structure.
struct OneLocus {
    AmovaInput input;       ///< sizes, distances and gene copies, missing data left out
    int empty_sample = -1;  ///< a sample without data: the locus can't be used
};

/// Gathers the alleles of one locus: the gene copies of every population of the structure in the order of its list in
/// use, less those with missing data. Individuals stay whole (both copies or none) for genotypes whose phase is
/// unknown, or when the individual level is included.
[[nodiscard]] OneLocus build_one_locus(ProjectView const& view, int locus);

/// Runs the AMOVA on each locus by itself and prints the tables; leaves the results in the loci of the database.
void locus_by_locus_amova(ProjectView const& view);

}  // namespace tov
