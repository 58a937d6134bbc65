// Summary of the settings in force, for the result document.
#include <cstdio>
#include <ostream>
#include <span>
#include <string>

#include "input/distance_names.h"
#include "input/settings_keys.h"
#include "output/style.h"

namespace tov {
namespace {

enum class Show { number, yes_no, distance, theta_estimators, hw_level };

struct Parameter {
    char const* text;
    SettingsField field;
    Show show = Show::number;
};

struct TaskBlock {
    long bit;
    char const* title;  ///< with its indent, and a newline in front where the block is set off
    std::span<Parameter const> parameters{};
};

constexpr int label_width = 32;
constexpr int general_indent = 8;
constexpr int task_indent = 4;
constexpr int parameter_indent = task_indent + 3;

constexpr Parameter general[] = {
    {"Deletion weight", &settings::DeletionWeight},
    {"Transition weight", &settings::TransitionWeight},
    {"Transversion weight", &settings::TranversionWeight},
    {"Epsilon value", &settings::EpsilonValue},
};
constexpr Parameter standard[] = {
    {"Allele frequencies at all loci", &settings::ComputeAllAlleleFreqs, Show::yes_no},
};
constexpr Parameter molecular[] = {
    {"Molecular distance", &settings::DistanceMethod, Show::distance},
    {"Gamma a value", &settings::GammaAValue},
    {"Theta estimators", &settings::ComputeTheta, Show::theta_estimators},
    {"Print distance matrix", &settings::PrintHaplDistMat, Show::yes_no},
    {"Print minimum spanning tree", &settings::PrintMinSpannNetworkPop, Show::yes_no},
};
constexpr Parameter mismatch[] = {
    {"Demographic expansion", &settings::MismatchDemogExp, Show::yes_no},
    {"Spatial expansion", &settings::MismatchSpatialExp, Show::yes_no},
    {"Molecular distance", &settings::MismatchDistanceMethod, Show::distance},
    {"Gamma a value", &settings::MismatchGammaAValue},
    {"No. of bootstrap replicates", &settings::NumBootExpDem},
    {"No. of spatial parameters", &settings::MismatchSpatialExpNumParams},
};
constexpr Parameter haplotypes[] = {
    {"EM at the haplotype level", &settings::ComputeAllHaplotypesEM, Show::yes_no},
    {"EM at the locus level", &settings::ComputeAllAllelesEM, Show::yes_no},
    {"No. of initial conditions", &settings::InitialConditionsEM},
    {"Maximum no. of iterations", &settings::MaximumNumOfIterationsEM},
    {"Recessive alleles", &settings::RecessiveAllelesEM, Show::yes_no},
    {"Compact haplotype database", &settings::CompactHaplotypeDataBaseEM, Show::yes_no},
    {"No. of bootstraps for s.d.", &settings::NumBootstrapReplicatesEM},
    {"Initial conditions of bootstraps", &settings::NumInitCondBootstrapEM},
    {"EM for all pairs of loci", &settings::ComputeAllSubHaplotypesEM, Show::yes_no},
    {"Check redundancy of phenotypes", &settings::EMCheckPhenRedundancy, Show::yes_no},
    {"Epsilon value", &settings::EpsilonValue},
    {"Frequency threshold", &settings::FrequencyThreshold},
    {"Estimate inbreeding", &settings::EMEstimateInbreedingCoeff, Show::yes_no},
    {"Fixed inbreeding coefficient", &settings::EMInbreedingFixedVal},
    {"EM zipper", &settings::EMUseZipper, Show::yes_no},
    {"Zipper window size", &settings::EMWinSize},
    {"Random order of loci", &settings::EMLociRandOrder, Show::yes_no},
    {"No. of random orders", &settings::EMNumZipRandOrders},
    {"Infer gametic phase (KPV)", &settings::GibbsInferGamPhase, Show::yes_no},
    {"Burn-in steps", &settings::GibbsBurnIn},
    {"Sampling interval", &settings::GibbsSamplingInterval},
    {"No. of samples", &settings::GibbsNumSamples},
    {"Alpha", &settings::GibbsAlphaInitValue},
    {"Epsilon", &settings::GibbsEpsilonValue},
    {"Gamma", &settings::GibbsGamma},
    {"Heterozygous site influence zone", &settings::GibbsHetSiteInfluenceZone},
    {"Fraction of recombination steps", &settings::GibbsPercentageOfRecSteps},
    {"Output gametic phases", &settings::GibbsOutputGamPhase, Show::yes_no},
};
constexpr Parameter linkage[] = {
    {"Perform test", &settings::MakeExactTestLD, Show::yes_no},
    {"Dememorisation steps", &settings::MarkovChainDememorisationStepsLD},
    {"Steps or permutations", &settings::MarkovChainStepsLD},
    {"Required precision", &settings::PrecisionOnPValueLD},
    {"Significance level", &settings::SignificanceLevelLD},
    {"Summary of tests", &settings::PrintFlagHistogramLD, Show::yes_no},
    {"Initial conditions of EM", &settings::InitialCondEMLD},
    {"Compute D and D'", &settings::ComputeDvalues, Show::yes_no},
    {"Maximum no. of iterations", &settings::MaximumNumOfIterationsEM},
    {"Epsilon value", &settings::EpsilonValue},
};
constexpr Parameter hardy_weinberg[] = {
    {"Perform exact test", &settings::MakeHWExactTest, Show::yes_no},
    {"Level of the test", &settings::TypeOfTestHW, Show::hw_level},
    {"Steps in Markov chain", &settings::MarkovChainStepsHW},
    {"Dememorisation steps", &settings::MarkovChainDememorisationStepsHW},
    {"Required precision", &settings::PrecisionOnPValueHW},
    {"Significance level index", &settings::SignificanceLevelHW},
};
constexpr Parameter coalescent_simulations[] = {
    {"No. of simulated samples", &settings::NumSimulFuTest},
};
constexpr Parameter ewens_watterson[] = {
    {"Exact test", &settings::EwensWattersonHomozygosityTest, Show::yes_no},
    {"No. of simulated samples", &settings::NumIterationsNeutralityTests},
};
constexpr Parameter amova[] = {
    {"Keep null distributions", &settings::KeepNullDistrib, Show::yes_no},
    {"Global AMOVA", &settings::HaplAMOVA, Show::yes_no},
    {"Locus by locus AMOVA", &settings::LocByLocAMOVA, Show::yes_no},
    {"Population specific FST", &settings::PopSpecificFST, Show::yes_no},
    {"Population specific FIS", &settings::PopSpecificFIS, Show::yes_no},
    {"No. of permutations", &settings::NumPermutationsAMOVA},
    {"Conventional F-statistics", &settings::ComputeConventionalFST, Show::yes_no},
    {"Include individual level", &settings::IncludeIndividualLevel, Show::yes_no},
    {"Compute distance matrix", &settings::ComputeDistanceMatrixAMOVA, Show::yes_no},
    {"Molecular distance", &settings::DistanceMethodAMOVA, Show::distance},
    {"Gamma a value", &settings::GammaAValueAMOVA},
    {"Print distance matrix", &settings::PrintDistanceMatrix, Show::yes_no},
    {"Print minimum spanning tree", &settings::PrintMinSpannNetworkGlob, Show::yes_no},
};
constexpr Parameter pairwise[] = {
    {"Conventional F-statistics", &settings::ComputeConventionalFST, Show::yes_no},
    {"Molecular distance", &settings::DistanceMethodAMOVA, Show::distance},
    {"Gamma a value", &settings::GammaAValueAMOVA},
    {"Test significance", &settings::TestSignificancePairewiseFST, Show::yes_no},
    {"No. of permutations", &settings::NumPermutationsFST},
    {"Compute pairwise FST", &settings::ComputePairwiseFST, Show::yes_no},
    {"Compute delta-mu square", &settings::ComputeDeltaMuSqr, Show::yes_no},
    {"Significance level", &settings::FSTSignifLevel},
    {"Print FST", &settings::PrintFstVals, Show::yes_no},
    {"Print Slatkin's distances", &settings::PrintSlatkinsDist, Show::yes_no},
    {"Mean pairwise differences", &settings::PrintMissIntermatchs, Show::yes_no},
    {"Unequal population sizes", &settings::UnequalPopSizeDiv, Show::yes_no},
};
constexpr Parameter exact_test[] = {
    {"Steps in Markov chain", &settings::NumPermutPopDiff},
    {"Dememorisation steps", &settings::NumDememoPopDiff},
    {"Required precision", &settings::PrecProbPopDiff},
    {"Print table of differences", &settings::PrintHistoPopDiff, Show::yes_no},
    {"Significance level", &settings::SignLevelPopDiff},
};
constexpr Parameter assignment[] = {
    {"No. of initial conditions", &settings::InitialConditionsEM},
    {"Maximum no. of iterations", &settings::MaximumNumOfIterationsEM},
    {"Epsilon value", &settings::EpsilonValue},
};
constexpr Parameter mantel[] = {
    {"No. of permutations", &settings::NumPermMantel},
};

/// The blocks in the order of the document.
constexpr TaskBlock task_blocks[] = {
    {task::standard_indices, "    Standard indices:\n", standard},
    {task::molecular_diversity, "    Molecular Diversity:\n", molecular},
    {task::mismatch, "    Mismatch Distribution:\n", mismatch},
    {task::haplotype_frequencies, "    Haplotypic Frequency estimation:\n", haplotypes},
    {task::linkage_disequilibrium, "    Linkage disequilibrium test:\n", linkage},
    {task::hardy_weinberg, "    Hardy-Weinberg equilibrium test:\n", hardy_weinberg},
    {task::tajima, "    Tajima's selective neutrality test\n", coalescent_simulations},
    {task::ewens_watterson, "    Ewens-Watterson neutrality test\n", ewens_watterson},
    {task::chakraborty, "    Chakraborty's amalgammation test\n"},
    {task::fu_fs, "    Fu's Neutraliy test:\n", coalescent_simulations},
    {task::amova, "    Analysis of Molecular Variance:\n", amova},
    {task::pairwise_fst, "    Population pairwise Fst values:\n", pairwise},
    {task::exact_test, "    Exact test of population differentiation:\n", exact_test},
    {task::genotype_assignment, "\n    Assignement of individual genotypes to populations\n", assignment},
    {task::mantel, "\n    Correlation between distance matrices.\n", mantel},
};

std::string number_in_short(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string theta_names(int estimators) {
    static constexpr struct {
        int bit;
        char const* name;
    } names[] = {{theta_bit::hom, "Hom"}, {theta_bit::S, "S"}, {theta_bit::k, "k"}, {theta_bit::pi, "Pi"}};
    std::string text;
    for (auto const& estimator : names) {
        if ((estimators & estimator.bit) == 0) continue;
        if (!text.empty()) text += ", ";
        text += estimator.name;
    }
    return text.empty() ? "None" : text;
}

std::string hw_level_name(int level) { return level == 1 ? "Haplotype" : level == 2 ? "Locus and haplotype" : "Locus"; }

std::string value_text(settings const& set, Parameter const& parameter) {
    return std::visit(
        [&](auto member) -> std::string {
            using Value = std::remove_cvref_t<decltype(set.*member)>;
            if constexpr (std::is_same_v<Value, std::string>) {
                return set.*member;
            } else if constexpr (std::is_same_v<Value, double>) {
                return number_in_short(set.*member);
            } else {
                auto const value = set.*member;
                switch (parameter.show) {
                    case Show::yes_no:
                        return value != 0 ? "Yes" : "No";
                    case Show::distance:
                        return std::string(distance_method_name(set.DataType, static_cast<int>(value)));
                    case Show::theta_estimators:
                        return theta_names(static_cast<int>(value));
                    case Show::hw_level:
                        return hw_level_name(static_cast<int>(value));
                    case Show::number:
                        break;
                }
                return std::to_string(value);
            }
        },
        parameter.field);
}

void print_parameters(settings const& set, std::span<Parameter const> parameters, int indent, std::ostream& out) {
    for (Parameter const& parameter : parameters) {
        out << left_label{"", indent} << left_label{parameter.text, label_width} << " = " << value_text(set, parameter)
            << '\n';
    }
}

/// The title, and under it as many dashes as it has characters behind its indent.
void print_title(std::string_view title, std::ostream& out) {
    std::size_t const begin = title.find_first_not_of(" \n");
    std::size_t const indent = begin - title.find(' ');
    std::size_t const length = title.find('\n', begin) - begin;
    out << title << left_label{"", static_cast<int>(indent)} << rule{static_cast<int>(length)} << '\n';
}

void print_general(settings const& set, std::ostream& out) {
    print_title(" General settings:\n", out);
    print_parameters(set, general, general_indent, out);
    out << (set.InferHaplotypeDefinitionFromDistanceMatrix != 0
                ? "        Infer haplotype definition from distance matrix\n"
                : "        Use original haplotype definition\n");
    out << "        Alllowed level of missing data = " << number_in_short(set.AllowedLevelOfMissingData) << "\n\n";
}

}  // namespace

void settings::print_pretty_settings(std::ostream& out) const {
    char const* const bar = "==============================\n";
    out << bar << "Settings used for Calculations\n" << bar;
    print_general(*this, out);
    print_title(" Active Tasks:\n", out);
    for (TaskBlock const& block : task_blocks) {
        if (!wants(block.bit)) continue;
        print_title(block.title, out);
        print_parameters(*this, block.parameters, parameter_indent, out);
        bool const unknown_phase = GenotypicData != 0 && GameticPhase == 0;
        if (block.bit == task::genotype_assignment && !unknown_phase) {
            out << "\n      Test is only possible for genotypic data with unknown gametic phase, skipping this task.\n";
        }
    }
    out << '\n';
}

}  // namespace tov
