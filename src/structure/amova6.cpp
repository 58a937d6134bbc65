// AMOVA_1G_1P_I: individuals of one population, gene copies within individuals; for genotypes.
#include "structure/amova.h"

namespace tov {

namespace {

constexpr AmovaRow rows[] = {{" Among\n individuals", 7}, {" Within\n individuals", 7}};
constexpr AmovaIndex indices[] = {{" Fixation Index     FIS : ", &VarianceTable::FIS, slot_FIS}};
constexpr AmovaTest tests[] = {{0, slot_FIS, "FIS", false, PermutationScheme::PHAIWP, PermutationTail::above}};

}  // namespace

int Amova::AMOVA_1G_1P_I() {
    compute_observed_sums(true);
    table_ = one_population_individuals(sums_);
    AmovaDesign const design{"Amova::AMOVA_1G_1P_I()", rows, indices, nullptr, tests, true};
    if (plan_.permutations == 0) {
        return run_design(design, {});
    }
    double const a = table_.df[0], b = table_.df[1];
    Statistic const va{true, IndividualSums::by_population,
                       [a, b](double W, double I) { return (W - I) / (2.0 * a) - I / (2.0 * b); }};
    return run_design(design, {va});
}

}  // namespace tov
