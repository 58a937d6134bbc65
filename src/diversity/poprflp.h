// PopulRFLP: a sample of restriction-site haplotypes ('0', '1', '-' and missing).
#pragma once

#include "diversity/formula/nucleotide_distance.h"
#include "diversity/popseq.h"

namespace tov {

/// Methods of distance between two restriction haplotypes.
enum rflp_distance_method : int { RFLP_DIFF = 0, RFLP_P_DIST = 1 };

class PopulRFLP : public PopulSequence {
public:
    PopulRFLP();
    ~PopulRFLP() override;

    void initialize() override;
    void initialize_RFLP();

    void test_methods(settings& s) override;
    int check_data() override;
    int compute_distance_matrix(std::ostream* out, settings* s, int scale) override;
    int evaluate_polymorphism(settings const& s) override;
    int compute_molecular_diversity(settings& s) override;
    void set_distance(DistanceChoice const& choice) override;

    int compare_RFLP_haplotypes(settings const& s);

    void set_distance_method(rflp_distance_method m) { rflp_distance_method_ = m; }
    void set_deletion_weight(double const& w) { deletion_weight_ = w; }

    /// 0 for equal characters or when either is missing, 2 when either is '-', 1 otherwise.
    [[nodiscard]] int compare_sites(char const& a, char const& b) const;
    // Distance of one pair; the answer is in pair(). @return 1, or 0 and no distance without usable sites.
    int diff_no_weight(char const* s1, char const* s2);
    int p_diff(char const* s1, char const* s2);
    [[nodiscard]] PairDistance const& pair() const { return pair_; }

    // --- Plain state ---
    rflp_distance_method rflp_distance_method_ = RFLP_DIFF;
    double deletion_weight_ = 1.0;
    PairDistance pair_;

private:
    int one_pair(rflp_distance_method m, char const* s1, char const* s2);
};

}  // namespace tov
