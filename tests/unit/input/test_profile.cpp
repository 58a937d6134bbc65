// The profile: defaults, the reader by stream, and the writer.
#include <gtest/gtest.h>

#include <sstream>

#include "input/profile.h"
#include "support/fresh_process.h"

namespace tov {
namespace {

using test::FreshProcess;

bool has(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

TEST(Profile, DefaultsOfANewProject) {
    ProfileSettings p;
    p.DataType = DNA;
    p.NbSamples = 3;
    p.LocusSeparator = 0;
    p.GivenDistMat = 0;
    p.RecessiveAllele = "x";
    p.initialize();
    EXPECT_EQ(p.title, "");
    EXPECT_EQ(p.NbSamples, 0);
    EXPECT_EQ(p.NbGroups, 0);
    EXPECT_EQ(p.DataType, STANDARD);
    EXPECT_EQ(p.GenotypicData, 0);
    EXPECT_EQ(p.GameticPhase, 1);
    EXPECT_EQ(p.LocusSeparator, ' ');
    EXPECT_EQ(p.RecessiveData, 0);
    EXPECT_EQ(p.RecessiveAllele, "null");
    EXPECT_EQ(p.MissingData, '?');
    EXPECT_EQ(p.Frequency, 0);
    EXPECT_EQ(p.FrequencyThreshold, 1e-5);
    EXPECT_EQ(p.EpsilonValue, 1e-7);
    EXPECT_EQ(p.UsedHaplList, "NONE");
    EXPECT_EQ(p.GivenDistMat, 1);
}

TEST(Profile, DataTypesHaveTheirNumbersAndNames) {
    EXPECT_EQ(static_cast<int>(DNA), 0);
    EXPECT_EQ(static_cast<int>(FREQUENCY), 4);
    EXPECT_STREQ(data_type_name(DNA), "DNA");
    EXPECT_STREQ(data_type_name(RFLP), "RFLP");
    EXPECT_STREQ(data_type_name(MICROSAT), "MICROSAT");
    EXPECT_STREQ(data_type_name(STANDARD), "STANDARD");
    EXPECT_STREQ(data_type_name(FREQUENCY), "FREQUENCY");
    EXPECT_STREQ(data_type_name(static_cast<TDataType>(9)), "");
}

TEST(ProfileStream, ReadsEveryKey) {
    FreshProcess fresh;
    std::istringstream is(
        "# head\n[Profile]\n Title=\"My data\"\n NbSamples = 12\n NbGroups=3\n DataType=microsat\n GenotypicData=1\n"
        " GameticPhase=0\n LocusSeparator=TAB\n RecessiveData=1\n RecessiveAllele=\"no ne\"\n MissingData='-'\n"
        " Frequency=REL\n FrequencyThreshold=1e-4\n EpsilonValue=1e-6\n CompDistMatrix=1\n NbLoci=7\n Interleave=1\n"
        " LocusListing=ONE_BY_ONE\n IndividualLevel=1\n DistMatLabel=\"dm\"\n UsedHaplList=\"list\"\n"
        " ExtHaplFile=\"file\"\n LociLabels= A B C\n[Data]\n");
    ProfileSettings p;
    EXPECT_EQ(p.get_profile_settings(is), 1);
    EXPECT_EQ(p.title, "My data");
    EXPECT_EQ(p.NbSamples, 12);
    EXPECT_EQ(p.NbGroups, 3);
    EXPECT_EQ(p.DataType, MICROSAT);
    EXPECT_EQ(p.GenotypicData, 1);
    EXPECT_EQ(p.GameticPhase, 0);
    EXPECT_EQ(p.LocusSeparator, '\t');
    EXPECT_EQ(p.RecessiveData, 1);
    EXPECT_EQ(p.RecessiveAllele, "none");
    EXPECT_EQ(p.MissingData, '-');
    EXPECT_EQ(p.Frequency, 1);
    EXPECT_EQ(p.FrequencyThreshold, 1e-4);
    EXPECT_EQ(p.EpsilonValue, 1e-6);
    EXPECT_EQ(p.GivenDistMat, 0);
    EXPECT_EQ(p.NbLoci, 7);
    EXPECT_EQ(p.Interleave, 1);
    EXPECT_EQ(p.LocusListing, ONE_BY_ONE);
    EXPECT_EQ(p.IndividualLevel, 1);
    EXPECT_EQ(p.DistMatLabel, "dm");
    EXPECT_EQ(p.UsedHaplList, "list");
    EXPECT_EQ(p.ExtHaplFile, "file");
    ASSERT_EQ(p.LociLabels.GetItemsInContainer(), 3);
    EXPECT_EQ(p.LociLabels[2], "C");
    EXPECT_EQ(fresh.log(), "");
    EXPECT_EQ(is.get(), '[');
}

TEST(ProfileStream, LocusSeparatorForms) {
    struct Case {
        char const* text;
        char expected;
    };
    for (Case const& c : {Case{"NONE", '\0'}, Case{"\"\\0\"", '\0'}, Case{"WHITESPACE", ' '}, Case{"'/'", '/'},
                          Case{"\";\"", ';'}, Case{"TAB", '\t'}}) {
        std::istringstream is(std::string("[Profile]\nLocusSeparator=") + c.text + "\n");
        ProfileSettings p;
        EXPECT_EQ(p.get_profile_settings(is), 1);
        EXPECT_EQ(p.LocusSeparator, c.expected) << c.text;
    }
}

TEST(ProfileStream, WithoutTheSectionNothingIsRead) {
    FreshProcess fresh;
    std::istringstream is("NbSamples=3\n");
    ProfileSettings p;
    EXPECT_EQ(p.get_profile_settings(is), 0);
    EXPECT_EQ(p.NbSamples, 0);
    EXPECT_TRUE(has(fresh.log(), "unable to find section in profile"));
}

TEST(ProfileStream, BadValuesReportTheirMessageAndTakeTheDefault) {
    struct Case {
        char const *key, *message;
    };
    for (Case const& c :
         {Case{"Title=?", "unable to read project \"Title\""}, Case{"NbSamples=x", "invalid value for \"NbSamples\""},
          Case{"NbGroups=x", "invalid value for \"NbGroups\""},
          Case{"GenotypicData=2", "invalid value assigned to \"GenotypicData: setting to default\""},
          Case{"GameticPhase=x", "invalid value for \"GameticPhase\": setting to default"},
          Case{"DataType=RNA", "invalid value assigned to \"DataType\": setting to default"},
          Case{"LocusListing=x", "invalid value for \"LocusListing\": setting to default"},
          Case{"NbLoci=x", "invalid value for \"NbLoci\": setting to default"},
          Case{"Interleave=7", "invalid value for \"Interleave\": setting to default"},
          Case{"LocusSeparator=xy", "invalid value for \"LocusSeparator\": setting to default"},
          Case{"MissingData=?", "missing value for \"MissingData\": setting to default"},
          Case{"UsedHaplList=?", "missing value for \"UsedHaplList\": setting to default"},
          Case{"IndividualLevel=x", "invalid value for \"IndividualLevel\": setting to default"},
          Case{"Frequency=x", "invalid value for \"Frequency\": setting to default"},
          Case{"RecessiveAllele=\" \"", "invalid recessive allele, switching off recessive data"},
          Case{"FrequencyThreshold=x", "invalid frequency threshold value, restoring default (1e-5)"},
          Case{"EpsilonValue=x", "invalid epsilon value, restoring default (1e-7)"},
          Case{"LociLabels=", "missing loci labels"}, Case{"Nonsense=1", "invalid keyword in section [Profile]"}}) {
        FreshProcess fresh;
        std::istringstream is(std::string("[Profile]\n") + c.key + "\n");
        ProfileSettings p;
        EXPECT_EQ(p.get_profile_settings(is), 1);
        EXPECT_TRUE(has(fresh.log(), c.message)) << c.key << " gave " << fresh.log();
        EXPECT_EQ(p.DataType, STANDARD);
        EXPECT_EQ(p.GameticPhase, 1);
        EXPECT_EQ(p.LocusSeparator, ' ');
        EXPECT_EQ(p.FrequencyThreshold, 1e-5);
        EXPECT_EQ(p.EpsilonValue, 1e-7);
    }
}

TEST(Profile, IsWrittenInProjectFileForm) {
    ProfileSettings p;
    p.title = "My data";
    p.NbSamples = 2;
    p.DataType = RFLP;
    p.LocusSeparator = 0;
    std::ostringstream os;
    os << p;
    EXPECT_EQ(os.str(),
              "# Project definition generated by Tovenia \n\n\n[Profile]\n\tTitle=\"My data\"\n\tNbSamples=2\n"
              "\tDataType=RFLP\n\tGenotypicData=0\n\tGameticPhase=1\n\tLocusSeparator=NONE\n\tRecessiveData=0\n"
              "\tRecessiveAllele=\"null\"\n\tMissingData='?'\n\tFrequency=ABS\n\tFrequencyThreshold=1e-05\n"
              "\tEpsilonValue=1e-07\n\n[Data]\n");
}

TEST(Profile, WhatIsWrittenCanBeRead) {
    ProfileSettings p, back;
    p.title = "x";
    p.DataType = MICROSAT;
    p.GenotypicData = 1;
    p.LocusSeparator = '/';
    p.MissingData = '-';
    p.Frequency = 1;
    std::stringstream file;
    file << p;
    EXPECT_EQ(back.get_profile_settings(file), 1);
    EXPECT_EQ(back.title, "x");
    EXPECT_EQ(back.DataType, MICROSAT);
    EXPECT_EQ(back.GenotypicData, 1);
    EXPECT_EQ(back.LocusSeparator, '/');
    EXPECT_EQ(back.MissingData, '-');
    EXPECT_EQ(back.Frequency, 1);
    EXPECT_EQ(back.EpsilonValue, 1e-7);
}

}  // namespace
}  // namespace tov
