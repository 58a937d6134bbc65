// Exact test of population differentiation: Markov chains on tables of haplotypes by samples.
#pragma once

#include <functional>

#include "inference/formula/contingency_chain.h"

namespace tov {

/// One Metropolis step on a table of two rows, which keeps the sums of its rows and columns.
///
/// @param t  2 rows, columns >= 2.
/// Draws: column i, column j (again while j = i), then those of margin_step on (0, i), (1, j).
/// Source: Raymond and Rousset 1995.
[[gnu::always_inline]] inline ChainStep two_row_step(TableWalk const& t, DrawBlock& draws) noexcept {
    draws.require(step_look_ahead);
    double const* next = draws.ahead();
    int const i = index_of(*next++, t.columns());
    int const j = take_other_index(draws, next, t.columns(), i);
    return margin_step(t, 0, i, 1, j, draws, next);
}

/// Lengths of a test.
struct DifferentiationPlan {
    long steps = 0;         ///< asked, raised to 20000; those of whole batches are made
    long batch_length = 0;  ///< 10000 above 50000 steps, 2000 below 20000 (then 20000 steps are made), otherwise 5000
    long batches = 0;       ///< whole batches in the steps; none when no steps are asked

    explicit DifferentiationPlan(long asked) noexcept;
};

/// Which chain walks the table.
enum class DifferentiationChain {
    pair,    ///< two rows; ends early when the sd is below the precision
    samples  ///< any number of rows, drawn too; ends early when the sd is not above the precision
};

/// Share of tables with the margins of `observed` that are not more probable than it.
///
/// One chain a batch, each from the observed table. Fewer than two rows or columns have no test: `failed`, P -1, sd 1.
/// Without steps nothing is done: P 1 and sd 1 after 0 steps.
///
/// @param burn_in      steps before each batch.
/// @param precision    sd at which the chain may end, from the third batch on.
/// @param is_stopped   asked before each batch.
/// @param batch_ended  called after each batch with its length; not after the one that ends the chain early.
/// Draws: those of two_row_step or two_way_step, burn-in included.
[[nodiscard]] ChainOutcome test_differentiation(ContingencyTable const& observed, DifferentiationChain chain,
                                                DifferentiationPlan const& plan, long burn_in, double precision,
                                                std::function<bool()> const& is_stopped = {},
                                                std::function<void(long)> const& batch_ended = {});

}  // namespace tov
