// The phenotypes of a sample: likelihoods, merging, expansion, permutation and resampling.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

#include "base/random.h"
#include "base/special.h"
#include "inference/formula/em_terms.h"
#include "model/pheno.h"
#include "run/errors.h"

namespace tov {

namespace {

double n_ln_n(double n) noexcept { return n > 0.0 ? n * std::log(n) : 0.0; }

}  // namespace

bool has_room(int individuals, char const* origin) {
    if (individuals <= most_individuals) return true;
    E.error(ErrorType::Memory, origin, 0);
    return false;
}

TPhenDB::TPhenDB() : MY_TIArrayAsVector<TPhenotype>(-1, 10) {}

TPhenDB::TPhenDB(int const& n, TPopHaploDB const& pool) : TPhenDB() {
    constexpr char const* origin = "TPhenDB::create_random_list()";
    constexpr int most_failures = 100;
    if (!has_room(n, origin)) return;
    std::vector<double> cumulated;
    double sum = 0.0;
    bool monotone = true;
    for (TPopHaplotype const* const h : pool.view()) {
        monotone = monotone && h->freq() >= 0.0;
        cumulated.push_back(sum += h->freq());
    }
    auto const select = [&](double u) -> TPopHaplotype const* {
        if (!monotone) return pool.select_haplotype(u);
        auto const above = std::upper_bound(cumulated.begin(), cumulated.end(), u);
        return above == cumulated.end() ? nullptr : &pool.haplotype(static_cast<int>(above - cumulated.begin()));
    };
    long seed = 1;
    int failures = 0;
    for (int i = 0; i < n; ++i) {
        TPopHaplotype const* drawn[2] = {nullptr, nullptr};
        for (TPopHaplotype const*& h : drawn) {
            while (!(h = select(ran3(&seed)))) {
                E.error(ErrorType::Error, origin, 116);
                if (++failures > most_failures) return;
            }
        }
        Add(new TPhenotype(drawn[0], drawn[1], i));
    }
}

TPhenotype& TPhenDB::phenotype(int index) const { return *view()[static_cast<std::size_t>(index)]; }

int TPhenDB::num_loci() const { return size() > 0 ? phenotype(0).pheno_length() : 0; }

void TPhenDB::destroy() { Flush(); }

void TPhenDB::build_all_genotypes(TPopHaploDB& pool, TAlleleDB* db, int const& recessive) {
    for (TPhenotype* const p : view()) p->build_genotypes(pool, db, recessive, false);
}

void TPhenDB::update_genotypes() {
    for (TPhenotype* const p : view()) p->update_gen_prob();
}

void TPhenDB::update_hapl_freq(TPopHaploDB& pool) {
    pool.reset_freq();
    for (TPhenotype* const p : view()) p->update_hapl_freq_in_genotypes();
}

double TPhenDB::calc_ln_likelihood() {
    ln_likelihood = 0.0;
    for (TPhenotype const* const p : view()) {
        if (!(p->phen_proba() > 0.0)) return ln_likelihood = impossible_ln_likelihood;
        ln_likelihood += p->obs_count() * std::log(p->phen_proba());
    }
    return ln_likelihood;
}

double TPhenDB::link_equil_ln_likelihood() const {
    double sum = 0.0;
    for (TPhenotype const* const p : view()) {
        double const probability = p->link_equil_pheno_prob();
        if (!(probability > 0.0)) return impossible_ln_likelihood;
        sum += std::log(probability) * p->obs_count();
    }
    return sum;
}

double TPhenDB::calc_ln_multinom() const {
    double sum = 0.0;
    for (TPhenotype const* const p : view()) sum += factln(static_cast<int>(p->obs_count()));
    return factln(nb_individuals()) - sum;
}

void TPhenDB::convert_freq_to_real() {
    double sum = 0.0;
    for (TPhenotype const* const p : view()) sum += p->obs_count();
    if (sum == 0.0) return;
    for (TPhenotype* const p : view()) p->set_rel_freq(p->obs_count() / sum);
}

int TPhenDB::nb_individuals() const {
    std::int64_t n = 0;
    for (TPhenotype const* const p : view()) n += static_cast<std::int64_t>(p->obs_count());
    return static_cast<int>(std::min<std::int64_t>(n, std::numeric_limits<int>::max()));
}

// --- Merging ---

namespace {

void merge_into(TPhenotype& first, TPhenotype& later) {
    first.set_obs_freq(first.obs_count() + later.obs_count());
    first.set_rel_freq(first.rel_freq() + later.rel_freq());
    later.set_redundant(1);
}

// Phenotypes without chromosomes are compared by their counts, which merging changes: pair by pair, in order.
void merge_pairwise(std::span<TPhenotype* const> list) {
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i]->is_redundant()) continue;
        for (std::size_t j = i + 1; j < list.size(); ++j) {
            if (!list[j]->is_redundant() && *list[i] == *list[j]) merge_into(*list[i], *list[j]);
        }
    }
}

void merge_by_hash(std::span<TPhenotype* const> list) {
    std::unordered_multimap<std::size_t, TPhenotype*> first_of_class;
    for (TPhenotype* const p : list) {
        std::size_t const hash = p->hash();
        auto const [from, to] = first_of_class.equal_range(hash);
        auto const twin = std::find_if(from, to, [p](auto const& entry) { return *entry.second == *p; });
        if (twin != to) {
            merge_into(*twin->second, *p);
        } else {
            first_of_class.emplace(hash, p);
        }
    }
}

}  // namespace

void TPhenDB::check_pheno_redundancy() {
    for (TPhenotype* const p : view()) p->set_redundant(0);
    auto const all = view();
    bool const complete = std::all_of(all.begin(), all.end(), [](TPhenotype const* p) { return p->ps_hapl0(); });
    if (complete) {
        merge_by_hash(all);
    } else {
        merge_pairwise(all);
    }
    std::vector<std::unique_ptr<TPhenotype>> kept;
    for (TPhenotype const* const p : view()) {
        if (!p->is_redundant()) kept.push_back(std::make_unique<TPhenotype>(*p));
    }
    replace_by(std::move(kept));
}

void TPhenDB::replace_by(std::vector<std::unique_ptr<TPhenotype>> list) {
    Flush();
    for (auto& p : list) Add(p.release());
}

// --- Sub-sets of loci ---

void TPhenDB::create_temp_PhenDB(int const* loci, TPhenDB const& source) {
    std::vector<std::unique_ptr<TPhenotype>> list;
    for (TPhenotype const* const p : source.view()) {
        list.push_back(std::make_unique<TPhenotype>());
        list.back()->copy_restricted_pheno(loci, *p);
    }
    ln_likelihood = source.ln_likelihood;
    replace_by(std::move(list));
}

void TPhenDB::build_sub_PhenDB(int const* flags, TPhenDB const& source) {
    std::vector<std::unique_ptr<TPhenotype>> list;
    for (TPhenotype const* const p : source.view()) {
        list.push_back(std::make_unique<TPhenotype>());
        list.back()->build_sub_phenotype(flags, *p);
    }
    ln_likelihood = source.ln_likelihood;
    replace_by(std::move(list));
}

// --- Expansion, permutation, resampling ---

void TPhenDB::explode_base() {
    constexpr char const* origin = "TPhenDB::explode_base()";
    if (!has_room(nb_individuals(), origin)) return;
    int const originals = size();
    int total = 0;
    for (int i = 0; i < originals; ++i) {
        TPhenotype& p = phenotype(i);
        int const n = static_cast<int>(p.obs_count() + 0.0001);
        total += n;
        if (n < 1) continue;
        p.set_obs_freq(1.0);
        if (n == 1) continue;
        p.set_rel_freq(p.rel_freq() / n);
        for (int copy = 1; copy < n; ++copy) Add(new TPhenotype(p));
    }
    if (size() != total) E.error(ErrorType::Error, origin, 120);
}

void TPhenDB::permute_alleles(int const* loci, long& seed) {
    constexpr char const* origin = "TPhenDB::permute_alleles()";
    if (loci[0] != 1 && loci[0] != 2) E.error(ErrorType::Error, origin, 118);
    if (loci[0] < 1) return;
    // Whatever the number of loci, position 0 alone is shuffled: the second locus stays with its individual.
    std::vector<TAllele*> alleles;
    alleles.reserve(2 * static_cast<std::size_t>(size()));
    for (TPhenotype const* const p : view()) {
        if (TAllele* const a = p->pseudo_hapl0(0)) alleles.push_back(a);
        if (TAllele* const a = p->pseudo_hapl1(0)) alleles.push_back(a);
    }
    std::size_t const n = alleles.size();
    if (n != 2 * static_cast<std::size_t>(size())) {
        E.error(ErrorType::Error, origin, 118);
        return;
    }
    for (std::size_t i = 0; i < n; ++i) {
        auto const j = static_cast<std::size_t>(static_cast<double>(i) + static_cast<double>(n - i) * ran3(&seed));
        if (j >= n) {
            E.error(ErrorType::Error, origin, 107);
            return;
        }
        std::swap(alleles[i], alleles[j]);
    }
    std::size_t next = 0;
    for (TPhenotype* const p : view()) {
        p->set_pseudo_hapl0(alleles[next++], 0);
        p->set_pseudo_hapl1(alleles[next++], 0);
    }
    if (next != n) E.error(ErrorType::Error, origin, 119);
}

namespace {

// 0, f0, f0 + f1, ...
std::vector<double> cumulated_frequencies(TPopHaploDB const& pool) {
    std::vector<double> cumulated{0.0};
    for (TPopHaplotype const* const h : pool.view()) cumulated.push_back(cumulated.back() + h->freq());
    return cumulated;
}

// Entry 0 of the locus that a one-locus pool is about.
TAllele const* first_entry(TPopHaploDB const& pool, TAlleleDB const* db) {
    TAllele const* const any = pool.nb_haplotypes() > 0 ? pool.haplotype(0)[0] : nullptr;
    if (!any) return nullptr;
    if (any->home()) return any->home()->allele(0);
    return db ? (*db)(any->is_in_loci(), 0) : nullptr;
}

}  // namespace

void TPhenDB::resample(int const& n, TPopHaploDB& locus1, TPopHaploDB& locus2, long& seed, TAlleleDB* db) {
    constexpr double tolerance = 0.001;
    destroy();
    std::vector<double> const cumulated1 = cumulated_frequencies(locus1);
    std::vector<double> const cumulated2 = cumulated_frequencies(locus2);
    if (std::abs(cumulated1.back() - 1.0) > tolerance || std::abs(cumulated2.back() - 1.0) > tolerance) {
        *_AOS_ << "     TPhenDB::resample:  summ of freqs is not 1";
        return;
    }
    TAllele const* const missing1 = first_entry(locus1, db);
    TAllele const* const missing2 = first_entry(locus2, db);
    for (int i = 0; i < n; ++i) {
        auto individual = std::make_unique<TPhenotype>();
        individual->build_resam_pheno(i, n, locus1, locus2, cumulated1, cumulated2, missing1, missing2, seed);
        Add(individual.release());
    }
}

void TPhenDB::resample(int const& /*n*/, TPopHaploDB& /*pool*/, long& /*seed*/, TAlleleDB* /*db*/) { destroy(); }

// --- Hardy-Weinberg and linkage statistics ---

namespace {

// Counts of the genotypes and alleles of one locus.
struct LocusCounts {
    std::vector<double> genotypes;  ///< by first appearance
    std::vector<double> alleles;    ///< by rank in the locus
    double individuals = 0.0;
    double heterozygotes = 0.0;
};

// @return false when a haplotype has not exactly one locus.
bool count_locus(TPhenDB const& list, std::string_view missing, LocusCounts& counts) {
    std::vector<std::pair<std::pair<TAllele const*, TAllele const*>, double>> genotypes;
    std::vector<std::pair<TAllele const*, double>> alleles;
    auto const add = [](auto& table, auto const& key, double n) {
        auto const known = std::find_if(table.begin(), table.end(), [&](auto const& e) { return e.first == key; });
        if (known != table.end()) {
            known->second += n;
        } else {
            table.emplace_back(key, n);
        }
    };
    for (TPhenotype const* const p : list.view()) {
        if (!p->ps_hapl0() || !p->ps_hapl1() || p->ps_hapl0()->nb_loci() != 1 || p->ps_hapl1()->nb_loci() != 1) {
            return false;
        }
        TAllele const* a = p->pseudo_hapl0(0);
        TAllele const* b = p->pseudo_hapl1(0);
        if (!a || !b || a->name() == missing || b->name() == missing) continue;
        double const n = p->obs_count();
        counts.individuals += n;
        if (a != b) counts.heterozygotes += n;
        add(alleles, a, n);
        add(alleles, b, n);
        if (b->rank() < a->rank()) std::swap(a, b);
        add(genotypes, std::pair(a, b), n);
    }
    std::stable_sort(alleles.begin(), alleles.end(),
                     [](auto const& x, auto const& y) { return x.first->rank() < y.first->rank(); });
    for (auto const& g : genotypes) counts.genotypes.push_back(g.second);
    for (auto const& a : alleles) counts.alleles.push_back(a.second);
    return true;
}

}  // namespace

double TPhenDB::hw_chi_stat(TAlleleDB* /*db*/, int /*locus*/, char missing, int& df) const {
    df = 0;
    LocusCounts counts;
    if (!count_locus(*this, std::string_view(&missing, 1), counts)) {
        E.error(ErrorType::Error, "TPhenDB::hw_chi_stat()", 118);
        return -1000.0;
    }
    double observed = -n_ln_n(counts.individuals);
    for (double const n : counts.genotypes) observed += n_ln_n(n);
    double expected = counts.heterozygotes * std::log(2.0) - n_ln_n(2.0 * counts.individuals);
    int k = 0;
    for (double const n : counts.alleles) {
        expected += n_ln_n(n);
        if (n > 0.0) ++k;
    }
    if (k < 2) return 0.0;
    df = k * (k - 1) / 2;
    return 2.0 * (observed - expected);
}

int TPhenDB::get_num_of_deg_freed() const {
    std::vector<TAllele const*> seen[2];
    for (TPhenotype const* const p : view()) {
        if (p->pheno_length() < 2) return 0;
        for (int l = 0; l < 2; ++l) {
            for (TAllele const* const a : {p->pseudo_hapl0(l), p->pseudo_hapl1(l)}) {
                if (a && std::find(seen[l].begin(), seen[l].end(), a) == seen[l].end()) seen[l].push_back(a);
            }
        }
    }
    return (static_cast<int>(seen[0].size()) - 1) * (static_cast<int>(seen[1].size()) - 1);
}

// --- Scores of estimated phases against the truth ---

double TPhenDB::compute_IF_coeff(TPopHaploDB* estimated) {
    TPopHaploDB truth;
    for (TPhenotype const* const p : view()) {
        if (p->ps_hapl0()) truth.insert(*p->ps_hapl0(), 1.0);
        if (p->ps_hapl1()) truth.insert(*p->ps_hapl1(), 1.0);
    }
    for (TPopHaplotype* const h : truth.view()) *h /= 2.0 * size();
    for (TPopHaplotype* const h : estimated->view()) h->set_compared(false);
    double sum = 0.0;
    for (TPopHaplotype const* const h : truth.view()) {
        if (TPopHaplotype* const estimate = estimated->find(*h)) {
            sum += std::abs(estimate->freq() - h->freq());
            estimate->set_compared(true);
        } else {
            sum += h->freq();
        }
    }
    for (TPopHaplotype const* const h : estimated->view()) {
        if (h->was_compared()) continue;
        TPopHaplotype const* const twin = truth.find(*h);
        sum += twin ? std::abs(h->freq() - twin->freq()) : h->freq();
    }
    return IF_coefficient = 1.0 - 0.5 * sum;
}

}  // namespace tov
