// The lines of a block in braces, and log lines made of several parts.
#pragma once

#include <iosfwd>
#include <ostream>
#include <string>
#include <string_view>

#include "run/errors.h"

namespace tov {

/// Writes all parts and a newline into the log.
template <class... Parts>
void log_text(Parts const&... parts) {
    ((*_AOS_ << parts), ...);
    *_AOS_ << '\n';
}

/// Walks the lines of a block up to its closing brace, over comments and blank lines.
///
/// A text behind the opening brace counts as the block's first line. Lines keep no comment, and nothing from a closing
/// brace on; what stands before that brace is still a line. Cost: linear, one line in memory.
class BlockLines {
public:
    /// @param line        number of the line read last; raised with each line.
    /// @param first_text  what stands behind the opening brace on its own line.
    /// @param open        the opening brace has been met; otherwise one line of only "{" is passed over.
    BlockLines(std::istream& is, int& line, std::string_view first_text, bool open)
        : is_(is), line_(line), buffer_(first_text), pending_(!first_text.empty()), open_(open) {}

    /// Goes to the opening brace, over blank lines; what stands behind it is the first line. @return false when the
    /// next text is anything else.
    bool skip_opening_brace();
    /// Goes to the next line that holds text. @return false behind the closing brace and at the end of the data.
    bool next();
    /// The line, without blanks at its ends; valid until the next call of next().
    [[nodiscard]] std::string_view text() const noexcept { return text_; }
    /// A closing brace was met, on this line or at the end.
    [[nodiscard]] bool closed() const noexcept { return closed_; }
    [[nodiscard]] int number() const noexcept { return line_; }

private:
    bool take_line();

    std::istream& is_;  // borrowed
    int& line_;         // borrowed
    std::string buffer_;
    std::string_view text_;
    bool pending_;
    bool open_;
    bool closed_ = false;
};

/// A line that begins a section behind the samples' data: "[STRUCTURE]" or "[MANTEL]".
[[nodiscard]] bool begins_later_section(std::string_view text) noexcept;

}  // namespace tov
