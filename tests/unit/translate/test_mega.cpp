#include <gtest/gtest.h>

#include "translate/mega.h"
#include "translate_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

std::string mega_project(std::string const& text) {
    return project_of(text, [](std::istream& in, std::ostream& out) { mega_to_project(in, "file.meg", out); });
}

}  // namespace

TEST(MegaReader, WritesProfileAndSample) {
    std::string const project = mega_project("#mega\nTITLE: Two genes\n#A ACGT\n#B AC-?\n");
    EXPECT_EQ(project,
              "# A data file tranlated from file.meg\n[Profile]\n\t Title= \" Two genes \"\n\t NbSamples=1\n"
              "\t GenotypicData=0\n\t DataType=STANDARD\n\t MissingData=\"?\"\n\t LocusSeparator=NONE\n\n[Data]\n"
              "\t [[Samples]]\n\t\t SampleName=\"Two genes\"\n\t\t SampleSize=2\n\t\t SampleData={\n"
              "\t\t\tA 1 ACGT\n\t\t\tB 1 AC-?\n       }\n");
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(MegaReader, ReadsOneLineManyLinesAndInterleavedFilesAlike) {
    for (char const* text : {
             "#mega\nTitle: t\n#A AAAACCCC\n#B AAAACCGG\n",
             "#MEGA\r\n!Title t;\r\n!Format DataType=DNA NSeqs=2 NSites=8;\r\n\r\n#A\r\nAAAA\r\nCCCC\r\n#B\r\nAAAA "
             "CCGG\r\n",
             "#mega\n!Title t;\n!Format\n  DataType=DNA\n  indel=- missing=? identical=. ;\n\n#A AAAA [4]\n#B .... "
             "[4]\n\n"
             "#A CCCC [8]\n#B ..GG [8]\n",
             "#mega\nTITLE t\n[a comment\n#X TTTT\n over lines]\n#A{north} AAAACCCC\n#B {south} AAAACCGG\n",
             "#mega\n!Title t;\n!Format missing=N;\n#A AAAACCCC\n#B AAAACCGG\n",
         }) {
        std::string const project = mega_project(text);
        EXPECT_TRUE(holds(project, "\t\t\tA 1 AAAACCCC\n\t\t\tB 1 AAAACCGG\n       }\n")) << text << project;
        EXPECT_TRUE(holds(project, "Title= \" t \"")) << project;
        EXPECT_TRUE(reads_cleanly(project)) << text;
    }
}

TEST(MegaReader, ResolvesTheFilesOwnSigns) {
    EXPECT_TRUE(holds(mega_project("#mega\n!Format missing=N identical=. ;\n#A ACGT\n#B .N.A\n"), "\t\t\tB 1 A?GA\n"));
    EXPECT_TRUE(holds(mega_project("#mega\nTitle: t\n#A ACGT\n#B .N.A\n"), "\t\t\tB 1 .N.A\n"));
}

TEST(MegaReader, ReadsATriangleOfDistances) {
    std::string const rows = "\t\t\tA B C \n\t\t\t0.0\n\t\t\t0.5 0.0\n\t\t\t1.5 2.25 0.0\n       }\n";
    for (char const* text : {
             "#mega\n!Title d;\n!Format DataType=distance DataFormat=LowerLeft NTaxa=3;\n#A\n#B\n#C\n[1]\n[2] 0.5\n[3] "
             "1.5 2.25\n",
             "#mega\nTITLE: d\n#A\n#B 0.5\n#C 1.5 2.25\n",
             "#mega\n!Title d;\n!Format DataType=Distance DataFormat=UpperRight;\n#A\n#B\n#C\n0.5 1.5\n2.25\n",
             "#mega\n!Title d;\n!Format DataType=Distance;\n#A 0\n#B 0.5 0\n#C 1.5 2.25 0\n",
         }) {
        std::string const project = mega_project(text);
        EXPECT_TRUE(holds(project,
                          "\t\t[[DistanceMatrix]] \n\t\t     MatrixName=\"Generic Distmat\"\n"
                          "\t\t     MatrixSize=3\n\t\t     LabelPosition=LINE \n\t\t     MatrixData={ \n" +
                              rows))
            << text << project;
        EXPECT_TRUE(holds(project, "\t\t\tA 1 \n\t\t\tB 1 \n\t\t\tC 1 \n       }\n"));
        ProjectText read(project);
        ASSERT_EQ(read.result, 1) << read.log;
        EXPECT_EQ(read.distances(2, 1), 2.25);
        EXPECT_EQ(read.distances(2, 0), 1.5);
        EXPECT_FALSE(read.logs("#[ERROR"));
    }
}

TEST(MegaReader, LargeTrianglesOfBothFormsAgree) {
    std::string lower = "#mega\n!Format DataType=Distance;\n",
                upper = "#mega\n!Format DataType=Distance DataFormat=UpperRight;\n";
    int const n = 7;
    auto const distance = [](int i, int j) { return std::to_string(10 * std::max(i, j) + std::min(i, j)) + " "; };
    for (int i = 0; i < n; ++i) {
        lower += "#s" + std::to_string(i) + "\n";
        upper += "#s" + std::to_string(i) + "\n";
    }
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j) lower += distance(i, j);
        for (int j = i + 1; j < n; ++j) upper += distance(i, j);
        lower += "\n";
        upper += "\n";
    }
    EXPECT_EQ(mega_project(lower), mega_project(upper));
    EXPECT_TRUE(holds(mega_project(lower), "\t\t\t60 61 62 63 64 65 0.0\n"));
}

TEST(MegaReader, DigitsAreSequencesUnlessATriangleIsToldOrPlain) {
    EXPECT_TRUE(holds(mega_project("#mega\n#A 0101\n#B 0011\n#C 1111\n"), "\t\t\tA 1 0101\n"));
}

TEST(MegaReader, ATriangleThatIsNotToldBeginsWithABareName) {
    // Cut off behind the second name, this would read as the distance 101.
    EXPECT_TRUE(fails_when_read(mega_project("#mega\nTITLE: t\n#A 0101\n#B")));
    EXPECT_TRUE(fails_when_read(mega_project("#mega\nTITLE: t\n#A 0.5 1.5\n#B 2.25\n#C\n")));
}

TEST(MegaReader, DeclaredNumbersMustBeFound) {
    std::string const format = "#mega\n!Title t;\n!Format DataType=DNA NSeqs=2 NSites=4;\n";
    EXPECT_TRUE(reads_cleanly(mega_project(format + "#A ACGT\n#B ACGA\n")));
    std::string const one = mega_project(format + "#A ACGT\n");
    EXPECT_TRUE(holds(one, "# error: 2 taxa are declared, and 1 found\n ***** ERROR *****\n"));
    EXPECT_TRUE(fails_when_read(one));
    std::string const shorter = mega_project(format + "#A ACG\n#B ACG\n");
    EXPECT_TRUE(holds(shorter, "# error: A has 3 sites instead of 4\n ***** ERROR *****\n"));
    EXPECT_TRUE(fails_when_read(shorter));
    EXPECT_TRUE(fails_when_read(mega_project("#mega\n!Format DataType=Distance NTaxa=3;\n#A\n#B\n1\n")));
    EXPECT_TRUE(reads_cleanly(mega_project("#mega\n!Format NSeqs=x NSites=-1;\n#A ACG\n#B ACG\n")));
}

TEST(MegaReader, BadFilesGiveProjectsThatFail) {
    for (char const* text : {"", "\n", "#mega\n", "ACGT\nACGT\n", "#mega\n#A ACGT\n#B ACG\n", "#mega\n#A\n#B ACGT\n",
                             "#mega\n#A AC}T\n", "#mega\n!Format DataType=Distance;\n#A\n#B x\n",
                             "#mega\n!Format DataType=Distance;\n#A\n#B\n#C 1\n", "[[[[", "#mega\n!never ended"})
        EXPECT_TRUE(fails_when_read(mega_project(text))) << text;
}

TEST(MegaReader, EveryBeginningOfAFileIsSurvived) {
    std::string const text =
        "#mega\n!Title t;\n!Format missing=N identical=. ;\n[c]\n#A{x} ACGT\n#B .N.A\n#A AC\n#B GT\n";
    for (std::size_t length = 0; length <= text.size(); ++length)
        EXPECT_TRUE(mega_project(text.substr(0, length)).starts_with("# A data file tranlated from file.meg\n"));
}

TEST(MegaWriter, WritesEveryCopyBehindItsName) {
    EXPECT_EQ(Export().write(imp_exp::mega, profile_text("DNA") + "[[Samples]]\n" +
                                                sample_text("S", "3", "Sequence17 2 ACGT\nb 1 AC-?\n")),
              "#mega\nTITLE:t\n#Sequen1    ACGT\n#Sequen2    ACGT\n#b3         AC-?\n");
}

TEST(MegaWriter, NoTwoCopiesShareAName) {
    std::string const out = Export().write(
        imp_exp::mega, profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "12", "h1 1 ACGT\nh 11 ACGA\n"));
    EXPECT_TRUE(holds(out, "#h1_1       ACGT\n#h2         ACGA\n"));
    EXPECT_TRUE(holds(out, "#h11        ACGA\n#h12        ACGA\n"));
    EXPECT_TRUE(reads_cleanly(mega_project(out)));
}

TEST(MegaWriter, BracketsAndBracesDoNotBecomeComments) {
    std::string project = profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "2", "h[x 1 ACGT\nh]y 1 ACGA\n");
    project.replace(project.find("\"t\""), 3, "\"a [b] c\"");
    std::string const out = Export().write(imp_exp::mega, project);
    EXPECT_EQ(out, "#mega\nTITLE:a _b_ c\n#h_x1       ACGT\n#h_y2       ACGA\n");
    EXPECT_TRUE(reads_cleanly(mega_project(out)));

    Export brackets;
    EXPECT_EQ(
        brackets.write(imp_exp::mega, profile_text("STANDARD") + "[[Samples]]\n" + sample_text("S", "1", "h 1 A[C\n")),
        "");
    EXPECT_TRUE(holds(brackets.fresh.log(), "  Impossible to write this data into MEGA format, because each\n"));
}

TEST(MegaWriter, RefusesAllelesOfSeveralCharacters) {
    Export words;
    EXPECT_EQ(words.write(imp_exp::mega, profile_text("MICROSAT", 1, "WHITESPACE") + "[[Samples]]\n" +
                                             sample_text("S", "1", "h 1 10 7\n")),
              "");
    EXPECT_TRUE(holds(words.fresh.log(),
                      "  Impossible to write this data into MEGA format, because each\n"
                      "  character is supposed to be a single allele.\n"));
}

TEST(MegaRoundTrip, SequencesAndWordsOfOneCharacterComeBack) {
    Export genotypes;
    std::string const text = genotypic_profile_text("STANDARD", 2) + "[[Samples]]\n" +
                             sample_text("S", "1", "i1 1 A b ?\nA c 1\n") +
                             sample_text("T", "1", "i2 1 B b 1\nA ? 1\n");
    std::string const out = genotypes.write(imp_exp::mega, text);
    EXPECT_EQ(out, "#mega\nTITLE:t\n#i1_1       Ab?\n#i1_2       Ac1\n#i2_3       Bb1\n#i2_4       A?1\n");
    EXPECT_TRUE(
        holds(genotypes.fresh.log(), "  into MEGA format, original population samples have been merged into \n"));
    EXPECT_TRUE(holds(genotypes.fresh.log(), "  The original data was of genotypic type and MEGA accepts only\n"));
    EXPECT_TRUE(holds(mega_project(out), "\t\t\ti1_1 1 Ab?\n\t\t\ti1_2 1 Ac1\n\t\t\ti2_3 1 Bb1\n\t\t\ti2_4 1 A?1\n"));
}
