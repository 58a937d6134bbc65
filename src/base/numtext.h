/// Numbers from the text of data and settings files.
#pragma once

#include <string_view>

namespace tov {

/// Whole number: the digits of the text, read from its end; every '-' flips the sign of what was gathered so far (from
/// its right), all other characters are passed over. "1a2" gives 12, "12-3" gives 117, "" gives 0.
/// A value beyond 64 bits wraps.
[[nodiscard]] long my_atol(std::string_view text) noexcept;
/// my_atol, cut to 32 bits.
[[nodiscard]] int my_atoi(std::string_view text) noexcept;

/// Decimal number: a leading '-' is the sign; then the integer part up to '.', 'e' or 'E', the fraction up to 'e' or
/// 'E', and the exponent, each read as my_atol reads. "" gives 0. Precision: the nearest double for up to 15 digits and
/// powers of ten up to 22; else within a few units of the last place. Digits of the fraction beyond the 18th are
/// dropped.
[[nodiscard]] double my_atof(std::string_view text) noexcept;

}  // namespace tov
