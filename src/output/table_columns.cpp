// What stands in the tables for scripts.
#include "output/table_columns.h"

#include <algorithm>

namespace tov {

namespace {

constexpr int any = ColumnText::any_number;

// --- Columns that many tables share ---

constexpr ColumnText file_column{"file_name", "file of the project, in double quotes"};
constexpr ColumnText sample_column{"pop_name", "name of the sample or group, in double quotes"};
constexpr std::string_view by_sample = "sample";

// --- Diversity within samples ---

constexpr ColumnText gene_diversity[] = {
    file_column,
    sample_column,
    {"nb_gene_copies", "gene copies"},
    {"nb_haplotypes", "distinct haplotypes"},
    {"[orig_nb_haplotypes]",
     "distinct haplotypes before those without differences were merged; only when that was asked "
     "for and the data are haplotypes",
     "", "", 0, 1},
    {"num_loci", "loci"},
    {"_nb_usable_loci", "loci with little missing data"},
    {"_nb_pol_sites", "polymorphic sites or loci"},
    {"gene_diversity", "gene diversity", "probability", "-1 for an unknown gametic phase"},
};

constexpr ColumnText composition[] = {
    file_column,
    sample_column,
    {"C", "share of cytosine", "fraction"},
    {"T", "share of thymine", "fraction"},
    {"A", "share of adenine", "fraction"},
    {"G", "share of guanine", "fraction"},
    {"sum(CTAG)", "sum of the four", "fraction"},
};

constexpr std::string_view no_matrix = "-1 when a distance can't be computed";
constexpr ColumnText molecular[] = {
    file_column,
    sample_column,
    {"gene_copies", "gene copies"},
    {"nb_haplotypes", "distinct haplotypes"},
    {"[orig_nb_haplotypes]", "distinct haplotypes before those without differences were merged; as in `gen_div.sum`",
     "", "", 0, 1},
    {"deletion_weight", "weight of a deletion"},
    {"transition_weight", "weight of a transition"},
    {"transversion_weight", "weight of a transversion"},
    {"missing_data_level", "allowed level of missing data", "fraction"},
    {"transitions", "observed transitions", "", "0 for other data than DNA"},
    {"transversions", "observed transversions", "", "0 for other data than DNA"},
    {"substitutions", "observed substitutions", "", "0 for other data than DNA"},
    {"indels", "observed indels", "", "0 for other data than DNA"},
    {"pol_sites", "polymorphic sites or loci"},
    {"transition_sites", "sites with transitions", "", "0 for other data than DNA"},
    {"transversion_sites", "sites with transversions", "", "0 for other data than DNA"},
    {"substitution_sites", "sites with substitutions", "", "0 for other data than DNA"},
    {"indel_sites", "sites with indels", "", "0 for other data than DNA"},
    {"sites", "sites or loci"},
    {"usable_sites", "sites or loci with little missing data"},
    {"method", "distance: `#Diff`, `JC`, `K2P`, `%Diff`, `TajNei`, `Tam`, `TamNei`, `SqDiff`", "", "none"},
    {"gamma", "shape parameter of its gamma correction", "", "inf without a correction, none for frequencies"},
    {"Pi", "mean number of pairwise differences", "sites", no_matrix, 0, 1},
    {"sd_Pi", "its standard deviation", "sites", no_matrix, 0, 1},
    {"nucleotide_diversity", "the same per site", "", no_matrix, 0, 1},
    {"sd_nucleotide_diversity", "its standard deviation", "", no_matrix, 0, 1},
};

constexpr ColumnText theta[] = {
    {"file_name", file_column.meaning},
    {"", sample_column.meaning},
    {"", "`(Hom)`", "", "", 0, 1},
    {"", "theta from the homozygosity", "", "", 0, 1},
    {"", "its standard deviation", "", "", 0, 1},
    {"", "`(k)`", "", "", 0, 1},
    {"", "theta from the number of alleles", "", "", 0, 1},
    {"", "limits of its 95 % interval; none for 1000 haplotypes or 5000 gene copies", "", "", 0, 2},
    {"", "`(S)`", "", "", 0, 1},
    {"", "theta from the number of segregating sites", "", "", 0, 1},
    {"", "its standard deviation", "", "", 0, 1},
    {"", "`(Pi)`", "", "", 0, 1},
    {"", "theta from the mean number of pairwise differences", "", "-1 without the mean", 0, 1},
    {"", "its standard deviation", "", "-1 without the mean", 0, 1},
};

// --- Mismatch distributions ---

constexpr std::string_view no_fit = "-1 when the model was not fitted";
constexpr ColumnText mismatch_method{"method",
                                     "distance: `#Diff`, `JC`, `K2P`, `%Diff`, `TajNei`, `Tam`, `TamNei`, "
                                     "`SqDiff`"};
constexpr ColumnText mismatch_gamma{"gamma", "shape parameter of its gamma correction", "", "0 without a correction"};
constexpr ColumnText mismatch_counts{"",      "pairs of gene copies with 0, 1, 2, ... differences",
                                     "pairs", "without any difference, the number of pairs alone",
                                     1,       any};

constexpr ColumnText mismatch_sudden[] = {
    file_column,
    sample_column,
    mismatch_method,
    mismatch_gamma,
    {"parameters", "tau of the sudden expansion", "mutations", no_fit},
    {"", "theta before the expansion", "", no_fit},
    {"", "theta after the expansion", "", no_fit},
    mismatch_counts,
};
constexpr ColumnText mismatch_one_size[] = {
    file_column,
    sample_column,
    mismatch_method,
    mismatch_gamma,
    {"parameters", "tau of the spatial expansion with one deme size", "mutations", no_fit},
    {"", "theta of a deme", "", no_fit},
    {"", "M, the number of migrants", "", no_fit},
    mismatch_counts,
};
constexpr ColumnText mismatch_two_sizes[] = {
    file_column,
    sample_column,
    mismatch_method,
    mismatch_gamma,
    {"parameters", "tau of the spatial expansion with two deme sizes", "mutations", no_fit},
    {"", "theta before the expansion", "", no_fit},
    {"", "theta after the expansion", "", no_fit},
    {"", "M, the number of migrants", "", no_fit},
};
constexpr ColumnText only_mismatch[] = {mismatch_counts};

// --- Associations ---

constexpr ColumnText linkage[] = {
    file_column,
    sample_column,
    {"locus_1", "first locus, counted from 0"},
    {"locus_2", "second locus, counted from 0"},
    {"steps", "steps of the chain, or permutations"},
    {"P", "P-value", "probability", "1 for a pair that can't be tested"},
    {"sd_P", "its standard deviation"},
};
constexpr ColumnText no_columns[] = {file_column, sample_column};
constexpr std::string_view no_rows = "Nothing is written behind its head.";

constexpr ColumnText hardy_weinberg[] = {
    file_column,
    sample_column,
    {"", "number of the locus, from 1", "", "", 0, any},
    {"", "individuals", "", "", 0, any},
    {"", "observed heterozygosity", "fraction", "", 0, any},
    {"", "expected heterozygosity", "probability", "", 0, any},
    {"", "P-value", "probability", "-1 for a monomorphic locus", 0, any},
    {"", "its standard deviation", "", "-1 for a monomorphic locus", 0, any},
    {"", "steps of the chain", "", "0 for a monomorphic locus", 0, any},
};

// --- Neutrality ---

constexpr std::string_view no_test = "left out without simulations";
constexpr ColumnText tajima[] = {
    file_column,
    sample_column,
    {"gene_copies", "gene copies"},
    {"S", "sites with substitutions (polymorphic sites of RFLP data)"},
    {"theta_S", "theta from S"},
    {"Pi", "mean number of pairwise differences", "sites"},
    {"D", "Tajima's D"},
    {"P_before", "P-value as the sample alone gives it", "probability", "-1"},
    {"P_sim", "share of simulated D that are not above the observed one", "probability", no_test, 0, 1},
    {"P(D<=0)", "share of simulated D that are not above 0", "probability", no_test, 0, 1},
    {"nb_sim", "simulations", "", no_test, 0, 1},
};
constexpr ColumnText fu[] = {
    file_column,
    sample_column,
    {"gene_copies", "gene copies"},
    {"k", "alleles"},
    {"theta_Pi", "theta from the mean number of pairwise differences"},
    {"exp_k", "expected alleles"},
    {"Fs", "Fu's Fs", "", "3.40282e+38 or -3.40282e+38 for an infinite one, 0 when it can't be computed"},
    {"P_sim", "share of simulated Fs that are not above the observed one", "probability", "-1 without simulations"},
    {"P(Fs<=0)", "share of simulated Fs that are not above 0", "probability", no_test, 0, 1},
    {"nb_sim", "simulations", "", no_test, 0, 1},
};
constexpr std::string_view impossible = "left out when the test is impossible";
constexpr ColumnText ewens[] = {
    file_column,
    sample_column,
    {"gene_copies", "gene copies; or a sentence that tells why the test is impossible"},
    {"k", "alleles", "", impossible, 0, 1},
    {"F_obs", "observed homozygosity", "probability", impossible, 0, 1},
    {"F_exp", "expected homozygosity", "probability", "-1 without simulations", 0, 1},
    {"P_Watterson", "P-value of Watterson's test", "probability", "-1 without simulations", 0, 1},
    {"P_Slatkin", "P-value of the exact test", "probability", "0 when it was not asked for, -1 without simulations", 0,
     1},
};
constexpr ColumnText chakraborty[] = {
    file_column,
    sample_column,
    {"gene_copies", "gene copies"},
    {"k", "alleles"},
    {"homozygosity", "observed homozygosity", "probability"},
    {"exp_k", "expected alleles"},
    {"P_exact_k", "probability of exactly k alleles", "probability"},
    {"P_k_or_more", "probability of k alleles or more", "probability"},
};

// --- Structure ---

constexpr ColumnText pair_head{"file_name", "file of the project, in double quotes, in a line of its own"};
constexpr ColumnText pair_names{"", "in the second line: names of the samples, in double quotes", "", "", 1, any};
constexpr std::string_view pair_row = "project, with several lines";
constexpr ColumnText pair_fst[] = {
    pair_head,
    pair_names,
    {"", "then a line a sample: FST with the samples up to itself", "", "0 with itself", 1, any}};
constexpr ColumnText pair_variance[] = {pair_head,
                                        pair_names,
                                        {"", "then a line a sample: variance component among the two samples",
                                         "squared distance", "0 with itself", 1, any}};
constexpr ColumnText pair_differences[] = {
    pair_head,
    pair_names,
    {"",
     "then a line a sample, for all samples: mean number of differences, between samples above the diagonal, within "
     "them on it, between them less the mean within below it",
     "sites", "", 1, any}};
constexpr ColumnText pair_tau[] = {pair_head,
                                   pair_names,
                                   {"", "then a line a sample: divergence time for unequal sizes of the two",
                                    "mutations", "0 with itself and where nothing could be solved", 1, any}};
constexpr ColumnText pair_coancestry[] = {
    pair_head,
    pair_names,
    {"", "then a line a sample: -ln(1 - FST)", "", "0 for a negative FST, inf for one of 1 or above", 1, any}};
constexpr ColumnText pair_slatkin[] = {
    pair_head,
    pair_names,
    {"", "then a line a sample: FST / (1 - FST)", "", "0 for a negative FST, inf for one of 1 or above", 1, any}};
constexpr ColumnText pair_migrants[] = {
    pair_head,
    pair_names,
    {"", "then a line a sample: (1 - FST) / (2 FST)", "migrants", "inf for an FST of 0 or below", 1, any}};

constexpr std::string_view no_level = "0 for a level that the design lacks";
constexpr ColumnText amova[] = {
    file_column,
    {"df_a", "degrees of freedom, highest level", "", no_level},
    {"df_b", "degrees of freedom, next level", "", no_level},
    {"df_c", "degrees of freedom, next level", "", no_level},
    {"df_d", "degrees of freedom, next level", "", no_level},
    {"Va", "variance component, highest level", "", no_level},
    {"Vb", "variance component, next level", "", no_level},
    {"Vc", "variance component, next level", "", no_level},
    {"Vd", "variance component, next level", "", no_level},
    {"F-statistics", "fixation indices in the order of the document", "", "0 behind the last", 4, 4},
    {"nperm", "permutations of each test"},
    {"P-values", "P-values in the order of the tests in the document", "probability",
     "0 behind the last, and without permutations", 4, 4},
};

constexpr ColumnText allele_frequencies[] = {
    file_column,
    sample_column,
    {"id", "identifier of the haplotype"},
    {"freq", "its relative frequency", "fraction"},
};

constexpr std::string_view one_group = "left out with one group";
constexpr ColumnText selection[] = {
    file_column,
    {"nb_sim", "simulated loci"},
    {"nb_loci", "loci of the project"},
    {"low_0.001", "loci with an FST below the mean and a P-value of at most 0.001"},
    {"low_0.005", "the same at 0.005"},
    {"low_0.01", "the same at 0.01"},
    {"low_0.025", "the same at 0.025"},
    {"low_0.05", "the same at 0.05"},
    {"high_0.001", "loci with an FST above the mean and a P-value of at most 0.001"},
    {"high_0.005", "the same at 0.005"},
    {"high_0.01", "the same at 0.01"},
    {"high_0.025", "the same at 0.025"},
    {"high_0.05", "the same at 0.05"},
    {"FCT_low_0.001", "loci with an FCT below the mean and a P-value of at most 0.001", "", one_group, 0, 1},
    {"FCT_low_0.005", "the same at 0.005", "", one_group, 0, 1},
    {"FCT_low_0.01", "the same at 0.01", "", one_group, 0, 1},
    {"FCT_low_0.025", "the same at 0.025", "", one_group, 0, 1},
    {"FCT_low_0.05", "the same at 0.05", "", one_group, 0, 1},
    {"FCT_high_0.001", "loci with an FCT above the mean and a P-value of at most 0.001", "", one_group, 0, 1},
    {"FCT_high_0.005", "the same at 0.005", "", one_group, 0, 1},
    {"FCT_high_0.01", "the same at 0.01", "", one_group, 0, 1},
    {"FCT_high_0.025", "the same at 0.025", "", one_group, 0, 1},
    {"FCT_high_0.05", "the same at 0.05", "", one_group, 0, 1},
};

constexpr std::string_view mismatch_title = "Mismatch distribution:\n";
constexpr std::string_view linkage_title = "Linkage disequilibrium:\n";

constexpr TableText batch_tables[] = {
    {"gen_div.sum", "_GENE_DIVERSITY_", "Gene diversity indices:\n", by_sample, gene_diversity},
    {"nucl_comp.sum", "_NUCLEOTIDE_COMPOSITION_", "Nucleotide composition\n", "DNA sample", composition},
    {"mold_div.sum", "_MOLECULAR_DIVERSITY_", "Molecular diversity indices:\n", by_sample, molecular},
    {"mismatch.sum", "_MISMATCH_", mismatch_title, by_sample, mismatch_sudden},
    {"mismatch_sp3.sum", "_MISMATCH_", mismatch_title, by_sample, mismatch_one_size},
    {"mismatch_sp4.sum", "_MISMATCH_", mismatch_title, by_sample, mismatch_two_sizes},
    {"only_mismatch_sp.txt", "_MISMATCH_", mismatch_title, "sample with differences", only_mismatch,
     "Each start begins it anew.", false},
    {"theta.sum", "_THETA_", "\t", by_sample, theta, "An estimator that was not computed is left out with its name."},
    {"link_dis.sum", "_LINKAGE_DISEQUILIBRIUM_", linkage_title, "pair of loci in a sample", linkage},
    {"l_d_pro.sum", "_LINKAGE_DISEQUILIBRIUM_", linkage_title, "nothing", no_columns, no_rows},
    {"l_d_proIBD.sum", "_LINKAGE_DISEQUILIBRIUM_", linkage_title, "nothing", no_columns, no_rows},
    {"l_d_val.sum", "_LINKAGE_DISEQUILIBRIUM_", linkage_title, "nothing", no_columns, no_rows},
    {"hw.sum", "_HARDY_WEINBERG_", "Hardy-Weinberg equilibrium indices\t", by_sample, hardy_weinberg,
     "The seven columns behind the names return for each locus."},
    {"tajima.sum", "_TAJIMA_", "Tajima's test:\n", by_sample, tajima},
    {"fu_fs.sum", "_FU_FS_", "Fu's Fs test:\n", "sample with more than one allele", fu},
    {"ewens.sum", "_EWENS_WATTERSON_", "Ewens-Watterson test:\n", "sample with more than one haplotype", ewens},
    {"chakra.sum", "_CHAKRABORTY_", "Chakraborty's test:\n", "sample that can be tested", chakraborty},
    {"pairdist.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_fst,
     "When the FST were tested, a line `p-Values matrix : No of permutations : ` with their number follows, and a line "
     "a sample with its P-values, `*` in place of its own."},
    {"FSTdist.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_fst},
    {"VCompdist.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_variance},
    {"pairdiff.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_differences},
    {"tau_uneq.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_tau, "Only when divergence times are asked for."},
    {"coanst_c.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_coancestry},
    {"slatkin.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_slatkin},
    {"NM_value.sum", "_PAIRWISE_DIST_", "\t", pair_row, pair_migrants},
    {"amovares.sum", "_AMOVA_RES_", "AMOVA results:\n", "analysis that the document shows", amova},
    {"allele_freqs.sum", "_ALLELE_FREQS_", "Allele frequencies:\n", "haplotype of a sample with known gametic phase",
     allele_frequencies},
    {"selectionDetection.sum", "_DETECT_SELECTION_", "Detection of loci under selection:\n", "project", selection},
};

// --- Side tables ---

constexpr ColumnText each_sample{"", "one a sample, headed by its name", "", "-1", 1, any};
constexpr ColumnText mean_column{"Mean", "mean over the samples with a value", "", "-1"};
constexpr ColumnText sd_column{"s.d.", "standard deviation over them; 0 for one", "", "-1"};
constexpr ColumnText locus_label{"Locus#", "number of the locus, from 1; then `Mean` and `s.d.` over loci"};

constexpr ColumnText summary_het[] = {
    locus_label, each_sample, mean_column, sd_column, {"Tot. Het.", "expected heterozygosity of all samples together"}};
constexpr ColumnText summary_theta[] = {
    {"Locus#", "number of the locus, from 1; then `Theta from Mean H`, and `Mean` and `s.d.` over loci"},
    {"", "one a sample, headed by its name", "", "N.A. for a heterozygosity of 1", 1, any},
    mean_column,
    sd_column};
constexpr ColumnText summary_alleles[] = {
    locus_label, each_sample, mean_column, sd_column, {"Tot. number", "alleles of all samples together"}};
constexpr ColumnText summary_range[] = {
    locus_label, each_sample, mean_column, sd_column, {"Tot. range", "range of all samples together", "", "-1"}};
constexpr ColumnText summary_locus[] = {locus_label, each_sample, mean_column, sd_column};
constexpr ColumnText summary_molecular[] = {
    {"Statistics", "name of the statistic"},
    each_sample,
    mean_column,
    sd_column,
    {"Total:", "for the sites with substitutions alone: their number in all samples together", "", "an empty cell"}};

constexpr ColumnText linkage_triangle[] = {
    {"", "P-values of a polymorphic locus with those before it, or the name of a sample alone", "probability",
     "1 for a pair that can't be tested", 1, any}};
constexpr ColumnText names[] = {{"", "`Pop_1`, ..."}, {"", "name of the sample"}};
constexpr ColumnText frequency_column{
    "Pop_1", "one a sample: `Pop_1`, `Pop_2`, ...; relative frequency", "fraction", "0", 1, any};
constexpr ColumnText locus_frequencies[] = {{"Allele", "allele"}, frequency_column};
constexpr ColumnText all_frequencies[] = {{"Locus", "`Locus_1`, ..."}, {"Allele", "allele"}, frequency_column};
constexpr ColumnText missing_data[] = {{"Locus#", "number of the locus, from 1"},
                                       {"Freq. missing data", "share of missing data", "fraction"}};
constexpr std::string_view out_of_range = "-1 without heterozygosity, 2 when that is out of the simulated range";
constexpr ColumnText observed_loci[] = {
    {"Locus", "number of the locus, from 1"},
    {"Obs. Het. BP", "heterozygosity between samples"},
    {"Obs FST", "FST"},
    {"FST P-value", "its P-value", "probability", out_of_range},
    {"Obs FCT", "FCT", "", one_group, 0, 1},
    {"FCT P-value", "its P-value", "probability", out_of_range, 0, 1},
};
constexpr ColumnText simulated_loci[] = {
    {"FST", "FST"},
    {"FSC", "FSC", "", one_group, 0, 1},
    {"FCT", "FCT", "", one_group, 0, 1},
    {"Target Het.", "heterozygosity that was aimed at", "", "NA for DNA and RFLP data"},
    {"MeanHetBP", "heterozygosity between samples; `ExpHetBP` with several groups"},
    {"MeanHetWP", "mean heterozygosity within samples"},
    {"NumMutsOnTree", "mutations"},
};
constexpr std::string_view no_estimate = "nothing";
constexpr ColumnText expansion_estimates[] = {
    {"Data file", no_estimate},   {"Tau", no_estimate},          {"C.I. Tau", no_estimate},
    {"Theta1", no_estimate},      {"C.I. Theta1", no_estimate},  {"Theta0", no_estimate},
    {"C.I. Theta0", no_estimate}, {"P-value", no_estimate},      {"Signif. 5%", no_estimate},
    {"Tau (R-H)", no_estimate},   {"Theta1 (R-H)", no_estimate}, {"Theta0 (R-H)", no_estimate},
};

constexpr TableText side_tables[] = {
    {"sumExpHeterozygosity.sum", "", "", "locus", summary_het},
    {"sumThetaH.sum", "", "", "locus", summary_theta, "Theta(H) under the infinite-allele model."},
    {"sumThetaH_smm.sum", "", "", "locus", summary_theta,
     "Theta(H) under the stepwise mutation model, for microsatellites."},
    {"sumNumAlleles.sum", "", "", "locus", summary_alleles},
    {"sumAllelicSizeRange.sum", "", "", "locus", summary_range, "For microsatellites."},
    {"sumGWIndex.sum", "", "", "locus", summary_locus, "The Garza-Williamson index, for microsatellites."},
    {"sumModGWIndex.sum", "", "", "locus", summary_locus,
     "The Garza-Williamson index with the range of all samples, for microsatellites."},
    {"sumMolecDivIndexes.sum", "", "", "statistic", summary_molecular},
    {"ld_dis.xl", "", "", "sample, with several lines", linkage_triangle},
    {"PopNames.txt", "", "", "sample", names},
    {"AllFreqLocus_1.txt", "", "", "allele", locus_frequencies, "And so on, a file a locus."},
    {"AllAlleleFreqs.txt", "", "", "allele", all_frequencies},
    {"MissDataPerLocus.txt", "", "", "locus", missing_data},
    {"fdist2_ObsOut.txt", "", "", "locus with an FST", observed_loci,
     "17 digits. Behind the last word of the head stands what a P-value of 2 means."},
    {"fdist2_simOut.txt", "", "", "simulated locus", simulated_loci,
     "17 digits. The head ends with the means that were aimed at, in columns of their own."},
    {"glob_res.xl", "", "", "nothing", expansion_estimates,
     "In the working directory. Nothing is written behind its head."},
};

}  // namespace

std::span<TableText const> batch_table_texts() noexcept { return batch_tables; }

std::span<TableText const> side_table_texts() noexcept { return side_tables; }

TableText const& table_text(std::string_view file) noexcept {
    auto const named = [file](TableText const& table) { return table.file == file; };
    auto const* const batch = std::find_if(std::begin(batch_tables), std::end(batch_tables), named);
    return batch != std::end(batch_tables) ? *batch
                                           : *std::find_if(std::begin(side_tables), std::end(side_tables), named);
}

std::string head_of(TableText const& table) {
    std::string head(table.title);
    bool first = true;
    for (ColumnText const& column : table.columns) {
        if (column.head.empty()) continue;
        if (!first) head += '\t';
        head += column.head;
        first = false;
    }
    return first ? head : head + '\n';
}

}  // namespace tov
