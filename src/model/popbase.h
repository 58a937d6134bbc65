// Population: one sample, with its data in gametic and in genotypic form. Base of the classes of the data types.
#pragma once

#include <iosfwd>
#include <memory>
#include <vector>

#include "base/arrays.h"
#include "base/cstring.h"
#include "inference/formula/contingency_table.h"
#include "input/profile.h"
#include "model/alldb.h"
#include "model/hapldb.h"
#include "model/hpopdb.h"
#include "model/pheno.h"

namespace tov {

class DistMat;
class TriMat;
class settings;

/// One population sample. Plain public state; the concrete class depends on the data type (see new_population).
///
/// The haplotype list merges equal haplotypes (one entry a definition, with its copies). For genotypic data the second
/// list holds one entry a gene copy, the two copies of an individual side by side; phen_to_gam fills both.
class Population {
public:
    Population();
    explicit Population(my_string const& name, double size = 0.0);
    Population(Population const&) = delete;
    Population& operator=(Population const&) = delete;
    virtual ~Population();

    // --- Operations of the data types; the defaults do nothing ---
    /// Every analysis within the sample that the tasks ask for.
    virtual void test_methods(settings& s);
    virtual void clean_bnum();
    /// Checks counts and lengths. @return 1, or 0 after its report.
    virtual int check_data();
    /// Fills the matrix of distances between the sample's haplotypes. @return 1, or 0 when it can't.
    virtual int compute_distance_matrix(std::ostream* out, settings* s, int scale);
    /// Finds usable and polymorphic sites. @return 1, or 0 after an error.
    virtual int evaluate_polymorphism(settings const& s);
    /// Back to an empty sample: no data, name empty, index -1.
    virtual void initialize();
    /// Releases phenotypes, both haplotype lists, the pool and the site flags.
    virtual void clean();

    // --- Accessors ---
    [[nodiscard]] int polymSite(int site) const;
    /// Whether evaluate_polymorphism has run.
    [[nodiscard]] bool polymorphism_known() const noexcept { return !polym_sites.empty(); }
    [[nodiscard]] my_string const& pop_name() const noexcept { return sample_name; }
    void set_name(my_string const& name) { sample_name = name; }
    [[nodiscard]] int pop_index() const noexcept { return index; }
    void set_index(int i) noexcept { index = i; }
    [[nodiscard]] double longitude() const noexcept { return longitude_; }
    [[nodiscard]] double latitude() const noexcept { return latitude_; }
    void init_front_settings(double longitude, double latitude) noexcept {
        longitude_ = longitude;
        latitude_ = latitude;
    }
    [[nodiscard]] int numpop() const noexcept { return numpop_; }
    void set_numpop(int n) noexcept { numpop_ = n; }
    [[nodiscard]] int app_ling() const noexcept { return app_ling_; }
    [[nodiscard]] my_string const& ethnie() const noexcept { return ethnie_; }
    [[nodiscard]] int recessive_loci() const noexcept { return recessive_loci_; }
    void set_recessive_loci(int recessive) noexcept { recessive_loci_ = recessive; }
    /// Gene copies (or what the reader has set), and 1 / that, or 0.
    [[nodiscard]] double sample_size() const noexcept { return sample_size_; }
    [[nodiscard]] double inverse_sample_size() const noexcept { return inverse_sample_size_; }
    /// Sets the sample size (gene copies) and its inverse, 0 for a size of 0.
    void set_sample_size(double size) noexcept;
    [[nodiscard]] int nb_haplotypes() const { return static_cast<int>(current_haplotypes->GetItemsInContainer()); }
    /// Entry of the list in use, index in [0, nb_haplotypes()).
    [[nodiscard]] PHaploDef& haplotype(int i) const;
    [[nodiscard]] bool is_genotypic() const noexcept { return profile.GenotypicData != 0; }
    /// Haplotypes are known: haplotypic data, or genotypic with known phase.
    [[nodiscard]] bool phase_known() const noexcept { return profile.GenotypicData == 0 || profile.GameticPhase != 0; }
    /// Let the haplotype-list pointer stand on the merged list, or on the one of single gene copies.
    void use_merged_list() noexcept { current_haplotypes = &haplotypes; }
    void use_gene_copy_list() noexcept { current_haplotypes = &gene_copies; }
    /// At most five characters, and up to three from the end of a name of more than eight.
    [[nodiscard]] my_string get_small_name() const;
    [[nodiscard]] int evaluate_nb_loci() const;

    bool operator==(Population const& other) const { return sample_name == other.sample_name; }

    // --- Reading; defined with the readers ---
    /// Reads the lines of a sample up to the closing brace: one an entry (haplotypes), or two (genotypes).
    ///
    /// The sample's profile and its declared size stand already. @param has_list the definitions come from a list;
    /// @param external the data are a file of their own, whose end closes them; @param text what stands behind the
    /// opening brace; @param project_loci loci of the project's first entry, 0 before it. @return 1, or 0 after a
    /// report.
    int New_read_gametic_data(std::istream& is, Haplo_DB& db, int has_list, int& line, my_string& text,
                              int external = 0, int project_loci = 0);
    int New_read_genotypic_data(std::istream& is, int external, int& line, my_string& text, int project_loci = 0);

    // --- Conversions (popbase_convert.cpp) ---
    /// Relative frequencies, then the alleles of both chromosomes of every phenotype from their texts, each inserted
    /// into the database with the phenotype's count.
    void build_allele_vectors(char const& separator);
    /// Inserts the blank allele as entry 0 of every locus, once a database. Reports 108, 152, 153.
    ///
    /// The name is the profile's RecessiveAllele for recessive data, otherwise "\x01", which no reader lets through.
    void make_all_blanks(char const& separator);
    /// Sets TAllele::freq of all alleles to their relative frequencies in this sample. Reports 158.
    void update_allele_freq();
    /// Turns the chromosomes of all phenotypes into haplotypes of `db`, counted in both lists.
    void phen_to_gam(Haplo_DB* db, ProfileSettings* profile, settings* s);
    /// Turns the pool's frequencies into counts of haplotypes of `db`, in `target` or the own list.
    void h_pop_db_to_gam(Haplo_DB* db, MY_TIArrayAsVector<PHaploDef>* target);
    /// The list becomes all of `db` with their copies. Reports 156, 157.
    void haplotype_transf(Haplo_DB& db);
    /// Pools another sample.
    Population& operator+=(Population const& other);
    /// Builds the pseudo haplotypes' alleles anew from the stored texts.
    void convertAlleleStringsToHaplotypes();
    /// Prints the haplotypes that this sample shares with another.
    void print_out_redondant(std::ostream& os, Population const& other, DistMat const& matrix);
    void print_population_anchor(int level, settings& s, char const* tag);
    /// Adds this sample's share to the work of the run.
    void evaluate_work(settings* s) const;

    // --- EM (inference) ---
    double calc_ML_hapl_freq_hill95_LD(TPhenDB& ph, TPopHaploDB& pool, settings& s, int& nbSolutions,
                                       int const& useInbreeding, double& F, TPopHaploDB* previous, int* flags,
                                       int const& compact, int const& nbInit, int const& maxIter,
                                       double const& epsilon);
    double calc_ML_hapl_freq_hill95_LE(TPhenDB& ph, TPopHaploDB& pool, settings& s, int& nbSolutions,
                                       int const& useInbreeding, double& F, TPopHaploDB* previous, int* flags,
                                       int const& compact, int const& nbInit, int const& maxIter,
                                       double const& epsilon);
    void calc_sd_hapl_freq(TPhenDB& ph, TPopHaploDB& pool, settings& s, int const& nbInit, int const& nbBoot,
                           int const& maxIter, double const& epsilon);
    void calc_subset_hapl_freq(std::ostream& out, int const* loci, TPhenDB const& ph, settings& s, int const& nbInit,
                               int const& nbBoot, int const& maxIter, double const& epsilon);
    void calc_all_pairs(std::ostream& out, TPhenDB const& ph, settings& s, int const& nbInit, int const& nbBoot,
                        int const& maxIter, double const& epsilon);
    void calc_all_sites(std::ostream& out, TPhenDB const& ph, settings& s, int const& nbInit, int const& nbBoot,
                        int const& maxIter, double const& epsilon);

    // --- Hardy-Weinberg test (inference) ---
    void make_all_hw(std::ostream& out, TPhenDB const& ph, long const& steps, settings& s);
    double make_hw_test1(TPhenDB const& ph, double& stat, settings& s, int* loci);
    double make_hw_test2(long const& steps, double& stat, settings& s, long& stepsDone, int* loci);
    double make_hw_test3(long const& steps, double& stat, settings& s, long& stepsDone, int* loci);
    int make_hw_table(int* loci);
    double swap_in_table2(int* k, long& seed);
    void compute_locus_heterozygosity(int const& locus, double& obs, double& exp, int& n);
    void clear_table(int* k);

    // --- Linkage disequilibrium with unknown phase (inference) ---
    void calc_all_link_dis(std::ostream& out, TPhenDB const& ph, settings& s, int const& steps, long const& seed,
                           int const& nbInit, double const& epsilon);
    double calc_link_dis_prob(int* loci, TPhenDB const& ph, settings& s, long& stepsDone, double& chi, double& lnLD,
                              double& lnLE, int const& maxIter, long const& steps, int const& nbInit,
                              double const& epsilon);
    double calc_link_dis_recess(int* loci, TPhenDB const& ph, settings& s, long& stepsDone, double& chi, double& lnLD,
                                double& lnLE, int const& maxIter, long const& steps, int const& nbInit,
                                double const& epsilon);
    /// The test of a pair by the one of the two above that suits the data.
    double calc_pairwise_LD(int* loci, TPhenDB const& ph, settings& s, long& stepsDone, double& chi, double& lnLD,
                            double& lnLE, int const& maxIter, long const& steps, int const& nbInit,
                            double const& epsilon);
    /// Tests all pairs silently and flags loci in selected[0 .. loci of ph - 1]. @return 1, or 0 after a stop.
    int calc_all_pairwise_LDs(TPhenDB const& ph, settings& s, int* selected, double const& pLevel, double const& share,
                              int const& maxIter, long const& steps, int const& nbInit, double const& epsilon);

    // --- Heterozygosity of genotypes (diversity) ---
    void compute_phenotype_heterozygosity(settings& s, TPhenDB const& ph);

    // --- Data ---
    std::vector<int> polym_sites;  ///< one flag a site; empty before evaluate_polymorphism
    ProfileSettings profile;       ///< the sample's copy of the profile
    my_string sample_name;
    int index = -1;
    MY_TIArrayAsVector<PHaploDef> haplotypes;                         ///< owned: distinct haplotypes with their counts
    MY_TIArrayAsVector<PHaploDef> gene_copies;                        ///< owned: one entry a gene copy (genotypic data)
    MY_TIArrayAsVector<PHaploDef>* current_haplotypes = &haplotypes;  ///< the list in use
    TPhenDB phenotypes;
    TAlleleDB* alleles = nullptr;  ///< borrowed
    TPopHaploDB pool;
    int nb_diff_haplotypes = 0;              ///< kept by the conversions
    int nb_original_haplotypes = 0;          ///< distinct haplotypes before those at distance zero were merged
    double nb_gene_copies = 0.0;             ///< of the list in use, for the permutations
    int converted = 0;                       ///< 1 after phen_to_gam
    int pooled = 0;                          ///< the sample is a pooled group
    double degrees_of_freedom = 0.0;         ///< of the last test of linkage disequilibrium with unknown phase
    ContingencyTable table;                  ///< of the Hardy-Weinberg and linkage tests, while one runs
    int monomorphic = 0;                     ///< the locus just tested had a single allele

private:
    double sample_size_ = 0.0;
    double inverse_sample_size_ = 0.0;
    double longitude_ = 0.0;
    double latitude_ = 0.0;
    int numpop_ = 0;
    int app_ling_ = 0;
    my_string ethnie_;
    int recessive_loci_ = 0;
};

/// A new sample of the class of a data type (DNA, RFLP, MICROSAT; STANDARD for all others); defined with the classes.
[[nodiscard]] std::unique_ptr<Population> new_population(TDataType type);

/// Number of pieces between separators (runs of them count once), or of characters without a separator.
[[nodiscard]] int count_loci(my_string const& content, char separator) noexcept;

}  // namespace tov
