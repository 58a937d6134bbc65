// Homozygosity, gene diversity and its deviation from haplotype counts.
#pragma once

#include <span>

namespace tov {

/// Sums of powers of the frequencies of a sample's haplotypes.
struct FrequencySums {
    double squares = 0.0;  ///< F, the sum of p^2
    double cubes = 0.0;    ///< the sum of p^3
};

/// @param counts  counts f of the haplotypes; f >= 1 gives p = f / n, a smaller f is a relative frequency itself.
/// @param n       gene copies.
[[nodiscard]] FrequencySums frequency_sums(std::span<double const> counts, double n) noexcept;

/// Homozygosity and heterozygosity (gene diversity) of a sample; they add up to 1.
struct GeneDiversity {
    double homozygosity;
    double heterozygosity;
};

/// Unbiased gene diversity (1 - F) n / (n - 1), at most 1 (Nei 1987, 8.4).
///
/// n <= 1 gives heterozygosity 0; k = n, all copies distinct, gives 1.
[[nodiscard]] GeneDiversity gene_diversity(double n, double k, double F) noexcept;

/// Deviation of the gene diversity over sampling (Nei 1987, 8.12); 0 for n <= 1. The root is not guarded.
[[nodiscard]] double gene_diversity_sd(double n, FrequencySums const& sums) noexcept;

/// Counts of a list of phenotypes.
struct PhenotypeHeterozygosity {
    double heterozygotes = 0.0;
    double homozygotes = 0.0;
    double observed = 0.0;  ///< heterozygotes over individuals
    double expected = 0.0;  ///< 2 m (1 - S / (4 m^2)) / (2 m - 1)
};

/// @param haplotype_counts  copies of each distinct haplotype, two an individual; S is the sum of their squares.
/// No individuals give zeros.
[[nodiscard]] PhenotypeHeterozygosity phenotype_heterozygosity(double heterozygotes, double homozygotes,
                                                               std::span<double const> haplotype_counts) noexcept;

}  // namespace tov
