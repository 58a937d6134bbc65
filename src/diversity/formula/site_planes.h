// Bit planes of aligned sequences: pairs are compared 64 sites at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
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
/// Per sequence five planes of 64-bit words: two of base code (A 00, G 01, C 10, T 11), and one each that marks the
/// sites with one of the four bases, with '-', and with the missing-data character; the words of the same sites stand
/// together, so that a loop over two sequences gets by with few pointers. Sites with any other character, such as the
/// ambiguity codes, are listed and looked up one by one. Sites at which all sequences have the same base are only
/// counted. Building costs two passes over the characters; comparing allocates nothing.
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
        bool pure = true;     ///< bases alone
        bool others = false;  ///< some character that has no plane
    };
    /// Base codes of 64 sites.
    struct Codes {
        std::uint64_t low = 0;
        std::uint64_t high = 0;
    };
    /// What stands at 64 sites.
    struct Marks {
        std::uint64_t base = 0;
        std::uint64_t gap = 0;
        std::uint64_t absent = 0;
    };

    [[nodiscard]] Codes const* codes(std::size_t i) const noexcept { return codes_.data() + i * nb_words_; }
    [[nodiscard]] Marks const* marks(std::size_t i) const noexcept { return marks_.data() + i * nb_words_; }
    [[nodiscard]] unsigned kind_of(char c) const noexcept;
    void pack(std::size_t i, std::string_view sequence, std::span<std::size_t const> sites,
              std::span<unsigned const, 256> kinds);
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
    std::uint64_t gap_absent_deleted_ = 0;  ///< all ones if '-' against missing data is a deletion
    std::uint64_t absent_gap_deleted_ = 0;  ///< the same the other way round
    int constant_sites_ = 0;                ///< usable sites with one base in all sequences
    std::vector<Codes> codes_;              ///< k rows of nb_words_
    std::vector<Marks> marks_;              ///< k rows of nb_words_
    std::vector<Traits> traits_;

    // Sites with other characters: what their pairs add to the counts is looked up.

    /// Counts of at most 255 sites, a byte each, so that what a site adds takes two sums.
    struct ByteCounts {
        std::uint64_t often = 0;
        std::uint64_t seldom = 0;  ///< counts that few pairs of characters change

        void add(ByteCounts const& o) noexcept {
            often += o.often;
            seldom += o.seldom;
        }
    };
    struct OtherSite {
        std::uint32_t site;
        std::uint32_t row;  ///< where the row of its character begins in the tables
    };
    void list_others(std::span<std::string_view const> sequences, std::span<std::size_t const> sites,
                     std::span<unsigned const, 256> kinds);
    [[nodiscard]] std::uint32_t row_of_other(char c);
    void tabulate_others();
    /// Of sequence i, before site `end`.
    [[nodiscard]] std::span<OtherSite const> other_sites(std::size_t i, int end) const noexcept;
    [[nodiscard]] unsigned char const* characters(std::size_t i) const noexcept {
        return characters_.data() + i * nb_words_ * 64;
    }

    std::string others_;                     ///< the other characters that occur
    std::vector<OtherSite> other_sites_;     ///< sequence by sequence
    std::vector<std::size_t> other_begin_;   ///< k + 1 places in other_sites_
    std::vector<unsigned char> characters_;  ///< k rows of nb_words_ * 64; none when no sequence has other characters
    std::vector<ByteCounts> as_first_;       ///< rows of 256: an other character in the first, any in the second
    std::vector<ByteCounts> as_second_;      ///< the other way round; nothing for two others, which as_first_ has
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
