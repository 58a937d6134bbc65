#include <gtest/gtest.h>

#include <map>

#include "translate/zentara.h"
#include "translate_fixture.h"

using namespace tov;
using namespace tov::test;

namespace {

using Files = std::map<std::string, std::string>;

std::string zentara_project(std::string const& text, Files const& files, std::string const& matrix = "",
                            std::string const& structure = "", std::string const& directory = "") {
    ZentaraSource source;
    source.directory = directory;
    source.matrix_file = matrix;
    source.structure_file = structure;
    source.open = [&files](std::string const& path) -> std::unique_ptr<std::istream> {
        auto const file = files.find(path);
        if (file == files.end()) return nullptr;
        return std::make_unique<std::istringstream>(file->second);
    };
    return project_of(text, [&](std::istream& in, std::ostream& out) { zentara_to_project(in, source, out); });
}

Files const populations = {
    {"North.pop", "h1 3\nh2 1\n"}, {"South bay.pop", "h1 2\n\nh3 5  # rare\n"}, {"m.dis", "h1 h2 h3\n0\n1 0\n2 3 0\n"}};

constexpr char main_file[] = "North\nSouth bay\n+++\nm.dis\n+++\nNorth\n+++\nSouth bay\n";

}  // namespace

TEST(ZentaraReader, WritesMatrixSamplesAndStructure) {
    EXPECT_EQ(
        zentara_project(main_file, populations),
        "[Profile]\n\t Title=\"File translated from Zentara\"\n\t NbSamples=2\n\t GenotypicData=0\n"
        "\t DataType=FREQUENCY\n\t LocusSeparator=NONE\n\n[Data]\n"
        "\n\t\t[[DistanceMatrix]] \n\t\t     MatrixName=\"Generic Distmat\"\n\t\t     MatrixSize=3\n"
        "\t\t     LabelPosition=LINE \n\t\t     MatrixData=EXTERN \"m.dis\"\n"
        "\n\t [[Samples]]\n"
        "\t\t SampleName=\"North\"\n\t\t SampleSize=4\n\t\t SampleData={\n\t\t\th1 3\n\t\t\th2 1\n\t\t }\n"
        "\t\t SampleName=\"South bay\"\n\t\t SampleSize=7\n\t\t SampleData={\n\t\t\th1 2\n\t\t\th3 5\n\t\t }\n"
        "     [[Structure]]\n     \tStructureName=\"Generic structure\"\n     \tNbGroups=2\n     \tIndividualLevel=0\n"
        "\t\tGroup={\n\t\t\t\"North\"\n}\n \t\tGroup={\n\t\t\t\"South bay\"\n}\n");
}

TEST(ZentaraReader, ExtraNamesCompleteAFileThatLacksParts) {
    Files files = populations;
    files["groups.txt"] = "North\n+++\nSouth bay\n";
    EXPECT_EQ(zentara_project("North\nSouth bay\n", files, "m.dis", "groups.txt"),
              zentara_project(main_file, populations));
    EXPECT_EQ(zentara_project("North\nSouth bay\n+++\n+++\n", files, "m.dis", "groups.txt"),
              zentara_project(main_file, populations));
}

TEST(ZentaraReader, LooksBesideTheSource) {
    Files files;
    for (auto const& [name, text] : populations) files["d/" + name] = text;
    std::string const project = zentara_project(main_file, files, "", "", "d/");
    EXPECT_TRUE(holds(project, "MatrixSize=3\n"));
    EXPECT_TRUE(holds(project, "EXTERN \"d/m.dis\""));
    EXPECT_TRUE(holds(project, "\t\t\th3 5\n"));
}

TEST(ZentaraReader, WithoutAMatrixThereIsNoSection) {
    std::string const project = zentara_project("North\n", populations);
    EXPECT_FALSE(holds(project, "DistanceMatrix"));
    EXPECT_FALSE(holds(project, "Structure"));
    EXPECT_TRUE(reads_cleanly(project));
}

TEST(ZentaraReader, MissingFilesMakeTheProjectFail) {
    std::string const lost = zentara_project("North\nLost\n", populations);
    EXPECT_TRUE(holds(lost, "\t\t SampleData={\n****ERROR**** Population Lost not found\n"));
    EXPECT_TRUE(fails_when_read(lost));
    std::string const no_matrix = zentara_project("North\n+++\nlost.dis\n", populations);
    EXPECT_TRUE(holds(no_matrix, "MatrixSize=0\n"));
    EXPECT_TRUE(fails_when_read(no_matrix));
}

TEST(ZentaraReader, AMissingStructureFileMakesTheProjectFail) {
    std::string const lost = zentara_project("North\n", populations, "", "groups.txt");
    EXPECT_TRUE(holds(lost, "\t\tGroup={\n****ERROR**** Structure groups.txt not found\n}\n"));
    EXPECT_TRUE(fails_when_read(lost));
}

TEST(ZentaraReader, LargeSumsAreWrittenOut) {
    std::string const project = zentara_project("P\n", {{"P.pop", "h1 1234567\nh2 0.5\n"}});
    EXPECT_TRUE(holds(project, "\t\t SampleSize=1234567.5\n"));
    EXPECT_TRUE(reads_cleanly(zentara_project("P\n", {{"P.pop", "h1 12345678\nh2 1\n"}})));
}

TEST(ZentaraReader, BadLinesMakeTheProjectFail) {
    for (char const* data : {"h1\n", "h1 x\n", "h1 -2\n", "h1 2 3\n", "h} 2\n", "h1 1e999\n"})
        EXPECT_TRUE(fails_when_read(zentara_project("P\n", {{"P.pop", data}}))) << data;
    for (char const* text : {"", "+++\n+++\n+++\n", "\n\n"})
        EXPECT_TRUE(fails_when_read(zentara_project(text, populations))) << text;
}

TEST(ZentaraWriter, WritesAFileAPopulationTheMatrixAndTheMainFile) {
    Export zentara;
    std::string const text =
        profile_text("DNA", 2) + "[[Samples]]\n" + sample_text("North", "3", "h1 2 ACGT\nh2 1 ACGA\n") +
        sample_text("a/b", "4", "h1 4 ACGT\n") +
        "[[Structure]]\nStructureName=\"s\"\nNbGroups=2\nGroup={\n\"a/b\"\n}\nGroup={\n\"North\"\n}\n";
    EXPECT_EQ(zentara.write(imp_exp::zentara, text), "North\na_b\n+++\ndist_mat.dis\n+++\na_b\n+++\nNorth\n");
    EXPECT_EQ(zentara.directory.read("North.pop"), "h1 2\nh2 1\n");
    EXPECT_EQ(zentara.directory.read("a_b.pop"), "h1 4\n");
    EXPECT_EQ(zentara.directory.read("dist_mat.dis"), "h1 h2\n0\n1 0\n");
    EXPECT_TRUE(holds(zentara.fresh.log(), "    Writing  out... done.\n"));
}

TEST(ZentaraWriter, DistancesLoseNoDigit) {
    Export zentara;
    std::string const text = profile_text("FREQUENCY", 2) +
                             "[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=3\nLabelPosition=LINE\nMatrixData={\n"
                             "h1 h2 h3\n0\n0.123456789012 0\n1234567.25 0.1 0\n}\n[[Samples]]\n" +
                             sample_text(" A ", "3", "h1 2\nh2 1\n") + sample_text("B", "4", "h3 4\n") +
                             "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={\n\" A \"\n\"B\"\n}\n";
    EXPECT_EQ(zentara.write(imp_exp::zentara, text), "A\nB\n+++\ndist_mat.dis\n+++\nA\nB\n");
    EXPECT_EQ(zentara.directory.read("dist_mat.dis"), "h1 h2 h3\n0\n0.123456789012 0\n1234567.25 0.1 0\n");
    EXPECT_EQ(zentara.directory.read("A.pop"), "h1 2\nh2 1\n") << "a name is trimmed when it is read back";
}

TEST(ZentaraWriter, KeepsTheProjectsOwnMatrix) {
    Export zentara;
    std::string const text = profile_text("FREQUENCY", 2) +
                             "[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=2\nLabelPosition=LINE\nMatrixData={\n"
                             "h2 h1\n0\n2.5 0\n}\n[[Samples]]\n" +
                             sample_text("A", "3", "h1 2\nh2 1\n") + sample_text("B", "4", "h1 4\n") +
                             "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={\n\"A\"\n\"B\"\n}\n";
    std::string const main_text = zentara.write(imp_exp::zentara, text);
    EXPECT_EQ(zentara.directory.read("dist_mat.dis"), "h2 h1\n0\n2.5 0\n");
    Files const files = {{"A.pop", zentara.directory.read("A.pop")},
                         {"B.pop", zentara.directory.read("B.pop")},
                         {"dist_mat.dis", zentara.directory.read("dist_mat.dis")}};
    std::string const again = zentara_project(main_text, files);
    EXPECT_TRUE(holds(again, "\t\t\th1 2\n\t\t\th2 1\n"));
    EXPECT_TRUE(holds(again, "\t\tGroup={\n\t\t\t\"A\"\n\t\t\t\"B\"\n}\n"));
}

TEST(ZentaraWriter, NeedsAStructureAndHaplotypes) {
    Export plain;
    EXPECT_EQ(plain.write(imp_exp::zentara, profile_text("DNA") + "[[Samples]]\n" + sample_text("S", "1", "h 1 AC\n")),
              "");
    EXPECT_TRUE(holds(plain.fresh.log(),
                      "\tNo genetic structure has been defined, it makes therefore no sense to\n"
                      " build a Zentara file.\n"));
    Export genotypes;
    EXPECT_EQ(
        genotypes.write(imp_exp::zentara, genotypic_profile_text("DNA", 1, "NONE") + "[[Samples]]\n" +
                                              sample_text("S", "1", "h 1 AC\nAC\n") +
                                              "[[Structure]]\nStructureName=\"s\"\nNbGroups=1\nGroup={\n\"S\"\n}\n"),
        "");
    EXPECT_TRUE(holds(genotypes.fresh.log(),
                      "    Zentara accepts only Haplotypic data format, the\n"
                      "    source data file contained Genoytypic data\n"));
}
