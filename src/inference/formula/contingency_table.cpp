// Tables of counts, and exact sums of logarithms of whole numbers: what the Markov chains on tables work with.
#include "inference/formula/contingency_table.h"

#include <cmath>

namespace tov {

namespace {

constexpr std::int64_t largest_entry = std::int64_t{1} << 20;

}  // namespace

FixedLn LnTable::rounded(std::int64_t n) noexcept {
    if (n < 1) return 0;
    return std::llround(std::log(static_cast<double>(n)) * static_cast<double>(fixed_ln_one));
}

void LnTable::reach(std::int64_t n) {
    auto const last = static_cast<std::size_t>(std::clamp<std::int64_t>(n, 0, largest_entry));
    if (last < values_.size()) return;
    std::size_t const size = std::min<std::size_t>(std::max(last + 1, 2 * values_.size()), largest_entry + 1);
    std::vector<std::uint32_t> smallest_prime(size, 0);
    values_.assign(size, 0);
    for (std::size_t i = 2; i < size; ++i) {
        if (smallest_prime[i] == 0) {
            values_[i] = rounded(static_cast<std::int64_t>(i));
            for (std::size_t multiple = i * i; multiple < size; multiple += i) {
                if (smallest_prime[multiple] == 0) smallest_prime[multiple] = static_cast<std::uint32_t>(i);
            }
        } else {
            std::size_t const p = smallest_prime[i];
            values_[i] = values_[p] + values_[i / p];
        }
    }
}

LnTable const& ln_table(std::int64_t n) {
    static LnTable table;
    table.reach(n);
    return table;
}

}  // namespace tov
