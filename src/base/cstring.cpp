// Operations of my_string.
#include "base/cstring.h"

#include <algorithm>
#include <cstring>
#include <istream>
#include <ostream>
#include <sstream>

namespace tov {

namespace {

constexpr std::size_t LONGEST_C_STRING = 149999;

std::string_view view_of(char const* text) noexcept { return text ? std::string_view(text) : std::string_view(); }

char lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char upper(char c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

int position(std::size_t found) noexcept { return found == std::string::npos ? -1 : static_cast<int>(found); }

/// Reads characters up to and including the first for which `stops` holds; leaves the state that std::getline leaves.
template <class Stops>
std::istream& read_until(std::istream& is, std::string& text, Stops stops) {
    std::istream::sentry const ready(is, true);
    if (!ready) return is;
    using Traits = std::istream::traits_type;
    bool extracted = false;
    std::streambuf& source = *is.rdbuf();
    while (true) {
        auto const got = source.sbumpc();
        if (Traits::eq_int_type(got, Traits::eof())) {
            is.setstate(extracted ? std::ios::eofbit : std::ios::eofbit | std::ios::failbit);
            return is;
        }
        extracted = true;
        char const c = Traits::to_char_type(got);
        if (stops(c)) return is;
        text.push_back(c);
    }
}

bool is_token_gap(char c) noexcept { return c == ' ' || c == '\t' || c == '\n'; }

}  // namespace

my_string::my_string(char const* text) : text_(view_of(text)) {
    if (text_.size() > LONGEST_C_STRING) text_.clear();
}

my_string& my_string::operator=(char const* text) {
    text_ = std::string(view_of(text));  // text may point into this string
    return *this;
}

my_string& my_string::operator=(std::string text) noexcept {
    text_ = std::move(text);
    return *this;
}

my_string& my_string::operator=(std::string_view text) {
    text_ = std::string(text);
    return *this;
}

my_string& my_string::operator=(char c) {
    text_.assign(1, c);
    return *this;
}

my_string& my_string::operator=(int number) {
    text_ = std::to_string(number);
    return *this;
}

my_string& my_string::operator=(double number) {
    std::ostringstream out;
    out << number;
    text_ = std::move(out).str();
    return *this;
}

my_string& my_string::operator+=(my_string const& tail) {
    text_ += tail.text_;
    return *this;
}

my_string& my_string::operator+=(char const* tail) {
    text_ += view_of(tail);
    return *this;
}

my_string& my_string::operator+=(char c) {
    text_ += c;
    return *this;
}

my_string& my_string::operator+=(std::string const& tail) {
    text_ += tail;
    return *this;
}

my_string& my_string::operator+=(std::string_view tail) {
    text_ += tail;
    return *this;
}

char& my_string::operator[](int i) noexcept {
    static char spare;
    if (i >= 0 && i < length()) [[likely]]
        return text_[static_cast<std::size_t>(i)];
    spare = '\0';
    return spare;
}

char my_string::operator[](int i) const noexcept {
    return i >= 0 && i < length() ? text_[static_cast<std::size_t>(i)] : '\0';
}

my_string& my_string::to_lower() {
    std::transform(text_.begin(), text_.end(), text_.begin(), lower);
    return *this;
}

my_string& my_string::to_upper() {
    std::transform(text_.begin(), text_.end(), text_.begin(), upper);
    return *this;
}

my_string my_string::Lower() const { return my_string(*this).to_lower(); }

my_string my_string::Upper() const { return my_string(*this).to_upper(); }

std::istream& my_string::read_token(std::istream& is) {
    text_.clear();
    while (is && !is.eof() && is_token_gap(static_cast<char>(is.peek()))) is.get();
    return read_until(is, text_, is_token_gap);
}

std::istream& my_string::read_to_delim(std::istream& is, char delim) {
    text_.clear();
    return read_until(is, text_, [delim](char c) { return c == delim || c == '\n' || c == '\0' || c == '\xff'; });
}

std::istream& my_string::read_line(std::istream& is) { return read_to_delim(is, '\n'); }

std::istream& my_string::GetNextQuota(std::istream& is) {
    auto const is_quote = [](char c) { return c == '"'; };
    std::string skipped;
    text_.clear();
    read_until(is, skipped, is_quote);
    return read_until(is, text_, is_quote);
}

int my_string::contains(std::string_view pattern) const noexcept {
    return !pattern.empty() && text_.find(pattern) != std::string::npos ? 1 : 0;
}

int my_string::rfind(my_string const& pattern) const noexcept { return position(text_.find(pattern.text_)); }

int my_string::find_first_of(char const& c) const noexcept { return position(text_.find(c)); }

int my_string::find_last_of(char const& c) const noexcept { return position(text_.rfind(c)); }

my_string& my_string::remove(int from, int n) {
    if (n > 0 && from >= 0 && from < length()) text_.erase(static_cast<std::size_t>(from), static_cast<std::size_t>(n));
    return *this;
}

my_string my_string::extract_sub_str(char c) {
    auto const first = std::min(text_.find_first_not_of(c), text_.size());
    auto const last = std::min(text_.find(c, first), text_.size());
    my_string piece(text_.substr(first, last - first));
    text_.erase(0, std::min(last + 1, text_.size()));
    return piece;
}

my_string my_string::extract_after(char c) const {
    auto const at = text_.find(c);
    return at == std::string::npos ? my_string() : my_string(text_.substr(at + 1));
}

my_string my_string::extract_before(char c) const { return my_string(text_.substr(0, text_.find(c))); }

my_string& my_string::rm_path() {
    text_.erase(0, text_.find_last_of("/\\") + 1);  // npos + 1 is 0
    return *this;
}

my_string& my_string::extract_path() {
    text_.erase(text_.find_last_of("/\\") + 1);
    return *this;
}

my_string& my_string::remove_extension() {
    if (auto const dot = text_.rfind('.'); dot != std::string::npos) text_.erase(dot);
    return *this;
}

my_string& my_string::convert_to_slash() {
    std::replace(text_.begin(), text_.end(), '\\', '/');
    return *this;
}

my_string& my_string::convert_to_backslash() {
    std::replace(text_.begin(), text_.end(), '/', '\\');
    return *this;
}

my_string& my_string::convert_to_html_slash() { return convert_to_slash(); }

my_string& my_string::replace_blanks(std::string_view replacement) {
    std::string changed;
    changed.reserve(text_.size());
    for (char const c : text_) {
        if (c == ' ') {
            changed += replacement;
        } else {
            changed += c;
        }
    }
    text_ = std::move(changed);
    return *this;
}

my_string& my_string::convert_blank_to_html_blank() { return replace_blanks("%20"); }

my_string& my_string::convert_blank_to_linux_blank() { return replace_blanks("\\ "); }

my_string& my_string::convert_blank_to_underline() { return replace_blanks("_"); }

my_string& my_string::remove_blanks() {
    std::erase(text_, ' ');
    return *this;
}

my_string& my_string::remove_eol_and_lf() {
    std::erase_if(text_, [](char c) { return c == '\r' || c == '\n'; });
    return *this;
}

my_string& my_string::reverse_string() {
    std::reverse(text_.begin(), text_.end());
    return *this;
}

void my_string::extendSize(int const& size) {
    if (size > 0) text_.reserve(static_cast<std::size_t>(size));
}

bool operator==(my_string const& a, char const* b) noexcept { return a.text_ == view_of(b); }

my_string operator+(my_string const& a, my_string const& b) {
    my_string sum(a);
    sum += b;
    return sum;
}

my_string operator+(my_string const& a, char const* b) {
    my_string sum(a);
    sum += b;
    return sum;
}

std::ostream& operator<<(std::ostream& os, my_string const& s) { return os << s.str(); }

std::istream& operator>>(std::istream& is, my_string& s) { return is >> s.str(); }

}  // namespace tov
