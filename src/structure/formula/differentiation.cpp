// Exact test of population differentiation: Markov chains on tables of haplotypes by samples.
#include "structure/formula/differentiation.h"

#include <algorithm>

namespace tov {

DifferentiationPlan::DifferentiationPlan(long asked) noexcept : steps(asked) {
    constexpr long long_chain = 50000;
    constexpr long short_chain = 20000;
    if (asked < 1) return;
    steps = std::max(asked, short_chain);
    batch_length = asked > long_chain ? 10000 : asked < short_chain ? 2000 : 5000;
    batches = steps / batch_length;
}

namespace {

template <auto step>
ChainOutcome walk(ContingencyTable const& observed, ChainPlan const& plan, EarlyEnd const& early,
                  std::function<bool()> const& is_stopped, std::function<void(long)> const& batch_ended) {
    ContingencyTable table = observed;
    DrawBlock draws(chain_generator());
    return restarted_chain(
        plan, early,
        [&] {
            std::copy(observed.cells.begin(), observed.cells.end(), table.cells.begin());
            return is_stopped && is_stopped() ? BatchStart::stopped : BatchStart::ready;
        },
        StepOf<step>{TableWalk(table), draws},
        [&] {
            if (batch_ended) batch_ended(plan.per_batch);
            return true;
        });
}

}  // namespace

ChainOutcome test_differentiation(ContingencyTable const& observed, DifferentiationChain chain,
                                  DifferentiationPlan const& plan, long burn_in, double precision,
                                  std::function<bool()> const& is_stopped,
                                  std::function<void(long)> const& batch_ended) {
    if (plan.batches > 0 && (observed.rows < 2 || observed.columns < 2)) {
        ChainOutcome untested;
        untested.p = -1.0;
        untested.sd = 1.0;
        untested.failed = true;
        return untested;
    }
    ChainPlan lengths;
    lengths.burn_in = burn_in;
    lengths.batches = plan.batches;
    lengths.per_batch = plan.batch_length;
    if (chain == DifferentiationChain::pair) {
        return walk<two_row_step>(observed, lengths, {precision, false}, is_stopped, batch_ended);
    }
    return walk<two_way_step>(observed, lengths, {precision, true}, is_stopped, batch_ended);
}

}  // namespace tov
