// TSumStat: chosen statistics of a project in one line of a table.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/cstring.h"
#include "input/profile.h"

namespace tov {

class Samples;
class amova_results;
class settings;
struct PairwiseResults;

/// Words of the definition file, in the order in which they are looked for.
inline constexpr std::array<std::string_view, 59> sum_stat_keywords{
    "POP_LEVEL",       "GROUP_LEVEL",     "ALL_K",          "ALLSD_K",        "MEAN_K",         "SD_K",
    "TOT_K",           "ALL_H",           "ALLSD_H",        "MEAN_H",         "SD_H",           "TOT_H",
    "ALL_S",           "ALLSD_S",         "PRIVATE_S",      "MEAN_S",         "SD_S",           "TOT_S",
    "ALL_TAJIMAD",     "ALLSD_TAJIMAD",   "MEAN_TAJIMAD",   "SD_TAJIMAD",     "TOT_TAJIMAD",    "ALL_FUFS",
    "ALLSD_FUFS",      "MEAN_FUFS",       "SD_FUFS",        "TOT_FUFS",       "ALL_PI",         "MEAN_PI",
    "SD_PI",           "TOT_PI",          "ALL_GW",         "ALLSD_GW",       "MEAN_GW",        "SD_GW",
    "TOT_GW",          "ALL_NGW",         "ALLSD_NGW",      "MEAN_NGW",       "SD_NGW",         "ALL_RANGE",
    "ALLSD_RANGE",     "MEAN_RANGE",      "SD_RANGE",       "TOT_RANGE",      "MEAN_ALL_DPRIME", "MEAN_ALL_R2",
    "ALL_ADJ_DPRIME",  "ALL_ADJ_R2",      "MEAN_ADJ_DPRIME", "MEAN_ADJ_R2",   "FLANK_DPRIME",   "FLANK_R2",
    "GLOBAL_FSTAT",    "GLOBALSD_FSTAT",  "PAIRWISE_FST",   "PAIRWISE_PI",    "PAIRWISE_DMUSQR"};

/// What the columns are taken from: the samples of one level with what its analyses left. Borrowed.
struct SumStatSource {
    settings& set;
    Samples& samples;
    amova_results const* amova = nullptr;
    PairwiseResults const* pairs = nullptr;
};

/// A column of the table; -1 where the statistic was not computed.
struct SumStatColumn {
    std::string title;
    double value = -1.0;
};

/// The choice of statistics, made once by a definition file, and the line of the project in hand.
class TSumStat {
public:
    /// Reads the definition file; the flags are reset first. A missing file leaves them so.
    void readDefSSFile(my_string const& name);
    /// Sets the flag of each keyword that the line contains. What follows a "#" does not count, nor does case.
    ///
    /// kept on purpose: a keyword counts inside a longer word too, so that ALLSD_K asks for SD_K as well.
    void checkForStat(my_string const& line);
    void resetComputationFlags();

    /// A list of statistics is in force: the definition file asks for at least one.
    [[nodiscard]] bool in_force() const noexcept;
    /// The list asks for the level of samples: it does when it names no level.
    [[nodiscard]] bool wants_samples() const noexcept;
    [[nodiscard]] bool wants_groups() const noexcept { return flag("GROUP_LEVEL"); }
    /// Flag of a keyword; false for any other word.
    [[nodiscard]] bool flag(std::string_view keyword) const noexcept;

    /// Name of the table.
    void set_output(std::string name) { output_file_ = std::move(name); }
    /// Takes the columns of a level over; the titles of groups begin with "gr_". Nothing without a list in force.
    ///
    /// Pools copies of the samples for the columns over all gene copies; these have the frequencies of the alleles.
    void collect(SumStatSource const& source, bool groups);
    /// Appends the titles of the collected columns to the head, each followed by a tab.
    void outputHeader(TDataType type);
    /// Appends the values of the collected columns to the line, each followed by a tab.
    void outputStats(TDataType type);
    /// Writes the line, in front of it the head when `first`, and empties both. @param first  the table begins anew.
    void writeToFile(int first);
    /// Drops head and line of a project that was left.
    void drop_line();

    [[nodiscard]] std::string const& header() const noexcept { return header_; }
    [[nodiscard]] std::string const& stats() const noexcept { return stats_; }
    /// Lines written since the definition was read.
    [[nodiscard]] int lines() const noexcept { return lines_; }

private:
    std::string definition_file_;
    std::string output_file_;
    std::array<bool, sum_stat_keywords.size()> flags_{};
    std::vector<SumStatColumn> columns_;
    std::string header_;
    std::string stats_;
    int lines_ = 0;
};

/// The choice of statistics of this process.
[[nodiscard]] TSumStat& sum_stat();

}  // namespace tov
