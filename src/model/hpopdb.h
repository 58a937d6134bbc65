// Working pools of haplotypes with frequencies, and the accumulator of resampled frequencies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <vector>

#include "base/arrays.h"
#include "base/cstring.h"
#include "model/allele_row.h"

namespace tov {

/// A haplotype of a pool: alleles and the numbers that the estimation attaches to them. Identity is the alleles.
class TPopHaplotype {
public:
    TPopHaplotype() = default;
    explicit TPopHaplotype(my_string const& name) : name_(name) {}
    TPopHaplotype(TPopHaplotype const&) = default;
    TPopHaplotype(TPopHaplotype&&) noexcept = default;
    TPopHaplotype& operator=(TPopHaplotype const&) = default;
    TPopHaplotype& operator=(TPopHaplotype&&) noexcept = default;

    [[nodiscard]] my_string const& name() const noexcept { return name_; }
    void set_name(my_string const& name) { name_ = name; }
    [[nodiscard]] double freq() const noexcept { return freq_; }
    void set_freq(double freq) noexcept { freq_ = freq; }
    void inc_freq(double freq) noexcept { freq_ += freq; }
    [[nodiscard]] double old_freq() const noexcept { return old_freq_; }
    void set_old_freq(double freq) noexcept { old_freq_ = freq; }
    /// Standard deviation; during a bootstrap the running sum of squares.
    [[nodiscard]] double sd() const noexcept { return sd_; }
    void set_sd(double sd) noexcept { sd_ = sd; }
    void inc_sd_freq(double square) noexcept { sd_ += square; }
    [[nodiscard]] double sum_freq() const noexcept { return sum_freq_; }
    void set_sum_freq(double sum) noexcept { sum_freq_ = sum; }
    void inc_sum_freq(double freq) noexcept { sum_freq_ += freq; }
    [[nodiscard]] char separator() const noexcept { return separator_; }
    void set_separator(char separator) noexcept { separator_ = separator; }
    [[nodiscard]] double lk_deseq() const noexcept { return lk_deseq_; }
    void set_lk_deseq(double d) noexcept { lk_deseq_ = d; }
    [[nodiscard]] double st_deseq() const noexcept { return st_deseq_; }
    void set_st_deseq(double d) noexcept { st_deseq_ = d; }
    [[nodiscard]] int has_blank() const noexcept { return blank_; }
    void set_blank(int blank) noexcept { blank_ = blank; }
    [[nodiscard]] double ibd_freq() const noexcept { return ibd_freq_; }
    void set_ibd_freq(double freq) noexcept { ibd_freq_ = freq; }
    [[nodiscard]] int homo_count() const noexcept { return homo_count_; }
    void set_homo_freq(int count) noexcept { homo_count_ = count; }
    [[nodiscard]] bool was_compared() const noexcept { return compared_; }
    void set_compared(bool compared) noexcept { compared_ = compared; }
    [[nodiscard]] int ID() const noexcept { return id_; }
    void setId(int id) noexcept { id_ = id; }

    [[nodiscard]] AlleleRow const& alleles() const noexcept { return alleles_; }
    [[nodiscard]] AlleleRow& alleles() noexcept { return alleles_; }
    [[nodiscard]] int nb_loci() const noexcept { return alleles_.size(); }
    [[nodiscard]] TAllele* operator[](int position) const { return alleles_[position]; }

    TPopHaplotype& operator+=(double f) noexcept {
        freq_ += f;
        return *this;
    }
    TPopHaplotype& operator-=(double f) noexcept {
        freq_ -= f;
        return *this;
    }
    TPopHaplotype& operator/=(double f) noexcept {
        freq_ /= f;
        return *this;
    }
    TPopHaplotype& operator+=(TPopHaplotype const& other) noexcept {
        freq_ += other.freq_;
        return *this;
    }

    /// Same number of loci and the same allele pointer at each.
    bool operator==(TPopHaplotype const& other) const noexcept { return alleles_ == other.alleles_; }
    bool operator!=(TPopHaplotype const& other) const noexcept { return !(alleles_ == other.alleles_); }
    /// By allele names, at the first position where they differ, over the length of the right-hand side.
    bool operator<(TPopHaplotype const& other) const;

    /// The alleles of `source` at positions loci[1..loci[0]], its name, frequencies and separator; no disequilibria.
    void copy_restricted_hapl(int const* loci, TPopHaplotype const& source);
    /// The same for the alleles whose locus has a non-zero flag; notes each allele's position in the source.
    void build_sub_haplotype(int const* flags, TPopHaplotype const& source);
    /// A two-locus haplotype named by the decimal id, printed with blanks.
    void build_sampled_haplo(int id, TAllele* a, TAllele* b);

private:
    void copy_frame(TPopHaplotype const& source);

    my_string name_;
    double freq_ = 0.0;
    double old_freq_ = 0.0;
    double sd_ = 0.0;
    double sum_freq_ = 0.0;
    AlleleRow alleles_;
    double lk_deseq_ = 0.0;
    double st_deseq_ = 0.0;
    double ibd_freq_ = 0.0;
    int blank_ = 0;
    int homo_count_ = 0;
    int id_ = 0;
    char separator_ = 0;
    bool compared_ = false;
};

/// Alleles, each followed by the separator when there is one.
std::ostream& operator<<(std::ostream& os, TPopHaplotype const& haplotype);

/// A pool of distinct haplotypes; owns them. Pointers to members stay valid until they are destroyed.
///
/// insert() and find() look up by hash and give what a scan from the front would. Whoever changes the alleles of a
/// member from outside calls reindex() afterwards.
class TPopHaploDB : public MY_TIArrayAsVector<TPopHaplotype> {
public:
    TPopHaploDB();
    TPopHaploDB(TPopHaploDB const& other);
    TPopHaploDB& operator=(TPopHaploDB const& other);

    [[nodiscard]] TPopHaploDB& get_haplo_vect() noexcept { return *this; }
    [[nodiscard]] TPopHaploDB const& get_haplo_vect() const noexcept { return *this; }
    [[nodiscard]] int nb_haplotypes() const { return static_cast<int>(GetItemsInContainer()); }
    /// Haplotype at an index in [0, nb_haplotypes()).
    [[nodiscard]] TPopHaplotype& haplotype(int index) const;
    /// Polymorphism flag of a locus; 0 without flags or outside them.
    [[nodiscard]] int pol_flag(int const& locus) const;
    [[nodiscard]] bool has_pol_flags() const noexcept { return !pol_flags_.empty(); }
    [[nodiscard]] TPopHaplotype const* reference() const noexcept { return reference_.get(); }

    /// Adds `f` to the equal haplotype, or copies `h` in with frequency `f`. @return the stored haplotype.
    TPopHaplotype* insert(TPopHaplotype const& h, double const& f);
    /// The equal haplotype, or null.
    [[nodiscard]] TPopHaplotype* find(TPopHaplotype const& h) const;
    /// Appends a haplotype, which becomes owned, equal to another or not. @return the new count.
    int Add(TPopHaplotype* h);
    /// Removal, as in the array itself.
    void Detach(int const& i);
    void Destroy(int const& i);
    void Flush();
    /// Makes room for n haplotypes.
    void reserve(std::size_t n);
    /// Forgets the look-up table; it is built anew by the next look-up.
    void reindex() const noexcept;

    void flush_haplotypes();
    /// Destroys the haplotypes and releases flags and reference.
    void empty();
    void reset_freq();
    void reset_homo_count();
    /// Destroys each haplotype of a frequency below `limit`.
    void cleanDB(double const& limit);

    /// Random start of an EM run. Draws: one ran3 a haplotype without blank, in pool order.
    ///
    /// @return the smallest frequency after division by the sum.
    double assign_rand_init_freq(int const& range);
    /// Whether the summed change since the last call is below epsilon; notes the frequencies for the next call.
    bool convergence(double const& epsilon);
    /// Haplotype at which the cumulated frequency first exceeds u, or null.
    [[nodiscard]] TPopHaplotype* select_haplotype(double const& u) const;

    /// Reference alleles and polymorphism flags of all loci; nothing happens without a locus of two alleles in use.
    void build_reference_haplotype(TAlleleDB* db, char const& missing);
    /// Builds the reference and removes the monomorphic loci from all haplotypes.
    void compact(TAlleleDB* db, char const& missing);
    /// A reference of n[0] positions that all hold one default allele.
    void init_ref_hapl(int const* n);

    [[nodiscard]] double sum_homoz_inbreeding(double const& F) const;
    /// Adds the frequencies of equal haplotypes of `other` to the bootstrap sums of those above `threshold`.
    void sums_hapl_frequencies(TPopHaploDB& other, double threshold);
    /// Turns the sums of n replicates into standard deviations; n < 2 leaves them alone.
    void calc_sd(int const& n);
    int update_lk_equil();
    /// Merges equal haplotypes into the one that stands first.
    void check_redundancy();
    /// Replaces each absolute frequency k by k entries of frequency 1, the copies behind all originals.
    void explode_base();
    /// Shuffles alleles among haplotypes at positions 0 .. loci[0] - 1. Draws: one ran3 a haplotype and locus.
    void permute(int* loci);
    [[nodiscard]] double calc_hapl_lk_dis() const;
    void comp_link_equil_hapl_freq();

    /// The table of estimated frequencies; numbers the haplotypes in print order (negative ones are not listed).
    void print(std::ostream& os, int compact, double minFreq);

private:
    void shrink();
    void keep_only(std::vector<char> const& kept);
    [[nodiscard]] TPopHaplotype* find_hashed(AlleleRow const& alleles, std::size_t hash) const;
    void index_all() const;
    void index_entry(std::size_t hash, int position) const;
    void print_alleles(std::ostream& os, TPopHaplotype const& h, bool compact) const;

    std::vector<int> pol_flags_;
    std::unique_ptr<TPopHaplotype> reference_;
    std::unique_ptr<TAllele> reference_allele_;
    // Open addressing table of positions + 1, a power of two long; holds the first indexed_ haplotypes (-1: stale).
    mutable std::vector<std::uint32_t> table_;
    mutable std::vector<std::size_t> hashes_;
    mutable int indexed_ = 0;
};

/// Per haplotype its alleles, two blanks and its frequency.
std::ostream& operator<<(std::ostream& os, TPopHaploDB const& pool);

/// Sums and squared sums of a frequency over samples, with the mean and deviation made of them.
class AHaplFreq {
public:
    AHaplFreq() = default;
    explicit AHaplFreq(int n);
    void set_frequencies(double x) noexcept;
    /// Mean and deviation over n samples; afterwards frequency and sq_frequency hold them relative to k.
    void calc_mean_freq(int const& n, int const& k);

    AHaplFreq& operator+=(AHaplFreq const& other) noexcept;
    bool operator<(AHaplFreq const& other) const noexcept { return frequency < other.frequency; }
    bool operator==(AHaplFreq const& other) const noexcept { return frequency == other.frequency; }

    double frequency = 0.0;
    double sq_frequency = 0.0;
    double mean = 0.0;
    double sd = 0.0;
};

std::ostream& operator<<(std::ostream& os, AHaplFreq const& freq);

}  // namespace tov
