// The section [[Mantel]] and the object that it fills.
#include <gtest/gtest.h>

#include <sstream>

#include "input/settings.h"
#include "support/fresh_process.h"
#include "support/project_text.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::FreshProcess;
using test::ScratchDirectory;

struct MantelText {
    explicit MantelText(std::string const& section) {
        std::istringstream is(section);
        my_string text("[[MANTEL]]");
        result = mantel.NewOpenMantel(is, profile, line, text, seen);
        log = fresh.log();
    }
    [[nodiscard]] bool logs(std::string const& part) const { return log.find(part) != std::string::npos; }
    FreshProcess fresh;
    ProfileSettings profile;
    Mantel mantel;
    Mantel::SeenKeys seen;
    int line = 0;
    int result = 0;
    std::string log;
};

std::string const labels = "YMatrixLabels={\n\"a\" \"b\"\nc\n}\n";
std::string const used = "UsedYMatrixLabels={\n\"a\" \"c\"\n}\n";
std::string matrix(int x) {
    std::string const v = std::to_string(x);
    return "DistMatMantel={\n0\n" + v + " 0\n" + v + "1 " + v + "2 0\n}\n";
}

TEST(MantelData, StartsEmptyWithItsSixWords) {
    Mantel mantel;
    EXPECT_EQ(mantel.Y_types[0], "fst");
    EXPECT_EQ(mantel.Y_types[1], "log_fst");
    EXPECT_EQ(mantel.Y_types[2], "slatkinlinearfst");
    EXPECT_EQ(mantel.Y_types[3], "log_slatkinlinearfst");
    EXPECT_EQ(mantel.Y_types[4], "nm");
    EXPECT_EQ(mantel.Y_types[5], "custom");
    EXPECT_EQ(mantel.nb_matrices, 0);
    EXPECT_EQ(mantel.used_labels.GetItemsInContainer(), 0);
    mantel.nb_labels = 4;
    mantel.rY1 = 0.5;
    mantel.used_labels.Add("x");
    mantel.X1.create(3);
    mantel.reset();
    EXPECT_EQ(mantel.nb_labels, 0);
    EXPECT_EQ(mantel.rY1, 0.0);
    EXPECT_EQ(mantel.used_labels.GetItemsInContainer(), 0);
    EXPECT_EQ(mantel.X1.dimension(), 0);
    EXPECT_EQ(mantel.Y_types[5], "custom");
}

TEST(MantelReading, TwoMatricesWithAComputedY) {
    MantelText const t("# note\nMatrixSize=3\nMatrixNumber=2\nYMatrix=\"FST\"\n" + labels + matrix(4) + used);
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.mantel.nb_matrices, 2);
    EXPECT_EQ(t.mantel.nb_labels, 3);
    EXPECT_EQ(t.mantel.Y_type, "fst");
    ASSERT_EQ(t.mantel.labels.size(), 3u);
    EXPECT_EQ(t.mantel.labels[2], "c");
    EXPECT_EQ(t.mantel.X1(1, 0), 4.0);
    EXPECT_EQ(t.mantel.X1(2, 1), 42.0);
    EXPECT_EQ(t.mantel.X2.dimension(), 0);
    ASSERT_EQ(t.mantel.used_labels.GetItemsInContainer(), 2);
    EXPECT_EQ(t.mantel.used_labels[1], "c");
    EXPECT_TRUE(t.seen.matrix_size && t.seen.matrix_number && t.seen.y_matrix_labels && t.seen.dist_mat_mantel &&
                t.seen.used_y_matrix_labels);
    EXPECT_TRUE(t.logs("\t\tReading Mantel distance matrix ...\n\t\tdone ! ("));
}

TEST(MantelReading, CustomMatricesComeAsYThenX1ThenX2) {
    MantelText const t("MatrixSize=3\nMatrixNumber=3\nYMatrix=custom\n" + labels + matrix(4) + matrix(5) + matrix(6) +
                       used);
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.mantel.Y_custom(1, 0), 4.0);
    EXPECT_EQ(t.mantel.X1(1, 0), 5.0);
    EXPECT_EQ(t.mantel.X2(1, 0), 6.0);
}

TEST(MantelReading, WithAComputedYOneMatrixMayBeMissingOrTooMany) {
    MantelText const fewer("MatrixSize=3\nMatrixNumber=3\nYMatrix=nm\n" + labels + matrix(5) + matrix(6) + used);
    ASSERT_EQ(fewer.result, 1) << fewer.log;
    EXPECT_EQ(fewer.mantel.X1(1, 0), 5.0);
    EXPECT_EQ(fewer.mantel.X2(1, 0), 6.0);
    MantelText const all("MatrixSize=3\nMatrixNumber=3\nYMatrix=nm\n" + labels + matrix(5) + matrix(6) + matrix(7) +
                         used);
    ASSERT_EQ(all.result, 1) << all.log;
    EXPECT_EQ(all.mantel.X1(1, 0), 5.0);
    EXPECT_EQ(all.mantel.X2(1, 0), 6.0);
}

TEST(MantelReading, AnotherNumberOfMatricesIsRefused) {
    for (std::string const& section :
         {"MatrixSize=3\nMatrixNumber=3\nYMatrix=custom\n" + labels + matrix(1) + matrix(2) + used,
          "MatrixSize=3\nMatrixNumber=2\nYMatrix=custom\n" + labels + matrix(1) + matrix(2) + matrix(3) + used,
          "MatrixSize=3\nMatrixNumber=2\nYMatrix=fst\n" + labels + matrix(1) + matrix(2) + matrix(3) + used,
          "MatrixSize=3\nMatrixNumber=3\nYMatrix=fst\n" + labels + matrix(1) + used}) {
        MantelText const t(section);
        EXPECT_EQ(t.result, 0) << section;
        EXPECT_TRUE(t.logs("\tUnexpected number of matrices defined (")) << t.log;
    }
    MantelText const four("MatrixSize=3\n" + matrix(1) + matrix(2) + matrix(3) + matrix(4));
    EXPECT_EQ(four.result, 0);
    EXPECT_TRUE(four.logs("\tUnexpected number of matrices defined (4). Aborting reading project.\n"));
}

TEST(MantelReading, WithoutUsedLabelsAllAreUsed) {
    MantelText const t("MatrixSize=3\nMatrixNumber=2\nYMatrix=fst\n" + labels + matrix(4));
    ASSERT_EQ(t.result, 1);
    EXPECT_TRUE(
        t.logs("\tWarning: Section UsedYMatrixLabels not found. We shall assume that all labels previously defined "
               "in section YMatrixLabels are valid\n"));
    EXPECT_EQ(t.mantel.used_labels.GetItemsInContainer(), 3);
    EXPECT_FALSE(t.seen.used_y_matrix_labels);
}

TEST(MantelReading, Faults) {
    std::string const head = "MatrixSize=3\nMatrixNumber=2\n";
    struct Case {
        std::string section, message;
    };
    for (Case const& c : {
             Case{"YMatrix fst\n", "\tMissing '=' sign after keyword \"YMatrix\" on line 1\n"},
             Case{"\nYMatrix=\"gst\"\n",
                  "\tInvalid YMatrix type (\"gst\")defined on line 2. Aborting reading project.\n"},
             Case{"YMatrix=\"gst\"\n", "\tProject file, Line #1 : Invalid value ('gst') assigned to keyword"},
             Case{"MatrixSize=many\n", "Bad value (\"many\") assigned to MatrixSize on line 1\n"},
             Case{"MatrixSize=2\n",
                  "\tInvalid value assigned to MatrixSize on line 1. Value of MatrixSize needs to be at least 3. "
                  "Aborting "
                  "reading project.\n"},
             Case{head + labels + "MatrixSize=3\nMatrixSize=4\n",
                  "\tMatrixSize found on line 8 differs from the size of the labels or matrices read before. Aborting "
                  "reading project.\n"},
             Case{head + matrix(1) + "MatrixSize=4\n", "\tMatrixSize found on line 8 differs from the size of"},
             Case{"MatrixNumber=4\n",
                  "Invalid value (4) assigned to MatrixNumber on line 1. Value needs to be either 2 or 3. Aborting "
                  "reading "
                  "project.\n"},
             Case{"MatrixNumber=x\n", "Invalid value (x) assigned to MatrixNumber on line 1."},
             Case{labels,
                  "\tKeyword YMatrixLabels found on line 1 before MatrixSize has been defined. Abort reading "
                  "matrix.\n"},
             Case{matrix(1), "\tKeyword DistMatMantel found on line 1 before MatrixSize has been defined."},
             Case{head + "YMatrixLabels={\na b\nc d\n}\n", "\tToo many labels found on line 5\n"},
             Case{head + "YMatrixLabels={\na b c\nd\n}\n",
                  "\tToo many YMatrixLabels are defined. Only 3 labels were expected. Check for additional labels "
                  "potentially present on line 5\n"},
             Case{head + "YMatrixLabels={\na b c\n",
                  "\tMissing closing brace in YMatrixLabels definition. Aborting reading project.\n"},
             Case{head + "YMatrixLabels={\na b c\nYMatrix=fst\n",
                  "\tMissing closing brace in YMatrixLabels definition. Aborting reading project.\n"},
             Case{head + "YMatrixLabels=\na b c\n}\n",
                  "\tMissing opening brace in YMatrixLabels definition. Aborting reading project\n"},
             Case{head + "YMatrixLabels={\na b\n}\n",
                  "\tInsufficient number of labels defined in YMatrixLabels section (2 instead of 3). Aborting reading "
                  "project\n"},
             Case{head + "YMatrixLabels={\na \"b\n}\n", "\tUnable to read label #2 on line 4."},
             Case{head + labels + "UsedYMatrixLabels={\n\"a\" \"z\"\n}\n",
                  "\tLabel \"z\" defined on line 8 has not been defined previously in YMatrixLabels section. Aborting "
                  "reading project.\n"},
             Case{head + labels + "UsedYMatrixLabels={\n\"a\"\n}\n",
                  "\tToo few labels (1) defined in UsedYMatrixLabels section. At least 2 labels need to be defined. "
                  "Aborting reading project.\n"},
             Case{head + labels + "UsedYMatrixLabels={\n\"a\" b\n",
                  "\tMissing closing brace in UsedYMatrixLabels definition. Aborting reading project.\n"},
             Case{head + labels + "UsedYMatrixLabels=\n\"a\" b\n",
                  "\tMissing opening brace in UsedYMatrixLabels definition. Aborting reading project\n"},
             Case{head + "DistMatMantel={\n0\n1 x\n}\n",
                  "\tBad value (\"x\") for distance #2 on line 5. Aborting reading distance matrix.\n"},
             Case{head + "DistMatMantel={\n0\n1 0\n}\n",
                  "\tInvalid dimension for distance matrix: 3 rows were expected, but only 2 were found."},
             Case{head + "DistMatMantel={\n0\n1 0\n}\n",
                  "\t\tProblems in reading DisMatMantel section... aborting reading  project file.\n"},
         }) {
        MantelText const t(c.section);
        EXPECT_EQ(t.result, 0) << c.section;
        EXPECT_TRUE(t.logs(c.message)) << c.section << " gave " << t.log;
    }
}

TEST(MantelReading, MatricesMayStandInFiles) {
    ScratchDirectory scratch;
    scratch.write("x.dis", "0\n7 0\n8 9 0\n");
    FreshProcess fresh;
    fresh.keep(settings::input_file, std::string("p.tvp"));
    MantelText const t("MatrixSize=3\nMatrixNumber=2\nYMatrix=fst\n" + labels + "DistMatMantel= EXTERN \"x.dis\"\n" +
                       used);
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.mantel.X1(2, 1), 9.0);
    EXPECT_TRUE(t.logs("\tReading Distance Matrix in external file \"x.dis\"\n"));
    EXPECT_TRUE(t.logs("reading distance matrix in external file"));
    MantelText const absent("MatrixSize=3\nDistMatMantel= EXTERN \"y.dis\"\n");
    EXPECT_EQ(absent.result, 0);
    EXPECT_TRUE(
        absent.logs("\tWarning: External file \"y.dis\" listed on line 2 cannot be open. Check that it exists. "
                    "Aborting reading project\n"));
    EXPECT_TRUE(absent.logs("unable to read external distance matrix file"));
}

TEST(MantelReading, InAProjectItNeedsSamplesAndItsKeys) {
    std::string const head = test::profile_text("DNA");
    std::string const samples = "[[Samples]]\n" + test::sample_text("a", "1", "H1 1 ACGT\n");
    test::ProjectText const early(head + "[[Mantel]]\nMatrixSize=3\n" + samples);
    EXPECT_EQ(early.result, 0);
    EXPECT_TRUE(early.logs("[MANTEL] section defined before the [SAMPLES] section. Aborting reading project"));
    test::ProjectText const empty(head + samples + "[[Mantel]]\n");
    EXPECT_EQ(empty.result, 0);
    for (char const* key : {"MatrixSize", "MatrixNumber", "YMatrixLabels", "DistMatMantel", "UsedYMatrixLabels"})
        EXPECT_TRUE(empty.logs(std::string("\tKeyword \"") + key +
                               "\" not found in Mantel section. Check your project file.\n"));
    test::ProjectText const whole(head + samples +
                                  "[[Structure]]\nNbGroups=1\nGroup={\"a\"}\n[[Mantel]]\nMatrixSize=3\n" +
                                  "MatrixNumber=2\nYMatrix=log_fst\n" + labels + matrix(2));
    EXPECT_EQ(whole.result, 1) << whole.log;
    EXPECT_EQ(whole.mantel.X1(1, 0), 2.0);
    EXPECT_EQ(whole.structure.nb_groups(), 1);
    test::ProjectText const bad(head + samples + "[[Mantel]]\nMatrixSize=2\n");
    EXPECT_EQ(bad.result, 0);
    EXPECT_TRUE(bad.logs("\tProblems in reading Mantel section... aborting reading  project file.\n"));
}

}  // namespace
}  // namespace tov
