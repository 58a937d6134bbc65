// What stands in the tables for scripts: file, columns, meaning, unit, missing value. Heads and docs/tables.md are
// written from here.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tov {

/// A column of a table, or several alike that stand side by side.
struct ColumnText {
    static constexpr int any_number = -1;

    std::string_view head;  ///< word in the head of the table; empty when the head doesn't name it
    std::string_view meaning;
    std::string_view unit = {};     ///< empty for text, counts of what the meaning names, and pure numbers
    std::string_view missing = {};  ///< what stands without a value; empty when there always is one
    int least = 1;                  ///< columns of this kind in a row
    int most = 1;                   ///< or any_number
};

/// A table: a file with a title, a head and rows.
struct TableText {
    std::string_view file;
    std::string_view flag;   ///< line of glbstreams.txt that asks for it; empty for a side table of a project
    std::string_view title;  ///< in front of the words of the head, with what parts them; empty for none
    std::string_view row;    ///< what a row stands for
    std::span<ColumnText const> columns;
    std::string_view note = {};
    bool append = true;  ///< a batch table that goes on behind what earlier starts left
};

/// The batch tables, in the order of their flags and files.
[[nodiscard]] std::span<TableText const> batch_table_texts() noexcept;
/// The tables that a project leaves in its result directory, or in the working directory.
[[nodiscard]] std::span<TableText const> side_table_texts() noexcept;

/// The batch or side table of that file name, which must be one of them.
[[nodiscard]] TableText const& table_text(std::string_view file) noexcept;

/// Title and head, with the line end: the words of the columns with a tab between them.
[[nodiscard]] std::string head_of(TableText const& table);

}  // namespace tov
