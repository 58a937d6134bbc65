// DiffInterPop: exact tests of differentiation of samples, over all and pair by pair.
#pragma once

#include <vector>

#include "inference/formula/contingency_chain.h"

namespace tov {

class Population;
class Samples;
class settings;

/// Tests of the hypothesis that samples are random draws of one population, on their tables of haplotypes (or, for
/// genotypes of unknown phase, of phenotypes) by samples.
class DiffInterPop {
public:
    DiffInterPop(settings* set, Samples* samples) : set_(set), samples_(samples) {}

    /// All tests with their print. Reports 59 without settings or samples.
    /// Draws: those of the chain over all samples, then of each pair (i, j), j < i.
    void make_all_tests();

private:
    /// Counts of the kinds of haplotype or phenotype in each sample; columns in the order of first occurrence.
    [[nodiscard]] ContingencyTable build_all_table(std::vector<Population const*> const& populations) const;
    [[nodiscard]] ContingencyTable build_pheno_table(std::vector<Population const*> const& populations) const;
    [[nodiscard]] ContingencyTable build_table(std::vector<Population const*> const& populations) const;
    ChainOutcome make_sample_test();
    ChainOutcome make_diff_test(int i, int j);
    [[nodiscard]] bool by_phenotypes() const;

    void print_heading() const;
    void print_global(ChainOutcome const& outcome) const;
    void print_pairs();
    void print_significance() const;

    settings* set_;     // borrowed
    Samples* samples_;  // borrowed
    std::vector<double> p_values_;  ///< of the pairs, row by row below the diagonal
    bool pair_failed_ = false;
};

}  // namespace tov
