// The range of allele sizes of a locus over several samples.
#pragma once

#include <algorithm>
#include <optional>
#include <span>

#include "diversity/popgen.h"

namespace tov {

/// Largest less smallest allele size of a locus in all samples together; none without a gene copy.
///
/// @param samples  with their tables of loci made; a sample without the locus is passed over.
[[nodiscard]] inline std::optional<double> pooled_range(std::span<PopGenetics const* const> samples, int locus) {
    bool found = false;
    double low = 0.0, high = 0.0;
    for (PopGenetics const* const sample : samples) {
        LocusTable const& t = sample->locus_table();
        auto const l = static_cast<std::size_t>(locus);
        if (l < t.copies.size() && l < t.min_size.size() && t.copies[l] > 0) {
            low = found ? std::min(low, static_cast<double>(t.min_size[l])) : t.min_size[l];
            high = found ? std::max(high, static_cast<double>(t.max_size[l])) : t.max_size[l];
            found = true;
        }
    }
    return found ? std::optional<double>(high - low) : std::nullopt;
}

}  // namespace tov
