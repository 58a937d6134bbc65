// Numbers from text.
#include "base/numtext.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace tov {

namespace {

constexpr int MOST_DIGITS = 18;  // that fit 64 bits whatever they are

constexpr std::array<double, 23> EXACT_POWERS = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

/// The text from its end: digits by their weight, '-' flips what was gathered, the rest is passed over.
template <class Number>
Number gather(std::string_view text) noexcept {
    Number sum{};
    Number weight{1};
    for (auto it = text.rbegin(); it != text.rend(); ++it) {
        if (is_digit(*it)) {
            sum += static_cast<Number>(*it - '0') * weight;
            weight *= Number{10};
        } else if (*it == '-') {
            sum = Number{} - sum;
        }
    }
    return sum;
}

int digits_of(std::string_view text) noexcept {
    return static_cast<int>(std::count_if(text.begin(), text.end(), is_digit));
}

/// The text up to its digit number MOST_DIGITS.
std::string_view without_surplus_digits(std::string_view text) noexcept {
    int seen = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (is_digit(text[i]) && ++seen > MOST_DIGITS) return text.substr(0, i);
    }
    return text;
}

/// x * 10^power, by one rounding where the power is exact.
double scaled(double x, long power) noexcept {
    if (x == 0.0) return 0.0;
    long const largest = static_cast<long>(EXACT_POWERS.size()) - 1;
    if (power >= 0 && power <= largest) return x * EXACT_POWERS[static_cast<std::size_t>(power)];
    if (power < 0 && power >= -largest) return x / EXACT_POWERS[static_cast<std::size_t>(-power)];
    long const bounded = std::clamp(power, -700L, 700L);
    long const half = bounded / 2;  // in two steps, so that 10^power itself needn't be a double
    return x * std::pow(10.0, static_cast<double>(half)) * std::pow(10.0, static_cast<double>(bounded - half));
}

}  // namespace

long my_atol(std::string_view text) noexcept { return static_cast<long>(gather<std::uint64_t>(text)); }

int my_atoi(std::string_view text) noexcept { return static_cast<int>(my_atol(text)); }

double my_atof(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    bool const negative = text.starts_with('-');
    if (negative) text.remove_prefix(1);

    std::size_t const integer_end = std::min(text.find_first_of(".eE"), text.size());
    std::string_view const integer_field = text.substr(0, integer_end);
    std::string_view fraction_field;
    std::size_t exponent_mark = integer_end;
    if (integer_end < text.size() && text[integer_end] == '.') {
        exponent_mark = std::min(text.find_first_of("eE", integer_end), text.size());
        fraction_field = without_surplus_digits(text.substr(integer_end + 1, exponent_mark - integer_end - 1));
    }
    long const told_exponent = exponent_mark < text.size() ? my_atol(text.substr(exponent_mark + 1)) : 0;
    long const exponent = std::clamp(told_exponent, -1000L, 1000L);  // beyond, every number is 0 or infinite

    double const integer = digits_of(integer_field) > MOST_DIGITS ? gather<double>(integer_field)
                                                                  : static_cast<double>(my_atol(integer_field));
    auto const fraction = static_cast<double>(my_atol(fraction_field));
    int const decimals = digits_of(fraction_field);
    double const signed_fraction = integer >= 0.0 ? fraction : -fraction;

    // All digits as one whole number where that is exact: then the result is rounded once.
    double const shifted = integer * EXACT_POWERS[static_cast<std::size_t>(decimals)];
    double const value = std::fabs(shifted) < 1e15 ? scaled(shifted + signed_fraction, exponent - decimals)
                                                   : scaled(integer + scaled(signed_fraction, -decimals), exponent);
    return negative ? -value : value;
}

}  // namespace tov
