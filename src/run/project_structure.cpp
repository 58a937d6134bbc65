// Project: the parts that structure analyses see, the test that a design can be analysed, and the pooling of groups.
#include <string>
#include <vector>

#include "base/scoped_swap.h"
#include "input/settings.h"
#include "model/hapldb.h"
#include "model/project_view.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "run/project.h"
#include "structure/amova.h"
#include "structure/assignment.h"
#include "structure/gen_struct.h"
#include "structure/selection.h"

namespace tov {

ProjectView view_of(Project& project) {
    return {project.p_set(),  &project.p_sam(),   &project.p_str(),    &project.p_hdb(),
            &project.p_dmt(), &project.p_alldb(), &project.p_mantel(), &project.p_amova()};
}

bool Project::IsAmovaStructure() const { return is_amova_structure(*structure_); }

/// Individuals are taken as of unknown phase, whatever the project says.
void Project::assign_genotypes() {
    ScopedSwap<int> const settings_phase(settings_->GameticPhase, 0);
    ScopedSwap<int> const samples_phase(samples_->GameticPhase, 0);
    IndLikelihood(settings_.get(), samples_.get()).run();
}

void Project::GenStructCalculations() { gen_struct_calculations(view_of(*this), structure_actions()); }

StructureActions Project::structure_actions() {
    return {[this] { convert_phenotypes_and_build_vectors(); }, [this] { convertMicrosatToNumberOfRepeats(); },
            [this](int method, double gamma) { return calc_dist_matrix(method, gamma); },
            [this] { print_distance_matrix(); }};
}

void Project::detectSelectedLociFromFSTHetComparison(bool hierarchical) {
    detect_selected_loci(view_of(*this), structure_actions(), hierarchical);
}

void Project::poolSamplesInGroups(Samples const&, Structure const& inStructure, Samples& out, Structure& outStructure) {
    outStructure.reset();
    outStructure.name = "Pooled flat structure";
    outStructure.add_group("Pooled flat structure");
    for (int g = 0; g < inStructure.nb_groups(); ++g) {
        std::unique_ptr<Population> pooled = new_population(DataType);
        pooled->profile = p_pro();
        pooled->set_name(("Group" + std::to_string(g + 1)).c_str());
        pooled->set_index(g);
        pooled->alleles = alleles_.get();
        pooled->pooled = 1;
        for (int i = 0; i < inStructure.group(g).nb_samples(); ++i) *pooled += *inStructure.population(g, i);
        out.Add(pooled.release());
        outStructure.add_sample(0, out[g], g);
    }
    if (!GenotypicData) return;
    // The chromosomes are counted by their samples already.
    std::vector<int> copies;
    for (int i = 0; i < haplotypes_->size(); ++i) copies.push_back((*haplotypes_)[i].copies);
    out.phen_to_gam(*haplotypes_, this, settings_.get());
    for (int i = 0; i < haplotypes_->size(); ++i)
        (*haplotypes_)[i].copies = i < static_cast<int>(copies.size()) ? copies[static_cast<std::size_t>(i)] : 0;
    phenToGamDone = 1;
}

}  // namespace tov
