// Likelihoods of two loci of unknown phase, with and without linkage disequilibrium, and their permuted samples.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/random.h"
#include "inference/formula/em_terms.h"

namespace tov {

/// Alleles of one individual at two loci, by number within the locus: [0] and [1] are its chromosomes as read.
struct TwoLocusGenotype {
    std::array<std::int32_t, 2> first;
    std::array<std::int32_t, 2> second;
};

/// Individuals at two loci. With recessive alleles the blank, which another allele hides, has the number 0 at both.
struct TwoLocusSample {
    void add(TwoLocusGenotype const& genotype, double individuals);
    [[nodiscard]] bool is_empty() const noexcept { return genotypes.empty(); }

    std::vector<TwoLocusGenotype> genotypes;
    std::vector<double> counts;  ///< individuals of each
    std::int32_t first_alleles = 0;   ///< numbers in use at the first locus are below it
    std::int32_t second_alleles = 0;
    bool recessive = false;
};

/// Numbers for distinct keys; emptied at no cost, and without allocation for no more keys than it was made for.
class KeyIndex {
public:
    /// Forgets all keys; makes room for `most` of them.
    void restart(std::size_t most);
    /// The number of the key, `next` when it is new.
    std::int32_t number(std::uint64_t a, std::uint64_t b, std::int32_t next) noexcept;

private:
    struct Slot {
        std::uint64_t a = 0;
        std::uint64_t b = 0;
        std::uint32_t round = 0;
        std::int32_t number = 0;
    };
    std::vector<Slot> slots_;  // a power of two of them
    std::uint32_t round_ = 0;
};

/// ln likelihoods of a sample of two loci.
struct LinkageLikelihoods {
    double lnLD = 0.0;     ///< with free haplotype frequencies, by EM
    double lnLE = 0.0;     ///< under linkage equilibrium, from the sample's allele frequencies
    bool stopped = false;  ///< the user ended the EM

    /// -2 (lnLD - lnLE): the stronger the disequilibrium, the smaller.
    [[nodiscard]] double statistic() const noexcept { return -2.0 * (lnLD - lnLE); }
};

/// Computes the likelihoods of one sample after the other in the same memory.
class TwoLocusEm {
public:
    /// Makes room for the sample and all its permutations, so that none of these allocates.
    void reserve(TwoLocusSample const& sample, EmOptions const& options);
    /// Equal individuals are put together first; their haplotypes are numbered in the order in which the genotypes of
    /// the individuals, one by one and the second haplotype first, bring them up. Draws: those of em_estimate.
    LinkageLikelihoods evaluate(TwoLocusSample const& sample, EmOptions const& options, EmGoesOn const& goes_on = {});

    [[nodiscard]] EmData const& data() const noexcept { return data_; }
    [[nodiscard]] EmWork const& work() const noexcept { return work_; }

private:
    struct Chromosomes;
    void load(TwoLocusSample const& sample);
    void add_phenotype(TwoLocusGenotype const& genotype, double individuals, bool recessive);
    void add_pair(Chromosomes const& pair, std::size_t from, bool recessive);
    std::int32_t haplotype(std::int32_t first, std::int32_t second, bool has_blank);
    double ln_equilibrium(TwoLocusSample const& sample);

    EmData data_;
    EmWork work_;
    KeyIndex haplotypes_;
    KeyIndex phenotypes_;
    std::vector<double> first_copies_;   // by allele, then as frequencies
    std::vector<double> second_copies_;
};

/// Samples in which the alleles of the first locus are shuffled among all chromosomes, while those of the second stay
/// with their individuals.
class AllelePermutation {
public:
    /// One entry an individual: each of `sample` once in its order, then the further copies in the same order. A count
    /// below 1 stays one entry of that count.
    explicit AllelePermutation(TwoLocusSample const& sample);
    /// The next sample, shuffled anew from the observed order. Draws: two an individual.
    TwoLocusSample const& next(Ran3State& generator) noexcept;
    [[nodiscard]] TwoLocusSample const& sample() const noexcept { return sample_; }

private:
    TwoLocusSample sample_;
    std::vector<std::int32_t> observed_;  // alleles of the first locus, chromosome by chromosome
    std::vector<std::int32_t> shuffled_;
};

/// Null statistics held against the observed one.
struct NullCounts {
    int smaller = 0;
    int equal = 0;  ///< within 1e-10

    void add(double statistic, double observed) noexcept {
        if (statistic < observed) {
            ++smaller;
        } else if (statistic - observed < 1e-10) {
            ++equal;
        }
    }
};

}  // namespace tov
