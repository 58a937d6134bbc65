// AMOVA_G_P_H: groups, populations within groups, gene copies within populations; for haplotypes, and for genotypes of
// known phase without the level of individuals. AMOVA_G_P_IH (amova8.cpp) has the same table.
#include "structure/amova.h"

namespace tov {

namespace {

constexpr AmovaRow rows[] = {
    {" Among\n groups", 12}, {" Among\n populations\n within\n groups", 12}, {" Within\n populations", 7}};
constexpr AmovaIndex indices[] = {{"      FST : ", &VarianceTable::FST, slot_FST},
                                  {"      FSC : ", &VarianceTable::FSC, slot_FSC},
                                  {"      FCT : ", &VarianceTable::FCT, slot_FCT}};

}  // namespace

int Amova::groups_of_haplotypes(PermutationScheme among, PermutationScheme within) {
    compute_observed_sums(false);
    table_ = groups_haplotypes(sizes_, sums_, groups_);
    AmovaTest const tests[] = {{2, slot_FST, "FST", false, among, PermutationTail::below},
                               {1, slot_FSC, "FSC", false, within, PermutationTail::above},
                               {0, slot_FCT, "FCT", true, among, PermutationTail::above}};
    AmovaDesign const design{"Amova::AMOVA_G_P_H()", rows, indices, " Fixation Indices\n", tests, false};
    if (plan_.permutations == 0) {
        return run_design(design, {});
    }
    double const b = table_.df[1], c = table_.df[2];
    Statistic const vc{true, IndividualSums::none, [c](double W, double) { return W / c; }};
    Statistic const vb{true, IndividualSums::none, [this, b, c](double W, double) {
                           return (groups_.T - W) / (b * table_.n) - W / (c * table_.n);
                       }};
    Statistic const va{false, IndividualSums::none,
                       [this](double, double) { return va_of_groups_haplotypes(table_, sums_, permuted_groups_); }};
    return run_design(design, {vc, vb, va});
}

int Amova::AMOVA_G_P_H() { return groups_of_haplotypes(PermutationScheme::PHAPAG, PermutationScheme::PHAPWG); }

}  // namespace tov
