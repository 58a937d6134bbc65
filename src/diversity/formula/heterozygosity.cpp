// Homozygosity, gene diversity and its deviation from haplotype counts.
#include "diversity/formula/heterozygosity.h"

#include <algorithm>
#include <cmath>

namespace tov {

FrequencySums frequency_sums(std::span<double const> counts, double n) noexcept {
    FrequencySums sums;
    for (double const f : counts) {
        double const p = f >= 1.0 ? f / n : f;
        sums.squares += p * p;
        sums.cubes += p * p * p;
    }
    return sums;
}

GeneDiversity gene_diversity(double n, double k, double F) noexcept {
    if (n <= 1.0) {
        return {1.0, 0.0};
    }
    if (k == n) {
        return {0.0, 1.0};
    }
    double const h = std::min(1.0, (1.0 - F) * n / (n - 1.0));
    return {1.0 - h, h};
}

double gene_diversity_sd(double n, FrequencySums const& s) noexcept {
    if (n <= 1.0) {
        return 0.0;
    }
    double const F = s.squares;
    return std::sqrt(2.0 / ((n - 1.0) * n) * (2.0 * (n - 2.0) * (s.cubes - F * F) + F - F * F));
}

PhenotypeHeterozygosity phenotype_heterozygosity(double heterozygotes, double homozygotes,
                                                 std::span<double const> haplotype_counts) noexcept {
    PhenotypeHeterozygosity r;
    r.heterozygotes = heterozygotes;
    r.homozygotes = homozygotes;
    double const m = heterozygotes + homozygotes;
    if (m <= 0.0) {
        return r;
    }
    double squares = 0.0;
    for (double const c : haplotype_counts) {
        squares += c * c;
    }
    r.observed = heterozygotes / m;
    if (2.0 * m != 1.0) {
        r.expected = 2.0 * m * (1.0 - squares / (4.0 * m * m)) / (2.0 * m - 1.0);
    }
    return r;
}

}  // namespace tov
