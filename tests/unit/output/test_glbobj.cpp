// Batch tables: flags, banners and heads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

#include "output/glbobj.h"
#include "output/table_columns.h"

namespace tov {
namespace {

namespace fs = std::filesystem;

class BatchTables : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/tov_batch_XXXXXX";
        directory = std::string(::mkdtemp(pattern)) + "/";
    }
    void TearDown() override {
        read_global_flags("/nowhere/");
        close_all_global_streams();
        fs::remove_all(directory);
    }
    void list(std::string const& lines) const {
        std::ofstream(directory + "glbstreams.txt") << directory << '\n' << lines;
    }
    std::string content(std::string const& name) const {
        std::ifstream in(directory + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::size_t files() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
    }
    void open() const {
        read_global_flags(directory);
        initialize_tovenia_global_objects();
    }

    std::string const banner = "\n\n" + std::string(67, '-') + "\nTovenia batch run summary file\"\n";
    std::string directory;
};

TEST_F(BatchTables, NoneAreWantedWithoutTheList) {
    _TAJIMA_ = 1;
    open();
    EXPECT_EQ(_TAJIMA_, 0);
    EXPECT_EQ(ofs_tajima, nullptr);
    EXPECT_EQ(files(), 0u);
}

TEST_F(BatchTables, OnlyExactLinesSetAFlag) {
    list("_HARDY_WEINBERG_\r\n _TAJIMA_\n_tajima_\n_FU_FS_x\n\n" + std::string(99, 'a') + "_THETA_\n_AMOVA_RES_");
    open();
    EXPECT_EQ(_HARDY_WEINBERG_, 1);
    EXPECT_EQ(_AMOVA_RES_, 1);
    EXPECT_EQ(_TAJIMA_ + _FU_FS_ + _THETA_, 0);
    EXPECT_NE(ofs_HW, nullptr);
    EXPECT_EQ(ofs_tajima, nullptr);
    EXPECT_EQ(files(), 3u);
}

TEST_F(BatchTables, LongDirectoryLeavesAllFlagsCleared) {
    list("_TAJIMA_\n");
    read_global_flags(directory);
    EXPECT_EQ(_TAJIMA_, 1);
    read_global_flags(std::string(351 - directory.size(), '/') + directory);
    EXPECT_EQ(_TAJIMA_, 0);
    read_global_flags(std::string(350 - directory.size(), '/') + directory);
    EXPECT_EQ(_TAJIMA_, 1);
}

TEST_F(BatchTables, HeadsAreWrittenAtOnce) {
    list("_GENE_DIVERSITY_\n_NUCLEOTIDE_COMPOSITION_\n_HARDY_WEINBERG_\n_THETA_\n_AMOVA_RES_\n");
    open();
    EXPECT_EQ(content("gen_div.sum"),
              banner +
                  "Gene diversity indices:\n"
                  "file_name\tpop_name\tnb_gene_copies\tnb_haplotypes\t[orig_nb_haplotypes]\tnum_loci\t"
                  "_nb_usable_loci\t_nb_pol_sites\tgene_diversity\n");
    EXPECT_EQ(content("nucl_comp.sum"),
              banner + "Nucleotide composition\nfile_name\tpop_name\tC\tT\tA\tG\tsum(CTAG)\n");
    EXPECT_EQ(content("hw.sum"), banner + "Hardy-Weinberg equilibrium indices\tfile_name\tpop_name\n");
    EXPECT_EQ(content("theta.sum"), banner + "\tfile_name\n");
    EXPECT_EQ(content("amovares.sum"),
              banner +
                  "AMOVA results:\n"
                  "file_name\tdf_a\tdf_b\tdf_c\tdf_d\tVa\tVb\tVc\tVd\tF-statistics\tnperm\tP-values\n");
}

TEST_F(BatchTables, EachFlagOpensItsFiles) {
    struct {
        char const* flag;
        std::vector<std::string> files;
    } const expected[] = {
        {"_GENE_DIVERSITY_", {"gen_div.sum"}},
        {"_NUCLEOTIDE_COMPOSITION_", {"nucl_comp.sum"}},
        {"_MOLECULAR_DIVERSITY_", {"mold_div.sum"}},
        {"_MISMATCH_", {"mismatch.sum", "mismatch_sp3.sum", "mismatch_sp4.sum", "only_mismatch_sp.txt"}},
        {"_THETA_", {"theta.sum"}},
        {"_LINKAGE_DISEQUILIBRIUM_", {"link_dis.sum", "l_d_pro.sum", "l_d_proIBD.sum", "l_d_val.sum"}},
        {"_HARDY_WEINBERG_", {"hw.sum"}},
        {"_TAJIMA_", {"tajima.sum"}},
        {"_FU_FS_", {"fu_fs.sum"}},
        {"_EWENS_WATTERSON_", {"ewens.sum"}},
        {"_CHAKRABORTY_", {"chakra.sum"}},
        {"_PAIRWISE_DIST_",
         {"pairdist.sum", "FSTdist.sum", "VCompdist.sum", "pairdiff.sum", "tau_uneq.sum", "coanst_c.sum", "slatkin.sum",
          "NM_value.sum"}},
        {"_AMOVA_RES_", {"amovares.sum"}},
        {"_ALLELE_FREQS_", {"allele_freqs.sum"}},
        {"_DETECT_SELECTION_", {"selectionDetection.sum"}},
    };
    for (auto const& row : expected) {
        fs::remove_all(directory);
        fs::create_directory(directory);
        list(std::string(row.flag) + "\n");
        open();
        EXPECT_EQ(files(), row.files.size() + 1) << row.flag;
        for (std::string const& file : row.files) EXPECT_TRUE(content(file).starts_with(banner)) << file;
    }
}

TEST_F(BatchTables, GrowAtEachStartButTheMismatchDistributionIsAnew) {
    list("_MISMATCH_\n");
    open();
    *ofs_only_mismatch << "1 2 3\n";
    std::string const once = content("mismatch.sum");
    close_all_global_streams();
    EXPECT_EQ(ofs_mismatch, nullptr);
    EXPECT_EQ(_batch_dir, "");
    open();
    EXPECT_EQ(content("mismatch.sum"), once + once);
    EXPECT_EQ(content("only_mismatch_sp.txt").find("1 2 3"), std::string::npos);
}

TEST_F(BatchTables, PrefixIsPlainText) {
    std::ofstream(directory + "glbstreams.txt") << directory << "batch_\n_CHAKRABORTY_\n";
    open();
    EXPECT_TRUE(fs::exists(directory + "batch_chakra.sum"));
}

TEST_F(BatchTables, UnwritableTableDropsItsText) {
    std::ofstream(directory + "glbstreams.txt") << directory << "missing/\n_TAJIMA_\n";
    open();
    ASSERT_NE(ofs_tajima, nullptr);
    *ofs_tajima << "row\n";
    EXPECT_FALSE(ofs_tajima->good());
}

TEST_F(BatchTables, RowBeginsWithQuotedNamesAndIsWrittenWhenItEnds) {
    BatchStream const none;
    batch_row(none, "f", "s") << 1.0;
    auto text = std::make_unique<std::ostringstream>();
    std::ostringstream& written = *text;
    BatchStream const table = std::move(text);
    {
        TabRow row = batch_row(table, "dna.tvp", "North & South");
        row << 1234567 << 0.123456789 << -1.0;
        EXPECT_EQ(written.str(), "");
    }
    batch_row(table, "p.tvp") << 1;
    EXPECT_EQ(written.str(), "\"dna.tvp\"\t\"North & South\"\t1234567\t0.123457\t-1\n\"p.tvp\"\t1\n");
}

TEST_F(BatchTables, EveryDescribedTableHasAFlagThatOpensIt) {
    std::string lines;
    for (TableText const& table : batch_table_texts()) lines += std::string(table.flag) + "\n";
    list(lines);
    open();
    EXPECT_EQ(files(), batch_table_texts().size() + 1);
    for (TableText const& table : batch_table_texts()) {
        EXPECT_EQ(content(std::string(table.file)), banner + head_of(table)) << table.file;
    }
}

TEST_F(BatchTables, DistanceNamesAreInTheOrderOfTheirNumbers) {
    initialize_tovenia_global_objects();
    EXPECT_EQ(DistanceNames[0], "Pairwise difference");
    EXPECT_EQ(DistanceNames[1], "Jukes and Cantor");
    EXPECT_EQ(DistanceNames[2], "Kimura 2P");
    EXPECT_EQ(DistanceNames[3], "Proportion of difference");
    EXPECT_EQ(DistanceNames[4], "Tajima and Nei");
    EXPECT_EQ(DistanceNames[5], "Tamura");
    EXPECT_EQ(DistanceNames[6], "Tamura and Nei");
    EXPECT_EQ(DistanceNames[7], "No. of different alleles (FST)");
    EXPECT_EQ(DistanceNames[8], "Sum of squared size difference (RST)");
}

}  // namespace
}  // namespace tov
