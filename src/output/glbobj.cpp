// The batch tables: which are wanted, their open streams, and their heads.
#include "output/glbobj.h"

#include <fstream>
#include <istream>

#include "output/style.h"
#include "output/table_columns.h"

namespace tov {

std::array<std::string, 9> DistanceNames = {"Pairwise difference",
                                            "Jukes and Cantor",
                                            "Kimura 2P",
                                            "Proportion of difference",
                                            "Tajima and Nei",
                                            "Tamura",
                                            "Tamura and Nei",
                                            "No. of different alleles (FST)",
                                            "Sum of squared size difference (RST)"};
std::string _batch_dir;

int _GENE_DIVERSITY_ = 0;
int _NUCLEOTIDE_COMPOSITION_ = 0;
int _MOLECULAR_DIVERSITY_ = 0;
int _MISMATCH_ = 0;
int _THETA_ = 0;
int _LINKAGE_DISEQUILIBRIUM_ = 0;
int _HARDY_WEINBERG_ = 0;
int _TAJIMA_ = 0;
int _FU_FS_ = 0;
int _EWENS_WATTERSON_ = 0;
int _CHAKRABORTY_ = 0;
int _PAIRWISE_DIST_ = 0;
int _AMOVA_RES_ = 0;
int _ALLELE_FREQS_ = 0;
int _DETECT_SELECTION_ = 0;

BatchStream ofs_gen_div;
BatchStream ofs_nuc_comp;
BatchStream ofs_mol_div;
BatchStream ofs_mismatch;
BatchStream ofs_mismatch_sp3;
BatchStream ofs_mismatch_sp4;
BatchStream ofs_only_mismatch;
BatchStream ofs_theta;
BatchStream ofs_link_dis;
BatchStream ofs_link_dis_pro;
BatchStream ofs_link_dis_pro_inbreeding;
BatchStream ofs_distrib_LD;
BatchStream ofs_HW;
BatchStream ofs_tajima;
BatchStream ofs_fu_fs;
BatchStream ofs_ewens_watt;
BatchStream ofs_chakra;
BatchStream ofs_pairw_dist;
BatchStream ofs_FST_dist;
BatchStream ofs_varComp_dist;
BatchStream ofs_pairw_diffs;
BatchStream ofs_tau_uneq;
BatchStream ofs_concest;
BatchStream ofs_slatkins;
BatchStream ofs_NM_vals;
BatchStream ofs_amova_res;
BatchStream ofs_allele_freqs;
BatchStream ofs_selection_res;

namespace {

constexpr std::size_t longest_directory = 350;
constexpr std::size_t longest_prefix = 800;
constexpr std::size_t longest_flag = 99;

struct Flag {
    std::string_view name;
    int* value;
};
Flag const flags[] = {
    {"_GENE_DIVERSITY_", &_GENE_DIVERSITY_},
    {"_NUCLEOTIDE_COMPOSITION_", &_NUCLEOTIDE_COMPOSITION_},
    {"_MOLECULAR_DIVERSITY_", &_MOLECULAR_DIVERSITY_},
    {"_MISMATCH_", &_MISMATCH_},
    {"_THETA_", &_THETA_},
    {"_LINKAGE_DISEQUILIBRIUM_", &_LINKAGE_DISEQUILIBRIUM_},
    {"_HARDY_WEINBERG_", &_HARDY_WEINBERG_},
    {"_TAJIMA_", &_TAJIMA_},
    {"_FU_FS_", &_FU_FS_},
    {"_EWENS_WATTERSON_", &_EWENS_WATTERSON_},
    {"_CHAKRABORTY_", &_CHAKRABORTY_},
    {"_PAIRWISE_DIST_", &_PAIRWISE_DIST_},
    {"_AMOVA_RES_", &_AMOVA_RES_},
    {"_ALLELE_FREQS_", &_ALLELE_FREQS_},
    {"_DETECT_SELECTION_", &_DETECT_SELECTION_},
};

/// Where an open table is held; what stands in it is told with its columns.
struct Table {
    std::string_view file;
    BatchStream* stream;
};
Table const tables[] = {
    {"gen_div.sum", &ofs_gen_div},
    {"nucl_comp.sum", &ofs_nuc_comp},
    {"mold_div.sum", &ofs_mol_div},
    {"mismatch.sum", &ofs_mismatch},
    {"mismatch_sp3.sum", &ofs_mismatch_sp3},
    {"mismatch_sp4.sum", &ofs_mismatch_sp4},
    {"only_mismatch_sp.txt", &ofs_only_mismatch},
    {"theta.sum", &ofs_theta},
    {"link_dis.sum", &ofs_link_dis},
    {"l_d_pro.sum", &ofs_link_dis_pro},
    {"l_d_proIBD.sum", &ofs_link_dis_pro_inbreeding},
    {"l_d_val.sum", &ofs_distrib_LD},
    {"hw.sum", &ofs_HW},
    {"tajima.sum", &ofs_tajima},
    {"fu_fs.sum", &ofs_fu_fs},
    {"ewens.sum", &ofs_ewens_watt},
    {"chakra.sum", &ofs_chakra},
    {"pairdist.sum", &ofs_pairw_dist},
    {"FSTdist.sum", &ofs_FST_dist},
    {"VCompdist.sum", &ofs_varComp_dist},
    {"pairdiff.sum", &ofs_pairw_diffs},
    {"tau_uneq.sum", &ofs_tau_uneq},
    {"coanst_c.sum", &ofs_concest},
    {"slatkin.sum", &ofs_slatkins},
    {"NM_value.sum", &ofs_NM_vals},
    {"amovares.sum", &ofs_amova_res},
    {"allele_freqs.sum", &ofs_allele_freqs},
    {"selectionDetection.sum", &ofs_selection_res},
};

bool wanted(TableText const& table) {
    for (Flag const& flag : flags)
        if (flag.name == table.flag) return *flag.value != 0;
    return false;
}

/// The next line, without a carriage return at its end, cut to `longest` characters. False at the end of the data.
bool read_line(std::istream& in, std::string& line, std::size_t longest) {
    if (!std::getline(in, line)) return false;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.size() > longest) line.resize(longest);
    return true;
}

}  // namespace

void read_global_flags(std::string_view directory) {
    for (Flag const& flag : flags) *flag.value = 0;
    _batch_dir.clear();
    if (directory.size() > longest_directory) return;
    std::ifstream in(std::string(directory) + "glbstreams.txt");
    if (!in || !read_line(in, _batch_dir, longest_prefix)) return;
    std::string line;
    while (read_line(in, line, longest_flag))
        for (Flag const& flag : flags)
            if (line == flag.name) *flag.value = 1;
}

void initialize_tovenia_global_objects() {
    for (Table const& table : tables) {
        table.stream->reset();
        TableText const& text = table_text(table.file);
        if (!wanted(text)) continue;
        *table.stream = std::make_unique<std::ofstream>(_batch_dir + std::string(table.file),
                                                        text.append ? std::ios::app : std::ios::trunc);
        // kept on purpose: the double quote behind "file" belongs to the banner that readers of these tables look for
        **table.stream << "\n\n" << rule{67} << "\nTovenia batch run summary file\"\n" << head_of(text) << std::flush;
    }
}

void close_all_global_streams() {
    _batch_dir.clear();
    for (Table const& table : tables) table.stream->reset();
}

TabRow batch_row(BatchStream const& table, std::string_view file) {
    TabRow row(table.get(), {.flush = true});
    row.quoted(file);
    return row;
}

TabRow batch_row(BatchStream const& table, std::string_view file, std::string_view sample) {
    TabRow row = batch_row(table, file);
    row.quoted(sample);
    return row;
}

}  // namespace tov
