// The AMOVA locus by locus.
#include "structure/loc_by_loc.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <string_view>

#include "base/scoped_swap.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "structure/loc_by_loc_report.h"

namespace tov {

namespace {

/// Numbers the alleles of a locus in the order of their first gene copy.
class AlleleNumbers {
public:
    AlleleNumbers(TLocus const& locus, char missing) : locus_(locus), number_(locus.nb_alleles(), -1) {
        char const text[] = {missing, '\0'};
        TAllele const* const allele = locus.find_allele_by_name(std::string_view(text));
        missing_ = allele == nullptr ? -1 : allele->rank();
    }
    [[nodiscard]] bool known(int rank) const noexcept {
        return rank >= 0 && rank != missing_ && rank < static_cast<int>(number_.size());
    }
    int number(int rank) {
        if (number_[rank] < 0) {
            number_[rank] = static_cast<int>(names_.size());
            names_.push_back(locus_.allele(rank)->name());
        }
        return number_[rank];
    }
    [[nodiscard]] std::span<std::string_view const> names() const noexcept { return names_; }

private:
    TLocus const& locus_;
    std::vector<int> number_;
    std::vector<std::string_view> names_;
    int missing_ = -1;
};

/// Appends the gene copies of one sample at one locus.
void add_sample(Population const& population, int locus, bool whole_individuals, AlleleNumbers& alleles,
                std::vector<int>& genes) {
    auto const& list = *population.current_haplotypes;
    int const n = population.nb_haplotypes();
    int const step = whole_individuals ? 2 : 1;
    for (int k = 0; k + step <= n; k += step) {
        PHaploDef const& entry = *list[k];
        int const rank = entry.haplotype->rank(locus);
        bool usable = alleles.known(rank);
        int partner = -1;
        if (whole_individuals) {
            partner = list[k + 1]->haplotype->rank(locus);
            usable = usable && alleles.known(partner);
        }
        if (!usable) {
            continue;
        }
        genes.insert(genes.end(), std::max(entry.copies, 0), alleles.number(rank));
        if (whole_individuals) {
            genes.push_back(alleles.number(partner));
        }
    }
}

void set_statistics(TLocus& locus, double value) {
    locus.Va = locus.Vb = locus.Vc = locus.Vd = locus.total_variance = value;
    locus.FIS = locus.FST = locus.FSC = locus.FCT = locus.FIT = value;
}

void set_statistics(TLocus& locus, amova_results const& r) {
    locus.Va = r.variance[0];
    locus.Vb = r.variance[1];
    locus.Vc = r.variance[2];
    locus.Vd = r.variance[3];
    locus.total_variance = r.variance[4];
    locus.FIS = r.index[slot_FIS];
    locus.FST = r.index[slot_FST];
    locus.FSC = r.index[slot_FSC];
    locus.FCT = r.index[slot_FCT];
    locus.FIT = r.index[slot_FIT];
}

std::vector<int> group_sizes_of(Structure const& structure) {
    std::vector<int> sizes;
    for (int g = 0; g < structure.nb_groups(); ++g) {
        sizes.push_back(structure.group(g).nb_samples());
    }
    return sizes;
}

/// While it lives, genotypic samples are read copy by copy, the two of an individual side by side.
class CopyByCopy {
public:
    explicit CopyByCopy(Structure const& structure) : populations_(structure.all_populations()) {
        for (Population* const population : populations_) {
            if (population->is_genotypic()) {
                population->use_gene_copy_list();
            } else {
                population->use_merged_list();
            }
        }
    }
    ~CopyByCopy() {
        for (Population* const population : populations_) {
            population->use_merged_list();
        }
    }
    CopyByCopy(CopyByCopy const&) = delete;
    CopyByCopy& operator=(CopyByCopy const&) = delete;

private:
    std::vector<Population*> populations_;  // borrowed
};

/// One turn of the loop. @return false when the structure can't be analysed.
bool analyse_locus(ProjectView const& view, int locus, AMOVA_table& table) {
    TLocus& statistics = *(*view.alleles)[locus];
    OneLocus one = build_one_locus(view, locus);
    if (one.empty_sample >= 0) {
        *_AOS_ << "\t\tSamples::build_one_loci_sample(..): Population '"
               << view.structure->all_populations()[one.empty_sample]->pop_name()
               << "' does not contain any data at locus #" << locus + 1
               << ".\n\t\tIt is therefore impossible to make an AMOVA for this locus\n";
        set_statistics(statistics, -2.0);
        return true;
    }
    if (!is_amova_structure(*view.structure)) {
        E.error(ErrorType::Error, "Project::AMOVA()", 134);
        return false;
    }
    auto results = std::make_unique<amova_results>();
    results->locus = locus;
    Amova const amova(view, locus, std::move(one.input), results.get());
    set_statistics(statistics, *results);
    table.add(std::move(results));
    return true;
}

}  // namespace

AlleleKind allele_kind(TDataType type, int method) noexcept {
    switch (type) {
        case DNA: return AlleleKind::nucleotide;
        case RFLP: return AlleleKind::restriction;
        case MICROSAT: return method == 1 ? AlleleKind::size : AlleleKind::label;
        default: return AlleleKind::label;
    }
}

OneLocus build_one_locus(ProjectView const& view, int locus) {
    settings const& set = view.set;
    Samples const& samples = *view.samples;
    bool const genotypic = samples.GenotypicData != 0;
    bool const whole = genotypic && (samples.GameticPhase == 0 || set.IncludeIndividualLevel != 0);
    AlleleNumbers alleles(*(*view.alleles)[locus], samples.MissingData);
    OneLocus one;
    std::vector<double> copies;
    for (Population const* const population : view.structure->all_populations()) {
        std::size_t const before = one.input.genes.size();
        add_sample(*population, locus, whole, alleles, one.input.genes);
        std::size_t const found = one.input.genes.size() - before;
        if (found == 0) {
            one.empty_sample = static_cast<int>(copies.size());
            return one;
        }
        copies.push_back(static_cast<double>(found));
    }
    one.input.sizes = StructureSizes(std::move(copies), group_sizes_of(*view.structure));
    TriMat matrix;
    if (set.ComputeConventionalFST != 0) {
        matrix.set_conventional_fst(1);
    } else {
        matrix = allele_distances(alleles.names(), allele_kind(samples.DataType, set.DistanceMethodAMOVA),
                                  {set.TransitionWeight, set.TranversionWeight, set.DeletionWeight},
                                  samples.MissingData);
    }
    one.input.distances = PairDistances(matrix, static_cast<int>(alleles.names().size()));
    return one;
}

void locus_by_locus_amova(ProjectView const& view) {
    settings& set = view.set;
    Samples const& samples = *view.samples;
    ScopedSwap<int> const method(set.DistanceMethodAMOVA);
    ScopedSwap<long> const tasks(set.TaskNumber, set.TaskNumber & ~(task::pairwise_fst | task::mantel));
    ScopedSwap<int> const null_files(set.KeepNullDistrib, 0);
    if (samples.DataType == DNA || samples.DataType == RFLP) {
        set.DistanceMethodAMOVA = 0;
    }
    print_locus_by_locus_heading(view);
    AMOVA_table table;
    std::vector<int> single_allele;
    CopyByCopy const lists(*view.structure);
    int const loci = view.haplotypes->size() > 0 ? (*view.haplotypes)[0].nb_loci() : 0;
    for (int locus = 0; locus < loci; ++locus) {
        if (locus >= view.alleles->nb_loci()) {
            *_AOS_ << "\t\tSamples::build_one_loci_sample(..): ERROR the selected loci is too large\n";
            break;
        }
        if (!(*view.alleles)[locus]->is_polymorph(samples.MissingData)) {
            single_allele.push_back(locus);
            set_statistics(*(*view.alleles)[locus], 0.0);
            continue;
        }
        if (!analyse_locus(view, locus, table)) {
            return;
        }
    }
    *_AOS_ << "\tEnd of locus-by-locus computations\n";
    print_locus_by_locus_results(view, table, single_allele);
}

}  // namespace tov
