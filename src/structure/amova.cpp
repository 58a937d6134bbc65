// Amova: set-up, choice of the design and the sums that all designs share.
#include "structure/amova.h"

#include <algorithm>
#include <ctime>
#include <numeric>
#include <ostream>

#include "base/dmat.h"
#include "base/scoped_swap.h"
#include "base/timing.h"
#include "input/settings.h"
#include "model/hapldb.h"
#include "model/popbase.h"
#include "model/sample.h"
#include "model/struct.h"
#include "output/html_out.h"
#include "output/style.h"
#include "output/table.h"
#include "run/errors.h"
#include "structure/mantel.h"

namespace tov {

ObservedFixation observed_fixation;

namespace {

/// The AMOVA itself is asked for.
bool amova_wanted(settings const& set) {
    return set.wants(task::amova) && (set.HaplAMOVA != 0 || set.LocByLocAMOVA != 0);
}

/// Something needs the AMOVA's machinery: a design, the pairs of samples, or the Mantel test behind them.
bool machinery_wanted(settings const& set) {
    return amova_wanted(set) || set.ComputePairwiseFST != 0 || set.PrintMissIntermatchs != 0 || set.wants(task::mantel);
}

/// Gene copies and their distances are needed. A Mantel test alone needs them unless its Y is given.
bool distances_wanted(ProjectView const& view) {
    settings const& set = view.set;
    bool const pairs = (set.ComputePairwiseFST != 0 || set.PrintMissIntermatchs != 0) &&
                       (set.wants(task::pairwise_fst) || set.ComputeDeltaMuSqr != 0);
    return amova_wanted(set) || pairs || (set.wants(task::mantel) && !view.mantel->has_custom_Y());
}

void number_populations(ProjectView const& view) {
    for (int i = 0; i < view.samples->NbPopulations(); ++i) {
        (*view.samples)[i]->set_numpop(-1);
    }
    int number = 0;
    for (Population* const population : view.structure->all_populations()) {
        population->set_numpop(number++);
    }
    for (int i = 0; i < view.samples->NbPopulations(); ++i) {
        if ((*view.samples)[i]->numpop() < 0) {
            (*view.samples)[i]->set_numpop(number++);
        }
    }
}

/// Gives every haplotype its row of the distance matrix.
bool associate_matrix(ProjectView const& view) {
    settings const& set = view.set;
    if (set.ComputeDistanceMatrixAMOVA == 0) {
        if (!view.haplotypes->associate_with1(*view.distances)) {
            E.error(ErrorType::Warning, "Project::AMOVA()", 135);
            return false;
        }
        return true;
    }
    if (!view.haplotypes->associate_with2(*view.distances)) {
        E.error(ErrorType::Error, "Project::AMOVA()", 135);
        return false;
    }
    view.distances->nb_labels = view.haplotypes->size();
    view.distances->labels.clear();
    for (int h = 0; h < view.haplotypes->size(); ++h) {
        view.distances->labels.push_back((*view.haplotypes)[h].id);
    }
    return true;
}

std::vector<int> group_sizes_of(Structure const& structure) {
    std::vector<int> sizes;
    for (int g = 0; g < structure.nb_groups(); ++g) {
        sizes.push_back(structure.group(g).nb_samples());
    }
    return sizes;
}

}  // namespace

bool is_amova_structure(Structure const& structure) {
    bool possible = true;
    auto const refuse = [&possible](int code) {
        E.error(ErrorType::Warning, "Project::IsAmovaStructure()", code);
        possible = false;
    };
    if (structure.nb_samples() == 0) {
        refuse(123);
    }
    if (structure.nb_groups() == 0) {
        refuse(124);
    }
    // As many groups as samples leave no degree of freedom within groups.
    if (structure.nb_groups() == structure.nb_samples() && structure.nb_samples() > 1) {
        refuse(125);
    }
    return possible;
}

void print_amova_anchor(int level, settings const& set, std::string const& title, std::string const& anchor) {
    print_js_doc_entry(set, level, anchor, title);
}

int run_amova(ProjectView const& view) {
    settings& set = view.set;
    long tasks = set.TaskNumber;
    if (amova_wanted(set) && !is_amova_structure(*view.structure)) {
        E.error(ErrorType::Warning, "Project::AMOVA()", 134);
        if (!set.wants(task::pairwise_fst)) {
            return 0;
        }
        tasks &= ~task::amova;  // only the distances between samples are left to do
    }
    ScopedSwap<long> const without_amova(set.TaskNumber, tasks);
    observed_fixation = {};
    if (distances_wanted(view) && !associate_matrix(view)) {
        return 0;
    }
    number_populations(view);
    Amova const amova(view, view.amova);
    return 1;
}

Amova::Amova(ProjectView const& view, amova_results* results)
    : view_(view), print_(true), locus_(0), results_(results) {
    settings& set = view_.set;
    if (!machinery_wanted(set)) {
        return;
    }
    time_text_ = local_time_text(time_format);
    if (distances_wanted(view_)) {
        initialize(gather_input());
    }
    if (amova_wanted(set)) {
        set.build_sigm_histo_f_name();
        print_introduction();
        design_ = select_design();
        run_selected_design();
    }
    if (set.wants(task::pairwise_fst | task::mantel) || set.ComputeDeltaMuSqr != 0) {
        *_AOS_ << "\tComputing pairwise Fst's ... \n";
        std::clock_t const start = std::clock();
        CalcPairDist();
        *_AOS_ << "\tdone ! (" << milliseconds_since(start) << " ms)\n";
    }
    for (int i = 0; i < view_.samples->NbPopulations(); ++i) {
        (*view_.samples)[i]->use_merged_list();
    }
}

Amova::Amova(ProjectView const& view, int locus, AmovaInput input, amova_results* results)
    : view_(view), print_(false), locus_(locus), results_(results) {
    initialize(std::move(input));
    design_ = select_design();
    run_selected_design();
}

Amova::~Amova() = default;

/// Each sample's list becomes the one in use: gene copies for genotypes, merged haplotypes otherwise.
AmovaInput Amova::gather_input() {
    for (int i = 0; i < view_.samples->NbPopulations(); ++i) {
        Population& population = *(*view_.samples)[i];
        if (population.is_genotypic()) {
            population.use_gene_copy_list();
        } else {
            population.use_merged_list();
        }
        population.nb_gene_copies = 0.0;
        for (int k = 0; k < population.nb_haplotypes(); ++k) {
            population.nb_gene_copies += population.haplotype(k).copies;
        }
    }
    populations_ = view_.structure->all_populations();
    std::vector<double> copies;
    for (Population const* const population : populations_) {
        copies.push_back(population->nb_gene_copies);
    }
    AmovaInput input;
    input.sizes = StructureSizes(std::move(copies), group_sizes_of(*view_.structure));
    input.distances = PairDistances(*view_.distances, std::max(view_.distances->dimension(), view_.haplotypes->size()));
    input.genes = load_HaplotypeIndexVector(input.distances.size());
    return input;
}

void Amova::initialize(AmovaInput input) {
    settings const& set = view_.set;
    individual_level_ = set.IncludeIndividualLevel != 0;
    plan_ = PermutationPlan(set.NumPermutationsAMOVA);
    sizes_ = std::move(input.sizes);
    distances_ = std::move(input.distances);
    genes_ = std::move(input.genes);
    if (plan_.permutations > 0) {
        observed_genes_ = genes_;
    }
    sums_.Nu = individual_level_ ? 0.5 * sizes_.total : sizes_.total;
    if (sums_.Nu >= 2147483647.0) {
        E.error(ErrorType::Memory, "Amova::initialize()", 0);
    }
    if (sizes_.groups() > 1) {
        order_.resize(sizes_.copies.size());
        std::iota(order_.begin(), order_.end(), 0);
    }
    slices_ = gene_slices(sizes_.copies, static_cast<int>(genes_.size()));
    S_.assign(sizes_.copies.size(), 0.0);
}

/// One entry a gene copy, population after population; the two copies of an individual are neighbours.
std::vector<int> Amova::load_HaplotypeIndexVector(int known) const {
    std::vector<int> genes;
    for (Population const* const population : populations_) {
        for (int k = 0; k < population->nb_haplotypes(); ++k) {
            PHaploDef const& entry = population->haplotype(k);
            genes.insert(genes.end(), std::max(entry.copies, 0), entry.haplotype->matrix_index);
        }
    }
    distribute_HaplotypeIndexVector(genes, known);
    return genes;
}

void Amova::distribute_HaplotypeIndexVector(std::span<int> genes, int known) const {
    std::size_t begin = 0;
    for (Population const* const population : populations_) {
        auto const copies =
            std::min(static_cast<std::size_t>(std::max(population->nb_gene_copies, 0.0)), genes.size() - begin);
        SetUpVectorsAfterPermutation(*population, genes.subspan(begin, copies), known, view_.haplotypes->size());
        begin += copies;
    }
}

void SetUpVectorsAfterPermutation(Population const& population, std::span<int> slice, int known, int listed) {
    for (std::size_t k = 0; k < slice.size(); ++k) {
        if (slice[k] >= 0 && slice[k] < known) {
            continue;
        }
        *_AOS_ << "Abnormal behaviour for pop:" << population.pop_name()
               << "\nnb_gene_copies=" << population.nb_gene_copies << " HDB.Nb_haplo" << listed << k
               << " H_vect:" << slice[k];
        E.error(ErrorType::Error, "Population::SetUpVectorsAfterPermutation", 2);
        slice[k] = known;
    }
}

void Amova::print_introduction() {
    settings const& set = view_.set;
    std::ostream& out = set.ofs();
    view_.structure->print_structure(out);
    if (set.ComputeConventionalFST != 0) {
        out << "\nComputing conventional F-Statistics from haplotype frequencies";
    } else if (set.ComputeDistanceMatrixAMOVA != 0) {
        out << "\nDistance method: ";
        set.print_distance_method(out, set.DistanceMethodAMOVA);
    }
}

/// Number of the design; 0 for none.
AmovaDesignNumber Amova::select_design() const {
    settings const& set = view_.set;
    if (sizes_.groups() == 0 || sizes_.copies.empty()) {
        return NO_DESIGN;
    }
    Structure const& structure = *view_.structure;
    bool const several_groups = sizes_.groups() > 1;
    bool const one_population = !several_groups && sizes_.group_size[0] == 1;
    auto const choose = [&](AmovaDesignNumber alone, AmovaDesignNumber one_group, AmovaDesignNumber groups) {
        return several_groups ? groups : one_population ? alone : one_group;
    };
    AmovaDesignNumber const of_copies = choose(NO_DESIGN, DESIGN_1G_P_H, DESIGN_G_P_H);
    AmovaDesignNumber const of_individuals = choose(DESIGN_1G_1P_I, DESIGN_1G_P_I, DESIGN_G_P_I);
    if (structure.GenotypicData == 0) {
        return of_copies;
    }
    if (structure.GameticPhase != 0) {
        return individual_level_ ? of_individuals : of_copies;
    }
    if (set.RecessiveAllelesEM != 0) {
        return choose(NO_DESIGN, DESIGN_1G_P_RIH, DESIGN_G_P_RIH);
    }
    if (individual_level_ && set.ComputeConventionalFST == 0) {
        return of_individuals;
    }
    return choose(NO_DESIGN, DESIGN_1G_P_IH, DESIGN_G_P_IH);
}

void Amova::run_selected_design() {
    struct Choice {
        AmovaDesignNumber design;
        int (Amova::*run)();
        int case_number;
    };
    static constexpr Choice choices[] = {
        {DESIGN_1G_P_H, &Amova::AMOVA_1G_P_H, 1},     {DESIGN_1G_P_I, &Amova::AMOVA_1G_P_I, 2},
        {DESIGN_G_P_H, &Amova::AMOVA_G_P_H, 3},       {DESIGN_G_P_I, &Amova::AMOVA_G_P_I, 4},
        {DESIGN_G_P_IH, &Amova::AMOVA_G_P_IH, 5},     {DESIGN_1G_1P_I, &Amova::AMOVA_1G_1P_I, 6},
        {DESIGN_1G_P_IH, &Amova::AMOVA_1G_P_IH, 7},   {DESIGN_G_P_RIH, &Amova::AMOVA_G_P_RIH, 8},
        {DESIGN_1G_P_RIH, &Amova::AMOVA_1G_P_RIH, 9},
    };
    for (Choice const& choice : choices) {
        if (choice.design == design_) {
            (this->*choice.run)();
            results_->case_number = choice.case_number;
        }
    }
}

void Amova::compute_SSDP() {
    population_sums_ = population_sums(distances_, slices_, genes_);
    sums_.total = total_sum(population_sums_);
    for (std::size_t p = 0; p < S_.size(); ++p) {
        S_[p] = population_sums_[p * (p + 1) / 2 + p];
    }
}

double Amova::compute_SSDWI() {
    within_individuals_.assign(slices_.size(), 0.0);
    return individual_sums(distances_, slices_, genes_, within_individuals_);
}

void Amova::compute_observed_sums(bool individuals) {
    compute_SSDP();
    sums_.W = within_terms(S_, sizes_);
    sums_.I = individuals ? compute_SSDWI() : 0.0;
    if (sizes_.groups() > 1) {
        groups_ = group_sums(sizes_, population_sums_, order_, static_cast<int>(sums_.Nu));
    }
}

void Amova::permute_among_groups() {
    permute_populations(order_, sizes_.group_size[0]);
    group_sums_into(permuted_groups_, sizes_, population_sums_, order_, static_cast<int>(sums_.Nu));
}

}  // namespace tov
