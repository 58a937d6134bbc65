// Markov chains on contingency tables: the steps, and the one scaffold of all tests that walk tables.
#pragma once

#include <algorithm>
#include <cmath>
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

// A processor guesses where a jump goes. Where a draw decides, it guesses wrong as often as the draw surprises, and a
// wrong guess costs more than the draw. So the steps work out by arithmetic what draws decide (pick(), counts changed
// by 0 or 1), look at draws that they may not need but spend only those they used, and jump for what is rare.

/// `yes` if the condition holds, otherwise `no`; without a jump.
[[gnu::always_inline]] inline int pick(bool condition, int yes, int no) noexcept {
    return no ^ ((yes ^ no) & -static_cast<int>(condition));
}

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
    [[nodiscard]] int& genotype(int a, int b) const noexcept {
        int const smaller = pick(a < b, a, b);
        return at(smaller, a ^ b ^ smaller);
    }
    [[nodiscard]] FixedLn ln(std::int64_t n) const noexcept { return ln_(n); }

private:
    int* cells_;  // borrowed
    int rows_;
    int columns_;
    LnTable::View ln_;
};

/// Numbers that a step may read ahead.
inline constexpr std::ptrdiff_t step_look_ahead = 16;

/// Whole number 0 .. n - 1 that a draw stands for. (u <= 1 - 1e-9, so that n u never rounds up to n.)
[[gnu::always_inline]] inline int index_of(double u, int n) noexcept { return static_cast<int>(n * u); }

/// The first of `Tries` tries, try_at(0) onwards, that is not `taken`, or `taken` if all are refused; `spent` tells how
/// many it took.
template <int Tries, class TryAt>
[[gnu::always_inline]] inline int first_other(TryAt try_at, int taken, int& spent) noexcept {
    int x = taken;
    int refused = 1;  // all tries so far
    spent = 0;
    for (int k = 0; k < Tries; ++k) {
        int const y = try_at(k);
        x = pick(refused, y, x);
        spent += refused;
        refused &= static_cast<int>(y == taken);
    }
    return x;
}

/// take_other_index() with a look at `Tries` numbers at once; `index` is the index_of() to take.
template <int Tries, class Index>
[[gnu::always_inline]] inline int take_of_tries(DrawBlock& draws, double const*& next, int taken,
                                                Index index) noexcept {
    int spent;
    int x = first_other<Tries>([&](int k) { return index(next[k]); }, taken, spent);
    next += spent;
    while (x == taken) [[unlikely]] {
        draws.use_until(next);
        draws.require(step_look_ahead);
        next = draws.ahead();
        x = index(*next++);
    }
    return x;
}

/// Whole number 0 .. n - 1 other than `taken`, n >= 2. Draws: one a try; a refused number is drawn again.
///
/// A try is refused with chance 1 / n: the smaller n, the more tries are worth a look.
[[gnu::always_inline]] inline int take_other_index(DrawBlock& draws, double const*& next, int n, int taken) noexcept {
    if (n == 2) return take_of_tries<4>(draws, next, taken, [](double u) { return static_cast<int>(u >= 0.5); });
    auto const index = [n](double u) { return index_of(u, n); };
    if (n <= 4) return take_of_tries<2>(draws, next, taken, index);
    return take_of_tries<1>(draws, next, taken, index);
}

/// A row and a column.
struct Place {
    int row;
    int column;
};

/// A row other than that of `taken`, then a column other than its. Draws: those of take_other_index for either.
///
/// The row tells where the tries for the column begin. If either has three or four to choose from, all tries that the
/// column may need are made before that is known, and the row only tells which of them count.
[[gnu::always_inline]] inline Place take_other_place(DrawBlock& draws, double const*& next, int rows, int columns,
                                                     Place taken) noexcept {
    int const fewer = std::min(rows, columns);
    if (fewer == 3 || fewer == 4) {
        auto const row_at = [&](int k) { return index_of(next[k], rows); };
        auto const column_at = [&](int k) { return index_of(next[k], columns); };
        int const ahead[] = {column_at(1), column_at(2), column_at(3)};
        int in_row;
        int in_column;
        int const row = first_other<2>(row_at, taken.row, in_row);
        int const column = first_other<2>([&](int k) { return ahead[in_row - 1 + k]; }, taken.column, in_column);
        if ((row != taken.row) & (column != taken.column)) [[likely]] {
            next += in_row + in_column;
            return {row, column};
        }
    }
    int const row = take_other_index(draws, next, rows, taken.row);
    int const column = take_other_index(draws, next, columns, taken.column);
    return {row, column};
}

/// Above 0 if above / below, as a double, is larger than u; 0 if they are equal; below 0 if it is smaller.
///
/// @param above, below, u  >= 0, below > 0.
/// The step would wait for a division. u below tells as much sooner, unless it lies so near to above that the roundings
/// of the product and of the quotient, 2^-53 each, could tell differently; then the quotient itself is taken.
[[gnu::always_inline]] inline double quotient_against(double u, double above, double below) noexcept {
    constexpr double near = 0x1p-50;
    double const product = u * below;
    double const difference = above - product;
    if (std::abs(difference) <= near * product) [[unlikely]]
        return above / below - u;
    return difference;
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
    int const i = index_of(*next++, k);
    int const j = index_of(*next++, k);
    auto const [m, l] = take_other_place(draws, next, k, k, {i, j});
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
    double const above = static_cast<double>(out1 * out2) * factor[doublings + 2];
    auto const below = static_cast<double>(in1 * in2);
    int const taken = quotient_against(u, above, below) > 0.0;
    a -= taken;
    d -= taken;
    b += taken;
    c += taken;
    FixedLn const change = t.ln(out1) + t.ln(out2) - t.ln(in1) - t.ln(in2) + doublings * t.ln(2);
    return {taken ? above / below : 1.0, change & -FixedLn{taken}};
}

/// Whole numbers up to it are doubles.
inline constexpr std::int64_t exact_in_double = std::int64_t{1} << 53;

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
    // The next step waits to know where its draws begin, and whole numbers tell sooner than doubles.
    bool below_one = out1 * out2 < in1 * in2;
    if (in1 * in2 > exact_in_double) [[unlikely]]
        below_one = above < below;
    double const u = *next;  // used for a ratio below 1 only; for others the test is idle, as u < 1
    draws.use_until(next + below_one);
    int const taken = (above > 0.0) & (quotient_against(u, above, below) >= 0.0);
    a -= taken;
    d -= taken;
    b += taken;
    c += taken;
    FixedLn const change = t.ln(out1) + t.ln(out2) - t.ln(in1) - t.ln(in2);
    return {taken ? above / below : 1.0, change & -FixedLn{taken}};
}

/// One Metropolis step on a two-way table, which keeps the sums of its rows and columns.
///
/// @param t  rows and columns >= 2.
/// Draws: row i, column j, row m (again while m = i), column l (again while l = j), then those of margin_step.
/// Source: Raymond and Rousset 1995; Guo and Thompson 1992.
[[gnu::always_inline]] inline ChainStep two_way_step(TableWalk const& t, DrawBlock& draws) noexcept {
    draws.require(step_look_ahead);
    double const* next = draws.ahead();
    int const i = index_of(*next++, t.rows());
    int const j = index_of(*next++, t.columns());
    auto const [m, l] = take_other_place(draws, next, t.rows(), t.columns(), {i, j});
    return margin_step(t, i, j, m, l, draws, next);
}

/// A step as the scaffold calls it. The walk is held by value, which leaves it in registers.
template <auto step>
struct StepOf {
    TableWalk walk;
    DrawBlock& draws;  // borrowed

    [[gnu::always_inline]] FixedLn operator()() const noexcept { return step(walk, draws).ln_ratio; }
};

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
