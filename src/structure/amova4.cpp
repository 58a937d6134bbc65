// AMOVA_G_P_I: groups, populations, individuals.
#include "structure/amova.h"

namespace tov {

namespace {

constexpr AmovaRow rows[] = {{" Among\n groups", 12},
                             {" Among\n populations\n within\n groups", 12},
                             {" Among\n individuals\n within\n populations", 7},
                             {"\n Within\n individuals", 7}};
constexpr AmovaIndex indices[] = {{"      FIS : ", &VarianceTable::FIS, slot_FIS},
                                  {"      FSC : ", &VarianceTable::FSC, slot_FSC},
                                  {"      FCT : ", &VarianceTable::FCT, slot_FCT},
                                  {"      FIT : ", &VarianceTable::FIT, slot_FIT}};
constexpr AmovaTest tests[] = {
    {3, slot_FIT, "FIT", false, PermutationScheme::PHAPAG, PermutationTail::below},
    {2, slot_FIS, "FIS", false, PermutationScheme::PHAIWP, PermutationTail::above},
    {1, slot_FSC, "FSC", false, PermutationScheme::PIAPWG, PermutationTail::above},
    {0, slot_FCT, "FCT", true, PermutationScheme::PHAPAG, PermutationTail::above}};

}  // namespace

int Amova::AMOVA_G_P_I() {
    compute_observed_sums(true);
    table_ = groups_individuals(sizes_, sums_, groups_);
    AmovaDesign const design{"Amova::AMOVA_G_P_I()", 4, rows, indices, " Fixation Indices\n", tests, true};
    if (plan_.permutations == 0) {
        return run_design(design, {});
    }
    double const b = table_.df[1], c = table_.df[2], d = table_.df[3], n = table_.n;
    Statistic const vd = [this, d] {
        permute(PermutationScheme::PHAPAG, sizes_, genes_);
        return 1.0 / d * permuted_within_individuals();
    };
    Statistic const vc = [this, c, d] {
        permute(PermutationScheme::PHAIWP, sizes_, genes_);
        double const I = compute_SSDWI();
        double const W = permuted_within_terms();
        count_population_fis();
        return -1.0 / (2.0 * d) * I + 1.0 / (2.0 * c) * (W - I);
    };
    Statistic const vb = [this, b, c, n] {
        permute(PermutationScheme::PIAPWG, sizes_, genes_);
        double const W = permuted_within_terms();
        return (groups_.T - W) / (b * n) - (W - sums_.I) / (c * n);
    };
    Statistic const va = [this] { return va_of_groups_individuals(table_, sizes_, sums_, permute_among_groups()); };
    return run_design(design, {vd, vc, vb, va});
}

}  // namespace tov
