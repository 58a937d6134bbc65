/// Numbers of the uniform generator in blocks, for loops that draw all the time.
#include "base/draw_block.h"

#include <algorithm>
#include <cstdint>

namespace tov {

namespace {

constexpr std::ptrdiff_t long_lag = 55;
constexpr std::ptrdiff_t short_lag = 24;
constexpr std::ptrdiff_t at_once = 20;

// x[n] = x[n - 55] - x[n - 24] modulo 10^9 for x[0] .. x[19]. Up to 24 numbers do not depend on each other; a fixed
// count of them, a multiple of four, lets the compiler work them out four at a time.
void next_numbers(std::int32_t* x) noexcept {
    for (std::ptrdiff_t i = 0; i < at_once; ++i) {
        std::int32_t const difference = x[i - long_lag] - x[i - short_lag];
        x[i] = difference + (difference < 0 ? Ran3State::MBIG : 0);
    }
}

// One step back to the place on the ring, 1 .. 55.
std::int32_t before(std::int32_t place) noexcept { return place == 1 ? 55 : place - 1; }

}  // namespace

void DrawBlock::refill() noexcept {
    double* out = std::copy(next_, end_, values_.data());
    next_ = values_.data();
    if (generator_.inext == 0) generator_.inext = 55;  // just seeded: the same place by another name
    // The ring in order of age: the oldest stands behind the place of the last draw.
    std::array<std::int32_t, lag + fresh> x;
    auto const first = generator_.ma.begin() + 1;
    auto const oldest = generator_.ma.begin() + 1 + generator_.inext % 55;
    std::rotate_copy(first, oldest, generator_.ma.end(), x.begin());
    std::int32_t* const made = x.data() + lag;
    static_assert(at_once <= short_lag && fresh % at_once == 0);
    for (std::size_t i = 0; i < fresh; i += at_once) next_numbers(made + i);
    for (std::size_t i = 0; i < fresh; ++i) *out++ = made[i] * Ran3State::FAC;
    end_ = out;
    // After whole rounds the place on the ring is the same.
    auto const youngest = x.end() - long_lag;
    std::rotate_copy(youngest, youngest + (first + 55 - oldest), x.end(), first);
}

void DrawBlock::give_back() noexcept {
    for (; end_ != next_; --end_) {
        auto const place = static_cast<std::size_t>(generator_.inext);
        std::int32_t old = generator_.ma[place] + generator_.ma[static_cast<std::size_t>(generator_.inextp)];
        if (old >= Ran3State::MBIG) old -= Ran3State::MBIG;
        generator_.ma[place] = old;
        generator_.inext = before(generator_.inext);
        generator_.inextp = before(generator_.inextp);
    }
}

}  // namespace tov
