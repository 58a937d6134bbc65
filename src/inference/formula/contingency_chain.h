// Markov chains on contingency tables: the steps, and the one scaffold of all tests that walk tables.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "base/draw_block.h"
#include "base/random.h"
#include "inference/formula/contingency_table.h"

namespace tov {

// --- Steps ---

/// What a step did to the table.
struct ChainStep {
    double ratio = 1.0;    ///< probability of the new table relative to the old one; 1 for a table left as it was
    FixedLn ln_ratio = 0;  ///< its logarithm, exactly additive
};

/// The process-wide generator, seeded if nothing has seeded it.
[[nodiscard]] Ran3State& chain_generator() noexcept;

/// A table on its walk: where its cells are, and the logarithms of the process up to its sum + 2.
class TableWalk {
public:
    /// @param table  borrowed; its shape must not change meanwhile.
    explicit TableWalk(ContingencyTable& table)
        : cells_(table.cells.data()), rows_(table.rows), columns_(table.columns), ln_(ln_table(table.total() + 2)) {}

    [[nodiscard]] int rows() const noexcept { return rows_; }
    [[nodiscard]] int columns() const noexcept { return columns_; }
    [[nodiscard]] int& at(int row, int column) const noexcept {
        return cells_[static_cast<std::ptrdiff_t>(row) * columns_ + column];
    }
    [[nodiscard]] int& genotype(int a, int b) const noexcept { return at(std::min(a, b), std::max(a, b)); }
    [[nodiscard]] FixedLn ln(std::int64_t n) const noexcept { return ln_(n); }

private:
    int* cells_;  // borrowed
    int rows_;
    int columns_;
    LnTable::View ln_;
};

/// Numbers that a step may read ahead.
inline constexpr std::ptrdiff_t step_look_ahead = 16;

/// Whole number 0 .. n - 1 from the next number. (u <= 1 - 1e-9, so that n u never rounds up to n.)
inline int take_index(double const*& next, int n) noexcept { return static_cast<int>(n * *next++); }

/// Whole number 0 .. n - 1 other than `taken`, n >= 2. Draws: one a try; a refused number is drawn again.
///
/// Three tries are made without a branch.
[[gnu::always_inline]] inline int take_other_index(DrawBlock& draws, double const*& next, int n, int taken) noexcept {
    int x = static_cast<int>(n * next[0]);
    int const y = static_cast<int>(n * next[1]);
    int const z = static_cast<int>(n * next[2]);
    bool const second = x == taken;
    x = second ? y : x;
    bool const third = x == taken;
    x = third ? z : x;
    next += 1 + second + third;
    if (x == taken) [[unlikely]] {
        draws.use_until(next);
        do {
            x = static_cast<int>(n * draws.draw());
        } while (x == taken);
        draws.require(step_look_ahead);
        next = draws.ahead();
    }
    return x;
}

/// One Metropolis step on a table of genotype counts, which keeps the allele counts.
///
/// Alleles i and m (rows), j and l (columns): one copy leaves each of {i, j} and {m, l} and goes to {i, l} and {m, j}.
/// With the counts A = {i, j}, D = {m, l}, B = {i, l}, C = {m, j} the probability changes by
/// A D / ((C + 1) (B + 1)), where counts of a cell that is met twice follow each other, times 2 for each heterozygote
/// made of a homozygote and 1/2 the other way. The step is taken when the ratio is above u.
///
/// @param t  square, rows >= 2, upper triangle.
/// Draws: i, j, m, l (m again while m = i, l again while l = j), then u, always.
/// Source: Guo and Thompson 1992.
[[gnu::always_inline]] inline ChainStep hardy_weinberg_step(TableWalk const& t, DrawBlock& draws) noexcept {
    draws.require(step_look_ahead);
    double const* next = draws.ahead();
    int const k = t.rows();
    int const i = take_index(next, k);
    int const j = take_index(next, k);
    int const m = take_other_index(draws, next, k, i);
    int const l = take_other_index(draws, next, k, j);
    double const u = *next++;
    draws.use_until(next);
    int& a = t.genotype(i, j);
    int& d = t.genotype(m, l);
    int& b = t.genotype(i, l);
    int& c = t.genotype(m, j);
    int const gained_twice = (i == j) & (m == l);  // {i, l} and {m, j} are one cell
    int const lost_twice = (i == l) & (m == j);    // {i, j} and {m, l} are one cell
    int const doublings = (i == j) + (m == l) - (i == l) - (m == j);
    constexpr double factor[] = {0.25, 0.5, 1.0, 2.0, 4.0};

    std::int64_t const out1 = a;
    std::int64_t const out2 = std::max(std::int64_t{d} - lost_twice, std::int64_t{0});
    std::int64_t const in1 = std::int64_t{c} + 1 + gained_twice;
    std::int64_t const in2 = std::int64_t{b} + 1;
    double const ratio = static_cast<double>(out1 * out2) / static_cast<double>(in1 * in2) * factor[doublings + 2];
    int const taken = ratio > u;
    a -= taken;
    d -= taken;
    b += taken;
    c += taken;
    FixedLn const change = t.ln(out1) + t.ln(out2) - t.ln(in1) - t.ln(in2) + doublings * t.ln(2);
    return {taken ? ratio : 1.0, change & -FixedLn{taken}};
}

/// Metropolis step between cells (i, j), (m, l) and (i, l), (m, j) of a two-way table: one copy leaves each of the
/// first two and goes to the others; the ratio is A D / ((C + 1) (B + 1)). A ratio of 1 or more is accepted without a
/// draw, one of 0 spends it. Draws: none or one, from `next` on.
[[gnu::always_inline]] inline ChainStep margin_step(TableWalk const& t, int i, int j, int m, int l, DrawBlock& draws,
                                                    double const* next) noexcept {
    int& a = t.at(i, j);
    int& d = t.at(m, l);
    int& b = t.at(i, l);
    int& c = t.at(m, j);
    std::int64_t const out1 = a;
    std::int64_t const out2 = d;
    std::int64_t const in1 = std::int64_t{c} + 1;
    std::int64_t const in2 = std::int64_t{b} + 1;
    auto const above = static_cast<double>(out1 * out2);
    auto const below = static_cast<double>(in1 * in2);
    double const ratio = above / below;
    double const u = *next;  // used for a ratio below 1 only; for others the test is idle, as u < 1
    draws.use_until(next + (above < below));
    int const taken = (ratio > 0.0) & !(ratio < u);
    a -= taken;
    d -= taken;
    b += taken;
    c += taken;
    FixedLn const change = t.ln(out1) + t.ln(out2) - t.ln(in1) - t.ln(in2);
    return {taken ? ratio : 1.0, change & -FixedLn{taken}};
}

/// One Metropolis step on a two-way table, which keeps the sums of its rows and columns.
///
/// @param t  rows and columns >= 2.
/// Draws: row i, column j, row m (again while m = i), column l (again while l = j), then those of margin_step.
/// Source: Raymond and Rousset 1995; Guo and Thompson 1992.
[[gnu::always_inline]] inline ChainStep two_way_step(TableWalk const& t, DrawBlock& draws) noexcept {
    draws.require(step_look_ahead);
    double const* next = draws.ahead();
    int const i = take_index(next, t.rows());
    int const j = take_index(next, t.columns());
    int const m = take_other_index(draws, next, t.rows(), i);
    int const l = take_other_index(draws, next, t.columns(), j);
    return margin_step(t, i, j, m, l, draws, next);
}

// --- Scaffold ---

/// Largest sum of logarithms at which a table counts as no more probable than the observed one.
inline constexpr FixedLn chain_tie_limit = 17592186;  // 1e-06

/// Steps of a chain and how they are dealt to batches.
struct ChainPlan {
    long burn_in = 0;    ///< steps before the first (of each batch, for a restarted chain)
    long batches = 0;    ///< B
    long per_batch = 0;  ///< steps of each batch
    FixedLn limit = chain_tie_limit;

    /// B = trunc(sqrt(steps)) batches of steps / B + 1 steps; nothing for steps < 1. More than 10^15 steps count as
    /// 10^15.
    static ChainPlan square(long steps, long burn_in, FixedLn limit = chain_tie_limit) noexcept;
};

/// Result of a chain.
struct ChainOutcome {
    double p = 1.0;        ///< share of visited tables no more probable than the observed one
    double sd = 0.0;       ///< from the batches
    long steps = 0;        ///< done, without burn-in
    bool stopped = false;  ///< the user ended it; the other fields are then meaningless
    bool failed = false;   ///< a restarted chain found no table
};

/// sqrt(sum over the first n shares of (share - p)^2 / ((n - 1) n)); 0 for n < 2.
[[nodiscard]] double batch_deviation(std::span<double const> shares, std::size_t n, double p) noexcept;

/// One chain whose successive steps go to the batches in turn. (Whether a batch's index moves before or after its step
/// is counted makes no difference to the batches.)
///
/// @param step    () -> FixedLn: walks one step, gives the logarithm of its ratio.
/// @param before  () -> bool: asked before each counted step; false ends the chain as stopped.
/// @param round   () -> bool: asked whenever every batch has got one more step; false ends the chain as stopped.
/// The sum of logarithms runs on from the burn-in: it is the table's probability relative to the observed one.
template <class Step, class Before, class Round>
ChainOutcome interleaved_chain(ChainPlan const& plan, Step&& step, Before&& before, Round&& round) {
    ChainOutcome outcome;
    if (plan.batches < 1) return outcome;
    ExactLnSum sum;
    for (long s = 0; s < plan.burn_in; ++s) sum.add(step());
    std::vector<double> shares(static_cast<std::size_t>(plan.batches), 0.0);
    std::int64_t hits = 0;
    for (long done = 0; done < plan.per_batch; ++done) {
        for (double& batch : shares) {
            if (!before()) {
                outcome.stopped = true;
                return outcome;
            }
            sum.add(step());
            bool const extreme = sum.at_most(plan.limit);
            hits += extreme;
            batch += extreme;
        }
        if (!round()) {
            outcome.stopped = true;
            return outcome;
        }
    }
    for (double& batch : shares) batch /= static_cast<double>(plan.per_batch);
    outcome.steps = plan.per_batch * plan.batches;
    outcome.p = static_cast<double>(hits) / static_cast<double>(outcome.steps);
    outcome.sd = batch_deviation(shares, shares.size(), outcome.p);
    return outcome;
}

/// When a restarted chain ends before its last batch.
struct EarlyEnd {
    double precision = 0.0;   ///< sd that suffices
    bool when_equal = false;  ///< an sd equal to the precision suffices too
};

/// What a restarted chain finds at the start of a batch.
enum class BatchStart { ready, failed, stopped };

/// One chain a batch, each from the observed table with a burn-in of its own.
///
/// @param start  () -> BatchStart: puts the observed table back.
/// @param step   () -> FixedLn: walks one step, gives the logarithm of its ratio.
/// @param ended  () -> bool: asked after each batch that is followed by another or was the last (not after an early
///               end); false ends the chain as stopped.
/// @return       p over all steps done; sd over the batches before the current one about the p that includes it (kept
///               on purpose), 1 until the third batch.
template <class Start, class Step, class Ended>
ChainOutcome restarted_chain(ChainPlan const& plan, EarlyEnd const& early, Start&& start, Step&& step,
                             Ended&& ended) {
    ChainOutcome outcome;
    outcome.sd = 1.0;
    std::vector<double> shares(static_cast<std::size_t>(std::max(plan.batches, 0L)), 0.0);
    std::int64_t hits = 0;
    for (std::size_t b = 0; b < shares.size(); ++b) {
        BatchStart const found = start();
        if (found != BatchStart::ready) {
            outcome.failed = found == BatchStart::failed;
            outcome.stopped = found == BatchStart::stopped;
            return outcome;
        }
        ExactLnSum sum;
        for (long s = 0; s < plan.burn_in; ++s) sum.add(step());
        std::int64_t batch = 0;
        for (long s = 0; s < plan.per_batch; ++s) {
            sum.add(step());
            batch += sum.at_most(plan.limit);
        }
        hits += batch;
        outcome.steps += plan.per_batch;
        shares[b] = static_cast<double>(batch) / static_cast<double>(plan.per_batch);
        outcome.p = static_cast<double>(hits) / static_cast<double>(outcome.steps);
        if (b > 1) {
            outcome.sd = batch_deviation(shares, b, outcome.p);
            if (outcome.sd < early.precision || (early.when_equal && outcome.sd == early.precision)) break;
        }
        if (!ended()) {
            outcome.stopped = true;
            return outcome;
        }
    }
    return outcome;
}

// --- Chains on the two kinds of tables ---

/// What a table counts, and so which step walks it.
enum class TableKind {
    genotypes,  ///< hardy_weinberg_step
    two_way     ///< two_way_step
};

/// An interleaved chain from `table` on, which is left where the chain ends.
///
/// @param stop   flag that ends the chain once it is not 0, read before each counted step; null for none.
/// @param round  asked whenever every batch has got one more step; false ends the chain. Empty counts as true.
/// Draws: those of the steps, burn-in included.
ChainOutcome walk_table(ContingencyTable& table, TableKind kind, ChainPlan const& plan, int const* stop = nullptr,
                        std::function<bool()> const& round = {});

/// A restarted chain, each batch from `table`, which is left where the last batch ends.
///
/// @param ended  asked after each batch; false ends the chain. Empty counts as true.
ChainOutcome walk_table_in_batches(ContingencyTable& table, TableKind kind, ChainPlan const& plan,
                                   EarlyEnd const& early, std::function<bool()> const& ended = {});

}  // namespace tov
