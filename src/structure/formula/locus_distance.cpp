// Distances between the alleles of one locus.
#include "structure/formula/locus_distance.h"

#include <string>

#include "base/numtext.h"

namespace tov {

namespace {

double distance_of(std::string_view a, std::string_view b, AlleleKind kind, SiteWeights const& weights, char missing) {
    switch (kind) {
        case AlleleKind::nucleotide:
            return pairwise_difference(count_pair(a, b, {}, missing), weights).distance;
        case AlleleKind::restriction:
            return rflp_difference(count_rflp_pair(a, b, {}, missing), weights.deletion).distance;
        case AlleleKind::size: {
            double const x = my_atof(std::string(a).c_str()) - my_atof(std::string(b).c_str());
            return x * x;
        }
        case AlleleKind::label:
            break;
    }
    return a == b ? 0.0 : 1.0;
}

}  // namespace

TriMat allele_distances(std::span<std::string_view const> names, AlleleKind kind, SiteWeights const& weights,
                        char missing) {
    int const k = static_cast<int>(names.size());
    TriMat m(k);
    for (int i = 0; i < k; ++i) {
        for (int j = 0; j < i; ++j) {
            m.set_data(distance_of(names[i], names[j], kind, weights, missing), i, j);
        }
    }
    return m;
}

}  // namespace tov
