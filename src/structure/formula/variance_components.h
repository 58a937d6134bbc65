/// Analysis of molecular variance: degrees of freedom, mean squares, variance components and fixation indices of the
/// designs, and the statistics of their permutation tests.
///
/// Letters: N gene copies, Nu units (N, or N / 2 individuals), P populations, G groups; np, Ng gene copies of a
/// population and a group; S[p] the undivided within sum of a population, W = sum S[p] / np; T = sum over groups of the
/// sum over pairs within the group, divided by Ng; I the sum within individuals (half of each individual's distance).
/// Levels are lettered from the highest, a, downwards. All sums of squares are in gene copies.
/// Source: Cockerham 1973, Genetics 74: 679-700; Weir & Cockerham 1984, Evolution 38: 1358-1370;
/// Weir 1996, Genetic Data Analysis II.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "structure/formula/gene_vector.h"

namespace tov {

/// The observed table of a design. Unused levels are 0.
struct VarianceTable {
    int levels = 0;                   ///< 2, 3 or 4
    std::array<int, 4> df{};          ///< of the levels a, b, c, d
    std::array<double, 4> ssd{};      ///< sums of squared deviations
    std::array<double, 4> msd{};      ///< mean squares
    std::array<double, 4> variance{}; ///< components Va, Vb, Vc, Vd
    double ssd_total = 0.0;
    double v_total = 0.0;             ///< sum of the components; 1e-18 when that is 0
    double n = 0.0, n1 = 0.0, n2 = 0.0;  ///< coefficients n, n', n''
    double FST = 0.0, FSC = 0.0, FCT = 0.0, FIT = 0.0, FIS = 0.0;
    bool ill_defined = false;         ///< a level without degrees of freedom: nothing else is set

    [[nodiscard]] int df_total() const noexcept { return df[0] + df[1] + df[2] + df[3]; }
};

/// Sums over the groups for one arrangement of populations in groups.
struct GroupSums {
    std::vector<double> copies;  ///< Ng
    std::vector<double> terms;   ///< T(g)
    double T = 0.0;              ///< sum of T(g)
    double Q_over_N = 0.0;       ///< sum over groups of (sum of np^2) / Ng
    double Q = 0.0;              ///< sum of np^2
    double Z = 0.0;              ///< sum of Ng^2
    double n1_numerator = 0.0;   ///< sum of (2d - Ng) np^2 / (2 d Ng), d = trunc(Nu): designs with individuals
};

/// @param sums   populations by populations, lower triangle row by row (population_sums).
/// @param order  numbers of the populations, group after group.
/// @param units  trunc(Nu), for n1_numerator.
[[nodiscard]] GroupSums group_sums(StructureSizes const& sizes, std::span<double const> sums,
                                   std::span<int const> order, int units);
/// The same into an existing record, without allocation.
void group_sums_into(GroupSums& result, StructureSizes const& sizes, std::span<double const> sums,
                     std::span<int const> order, int units);

/// Sum of all elements of the triangle, row by row.
[[nodiscard]] double total_sum(std::span<double const> sums) noexcept;
/// W = sum S[p] / np in number order.
[[nodiscard]] double within_terms(std::span<double const> S, StructureSizes const& sizes) noexcept;

/// What a design's table is computed from.
struct AmovaSums {
    double total = 0.0;  ///< total_sum
    double W = 0.0;      ///< within_terms
    double I = 0.0;      ///< sum within individuals
    double Nu = 0.0;     ///< units
};

// --- Designs: observed tables ---
/// One group, populations, haplotypes: a among populations, b within.
[[nodiscard]] VarianceTable one_group_haplotypes(StructureSizes const& sizes, AmovaSums const& sums);
/// Groups, populations, haplotypes: a among groups, b among populations within groups, c within populations.
[[nodiscard]] VarianceTable groups_haplotypes(StructureSizes const& sizes, AmovaSums const& sums, GroupSums const& g);
/// One group, populations, individuals: a among populations, b among individuals, c within individuals.
[[nodiscard]] VarianceTable one_group_individuals(StructureSizes const& sizes, AmovaSums const& sums);
/// Groups, populations, individuals: four levels. A level without degrees of freedom gives inf or nan, not a refusal.
[[nodiscard]] VarianceTable groups_individuals(StructureSizes const& sizes, AmovaSums const& sums, GroupSums const& g);
/// One population of individuals: a among individuals, b within.
[[nodiscard]] VarianceTable one_population_individuals(AmovaSums const& sums);

// --- Indices of single populations ---
/// FST of each population from a table of one_group_haplotypes; 0 when the total variance is 0.
[[nodiscard]] std::vector<double> population_fst(VarianceTable const& table, StructureSizes const& sizes,
                                                 std::span<double const> S, double Nu);
/// Value that stands for a FIS that is not defined.
inline constexpr double undefined_fis = -9.99999;
/// FIS of one population: S / np and the sum within its individuals.
[[nodiscard]] double population_fis(double within_term, double within_individuals, double copies) noexcept;

// --- Statistics of the tests that rearrange populations among groups ---
/// Va of groups_haplotypes for a new arrangement; W stays as observed.
[[nodiscard]] double va_of_groups_haplotypes(VarianceTable const& observed, AmovaSums const& sums,
                                             GroupSums const& permuted);
/// Va of groups_individuals for a new arrangement; overwrites n, n', n'', SSD a and SSD b of `table`.
[[nodiscard]] double va_of_groups_individuals(VarianceTable& table, StructureSizes const& sizes, AmovaSums const& sums,
                                              GroupSums const& permuted);

}  // namespace tov
