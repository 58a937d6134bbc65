// Named haplotypes of a project and the counted references that samples hold.
#include "model/hapdef.h"

#include <ostream>
#include <string_view>

namespace tov {

void HaploDef::build_haplovect(TAlleleDB* db, char const& separator, int /*pop*/, double count) {
    if (!db) return;
    std::string_view const text(content.str());
    int const length = separator ? db->nb_loci() : static_cast<int>(text.size());
    if (IsEmpty()) Reallocate(length);
    int locus = 0;
    auto const insert_piece = [&](std::string_view piece) {
        TAllele* const allele = db->insert_allele(locus, piece, count);
        if (size() <= locus) Add(allele);
        ++locus;
    };
    if (!separator) {
        for (int i = 0; i < length; ++i) insert_piece(text.substr(static_cast<std::size_t>(i), 1));
        return;
    }
    for (std::size_t from = 0; from < text.size();) {
        std::size_t const to = std::min(text.find(separator, from), text.size());
        if (to > from) insert_piece(text.substr(from, to - from));
        from = to + 1;
    }
}

bool HaploDef::hasSameAllelicContent(HaploDef const& other) const {
    for (int p = 0; p < size(); ++p) {
        if (!same_at(p, other)) return false;
    }
    return true;
}

std::ostream& operator<<(std::ostream& os, HaploDef const& haplotype) {
    if (haplotype.content.is_null()) return os << ' ' << haplotype.id;
    return os << haplotype.id << '\t' << haplotype.content;
}

my_string PHaploDef::name() const { return haplotype ? haplotype->id : my_string("ERROR"); }

my_string PHaploDef::operator()(int position) const {
    TAllele const* const allele = (*this)[position];
    return allele ? allele->name() : my_string("ERROR");
}

TAllele* PHaploDef::operator[](int position) const { return haplotype ? (*haplotype)[position] : nullptr; }

}  // namespace tov
