// Distance matrices: the object, and the reader of its rows.
#include <gtest/gtest.h>

#include <sstream>

#include "base/dmat.h"
#include "input/matrix_rows.h"
#include "output/xml.h"
#include "support/fresh_process.h"

namespace tov {
namespace {

using test::FreshProcess;

bool has(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

struct MatrixText {
    MatrixText(int size, std::string const& text, bool labels_in_line = true, bool brace_required = true,
               std::string const& first = " ") {
        matrix.nb_labels = size;
        std::istringstream is(text);
        result = matrix.ReadDistanceMatrix(is, labels_in_line, line, first, brace_required);
        log = fresh.log();
    }
    FreshProcess fresh;
    DistMat matrix;
    int result = 0;
    int line = 20;
    std::string log;
};

TEST(DistanceMatrixReading, LabelsInTheFirstLine) {
    MatrixText const t(3, "A \"B b\" C\n0\n1.5 0\n# note\n2 3 0 }\nrest");
    EXPECT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.log, "");
    EXPECT_EQ(t.matrix.dimension(), 3);
    ASSERT_EQ(t.matrix.labels.size(), 3u);
    EXPECT_EQ(t.matrix.labels[1], "B b");
    EXPECT_EQ(t.matrix(1, 0), 1.5);
    EXPECT_EQ(t.matrix(0, 2), 2.0);
    EXPECT_EQ(t.matrix(2, 1), 3.0);
    EXPECT_EQ(t.matrix(2, 2), 0.0);
    EXPECT_EQ(t.line, 25);
}

TEST(DistanceMatrixReading, LabelsAtTheHeadOfEachRow) {
    MatrixText const t(2, "A 0\n'B' 4e-1 0\n}", false);
    EXPECT_EQ(t.result, 1) << t.log;
    ASSERT_EQ(t.matrix.labels.size(), 2u);
    EXPECT_EQ(t.matrix.labels[0], "A");
    EXPECT_EQ(t.matrix.labels[1], "B");
    EXPECT_EQ(t.matrix(1, 0), 0.4);
}

TEST(DistanceMatrixReading, TheBraceMayComeFirstOrWithLabels) {
    EXPECT_EQ(MatrixText(1, "{\nA\n0\n}", true, true, "").result, 1);
    EXPECT_EQ(MatrixText(1, "0\n}", true, true, "A").result, 1);
}

TEST(DistanceMatrixReading, AFileOfItsOwnNeedsNoBrace) {
    EXPECT_EQ(MatrixText(2, "A B\n0\n1 0\n", true, false, "").result, 1);
    EXPECT_EQ(MatrixText(2, "A B\n0\n1 0", true, false, "").result, 1);
}

TEST(DistanceMatrixReading, MissingLabels) {
    MatrixText const t(3, "A B\n0\n1 0\n");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(has(t.log,
                    "\tMissing labels on line 21. Only 2 labels were found while 3 were expected. Last correctly "
                    "read label was \"B\". Aborting reading Distance Matrix\n"));
}

TEST(DistanceMatrixReading, MoreLabelsAreAWarning) {
    MatrixText const t(2, "A B C D\n0\n1 0\n}");
    EXPECT_EQ(t.result, 1);
    EXPECT_TRUE(has(t.log, "\tWarning: More labels than anticipated (2) are declared on line 21\n"));
    EXPECT_EQ(t.matrix.labels.size(), 2u);
}

TEST(DistanceMatrixReading, ALabelWithoutItsQuote) {
    MatrixText const line(2, "A \"B\n0\n1 0\n}");
    EXPECT_EQ(line.result, 0);
    EXPECT_TRUE(has(line.log, "\tUnable to read label #2 on line 21. Aborting reading Distance Matrix\n"));
    MatrixText const head(2, "A 0\n'B 1 0\n}", false);
    EXPECT_EQ(head.result, 0);
    EXPECT_TRUE(has(head.log, "\tUnable to read label #2 on line 22. Aborting reading Distance Matrix\n"));
}

TEST(DistanceMatrixReading, ABraceInsideTheRows) {
    MatrixText const t(3, "A B C\n0\n1 0 }\n");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(has(t.log, "\tUnexpected closing brace found on line 23. Aborting reading distance matrix.\n"));
    MatrixText const labels(2, "A B }\n0\n");
    EXPECT_EQ(labels.result, 0);
    EXPECT_TRUE(has(labels.log, "\tUnexpected closing brace found on line 21. Aborting reading distance matrix.\n"));
}

TEST(DistanceMatrixReading, BadAndMissingValues) {
    MatrixText const bad(3, "A B C\n0\n1 0\n2 x 0\n}");
    EXPECT_EQ(bad.result, 0);
    EXPECT_TRUE(has(bad.log, "\tBad value (\"x\") for distance #2 on line 24. Aborting reading distance matrix.\n"));
    MatrixText const large(1, "A\n1e999\n}");
    EXPECT_TRUE(
        has(large.log, "\tBad value (\"1e999\") for distance #1 on line 22. Aborting reading distance matrix.\n"));
    MatrixText const missing(3, "A B C\n0\n1 0\n2 3\n}");
    EXPECT_EQ(missing.result, 0);
    EXPECT_TRUE(has(missing.log, "\tUnable to read distance #3 on line 24. Aborting reading distance matrix.\n"));
}

TEST(DistanceMatrixReading, MoreValuesAreAWarningSoThatASquareMatrixIsRead) {
    MatrixText const t(2, "A B\n0 1\n1 0\n}");
    EXPECT_EQ(t.result, 1);
    EXPECT_TRUE(has(t.log, "\tWarning:  Too many distances are defined on line 22 instead of 1\n"));
    EXPECT_EQ(t.matrix(1, 0), 1.0);
}

TEST(DistanceMatrixReading, ASectionOrTheEndBeforeTheBrace) {
    for (char const* section : {"[[Samples]]", "[[Structure]]", "[[mantel]]"}) {
        MatrixText const t(2, std::string("A B\n0\n1 0\n") + section + "\n");
        EXPECT_EQ(t.result, 0);
        EXPECT_TRUE(has(t.log,
                        "\tNo closing brace in distance matrix definition up to line 24. Aborting reading "
                        "project.\n"));
    }
    MatrixText const early(2, "A B\n0\n[[Samples]]\n");
    EXPECT_TRUE(has(early.log, "\tNo closing brace in distance matrix definition up to line 23. Aborting"));
    MatrixText const end(2, "A B\n0\n1 0\n");
    EXPECT_EQ(end.result, 0);
    EXPECT_TRUE(has(end.log, "\tNo closing brace in distance matrix definition up to line 23. Aborting"));
    MatrixText const more(2, "A B\n0\n1 0\n2 3 0\n}");
    EXPECT_EQ(more.result, 0);
    EXPECT_TRUE(has(more.log, "\tNo closing brace in distance matrix definition up to line 24. Aborting"));
}

TEST(DistanceMatrixReading, TooFewRowsAreSeenAtTheBrace) {
    MatrixText const t(3, "A B C\n0\n1 0\n}");
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(has(t.log,
                    "\tInvalid dimension for distance matrix: 3 rows were expected, but only 2 were found. "
                    "Aborting reading project.\n"));
    MatrixText const end(3, "A B C\n0\n1 0\n", true, false);
    EXPECT_TRUE(has(end.log, "\tInvalid dimension for distance matrix: 3 rows were expected, but only 2 were found."));
}

TEST(DistanceMatrixReading, AHugeSizeCostsNoMemoryBeforeItsRowsAreThere) {
    MatrixText const t(2000000000, "A B C\n0\n}");
    EXPECT_EQ(t.result, 0);
    MatrixText const head(2000000000, "A 0\n}", false);
    EXPECT_EQ(head.result, 0);
    EXPECT_TRUE(has(head.log, "\tInvalid dimension for distance matrix: 2000000000 rows were expected, but only 1"));
}

TEST(DistanceMatrixReading, ALargeMatrixIsReadWhole) {
    int const n = 600;
    std::ostringstream text;
    for (int i = 0; i < n; ++i) {
        text << "h" << i;
        for (int j = 0; j <= i; ++j) text << ' ' << (i == j ? 0 : i * 1000 + j);
        text << '\n';
    }
    MatrixText const t(n, text.str() + "}", false);
    ASSERT_EQ(t.result, 1) << t.log;
    EXPECT_EQ(t.matrix(599, 123), 599123.0);
    EXPECT_EQ(t.matrix(123, 599), 599123.0);
    EXPECT_EQ(t.matrix.labels[599], "h599");
}

TEST(DistanceMatrix, NameIsFoundByTheExplorePath) {
    DistMat m;
    std::istringstream is("\n MatrixName=\"dist one\"\n MatrixSize=2\n");
    EXPECT_EQ(m.get_mat_name(is), 1);
    EXPECT_EQ(m.name, "dist one");
    std::istringstream none(" MatrixSize=2\n MatrixData={\n0\n");
    EXPECT_EQ(m.get_mat_name(none), 0);
}

TEST(DistanceMatrix, InitializeGivesZerosAndEmptyLabels) {
    DistMat m;
    EXPECT_EQ(m.nb_labels, 0);
    EXPECT_EQ(m.name, "");
    EXPECT_EQ(m.project, nullptr);
    EXPECT_EQ(m.initializeMatrixAndArrays(3), 1);
    EXPECT_EQ(m.nb_labels, 3);
    EXPECT_EQ(m.dimension(), 3);
    ASSERT_EQ(m.labels.size(), 3u);
    EXPECT_EQ(m.labels[2], "");
    EXPECT_EQ(m(2, 1), 0.0);
}

DistMat small_matrix() {
    DistMat m;
    m.initializeMatrixAndArrays(2);
    m.name = "mine";
    m.labels = {my_string("A"), my_string("B")};
    m.set_data(1.25, 1, 0);
    return m;
}

TEST(DistanceMatrix, ResetKeepsTheDimensionAlone) {
    DistMat m = small_matrix();
    m.set_conventional_fst(1);
    m.reset();
    EXPECT_EQ(m.dimension(), 2);
    EXPECT_EQ(m.nb_labels, 0);
    EXPECT_EQ(m.name, "");
    EXPECT_TRUE(m.labels.empty());
    EXPECT_EQ(m.conventional_fst(), 0);
    EXPECT_EQ(m(1, 0), 0.0);
}

TEST(DistanceMatrix, ACopyHasLabelsAndNameButNotTheConventionalFlag) {
    DistMat const source = small_matrix();
    DistMat copy;
    copy = source;
    EXPECT_EQ(copy.nb_labels, 2);
    EXPECT_EQ(copy.name, "mine");
    EXPECT_EQ(copy.labels[1], "B");
    EXPECT_EQ(copy(0, 1), 1.25);
    DistMat conventional = small_matrix();
    conventional.set_conventional_fst(1);
    DistMat const plain(conventional);
    EXPECT_EQ(plain.conventional_fst(), 0);
    EXPECT_EQ(plain(1, 0), 1.0);
}

TEST(DistanceMatrix, SelfAssignmentLosesTheLabels) {
    DistMat m = small_matrix();
    DistMat& same = m;
    m = same;
    EXPECT_EQ(m.nb_labels, 0);
    EXPECT_TRUE(m.labels.empty());
}

TEST(DistanceMatrix, WithoutLabelsNothingIsWritten) {
    DistMat m;
    std::ostringstream os;
    os << m;
    EXPECT_EQ(os.str(), "");
}

TEST(DistanceMatrix, IsWrittenInProjectFileForm) {
    FreshProcess fresh;
    fresh.keep(xmlOutput, false);
    DistMat m = small_matrix();
    std::ostringstream os;
    os << m;
    EXPECT_EQ(os.str(),
              "\t[[DistanceMatrix]]\n\n\t\tMatrixName= \"mine\"\n\t\tMatrixSize= 2\n\t\tLabelPosition=LINE\n"
              "\t\tMatrixData={\nA B \n   0.00000\n   1.25000   0.00000\n\t\t}\n");
}

TEST(DistanceMatrix, WhatIsWrittenIsReadAgainHoweverLargeTheValues) {
    FreshProcess fresh;
    fresh.keep(xmlOutput, false);
    MatrixText const source(3, "A B C\n0\n999.99999 0\n1000 -1000 123456789.5 }");
    ASSERT_EQ(source.result, 1) << source.log;
    DistMat m(source.matrix);
    std::ostringstream os;
    os << m;
    std::string const text = os.str();
    EXPECT_TRUE(has(text, "\n   0.00000\n 999.99999   0.00000\n1000.00000 -1000.00000 123456789.50000\n")) << text;
    MatrixText const again(3, text.substr(text.find('{') + 1));
    ASSERT_EQ(again.result, 1) << again.log;
    EXPECT_EQ(again.matrix(2, 0), 1000.0);
    EXPECT_EQ(again.matrix(2, 1), -1000.0);
    EXPECT_EQ(again.matrix(2, 2), 123456789.5);
}

TEST(DistanceMatrix, InXmlTheTriangleStandsInAnElement) {
    FreshProcess fresh;
    fresh.keep(xmlOutput, true);
    DistMat m = small_matrix();
    std::ostringstream os;
    os << m;
    EXPECT_TRUE(has(os.str(), "</data> <hapDistMatrix time=\""));
    EXPECT_TRUE(has(os.str(), "</hapDistMatrix> <data>\n\n\t\t}\n"));
}

TEST(DistanceMatrix, AConventionalOneIsOnlyNamed) {
    DistMat m = small_matrix();
    m.set_conventional_fst(1);
    std::ostringstream os;
    os << m;
    EXPECT_TRUE(has(os.str(), "A B \n\nConventional FST Matrix: Dij=1 if i!=j and O else:\n\n\t\t}\n"));
}

TEST(DistanceMatrix, MissingLabelStringsAreReported) {
    FreshProcess fresh;
    DistMat m = small_matrix();
    m.labels.clear();
    std::ostringstream os;
    os << m;
    EXPECT_TRUE(has(fresh.log(), "[INFO #"));
    EXPECT_TRUE(has(fresh.log(), "\"operator <<(ostream& os, DistMat& DM)\" : missing haplotype label(s)"));
    EXPECT_TRUE(has(os.str(), "\n\t\t}\n"));
}

}  // namespace
}  // namespace tov
