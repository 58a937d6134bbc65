/// Numbers of the uniform generator in blocks, for loops that draw all the time.
#include "base/draw_block.h"

#include <algorithm>
#include <cstdint>

namespace tov {

namespace {

constexpr std::size_t long_lag = 55;
constexpr std::size_t short_lag = 24;

// x[n] = x[n - 55] - x[n - 24] modulo 10^9, for up to 24 numbers at a time, which do not depend on each other.
void next_numbers(std::int32_t const* far, std::int32_t const* near, std::int32_t* out, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        std::int32_t const difference = far[i] - near[i];
        out[i] = difference + (difference < 0 ? Ran3State::MBIG : 0);
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
    std::array<std::int32_t, long_lag*(blocks + 1)> x;
    auto const first = generator_.ma.begin() + 1;
    auto const oldest = generator_.ma.begin() + 1 + generator_.inext % 55;
    std::rotate_copy(first, oldest, generator_.ma.end(), x.begin());
    for (std::size_t b = 0; b < blocks; ++b) {
        std::int32_t* const old = x.data() + b * long_lag;
        std::int32_t* const now = old + long_lag;
        for (std::size_t from = 0; from < long_lag; from += short_lag) {
            next_numbers(old + from, now + from - short_lag, now + from, std::min(short_lag, long_lag - from));
        }
    }
    for (std::size_t i = 0; i < blocks * long_lag; ++i) *out++ = x[long_lag + i] * Ran3State::FAC;
    end_ = out;
    // After whole rounds the place on the ring is the same.
    auto const youngest = x.end() - static_cast<std::ptrdiff_t>(long_lag);
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
