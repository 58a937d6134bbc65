// TGenotSample: gametic phases of one sample by the KPV sampler, their summary and their print.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "inference/formula/kpv_sampler.h"

namespace tov {

class TAllele;
class TAlleleDB;
class TPhenDB;
class settings;

/// One chromosome: the index of its allele at each locus, -1 for missing data.
using TGamete = std::vector<int>;

/// A phase of one individual and the number of samples that showed it. The chromosomes stand in ascending order, so
/// that equal phases are equal records.
struct SampledPhase {
    TGamete first, second;
    int count = 0;
};

/// One individual with its sampled phases, the most frequent one first.
struct TGenotIndividual {
    std::string name;
    std::vector<SampledPhase> phases;
};

/// A haplotype of the sampled phases and its frequency.
struct EstimatedHaplotype {
    TGamete alleles;
    double frequency = 0.0;
};

class TGenotSample {
public:
    /// @param individuals  one phenotype an individual; read here only.
    /// @param missing      missing-data character.
    TGenotSample(TPhenDB const& individuals, TAlleleDB const* alleles, settings& set, char missing);

    /// Runs the chain and summarises its samples. @return 1, or 0 when the user stopped it.
    /// Draws: random phases of all individuals, then those of the chain's steps.
    int performGibbs();
    void writeResults(std::ostream& out) const;
    /// The most frequent phases as a project with known phase.
    void writeSample(std::ostream& out, std::string const& name) const;

    [[nodiscard]] std::vector<TGenotIndividual> const& individuals() const noexcept { return individuals_; }
    /// Haplotypes of all sampled phases, each weighted by its phase's share; by falling frequency.
    [[nodiscard]] std::vector<EstimatedHaplotype> constructEstimatedHaploDB() const;

private:
    [[nodiscard]] KpvChain make_chain() const;
    [[nodiscard]] SampledPhase phase_of(KpvChain const& chain, int individual) const;
    bool walk(KpvChain& chain, long steps);
    bool burn_in(KpvChain& chain);
    bool sample(KpvChain& chain);
    [[nodiscard]] std::string text_of(TGamete const& gamete) const;
    [[nodiscard]] int polymorphic_loci() const;
    void print_parameters(std::ostream& out) const;
    void print_haplotypes(std::ostream& out, std::vector<EstimatedHaplotype> const& haplotypes) const;
    void print_phases(std::ostream& out, std::vector<EstimatedHaplotype> const& haplotypes) const;

    settings& set_;             // borrowed
    TAlleleDB const* alleles_;  // borrowed
    char missing_;
    int loci_ = 0;
    int ambiguous_ = 0;
    int samples_taken_ = 0;
    std::vector<TGamete> original_;  ///< two an individual, as read
    std::vector<TGenotIndividual> individuals_;
};

}  // namespace tov
