// The table of the settings file: a row a key, in the order of reading and writing.
#pragma once

#include <span>
#include <string>
#include <variant>

#include "input/settings.h"

namespace tov {

/// A field of settings.
using SettingsField =
    std::variant<int settings::*, long settings::*, double settings::*, bool settings::*, std::string settings::*>;

enum class KeyFormat {
    whole,       ///< a whole number
    fixed,       ///< six decimals
    scientific,  ///< mantissa of six decimals and an exponent
    text,
    not_written  ///< read as a whole number, never written
};

/// One key of the settings file.
struct SettingsKey {
    char const* name;
    KeyFormat format;
    SettingsField field;          ///< where its value goes when read
    SettingsField written_field;  ///< where its value comes from when written
    char const* comment;          ///< comment lines above the key, each with its newline
    bool kept_when_missing = false;
    bool read_as_whole = false;    ///< a decimal key whose text is read as a whole number
    bool found_sets_both = false;  ///< a value that was found goes into written_field too
};

/// A headed group of keys. The first group of the table is the task mask, without a heading.
struct SettingsGroup {
    char const* title;
    std::span<SettingsKey const> keys;
};

/// A bit of the task mask and its name in the comments of the file.
struct TaskBitName {
    long bit;
    char const* name;
};

/// A key's value goes nowhere beyond this index in its line, counted from 0.
inline constexpr int settings_line_bound = 100;

[[nodiscard]] std::span<SettingsGroup const> settings_groups() noexcept;
[[nodiscard]] std::span<TaskBitName const> task_bit_names() noexcept;

}  // namespace tov
