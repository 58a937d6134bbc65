// Linkage disequilibrium of pairs of loci when the gametic phase is unknown: likelihood-ratio test by EM.
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <ostream>
#include <vector>

#include "base/trimat.h"
#include "inference/association_tables.h"
#include "inference/chain_run.h"
#include "inference/first_seen.h"
#include "inference/formula/two_locus_em.h"
#include "inference/ld_report.h"
#include "input/settings.h"
#include "model/popbase.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr double work_of_em_run = 100.0;

/// Numbers of the alleles of one locus. With recessive data the blank, entry 0 of the locus, has number 0.
class AlleleNumbers {
public:
    explicit AlleleNumbers(bool recessive) : recessive_(recessive) {}
    std::int32_t operator()(TAllele const* allele) {
        if (!recessive_) return seen_.number(allele);
        if (allele->home() && allele->home()->allele(0) == allele) return 0;
        return seen_.number(allele) + 1;
    }

private:
    bool recessive_;
    SeenAlleles seen_;
};

// The individuals of a list with no missing allele at positions l1 and l2.
TwoLocusSample two_locus_sample(TPhenDB const& list, int l1, int l2, char missing, bool recessive) {
    TwoLocusSample sample;
    sample.recessive = recessive;
    AlleleNumbers first(recessive);
    AlleleNumbers second(recessive);
    for (TPhenotype const* const p : list.view()) {
        TAllele const* const alleles[] = {p->pseudo_hapl0(l1), p->pseudo_hapl1(l1), p->pseudo_hapl0(l2),
                                          p->pseudo_hapl1(l2)};
        if (std::any_of(std::begin(alleles), std::end(alleles),
                        [missing](TAllele const* a) { return is_missing(a, missing); })) {
            continue;
        }
        TwoLocusGenotype genotype{};
        genotype.first[0] = first(alleles[0]);
        genotype.first[1] = first(alleles[1]);
        genotype.second[0] = second(alleles[2]);
        genotype.second[1] = second(alleles[3]);
        sample.add(genotype, p->obs_count());
    }
    return sample;
}

int distinct_alleles(TwoLocusSample const& sample, std::array<std::int32_t, 2> TwoLocusGenotype::*locus, int numbers) {
    std::vector<char> seen(static_cast<std::size_t>(numbers), 0);
    for (TwoLocusGenotype const& genotype : sample.genotypes) {
        for (std::int32_t const a : genotype.*locus) seen[static_cast<std::size_t>(a)] = 1;
    }
    return static_cast<int>(std::count(seen.begin(), seen.end(), 1));
}

/// One likelihood-ratio test: the observed pair, then null samples in groups.
class LinkageTest {
public:
    LinkageTest(Population& sample, settings& s, int max_iter, int starts, double epsilon) : sample_(sample), set_(s) {
        options_.starts = starts;
        options_.max_iterations = max_iter;
        options_.epsilon = epsilon;
        goes_on_ = [this] { return *set_.is_stop() == 0; };
    }

    // Untested: no polymorphism, or no individual with data at both loci.
    double untested(double& lnLD, double& lnLE) {
        set_.p_value = 1.0;
        set_.sd_p_value = 0.0;
        lnLD = lnLE = 0.0;
        return 1.0;
    }

    // @return false when the user stopped it.
    bool observe(TwoLocusSample const& sample, double& chi, double& lnLD, double& lnLE) {
        if (*set_.is_stop() != 0) return false;
        em_.reserve(sample, options_);
        LinkageLikelihoods const observed = evaluate(sample);
        lnLD = observed.lnLD;
        lnLE = observed.lnLE;
        observed_ = observed.statistic();
        chi = std::abs(observed_);
        int const k1 = distinct_alleles(sample, &TwoLocusGenotype::first, sample.first_alleles);
        int const k2 = distinct_alleles(sample, &TwoLocusGenotype::second, sample.second_alleles);
        sample_.degrees_of_freedom = (k1 - 1.0) * (k2 - 1.0);
        return !observed.stopped;
    }

    // P-value over null samples; `next` makes one after the other.
    template <class Next>
    double compare(long steps, long& done, Next&& next) {
        set_.p_value = 1.0;
        set_.sd_p_value = 0.0;
        ChainPlan const plan = ChainPlan::square(steps, 0);
        std::vector<double> shares;
        double sum = 0.0;
        for (long b = 0; b < plan.batches; ++b) {
            NullCounts counts;
            for (long i = 0; i < plan.per_batch; ++i) {
                if (*set_.is_stop() != 0) return stopped_by_user;
                LinkageLikelihoods const null = evaluate(next());
                if (null.stopped) return stopped_by_user;
                counts.add(null.statistic(), observed_);
            }
            shares.push_back((counts.smaller + counts.equal) / static_cast<double>(plan.per_batch));
            sum += shares.back();
            settings::print_message();
        }
        if (plan.batches < 1) return set_.p_value;
        done = plan.batches * plan.per_batch;
        set_.p_value = sum / static_cast<double>(plan.batches);
        set_.sd_p_value = batch_deviation(shares, shares.size(), set_.p_value);
        return set_.p_value;
    }

private:
    LinkageLikelihoods evaluate(TwoLocusSample const& sample) {
        settings::inc_work_done(work_of_em_run * options_.starts);
        return em_.evaluate(sample, options_, goes_on_);
    }

    Population& sample_;  // borrowed
    settings& set_;       // borrowed
    EmOptions options_;
    EmGoesOn goes_on_;
    TwoLocusEm em_;
    double observed_ = 0.0;
};

// The individuals with data at both loci, as phenotypes.
void copy_complete(TPhenDB const& source, int l1, int l2, char missing, TPhenDB& target) {
    for (TPhenotype const* const p : source.view()) {
        if (is_missing(p->pseudo_hapl0(l1), missing) || is_missing(p->pseudo_hapl1(l1), missing) ||
            is_missing(p->pseudo_hapl0(l2), missing) || is_missing(p->pseudo_hapl1(l2), missing)) {
            continue;
        }
        target.Add(new TPhenotype(*p));
    }
}

bool wrong_number(int const* loci, char const* origin) {
    if (loci[0] == 2) return false;
    E.error(ErrorType::Error, origin, 118);
    return true;
}

bool both_polymorphic(Population const& sample, int const* loci) {
    return sample.polymSite(loci[1]) && sample.polymSite(loci[2]);
}

}  // namespace

double Population::calc_link_dis_prob(int* loci, TPhenDB const& ph, settings& s, long& stepsDone, double& chi,
                                      double& lnLD, double& lnLE, int const& maxIter, long const& steps,
                                      int const& nbInit, double const& epsilon) {
    stepsDone = 0;
    if (wrong_number(loci, "Population::calc_link_dis_prob()")) return 0.0;
    LinkageTest test(*this, s, maxIter, nbInit, epsilon);
    if (!both_polymorphic(*this, loci)) return test.untested(lnLD, lnLE);
    update_allele_freq();
    TwoLocusSample const sample = two_locus_sample(ph, loci[1], loci[2], profile.MissingData, false);
    if (sample.is_empty()) return test.untested(lnLD, lnLE);
    if (!has_room(ph.nb_individuals(), "Population::calc_link_dis_prob()")) return test.untested(lnLD, lnLE);
    if (!test.observe(sample, chi, lnLD, lnLE)) return stopped_by_user;
    AllelePermutation permutation(sample);
    Ran3State& generator = chain_generator();
    return test.compare(steps, stepsDone, [&]() -> TwoLocusSample const& { return permutation.next(generator); });
}

double Population::calc_link_dis_recess(int* loci, TPhenDB const& ph, settings& s, long& stepsDone, double& chi,
                                        double& lnLD, double& lnLE, int const& maxIter, long const& steps,
                                        int const& nbInit, double const& epsilon) {
    stepsDone = 0;
    if (wrong_number(loci, "Population::calc_link_dis_recess()")) return 0.0;
    LinkageTest test(*this, s, maxIter, nbInit, epsilon);
    if (!both_polymorphic(*this, loci)) return test.untested(lnLD, lnLE);
    update_allele_freq();
    TPhenDB complete;
    copy_complete(ph, loci[1], loci[2], profile.MissingData, complete);
    TwoLocusSample const sample = two_locus_sample(complete, loci[1], loci[2], profile.MissingData, true);
    if (sample.is_empty()) return test.untested(lnLD, lnLE);
    int const n = complete.nb_individuals();
    if (!has_room(n, "Population::calc_link_dis_recess()")) return test.untested(lnLD, lnLE);
    if (!test.observe(sample, chi, lnLD, lnLE)) return stopped_by_user;
    TPopHaploDB pools[2];
    TPhenDB lists[2];
    for (int l = 0; l < 2; ++l) {
        int const one_locus[] = {1, loci[l + 1]};
        int solutions = 0;
        double F = 0.0;
        lists[l].create_temp_PhenDB(one_locus, complete);
        double const lnL = calc_ML_hapl_freq_hill95_LD(lists[l], pools[l], s, solutions, 0, F, nullptr, nullptr, 0,
                                                       nbInit, maxIter, epsilon);
        if (lnL == stopped_by_user && *s.is_stop() != 0) return stopped_by_user;
    }
    TPhenDB drawn;
    TwoLocusSample null;
    long seed = 1;
    return test.compare(steps, stepsDone, [&]() -> TwoLocusSample const& {
        drawn.resample(n, pools[0], pools[1], seed, alleles);
        null = two_locus_sample(drawn, 0, 1, profile.MissingData, true);
        return null;
    });
}

double Population::calc_pairwise_LD(int* loci, TPhenDB const& ph, settings& s, long& stepsDone, double& chi,
                                    double& lnLD, double& lnLE, int const& maxIter, long const& steps,
                                    int const& nbInit, double const& epsilon) {
    if (recessive_loci()) {
        return calc_link_dis_recess(loci, ph, s, stepsDone, chi, lnLD, lnLE, maxIter, steps, nbInit, epsilon);
    }
    return calc_link_dis_prob(loci, ph, s, stepsDone, chi, lnLD, lnLE, maxIter, steps, nbInit, epsilon);
}

namespace {

/// How the tests of all pairs are run.
struct PairTests {
    TPhenDB const& phenotypes;
    int max_iterations;
    long permutations;
    int starts;
    double epsilon;
};

// Loci whose polymorphism flag is set.
std::vector<int> polymorphic_loci(Population const& sample) {
    std::vector<int> loci;
    for (int l = 0; l < static_cast<int>(sample.polym_sites.size()); ++l) {
        if (sample.polymSite(l)) loci.push_back(l);
    }
    return loci;
}

// Tests pair after pair, the lower locus first. @return false when the user stopped it.
bool test_pairs(Population& sample, PairTests const& tests, std::vector<int> const& loci, settings& s, TriMat& p_values,
                std::function<void(LinkedGenotypePair const&)> const& tested) {
    int const n = static_cast<int>(loci.size());
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < a; ++b) {
            if (*s.is_stop() != 0) return false;
            int pair[] = {2, loci[static_cast<std::size_t>(b)], loci[static_cast<std::size_t>(a)]};
            LinkedGenotypePair result;
            result.test.first = pair[1];
            result.test.second = pair[2];
            double const p = sample.calc_pairwise_LD(pair, tests.phenotypes, s, result.test.steps, result.chi,
                                                     result.lnLD, result.lnLE, tests.max_iterations,
                                                     tests.permutations, tests.starts, tests.epsilon);
            if (p == stopped_by_user) return false;
            result.test.p = p;
            result.test.sd = s.sd_p_value;
            result.df = static_cast<int>(sample.degrees_of_freedom);
            p_values(a, b) = p;
            if (result.test.steps > 0) tested(result);
        }
    }
    return true;
}

}  // namespace

int Population::calc_all_pairwise_LDs(TPhenDB const& ph, settings& s, int* selected, double const& pLevel,
                                      double const& share, int const& maxIter, long const& steps, int const& nbInit,
                                      double const& epsilon) {
    int const nb_loci = ph.num_loci();
    std::fill(selected, selected + nb_loci, 0);
    std::vector<int> const loci = polymorphic_loci(*this);
    int const n = static_cast<int>(loci.size());
    TriMat p_values(n);
    if (!test_pairs(*this, {ph, maxIter, steps, nbInit, epsilon}, loci, s, p_values, [](auto const&) {})) return 0;
    for (int a = 0; a < n; ++a) {
        int linked = 0;
        for (int b = 0; b < n; ++b) linked += b != a && p_values(a, b) < pLevel;
        // kept on purpose: a division of whole numbers, 0 unless the locus is linked to all others.
        if (n > 1 && linked / (n - 1) > share) selected[loci[static_cast<std::size_t>(a)]] = 1;
    }
    return 1;
}

void Population::calc_all_link_dis(std::ostream& out, TPhenDB const& ph, settings& s, int const& steps,
                                   long const& /*seed*/, int const& nbInit, double const& epsilon) {
    if (!s.MakeExactTestLD && s.PrintFlagHistogramLD == 0) return;
    if (steps < 1) return;
    print_ld_title(out);
    print_ld_permutation_lengths(out, recessive_loci() != 0, steps, nbInit);
    if (ph.num_loci() < 2) {
        out << "\nThe permutation test is not possible with only 1 locus\n";
        return;
    }
    std::vector<int> loci = polymorphic_loci(*this);
    int const n = static_cast<int>(loci.size());
    TriMat p_values(n);
    bool const finished =
        test_pairs(*this, {ph, s.MaximumNumOfIterationsEM, steps, nbInit, epsilon}, loci, s, p_values,
                   [&](LinkedGenotypePair const& pair) {
                       print_ld_genotype_pair(out, pair);
                       write_linkage_batch_row(pop_name().str(), pair.test);
                   });
    if (!finished || n == 0) return;
    write_linkage_side_table(s, pop_name().str(), p_values, n);
    out << "\nHistogram of the number of linked loci per locus\n";
    s.print_diseq_table(p_values, n, loci.data());
    print_linked_loci(out, p_values, loci, s.SignificanceLevelLD);
}

}  // namespace tov
