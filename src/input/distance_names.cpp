// Names of the distance methods as documents show them.
#include "input/distance_names.h"

#include <array>
#include <cstddef>

#include <ostream>

#include "input/settings.h"
#include "output/glbobj.h"

namespace tov {

std::string_view distance_method_name(TDataType type, int method) {
    switch (type) {
        case DNA:
            if (method >= 0 && method < 7) return DistanceNames[static_cast<std::size_t>(method)];
            break;
        case RFLP:
            if (method == 0) return DistanceNames[0];
            if (method == 1) return DistanceNames[3];
            break;
        case MICROSAT:
            if (method == 0) return DistanceNames[7];
            if (method == 1) return DistanceNames[8];
            break;
        case STANDARD:
        case FREQUENCY:
            if (method == 0) return DistanceNames[0];
            break;
    }
    return "Pairwise differences";
}

void settings::print_distance_method(std::ostream& out, int method) const {
    out << distance_method_name(DataType, method) << '\n';
}

std::string_view distance_method_reference(TDataType type, int method) {
    static constexpr std::array<std::string_view, 7> dna = {
        "", "jukes_cantor1969", "kimura1980", "", "tajima_nei1984", "tamura1992", "tamura_nei1993"};
    if (type != DNA || method < 0 || method >= static_cast<int>(dna.size())) return {};
    return dna[static_cast<std::size_t>(method)];
}

}  // namespace tov
