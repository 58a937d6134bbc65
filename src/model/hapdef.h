// Named haplotypes of a project and the counted references that samples hold.
#pragma once

#include <iosfwd>

#include "base/cstring.h"
#include "model/allele_row.h"

namespace tov {

class ProfileSettings;

/// One named haplotype: label, content as read, alleles (one a locus, borrowed from the allele database).
class HaploDef : public AlleleRow {
public:
    HaploDef() = default;
    explicit HaploDef(my_string const& label) : id(label) {}
    HaploDef(my_string const& label, my_string const& text) : id(label), content(text) {}

    /// Reads a definition from the rest of a line; defined with the readers. @return 1, or 0 after its report.
    int read_data(my_string& text, ProfileSettings& profile);
    int read_data(std::istream& is, ProfileSettings& profile);

    /// Turns the content into alleles, inserting each into `db` with `count`.
    ///
    /// @param separator  0: one character is one allele; otherwise pieces between separators, empty ones skipped.
    /// @param pop        ignored.
    /// A second call inserts the count again and leaves the alleles alone.
    void build_haplovect(TAlleleDB* db, char const& separator, int pop, double count);

    /// Same allele pointers at the positions of this definition.
    [[nodiscard]] bool hasSameAllelicContent(HaploDef const& other) const;
    [[nodiscard]] int nb_loci() const noexcept { return size(); }
    [[nodiscard]] my_string const& name() const noexcept { return id; }

    bool operator==(HaploDef const& other) const { return id == other.id; }
    bool operator!=(HaploDef const& other) const { return !(id == other.id); }

    int matrix_index = -1;  ///< row in the user's distance matrix, -1 until associated
    my_string id;
    my_string content;  ///< empty when unknown
    int copies = 0;     ///< gene copies in all samples
};

/// build_haplovect for every definition, with its copies as count, or with 0 unless `count_copies`: the same result as
/// one call each, in less time.
void build_haplovects(std::span<HaploDef* const> list, TAlleleDB& db, char separator, bool count_copies = true);

/// "id", tab, content; one blank and the id when the content is empty.
std::ostream& operator<<(std::ostream& os, HaploDef const& haplotype);

/// A haplotype and its number of copies in one sample.
class PHaploDef {
public:
    PHaploDef() = default;
    PHaploDef(HaploDef* definition, int number) : haplotype(definition), copies(number) {}

    /// Label of the haplotype, "ERROR" without one.
    [[nodiscard]] my_string name() const;
    /// Name of the allele at a position ("ERROR" where there is none).
    [[nodiscard]] my_string operator()(int position) const;
    /// Allele at a position, or null.
    [[nodiscard]] TAllele* operator[](int position) const;
    [[nodiscard]] int nb_loci() const { return haplotype ? haplotype->nb_loci() : 0; }

    bool operator==(PHaploDef const& other) const { return haplotype == other.haplotype; }
    bool operator!=(PHaploDef const& other) const { return haplotype != other.haplotype; }

    HaploDef* haplotype = nullptr;  ///< borrowed from the Haplo_DB
    int copies = 0;                 ///< gene copies of the sample
};

}  // namespace tov
