// settings: every parameter of a run, as the settings file (.tvs) gives it, with the file names and state of the run.
#pragma once

#include <array>
#include <iosfwd>
#include <string>
#include <string_view>

#include "input/profile.h"

namespace tov {

class TAlleleDB;
class TriMat;

/// Bits of settings::TaskNumber: the analyses of a run.
namespace task {
inline constexpr long standard_indices = 1;
inline constexpr long molecular_diversity = 2;
inline constexpr long mismatch = 4;
inline constexpr long haplotype_frequencies = 8;
inline constexpr long linkage_disequilibrium = 16;
inline constexpr long hardy_weinberg = 32;
inline constexpr long tajima = 64;
inline constexpr long ewens_watterson = 128;
inline constexpr long chakraborty = 256;
inline constexpr long amova = 512;
inline constexpr long pairwise_fst = 1024;
inline constexpr long pairwise_distances = 2048;    ///< distance matrix of a sample, for the structure analyses
inline constexpr long prepare_permutations = 4096;  ///< alone: only the allele vectors are prepared
inline constexpr long exact_test = 8192;            ///< exact test of population differentiation
inline constexpr long fu_fs = 16384;
inline constexpr long genotype_assignment = 32768;
inline constexpr long mantel = 65536;
/// Analyses within a sample (see settings::check_intrap_pop_task).
inline constexpr long within_sample = 511 | fu_fs;
}  // namespace task

/// Bits of settings::ComputeTheta: the estimators of theta = 4Nu.
namespace theta_bit {
inline constexpr int hom = 1;
inline constexpr int S = 2;
inline constexpr int k = 4;
inline constexpr int pi = 8;
}  // namespace theta_bit

/// Parameters of a run. Each key of the settings file is a field of the key's name. One object serves all projects of
/// a run list and is not reset between them; analyses may change fields and put them back.
///
/// In memory a flag is an int, 0 or not 0, unless it is declared bool.
class settings {
public:
    // --- Reading and writing (settings_io.cpp, settings_pretty.cpp) ---
    /// Sets every key to its default and clears the stop flag. MarkovChainStepsLD depends on the kind of data in force:
    /// 1000 for genotypic data of unknown phase (a number of permutations then), else 100000.
    void reset_initial_values();
    /// Reads a settings file. A key that isn't found becomes 0 (text: empty), except those of the EM and KPV groups,
    /// which keep their value. A file that can't be opened holds no key. Errors: none reported.
    void read_settings(std::string_view file);
    void read_settings(std::istream& in);
    /// Writes the settings file with its comments; creates the file, truncating.
    void print_settings(std::string_view file) const;
    void print_settings(std::ostream& out) const;
    /// Summary of the settings in force, for the result document: general ones, then a block per task that is on.
    void print_pretty_settings(std::ostream& out) const;
    /// Name of a distance method for the data type of the run, and a newline.
    void print_distance_method(std::ostream& out, int method) const;
    /// Table of pairs of loci whose P-value is below SignificanceLevelLD, into the result document.
    ///
    /// @param p_values  P-values of the pairs, by rank of the locus.
    /// @param loci      n locus indices, counted from 0.
    void print_diseq_table(TriMat& p_values, int n, int* loci);

    // --- Tasks ---
    [[nodiscard]] bool wants(long task_bits) const noexcept { return (TaskNumber & task_bits) != 0; }
    /// Some analysis within samples is on: one of the bits 1 to 256, or 16384.
    [[nodiscard]] bool check_intrap_pop_task() const noexcept { return wants(task::within_sample); }

    // --- Stop flag, result stream, names of the run ---
    /// The stop flag: analyses that find it not 0 end at their next poll.
    [[nodiscard]] int* is_stop() noexcept { return &stop; }
    [[nodiscard]] int const* is_stop() const noexcept { return &stop; }
    /// The result document; while none is set, a stream that drops all text.
    [[nodiscard]] std::ostream& ofs() const noexcept;
    /// Sets the result document (borrowed; null for none). @return the one before.
    std::ostream* set_ofs(std::ostream* stream) noexcept;
    void set_run_id(std::string_view id) { run_id = id; }
    void set_tovenia_directory(std::string_view directory) { working_directory = directory; }
    /// Copies the project's name to input_file and derives the file names of its run from it, from XMLOutput and from
    /// the working directory.
    void buildFilenamesFromCurrentProjectName(std::string_view name);
    /// The names of the result browser's pages and scripts, from those of the document, the project's directory and the
    /// working directory.
    void name_pages();
    /// Names of the four files of AMOVA null distributions: input_file with the extension .va, .vb, .vc, .vd.
    void build_sigm_histo_f_name();

    // --- Progress on the console (settings_progress.cpp) ---
    static void set_message(std::string_view text) { message = text; }
    /// Shows `message` on standard output, behind the percentage of work done when the work to do is known. A text is
    /// not shown twice running; nothing is shown in silent mode.
    static void print_message();
    static void inc_work_done(double work) { global_work_done += work; }
    static void set_work_done(double work) { global_work_done = work; }
    static void set_to_do_work(double work) { global_work_to_do = work; }
    static void add_to_do_work(double work) { global_work_to_do += work; }
    [[nodiscard]] static double to_do_work() noexcept { return global_work_to_do; }

    static std::string input_file;    ///< Project being processed; the cleaned copy once there is one.
    static int num_proj_done;         ///< Projects done in this run, failed ones too.
    static double global_work_to_do;  ///< Work of the run, in arbitrary units; 0: unknown.
    static double global_work_done;
    static std::string message;
    static std::string old_message;  ///< Text shown last.

    // --- State of the run ---
    int stop = 0;
    TDataType DataType = FREQUENCY;   ///< of the project
    int GenotypicData = 0;            ///< of the project
    int GameticPhase = 0;             ///< of the project; written as GameticPhaseIsKnown
    TAlleleDB* alleles = nullptr;     ///< borrowed: allele database in use
    std::string run_id;               ///< Time of the run without blanks.
    bool silent_structure = false;    ///< Structure analyses write no log lines and no messages.
    bool print_sample_banner = true;  ///< A sample's analyses begin with its anchor and banner.
    double p_value = 0.0;             ///< P-value of the last Hardy-Weinberg or linkage test.
    double sd_p_value = 0.0;          ///< Its standard deviation.
    int em_wanted = 0;                ///< EM or KPV is asked for (set by read_settings).
    int keepProjectResults = 1;       ///< The run is added to an existing result document; from the run list.

    // --- File names ---
    std::string project_dir;                      ///< <project>.res/
    std::string result_file;                      ///< Result document, .xml or .htm.
    std::string backup_file;                      ///< .bac
    std::string project_path;                     ///< Directory of the project, with a trailing '/', or empty.
    std::string settings_file;                    ///< The settings file in force.
    std::string working_directory;                ///< With a trailing '/', or empty.
    std::string tree_page;                        ///< _tree.htm
    std::string tree_script;                      ///< .js
    std::string main_page;                        ///< _main.htm
    std::string style_sheet;                      ///< Style sheet of the frame pages.
    std::string tree_code;                        ///< Code of the tree.
    std::string graphics_dir;                     ///< <project>.res/Graphics/
    std::string ld_output_file = "ld_dis.xl";     ///< Side table of linkage disequilibrium.
    std::string histogram_file = "none";          ///< Not written by any analysis.
    std::array<std::string, 4> sigm_histo_files;  ///< Null distributions of the variances a, b, c, d.

    // --- Keys: task mask ---
    long TaskNumber = 0;  ///< Sum of task:: bits.

    // --- Keys: general ---
    int XMLOutput = 1;
    double DeletionWeight = 1.0;
    double TransitionWeight = 1.0;
    double TranversionWeight = 1.0;
    int ComputeSumStatsWithinGroups = 0;
    int InferHaplotypeDefinitionFromDistanceMatrix = 0;
    int EliminateRedondHaplodefs = 0;
    double AllowedLevelOfMissingData = 0.05;  ///< fraction
    int GameticPhaseIsKnown = 0;              ///< as read; no analysis uses it, see GameticPhase
    int KeepNullDistrib = 0;

    // --- Keys: Hardy-Weinberg test ---
    int MakeHWExactTest = 0;
    int HardyWeinbergTestType = 0;
    int TypeOfTestHW = 0;  ///< 0: locus level, 1: haplotype level, 2: both
    long MarkovChainStepsHW = 1000000;
    long MarkovChainDememorisationStepsHW = 100000;
    double PrecisionOnPValueHW = 0.0;
    int SignificanceLevelHW = 2;  ///< an index, no probability

    // --- Keys: linkage disequilibrium ---
    int LinkageDisequilibriumTestType = 0;
    int MakeExactTestLD = 0;
    long MarkovChainDememorisationStepsLD = 1000;
    long MarkovChainStepsLD = 100000;  ///< steps of the chain, or permutations when the phase is unknown
    double PrecisionOnPValueLD = 0.0;
    double SignificanceLevelLD = 0.05;  ///< a probability
    int PrintFlagHistogramLD = 0;
    int InitialCondEMLD = 2;
    int ComputeDvalues = 0;

    // --- Keys: diversity ---
    int ComputeStandardDiversityIndices = 0;
    bool ComputeAllAlleleFreqs = false;
    int DistanceMethod = 0;
    double GammaAValue = 0.0;
    int ComputeTheta = 0;  ///< sum of theta_bit:: bits
    int PrintHaplDistMat = 0;
    int PrintPopDistMat = 0;
    int PrintMinSpannNetworkPop = 0;

    // --- Keys: mismatch distribution ---
    bool MismatchDemogExp = false;
    bool MismatchSpatialExp = false;
    int MismatchDistanceMethod = 0;
    double MismatchGammaAValue = 0.0;
    int NumBootExpDem = 100;
    int MismatchSpatialExpNumParams = 3;

    // --- Keys: haplotype frequencies by EM ---
    int ComputeAllHaplotypesEM = 0;  ///< also the field of the key EMEstimHaplFreqs
    int ComputeAllAllelesEM = 0;
    int InitialConditionsEM = 50;
    int MaximumNumOfIterationsEM = 1000;
    int RecessiveAllelesEM = 0;
    int CompactHaplotypeDataBaseEM = 0;
    int NumBootstrapReplicatesEM = 0;
    int NumInitCondBootstrapEM = 10;
    int ComputeAllSubHaplotypesEM = 0;
    int EMCheckPhenRedundancy = 0;
    double EpsilonValue = 1e-7;
    double FrequencyThreshold = 1e-5;
    int EMEstimateInbreedingCoeff = 0;
    double EMInbreedingFixedVal = 0.0;
    int EMUseZipper = 0;
    int EMWinSize = 1;  ///< loci
    int EMLociRandOrder = 0;
    int EMNumZipRandOrders = 0;
    int EMInbreedingEachLocus = 0;
    int EMCompGamPhaseForAllInitConds = 0;

    // --- Keys: gametic phase by KPV ---
    int GibbsInferGamPhase = 0;
    int GibbsBurnIn = 100000;
    int GibbsSamplingInterval = 500;
    int GibbsNumSamples = 2000;
    double GibbsAlphaInitValue = 0.01;
    double GibbsEpsilonValue = 0.01;
    double GibbsGamma = 0.0;
    int GibbsHetSiteInfluenceZone = 5;
    double GibbsPercentageOfRecSteps = 0.0;
    int GibbsOutputGamPhase = 0;

    // --- Keys: AMOVA ---
    int HaplAMOVA = 0;
    int LocByLocAMOVA = 0;
    int PopSpecificFST = 0;
    int PopSpecificFIS = 0;
    int TestSignificanceAMOVA = 0;
    long NumPermutationsAMOVA = 1000;
    int ComputeConventionalFST = 0;
    int IncludeIndividualLevel = 0;
    int ComputeDistanceMatrixAMOVA = 1;
    int DistanceMethodAMOVA = 0;
    double GammaAValueAMOVA = 0.0;
    int PrintDistanceMatrix = 0;
    int PrintMinSpannNetworkGlob = 0;

    // --- Keys: pairwise distances ---
    int TestSignificancePairewiseFST = 0;
    long NumPermutationsFST = 100;
    int ComputePairwiseFST = 0;
    int ComputeDeltaMuSqr = 0;
    double FSTSignifLevel = 0.05;
    int PrintFstVals = 0;
    int PrintConcestryCoeff = 0;
    int PrintSlatkinsDist = 0;
    int PrintMissIntermatchs = 0;
    int UnequalPopSizeDiv = 0;

    // --- Keys: exact test of population differentiation ---
    long NumPermutPopDiff = 100000;
    long NumDememoPopDiff = 10000;
    double PrecProbPopDiff = 0.0;
    int PrintHistoPopDiff = 1;
    double SignLevelPopDiff = 0.05;

    // --- Keys: detection of selected loci ---
    int DetectSelectedLoci = 0;
    int UseHierarchicalIslandModel = 0;
    int NumberOfGroupsForFDist2 = 10;
    int NumberOfDemesForFDist2 = 100;
    int NumberOfSimsForFDist2 = 20000;
    int UseSimFileForFDist2 = 0;
    std::string SimFileNameForFDist2;
    double TargetHetLowBound = 0.0;
    double TargetHetHighBound = 1.0;
    double MinDafFreq = 0.0;
    int IterativeProcForFDist2 = 0;

    // --- Keys: neutrality tests ---
    int EwensWattersonHomozygosityTest = 0;
    int NumIterationsNeutralityTests = 1000;
    int NumSimulFuTest = 1000;

    // --- Keys: Mantel test ---
    long NumPermMantel = 1000;

    // --- Keys that are read but not written ---
    int Divergencetime = 0;
    int IsFontKnown = 0;
    int NbFrontSegments = 0;
    int SegmentLength = 0;
    int NumOfGroups = 1;
    int DiffusionMode = 2;
    int NbFrontPerm = 0;

private:
    std::ostream* ofs_ = nullptr;  // borrowed
};

}  // namespace tov
