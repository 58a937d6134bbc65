/// Processor time of a step and the time of day, as the log and the documents tell them.
#pragma once

#include <ctime>
#include <string>

namespace tov {

/// Whole milliseconds of processor time since `start` (a value of std::clock()).
[[nodiscard]] inline int milliseconds_since(std::clock_t start) noexcept {
    return static_cast<int>(static_cast<double>(std::clock() - start) * 1000.0 / CLOCKS_PER_SEC);
}

/// The time of day, local, in a format of std::strftime that gives at most 80 characters.
[[nodiscard]] std::string local_time_text(char const* format);

/// The form of the time in the documents: "day/month/year at hour:minute:second".
inline constexpr char time_format[] = "%d/%m/%y at %H:%M:%S";

}  // namespace tov
