// Allelic definitions: what stands behind identifier and frequency on a line of data.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "input/profile.h"

namespace tov {

/// Why a definition can't be read.
enum class DefinitionFault { none, empty, character, no_integer };

/// Reads definitions of the data type of a profile. One scanner serves all lines of a sample.
class DefinitionScanner {
public:
    explicit DefinitionScanner(ProfileSettings const& profile);

    /// Checks a definition and brings it into the form in which it is kept.
    ///
    /// One character a site (DNA, RFLP, and standard data without a separator), or one word a locus, the words joined
    /// by one blank. Blanks and the profile's separator part words and vanish between sites; '#' ends the text.
    /// @param content  receives the form that is kept; unspecified after a fault.
    /// @param loci     receives the number of sites or words. FREQUENCY data have none, and no definition.
    DefinitionFault scan(std::string_view text, std::string& content, int& loci) const;

    /// Number of loci of a kept form.
    [[nodiscard]] int nb_loci(std::string_view content) const noexcept;
    /// The same definition; DNA without regard to case.
    [[nodiscard]] bool same(std::string_view a, std::string_view b) const noexcept;
    [[nodiscard]] TDataType type() const noexcept { return type_; }

private:
    enum Kind : unsigned char { site, blank, bad };

    DefinitionFault scan_sites(std::string_view text, std::string& content) const;
    DefinitionFault scan_words(std::string_view text, std::string& content, int& loci) const;
    [[nodiscard]] bool valid_integer(std::string_view word) const noexcept;

    TDataType type_;
    bool sites_;  // one character is one locus
    char missing_;
    std::string recessive_;
    std::array<unsigned char, 256> kind_;
};

/// Reports a fault: 112 for a character, 121 for a word that is no integer, nothing otherwise.
void report_definition_fault(DefinitionFault fault, char const* function);

/// Once the definitions are read in, words are parted by one blank, whatever separator the project uses.
void normalise_separator(ProfileSettings& profile) noexcept;

}  // namespace tov
