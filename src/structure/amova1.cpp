// AMOVA_1G_P_H: populations of one group, gene copies within populations; for haplotypes, and for genotypes of known
// phase without the level of individuals. AMOVA_1G_P_IH (amova7.cpp) has the same table.
#include "input/settings.h"
#include "structure/amova.h"

namespace tov {

namespace {

constexpr AmovaRow rows[] = {{" Among\n populations", 7}, {" Within\n populations", 7}};
constexpr AmovaIndex indices[] = {{" Fixation Index      FST : ", &VarianceTable::FST, slot_FST}};

}  // namespace

/// Va is tested against permutations among populations; the statistic is
/// 1/(a n) (SSD total - W') - 1/(b n) W'.
int Amova::one_group_of_haplotypes(PermutationScheme scheme) {
    compute_observed_sums(false);
    table_ = one_group_haplotypes(sizes_, sums_);
    AmovaTest const tests[] = {{0, slot_FST, "FST", false, scheme, PermutationTail::above}};
    // The context is shared with the design that permutes individuals.
    AmovaDesign const design{"Amova::AMOVA_1G_P_H()", rows, indices, nullptr, tests, false};
    if (plan_.permutations == 0) {
        return run_design(design, {});
    }
    double const among = 1.0 / (table_.df[0] * table_.n);
    double const within = 1.0 / (table_.df[1] * table_.n);
    Statistic const va{true, IndividualSums::none,
                       [this, among, within](double W, double) { return among * (table_.ssd_total - W) - within * W; }};
    return run_design(design, {va});
}

int Amova::AMOVA_1G_P_H() { return one_group_of_haplotypes(PermutationScheme::PHAPWG); }

}  // namespace tov
