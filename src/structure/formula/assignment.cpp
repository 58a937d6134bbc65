// Likelihood of a genotype in a sample.
#include "structure/formula/assignment.h"

namespace tov {

double genotype_log_likelihood(std::span<AllelePair const> genotype, std::span<double const> frequencies,
                               double floor_frequency) noexcept {
    double product = 1.0;
    for (AllelePair const& locus : genotype) {
        if (locus.first < 0 || locus.second < 0) {
            continue;
        }
        double f = frequencies[locus.first];
        double g = frequencies[locus.second];
        f = f < 1e-15 ? floor_frequency : f;
        g = g < 1e-15 ? floor_frequency : g;
        product *= f * g;
        if (locus.first != locus.second) {
            product *= 2.0;
        }
    }
    return std::log(product);
}

}  // namespace tov
