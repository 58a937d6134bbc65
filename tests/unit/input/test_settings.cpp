// Settings: the oddities of reading and writing, task bits, file names, stop flag, and progress on the console.
#include <gtest/gtest.h>

#include <iostream>
#include <limits>
#include <random>
#include <sstream>
#include <string>

#include "base/scoped_swap.h"
#include "input/settings.h"
#include "run/run_state.h"
#include "support/settings_text.h"

namespace tov {
namespace {

using test::read_settings;
using test::written;

TEST(SettingsReading, TheWriterGivesThePhaseOfTheDataTheReaderStoresItElsewhere) {
    settings set;
    set.GameticPhase = 1;
    set.GameticPhaseIsKnown = 0;
    EXPECT_NE(written(set).find("\nGameticPhaseIsKnown=1\n"), std::string::npos);
    settings const back = read_settings("GameticPhaseIsKnown=1\n");
    EXPECT_EQ(back.GameticPhaseIsKnown, 1);
    EXPECT_EQ(back.GameticPhase, 0);
}

TEST(SettingsReading, ThePrecisionOfTheExactTestIsReadAsDigits) {
    EXPECT_EQ(read_settings("PrecProbPopDiff=0.050000\n").PrecProbPopDiff, 50000.0);
    EXPECT_EQ(read_settings("PrecProbPopDiff=0.000000\n").PrecProbPopDiff, 0.0);
    settings set;
    set.PrecProbPopDiff = 0.05;
    EXPECT_EQ(read_settings(written(set)).PrecProbPopDiff, 50000.0);
}

TEST(SettingsReading, TheHardyWeinbergLevelIsAnIndexTheLinkageLevelAProbability) {
    settings const set = read_settings("SignificanceLevelHW=0.050000\nSignificanceLevelLD=0.050000\n");
    EXPECT_EQ(set.SignificanceLevelHW, 50000);
    EXPECT_DOUBLE_EQ(set.SignificanceLevelLD, 0.05);
}

TEST(SettingsReading, ThePopulationMatrixKeySetsTheHaplotypeMatrixKeyWhenFound) {
    settings set = read_settings("PrintHaplDistMat=1\nPrintPopDistMat=0\n");
    EXPECT_EQ(set.PrintHaplDistMat, 0);
    EXPECT_EQ(set.PrintPopDistMat, 0);
    set = read_settings("PrintHaplDistMat=0\nPrintPopDistMat=1\n");
    EXPECT_EQ(set.PrintHaplDistMat, 1);
    EXPECT_EQ(set.PrintPopDistMat, 1);
    set = read_settings("PrintHaplDistMat=1\n");
    EXPECT_EQ(set.PrintHaplDistMat, 1);
    EXPECT_EQ(set.PrintPopDistMat, 0);
}

TEST(SettingsReading, ThePopulationMatrixKeyIsWrittenFromTheHaplotypeMatrixKey) {
    settings set;
    set.PrintHaplDistMat = 1;
    set.PrintPopDistMat = 0;
    EXPECT_NE(written(set).find("\nPrintPopDistMat=1\n"), std::string::npos);
}

TEST(SettingsReading, TheEarlierNameOfTheHaplotypeEMKeyWinsWhenFound) {
    EXPECT_EQ(read_settings("ComputeAllHaplotypesEM=0\nEMEstimHaplFreqs=1\n").ComputeAllHaplotypesEM, 1);
    EXPECT_EQ(read_settings("ComputeAllHaplotypesEM=1\nEMEstimHaplFreqs=0\n").ComputeAllHaplotypesEM, 0);
    EXPECT_EQ(read_settings("ComputeAllHaplotypesEM=1\n").ComputeAllHaplotypesEM, 1);
}

TEST(SettingsReading, EMIsWantedWhenOneOfItsThreeKeysIsOn) {
    EXPECT_EQ(read_settings("").em_wanted, 0);
    EXPECT_EQ(read_settings("ComputeAllAllelesEM=1\n").em_wanted, 1);
    EXPECT_EQ(read_settings("ComputeAllHaplotypesEM=1\n").em_wanted, 1);
    EXPECT_EQ(read_settings("GibbsInferGamPhase=1\n").em_wanted, 1);
    EXPECT_EQ(read_settings("", read_settings("ComputeAllAllelesEM=1\n")).em_wanted, 0);
}

TEST(SettingsReading, FlagsOfAByteForgetWhatLiesAbove255) {
    EXPECT_FALSE(read_settings("ComputeAllAlleleFreqs=256\n").ComputeAllAlleleFreqs);
    EXPECT_TRUE(read_settings("ComputeAllAlleleFreqs=257\n").ComputeAllAlleleFreqs);
    EXPECT_FALSE(read_settings("MismatchDemogExp=512\n").MismatchDemogExp);
    EXPECT_TRUE(read_settings("MismatchSpatialExp=2\n").MismatchSpatialExp);
}

TEST(SettingsReading, LettersInANumberArePassedOver) {
    EXPECT_EQ(read_settings("MarkovChainStepsHW=abc\n").MarkovChainStepsHW, 0);
    EXPECT_EQ(read_settings("MarkovChainStepsHW=1a2\n").MarkovChainStepsHW, 12);
    EXPECT_EQ(read_settings("MarkovChainStepsHW=500\r\n").MarkovChainStepsHW, 500);
    EXPECT_EQ(read_settings("GibbsHetSiteInfluenceZone=-1\n").GibbsHetSiteInfluenceZone, -1);
}

TEST(SettingsReading, SmallEpsilonsAreReadWithTheirExponent) {
    EXPECT_DOUBLE_EQ(read_settings("EpsilonValue=1e-7\n").EpsilonValue, 1e-7);
    EXPECT_DOUBLE_EQ(read_settings("EpsilonValue=1.000000e-07\n").EpsilonValue, 1e-7);
    EXPECT_DOUBLE_EQ(read_settings("EpsilonValue=2.5E-3\r\n").EpsilonValue, 2.5e-3);
}

TEST(SettingsReading, AnOldFileKeepsTheZipperKeyOfTheProjectBefore) {
    settings const first = read_settings("EMUseZipper=1\nEMNumZipRandOrders=7\n");
    settings const second = read_settings("TaskNumber=1\n", first);
    EXPECT_EQ(second.EMUseZipper, 1);
    EXPECT_EQ(second.EMNumZipRandOrders, 7);
}

TEST(SettingsReading, AKeyBehindItsLongerNamesakeTakesThatLinesValue) {
    settings const set = read_settings("MismatchDistanceMethod=3\nDistanceMethod=1\n");
    EXPECT_EQ(set.DistanceMethod, 3);
    EXPECT_EQ(set.MismatchDistanceMethod, 3);
    EXPECT_EQ(read_settings("DistanceMethodAMOVA=5\n").DistanceMethod, 5);
    EXPECT_EQ(read_settings("GibbsEpsilonValue=0.125\n").EpsilonValue, 0.125);
}

TEST(SettingsReading, ACommentWithTheKeyAndAnEqualSignIsTakenForTheKey) {
    EXPECT_EQ(read_settings("#GibbsBurnIn is best = 300\nGibbsBurnIn=5\n").GibbsBurnIn, 300);
    EXPECT_EQ(read_settings("#GibbsBurnIn is the burn-in\nGibbsBurnIn=5\n").GibbsBurnIn, 5);
}

TEST(SettingsReading, BlanksBehindTheSimulationFileNameAreDropped) {
    EXPECT_EQ(read_settings("SimFileNameForFDist2=my sims.txt  \r\n").SimFileNameForFDist2, "my sims.txt");
    EXPECT_EQ(read_settings("SimFileNameForFDist2=  \r\n").SimFileNameForFDist2, "");
    EXPECT_EQ(read_settings("SimFileNameForFDist2=\n").SimFileNameForFDist2, "");
    std::string const name(200, 'n');
    EXPECT_EQ(read_settings("SimFileNameForFDist2=" + name + "\n").SimFileNameForFDist2, name.substr(0, 79));
}

TEST(SettingsReading, GarbageIsReadWithoutHarm) {
    std::mt19937 random(7);
    std::string const pieces[] = {"TaskNumber",
                                  "=",
                                  "\n",
                                  "EpsilonValue",
                                  "e",
                                  "-",
                                  "9999999999999999999999",
                                  "1e999999999",
                                  std::string(1, '\0'),
                                  "\r",
                                  "#",
                                  ".",
                                  std::string(5000, '='),
                                  "\xff\xfe"};
    for (int round = 0; round < 500; ++round) {
        std::string text;
        for (int i = 0; i < 40; ++i) text += pieces[random() % std::size(pieces)];
        settings const once = read_settings(text);
        settings const twice = read_settings(text, once);
        EXPECT_EQ(once.TaskNumber, twice.TaskNumber);
        EXPECT_FALSE(written(once).empty());
    }
}

TEST(SettingsTasks, WithinSampleTasksAreBits0To8And14) {
    for (int bit = 0; bit < 20; ++bit) {
        settings set;
        set.TaskNumber = 1L << bit;
        EXPECT_EQ(set.check_intrap_pop_task(), bit <= 8 || bit == 14) << bit;
    }
    EXPECT_FALSE(settings().check_intrap_pop_task());
}

TEST(SettingsTasks, NamedTasksHaveTheValuesOfTheFile) {
    long const bits[] = {task::standard_indices,
                         task::molecular_diversity,
                         task::mismatch,
                         task::haplotype_frequencies,
                         task::linkage_disequilibrium,
                         task::hardy_weinberg,
                         task::tajima,
                         task::ewens_watterson,
                         task::chakraborty,
                         task::amova,
                         task::pairwise_fst,
                         task::pairwise_distances,
                         task::prepare_permutations,
                         task::exact_test,
                         task::fu_fs,
                         task::genotype_assignment,
                         task::mantel};
    long expected = 1;
    for (long bit : bits) {
        EXPECT_EQ(bit, expected);
        settings set;
        set.TaskNumber = bit;
        EXPECT_TRUE(set.wants(bit));
        EXPECT_FALSE(set.wants(~bit));
        expected *= 2;
    }
}

TEST(SettingsState, AssignmentCopiesKeysNamesStreamAndState) {
    std::ostringstream document;
    settings from;
    from.TaskNumber = 7;
    from.SimFileNameForFDist2 = "sims";
    from.result_file = "a.xml";
    from.run_id = "id";
    from.keepProjectResults = 0;
    from.stop = 1;
    from.set_ofs(&document);
    settings to;
    to = from;
    EXPECT_EQ(to.TaskNumber, 7);
    EXPECT_EQ(to.SimFileNameForFDist2, "sims");
    EXPECT_EQ(to.result_file, "a.xml");
    EXPECT_EQ(to.run_id, "id");
    EXPECT_EQ(to.keepProjectResults, 0);
    EXPECT_EQ(*to.is_stop(), 1);
    EXPECT_EQ(&to.ofs(), &document);
}

TEST(SettingsState, TextWithoutADocumentIsDropped) {
    settings set;
    set.ofs() << "lost";
    std::ostringstream document;
    EXPECT_EQ(set.set_ofs(&document), nullptr);
    set.ofs() << "kept";
    EXPECT_EQ(set.set_ofs(nullptr), &document);
    set.ofs() << "lost";
    EXPECT_EQ(document.str(), "kept");
}

TEST(SettingsNames, AreDerivedFromTheProjectsName) {
    ScopedSwap<std::string> const keep(settings::input_file, std::string());
    settings set;
    EXPECT_EQ(set.ld_output_file, "ld_dis.xl");
    EXPECT_EQ(set.histogram_file, "none");
    set.set_tovenia_directory("home/");
    set.buildFilenamesFromCurrentProjectName("p/q.r/name.tvp");
    EXPECT_EQ(settings::input_file, "p/q.r/name.tvp");
    EXPECT_EQ(set.project_path, "p/q.r/");
    EXPECT_EQ(set.project_dir, "p/q.r/name.res/");
    EXPECT_EQ(set.result_file, "p/q.r/name.res/name.xml");
    EXPECT_EQ(set.backup_file, "p/q.r/name.bac");
    EXPECT_EQ(set.tree_page, "p/q.r/name.res/name_tree.htm");
    EXPECT_EQ(set.tree_script, "p/q.r/name.res/name.js");
    EXPECT_EQ(set.main_page, "p/q.r/name.res/name_main.htm");
    EXPECT_EQ(set.graphics_dir, "p/q.r/name.res/Graphics/");
    EXPECT_EQ(set.ld_output_file, "p/q.r/name.res/ld_dis.xl");
    EXPECT_EQ(set.style_sheet, "home/ftie4style.css");
    EXPECT_EQ(set.tree_code, "home/ftiens4.js");
    set.XMLOutput = 0;
    set.buildFilenamesFromCurrentProjectName("name.tvp");
    EXPECT_EQ(set.project_path, "");
    EXPECT_EQ(set.project_dir, "name.res/");
    EXPECT_EQ(set.result_file, "name.res/name.htm");
}

TEST(SettingsNames, OfNullDistributionsReplaceTheExtension) {
    ScopedSwap<std::string> const keep(settings::input_file, std::string("p/name.res/name.tvp"));
    settings set;
    set.build_sigm_histo_f_name();
    EXPECT_EQ(set.sigm_histo_files[0], "p/name.res/name.va");
    EXPECT_EQ(set.sigm_histo_files[1], "p/name.res/name.vb");
    EXPECT_EQ(set.sigm_histo_files[2], "p/name.res/name.vc");
    EXPECT_EQ(set.sigm_histo_files[3], "p/name.res/name.vd");
}

/// Console and counters of a test, put back at its end.
class SettingsProgress : public testing::Test {
protected:
    SettingsProgress()
        : silent_(silentTovenia, false),
          to_do_(settings::global_work_to_do, 0.0),
          done_(settings::global_work_done, 0.0),
          message_(settings::message, std::string()),
          old_(settings::old_message, std::string()),
          console_(std::cout.rdbuf(text_.rdbuf())) {}
    ~SettingsProgress() override { std::cout.rdbuf(console_); }

    std::string show(std::string const& message) {
        text_.str("");
        settings::set_message(message);
        settings::print_message();
        return text_.str();
    }

private:
    ScopedSwap<bool> silent_;
    ScopedSwap<double> to_do_;
    ScopedSwap<double> done_;
    ScopedSwap<std::string> message_;
    ScopedSwap<std::string> old_;
    std::ostringstream text_;
    std::streambuf* console_;
};

TEST_F(SettingsProgress, ShowsTheMessageAloneWhenTheWorkIsUnknown) { EXPECT_EQ(show("Reading..."), "Reading...\n"); }

TEST_F(SettingsProgress, ShowsARepeatedMessageOnce) {
    EXPECT_EQ(show("Reading..."), "Reading...\n");
    EXPECT_EQ(show("Reading..."), "");
    EXPECT_EQ(show("Testing..."), "Testing...\n");
    EXPECT_EQ(show("Reading..."), "Reading...\n");
}

TEST_F(SettingsProgress, PutsThePercentageRoundedTowardsZeroInFront) {
    settings::set_to_do_work(300.0);
    settings::set_work_done(200.0);
    EXPECT_EQ(show("Testing..."), "66% : Testing...\n");
    EXPECT_EQ(show("Testing..."), "");
    settings::inc_work_done(1.0);
    EXPECT_EQ(show("Testing..."), "67% : Testing...\n");
    EXPECT_EQ(settings::message, "Testing...");
}

TEST_F(SettingsProgress, LimitsThePercentageTo100) {
    settings::set_to_do_work(1.0);
    settings::set_work_done(7.0);
    EXPECT_EQ(show("End"), "100% : End\n");
    settings::set_work_done(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(show("End"), "0% : End\n");
    settings::add_to_do_work(13.0);
    settings::set_work_done(7.0);
    EXPECT_EQ(settings::to_do_work(), 14.0);
    EXPECT_EQ(show("End"), "50% : End\n");
}

TEST_F(SettingsProgress, ShowsNothingInSilentMode) {
    silentTovenia = true;
    EXPECT_EQ(show("Reading..."), "");
    EXPECT_EQ(settings::old_message, "");
}

}  // namespace
}  // namespace tov
