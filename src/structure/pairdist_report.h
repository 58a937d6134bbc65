// What the distances between pairs of samples print.
#pragma once

#include "model/project_view.h"

namespace tov {

struct PairwiseResults;

/// The sections of all matrices that the settings ask for, with their tree entry.
void print_pairwise_distances(ProjectView const& view, PairwiseResults const& results);

}  // namespace tov
