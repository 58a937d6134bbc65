// The keys of a project, the order of its sections, and what it lacks.
#include <gtest/gtest.h>

#include "input/settings.h"
#include "run/project.h"
#include "support/project_text.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::profile_text;
using test::ProjectText;
using test::sample_text;
using test::ScratchDirectory;

std::string const one_sample = "[[Samples]]\nSampleName=\"a\"\nSampleSize=1\nSampleData={\nH1 1 1\n}\n";

/// A valid project of standard data with a line more in its profile (line 7).
std::string with_key(std::string const& key) {
    return "[Profile]\nNbSamples=1\nDataType=STANDARD\nGenotypicData=0\nLocusSeparator=WHITESPACE\nMissingData='?'\n" +
           key + "\n[Data]\n" + one_sample;
}

TEST(ProjectKeys, AreFoundInAnyCase) {
    ProjectText const t(
        "[profile]\n title = \"My # title\"\nTITLE='My title'\nnbsamples = 1\nDataType=microsat\ngenotypicdata=0\n"
        "GAMETICPHASE=0\nlocusseparator=tab\nrecessivedata=1\nrecessiveallele=\"99 9\"\nmissingdata=\"-\"\n"
        "frequency=rel\nfrequencythreshold=1e-3\nepsilonvalue=1e-4\n[DATA]\n[[samples]]\nsamplename=\"a\"\n"
        "samplesize=2\nsampledata={\nH1 1.0 12 999 -\n}\n");
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("Line #2 : Opened quote not closed after keyword 'Title'"));
    EXPECT_EQ(t.profile.title, "My title");
    EXPECT_EQ(t.profile.DataType, MICROSAT);
    EXPECT_EQ(t.profile.GameticPhase, 0);
    EXPECT_EQ(t.profile.RecessiveData, 1);
    EXPECT_EQ(t.profile.RecessiveAllele, "999");
    EXPECT_EQ(t.profile.MissingData, '-');
    EXPECT_EQ(t.profile.Frequency, 1);
    EXPECT_EQ(t.profile.FrequencyThreshold, 1e-3);
    EXPECT_EQ(t.profile.EpsilonValue, 1e-4);
    EXPECT_EQ(t.haplotypes[0].content, "12 999 -");
}

TEST(ProjectKeys, LocusSeparatorForms) {
    struct Case {
        char const* value;
        char expected;
    };
    for (Case const& c : {Case{"NONE", '\0'}, Case{"\\0", '\0'}, Case{"TAB", '\t'}, Case{"WHITESPACE", ' '},
                          Case{"'/'", '/'}, Case{"\" ; \"", ';'}, Case{"' '", ' '}}) {
        ProfileSettings profile;
        SeenItems seen;
        EXPECT_EQ(read_profile_line(profile, seen, std::string("LocusSeparator=") + c.value, 1), KeyResult::done);
        EXPECT_EQ(profile.LocusSeparator, c.expected) << c.value;
        EXPECT_TRUE(seen.locus_separator);
    }
}

TEST(ProjectKeys, DataTypesAreFoundByContainment) {
    for (int type = DNA; type <= FREQUENCY; ++type) {
        ProfileSettings profile;
        SeenItems seen;
        std::string const name = data_type_name(static_cast<TDataType>(type));
        read_profile_line(profile, seen, "DataType= " + name + " data", 1);
        EXPECT_EQ(profile.DataType, type);
    }
}

TEST(ProjectKeys, FrequencyThresholdIsNotTakenForFrequency) {
    ProfileSettings profile;
    SeenItems seen;
    read_profile_line(profile, seen, "FrequencyThreshold=1e-3", 1);
    EXPECT_EQ(profile.Frequency, 0);
    EXPECT_EQ(profile.FrequencyThreshold, 1e-3);
    read_profile_line(profile, seen, "Frequency=REL", 1);
    EXPECT_EQ(profile.Frequency, 1);
    EXPECT_EQ(profile.FrequencyThreshold, 1e-3);
}

TEST(ProjectKeys, TheFirstWordOfTheOrderDecides) {
    ProfileSettings profile;
    SeenItems seen;
    // kept on purpose: a name that holds an earlier word is taken for that key
    read_profile_line(profile, seen, "HaplListName=\"my title\"", 1);
    EXPECT_EQ(profile.title, "my title");
    EXPECT_EQ(read_profile_line(profile, seen, "Nothing of all this", 1), KeyResult::not_mine);
}

TEST(ProjectKeys, BadValuesReportAndTakeTheDefault) {
    struct Case {
        char const *key, *report, *line;
    };
    for (Case const& c : {
             Case{"Title=none", "bad value assigned to keyword in project file",
                  "Line #7 : No open quote after keyword 'Title'\n"},
             Case{"DataType=RNA", "\"ProfileSettings::read_DataType()\" : invalid value assigned to \"DataType\"", ""},
             Case{"GenotypicData=x", "invalid value assigned to \"GenotypicData: setting to default\"",
                  "Line #7 : Bad value after keyword 'GenotypicData'\n"},
             Case{"LocusSeparator='ab'", "invalid value for \"LocusSeparator\": setting to default",
                  "Line #7 : Invalid value ('ab\") assigned to keyword \"LocusSeparator\"\n"},
             Case{"LocusSeparator=/", "invalid value for \"LocusSeparator\": setting to default",
                  "Line #7 : No open quote after keyword 'LocusSeparator'\n"},
             Case{"GameticPhase=x", "invalid value for \"GameticPhase\": setting to default",
                  "Line #7 : Bad value after keyword 'GameticPhase'\n"},
             Case{"RecessiveData=x", "bad value assigned to keyword in project file",
                  "Line #7 : Bad value after keyword 'RecessiveData'\n"},
             Case{"RecessiveAllele=\" \"", "invalid recessive allele, switching off recessive data",
                  "Line #7 : Invalid value (\"\") assigned to keyword \"RecessiveAllele\"\n"},
             Case{"MissingData='xy'", "missing value for \"MissingData\": setting to default",
                  "Line #7 : Invalid value ('xy\") assigned to keyword \"MissingData\"\n"},
             Case{"Frequency=PERCENT", "invalid value for \"Frequency\": setting to default",
                  "Line #7 : Invalid value ('PERCENT\") assigned to keyword \"Frequency\"\n"},
             Case{"CompDistMatrix=1", "",
                  "\tProject file, Line #7 : Keyword \"CompDistMatrix\" is now obsolete. Please set this parameter "
                  "directly "
                  "throug the interface\n"},
             Case{"FrequencyThreshold=x", "", "Line #7 : Bad value after keyword 'FrequencyThreshold'\n"},
             Case{"EpsilonValue=1e999", "", "Line #7 : Bad value after keyword 'EpsilonValue'\n"},
             Case{"Title \"x\"", "missing '=' sign in keyword definition in project file",
                  "Line #7 : Missing equal sign after keyword 'Title'\n"},
         }) {
        ProjectText const t(with_key(c.key));
        EXPECT_EQ(t.result, 1) << c.key << " gave " << t.log;
        EXPECT_TRUE(t.logs(c.report)) << c.key << " gave " << t.log;
        EXPECT_TRUE(t.logs(c.line)) << c.key << " gave " << t.log;
        EXPECT_EQ(t.profile.DataType, STANDARD);
        EXPECT_EQ(t.profile.GenotypicData, 0);
        EXPECT_EQ(t.profile.GameticPhase, 1);
        EXPECT_EQ(t.profile.LocusSeparator, ' ');
        EXPECT_EQ(t.profile.RecessiveData, 0);
        EXPECT_EQ(t.profile.MissingData, '?');
        EXPECT_EQ(t.profile.Frequency, 0);
        EXPECT_EQ(t.profile.FrequencyThreshold, 1e-5);
        EXPECT_EQ(t.profile.EpsilonValue, 1e-7);
    }
}

TEST(ProjectKeys, ABadNumberOfSamplesStopsTheReading) {
    ProjectText const t("[Profile]\nNbSamples=x\nDataType=DNA\n[Data]\n" + one_sample);
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.logs("invalid value for \"NbSamples\""));
    EXPECT_TRUE(t.logs("\tKeyword \"NbSamples\" not found."));
    EXPECT_TRUE(t.logs("\tKeyword \"DataType\" not found."));  // it stands behind the fault
    EXPECT_EQ(t.samples.NbPopulations(), 0);
}

TEST(ProjectKeys, ACommentHidesAKey) {
    ProjectText const t("[Profile]\n# NbSamples=5\nDataType=DNA # RFLP\n");
    EXPECT_EQ(t.profile.NbSamples, 0);
    EXPECT_EQ(t.profile.DataType, DNA);
}

TEST(Project, UnknownLinesAndEmptyOnesArePassedOver) {
    ProjectText const t(with_key("\n  \nColour=blue\nhapllabels=\"a\""));
    EXPECT_EQ(t.result, 1) << t.log;
}

TEST(Project, AnEmptyFileLacksEverything) {
    ProjectText const t("");
    EXPECT_EQ(t.result, 0);
    for (char const* line :
         {"\t[PROFILE] section not defined. Check your project file.\n",
          "\tKeyword \"NbSamples\" not found. Undefined number of samples to read. Check your project file.\n",
          "\tKeyword \"DataType\" not found. Undefined data type. Check your project file.\n",
          "\tKeyword \"GenotypicData\" not found. Undefined data type. Check your project file.\n",
          "\tKeyword \"LocusSeparator\" not found. Check your project file.\n",
          "\tKeyword \"MissingData\" not found. Using default value (\"?\"). Check your project file.\n",
          "\t[DATA] section not defined. Check your project file.\n",
          "\tSection \"Samples\" not found in project. At least one sample needs to be defined. Check your project "
          "file.\n",
          "\tKeyword \"SampleSize\" not found in Samples section. Sample size is undefined.\n"
          "\t\tUsing sum of haplotype frequencies. Check your project file.\n",
          "\tKeyword \"SampleData\" not found in Samples section. Sample data is undefined. Check your project "
          "file.\n"})
        EXPECT_TRUE(t.logs(line)) << line;
    EXPECT_TRUE(t.logs("\"Project::newOpen()\" : missing required keywords definition in project file"));
    for (char const* absent : {"GameticPhase", "RecessiveAllele", "HaplList", "MatrixSize", "Structure", "Mantel"})
        EXPECT_FALSE(t.logs(absent)) << absent;
}

TEST(Project, BinaryGarbageLacksEverything) {
    std::string garbage;
    unsigned state = 12345;
    for (int i = 0; i < 100000; ++i) {
        state = state * 1664525u + 1013904223u;
        garbage += static_cast<char>(state >> 24);
    }
    ProjectText const t(garbage);
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.logs("\t[PROFILE] section not defined."));
}

TEST(Project, EachMissingItemIsTold) {
    std::string const whole =
        "[Profile]\nNbSamples=1\nDataType=STANDARD\nGenotypicData=1\nGameticPhase=0\nLocusSeparator=WHITESPACE\n"
        "RecessiveData=1\nRecessiveAllele=\"0\"\nMissingData='?'\n[Data]\n[[Samples]]\nSampleName=\"a\"\nSampleSize=1\n"
        "SampleData={\ni1 1 A B\nA A\n}\n";
    EXPECT_EQ(ProjectText(whole).result, 1);
    struct Case {
        char const *removed, *message;
        int result;
    };
    for (Case const& c :
         {Case{"[Profile]", "\t[PROFILE] section not defined.", 0},
          Case{"GenotypicData=1", "\tKeyword \"GenotypicData\" not found. Undefined data type.", 0},
          Case{"GameticPhase=0",
               "\tKeyword \"GameticPhase\" not found. Undefined gametic phase for genotypic data. Check your project "
               "file.\n",
               0},
          Case{"LocusSeparator=WHITESPACE", "\tKeyword \"LocusSeparator\" not found. Check your project file.\n", 0},
          Case{"DataType=STANDARD", "\tKeyword \"DataType\" not found.", 0},
          Case{"RecessiveAllele=\"0\"",
               "\tKeyword \"RecessiveAllele\" not found. Undefined recessive allele for recessive data. \t\tUsing "
               "default "
               "value (null). Check your project file.\n",
               1},
          Case{"MissingData='?'", "\tKeyword \"MissingData\" not found. Using default value (\"?\").", 1},
          Case{"[Data]", "\t[DATA] section not defined. Check your project file.\n", 0},
          Case{"SampleSize=1",
               "\tKeyword \"SampleSize\" not found in Samples section. Sample size is undefined.\n\t\tUsing sum of "
               "genotype frequencies. Check your project file.\n",
               1}}) {
        std::string text = whole;
        text.erase(text.find(c.removed), std::string(c.removed).size());
        ProjectText const t(text);
        EXPECT_EQ(t.result, c.result) << c.removed << " gave " << t.log;
        EXPECT_TRUE(t.logs(c.message)) << c.removed << " gave " << t.log;
        EXPECT_EQ(t.logs("missing required keywords"), c.result == 0) << c.removed;
    }
}

TEST(Project, MissingItemsOfSectionsAreTold) {
    ProjectText const list(profile_text("DNA") + "[[HaplotypeDefinition]]\n[[Samples]]\n" +
                           sample_text("a", "1", "H1 1 A\n"));
    EXPECT_EQ(list.result, 0);
    EXPECT_TRUE(
        list.logs("\tKeyword \"HaplList\" not found in Haplotype section. Haplotype list not found. Check your "
                  "project file.\n"));
    ProjectText const matrix(profile_text("DNA") + "[[DistanceMatrix]]\n[[Samples]]\n" +
                             sample_text("a", "1", "H1 1 A\n"));
    EXPECT_EQ(matrix.result, 0);
    EXPECT_TRUE(
        matrix.logs("\tKeyword \"MatrixSize\" not found in Distance Matrix section.Check your project file.\n"));
    EXPECT_TRUE(
        matrix.logs("\tKeyword \"MatrixData\" not found in Distance Matrix section. Distance matrix is undefined. "
                    "Check your project file.\n"));
    ProjectText const data(profile_text("DNA") + "[[Samples]]\nSampleName=\"a\"\nSampleSize=1\n");
    EXPECT_EQ(data.result, 0);
    EXPECT_TRUE(data.logs("\tKeyword \"SampleData\" not found in Samples section."));
}

TEST(Project, SectionsHaveTheirOrder) {
    struct Case {
        std::string text, message;
    };
    std::string const profile = "[Profile]\nNbSamples=1\nDataType=DNA\nGenotypicData=0\nLocusSeparator=NONE\n";
    for (Case const& c :
         {Case{profile + "[[HaplotypeDefinition]]\n[Data]\n",
               "\tProject file, Line #6 : HaplotypeDefinition keyword declared before the beginning of the 'Data' "
               "section...\n"},
          Case{profile + "[Data]\nHaplListName=\"x\"\n", "Line #7 : HaplListName keyword declared before"},
          Case{profile + "[Data]\nHaplList={\n}\n", "Line #7 : HaplList keyword declared before"},
          Case{profile + "[[DistanceMatrix]]\n[Data]\n",
               "\tProject file, Line #6 : DistanceMatrix keyword declared before the beginning of the 'Data' "
               "section..., "
               "aborting project reading!\n"},
          Case{profile + "[[Samples]]\n[Data]\n", "Line #6 : Samples keyword declared before"},
          Case{profile + "[Data]\n[[Structure]]\n" + one_sample,
               "[STRUCTURE] section defined before the [SAMPLES] section. Aborting reading project"}}) {
        ProjectText const t(c.text);
        EXPECT_EQ(t.result, 0);
        EXPECT_TRUE(t.logs(c.message)) << t.log;
    }
}

TEST(Project, HaplotypeListMayHaveABadNameOrAnExternalFile) {
    ScratchDirectory scratch;
    test::FreshProcess fresh;
    fresh.keep(settings::input_file, std::string("p.tvp"));
    scratch.write("h.txt", "H1 ACGT\nH2 ACGA\n");
    std::string const end = "[[Samples]]\n" + sample_text("a", "1", "H2 1\n");
    ProjectText const name(profile_text("DNA") + "[[HaplotypeDefinition]]\nHaplListName=x\nHaplList={\nH2 A\n}\n" +
                           end);
    EXPECT_EQ(name.result, 1) << name.log;
    EXPECT_TRUE(name.logs("bad value assigned to \"HaplListName\""));
    EXPECT_TRUE(name.logs("Reading Haplotype List ...\ndone ! ("));
    ProjectText const file(profile_text("DNA") + "[[HaplotypeDefinition]]\nHaplList= EXTERN \"h.txt\"\n" + end);
    EXPECT_EQ(file.result, 1) << file.log;
    EXPECT_TRUE(file.logs("\tReading haplotype list in external file \"h.txt\"\n"));
    EXPECT_EQ(file.haplotypes.size(), 2);
    ProjectText const absent(profile_text("DNA") + "[[HaplotypeDefinition]]\nHaplList= EXTERN \"g.txt\"\n" + end);
    EXPECT_EQ(absent.result, 0);
    EXPECT_TRUE(
        absent.logs("\tWarning: External file \"g.txt\" listed on line 10 cannot be open. Check that it exists. "
                    "Aborting reading project\n"));
    EXPECT_TRUE(absent.logs("unable to open external haplotype file"));
    ProjectText const unquoted(profile_text("DNA") + "[[HaplotypeDefinition]]\nHaplList= EXTERN h.txt\n" + end);
    EXPECT_EQ(unquoted.result, 0);
    EXPECT_TRUE(unquoted.logs("Line #10 : No open quote after keyword 'Extern haplotype list'\n"));
}

std::string frequency_project(std::string const& section) {
    return "[Profile]\nNbSamples=1\nDataType=FREQUENCY\nGenotypicData=0\n[Data]\n[[DistanceMatrix]]\n" + section +
           "[[Samples]]\n" + sample_text("a", "3", "H1 2\nH2 1\n");
}

TEST(Project, DistanceMatrixIsRead) {
    ProjectText const line(
        frequency_project("MatrixName=\"m\"\nMatrixSize=2\nLabelPosition=LINE\nMatrixData={\nH1 H2\n0\n"
                          "4 0\n}\n"));
    ASSERT_EQ(line.result, 1) << line.log;
    EXPECT_EQ(line.distances.name, "m");
    EXPECT_EQ(line.distances.nb_labels, 2);
    EXPECT_EQ(line.distances.dimension(), 2);
    EXPECT_EQ(line.distances(1, 0), 4.0);
    EXPECT_EQ(line.distances.labels[1], "H2");
    EXPECT_EQ(line.distances.profile.DataType, FREQUENCY);
    EXPECT_TRUE(line.logs("\tReading distance matrix ...\n\tdone ! ("));
    ProjectText const column(frequency_project("MatrixSize=2\nLabelPosition=COLUMN\nMatrixData={ H1 0\nH2 4 0 }\n"));
    ASSERT_EQ(column.result, 1) << column.log;
    EXPECT_EQ(column.distances.name, "undefined");
    EXPECT_EQ(column.distances.labels[0], "H1");
    ProjectText const standard(frequency_project("MatrixSize=2\nMatrixData={\nH1 H2\n0\n4 0\n}\n"));
    EXPECT_EQ(standard.result, 1) << standard.log;
}

TEST(Project, DistanceMatrixMayStandInAFile) {
    ScratchDirectory scratch;
    test::FreshProcess fresh;
    fresh.keep(settings::input_file, std::string("p.tvp"));
    scratch.write("m.dis", "H1 H2\n0\n5 0\n");
    ProjectText const t(frequency_project("MatrixSize=2\nMatrixData= EXTERN \"m.dis\"\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.distances(1, 0), 5.0);
    EXPECT_TRUE(t.logs("\tReading Distance Matrix in external file \"m.dis\"\n"));
    EXPECT_TRUE(t.logs("[INFO #"));
    ProjectText const absent(frequency_project("MatrixSize=2\nMatrixData= EXTERN \"n.dis\"\n"));
    EXPECT_EQ(absent.result, 0);
    EXPECT_TRUE(
        absent.logs("\tWarning: External file \"n.dis\" listed on line 8 cannot be open. Check that it exists. "
                    "Aborting reading project\n"));
    EXPECT_TRUE(absent.logs("unable to read external distance matrix file"));
}

TEST(Project, DistanceMatrixFaults) {
    struct Case {
        char const *section, *message, *report;
        int result;
    };
    for (Case const& c : {
             Case{"MatrixName=m\nMatrixSize=1\nMatrixData={\nH1\n0\n}\n",
                  "\tWarning: Unable to read MatrixName on line 7\n", "error while reading distance matrix", 1},
             Case{"MatrixSize=x\n", "\tWarning: Unable to read MatrixSize on line 7. Aborting project reading.\n",
                  "invalid value assigned to \"MatrixSize\"", 0},
             Case{"MatrixSize=0\n", "\tBad size (0)", "invalid value assigned to \"MatrixSize\"", 0},
             Case{"MatrixSize=-3\n", "\tBad size (-3)", "invalid value assigned to \"MatrixSize\"", 0},
             Case{"MatrixSize=1e8\n", "\tUnable to allocate memory for distance matrix \"100000000\"\n", "", 0},
             Case{"MatrixSize=65536\n", "\tUnable to allocate memory for distance matrix \"65536\"\n", "", 0},
             Case{"MatrixSize=65535\nMatrixData={\n",
                  "\tNo closing brace in distance matrix definition up to line 9. Aborting reading project.\n", "", 0},
             Case{"MatrixSize=2\nLabelPosition=TOP\n", "\tInvalid keyword for LabelPosition on line8\n",
                  "invalid value assigned to \"LabelPosition\"", 0},
             Case{"MatrixSize=2\nMatrixData={\nH1\n",
                  "\tMissing labels on line 9. Only 1 labels were found while 2 were expected.", "", 0},
             Case{"MatrixSize=2\nMatrixData={\nH1\n",
                  "\t\tProblems in reading DistanceMatrix section... aborting reading  project file.\n", "", 0},
             Case{"MatrixData={\nH1\n0\n}\n", "\tKeyword \"MatrixSize\" not found in Distance Matrix section.", "", 0},
         }) {
        ProjectText const t(frequency_project(c.section));
        EXPECT_EQ(t.result, c.result) << c.section << " gave " << t.log;
        EXPECT_TRUE(t.logs(c.message)) << c.section << " gave " << t.log;
        EXPECT_TRUE(t.logs(c.report)) << c.section << " gave " << t.log;
    }
}

TEST(Project, AMatrixBehindTheSamplesIsPassedOver) {
    ProjectText const t(profile_text("DNA") + "[[Samples]]\n" + sample_text("a", "1", "H1 1 A\n") +
                        "[[DistanceMatrix]]\nMatrixSize=x\n");
    EXPECT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.distances.nb_labels, 0);
}

TEST(Project, NoKeyChangesWhatTheSamplesWereReadWith) {
    ProjectText const t(profile_text("DNA", 1) + "[[Samples]]\n" + sample_text("a", "1", "H1 1 A\n") +
                        "[[Structure]] Title=\"x\"\nNbGroups=1\nGroup={\"a\"}\n[[Mantel]] [Samples] DataType=RFLP\n");
    EXPECT_EQ(t.result, 0);  // the Mantel section is empty
    EXPECT_EQ(t.profile.title, "t");
    EXPECT_EQ(t.profile.DataType, DNA);
    EXPECT_EQ(t.samples.NbPopulations(), 1);
    EXPECT_EQ(t.structure.population(0, 0), t.samples[0]);
}

TEST(Project, CarriageReturnsAndALastLineWithoutNewline) {
    std::string text = with_key("Title=\"x\"");
    std::string crlf;
    for (char const c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    crlf.erase(crlf.size() - 2);
    ProjectText const t(crlf);
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.haplotypes[0].content, "1");
    EXPECT_EQ(t.samples[0]->pop_name(), "a");
}

TEST(Project, NewOpenReadsTheInputFile) {
    ScratchDirectory scratch;
    test::FreshProcess fresh;
    fresh.keep(settings::input_file, std::string("p.tvp"));
    Project project;
    EXPECT_EQ(project.newOpen(), 0);
    EXPECT_NE(fresh.log().find("\"Project::newOpen()\" : unable to open project file"), std::string::npos);
    scratch.write("p.tvp", with_key("Title=\"x\""));
    project.distance_computed = 1;
    project.title = "old";
    EXPECT_EQ(project.open(), 1) << fresh.log();
    EXPECT_EQ(project.distance_computed, 0);
    EXPECT_EQ(project.title, "x");
    EXPECT_EQ(project.p_sam().NbPopulations(), 1);
    EXPECT_EQ(project.p_hdb().DataType, STANDARD);
    EXPECT_NE(fresh.log().find("Reading input file ...\n"), std::string::npos);
}

}  // namespace
}  // namespace tov
