// Exact test of population differentiation: Markov chains on tables of haplotypes by samples.
#include "structure/formula/differentiation.h"

namespace tov {

DifferentiationPlan::DifferentiationPlan(long steps) noexcept {
    constexpr long long_chain = 50000;
    constexpr long short_chain = 20000;
    if (steps < 1) return;
    batch_length = steps > long_chain ? 10000 : steps < short_chain ? 2000 : 5000;
    batches = (steps < short_chain ? short_chain : steps) / batch_length;
}

namespace {

template <class Step>
ChainOutcome walk(ContingencyTable const& observed, ChainPlan const& plan, EarlyEnd const& early,
                  std::function<bool()> const& is_stopped, std::function<void(long)> const& batch_ended,
                  Step&& step) {
    ContingencyTable table;
    LnTable const& ln = ln_table(observed.total() + 2);
    Ran3State& generator = chain_generator();
    return restarted_chain(
        plan, early,
        [&] {
            table = observed;
            return is_stopped && is_stopped() ? BatchStart::stopped : BatchStart::ready;
        },
        [&] { return step(table, ln, generator).ln_ratio; },
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
        return walk(observed, lengths, {precision, false}, is_stopped, batch_ended,
                    [](ContingencyTable& t, LnTable const& ln, Ran3State& g) { return two_row_step(t, ln, g); });
    }
    return walk(observed, lengths, {precision, true}, is_stopped, batch_ended,
                [](ContingencyTable& t, LnTable const& ln, Ran3State& g) { return two_way_step(t, ln, g); });
}

}  // namespace tov
