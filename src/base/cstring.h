/// my_string: the text type of the system, a thin class over std::string with the scanners' operations.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tov {

/// Text of any length.
///
/// Positions and lengths are int, counted from 0; "not found" is -1. Operations that change the text in place return
/// *this, so that they can be chained on a copy: `my_string(path).rm_path().remove_extension()`.
/// Errors: none reported; out of memory is std::bad_alloc.
class my_string {
public:
    my_string() = default;
    /// @param text  NUL terminated; null counts as empty.
    /// kept on purpose: a text of 150000 or more characters gives the empty string; longer texts are built with +=.
    my_string(char const* text);
    my_string(std::string text) noexcept : text_(std::move(text)) {}
    my_string(std::string_view text) : text_(text) {}
    /// A string of one character.
    my_string(char const& c) : text_(1, c) {}
    /// Decimal text of a number.
    my_string(int number) : text_(std::to_string(number)) {}

    my_string& operator=(char const* text);
    my_string& operator=(std::string text) noexcept;
    my_string& operator=(std::string_view text);
    my_string& operator=(char c);
    /// Decimal text.
    my_string& operator=(int number);
    /// Text in the default format of a stream: six significant digits.
    my_string& operator=(double number);

    my_string& operator+=(my_string const& tail);
    my_string& operator+=(char const* tail);
    my_string& operator+=(char c);
    my_string& operator+=(std::string const& tail);
    my_string& operator+=(std::string_view tail);

    [[nodiscard]] char const* c_str() const noexcept { return text_.c_str(); }
    [[nodiscard]] int length() const noexcept { return static_cast<int>(text_.size()); }
    /// True for the empty string.
    [[nodiscard]] bool is_null() const noexcept { return text_.empty(); }
    /// Character i; i == length() gives the final NUL, and any other index outside the text a spare NUL that forgets
    /// what is written to it.
    char& operator[](int i) noexcept;
    char operator[](int i) const noexcept;

    [[nodiscard]] std::string const& str() const noexcept { return text_; }
    [[nodiscard]] std::string& str() noexcept { return text_; }
    operator std::string_view() const noexcept { return text_; }

    // Case, ASCII letters only.
    my_string& to_lower();
    my_string& to_upper();
    [[nodiscard]] my_string Lower() const;
    [[nodiscard]] my_string Upper() const;

    // Reading. The stream ends up in the state that std::getline leaves: eofbit at the end of the data, failbit too
    // when nothing at all was extracted.
    /// Skips blanks, tabs and newlines, then reads up to the next one of these, which is consumed.
    std::istream& read_token(std::istream& is);
    /// Reads up to `delim`, a newline, a NUL or a character of value 255; the stop character is consumed.
    /// A failed stream leaves the empty string.
    std::istream& read_to_delim(std::istream& is, char delim);
    std::istream& read_line(std::istream& is);
    /// Skips to the next double quote and reads up to the one that closes it; without either: the empty string.
    std::istream& GetNextQuota(std::istream& is);

    // Searching.
    /// 1 if `pattern` occurs, case sensitive; 0 for an empty pattern.
    [[nodiscard]] int contains(std::string_view pattern) const noexcept;
    /// Position of the first occurrence, searched from the left.
    /// kept on purpose: the name says otherwise; callers rely on the first one.
    [[nodiscard]] int rfind(my_string const& pattern) const noexcept;
    [[nodiscard]] int find_first_of(char const& c) const noexcept;
    [[nodiscard]] int find_last_of(char const& c) const noexcept;

    // Cutting.
    /// Removes n characters from position `from`; nothing happens when n <= 0, from < 0 or from lies behind the end.
    my_string& remove(int from, int n);
    /// Skips leading `c`; gives the text up to the next `c` and removes all of it, that `c` too, from this string.
    my_string extract_sub_str(char c);
    /// The text behind the first `c`; without one the empty string.
    [[nodiscard]] my_string extract_after(char c) const;
    /// The text before the first `c`; without one the whole text.
    [[nodiscard]] my_string extract_before(char c) const;

    // File names; '/' and '\' both separate.
    /// Leaves what stands behind the last separator.
    my_string& rm_path();
    /// Leaves everything up to the last separator, which stays; without one the empty string.
    my_string& extract_path();
    /// Cuts from the last '.' on, wherever it stands.
    my_string& remove_extension();
    my_string& convert_to_slash();
    my_string& convert_to_backslash();
    my_string& convert_to_html_slash();
    /// Blank -> "%20".
    my_string& convert_blank_to_html_blank();
    /// Blank -> "\ ".
    my_string& convert_blank_to_linux_blank();
    /// Blank -> "_".
    my_string& convert_blank_to_underline();

    my_string& remove_blanks();
    my_string& remove_eol_and_lf();
    my_string& reverse_string();
    /// Makes room for `size` characters; the content stays.
    void extendSize(int const& size);

    friend bool operator==(my_string const& a, my_string const& b) noexcept { return a.text_ == b.text_; }
    friend bool operator==(my_string const& a, std::string const& b) noexcept { return a.text_ == b; }
    friend bool operator==(my_string const& a, std::string_view b) noexcept { return a.text_ == b; }
    friend bool operator==(my_string const& a, char const* b) noexcept;
    /// Order of C strings: by unsigned character, a prefix before the longer text.
    friend bool operator<(my_string const& a, my_string const& b) noexcept { return a.text_ < b.text_; }
    friend bool operator>(my_string const& a, my_string const& b) noexcept { return b < a; }

private:
    my_string& replace_blanks(std::string_view replacement);

    std::string text_;
};

[[nodiscard]] my_string operator+(my_string const& a, my_string const& b);
[[nodiscard]] my_string operator+(my_string const& a, char const* b);

/// Writes the text; a width set on the stream pads it.
std::ostream& operator<<(std::ostream& os, my_string const& s);
/// Reads one word, as for std::string.
std::istream& operator>>(std::istream& is, my_string& s);

}  // namespace tov

template <>
struct std::hash<tov::my_string> {
    std::size_t operator()(tov::my_string const& s) const noexcept { return std::hash<std::string>{}(s.str()); }
};
