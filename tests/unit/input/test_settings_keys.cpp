// Every key of the settings file: its default, its way from the file into its field, and the file that is written.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "input/settings.h"
#include "support/settings_text.h"

namespace tov {
namespace {

// The keys with their defaults, written out a second time on purpose: the program's own table is what is tested.
#define WHOLE_KEYS(X)                                \
    X(TaskNumber, 0)                                 \
    X(XMLOutput, 1)                                  \
    X(ComputeSumStatsWithinGroups, 0)                \
    X(InferHaplotypeDefinitionFromDistanceMatrix, 0) \
    X(EliminateRedondHaplodefs, 0)                   \
    X(GameticPhaseIsKnown, 0)                        \
    X(KeepNullDistrib, 0)                            \
    X(MakeHWExactTest, 0)                            \
    X(HardyWeinbergTestType, 0)                      \
    X(TypeOfTestHW, 0)                               \
    X(MarkovChainStepsHW, 1000000)                   \
    X(MarkovChainDememorisationStepsHW, 100000)      \
    X(SignificanceLevelHW, 2)                        \
    X(LinkageDisequilibriumTestType, 0)              \
    X(MakeExactTestLD, 0)                            \
    X(MarkovChainDememorisationStepsLD, 1000)        \
    X(MarkovChainStepsLD, 100000)                    \
    X(PrintFlagHistogramLD, 0)                       \
    X(InitialCondEMLD, 2)                            \
    X(ComputeDvalues, 0)                             \
    X(ComputeStandardDiversityIndices, 0)            \
    X(DistanceMethod, 0)                             \
    X(ComputeTheta, 0)                               \
    X(PrintHaplDistMat, 0)                           \
    X(PrintPopDistMat, 0)                            \
    X(PrintMinSpannNetworkPop, 0)                    \
    X(MismatchDistanceMethod, 0)                     \
    X(NumBootExpDem, 100)                            \
    X(MismatchSpatialExpNumParams, 3)                \
    X(ComputeAllHaplotypesEM, 0)                     \
    X(ComputeAllAllelesEM, 0)                        \
    X(InitialConditionsEM, 50)                       \
    X(MaximumNumOfIterationsEM, 1000)                \
    X(RecessiveAllelesEM, 0)                         \
    X(CompactHaplotypeDataBaseEM, 0)                 \
    X(NumBootstrapReplicatesEM, 0)                   \
    X(NumInitCondBootstrapEM, 10)                    \
    X(ComputeAllSubHaplotypesEM, 0)                  \
    X(EMCheckPhenRedundancy, 0)                      \
    X(EMEstimateInbreedingCoeff, 0)                  \
    X(EMUseZipper, 0)                                \
    X(EMLociRandOrder, 0)                            \
    X(EMNumZipRandOrders, 0)                         \
    X(GibbsInferGamPhase, 0)                         \
    X(GibbsBurnIn, 100000)                           \
    X(GibbsSamplingInterval, 500)                    \
    X(GibbsNumSamples, 2000)                         \
    X(GibbsHetSiteInfluenceZone, 5)                  \
    X(GibbsOutputGamPhase, 0)                        \
    X(HaplAMOVA, 0)                                  \
    X(LocByLocAMOVA, 0)                              \
    X(PopSpecificFST, 0)                             \
    X(PopSpecificFIS, 0)                             \
    X(TestSignificanceAMOVA, 0)                      \
    X(NumPermutationsAMOVA, 1000)                    \
    X(ComputeConventionalFST, 0)                     \
    X(IncludeIndividualLevel, 0)                     \
    X(ComputeDistanceMatrixAMOVA, 1)                 \
    X(DistanceMethodAMOVA, 0)                        \
    X(PrintDistanceMatrix, 0)                        \
    X(PrintMinSpannNetworkGlob, 0)                   \
    X(TestSignificancePairewiseFST, 0)               \
    X(NumPermutationsFST, 100)                       \
    X(ComputePairwiseFST, 0)                         \
    X(ComputeDeltaMuSqr, 0)                          \
    X(PrintFstVals, 0)                               \
    X(PrintConcestryCoeff, 0)                        \
    X(PrintSlatkinsDist, 0)                          \
    X(PrintMissIntermatchs, 0)                       \
    X(UnequalPopSizeDiv, 0)                          \
    X(NumPermutPopDiff, 100000)                      \
    X(NumDememoPopDiff, 10000)                       \
    X(PrintHistoPopDiff, 1)                          \
    X(DetectSelectedLoci, 0)                         \
    X(UseHierarchicalIslandModel, 0)                 \
    X(NumberOfGroupsForFDist2, 10)                   \
    X(NumberOfDemesForFDist2, 100)                   \
    X(NumberOfSimsForFDist2, 20000)                  \
    X(UseSimFileForFDist2, 0)                        \
    X(IterativeProcForFDist2, 0)                     \
    X(EwensWattersonHomozygosityTest, 0)             \
    X(NumIterationsNeutralityTests, 1000)            \
    X(NumSimulFuTest, 1000)                          \
    X(NumPermMantel, 1000)

#define UNWRITTEN_KEYS(X)       \
    X(Divergencetime, 0)        \
    X(IsFontKnown, 0)           \
    X(NbFrontSegments, 0)       \
    X(SegmentLength, 0)         \
    X(NumOfGroups, 1)           \
    X(DiffusionMode, 2)         \
    X(NbFrontPerm, 0)           \
    X(EMWinSize, 1)             \
    X(EMInbreedingEachLocus, 0) \
    X(EMCompGamPhaseForAllInitConds, 0)

#define DECIMAL_KEYS(X)                \
    X(DeletionWeight, 1)               \
    X(TransitionWeight, 1)             \
    X(TranversionWeight, 1)            \
    X(AllowedLevelOfMissingData, 0.05) \
    X(PrecisionOnPValueHW, 0)          \
    X(PrecisionOnPValueLD, 0)          \
    X(SignificanceLevelLD, 0.05)       \
    X(GammaAValue, 0)                  \
    X(MismatchGammaAValue, 0)          \
    X(EpsilonValue, 1e-07)             \
    X(FrequencyThreshold, 1e-05)       \
    X(EMInbreedingFixedVal, 0)         \
    X(GibbsAlphaInitValue, 0.01)       \
    X(GibbsEpsilonValue, 0.01)         \
    X(GibbsGamma, 0)                   \
    X(GibbsPercentageOfRecSteps, 0)    \
    X(GammaAValueAMOVA, 0)             \
    X(FSTSignifLevel, 0.05)            \
    X(PrecProbPopDiff, 0)              \
    X(SignLevelPopDiff, 0.05)          \
    X(TargetHetLowBound, 0)            \
    X(TargetHetHighBound, 1)           \
    X(MinDafFreq, 0)

#define BOOL_KEYS(X)            \
    X(ComputeAllAlleleFreqs, 0) \
    X(MismatchDemogExp, 0)      \
    X(MismatchSpatialExp, 0)

using test::read_settings;
using test::written;

std::string file_text(std::string const& name) {
    std::ifstream in(name, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string value_of(std::string const& text, std::string const& key) {
    std::size_t const line = text.find("\n" + key + "=");
    if (line == std::string::npos) return "(none)";
    std::size_t const begin = line + key.size() + 2;
    return text.substr(begin, text.find('\n', begin) - begin);
}

/// Settings in which each field has a value of its own that its written form keeps.
settings numbered() {
    settings set;
    int next = 1000;
#define NUMBER(key, initial) set.key = ++next;
    WHOLE_KEYS(NUMBER)
    UNWRITTEN_KEYS(NUMBER)
#undef NUMBER
#define NUMBER(key, initial) set.key = ++next + 0.5;
    DECIMAL_KEYS(NUMBER)
#undef NUMBER
#define NUMBER(key, initial) set.key = true;
    BOOL_KEYS(NUMBER)
#undef NUMBER
    set.SimFileNameForFDist2 = "runs/fdist2 sim.txt";
    return set;
}

TEST(SettingsKeys, ANewObjectHoldsTheDefaultOfEveryKey) {
    settings const set;
#define CHECK(key, initial) EXPECT_EQ(set.key, initial) << #key;
    WHOLE_KEYS(CHECK)
    UNWRITTEN_KEYS(CHECK)
    DECIMAL_KEYS(CHECK)
#undef CHECK
#define CHECK(key, initial) EXPECT_EQ(set.key, initial != 0) << #key;
    BOOL_KEYS(CHECK)
#undef CHECK
    EXPECT_EQ(set.SimFileNameForFDist2, "");
}

TEST(SettingsKeys, ResetBringsBackTheDefaultOfEveryKey) {
    settings set = numbered();
    set.stop = 1;
    set.reset_initial_values();
    EXPECT_EQ(*set.is_stop(), 0);
#define CHECK(key, initial) EXPECT_EQ(set.key, initial) << #key;
    WHOLE_KEYS(CHECK)
    UNWRITTEN_KEYS(CHECK)
    DECIMAL_KEYS(CHECK)
#undef CHECK
#define CHECK(key, initial) EXPECT_EQ(set.key, initial != 0) << #key;
    BOOL_KEYS(CHECK)
#undef CHECK
    EXPECT_EQ(set.SimFileNameForFDist2, "");
}

TEST(SettingsKeys, ResetTakesFewerLinkageStepsForGenotypesOfUnknownPhase) {
    settings set;
    set.GenotypicData = 1;
    set.GameticPhase = 0;
    set.reset_initial_values();
    EXPECT_EQ(set.MarkovChainStepsLD, 1000);
    set.GameticPhase = 1;
    set.reset_initial_values();
    EXPECT_EQ(set.MarkovChainStepsLD, 100000);
    set.GenotypicData = 0;
    set.GameticPhase = 0;
    set.reset_initial_values();
    EXPECT_EQ(set.MarkovChainStepsLD, 100000);
}

TEST(SettingsKeys, EveryKeyGoesIntoTheFieldOfItsName) {
#define CHECK(key, initial) EXPECT_EQ(read_settings(#key "=37\n").key, 37) << #key;
    WHOLE_KEYS(CHECK)
    UNWRITTEN_KEYS(CHECK)
#undef CHECK
#define CHECK(key, initial) \
    EXPECT_EQ(read_settings(#key "=0.375\n").key, std::string(#key) == "PrecProbPopDiff" ? 375 : 0.375) << #key;
    DECIMAL_KEYS(CHECK)
#undef CHECK
#define CHECK(key, initial) EXPECT_TRUE(read_settings(#key "=1\n").key) << #key;
    BOOL_KEYS(CHECK)
#undef CHECK
    EXPECT_EQ(read_settings("SimFileNameForFDist2=sims.txt\n").SimFileNameForFDist2, "sims.txt");
}

bool kept_when_missing(std::string const& key) {
    return (key.starts_with("EM") && key != "EMEstimHaplFreqs") || key.starts_with("Gibbs");
}

TEST(SettingsKeys, AMissingKeyIsZeroUnlessItBelongsToTheEMOrKPVGroup) {
    settings const before = numbered();
    settings const set = read_settings("no keys here\n", before);
#define CHECK(key, initial)                     \
    if (kept_when_missing(#key)) {              \
        EXPECT_EQ(set.key, before.key) << #key; \
    } else {                                    \
        EXPECT_EQ(set.key, 0) << #key;          \
    }
    WHOLE_KEYS(CHECK)
    UNWRITTEN_KEYS(CHECK)
    DECIMAL_KEYS(CHECK)
#undef CHECK
#define CHECK(key, initial) EXPECT_FALSE(set.key) << #key;
    BOOL_KEYS(CHECK)
#undef CHECK
    EXPECT_EQ(set.SimFileNameForFDist2, "");
}

TEST(SettingsKeys, TheWrittenFileReadsBackToTheSameValues) {
    settings const before = numbered();
    settings const set = read_settings(written(before));
#define CHECK(key, initial)                                                                     \
    if (std::string(#key) != "GameticPhaseIsKnown" && std::string(#key) != "PrintPopDistMat") { \
        EXPECT_EQ(set.key, before.key) << #key;                                                 \
    }
    WHOLE_KEYS(CHECK)
    BOOL_KEYS(CHECK)
#undef CHECK
#define CHECK(key, initial)                            \
    if (std::string(#key) != "PrecProbPopDiff") {      \
        EXPECT_DOUBLE_EQ(set.key, before.key) << #key; \
    }
    DECIMAL_KEYS(CHECK)
#undef CHECK
    EXPECT_EQ(set.SimFileNameForFDist2, before.SimFileNameForFDist2);
}

TEST(SettingsKeys, TheWrittenFileHoldsEveryKeyOnceButTheReadOnlyOnes) {
    std::string const text = written(numbered());
#define CHECK(key, initial) EXPECT_NE(value_of(text, #key), "(none)") << #key;
    WHOLE_KEYS(CHECK)
    DECIMAL_KEYS(CHECK)
    BOOL_KEYS(CHECK)
#undef CHECK
#define CHECK(key, initial) EXPECT_EQ(text.find(#key), std::string::npos) << #key;
    UNWRITTEN_KEYS(CHECK)
#undef CHECK
    EXPECT_EQ(text.find("EMEstimHaplFreqs"), std::string::npos);
}

TEST(SettingsKeys, TheDefaultsAreWrittenAsInTheExampleFile) {
    EXPECT_EQ(written(settings()), file_text(TOV_SOURCE_DIR "/examples/default.tvs"));
}

TEST(SettingsKeys, TheExampleFileReadsBackToTheDefaults) {
    settings set = numbered();
    set.read_settings(TOV_SOURCE_DIR "/examples/default.tvs");
#define CHECK(key, initial) EXPECT_EQ(set.key, initial) << #key;
    WHOLE_KEYS(CHECK)
    DECIMAL_KEYS(CHECK)
    BOOL_KEYS(CHECK)
#undef CHECK
    EXPECT_EQ(set.SimFileNameForFDist2, "");
}

TEST(SettingsKeys, TheWoodmouseExampleIsInWrittenForm) {
    std::string const name = TOV_SOURCE_DIR "/examples/woodmouse/wood1.tvs";
    settings set;
    set.read_settings(name);
    EXPECT_EQ(set.TaskNumber, 16839);
    EXPECT_EQ(written(set), file_text(name));
}

/// The numbers of `key=value` lines of a file: name and value, comments and headings left out.
std::map<std::string, double> plain_numbers(std::string const& text) {
    std::map<std::string, double> values;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        std::size_t const equal = line.find('=');
        if (equal == std::string::npos || line.front() == '#' || line.starts_with("SimFileName")) continue;
        values[line.substr(0, equal)] = std::stod(line.substr(equal + 1));
    }
    return values;
}

TEST(SettingsKeys, EverySettingsFileOfTheCasesGivesEachKeyItsOwnLine) {
    std::size_t files = 0;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(TOV_SOURCE_DIR "/tests/cases")) {
        if (entry.path().extension() != ".tvs") continue;
        ++files;
        std::string const text = file_text(entry.path().string());
        std::map<std::string, double> const asked = plain_numbers(text);
        std::map<std::string, double> const got = plain_numbers(written(read_settings(text)));
        for (auto const& [key, value] : got) {
            if (key == "GameticPhaseIsKnown") continue;  // written from the data, not from the file
            ASSERT_TRUE(asked.contains(key)) << entry.path() << ' ' << key;
            double const expected = key == "PrecProbPopDiff" ? value : asked.at(key);
            EXPECT_EQ(value, expected) << entry.path() << ' ' << key;
        }
    }
    EXPECT_GE(files, 40u);
}

TEST(SettingsKeys, AFileThatCannotBeOpenedHoldsNoKey) {
    settings set = numbered();
    set.read_settings("no/such/file.tvs");
    EXPECT_EQ(set.TaskNumber, 0);
    EXPECT_EQ(set.XMLOutput, 0);
    EXPECT_EQ(set.EMUseZipper, numbered().EMUseZipper);
}

TEST(SettingsKeys, DecimalsAreWrittenWithSixDigitsAndSmallOnesWithAnExponent) {
    settings set;
    set.AllowedLevelOfMissingData = 1.0 / 3.0;
    set.EpsilonValue = 1e-7;
    set.FrequencyThreshold = 0.00025;
    std::string const text = written(set);
    EXPECT_EQ(value_of(text, "AllowedLevelOfMissingData"), "0.333333");
    EXPECT_EQ(value_of(text, "EpsilonValue"), "1.000000e-07");
    EXPECT_EQ(value_of(text, "FrequencyThreshold"), "2.500000e-04");
}

TEST(SettingsKeys, HugeDecimalsAreWrittenWhole) {
    settings set;
    set.GammaAValue = -1.7976931348623157e308;
    EXPECT_EQ(value_of(written(set), "GammaAValue").size(), 317u);  // sign, 309 digits, point, six decimals
}

TEST(SettingsKeys, TheFileIsTruncatedWhenItIsWrittenAgain) {
    std::string const name = testing::TempDir() + "/settings_keys_truncate.tvs";
    { std::ofstream(name) << std::string(100000, 'x'); }
    settings().print_settings(name);
    EXPECT_EQ(file_text(name), written(settings()));
    std::remove(name.c_str());
}

}  // namespace
}  // namespace tov
