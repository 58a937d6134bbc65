// Escaping of text from the user's data.
#include "output/escape.h"

#include <ostream>

#include "output/style.h"

namespace tov {

namespace {

bool can_stand(char c) noexcept {
    auto const byte = static_cast<unsigned char>(c);
    return byte >= 0x20 || c == '\t' || c == '\n';
}

std::string escaped(std::string_view text, bool in_attribute) {
    std::string result;
    result.reserve(text.size());
    for (char const c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>' && result.ends_with("]]"))
            result += "&gt;";
        else if (c == '"' && in_attribute)
            result += "&quot;";
        else if (can_stand(c))
            result += c;
    }
    return result;
}

}  // namespace

std::string doc_text(std::string_view text) { return escaped(text, false); }

std::string doc_attribute(std::string_view text) { return escaped(text, true); }

std::string js_text(std::string_view text, char quote) {
    std::string result;
    result.reserve(text.size());
    for (char const c : text) {
        if (static_cast<unsigned char>(c) < 0x20) continue;
        if (c == '\\' || c == quote) result += '\\';
        result += c;
    }
    return result;
}

int shown_length(std::string_view text) noexcept {
    int columns = 0;
    for (char const c : text) columns += can_stand(c) ? 1 : 0;
    return columns;
}

std::ostream& operator<<(std::ostream& out, user_text const& x) {
    std::string const escaped_text = doc_text(x.text);
    int const padding = x.width - shown_length(x.text);
    if (!x.left) write_padded(out, {}, padding);
    write_padded(out, escaped_text, 0);
    if (x.left) write_padded(out, {}, padding);
    return out;
}

}  // namespace tov
