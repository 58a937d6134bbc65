/// Plain loops that benchmarks are held against, compiled at -O3 without contraction in a file of their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

#include "base/random.h"

namespace tov::floors {

/// Sum of n doubles: the cheapest walk over an array.
double sum_of(double const* values, std::size_t n) noexcept;

/// Sum of n numbers in [0, 1), each one draw of the engine: its upper 53 bits.
double sum_of_mt19937_64(std::mt19937_64& engine, int n) noexcept;

/// Number of differing bytes of every pair of k rows of n bytes, row-major; the counts go to k (k - 1) / 2 ints.
void count_different_bytes(char const* rows, std::size_t k, std::size_t n, int* counts) noexcept;

/// The draws and logarithms of a coalescent tree of n tips: n - 1 of either for the times, 2 (n - 1) draws for the
/// shape.
double tree_draws_and_logarithms(int n) noexcept;

/// The draws and logarithms of a tree of lineages that wander among demes: a draw with its logarithm for each
/// of `events`, and the rest of `draws` bare.
double wander_draws_and_logarithms(long events, long draws) noexcept;

/// A draw for each of `draws` scans, and for each of its steps a term of the table divided by the number of the step.
///
/// @param steps  lengths of the scans, each at most `size`.
/// @param table  `size` terms.
double draws_and_scans(int const* steps, std::size_t draws, double const* table, std::size_t size) noexcept;

/// Products of n pairs of frequencies, each added to their sum and to the gains of both; a pair is two indices side by
/// side. The genotypes of an EM iteration in their barest form.
double share_pairs(std::int32_t const* pairs, std::size_t n, double const* freq, double* gain) noexcept;

/// Sum over `steps` steps that together spend `draws` numbers of the generator, each with `look_ups` look-ups of a
/// table of `n` cells at places that draws choose; draws beyond the look-ups are spent in equal parts, the rest at the
/// end. Steps with fewer draws than look-ups look twice at a place.
double draws_and_look_ups(Ran3State& generator, int const* cells, int n, long steps, long draws, int look_ups) noexcept;

}  // namespace tov::floors
