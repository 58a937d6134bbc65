// TabRow: the one writer of tab-separated tables.
#include "output/tab_row.h"

#include <charconv>
#include <cmath>
#include <ostream>

namespace tov {

TabRow::~TabRow() {
    if (table_ == nullptr) return;
    line_ += '\n';
    table_->write(line_.data(), static_cast<std::streamsize>(line_.size()));
    if (style_.flush) table_->flush();
}

void TabRow::begin_cell() {
    if (!empty_) line_ += '\t';
    empty_ = false;
}

void TabRow::append(std::string_view text) {
    for (char const c : text) line_ += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
}

TabRow& TabRow::operator<<(double value) {
    if (table_ == nullptr) return *this;
    begin_cell();
    if (std::isnan(value)) {
        line_ += "nan";
    } else if (std::isinf(value)) {
        line_ += value < 0 ? "-inf" : "inf";
    } else {
        char text[64];
        auto const end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, style_.digits);
        line_.append(text, end.ptr);
    }
    return *this;
}

TabRow& TabRow::number(long long value) {
    if (table_ == nullptr) return *this;
    begin_cell();
    line_ += std::to_string(value);
    return *this;
}

TabRow& TabRow::operator<<(std::string_view text) {
    if (table_ == nullptr) return *this;
    begin_cell();
    append(text);
    return *this;
}

TabRow& TabRow::quoted(std::string_view text) {
    if (table_ == nullptr) return *this;
    begin_cell();
    line_ += '"';
    for (char const c : text) append(c == '"' ? "\"\"" : std::string_view(&c, 1));
    line_ += '"';
    return *this;
}

}  // namespace tov
