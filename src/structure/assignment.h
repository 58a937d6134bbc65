// IndLikelihood: log-likelihoods of all individuals in all samples.
#pragma once

#include <vector>

#include "structure/formula/assignment.h"

namespace tov {

class Population;
class Samples;
class settings;

/// Genotype assignment of a project. Frequencies come from the EM on one locus at a time.
class IndLikelihood {
public:
    IndLikelihood(settings* set, Samples* samples) : set_(set), samples_(samples) {}

    /// Computes and prints everything.
    /// Draws: those of the EM's random starts, sample by sample, locus by locus.
    void run();

private:
    /// Frequencies of every sample, allele by allele; a locus's alleles stand side by side.
    void calc_alleles_freqs();
    void estimate_locus(Population& population, int locus, std::vector<double>& frequencies);
    void likelihood_in_a_pop(Population const& population);
    void number_alleles();
    [[nodiscard]] std::vector<AllelePair> genotype_of(Population const& population, int individual) const;
    [[nodiscard]] int place(int locus, int rank) const;
    void print_heading() const;

    static constexpr int width = 10;

    settings* set_;     // borrowed
    Samples* samples_;  // borrowed
    int loci_ = 0;
    std::vector<int> first_place_;  ///< of each locus, in the arrays of frequencies
    std::vector<int> missing_rank_; ///< of the missing-data allele at each locus, -1 for none
    std::vector<std::vector<double>> frequencies_;  ///< one array a sample
};

}  // namespace tov
