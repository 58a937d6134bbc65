// Bit planes of aligned sequences.
#include "diversity/formula/site_planes.h"

#include <algorithm>
#include <bit>

namespace tov {
namespace {

using Word = std::uint64_t;

/// Sums the bits of many words: per-byte counts are added up first, and the bytes once every 31 words.
class BitCounter {
public:
    void add(Word v) noexcept {
        v -= (v >> 1) & 0x5555555555555555U;
        v = (v & 0x3333333333333333U) + ((v >> 2) & 0x3333333333333333U);
        bytes_ += (v + (v >> 4)) & 0x0f0f0f0f0f0f0f0fU;
    }
    /// To be called at least once every 31 additions.
    void fold() noexcept {
        Word const pairs = (bytes_ & 0x00ff00ff00ff00ffU) + ((bytes_ >> 8) & 0x00ff00ff00ff00ffU);
        total_ += static_cast<int>((pairs * 0x0001000100010001U) >> 48);
        bytes_ = 0;
    }
    [[nodiscard]] int total() const noexcept { return total_; }

private:
    Word bytes_ = 0;
    int total_ = 0;
};

constexpr std::size_t fold_every = 31;

/// Calls visit(word index) for all words and fold() after every 31st and at the end.
template <class Visit, class Fold>
inline void for_words(std::size_t n, Visit visit, Fold fold) noexcept {
    for (std::size_t start = 0; start < n; start += fold_every) {
        std::size_t const end = std::min(n, start + fold_every);
        for (std::size_t k = start; k < end; ++k) {
            visit(k);
        }
        fold();
    }
}

int base_code(char c) noexcept {
    switch (c) {
        case 'A': return 0;
        case 'G': return 1;
        case 'C': return 2;
        case 'T': return 3;
        default: return -1;
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

}  // namespace

NucleotidePlanes::NucleotidePlanes(std::span<std::string_view const> sequences, std::span<int const> usable,
                                   char missing)
    : missing_(missing), missing_has_plane_(unclassified_against_bases(missing)), traits_(sequences.size()) {
    std::vector<std::size_t> const sites = usable_sites(sequences, usable);
    nb_words_ = (sites.size() + 63) / 64;
    words_.assign(sequences.size() * nb_planes * nb_words_, 0);
    usable_sequences_.resize(sequences.size());
    for (std::size_t i = 0; i < sequences.size(); ++i) {
        usable_sequences_[i].reserve(sites.size());
        for (std::size_t k = 0; k < sites.size() && sites[k] < sequences[i].size(); ++k) {
            char const c = sequences[i][sites[k]];
            usable_sequences_[i].push_back(c);
            set(i, k, c);
        }
        traits_[i].sites = static_cast<int>(usable_sequences_[i].size());
        if (!traits_[i].others) {
            usable_sequences_[i].shrink_to_fit();
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

PairCounts NucleotidePlanes::compare(std::size_t i, std::size_t j, bool base_pairs) const noexcept {
    PairCounts c;
    Word const* const low_i = plane(i, low);
    Word const* const low_j = plane(j, low);
    Word const* const high_i = plane(i, high);
    Word const* const high_j = plane(j, high);
    BitCounter ts;
    BitCounter tv;
    auto fold = [&] {
        ts.fold();
        tv.fold();
    };
    if (pure(i) && pure(j) && traits_[i].sites == traits_[j].sites) {
        for_words(
            nb_words_,
            [&](std::size_t k) {
                Word const d1 = high_i[k] ^ high_j[k];
                tv.add(d1);
                ts.add((low_i[k] ^ low_j[k]) & ~d1);
            },
            fold);
        c.transitions = ts.total();
        c.transversions = tv.total();
        c.equal = traits_[i].sites - c.transitions - c.transversions;
    } else {
        Word const* const base_i = plane(i, base);
        Word const* const base_j = plane(j, base);
        BitCounter both;
        for_words(
            nb_words_,
            [&](std::size_t k) {
                Word const m = base_i[k] & base_j[k];
                Word const d1 = (high_i[k] ^ high_j[k]) & m;
                both.add(m);
                tv.add(d1);
                ts.add((low_i[k] ^ low_j[k]) & m & ~d1);
            },
            [&] {
                fold();
                both.fold();
            });
        c.transitions = ts.total();
        c.transversions = tv.total();
        c.equal = both.total() - c.transitions - c.transversions;
        if (both.total() != std::max(traits_[i].sites, traits_[j].sites)) {
            add_special_sites(i, j, c);
        }
    }
    if (base_pairs) {
        add_base_pairs(i, j, c);
    }
    if (traits_[i].others || traits_[j].others) {
        add_other_sites(i, j, c);
    }
    return c;
}

void NucleotidePlanes::add_special_sites(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Word const* const base_i = plane(i, base);
    Word const* const base_j = plane(j, base);
    if (traits_[i].gaps || traits_[j].gaps) {
        Word const* const gap_i = plane(i, gap);
        Word const* const gap_j = plane(j, gap);
        Word const* const absent_i = plane(i, absent);
        Word const* const absent_j = plane(j, absent);
        BitCounter gaps;
        BitCounter gap_base;
        BitCounter gap_absent;
        BitCounter absent_gap;
        for_words(
            nb_words_,
            [&](std::size_t k) {
                gaps.add(gap_i[k] & gap_j[k]);
                gap_base.add((gap_i[k] & base_j[k]) | (base_i[k] & gap_j[k]));
                gap_absent.add(gap_i[k] & absent_j[k]);
                absent_gap.add(absent_i[k] & gap_j[k]);
            },
            [&] {
                gaps.fold();
                gap_base.fold();
                gap_absent.fold();
                absent_gap.fold();
            });
        c.equal_gap += missing_ == '-' ? 0 : gaps.total();
        c.deletions += gap_base.total();
        c.uncorrectable += missing_ == '-' ? 0 : gap_base.total();
        auto add = [&c](int n, SiteClass kind) { (kind == SiteClass::deletion ? c.deletions : c.unclassified) += n; };
        add(gap_absent.total(), nucleotide_pair_class('-', missing_));
        add(absent_gap.total(), nucleotide_pair_class(missing_, '-'));
        c.uncorrectable += gap_absent.total() + absent_gap.total();
    }
    if (traits_[i].missing || traits_[j].missing) {
        Word const* const absent_i = plane(i, absent);
        Word const* const absent_j = plane(j, absent);
        BitCounter base_absent;
        for_words(
            nb_words_, [&](std::size_t k) { base_absent.add((base_i[k] & absent_j[k]) | (absent_i[k] & base_j[k])); },
            [&] { base_absent.fold(); });
        c.unclassified += base_absent.total();
        c.uncorrectable += base_absent.total();
    }
}

void NucleotidePlanes::add_other_sites(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Word const* const other_i = plane(i, other);
    Word const* const other_j = plane(j, other);
    std::string_view const s1 = usable_sequences_[i];
    std::string_view const s2 = usable_sequences_[j];
    std::size_t const n = std::min(s1.size(), s2.size());
    int const usable_one[] = {1};
    for (std::size_t k = 0; k < nb_words_; ++k) {
        for (Word left = other_i[k] | other_j[k]; left != 0; left &= left - 1) {
            std::size_t const site = k * 64 + static_cast<std::size_t>(std::countr_zero(left));
            if (site >= n) {
                return;
            }
            PairCounts const one = count_pair(s1.substr(site, 1), s2.substr(site, 1), usable_one, missing_);
            c.equal += one.equal;
            c.equal_gap += one.equal_gap;
            c.transitions += one.transitions;
            c.transversions += one.transversions;
            c.deletions += one.deletions;
            c.ambiguous += one.ambiguous;
            c.unclassified += one.unclassified;
            c.uncorrectable += one.uncorrectable;
            c.uncorrectable_known += one.uncorrectable_known;
            c.ag += one.ag;
            c.ct += one.ct;
            c.ac += one.ac;
            c.at += one.at;
            c.cg += one.cg;
            c.gt += one.gt;
        }
    }
}

void NucleotidePlanes::add_base_pairs(std::size_t i, std::size_t j, PairCounts& c) const noexcept {
    Word const* const low_i = plane(i, low);
    Word const* const low_j = plane(j, low);
    Word const* const high_i = plane(i, high);
    Word const* const high_j = plane(j, high);
    Word const* const base_i = plane(i, base);
    Word const* const base_j = plane(j, base);
    BitCounter ag;
    BitCounter ct;
    BitCounter ac;
    BitCounter at;
    BitCounter cg;
    BitCounter gt;
    for_words(
        nb_words_,
        [&](std::size_t k) {
            Word const m = base_i[k] & base_j[k];
            Word const d0 = low_i[k] ^ low_j[k];
            Word const d1 = (high_i[k] ^ high_j[k]) & m;
            Word const purine_low = (low_i[k] & ~high_i[k]) | (low_j[k] & ~high_j[k]);  // the purine of a pair is G
            Word const ts = d0 & m & ~d1;
            ag.add(ts & ~high_i[k]);
            ct.add(ts & high_i[k]);
            ac.add(d1 & ~d0 & ~purine_low);
            gt.add(d1 & ~d0 & purine_low);
            at.add(d1 & d0 & ~purine_low);
            cg.add(d1 & d0 & purine_low);
        },
        [&] {
            for (BitCounter* const counter : {&ag, &ct, &ac, &at, &cg, &gt}) {
                counter->fold();
            }
        });
    c.ag += ag.total();
    c.ct += ct.total();
    c.ac += ac.total();
    c.at += at.total();
    c.cg += cg.total();
    c.gt += gt.total();
}

PairDistance nucleotide_distance(NucleotideMethod const& m, PairCounts const& counts) noexcept {
    switch (m.code) {
        case 1: return jukes_cantor(counts, m.weights, m.gamma_a);
        case 2: return kimura_2p(counts, m.weights, m.gamma_a);
        case 3: return proportion_of_difference(counts, m.weights);
        case 4: return tajima_nei(counts, m.weights, m.frequencies);
        case 5: return tamura(counts, m.weights, m.frequencies);
        case 6: return tamura_nei(counts, m.weights, m.frequencies, m.gamma_a);
        default: return pairwise_difference(counts, m.weights);
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
    width_ = sites.size();
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
    char const* const a = chars_.data() + i * width_;
    char const* const b = chars_.data() + j * width_;
    std::size_t const n = std::min(lengths_[i], lengths_[j]);
    RflpCounts c;
    c.sites = static_cast<int>(n);
    for (std::size_t start = 0; start < n; start += 255) {
        std::size_t const end = std::min(n, start + 255);
        unsigned char changes = 0;
        unsigned char deletions = 0;
        for (std::size_t k = start; k < end; ++k) {
            unsigned char const differ = static_cast<unsigned char>((a[k] != b[k]) & (a[k] != missing_) &
                                                                    (b[k] != missing_));
            unsigned char const gap = static_cast<unsigned char>((a[k] == '-') | (b[k] == '-'));
            changes = static_cast<unsigned char>(changes + (differ & (gap ^ 1)));
            deletions = static_cast<unsigned char>(deletions + (differ & gap));
        }
        c.changes += changes;
        c.deletions += deletions;
    }
    return c;
}

}  // namespace tov
