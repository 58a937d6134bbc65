/// Processor time of a step, as the log and the documents tell it.
#pragma once

#include <ctime>

namespace tov {

/// Whole milliseconds of processor time since `start` (a value of std::clock()).
[[nodiscard]] inline int milliseconds_since(std::clock_t start) noexcept {
    return static_cast<int>(static_cast<double>(std::clock() - start) * 1000.0 / CLOCKS_PER_SEC);
}

}  // namespace tov
