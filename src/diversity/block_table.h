// The task blocks of a sample, in the order in which they run. A block stands here once its statistics are built.
#pragma once

#include "diversity/blocks.h"
#include "input/settings.h"

namespace tov {

struct BlockRow {
    long task;
    void (*run)(SampleRun&);
};

inline constexpr BlockRow block_table[] = {
    // --- Numbers of alleles, heterozygosity ---
    {task::standard_indices, standard_indices_block},

    // --- Distances between haplotypes, Pi, theta ---
    {task::molecular_diversity, molecular_diversity_block},

    // --- Mismatch distribution, demographic and spatial expansion ---
    {task::mismatch, mismatch_block},

    // --- Haplotype frequencies, gametic phase ---
    {task::haplotype_frequencies, haplotype_frequency_block},

    // --- Linkage disequilibrium ---
    {task::linkage_disequilibrium, linkage_disequilibrium_block},

    // --- Hardy-Weinberg equilibrium ---
    {task::hardy_weinberg, hardy_weinberg_block},

    // --- Distance matrix for the structure analyses ---
    {task::pairwise_distances, distance_matrix_block},

    // --- Tajima's test ---
    {task::tajima, tajima_block},

    // --- Ewens-Watterson tests ---
    {task::ewens_watterson, ewens_watterson_block},

    // --- Chakraborty's test ---
    {task::chakraborty, chakraborty_block},

    // --- Fu's test ---
    {task::fu_fs, fu_block},
};

}  // namespace tov
