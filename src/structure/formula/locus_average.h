/// Fixation indices averaged over loci as ratios of sums of variance components, and their bootstrap over loci.
#pragma once

#include <array>
#include <span>
#include <vector>

namespace tov {

/// A fixation index as sums of components: components [num_first, num_last) over [num_first, den_last).
struct ComponentRatio {
    int num_first = 0;
    int num_last = 1;
    int den_last = 2;
};

/// The index for components v; 0 when the denominator's absolute value is not above 0.
[[nodiscard]] double component_ratio(ComponentRatio const& ratio, std::span<double const> v) noexcept;

/// 20000 bootstrap values of an index over loci, ascending.
///
/// @param components  one row of four components a locus.
/// Draws: L uniforms a replicate (bootstrap_index).
/// Source: Weir & Cockerham 1984, Evolution 38: 1358-1370; Efron 1982.
[[nodiscard]] std::vector<double> bootstrap_over_loci(std::span<std::array<double, 4> const> components,
                                                      ComponentRatio const& ratio, int replicates = 20000);

/// Shares of permutations whose mean over loci is beyond, and within 1e-10 of, the observed mean.
struct AverageTest {
    int beyond = 0;
    int equal = 0;
    double p = 0.0;  ///< (beyond + equal) / permutations
};

/// Test of a component averaged over loci.
///
/// @param null_values  per locus its null distribution in the order of permutation; shorter ones add nothing further.
/// @param observed     mean over loci of the observed component.
[[nodiscard]] AverageTest average_test(std::span<std::vector<double> const* const> null_values, double observed,
                                       bool below, int permutations);

}  // namespace tov
