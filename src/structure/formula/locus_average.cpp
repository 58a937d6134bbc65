// Averages over loci.
#include "structure/formula/locus_average.h"

#include <algorithm>
#include <cmath>

#include "base/random.h"

namespace tov {

double component_ratio(ComponentRatio const& ratio, std::span<double const> v) noexcept {
    double num = 0.0, den = 0.0;
    for (int k = ratio.num_first; k < ratio.den_last; ++k) {
        den += v[k];
        if (k < ratio.num_last) {
            num += v[k];
        }
    }
    return std::fabs(den) > 0.0 ? num / den : 0.0;
}

std::vector<double> bootstrap_over_loci(std::span<std::array<double, 4> const> components, ComponentRatio const& ratio,
                                        int replicates) {
    int const L = static_cast<int>(components.size());
    std::vector<int> index(components.size());
    std::vector<double> values;
    values.reserve(replicates);
    for (int r = 0; r < replicates; ++r) {
        bootstrap_index(index.data(), L);
        std::array<double, 4> sums{};
        for (int const locus : index) {
            for (int k = 0; k < 4; ++k) {
                sums[k] += components[locus][k];
            }
        }
        values.push_back(component_ratio(ratio, sums));
    }
    std::sort(values.begin(), values.end());
    return values;
}

AverageTest average_test(std::span<std::vector<double> const* const> null_values, double observed, bool below,
                         int permutations) {
    AverageTest test;
    for (int i = 0; i < permutations; ++i) {
        double sum = 0.0;
        for (auto const* const values : null_values) {
            if (i < static_cast<int>(values->size())) {
                sum += (*values)[i];
            }
        }
        double const mean = sum / static_cast<double>(null_values.size());
        if (std::fabs(mean - observed) <= 1e-10) {
            ++test.equal;
        } else if (below ? mean < observed : mean > observed) {
            ++test.beyond;
        }
    }
    if (permutations > 0) {
        test.p = (test.beyond + test.equal) / static_cast<double>(permutations);
    }
    return test;
}

}  // namespace tov
