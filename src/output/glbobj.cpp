// The batch tables: which are wanted, their open streams, and their heads.
#include "output/glbobj.h"

#include <fstream>
#include <istream>
#include <sstream>

#include "output/escape.h"
#include "output/style.h"

namespace tov {

std::array<std::string, 9> DistanceNames;
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

struct Table {
    int const* wanted;
    BatchStream* stream;
    std::string_view file;
    std::string_view head;  ///< title and column heads, each line with its end
    bool append = true;
};

constexpr std::string_view distance_head = "\tfile_name\n";
constexpr std::string_view mismatch_head = "Mismatch distribution:\nfile_name\tpop_name\tmethod\tgamma\tparameters\n";
constexpr std::string_view plain_linkage_head = "Linkage disequilibrium:\nfile_name\tpop_name\n";

Table const tables[] = {
    {&_GENE_DIVERSITY_, &ofs_gen_div, "gen_div.sum",
     "Gene diversity indices:\n"
     "file_name\tpop_name\tnb_gene_copies\tnb_haplotypes\t[orig_nb_haplotypes]\tnum_loci\t_nb_usable_loci\t"
     "_nb_pol_sites\tgene_diversity\n"},
    {&_NUCLEOTIDE_COMPOSITION_, &ofs_nuc_comp, "nucl_comp.sum",
     "Nucleotide composition\n"
     "file_name\tpop_name\tC\tT\tA\tG\tsum(CTAG)\n"},
    {&_MOLECULAR_DIVERSITY_, &ofs_mol_div, "mold_div.sum",
     "Molecular diversity indices:\n"
     "file_name\tpop_name\tgene_copies\tnb_haplotypes\t[orig_nb_haplotypes]\tdeletion_weight\ttransition_weight\t"
     "transversion_weight\tmissing_data_level\ttransitions\ttransversions\tsubstitutions\tindels\tpol_sites\t"
     "transition_sites\ttransversion_sites\tsubstitution_sites\tindel_sites\tsites\tusable_sites\tmethod\tgamma\t"
     "Pi\tsd_Pi\tnucleotide_diversity\tsd_nucleotide_diversity\n"},
    {&_MISMATCH_, &ofs_mismatch, "mismatch.sum", mismatch_head},
    {&_MISMATCH_, &ofs_mismatch_sp3, "mismatch_sp3.sum", mismatch_head},
    {&_MISMATCH_, &ofs_mismatch_sp4, "mismatch_sp4.sum", mismatch_head},
    {&_MISMATCH_, &ofs_only_mismatch, "only_mismatch_sp.txt", "Mismatch distribution:\n", false},
    {&_THETA_, &ofs_theta, "theta.sum", distance_head},
    {&_LINKAGE_DISEQUILIBRIUM_, &ofs_link_dis, "link_dis.sum",
     "Linkage disequilibrium:\n"
     "file_name\tpop_name\tlocus_1\tlocus_2\tsteps\tP\tsd_P\n"},
    {&_LINKAGE_DISEQUILIBRIUM_, &ofs_link_dis_pro, "l_d_pro.sum", plain_linkage_head},
    {&_LINKAGE_DISEQUILIBRIUM_, &ofs_link_dis_pro_inbreeding, "l_d_proIBD.sum", plain_linkage_head},
    {&_LINKAGE_DISEQUILIBRIUM_, &ofs_distrib_LD, "l_d_val.sum", plain_linkage_head},
    {&_HARDY_WEINBERG_, &ofs_HW, "hw.sum", "Hardy-Weinberg equilibrium indices\tfile_name\tpop_name\n"},
    {&_TAJIMA_, &ofs_tajima, "tajima.sum",
     "Tajima's test:\n"
     "file_name\tpop_name\tgene_copies\tS\ttheta_S\tPi\tD\tP_before\tP_sim\tP(D<=0)\tnb_sim\n"},
    {&_FU_FS_, &ofs_fu_fs, "fu_fs.sum",
     "Fu's Fs test:\n"
     "file_name\tpop_name\tgene_copies\tk\ttheta_Pi\texp_k\tFs\tP_sim\tP(Fs<=0)\tnb_sim\n"},
    {&_EWENS_WATTERSON_, &ofs_ewens_watt, "ewens.sum",
     "Ewens-Watterson test:\n"
     "file_name\tpop_name\tgene_copies\tk\tF_obs\tF_exp\tP_Watterson\tP_Slatkin\n"},
    {&_CHAKRABORTY_, &ofs_chakra, "chakra.sum",
     "Chakraborty's test:\n"
     "file_name\tpop_name\tgene_copies\tk\thomozygosity\texp_k\tP_exact_k\tP_k_or_more\n"},
    {&_PAIRWISE_DIST_, &ofs_pairw_dist, "pairdist.sum", distance_head},
    {&_PAIRWISE_DIST_, &ofs_FST_dist, "FSTdist.sum", distance_head},
    {&_PAIRWISE_DIST_, &ofs_varComp_dist, "VCompdist.sum", distance_head},
    {&_PAIRWISE_DIST_, &ofs_pairw_diffs, "pairdiff.sum", distance_head},
    {&_PAIRWISE_DIST_, &ofs_tau_uneq, "tau_uneq.sum", distance_head},
    {&_PAIRWISE_DIST_, &ofs_concest, "coanst_c.sum", distance_head},
    {&_PAIRWISE_DIST_, &ofs_slatkins, "slatkin.sum", distance_head},
    {&_PAIRWISE_DIST_, &ofs_NM_vals, "NM_value.sum", distance_head},
    {&_AMOVA_RES_, &ofs_amova_res, "amovares.sum",
     "AMOVA results:\n"
     "file_name\tdf_a\tdf_b\tdf_c\tdf_d\tVa\tVb\tVc\tVd\tF-statistics\tnperm\tP-values\n"},
    {&_ALLELE_FREQS_, &ofs_allele_freqs, "allele_freqs.sum",
     "Allele frequencies:\n"
     "file_name\tpop_name\tid\tfreq\n"},
    {&_DETECT_SELECTION_, &ofs_selection_res, "selectionDetection.sum",
     "Detection of loci under selection:\n"
     "file_name\tnb_sim\tnb_loci\tlow_0.001\tlow_0.005\tlow_0.01\tlow_0.025\tlow_0.05\t"
     "high_0.001\thigh_0.005\thigh_0.01\thigh_0.025\thigh_0.05\n"},
};

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
    DistanceNames = {"Pairwise difference",
                     "Jukes and Cantor",
                     "Kimura 2P",
                     "Proportion of difference",
                     "Tajima and Nei",
                     "Tamura",
                     "Tamura and Nei",
                     "No. of different alleles (FST)",
                     "Sum of squared size difference (RST)"};
    for (Table const& table : tables) {
        table.stream->reset();
        if (*table.wanted == 0) continue;
        *table.stream = std::make_unique<std::ofstream>(_batch_dir + std::string(table.file),
                                                        table.append ? std::ios::app : std::ios::trunc);
        // kept on purpose: the double quote behind "file" belongs to the banner that readers of these tables look for
        **table.stream << "\n\n" << rule{67} << "\nTovenia batch run summary file\"\n" << table.head << std::flush;
    }
}

void close_all_global_streams() {
    _batch_dir.clear();
    for (Table const& table : tables) table.stream->reset();
}

void begin_batch_row(BatchStream const& table, std::string_view file, std::string_view sample) {
    if (table) *table << quoted(file) << '\t' << quoted(sample) << '\t';
}

void print_batch_values(BatchStream const& table, std::initializer_list<double> values) {
    if (!table) return;
    std::ostringstream text;
    bool first = true;
    for (double const value : values) {
        text << (first ? "" : "\t") << value;
        first = false;
    }
    *table << text.str();
}

}  // namespace tov
