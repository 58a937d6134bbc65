// Biosys files: genotypes in fixed columns, told by a format statement.
//
// Format: Swofford and Selander 1981, Journal of Heredity 72:281-283.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tov {

class Project;

/// Columns of one field of a line; the first column is 0.
struct BiosysField {
    std::size_t begin = 0;
    std::size_t width = 0;
};

/// One line of an individual: its allele fields and, for the record of the format, those of its first locus.
struct BiosysLine {
    std::vector<BiosysField> alleles;
    std::size_t blanks = 0;  ///< in front of its first locus
};

/// A format statement: where name and alleles of an individual stand.
struct BiosysFormat {
    BiosysField name;
    std::size_t blanks_behind_name = 0;
    std::vector<BiosysLine> lines;

    [[nodiscard]] std::size_t allele_fields() const;
};

/// Reads a format statement of one, two or three lines an individual, such as "(A7,3X,4(1X,A2,A2)/10X,2(1X,A2,A2))":
/// A fields, X blanks, repeat counts, groups in parentheses, '/' between lines. The first A field is the name.
/// @return nothing for a statement of another number of lines, or of another form.
[[nodiscard]] std::optional<BiosysFormat> read_format1(std::string_view statement);
[[nodiscard]] std::optional<BiosysFormat> read_format2(std::string_view statement);
[[nodiscard]] std::optional<BiosysFormat> read_format3(std::string_view statement);

/// Turns a Biosys file into a project of genotypes of unknown phase.
///
/// A first line of a sample that has not the form of an individual is its name. A line that doesn't fit gives a mark
/// that makes the project fail when it is read. Blank fields and "?" are missing data.
void biosys_to_project(std::istream& in, std::ostream& project);

/// Writes an opened project of genotypes whose allele vectors are built.
/// @return false after a log line for haplotypic data, or without loci.
bool write_biosys(Project& project, std::ostream& out);

}  // namespace tov
