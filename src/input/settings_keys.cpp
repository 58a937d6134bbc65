// The table of the settings file. Its texts are fixed to the letter, misspellings and missing blanks included: front
// ends and users compare the file with older ones.
#include "input/settings_keys.h"

namespace tov {
namespace {

constexpr SettingsKey whole(char const* name, SettingsField field, char const* comment = "") {
    return {name, KeyFormat::whole, field, field, comment};
}
constexpr SettingsKey fixed(char const* name, double settings::*field, char const* comment = "") {
    return {name, KeyFormat::fixed, field, field, comment};
}
constexpr SettingsKey scientific(char const* name, double settings::*field, char const* comment = "") {
    return {name, KeyFormat::scientific, field, field, comment};
}
constexpr SettingsKey text(char const* name, std::string settings::*field, char const* comment = "") {
    return {name, KeyFormat::text, field, field, comment};
}
constexpr SettingsKey not_written(char const* name, int settings::*field) {
    return {name, KeyFormat::not_written, field, field, ""};
}
/// The key keeps its value when the file lacks it, so that files older than the key give its default.
constexpr SettingsKey kept_when_missing(SettingsKey key) {
    key.kept_when_missing = true;
    return key;
}
// kept on purpose: the writer gives the phase of the data in force, the reader's field is used by no analysis.
constexpr SettingsKey written_from(SettingsField field, SettingsKey key) {
    key.written_field = field;
    return key;
}
// kept on purpose: written from the other key's field; a value found goes into both fields.
constexpr SettingsKey found_sets(SettingsField field, SettingsKey key) {
    key.written_field = field;
    key.found_sets_both = true;
    return key;
}
// kept on purpose: "0.050000" is read as 50000, since the point is passed over.
constexpr SettingsKey read_as_whole(SettingsKey key) {
    key.read_as_whole = true;
    return key;
}

constexpr TaskBitName bit_names[] = {
    {task::standard_indices, "STANDARD INDICES"},
    {task::molecular_diversity, "MOLECULAR DIVERSITY"},
    {task::mismatch, "MISMATCHDISTRIBution"},
    {task::haplotype_frequencies, "HAPLOTYPE FREQUENCIES"},
    {task::linkage_disequilibrium, "LINKAGE DISEQUILIBRIUM"},
    {task::hardy_weinberg, "HARDY-WEINBERG EQUILIBIRUM"},
    {task::tajima, "TAJIMA'S TEST"},
    {task::ewens_watterson, "EWENS-WATTERSON'S TEST"},
    {task::chakraborty, "CHAKRABORTY'S TEST"},
    {task::amova, "AMOVA"},
    {task::pairwise_fst, "PAIRWISE FST"},
    {task::pairwise_distances, "PAIRWISE GENETIC DISTANCES "},
    {task::prepare_permutations, "PREPARE FOR AMOVA PERMUTATIONS"},
    {task::exact_test, "EXACT TEST FOR POPULATION DIFERENCES"},
    {task::fu_fs, "FU FS TEST"},
    {task::genotype_assignment, "GENOTYPE ASSIGNMENT TEST"},
    {task::mantel, "MANTEL TEST"},
};

constexpr SettingsKey task_keys[] = {whole("TaskNumber", &settings::TaskNumber)};

constexpr SettingsKey general_keys[] = {
    whole("XMLOutput", &settings::XMLOutput,
          "#XMLOutput controls if the results are output into an XML or an HTML file format\n"),
    fixed("DeletionWeight", &settings::DeletionWeight,
          "#The following 3 keys are for DNA ONLY\n"
          "#DeletionWeight controls the relative weight of deletions\n"
          "#TransitionWeight controls the relative weight of transition\n"
          "#TranversionWeight controls the relative weight of transversion\n"),
    fixed("TransitionWeight", &settings::TransitionWeight),
    fixed("TranversionWeight", &settings::TranversionWeight),
    whole("ComputeSumStatsWithinGroups", &settings::ComputeSumStatsWithinGroups,
          "#ComputeSumStatsWithinGroups controls if summary statistics and tests will be\n"
          "#computed for each group defined in the [Structure] section. If 1, then population\n"
          "#samples within each group will be pooled into a single sample\n"),
    whole("InferHaplotypeDefinitionFromDistanceMatrix", &settings::InferHaplotypeDefinitionFromDistanceMatrix,
          "#InferHaplotypeDefinitionFromDistanceMatrix controls if haplotype defintions are to be trusted\n"
          "#Put 1 if you want that the definition of the haplotyped be checked by computing distances\n"
          "#between all haplotypes\n"),
    whole("EliminateRedondHaplodefs", &settings::EliminateRedondHaplodefs,
          "#EliminateRedondHaplodefs controls for the search of identical haplotypes\n"
          "#both within and between samples, based on their molecular diversity at the selected loci\n"),
    fixed("AllowedLevelOfMissingData", &settings::AllowedLevelOfMissingData,
          "#AllowedLevelOfMissingData controls the maximum level of missing data at any locus,\n"
          "#for the locus to be used in subsequent analyses\n"
          "#Note that for AMOVA, the frequency of missing data is computed over all populations\n"
          "#used in the genetic structure, while for intra-population computations loci are examined\n"
          "#separately in each population sample\n"),
    written_from(
        &settings::GameticPhase,
        whole("GameticPhaseIsKnown", &settings::GameticPhaseIsKnown,
              "#GameticPhaseIsKnown controls if the gametic phase is assumed to be known,\n"
              "#or if we deal with unphased genotypic data\n"
              "#This is an obsolete setting, since it is the value present in the project file that prevails\n")),
    whole("KeepNullDistrib", &settings::KeepNullDistrib,
          "#KeepNullDistrib controls if the null distributions of AMOVA variance components and F-statistics\n"
          "#should be ouptut in dedicated result files\n"),
};

constexpr SettingsKey hardy_weinberg_keys[] = {
    whole("MakeHWExactTest", &settings::MakeHWExactTest,
          "#MakeHWExactTest controls if exact test of HWE neEds to be performed (1: yes, 0: no)\n"),
    whole("HardyWeinbergTestType", &settings::HardyWeinbergTestType,
          "#HardyWeinbergTestType: DEPRECATED, replaced by key TypeOfTestHW\n"
          "#                       0 for locus by locus test, \n"
          "#                       1 when phase is known considers haplotype as a locus\n"),
    whole("TypeOfTestHW", &settings::TypeOfTestHW,
          "#TypeOfTestHW: 0 - Test association at the Locus level, 1 - Test association at the Haplotype level,\n"
          "#              2 - Test association at the Locus and Haplotype levels\n"),
    whole("MarkovChainStepsHW", &settings::MarkovChainStepsHW,
          "#MarkovChainStepsHW controls the number of steps in Markov chain for HWE exact test\n"),
    whole("MarkovChainDememorisationStepsHW", &settings::MarkovChainDememorisationStepsHW,
          "#MarkovChainDememorisationStepsHW controls the number of burnin steps in Markov <n#chain for HWE exact "
          "test\n"),
    fixed("PrecisionOnPValueHW", &settings::PrecisionOnPValueHW,
          "#PrecisionOnPValueHW controls the required precision on the estimated p-value of the HWE test\n"
          "#OBSOLETE FEATURE LET THE KEY VALUE TO ZERO\n"),
    whole("SignificanceLevelHW", &settings::SignificanceLevelHW,
          "#SignificanceLevelHW controls the minimum p-value of a HWE test to be flagged\n"
          "#as significant in a summary table to be output in the result file\n"),
};

constexpr SettingsKey linkage_keys[] = {
    whole("LinkageDisequilibriumTestType", &settings::LinkageDisequilibriumTestType,
          "#LinkageDisequilibriumTestType: (OBSOLETE SETTING)\n"),
    whole("MakeExactTestLD", &settings::MakeExactTestLD,
          "#MakeExactTestLD controls if test of LD needs to be performed\n"
          "#irrespective of the fact that gamwtic phase is knwn or not\n"
          "#If the gametic phase is known, an exact test will be performed, and\n"
          "#if it is not, a likelihood-ratio will be done\n"),
    whole("MarkovChainDememorisationStepsLD", &settings::MarkovChainDememorisationStepsLD,
          "#MarkovChainDememorisationStepsLD controls the number of burnin steps at the\n"
          "#beginning of the Markov chain (when gametic phae is known)\n"),
    whole("MarkovChainStepsLD", &settings::MarkovChainStepsLD,
          "#MarkovChainStepsLD controls how many steps are to be performed in the Markov chain\n"
          "#after the burnin period, when the gametic phase is known, or it is the number of permutations\n"
          "#to be performed to test the p-value of the likelihood-ratio test when the gametic phase\n"
          "#is unknown\n"),
    fixed("PrecisionOnPValueLD", &settings::PrecisionOnPValueLD,
          "#PrecisionOnPValueLD controls the precision required for the \n"
          "#p-value of the LD exact test (OBSOLETE SETTING)\n"),
    fixed("SignificanceLevelLD", &settings::SignificanceLevelLD,
          "#SignificanceLevelLD controls the p-values under which the LD test is assumed \n"
          "#to be significant. This is used to produce a summary table of the results in theresult file\n"),
    whole("PrintFlagHistogramLD", &settings::PrintFlagHistogramLD,
          "#PrintFlagHistogramLD controls if a file with a summary of the LD test results needs ot be produced\n"),
    whole("InitialCondEMLD", &settings::InitialCondEMLD,
          "#InitialCondEMLD controls the number of different EM algorithm runs to\n"
          "#perform for the LD likelihood ratio test when the gametic phase is not known\n"),
    whole("ComputeDvalues", &settings::ComputeDvalues,
          "#ComputeDvalues controls if coefficients D and D' needs to be computed, \n"
          "#Note that this option is only valid if gametic phase is known\n"),
};

constexpr SettingsKey diversity_keys[] = {
    whole("ComputeStandardDiversityIndices", &settings::ComputeStandardDiversityIndices,
          "#ComputeStandardDiversityIndices controls if standard diversity indices are to be computed\n"),
    whole("ComputeAllAlleleFreqs", &settings::ComputeAllAlleleFreqs,
          "#ComputeAllAlleleFreqs controls if allele frequencies are computed at all loci\n"),
    whole("DistanceMethod", &settings::DistanceMethod,
          "#DistanceMethod controls the choice of the distance to be computed between haplotypes\n"
          "#DNA:      DIFF=0, JUKES_CANTOR=1, KIMURA_2P=2, P_DIST=3, TAJIMA_NEI=4, TAMURA=5, TAMURA_NEI=6\n"
          "#MICROSAT: COUNT_DIFF=0 (FST), MICRO_SQR_DIFF=1 (RST)\n"
          "#STANDARD: 0 (default)\n"
          "#RFLP:     RFLP_DIFF=0, RFLP_P_DIST=1\n"),
    fixed(
        "GammaAValue", &settings::GammaAValue,
        "#GammaAValue controls the value of the shape parameter of gamma distributed mutaiton rates (for DNA only)\n"),
    whole("ComputeTheta", &settings::ComputeTheta,
          "#ComputeTheta controls if theta->4Nu parameters are to be computed\n"
          "#Bit values : +1: Theta(Hom), +2: Theta(S), +4: Theta(k), +8: Theta(pi)\n"),
    whole("PrintHaplDistMat", &settings::PrintHaplDistMat,
          "#PrintHaplDistMat controls if a distance matrix between haplotypes needs to be output in result file\n"),
    found_sets(
        &settings::PrintHaplDistMat,
        whole("PrintPopDistMat", &settings::PrintPopDistMat,
              "#PrintPopDistMat has the same effect as \"PrintHaplDistMat\" above and should have the same value\n")),
    whole("PrintMinSpannNetworkPop", &settings::PrintMinSpannNetworkPop,
          "#PrintMinSpannNetworkPop controls if a Minimum Spaning Tree computed from the\n"
          "#matrix of pairwise distances between haplotypes needs to be output in the result file\n"),
};

constexpr SettingsKey mismatch_keys[] = {
    whole("MismatchDemogExp", &settings::MismatchDemogExp,
          "#MismatchDemogExp specifies if the parameters of a pure demographic expansions\n"
          "#will be computed from the mismatch distribution\n"),
    whole("MismatchSpatialExp", &settings::MismatchSpatialExp,
          "#MismatchSpatialExp controls if one attempts to estimate parameters of a spatial range expansion\n"),
    whole("MismatchDistanceMethod", &settings::MismatchDistanceMethod,
          "#MismatchDistanceMethod controls the distance to be computed between haplotypes\n"
          "#OBSOLETE: It is now always set to zero\n"),
    fixed("MismatchGammaAValue", &settings::MismatchGammaAValue,
          "#MismatchGammaAValue controls the value of the shape parameter of gamma distributed \n"
          "#mutation rates (for DNA only)\n"
          "#OBSOLETE: Always set to zero\n"),
    whole("NumBootExpDem", &settings::NumBootExpDem,
          "#NumBootExpDem controls the number of bootstrap replicates used to compute the confidence\n"
          "#intervals for parameters and p-value of the demographic and/or spatial expansion hypotheses\n"),
    whole("MismatchSpatialExpNumParams", &settings::MismatchSpatialExpNumParams,
          "#MismatchSpatialExpNumParams controls the type of range expansion\n"
          "# 3: Three parameters are used: Theta=2Nu, M=2Nm, tau=2Tu\n"),
    not_written("IsFontKnown", &settings::IsFontKnown),
    not_written("NbFrontSegments", &settings::NbFrontSegments),
    not_written("SegmentLength", &settings::SegmentLength),
    not_written("NumOfGroups", &settings::NumOfGroups),
    not_written("DiffusionMode", &settings::DiffusionMode),
    not_written("NbFrontPerm", &settings::NbFrontPerm),
};

constexpr SettingsKey haplotype_keys[] = {
    whole("ComputeAllHaplotypesEM", &settings::ComputeAllHaplotypesEM,
          "#EM algorithm specific settings\n"
          "#ComputeAllHaplotypesEM controls if we need to estimate haplotype frequencies through the EM algorithm\n"),
    kept_when_missing(not_written("EMEstimHaplFreqs", &settings::ComputeAllHaplotypesEM)),
    whole("ComputeAllAllelesEM", &settings::ComputeAllAllelesEM,
          "#ComputeAllAllelesEM controls if we need to estimate all allele frequencies with the EM algorithm\n"
          "#The EM algorithm is here mostly useful if there are recessive alleles\n"),
    whole("InitialConditionsEM", &settings::InitialConditionsEM,
          "#InitialConditionsEM controls the number of times the EM algorithm has to be performed\n"
          "#from different initial conditions in attempting to find the global maximu-likelihood\n"),
    whole("MaximumNumOfIterationsEM", &settings::MaximumNumOfIterationsEM,
          "#MaximumNumOfIterationsEM controls the maximum number of iterations of the EM algorithm per run\n"),
    whole("RecessiveAllelesEM", &settings::RecessiveAllelesEM,
          "#RecessiveAllelesEM controls if recessive alleles are to be considered in homozygotes\n"),
    whole("CompactHaplotypeDataBaseEM", &settings::CompactHaplotypeDataBaseEM,
          "#CompactHaplotypeDataBaseEM controls if loci that are monomorphic are to be removed from the haplotypes\n"
          "#which marginally speeds up the computation\n"
          "#Note that this parameter is now OBSOLETE and should always be set to zero\n"),
    whole("NumBootstrapReplicatesEM", &settings::NumBootstrapReplicatesEM,
          "#NumBootstrapReplicatesEM controls the number of bootstraps to perform in order to get estimates\n"
          "#of standard deviations of the haplotype frequencies. Note thats.d. estimation takes a LOT of time\n"),
    whole("NumInitCondBootstrapEM", &settings::NumInitCondBootstrapEM,
          "#NumInitCondBootstrapEM controls the number of random initial consitions for the EM,\n"
          "#when performing the bootstrap s.d. estimation, much like InitialConditionsEM, but it should have\n"
          "#typically alower value than that of InitialConditionsEM to save up time\n"),
    whole("ComputeAllSubHaplotypesEM", &settings::ComputeAllSubHaplotypesEM,
          "#ComputeAllSubHaplotypesEM controls if we estimate all possible two-locus haplotype frequencies\n"),
    kept_when_missing(
        whole("EMCheckPhenRedundancy", &settings::EMCheckPhenRedundancy,
              "#EMCheckPhenRedundancy controls if phenotypes need to be checked to see if they are all different.\n"
              "#If, yes, it removes some phenotypes and update their frequency, if needed\n")),
    kept_when_missing(not_written("EMCompGamPhaseForAllInitConds", &settings::EMCompGamPhaseForAllInitConds)),
    scientific(
        "EpsilonValue", &settings::EpsilonValue,
        "#EpsilonValue is a threshold value: when the sum of haplotype frequency differences \n"
        "#between consecutive iterations is larger than epsilon, the EM algorithm is believed to have converged,\n"
        "#and stops. Values of at least 1E-7 are in order\n"),
    scientific("FrequencyThreshold", &settings::FrequencyThreshold,
               "#FrequencyThreshold is the minimum frequency need to be reached by a haplotype to be listed in the "
               "result file\n"),
    kept_when_missing(whole(
        "EMEstimateInbreedingCoeff", &settings::EMEstimateInbreedingCoeff,
        "#EMEstimateInbreedingCoeff controls if we need to estimate the inbreeding coefficient together with the\n"
        "#the haplotype frequencies using the EM algorithm\n")),
    kept_when_missing(
        fixed("EMInbreedingFixedVal", &settings::EMInbreedingFixedVal,
              "#EMInbreedingFixedVal sets a predefined arbitrary value of inbreeding, which is taken into\n"
              "#account when estimating haplotype frequencies through the EM algorithm\n")),
    kept_when_missing(
        whole("EMUseZipper", &settings::EMUseZipper,
              "#EMUseZipper controls if we use the zipper version of the EM algorithm (unpublished)\n"
              "#The zipper version works by computing first 2-locus haplotype frequencies, and then progressively\n"
              "#adding other loci in a random order and estimating haplotype frequencies on a larger number of loci\n"
              "#until all loci have been included. This procedure is much quicker than the conventional EM algorithm\n"
              "#as a much more restricted set of haplotypes have to be considered.\n"
              "#It can thus be used on a much largern number of loci than the conventinal EM algorithm\n")),
    kept_when_missing(not_written("EMWinSize", &settings::EMWinSize)),
    kept_when_missing(whole(
        "EMLociRandOrder", &settings::EMLociRandOrder,
        "#EMLociRandOrder specifies if loci are to be added in a random order for the zipper version of the EM\n")),
    kept_when_missing(not_written("EMInbreedingEachLocus", &settings::EMInbreedingEachLocus)),
    kept_when_missing(whole(
        "EMNumZipRandOrders", &settings::EMNumZipRandOrders,
        "#EMNumZipRandOrders specifies how many random orders have to be considered assuming EMLociRandOrder=1\n")),
    kept_when_missing(
        whole("GibbsInferGamPhase", &settings::GibbsInferGamPhase,
              "#KPV algorithm specific settings\n"
              "#GibbsInferGamPhase controls if we estimate individual gametic phase and haplotype frequencies\n"
              "#via the pseudo-Gibbs sampling implemented in the KPV algorithm\n")),
    kept_when_missing(whole("GibbsBurnIn", &settings::GibbsBurnIn,
                            "#GibbsBurnIn defines the number of the Gibbs steps in the burnin\n")),
    kept_when_missing(
        whole("GibbsSamplingInterval", &settings::GibbsSamplingInterval,
              "#GibbsSamplingInterval defines the number of Gibbs steps between each consecutive samples\n"
              "#in the Markov chain\n")),
    kept_when_missing(
        whole("GibbsNumSamples", &settings::GibbsNumSamples,
              "#GibbsNumSamples defines how many samples we need to get in order to build the posterior distribution\n"
              "#of the individual gametic phases\n")),
    kept_when_missing(
        fixed("GibbsAlphaInitValue", &settings::GibbsAlphaInitValue,
              "#GibbsAlphaInitValue is the value of the alpha parameter of the Dirichlet prior distribution\n"
              "#for haplotype frequencies. A value of 0.01 has been shown to work best in all cases.\n")),
    kept_when_missing(fixed(
        "GibbsEpsilonValue", &settings::GibbsEpsilonValue,
        "#GibbsEpsilonValue is the value of the epsilon parameter, used to take into account the frequency\n"
        "#of haplotypes similar to those possible for a given unphase individual. A value of 0.01 works well for\n"
        "#SNPS, and a larger value of 0.1 works well for microsatellite data\n")),
    kept_when_missing(fixed(
        "GibbsGamma", &settings::GibbsGamma,
        "#GibbsGamma is the gamma parameter of the KPV algorithm, used to avoid dynamic windows to grow too large,\n"
        "#when the epsilon is small and if there is a strong linkage disequilibrium.\n")),
    kept_when_missing(
        whole("GibbsHetSiteInfluenceZone", &settings::GibbsHetSiteInfluenceZone,
              "#GibbsHetSiteInfluenceZone controls the number of loci to be taken into account \n"
              "#around each heterozygous site, to dress a list, for each individual, of the loci\n"
              "#that must be take into account to build haplotypes.\n"
              "#Note that with a value of zero, gametic phase is computed only on heterozygotes sites, while\n"
              "#a negative value(e.g. -1) implies that haplotypes will be defined on all loci.\n")),
    kept_when_missing(fixed("GibbsPercentageOfRecSteps", &settings::GibbsPercentageOfRecSteps,
                            "#GibbsPercentageOfRecSteps controls the fraction of steps in Gibbs sampling that \n"
                            "#correspond to recombination steps around the focal heterozygous locus\n")),
    kept_when_missing(whole("GibbsOutputGamPhase", &settings::GibbsOutputGamPhase,
                            "#GibbsOutputGamPhase controls if we output individual gametic phases in *.tvp files \n"
                            "#for every sample of the KPV algorithm\n")),
};

constexpr SettingsKey amova_keys[] = {
    whole("HaplAMOVA", &settings::HaplAMOVA,
          "#HaplAMOVA controls if the AMOVA computations need to be performed globally, for all loci at the same time, "
          "as for haplotypes\n"),
    whole("LocByLocAMOVA", &settings::LocByLocAMOVA,
          "#LocByLocAMOVA controls if the AMOVA computations need to be performed separately for each locus.\n"),
    whole("PopSpecificFST", &settings::PopSpecificFST,
          "#PopSpecificFST controls if population specific FST indices need to be computed.\n"),
    whole("PopSpecificFIS", &settings::PopSpecificFIS),
    whole("TestSignificanceAMOVA", &settings::TestSignificanceAMOVA,
          "#TestSignificanceAMOVA should be set to 1 to perfrom significance testing of the variance components\n"
          "#OBSOLETE settings (could probably be removed), because significance testing is \n"
          "#controlled by NumPermutationsAMOVA below\n"),
    whole("NumPermutationsAMOVA", &settings::NumPermutationsAMOVA,
          "#NumPermutationsAMOVA controls if variance components are tested by permutations, \n"
          "#and sets the number of permutations to be performed\n"),
    whole("ComputeConventionalFST", &settings::ComputeConventionalFST,
          "#ComputeConventionalFST controls if conventional FSt are to be computed as opposed to\n"
          "#F-statistics taking into account molecular diversity. Conventional FST do only depend on\n"
          "#haplotype frequencies, and do not take into account the allelci composition of the haplotypes\n"),
    whole("IncludeIndividualLevel", &settings::IncludeIndividualLevel,
          "#IncludeIndividualLevel controls if FIS statistics and associated variance components\n"
          "#should be computed\n"),
    whole("ComputeDistanceMatrixAMOVA", &settings::ComputeDistanceMatrixAMOVA,
          "#ComputeDistanceMatrixAMOVA controls if a matrix of pairwise Euclidian distances needs to be computed\n"
          "#and used for AMOVA computations\n"),
    whole("DistanceMethodAMOVA", &settings::DistanceMethodAMOVA,
          "#DistanceMethodAMOVA controls if a matrix of euclidian distances should be computed\n"
          "# between all pairs of haplotypes prior to AMOVA computations\n"),
    fixed("GammaAValueAMOVA", &settings::GammaAValueAMOVA,
          "#GammaAValueAMOVA is the shape parameter of gamma distributed mutation rates.\n"
          "#A value of zero means no heterogeneity of mutation rates. Values between zero and one\n"
          "#and increasingly smaller imply increasing departure from mutation rate homogeneity\n"
          "#For DNA distances only\n"),
    whole("PrintDistanceMatrix", &settings::PrintDistanceMatrix,
          "#PrintDistanceMatrix controls if the matrix of pairwise distance between haplotypes should\n"
          "#be output in the result file\n"),
    whole("PrintMinSpannNetworkGlob", &settings::PrintMinSpannNetworkGlob,
          "#PrintMinSpannNetworkGlob controls if a Minimum Spanning Network need sto be computed from a matrix\n"
          "#or pairwise distances between all pairs of haplotypes found in the population samples included in the\n"
          "#current genetic structure\n"),
};

constexpr SettingsKey pairwise_keys[] = {
    whole("TestSignificancePairewiseFST", &settings::TestSignificancePairewiseFST,
          "#TestSignificancePairewiseFST controls if pairwise distances should be tested by permutations\n"),
    whole("NumPermutationsFST", &settings::NumPermutationsFST,
          "#NumPermutationsFST is the number of permutations to be perfromed to test the significance\n"
          "#of pairwise distances between populations\n"),
    whole("ComputePairwiseFST", &settings::ComputePairwiseFST,
          "#ComputePairwiseFST controls if FST's should be computed between all pairs of populations\n"),
    whole("ComputeDeltaMuSqr", &settings::ComputeDeltaMuSqr,
          "#ComputeDeltaMuSqr controls if delta-mu square statistics is computed between all pairs of populations\n"),
    fixed("FSTSignifLevel", &settings::FSTSignifLevel,
          "#FSTSignifLevel is the p-value under which pairwise distances are assumed to be significant\n"
          "#and reported as such in the result file\n"),
    whole("PrintFstVals", &settings::PrintFstVals,
          "#PrintFstVals controls if pairwise FST values need to be printed in the result file\n"),
    whole("PrintConcestryCoeff", &settings::PrintConcestryCoeff,
          "#PrintConcestryCoeff controls if Reynold's distances need to be printed in the result file\n"),
    whole("PrintSlatkinsDist", &settings::PrintSlatkinsDist,
          "#PrintSlatkinsDist controls if Slatkin's distances need to be printed in the result file\n"),
    whole("PrintMissIntermatchs", &settings::PrintMissIntermatchs,
          "#PrintMissIntermatchs controls average number of pairwise differences between populations\n"
          "#need to be computed and reported in the result file\n"),
    whole("UnequalPopSizeDiv", &settings::UnequalPopSizeDiv,
          "#UnequalPopSizeDiv controls if the distances taking into account diferences between population sizes\n"
          "#need to be computed and reported in the result file\n"),
    not_written("Divergencetime", &settings::Divergencetime),
};

constexpr SettingsKey differentiation_keys[] = {
    whole("NumPermutPopDiff", &settings::NumPermutPopDiff,
          "#NumPermutPopDiff is the number of steps in the Markov chain for the exact test\n"
          "#of population differention based on haplotype frequency differences between populations\n"),
    whole("NumDememoPopDiff", &settings::NumDememoPopDiff,
          "#NumDememoPopDiff is the number of steps in the burnin of the markov chain used for theexact test of "
          "popualtion differentiation\n"),
    read_as_whole(fixed("PrecProbPopDiff", &settings::PrecProbPopDiff,
                        "#PrecProbPopDiffcontrols the required precision on the estimated p-value of the exact test\n"
                        "#of population differentiation. OBSOLETE FEATURE LET THE KEY VALUE TO ZERO\n")),
    whole("PrintHistoPopDiff", &settings::PrintHistoPopDiff,
          "#PrintHistoPopDiff controls if a summary table of siginificant differences beteen populations\n"
          "#nshould be printed in the result file\n"),
    fixed("SignLevelPopDiff", &settings::SignLevelPopDiff,
          "#SignLevelPopDiffis the p-value under which population differences are assumed to be significant\n"
          "#and reported as such in the result file\n"),
};

constexpr SettingsKey selection_keys[] = {
    whole("DetectSelectedLoci", &settings::DetectSelectedLoci,
          "#DetectSelectedLoci controls if the test of selection (FDIST2) will be performed\n"),
    whole("UseHierarchicalIslandModel", &settings::UseHierarchicalIslandModel,
          "#UseHierarchicalIslandModel controls if a hierarchical island model should be used to generate the null "
          "distribution of FST\n"),
    whole("NumberOfGroupsForFDist2", &settings::NumberOfGroupsForFDist2,
          "#NumberOfGroupsForFDist2 is the number of groups in the simulated hierarchical island model\n"),
    whole("NumberOfDemesForFDist2", &settings::NumberOfDemesForFDist2,
          "#NumberOfGroupsForFDist2 is the number of demes (per group) in the simulated island model\n"),
    whole("NumberOfSimsForFDist2", &settings::NumberOfSimsForFDist2,
          "#NumberOfSimsForFDist2 is the number of coalescent simulations to be performed\n"),
    whole("UseSimFileForFDist2", &settings::UseSimFileForFDist2,
          "#UseSimFileForFDist2 is a flag to indicate if we can use some file with pre-simulated data\n"),
    text("SimFileNameForFDist2", &settings::SimFileNameForFDist2,
         "#SimFileNameForFDist2 is the name of the file containing pre-simulated data\n"),
    fixed("TargetHetLowBound", &settings::TargetHetLowBound,
          "#TargetHetLowBound is the target LOW bound for simulated heterozagosity in the coalescent simulations under "
          "a finite island model\n"
          "#Target simulated heterozygostiy is dawn as uniform between low_bound and high_bound and theta value is "
          "taken from the relation Het=theta/(1+theta) \n"),
    fixed("TargetHetHighBound", &settings::TargetHetHighBound,
          "#TargetHetHighBound is the target HIGH bound for simulated heterozagosity in the coalescent simulations "
          "under a finite island model\n"
          "#Target simulated heterozygostiy is dawn as uniform between low_bound and high_bound and theta value is "
          "taken from the relation Het=theta/(1+theta) \n"),
    fixed(
        "MinDafFreq", &settings::MinDafFreq,
        "#MinDafFreq is the minimum frequency of the simulated derived allele. It is used to implement soem form of "
        "ascertainment bias\n"
        "#It is only relevant for diallelic markers, like DNA (SNP) and RFLP data. A value of zero implies no bias.\n"),
    whole("IterativeProcForFDist2", &settings::IterativeProcForFDist2,
          "#IterativeProcForFDist2 controls if we use an iterative procedure to detect loci under selection\n"),
};

constexpr SettingsKey neutrality_keys[] = {
    whole("EwensWattersonHomozygosityTest", &settings::EwensWattersonHomozygosityTest,
          "#EwensWattersonHomozygosityTest controls if the Ewens-watterson neutraltiy test should be performed\n"),
    whole("NumIterationsNeutralityTests", &settings::NumIterationsNeutralityTests,
          "#NumIterationsNeutralityTests is the number of simulations to be performed for the\n"
          "#neutrality tests based on the infinite-allele model\n"),
    whole("NumSimulFuTest", &settings::NumSimulFuTest,
          "#NumSimulFuTestis the number of coalescent simulations to be performed for the\n"
          "#neutrality tests based on the infinite-site model\n"),
};

constexpr SettingsKey mantel_keys[] = {
    whole("NumPermMantel", &settings::NumPermMantel,
          "#NumPermMantel is the number of permutations to be perform to get the significance of\n"
          "#the correlation between different matrices\n"),
};

constexpr SettingsGroup groups[] = {
    {nullptr, task_keys},
    {"GENERAL SETTINGS", general_keys},
    {"SETTINGS FOR TEST OF HARDY-WEINBERG EQUILIBRIUM", hardy_weinberg_keys},
    {"SETTINGS FOR TEST OF LINKAGE DISEQUILIBRIUM", linkage_keys},
    {"SETTINGS FOR DIVERSITY INDICES", diversity_keys},
    {"SETTINGS FOR MISMATCH DISTRIBUTION", mismatch_keys},
    {"SETTINGS FOR HAPLOTYPE FREQUENCY ESTIMATION", haplotype_keys},
    {"SETTINGS FOR AMOVA", amova_keys},
    {"SETTINGS FOR PAIRWISE DISTANCE COMPUTATIONS", pairwise_keys},
    {"SETTINGS FOR POPULATION DIFFERENTIATION", differentiation_keys},
    {"SETTINGS FOR DETECTION OF SELECTED LOCI FROM COMPARISON BETWEEN FST AND HETEROZYGOSITY", selection_keys},
    {"SETTINGS FOR NEUTRALITY TESTS", neutrality_keys},
    {"SETTINGS FOR MANTEL TEST", mantel_keys},
};

}  // namespace

std::span<SettingsGroup const> settings_groups() noexcept { return groups; }
std::span<TaskBitName const> task_bit_names() noexcept { return bit_names; }

}  // namespace tov
