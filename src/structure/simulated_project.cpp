// Projects made of simulated loci.
#include "structure/simulated_project.h"

#include <memory>
#include <ostream>

#include "model/hapldb.h"
#include "model/popbase.h"
#include "model/sample.h"
#include "model/struct.h"

namespace tov {

namespace {

/// A sample with one haplotype a gene copy, named by its number in the project.
void fill_haplotypes(Population& sample, std::vector<std::string> const& copies, Haplo_DB& haplotypes) {
    for (std::string const& content : copies) {
        auto* const definition = new HaploDef(my_string(std::to_string(haplotypes.size() + 1)), my_string(content));
        haplotypes.Add(definition);  // owns it from here on
        sample.haplotypes.Add(new PHaploDef(definition, 1));
    }
}

/// A sample of individuals, each of two neighbouring gene copies.
void fill_individuals(Population& sample, std::vector<std::string> const& copies, int& number) {
    for (std::size_t k = 0; k + 1 < copies.size(); k += 2) {
        auto individual = std::make_unique<TPhenotype>();
        individual->set_name(my_string(std::to_string(++number)));
        individual->set_obs_freq(1.0);
        individual->allele_string(0) = my_string(copies[k]);
        individual->allele_string(1) = my_string(copies[k + 1]);
        sample.phenotypes.Add(individual.release());
    }
}

}  // namespace

SimulatedProject::SimulatedProject(ProjectView const& view, Structure const& tested, int factor)
    : view_(view), tested_(tested), factor_(factor) {
    contents_.resize(static_cast<std::size_t>(view.samples->NbPopulations()));
}

std::string SimulatedProject::allele_text(int state, Mut_Type type) const {
    if (has_state_characters(type)) return std::string(1, state_character(type, state));
    return std::to_string((static_cast<long long>(state) + 1) * factor_);
}

void SimulatedProject::addLocus(NullLoci const& locus) {
    char const separator = view_.samples->LocusSeparator;
    for (std::size_t s = 0; s < contents_.size(); ++s) {
        std::span<int const> const states = locus.states_of_sample(static_cast<int>(s));
        contents_[s].resize(states.size());
        for (std::size_t k = 0; k < states.size(); ++k) {
            std::string& text = contents_[s][k];
            if (!text.empty() && separator != 0) text += separator;
            text += allele_text(states[k], locus.type());
        }
    }
}

void SimulatedProject::clear() {
    for (std::vector<std::string>& copies : contents_) copies.clear();
}

int SimulatedProject::write(std::ostream& out) const {
    Haplo_DB haplotypes;
    Samples samples;
    samples.set_profile(*view_.samples);
    int individuals = 0;
    for (std::size_t s = 0; s < contents_.size(); ++s) {
        if (contents_[s].empty()) continue;
        Population const& original = *(*view_.samples)[static_cast<int>(s)];
        std::unique_ptr<Population> sample = new_population(samples.DataType);
        sample->profile = samples;
        sample->set_name(original.pop_name());
        sample->set_sample_size(static_cast<double>(contents_[s].size()));
        if (samples.GenotypicData != 0) {
            fill_individuals(*sample, contents_[s], individuals);
        } else {
            fill_haplotypes(*sample, contents_[s], haplotypes);
        }
        samples.Add(sample.release());
    }
    ProfileSettings profile = *view_.samples;
    profile.NbSamples = samples.NbPopulations();
    profile.Frequency = 0;
    out << profile << samples << tested_;
    return out.good() ? 1 : 0;
}

}  // namespace tov
