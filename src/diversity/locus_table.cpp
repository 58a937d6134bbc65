// Numbers of alleles, heterozygosities and allele sizes of a sample, locus by locus.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "diversity/formula/heterozygosity.h"
#include "diversity/formula/locus_statistics.h"
#include "diversity/locus_table_report.h"
#include "diversity/locus_walk.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/style.h"

namespace tov {
namespace {

/// Size of a microsatellite allele: its name as a number, to the nearest integer. Names that are no number of a size
/// count as 0.
int allele_size(TAllele const& allele) {
    double const size = std::atof(allele.name().c_str()) + 0.5;
    return std::fabs(size) < 2147483647.0 ? static_cast<int>(size) : 0;
}

struct SizeSummary {
    int smallest = 0;
    int largest = 0;
    double mean = 0.0;
};

SizeSummary summarize_sizes(LocusCounts const& counts) {
    if (counts.alleles.empty()) {
        return {};
    }
    SizeSummary r{std::numeric_limits<int>::max(), -std::numeric_limits<int>::max(), 0.0};
    for (CountedAllele const& a : counts.alleles) {
        int const size = allele_size(*a.allele);
        r.smallest = std::min(r.smallest, size);
        r.largest = std::max(r.largest, size);
        r.mean += a.copies / counts.total * size;
    }
    return r;
}

void store_locus(LocusTable& table, std::size_t i, LocusCounts const& counts, bool genotypes, bool sizes) {
    std::vector<double> copies;
    for (CountedAllele const& a : counts.alleles) {
        copies.push_back(a.copies);
    }
    table.copies[i] = static_cast<int>(counts.total);
    table.alleles[i] = static_cast<int>(copies.size());
    table.exp_het[i] = expected_heterozygosity(copies);
    if (genotypes) {
        table.obs_het[i] = counts.individuals > 0.0 ? counts.heterozygotes / counts.individuals : 0.0;
    }
    if (sizes) {
        SizeSummary const summary = summarize_sizes(counts);
        table.min_size[i] = summary.smallest;
        table.max_size[i] = summary.largest;
        table.mean_size[i] = summary.mean;
        double const range = static_cast<double>(summary.largest) - summary.smallest;
        table.range[i] = static_cast<int>(std::min(range, 2147483647.0));
        table.garza_williamson[i] = garza_williamson_ratio(table.alleles[i], range);
    }
}

/// Leaves the alleles' counts and relative frequencies of the sample in the allele database.
void store_frequencies(LocusCounts const& counts, int population) {
    for (CountedAllele const& a : counts.alleles) {
        a.allele->inc_freq(a.copies);
        double* const by_population = a.allele->pop_freq();
        if (by_population != nullptr && population >= 0 && population < TAllele::numPop) {
            by_population[population] = a.copies / counts.total;
        }
    }
}

template <class Column>
MeanSd column_mean(Column const& column, std::vector<std::size_t> const& loci, std::size_t of) {
    std::vector<double> values;
    values.reserve(loci.size());
    for (std::size_t const i : loci) {
        values.push_back(static_cast<double>(column[i]));
    }
    ColumnMean const m = mean_over_loci(values, static_cast<int>(of));
    return {m.mean, m.sd};
}

LocusMeans means_over(LocusTable const& t, std::vector<std::size_t> const& loci, bool genotypes, bool sizes) {
    LocusMeans m;
    std::size_t const of = t.copies.size();
    m.loci = static_cast<int>(loci.size());
    m.copies = column_mean(t.copies, loci, of);
    m.alleles = column_mean(t.alleles, loci, of);
    m.exp_het = column_mean(t.exp_het, loci, of);
    if (genotypes) {
        m.obs_het = column_mean(t.obs_het, loci, of);
    }
    if (sizes) {
        m.range = column_mean(t.range, loci, of);
        m.garza_williamson = column_mean(t.garza_williamson, loci, of);
    }
    return m;
}

LocusTable make_locus_table(PopGenetics const& sample, LocusWalk const& walk, bool genotypes) {
    bool const sizes = sample.profile.DataType == MICROSAT;
    LocusTable table;
    table.Reallocate(walk.nb_loci());
    std::vector<std::size_t> polymorphic;
    std::vector<std::size_t> all;
    LocusCounts counts;
    for (int locus = 0; locus < walk.nb_loci(); ++locus) {
        if (sample.profile.DataType == DNA) {
            walk.count(locus, MissingOrAmbiguous{}, counts);
        } else {
            walk.count(locus, MissingOnly{}, counts);
        }
        auto const i = static_cast<std::size_t>(locus);
        store_locus(table, i, counts, genotypes, sizes);
        store_frequencies(counts, sample.pop_index());
        all.push_back(i);
        if (table.alleles[i] > 1) {
            polymorphic.push_back(i);
        }
    }
    table.over_polymorphic = means_over(table, polymorphic, genotypes, sizes);
    table.over_all = means_over(table, all, genotypes, sizes);
    return table;
}

}  // namespace

void PopGenetics::OutputAllelelNumberAndHetPerLocusHapl(std::ostream& out, settings const&, bool rows, bool means,
                                                        bool) {
    if (profile.DataType == FREQUENCY) {
        return;
    }
    locus_table_ = make_locus_table(*this, LocusWalk(*this), false);
    print_locus_table(out, locus_table_, {false, profile.DataType == MICROSAT, rows, means});
}

void PopGenetics::OutputAllelelNumberAndHetPerLocusDipl(TPhenDB& individuals, std::ostream& out, settings const&,
                                                        bool rows, bool means, bool) {
    if (profile.DataType == FREQUENCY) {
        return;
    }
    locus_table_ = make_locus_table(*this, LocusWalk(*this, individuals), true);
    print_locus_table(out, locus_table_, {true, profile.DataType == MICROSAT, rows, means});
}

void PopGenetics::computeMeanAlleleSizes() {
    LocusWalk const walk = is_genotypic() && phenotypes.size() > 0 ? LocusWalk(*this, phenotypes) : LocusWalk(*this);
    mean_allele_sizes_.assign(static_cast<std::size_t>(walk.nb_loci()), 0.0);
    LocusCounts counts;
    for (int locus = 0; locus < walk.nb_loci(); ++locus) {
        walk.count(locus, MissingOnly{}, counts);
        double sum = 0.0;
        for (CountedAllele const& a : counts.alleles) {
            sum += a.copies * allele_size(*a.allele);
        }
        mean_allele_sizes_[static_cast<std::size_t>(locus)] = counts.total > 0.0 ? sum / counts.total : 0.0;
    }
}

namespace {

/// Number of individuals: whole, unless the project gives fractions.
std::string individuals_text(double n) {
    return n == std::floor(n) && std::fabs(n) < 1e15 ? std::to_string(static_cast<long long>(n)) : number_text(n, 4);
}

struct RowHash {
    std::size_t operator()(TPopHaplotype const* h) const { return h->alleles().hash(); }
};
struct RowEqual {
    bool operator()(TPopHaplotype const* a, TPopHaplotype const* b) const { return *a == *b; }
};

}  // namespace

void Population::compute_phenotype_heterozygosity(settings& s, TPhenDB const& ph) {
    double homozygotes = 0.0;
    double heterozygotes = 0.0;
    std::unordered_map<TPopHaplotype const*, double, RowHash, RowEqual> copies;
    for (int i = 0; i < ph.size(); ++i) {
        TPhenotype const& phenotype = ph.phenotype(i);
        if (phenotype.ps_hapl0() == nullptr || phenotype.ps_hapl1() == nullptr) {
            continue;
        }
        double const n = phenotype.obs_count();
        (*phenotype.ps_hapl0() == *phenotype.ps_hapl1() ? homozygotes : heterozygotes) += n;
        copies[phenotype.ps_hapl0()] += n;
        copies[phenotype.ps_hapl1()] += n;
    }
    std::vector<double> counts;
    for (auto const& entry : copies) {
        counts.push_back(entry.second);
    }
    std::sort(counts.begin(), counts.end());  // the sum does not depend on where the haplotypes lie in memory
    PhenotypeHeterozygosity const r = phenotype_heterozygosity(heterozygotes, homozygotes, counts);
    if (auto* const genetics = dynamic_cast<PopGenetics*>(this)) {
        genetics->obs_pheno_het_ = r.observed;
        genetics->exp_pheno_het_ = r.expected;
    }
    s.ofs() << "\nNo. of Heterozygotes     : " << individuals_text(r.heterozygotes)
            << "\nNo. of Homozygotes       : " << individuals_text(r.homozygotes)
            << "\nObs.Heter.               : " << num{r.observed, 7, 5}
            << "\nExp.Heter.               : " << num{r.expected, 7, 5} << '\n';
}

}  // namespace tov
