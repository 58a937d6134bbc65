// Markov chains on contingency tables: the steps, and the one scaffold of all tests that walk tables.
#include "inference/formula/contingency_chain.h"

#include <algorithm>

namespace tov {

Ran3State& chain_generator() noexcept {
    if (random_state.ran3.iff == 0) random_state.ran3.seed(1);
    return random_state.ran3;
}

ChainPlan ChainPlan::square(long steps, long burn_in, FixedLn limit) noexcept {
    constexpr long most_steps = 1000000000000000L;
    ChainPlan plan;
    plan.burn_in = burn_in;
    plan.limit = limit;
    if (steps < 1) return plan;
    steps = std::min(steps, most_steps);
    plan.batches = static_cast<long>(std::sqrt(static_cast<double>(steps)));
    plan.per_batch = steps / plan.batches + 1;
    return plan;
}

double batch_deviation(std::span<double const> shares, std::size_t n, double p) noexcept {
    if (n < 2) return 0.0;
    double sum = 0.0;
    for (std::size_t b = 0; b < n; ++b) sum += (shares[b] - p) * (shares[b] - p);
    auto const size = static_cast<double>(n);
    return std::sqrt(sum / ((size - 1.0) * size));
}

}  // namespace tov
