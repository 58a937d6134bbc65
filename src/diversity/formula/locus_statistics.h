// Statistics of one locus from its allele counts, and their means over loci.
#pragma once

#include <span>

namespace tov {

/// Unbiased expected heterozygosity m (1 - sum c^2 / m^2) / (m - 1) of m gene copies; 0 for m <= 1 (Nei 1978).
[[nodiscard]] double expected_heterozygosity(std::span<double const> counts) noexcept;

/// Number of alleles over the range of their sizes plus 1 (Garza and Williamson 2001).
[[nodiscard]] double garza_williamson_ratio(int alleles, double range) noexcept;

/// Mean and deviation of one column over the loci that enter.
struct ColumnMean {
    double mean = 0.0;
    double sd = 0.0;
};

/// sd = sqrt((sum of squares / m - mean^2) m / (m - 1)), 0 when that is negative by rounding.
///
/// Fewer than two values, or a sample of fewer than two loci: the mean is the sum, the deviation 0.
/// @param values  values of the loci that enter.
/// @param loci    loci of the sample.
[[nodiscard]] ColumnMean mean_over_loci(std::span<double const> values, int loci) noexcept;

}  // namespace tov
