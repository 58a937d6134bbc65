// Structure: the grouping of samples that a project tests.
#pragma once

#include <iosfwd>
#include <vector>

#include "base/cstring.h"
#include "input/profile.h"

namespace tov {

class Population;
class Samples;

/// One group of a structure. The three vectors run in parallel, one entry a sample, in the order of definition.
struct StructureGroup {
    my_string name;
    std::vector<my_string> sample_names;
    std::vector<int> sample_indexes;       ///< index of the sample in Samples
    std::vector<Population*> populations;  ///< borrowed from Samples

    [[nodiscard]] int nb_samples() const noexcept { return static_cast<int>(populations.size()); }
};

/// Groups of samples. A sample is in one group at most; samples may be left out. Populations are borrowed.
class Structure : public ProfileSettings {
public:
    /// Empties the structure: no name, no group. The profile stays.
    void reset();

    [[nodiscard]] int nb_groups() const noexcept { return static_cast<int>(groups.size()); }
    /// Samples over all groups.
    [[nodiscard]] int nb_samples() const noexcept;
    [[nodiscard]] StructureGroup& group(int g) { return groups[static_cast<std::size_t>(g)]; }
    [[nodiscard]] StructureGroup const& group(int g) const { return groups[static_cast<std::size_t>(g)]; }
    [[nodiscard]] Population* population(int g, int i) const {
        return groups[static_cast<std::size_t>(g)].populations[static_cast<std::size_t>(i)];
    }
    /// Populations of all groups, group after group.
    [[nodiscard]] std::vector<Population*> all_populations() const;

    /// Appends an empty group and returns it.
    StructureGroup& add_group(my_string const& group_name = my_string());
    /// Appends a sample to group g; its name is copied.
    void add_sample(int g, Population* population, int sample_index);
    /// Moves the samples of all other groups, in order, behind those of the first group, which remains alone.
    void merge_groups();
    /// Makes in `out` the same groups with the populations of `oneLocusSamples`, which stand there in the order of
    /// this structure's populations.
    void build_one_loci_str(Samples* oneLocusSamples, Structure* out) const;

    /// Which keys of a section were met.
    struct SeenKeys {
        bool nb_groups = false;
        bool group = false;
        bool passed_over = false;  ///< defined in an external file: counts as not there
    };
    /// Reads a section [[Structure]] line by line, up to "[MANTEL]" or the end.
    ///
    /// @param profile  profile of the project, copied.
    /// @param samples  samples of the project; borrowed by the structure from here on.
    /// @param line     line number, raised with each line read.
    /// @param text     upper-cased line that ended the section ("[[MANTEL]]"), empty at the end of the file.
    /// @param seen     which keys were met.
    /// @return 1, or 0 after a report.
    int NewReadStructure(std::istream& ifs, ProfileSettings const& profile, Samples& samples, int& line,
                         my_string& text, SeenKeys& seen);

    /// Writes the groups of a project into `file` for the front end: the number of groups, then each group's samples.
    int explore(std::istream& ifs, char const* file);
    /// Writes the content of one key into the front end's file. @return 1, or 0 at the end of the data.
    int explore_content(std::istream& ifs, my_string const& ident, std::ostream& out);

    /// Prints the groups with the names of their samples, for a document.
    void print_groups(std::ostream& os) const;
    /// Prints the structure under the title of the results section.
    void print_structure(std::ostream& os) const;

    my_string name;
    int NbGroupsDeclared = 0;  ///< value of the key NbGroups
    std::vector<StructureGroup> groups;
};

/// Writes the section [[Structure]] in project file form.
std::ostream& operator<<(std::ostream& os, Structure const& structure);

}  // namespace tov
