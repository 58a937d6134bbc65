// Structure: groups of samples.
#include "model/struct.h"

#include <ostream>

#include "model/popbase.h"
#include "model/sample.h"
#include "output/escape.h"

namespace tov {
namespace {

/// Prints the groups; names go through `text_of`.
template <class TextOf>
void write_groups(std::ostream& os, std::vector<StructureGroup> const& groups, TextOf text_of) {
    int number = 0;
    for (StructureGroup const& group : groups) {
        os << "\t#Group" << ++number << "\n\t\tGroup={\n\t\t";
        for (my_string const& sample : group.sample_names) os << '"' << text_of(sample) << "\"\n\t\t";
        os << "}\n";
    }
}

}  // namespace

void Structure::reset() {
    name = "";
    NbGroupsDeclared = 0;
    groups.clear();
}

int Structure::nb_samples() const noexcept {
    int number = 0;
    for (StructureGroup const& group : groups) number += group.nb_samples();
    return number;
}

std::vector<Population*> Structure::all_populations() const {
    std::vector<Population*> all;
    for (StructureGroup const& group : groups)
        all.insert(all.end(), group.populations.begin(), group.populations.end());
    return all;
}

StructureGroup& Structure::add_group(my_string const& group_name) {
    groups.emplace_back().name = group_name;
    return groups.back();
}

void Structure::add_sample(int g, Population* population, int sample_index) {
    StructureGroup& target = group(g);
    target.sample_names.push_back(population->pop_name());
    target.sample_indexes.push_back(sample_index);
    target.populations.push_back(population);
}

void Structure::merge_groups() {
    if (groups.size() < 2) return;
    StructureGroup& first = groups.front();
    for (std::size_t g = 1; g < groups.size(); ++g) {
        StructureGroup const& other = groups[g];
        first.sample_names.insert(first.sample_names.end(), other.sample_names.begin(), other.sample_names.end());
        first.sample_indexes.insert(first.sample_indexes.end(), other.sample_indexes.begin(),
                                    other.sample_indexes.end());
        first.populations.insert(first.populations.end(), other.populations.begin(), other.populations.end());
    }
    groups.resize(1);
}

void Structure::build_one_loci_str(Samples* oneLocusSamples, Structure* out) const {
    out->reset();
    static_cast<ProfileSettings&>(*out) = *this;
    out->name = name;
    out->NbGroupsDeclared = NbGroupsDeclared;
    int next = 0;
    for (StructureGroup const& group : groups) {
        out->add_group(group.name);
        for (int i = 0; i < group.nb_samples() && next < oneLocusSamples->NbPopulations(); ++i, ++next)
            out->add_sample(out->nb_groups() - 1, (*oneLocusSamples)[next], next);
    }
}

void Structure::print_groups(std::ostream& os) const {
    write_groups(os, groups, [](my_string const& sample) { return doc_text(sample); });
}

void Structure::print_structure(std::ostream& os) const {
    os << "\n\nGenetic structure to test :\n---------------------------\n"
       << "No. of Groups = " << nb_groups() << '\n';
    print_groups(os);
}

std::ostream& operator<<(std::ostream& os, Structure const& structure) {
    os << "\n\t[[Structure]]\n\n"
       << "\t\tStructureName = \"" << structure.name << "\"\n"
       << "\t\tNbGroups = " << structure.nb_groups() << '\n';
    write_groups(os, structure.groups, [](my_string const& sample) { return sample.str(); });
    return os;
}

}  // namespace tov
