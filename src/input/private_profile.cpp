// Flat key=value text: the look-up of the settings file.
#include "input/private_profile.h"

#include <algorithm>
#include <fstream>
#include <istream>

namespace tov {

PrivateProfile::PrivateProfile(std::istream& in, std::size_t bound) {
    std::string text;
    while (std::getline(in, text)) {
        std::size_t const equal = text.find('=');
        if (equal == std::string::npos) continue;
        std::size_t const end = std::min(text.size(), bound);
        if (equal + 1 < end) lines_.push_back({text, equal + 1, end});
    }
}

bool PrivateProfile::find(std::string_view key, std::string& out) const {
    for (Line const& line : lines_) {
        if (line.text.find(key) != std::string::npos) {
            out.assign(line.text, line.value_begin, line.value_end - line.value_begin);
            return true;
        }
    }
    out.clear();
    return false;
}

int GetPrivateProfileString(char const* /*section*/, char const* key, char const* /*default_value*/, std::string& out,
                            int size, char const* file) {
    std::ifstream in(file);
    return PrivateProfile(in, static_cast<std::size_t>(std::max(size, 0))).find(key, out) ? 1 : 0;
}

}  // namespace tov
