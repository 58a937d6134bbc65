/// Settings from a text and into one.
#pragma once

#include <sstream>
#include <string>

#include "input/settings.h"

namespace tov::test {

/// Settings that have read the text, on top of those given.
inline settings read_settings(std::string const& text, settings set = {}) {
    std::istringstream in(text);
    set.read_settings(in);
    return set;
}

/// The settings file that is written.
inline std::string written(settings const& set) {
    std::ostringstream out;
    set.print_settings(out);
    return out.str();
}

}  // namespace tov::test
