// Flat key=value text: the look-up of the settings file.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace tov {

/// The lines of a key=value text that can answer a look-up, read once and kept in memory.
///
/// kept on purpose: a key is found on the first line that contains it anywhere and holds a '=', also inside a longer
/// key or a comment; settings files written by front ends rely on the order of their lines.
class PrivateProfile {
public:
    /// @param bound  a value ends where its line reaches this index, counted from 0.
    explicit PrivateProfile(std::istream& in, std::size_t bound);

    /// Value of the first line with `key` whose value isn't empty: the text behind the line's first '='.
    ///
    /// @param out  the value, or empty when there is none.
    /// @return     whether a value was found.
    bool find(std::string_view key, std::string& out) const;

private:
    struct Line {
        std::string text;
        std::size_t value_begin;
        std::size_t value_end;
    };
    std::vector<Line> lines_;
};

/// One look-up in a file. @return 1, or 0 when the file does not open or holds no value of the key; `out` is empty
/// then.
///
/// @param size  bound on the index in the line at which a value ends.
/// The names of a section and of a default value are not used.
int GetPrivateProfileString(char const* section, char const* key, char const* default_value, std::string& out, int size,
                            char const* file);

}  // namespace tov
