/// Plain loops that benchmarks are held against, compiled at -O3 without contraction in a file of their own.
#pragma once

#include <cstddef>
#include <random>

namespace tov::floors {

/// Sum of n doubles: the cheapest walk over an array.
double sum_of(double const* values, std::size_t n) noexcept;

/// Sum of n numbers in [0, 1), each one draw of the engine: its upper 53 bits.
double sum_of_mt19937_64(std::mt19937_64& engine, int n) noexcept;

/// Number of differing bytes of every pair of k rows of n bytes, row-major; the counts go to k (k - 1) / 2 ints.
void count_different_bytes(char const* rows, std::size_t k, std::size_t n, int* counts) noexcept;

}  // namespace tov::floors
