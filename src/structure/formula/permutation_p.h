/// P-value of a permutation test, with its standard deviation from batches. One loop serves all tests of the AMOVA and
/// of the distances between populations.
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace tov {

/// Permutations in batches: B = trunc(sqrt(n)) batches of n / B + 1, so at least one batch more than asked.
struct PermutationPlan {
    int batches = 0;    ///< B
    int per_batch = 0;
    int permutations = 0;  ///< B x per_batch; 0 when none are asked

    explicit PermutationPlan(long asked) noexcept {
        if (asked > 0) {
            batches = static_cast<int>(std::sqrt(static_cast<double>(asked)));
            per_batch = static_cast<int>(asked / batches) + 1;
            permutations = per_batch * batches;
        }
    }
};

enum class PermutationTail { above, below };

struct PermutationOutcome {
    int beyond = 0;        ///< permuted values beyond the observed one
    int equal = 0;         ///< within 1e-10 of it
    double p = 0.0;        ///< (beyond + equal) / denominator: ties count
    double sd = 0.0;       ///< of p, from the batches
    bool stopped = false;  ///< poll() answered true
};

/// Two values within this distance count as equal.
inline constexpr double permutation_tolerance = 1e-10;

/// Counts hits in batches that are filled in turn: the first permutation goes to batch 1, and so on, round robin.
///
/// @tparam Real  type of the sums: float in the AMOVA, double between populations; the root is double. Kept on purpose:
///               the digits differ.
template <class Real>
class BatchCounter {
public:
    explicit BatchCounter(PermutationPlan const& plan)
        : plan_(plan), hits_(static_cast<std::size_t>(plan.batches) + 1, Real(0)) {}

    void next() noexcept { batch_ = batch_ == plan_.batches ? 1 : batch_ + 1; }
    void hit() noexcept { hits_[batch_] += Real(1); }

    /// Standard deviation of a P-value from the spread of the batches about it; 0 with one batch.
    [[nodiscard]] double sd(double p) const noexcept {
        if (plan_.batches <= 1) {
            return 0.0;
        }
        Real const center = static_cast<Real>(p);
        Real sum = Real(0);
        for (int b = 1; b <= plan_.batches; ++b) {
            Real const x = hits_[b] / static_cast<Real>(plan_.per_batch) - center;
            sum += x * x;
        }
        return std::sqrt(static_cast<double>(sum) / ((plan_.batches - 1.0) * plan_.batches));
    }

private:
    PermutationPlan plan_;
    std::vector<Real> hits_;
    int batch_ = 0;
};

/// Permutations between two questions whether to stop.
inline constexpr int poll_every = 100;

/// The test: `source` gives the values of the permutations, `poll()` is asked at permutations 0, 100, 200, ... and
/// stops the test by true, `keep(value)` receives each value.
///
/// A source draws a block of permutations first, in their order, and evaluates them together: `block()` is the most
/// that it takes, `draw()` makes the next one and takes in what its value needs, `evaluate()` closes the block,
/// `value(k)` is that of its k-th permutation. No block crosses a question: a test that stops there has drawn what a
/// test of single permutations would have.
template <class Real, class Source, class Poll, class Keep>
PermutationOutcome permutation_p(PermutationPlan const& plan, double observed, PermutationTail tail, int denominator,
                                 Source&& source, Poll&& poll, Keep&& keep) {
    PermutationOutcome outcome;
    BatchCounter<Real> batches(plan);
    for (int done = 0; done < plan.permutations;) {
        if (done % poll_every == 0 && poll()) {
            outcome.stopped = true;
            return outcome;
        }
        int const block = std::min({source.block(), plan.permutations - done, poll_every - done % poll_every});
        for (int k = 0; k < block; ++k) {
            source.draw();
        }
        source.evaluate();
        for (int k = 0; k < block; ++k) {
            batches.next();
            double const value = source.value(k);
            if (std::fabs(value - observed) < permutation_tolerance) {
                ++outcome.equal;
                batches.hit();
            } else if (tail == PermutationTail::above ? value > observed : value < observed) {
                ++outcome.beyond;
                batches.hit();
            }
            keep(value);
        }
        done += block;
    }
    outcome.p = (outcome.beyond + outcome.equal) / static_cast<double>(denominator);
    outcome.sd = batches.sd(outcome.p);
    return outcome;
}

/// A source whose values come one by one: `draw` permutes and gives the value.
template <class Draw>
class SinglePermutations {
public:
    explicit SinglePermutations(Draw draw) : draw_(std::move(draw)) {}
    [[nodiscard]] int block() const noexcept { return 1; }
    void draw() { value_ = draw_(); }
    void evaluate() const noexcept {}
    [[nodiscard]] double value(int) const noexcept { return value_; }

private:
    Draw draw_;
    double value_ = 0.0;
};

}  // namespace tov
