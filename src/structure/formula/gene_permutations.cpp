// Permutations of gene copies with their sums.
#include "structure/formula/gene_permutations.h"

#include <utility>

#include "structure/formula/variance_components.h"

namespace tov {

double individual_sums(PairDistances const& distances, std::span<GeneSlice const> slices, std::span<int const> genes,
                       std::span<double> by_population) noexcept {
    double sum = 0.0;
    for (std::size_t p = 0; p < slices.size(); ++p) {
        by_population[p] =
            within_individuals(distances, genes.subspan(slices[p].begin, slices[p].end - slices[p].begin));
        sum += by_population[p];
    }
    return sum;
}

GenePermutations::GenePermutations(PermutationScheme scheme, StructureSizes const& sizes,
                                   PairDistances const& distances, std::span<GeneSlice const> slices,
                                   WithinSums* within, IndividualSums individuals, std::span<int> genes,
                                   std::function<double(PermutedSums const&)> value)
    : scheme_(scheme),
      sizes_(sizes),
      distances_(distances),
      slices_(slices),
      within_(within),
      individuals_(individuals),
      genes_(genes),
      value_(std::move(value)),
      I_(static_cast<std::size_t>(block()), 0.0),
      parts_(individuals == IndividualSums::by_population ? I_.size() * slices.size() : 0, 0.0) {}

void GenePermutations::draw() {
    permute(scheme_, sizes_, genes_);
    if (individuals_ == IndividualSums::whole_vector) {
        I_[drawn_] = within_individuals(distances_, genes_);
    } else if (individuals_ == IndividualSums::by_population) {
        I_[drawn_] = individual_sums(distances_, slices_, genes_, parts_of(drawn_));
    }
    if (within_ != nullptr) {
        within_->add(genes_);
    }
    ++drawn_;
}

void GenePermutations::evaluate() {
    if (within_ != nullptr) {
        within_->evaluate();
    }
    drawn_ = 0;
}

double GenePermutations::value(int k) {
    PermutedSums sums;
    sums.I = I_[k];
    if (within_ != nullptr) {
        sums.S = within_->sums(k);
        sums.W = within_terms(sums.S, sizes_);
    }
    if (individuals_ == IndividualSums::by_population) {
        sums.individuals = parts_of(k);
    }
    return value_(sums);
}

}  // namespace tov
