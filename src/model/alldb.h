// Alleles, loci and the store that holds every allele of a project once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/arrays.h"
#include "base/cstring.h"

namespace tov {

class TAlleleDB;
class TLocus;

/// One allele of one locus. Identity within a project is the address; comparison operators look at names only.
class TAllele {
public:
    /// Lengths of the frequency vectors of every allele at this moment; only TAlleleDB::create_*_freq_vector set them.
    static int numPop;
    static int numGroup;

    /// Name "UNDEF", value 0.
    TAllele();
    explicit TAllele(my_string const& name, double freq = 0.0, int locus = 0);
    explicit TAllele(char name);
    /// Copies have the frequency vectors of the source, cut or extended by zeros to numPop and numGroup slots, and
    /// belong to no locus until they are added to one.
    TAllele(TAllele const& other);
    TAllele& operator=(TAllele const& other);

    [[nodiscard]] my_string const& name() const noexcept { return name_; }
    [[nodiscard]] double freq() const noexcept { return freq_; }
    void set_freq(double freq) noexcept { freq_ = freq; }
    void inc_freq(double freq) noexcept { freq_ += freq; }
    /// Index of the locus as it was asked for at insertion (may differ from the true one, see InsertAllPos).
    [[nodiscard]] int is_in_loci() const noexcept { return locus_; }
    [[nodiscard]] int temp_locus_position() const noexcept { return temp_position_; }
    void set_temp_locus_position(int position) noexcept { temp_position_ = position; }

    /// TAllele::numPop values, or null before create_pop_freq_vector and after a flush.
    [[nodiscard]] double* pop_freq() noexcept { return pop_freq_.empty() ? nullptr : pop_freq_.data(); }
    [[nodiscard]] double const* pop_freq() const noexcept { return pop_freq_.empty() ? nullptr : pop_freq_.data(); }
    /// TAllele::numGroup values, or null.
    [[nodiscard]] double* group_freq() noexcept { return group_freq_.empty() ? nullptr : group_freq_.data(); }
    [[nodiscard]] double const* group_freq() const noexcept {
        return group_freq_.empty() ? nullptr : group_freq_.data();
    }
    /// Releases an existing vector and allocates n zeros (n < 1 leaves null).
    void create_pop_freq(int n);
    void create_group_freq(int n);
    void release_pop_freq() noexcept { std::vector<double>().swap(pop_freq_); }
    void release_group_freq() noexcept { std::vector<double>().swap(group_freq_); }

    [[nodiscard]] int pop_freq_slots() const noexcept { return static_cast<int>(pop_freq_.size()); }

    /// Adds copies of a sample to the running count.
    void count(double copies) noexcept {
        freq_ += copies;
        observed_ = observed_ || copies > 0.0;
    }
    /// Inserted with a positive count at least once; freq() alone can't tell, analyses overwrite it sample by sample.
    [[nodiscard]] bool was_observed() const noexcept { return observed_; }
    /// The locus that owns this allele, or null for an allele outside any database.
    [[nodiscard]] TLocus const* home() const noexcept { return home_; }
    /// Index of this allele within home(); meaningless without one.
    [[nodiscard]] int rank() const noexcept { return rank_; }

    bool operator==(TAllele const& other) const { return name_ == other.name_; }
    bool operator!=(TAllele const& other) const { return !(name_ == other.name_); }
    bool operator<(TAllele const& other) const { return name_ < other.name_; }

    int selected = 1;       ///< 0: may not enter the phenotype probability under linkage equilibrium
    double exp_freq = 0.0;  ///< current expected frequency in the EM under linkage equilibrium
    double ibd_sum = 0.0;   ///< weight of homozygotes identical by descent in the same EM, in gene copies

private:
    friend class TLocus;

    my_string name_;
    double freq_ = 0.0;
    int locus_ = 0;
    int temp_position_ = 0;
    int rank_ = -1;
    bool observed_ = false;
    TLocus const* home_ = nullptr;  // borrowed
    std::vector<double> pop_freq_;
    std::vector<double> group_freq_;
};

std::ostream& operator<<(std::ostream& os, TAllele const& allele);

/// The statistics of one locus that the locus-by-locus AMOVA leaves behind.
struct LocusStatistics {
    double mean_heterozygosity = 0.0;  ///< mean over samples
    double mean_gene_diversity = 0.0;  ///< mean over groups
    double Va = 0.0;
    double Vb = 0.0;
    double Vc = 0.0;
    double Vd = 0.0;
    double total_variance = 0.0;
    double FIS = 0.0;
    double FST = 0.0;
    double FSC = 0.0;
    double FCT = 0.0;
    double FIT = 0.0;
};

/// One locus: owns its alleles, in order of first insertion.
class TLocus : public MY_TIArrayAsVector<TAllele>, public LocusStatistics {
public:
    explicit TLocus(my_string const& name = my_string());
    /// Copies every allele; pointers into the source don't carry over.
    TLocus(TLocus const& other);
    TLocus& operator=(TLocus const& other);

    [[nodiscard]] my_string const& name() const noexcept { return name_; }
    void set_name(my_string const& name) { name_ = name; }
    [[nodiscard]] int nb_alleles() const { return static_cast<int>(GetItemsInContainer()); }
    /// The allele at an index, or null outside [0, nb_alleles()).
    [[nodiscard]] TAllele* allele(int index) const;

    /// Appends an allele, which becomes owned by the locus. @return the new count.
    int Add(TAllele* allele);
    /// Destroys all alleles.
    void Flush();

    /// First allele of that name, or null.
    [[nodiscard]] TAllele* find_allele_by_name(my_string const& name) const;
    [[nodiscard]] TAllele* find_allele_by_name(std::string_view name) const;
    /// Index by address, or -1.
    [[nodiscard]] int get_allele_index(TAllele const* allele) const;
    /// Whether the locus-by-locus AMOVA runs here: at most 2 entries no, 3 entries unless one is the missing label,
    /// 4 or more yes. Entries count with the blank allele that stands first at each locus of a project.
    [[nodiscard]] bool is_polymorph(char missing) const;

    /// Finds an allele by name and adds `freq` to it, or appends one. @return its index.
    int insert(std::string_view name, double freq, int locus_field);

    /// Index of the locus in its database, -1 outside one.
    [[nodiscard]] int position() const noexcept { return position_; }
    [[nodiscard]] TAlleleDB const* database() const noexcept { return database_; }

    bool operator==(TLocus const& other) const { return name_ == other.name_; }
    bool operator!=(TLocus const& other) const { return !(name_ == other.name_); }

    int print_width = 0;  ///< widest label + 1, set while the database is printed

private:
    friend class TAlleleDB;

    [[nodiscard]] int find_index(std::string_view name) const;
    [[nodiscard]] int find_long(std::string_view name) const;
    void index_names() const;

    my_string name_;
    TAlleleDB const* database_ = nullptr;  // borrowed: the owner
    int position_ = -1;
    // Look-up caches, rebuilt when the number of alleles differs from the indexed one.
    mutable int indexed_ = 0;
    mutable std::vector<std::uint64_t> keys_;               // short names packed into a word, 0 for long ones
    mutable std::unordered_map<std::string, int> by_name_;  // for long names and for loci of many alleles
};

/// All alleles of a project, one TLocus a locus. Everything else borrows pointers, valid until destroy().
class TAlleleDB : public MY_TIArrayAsVector<TLocus> {
public:
    TAlleleDB();
    TAlleleDB(TAlleleDB const& other);
    TAlleleDB& operator=(TAlleleDB const& other);

    /// Look-ups; null when the locus or the allele is absent.
    [[nodiscard]] TAllele* operator()(my_string const& locus, my_string const& allele) const;
    [[nodiscard]] TAllele* operator()(int const& locus, my_string const& allele) const;
    [[nodiscard]] TAllele* operator()(my_string const& locus, int const& allele) const;
    [[nodiscard]] TAllele* operator()(int const& locus, int const& allele) const;
    [[nodiscard]] int nb_loci() const { return static_cast<int>(GetItemsInContainer()); }
    /// The locus at an index, or null outside [0, nb_loci()).
    [[nodiscard]] TLocus* locus(int index) const;
    /// Index of the first locus of that name, or -1.
    [[nodiscard]] int find_locus(my_string const& name) const;

    /// Appends a locus, which becomes owned. @return the new count.
    int Add(TLocus* locus);

    /// Adds `freq` to the allele of that name at the locus, appending locus and allele when absent.
    ///
    /// A locus index at or past nb_loci() makes one locus named "Locus <index>" at the end, whatever the gap; the
    /// allele's locus field is the index asked for. @return the allele's index within its locus.
    int InsertAllPos(int const& locus, my_string const& allele, double freq);
    /// The last argument is ignored.
    int InsertAllPos(int const& locus, my_string const& allele, double& freq, int const& ignored);
    int InsertAllPos(my_string const& locus_name, my_string const& allele, double freq);
    /// Same as by index, without a my_string; hands the allele itself back.
    TAllele* insert_allele(int locus, std::string_view allele, double freq);

    void create_pop_freq_vector(int const& n);
    void create_group_freq_vector(int const& n);
    void flush_pop_freq_vector();
    void flush_group_freq_vector();
    /// Releases the population vectors, in spite of its name.
    void reset_all_pop_freqs();

    /// Random expected frequencies for the EM. Draws: one ran3 an allele, in order of loci and alleles.
    void assign_rand_exp_freq();
    void reset_exp_freq();
    /// M-step under linkage equilibrium with F effective gene copies; needs pop vectors of two slots.
    ///
    /// @return sum of absolute changes, or -1.0 (and nothing changed) for F <= 0.
    double update_all_freq_with_inbreeding(double const& F);

    /// Empties the database and sets the counter to 0.
    void destroy();
    /// Flushes all loci and makes room for n.
    void resize(int const& n);

    /// Name of the entry that stands first at each locus for an unseen allele; see Population::make_all_blanks.
    [[nodiscard]] my_string const& blank_name() const noexcept { return blank_name_; }
    void set_blank_name(my_string const& name) { blank_name_ = name; }
    /// Entry 0 of a locus that bears the blank's name and was seen in no sample: every listing passes it over.
    [[nodiscard]] bool is_unused_blank(int locus, int allele) const;

    int counter = 0;  ///< 1 once the blanks are made
    TAllele not_found;

private:
    my_string blank_name_;
    mutable int indexed_ = 0;
    mutable std::unordered_map<std::string, int> by_name_;
};

/// Table with one column a locus and one row an allele rank, relative frequencies in percent.
std::ostream& operator<<(std::ostream& os, TAlleleDB& database);

/// No allele, or the label of missing data: the allele's whole name is the character.
[[nodiscard]] inline bool is_missing(TAllele const* allele, char missing) {
    if (!allele) return true;
    std::string_view const name(allele->name());
    return name.size() == 1 && name[0] == missing;
}

/// Entry `a` of `locus` is the blank allele of its database and was seen in no sample.
[[nodiscard]] bool is_unused_blank(TLocus const& locus, int a);

}  // namespace tov
