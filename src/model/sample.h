// Samples: the population samples of a project, and the steps that walk over all of them.
#pragma once

#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/arrays.h"
#include "base/cstring.h"
#include "input/profile.h"
#include "model/popbase.h"

namespace tov {

class DistMat;
class Structure;
class settings;

/// All samples of a project; owns them. The profile is a copy of the project's.
class Samples : public ProfileSettings {
public:
    Samples();
    Samples(Samples const&) = delete;
    Samples& operator=(Samples const&) = delete;
    ~Samples() override;

    [[nodiscard]] int NbPopulations() const { return static_cast<int>(populations.GetItemsInContainer()); }
    [[nodiscard]] bool IsEmpty() const { return NbPopulations() == 0; }
    /// Sample at an index in [0, NbPopulations()).
    [[nodiscard]] Population* operator[](int i) const;
    /// Appends a sample, which becomes owned. @return the new count.
    int Add(Population* population);
    /// Takes the profile of the project over; samples already there keep theirs.
    void set_profile(ProfileSettings const& profile);

    // --- Reading; defined with the readers ---
    int NewReadSamples(std::istream& is, ProfileSettings& profile, Haplo_DB& db, int& line, my_string& text,
                       bool& size_seen, bool& data_seen, bool& name_seen);
    /// Writes the number of samples and their names into `samples.txt`. @return 1 or 0.
    int explore(std::istream& is, ProfileSettings& profile);
    /// Path of an external file: a name without a directory stands in that of the project's results. Without a
    /// project the name stays as it is, and the log tells so.
    [[nodiscard]] my_string ext_name(my_string const& name) const;
    /// The same into an array of characters, ended by a zero; a path that does not fit leaves an empty text.
    void build_ext_name(std::span<char> dest, char const* name) const;

    // --- Checks and conversions (sample.cpp) ---
    /// Same number of loci everywhere; entries that are wholly missing leave their sample. Reports, @return 1 or 0.
    int verify_data();
    /// DNA to upper case, in haplotype definitions and chromosome texts.
    void convert_dna_upper(Haplo_DB& db);
    /// Takes the separator out of all contents and chromosome texts.
    void rm_separators(Haplo_DB& db);
    void build_all_vectors(char const& separator);
    void phen_to_gam(Haplo_DB& db, ProfileSettings* profile, settings* s);
    void h_pop_db_to_gam(Haplo_DB& db);
    void init_all_pointers(TAlleleDB* alleles);
    /// Destroys all samples.
    void clean();
    /// Sets the copies of every definition of `db` to the sum of its counts over the samples.
    void sum_copies(Haplo_DB& db) const;

    // --- The run of all samples (sample.cpp; the order of events is told there) ---
    void compute_stuff(settings& s);
    /// Adds the work of all samples and of the project's own tasks to the settings.
    void evaluate_work(settings& s) const;

    // --- Haplotypes at distance zero (sample_classes.cpp) ---
    /// One line a class of equivalent haplotypes, one column a sample.
    void print_out_haplo_cl(std::ostream* os, DistMat const& matrix, Haplo_DB* db, int const* classes) const;
    /// Merges, within each sample, haplotypes of the same class at distance exactly 0.
    void IdentifyIdenticalHaplotypes(std::ostream* os, DistMat const& matrix, Haplo_DB* db, int const* classes);

    // --- Geography (sample.cpp) ---
    void normalize_coord();
    /// Pairwise Euclidean distances between the samples' coordinates, row-major NbPopulations() squared.
    void calc_geo_dist();

    // --- Summaries (output) ---
    /// The three below, as far as tasks and data ask for them.
    void summarise(settings& s);
    void WriteSummaryStatistics(settings& s);
    void computeNumPrivateSubstSitesPerPop(settings& s);
    void computeAndOutputAlleFreqPerPop(settings& s);
    void print_computation_anchor(int level, settings& s, my_string const& entry, my_string const& anchor);

    MY_TIArrayAsVector<Population> populations;  ///< owned
    int pooled = 0;                              ///< the samples are pooled groups
    std::vector<double> geo_distances;
};

/// The section [[Samples]] in project file form.
std::ostream& operator<<(std::ostream& os, Samples const& samples);

}  // namespace tov
