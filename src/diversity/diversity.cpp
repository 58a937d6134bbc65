// Diversity indices and theta estimators of a sample: from its haplotypes to the formulas and back into its fields.
#include <algorithm>
#include <vector>

#include "diversity/formula/heterozygosity.h"
#include "diversity/formula/mean_differences.h"
#include "diversity/formula/theta.h"
#include "diversity/popdna.h"
#include "diversity/popmic.h"
#include "diversity/poprflp.h"
#include "diversity/popsta.h"
#include "input/settings.h"
#include "run/errors.h"

namespace tov {
namespace {

std::vector<double> frequencies_of(MY_TISArrayAsVector<AHaplFreq> const& list) {
    std::vector<double> values;
    for (int i = 0; i < static_cast<int>(list.GetItemsInContainer()); ++i) {
        values.push_back(list[i]->frequency);
    }
    return values;
}

}  // namespace

// --- Heterozygosity ---

double PopGenetics::calc_F() const { return frequency_sums(haplotype_copies(), nb_genes()).squares; }

double PopGenetics::calc_F(MY_TISArrayAsVector<AHaplFreq> const& frequencies) const {
    return frequency_sums(frequencies_of(frequencies), nb_genes()).squares;
}

void PopGenetics::calc_sample_homozygosity() {
    F_ = calc_F();
    GeneDiversity const d = gene_diversity(nb_genes(), nb_haplotypes(), F_);
    sample_homozygosity_ = d.homozygosity;
    sample_heterozygosity_ = d.heterozygosity;
}

void PopGenetics::calc_sample_homozygosity(MY_TISArrayAsVector<AHaplFreq> const& frequencies) {
    F_ = calc_F(frequencies);
    GeneDiversity const d = gene_diversity(nb_genes(), static_cast<double>(frequencies.GetItemsInContainer()), F_);
    sample_homozygosity_ = d.homozygosity;
    sample_heterozygosity_ = d.heterozygosity;
}

void PopGenetics::calc_sample_sd_heterozygosity() {
    sd_sample_heterozygosity_ = gene_diversity_sd(nb_genes(), frequency_sums(haplotype_copies(), nb_genes()));
}

// --- Theta estimators ---

void PopGenetics::calc_theta_Hom() {
    calc_sample_homozygosity();
    calc_sample_sd_heterozygosity();
    if (nb_haplotypes() == nb_genes()) {
        theta_hom_ = theta_infinite;
        return;
    }
    ThetaEstimate const theta = theta_from_homozygosity(sample_homozygosity_, sd_sample_heterozygosity_);
    theta_hom_ = theta.value;
    sd_theta_hom_ = theta.sd;
}

double PopGenetics::calc_theta_Hom(MY_TISArrayAsVector<AHaplFreq> const& frequencies) {
    calc_sample_homozygosity(frequencies);
    std::vector<double> const values = frequencies_of(frequencies);
    if (static_cast<double>(values.size()) == nb_genes()) {
        return theta_infinite;
    }
    double const sd = gene_diversity_sd(nb_genes(), frequency_sums(values, nb_genes()));
    return theta_from_homozygosity(sample_homozygosity_, sd).value;
}

double PopGenetics::k_est(double const& theta, int const& n) { return expected_alleles(theta, n); }

int PopGenetics::get_B_num_mat() {
    if (!BMat.loaded()) {
        BMat.re_allocate_matrix(200, 80);
    }
    return BMat.loaded() ? 1 : 0;
}

bool PopGenetics::extend_B_num_mat(int n, int k) {
    if (!BMat.loaded() || BMat.nb_genes() <= n || BMat.nb_alleles() <= k) {
        // Neither size shrinks, so that samples of different sizes don't make each other's table anew.
        int const genes = BMat.loaded() ? BMat.nb_genes() : 0;
        int const alleles = BMat.loaded() ? BMat.nb_alleles() : 0;
        BMat.re_allocate_matrix(std::max(n + 10, genes), std::max(k + 10, alleles));
    }
    return BMat.loaded();
}

void PopGenetics::theta_k(int const& n, int const& k, double const& alpha) {
    theta_k_ = theta_from_alleles(n, k);
    theta_k_inf_ = 0.0;
    theta_k_sup_ = 0.0;
    if (k < 2) {
        return;
    }
    ThetaLimits limits;
    if (extend_B_num_mat(n, k) && n < 5000 && k < 1000) {
        limits = theta_k_limits(BMat, n, k, theta_k_, alpha);
    }
    theta_k_inf_ = limits.low;
    theta_k_sup_ = limits.high;
}

void PopGenetics::theta_S(int const& n, int const& S) {
    ThetaEstimate const theta = theta_from_sites(n, S);
    theta_S_ = theta.value;
    sd_theta_S_ = theta.sd;
}

void PopGenetics::theta_pi(double const& pi) {
    // Without a matrix there is no Pi: the unset value stays unset.
    ThetaEstimate const theta = pi == -1.0 ? ThetaEstimate{-1.0, -1.0} : theta_from_differences(nb_genes(), pi);
    theta_pi_ = theta.value;
    sd_theta_pi_ = theta.sd;
}

double PopGenetics::proba_less_than_k(int const& k, int const& n, double const& theta) {
    return probability_fewer_alleles(BMat, k, n, theta);
}
double PopGenetics::proba_exactly_k(int const& k, int const& n, double const& theta) {
    return probability_exactly_alleles(BMat, k, n, theta);
}
double PopGenetics::proba_less_or_k(int const& k, int const& n, double const& theta) {
    return probability_at_most_alleles(BMat, k, n, theta);
}

// --- Molecular diversity ---

bool PopGenetics::ready_for_molecular_diversity(settings& s, char const* function, bool needs_contents) {
    if (!has_dist_mat() && compute_distance_matrix(nullptr, &s, 0) == 0) {
        E.error(ErrorType::Error, function, 136);
        return false;
    }
    if (nb_haplotypes() == 0) {
        E.error(ErrorType::Error, function, 108);
        return false;
    }
    if (needs_contents && !has_contents()) {
        E.error(ErrorType::Error, function, 122);
        return false;
    }
    return true;
}

void PopGenetics::store_molecular_diversity(double sum, VarianceRoot root, double square) {
    double const n = nb_genes();
    double const L = nb_usable_loci_;
    DifferenceMean pi;
    if (L > 0.0) {
        pi = mean_pairwise_differences(sum, n, root, square);
    }
    DifferenceMean const diversity = tov::nucleotide_diversity(pi.mean, n, L, root);
    pi_ = pi.mean;
    sd_pi_ = pi.sd;
    nucleotide_diversity_ = diversity.mean;
    sd_nucleotide_diversity_ = diversity.sd;
}

int PopulDNA::compute_molecular_diversity(settings& s) {
    if (!has_dist_mat()) {
        weights_ = {s.TransitionWeight, s.TranversionWeight, s.DeletionWeight};
    }
    return molecular_diversity(s, "PopulDNA::compute_molecular_diversity()", distance_method_ != DIFF,
                               VarianceRoot::guarded);
}

int PopulRFLP::compute_molecular_diversity(settings& s) {
    if (!has_dist_mat()) {
        deletion_weight_ = s.DeletionWeight;
    }
    return molecular_diversity(s, "PopulRFLP::compute_molecular_diversity()", rflp_distance_method_ != RFLP_DIFF,
                               VarianceRoot::plain);
}

int PopulMicrosat::compute_molecular_diversity(settings& s) {
    if (!ready_for_molecular_diversity(s, "PopulMicrosat::compute_molecular_diversity()", false)) {
        return 0;
    }
    double const sum = distance_method_ == 0 ? sum_of_pair_differences(haplotype_copies(), *dist_mat_) : 0.0;
    store_molecular_diversity(sum, VarianceRoot::plain, 1.0);
    return 1;
}

int PopulStandard::compute_molecular_diversity(settings& s) {
    if (!ready_for_molecular_diversity(s, "PopulStandard::compute_molecular_diversity()", false)) {
        return 0;
    }
    // kept on purpose: the variance of standard data counts n squared 1.1 times
    constexpr double square = 1.1;
    store_molecular_diversity(sum_of_pair_differences(haplotype_copies(), *dist_mat_), VarianceRoot::plain, square);
    return 1;
}

}  // namespace tov
