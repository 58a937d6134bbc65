// Project: the parts that structure analyses see, the test that a design can be analysed, and the pooling of groups.
#include <string>
#include <vector>

#include "input/settings.h"
#include "model/hapldb.h"
#include "model/project_view.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "run/project.h"

namespace tov {

ProjectView view_of(Project& project) {
    return {project.p_set(),  &project.p_sam(),   &project.p_str(),    &project.p_hdb(),
            &project.p_dmt(), &project.p_alldb(), &project.p_mantel(), nullptr};
}

bool Project::IsAmovaStructure() const {
    int const nb_groups = structure_->nb_groups();
    int const nb_samples = structure_->nb_samples();
    bool possible = true;
    auto refuse = [&possible](int code) {
        E.error(ErrorType::Warning, "Project::IsAmovaStructure()", code);
        possible = false;
    };
    if (nb_samples == 0) refuse(123);
    if (nb_groups == 0) refuse(124);
    // As many groups as samples leave no degree of freedom within groups.
    if (nb_groups == nb_samples && nb_samples > 1) refuse(125);
    return possible;
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
