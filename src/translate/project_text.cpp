// What the readers of foreign formats share.
#include "translate/project_text.h"

#include <algorithm>
#include <functional>
#include <istream>
#include <ostream>

#include "input/line_text.h"

namespace tov {
namespace {

constexpr bool is_control(char c) noexcept { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

}  // namespace

void strip_line_end(std::string& line) {
    auto const kept = std::find_if(line.rbegin(), line.rend(), [](char c) { return c != ' ' && !is_control(c); });
    line.erase(kept.base(), line.end());
}

bool read_foreign_line(std::istream& in, std::string& line) {
    if (!std::getline(in, line)) return false;
    strip_line_end(line);
    return true;
}

bool read_content_line(std::istream& in, std::string& line) {
    while (read_foreign_line(in, line))
        if (!trimmed(line).empty()) return true;
    return false;
}

std::string entry_name(std::string_view text, std::string_view spare) {
    std::string name;
    for (char const c : text) {
        if (is_blank(c)) continue;
        name += is_control(c) || c == '#' || c == '{' || c == '}' ? '_' : c;
    }
    return name.empty() ? std::string(spare) : name;
}

std::string quoted_text(std::string_view text) {
    std::string quoted(text);
    std::replace_if(
        quoted.begin(), quoted.end(), [](char c) { return is_control(c) || c == '"' || c == '#'; }, ' ');
    return quoted;
}

bool breaks_data(std::string_view text) noexcept {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return c == '#' || c == '{' || c == '}' || (is_control(c) && !is_blank(c)); });
}

void mark_unreadable(std::ostream& project, std::string_view reason) {
    project << "# error: " << reason << '\n' << unreadable_entry;
}

std::string HaplotypeNames::for_content(std::string const& name, std::string_view content) {
    std::size_t const hash = std::hash<std::string_view>{}(content);
    std::string candidate = name;
    for (int number = 2;; ++number) {
        auto const [known, is_new] = content_hashes_.emplace(candidate, hash);
        if (is_new || known->second == hash) return candidate;
        candidate = name + '_' + std::to_string(number);
    }
}

}  // namespace tov
