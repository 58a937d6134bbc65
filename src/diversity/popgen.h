// PopGenetics: a population sample with the results of all within-sample analyses.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/arrays.h"
#include "base/bnum.h"
#include "base/recmat.h"
#include "diversity/formula/mean_differences.h"
#include "diversity/formula/nucleotide_distance.h"
#include "model/popbase.h"

namespace tov {

class AHaplFreq;
class EwensSampler;
enum Mut_Type : int;
class Haplo_DB;
class TTree;
class TriMat;
class settings;

/// One estimate of a bootstrapped parameter with four quantiles of its distribution; -1 until computed.
struct QuantileEstimate {
    double value = -1.0;
    double q025 = -1.0;
    double q05 = -1.0;
    double q95 = -1.0;
    double q975 = -1.0;
};

/// What the fit of one expansion model to a mismatch distribution leaves for the summary; -1 until computed.
struct ExpansionFit {
    QuantileEstimate tau;
    QuantileEstimate theta0;
    QuantileEstimate theta1;  ///< theta of the spatial model
    QuantileEstimate m;       ///< spatial model only
    double ssd = -1.0;
    double p_ssd = -1.0;
    double raggedness = -1.0;
    double p_raggedness = -1.0;
};

/// Choice of a distance between haplotypes. A data class takes what it has a use for.
struct DistanceChoice {
    int method = 0;
    double gamma_a = 0.0;
    SiteWeights weights;
};

/// Mean and standard deviation of one column of the per-locus table.
struct MeanSd {
    double mean = -1.0;
    double sd = -1.0;
};

/// Means over loci of the per-locus table.
struct LocusMeans {
    int loci = 0;  ///< loci that entered
    MeanSd copies;
    MeanSd alleles;
    MeanSd obs_het;  ///< genotypes only
    MeanSd exp_het;
    MeanSd range;             ///< microsatellites only
    MeanSd garza_williamson;  ///< microsatellites only
};

/// Per-locus results of a sample: parallel vectors with one entry a locus; empty until the table has been made.
struct LocusTable {
    std::vector<int> copies;
    std::vector<int> alleles;
    std::vector<double> obs_het;  ///< genotypes only, otherwise -1
    std::vector<double> exp_het;
    std::vector<int> min_size;
    std::vector<int> max_size;
    std::vector<double> mean_size;
    std::vector<int> range;
    std::vector<double> garza_williamson;
    LocusMeans over_polymorphic;
    LocusMeans over_all;

    /// Sizes every vector to `loci` entries of value zero and unsets the means.
    void Reallocate(int loci);
    void clear() { *this = LocusTable{}; }
};

/// Linkage disequilibrium of a sample with known phase; -1, or no entry, until computed.
struct LinkageSummary {
    double mean_Dprime = -1.0;       ///< mean |D'| over all pairs of loci
    double mean_r2 = -1.0;
    std::vector<double> adj_Dprime;  ///< of each pair of neighbouring polymorphic loci
    std::vector<double> adj_r2;
    double flank_Dprime = -1.0;      ///< of the first and the last locus
    double flank_r2 = -1.0;
};

/// A population sample and everything that the within-sample analyses compute on it.
///
/// A statistic that no analysis has computed keeps its unset value -1.0. The accessors without a verb read the field of
/// the same name with a trailing underline.
class PopGenetics : public Population {
public:
    PopGenetics();
    ~PopGenetics() override;
    PopGenetics(PopGenetics const&) = delete;
    PopGenetics& operator=(PopGenetics const&) = delete;

    /// Back to an empty sample; statistics -1.0, counters 0, mismatch bin width 1, no matrix, tree or site arrays.
    void initialize() override;
    void clean() override;

    // --- Virtual operations of the data classes ---
    /// Empties the table B(n, k).
    void clean_bnum() override;
    /// Distances between the sample's distinct haplotypes, into get_dist_mat(); the base form does nothing.
    ///
    /// @param out    stream for the matrix, or null.
    /// @param scale  non-zero: per-site distances are multiplied by the number of usable loci.
    /// @return       1, or 0 after a report or a stop; the matrix is then half filled.
    int compute_distance_matrix(std::ostream* out, settings* s, int scale) override;
    /// Mean number of pairwise differences and nucleotide diversity from the matrix. @return 1, or 0 after a report.
    virtual int compute_molecular_diversity(settings& s);
    /// Distance method, gamma shape and weights for the next matrix.
    virtual void set_distance(DistanceChoice const& choice);

    // --- Sizes ---
    [[nodiscard]] double nb_genes() const { return sample_size(); }
    [[nodiscard]] int nb_usable_loci() const { return nb_usable_loci_; }
    [[nodiscard]] int numPolymSites() const { return num_polym_sites_; }
    /// Sites that Theta(S) and Tajima's test count: sites with substitutions in DNA, polymorphic sites otherwise.
    [[nodiscard]] virtual int segregating_sites() const { return num_polym_sites_; }
    [[nodiscard]] int nb_loci() const { return nb_loci_; }
    /// Flag of a locus: non-zero when its share of missing data is within the allowed level; 0 outside the array.
    [[nodiscard]] int usableSite(int locus) const;
    [[nodiscard]] std::vector<int> const& use_site() const { return use_site_; }
    /// Share of missing data at a locus; 0 outside the array.
    [[nodiscard]] double missDataForLocus(int locus) const;
    /// The matrix of the last computation; only with has_dist_mat().
    [[nodiscard]] RectMat& get_dist_mat() { return *dist_mat_; }
    [[nodiscard]] RectMat const& get_dist_mat() const { return *dist_mat_; }
    /// There is a matrix, and its computation came to its end.
    [[nodiscard]] bool has_dist_mat() const { return dist_mat_ != nullptr && dist_mat_complete_; }
    /// Copies of each distinct haplotype, in list order.
    [[nodiscard]] std::vector<double> haplotype_copies() const;
    /// Largest distance of the matrix, truncated.
    [[nodiscard]] int largest_distance() const { return max_mismatch_; }
    /// The tree on which simulations of this sample run; made at the first call.
    [[nodiscard]] TTree& getGeneTree();

    // --- Heterozygosity (diversity.cpp) ---
    [[nodiscard]] double calc_F() const;
    [[nodiscard]] double calc_F(MY_TISArrayAsVector<AHaplFreq> const& frequencies) const;
    void calc_sample_homozygosity();
    void calc_sample_homozygosity(MY_TISArrayAsVector<AHaplFreq> const& frequencies);
    void calc_sample_sd_heterozygosity();
    [[nodiscard]] double sample_homozygosity() const { return sample_homozygosity_; }
    [[nodiscard]] double sample_heterozygosity() const { return sample_heterozygosity_; }
    [[nodiscard]] double sd_sample_heterozygosity() const { return sd_sample_heterozygosity_; }

    // --- Theta estimators (diversity.cpp) ---
    void calc_theta_Hom();
    [[nodiscard]] double calc_theta_Hom(MY_TISArrayAsVector<AHaplFreq> const& frequencies);
    [[nodiscard]] static double k_est(double const& theta, int const& n);
    void theta_k(int const& n, int const& k, double const& alpha);
    void theta_S(int const& n, int const& S);
    void theta_pi(double const& pi);
    [[nodiscard]] static double proba_less_than_k(int const& k, int const& n, double const& theta);
    [[nodiscard]] static double proba_exactly_k(int const& k, int const& n, double const& theta);
    [[nodiscard]] static double proba_less_or_k(int const& k, int const& n, double const& theta);
    /// Makes the table B(n, k) for 200 genes and 80 alleles unless there is one. @return 1, or 0 when it failed.
    static int get_B_num_mat();
    /// Makes the table reach n genes and k alleles (it then gets 10 more of each). @return false,
    /// and no table, when that is more than 5000 genes or 1000 alleles.
    static bool extend_B_num_mat(int n, int k);
    /// The table B(n, k), shared by all samples.
    static BnumMat BMat;

    // --- Per-locus table (locus_table.cpp, locus_table_report.cpp) ---
    /// Fills locus_table() from the haplotypes and prints it.
    /// @param rows   print a row for each polymorphic locus.
    /// @param means  print the rows of means and deviations.
    /// @param tables write the side tables.
    void OutputAllelelNumberAndHetPerLocusHapl(std::ostream& out, settings const& s, bool rows, bool means,
                                               bool tables);
    /// The same over genotypes, with the observed heterozygosity.
    void OutputAllelelNumberAndHetPerLocusDipl(TPhenDB& phenotypes, std::ostream& out, settings const& s, bool rows,
                                               bool means, bool tables);
    void computeMeanAlleleSizes();
    [[nodiscard]] LocusTable const& locus_table() const { return locus_table_; }
    /// Mean allele size of each locus, by computeMeanAlleleSizes().
    [[nodiscard]] std::vector<double> const& mean_allele_sizes() const { return mean_allele_sizes_; }

    // --- Distances (distances.cpp, distances_report.cpp) ---
    /// Prints matrix, labels and, when the settings say so, the minimum spanning tree and network.
    void print_out_dist_mat(std::ostream& out, settings const& s);
    /// Replaces the matrix by the plain 0/1 distance with its conventional flag set.
    void compute_dist_mat_for_conventional_FST(std::ostream& out, settings const& s);
    /// Adds to `target` one frequency a class of haplotypes at distance zero in `distances`, in list order.
    void check_hapl_freqs(RectMat const& distances, MY_TISArrayAsVector<AHaplFreq>& target) const;

    // --- Mismatch distribution (demography/) ---
    int compute_mm_distr(std::ostream& out, settings& s);
    void est_demog_mis(settings* s, std::ostream& out);
    void est_spatial_mis(settings* s, std::ostream& out);
    [[nodiscard]] int max_mismatch() const { return max_mismatch_; }
    [[nodiscard]] int exp_max_mismatch() const { return exp_max_mismatch_; }

    // --- Haplotype frequencies, phase, linkage disequilibrium (inference/) ---
    void calc_hapl_dat_hapl_freq(settings& s);
    /// Both return 0, or -1000 when the user stopped them.
    int comp_gam_phase_EM(settings& s);
    int comp_gam_phase_Gibbs(settings& s);
    void calc_all_gam_des(std::ostream& out, long steps, settings& s);
    double calc_gam_des_prob2(int* loci, long& seed, settings& s, long& stepsDone);
    double calc_gam_des_prob3(int* loci, long& seed, settings& s, long& stepsDone);
    int make_all_table(int* k);
    double swap_in_table(int* k, long& seed);
    int calc_d_sd_values(int* loci, settings& s, double& sumD, double& sumDprime, int i, int last);
    void print_ld_histo(int n, int* loci, TriMat& p_values, settings& s, std::ostream& out);
    /// Takes the linkage results of this sample, which the next one flushes, into linkage_.
    void keep_linkage_summary();
    /// Linkage results of all pairs of a sample; flushed by calc_all_gam_des.
    static MY_TArrayAsVector<double> mean_Dprime, mean_R2, adj_Dprime, adj_R2, flank_Dprime, flank_R2;

    // --- Neutrality tests (neutrality.cpp) ---
    void tajimaD(int const& n, double const& pi, double const& S);
    void fast_tajimaD(int const& n, double const& pi, double const& S);
    [[nodiscard]] static double Tajima_D_density(double const& a, double const& b, double const& low,
                                                 double const& high, double const& x);
    int Fu_Fs(double const& theta, int const& k, double& Fs, bool verbose);
    void EW_neutrality_tests(settings& s, std::ostream& out, MY_TISArrayAsVector<AHaplFreq> const& observed);
    /// Copies of one allele of a random configuration of k alleles among n copies, into `a` too. Draws: 1.
    int get_first_rand_freq(AHaplFreq& a, int const& k, int const& n);
    /// One random configuration: its ascending counts are added to the ranks, and n_F and n_exact grow when its
    /// statistics are not above the observed ones. @return its homozygosity F. Draws: one an allele, but the last.
    double compute_rand_frequencies_and_F(EwensSampler& sampler, MY_TISArrayAsVector<AHaplFreq>& ranks,
                                          double const& F_obs, double& n_F, double& n_exact);
    void print_exp_freq(std::ostream& out, MY_TISArrayAsVector<AHaplFreq> const& ranks) const;
    void print_obs_hapl_freq(std::ostream& out, MY_TISArrayAsVector<AHaplFreq> const& observed) const;
    void Chakraborty_neutr_test(std::ostream& out);
    void Chakraborty_neutr_test(std::ostream& out, MY_TISArrayAsVector<AHaplFreq> const& frequencies);
    [[nodiscard]] double calc_p_chakraborty_test();
    [[nodiscard]] double calc_p_chakraborty_test(int const& k, double const& theta);

    // --- Coalescent simulation of the sample (simulation/, neutrality.cpp) ---
    int simulate_sample(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                        double const& first_rate, double const& first_fraction, double const& transition_share);
    int simulate_sample_exp(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                            double const& first_rate, double const& first_fraction, double const& transition_share,
                            double t, double factor, int const& scale);
    int simulate_range_exp(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                           double const& first_rate, double const& first_fraction, double const& transition_share,
                           double tau, double m, int const& scale);
    int fast_build_tree();
    int build_tree_fast_one_pop(double t, double factor, int const& scale);
    int build_tree_fast_range_exp(double tau, double m, int const& scale);
    int sprinkle_mutations(double const& mu, int const& sites, Mut_Type const& type, double const& gamma_a,
                           double const& first_rate, double const& first_fraction, double const& transition_share);
    int read_simulated_sample(TTree& tree, Haplo_DB& database, Mut_Type const& type);

    // --- Results, by the names of the summary ---
    [[nodiscard]] double tajimaD() const { return tajima_D_; }
    [[nodiscard]] double pTajimaD() const { return p_tajima_D_; }
    [[nodiscard]] double fusFS() const { return fus_FS_; }
    [[nodiscard]] double pFusFS() const { return p_fus_FS_; }
    [[nodiscard]] double thetaK() const { return theta_k_; }
    [[nodiscard]] double thetaKInf() const { return theta_k_inf_; }
    [[nodiscard]] double thetaKSup() const { return theta_k_sup_; }
    [[nodiscard]] double thetaS() const { return theta_S_; }
    [[nodiscard]] double sdThetaS() const { return sd_theta_S_; }
    [[nodiscard]] double thetaH() const { return theta_hom_; }
    [[nodiscard]] double sdThetaH() const { return sd_theta_hom_; }
    [[nodiscard]] double theta_hom() const { return theta_hom_; }
    [[nodiscard]] double thetaPi() const { return theta_pi_; }
    [[nodiscard]] double sdthetaPi() const { return sd_theta_pi_; }
    [[nodiscard]] double pi() const { return pi_; }
    [[nodiscard]] double sd_pi() const { return sd_pi_; }
    /// Nucleotide diversity; for STANDARD data the average gene diversity over loci.
    [[nodiscard]] double nucleotide_diversity() const { return nucleotide_diversity_; }
    [[nodiscard]] double sd_nucleotide_diversity() const { return sd_nucleotide_diversity_; }
    [[nodiscard]] double heterozygosity() const { return sample_heterozygosity_; }
    [[nodiscard]] double p_exact_neutr_tst() const { return p_exact_neutr_tst_; }
    [[nodiscard]] double obs_F() const { return obs_F_; }
    [[nodiscard]] double exp_F() const { return exp_F_; }
    [[nodiscard]] double p_homoz_test() const { return p_homoz_test_; }
    [[nodiscard]] double p_chakrab_test() const { return p_chakrab_test_; }

    /// DNA sites of the project at which any sample has a substitution.
    static MY_TArrayAsVector<char> globalSubstPolymSites;

    // --- Plain state ---
    // Sites
    int nb_loci_ = 0;
    int nb_usable_loci_ = 0;
    int num_polym_sites_ = 0;
    std::vector<int> use_site_;          ///< one flag a site: non-zero when usable
    std::vector<double> missing_share_;  ///< one share of missing data a site
    int nb_real_haplotypes_ = -1;        ///< haplotypes that differ in the matrix, when that was checked

    // Distance matrix
    std::unique_ptr<RectMat> dist_mat_;  ///< owned; lower triangle distances, upper triangle standard errors
    bool dist_mat_complete_ = false;
    int max_mismatch_ = 0;  ///< largest distance, truncated

    // Diversity
    LocusTable locus_table_;
    std::vector<double> mean_allele_sizes_;
    double F_ = -1.0;
    double sample_homozygosity_ = -1.0;
    double sample_heterozygosity_ = -1.0;
    double sd_sample_heterozygosity_ = -1.0;
    double obs_pheno_het_ = -1.0;
    double exp_pheno_het_ = -1.0;
    double pi_ = -1.0;
    double sd_pi_ = -1.0;
    double nucleotide_diversity_ = -1.0;
    double sd_nucleotide_diversity_ = -1.0;
    double theta_hom_ = -1.0;
    double sd_theta_hom_ = -1.0;
    double theta_S_ = -1.0;
    double sd_theta_S_ = -1.0;
    double theta_pi_ = -1.0;
    double sd_theta_pi_ = -1.0;
    double theta_k_ = -1.0;
    double theta_k_inf_ = -1.0;
    double theta_k_sup_ = -1.0;

    // Neutrality
    double tajima_S_ = -1.0;   ///< sites with substitutions that D compares; -1 without a test
    double tajima_pi_ = -1.0;  ///< pairwise differences that D compares: without gaps, by number
    double tajima_D_ = -1.0;
    double p_tajima_D_ = -1.0;
    double fus_FS_ = -1.0;
    double p_fus_FS_ = -1.0;
    double obs_F_ = -1.0;
    double exp_F_ = -1.0;
    double p_homoz_test_ = -1.0;
    double p_exact_neutr_tst_ = -1.0;
    double p_chakrab_test_ = -1.0;
    double exp_num_alleles_ = -1.0;  ///< expected number of alleles of Chakraborty's test
    double obs_exact_statistic_ = -1.0;
    bool exact_neutr_test_ = false;  ///< Slatkin's exact test is wanted

    LinkageSummary linkage_;

    // Mismatch distribution
    std::vector<std::int64_t> mismatch_;  ///< observed counts, 0..2 max_mismatch; empty when there is none
    std::vector<double> exp_mismatch_;    ///< model counts, same size
    int exp_max_mismatch_ = 0;            ///< last class with a model count above 1e-5
    int mismatch_bin_width_ = 1;
    double mismatch_mean_ = -1.0;
    double mismatch_variance_ = -1.0;
    double mismatch_tau_ = -1.0;
    double mismatch_theta_ = -1.0;
    double mismatch_raggedness_ = -1.0;
    double mismatch_chi2_ = -1.0;
    double mismatch_p_chi2_ = -1.0;
    int mismatch_df_ = 0;
    ExpansionFit demographic_fit_;
    ExpansionFit spatial_fit_;  ///< the last one
    ExpansionFit spatial_one_size_fit_;
    ExpansionFit spatial_two_sizes_fit_;

protected:
    // --- Distances ---
    /// A new matrix of zeros, one row a haplotype, and the largest distance 0. @return false after code 108 (no
    /// haplotypes), reported from `function`.
    bool begin_distance_matrix(char const* function);
    /// Raises the largest distance to the truncation of `d`.
    void raise_largest_distance(double d);
    /// Shows progress after a row. @return false when the user has stopped the run.
    static bool go_on(settings const& s);
    /// Ends a matrix: marks it complete and writes it to `out` if there is one.
    int finish_distance_matrix(std::ostream* out);
    /// Contents of the distinct haplotypes; valid as long as the list.
    [[nodiscard]] std::vector<std::string_view> haplotype_contents() const;

    // --- Sites ---
    /// Counts of haplotypes against sample size and list. @return false after code 110 or 111.
    bool check_counts(char const* function) const;
    /// Contents of one length. @return false after code 161.
    bool check_lengths(char const* function) const;
    /// A sequence with a character that is neither missing nor '-' wherever any haplotype has one.
    [[nodiscard]] std::string reference_sequence() const;
    /// Usable and polymorphic loci from the alleles of haplotypes, or of phenotypes when there are no haplotypes.
    int evaluate_loci(settings const& s);
    /// Fills nb_usable_loci_ and num_polym_sites_ from the flags.
    void count_sites();
    /// The haplotypes stand with their texts: the sites of DNA and RFLP samples are read from these.
    [[nodiscard]] bool has_contents() const;

    // --- Molecular diversity ---
    /// Pi and nucleotide diversity from a sum over pairs of gene copies.
    void store_molecular_diversity(double sum_of_differences, VarianceRoot root, double square);
    /// Makes sure of matrix and haplotypes. @return false after code 136, 108 or 122, reported from `function`.
    bool ready_for_molecular_diversity(settings& s, char const* function, bool needs_contents);

private:
    std::unique_ptr<TTree> tree_;  // owned
};

}  // namespace tov
