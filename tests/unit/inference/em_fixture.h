// Samples of genotypes for the tests of the estimation of haplotype frequencies.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "input/settings.h"
#include "model/popbase.h"
#include "unit/model/model_fixture.h"

namespace tov::test {

/// A frequency or deviation by the alleles of its haplotype.
using ByHaplotype = std::vector<std::pair<std::string, double>>;

/// A sample with its database and settings of its own; no bootstrap, no merging of phenotypes, three starts.
struct EmSample {
    explicit EmSample(std::initializer_list<ModelData::Entry> entries) {
        sample.alleles = &data.db;
        set.reset_initial_values();
        set.InitialConditionsEM = 3;
        data.fill(sample.phenotypes, entries);
        sample.set_sample_size(2.0 * sample.phenotypes.nb_individuals());
    }
    /// Estimates the sample's haplotypes into its pool. @return the ln likelihood.
    double estimate(int starts = 3, int inbreeding = 0, double F_given = 0.0) {
        F = F_given;
        return sample.calc_ML_hapl_freq_hill95_LD(sample.phenotypes, sample.pool, set, solutions, inbreeding, F,
                                                  nullptr, nullptr, 0, starts, 1000, 1e-7);
    }
    /// The same under linkage equilibrium.
    double estimate_equilibrium(int starts = 3, int inbreeding = 0, double F_given = 0.0) {
        F = F_given;
        return sample.calc_ML_hapl_freq_hill95_LE(sample.phenotypes, sample.pool, set, solutions, inbreeding, F,
                                                  nullptr, nullptr, 0, starts, 1000, 1e-7);
    }
    [[nodiscard]] double frequency(std::string const& alleles) const {
        for (TPopHaplotype const* const h : sample.pool.view()) {
            if (text(*h) == alleles) return h->freq();
        }
        return -1.0;
    }

    ModelData data;
    settings set;
    Population sample;
    int solutions = 0;
    double F = 0.0;
};

/// 30 individuals, both loci of two alleles.
inline std::initializer_list<ModelData::Entry> const two_loci = {{"AB", "AB", 6}, {"AB", "ab", 9}, {"ab", "ab", 5},
                                                                 {"AB", "Ab", 3}, {"AB", "aB", 2}, {"Ab", "ab", 3},
                                                                 {"aB", "ab", 2}};
/// 25 individuals with an excess of homozygotes.
inline std::initializer_list<ModelData::Entry> const inbred = {{"AB", "AB", 8}, {"ab", "ab", 8}, {"AB", "ab", 4},
                                                               {"AB", "Ab", 2}, {"Ab", "Ab", 2}, {"aB", "ab", 1}};
/// 24 individuals, four loci of two alleles.
inline std::initializer_list<ModelData::Entry> const four_loci = {
    {"ABCD", "abcd", 3}, {"ABcd", "abCD", 2}, {"AbCd", "AbCd", 4}, {"abcd", "abcD", 5},
    {"ABCD", "ABcD", 1}, {"aBCd", "abCd", 2}, {"ABcd", "ABcd", 6}, {"AbcD", "aBCD", 1}};

}  // namespace tov::test
