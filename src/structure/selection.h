// Detection of loci under selection: the joint distribution of F-statistics and heterozygosity in neutral loci.
#pragma once

#include <iosfwd>
#include <span>
#include <vector>

#include "model/project_view.h"
#include "simulation/struct_sim.h"
#include "structure/formula/locus_fixation.h"

namespace tov {

class Population;
class Structure;
class TAlleleDB;
struct StructureActions;

/// Value of an F-statistic of a locus at which a sample has no data.
inline constexpr double unusable_locus = -2.0;

/// Fills the first two fields of every locus: the mean heterozygosity over the samples of a structure, and the mean
/// gene diversity over its groups, both unbiased and weighted by gene copies (0 without any).
void computeMeanHeterozygosityOverSamplesInStructure(Structure const& structure, TAlleleDB& alleles);

/// Gene copies of a sample: two an individual, or the copies of its haplotypes.
[[nodiscard]] int gene_copies_of(Population const& population);

/// A locus of the data, and its test.
struct TestedLocus {
    double het_between = 0.0;  ///< heterozygosity between populations, H / (1 - FST)
    double FST = 0.0;
    double FSC = 0.0;  ///< several groups only, as FCT
    double FCT = 0.0;
    double p_fst = -1.0;  ///< -1: not computed; 2: outside the simulated heterozygosities
    double p_fct = -1.0;
};

/// F-statistics that the simulations aim at.
struct FixationTargets {
    double FST = 0.0;
    double FSC = 0.0;
    double FCT = 0.0;
};

/// An F-statistic as it is tested: what rounding leaves of 0 is 0, so that equal data are tested alike however their
/// sums were rounded. The smallest values that data can have are far above.
[[nodiscard]] double without_rounding(double F) noexcept;
/// H / (1 - FST); 1 where FST is 1 or marks an unusable locus.
[[nodiscard]] double het_between_populations(double H, double FST) noexcept;
/// Means over loci weighted by the heterozygosity between populations; loci that are unusable don't count.
/// @param several_groups  FCT is averaged too, and FSC follows from both; otherwise they are 0.
[[nodiscard]] FixationTargets target_means(std::vector<TestedLocus> const& loci, bool several_groups) noexcept;

/// A simulated locus as it enters the null distribution.
struct SimulatedLocus {
    double FST = 0.0;
    double FSC = 0.0;  ///< several groups only, as FCT
    double FCT = 0.0;
    double H = 0.0;            ///< mean heterozygosity over samples; 0 with an FST of 0
    double het_between = 0.0;  ///< 0 with an FST of 0
};

/// Without differentiation a locus counts as one without heterozygosity, as a locus of one allele is.
[[nodiscard]] SimulatedLocus simulated_locus(LocusFixation const& locus) noexcept;

/// Simulated loci, one entry a locus.
struct SimulatedLoci {
    std::vector<double> het;  ///< heterozygosity between populations
    std::vector<double> FST;
    std::vector<double> FCT;  ///< several groups only
    std::vector<int> mutations;
    double lowest = 10000.0;  ///< heterozygosity
    double highest = -10.0;

    void add(double het_between, double fst, double fct, int nb_mutations);
};

/// What the simulations are made with.
struct SimulationPlan {
    int files = 1;             ///< project files to make; 1 without a file of parameters
    bool makes_files = false;  ///< a file of parameters rules: loci are written to projects and none is tested
    int simulations = 0;       ///< loci (of each file)
    IslandModel model;
    double het_low = 0.0;  ///< bounds of the heterozygosity aimed at
    double het_high = 1.0;
    double theta_limit = 0.0;  ///< per deme
};

/// Mutation parameter 2 N mu of the whole population at which a locus has heterozygosity H, by data type.
///
/// Stepwise 0.5 (1 / (1 - H)^2 - 1), single sites H / (1 - 2 H), infinite alleles 1 / (1 - H) - 1.
[[nodiscard]] double theta_of_heterozygosity(double H, Mut_Type type) noexcept;

/// The mutation model of a data type.
[[nodiscard]] Mut_Type mutation_type_of(int data_type) noexcept;

/// Reads a file of parameters into the plan and its targets: number of files, loci per file, groups, demes, FSC, FCT,
/// each the first word of the second line after the one before, from the third line on. FST follows from the last two.
///
/// What isn't there or no finite number stays as it was; with one group the number of groups isn't used.
void read_simulation_parameters(std::istream& in, SimulationPlan& plan, FixationTargets& targets);

/// Reads the simulated loci of an earlier run: a head, then lines of columns between tabs; the others are passed over.
/// @return whether a line was read.
bool read_simulated_loci(std::istream& in, bool several_groups, SimulatedLoci& loci);

/// Simulates loci for a structure and computes their statistics. Kept from locus to locus.
class NullLoci {
public:
    /// @param tested  the structure; with one group, all samples of the project are simulated.
    NullLoci(ProjectView const& view, Structure const& tested);

    /// One locus. Draws: the heterozygosity aimed at, for single sites one more when that is 0.5 or above, then those
    /// of LocusSimulator::simulateSample.
    /// @return false when no tree could be built.
    bool simulate(SimulationPlan const& plan);

    [[nodiscard]] double target_het() const noexcept { return target_het_; }
    /// F-statistics and heterozygosity of the locus at hand.
    [[nodiscard]] LocusFixation statistics();
    [[nodiscard]] int mutations() const noexcept { return simulator_.mutations(); }
    [[nodiscard]] Mut_Type type() const noexcept { return mutation_.type; }
    /// States of a sample of the project; empty for one that isn't simulated.
    [[nodiscard]] std::span<int const> states_of_sample(int sample) const;

private:
    LocusSimulator simulator_;
    LocusFixationWalk walk_;
    LocusMutation mutation_;
    std::vector<int> simulated_;       ///< sample indices in the order of the tips
    std::vector<int> first_tip_;       ///< by sample index, -1 when not simulated
    std::vector<int> copies_;          ///< by sample index
    std::vector<int> tested_;          ///< sample indices in the order of the structure
    std::vector<int> ordered_states_;  ///< states in that order, while it differs
    double target_het_ = 0.0;
};

/// Tests every locus and prints the results; or only makes project files of simulated loci when the working directory
/// holds a file of simulation parameters. Everything that it changes comes back, on every way out.
///
/// @param hierarchical  the groups of the structure are kept; otherwise all samples form one group.
/// Draws: those of the simulations.
/// Source: Beaumont and Nichols 1996; Slatkin and Voelm 1991 for the hierarchical island model.
void detect_selected_loci(ProjectView const& view, StructureActions const& actions, bool hierarchical);

}  // namespace tov
