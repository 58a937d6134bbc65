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
    : missing_(missing), how_(how), missing_has_plane_(unclassified_against_bases(missing)), traits_(sequences.size()) {
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
    words_.assign(sequences.size() * nb_planes * nb_words_, 0);
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        std::size_t k = 0;
        for (; k < sites.size() && sites[k] < sequences[i].size(); ++k) {
            set(i, k, sequences[i][sites[k]]);
        }
        traits_[i].sites = static_cast<int>(k);
    }
    if (std::any_of(traits_.begin(), traits_.end(), [](Traits const& t) { return t.others; })) {
        number_characters(sequences, sites);
    }
}

void NucleotidePlanes::number_characters(std::span<std::string_view const> sequences,
                                         std::span<std::size_t const> sites) {
    std::array<std::uint16_t, 256> number_of{};
    std::vector<char> characters = {'\0'};  // number 0 stands behind the end of a sequence
    numbers_.assign(sequences.size() * nb_words_ * 64, 0);
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        for (std::size_t k = 0; k < sites.size() && sites[k] < sequences[i].size(); ++k) {
            char const c = sequences[i][sites[k]];
            std::uint16_t& number = number_of[static_cast<unsigned char>(c)];
            if (number == 0) {
                number = static_cast<std::uint16_t>(characters.size());
                characters.push_back(c);
            }
            numbers_[i * nb_words_ * 64 + k] = number;
        }
    }
    nb_numbers_ = characters.size();
    kinds_.assign(nb_numbers_ * nb_numbers_, 0);
    kind_counts_.assign(1, PairCounts{});
    for (std::size_t a = 1; a < nb_numbers_; ++a) {
        for (std::size_t b = 1; b < nb_numbers_; ++b) {
            PairCounts one;
            add_site(one, characters[a], characters[b], missing_);
            auto const known = std::find(kind_counts_.begin(), kind_counts_.end(), one);
            kinds_[a * nb_numbers_ + b] = static_cast<unsigned char>(known - kind_counts_.begin());
            if (known == kind_counts_.end()) {
                kind_counts_.push_back(one);
            }
        }
    }
}

void NucleotidePlanes::set(std::size_t i, std::size_t site, char c) {
    Word* const row = words_.data() + i * nb_planes * nb_words_ + site / 64;
    Word const bit = Word{1} << (site % 64);
    int const code = c == missing_ && !missing_has_plane_ ? -1 : base_code(c);
    if (code >= 0) {
        row[low * nb_words_] |= (code & 1) != 0 ? bit : 0;
        row[high * nb_words_] |= (code & 2) != 0 ? bit : 0;
        row[base * nb_words_] |= bit;
    } else if (c == '-') {
        row[gap * nb_words_] |= bit;
        traits_[i].gaps = true;
    } else if (c == missing_ && missing_has_plane_) {
        row[absent * nb_words_] |= bit;
        traits_[i].missing = true;
    } else {
        row[other * nb_words_] |= bit;
        traits_[i].others = true;
    }
}

/// Sites with bases in both sequences.
template <class Counter>
void NucleotidePlanes::add_bases(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Word const* const low_i = plane(i, low);
    Word const* const low_j = plane(j, low);
    Word const* const high_i = plane(i, high);
    Word const* const high_j = plane(j, high);
    Counter ts;
    Counter tv;
    if (pure(i) && pure(j) && traits_[i].sites == traits_[j].sites) {
        for (std::size_t start = 0; start < nb_words_; start += fold_every) {
            std::size_t const end = std::min(nb_words_, start + fold_every);
            for (std::size_t k = start; k < end; ++k) {
                Word const d1 = high_i[k] ^ high_j[k];
                tv.add(d1);
                ts.add((low_i[k] ^ low_j[k]) & ~d1);
            }
            tv.fold();
            ts.fold();
        }
        c.equal = traits_[i].sites - ts.total() - tv.total();
    } else {
        Word const* const base_i = plane(i, base);
        Word const* const base_j = plane(j, base);
        Counter both;
        for (std::size_t start = 0; start < nb_words_; start += fold_every) {
            std::size_t const end = std::min(nb_words_, start + fold_every);
            for (std::size_t k = start; k < end; ++k) {
                Word const m = base_i[k] & base_j[k];
                Word const d1 = (high_i[k] ^ high_j[k]) & m;
                both.add(m);
                tv.add(d1);
                ts.add((low_i[k] ^ low_j[k]) & m & ~d1);
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
    Word const* const base_i = plane(i, base);
    Word const* const base_j = plane(j, base);
    Word const* const gap_i = plane(i, gap);
    Word const* const gap_j = plane(j, gap);
    Word const* const absent_i = plane(i, absent);
    Word const* const absent_j = plane(j, absent);
    Counter gaps;
    Counter gap_base;
    Counter gap_absent;
    Counter absent_gap;
    Counter base_absent;
    bool const with_gaps = traits_[i].gaps || traits_[j].gaps;
    bool const with_missing = traits_[i].missing || traits_[j].missing;
    for (std::size_t start = 0; start < nb_words_; start += fold_every) {
        std::size_t const end = std::min(nb_words_, start + fold_every);
        for (std::size_t k = start; with_gaps && k < end; ++k) {
            gaps.add(gap_i[k] & gap_j[k]);
            gap_base.add((gap_i[k] & base_j[k]) | (base_i[k] & gap_j[k]));
        }
        for (std::size_t k = start; with_missing && k < end; ++k) {
            base_absent.add((base_i[k] & absent_j[k]) | (absent_i[k] & base_j[k]));
        }
        for (std::size_t k = start; with_gaps && with_missing && k < end; ++k) {
            gap_absent.add(gap_i[k] & absent_j[k]);
            absent_gap.add(absent_i[k] & gap_j[k]);
        }
        gaps.fold();
        gap_base.fold();
        base_absent.fold();
        gap_absent.fold();
        absent_gap.fold();
    }
    bool const gap_is_missing = missing_ == '-';
    c.equal_gap += gap_is_missing ? 0 : gaps.total();
    c.deletions += gap_base.total();
    c.uncorrectable += gap_is_missing ? 0 : gap_base.total();
    (nucleotide_pair_class('-', missing_) == SiteClass::deletion ? c.deletions : c.unclassified) += gap_absent.total();
    (nucleotide_pair_class(missing_, '-') == SiteClass::deletion ? c.deletions : c.unclassified) += absent_gap.total();
    c.unclassified += base_absent.total();
    c.uncorrectable += gap_absent.total() + absent_gap.total() + base_absent.total();
}

void NucleotidePlanes::add_other_sites(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Word const* const other_i = plane(i, other);
    Word const* const other_j = plane(j, other);
    std::uint16_t const* const numbers_i = numbers_.data() + i * nb_words_ * 64;
    std::uint16_t const* const numbers_j = numbers_.data() + j * nb_words_ * 64;
    std::array<int, 64> sites_of_kind{};
    for (std::size_t k = 0; k < nb_words_; ++k) {
        for (Word left = other_i[k] | other_j[k]; left != 0; left &= left - 1) {
            std::size_t const site = k * 64 + static_cast<std::size_t>(std::countr_zero(left));
            ++sites_of_kind[kinds_[numbers_i[site] * nb_numbers_ + numbers_j[site]]];
        }
    }
    for (std::size_t kind = 1; kind < kind_counts_.size(); ++kind) {
        if (sites_of_kind[kind] != 0) {
            c.add(kind_counts_[kind], sites_of_kind[kind]);
        }
    }
}

template <class Counter>
void NucleotidePlanes::add_base_pairs(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Word const* const low_i = plane(i, low);
    Word const* const low_j = plane(j, low);
    Word const* const high_i = plane(i, high);
    Word const* const high_j = plane(j, high);
    Word const* const base_i = plane(i, base);
    Word const* const base_j = plane(j, base);
    Counter ag;
    Counter ac;
    Counter at;
    Counter cg;
    for (std::size_t start = 0; start < nb_words_; start += fold_every) {
        std::size_t const end = std::min(nb_words_, start + fold_every);
        for (std::size_t k = start; k < end; ++k) {
            Word const m = base_i[k] & base_j[k];
            Word const d0 = low_i[k] ^ low_j[k];
            Word const d1 = (high_i[k] ^ high_j[k]) & m;
            Word const purine_is_g = (low_i[k] & ~high_i[k]) | (low_j[k] & ~high_j[k]);
            ag.add(d0 & m & ~d1 & ~high_i[k]);
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
