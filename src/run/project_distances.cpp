// Project: distances between haplotypes, and haplotypes that these don't tell apart.
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dmat.h"
#include "base/recmat.h"
#include "base/scoped_swap.h"
#include "diversity/popgen.h"
#include "input/distance_names.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "output/html_out.h"
#include "output/references.h"
#include "output/tab_row.h"
#include "output/table.h"
#include "output/table_columns.h"
#include "run/errors.h"
#include "run/project.h"
#include "structure/minspanet.h"

namespace tov {
namespace {

/// Indices of the loci that are usable, or of those that aren't.
std::vector<int> loci_by_use(PopGenetics const& population, bool usable) {
    std::vector<int> loci;
    std::vector<int> const& flags = population.use_site();
    for (std::size_t i = 0; i < flags.size(); ++i)
        if ((flags[i] != 0) == usable) loci.push_back(static_cast<int>(i));
    return loci;
}

void print_locus_section(std::ostream& out, std::string const& title, std::vector<int> const& loci) {
    out << "\n\n" << title << '\n' << rule{static_cast<int>(title.size())} << '\n';
    locus_list(out, loci);
}

void report_usable_loci(std::ostream& out, settings const& set, PopGenetics const& population) {
    out << "\nNumber of usable loci for distance computation : " << population.nb_usable_loci()
        << "\nAllowed level of missing data                  : " << set.AllowedLevelOfMissingData;
    print_locus_section(out, "List of usable loci :", loci_by_use(population, true));
    print_locus_section(out, "List of loci with too much missing data :", loci_by_use(population, false));
    std::ofstream table(set.project_dir + "MissDataPerLocus.txt", std::ios::trunc);
    table << head_of(table_text("MissDataPerLocus.txt"));
    for (int i = 0; i < static_cast<int>(population.use_site().size()); ++i)
        TabRow(table) << i + 1 << population.missDataForLocus(i);
}

}  // namespace

/// The sample that stands for the whole list, analysed by its distances alone. Null when it yields no matrix.
std::unique_ptr<Population> Project::analyse_list(Haplo_DB& list, int method, double gamma) {
    settings& set = *settings_;
    std::unique_ptr<Population> population = new_population(DataType);
    population->set_name(title);
    population->alleles = alleles_.get();
    population->profile = p_pro();
    // The list holds haplotypes, whatever individuals they come from.
    population->profile.GenotypicData = 0;
    population->profile.GameticPhase = 1;
    if (&list == haplotypes_.get()) samples_->sum_copies(list);
    population->haplotype_transf(list);
    double copies = 0.0;
    for (int i = 0; i < list.size(); ++i) copies += list[i].copies;
    population->set_sample_size(copies);
    population->converted = phenToGamDone;
    ScopedSwap<long> const only_distances(set.TaskNumber, task::pairwise_distances);
    ScopedSwap<int> const swap_method(set.DistanceMethodAMOVA, method);
    ScopedSwap<double> const swap_gamma(set.GammaAValueAMOVA, gamma);
    ScopedSwap<int> const no_inference(set.InferHaplotypeDefinitionFromDistanceMatrix, 0);
    population->test_methods(set);
    return population;
}

int Project::calc_dist_matrix(Haplo_DB& list, int method, double gamma, bool report_loci) {
    std::unique_ptr<Population> const population = analyse_list(list, method, gamma);
    auto* const genetics = dynamic_cast<PopGenetics*>(population.get());
    if (!genetics || !genetics->has_dist_mat()) {
        E.error(ErrorType::Error, "Project::calc_dist_matrix()", 136);
        // What an earlier call left would pass for the distances of this one: an empty matrix is refused.
        distances_->reset();
        distances_->create(0);
        return 0;
    }
    RectMat const& computed = genetics->get_dist_mat();
    int const conventional = computed.conventional_fst();
    distances_->reset();
    distances_->create(conventional ? 0 : list.size());
    distances_->set_conventional_fst(conventional);
    for (int i = 0; i < distances_->dimension(); ++i)
        for (int j = 0; j <= i; ++j) distances_->set_data(computed(i, j), i, j);
    settings const& set = *settings_;
    bool const for_structure =
        (set.wants(task::amova) && (set.HaplAMOVA || set.LocByLocAMOVA)) || set.wants(task::pairwise_fst);
    if (report_loci && !conventional && for_structure) report_usable_loci(document(), set, *genetics);
    distance_computed = 1;
    return 1;
}

int Project::calc_dist_matrix(int method, double gamma) { return calc_dist_matrix(*haplotypes_, method, gamma, true); }

int Project::calc_dist_matrix(Haplo_DB& list, int method, double gamma) {
    return calc_dist_matrix(list, method, gamma, false);
}

void Project::print_distance_matrix() {
    std::ostream& out = document();
    settings const& set = *settings_;
    print_js_doc_entry(set, 2, samples_->pooled ? "_gr_amova_dm" : "_pop_amova_dm", "Distance matrix");
    heading(out, "Matrix of Euclidian square distances used in the genetic structure section:", 0, '-');
    if (distances_->conventional_fst()) {
        out << "\nConventional FST Matrix: Dij=1 if i!=j and O else:\n";
    } else {
        out << "\nDistance method: ";
        set.print_distance_method(out, set.DistanceMethodAMOVA);
        std::string_view const reference = distance_method_reference(DataType, set.DistanceMethodAMOVA);
        if (!reference.empty()) References(out, reference);
        out << '\n';
        lower_triangle(out, distances_->dimension(), CellValue([this](int i, int j) { return (*distances_)(i, j); }));
    }
    print_haplotype_list();
    if (set.PrintMinSpannNetworkGlob) print_global_network();
}

void Project::print_haplotype_list() {
    std::ostream& out = document();
    samples_->sum_copies(*haplotypes_);
    double total = 0.0;
    for (int i = 0; i < haplotypes_->size(); ++i) total += (*haplotypes_)[i].copies;
    out << "\n\nCorresponding list of Haplotypes: \n\nExt_Id  \tFreq.\n";
    for (int i = 0; i < haplotypes_->size(); ++i) {
        HaploDef const& definition = (*haplotypes_)[i];
        out << user_text{definition.id, 8} << '\t' << num{total > 0.0 ? definition.copies / total : 0.0} << '\n';
    }
}

/// Minimum spanning tree and network of all haplotypes.
void Project::print_global_network() {
    int const n = haplotypes_->size();
    RectMat matrix(n, n);
    std::vector<std::string> labels;
    for (int i = 0; i < n; ++i) {
        labels.push_back((*haplotypes_)[i].id.str());
        for (int j = 0; j < i; ++j) matrix(i, j) = matrix(j, i) = (*distances_)(i, j);
    }
    print_spanning_network(document(), matrix, title.str(), labels);
}

/// Matrix of the redundancy search, and the row of each haplotype in it. @return  false after code 135.
bool Project::find_redundancy_matrix() {
    bool associated = true;
    if (DataType == FREQUENCY) {
        associated = settings_->ComputeDistanceMatrixAMOVA ? haplotypes_->associate_with2(*distances_) != 0
                                                           : haplotypes_->associate_with1(*distances_) != 0;
    } else {
        // Counted as different alleles, haplotypes are at distance zero when they are identical.
        ScopedSwap<TDataType> const as_standard(DataType, STANDARD);
        ScopedSwap<TDataType> const settings_as_standard(settings_->DataType, STANDARD);
        ScopedSwap<int> const no_conventional(settings_->ComputeConventionalFST, 0);
        calc_dist_matrix(*haplotypes_, 0, 0.0);
        associated = haplotypes_->associate_with2(*distances_) != 0;
    }
    if (!associated) E.error(ErrorType::Error, "Project::eliminate_redond_haplodef()", 135);
    return associated;
}

/// Class of each haplotype: the number of the first one that it can't be told from.
std::vector<int> Project::redundancy_classes() const {
    int const n = haplotypes_->size();
    DistMat const& matrix = *distances_;
    auto row = [this](int i) {
        int const index = (*haplotypes_)[i].matrix_index;
        return index < 0 ? i : index;
    };
    std::vector<int> classes(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) classes[static_cast<std::size_t>(i)] = i;
    for (int i = 0; i < n; ++i)
        for (int j = i + 1; j < n; ++j)
            if (matrix(row(i), row(j)) == 0.0)
                classes[static_cast<std::size_t>(j)] = classes[static_cast<std::size_t>(i)];
    // Distances with missing data aren't transitive: members of one class may differ.
    for (int i = 0; i < n; ++i)
        for (int j = i + 1; j < n; ++j) {
            int& first = classes[static_cast<std::size_t>(i)];
            int& second = classes[static_cast<std::size_t>(j)];
            if (first == second && matrix(row(i), row(j)) != 0.0) {
                first = i;
                second = j;
            }
        }
    return classes;
}

void Project::print_shared_haplotypes() {
    std::ostream& out = document();
    print_js_aux_entry(*settings_, 1, "_shared_haplotypes", "Shared haplotypes");
    out << '\n' << rule{66, '='} << "\n== Checking for haplotypes shared among populations:";
    for (int i = 0; i < samples_->NbPopulations(); ++i) {
        Population& sample = *(*samples_)[i];
        out << '\n';
        sample.print_population_anchor(2, *settings_, samples_->pooled ? "gr_shared" : "pop_shared");
        out << "== Population : " << user_text{sample.pop_name()} << "\n===============\n";
        for (int j = 0; j < samples_->NbPopulations(); ++j)
            if (j != i) sample.print_out_redondant(out, *(*samples_)[j], *distances_);
        out << rule{66} << '\n';
    }
}

void Project::eliminate_redond_haplodef() {
    std::optional<DistMat> given;
    if (!settings_->ComputeDistanceMatrixAMOVA) given = *distances_;
    int const given_mark = distances_->conventional_fst();
    bool const comparable = find_redundancy_matrix() &&
                            (distances_->conventional_fst() != 0 || distances_->dimension() == haplotypes_->size());
    if (comparable) {
        *_AOS_ << "\t\t\tChecking haplotype redundancy from a computed distance matrix:\n";
        std::vector<int> const classes = redundancy_classes();
        print_shared_haplotypes();
        samples_->print_out_haplo_cl(&document(), *distances_, haplotypes_.get(), classes.data());
        if (settings_->InferHaplotypeDefinitionFromDistanceMatrix && DataType != FREQUENCY)
            samples_->IdentifyIdenticalHaplotypes(&document(), *distances_, haplotypes_.get(), classes.data());
    }
    if (given) {
        *distances_ = *given;
        distances_->set_conventional_fst(given_mark);
    }
}

}  // namespace tov
