/// F-statistics and heterozygosity of one locus from the states of its gene copies, without haplotypes or documents.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "structure/formula/gene_vector.h"
#include "structure/formula/variance_components.h"

namespace tov {

/// Design of the analysis of molecular variance, one group or several being told by the sizes.
enum class FixationUnit {
    haplotypes,   ///< gene copies
    individuals,  ///< with the level of individuals: neighbouring copies belong together
    none,         ///< no design fits the data: all indices are 0
};

/// Distance between two states.
enum class StateDistance {
    equality,      ///< 0 or 1
    squared_size,  ///< (x - y)^2
    table,         ///< of states 0 to 2
};

/// Distances of states 0 to 2 for StateDistance::table, row-major.
using StateTable = std::array<double, 9>;

struct LocusFixation {
    double FST = 0.0;
    double FSC = 0.0;                  ///< several groups only
    double FCT = 0.0;                  ///< several groups only
    double mean_heterozygosity = 0.0;  ///< unbiased, weighted by gene copies
};

/// Computes locus after locus for one structure; storage is reused.
///
/// The values are those of the analysis of molecular variance of one-locus haplotypes: sums of squares from allele
/// counts are whole numbers and exact for equality and squared sizes.
class LocusFixationWalk {
public:
    LocusFixationWalk(StructureSizes sizes, FixationUnit unit, StateDistance distance, StateTable const& table = {});

    /// @param states  gene copies, population after population in the order of the structure.
    [[nodiscard]] LocusFixation compute(std::span<int const> states);

private:
    void count(std::span<int const> states);
    void sums_of_equality();
    void sums_of_sizes();
    void sums_of_table();
    [[nodiscard]] double distance_of(int x, int y) const noexcept;
    [[nodiscard]] double within_individuals(std::span<int const> states) const noexcept;
    [[nodiscard]] double mean_heterozygosity() const noexcept;
    [[nodiscard]] VarianceTable variances(std::span<int const> states);
    [[nodiscard]] double* row(std::size_t p) noexcept { return counts_.data() + p * alleles_; }
    [[nodiscard]] double const* row(std::size_t p) const noexcept { return counts_.data() + p * alleles_; }

    StructureSizes sizes_;
    FixationUnit unit_;
    StateDistance distance_;
    StateTable table_;
    std::vector<int> order_;               ///< populations 0, 1, ..., for group_sums
    std::vector<std::size_t> ends_;        ///< end of each population's copies
    std::vector<int> allele_of_;           ///< by state less the smallest one; -1 for states that don't occur
    std::vector<int> state_of_;            ///< by allele
    std::vector<double> counts_;           ///< populations by alleles
    std::vector<double> population_sums_;  ///< lower triangle of sums over pairs
    std::vector<double> within_;           ///< S[p]
    std::vector<std::pair<double, double>> moments_;  ///< sum and sum of squares of the sizes of each population
    std::size_t alleles_ = 0;
    GroupSums groups_;
};

}  // namespace tov
