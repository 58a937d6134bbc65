// The section [[Samples]]: haplotypes, genotypes, frequencies, external files, and every complaint.
#include <gtest/gtest.h>

#include <span>

#include "input/settings.h"
#include "support/project_text.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::genotypic_profile_text;
using test::profile_text;
using test::ProjectText;
using test::sample_text;
using test::ScratchDirectory;

// The profile is 8 lines long (genotypic: 9), "[[Samples]]" is the next; the first sample's data begin in line 13 (14).
std::string haplotypic(std::string const& type, std::string const& data, std::string const& size = "3",
                       std::string const& separator = "NONE") {
    return profile_text(type, 1, separator) + "[[Samples]]\n" + sample_text("Pop 1", size, data);
}

std::string genotypic(std::string const& data, std::string const& size = "2", std::string const& more = "") {
    return genotypic_profile_text("MICROSAT", 1, "WHITESPACE", more) + "[[Samples]]\n" +
           sample_text("Pop 1", size, data);
}

TEST(Samples, HaplotypesAreCounted) {
    ProjectText const t(haplotypic("DNA", "H1 2 ACGT # two\n\n\tH2\t1\tAC?-\r\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    ASSERT_EQ(t.samples.NbPopulations(), 1);
    Population const& pop = *t.samples[0];
    EXPECT_EQ(pop.pop_name(), "Pop 1");
    EXPECT_EQ(pop.sample_size(), 3.0);
    EXPECT_EQ(pop.inverse_sample_size(), 1.0 / 3.0);
    ASSERT_EQ(pop.nb_haplotypes(), 2);
    EXPECT_EQ(pop.nb_diff_haplotypes, 2);
    EXPECT_EQ(pop.haplotype(0).copies, 2);
    EXPECT_EQ(pop.haplotype(1).copies, 1);
    ASSERT_EQ(t.haplotypes.size(), 2);
    EXPECT_EQ(t.haplotypes[0].id, "H1");
    EXPECT_EQ(t.haplotypes[0].content, "ACGT");
    EXPECT_EQ(t.haplotypes[1].content, "AC?-");
    EXPECT_EQ(pop.haplotype(1).haplotype, &t.haplotypes[1]);
    EXPECT_TRUE(t.logs("\tReading Pop 1 ... \tdone ! ("));
    EXPECT_FALSE(t.logs("WARNING"));
}

TEST(Samples, TheBraceMayCloseTheLastEntrysLine) {
    ProjectText const t(profile_text("DNA") +
                        "[[Samples]]\nSampleName=\"a\"\nSampleSize=3\nSampleData={\nH1 2 ACGT\n"
                        "H2 1 ACGA }\n");
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.samples[0]->nb_haplotypes(), 2);
}

TEST(Samples, TheOpeningLineMayHoldDataOrLackTheBrace) {
    ProjectText const same(profile_text("DNA") +
                           "[[Samples]]\nSampleName=\"a\"\nSampleSize=1\nSampleData={ H1 1 ACGT }\n");
    ASSERT_EQ(same.result, 1) << same.log;
    EXPECT_EQ(same.samples[0]->nb_haplotypes(), 1);
    ProjectText const next(profile_text("DNA") +
                           "[[Samples]]\nSampleName=\"a\"\nSampleSize=1\nSampleData=\n{\nH1 1 ACGT\n}\n");
    ASSERT_EQ(next.result, 1) << next.log;
    EXPECT_EQ(next.samples[0]->nb_haplotypes(), 1);
}

TEST(Samples, EveryDataTypeIsRead) {
    ProjectText const rflp(haplotypic("RFLP", "H1 3 0110-?\n"));
    ASSERT_EQ(rflp.result, 1) << rflp.log;
    EXPECT_EQ(rflp.haplotypes[0].content, "0110-?");
    ProjectText const sizes(haplotypic("MICROSAT", "H1 3 12  14\t?\n", "3", "WHITESPACE"));
    ASSERT_EQ(sizes.result, 1) << sizes.log;
    EXPECT_EQ(sizes.haplotypes[0].content, "12 14 ?");
    ProjectText const standard(haplotypic("STANDARD", "H1 3 A1 b\n", "3", "WHITESPACE"));
    ASSERT_EQ(standard.result, 1) << standard.log;
    EXPECT_EQ(standard.haplotypes[0].content, "A1 b");
    ProjectText const frequency(haplotypic("FREQUENCY", "H1 2\nH2 1 ignored\n"));
    ASSERT_EQ(frequency.result, 1) << frequency.log;
    EXPECT_EQ(frequency.haplotypes[1].content, "");
    EXPECT_EQ(frequency.samples[0]->sample_size(), 3.0);
}

TEST(Samples, FrequencyDataHaveNoGenotypes) {
    ProjectText const t(
        "[Profile]\nNbSamples=1\nDataType=FREQUENCY\nGenotypicData=1\nGameticPhase=0\n[Data]\n[[Samples]]\n" +
        sample_text("a", "3", "H1 2\nH2 1\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.profile.GenotypicData, 0);
    EXPECT_TRUE(t.logs("Line #7 : FREQUENCY data have no genotypes"));
    EXPECT_EQ(t.samples[0]->nb_haplotypes(), 2);
}

TEST(Samples, ACustomSeparatorPartsLociOnly) {
    ProjectText const t(profile_text("MICROSAT", 1, "'/'") + "[[Samples]]\n" +
                        sample_text("a/b", "2", "h/1 1 12/14/?\nh/2 1 12/16/9\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.samples[0]->pop_name(), "a/b");
    EXPECT_EQ(t.haplotypes[0].id, "h/1");
    EXPECT_EQ(t.haplotypes[1].content, "12 16 9");
    EXPECT_EQ(t.profile.LocusSeparator, ' ');
    EXPECT_EQ(t.haplotypes.LocusSeparator, ' ');
    EXPECT_EQ(t.distances.profile.LocusSeparator, ' ');
    EXPECT_EQ(t.samples.LocusSeparator, ' ');
    EXPECT_EQ(t.structure.LocusSeparator, ' ');
    EXPECT_EQ(t.samples[0]->profile.LocusSeparator, ' ');
}

TEST(Samples, ASizeThatDiffersFromTheSumIsError141AndTheSumStands) {
    ProjectText const t(haplotypic("DNA", "H1 2 ACGT\nH2 3 ACGA\n", "0"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(
        t.logs("\"Population::New_read_gametic_data() (SampleSize=0; Sum. Freq.=5)\" : sum of haplotype "
               "frequencies do not match specified sample size : adjusting sample size"));
    EXPECT_EQ(t.samples[0]->sample_size(), 5.0);
    EXPECT_EQ(t.samples[0]->inverse_sample_size(), 0.2);
}

TEST(Samples, FractionalCountsAreRoundedInTheHaplotypesAndSummedAsTheyAre) {
    ProjectText const t(haplotypic("DNA", "H1 1.5 ACGT\nH2 1.4 ACGA\n", "3"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.samples[0]->haplotype(0).copies, 2);
    EXPECT_EQ(t.samples[0]->haplotype(1).copies, 1);
    EXPECT_DOUBLE_EQ(t.samples[0]->sample_size(), 2.9);
    EXPECT_TRUE(t.logs("(SampleSize=3; Sum. Freq.=2.9)"));
}

TEST(Samples, RelativeFrequenciesAreScaledByTheSize) {
    ProjectText const t(profile_text("DNA", 1, "NONE", "\nFrequency=REL") + "[[Samples]]\n" +
                        sample_text("a", "40", "H1 0.75 ACGT\nH2 0.2505 ACGA\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.samples[0]->haplotype(0).copies, 30);
    EXPECT_EQ(t.samples[0]->haplotype(1).copies, 10);
    EXPECT_EQ(t.samples[0]->sample_size(), 40.0);
    EXPECT_FALSE(t.logs("ERROR"));
}

TEST(Samples, RelativeFrequenciesThatMissOneAreError174) {
    ProjectText const t(profile_text("DNA", 1, "NONE", "\nFrequency=REL") + "[[Samples]]\n" +
                        sample_text("a", "40", "H1 0.75 ACGT\nH2 0.248 ACGA\n"));
    ASSERT_EQ(t.result, 1);
    EXPECT_TRUE(
        t.logs("\"Population::New_read_gametic_data() sum of Relative frequencies=0.998000\" : Sum of elements "
               "should be equal to 1"));
    ProjectText const close(profile_text("DNA", 1, "NONE", "\nFrequency=REL") + "[[Samples]]\n" +
                            sample_text("a", "40", "H1 0.75 ACGT\nH2 0.249 ACGA\n"));
    EXPECT_FALSE(close.logs("Sum of elements"));
}

TEST(Samples, RelativeFrequenciesWithoutASizeAreError140) {
    ProjectText const t(profile_text("DNA", 1, "NONE", "\nFrequency=REL") + "[[Samples]]\n" +
                        sample_text("a", "0", "H1 1 ACGT\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("sample size is zero"));
    EXPECT_EQ(t.samples[0]->haplotype(0).copies, 0);
    EXPECT_EQ(t.samples[0]->inverse_sample_size(), 0.0);
}

TEST(Samples, AHaplotypeMayStandInSeveralSamplesWithOneDefinition) {
    ProjectText const t(profile_text("DNA", 2) + "[[Samples]]\n" + sample_text("a", "2", "H1 2 ACGT\n") +
                        sample_text("b", "3", "H1 1 acgt\nH2 2 ACGA\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("\tHaplotype H1 defined on line 18 has already been defined previously...\n"));
    EXPECT_FALSE(t.logs("ERROR"));
    EXPECT_EQ(t.haplotypes.size(), 2);
    EXPECT_EQ(t.haplotypes[0].copies, 3);
    EXPECT_EQ(t.haplotypes[1].copies, 2);
}

TEST(Samples, AHaplotypeTwiceInASampleIsOneEntry) {
    ProjectText const t(haplotypic("DNA", "H1 2 ACGT\nH1 1 ACGT\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    ASSERT_EQ(t.samples[0]->nb_haplotypes(), 1);
    EXPECT_EQ(t.samples[0]->haplotype(0).copies, 3);
}

TEST(Samples, TwoDefinitionsOfOneHaplotypeStopTheReading) {
    ProjectText const t(haplotypic("DNA", "H1 2 ACGT\nH1 1 ACGA\n"));
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(
        t.logs("\tDefinition of haplotype H1 does not match its previous definition, aborting reading "
               "project.\n"));
    EXPECT_TRUE(t.logs("unable to read sample data"));
    EXPECT_TRUE(t.logs("\tProblems in reading Samples section... aborting reading  project file.\n"));
    EXPECT_EQ(t.samples.NbPopulations(), 0);
}

TEST(Samples, AnotherNumberOfLociThanInTheProjectsFirstHaplotype) {
    ProjectText const same(haplotypic("DNA", "H1 2 ACGT\nH2 1 ACG\n"));
    EXPECT_EQ(same.result, 0);
    EXPECT_TRUE(
        same.logs("\tNumber of loci for haplotype \"H2\" is different (3) from that previously defined (4) on "
                  "line 14\n"));
    ProjectText const other(profile_text("MICROSAT", 2, "WHITESPACE") + "[[Samples]]\n" +
                            sample_text("a", "2", "H1 2 12 13\n") + sample_text("b", "3", "H3 3 12 13 14\n"));
    EXPECT_EQ(other.result, 0);
    EXPECT_TRUE(
        other.logs("\tNumber of loci for haplotype \"H3\" is different (3) from that previously defined (2) on "
                   "line 18\n"));
    EXPECT_EQ(other.samples.NbPopulations(), 1);
}

TEST(Samples, AnUnreadableDefinition) {
    ProjectText const bad(haplotypic("DNA", "H1 2 AC*T\n"));
    EXPECT_EQ(bad.result, 0);
    EXPECT_TRUE(bad.logs("\"HaploDef::read_data()\" : invalid character while reading phenotype"));
    EXPECT_TRUE(bad.logs("\tUnable to read haplotype definition on line 13\n"));
    ProjectText const none(haplotypic("RFLP", "H1 2\n"));
    EXPECT_TRUE(none.logs("\tUnable to read haplotype definition on line 13\n"));
    ProjectText const number(haplotypic("MICROSAT", "H1 2 12 1x\n", "2", "WHITESPACE"));
    EXPECT_TRUE(number.logs("microsatellite allele not coded as an integer value"));
    EXPECT_TRUE(number.logs("\tUnable to read haplotype definition on line 13\n"));
}

TEST(Samples, FrequenciesThatCannotBeRead) {
    for (char const* text : {"1x", "1e999", "-1", "nan", "3000000000"}) {
        ProjectText const t(haplotypic("DNA", std::string("H1 ") + text + " ACGT\n"));
        EXPECT_EQ(t.result, 0);
        EXPECT_TRUE(t.logs(std::string("\tProblem reading haplotype frequency (\"") + text + "\") on line 13\n"))
            << t.log;
    }
    ProjectText const none(haplotypic("DNA", "H1\n"));
    EXPECT_EQ(none.result, 0);
    EXPECT_TRUE(none.logs("\tUnable to read haplotype \"H1\" frequency on line 13, aborting reading procedure\n"));
}

TEST(Samples, MoreGeneCopiesThanAnIntHoldsAreRefused) {
    EXPECT_EQ(ProjectText(haplotypic("DNA", "H1 2000000000 ACGT\nH2 147483646 ACGA\n", "2147483646")).result, 1);
    ProjectText const sum(haplotypic("DNA", "H1 2000000000 ACGT\nH2 147483647 ACGA\n"));
    EXPECT_EQ(sum.result, 0);
    EXPECT_TRUE(sum.logs("\tProblem reading haplotype frequency (\"147483647\") on line 14\n")) << sum.log;
    ProjectText const individuals(genotypic("I1 1073741824 1\n2\n"));
    EXPECT_EQ(individuals.result, 0);
    EXPECT_TRUE(individuals.logs("\tProblem reading genotype frequency (\"1073741824\") on line 14\n"))
        << individuals.log;
    ProjectText const both(profile_text("DNA", 2) + "[[Samples]]\n" +
                           sample_text("a", "2000000000", "H1 2000000000 ACGT\n") +
                           sample_text("b", "147483647", "H1 147483647 ACGT\n"));
    EXPECT_EQ(both.result, 0);
    EXPECT_TRUE(both.logs("\tToo many gene copies up to sample \"b\". Aborting reading project.\n")) << both.log;
    EXPECT_TRUE(both.logs("unable to read sample data"));
    EXPECT_EQ(both.samples.NbPopulations(), 1);
}

TEST(Samples, ASectionBeforeTheClosingBraceIsError194) {
    for (char const* next : {"SampleName=\"b\"", "[[Structure]]", "[[Mantel]]"}) {
        ProjectText const t(profile_text("DNA") +
                            "[[Samples]]\nSampleName=\"a\"\nSampleSize=2\nSampleData={\nH1 2 ACGT\n" + next + "\n");
        EXPECT_EQ(t.result, 0);
        EXPECT_TRUE(
            t.logs("\tMissing closing brace for sample \"a\". New section found on line 14 before finding "
                   "closing brace.  Aborting reading procedure\n"))
            << t.log;
        EXPECT_TRUE(t.logs("missing closing brace in Sampledata definition"));
    }
}

TEST(Samples, TheEndOfTheFileBeforeTheClosingBraceIsError194) {
    ProjectText const t(profile_text("DNA") + "[[Samples]]\nSampleName=\"a\"\nSampleSize=2\nSampleData={\nH1 2 ACGT");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.logs("sample \"a\""));
    EXPECT_TRUE(t.logs("\"Population::New_read_gametic_data()\" : missing closing brace in Sampledata definition"));
}

TEST(Samples, WithAHaplotypeListEntriesAreIdAndFrequency) {
    std::string const head =
        profile_text("DNA") +
        "[[HaplotypeDefinition]]\nHaplListName=\"l\"\nHaplList={\nH1 ACGT\nH2 ACGA\n}\n[[Samples]]\n";
    ProjectText const t(head + sample_text("a", "3", "H2 2\nH1 1\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.haplotypes.name, "l");
    EXPECT_EQ(t.samples[0]->haplotype(0).haplotype, &t.haplotypes[1]);
    EXPECT_FALSE(t.logs("already been defined"));
    ProjectText const unknown(head + sample_text("a", "3", "H2 2\nH9 1\n"));
    EXPECT_EQ(unknown.result, 0);
    EXPECT_TRUE(unknown.logs("\tHaplotype \"H9\" listed on line 20 is undefined. Aborting reading project.\n"));
    ProjectText const loci(head + sample_text("a", "3", "H2 2 ACG\n"));
    EXPECT_EQ(loci.result, 0);
    EXPECT_TRUE(
        loci.logs("\tNumber of loci for haplotype \"H2\" is different (3) from that previously defined (4) on "
                  "line 19\n"));
}

TEST(Samples, GenotypesHaveTwoLines) {
    ProjectText const t(genotypic("i1 1 12 14\n   13 14\n\ni2 2 12 ? # note\n 12 14 \n", "3"));
    ASSERT_EQ(t.result, 1) << t.log;
    Population const& pop = *t.samples[0];
    ASSERT_EQ(pop.phenotypes.size(), 2);
    EXPECT_EQ(pop.phenotypes.phenotype(0).name(), "i1");
    EXPECT_EQ(pop.phenotypes.phenotype(0).obs_count(), 1.0);
    EXPECT_EQ(pop.phenotypes.phenotype(0).allele_string(0), "12 14");
    EXPECT_EQ(pop.phenotypes.phenotype(0).allele_string(1), "13 14");
    EXPECT_EQ(pop.phenotypes.phenotype(1).obs_count(), 2.0);
    EXPECT_EQ(pop.phenotypes.phenotype(1).allele_string(0), "12 ?");
    EXPECT_EQ(pop.sample_size(), 6.0);
    EXPECT_EQ(pop.inverse_sample_size(), 1.0 / 6.0);
    EXPECT_FALSE(t.logs("ERROR"));
}

TEST(Samples, ASizeThatDiffersFromTheIndividualsIsError148) {
    ProjectText const t(genotypic("i1 1 12 14\n13 14\n", "20"));
    ASSERT_EQ(t.result, 1);
    EXPECT_TRUE(
        t.logs("\"Population::New_read_genotypic_data() (SampleSize=20; Sum. Freq.=1)\" : sum of genotype "
               "frequencies do not match specified sample size : adjusting sample size"));
    EXPECT_EQ(t.samples[0]->sample_size(), 2.0);
}

TEST(Samples, RelativeGenotypeFrequencies) {
    ProjectText const t(genotypic("i1 0.5 12 14\n13 14\ni2 0.25 12 14\n12 12\n", "10", "\nFrequency=REL"));
    ASSERT_EQ(t.result, 1);
    EXPECT_TRUE(t.logs("\"Population::New_read_genotypic_data() sum of Relative frequencies=0.750000\""));
    EXPECT_EQ(t.samples[0]->phenotypes.phenotype(1).obs_count(), 2.5);
    EXPECT_EQ(t.samples[0]->sample_size(), 20.0);
}

TEST(Samples, GenotypeFaults) {
    struct Case {
        char const *data, *message;
    };
    for (Case const& c : {
             Case{"{\n", "\tUnable to read genotype ID on line 14, aborting reading procedure\n"},
             Case{"i1\n12 13\n", "\tUnable to read read genotype frequency on line 14. Aborting reading project\n"},
             Case{"i1 1y 12 13\n12 13\n", "\tProblem reading genotype frequency (\"1y\") on line 14\n"},
             Case{"i1 1\n12 13\n", "\tUnable to read genotype \"i1\" definition on line 14\n"},
             Case{"i1 1 12 a\n12 13\n", "\tUnable to read genotype \"i1\" definition on line 14\n"},
             Case{"i1 1 12 13\n12 b\n", "\tUnable to read phenotype \"i1\" definition on line 15\n"},
             Case{"i1 1 12 13\n", "\tUnable to read phenotype \"i1\" definition on line 15\n"},
             Case{
                 "i1 1 12 13\n12 13 14\n",
                 "\tNumber of loci for genotype \"i1\" is different (3) from that previously defined (2) on line 15\n"},
             Case{
                 "i1 1 12 13\n12 13\ni2 1 12\n13\n",
                 "\tNumber of loci for genotype \"i2\" is different (1) from that previously defined (2) on line 16\n"},
             // The second line is missing: the next individual's first line is taken for it.
             Case{"7 1 12 13\n8 1 12 13\n9 1 12 13\n",
                  "\tNumber of loci for genotype \"7\" is different (4) from that previously defined (2) on line 15\n"},
         }) {
        ProjectText const t(genotypic(c.data));
        EXPECT_EQ(t.result, 0);
        EXPECT_TRUE(t.logs(c.message)) << c.data << " gave " << t.log;
        EXPECT_TRUE(t.logs("unable to read sample data"));
    }
}

TEST(Samples, ASectionBetweenTheTwoLinesIsAMissingBrace) {
    ProjectText const t(genotypic_profile_text("MICROSAT") +
                        "[[Samples]]\nSampleName=\"a\"\nSampleSize=2\nSampleData={\ni1 1 12\n[[Structure]]\n");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.logs("\tMissing closing brace for sample \"a\". New section found on line 15"));
}

TEST(Samples, LociOfALaterSampleAreComparedWithTheProjectsFirstGenotype) {
    ProjectText const t(genotypic_profile_text("STANDARD", 2) + "[[Samples]]\n" +
                        sample_text("a", "1", "i1 1 A B\nA A\n") + sample_text("b", "1", "i2 1 A\nA\n"));
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(
        t.logs("\tNumber of loci for genotype \"i2\" is different (1) from that previously defined (2) on line "
               "20\n"));
}

TEST(Samples, WithoutANameIsError207AndEachSampleNeedsItsOwn) {
    ProjectText const t(profile_text("DNA", 2) + "[[Samples]]\n" + sample_text("a", "2", "H1 2 ACGT\n") +
                        "SampleSize=1\nSampleData={\nH2 1 ACGA\n}\n");
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("\"SampleName\" keyword not found"));
    EXPECT_TRUE(t.logs("Warning: Keyword \"SampleName\" not found while data is defined for population #2\n"));
    EXPECT_EQ(t.samples[1]->pop_name(), "noName");
}

TEST(Samples, TheSizeOfOneSampleDoesNotServeTheNext) {
    ProjectText const t(profile_text("DNA", 2) + "[[Samples]]\n" + sample_text("a", "2", "H1 2 ACGT\n") +
                        "SampleName=\"b\"\nSampleData={\nH2 1 ACGA\n}\n");
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("(SampleSize=0; Sum. Freq.=1)"));
}

TEST(Samples, NameAndSizeFaultsAreBoth62) {
    ProjectText const name(profile_text("DNA") + "[[Samples]]\nSampleName=a\nSampleSize=1\nSampleData={\nH1 1 A\n}\n");
    EXPECT_EQ(name.result, 0);
    EXPECT_TRUE(name.logs("invalid value assigned to \"SampleName\""));
    EXPECT_TRUE(name.logs("Line #10 : No open quote after keyword 'SampleName'\n"));
    ProjectText const size(profile_text("DNA") + "[[Samples]]\n" + sample_text("a", "many", "H1 1 A\n"));
    EXPECT_EQ(size.result, 1);
    EXPECT_TRUE(size.logs("invalid value assigned to \"SampleName\""));
    EXPECT_TRUE(size.logs("Line #11 : Bad value after keyword 'SampleSize'\n"));
    EXPECT_EQ(size.samples[0]->sample_size(), 1.0);
}

TEST(Samples, ASecondSampleOfTheSameNameIsRenamed) {
    ProjectText const t(profile_text("DNA", 4) + "[[Samples]]\n" + sample_text("a", "1", "H1 1 A\n") +
                        sample_text("a", "1", "H1 1 A\n") + sample_text("a4", "1", "H1 1 A\n") +
                        sample_text("a", "1", "H1 1 A\n"));
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("two samples have the same name: renaming second sample"));
    EXPECT_EQ(t.samples[1]->pop_name(), "a2");
    EXPECT_EQ(t.samples[3]->pop_name(), "a5");  // a4 is taken
}

TEST(Samples, AWrongNumberIsReportedAndAdjusted) {
    ProjectText const end(profile_text("DNA", 3) + "[[Samples]]\n" + sample_text("a", "1", "H1 1 A\n"));
    ASSERT_EQ(end.result, 1) << end.log;
    EXPECT_TRUE(end.logs("\"Samples::NewRead()\" : invalid value for \"NbSamples\""));
    EXPECT_TRUE(
        end.logs("Warning: 1 samples are actually listed in project file, while \n3 are defined in the "
                 "[[Profile]] section. Adjusting no. of samples...\n"));
    EXPECT_EQ(end.profile.NbSamples, 1);
    EXPECT_EQ(end.samples.NbSamples, 1);
    EXPECT_EQ(end.structure.NbSamples, 1);
    ProjectText const line(profile_text("DNA", 1) + "[[Samples]]\n" + sample_text("a", "1", "H1 1 A\n") +
                           sample_text("b", "1", "H1 1 A\n") + "[[Structure]]\nNbGroups=1\nGroup={\n\"a\"\n}\n");
    ASSERT_EQ(line.result, 1) << line.log;
    EXPECT_TRUE(
        line.logs("Warning: 2 samples are actually listed in project file, while 1 are defined in the "
                  "[[Profile]] section\n"));
    EXPECT_EQ(line.profile.NbSamples, 2);
}

TEST(Samples, NoSamplesExpectedFails) {
    ProjectText const t(profile_text("DNA", 0) + "[[Samples]]\n" + sample_text("a", "1", "H1 1 A\n"));
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.logs("invalid value for \"NbSamples\""));
    EXPECT_TRUE(t.logs("\tProblems in reading Samples section... aborting reading  project file.\n"));
}

TEST(Samples, ExternalDataNeedNoBrace) {
    ScratchDirectory scratch;
    test::FreshProcess fresh;
    fresh.keep(settings::input_file, std::string("p.res/p.tvp"));
    scratch.write("a.txt", "H1 2 ACGT\nH2 1 ACGA\n");
    std::filesystem::create_directory("p.res");
    scratch.write("p.res/b.txt", "{\nH1 1 ACGT\n}\n");
    ProjectText const t(profile_text("DNA", 2) +
                        "[[Samples]]\nSampleName=\"a\"\nSampleSize=3\nSampleData= EXTERN \"a.txt\"\n"
                        "SampleName=\"b\"\nSampleSize=1\nSampleData= extern \"b.txt\"\n");
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_TRUE(t.logs("[INFO #"));
    EXPECT_TRUE(t.logs("reading sample data in external file"));
    EXPECT_TRUE(t.logs("\tReading sample data for population \"a\" in external file\"a.txt\"\n"));
    EXPECT_EQ(t.samples[0]->nb_haplotypes(), 2);
    EXPECT_EQ(t.samples[1]->nb_haplotypes(), 1);
    EXPECT_TRUE(t.logs("\tHaplotype H1 defined on line 2 has already been defined previously...\n"));
}

TEST(Samples, AMissingExternalFileStopsTheReading) {
    ScratchDirectory scratch;
    ProjectText const t(profile_text("DNA") +
                        "[[Samples]]\nSampleName=\"a\"\nSampleSize=3\nSampleData= EXTERN \"absent.txt\"\n");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(
        t.logs("\tWarning: External file \"absent.txt\" listed on line 12 cannot be open. Check that it "
               "exists...\n"));
    ProjectText const unnamed(profile_text("DNA") + "[[Samples]]\nSampleName=\"a\"\nSampleData= EXTERN absent.txt\n");
    EXPECT_EQ(unnamed.result, 0);
    EXPECT_TRUE(unnamed.logs("Line #11 : No open quote after keyword 'Extern sample data'\n"));
    ProjectText const directory(profile_text("DNA") + "[[Samples]]\nSampleName=\"a\"\nSampleData= EXTERN \"..\"\n");
    EXPECT_EQ(directory.result, 0);
    EXPECT_TRUE(directory.logs("\tWarning: External file \"..\" listed on line 11 cannot be open.")) << directory.log;
}

TEST(Samples, ExploreWritesTheNames) {
    ScratchDirectory scratch;
    ProfileSettings profile;
    profile.NbSamples = 2;
    Samples samples;
    std::istringstream is("samplename = \"Pop A\"\n# x\nSampleName=\"B\"\nSampleName=\"C\"\n");
    EXPECT_EQ(samples.explore(is, profile), 1);
    EXPECT_EQ(scratch.read("samples.txt"), "2\nPop A\nB\n");
    test::FreshProcess fresh;
    std::istringstream few("SampleName=\"B\"\n");
    EXPECT_EQ(samples.explore(few, profile), 0);
    EXPECT_NE(fresh.log().find("Samples::explore(): Unable to extract all population names"), std::string::npos);
}

TEST(Samples, ExternalNamesGetTheProjectDirectory) {
    test::FreshProcess fresh;
    Samples samples;
    settings run;
    run.project_dir = "p.res/";
    EXPECT_EQ(samples.ext_name("a.txt"), "a.txt");
    EXPECT_NE(fresh.log().find("Pointer to project dir is not initialized. ERROR"), std::string::npos);
    samples.run_settings = &run;
    EXPECT_EQ(samples.ext_name("a.txt"), "p.res/a.txt");
    EXPECT_EQ(samples.ext_name("d/a.txt"), "d/a.txt");
    char buffer[32];
    samples.build_ext_name(buffer, "a.txt");
    EXPECT_STREQ(buffer, "p.res/a.txt");
}

TEST(Samples, ExternalNamesStayWithinTheirArray) {
    test::FreshProcess fresh;
    settings run;
    run.project_dir = "p.res/";
    Samples samples;
    samples.run_settings = &run;
    char exact[12];
    samples.build_ext_name(exact, "a.txt");
    EXPECT_STREQ(exact, "p.res/a.txt");
    char buffer[12] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x', 'y'};
    samples.build_ext_name(std::span(buffer, 11), "a.txt");
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(std::string(buffer + 1, 11), "xxxxxxxxxxy");
    samples.build_ext_name({}, "a.txt");
}

TEST(Samples, TenThousandSamplesAreReadInLinearTime) {
    int const n = 10000;
    std::string text = profile_text("DNA", n) + "[[Samples]]\n";
    for (int i = 0; i < n; ++i) text += sample_text("same", "1", "H" + std::to_string(i % 5000) + " 1 ACGT\n");
    ProjectText const t(text);
    ASSERT_EQ(t.result, 1);
    EXPECT_EQ(t.samples.NbPopulations(), n);
    EXPECT_EQ(t.haplotypes.size(), 5000);
}

TEST(Samples, ALineOfAMegabyteIsRead) {
    std::string const sequence(1000000, 'A');
    ProjectText const t(haplotypic("DNA", "H1 1 " + sequence + "\nH2 2 " + sequence + "\n"));
    ASSERT_EQ(t.result, 1);
    EXPECT_EQ(t.haplotypes[1].content, sequence);
    ProjectText const keys(profile_text("DNA") + sequence + "\n[[Samples]]\n" + sample_text("a", "1", "H1 1 A\n"));
    EXPECT_EQ(keys.result, 1);
}

}  // namespace
}  // namespace tov
