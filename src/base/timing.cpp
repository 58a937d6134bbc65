// The time of day as text.
#include "base/timing.h"

#include <array>

namespace tov {

std::string local_time_text(char const* format) {
    std::time_t const now = std::time(nullptr);
    std::array<char, 81> text{};
    std::size_t const length = std::strftime(text.data(), text.size(), format, std::localtime(&now));
    return {text.data(), length};
}

}  // namespace tov
