// The batch tables: which are wanted, their open streams, and their heads.
#pragma once

#include <array>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "output/tab_row.h"

namespace tov {

/// Names of the distance methods, by their numbers in the settings and two more.
extern std::array<std::string, 9> DistanceNames;

/// Directory of the batch tables: a plain prefix of their file names, from the first line of glbstreams.txt.
extern std::string _batch_dir;

// Flags: the table is wanted.
extern int _GENE_DIVERSITY_;
extern int _NUCLEOTIDE_COMPOSITION_;
extern int _MOLECULAR_DIVERSITY_;
extern int _MISMATCH_;
extern int _THETA_;
extern int _LINKAGE_DISEQUILIBRIUM_;
extern int _HARDY_WEINBERG_;
extern int _TAJIMA_;
extern int _FU_FS_;
extern int _EWENS_WATTERSON_;
extern int _CHAKRABORTY_;
extern int _PAIRWISE_DIST_;
extern int _AMOVA_RES_;
extern int _ALLELE_FREQS_;
extern int _DETECT_SELECTION_;

/// An open batch table, or null when it isn't wanted; test before writing.
using BatchStream = std::unique_ptr<std::ostream>;
extern BatchStream ofs_gen_div;
extern BatchStream ofs_nuc_comp;
extern BatchStream ofs_mol_div;
extern BatchStream ofs_mismatch;
extern BatchStream ofs_mismatch_sp3;
extern BatchStream ofs_mismatch_sp4;
extern BatchStream ofs_only_mismatch;
extern BatchStream ofs_theta;
extern BatchStream ofs_link_dis;
extern BatchStream ofs_link_dis_pro;
extern BatchStream ofs_link_dis_pro_inbreeding;
extern BatchStream ofs_distrib_LD;
extern BatchStream ofs_HW;
extern BatchStream ofs_tajima;
extern BatchStream ofs_fu_fs;
extern BatchStream ofs_ewens_watt;
extern BatchStream ofs_chakra;
extern BatchStream ofs_pairw_dist;
extern BatchStream ofs_FST_dist;
extern BatchStream ofs_varComp_dist;
extern BatchStream ofs_pairw_diffs;
extern BatchStream ofs_tau_uneq;
extern BatchStream ofs_concest;
extern BatchStream ofs_slatkins;
extern BatchStream ofs_NM_vals;
extern BatchStream ofs_amova_res;
extern BatchStream ofs_allele_freqs;
extern BatchStream ofs_selection_res;

/// Clears the flags, then reads "glbstreams.txt" behind `directory`: the prefix of the tables, then one flag a line.
/// A missing file (the normal case) or a directory of more than 350 characters leaves all flags cleared.
void read_global_flags(std::string_view directory);

/// Opens the tables of the flags that are set and writes their banners and column heads, which are flushed.
/// A table that can't be opened keeps a failed stream, which drops what is written.
void initialize_tovenia_global_objects();

/// Clears `_batch_dir`, closes the tables and sets their pointers to null.
void close_all_global_streams();

/// A row that begins with the file, or with file and sample, in double quotes. It takes cells and writes nothing when
/// the table isn't open; otherwise it is written and flushed when it ends.
[[nodiscard]] TabRow batch_row(BatchStream const& table, std::string_view file);
[[nodiscard]] TabRow batch_row(BatchStream const& table, std::string_view file, std::string_view sample);

}  // namespace tov
