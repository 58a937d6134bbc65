/// Likelihood of a genotype in a sample under Hardy-Weinberg and linkage equilibrium.
#pragma once

#include <cmath>
#include <span>
#include <vector>

namespace tov {

/// The two alleles of an individual at one locus, as positions in a sample's array of frequencies; below 0: missing.
struct AllelePair {
    int first = -1;
    int second = -1;
};

/// Frequency of an allele that stays undetected in 2m gene copies with probability 0.95; 1 for m = 0.
[[nodiscard]] inline double undetected_frequency(int m) noexcept {
    return 1.0 - std::exp(std::log(0.95) / (2.0 * m));
}

/// ln of the product over loci of f g, doubled where the alleles differ; a missing allele leaves its locus out.
///
/// @param frequencies  of one sample; one below 1e-15 counts as `floor_frequency`.
/// kept on purpose: the product is one double, so that hundreds of rare alleles underflow to minus infinity.
/// Source: Paetkau et al. 1995, Mol. Ecol. 4: 347-354; Waser & Strobeck 1998, Trends Ecol. Evol. 13: 43-44.
[[nodiscard]] double genotype_log_likelihood(std::span<AllelePair const> genotype, std::span<double const> frequencies,
                                             double floor_frequency) noexcept;

}  // namespace tov
