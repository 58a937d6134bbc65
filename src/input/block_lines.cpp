// The lines of a block in braces.
#include "input/block_lines.h"

#include <istream>

#include "input/line_text.h"

namespace tov {

bool BlockLines::take_line() {
    if (pending_) {
        pending_ = false;
        return true;
    }
    return read_text_line(is_, buffer_, line_);
}

bool BlockLines::skip_opening_brace() {
    while (!open_ && take_line()) {
        std::string_view const text = trimmed(without_comment(buffer_));
        if (text.empty()) continue;
        if (text.front() != '{') return false;
        buffer_ = std::string(text.substr(1));
        pending_ = open_ = true;
    }
    return open_;
}

bool BlockLines::next() {
    while (!closed_ && take_line()) {
        text_ = without_comment(buffer_);
        std::size_t const brace = text_.find('}');
        if (brace != std::string_view::npos) {
            closed_ = true;
            text_ = text_.substr(0, brace);
        }
        text_ = trimmed(text_);
        if (!open_ && text_ == "{") {
            open_ = true;
            continue;
        }
        if (!text_.empty()) return true;
    }
    text_ = {};
    return false;
}

bool begins_later_section(std::string_view text) noexcept {
    return contains_word(text, "[STRUCTURE]") || contains_word(text, "[MANTEL]");
}

}  // namespace tov
