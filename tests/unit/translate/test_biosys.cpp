#include <gtest/gtest.h>

#include "translate/biosys.h"
#include "translate_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

std::string biosys_project(std::string const& text) {
    return project_of(text, [](std::istream& in, std::ostream& out) { biosys_to_project(in, out); });
}

/// A file of two samples and three loci, one line an individual.
constexpr char one_line_head[] =
    "Two lakes\nNOTU=2, NLOC=3, NALL=4, CRT;\n(1X,A7))\n LOCI01\n LOCI02\n LOCI03\n\n\nSTEP DATA:\nDATYP=1,ALPHA\n"
    "(A7,3X,3(1X,A1,A1))\n";

}  // namespace

TEST(BiosysFormat, ReadsNameAndAlleleFieldsOfOneLine) {
    std::optional<BiosysFormat> const format = read_format1("(A7,3X,2(1X,A2,A3))");
    ASSERT_TRUE(format);
    EXPECT_EQ(format->name.begin, 0u);
    EXPECT_EQ(format->name.width, 7u);
    EXPECT_EQ(format->blanks_behind_name, 4u);
    ASSERT_EQ(format->lines.size(), 1u);
    std::size_t const begins[] = {11, 13, 17, 19};
    std::size_t const widths[] = {2, 3, 2, 3};
    ASSERT_EQ(format->lines[0].alleles.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(format->lines[0].alleles[i].begin, begins[i]);
        EXPECT_EQ(format->lines[0].alleles[i].width, widths[i]);
    }
}

TEST(BiosysFormat, ReadsTwoAndThreeLines) {
    std::optional<BiosysFormat> const two = read_format2("( a5 , 2(1x,2a1) / 5X, 1(1X,2A1) )");
    ASSERT_TRUE(two);
    EXPECT_EQ(two->lines[0].alleles.size(), 4u);
    EXPECT_EQ(two->lines[1].alleles.size(), 2u);
    EXPECT_EQ(two->lines[1].alleles[0].begin, 6u);
    EXPECT_EQ(two->lines[1].blanks, 6u);
    ASSERT_TRUE(read_format3("(A3,1X,2A1/1X,2A1/1X,2A1)"));
    EXPECT_EQ(read_format3("(A3,1X,2A1/1X,2A1/1X,2A1)")->allele_fields(), 6u);
}

TEST(BiosysFormat, EachReaderTakesItsNumberOfLinesOnly) {
    EXPECT_FALSE(read_format1("(A3,2A1/2A1)"));
    EXPECT_FALSE(read_format2("(A3,2A1)"));
    EXPECT_FALSE(read_format3("(A3,2A1/2A1)"));
    EXPECT_FALSE(read_format3("(A3,2A1/2A1/2A1/2A1)"));
}

TEST(BiosysFormat, OtherTextsAreNoFormat) {
    for (char const* text : {"", "A7", "(", "()", "(A7", "(I5,A2)", "(A7)", "(3X)", "(A0,2A1)", "(A7,999999999(1X,A2))",
                             "(A7,9999999(9999999(9999999X)))", "(A99999999,A1)", "(A7,(((((((((((((((((((((A1"})
        EXPECT_FALSE(read_format1(text)) << text;
}

TEST(BiosysFormat, RepeatedGroupsWithoutColumnsComeToAnEnd) {
    std::string const long_number(10000, '0');
    std::string const separators(10000, ',');
    std::string groups;
    for (int i = 0; i < 5000; ++i) groups += "()";
    for (std::string const& group : {std::string("1000000(1000000(0X))"), "1000000(" + long_number + "1X)",
                                     "1000000(1X" + separators + ")", "1000000(1X," + groups + ")"})
        EXPECT_FALSE(read_format1("(A3," + group + ",2A1)")) << group.substr(0, 40);
    EXPECT_TRUE(read_format1("(A3,2(2(0X)),2A1)"));
    EXPECT_TRUE(read_format1("(A7,3X,33000(1X,A3,A3))"));
}

TEST(BiosysReader, WritesProfileFormatAndSamples) {
    std::string const project =
        biosys_project(std::string(one_line_head) +
                       "a1         AA BC AA\na2         AB CC DD\nNEXT\nb1         AA BB    \nNEXT\nEND;\n");
    EXPECT_EQ(project,
              "[Profile]\n\t Title=\"Two lakes\"\n\t NbSamples=2\n\t GenotypicData=1\n\t GameticPhase=0\n"
              "\t DataType=STANDARD\n\t MissingData=\"?\"\n\t LocusSeparator=WHITESPACE\n\n[Data]\n\t [[Samples]]\n"
              "#Number of lines=1\n#Name field has length 7 followed by 4 blanks\n#There are 3 loci, \n"
              "#\tformat of line number 1 : 4X, A1, A1\n"
              "#The given number of loci is compatible with the actual number of loci\n"
              "\t\t SampleName= \"Population1\"\n\t\t SampleSize=2\n\t\t SampleData={\n"
              "a1 1 A B A \n      A C A \na2 1 A C D \n      B C D \n     }\n"
              "\t\t SampleName= \"Population2\"\n\t\t SampleSize=0\n\t\t SampleData={\n"
              "# error: a line does not fit the format: b1         AA BB\n ***** ERROR *****\n     }\n")
        << "a line that ends before its last field does not fit";
}

TEST(BiosysReader, BlankFieldsInsideALineAreMissing) {
    std::string const project =
        biosys_project(std::string(one_line_head) + "a1         AA    AB\nNEXT;\nb1         ?? BB AA\nNEXT;\nEND;\n");
    EXPECT_TRUE(holds(project, "a1 1 A ? A \n      A ? B \n"));
    EXPECT_TRUE(holds(project, "b1 1 ? B A \n      ? B A \n"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(BiosysReader, ALineInFrontOfTheIndividualsNamesTheSample) {
    std::string const project = biosys_project(std::string(one_line_head) +
                                               "Lake one\na1         AA BB AB\nNEXT;\nThe \"second\" lake\n"
                                               "b1         AA BB AA\nNEXT;END;\n");
    EXPECT_TRUE(holds(project, "SampleName= \"Lake one\""));
    EXPECT_TRUE(holds(project, "SampleName= \"The  second  lake\""));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(BiosysReader, ReadsSeveralLinesAnIndividualAndStatementsBehindTheKey) {
    std::string const project = biosys_project(
        "notu = 1, nloc = 3;\nstep data:\ndatyp=1, alpha, (A3,1X,2(1X,2A1)/\n4X,1(1X,2A1))\nab   AA BB\n     CD\n\ncd  "
        " AB BB\n"
        "     CC\nNEXT;\nEND;\n");
    EXPECT_TRUE(holds(project,
                      "#Number of lines=2\n#Name field has length 3 followed by 2 blanks\n#There are 3 loci, \n"
                      "#\tformat of line number 1 : 2X, A1, A1\n#\tformat of line number 2 : 5X, A1, A1\n"));
    EXPECT_TRUE(holds(project, "ab 1 A B C \n      A B D \ncd 1 A B C \n      B B C \n"));
    EXPECT_TRUE(holds(project, "Title=\"\""));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(BiosysReader, OneFieldALocusIsSplitInTwo) {
    std::string const project =
        biosys_project("t\nNOTU=1,NLOC=2;\nSTEP DATA:\nDATYP=1,ALPHA\n(A4,2(1X,A4))\na1   0102 0203\nNEXT;\nEND;\n");
    EXPECT_TRUE(holds(project, "a1 1 01 02 \n      02 03 \n")) << project;
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(BiosysReader, ANumberOfLociThatDiffersIsTold) {
    std::string text = std::string(one_line_head) + "a1         AA BC AA\nNEXT\nb1         AA BC AA\nNEXT\nEND;\n";
    text.replace(text.find("NLOC=3"), 6, "NLOC=4");
    EXPECT_TRUE(holds(biosys_project(text), "#There are 3 loci, \n"));
    EXPECT_TRUE(holds(biosys_project(text),
                      "#!!!#The given number of loci is not compatible with the actual number of loci!!!\n"));
}

TEST(BiosysReader, TruncatedAndGarbageFilesGiveProjectsThatFail) {
    std::string const text = std::string(one_line_head) + "a1         AA BB AA\nNEXT;\nb1         AA BB AB\nNEXT;";
    EXPECT_TRUE(reads_cleanly(biosys_project(text)));
    for (std::size_t length = 0; length < text.size() - 1; ++length)
        EXPECT_TRUE(fails_when_read(biosys_project(text.substr(0, length)))) << length;
    for (char const* garbage : {"\n\n", "NOTU=1,NLOC=1;\nSTEP DATA:\nDATYP=1\nnothing\n",
                                "NOTU=99999999999999999;\nSTEP DATA:\nDATYP (A1,2A1)\n"})
        EXPECT_TRUE(fails_when_read(biosys_project(garbage))) << garbage;
}

TEST(BiosysWriter, WritesHeadFormatAndIndividuals) {
    Export two;
    std::string const text = genotypic_profile_text("MICROSAT", 2) + "[[Samples]]\n" +
                             sample_text("S", "3", "individual1 2 10 ?\n102 7\ni2 1 10 7\n10 8\n") +
                             sample_text("T", "1", "x 1 10 8\n10 8\n");
    EXPECT_EQ(two.write(imp_exp::biosys, text),
              "t\nNOTU=2, NLOC=2, NALL=2, CRT;\n(1X,A7))\n LOCI01\n LOCI02\n\n\nSTEP DATA:\nDATYP=1,ALPHA\n"
              "(A7,3X,2(1X,A3,A3))\n"
              "individ    10 102 ?  7  \nindivid    10 102 ?  7  \ni2         10 10  7  8  \nNEXT\n"
              "x          10 10  8  8  \nNEXT\nEND;\n");
}

TEST(BiosysWriter, NamesLociWithTwoDigits) {
    std::string alleles = "1";
    for (int l = 2; l <= 12; ++l) alleles += " 1";
    std::string const out =
        Export().write(imp_exp::biosys, genotypic_profile_text("MICROSAT") + "[[Samples]]\n" +
                                            sample_text("S", "1", "i 1 " + alleles + "\n" + alleles + "\n"));
    EXPECT_TRUE(holds(out, " LOCI09\n LOCI10\n LOCI11\n LOCI12\n"));
    EXPECT_TRUE(holds(out, "(A7,3X,12(1X,A1,A1))\n"));
}

TEST(BiosysWriter, RefusesHaplotypes) {
    Export haplotypes;
    EXPECT_EQ(
        haplotypes.write(imp_exp::biosys, profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "1", "h 1 AC\n")),
        "");
    EXPECT_TRUE(holds(haplotypes.fresh.log(),
                      "  It is not possible to translate Haplotypic data into the\n  BIOSYS format.\n"));
}

TEST(BiosysRoundTrip, GenotypesComeBackIdentical) {
    std::string const text = genotypic_profile_text("MICROSAT", 2) + "[[Samples]]\n" +
                             sample_text("S", "2", "a1 1 10 ? 7\n102 ? 9\na2 1 ? 7 7\n10 8 8\n") +
                             sample_text("T", "1", "b1 1 10 8 7\n10 8 7\n");
    std::string const again = biosys_project(Export().write(imp_exp::biosys, text));
    EXPECT_TRUE(holds(again, "a1 1 10 ? 7 \n      102 ? 9 \na2 1 ? 7 7 \n      10 8 8 \n"));
    EXPECT_TRUE(holds(again, "b1 1 10 8 7 \n      10 8 7 \n"));
    EXPECT_TRUE(reads_cleanly(again));
}
