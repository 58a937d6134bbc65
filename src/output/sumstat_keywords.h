// The words of the definition file of chosen statistics, with the columns that each asks for.
#pragma once

#include <array>
#include <string_view>

namespace tov {

/// What a keyword has a column for.
enum class ColumnsPer {
    level,       ///< none: the word chooses a level
    none,        ///< none: a known word
    sample,      ///< each sample
    project,     ///< one column
    locus_pair,  ///< each pair of neighbouring loci in each sample
    index,       ///< each fixation index
    sample_pair  ///< each pair of samples
};

struct SumStatKeyword {
    std::string_view word;
    ColumnsPer per;
    std::string_view title;  ///< of its columns, in front of the number of the sample, or of the pair
    std::string_view meaning;
};

/// In the order in which the words are looked for.
inline constexpr std::array<SumStatKeyword, 59> sum_stat_keywords{{
    {"POP_LEVEL", ColumnsPer::level, "", "samples are analysed"},
    {"GROUP_LEVEL", ColumnsPer::level, "", "groups, pooled, are analysed; titles begin with `gr_`"},
    {"ALL_K", ColumnsPer::sample, "K_", "haplotypes (DNA, frequencies), otherwise mean number of alleles over loci"},
    {"ALLSD_K", ColumnsPer::sample, "Ksd_", "standard deviation of the number of alleles over loci"},
    {"MEAN_K", ColumnsPer::project, "mean_K", "mean of K over samples"},
    {"SD_K", ColumnsPer::project, "sd_K", "standard deviation of K over samples"},
    {"TOT_K", ColumnsPer::project, "tot_K", "K of all gene copies as one sample"},
    {"ALL_H", ColumnsPer::sample, "H_", "gene diversity (DNA, frequencies), otherwise mean expected heterozygosity"},
    {"ALLSD_H", ColumnsPer::sample, "Hsd_", "standard deviation of the expected heterozygosity over loci"},
    {"MEAN_H", ColumnsPer::project, "mean_H", "mean of H over samples"},
    {"SD_H", ColumnsPer::project, "sd_H", "standard deviation of H over samples"},
    {"TOT_H", ColumnsPer::project, "tot_H", "H of all gene copies as one sample"},
    {"ALL_S", ColumnsPer::sample, "S_", "polymorphic sites or loci"},
    {"ALLSD_S", ColumnsPer::sample, "Ssd_", "standard deviation over loci of being polymorphic; 0 for DNA"},
    {"PRIVATE_S", ColumnsPer::sample, "prS_", "sites with substitutions in this sample alone (DNA)"},
    {"MEAN_S", ColumnsPer::project, "mean_S", "mean of S over samples"},
    {"SD_S", ColumnsPer::project, "sd_S", "standard deviation of S over samples"},
    {"TOT_S", ColumnsPer::project, "tot_S", "S of all gene copies as one sample"},
    {"ALL_TAJIMAD", ColumnsPer::sample, "D_", "Tajima's D"},
    {"ALLSD_TAJIMAD", ColumnsPer::sample, "Dsd_", "-1"},
    {"MEAN_TAJIMAD", ColumnsPer::project, "mean_D", "mean of D over samples"},
    {"SD_TAJIMAD", ColumnsPer::project, "sd_D", "standard deviation of D over samples"},
    {"TOT_TAJIMAD", ColumnsPer::none, "", "a known word"},
    {"ALL_FUFS", ColumnsPer::sample, "FS_", "Fu's Fs"},
    {"ALLSD_FUFS", ColumnsPer::sample, "FSsd_", "-1"},
    {"MEAN_FUFS", ColumnsPer::project, "mean_FS", "mean of Fs over samples"},
    {"SD_FUFS", ColumnsPer::project, "sd_FS", "standard deviation of Fs over samples"},
    {"TOT_FUFS", ColumnsPer::none, "", "a known word"},
    {"ALL_PI", ColumnsPer::sample, "Pi_", "mean number of pairwise differences"},
    {"MEAN_PI", ColumnsPer::project, "mean_Pi", "mean of Pi over samples"},
    {"SD_PI", ColumnsPer::project, "sd_Pi", "standard deviation of Pi over samples"},
    {"TOT_PI", ColumnsPer::none, "", "a known word"},
    {"ALL_GW", ColumnsPer::sample, "GW_", "Garza-Williamson index, mean over loci (microsatellites)"},
    {"ALLSD_GW", ColumnsPer::sample, "GWsd_", "its standard deviation over loci"},
    {"MEAN_GW", ColumnsPer::project, "mean_GW", "mean of GW over samples"},
    {"SD_GW", ColumnsPer::project, "sd_GW", "standard deviation of GW over samples"},
    {"TOT_GW", ColumnsPer::project, "tot_GW", "GW of all gene copies as one sample"},
    {"ALL_NGW", ColumnsPer::sample, "NGW_", "the same index with the range of all samples"},
    {"ALLSD_NGW", ColumnsPer::sample, "NGWsd_", "its standard deviation over loci"},
    {"MEAN_NGW", ColumnsPer::project, "mean_NGW", "mean of NGW over samples"},
    {"SD_NGW", ColumnsPer::project, "sd_NGW", "standard deviation of NGW over samples"},
    {"ALL_RANGE", ColumnsPer::sample, "R_", "allelic size range, mean over loci (microsatellites)"},
    {"ALLSD_RANGE", ColumnsPer::sample, "Rsd_", "its standard deviation over loci"},
    {"MEAN_RANGE", ColumnsPer::project, "mean_R", "mean of R over samples"},
    {"SD_RANGE", ColumnsPer::project, "sd_R", "standard deviation of R over samples"},
    {"TOT_RANGE", ColumnsPer::project, "tot_R", "R of all gene copies as one sample"},
    {"MEAN_ALL_DPRIME", ColumnsPer::sample, "mean_D'_", "mean |D'| over all pairs of polymorphic loci"},
    {"MEAN_ALL_R2", ColumnsPer::sample, "mean_R2_", "mean r2 over all pairs of polymorphic loci"},
    {"ALL_ADJ_DPRIME", ColumnsPer::locus_pair, "adj_D'_", "|D'| of neighbouring polymorphic loci"},
    {"ALL_ADJ_R2", ColumnsPer::locus_pair, "adj_R2_", "r2 of neighbouring polymorphic loci"},
    {"MEAN_ADJ_DPRIME", ColumnsPer::sample, "mean_adj_D'_", "mean |D'| over pairs of neighbouring polymorphic loci"},
    {"MEAN_ADJ_R2", ColumnsPer::sample, "mean_adj_R2_", "mean r2 over pairs of neighbouring polymorphic loci"},
    {"FLANK_DPRIME", ColumnsPer::sample, "flank_D'_", "|D'| of the first and the last polymorphic locus"},
    {"FLANK_R2", ColumnsPer::sample, "flank_R2_", "r2 of the first and the last polymorphic locus"},
    {"GLOBAL_FSTAT", ColumnsPer::index, "", "`FIS`, `FST`, `FCT`, `FSC`, `FIT` of the analysis of variance"},
    {"GLOBALSD_FSTAT", ColumnsPer::none, "", "a known word"},
    {"PAIRWISE_FST", ColumnsPer::sample_pair, "FST_", "FST"},
    {"PAIRWISE_PI", ColumnsPer::sample_pair, "PI_", "mean number of differences between the two samples"},
    {"PAIRWISE_DMUSQR", ColumnsPer::sample_pair, "DMUSQ_", "squared difference of mean allele sizes, mean over loci"},
}};

}  // namespace tov
