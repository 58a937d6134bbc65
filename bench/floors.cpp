// Plain loops that benchmarks are held against.
#include "floors.h"

namespace tov::floors {

double sum_of(double const* values, std::size_t n) noexcept {
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        sum += values[i];
    }
    return sum;
}

}  // namespace tov::floors
