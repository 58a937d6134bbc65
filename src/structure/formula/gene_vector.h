/// Permutations of the gene copies, individuals and populations of a structure.
#pragma once

#include <span>
#include <vector>

namespace tov {

/// Sizes of a structure: gene copies of its populations in number order, populations of its groups.
struct StructureSizes {
    std::vector<double> copies;       ///< np, one a population
    std::vector<int> group_size;      ///< populations of each group
    std::vector<double> group_copies; ///< Ng, one a group
    double total = 0.0;               ///< N

    StructureSizes() = default;
    StructureSizes(std::vector<double> pop_copies, std::vector<int> pops_of_group);
    [[nodiscard]] int populations() const noexcept { return static_cast<int>(copies.size()); }
    [[nodiscard]] int groups() const noexcept { return static_cast<int>(group_size.size()); }
};

/// What a permutation exchanges, and where.
enum class PermutationScheme {
    PHAPAG,  ///< haplotypes among populations among groups
    PHAPWG,  ///< haplotypes among populations within groups
    PHAIWP,  ///< haplotypes among individuals within populations
    PIAPWG,  ///< individuals among populations within groups
    PIAPAG,  ///< individuals among populations among groups
};

/// For i from hi down to stop: j = lo + trunc((i - lo) r), r a uniform rounded to single precision; swaps v[i], v[j].
///
/// kept on purpose: the range is i - lo, so that v[i] never keeps its own entry (but for rounding).
/// Draws: hi - stop + 1 (none when hi < stop).
void permute_genes(std::span<int> v, int hi, int lo, int stop) noexcept;

/// The same with r in double precision and pairs (v[2i], v[2i+1]) in place of entries.
void permute_indiv(std::span<int> v, int hi, int lo, int stop) noexcept;

/// One permutation of the gene vector, which goes on from where the last one left it.
///
/// Draws: PHAPAG N - n0; PHAPWG sum over groups of Ng - n of the first population; PHAIWP sum over populations of
/// np - 2; PIAPWG and PIAPAG half of the first two.
/// Source: Cockerham 1973, Genetics 74: 679-700; Weir 1996, Genetic Data Analysis II.
void permute(PermutationScheme scheme, StructureSizes const& sizes, std::span<int> v) noexcept;

/// PPAG: for i from the last population down to the first one behind the first group: swaps i and trunc(i r).
/// Draws: populations - size of the first group.
void permute_populations(std::span<int> order, int first_group_size) noexcept;

}  // namespace tov
