// Heads of the project files that the program writes.
#include <gtest/gtest.h>

#include <sstream>

#include "input/profile.h"
#include "output/tovenia_files.h"

namespace tov {
namespace {

TEST(ProjectFileHead, OfSimulatedSamplesHasUnknownPhase) {
    std::ostringstream out;
    write_Tovenia_header(12, DNA, out);
    EXPECT_EQ(out.str(),
              "\n[Profile]\n"
              "\tTitle=\"A series of simulated samples\"\n"
              "\tNbSamples=12\n"
              "\tGenotypicData=1\n"
              "\tGameticPhase=0\n"
              "\tRecessiveData=0\n"
              "\tDataType=DNA\n"
              "\tLocusSeparator=NONE\n"
              "\tMissingData='?'\n"
              "\n[Data]\n"
              "\t[[Samples]]\n\n");
}

TEST(ProjectFileHead, OfInferredPhasesHasItsTitleAndKnownPhase) {
    std::ostringstream out;
    write_Tovenia_header_gibbs("Phases of A", 1, MICROSAT, out);
    EXPECT_EQ(out.str(),
              "\n[Profile]\n"
              "\tTitle=\"Phases of A\"\n"
              "\tNbSamples=1\n"
              "\tGenotypicData=1\n"
              "\tGameticPhase=1\n"
              "\tRecessiveData=0\n"
              "\tDataType=MICROSAT\n"
              "\tLocusSeparator=TAB\n"
              "\tMissingData='?'\n"
              "\n[Data]\n"
              "\t[[Samples]]\n\n");
}

TEST(ProjectFileHead, NamesTheSeparatorOfEachKindOfData) {
    struct {
        TDataType type;
        char const* line;
    } const expected[] = {{DNA, "\tDataType=DNA\n\tLocusSeparator=NONE\n\tM"},
                          {RFLP, "\tDataType=RFLP\n\tLocusSeparator=NONE\n\tM"},
                          {MICROSAT, "\tDataType=MICROSAT\n\tLocusSeparator=TAB\n\tM"},
                          {STANDARD, "\tDataType=STANDARD\n\tLocusSeparator=TAB\n\tM"},
                          {FREQUENCY, "\tDataType=FREQUENCY\n\tMissingData"}};
    for (auto const& row : expected) {
        std::ostringstream out;
        write_Tovenia_header(1, row.type, out);
        EXPECT_NE(out.str().find(row.line), std::string::npos) << out.str();
    }
}

TEST(ProjectFileHead, SampleFrames) {
    std::ostringstream out;
    write_Tovenia_sample_header(3, 24, out);
    write_Tovenia_sample_footer(out);
    EXPECT_EQ(out.str(), "\t\tSampleName=\"Sample 3\"\n\t\tSampleSize=24\n\t\tSampleData= {\n\n\t\t}");
    out.str("");
    write_Tovenia_sample_header_gibbs("North", 24, out);
    write_Tovenia_sample_footer_gibbs(out);
    EXPECT_EQ(out.str(), "\t\tSampleName=\"North\"\n\t\tSampleSize=24\n\t\tSampleData= {\n\n\t\t}");
}

}  // namespace
}  // namespace tov
