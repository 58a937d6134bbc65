#include <gtest/gtest.h>

#include "translate/phylip.h"
#include "translate_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

std::string phylip_project(std::string const& text) {
    return project_of(text, [](std::istream& in, std::ostream& out) { phylip_to_project(in, out); });
}

constexpr char head[] =
    "[Profile]\n\t Title=\"File translated from  PHYLIP\"\n\t NbSamples=1\n\t GenotypicData=0\n\t MissingData=\"?\"\n"
    "\t DataType=STANDARD\n";
constexpr char letters[] = "\t LocusSeparator=NONE\n[Data]\n\t [[Samples]]\n\t\t SampleName= \"Population1\"\n";

}  // namespace

TEST(PhylipReader, ReadsOneLineATaxon) {
    std::string const project = phylip_project(" 2 12\nHomo sapieACGTACGTAC-?\nPan       ACGTACGTACGT\n");
    EXPECT_EQ(project, std::string(head) + letters +
                           "\t\t SampleSize= 2\n\t\t SampleData={\n\t\t\tHomosapie 1 ACGTACGTAC-?\n"
                           "\t\t\tPan 1 ACGTACGTACGT\n     }\n");
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(PhylipReader, ReadsInterleavedSequentialAndGroupedLinesAlike) {
    std::string const expected = "\t\t\tA 1 AAAACCCCGGGG\n\t\t\tB 1 AAAACCCCGGTT\n     }\n";
    for (char const* text : {
             "2 12\nA         AAAACCCCGGGG\nB         AAAACCCCGGTT\n",        // one line
             "2 12\nA         AAAA CCCC GGGG\nB         AAAA CCCC GGTT\n",    // in groups
             "2 12\nA         AAAACC\nB         AAAACC\n\nCCGGGG\nCCGGTT\n",  // interleaved, two blocks
             "2 12 I\r\nA         AAAA\r\nB         AAAA\r\n\r\nCCCC\r\nCCCC\r\nGGGG\r\nGGTT\r\n",  // three
             "2 12\nA         AAAACC\nCCGGGG\nB         AAAACC\nCCGGTT\n",                          // taxon after taxon
             "2 12\nA         \n  AAAACCCC\n  GGGG\nB         A\nAAACCCCGGTT\n",  // names alone, uneven lines
         }) {
        std::string const project = phylip_project(text);
        EXPECT_TRUE(project.ends_with(expected)) << text << project;
        EXPECT_TRUE(reads_cleanly(project)) << text;
    }
}

TEST(PhylipReader, WordsAreLociWhenTheirNumberFits) {
    std::string const project = phylip_project("2 3\nA         101 12 7\nB         103 ? 7\n");
    EXPECT_TRUE(holds(project, "\t LocusSeparator=WHITESPACE\n"));
    EXPECT_TRUE(holds(project, "\t\t\tA 1 101 12 7\n\t\t\tB 1 103 ? 7\n"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(PhylipReader, CutsSequencesAtTheDeclaredNumber) {
    std::string const project = phylip_project("2 4\nA         ACGT\nB         ACGTTT\n");
    EXPECT_TRUE(holds(project, "\t\t\tA 1 ACGT\n\t\t\tB 1 ACGT\n"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(PhylipReader, RepeatedAndMissingNamesGetNumbers) {
    std::string const project = phylip_project("3 4\nA         ACGT\nA         ACGA\n          ACGC\n");
    EXPECT_TRUE(holds(project, "\t\t\tA 1 ACGT\n\t\t\tA_2 1 ACGA\n\t\t\tTaxon3 1 ACGC\n"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(PhylipReader, ShortSequencesAndMissingTaxaMakeTheProjectFail) {
    EXPECT_TRUE(holds(phylip_project("2 8\nA         ACGTACGT\nB         ACG\n"),
                      "# error: B has 3 characters instead of 8\n ***** ERROR *****\n"));
    EXPECT_TRUE(holds(phylip_project("3 4\nA         ACGT\nB         ACGT\n"),
                      "# error: 3 taxa are declared, and 2 found\n ***** ERROR *****\n"));
    EXPECT_TRUE(fails_when_read(phylip_project("2 8\nA         ACGTACGT\nB         ACG\n")));
    EXPECT_TRUE(fails_when_read(phylip_project("3 4\nA         ACGT\nB         ACGT\n")));
    EXPECT_TRUE(fails_when_read(phylip_project("1 4\nA         AC}T\n")));
}

TEST(PhylipReader, EmptyAndGarbageFilesGiveProjectsThatFail) {
    for (char const* text :
         {"", "\n", "x y\n", "2\nA         ACGT\n", "0 0\nA         ACGT\n", "-2 4\nA         ACGT\n",
          "99999999999999999999999 4\nA         ACGT\n", "1000000000 1000000000\nA         ACGT\n"})
        EXPECT_TRUE(fails_when_read(phylip_project(text))) << text;
}

TEST(PhylipReader, EveryProperBeginningOfAFileFails) {
    std::string const text = "3 8\nA         ACGT\nB         ACGA\nC         ACGC\n\nTTTT\nGGGG\nCCCC";
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_TRUE(fails_when_read(phylip_project(text.substr(0, length)))) << length;
    EXPECT_TRUE(reads_cleanly(phylip_project(text)));
}

TEST(PhylipWriter, WritesEveryCopyBehindANameOfTenColumns) {
    Export one;
    EXPECT_EQ(one.write(imp_exp::phylip,
                        profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "3", "Sequence17 2 ACGT\nb 1 AC-?\n")),
              "3 4\nSequen1   ACGT\nSequen2   ACGT\nb3        AC-?\n");
    EXPECT_FALSE(holds(one.fresh.log(), "merged"));
}

TEST(PhylipWriter, TellsWhatItMerges) {
    Export two;
    std::string const text = genotypic_profile_text("DNA", 2, "NONE") + "[[Samples]]\n" +
                             sample_text("S", "1", "i1 1 ACGT\nACGA\n") + sample_text("T", "2", "i2 2 ACGT\nTCGA\n");
    EXPECT_EQ(two.write(imp_exp::phylip, text),
              "6 4\ni11       ACGT\ni12       ACGA\ni23       ACGT\ni24       TCGA\ni25       ACGT\ni26       TCGA\n");
    EXPECT_TRUE(holds(two.fresh.log(),
                      "  As it is not possible to convert files containing more than one population\n"
                      "  into PHYLIP format, original population samples have been merged into \n"
                      "  a single population.\n"));
    EXPECT_TRUE(holds(two.fresh.log(),
                      "  The original data was of genotypic type and PHYLIP accepts only\n"
                      "  haplotypic data. We have therefore made two dummy haplotypes with each\n"
                      "  genotype.\n"));
}

TEST(PhylipWriter, ASerialNumberOfFiveDigitsLeavesLessOfTheName) {
    std::string const out = Export().write(
        imp_exp::phylip, profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "10001", "Sequence 10001 ACGT\n"));
    EXPECT_TRUE(holds(out, "\nSequen9999ACGT\nSeque10000ACGT\nSeque10001ACGT\n"));
}

TEST(PhylipRoundTrip, SequencesComeBackIdentical) {
    std::string const words = profile_text("MICROSAT", 1, "WHITESPACE", "") + "[[Samples]]\n" +
                              sample_text("S", "2", "h1 1 100 ? 30\nh2 1 102 21 30\n");
    std::string const again = phylip_project(Export().write(imp_exp::phylip, words));
    EXPECT_TRUE(holds(again, "h11 1 100 ? 30\n\t\t\th22 1 102 21 30\n"));
    EXPECT_TRUE(reads_cleanly(again));

    std::string const sites =
        profile_text("STANDARD") + "[[Samples]]\n" + sample_text("S", "2", "h1 1 aB?-*\nh2 1 aC?-.\n");
    EXPECT_TRUE(holds(phylip_project(Export().write(imp_exp::phylip, sites)), "h11 1 aB?-*\n\t\t\th22 1 aC?-.\n"));
}

TEST(PhylipWriter, WritesAQuestionMarkForTheProjectsOwnSign) {
    std::string text = profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "2", "h1 1 ACNT\nh2 1 ACGT\n");
    text.replace(text.find("'?'"), 3, "'N'");
    EXPECT_TRUE(holds(Export().write(imp_exp::phylip, text), "AC?T\n"));
}
