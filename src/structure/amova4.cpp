// AMOVA_G_P_I: groups, populations within groups, individuals within populations, gene copies within individuals; for
// genotypes.
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
constexpr AmovaTest tests[] = {{3, slot_FIT, "FIT", false, PermutationScheme::PHAPAG, PermutationTail::below},
                               {2, slot_FIS, "FIS", false, PermutationScheme::PHAIWP, PermutationTail::above},
                               {1, slot_FSC, "FSC", false, PermutationScheme::PIAPWG, PermutationTail::above},
                               {0, slot_FCT, "FCT", true, PermutationScheme::PHAPAG, PermutationTail::above}};

}  // namespace

int Amova::AMOVA_G_P_I() {
    compute_observed_sums(true);
    table_ = groups_individuals(sizes_, sums_, groups_);
    AmovaDesign const design{"Amova::AMOVA_G_P_I()", rows, indices, " Fixation Indices\n", tests, true};
    if (plan_.permutations == 0) {
        return run_design(design, {});
    }
    double const b = table_.df[1], c = table_.df[2], d = table_.df[3], n = table_.n;
    Statistic const vd{false, IndividualSums::whole_vector, [d](double, double I) { return 1.0 / d * I; }};
    Statistic const vc{true, IndividualSums::by_population,
                       [c, d](double W, double I) { return -1.0 / (2.0 * d) * I + 1.0 / (2.0 * c) * (W - I); }};
    Statistic const vb{true, IndividualSums::none, [this, b, c, n](double W, double) {
                           return (groups_.T - W) / (b * n) - (W - sums_.I) / (c * n);
                       }};
    Statistic const va{false, IndividualSums::none, [this](double, double) {
                           return va_of_groups_individuals(table_, sizes_, sums_, permuted_groups_);
                       }};
    return run_design(design, {vd, vc, vb, va});
}

}  // namespace tov
