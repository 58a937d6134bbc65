// Amova: analysis of molecular variance of one genetic structure.
#pragma once

#include <array>
#include <fstream>
#include <functional>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "model/project_view.h"
#include "structure/amova_results.h"
#include "structure/formula/gene_permutations.h"
#include "structure/formula/gene_vector.h"
#include "structure/formula/pair_sums.h"
#include "structure/formula/permutation_p.h"
#include "structure/formula/variance_components.h"

namespace tov {

class Population;

/// One permutation's value and the order of populations that gave it.
struct FloatsAndPops {
    double value = 0.0;
    std::vector<int> pops;
    bool operator<(FloatsAndPops const& other) const noexcept { return value < other.value; }
};

/// A level of a design's table: its label, of several lines, and the width of the degrees of freedom behind it.
struct AmovaRow {
    char const* label;
    int df_width;
};

/// An index as a design prints it.
struct AmovaIndex {
    char const* text;
    double VarianceTable::*value;
    AmovaIndexSlot slot;
};

/// A permutation test: the component that it tests and the index that goes with it. PPAG has no scheme.
struct AmovaTest {
    int component;  ///< 0 for Va
    AmovaIndexSlot slot;
    char const* index;
    bool populations;  ///< PPAG: populations are exchanged among groups
    PermutationScheme scheme;
    PermutationTail tail;
};

/// The designs, chosen by the data and by the groups of the structure (Amova::select_design).
///
/// A name tells the levels: 1G one group or G several; P populations or 1P one of them; then what stands below them. I:
/// individuals, with their gene copies as the lowest level. H: gene copies alone, for haplotypes, and for genotypes of
/// known phase without the level of individuals. IH: the table of H for genotypes of unknown phase, whose tests move
/// whole individuals. RIH: the same with recessive alleles, which has no analysis.
///
/// | Design         | Source | Case | Levels of Va, Vb, ...                    | Tests, in the order of their draws  |
/// |----------------|--------|------|------------------------------------------|-------------------------------------|
/// | AMOVA_1G_P_H   | amova1 | 1    | populations, copies                      | FST PHAPWG                          |
/// | AMOVA_1G_P_I   | amova2 | 2    | populations, individuals, copies         | FIS PHAIWP, FST PIAPWG, FIT PHAPWG  |
/// | AMOVA_G_P_H    | amova3 | 3    | groups, populations, copies              | FST PHAPAG, FSC PHAPWG, FCT PPAG    |
/// | AMOVA_G_P_I    | amova4 | 4    | groups, populations, individuals, copies | FIT PHAPAG, FIS PHAIWP, FSC PIAPWG, |
/// |                |        |      |                                          | FCT PPAG                            |
/// | AMOVA_G_P_IH   | amova8 | 5    | groups, populations, copies              | FST PIAPAG, FSC PIAPWG, FCT PPAG    |
/// | AMOVA_1G_1P_I  | amova6 | 6    | individuals, copies                      | FIS PHAIWP                          |
/// | AMOVA_1G_P_IH  | amova7 | 7    | populations, copies                      | FST PIAPWG                          |
/// | AMOVA_G_P_RIH  | none   | 8    |                                          |                                     |
/// | AMOVA_1G_P_RIH | none   | 9    |                                          |                                     |
///
/// The case is the number of a design in amova_results, by which tables over loci find their labels (amova_table.h).
/// What a test exchanges stands with PermutationScheme; PPAG exchanges populations among groups.
enum AmovaDesignNumber : int {
    NO_DESIGN = 0,
    DESIGN_1G_1P_I = 2,
    DESIGN_1G_P_H = 3,
    DESIGN_1G_P_I = 4,
    DESIGN_G_P_H = 5,
    DESIGN_G_P_I = 6,
    DESIGN_1G_P_IH = 7,
    DESIGN_G_P_IH = 8,
    DESIGN_1G_P_RIH = 9,
    DESIGN_G_P_RIH = 10
};

/// What makes a design: all that printing and testing need.
struct AmovaDesign {
    char const* context;  ///< where its errors come from
    std::span<AmovaRow const> rows;
    std::span<AmovaIndex const> indices;
    char const* index_head;  ///< line above several indices; null for one
    std::span<AmovaTest const> tests;
    bool individuals;  ///< levels of individuals: needs the sum within individuals
};

/// Gene copies, sizes and distances that an analysis works on.
struct AmovaInput {
    StructureSizes sizes;
    PairDistances distances;
    std::vector<int> genes;  ///< haplotype numbers, population after population
};

/// One analysis: construction does the whole work and leaves document, log and the record of results.
///
/// The populations of the structure carry their numbers. Random draws: those of the tests, in the order of the
/// design's table; none without permutations; then those of the distances between populations.
class Amova {
public:
    /// The structure of a project, with its print.
    ///
    /// @param results  borrowed; receives the record.
    Amova(ProjectView const& view, amova_results* results);
    /// One locus of the structure, without any text.
    ///
    /// @param locus  from 0.
    Amova(ProjectView const& view, int locus, AmovaInput input, amova_results* results);
    ~Amova();
    Amova(Amova const&) = delete;
    Amova& operator=(Amova const&) = delete;

    [[nodiscard]] AmovaDesignNumber design() const noexcept { return design_; }
    [[nodiscard]] VarianceTable const& table() const noexcept { return table_; }

    /// Prints the order of populations and the value of a permutation.
    void print_p(FloatsAndPops const& permuted, std::ostream& out) const;
    /// Prints the numbers and names of the populations.
    void print_popvect(std::ostream& out) const;

    /// Distances between all pairs of samples and their tests (pairdist.cpp). @return 1, or 0 after a report.
    int CalcPairDist();

private:
    /// How a test gets its values from the permuted sums: the within terms W and the sum within individuals I, 0 where
    /// not asked for. A test that exchanges populations reads the permuted groups in their place.
    struct Statistic {
        bool within;
        IndividualSums individuals;
        std::function<double(double W, double I)> value;
    };

    // --- Set-up (amova.cpp) ---
    void initialize(AmovaInput input);
    [[nodiscard]] AmovaInput gather_input();
    [[nodiscard]] std::vector<int> load_HaplotypeIndexVector(int known) const;
    void distribute_HaplotypeIndexVector(std::span<int> genes, int known) const;
    [[nodiscard]] AmovaDesignNumber select_design() const;
    void run_selected_design();
    void print_introduction();

    // --- Designs, see AmovaDesignNumber. @return 1, or 0 when the design is ill defined or the user stopped ---
    int AMOVA_1G_P_H();
    int AMOVA_1G_P_IH();
    int AMOVA_1G_P_I();
    int AMOVA_1G_1P_I();
    int AMOVA_G_P_H();
    int AMOVA_G_P_IH();
    int AMOVA_G_P_I();
    // Haplotypes of genotypes whose phase is unknown have no analysis: nothing is computed or printed.
    int AMOVA_1G_P_RIH() { return 1; }
    int AMOVA_G_P_RIH() { return 1; }
    /// AMOVA_1G_P_H and AMOVA_1G_P_IH, which differ in what the test of FST moves.
    int one_group_of_haplotypes(PermutationScheme scheme);
    /// AMOVA_G_P_H and AMOVA_G_P_IH, which differ in what the tests of FST and FSC move.
    int groups_of_haplotypes(PermutationScheme among, PermutationScheme within);

    // --- Sums (amova.cpp) ---
    /// Population sums, within terms, group sums and, for designs of individuals, the sum within individuals.
    void compute_observed_sums(bool individuals);
    void compute_SSDP();
    double compute_SSDWI();

    // --- Running a design (amova_permute.cpp) ---
    /// Prints and stores `table_`, then runs the tests with one statistic each. @return 1, or 0 when ill defined or
    /// stopped.
    int run_design(AmovaDesign const& design, std::vector<Statistic> const& statistics);
    int run_test(AmovaDesign const& design, std::size_t test, Statistic const& statistic);
    void restore_observed(AmovaTest const& test);
    [[nodiscard]] GenePermutations gene_permutations(AmovaTest const& test, Statistic const& statistic);
    /// Makes room for what the permutations up to the next poll store, so that none of them allocates.
    void reserve_null_values(AmovaTest const& test);
    /// Counts the populations whose permuted FIS is at or above the observed one.
    ///
    /// @param S            within sums of the permutation.
    /// @param individuals  sums within individuals, one a population.
    void count_population_fis(std::span<double const> S, std::span<double const> individuals);
    void observe_population_fis();
    [[nodiscard]] bool poll();
    /// PPAG and the sums of the new groups.
    void permute_among_groups();

    // --- Printing (amova_report.cpp, amova_null.cpp) ---
    void print_table(AmovaDesign const& design);
    void print_test(AmovaDesign const& design, std::size_t test, PermutationOutcome const& outcome);
    /// One row of the batch table of analyses, when it is open.
    void write_batch_row(AmovaDesign const& design) const;
    void print_population_fst();
    void print_population_fis(bool tested);
    bool write_null_file(AmovaTest const& test, int elapsed_ms);
    void print_histogram(AmovaDesign const& design);

    ProjectView view_;
    bool print_;
    int locus_;
    amova_results* results_;  // borrowed
    AmovaDesignNumber design_ = NO_DESIGN;
    bool individual_level_ = false;
    PermutationPlan plan_{0};
    std::string time_text_;
    StructureSizes sizes_;
    AmovaSums sums_;
    GroupSums groups_;
    GroupSums permuted_groups_;
    PairDistances distances_;
    std::vector<Population*> populations_;  // borrowed, by number
    std::vector<int> order_;                ///< numbers of the populations, group after group
    std::vector<GeneSlice> slices_;
    std::vector<int> observed_genes_;  ///< haplotype numbers as the samples hold them
    std::vector<int> genes_;           ///< the vector that is permuted
    std::unique_ptr<WithinSums> within_;
    std::vector<double> S_;                   ///< undivided within sums of the observed vector
    std::vector<double> population_sums_;     ///< lower triangle
    std::vector<double> within_individuals_;  ///< observed, one a population
    VarianceTable table_;
    std::vector<double> observed_fis_;
    std::vector<int> fis_hits_;         ///< permuted FIS at or above the observed one
    std::vector<double> local_values_;  ///< null values of the test in hand, sorted after it
    std::vector<FloatsAndPops> local_orders_;
    std::array<std::vector<double>, 4> sorted_null_;  ///< by component, for the histogram
};

/// Looks through the haplotype numbers of a sample's gene copies: one without a row of the distance matrix is told in
/// the log, reported as code 2 and becomes `known`, which counts nowhere.
///
/// @param known   rows of the matrix.
/// @param listed  haplotypes of the project.
void SetUpVectorsAfterPermutation(Population const& population, std::span<int> slice, int known, int listed);

/// Project::AMOVA: associates the distance matrix with the haplotypes, numbers the populations and runs an Amova.
/// Reports 134, 135. @return 1 or 0.
int run_amova(ProjectView const& view);

/// Whether the structure can be analysed: at least one population, one group and, unless it has one population alone,
/// fewer groups than populations. Warnings 123, 124, 125.
[[nodiscard]] bool is_amova_structure(Structure const& structure);

/// Entry of the result tree for a table of an AMOVA.
void print_amova_anchor(int level, settings const& set, std::string const& title, std::string const& anchor);

}  // namespace tov
