// Statistics of one locus from its allele counts, and their means over loci.
#include "diversity/formula/locus_statistics.h"

#include <cmath>

namespace tov {

double expected_heterozygosity(std::span<double const> counts) noexcept {
    double m = 0.0;
    double squares = 0.0;
    for (double const c : counts) {
        m += c;
        squares += c * c;
    }
    return m > 1.0 ? m * (1.0 - squares / (m * m)) / (m - 1.0) : 0.0;
}

double garza_williamson_ratio(int alleles, double range) noexcept { return alleles / (range + 1.0); }

ColumnMean mean_over_loci(std::span<double const> values, int loci) noexcept {
    double sum = 0.0;
    double squares = 0.0;
    for (double const x : values) {
        sum += x;
        squares += x * x;
    }
    if (values.size() < 2 || loci < 2) {
        return {sum, 0.0};
    }
    double const m = static_cast<double>(values.size());
    double const mean = sum / m;
    double const variance = (squares / m - mean * mean) * m / (m - 1.0);
    return {mean, variance > 0.0 ? std::sqrt(variance) : 0.0};
}

}  // namespace tov
