// Individuals: chromosomes, counts, probabilities and restriction of one phenotype.
#include "model/pheno.h"

#include <algorithm>
#include <functional>

#include "base/random.h"
#include "run/errors.h"

namespace tov {

TPhenotype::TPhenotype() : genotypes_(-1, 10) {}

TPhenotype::TPhenotype(TPopHaplotype const* a, TPopHaplotype const* b, int const& id) : TPhenotype() {
    name_ = my_string(id);
    obs_count_ = 1.0;
    if (a) pseudo_[0] = std::make_unique<TPopHaplotype>(*a);
    if (b) pseudo_[1] = std::make_unique<TPopHaplotype>(*b);
}

TPhenotype::TPhenotype(TPhenotype const& other) : TPhenotype() { *this = other; }

TPhenotype& TPhenotype::operator=(TPhenotype const& other) {
    if (this == &other) return *this;
    name_ = other.name_;
    obs_count_ = other.obs_count_;
    rel_freq_ = other.rel_freq_;
    phen_proba_ = other.phen_proba_;
    redundant_ = other.redundant_;
    hetero_loci_ = other.hetero_loci_;
    homozygote_ = other.homozygote_;
    for (int which = 0; which < 2; ++which) {
        pseudo_[which] = other.pseudo_[which] ? std::make_unique<TPopHaplotype>(*other.pseudo_[which]) : nullptr;
        allele_string_[which] = other.allele_string_[which];
    }
    kill_gen_list();
    return *this;
}

TPhenotype::~TPhenotype() = default;

void TPhenotype::set_pseudo_hapl0(TAllele* allele, int position) {
    if (pseudo_[0]) pseudo_[0]->alleles().set_allele(position, allele);
}

void TPhenotype::set_pseudo_hapl1(TAllele* allele, int position) {
    if (pseudo_[1]) pseudo_[1]->alleles().set_allele(position, allele);
}

void TPhenotype::set_pseudo_hapl(TPopHaplotype const& haplotype, int const& which) {
    pseudo_[which != 0] = std::make_unique<TPopHaplotype>(haplotype);
}

TPopHaplotype& TPhenotype::start_chromosome(int which, char separator, int loci) {
    auto& chromosome = pseudo_[which != 0];
    chromosome = std::make_unique<TPopHaplotype>();
    chromosome->set_separator(separator);
    chromosome->alleles().Reallocate(loci);
    return *chromosome;
}

void TPhenotype::build_pseudo_hapl0(TAlleleDB& db, int which, double count) {
    std::string_view const text(allele_string(which).str());
    if (text.empty()) return;
    TPopHaplotype& chromosome = start_chromosome(which, '\0', static_cast<int>(text.size()));
    for (std::size_t i = 0; i < text.size(); ++i) {
        chromosome.alleles().Add(db.insert_allele(static_cast<int>(i), text.substr(i, 1), count));
    }
}

void TPhenotype::build_pseudo_hapl1(TAlleleDB& db, char separator, int which, double count) {
    std::string_view const text(allele_string(which).str());
    if (text.empty()) return;
    TPopHaplotype& chromosome = start_chromosome(which, separator, db.nb_loci());
    int locus = 0;
    for (std::size_t from = 0; from < text.size();) {
        std::size_t const to = std::min(text.find(separator, from), text.size());
        if (to > from) chromosome.alleles().Add(db.insert_allele(locus++, text.substr(from, to - from), count));
        from = to + 1;
    }
}

int TPhenotype::count_hetero_loci() {
    hetero_loci_ = 0;
    if (!pseudo_[0] || !pseudo_[1]) return 0;
    for (int p = 0; p < pheno_length(); ++p) {
        if (!pseudo_[0]->alleles().same_at(p, pseudo_[1]->alleles())) ++hetero_loci_;
    }
    return hetero_loci_;
}

TGenotype& TPhenotype::genotype(int index) const { return *genotypes_.view()[static_cast<std::size_t>(index)]; }

TGenotype* TPhenotype::nextGen() {
    if (next_genotype_ >= genot_real_count()) return nullptr;
    return genotypes_.view()[static_cast<std::size_t>(next_genotype_++)];
}

void TPhenotype::kill_gen_list() {
    genotypes_.Flush();
    genotype_count_ = 0;
    next_genotype_ = 0;
}

void TPhenotype::update_gen_prob() {
    phen_proba_ = 0.0;
    for (TGenotype* const g : genotypes_.view()) {
        double const p = g->first()->freq();
        g->set_prob(homozygote_ ? p * p : 2.0 * p * g->second()->freq());
        phen_proba_ += g->prob();
    }
    if (phen_proba_ == 0.0) return;
    for (TGenotype* const g : genotypes_.view()) g->set_rel_prob(g->prob() / phen_proba_);
}

void TPhenotype::update_hapl_freq_in_genotypes() {
    for (TGenotype* const g : genotypes_.view()) {
        double const w = obs_count_ * g->rel_prob();
        g->second()->inc_freq(w);
        g->first()->inc_freq(w);
    }
}

double TPhenotype::link_equil_pheno_prob() const {
    double product = 1.0;
    for (int l = 0; l < pheno_length(); ++l) {
        TAllele const* const a = pseudo_hapl0(l);
        TAllele const* const b = pseudo_hapl1(l);
        if (!a || !b) continue;
        if (!a->selected || !b->selected) {
            E.error(ErrorType::Warning, "TPhenotype::link_equil_pheno_prob()", 115);
            continue;
        }
        product *= a->freq() * b->freq();
        if (a != b) product *= 2.0;
    }
    return product;
}

void TPhenotype::copy_frame(TPhenotype const& source) {
    name_ = source.name_;
    obs_count_ = source.obs_count_;
    rel_freq_ = source.rel_freq_;
    phen_proba_ = source.phen_proba_;
    redundant_ = 0;
    kill_gen_list();
}

void TPhenotype::copy_restricted_pheno(int const* loci, TPhenotype const& source) {
    copy_frame(source);
    hetero_loci_ = source.hetero_loci_;
    for (int which = 0; which < 2; ++which) {
        auto restricted = std::make_unique<TPopHaplotype>();
        if (source.pseudo_[which]) restricted->copy_restricted_hapl(loci, *source.pseudo_[which]);
        pseudo_[which] = std::move(restricted);
    }
}

void TPhenotype::build_sub_phenotype(int const* flags, TPhenotype const& source) {
    copy_frame(source);
    hetero_loci_ = 0;
    for (int which = 0; which < 2; ++which) {
        auto restricted = std::make_unique<TPopHaplotype>();
        if (source.pseudo_[which]) restricted->build_sub_haplotype(flags, *source.pseudo_[which]);
        pseudo_[which] = std::move(restricted);
    }
}

namespace {

// First allele of the haplotype i with u in (cumulated[i], cumulated[i + 1]]; the nearest one at both ends.
TAllele* draw_allele(TPopHaploDB const& pool, std::vector<double> const& cumulated, long& seed) {
    double const u = ran3(&seed);
    auto const above = std::lower_bound(cumulated.begin(), cumulated.end(), u);
    int const last = pool.nb_haplotypes() - 1;
    int const i = std::clamp(static_cast<int>(above - cumulated.begin()) - 1, 0, std::max(0, last));
    return last < 0 ? nullptr : pool.haplotype(i)[0];
}

}  // namespace

void TPhenotype::build_resam_pheno(int const& i, int const& n, TPopHaploDB const& locus1, TPopHaploDB const& locus2,
                                   std::vector<double> const& cumulated1, std::vector<double> const& cumulated2,
                                   TAllele const* missing1, TAllele const* missing2, long& seed) {
    delete_pheno();
    name_ = my_string(i);
    obs_count_ = 1.0;
    rel_freq_ = 1.0 / n;
    phen_proba_ = 0.0;
    hetero_loci_ = 2;
    TAllele* a1 = draw_allele(locus1, cumulated1, seed);
    TAllele* a2 = draw_allele(locus2, cumulated2, seed);
    TAllele* b1 = draw_allele(locus1, cumulated1, seed);
    TAllele* b2 = draw_allele(locus2, cumulated2, seed);
    if (a1 == missing1) a1 = b1;
    if (b1 == missing1) b1 = a1;
    // kept on purpose: the second locus is tested on the alleles of the first.
    if (a1 == missing2) a2 = b2;
    if (b1 == missing2) b2 = a2;
    for (int which = 0; which < 2; ++which) pseudo_[which] = std::make_unique<TPopHaplotype>();
    pseudo_[0]->build_sampled_haplo(2 * i, a1, a2);
    pseudo_[1]->build_sampled_haplo(2 * i + 1, b1, b2);
}

void TPhenotype::delete_pheno() {
    kill_gen_list();
    for (int which = 0; which < 2; ++which) {
        pseudo_[which].reset();
        allele_string_[which] = my_string();
    }
}

bool TPhenotype::operator==(TPhenotype const& other) const {
    if (!pseudo_[0]) return obs_count_ == other.obs_count_;
    if (!other.pseudo_[0] || pheno_length() != other.pheno_length()) return false;
    for (int l = 0; l < pheno_length(); ++l) {
        TAllele const* const a0 = pseudo_hapl0(l);
        TAllele const* const a1 = pseudo_hapl1(l);
        TAllele const* const b0 = other.pseudo_hapl0(l);
        TAllele const* const b1 = other.pseudo_hapl1(l);
        if (!((a0 == b0 && a1 == b1) || (a0 == b1 && a1 == b0))) return false;
    }
    return true;
}

std::size_t TPhenotype::hash() const {
    std::size_t h = static_cast<std::size_t>(pheno_length());
    if (!pseudo_[0] || !pseudo_[1]) return h;
    auto const key = [](AlleleRow const& row, int l) {
        int const rank = row.rank(l);
        return rank >= 0 ? static_cast<std::size_t>(rank) : std::hash<TAllele*>{}(row[l]);
    };
    for (int l = 0; l < pheno_length(); ++l) {
        std::size_t const a = key(pseudo_[0]->alleles(), l);
        std::size_t const b = key(pseudo_[1]->alleles(), l);
        h = (h ^ ((a + b) * 31 + (a ^ b))) * 0x9E3779B97F4A7C15ULL;
        h ^= h >> 29;
    }
    return h;
}

}  // namespace tov
