// The genetic structure block of a run, and what it asks of the project.
#pragma once

#include <functional>

#include "model/project_view.h"

namespace tov {

/// What the genetic structure calculations need from the project around them.
struct StructureActions {
    std::function<void()> convert_genotypes;       ///< genotypes to haplotypes and allele vectors, once a run
    std::function<void()> convert_repeat_lengths;  ///< microsatellite alleles to numbers of repeats
    std::function<int(int, double)> calc_dist_matrix;
    std::function<void()> print_distance_matrix;
};

/// Project::GenStructCalculations: AMOVA, distances between samples, locus by locus, exact tests, Mantel.
///
/// Values of the settings that it changes come back, except that the AMOVA and pairwise bits stay cleared where the
/// data don't allow them.
void gen_struct_calculations(ProjectView const& view, StructureActions const& actions);

}  // namespace tov
