/// Little-endian values of binary files.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <istream>
#include <type_traits>

namespace tov {

/// Reads one value stored little-endian; `value` stays as it was, and the stream fails, when the bytes don't suffice.
template <class T>
requires std::is_arithmetic_v<T>
bool read_little_endian(std::istream& is, T& value) {
    std::array<char, sizeof(T)> bytes{};
    if (!is.read(bytes.data(), sizeof(T))) return false;
    if constexpr (std::endian::native == std::endian::big) std::reverse(bytes.begin(), bytes.end());
    value = std::bit_cast<T>(bytes);
    return true;
}

}  // namespace tov
