// Population: texts to alleles, chromosomes to haplotypes and back, pooling.
#include <algorithm>
#include <string>
#include <unordered_map>

#include "model/popbase.h"
#include "run/errors.h"

namespace tov {

namespace {

// A byte that no reader lets through, so that data may hold any word.
constexpr char hidden_blank[] = "\x01";

// Runs of a separator become one.
my_string single_separators(my_string const& text, char separator) {
    if (!separator) return text;
    std::string reduced;
    for (char const c : text.str()) {
        if (c != separator || reduced.empty() || reduced.back() != separator) reduced += c;
    }
    return my_string(std::move(reduced));
}

// A haplotype list under construction: one entry a definition, in order of first appearance.
class CountedList {
public:
    explicit CountedList(MY_TIArrayAsVector<PHaploDef>& list) : list_(list) {
        for (PHaploDef* const entry : list.view()) entries_.emplace(entry->haplotype, entry);
    }
    void add(HaploDef* definition, int copies) {
        auto const [entry, is_new] = entries_.try_emplace(definition, nullptr);
        if (is_new) {
            entry->second = new PHaploDef(definition, 0);
            list_.Add(entry->second);
        }
        entry->second->copies += copies;
    }

private:
    MY_TIArrayAsVector<PHaploDef>& list_;
    std::unordered_map<HaploDef const*, PHaploDef*> entries_;  // borrowed, from the list
};

// The definition of that content with `copies` added, made and numbered when it isn't there.
HaploDef& counted_definition(Haplo_DB& db, my_string const& content, int copies) {
    HaploDef* definition = db.find(content);
    if (!definition) {
        my_string label("h");
        label += std::to_string(db.size() + 1);
        definition = new HaploDef(label, content);
        db.Add(definition);
    }
    definition->copies += copies;
    return *definition;
}

}  // namespace

void Population::build_allele_vectors(char const& separator) {
    if (!alleles) return;
    phenotypes.convert_freq_to_real();
    for (TPhenotype* const p : phenotypes.view()) {
        for (int which = 0; which < 2; ++which) {
            if (separator) {
                p->build_pseudo_hapl1(*alleles, separator, which, p->obs_count());
            } else {
                p->build_pseudo_hapl0(*alleles, which, p->obs_count());
            }
        }
    }
}

void Population::convertAlleleStringsToHaplotypes() {
    if (!alleles) return;
    char const separator = profile.LocusSeparator;
    for (TPhenotype* const p : phenotypes.view()) {
        for (int which = 0; which < 2; ++which) {
            if (separator) {
                p->build_pseudo_hapl1(*alleles, separator, which, 0.0);
            } else {
                p->build_pseudo_hapl0(*alleles, which, 0.0);
            }
        }
    }
}

void Population::make_all_blanks(char const& separator) {
    constexpr char const* origin = "Population::make_all_blanks()";
    if (!alleles || alleles->counter != 0 || profile.DataType == FREQUENCY) return;
    int loci = 0;
    if (haplotypes.GetItemsInContainer() > 0) {
        HaploDef const* const h = haplotypes.view()[0]->haplotype;
        if (h) loci = count_loci(h->content, separator);
    } else if (phenotypes.size() > 0) {
        loci = count_loci(phenotypes.phenotype(0).allele_string(), separator);
    } else {
        E.error(ErrorType::Error, origin, is_genotypic() ? 152 : 108);
        return;
    }
    alleles->counter = 1;
    alleles->resize(loci);
    my_string const blank = profile.RecessiveData ? profile.RecessiveAllele : my_string(hidden_blank);
    alleles->set_blank_name(blank);
    for (int l = 0; l < loci; ++l) {
        if (alleles->InsertAllPos(l, blank, 0.0) != 0) {
            E.error(ErrorType::Error, origin, 153);
            return;
        }
    }
}

namespace {

// Copies of each allele in one sample, by position of its locus and rank in it.
class AlleleCounts {
public:
    void add(AlleleRow const& row, double copies) {
        for (int p = 0; p < row.size(); ++p) {
            TAllele const* const a = row[p];
            if (!a || !a->home() || a->home()->position() < 0) continue;
            auto const locus = static_cast<std::size_t>(a->home()->position());
            if (locus >= counts_.size()) counts_.resize(locus + 1);
            auto& ranks = counts_[locus];
            if (ranks.empty()) ranks.resize(static_cast<std::size_t>(a->home()->nb_alleles()), 0.0);
            ranks[static_cast<std::size_t>(a->rank())] += copies;
        }
    }
    [[nodiscard]] std::vector<std::vector<double>> const& by_locus() const { return counts_; }

private:
    std::vector<std::vector<double>> counts_;  // empty: the locus doesn't occur
};

}  // namespace

void Population::update_allele_freq() {
    if (!alleles) return;
    AlleleCounts counts;
    if (phase_known() && current_haplotypes->GetItemsInContainer() > 0) {
        for (PHaploDef const* const h : current_haplotypes->view()) {
            if (h->haplotype) counts.add(*h->haplotype, h->copies);
        }
    } else {
        for (TPhenotype const* const p : phenotypes.view()) {
            for (int which = 0; which < 2; ++which) {
                if (p->ps_hapl(which)) counts.add(p->ps_hapl(which)->alleles(), p->obs_count());
            }
        }
    }
    for (std::size_t l = 0; l < counts.by_locus().size(); ++l) {
        auto const& ranks = counts.by_locus()[l];
        if (ranks.empty()) continue;
        double sum = 0.0;
        for (double const n : ranks) sum += n;
        if (!(sum > 0.0)) {
            E.error(ErrorType::Error, "Population::update_allele_freq()", 158);
            return;
        }
        TLocus const& locus = *alleles->locus(static_cast<int>(l));
        for (std::size_t a = 0; a < ranks.size(); ++a) locus.allele(static_cast<int>(a))->set_freq(ranks[a] / sum);
    }
}

// Runs for known and for unknown phase alike: the chromosomes are taken as they stand.
void Population::phen_to_gam(Haplo_DB* db, ProfileSettings* project_profile, settings* /*s*/) {
    if (!db) return;
    char const separator = project_profile ? project_profile->LocusSeparator : profile.LocusSeparator;
    current_haplotypes = &haplotypes;
    haplotypes.Flush();
    gene_copies.Flush();
    CountedList merged(haplotypes);
    for (TPhenotype const* const p : phenotypes.view()) {
        int const copies = static_cast<int>(p->obs_count());
        HaploDef* chromosomes[2];
        for (int which = 0; which < 2; ++which) {
            my_string const content = single_separators(p->allele_string(which), separator);
            chromosomes[which] = &counted_definition(*db, content, copies);
            merged.add(chromosomes[which], copies);
        }
        for (int individual = 0; individual < copies; ++individual) {
            for (HaploDef* const chromosome : chromosomes) gene_copies.Add(new PHaploDef(chromosome, 1));
        }
    }
    nb_diff_haplotypes = haplotypes.GetItemsInContainer();
    nb_original_haplotypes = nb_diff_haplotypes;
    converted = 1;
}

void Population::h_pop_db_to_gam(Haplo_DB* db, MY_TIArrayAsVector<PHaploDef>* target) {
    if (!db) return;
    if (!target) {
        haplotypes.Flush();
        target = &haplotypes;
    }
    CountedList list(*target);
    for (TPopHaplotype const* const h : pool.view()) {
        int const copies = static_cast<int>(h->freq() * sample_size_ + 0.5);
        if (copies == 0) continue;
        std::string content;
        for (int l = 0; l < h->nb_loci(); ++l) {
            if (l > 0 && profile.LocusSeparator) content += profile.LocusSeparator;
            if (TAllele const* const a = (*h)[l]) {
                content += a->name().str();
            } else {
                E.error(ErrorType::Error, "Population::h_pop_db_to_gam()", 160);
            }
        }
        HaploDef& definition = counted_definition(*db, my_string(std::move(content)), copies);
        if (definition.matrix_index < 0) definition.matrix_index = db->size() - 1;
        if (definition.IsEmpty()) static_cast<AlleleRow&>(definition) = h->alleles();
        list.add(&definition, copies);
    }
    nb_diff_haplotypes = target->GetItemsInContainer();
    double sum = 0.0;
    for (PHaploDef const* const h : target->view()) sum += h->copies;
    set_sample_size(sum);
}

void Population::haplotype_transf(Haplo_DB& db) {
    constexpr char const* origin = "Population::haplotype_transf()";
    if (haplotypes.GetItemsInContainer() > 0) {
        E.error(ErrorType::Warning, origin, 156);
        haplotypes.Flush();
    }
    double sum = 0.0;
    for (HaploDef* const h : db.list().view()) {
        haplotypes.Add(new PHaploDef(h, h->copies));
        sum += h->copies;
    }
    if (haplotypes.GetItemsInContainer() != db.size()) E.error(ErrorType::Error, origin, 157);
    current_haplotypes = &haplotypes;
    nb_diff_haplotypes = haplotypes.GetItemsInContainer();
    nb_original_haplotypes = nb_diff_haplotypes;
    set_sample_size(sum);
}

namespace {

// First entry of a list that stands for the same haplotype: the same definition, or the same alleles, or (without
// alleles on both sides) the same label.
class EquivalentEntry {
public:
    explicit EquivalentEntry(MY_TIArrayAsVector<PHaploDef> const& list) {
        for (PHaploDef* const entry : list.view()) note(entry);
    }
    [[nodiscard]] PHaploDef* find(HaploDef const* definition) const {
        std::size_t best = entries_.size();
        auto const [from, to] = by_key_.equal_range(key(definition));
        for (auto it = from; it != to; ++it) {
            if (it->second < best && same(*entries_[it->second]->haplotype, *definition)) best = it->second;
        }
        return best < entries_.size() ? entries_[best] : nullptr;
    }
    void note(PHaploDef* entry) {
        by_key_.emplace(key(entry->haplotype), entries_.size());
        entries_.push_back(entry);
    }

private:
    [[nodiscard]] static std::size_t key(HaploDef const* h) {
        return h->IsEmpty() ? std::hash<my_string>{}(h->id) : h->hash();
    }
    [[nodiscard]] static bool same(HaploDef const& a, HaploDef const& b) {
        if (&a == &b) return true;
        if (a.nb_loci() != b.nb_loci()) return false;
        return a.IsEmpty() ? a.id == b.id : a.hasSameAllelicContent(b);
    }

    std::vector<PHaploDef*> entries_;
    std::unordered_multimap<std::size_t, std::size_t> by_key_;
};

}  // namespace

Population& Population::operator+=(Population const& other) {
    EquivalentEntry equivalent(haplotypes);
    for (PHaploDef const* const theirs : other.haplotypes.view()) {
        if (!theirs->haplotype) continue;
        if (PHaploDef* const mine = equivalent.find(theirs->haplotype)) {
            mine->copies += theirs->copies;
            continue;
        }
        auto* const entry = new PHaploDef(*theirs);
        haplotypes.Add(entry);
        equivalent.note(entry);
    }
    for (PHaploDef const* const copy : other.gene_copies.view()) gene_copies.Add(new PHaploDef(*copy));
    for (TPhenotype const* const p : other.phenotypes.view()) phenotypes.Add(new TPhenotype(*p));
    nb_diff_haplotypes = haplotypes.GetItemsInContainer();
    nb_original_haplotypes = nb_diff_haplotypes;
    set_sample_size(sample_size_ + other.sample_size_);
    alleles = other.alleles;
    return *this;
}

}  // namespace tov
