// Allele counts of one locus after the other, from the haplotypes or the individuals of a sample.
#pragma once

#include <vector>

namespace tov {

class Population;
class TAllele;
class TPhenDB;

/// An allele of the sample and its copies there.
struct CountedAllele {
    TAllele* allele;  // borrowed
    double copies;
};

/// Copies at one locus.
struct LocusCounts {
    std::vector<CountedAllele> alleles;  ///< counted alleles with copies, by rank in the locus
    double total = 0.0;                  ///< copies of counted alleles
    double uncounted = 0.0;              ///< copies that do not count: missing, or ambiguous where that is asked for
    double heterozygotes = 0.0;          ///< individuals with two different alleles, both counted (genotypes)
    double individuals = 0.0;            ///< individuals with both alleles counted (genotypes)
};

/// Alleles that do not count.
struct MissingOnly {};         ///< the missing-data label
struct MissingOrAmbiguous {};  ///< that, and the codes that stand for several bases

/// Letter that stands for more than one base: R Y M K S W B D H V N.
[[nodiscard]] bool is_ambiguous_base(char c) noexcept;

/// Walks a sample's haplotypes when it has any, otherwise its phenotypes.
class LocusWalk {
public:
    explicit LocusWalk(Population const& sample);
    /// The phenotypes alone, whether there are haplotypes or not.
    LocusWalk(Population const& sample, TPhenDB const& phenotypes);

    [[nodiscard]] int nb_loci() const noexcept { return nb_loci_; }
    void count(int locus, MissingOnly, LocusCounts& counts) const { count(locus, false, counts); }
    void count(int locus, MissingOrAmbiguous, LocusCounts& counts) const { count(locus, true, counts); }

private:
    struct Tally;
    void count(int locus, bool skip_ambiguous, LocusCounts& counts) const;
    void count_haplotypes(int locus, Tally& tally) const;
    void count_phenotypes(int locus, Tally& tally, LocusCounts& counts) const;

    Population const* sample_;             // borrowed
    TPhenDB const* phenotypes_ = nullptr;  // borrowed; null when haplotypes are walked
    int nb_loci_ = 0;
};

}  // namespace tov
