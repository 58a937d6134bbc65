// Named haplotypes of a project and the counted references that samples hold.
#include "model/hapdef.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string_view>
#include <vector>

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

namespace {

// A few loci of all sequences at a time, so that their alleles stay in the cache.
class LocusBlock {
public:
    static constexpr int most_loci = 128;

    LocusBlock(TAlleleDB& db, int from, bool count_copies)
        : db_(db), from_(from), count_copies_(count_copies), known_(most_loci) {}

    void insert(HaploDef& h) {
        int const n = std::min(h.content.length() - from_, most_loci);
        if (n <= 0) return;
        std::string_view const text = std::string_view(h.content.str()).substr(static_cast<std::size_t>(from_));
        std::array<std::uint8_t, most_loci> ranks{};
        bool narrow = true;
        double const copies = count_copies_ ? h.copies : 0.0;
        for (int i = 0; i < n; ++i) {
            TAllele& allele = entry(i, text.substr(static_cast<std::size_t>(i), 1));
            allele.count(copies);
            narrow = narrow && allele.rank() <= 0xFF;
            ranks[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(allele.rank());
        }
        if (narrow && h.size() == from_) {
            h.append_ranks(db_, from_, {ranks.data(), static_cast<std::size_t>(n)});
            return;
        }
        for (int i = 0; i < n; ++i) {
            if (h.size() <= from_ + i) h.Add(&entry(i, text.substr(static_cast<std::size_t>(i), 1)));
        }
    }

private:
    TAllele& entry(int i, std::string_view name) {
        TAllele*& allele = known_[static_cast<std::size_t>(i)][static_cast<unsigned char>(name[0])];
        if (!allele) allele = db_.insert_allele(from_ + i, name, 0.0);
        return *allele;
    }

    TAlleleDB& db_;
    int from_;
    bool count_copies_;
    std::vector<std::array<TAllele*, 256>> known_;  // borrowed, by locus of the block and character
};

}  // namespace

void build_haplovects(std::span<HaploDef* const> list, TAlleleDB& db, char separator, bool count_copies) {
    if (separator) {
        for (HaploDef* const h : list) h->build_haplovect(&db, separator, 0, count_copies ? h->copies : 0.0);
        return;
    }
    int longest = 0;
    for (HaploDef* const h : list) {
        longest = std::max(longest, h->content.length());
        if (h->IsEmpty()) h->Reallocate(h->content.length());
    }
    for (int from = 0; from < longest; from += LocusBlock::most_loci) {
        LocusBlock block(db, from, count_copies);
        for (HaploDef* const h : list) block.insert(*h);
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
