// Bit planes of aligned sequences: pairs are compared 64 sites at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "diversity/formula/nucleotide_distance.h"

namespace tov {

/// How the bits of a word are counted: by an instruction of the processor, or by shifts and sums.
enum class WordCount { instruction, portable };
/// The faster way that this processor has.
[[nodiscard]] WordCount fastest_word_count() noexcept;

/// Aligned DNA sequences packed into bit planes over their usable sites.
///
/// Per sequence six planes of 64-bit words: two of base code (A 00, G 01, C 10, T 11), and one each that marks the
/// sites with one of the four bases, with '-', with the missing-data character, and with any other character. Sites of
/// the last plane are looked up one by one. Sites at which all sequences have the same base are only counted. Building
/// costs two passes over the characters; comparing allocates nothing.
class NucleotidePlanes {
public:
    /// @param sequences  k sequences; shorter ones end early, as in count_pair().
    /// @param usable     one flag a site, 0 leaves it out; sites beyond the span are left out.
    NucleotidePlanes(std::span<std::string_view const> sequences, std::span<int const> usable, char missing,
                     WordCount how = fastest_word_count());

    [[nodiscard]] std::size_t size() const noexcept { return traits_.size(); }
    /// Counts of the pair (i, j), equal to count_pair() on the two sequences.
    /// @param base_pairs  fill the counts of unordered base pairs too.
    [[nodiscard]] PairCounts compare(std::size_t i, std::size_t j, bool base_pairs) const noexcept;

private:
    struct Traits {
        int sites = 0;  ///< usable sites in the planes that the sequence reaches
        bool gaps = false;
        bool missing = false;
        bool others = false;
    };
    enum Plane : std::size_t { low, high, base, gap, absent, other, nb_planes };

    [[nodiscard]] std::uint64_t const* plane(std::size_t i, Plane p) const noexcept {
        return words_.data() + (i * nb_planes + p) * nb_words_;
    }
    [[nodiscard]] bool pure(std::size_t i) const noexcept {
        Traits const& t = traits_[i];
        return !t.gaps && !t.missing && !t.others;
    }
    void set(std::size_t i, std::size_t site, char c);
    template <class Counter>
    [[gnu::always_inline]] inline PairCounts compare_with(std::size_t i, std::size_t j, bool base_pairs) const noexcept;
    template <class Counter>
    [[gnu::always_inline]] inline void add_bases(std::size_t i, std::size_t j, PairCounts& c) const noexcept;
    template <class Counter>
    [[gnu::always_inline]] inline void add_special_sites(std::size_t i, std::size_t j, PairCounts& c) const noexcept;
    template <class Counter>
    [[gnu::always_inline]] inline void add_base_pairs(std::size_t i, std::size_t j, PairCounts& c) const noexcept;
    [[nodiscard]] PairCounts compare_by_instruction(std::size_t i, std::size_t j, bool base_pairs) const noexcept;
    [[nodiscard]] PairCounts compare_portably(std::size_t i, std::size_t j, bool base_pairs) const noexcept;
    void add_other_sites(std::size_t i, std::size_t j, PairCounts& c) const noexcept;

    std::size_t nb_words_ = 0;
    char missing_;
    WordCount how_;
    bool missing_has_plane_ = false;
    int constant_sites_ = 0;  ///< usable sites with one base in all sequences
    std::vector<std::uint64_t> words_;
    std::vector<Traits> traits_;
    // Sites with other characters: what a pair of characters counts as, by small numbers of the characters.
    void number_characters(std::span<std::string_view const> sequences, std::span<std::size_t const> sites);
    std::vector<std::uint16_t> numbers_;   ///< k rows of nb_words_ * 64 numbers of characters; 0 behind the end
    std::vector<unsigned char> kinds_;     ///< kind of each pair of numbers, nb_numbers_ squared
    std::vector<PairCounts> kind_counts_;  ///< what one site of a kind adds
    std::size_t nb_numbers_ = 0;
};

/// A distance method of DNA with its parameters.
struct NucleotideMethod {
    int code = 0;  ///< 0 differences, 1 Jukes-Cantor, 2 Kimura, 3 share, 4 Tajima-Nei, 5 Tamura, 6 Tamura-Nei, other: 0
    SiteWeights weights;
    double gamma_a = 0.0;
    NucleotideFrequencies frequencies;

    [[nodiscard]] bool needs_base_pairs() const noexcept { return code == 4 || code == 6; }
};

/// The distance of a pair with the given counts under `method`.
[[nodiscard]] PairDistance nucleotide_distance(NucleotideMethod const& method, PairCounts const& counts) noexcept;

/// Distances and variances of sequence i to all sequences j < i.
///
/// @param distances, variances  at least i entries each, in the units of the method.
/// @return the status of the first pair that could not be corrected, with its index; entries from there on are unset.
struct RowResult {
    DistanceStatus status = DistanceStatus::ok;
    std::size_t failed_at = 0;
};
RowResult nucleotide_distance_row(NucleotidePlanes const& planes, std::size_t i, NucleotideMethod const& method,
                                  std::span<double> distances, std::span<double> variances) noexcept;

/// Restriction haplotypes reduced to their usable sites, for comparing many pairs.
class RflpRows {
public:
    RflpRows(std::span<std::string_view const> sequences, std::span<int const> usable, char missing);
    [[nodiscard]] std::size_t size() const noexcept { return lengths_.size(); }
    /// Counts of the pair, equal to count_rflp_pair() on the two sequences.
    [[nodiscard]] RflpCounts compare(std::size_t i, std::size_t j) const noexcept;

private:
    std::size_t width_ = 0;
    char missing_;
    std::vector<char> chars_;  ///< k rows of width_ characters
    std::vector<std::size_t> lengths_;
};

}  // namespace tov
