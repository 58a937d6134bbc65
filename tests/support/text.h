/// Words of the tests about texts.
#pragma once

#include <cstring>
#include <string>

namespace tov::test {

/// The text has the part somewhere.
inline bool holds(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

/// The bytes of a value in memory, as files in binary form have them.
template <class T>
std::string bytes(T value) {
    std::string text(sizeof(T), '\0');
    std::memcpy(text.data(), &value, sizeof(T));
    return text;
}

}  // namespace tov::test
