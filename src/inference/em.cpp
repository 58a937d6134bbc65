// EM estimation of haplotype frequencies of a sample: preparation of its phenotypes, the two models, the bootstrap.
#include <algorithm>
#include <cmath>

#include "base/random.h"
#include "inference/formula/em_terms.h"
#include "input/settings.h"
#include "model/popbase.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr double stopped_by_user = -1000.0;
constexpr double work_of_a_run = 100.0;

// What both models make of the list before their first run.
struct Preparation {
    TPopHaploDB* previous;  // borrowed; null: all genotypes
    int* flags;             // borrowed; loci of the previous stage
    int compact;
};

void refuse_genotypes(TPhenotype& p) {
    p.kill_gen_list();
    E.error(ErrorType::Error, "TPhenotype::build_genotypes()", 114);
}

void build_genotypes(Population& sample, TPhenDB& ph, TPopHaploDB& pool, settings const& s, Preparation const& how) {
    if (s.EMCheckPhenRedundancy) ph.check_pheno_redundancy();
    int const recessive = sample.recessive_loci();
    std::int64_t genotypes = 0;
    for (TPhenotype* const p : ph.view()) {
        int const heterozygous = p->count_hetero_loci();
        p->set_homozygote(heterozygous == 0 && !recessive);
        if (how.previous) {
            p->build_compatible_genotypes(*how.previous, how.flags, pool, sample.alleles, recessive, 0.0);
            if (room_of(genotypes + p->genot_real_count(), pool.nb_haplotypes()) > most_room) refuse_genotypes(*p);
        } else if (genotypes_fit(p->candidate_bits(sample.alleles, recessive),
                                 room_of(genotypes, pool.nb_haplotypes()))) {
            p->build_genotypes(pool, sample.alleles, recessive, false);
        } else {
            refuse_genotypes(*p);
        }
        genotypes += p->genot_real_count();
    }
    if (how.compact && sample.alleles) pool.compact(sample.alleles, sample.profile.MissingData);
}

// The pool's haplotypes by position, the phenotypes with their genotypes; a haplotype's ID is its position from now on.
EmData flat_data(TPhenDB const& ph, TPopHaploDB const& pool) {
    EmData data;
    for (TPopHaplotype* const h : pool.view()) h->setId(data.add_haplotype(h->has_blank() != 0));
    for (TPhenotype const* const p : ph.view()) {
        data.add_phenotype(p->obs_count(), p->is_homozygote() != 0);
        for (TGenotype const* const g : p->genotypes().view()) data.add_pair(g->first()->ID(), g->second()->ID());
    }
    return data;
}

// Frequencies of the best run into the pool; what the last run left otherwise.
void store(EmWork const& work, TPhenDB& ph, TPopHaploDB& pool) {
    for (std::size_t h = 0; h < work.freq.size(); ++h) {
        TPopHaplotype& haplotype = *pool.view()[h];
        haplotype.set_freq(work.best_freq[h]);
        haplotype.set_old_freq(work.freq[h]);
        if (h < work.ibd.size()) haplotype.set_ibd_freq(work.ibd[h]);
    }
    std::size_t g = 0;
    for (std::size_t i = 0; i < work.phen_proba.size(); ++i) {
        TPhenotype& p = *ph.view()[i];
        p.set_phen_proba(work.phen_proba[i]);
        for (TGenotype* const genotype : p.genotypes().view()) genotype->set_prob(work.prob[g++]);
    }
}

// Moves the progress on by a run. Returns whether to go on.
bool count_run(settings const& s) {
    settings::inc_work_done(work_of_a_run);
    settings::print_message();
    return *s.is_stop() == 0;
}

}  // namespace

double Population::calc_ML_hapl_freq_hill95_LD(TPhenDB& ph, TPopHaploDB& hapl, settings& s, int& nbSolutions,
                                               int const& useInbreeding, double& F, TPopHaploDB* previous, int* flags,
                                               int const& compact, int const& nbInit, int const& maxIter,
                                               double const& epsilon) {
    nbSolutions = 0;
    if (*s.is_stop()) return stopped_by_user;
    build_genotypes(*this, ph, hapl, s, {previous, flags, compact});
    EmOptions options{nbInit, maxIter, epsilon, useInbreeding != 0, F};
    EmWork work;
    EmResult const result = em_estimate(flat_data(ph, hapl), options, work, [&s] { return count_run(s); });
    store(work, ph, hapl);
    ph.ln_likelihood = result.last_ln_likelihood;
    ph.F = options.inbreeding ? result.F : 0.0;
    if (options.estimates_F()) F = result.F;
    nbSolutions = result.solutions;
    return result.stopped ? stopped_by_user : result.ln_likelihood;
}

// --- Linkage equilibrium ---

namespace {

// The EM on allele frequencies. Slot 0 of an allele's population vector is its count, slot 1 its last estimate.
class EquilibriumRuns {
public:
    EquilibriumRuns(TPhenDB& ph, TPopHaploDB& pool, TAlleleDB& alleles, EmOptions const& options)
        : ph_(ph), pool_(pool), alleles_(alleles), options_(options) {
        alleles_.create_pop_freq_vector(2);
        alleles_.reset_exp_freq();
        for (TPhenotype const* const p : ph_.view()) {
            individuals_ += p->obs_count();
            if (p->genot_real_count() == 0) continue;
            add_counts(*p->genotype(0).first(), p->obs_count());
            add_counts(*p->genotype(0).second(), p->obs_count());
        }
    }
    ~EquilibriumRuns() { alleles_.flush_pop_freq_vector(); }
    EquilibriumRuns(EquilibriumRuns const&) = delete;
    EquilibriumRuns& operator=(EquilibriumRuns const&) = delete;

    /// A run from a random start. @return its ln likelihood.
    double run() {
        alleles_.assign_rand_exp_freq();
        F_ = options_.estimates_F() ? uniform() / 3.0 : options_.inbreeding ? options_.F : 0.0;
        for (int i = 0; i < options_.max_iterations; ++i) {
            double const identical = options_.inbreeding ? count_identical_copies() : 0.0;
            if (alleles_.update_all_freq_with_inbreeding(2.0 * individuals_ - identical) < options_.epsilon) break;
        }
        pool_.comp_link_equil_hapl_freq();
        for (TPhenotype* const p : ph_.view()) p->set_phen_proba(probability(*p));
        return ph_.calc_ln_likelihood();
    }
    [[nodiscard]] double F() const { return F_; }

private:
    static void add_counts(TPopHaplotype const& h, double n) {
        for (int l = 0; l < h.nb_loci(); ++l) {
            TAllele* const a = h[l];
            if (a && a->pop_freq()) a->pop_freq()[0] += n;
        }
    }
    static double product(TPopHaplotype const& h) {
        double f = 1.0;
        for (int l = 0; l < h.nb_loci(); ++l) {
            if (TAllele const* const a = h[l]) f *= a->exp_freq;
        }
        return f;
    }

    double count_identical_copies() {
        double sum = 0.0;
        for (TPhenotype const* const p : ph_.view()) {
            if (!p->is_homozygote() || p->genot_real_count() == 0) continue;
            TPopHaplotype& h = *p->genotype(0).first();
            double const ibd = p->obs_count() * F_ / ((1.0 - F_) * product(h) + F_);
            h.set_ibd_freq(ibd);
            for (int l = 0; l < h.nb_loci(); ++l) {
                if (TAllele* const a = h[l]) a->ibd_sum += ibd;
            }
            sum += ibd;
        }
        if (options_.estimates_F() && individuals_ > 0.0) F_ = sum / individuals_;
        return sum;
    }

    [[nodiscard]] double probability(TPhenotype const& p) const {
        if (p.genot_real_count() == 0) return 0.0;
        TPopHaplotype const& first = *p.genotype(0).first();
        if (p.is_homozygote()) {
            double const f = product(first);
            return (1.0 - F_) * f * f + F_ * f;
        }
        TPopHaplotype const& second = *p.genotype(0).second();
        double c = 1.0;
        for (int l = 0; l < first.nb_loci(); ++l) {
            TAllele const* const a = first[l];
            TAllele const* const b = second[l];
            if (!a || !b) continue;
            c *= a->exp_freq * b->exp_freq;
            if (a != b) c *= 2.0;
        }
        return (1.0 - F_) * c;
    }

    TPhenDB& ph_;
    TPopHaploDB& pool_;
    TAlleleDB& alleles_;
    EmOptions options_;
    double individuals_ = 0.0;
    double F_ = 0.0;
};

std::vector<double> frequencies_of(TPopHaploDB const& pool) {
    std::vector<double> freq;
    for (TPopHaplotype const* const h : pool.view()) freq.push_back(h->freq());
    return freq;
}

}  // namespace

double Population::calc_ML_hapl_freq_hill95_LE(TPhenDB& ph, TPopHaploDB& hapl, settings& s, int& nbSolutions,
                                               int const& useInbreeding, double& F, TPopHaploDB* previous, int* flags,
                                               int const& compact, int const& nbInit, int const& maxIter,
                                               double const& epsilon) {
    nbSolutions = 0;
    if (*s.is_stop() || !alleles) return stopped_by_user;
    build_genotypes(*this, ph, hapl, s, {previous, flags, compact});
    EmOptions const options{nbInit, maxIter, epsilon, useInbreeding != 0, F};
    EquilibriumRuns runs(ph, hapl, *alleles, options);
    double best = impossible_ln_likelihood;
    double best_F = options.F;
    std::vector<double> best_freq;
    std::vector<double> solutions;
    bool go_on = true;
    for (int r = 0; r < std::max(1, nbInit) && go_on; ++r) {
        double const lnL = runs.run();
        if (lnL > best) {
            best = lnL;
            best_F = runs.F();
            best_freq = frequencies_of(hapl);
        }
        note_solution(solutions, lnL);
        go_on = count_run(s);
    }
    for (std::size_t h = 0; h < best_freq.size(); ++h) hapl.view()[h]->set_freq(best_freq[h]);
    ph.F = options.inbreeding ? best_F : 0.0;
    nbSolutions = static_cast<int>(solutions.size());
    return go_on ? best : stopped_by_user;
}

// --- Bootstrap ---

void Population::calc_sd_hapl_freq(TPhenDB& ph, TPopHaploDB& hapl, settings& s, int const& nbInit, int const& nbBoot,
                                   int const& maxIter, double const& epsilon) {
    constexpr double least_frequency = 1e-07;
    int const individuals = ph.nb_individuals();
    for (TPopHaplotype* const h : hapl.view()) {
        h->set_sum_freq(0.0);
        h->set_sd(0.0);
    }
    int done = 0;
    for (; done < nbBoot; ++done) {
        TPhenDB replicate(individuals, hapl);
        replicate.convert_freq_to_real();
        TPopHaploDB estimates;
        int solutions = 0;
        double F = 0.0;
        if (calc_ML_hapl_freq_hill95_LD(replicate, estimates, s, solutions, 0, F, nullptr, nullptr, 0, nbInit, maxIter,
                                        epsilon) == stopped_by_user) {
            break;
        }
        hapl.sums_hapl_frequencies(estimates, least_frequency);
    }
    hapl.calc_sd(done);
    // One replicate has no deviation: the sum of squares is no result.
    if (done < 2) {
        for (TPopHaplotype* const h : hapl.view()) h->set_sd(0.0);
    }
}

}  // namespace tov
