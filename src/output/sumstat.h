// TSumStat: chosen statistics of a project in one line of a table.
#pragma once

#include <array>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "base/cstring.h"
#include "input/profile.h"
#include "output/sumstat_keywords.h"

namespace tov {

class Samples;
class amova_results;
class settings;
struct PairwiseResults;

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
    /// Computes the columns of a level; the titles of groups begin with "gr_". Nothing without a list in force.
    ///
    /// Pools copies of the samples for the columns over all gene copies; these have the frequencies of the alleles.
    void collect(SumStatSource const& source, bool groups);
    /// Appends the titles of the collected columns to the head of the table.
    void outputHeader(TDataType type);
    /// Appends the collected columns to the line of the project.
    void outputStats(TDataType type);
    /// Writes the line, in front of it the head when `first`, and empties it. @param first  the table begins anew.
    ///
    /// The head is that of the first project. A line has its columns and no others: -1 for one that the project lacks;
    /// a column that the head lacks is left out, which the log is told.
    void writeToFile(int first);
    /// Drops the line of a project that was left, and a head that isn't written yet.
    void drop_line();

    /// Lines written since the definition was read.
    [[nodiscard]] int lines() const noexcept { return lines_; }

private:
    void write_head(std::ostream& table) const;
    void write_line(std::ostream& table) const;

    std::string definition_file_;
    std::string output_file_;
    std::array<bool, sum_stat_keywords.size()> flags_{};
    std::vector<SumStatColumn> columns_;  ///< of the level in hand
    std::vector<std::string> head_;       ///< titles
    std::vector<SumStatColumn> line_;     ///< of the project in hand
    int lines_ = 0;
};

/// The choice of statistics of this process.
[[nodiscard]] TSumStat& sum_stat();

}  // namespace tov
