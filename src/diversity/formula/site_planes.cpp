// Bit planes of aligned sequences.
#include "diversity/formula/site_planes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

namespace tov {
namespace {

#if defined(__GNUC__) && defined(__x86_64__)
#define TOV_COUNTING_INSTRUCTION [[gnu::target("popcnt")]]
#else
#define TOV_COUNTING_INSTRUCTION
#endif

using Word = std::uint64_t;

/// Sums the bits of many words by shifts: per-byte counts are added up first, and the bytes once every 31 words.
class ShiftCounter {
public:
    [[gnu::always_inline]] inline void add(Word v) noexcept {
        v -= (v >> 1) & 0x5555555555555555U;
        v = (v & 0x3333333333333333U) + ((v >> 2) & 0x3333333333333333U);
        bytes_ += (v + (v >> 4)) & 0x0f0f0f0f0f0f0f0fU;
    }
    /// To be called at least once every 31 additions.
    [[gnu::always_inline]] inline void fold() noexcept {
        Word const pairs = (bytes_ & 0x00ff00ff00ff00ffU) + ((bytes_ >> 8) & 0x00ff00ff00ff00ffU);
        total_ += static_cast<int>((pairs * 0x0001000100010001U) >> 48);
        bytes_ = 0;
    }
    [[gnu::always_inline]] [[nodiscard]] inline int total() const noexcept { return total_; }

private:
    Word bytes_ = 0;
    int total_ = 0;
};

/// Sums the bits of words by the processor's own instruction, where the caller is compiled for it.
class InstructionCounter {
public:
    [[gnu::always_inline]] inline void add(Word v) noexcept { total_ += std::popcount(v); }
    [[gnu::always_inline]] inline void fold() noexcept {}
    [[gnu::always_inline]] [[nodiscard]] inline int total() const noexcept { return total_; }

private:
    int total_ = 0;
};

constexpr std::size_t fold_every = 31;

/// Sites of restriction haplotypes that are compared together; rows are filled up with missing data.
constexpr std::size_t rflp_block = 64;

/// The counts that share a word, a byte each; the first one has the lowest byte.
using CountList = std::array<int PairCounts::*, 8>;
constexpr CountList often_counted = {&PairCounts::equal,        &PairCounts::transversions,
                                     &PairCounts::deletions,    &PairCounts::ambiguous,
                                     &PairCounts::unclassified, &PairCounts::uncorrectable,
                                     &PairCounts::transitions,  &PairCounts::uncorrectable_known};
constexpr CountList seldom_counted = {&PairCounts::equal_gap, &PairCounts::ag, &PairCounts::ct, &PairCounts::ac,
                                      &PairCounts::at,        &PairCounts::cg, &PairCounts::gt, nullptr};

Word in_bytes(PairCounts const& c, CountList const& list) noexcept {
    Word bytes = 0;
    for (std::size_t k = 0; k < list.size(); ++k) {
        bytes |= list[k] != nullptr ? static_cast<Word>(c.*list[k]) << (8 * k) : 0;
    }
    return bytes;
}

[[gnu::always_inline]] inline void add_bytes(PairCounts& c, Word bytes, CountList const& list) noexcept {
    for (std::size_t k = 0; k < list.size(); ++k) {
        if (list[k] != nullptr) {
            c.*list[k] += static_cast<int>((bytes >> (8 * k)) & 0xff);
        }
    }
}

int base_code(char c) noexcept {
    switch (c) {
        case 'A':
            return 0;
        case 'G':
            return 1;
        case 'C':
            return 2;
        case 'T':
            return 3;
        default:
            return -1;
    }
}

/// The missing-data character can have a plane of its own when it differs from every base in class none.
bool unclassified_against_bases(char missing) noexcept {
    for (char const base : {'A', 'C', 'G', 'T'}) {
        if (nucleotide_pair_class(missing, base) != SiteClass::none ||
            nucleotide_pair_class(base, missing) != SiteClass::none) {
            return false;
        }
    }
    return base_code(missing) < 0 && missing != '-';
}

/// What a character is, as flags; bases have their code in the lowest two.
enum Kind : unsigned { low_code = 1, high_code = 2, base_kind = 4, gap_kind = 8, absent_kind = 16, other_kind = 32 };

/// A word of all ones if the condition holds, otherwise of zeros.
constexpr Word all_if(bool condition) noexcept { return condition ? ~Word{0} : Word{0}; }

std::vector<std::size_t> usable_sites(std::span<std::string_view const> sequences, std::span<int const> usable) {
    std::size_t longest = 0;
    for (std::string_view const s : sequences) {
        longest = std::max(longest, s.size());
    }
    std::vector<std::size_t> sites;
    for (std::size_t site = 0; site < std::min(longest, usable.size()); ++site) {
        if (usable[site] != 0) {
            sites.push_back(site);
        }
    }
    return sites;
}

/// Marks the characters in which any sequence differs from the first one; shorter sequences differ from their end on.
std::vector<char> varying_sites(std::span<std::string_view const> sequences, std::size_t n) {
    std::vector<char> varies(n, 0);
    for (std::string_view const s : sequences) {
        std::size_t const length = std::min({n, s.size(), sequences.front().size()});
        char const* const first = sequences.front().data();
        for (std::size_t site = 0; site < length; ++site) {
            varies[site] = static_cast<char>(varies[site] | (s[site] ^ first[site]));
        }
        std::fill(varies.begin() + static_cast<std::ptrdiff_t>(length), varies.end(), 1);
    }
    return varies;
}

}  // namespace

WordCount fastest_word_count() noexcept {
#if defined(__GNUC__) && defined(__x86_64__)
    static WordCount const fastest = __builtin_cpu_supports("popcnt") ? WordCount::instruction : WordCount::portable;
    return fastest;
#else
    return WordCount::instruction;
#endif
}

NucleotidePlanes::NucleotidePlanes(std::span<std::string_view const> sequences, std::span<int const> usable,
                                   char missing, WordCount how)
    : missing_(missing),
      how_(how),
      missing_has_plane_(unclassified_against_bases(missing)),
      gap_absent_deleted_(all_if(nucleotide_pair_class('-', missing) == SiteClass::deletion)),
      absent_gap_deleted_(all_if(nucleotide_pair_class(missing, '-') == SiteClass::deletion)),
      traits_(sequences.size()) {
    std::vector<std::size_t> sites = usable_sites(sequences, usable);
    if (!sites.empty()) {
        std::vector<char> const varies = varying_sites(sequences, sites.back() + 1);
        std::string_view const first = sequences.front();
        auto const constant = [&](std::size_t site) {
            return varies[site] == 0 && site < first.size() && first[site] != missing && base_code(first[site]) >= 0;
        };
        constant_sites_ = static_cast<int>(std::erase_if(sites, constant));
    }
    nb_words_ = (sites.size() + 63) / 64;
    codes_.resize(sequences.size() * nb_words_);
    marks_.resize(sequences.size() * nb_words_);
    std::array<unsigned, 256> kinds;
    for (std::size_t c = 0; c < kinds.size(); ++c) {
        kinds[c] = kind_of(static_cast<char>(c));
    }
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        pack(i, sequences[i], sites, kinds);
    }
    if (std::any_of(traits_.begin(), traits_.end(), [](Traits const& t) { return t.others; })) {
        list_others(sequences, sites, kinds);
        tabulate_others();
    }
}

unsigned NucleotidePlanes::kind_of(char c) const noexcept {
    if (c == '-') {
        return gap_kind;
    }
    if (c == missing_) {
        return missing_has_plane_ ? absent_kind : other_kind;
    }
    int const code = base_code(c);
    return code < 0 ? other_kind : base_kind + static_cast<unsigned>(code);
}

void NucleotidePlanes::pack(std::size_t i, std::string_view sequence, std::span<std::size_t const> sites,
                            std::span<unsigned const, 256> kinds) {
    auto const n = static_cast<std::size_t>(std::lower_bound(sites.begin(), sites.end(), sequence.size()) -
                                            sites.begin());
    unsigned met = 0;
    for (std::size_t start = 0; start < n; start += 64) {
        Codes c;
        Marks m;
        for (std::size_t k = std::min(start + 64, n); k-- > start;) {  // the last site comes to stand highest
            unsigned const kind = kinds[static_cast<unsigned char>(sequence[sites[k]])];
            auto const append = [kind](Word& w, Kind flag) { w = 2 * w + ((kind & flag) != 0); };
            append(c.low, low_code);
            append(c.high, high_code);
            append(m.base, base_kind);
            append(m.gap, gap_kind);
            append(m.absent, absent_kind);
            met |= kind;
        }
        codes_[i * nb_words_ + start / 64] = c;
        marks_[i * nb_words_ + start / 64] = m;
    }
    traits_[i] = {static_cast<int>(n), (met & (gap_kind | absent_kind | other_kind)) == 0, (met & other_kind) != 0};
}

void NucleotidePlanes::list_others(std::span<std::string_view const> sequences, std::span<std::size_t const> sites,
                                   std::span<unsigned const, 256> kinds) {
    characters_.resize(sequences.size() * nb_words_ * 64);
    other_begin_.assign(1, 0);
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        unsigned char* const characters = characters_.data() + i * nb_words_ * 64;
        for (std::size_t k = 0; k < static_cast<std::size_t>(traits_[i].sites); ++k) {
            characters[k] = static_cast<unsigned char>(sequences[i][sites[k]]);
            if (kinds[characters[k]] == other_kind) {
                other_sites_.push_back({static_cast<std::uint32_t>(k), row_of_other(sequences[i][sites[k]])});
            }
        }
        other_begin_.push_back(other_sites_.size());
    }
}

std::uint32_t NucleotidePlanes::row_of_other(char c) {
    std::size_t const known = others_.find(c);
    if (known == std::string::npos) {
        others_ += c;
    }
    return static_cast<std::uint32_t>(256 * std::min(known, others_.size() - 1));
}

void NucleotidePlanes::tabulate_others() {
    as_first_.resize(256 * others_.size());
    as_second_.resize(256 * others_.size());
    auto const counts_of = [this](char a, char b) {
        PairCounts one;
        add_site(one, a, b, missing_);
        return ByteCounts{in_bytes(one, often_counted), in_bytes(one, seldom_counted)};
    };
    for (std::size_t row = 0; row < others_.size(); ++row) {
        for (std::size_t c = 0; c < 256; ++c) {
            char const any = static_cast<char>(c);
            as_first_[256 * row + c] = counts_of(others_[row], any);
            if (kind_of(any) != other_kind) {
                as_second_[256 * row + c] = counts_of(any, others_[row]);
            }
        }
    }
}

/// Sites with bases in both sequences.
template <class Counter>
void NucleotidePlanes::add_bases(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Codes const* const a = codes(i);
    Codes const* const b = codes(j);
    Counter ts;
    Counter tv;
    if (traits_[i].pure && traits_[j].pure && traits_[i].sites == traits_[j].sites) {
        for (std::size_t start = 0; start < nb_words_; start += fold_every) {
            std::size_t const end = std::min(nb_words_, start + fold_every);
            for (std::size_t k = start; k < end; ++k) {
                Word const d1 = a[k].high ^ b[k].high;
                tv.add(d1);
                ts.add((a[k].low ^ b[k].low) & ~d1);
            }
            tv.fold();
            ts.fold();
        }
        c.equal = traits_[i].sites - ts.total() - tv.total();
    } else {
        Marks const* const at_i = marks(i);
        Marks const* const at_j = marks(j);
        Counter both;
        for (std::size_t start = 0; start < nb_words_; start += fold_every) {
            std::size_t const end = std::min(nb_words_, start + fold_every);
            for (std::size_t k = start; k < end; ++k) {
                Word const m = at_i[k].base & at_j[k].base;
                Word const d1 = (a[k].high ^ b[k].high) & m;
                both.add(m);
                tv.add(d1);
                ts.add((a[k].low ^ b[k].low) & m & ~d1);
            }
            both.fold();
            tv.fold();
            ts.fold();
        }
        c.equal = both.total() - ts.total() - tv.total();
    }
    c.transitions = ts.total();
    c.transversions = tv.total();
}

/// Sites with '-' or missing data in one sequence or both.
template <class Counter>
void NucleotidePlanes::add_special_sites(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Marks const* const a = marks(i);
    Marks const* const b = marks(j);
    Counter gaps;
    Counter deletions;
    Counter unlike;  // different, and not both bases
    for (std::size_t start = 0; start < nb_words_; start += fold_every) {
        std::size_t const end = std::min(nb_words_, start + fold_every);
        for (std::size_t k = start; k < end; ++k) {
            Word const one_base = a[k].base ^ b[k].base;
            Word const gap_base = one_base & (a[k].gap | b[k].gap);
            Word const base_absent = one_base & (a[k].absent | b[k].absent);
            Word const gap_absent = a[k].gap & b[k].absent;
            Word const absent_gap = a[k].absent & b[k].gap;
            gaps.add(a[k].gap & b[k].gap);
            deletions.add(gap_base | (gap_absent & gap_absent_deleted_) | (absent_gap & absent_gap_deleted_));
            unlike.add(gap_base | base_absent | gap_absent | absent_gap);
        }
        gaps.fold();
        deletions.fold();
        unlike.fold();
    }
    c.deletions += deletions.total();
    c.unclassified += unlike.total() - deletions.total();
    if (missing_ != '-') {
        c.equal_gap += gaps.total();
        c.uncorrectable += unlike.total();
    }
}

std::span<NucleotidePlanes::OtherSite const> NucleotidePlanes::other_sites(std::size_t i, int end) const noexcept {
    OtherSite const* const first = other_sites_.data() + other_begin_[i];
    OtherSite const* last = other_sites_.data() + other_begin_[i + 1];
    while (last != first && last[-1].site >= static_cast<std::uint32_t>(end)) {
        --last;
    }
    return {first, last};
}

void NucleotidePlanes::add_other_sites(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    constexpr std::size_t at_once = 127;  // of both lists, so that no byte overflows
    int const end = std::min(traits_[i].sites, traits_[j].sites);
    std::span<OtherSite const> const of_i = other_sites(i, end);
    std::span<OtherSite const> const of_j = other_sites(j, end);
    unsigned char const* const characters_i = characters(i);
    unsigned char const* const characters_j = characters(j);
    for (std::size_t start = 0; start < std::max(of_i.size(), of_j.size()); start += at_once) {
        ByteCounts sum;
        for (std::size_t k = start; k < std::min(start + at_once, of_i.size()); ++k) {
            sum.add(as_first_[of_i[k].row + characters_j[of_i[k].site]]);
        }
        for (std::size_t k = start; k < std::min(start + at_once, of_j.size()); ++k) {
            sum.add(as_second_[of_j[k].row + characters_i[of_j[k].site]]);
        }
        add_bytes(c, sum.often, often_counted);
        if (sum.seldom != 0) {
            add_bytes(c, sum.seldom, seldom_counted);
        }
    }
}

template <class Counter>
void NucleotidePlanes::add_base_pairs(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Codes const* const a = codes(i);
    Codes const* const b = codes(j);
    Marks const* const at_i = marks(i);
    Marks const* const at_j = marks(j);
    Counter ag;
    Counter ac;
    Counter at;
    Counter cg;
    for (std::size_t start = 0; start < nb_words_; start += fold_every) {
        std::size_t const end = std::min(nb_words_, start + fold_every);
        for (std::size_t k = start; k < end; ++k) {
            Word const m = at_i[k].base & at_j[k].base;
            Word const d0 = a[k].low ^ b[k].low;
            Word const d1 = (a[k].high ^ b[k].high) & m;
            Word const purine_is_g = (a[k].low & ~a[k].high) | (b[k].low & ~b[k].high);
            ag.add(d0 & m & ~d1 & ~a[k].high);
            ac.add(d1 & ~d0 & ~purine_is_g);
            at.add(d1 & d0 & ~purine_is_g);
            cg.add(d1 & d0 & purine_is_g);
        }
        ag.fold();
        ac.fold();
        at.fold();
        cg.fold();
    }
    // At this point the transitions and transversions are those between bases.
    c.ag += ag.total();
    c.ct += c.transitions - ag.total();
    c.ac += ac.total();
    c.at += at.total();
    c.cg += cg.total();
    c.gt += c.transversions - ac.total() - at.total() - cg.total();
}

template <class Counter>
PairCounts NucleotidePlanes::compare_with(std::size_t i, std::size_t j, bool base_pairs) const noexcept {
    PairCounts c;
    add_bases<Counter>(i, j, c);
    if (base_pairs) {
        add_base_pairs<Counter>(i, j, c);
    }
    if (c.equal + c.transitions + c.transversions != std::max(traits_[i].sites, traits_[j].sites)) {
        add_special_sites<Counter>(i, j, c);
    }
    c.equal += constant_sites_;
    return c;
}

TOV_COUNTING_INSTRUCTION PairCounts NucleotidePlanes::compare_by_instruction(std::size_t i, std::size_t j,
                                                                             bool base_pairs) const noexcept {
    return compare_with<InstructionCounter>(i, j, base_pairs);
}

PairCounts NucleotidePlanes::compare_portably(std::size_t i, std::size_t j, bool base_pairs) const noexcept {
    return compare_with<ShiftCounter>(i, j, base_pairs);
}

PairCounts NucleotidePlanes::compare(std::size_t i, std::size_t j, bool base_pairs) const noexcept {
    PairCounts c =
        how_ == WordCount::instruction ? compare_by_instruction(i, j, base_pairs) : compare_portably(i, j, base_pairs);
    if (traits_[i].others || traits_[j].others) {
        add_other_sites(i, j, c);
    }
    return c;
}

PairDistance nucleotide_distance(NucleotideMethod const& m, PairCounts const& counts) noexcept {
    switch (m.code) {
        case 1:
            return jukes_cantor(counts, m.weights, m.gamma_a);
        case 2:
            return kimura_2p(counts, m.weights, m.gamma_a);
        case 3:
            return proportion_of_difference(counts, m.weights);
        case 4:
            return tajima_nei(counts, m.weights, m.frequencies);
        case 5:
            return tamura(counts, m.weights, m.frequencies);
        case 6:
            return tamura_nei(counts, m.weights, m.frequencies, m.gamma_a);
        default:
            return pairwise_difference(counts, m.weights);
    }
}

RowResult nucleotide_distance_row(NucleotidePlanes const& planes, std::size_t i, NucleotideMethod const& method,
                                  std::span<double> distances, std::span<double> variances) noexcept {
    bool const base_pairs = method.needs_base_pairs();
    for (std::size_t j = 0; j < i; ++j) {
        PairDistance const d = nucleotide_distance(method, planes.compare(i, j, base_pairs));
        if (d.status != DistanceStatus::ok) {
            return {d.status, j};
        }
        distances[j] = d.distance;
        variances[j] = d.variance;
    }
    return {};
}

RflpRows::RflpRows(std::span<std::string_view const> sequences, std::span<int const> usable, char missing)
    : missing_(missing), lengths_(sequences.size(), 0) {
    std::vector<std::size_t> const sites = usable_sites(sequences, usable);
    width_ = (sites.size() + rflp_block - 1) / rflp_block * rflp_block;
    chars_.assign(width_ * sequences.size(), missing);
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        std::size_t& n = lengths_[i];
        while (n < sites.size() && sites[n] < sequences[i].size()) {
            chars_[i * width_ + n] = sequences[i][sites[n]];
            ++n;
        }
    }
}

RflpCounts RflpRows::compare(std::size_t i, std::size_t j) const noexcept {
    RflpCounts c;
    c.sites = static_cast<int>(std::min(lengths_[i], lengths_[j]));
    char const missing = missing_;
    for (std::size_t start = 0; start < width_; start += rflp_block) {
        char const* const a = chars_.data() + i * width_ + start;
        char const* const b = chars_.data() + j * width_ + start;
        unsigned char changes = 0;
        unsigned char deletions = 0;
        for (std::size_t k = 0; k < rflp_block; ++k) {
            int const differ = int{a[k] != b[k]} & int{a[k] != missing} & int{b[k] != missing};
            int const gap = int{a[k] == '-'} | int{b[k] == '-'};
            changes = static_cast<unsigned char>(changes + (differ & (gap ^ 1)));
            deletions = static_cast<unsigned char>(deletions + (differ & gap));
        }
        c.changes += changes;
        c.deletions += deletions;
    }
    return c;
}

}  // namespace tov
