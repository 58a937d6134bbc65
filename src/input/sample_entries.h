// What the readers of haplotypic and of genotypic entries of a sample have in common.
#pragma once

#include <string_view>

#include "input/block_lines.h"
#include "input/definition.h"
#include "model/popbase.h"

namespace tov {

/// The words in which a reader of entries complains.
struct EntryWords {
    char const* function;   ///< "Class::function()"
    std::string_view what;  ///< "haplotype" or "genotype"
    int size_code;          ///< report of a sum that differs from the declared size
    int copies_each;        ///< gene copies of an entry of frequency 1
};

/// Gene copies are counted in int: a project holds fewer than this.
inline constexpr double too_many_copies = 2147483647.0;

/// Common part of the two readers: sums, sizes, and the complaints that both have.
class EntryReader {
public:
    EntryReader(Population& sample, BlockLines& lines, EntryWords const& words, int project_loci);

    /// A section or sample that begins before the closing brace. Reports 194. @return true if the line is one.
    bool missing_brace();
    /// Converts the text of a frequency. @return false after a log line, also when the sample's sum gets too large.
    bool convert_frequency(std::string_view text, double& frequency);
    /// Checks the number of loci against that of the project's first entry. @return false after a log line.
    bool check_loci(std::string_view id, int loci);
    /// Individuals or gene copies of an entry of that frequency.
    [[nodiscard]] double copies(double frequency) const noexcept {
        return relative_ ? frequency * declared_ : frequency;
    }
    /// Compares sum and declared size, and sets the sample size.
    ///
    /// @return false without a closing brace, after 194.
    bool finish(bool external);

    DefinitionScanner const scanner;
    double sum = 0.0;  ///< of the frequencies read so far

protected:
    Population& sample_;  // borrowed
    BlockLines& lines_;   // borrowed

private:
    EntryWords const& words_;
    bool relative_;
    double declared_;
    int project_loci_;
};

}  // namespace tov
