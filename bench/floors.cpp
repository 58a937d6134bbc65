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

double sum_of_mt19937_64(std::mt19937_64& engine, int n) noexcept {
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        sum += static_cast<double>(engine() >> 11) * 0x1.0p-53;
    }
    return sum;
}

void count_different_bytes(char const* rows, std::size_t k, std::size_t n, int* counts) noexcept {
    for (std::size_t i = 0; i < k; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            char const* const a = rows + i * n;
            char const* const b = rows + j * n;
            int different = 0;
            for (std::size_t site = 0; site < n; ++site) {
                different += a[site] != b[site];
            }
            *counts++ = different;
        }
    }
}

}  // namespace tov::floors
