// Small tools of the line by line readers: lines, words without regard to case, tokens, numbers.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "base/cstring.h"

namespace tov {

/// True if `word`, given in upper case, occurs in the text in any case. Cost: linear in the text.
[[nodiscard]] bool contains_word(std::string_view text, std::string_view word) noexcept;

/// Reads a line into `text` and raises the line number. @return false at the end of the data.
bool read_text_line(std::istream& is, std::string& text, int& line);

/// The text before the first '#'.
[[nodiscard]] std::string_view without_comment(std::string_view text) noexcept;

/// Blank, tab, carriage return, newline, form feed or vertical tab.
[[nodiscard]] constexpr bool is_blank(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }
/// The text without blanks at its ends.
[[nodiscard]] std::string_view trimmed(std::string_view text) noexcept;
/// The next run of non-blanks, which leaves `rest` together with the blanks before it; empty at the end.
[[nodiscard]] std::string_view next_token(std::string_view& rest) noexcept;
/// The next label: a text in double or single quotes, or a run of non-blanks. @return false on a quote without its end.
bool next_label(std::string_view& rest, std::string_view& label) noexcept;

/// Value of a decimal number that takes up the whole text, blanks at its ends apart.
///
/// @return false on other text, on nothing, and on a value that is not finite; `value` then stays as it was.
bool parse_number(std::string_view text, double& value);

/// The nearest int; the limits of int for a value beyond them.
[[nodiscard]] int rounded_int(double value) noexcept;

/// Equality of two texts without regard to the case of ASCII letters.
[[nodiscard]] bool same_without_case(std::string_view a, std::string_view b) noexcept;

/// The text in upper case, ASCII letters only.
[[nodiscard]] std::string upper_case(std::string_view text);

/// Text behind the first '{', or nothing (`found` false) without one.
[[nodiscard]] std::string_view behind_opening_brace(std::string_view text, bool& found) noexcept;

/// The word stands outside all quoted parts of the text, in any case.
[[nodiscard]] bool contains_word_outside_quotes(std::string_view text, std::string_view word);

}  // namespace tov
