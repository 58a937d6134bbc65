// Markov chains on contingency tables: the steps, and the one scaffold of all tests that walk tables.
#include "inference/formula/contingency_chain.h"

#include <algorithm>
#include <cmath>

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

// --- Chains on the two kinds of tables ---

namespace {

template <auto step>
ChainOutcome walk(ContingencyTable& table, ChainPlan const& plan, int const* stop,
                  std::function<bool()> const& round) {
    DrawBlock draws(chain_generator());
    StepOf<step> const one_step{TableWalk(table), draws};
    auto const round_ended = [&round] { return !round || round(); };
    if (!stop) return interleaved_chain(plan, one_step, [] { return true; }, round_ended);
    return interleaved_chain(plan, one_step, [stop] { return *stop == 0; }, round_ended);
}

template <auto step>
ChainOutcome walk_batches(ContingencyTable& table, ChainPlan const& plan, EarlyEnd const& early,
                          std::function<bool()> const& ended) {
    std::vector<int> const observed = table.cells;
    DrawBlock draws(chain_generator());
    return restarted_chain(
        plan, early,
        [&] {
            std::copy(observed.begin(), observed.end(), table.cells.begin());
            return BatchStart::ready;
        },
        StepOf<step>{TableWalk(table), draws}, [&ended] { return !ended || ended(); });
}

}  // namespace

ChainOutcome walk_table(ContingencyTable& table, TableKind kind, ChainPlan const& plan, int const* stop,
                        std::function<bool()> const& round) {
    if (kind == TableKind::genotypes) return walk<hardy_weinberg_step>(table, plan, stop, round);
    return walk<two_way_step>(table, plan, stop, round);
}

ChainOutcome walk_table_in_batches(ContingencyTable& table, TableKind kind, ChainPlan const& plan,
                                   EarlyEnd const& early, std::function<bool()> const& ended) {
    if (kind == TableKind::genotypes) return walk_batches<hardy_weinberg_step>(table, plan, early, ended);
    return walk_batches<two_way_step>(table, plan, early, ended);
}

}  // namespace tov
