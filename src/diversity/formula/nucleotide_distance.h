// Distances between two aligned DNA sequences or restriction haplotypes, from the counts of their pairs of characters.
#pragma once

#include <span>
#include <string_view>

namespace tov {

/// Weights of the three kinds of change; a weight at or below 0 leaves that kind out of the differences.
struct SiteWeights {
    double transition = 1.0;
    double transversion = 1.0;
    double deletion = 1.0;
};

/// Frequencies of the four bases of a sample.
struct NucleotideFrequencies {
    double c = 0.0;
    double t = 0.0;
    double a = 0.0;
    double g = 0.0;
    /// G+C content.
    [[nodiscard]] double theta() const { return c + g; }
};

/// How a pair of different characters differs.
enum class SiteClass : unsigned char { none = 0, transition = 1, transversion = 2, deletion = 3, ambiguous = 4 };

/// Class of a pair of characters, by a fixed table over the ambiguity codes, '-', '0' and '1'.
///
/// The table is not symmetric: ('-', 'B') is a deletion and ('B', '-') none. A pair that it does not list gives none.
[[nodiscard]] SiteClass nucleotide_pair_class(char a, char b) noexcept;

/// Counts of the sites of one pair of sequences by what stands there. Sites equal and missing are counted nowhere.
struct PairCounts {
    int equal = 0;                ///< equal characters, neither missing nor '-'
    int equal_gap = 0;            ///< '-' in both, when '-' is not the missing-data character
    int transitions = 0;          ///< class transition
    int transversions = 0;        ///< class transversion, ambiguity codes included
    int deletions = 0;            ///< class deletion
    int ambiguous = 0;            ///< class ambiguous
    int unclassified = 0;         ///< different characters of class none
    int uncorrectable = 0;        ///< of the classes none and deletion: enter the length of the corrected distances
    int uncorrectable_known = 0;  ///< of the classes none and deletion: neither character is missing or '-'
    // Pairs of two different bases out of A, C, G, T, unordered; filled when asked for.
    int ag = 0;
    int ct = 0;
    int ac = 0;
    int at = 0;
    int cg = 0;
    int gt = 0;

    friend bool operator==(PairCounts const&, PairCounts const&) = default;
};

/// Adds one site with the characters a and b.
void add_site(PairCounts& counts, char a, char b, char missing) noexcept;

/// Counts one pair of aligned sequences, up to the end of the shorter one.
///
/// @param usable   one flag a site, 0 passes over it; sites beyond the span count as unusable. A null span uses all.
/// @param missing  the missing-data character.
[[nodiscard]] PairCounts count_pair(std::string_view s1, std::string_view s2, std::span<int const> usable,
                                    char missing) noexcept;

/// Why a distance could not be corrected.
enum class DistanceStatus {
    ok,
    jukes_cantor_divergent,
    kimura_divergent,
    base_absent,  ///< Tajima and Nei: a base does not occur, or no pair of bases does
    tajima_nei_divergent,
    tamura_unbalanced,
    log_of_zero,  ///< Tamura: the ratio needs the logarithm of zero
    tamura_nei_unbalanced,
    tamura_nei_not_finite  ///< Tamura and Nei with gamma: the distance is outside the single-precision range
};

/// Distance of one pair. Distance and variance are per site, but sites and differences of pairwise_difference.
struct PairDistance {
    DistanceStatus status = DistanceStatus::ok;
    double distance = 0.0;
    double variance = 0.0;
    double transition_part = 0.0;    ///< Tamura and Nei without gamma only
    double transversion_part = 0.0;  ///< Tamura and Nei without gamma only
    double P = 0.0;                  ///< share of transitions
    double Q = 0.0;                  ///< share of transversions
    double R = 0.0;                  ///< transitions over transversions; -1 when not defined
    double var_R = 0.0;              ///< -1 when not defined
    double sites = 0.0;              ///< sites compared, weighted in the first two methods
    double differences = 0.0;        ///< sites different, weighted in the first two methods
};

/// Weighted number of differing sites; variance (1 - p) p L with p = D / L.
///
/// A nucleotide against missing data counts as a site. A kind of change with a weight <= 0 counts as one site without a
/// difference, otherwise it adds its weight to both. Never fails.
[[nodiscard]] PairDistance pairwise_difference(PairCounts const& c, SiteWeights const& w) noexcept;

/// Share of differing sites, with the ratio of transitions to transversions. Never fails.
[[nodiscard]] PairDistance proportion_of_difference(PairCounts const& c, SiteWeights const& w) noexcept;

/// Jukes and Cantor (1969); `a` > 0 is the shape of gamma-distributed rates (Jin and Nei 1990), 0 for none.
/// Fails at p >= 3/4, with distance -p.
[[nodiscard]] PairDistance jukes_cantor(PairCounts const& c, SiteWeights const& w, double a) noexcept;

/// Kimura's two-parameter distance (1980), with gamma as by Jin and Nei (1990).
/// Fails when 1 - 2P - Q or 1 - 2Q is exactly 0; a negative one gives a distance that is not a number.
[[nodiscard]] PairDistance kimura_2p(PairCounts const& c, SiteWeights const& w, double a) noexcept;

/// Tajima and Nei (1984) with the base frequencies of the sample; reads the unordered base pairs.
[[nodiscard]] PairDistance tajima_nei(PairCounts const& c, SiteWeights const& w,
                                      NucleotideFrequencies const& f) noexcept;

/// Tamura (1992) with the G+C content of the sample.
[[nodiscard]] PairDistance tamura(PairCounts const& c, SiteWeights const& w, NucleotideFrequencies const& f) noexcept;

/// Tamura and Nei (1993) with the base frequencies of the sample, with or without gamma; reads the base pairs.
[[nodiscard]] PairDistance tamura_nei(PairCounts const& c, SiteWeights const& w, NucleotideFrequencies const& f,
                                      double a) noexcept;

/// Counts of one pair of restriction haplotypes.
struct RflpCounts {
    int sites = 0;      ///< sites compared
    int changes = 0;    ///< '0' against '1' and any other two different characters
    int deletions = 0;  ///< exactly one is '-'

    friend bool operator==(RflpCounts const&, RflpCounts const&) = default;
};

/// Counts one pair of restriction haplotypes; equal characters and pairs with missing data are sites without a change.
[[nodiscard]] RflpCounts count_rflp_pair(std::string_view s1, std::string_view s2, std::span<int const> usable,
                                         char missing) noexcept;
/// Number of differing restriction sites; deletions enter when their weight is positive.
[[nodiscard]] PairDistance rflp_difference(RflpCounts const& c, double deletion_weight) noexcept;
/// Share of differing restriction sites.
[[nodiscard]] PairDistance rflp_proportion(RflpCounts const& c, double deletion_weight) noexcept;

}  // namespace tov
