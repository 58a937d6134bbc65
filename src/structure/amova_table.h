// AMOVA_table: the records of an analysis locus by locus, their tables and their average over loci.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "structure/amova_results.h"

namespace tov {

class settings;

/// What an AMOVA of a case number consists of.
struct AmovaCase {
    std::vector<char const*> blocks;        ///< heads of the levels, highest first
    std::vector<AmovaIndexSlot> columns;    ///< indices in the table of loci
    std::vector<AmovaIndexSlot> averages;   ///< indices in the average, in the design's print order
    std::vector<char const*> labels;        ///< rows of the average
    struct Test {
        int component;
        AmovaIndexSlot slot;
        bool below;
    };
    std::vector<Test> tests;                ///< in the design's order
};

/// Case 1 to 9; null for any other number and for the cases without a design.
[[nodiscard]] AmovaCase const* amova_case(int case_number);
/// "FST", "FSC", ...
[[nodiscard]] char const* index_name(AmovaIndexSlot slot);

class AMOVA_table {
public:
    void add(std::unique_ptr<amova_results> record) { records_.push_back(std::move(record)); }
    [[nodiscard]] std::vector<std::unique_ptr<amova_results>> const& records() const noexcept { return records_; }
    [[nodiscard]] bool empty() const noexcept { return records_.empty(); }
    /// Case of the first record, 0 without one.
    [[nodiscard]] int first_case() const noexcept { return records_.empty() ? 0 : records_.front()->case_number; }

    /// Columns of sums of squares, variances, percentages and indices: 12, or as many as the numbers need.
    [[nodiscard]] int width() const;
    /// Columns of a value of a single population: `least`, or as many as the numbers of both tables need.
    [[nodiscard]] int population_width(int least, bool fis) const;
    void print_table_header(std::ostream& out) const;
    /// One row a locus with a total variance above 1e-17.
    void print_table(std::ostream& out) const;
    /// Values of single populations, one row a locus with a positive total sum of squares.
    ///
    /// @param relative  100 (value - index) / index, for loci whose index is not 0.
    void print_Fst_per_pop_table(std::ostream& out, int column, bool relative) const;
    void print_Fis_per_pop_table(std::ostream& out, int column, bool relative) const;
    /// Weighted averages over loci, their bootstrap when there are more than five loci, and their tests.
    /// Draws: 20000 bootstraps of the number of loci for each index, in print order.
    void print_average_loci(std::ostream& out, settings const& set, bool groups) const;

private:
    std::vector<std::unique_ptr<amova_results>> records_;
};

}  // namespace tov
