// Individuals: diploid phenotypes, the genotypes compatible with them, and the list of a sample's phenotypes.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <vector>

#include "base/arrays.h"
#include "base/cstring.h"
#include "input/profile.h"
#include "model/hpopdb.h"

namespace tov {

/// Genotypes that one phenotype may have in an estimation: what fits into memory with haplotypes of their own.
inline constexpr std::int64_t most_genotypes = std::int64_t{1} << 23;

/// Memory that a list of phenotypes takes in an estimation, counted in genotypes (of about 80 bytes): a haplotype of
/// the pool takes as much as three of them.
[[nodiscard]] constexpr std::int64_t room_of(std::int64_t genotypes, std::int64_t haplotypes) noexcept {
    return genotypes + 3 * haplotypes;
}
/// All that a list may take, about 5 GB.
inline constexpr std::int64_t most_room = room_of(most_genotypes, 2 * most_genotypes);
/// Whether 2^bits further genotypes fit, each with two haplotypes of its own.
[[nodiscard]] constexpr bool genotypes_fit(int bits, std::int64_t taken) noexcept {
    constexpr int most_bits = 31;
    return bits < most_bits && room_of(std::int64_t{1} << bits, std::int64_t{2} << bits) <= most_room - taken;
}

/// Individuals that a list with an entry for each of them may hold.
inline constexpr int most_individuals = 1 << 24;
/// Whether they are no more than that; the memory report of `origin` if they are.
[[nodiscard]] bool has_room(int individuals, char const* origin);

/// One resolved pair of haplotypes of a phenotype. The haplotypes are borrowed from a pool.
class TGenotype {
public:
    TGenotype() = default;
    TGenotype(TPopHaplotype* first, TPopHaplotype* second) : first_(first), second_(second) {}

    void put_hapl(TPopHaplotype* first, TPopHaplotype* second) noexcept {
        first_ = first;
        second_ = second;
    }
    [[nodiscard]] TPopHaplotype* first() const noexcept { return first_; }
    [[nodiscard]] TPopHaplotype* second() const noexcept { return second_; }
    [[nodiscard]] double prob() const noexcept { return prob_; }
    void set_prob(double prob) noexcept { prob_ = prob; }
    /// Probability relative to the phenotype's.
    [[nodiscard]] double rel_prob() const noexcept { return rel_prob_; }
    void set_rel_prob(double prob) noexcept { rel_prob_ = prob; }

    /// The same two haplotypes, in either order.
    bool operator==(TGenotype const& other) const noexcept {
        return (first_ == other.first_ && second_ == other.second_) ||
               (first_ == other.second_ && second_ == other.first_);
    }
    /// Reversed: the more probable one comes first.
    bool operator<(TGenotype const& other) const noexcept { return prob_ > other.prob_; }

    /// Relative probability and both haplotypes, on two lines.
    void print_genot(std::ostream& os, double const& total) const;
    /// Row i + 1 of the table of genotype frequencies.
    void printGenotFreqs(std::ostream& os, int const& i, double const& total) const;

private:
    TPopHaplotype* first_ = nullptr;   // borrowed
    TPopHaplotype* second_ = nullptr;  // borrowed
    double prob_ = 0.0;
    double rel_prob_ = 0.0;
};

/// One observed multi-locus diploid type: two pseudo haplotypes of unknown phase, and its number of individuals.
class TPhenotype {
public:
    TPhenotype();
    /// Copies both haplotypes; the name is the decimal id, the count 1.
    TPhenotype(TPopHaplotype const* a, TPopHaplotype const* b, int const& id);
    /// Copies have no genotypes.
    TPhenotype(TPhenotype const& other);
    TPhenotype& operator=(TPhenotype const& other);
    ~TPhenotype();

    /// Reads the definition of one chromosome; defined with the readers. @return 1, or 0 after its report.
    int read_data(std::istream& is, TDataType type, char separator);

    [[nodiscard]] my_string const& name() const noexcept { return name_; }
    void set_name(my_string const& name) { name_ = name; }
    /// Number of individuals.
    [[nodiscard]] double obs_count() const noexcept { return obs_count_; }
    void set_obs_freq(double count) noexcept { obs_count_ = count; }
    [[nodiscard]] double rel_freq() const noexcept { return rel_freq_; }
    void set_rel_freq(double freq) noexcept { rel_freq_ = freq; }
    [[nodiscard]] double phen_proba() const noexcept { return phen_proba_; }
    void set_phen_proba(double proba) noexcept { phen_proba_ = proba; }
    [[nodiscard]] int is_redundant() const noexcept { return redundant_; }
    void set_redundant(int redundant) noexcept { redundant_ = redundant; }
    /// Number of heterozygous loci as last counted.
    [[nodiscard]] int no_polym_loci() const noexcept { return hetero_loci_; }
    /// No heterozygous locus, in a sample without recessive alleles (set when the genotypes are built).
    [[nodiscard]] int is_homozygote() const noexcept { return homozygote_; }
    void set_homozygote(int homozygote) noexcept { homozygote_ = homozygote; }

    [[nodiscard]] TPopHaplotype* ps_hapl0() const noexcept { return pseudo_[0].get(); }
    [[nodiscard]] TPopHaplotype* ps_hapl1() const noexcept { return pseudo_[1].get(); }
    /// Pseudo haplotype 0 or 1; may be null.
    [[nodiscard]] TPopHaplotype* ps_hapl(int which) const noexcept { return pseudo_[which != 0].get(); }
    /// Allele of a chromosome at a position, null outside it.
    [[nodiscard]] TAllele* pseudo_hapl0(int position) const { return pseudo_[0] ? (*pseudo_[0])[position] : nullptr; }
    [[nodiscard]] TAllele* pseudo_hapl1(int position) const { return pseudo_[1] ? (*pseudo_[1])[position] : nullptr; }
    void set_pseudo_hapl0(TAllele* allele, int position);
    void set_pseudo_hapl1(TAllele* allele, int position);
    /// Replaces chromosome 0 or 1 by a copy.
    void set_pseudo_hapl(TPopHaplotype const& haplotype, int const& which);
    [[nodiscard]] int pheno_length() const noexcept { return pseudo_[0] ? pseudo_[0]->nb_loci() : 0; }
    /// Text of chromosome 0 or 1 as read.
    [[nodiscard]] my_string& allele_string(int which = 0) noexcept { return allele_string_[which != 0]; }
    [[nodiscard]] my_string const& allele_string(int which = 0) const noexcept { return allele_string_[which != 0]; }

    /// Builds the alleles of chromosome 0 or 1 anew from its text (if there is any), adding `count` to each in `db`.
    ///
    /// build_pseudo_hapl0: one character is one allele. build_pseudo_hapl1: pieces between separators.
    void build_pseudo_hapl0(TAlleleDB& db, int which, double count);
    void build_pseudo_hapl1(TAlleleDB& db, char separator, int which, double count);

    /// Counts the loci whose two alleles differ, and keeps the number.
    int count_hetero_loci();
    /// Adds one to a little-endian counter of n bits; bits holds n + 6 cells.
    static void binary_inc(int* bits, int const& n);
    /// Number of genotypes when it is known, else 2^(h - 1) (1 for h < 2).
    std::int64_t genot_exp_count();
    /// Bits of the counter that build_genotypes() runs through: it tries 2^bits candidates. Reads the number of
    /// heterozygous loci from its field.
    [[nodiscard]] int candidate_bits(TAlleleDB const* db, int recessive) const;

    /// Enumerates the pairs of haplotypes compatible with the phenotype, in the order of a binary counter.
    ///
    /// @param target     pool that receives both haplotypes of each pair with weight 1.0, the second first.
    /// @param recessive  non-zero: homozygotes of another allele than the blank may hide a blank.
    /// Errors: more than 32 heterozygous loci (or, with hidden blanks, loci) report code 114; no genotypes then.
    void build_genotypes(TPopHaploDB& target, TAlleleDB* db, int const& recessive, bool useTempPosition);
    /// The same enumeration, restricted to pairs whose parts at the flagged loci are in `previous` with a frequency
    /// above the threshold. Reads the number of heterozygous loci from its field. May leave no genotype at all.
    /// Errors: more than most_genotypes report code 114; no genotypes then.
    void build_compatible_genotypes(TPopHaploDB& previous, int* flags, TPopHaploDB& target, TAlleleDB* db,
                                    int const& recessive, double const& threshold);

    [[nodiscard]] MY_TIArrayAsVector<TGenotype>& genotypes() noexcept { return genotypes_; }
    [[nodiscard]] MY_TIArrayAsVector<TGenotype> const& genotypes() const noexcept { return genotypes_; }
    [[nodiscard]] int genot_real_count() const { return static_cast<int>(genotypes_.GetItemsInContainer()); }
    [[nodiscard]] TGenotype& genotype(int index) const;
    /// Rewinds the walk of nextGen().
    void getIterator() noexcept { next_genotype_ = 0; }
    /// Next genotype of the walk, or null at its end.
    TGenotype* nextGen();
    void kill_gen_list();

    /// E-step of one phenotype from the frequencies of its haplotypes.
    void update_gen_prob();
    /// Adds obs_count times each relative probability to both haplotypes.
    void update_hapl_freq_in_genotypes();
    /// Probability from the allele frequencies TAllele::freq(). Reports 115 for an allele that is not selected.
    [[nodiscard]] double link_equil_pheno_prob() const;

    void copy_restricted_pheno(int const* loci, TPhenotype const& source);
    void build_sub_phenotype(int const* flags, TPhenotype const& source);
    /// Draws the two chromosomes of a random individual, two loci each. Draws: a1, a2, b1, b2 (one ran3 each).
    void build_resam_pheno(int const& i, int const& n, TPopHaploDB const& locus1, TPopHaploDB const& locus2,
                           std::vector<double> const& cumulated1, std::vector<double> const& cumulated2,
                           TAllele const* missing1, TAllele const* missing2, long& seed);
    /// Releases the chromosomes, their texts and the genotypes.
    void delete_pheno();

    /// Merging test: at each locus the unordered pair of alleles is the same.
    bool operator==(TPhenotype const& other) const;
    /// Hash that agrees with operator== for phenotypes with chromosomes.
    [[nodiscard]] std::size_t hash() const;

    void print_detailed_genotypes(std::ostream& os) const;
    /// @param F  inbreeding coefficient of the list; sorts the genotypes, the most probable first.
    void printGenotypeFreqs(std::ostream& os, int const& i, double const& N, double F = 0.0);

private:
    struct Enumeration;

    void keep_genotype(Enumeration& e);
    void copy_frame(TPhenotype const& source);
    TPopHaplotype& start_chromosome(int which, char separator, int loci);

    my_string name_;
    double obs_count_ = 0.0;
    double rel_freq_ = 0.0;
    double phen_proba_ = 0.0;
    std::int64_t genotype_count_ = 0;  // 0: not known yet
    std::unique_ptr<TPopHaplotype> pseudo_[2];
    my_string allele_string_[2];
    MY_TIArrayAsVector<TGenotype> genotypes_;
    int next_genotype_ = 0;
    int redundant_ = 0;
    int hetero_loci_ = 0;
    int homozygote_ = 0;
};

/// Name and count, then the two chromosomes on a line each.
std::ostream& operator<<(std::ostream& os, TPhenotype const& phenotype);

/// The phenotypes of one sample; owns them.
class TPhenDB : public MY_TIArrayAsVector<TPhenotype> {
public:
    TPhenDB();
    /// n random individuals drawn from the frequencies of `pool`. Draws: two ran3 an individual.
    TPhenDB(int const& n, TPopHaploDB const& pool);
    [[nodiscard]] int size() const { return static_cast<int>(GetItemsInContainer()); }
    /// Phenotype at an index in [0, size()).
    [[nodiscard]] TPhenotype& phenotype(int index) const;
    [[nodiscard]] int num_loci() const;
    void destroy();

    void build_all_genotypes(TPopHaploDB& pool, TAlleleDB* db, int const& recessive);
    void update_genotypes();
    void update_hapl_freq(TPopHaploDB& pool);
    /// Kept in ln_likelihood too; -3.4028234663852886e+38 as soon as one phenotype has no probability.
    double calc_ln_likelihood();
    [[nodiscard]] double link_equil_ln_likelihood() const;
    [[nodiscard]] double calc_ln_multinom() const;
    void convert_freq_to_real();
    /// Merges equal phenotypes into the one that stands first.
    void check_pheno_redundancy();
    /// Sum of the truncated counts.
    [[nodiscard]] int nb_individuals() const;

    void create_temp_PhenDB(int const* loci, TPhenDB const& source);
    void build_sub_PhenDB(int const* flags, TPhenDB const& source);
    /// One entry an individual; the copies stand behind all originals. Reports 120.
    void explode_base();
    /// Shuffles the alleles at position 0 among all chromosomes. Draws: one ran3 an allele. Reports 118, 107, 119.
    void permute_alleles(int const* loci, long& seed);

    /// Likelihood-ratio statistic of Hardy-Weinberg proportions of one-locus phenotypes.
    ///
    /// @param missing  label of missing data; a phenotype with it does not count.
    /// @param df       receives the degrees of freedom.
    /// @return         the statistic; -1000.0 after code 118 when a haplotype has not exactly one locus.
    double hw_chi_stat(TAlleleDB* db, int locus, char missing, int& df) const;
    /// (k1 - 1)(k2 - 1) of two-locus phenotypes; 0 when one has fewer than two loci.
    [[nodiscard]] int get_num_of_deg_freed() const;

    /// n random two-locus phenotypes under independence. Draws: four ran3 an individual.
    void resample(int const& n, TPopHaploDB& locus1, TPopHaploDB& locus2, long& seed, TAlleleDB* db);
    /// Only destroys the list.
    void resample(int const& n, TPopHaploDB& pool, long& seed, TAlleleDB* db);

    /// Share of individuals whose most likely genotype is the true one; reports each phenotype into a good stream.
    double percent_correct_gametic_phase(std::ostream& os);
    /// Identity coefficient between the true haplotype frequencies and the estimated ones.
    double compute_IF_coeff(TPopHaploDB* estimated);

    void print_all_genotypes(std::ostream& os) const;
    void printGenotypeFrequencies(std::ostream& os, double const& N);

    /// Gives up the phenotypes for those of `list`.
    void replace_by(std::vector<std::unique_ptr<TPhenotype>> list);

    double ln_likelihood = 0.0;
    double F = 0.0;               ///< inbreeding estimate left by the EM
    double IF_coefficient = 0.0;  ///< left by compute_IF_coeff
    int multi_heterozygotes = 0;  ///< individuals heterozygous at two or more loci
    int correct_phases = 0;       ///< those of them with a correct phase
};

}  // namespace tov
