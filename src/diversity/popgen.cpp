// PopGenetics: life of a sample, its sizes, and the checks that the data classes share.
#include "diversity/popgen.h"

#include <algorithm>
#include <cmath>

#include "input/settings.h"
#include "run/errors.h"
#include "simulation/genealgy.h"

namespace tov {

BnumMat PopGenetics::BMat;
MY_TArrayAsVector<char> PopGenetics::globalSubstPolymSites;

void LocusTable::Reallocate(int loci) {
    auto const n = static_cast<std::size_t>(std::max(0, loci));
    *this = LocusTable{};
    for (std::vector<int>* const column : {&copies, &alleles, &min_size, &max_size, &range}) {
        column->assign(n, 0);
    }
    for (std::vector<double>* const column : {&exp_het, &mean_size, &garza_williamson}) {
        column->assign(n, 0.0);
    }
    obs_het.assign(n, -1.0);
}

PopGenetics::PopGenetics() = default;
PopGenetics::~PopGenetics() = default;

void PopGenetics::initialize() {
    Population::initialize();
    clean();
    locus_table_.clear();
    for (double* const statistic : {&F_,
                                    &sample_homozygosity_,
                                    &sample_heterozygosity_,
                                    &sd_sample_heterozygosity_,
                                    &obs_pheno_het_,
                                    &exp_pheno_het_,
                                    &pi_,
                                    &sd_pi_,
                                    &nucleotide_diversity_,
                                    &sd_nucleotide_diversity_,
                                    &theta_hom_,
                                    &sd_theta_hom_,
                                    &theta_S_,
                                    &sd_theta_S_,
                                    &theta_pi_,
                                    &sd_theta_pi_,
                                    &theta_k_,
                                    &theta_k_inf_,
                                    &theta_k_sup_,
                                    &tajima_S_,
                                    &tajima_pi_,
                                    &tajima_D_,
                                    &p_tajima_D_,
                                    &fus_FS_,
                                    &p_fus_FS_,
                                    &obs_F_,
                                    &exp_F_,
                                    &p_homoz_test_,
                                    &p_exact_neutr_tst_,
                                    &p_chakrab_test_,
                                    &exp_num_alleles_,
                                    &obs_exact_statistic_,
                                    &mismatch_mean_,
                                    &mismatch_variance_,
                                    &mismatch_tau_,
                                    &mismatch_theta_,
                                    &mismatch_raggedness_,
                                    &mismatch_chi2_,
                                    &mismatch_p_chi2_}) {
        *statistic = -1.0;
    }
    nb_loci_ = 0;
    nb_usable_loci_ = 0;
    num_polym_sites_ = 0;
    nb_real_haplotypes_ = -1;
    exact_neutr_test_ = false;
    exp_max_mismatch_ = 0;
    mismatch_bin_width_ = 1;
    mismatch_df_ = 0;
    demographic_fit_ = ExpansionFit{};
    spatial_fit_ = spatial_one_size_fit_ = spatial_two_sizes_fit_ = ExpansionFit{};
    linkage_ = LinkageSummary{};
}

void PopGenetics::clean() {
    Population::clean();
    use_site_.clear();
    missing_share_.clear();
    mean_allele_sizes_.clear();
    dist_mat_.reset();
    dist_mat_complete_ = false;
    max_mismatch_ = 0;
    mismatch_.clear();
    exp_mismatch_.clear();
}

TTree& PopGenetics::getGeneTree() {
    if (!tree_) {
        tree_ = std::make_unique<TTree>();
    }
    return *tree_;
}

void PopGenetics::clean_bnum() { BMat = BnumMat(); }

int PopGenetics::compute_distance_matrix(std::ostream*, settings*, int) { return 0; }
int PopGenetics::compute_molecular_diversity(settings&) { return 0; }
void PopGenetics::set_distance(DistanceChoice const&) {}

int PopGenetics::usableSite(int locus) const {
    return locus >= 0 && locus < static_cast<int>(use_site_.size()) ? use_site_[static_cast<std::size_t>(locus)] : 0;
}

double PopGenetics::missDataForLocus(int locus) const {
    return locus >= 0 && locus < static_cast<int>(missing_share_.size())
               ? missing_share_[static_cast<std::size_t>(locus)]
               : 0.0;
}

std::vector<double> PopGenetics::haplotype_copies() const {
    std::vector<double> copies;
    copies.reserve(static_cast<std::size_t>(nb_haplotypes()));
    for (int i = 0; i < nb_haplotypes(); ++i) {
        copies.push_back(haplotype(i).copies);
    }
    return copies;
}

std::vector<std::string_view> PopGenetics::haplotype_contents() const {
    std::vector<std::string_view> contents;
    contents.reserve(static_cast<std::size_t>(nb_haplotypes()));
    for (int i = 0; i < nb_haplotypes(); ++i) {
        HaploDef const* const definition = haplotype(i).haplotype;
        contents.push_back(definition ? std::string_view(definition->content) : std::string_view());
    }
    return contents;
}

bool PopGenetics::has_contents() const {
    return nb_haplotypes() > 0 && haplotype(0).haplotype && !haplotype(0).haplotype->content.is_null();
}

bool PopGenetics::check_counts(char const* function) const {
    if (is_genotypic() && !phase_known()) {
        return true;
    }
    double sum = 0.0;
    for (int i = 0; i < nb_haplotypes(); ++i) {
        sum += haplotype(i).copies;
    }
    if (sample_size() > 0.0 && std::fabs(sum - sample_size()) > 1e-6) {
        E.error(ErrorType::Error, function, 110);
        return false;
    }
    if (nb_diff_haplotypes > 0 && nb_diff_haplotypes != nb_haplotypes()) {
        E.error(ErrorType::Error, function, 111);
        return false;
    }
    return true;
}

bool PopGenetics::check_lengths(char const* function) const {
    std::vector<std::string_view> const contents = haplotype_contents();
    for (std::string_view const content : contents) {
        if (content.size() != contents.front().size()) {
            E.error(ErrorType::Error, function, 161);
            return false;
        }
    }
    return true;
}

std::string PopGenetics::reference_sequence() const {
    std::vector<std::string_view> const contents = haplotype_contents();
    if (contents.empty()) {
        return {};
    }
    std::string reference(contents.front());
    char const missing = profile.MissingData;
    auto known = [missing](char c) { return c != missing && c != '-'; };
    for (std::size_t site = 0; site < reference.size(); ++site) {
        for (std::size_t i = 1; i < contents.size() && !known(reference[site]); ++i) {
            if (site < contents[i].size() && known(contents[i][site])) {
                reference[site] = contents[i][site];
            }
        }
    }
    return reference;
}

void PopGenetics::count_sites() {
    nb_usable_loci_ = static_cast<int>(use_site_.size() - std::count(use_site_.begin(), use_site_.end(), 0));
    num_polym_sites_ = static_cast<int>(polym_sites.size() - std::count(polym_sites.begin(), polym_sites.end(), 0));
}

}  // namespace tov
