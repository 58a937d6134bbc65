/// Plain loops that benchmarks are held against, compiled at -O3 without contraction in a file of their own.
#pragma once

#include <cstddef>

namespace tov::floors {

/// Sum of n doubles: the cheapest walk over an array.
double sum_of(double const* values, std::size_t n) noexcept;

}  // namespace tov::floors
