// Small tools of the line by line readers.
#include "input/line_text.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <istream>
#include <limits>

namespace tov {
namespace {

constexpr char to_upper(char c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr char to_lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Index of the word's character that is rarest in lines of data, where the search is anchored.
constexpr std::size_t anchor_of(std::string_view word) noexcept {
    for (char const rare : {'[', 'P', 'X', 'Q', 'Z', 'Y', 'B', 'M', 'L', 'D'}) {
        std::size_t const at = word.find(rare);
        if (at != std::string_view::npos) return at;
    }
    return 0;
}

bool matches_at(std::string_view text, std::size_t start, std::string_view word) noexcept {
    for (std::size_t i = 0; i < word.size(); ++i)
        if (to_upper(text[start + i]) != word[i]) return false;
    return true;
}

bool find_anchored(std::string_view text, std::string_view word, std::size_t anchor, char c) noexcept {
    char const* const begin = text.data();
    char const* const last = begin + text.size() - (word.size() - anchor) + 1;  // one past the last anchor that fits
    for (char const* p = begin + anchor; p < last; ++p) {
        p = static_cast<char const*>(std::memchr(p, c, static_cast<std::size_t>(last - p)));
        if (!p) return false;
        if (matches_at(text, static_cast<std::size_t>(p - begin) - anchor, word)) return true;
    }
    return false;
}

}  // namespace

bool contains_word(std::string_view text, std::string_view word) noexcept {
    if (word.empty() || text.size() < word.size()) return false;
    std::size_t const anchor = anchor_of(word);
    char const upper = word[anchor];
    char const lower = to_lower(upper);
    return find_anchored(text, word, anchor, upper) || (lower != upper && find_anchored(text, word, anchor, lower));
}

bool read_text_line(std::istream& is, std::string& text, int& line) {
    if (!std::getline(is, text)) return false;
    ++line;
    return true;
}

std::string_view without_comment(std::string_view text) noexcept { return text.substr(0, text.find('#')); }

std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view next_token(std::string_view& rest) noexcept {
    std::size_t begin = 0;
    while (begin < rest.size() && is_blank(rest[begin])) ++begin;
    std::size_t end = begin;
    while (end < rest.size() && !is_blank(rest[end])) ++end;
    std::string_view const token = rest.substr(begin, end - begin);
    rest.remove_prefix(end);
    return token;
}

bool next_label(std::string_view& rest, std::string_view& label) noexcept {
    while (!rest.empty() && is_blank(rest.front())) rest.remove_prefix(1);
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) {
        label = next_token(rest);
        return true;
    }
    std::size_t const end = rest.find(rest.front(), 1);
    if (end == std::string_view::npos) {
        label = rest;
        rest = {};
        return false;
    }
    label = rest.substr(1, end - 1);
    rest.remove_prefix(end + 1);
    return true;
}

bool parse_number(std::string_view text, double& value) {
    text = trimmed(text);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
    if (text.empty()) return false;
    double parsed = 0.0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (end != text.data() + text.size()) return false;
    if (error == std::errc::result_out_of_range)
        parsed = std::strtod(std::string(text).c_str(), nullptr);  // tells a tiny value from one that is too large
    else if (error != std::errc())
        return false;
    if (!std::isfinite(parsed)) return false;
    value = parsed;
    return true;
}

int rounded_int(double value) noexcept {
    double const rounded = std::floor(value + 0.5);
    if (rounded >= static_cast<double>(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
    if (!(rounded > static_cast<double>(std::numeric_limits<int>::min()))) return std::numeric_limits<int>::min();
    return static_cast<int>(rounded);
}

bool same_without_case(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    if (std::memcmp(a.data(), b.data(), a.size()) == 0) return true;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (to_upper(a[i]) != to_upper(b[i])) return false;
    return true;
}

std::string upper_case(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) c = to_upper(c);
    return upper;
}

std::string_view behind_opening_brace(std::string_view text, bool& found) noexcept {
    std::size_t const at = text.find('{');
    found = at != std::string_view::npos;
    return found ? text.substr(at + 1) : std::string_view();
}

bool contains_word_outside_quotes(std::string_view text, std::string_view word) {
    std::string bare;
    while (!text.empty()) {
        std::size_t const open = text.find_first_of("\"'");
        bare += text.substr(0, open);
        if (open == std::string_view::npos) break;
        bare += ' ';
        std::size_t const close = text.find(text[open], open + 1);
        if (close == std::string_view::npos) break;
        text.remove_prefix(close + 1);
    }
    return contains_word(bare, word);
}

}  // namespace tov
