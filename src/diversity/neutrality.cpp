// Neutrality tests of a sample: from its fields to the formulas and back.
#include <algorithm>
#include <cmath>
#include <vector>

#include "diversity/formula/ewens.h"
#include "diversity/formula/fu.h"
#include "diversity/formula/tajima.h"
#include "diversity/neutrality_report.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/glbobj.h"
#include "run/errors.h"

namespace tov {

namespace {

// Largest sample that the table of B numbers serves.
constexpr int TOO_MANY_COPIES = 5000;
constexpr int TOO_MANY_ALLELES = 1000;

/// Whether B(n, k) can be had as a number; extends the table.
bool table_serves(int n, int k) {
    return PopGenetics::extend_B_num_mat(n, k) && n < TOO_MANY_COPIES && k < TOO_MANY_ALLELES &&
           std::isfinite(PopGenetics::BMat(n, k));
}

void write_ewens_row(PopGenetics const& pop, int n, int k, EwensObstacle obstacle) {
    TabRow row = batch_row(ofs_ewens_watt, settings::input_file, pop.pop_name());
    if (obstacle != EwensObstacle::none) {
        row << ewens_obstacle_row(obstacle);
    } else {
        row << n << k << pop.obs_F() << pop.exp_F() << pop.p_homoz_test() << pop.p_exact_neutr_tst();
    }
}

void write_chakraborty_row(PopGenetics const& pop, ChakrabortyReport const& r) {
    batch_row(ofs_chakra, settings::input_file, pop.pop_name())
        << r.copies << r.alleles << r.homozygosity << r.expected_alleles << r.p_exact << r.p_or_more;
}

EwensObstacle ewens_obstacle(double n, int k) {
    if (k == n) {
        return EwensObstacle::all_copies_distinct;
    }
    if (k <= 1) {
        return EwensObstacle::one_allele;
    }
    // kept on purpose: a sample of just the limits passes here and is refused by the table later on
    return k > TOO_MANY_ALLELES || n > TOO_MANY_COPIES ? EwensObstacle::too_large : EwensObstacle::none;
}

std::vector<int> counts_of(MY_TISArrayAsVector<AHaplFreq> const& frequencies, int n) {
    std::vector<int> counts;
    for (AHaplFreq const* const f : frequencies) {
        counts.push_back(f->frequency > 0.0 ? static_cast<int>(std::min(f->frequency, static_cast<double>(n))) : 0);
    }
    return counts;
}

}  // namespace

// --- Tajima's D ---

void PopGenetics::tajimaD(int const& n, double const& pi, double const& S) {
    TajimaD const d = tajima_d(tajima_terms(n, SquaredTerms::inverse_of_square), pi, S);
    tajima_D_ = d.D;
    if (!d.computed) {
        p_tajima_D_ = -1.0;
    }
}

void PopGenetics::fast_tajimaD(int const& n, double const& pi, double const& S) {
    TajimaD const d = fast_tajima_d(tajima_terms(n, SquaredTerms::inverse_twice), pi, S);
    tajima_D_ = d.D;
    if (!d.computed) {
        p_tajima_D_ = -1.0;
    }
}

double PopGenetics::Tajima_D_density(double const& a, double const& b, double const& low, double const& high,
                                     double const& x) {
    return tajima_d_density(a, b, low, high, x);
}

// --- Fu's Fs ---

int PopGenetics::Fu_Fs(double const& theta, int const& k, double& Fs, bool verbose) {
    auto const warn = [verbose](int code) {
        if (verbose) {
            E.error(ErrorType::Warning, "PopGenetics::Fu_Fs()", code);
        }
    };
    int const n = static_cast<int>(nb_genes());
    double fewer = 0.0;
    if (theta > 0.0) {
        if (!extend_B_num_mat(n, k) || n >= TOO_MANY_COPIES || k >= TOO_MANY_ALLELES) {
            warn(179);
            return 0;
        }
        fewer = proba_less_than_k(k, n, theta);
    }
    FuFs const result = fu_fs(theta, fewer);
    if (result.status == FuStatus::no_diversity) {
        warn(187);
    }
    if (result.status == FuStatus::no_probability) {
        warn(178);
        return 0;
    }
    Fs = result.Fs;
    return result.status == FuStatus::finite ? 1 : 0;
}

// --- Ewens-Watterson and Slatkin ---

int PopGenetics::get_first_rand_freq(AHaplFreq& a, int const& k, int const& n) {
    int const count = random_allele_count(BMat, n, k);
    a.set_frequencies(count);
    return count;
}

double PopGenetics::compute_rand_frequencies_and_F(EwensSampler& sampler, MY_TISArrayAsVector<AHaplFreq>& ranks,
                                                   double const& F_obs, double& n_F, double& n_exact) {
    auto const counts = sampler.draw_sorted();
    auto const records = ranks.view();
    for (std::size_t i = 0; i < counts.size(); ++i) {
        double const count = counts[i];
        records[i]->frequency += count;
        records[i]->sq_frequency += count * count;
    }
    double const F = sampler.homozygosity(counts);
    n_F += F <= F_obs ? 1.0 : 0.0;
    if (exact_neutr_test_) {
        n_exact += sampler.exact_statistic(counts) <= obs_exact_statistic_ ? 1.0 : 0.0;
    }
    return F;
}

void PopGenetics::EW_neutrality_tests(settings& s, std::ostream& out,
                                      MY_TISArrayAsVector<AHaplFreq> const& observed) {
    if (*s.is_stop() != 0) {
        return;
    }
    int const k = observed.GetItemsInContainer();
    int const n = static_cast<int>(nb_genes());
    EwensObstacle const obstacle = ewens_obstacle(nb_genes(), k);
    if (obstacle != EwensObstacle::none) {
        print_ewens_obstacle(out, obstacle, n, k);
        write_ewens_row(*this, n, k, obstacle);
        return;
    }
    if (k > n || !table_serves(n, k)) {
        print_ewens_table_limit(out);
        return;
    }
    EwensSampler sampler(BMat, n, k);
    exact_neutr_test_ = s.EwensWattersonHomozygosityTest != 0;
    obs_exact_statistic_ = exact_neutr_test_ ? sampler.exact_statistic(counts_of(observed, n)) : -1.0;
    double const F_obs = calc_F(observed);
    MY_TISArrayAsVector<AHaplFreq> ranks;
    for (int i = 0; i < k; ++i) {
        ranks.Add(new AHaplFreq());
    }
    int const replicates = s.NumIterationsNeutralityTests;
    double n_F = 0.0;
    double n_exact = 0.0;
    double sum_F = 0.0;
    for (int i = 0; i < replicates; ++i) {
        sum_F += compute_rand_frequencies_and_F(sampler, ranks, F_obs, n_F, n_exact);
        if (i % 100 == 0) {
            settings::inc_work_done(1);
            settings::print_message();
            if (*s.is_stop() != 0) {
                return;
            }
        }
    }
    obs_F_ = F_obs;
    exp_F_ = replicates > 0 ? sum_F / replicates : -1.0;
    p_homoz_test_ = replicates > 0 ? n_F / replicates : -1.0;
    p_exact_neutr_tst_ = replicates > 0 ? n_exact / replicates : -1.0;
    print_ewens(out, {s.InferHaplotypeDefinitionFromDistanceMatrix != 0, n, nb_original_haplotypes, k, obs_F_, exp_F_,
                      std::max(0, replicates), p_homoz_test_, p_exact_neutr_tst_});
    print_obs_hapl_freq(out, observed);
    if (replicates > 0) {
        for (AHaplFreq* const rank : ranks) {
            rank->calc_mean_freq(replicates, n);
        }
        print_exp_freq(out, ranks);
    }
    write_ewens_row(*this, n, k, EwensObstacle::none);
}

// --- Chakraborty ---

double PopGenetics::calc_p_chakraborty_test() { return calc_p_chakraborty_test(nb_haplotypes(), theta_hom_); }

double PopGenetics::calc_p_chakraborty_test(int const& k, double const& theta) {
    return 1.0 - proba_less_than_k(k, static_cast<int>(nb_genes()), theta);
}

namespace {

/// Whether the sample can be tested; prints why not.
bool chakraborty_possible(PopGenetics const& pop, std::ostream& out, int k) {
    int const n = static_cast<int>(pop.nb_genes());
    if (k < 2) {
        warn_single_haplotype(out, *_AOS_, "Chakraborty's");
        return false;
    }
    if (k == pop.nb_genes()) {
        print_chakraborty_distinct(out, n, k);
        return false;
    }
    if (!table_serves(n, k)) {
        print_chakraborty_limit(out);
        return false;
    }
    return true;
}

/// The report of a test under `theta`, of a sample whose homozygosity is up to date.
ChakrabortyReport chakraborty_report(PopGenetics& pop, int k, double theta) {
    int const n = static_cast<int>(pop.nb_genes());
    ChakrabortyReport r;
    r.copies = n;
    r.alleles = k;
    r.homozygosity = pop.sample_homozygosity();
    r.expected_alleles = PopGenetics::k_est(theta, n);
    r.p_exact = PopGenetics::proba_exactly_k(k, n, theta);
    r.p_or_more = pop.calc_p_chakraborty_test(k, theta);
    pop.exp_num_alleles_ = r.expected_alleles;
    pop.p_chakrab_test_ = r.p_or_more;
    return r;
}

}  // namespace

void PopGenetics::Chakraborty_neutr_test(std::ostream& out) {
    int const k = nb_haplotypes();
    if (!chakraborty_possible(*this, out, k)) {
        return;
    }
    calc_theta_Hom();
    ChakrabortyReport const r = chakraborty_report(*this, k, theta_hom_);
    print_chakraborty(out, r);
    write_chakraborty_row(*this, r);
}

void PopGenetics::Chakraborty_neutr_test(std::ostream& out, MY_TISArrayAsVector<AHaplFreq> const& frequencies) {
    int const k = frequencies.GetItemsInContainer();
    if (!chakraborty_possible(*this, out, k)) {
        return;
    }
    ChakrabortyReport const r = chakraborty_report(*this, k, calc_theta_Hom(frequencies));
    print_chakraborty(out, r);
    write_chakraborty_row(*this, r);
}

}  // namespace tov
