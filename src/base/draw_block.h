/// Numbers of the uniform generator in blocks, for loops that draw all the time.
#pragma once

#include <array>
#include <cstddef>

#include "base/random.h"

namespace tov {

/// Draws numbers ahead, block by block, and gives back at the end of the scope what was not used: the generator then
/// stands where the same number of single draws had left it. Nobody else may draw from it in the meantime.
class DrawBlock {
public:
    /// Numbers that require() can promise.
    static constexpr std::ptrdiff_t most_required = 64;

    explicit DrawBlock(Ran3State& generator) noexcept : generator_(generator) {}
    ~DrawBlock() { give_back(); }
    DrawBlock(DrawBlock const&) = delete;
    DrawBlock& operator=(DrawBlock const&) = delete;

    double draw() noexcept {
        if (next_ == end_) [[unlikely]] refill();
        return *next_++;
    }
    /// Makes sure that the next n <= most_required numbers can be read by ahead().
    void require(std::ptrdiff_t n) noexcept {
        if (end_ - next_ < n) [[unlikely]] refill();
    }
    /// The numbers to come, in order.
    [[nodiscard]] double const* ahead() const noexcept { return next_; }
    /// All numbers before `next`, a place in ahead(), are used.
    void use_until(double const* next) noexcept { next_ = next; }

private:
    static constexpr std::size_t lag = 55;         // numbers the generator remembers
    static constexpr std::size_t fresh = 4 * lag;  // numbers drawn at a time

    [[gnu::noinline]] void refill() noexcept;
    void give_back() noexcept;

    Ran3State& generator_;  // borrowed
    std::array<double, static_cast<std::size_t>(most_required) + fresh> values_;
    double const* next_ = values_.data();
    double const* end_ = values_.data();
};

}  // namespace tov
