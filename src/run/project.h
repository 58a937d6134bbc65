// Project: everything known about one project file, and the driver of one run of it.
#pragma once

#include <ctime>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "input/profile.h"

namespace tov {

class DistMat;
class Haplo_DB;
class Mantel;
class Population;
class Samples;
class Structure;
class TAlleleDB;
class amova_results;
class settings;
struct ProjectView;
struct StructureActions;

/// One project. The object serves all projects of a run list, one after the other; it is empty between two runs.
///
/// The profile of the project is the base part. All data members are owned for the project's whole life, except that
/// the samples and the structure are exchanged for pooled ones while the group level runs.
class Project : public ProfileSettings {
public:
    Project();
    ~Project() override;
    Project(Project const&) = delete;
    Project& operator=(Project const&) = delete;

    // --- Life of a run (project_run.cpp, project_explore.cpp, proj_prep.cpp) ---
    /// One whole run of the project in settings::input_file. @return 1, or 0 when nothing could be analysed.
    int run();
    /// Writes `tov_pro.txt` into `directory`, `samples.txt` and `groups.txt` into the current one. @return 1 or 0.
    int explore(std::string const& directory);
    /// Reads the project in settings::input_file. @return 1, or 0 after its reports.
    int newOpen();
    /// Resets the profile and reads settings::input_file; for intermediate files of a translation. @return 1 or 0.
    int open();
    /// Empties the project and takes the document away from the error facility.
    void clean();
    /// Writes the single line "error" into `tov_pro.txt` of the working directory.
    void print_error_message() const;

    // --- Names (project.cpp) ---
    /// Derives the result name (.htm), the back-up name (.bac) and the project's directory from settings::input_file.
    void build_res_bac_names();
    /// Backs the project up into the `.bac` file, sites without a separator, and nothing unless `backup_allowed`. The
    /// file can be opened as a project. @return 1, or 0 after code 133.
    int write();
    /// Writes the settings into `<project>.tvs`.
    void save_associated_set();

    // --- Checks (project_checks.cpp) ---
    /// Adapts tasks and settings to the data, converts the data for them. @return 1, or 0 when a task can't be done.
    int make_run_possible();
    /// A design with at least one sample, one group and, unless there is one sample alone, fewer groups than samples.
    /// Reports 123, 124, 125 as warnings.
    [[nodiscard]] bool IsAmovaStructure() const;
    /// Allele vectors of every haplotype definition; sets `vectorsBuilt`. @return 1, or 0 after a report.
    int build_all_vectors(TAlleleDB& database);
    /// Logs that the detection of repeat lengths is skipped (microsatellites); leaves the data alone.
    void convertMicrosatToNumberOfRepeats();
    /// DNA in upper case, sites without a separator, words parted by one blank. @return true when a separator of sites
    /// was removed.
    bool unify_definitions();

    // --- Groups as samples (project_structure.cpp) ---
    /// One sample a group of `inStructure`, named "Group1", "Group2", ..., all in the one group of `outStructure`.
    /// Sets `phenToGamDone` for genotypic data.
    void poolSamplesInGroups(Samples const& in, Structure const& inStructure, Samples& out, Structure& outStructure);

    /// Tests each locus for selection, with the groups of the structure or without.
    void detectSelectedLociFromFSTHetComparison(bool hierarchical);

    // --- Distances between haplotypes (project_distances.cpp) ---
    /// Fills the distance matrix from the project's haplotypes. @return 1, or 0 after code 136, the matrix then empty.
    int calc_dist_matrix(int method, double gamma);
    /// The same from the haplotypes of `list`, without the report on usable loci.
    int calc_dist_matrix(Haplo_DB& list, int method, double gamma);
    /// Prints the matrix in use, the haplotypes behind it and, when wanted, the minimum spanning tree and network.
    void print_distance_matrix();
    /// Finds haplotypes at distance zero, reports those shared among samples, merges them when wanted.
    void eliminate_redond_haplodef();

    // --- Parts of the project ---
    [[nodiscard]] ProfileSettings& p_pro() { return *this; }
    [[nodiscard]] ProfileSettings const& p_pro() const { return *this; }
    [[nodiscard]] Haplo_DB& p_hdb() { return *haplotypes_; }
    [[nodiscard]] Haplo_DB const& p_hdb() const { return *haplotypes_; }
    [[nodiscard]] DistMat& p_dmt() { return *distances_; }
    [[nodiscard]] DistMat const& p_dmt() const { return *distances_; }
    [[nodiscard]] Samples& p_sam() { return *samples_; }
    [[nodiscard]] Samples const& p_sam() const { return *samples_; }
    [[nodiscard]] Structure& p_str() { return *structure_; }
    [[nodiscard]] Structure& get_struct() { return *structure_; }
    [[nodiscard]] Structure const& get_struct() const { return *structure_; }
    [[nodiscard]] Mantel& p_mantel() { return *mantel_; }
    [[nodiscard]] TAlleleDB& p_alldb() { return *alleles_; }
    [[nodiscard]] amova_results& p_amova() { return *amova_; }
    [[nodiscard]] settings& p_set() { return *settings_; }
    [[nodiscard]] settings const& p_set() const { return *settings_; }

    // --- Plain state ---
    int vectorsBuilt = 0;          ///< The allele vectors exist.
    int phenToGamDone = 0;         ///< Phenotypes were turned into pseudo haplotypes.
    int third_run_flag = 0;        ///< Cleared at each run, read by nobody.
    int runNumber = 0;             ///< Runs of the process so far, failed ones too.
    int backup_allowed = 0;        ///< write() does something.
    int distance_computed = 0;     ///< calc_dist_matrix has succeeded.
    int projectValid = 0;          ///< The data can be analysed.
    std::clock_t start_clock = 0;  ///< Clock after cleaning.
    int elapsed = 0;               ///< Milliseconds of the last run.

private:
    struct RunFrame;
    struct LevelWords;

    // Steps of run(), in the order of their calls (project_run.cpp).
    bool clean_input(RunFrame& frame);
    void open_result_document(RunFrame& frame);
    void begin_document(RunFrame& frame);
    void name_run_files();
    /// The frameset and the page of the link tree, whether or not there were some.
    void New_print_html_frames_output(bool existed) const;
    void New_print_html_results_header(bool xml);
    /// The foot of a document is the same whether or not the file existed.
    void New_print_html_results_footer(bool existed, bool xml);
    void print_run_banner(RunFrame& frame);
    bool read_project();
    void prepare_data();
    void set_locus_separator(char separator);
    void print_project_information();
    bool check_tasks(RunFrame& frame);
    void clear_impossible_individual_level();
    void run_group_level();
    void run_sample_level();
    void analyse_level(LevelWords const& words);
    void assign_genotypes();
    void analyse_samples(LevelWords const& words);
    void add_chosen_statistics(bool groups);
    void write_chosen_statistics();
    void GenStructCalculations();
    [[nodiscard]] StructureActions structure_actions();
    void detect_selection();
    void end_run(RunFrame& frame);
    int abandon_run(RunFrame& frame);
    [[nodiscard]] std::ostream& document();

    // Steps of make_run_possible() (project_checks.cpp).
    int prepare_data_for_tasks();
    void build_sample_vectors();
    int convert_phenotypes_and_build_vectors();
    int build_missing_vectors();
    int adapt_distance_settings();
    void drop_amova_without_structure();
    void adapt_markov_chains();
    void adapt_remaining_tasks();
    [[nodiscard]] bool mantel_needs_fst() const;
    [[nodiscard]] bool phase_known_or_haplotypic() const;

    // Steps of the distance functions (project_distances.cpp).
    int calc_dist_matrix(Haplo_DB& list, int method, double gamma, bool report_loci);
    std::unique_ptr<Population> analyse_list(Haplo_DB& list, int method, double gamma);
    bool find_redundancy_matrix();
    [[nodiscard]] std::vector<int> redundancy_classes() const;
    void print_shared_haplotypes();
    void print_haplotype_list();
    void print_global_network();

    // Steps of explore() (project_explore.cpp).
    int explore_sub_section(std::istream& in, int id);
    void write_front_end_summary(std::string const& directory) const;

    std::unique_ptr<Haplo_DB> haplotypes_;  // owned
    std::unique_ptr<DistMat> distances_;    // owned
    std::unique_ptr<Samples> samples_;      // owned
    std::unique_ptr<Structure> structure_;  // owned
    std::unique_ptr<Mantel> mantel_;        // owned
    std::unique_ptr<TAlleleDB> alleles_;    // owned
    std::unique_ptr<settings> settings_;    // owned
    std::unique_ptr<amova_results> amova_;  // owned
};

/// The parts of `project` as the analyses see them; all pointers are borrowed.
[[nodiscard]] ProjectView view_of(Project& project);

}  // namespace tov
