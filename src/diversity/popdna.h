// PopulDNA: a sample of DNA sequences.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "diversity/formula/nucleotide_distance.h"
#include "diversity/formula/site_planes.h"
#include "diversity/popseq.h"

namespace tov {

/// Methods of distance between two DNA sequences, by their codes in the settings.
enum distance_method : int {
    DIFF = 0,
    JUKES_CANTOR = 1,
    KIMURA_2P = 2,
    P_DIST = 3,
    TAJIMA_NEI = 4,
    TAMURA = 5,
    TAMURA_NEI = 6
};

/// Sites and observed changes of a DNA sample, counted over its usable sites.
struct SubstitutionCounts {
    int transitions = 0;         ///< observed transitions
    int transversions = 0;       ///< observed transversions; a site may show two
    int substitutions = 0;       ///< the sum of both
    int indels = 0;              ///< observed indels
    int transition_sites = 0;    ///< sites with transitions
    int transversion_sites = 0;  ///< sites with transversions
    int substitution_sites = 0;  ///< sites with either
    int indel_sites = 0;         ///< sites with indels
    int private_sites = -1;      ///< sites with substitutions in this sample alone; -1 until counted
};

class PopulDNA : public PopulSequence {
public:
    PopulDNA();
    ~PopulDNA() override;

    void initialize() override;
    void initialize_DNA();
    void clean() override;

    void test_methods(settings& s) override;
    int check_data() override;
    int compute_distance_matrix(std::ostream* out, settings* s, int scale) override;
    int evaluate_polymorphism(settings const& s) override;
    int compute_molecular_diversity(settings& s) override;
    void set_distance(DistanceChoice const& choice) override;
    [[nodiscard]] int segregating_sites() const override { return counts_.substitution_sites; }

    // --- Polymorphic sites (popdna_sites.cpp) ---
    /// Class of a pair of different characters: 0 none, 1 transition, 2 transversion, 3 deletion, 4 ambiguous.
    [[nodiscard]] int compare_nucleotides(char const& a, char const& b) const;
    int compare_DNA_sequences(settings const& s);
    /// The site shows a transition or transversion in this sample.
    [[nodiscard]] bool has_substitution(int site) const;
    [[nodiscard]] SubstitutionCounts const& substitution_counts() const { return counts_; }
    [[nodiscard]] SubstitutionCounts& substitution_counts() { return counts_; }

    // --- Settings of the distance ---
    void set_distance_method(distance_method m) { distance_method_ = m; }
    void set_gamma_correction(double a) { gamma_a_ = a; }
    void set_transition_weight(double const& w) { weights_.transition = w; }
    void set_transversion_weight(double const& w) { weights_.transversion = w; }
    void set_deletion_weight(double const& w) { weights_.deletion = w; }
    [[nodiscard]] SiteWeights const& weights() const { return weights_; }

    // --- Distance of one pair; the answer is in pair() ---
    int diff_dist(char const* s1, char const* s2);
    int p_dist(char const* s1, char const* s2);
    int jk_dist(char const* s1, char const* s2);
    int kim2p_dist(char const* s1, char const* s2);
    int tajnei_dist(char const* s1, char const* s2);
    int tamura_dist(char const* s1, char const* s2);
    int tamnei_dist(char const* s1, char const* s2);
    [[nodiscard]] PairDistance const& pair() const { return pair_; }

    /// Nucleotide frequencies of the sample, once; see nucleotide_frequencies(). @return 1, or 0 after code 108.
    int comp_nucl_freq();
    /// Frequencies of C, T, A, G; empty data give zeros.
    [[nodiscard]] NucleotideFrequencies const& nucleotide_frequencies() const { return frequencies_; }

    // --- Plain state ---
    distance_method distance_method_ = DIFF;
    double gamma_a_ = 0.0;
    SiteWeights weights_;
    PairDistance pair_;
    NucleotideFrequencies frequencies_;
    SubstitutionCounts counts_;
    std::vector<unsigned char> site_class_;  ///< kinds of change seen at each site, as bits

private:
    int one_pair(distance_method m, char const* s1, char const* s2);
    static void report_failure(DistanceStatus status);
    /// What the haplotypes show at a site against the reference; adds the copies with missing data to `missing`.
    [[nodiscard]] unsigned char class_of_site(std::size_t site, std::span<std::string_view const> contents,
                                              double& missing);
    void count_site_classes();
};

}  // namespace tov
