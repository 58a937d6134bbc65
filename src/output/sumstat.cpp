// TSumStat: chosen statistics of a project in one line of a table.
#include "output/sumstat.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "output/sumstat_columns.h"

namespace tov {

namespace {

constexpr std::size_t level_keywords = 2;  // in front of the statistics
constexpr int digits = 8;

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
    drop_line();
    lines_ = 0;
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
        flags_[k] = flags_[k] || upper.str().find(sum_stat_keywords[k]) != std::string::npos;
    }
}

bool TSumStat::flag(std::string_view keyword) const noexcept {
    auto const found = std::find(sum_stat_keywords.begin(), sum_stat_keywords.end(), keyword);
    return found != sum_stat_keywords.end() && flags_[static_cast<std::size_t>(found - sum_stat_keywords.begin())];
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
        header_ += column.title + '\t';
    }
}

void TSumStat::outputStats(TDataType) {
    std::ostringstream text;
    text.precision(digits);
    for (SumStatColumn const& column : columns_) {
        text << column.value << '\t';
    }
    stats_ += text.str();
}

void TSumStat::writeToFile(int first) {
    std::ofstream table(output_file_, first != 0 ? std::ios::trunc : std::ios::app);
    if (first != 0) {
        table << header_ << '\n';
    }
    table << stats_ << '\n';
    ++lines_;
    drop_line();
}

void TSumStat::drop_line() {
    columns_.clear();
    header_.clear();
    stats_.clear();
}

TSumStat& sum_stat() {
    static TSumStat choice;
    return choice;
}

}  // namespace tov
