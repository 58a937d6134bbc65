// Enumeration of the genotypes that are compatible with a phenotype.
#include <algorithm>
#include <bit>
#include <functional>
#include <unordered_set>

#include "model/pheno.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr int largest_counter = 32;  // bits of the counter that are enumerated without a list of earlier haplotypes

// What one bit of the counter does at its position when it is set.
struct Switch {
    int position = 0;
    TAllele* blank = nullptr;  // null: the two alleles change places; else the second chromosome gets the blank
};

struct PairHash {
    std::size_t operator()(std::pair<TPopHaplotype*, TPopHaplotype*> const& p) const noexcept {
        std::size_t const h = std::hash<TPopHaplotype*>{}(p.first) * 0x9E3779B97F4A7C15ULL;
        return (h ^ (h >> 32)) + std::hash<TPopHaplotype*>{}(p.second);
    }
};

TAllele* blank_of(TAllele const* allele, TAlleleDB const* db) {
    if (TLocus const* const home = allele->home()) return home->allele(0);
    return db ? (*db)(allele->is_in_loci(), 0) : nullptr;
}

// The blank that two equal alleles may hide; null when they are blanks themselves.
TAllele* hidden_blank(TAllele const* allele, TAlleleDB const* db) {
    TAllele* const blank = allele ? blank_of(allele, db) : nullptr;
    return blank != allele ? blank : nullptr;
}

}  // namespace

// The two working haplotypes of an enumeration, and what each bit of its counter changes in them.
struct TPhenotype::Enumeration {
    Enumeration(TPhenotype const& phenotype, TPopHaploDB& pool)
        : target(pool), first(*phenotype.pseudo_[0]), second(*phenotype.pseudo_[1]) {
        first.set_blank(0);
        second.set_blank(0);
    }

    // Without hidden blanks: every heterozygous position but the first, so that no genotype meets its mirror image.
    void add_heterozygous(int except) {
        for (int p = 0; p < first.nb_loci(); ++p) {
            if (p != except && !first.alleles().same_at(p, second.alleles())) switches.push_back({p, nullptr});
        }
    }
    // With hidden blanks: every position at which a bit changes something. A bit that changes nothing would repeat each
    // candidate; its weight is added at once.
    void add_all(TAlleleDB const* db, int loci) {
        for (int p = 0; p < loci; ++p) {
            bool const homozygote = first.alleles().same_at(p, second.alleles());
            TAllele* const blank = homozygote ? hidden_blank(first[p], db) : nullptr;
            if (!homozygote || blank) {
                switches.push_back({p, blank});
            } else {
                weight *= 2.0;
            }
        }
        may_repeat = true;
    }
    [[nodiscard]] int first_heterozygous() const {
        int p = 0;
        while (p < first.nb_loci() && first.alleles().same_at(p, second.alleles())) ++p;
        return p;
    }
    // Turns bit b on or off; `original` is the second chromosome of the phenotype.
    void toggle(std::size_t b, bool on, TPopHaplotype const& original) {
        Switch const& s = switches[b];
        if (!s.blank) {
            first.alleles().swap_allele(s.position, second.alleles());
            return;
        }
        second.alleles().set_allele(s.position, on ? s.blank : original[s.position]);
        blanks += on ? 1 : -1;
        second.set_blank(blanks > 0 ? 1 : 0);
    }

    TPopHaploDB& target;
    TPopHaplotype first;
    TPopHaplotype second;
    std::vector<Switch> switches;
    int blanks = 0;
    double weight = 1.0;
    bool may_repeat = false;
    std::unordered_set<std::pair<TPopHaplotype*, TPopHaplotype*>, PairHash> seen;
};

void TPhenotype::binary_inc(int* bits, int const& n) {
    int i = 0;
    for (; i < n && bits[i] == 1; ++i) bits[i] = 0;
    bits[i] = 1;
}

std::int64_t TPhenotype::genot_exp_count() {
    if (genotype_count_ == 0) {
        genotype_count_ = hetero_loci_ < 2 ? 1 : std::int64_t{1} << std::min(62, hetero_loci_ - 1);
    }
    return genotype_count_;
}

int TPhenotype::candidate_bits(TAlleleDB const* db, int recessive) const {
    if (!recessive) return std::max(0, hetero_loci_ - 1);
    int const loci = pheno_length();
    if (hetero_loci_ == loci) return std::max(0, loci - 1);
    int bits = 0;
    for (int p = 0; p < loci; ++p) {
        bits += !pseudo_[0]->alleles().same_at(p, pseudo_[1]->alleles()) || hidden_blank(pseudo_hapl0(p), db);
    }
    return bits;
}

void TPhenotype::keep_genotype(Enumeration& e) {
    TPopHaplotype* const second = e.target.insert(e.second, e.weight);
    TPopHaplotype* const first = e.target.insert(e.first, e.weight);
    if (e.may_repeat && !e.seen.insert(std::minmax(first, second, std::less<>{})).second) return;
    genotypes_.Add(new TGenotype(first, second));
    ++genotype_count_;
}

void TPhenotype::build_genotypes(TPopHaploDB& target, TAlleleDB* db, int const& recessive, bool /*useTempPosition*/) {
    kill_gen_list();
    int const h = count_hetero_loci();
    homozygote_ = h == 0 && !recessive;
    if (!pseudo_[0] || !pseudo_[1]) return;
    int const loci = pheno_length();
    bool const all_heterozygous = h == loci;
    if (h > largest_counter || (recessive && !all_heterozygous && loci > largest_counter)) {
        E.error(ErrorType::Error, "TPhenotype::build_genotypes()", 114);
        return;
    }
    Enumeration e(*this, target);
    if (!recessive) {
        e.add_heterozygous(e.first_heterozygous());
    } else {
        e.add_all(db, all_heterozygous ? loci - 1 : loci);
    }
    std::uint64_t const candidates = std::uint64_t{1} << e.switches.size();
    constexpr std::uint64_t most_reserved = 1U << 20;
    target.reserve(static_cast<std::size_t>(target.nb_haplotypes()) + 2 * std::min(candidates, most_reserved));
    for (std::uint64_t counter = 0;; ++counter) {
        keep_genotype(e);
        if (counter + 1 == candidates) break;
        std::uint64_t const changed = counter ^ (counter + 1);
        for (std::size_t b = 0; b < e.switches.size() && (changed >> b & 1U); ++b) {
            e.toggle(b, ((counter + 1) >> b & 1U) != 0, *pseudo_[1]);
        }
    }
}

namespace {

// A counter of any number of bits.
class Counter {
public:
    explicit Counter(std::size_t bits) : words_((bits + 63) / 64 + 1, 0) {}
    void set(std::size_t b, bool on) {
        std::uint64_t const mask = std::uint64_t{1} << (b % 64);
        words_[b / 64] = on ? words_[b / 64] | mask : words_[b / 64] & ~mask;
    }
    [[nodiscard]] bool test(std::size_t b) const { return (words_[b / 64] >> (b % 64) & 1U) != 0; }
    [[nodiscard]] bool operator<(Counter const& other) const {
        return std::lexicographical_compare(words_.rbegin(), words_.rend(), other.words_.rbegin(), other.words_.rend());
    }

private:
    std::vector<std::uint64_t> words_;
};

// The part of a phenotype at the loci of the earlier stage.
class EarlierPart {
public:
    EarlierPart(TPhenotype const& phenotype, int const* flags, std::vector<Switch> const& switches,
                TPopHaploDB const& previous, double threshold)
        : phenotype_(phenotype), switches_(switches), previous_(previous), threshold_(threshold) {
        std::vector<int> bit_of(static_cast<std::size_t>(phenotype.pheno_length()), -1);
        for (std::size_t b = 0; b < switches.size(); ++b) {
            bit_of[static_cast<std::size_t>(switches[b].position)] = static_cast<int>(b);
        }
        for (int p = 0; p < phenotype.pheno_length(); ++p) {
            TAllele const* const a = phenotype.pseudo_hapl0(p);
            if (!a || a->is_in_loci() < 0 || !flags[a->is_in_loci()]) continue;
            sites_.push_back({p, bit_of[static_cast<std::size_t>(p)]});
        }
        for (Site const& s : sites_) {
            if (s.bit >= 0) old_bits_.push_back(static_cast<std::size_t>(s.bit));
        }
        for (std::size_t b = 0; b < switches.size(); ++b) {
            auto const is_b = [b](Site const& s) { return s.bit == static_cast<int>(b); };
            if (std::none_of(sites_.begin(), sites_.end(), is_b)) new_bits_.push_back(b);
        }
    }

    /// Bits whose position is new.
    [[nodiscard]] std::vector<std::size_t> const& new_bits() const { return new_bits_; }

    /// Settings of the old bits for which both parts are among the earlier haplotypes.
    [[nodiscard]] std::vector<Counter> known_assignments() const {
        std::vector<Counter> known;
        constexpr std::size_t few_bits = 16;
        bool const few = old_bits_.size() <= few_bits &&
                         (std::size_t{1} << old_bits_.size()) < static_cast<std::size_t>(previous_.nb_haplotypes());
        Counter counter(switches_.size());
        if (few) {
            for (std::size_t subset = 0; subset < (std::size_t{1} << old_bits_.size()); ++subset) {
                for (std::size_t i = 0; i < old_bits_.size(); ++i) counter.set(old_bits_[i], (subset >> i & 1U) != 0);
                if (is_known(part(counter, true)) && is_known(part(counter, false))) known.push_back(counter);
            }
            return known;
        }
        for (TPopHaplotype const* const h : previous_.view()) {
            if (h->freq() > threshold_ && read_second(*h, counter) && is_known(part(counter, false))) {
                known.push_back(counter);
            }
        }
        return known;
    }

private:
    struct Site {
        int position;
        int bit;  // -1: nothing changes here
    };

    [[nodiscard]] Switch const& switch_of(Site const& s) const { return switches_[static_cast<std::size_t>(s.bit)]; }
    // Allele of the second chromosome with the site's bit set.
    [[nodiscard]] TAllele* second_when_set(Site const& s) const {
        return switch_of(s).blank ? switch_of(s).blank : phenotype_.pseudo_hapl0(s.position);
    }
    [[nodiscard]] TPopHaplotype part(Counter const& counter, bool second) const {
        TPopHaplotype h;
        for (Site const& s : sites_) {
            bool const on = s.bit >= 0 && counter.test(static_cast<std::size_t>(s.bit));
            if (second) {
                h.alleles().Add(on ? second_when_set(s) : phenotype_.pseudo_hapl1(s.position));
            } else {
                bool const swapped = on && !switch_of(s).blank;
                h.alleles().Add(swapped ? phenotype_.pseudo_hapl1(s.position) : phenotype_.pseudo_hapl0(s.position));
            }
        }
        return h;
    }
    [[nodiscard]] bool is_known(TPopHaplotype const& h) const {
        TPopHaplotype const* const found = previous_.find(h);
        return found && found->freq() > threshold_;
    }
    // Sets the old bits so that the second chromosome is `h`; false when it can't be.
    [[nodiscard]] bool read_second(TPopHaplotype const& h, Counter& counter) const {
        if (h.nb_loci() != static_cast<int>(sites_.size())) return false;
        for (std::size_t k = 0; k < sites_.size(); ++k) {
            Site const& s = sites_[k];
            TAllele const* const allele = h[static_cast<int>(k)];
            bool const off = allele == phenotype_.pseudo_hapl1(s.position);
            if (!off && (s.bit < 0 || allele != second_when_set(s))) return false;
            if (s.bit >= 0) counter.set(static_cast<std::size_t>(s.bit), !off);
        }
        return true;
    }

    TPhenotype const& phenotype_;
    std::vector<Switch> const& switches_;
    TPopHaploDB const& previous_;
    double threshold_;
    std::vector<Site> sites_;
    std::vector<std::size_t> old_bits_;
    std::vector<std::size_t> new_bits_;
};

// Every known setting of the old bits with every setting of the new ones, ascending.
std::vector<Counter> extended_counters(std::vector<Counter> const& known, std::vector<std::size_t> const& bits) {
    std::vector<Counter> counters;
    for (Counter const& old : known) {
        for (std::uint64_t subset = 0; subset < (std::uint64_t{1} << bits.size()); ++subset) {
            counters.push_back(old);
            for (std::size_t i = 0; i < bits.size(); ++i) counters.back().set(bits[i], (subset >> i & 1U) != 0);
        }
    }
    std::sort(counters.begin(), counters.end());
    return counters;
}

}  // namespace

void TPhenotype::build_compatible_genotypes(TPopHaploDB& previous, int* flags, TPopHaploDB& target, TAlleleDB* db,
                                            int const& recessive, double const& threshold) {
    kill_gen_list();
    if (!pseudo_[0] || !pseudo_[1]) return;
    int const loci = pheno_length();
    Enumeration e(*this, target);
    if (!recessive) {
        e.add_heterozygous(e.first_heterozygous());
    } else {
        e.add_all(db, hetero_loci_ == loci ? loci - 1 : loci);
    }
    EarlierPart const part(*this, flags, e.switches, previous, threshold);
    std::vector<Counter> const known = part.known_assignments();
    if (part.new_bits().size() > largest_counter ||
        static_cast<std::int64_t>(known.size()) > most_genotypes >> part.new_bits().size()) {
        E.error(ErrorType::Error, "TPhenotype::build_compatible_genotypes()", 114);
        return;
    }
    Counter set_now(e.switches.size());
    for (Counter const& counter : extended_counters(known, part.new_bits())) {
        for (std::size_t b = 0; b < e.switches.size(); ++b) {
            if (counter.test(b) != set_now.test(b)) e.toggle(b, counter.test(b), *pseudo_[1]);
        }
        set_now = counter;
        keep_genotype(e);
    }
}

}  // namespace tov
