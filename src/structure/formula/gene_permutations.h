/// Permutations of gene copies with the sums that the tests of an analysis of molecular variance take of them.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "structure/formula/gene_vector.h"
#include "structure/formula/pair_sums.h"
#include "structure/formula/within_sums.h"

namespace tov {

/// Which copies of individuals are compared: none, those of each population with the populations added up, or those of
/// the whole vector in one sum.
enum class IndividualSums { none, by_population, whole_vector };

/// Sums of one permutation; what was not asked for is 0 or empty.
struct PermutedSums {
    double W = 0.0;                       ///< within terms
    double I = 0.0;                       ///< sum within individuals
    std::span<double const> S;            ///< undivided within sums, one a population
    std::span<double const> individuals;  ///< sums within individuals, one a population
};

/// Sum within individuals of a gene vector, population after population, and its parts.
///
/// @param by_population  receives the parts.
[[nodiscard]] double individual_sums(PairDistances const& distances, std::span<GeneSlice const> slices,
                                     std::span<int const> genes, std::span<double> by_population) noexcept;

/// The permutations of one test, as permutation_p takes them: each goes on from the vector that the last one left.
///
/// All arguments are borrowed. Draws: those of `permute`, in the order of the permutations.
class GenePermutations {
public:
    /// @param within   null when no within sums are needed.
    /// @param genes    the vector that is permuted.
    /// @param value    called once a permutation, in their order; it must not draw.
    GenePermutations(PermutationScheme scheme, StructureSizes const& sizes, PairDistances const& distances,
                     std::span<GeneSlice const> slices, WithinSums* within, IndividualSums individuals,
                     std::span<int> genes, std::function<double(PermutedSums const&)> value);

    [[nodiscard]] int block() const noexcept { return within_ != nullptr ? within_->block() : 1; }
    void draw();
    void evaluate();
    [[nodiscard]] double value(int k);

private:
    [[nodiscard]] std::span<double> parts_of(int k) noexcept {
        return std::span(parts_).subspan(static_cast<std::size_t>(k) * slices_.size(), slices_.size());
    }

    PermutationScheme scheme_;
    StructureSizes const& sizes_;
    PairDistances const& distances_;
    std::span<GeneSlice const> slices_;
    WithinSums* within_;
    IndividualSums individuals_;
    std::span<int> genes_;
    std::function<double(PermutedSums const&)> value_;
    int drawn_ = 0;
    std::vector<double> I_;      ///< sum within individuals of each permutation of the block
    std::vector<double> parts_;  ///< the same by population
};

}  // namespace tov
