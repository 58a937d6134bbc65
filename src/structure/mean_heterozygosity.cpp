// Mean heterozygosities of loci over the samples and the groups of a structure.
#include <map>
#include <vector>

#include "diversity/formula/locus_statistics.h"
#include "diversity/locus_walk.h"
#include "model/alldb.h"
#include "model/popbase.h"
#include "model/struct.h"
#include "structure/selection.h"

namespace tov {

namespace {

/// A sum of values with weights; 0 without weight.
struct WeightedMean {
    double sum = 0.0;
    double weights = 0.0;
    void add(double value, double weight) noexcept {
        sum += value * weight;
        weights += weight;
    }
    [[nodiscard]] double value() const noexcept { return weights > 0.0 ? sum / weights : 0.0; }
};

/// A sample with its walk over loci; genotypes are walked by individuals.
struct WalkedSample {
    explicit WalkedSample(Population const& p)
        : population(&p),
          walk(p.is_genotypic() ? LocusWalk(p, p.phenotypes) : LocusWalk(p)),
          copies(gene_copies_of(p)) {}
    Population const* population;  // borrowed
    LocusWalk walk;
    double copies;
};

void count(WalkedSample const& sample, int locus, LocusCounts& counts) {
    if (sample.population->profile.DataType == DNA) {
        sample.walk.count(locus, MissingOrAmbiguous{}, counts);
    } else {
        sample.walk.count(locus, MissingOnly{}, counts);
    }
}

double heterozygosity(LocusCounts const& counts, std::vector<double>& copies) {
    copies.clear();
    for (CountedAllele const& a : counts.alleles) copies.push_back(a.copies);
    return expected_heterozygosity(copies);
}

/// Gene diversity of a group from the mean frequencies of its samples.
double group_diversity(std::map<int, double> const& frequencies, double N) {
    double squares = 0.0;
    for (auto const& [rank, sum] : frequencies) squares += (sum / N) * (sum / N);
    return N > 1.0 ? (1.0 - squares) * N / (N - 1.0) : 0.0;
}

}  // namespace

void computeMeanHeterozygosityOverSamplesInStructure(Structure const& structure, TAlleleDB& alleles) {
    std::vector<std::vector<WalkedSample>> groups;
    for (StructureGroup const& group : structure.groups) {
        groups.emplace_back();
        for (Population const* const p : group.populations) groups.back().emplace_back(*p);
    }
    LocusCounts counts;
    std::vector<double> copies;
    for (int locus = 0; locus < alleles.nb_loci(); ++locus) {
        WeightedMean over_samples;
        WeightedMean over_groups;
        for (std::vector<WalkedSample> const& group : groups) {
            std::map<int, double> frequencies;  // by rank of the allele, times gene copies
            double N = 0.0;
            for (WalkedSample const& sample : group) {
                count(sample, locus, counts);
                over_samples.add(heterozygosity(counts, copies), sample.copies);
                N += sample.copies;
                for (CountedAllele const& a : counts.alleles) {
                    frequencies[a.allele->rank()] += a.copies / counts.total * sample.copies;
                }
            }
            if (N > 0.0) over_groups.add(group_diversity(frequencies, N), N);
        }
        TLocus& result = *alleles[locus];
        result.mean_heterozygosity = over_samples.value();
        result.mean_gene_diversity = over_groups.value();
    }
}

}  // namespace tov
