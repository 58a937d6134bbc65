// TabRow: the one writer of tab-separated tables.
#pragma once

#include <concepts>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

namespace tov {

/// One row of a tab-separated table. Its cells are gathered with a tab between them; when the row goes out of scope it
/// is written whole, with a line end. A row without a cell is an empty line.
///
/// Numbers: integers in full; doubles in the shorter of fixed and scientific notation, "inf", "-inf" or "nan". Nothing
/// of the stream's own format counts.
class TabRow {
public:
    static constexpr int default_digits = 6;

    /// How rows of a table are written.
    struct Style {
        int digits = default_digits;  ///< significant digits of a double
        bool flush = false;           ///< what is written survives a crash
    };

    /// @param table  borrowed; null takes cells and writes nothing.
    TabRow(std::ostream* table, Style style) noexcept : table_(table), style_(style) {}
    TabRow(std::ostream& table, Style style) noexcept : TabRow(&table, style) {}
    explicit TabRow(std::ostream& table) noexcept : TabRow(&table, Style{}) {}
    TabRow(TabRow&& other) noexcept
        : table_(std::exchange(other.table_, nullptr)),
          style_(other.style_),
          empty_(other.empty_),
          line_(std::move(other.line_)) {}
    TabRow& operator=(TabRow&&) = delete;
    ~TabRow();

    TabRow& operator<<(double value);
    template <std::integral Integer>
    TabRow& operator<<(Integer value) {
        static_assert(!std::same_as<Integer, char> && !std::same_as<Integer, bool>);
        return number(static_cast<long long>(value));
    }
    /// Text as it is; bytes that would end the cell or the line become blanks.
    TabRow& operator<<(std::string_view text);
    /// Text between double quotes; those inside are doubled.
    TabRow& quoted(std::string_view text);

private:
    TabRow& number(long long value);
    void begin_cell();
    void append(std::string_view text);

    std::ostream* table_;  // borrowed; null: nothing is written
    Style style_{};
    bool empty_ = true;
    std::string line_;
};

}  // namespace tov
