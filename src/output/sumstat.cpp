// TSumStat: chosen statistics of a project in one line of a table.
#include "output/sumstat.h"

#include <algorithm>
#include <fstream>
#include <ostream>
#include <unordered_map>

#include "output/sumstat_columns.h"
#include "output/tab_row.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr std::size_t level_keywords = 2;  // in front of the statistics
constexpr int digits = 8;
constexpr double not_computed = -1.0;

/// The line without its comment.
my_string clearLineAfterPoundSign(my_string const& line) {
    std::string const& text = line.str();
    return my_string(text.substr(0, text.find('#')).c_str());
}

}  // namespace

void TSumStat::resetComputationFlags() { flags_.fill(false); }

void TSumStat::readDefSSFile(my_string const& name) {
    definition_file_ = name.str();
    resetComputationFlags();
    lines_ = 0;
    drop_line();
    std::ifstream in(definition_file_);
    std::string line;
    while (std::getline(in, line)) {
        checkForStat(my_string(line.c_str()));
    }
}

void TSumStat::checkForStat(my_string const& line) {
    my_string upper = clearLineAfterPoundSign(line);
    upper.to_upper();
    for (std::size_t k = 0; k < sum_stat_keywords.size(); ++k) {
        flags_[k] = flags_[k] || upper.str().find(sum_stat_keywords[k].word) != std::string::npos;
    }
}

bool TSumStat::flag(std::string_view keyword) const noexcept {
    for (std::size_t k = 0; k < sum_stat_keywords.size(); ++k) {
        if (sum_stat_keywords[k].word == keyword) return flags_[k];
    }
    return false;
}

bool TSumStat::in_force() const noexcept {
    return std::any_of(flags_.begin() + level_keywords, flags_.end(), [](bool f) { return f; });
}

bool TSumStat::wants_samples() const noexcept { return flag("POP_LEVEL") || !flag("GROUP_LEVEL"); }

void TSumStat::collect(SumStatSource const& source, bool groups) {
    columns_.clear();
    if (!in_force()) {
        return;
    }
    columns_ = sum_stat_columns(*this, source);
    if (groups) {
        for (SumStatColumn& column : columns_) {
            column.title.insert(0, "gr_");
        }
    }
}

void TSumStat::outputHeader(TDataType) {
    for (SumStatColumn const& column : columns_) {
        head_.push_back(column.title);
    }
}

void TSumStat::outputStats(TDataType) { line_.insert(line_.end(), columns_.begin(), columns_.end()); }

/// kept on purpose: each title and each value is followed by a tab, so that a line ends with one.
void TSumStat::write_head(std::ostream& table) const {
    TabRow row(table);
    for (std::string const& title : head_) {
        row << title;
    }
    row << "";
}

void TSumStat::write_line(std::ostream& table) const {
    std::unordered_map<std::string_view, double> values;
    for (SumStatColumn const& column : line_) {
        values.emplace(column.title, column.value);
    }
    TabRow row(table, {.digits = digits});
    std::size_t found = 0;
    for (std::string const& title : head_) {
        auto const value = values.find(title);
        found += value != values.end() ? 1 : 0;
        row << (value != values.end() ? value->second : not_computed);
    }
    row << "";
    if (found < values.size()) {
        *_AOS_ << "\nWarning: " << values.size() - found << " chosen statistics of this project have no column in "
               << output_file_ << ", which began with another project\n";
    }
}

void TSumStat::writeToFile(int first) {
    std::ofstream table(output_file_, first != 0 ? std::ios::trunc : std::ios::app);
    if (first != 0) {
        write_head(table);
    }
    write_line(table);
    ++lines_;
    drop_line();
}

void TSumStat::drop_line() {
    columns_.clear();
    line_.clear();
    if (lines_ == 0) {
        head_.clear();
    }
}

TSumStat& sum_stat() {
    static TSumStat choice;
    return choice;
}

}  // namespace tov
