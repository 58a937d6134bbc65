// What stands in the tables for scripts: descriptions, heads, and the document written from them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>

#include "output/sumstat_keywords.h"
#include "output/table_columns.h"
#include "support/tables_document.h"

namespace tov {
namespace {

TEST(TableColumns, TheDocumentIsWrittenFromThem) {
    std::string const path = std::string(TOV_SOURCE_DIR) + "/docs/tables.md";
    if (std::getenv("TOV_REWRITE_DOCS") != nullptr) std::ofstream(path, std::ios::trunc) << test::tables_document();
    std::ifstream in(path, std::ios::binary);
    std::string const found{std::istreambuf_iterator<char>(in), {}};
    EXPECT_EQ(found, test::tables_document()) << "run this test with TOV_REWRITE_DOCS=1";
}

TEST(TableColumns, EveryTableIsToldOnceWithAllItsColumns) {
    std::set<std::string_view> files;
    for (auto const tables : {batch_table_texts(), side_table_texts()}) {
        for (TableText const& table : tables) {
            EXPECT_TRUE(files.insert(table.file).second) << table.file;
            EXPECT_EQ(&table_text(table.file), &table);
            EXPECT_FALSE(table.columns.empty()) << table.file;
            for (ColumnText const& column : table.columns) {
                EXPECT_FALSE(column.meaning.empty()) << table.file;
                EXPECT_TRUE(column.most == ColumnText::any_number || column.least <= column.most) << table.file;
            }
        }
    }
    EXPECT_EQ(batch_table_texts().size(), 28U);
}

TEST(TableColumns, HeadsAreTitleAndWords) {
    EXPECT_EQ(head_of(table_text("hw.sum")), "Hardy-Weinberg equilibrium indices\tfile_name\tpop_name\n");
    EXPECT_EQ(head_of(table_text("NM_value.sum")), "\tfile_name\n");
    EXPECT_EQ(head_of(table_text("only_mismatch_sp.txt")), "Mismatch distribution:\n");
    EXPECT_EQ(head_of(table_text("mismatch.sum")),
              "Mismatch distribution:\nfile_name\tpop_name\tmethod\tgamma\tparameters\n");
    EXPECT_EQ(head_of(table_text("MissDataPerLocus.txt")), "Locus#\tFreq. missing data\n");
    EXPECT_EQ(head_of(table_text("ld_dis.xl")), "");
    EXPECT_EQ(head_of(table_text("glob_res.xl")),
              "Data file\tTau\tC.I. Tau\tTheta1\tC.I. Theta1\tTheta0\tC.I. Theta0\tP-value\tSignif. 5%\tTau (R-H)"
              "\tTheta1 (R-H)\tTheta0 (R-H)\n");
}

TEST(TableColumns, TitlesOfChosenStatisticsDiffer) {
    std::set<std::string_view> titles;
    for (SumStatKeyword const& keyword : sum_stat_keywords) {
        EXPECT_FALSE(keyword.meaning.empty()) << keyword.word;
        if (!keyword.title.empty()) {
            EXPECT_TRUE(titles.insert(keyword.title).second) << keyword.word;
        }
    }
}

}  // namespace
}  // namespace tov
