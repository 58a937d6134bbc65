#include <gtest/gtest.h>

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "translate/genepop.h"
#include "translate_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

std::string genepop_project(std::string const& text, bool diploid = true) {
    return project_of(text, [diploid](std::istream& in, std::ostream& out) { genepop_to_project(in, diploid, out); });
}

std::string genepop_again(std::string const& text) { return Export().write(imp_exp::genepop, genepop_project(text)); }

/// A Genepop file as this test reads it, independently of the reader: samples of (name, genotype a locus).
struct Individual {
    std::string name;
    std::vector<std::pair<std::string, std::string>> loci;
};
using Sample = std::vector<Individual>;

std::vector<Sample> parse(std::string const& text) {
    std::vector<Sample> samples;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        std::string word = line.substr(0, 3);
        for (char& c : word) c = static_cast<char>(std::toupper(c));
        std::size_t const comma = line.find(',');
        if (word == "POP" && comma == std::string::npos) {
            samples.emplace_back();
            continue;
        }
        if (samples.empty()) continue;
        if (comma != std::string::npos) {
            samples.back().emplace_back();
            for (char const c : line.substr(0, comma))
                if (c != ' ') samples.back().back().name += c;
            line.erase(0, comma + 1);
        }
        std::istringstream fields(line);
        for (std::string field; fields >> field;) {
            std::size_t const half = field.size() / 2;
            samples.back().back().loci.emplace_back(field.substr(0, half), field.substr(half));
        }
    }
    return samples;
}

bool is_zero(std::string const& allele) { return allele.find_first_not_of('0') == std::string::npos; }

/// The same samples, names and genotypes: alleles may be numbered anew, each one the same way throughout its locus.
void expect_same(std::string const& before, std::string const& after) {
    std::vector<Sample> const a = parse(before);
    std::vector<Sample> const b = parse(after);
    ASSERT_EQ(a.size(), b.size());
    std::map<std::pair<std::size_t, std::string>, std::string> forth;
    std::map<std::pair<std::size_t, std::string>, std::string> back;
    auto const expect_mapped = [&](std::size_t locus, std::string const& x, std::string const& y) {
        EXPECT_EQ(is_zero(x), is_zero(y));
        EXPECT_EQ(forth.emplace(std::pair(locus, x), y).first->second, y);
        EXPECT_EQ(back.emplace(std::pair(locus, y), is_zero(y) ? "0" : x).first->second, is_zero(y) ? "0" : x);
    };
    for (std::size_t s = 0; s < a.size(); ++s) {
        ASSERT_EQ(a[s].size(), b[s].size()) << "sample " << s;
        for (std::size_t i = 0; i < a[s].size(); ++i) {
            EXPECT_EQ(a[s][i].name, b[s][i].name);
            ASSERT_EQ(a[s][i].loci.size(), b[s][i].loci.size());
            for (std::size_t l = 0; l < a[s][i].loci.size(); ++l) {
                expect_mapped(l, a[s][i].loci[l].first, b[s][i].loci[l].first);
                expect_mapped(l, a[s][i].loci[l].second, b[s][i].loci[l].second);
            }
        }
    }
}

constexpr char two_digits[] = "Two samples\nLoc1\nLoc2\nPOP\nA1 , 0101 0203\nA2 , 0102 0000\nPOP\nB1 , 0202 0301\n";

}  // namespace

TEST(GenepopReader, WritesTheProfileAndTheLociAsComments) {
    std::string const project = genepop_project("\n  \nA \"b\" title\nLoc1\nLoc2, Loc3\nPop\nA1, 0101 0202 0303\n");
    EXPECT_TRUE(
        project.starts_with("[Profile]\n\t Title=\"A  b  title\"\n\t NbSamples=1\n\t GenotypicData=1\n"
                            "\t GameticPhase=0\n\t DataType=STANDARD\n\t LocusSeparator=WHITESPACE\n"
                            "\t MissingData=\"?\"\n"
                            "# The names of the loci taken from the GenePop file are listed below as comments\n"
                            "# Loc1\n# Loc2, Loc3\n[Data]\n\t [[Samples]]\n"))
        << project;
}

TEST(GenepopReader, OpensEverySampleWithItsComment) {
    std::string const project = genepop_project(two_digits);
    EXPECT_TRUE(holds(project,
                      "\t\t SampleName= \"Population1\"\n\t\t SampleSize=100  #Wrong on purpose,  but it does "
                      "not matter here \n\t\t SampleSize=2\n\t\t SampleData={\n"));
    EXPECT_TRUE(holds(project,
                      "     }\n\t\t SampleName= \"Population2\"\n\t\t SampleSize=100  #Wrong on purpose, but it "
                      "does not matter here\n\t\t SampleSize=1\n\t\t SampleData={\n"));
    EXPECT_TRUE(project.ends_with("     }\n"));
}

TEST(GenepopReader, WritesTwoLinesADiploidAndOneAHaploid) {
    EXPECT_TRUE(holds(genepop_project(two_digits), "A1   1  01 02 \n01 03 \nA2   1  01 ? \n02 ? \n"));
    std::string const haploid = genepop_project(two_digits, false);
    EXPECT_TRUE(holds(haploid, "\t GenotypicData=0\n"));
    EXPECT_TRUE(holds(haploid, "A1   1  01 02 \nA2   1  01 ? \n"));
    EXPECT_TRUE(reads_cleanly(haploid));
}

TEST(GenepopReader, TakesThreeDigitsAndFieldsOverSeveralLines) {
    std::string const project =
        genepop_project("t\nL1\nL2\nL3\npop\nind one ,100102\n 110000\t000120\npOp\nx,100100,110110,120120\n");
    EXPECT_TRUE(holds(project, "indone   1  100 110 ? \n102 ? 120 \n"));
    EXPECT_TRUE(holds(project, "x   1  100 110 120 \n100 110 120 \n"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(GenepopReader, AFieldOfFiveDigitsGivesACommentAndNoAllele) {
    std::string const project = genepop_project("t\nL1\nL2\nPop\nA1, 01010 0202\nA2, 0101 0202\n");
    EXPECT_TRUE(holds(project, "# error in definition of allele 01010\nA1   1  02 \n02 \n"));
    EXPECT_TRUE(fails_when_read(project));
}

TEST(GenepopReader, EveryLineInFrontOfTheFirstSampleIsAComment) {
    EXPECT_TRUE(holds(genepop_project("t\nL1\n\n [Data] # \nPop\nA1, 0101 0102\n"), "# L1\n# \n#  [Data] #\n[Data]\n"));
}

TEST(GenepopReader, AFaultThatAllIndividualsShareMakesTheProjectFail) {
    for (char const* text : {"t\nL1\nL2\nPop\nA1, 01010 0202\nA2, 01010 0202\n",
                             "t\nL1\nL2\nPop\nA1, 0101 02\nA2, 0101 03\n", "t\nL1\nPop\nA1, 0101 x\n"}) {
        EXPECT_TRUE(holds(genepop_project(text), "# error in definition of allele ")) << text;
        EXPECT_TRUE(fails_when_read(genepop_project(text))) << text;
        EXPECT_TRUE(fails_when_read(genepop_project(text, false))) << text;
    }
}

TEST(GenepopReader, AFieldOfTwoOrThreeDigitsIsNoPairOfAlleles) {
    for (char const* field : {"01", "001", "1", "00101", "0010011"}) {
        std::string const project = genepop_project("t\nL1\nL2\nPop\nA1, 0101 " + std::string(field) + "\n", false);
        EXPECT_TRUE(holds(project, "# error in definition of allele " + std::string(field) + "\nA1   1  01 \n"))
            << field;
        EXPECT_TRUE(fails_when_read(project)) << field;
    }
}

TEST(GenepopReader, AFieldShorterThanThoseOfItsLocusIsAnError) {
    std::string const project = genepop_project("t\nL1\nL2\nPop\nA1, 135143 0101\nA2, 1351 0102\n");
    EXPECT_TRUE(holds(project, "# error in definition of allele 1351\nA2   1  01 \n02 \n"));
    EXPECT_TRUE(fails_when_read(project));
}

TEST(GenepopReader, LociMayDifferInTheirDigitsAndMissingGenotypesInTheirZeros) {
    std::string const project = genepop_project("t\nL1\nL2\nPop\nA1, 0000 000000\nA2, 135143 0101\nA3, 0000 000000\n");
    EXPECT_TRUE(holds(project, "A1   1  ? ? \n? ? \nA2   1  135 01 \n143 01 \nA3   1  ? ? \n? ? \n"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(GenepopReader, AnIndividualWithFewerFieldsThanNamedLociIsAnError) {
    for (char const* names : {"L1\nL2\nL3\n", "L1,L2 , L3,\n", "L1\nL2, L3\n"}) {
        std::string const text = "t\n" + std::string(names) + "Pop\nA1, 0101 0102";
        EXPECT_TRUE(holds(genepop_project(text), "# error: A1 has 2 fields for 3 loci\n")) << names;
        EXPECT_TRUE(fails_when_read(genepop_project(text))) << names;
        EXPECT_TRUE(reads_cleanly(genepop_project(text + " 0101"))) << names;
    }
    EXPECT_TRUE(reads_cleanly(genepop_project("t\nall names of loci on one line\nPop\nA1, 0101 0102\n")));
}

TEST(GenepopReader, ASampleWithoutIndividualsMakesTheProjectFail) {
    for (char const* text : {"t\nL1\nPop\nA1, 0101\nPop", "t\nL1\nPop\nPop\nA1, 0101\n", "t\nL1\nPop\n"}) {
        EXPECT_TRUE(holds(genepop_project(text), " has no individuals\n ***** ERROR *****\n     }\n")) << text;
        EXPECT_TRUE(fails_when_read(genepop_project(text))) << text;
    }
}

TEST(GenepopReader, WordsThatAreNoDigitsGiveAComment) {
    EXPECT_TRUE(holds(genepop_project("t\nL1\nPop\nA1, 01a1\n"), "# error in definition of allele 01a1\n"));
}

TEST(GenepopReader, OnlyTheWordAloneBeginsASample) {
    std::string const project = genepop_project(
        "Population structure of POP\nPopA\nPOPB\nPop\nPop1, 0101 0202\npop2, 0101 0202\nPop north\nx, 0101 0202\n");
    EXPECT_TRUE(holds(project, "\t NbSamples=2\n"));
    EXPECT_TRUE(holds(project, "# PopA\n# POPB\n[Data]"));
    EXPECT_TRUE(holds(project, "Pop1   1  01 02 \n"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(GenepopReader, NamesThatAreMissingOrRepeatedStayReadable) {
    std::string const text = "t\nL1\nPop\n, 0101\nN, 0102\nN, 0202\n";
    EXPECT_TRUE(holds(genepop_project(text), "noname   1  01 \n01 \nN   1  01 \n02 \nN   1  02 \n02 \n"));
    EXPECT_TRUE(reads_cleanly(genepop_project(text)));
    std::string const haploid = genepop_project(text, false);
    EXPECT_TRUE(holds(haploid, "N   1  01 \nN_2   1  02 \n"));
    EXPECT_TRUE(reads_cleanly(haploid));
}

TEST(GenepopReader, ALineInFrontOfTheFirstIndividualMakesTheProjectFail) {
    std::string const project = genepop_project("t\nL1\nPop\n0101\nA1, 0101\n");
    EXPECT_TRUE(holds(project, "# error in definition of allele 0101\n ***** ERROR *****\n"));
    EXPECT_TRUE(fails_when_read(project));
}

TEST(GenepopReader, ElevenThousandFieldsAreTooMany) {
    std::string text = "t\nL1\nPop\nA1,";
    for (int i = 0; i < 11000; ++i) text += " 0101";
    std::string const project = genepop_project(text + '\n');
    EXPECT_EQ(count_of(project, "# error in definition of allele"), 1);
    EXPECT_TRUE(fails_when_read(project));
}

TEST(GenepopReader, EmptyAndHeadlessFilesGiveProjectsThatFail) {
    for (char const* text : {"", "\n\n", "title only\n", "title\nL1\nL2\n", "\x00\x01\x02", "POP\nA1, 0101\n"}) {
        EXPECT_TRUE(fails_when_read(genepop_project(text))) << text;
        EXPECT_TRUE(holds(genepop_project(text), "NbSamples=0"));
    }
}

// Six digits that were cut to four are seen once their locus is known, from the second individual on.
TEST(GenepopReader, ABeginningOfAFileFailsUnlessItEndsBehindAnIndividual) {
    for (std::string const text :
         {"t\nL1\nL2\nPop\nA1, 0101 0203\nA2, 0102\n 0001\nPop\nB1, 0103 0201",
          "t\nL1, L2\npop\nA1,135143 136146\nA2,\t133135\n\t146146\npop\nB1 , 000000 136136"}) {
        std::vector<Sample> const whole = parse(text);
        for (std::size_t length = 0; length <= text.size(); ++length) {
            std::string const part = text.substr(0, length);
            for (bool const diploid : {false, true}) {
                std::string const project = genepop_project(part, diploid);
                EXPECT_TRUE(project.starts_with("[Profile]"));
                if (!reads_cleanly(project)) {
                    EXPECT_LT(length, text.size()) << project;
                    EXPECT_TRUE(fails_when_read(project)) << project;
                    continue;
                }
                std::vector<Sample> const some = parse(part);
                ASSERT_FALSE(some.empty()) << part;
                if (some[0].size() == 1 && text.find('\n', length) == text.find('\n', text.find("A1"))) continue;
                for (std::size_t s = 0; s < some.size(); ++s)
                    for (std::size_t i = 0; i < some[s].size(); ++i)
                        EXPECT_EQ(some[s][i].loci, whole[s][i].loci) << part;
            }
        }
    }
}

TEST(GenepopRoundTrip, KeepsTwoDigitGenotypes) {
    std::string const after = genepop_again(two_digits);
    EXPECT_EQ(after,
              "Title line:Two samples\nLocus_1\nLocus_2\nPOP\nA1 , 0101 0102\nA2 , 0102 0000\nPOP\nB1 , 0202 0203\n");
    expect_same(two_digits, after);
}

TEST(GenepopRoundTrip, KeepsThreeDigitGenotypesSeveralLinesAndNamesWithBlanks) {
    std::string const text =
        "Microsatellites\r\nFca8\r\nFca23\r\nFca43\r\nPop\r\nGrange 1 ,  135143\t136146\r\n 139139\r\nGrange 2 , "
        "133135\r\n"
        "146146 139145\r\nPOP\r\nx , 000000 136136 141141\r\n";
    expect_same(text, genepop_again(text));
}

TEST(GenepopRoundTrip, KeepsIndividualsAndSamplesWithoutAnyData) {
    std::string const text = "t\nL1\nL2\nPop\nA, 0000 0000\nB, 0101 0102\nPop\nC, 0000 0000\n";
    std::string const after = genepop_again(text);
    expect_same(text, after);
    EXPECT_TRUE(holds(after, "\nC , 0000 0000\n"));
}

TEST(GenepopRoundTrip, KeepsCopiesOfTheSameIndividual) {
    std::string const text = "t\nL1\nPop\nA, 0101\nA, 0101\nA, 0102\nPop\nA, 0101\n";
    expect_same(text, genepop_again(text));
}

TEST(GenepopRoundTrip, NinetyNineAllelesNeedTwoDigitsAndAHundredThree) {
    for (int alleles : {98, 99, 100, 250}) {
        std::string text = "t\nL1\nPop\nm, 000000\n";
        for (int a = 1; a <= alleles; ++a) {
            std::string const three = std::to_string(1000 + a).substr(1);
            text += "i" + three + ", " + three + three + "\n";
        }
        std::string const after = genepop_again(text);
        expect_same(text, after);
        EXPECT_EQ(holds(after, "\ni001 , 0101\n"), alleles <= 99) << alleles;
        EXPECT_EQ(holds(after, "\ni001 , 001001\n"), alleles > 99) << alleles;
    }
}

TEST(GenepopWriter, WritesHaplotypesCopyByCopyWithOneAlleleALocus) {
    std::string const project = profile_text("MICROSAT", 1, "WHITESPACE") + "[[Samples]]\n" +
                                sample_text("S", "3", "h1 2 10 ? 7\nh,2 1 12 5 7\n");
    EXPECT_EQ(Export().write(imp_exp::genepop, project),
              "Title line:t\nLocus_1\nLocus_2\nLocus_3\nPOP\nh1 , 01 00 01\nh1 , 01 00 01\nh_2 , 02 01 01\n");
}

TEST(GenepopWriter, WritesAsManyCopiesAsTheRoundedCounts) {
    std::string text = genotypic_profile_text("STANDARD") + "[[Samples]]\n" +
                       sample_text("S", "4", "i1 1.6 a b\nb b\ni2 1.4 a a\n? b\ni3 0.4 a a\na a\n");
    std::string const expected = "POP\ni1 , 0102 0101\ni1 , 0102 0101\ni2 , 0100 0201\n";
    EXPECT_TRUE(Export().write(imp_exp::genepop, text).ends_with(expected));
    std::string const shares = genotypic_profile_text("STANDARD") + "[[Samples]]\n" +
                               sample_text("S", "5", "i1 0.34 a b\nb b\ni2 0.66 a a\n? b\n");
    text = shares;
    text.insert(text.find("DataType"), "Frequency=REL\n");
    EXPECT_TRUE(Export().write(imp_exp::genepop, text).ends_with(
        "POP\ni1 , 0102 0101\ni1 , 0102 0101\ni2 , 0100 0201\ni2 , 0100 0201\ni2 , 0100 0201\n"));
}

TEST(GenepopWriter, WritesSequencesSiteBySite) {
    std::string const project = profile_text("DNA", 1, "WHITESPACE") + "[[Samples]]\n" +
                                sample_text("S", "3", "h1 1 ACg\nh2 1 aCT\nh3 1 A?-\n");
    EXPECT_EQ(Export().write(imp_exp::genepop, project),
              "Title line:t\nLocus_1\nLocus_2\nLocus_3\nPOP\nh1 , 01 01 01\nh2 , 01 01 02\nh3 , 01 00 03\n");
}

TEST(GenepopWriter, RefusesDataWithoutLociOrWithAThousandAlleles) {
    Export without;
    EXPECT_EQ(
        without.write(imp_exp::genepop, profile_text("FREQUENCY") + "[[Samples]]\n" + sample_text("S", "3", "h 3\n")),
        "");
    EXPECT_TRUE(holds(without.fresh.log(), "Data without loci can't be written into Genepop format."));

    std::string data;
    for (int i = 0; i < 1000; ++i) data += "h" + std::to_string(i) + " 1 " + std::to_string(i) + "\n";
    Export many;
    EXPECT_EQ(many.write(imp_exp::genepop,
                         profile_text("MICROSAT", 1, "WHITESPACE") + "[[Samples]]\n" + sample_text("S", "1000", data)),
              "");
    EXPECT_TRUE(holds(many.fresh.log(), "because a locus has more than 999 alleles."));
}
