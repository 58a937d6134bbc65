/// Distances between the alleles of one locus.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "base/trimat.h"
#include "diversity/formula/nucleotide_distance.h"

namespace tov {

/// What an allele of a locus is, for its distance to another one.
enum class AlleleKind {
    nucleotide,   ///< weighted difference of two sites
    restriction,  ///< difference, deletions by weight
    size,         ///< squared difference of repeat numbers
    label,        ///< 0 or 1
};

/// k x k triangle of distances between alleles, row i and column j < i.
///
/// @param names    k names; sizes are read as numbers.
/// @param missing  missing-data character of the sites.
[[nodiscard]] TriMat allele_distances(std::span<std::string_view const> names, AlleleKind kind,
                                      SiteWeights const& weights, char missing);

}  // namespace tov
