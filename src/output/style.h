// How numbers look in the result document: fixed, right aligned, with a decimal point always shown.
#pragma once

#include <charconv>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>

namespace tov {

/// Digits behind the point while nothing else is asked for.
inline constexpr int document_precision = 6;

/// Puts a stream into the document's style: fixed, right, showpoint, `precision` digits, filled with blanks.
inline void set_document_style(std::ostream& out, int precision = document_precision) {
    out.setf(std::ios::fixed, std::ios::floatfield);
    out.setf(std::ios::right, std::ios::adjustfield);
    out.setf(std::ios::showpoint);
    out.unsetf(std::ios::showpos | std::ios::uppercase);
    out.precision(precision);
    out.fill(' ');
}

/// The document's style with `precision` digits until the scope ends; then flags, precision and fill return.
class StyleScope {
public:
    explicit StyleScope(std::ostream& out, int precision = document_precision)
        : out_(out), flags_(out.flags()), precision_(out.precision()), fill_(out.fill()) {
        set_document_style(out, precision);
    }
    ~StyleScope() {
        out_.flags(flags_);
        out_.precision(precision_);
        out_.fill(fill_);
    }
    StyleScope(StyleScope const&) = delete;
    StyleScope& operator=(StyleScope const&) = delete;

private:
    std::ostream& out_;  // borrowed
    std::ios::fmtflags flags_;
    std::streamsize precision_;
    char fill_;
};

/// `value` in fixed notation, the point always shown: "0.12500", "3.", "inf", "nan".
///
/// What rounds to zero has no sign: a sum that ends a rounding error below zero would show "-0.00000".
///
/// @param precision  digits behind the point, 0 to 60; values outside are taken as the nearest limit.
[[nodiscard]] inline std::string number_text(double value, int precision) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    precision = precision < 0 ? 0 : precision > 60 ? 60 : precision;
    char digits[400];  // 309 digits before the point, 60 behind it, sign and point
    auto const end = std::to_chars(digits, digits + sizeof digits - 1, value, std::chars_format::fixed, precision);
    std::string text(digits, end.ptr);
    if (text.front() == '-' && text.find_first_not_of("-0.") == std::string::npos) text.erase(0, 1);
    if (precision == 0) text += '.';
    return text;
}

/// `value` with six significant digits, in the shorter of fixed and scientific notation: "1e-07", "0.05", "12".
[[nodiscard]] inline std::string general_text(double value) {
    char digits[32];
    auto const end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 6);
    return std::string(digits, end.ptr);
}

/// Writes `text` in a field of `width`, right or left aligned, whatever the stream's width, fill or flags are.
inline void write_padded(std::ostream& out, std::string_view text, int width, bool left = false) {
    out.width(0);
    std::string const blanks(
        width > 0 && static_cast<std::size_t>(width) > text.size() ? static_cast<std::size_t>(width) - text.size() : 0,
        ' ');
    if (!left) out.write(blanks.data(), static_cast<std::streamsize>(blanks.size()));
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (left) out.write(blanks.data(), static_cast<std::streamsize>(blanks.size()));
}

/// One value in fixed notation: `out << num{x, 12, 6}` takes 12 columns with 6 digits behind the point.
/// The stream's flags, precision and fill neither matter nor change.
struct num {
    double value;
    int width = 0;
    int precision = document_precision;
};
inline std::ostream& operator<<(std::ostream& out, num const& x) {
    write_padded(out, number_text(x.value, x.precision), x.width);
    return out;
}

/// One integer, right aligned in a field of `width`.
struct integer {
    long long value;
    int width = 0;
};
inline std::ostream& operator<<(std::ostream& out, integer const& x) {
    write_padded(out, std::to_string(x.value), x.width);
    return out;
}

/// A value and its standard deviation: value, `between`, deviation, both of one width and precision.
struct plus_minus {
    double value;
    double deviation;
    int width = 0;
    int precision = document_precision;
    std::string_view between = " +/- ";
};
inline std::ostream& operator<<(std::ostream& out, plus_minus const& x) {
    return out << num{x.value, x.width, x.precision} << x.between << num{x.deviation, x.width, x.precision};
}

/// Fixed text of the program, right aligned in a field of `width`: `out << label{"Theta(Hom) : ", 20}`.
struct label {
    std::string_view text;
    int width = 0;
};
inline std::ostream& operator<<(std::ostream& out, label const& x) {
    write_padded(out, x.text, x.width);
    return out;
}

/// Fixed text of the program, left aligned in a field of `width`.
struct left_label {
    std::string_view text;
    int width = 0;
};
inline std::ostream& operator<<(std::ostream& out, left_label const& x) {
    write_padded(out, x.text, x.width, true);
    return out;
}

/// `length` times `mark`, without a line end: `out << rule{31, '='}`.
struct rule {
    int length;
    char mark = '-';
};
inline std::ostream& operator<<(std::ostream& out, rule const& x) {
    write_padded(out, std::string(x.length > 0 ? static_cast<std::size_t>(x.length) : 0, x.mark), 0);
    return out;
}

}  // namespace tov
