// Plain loops that benchmarks are held against.
#include "floors.h"

#include <algorithm>
#include <cmath>

#include "base/random.h"

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

double tree_draws_and_logarithms(int n) noexcept {
    double sum = 0.0;
    for (int i = 1; i < n; ++i) {
        sum += std::log(1.0 - uniform());
    }
    for (int i = 1; i < n; ++i) {
        sum += uniform();
        sum += uniform();
    }
    return sum;
}

double wander_draws_and_logarithms(long events, long draws) noexcept {
    double sum = 0.0;
    for (long i = 0; i < events; ++i) {
        sum += std::log(1.0 - uniform());
    }
    for (long i = events; i < draws; ++i) {
        sum += uniform();
    }
    return sum;
}

double draws_and_scans(int const* steps, std::size_t draws, double const* table, std::size_t size) noexcept {
    double total = 0.0;
    for (std::size_t d = 0; d < draws; ++d) {
        total += uniform();
        double sum = 0.0;
        double const* const end = table + size;
        for (int i = 1; i <= steps[d]; ++i) {
            sum += end[-i] / i;
        }
        total += sum;
    }
    return total;
}

double share_pairs(std::int32_t const* pairs, std::size_t n, double const* freq, double* gain) noexcept {
    double sum = 0.0;
    for (std::size_t g = 0; g < n; ++g) {
        std::int32_t const first = pairs[2 * g];
        std::int32_t const second = pairs[2 * g + 1];
        double const x = freq[first] * freq[second];
        sum += x;
        gain[second] += x;
        gain[first] += x;
    }
    return sum;
}

double draws_and_look_ups(Ran3State& generator, int const* cells, int n, long steps, long draws,
                          int look_ups) noexcept {
    long sum = 0;
    double rest = 0.0;
    int const drawn = static_cast<int>(std::min<long>(look_ups, draws / steps));
    long const more = draws - steps * drawn;  // above the first draws of the steps
    long const each = drawn < look_ups ? 0 : more / steps;
    for (long s = 0; s < steps; ++s) {
        int place = 0;
        for (int k = 0; k < drawn; ++k) {
            place = static_cast<int>(n * generator.draw());
            sum += cells[place];
        }
        for (int k = drawn; k < look_ups; ++k) sum += cells[n - 1 - place];
        for (long k = 0; k < each; ++k) rest += generator.draw();
    }
    for (long k = each * steps; k < more; ++k) rest += generator.draw();
    return static_cast<double>(sum) + rest;
}

}  // namespace tov::floors
