// AMOVA_1G_P_I: populations of one group, individuals within populations, gene copies within individuals; for
// genotypes.
#include "input/settings.h"
#include "structure/amova.h"

namespace tov {

namespace {

constexpr AmovaRow rows[] = {
    {" Among\n populations", 7}, {" Among\n individuals\n within\n populations", 7}, {" Within\n individuals", 7}};
constexpr AmovaIndex indices[] = {{"      FIS : ", &VarianceTable::FIS, slot_FIS},
                                  {"      FST : ", &VarianceTable::FST, slot_FST},
                                  {"      FIT : ", &VarianceTable::FIT, slot_FIT}};
constexpr AmovaTest tests[] = {{1, slot_FIS, "FIS", false, PermutationScheme::PHAIWP, PermutationTail::above},
                               {0, slot_FST, "FST", false, PermutationScheme::PIAPWG, PermutationTail::above},
                               {2, slot_FIT, "FIT", false, PermutationScheme::PHAPWG, PermutationTail::below}};

}  // namespace

int Amova::AMOVA_1G_P_I() {
    if (*view_.set.is_stop()) {
        return 0;
    }
    compute_observed_sums(true);
    table_ = one_group_individuals(sizes_, sums_);
    AmovaDesign const design{"Amova::AMOVA_1G_P_I()", rows, indices, " Fixation Indices\n", tests, true};
    if (plan_.permutations == 0) {
        return run_design(design, {});
    }
    double const a = table_.df[0], b = table_.df[1], c = table_.df[2], n = table_.n;
    Statistic const vb{true, IndividualSums::by_population,
                       [b, c](double W, double I) { return 1.0 / (2.0 * b) * (W - I) - 1.0 / (2.0 * c) * I; }};
    // kept on purpose: the second coefficient is half that of the observed Va, so that the test is conservative.
    Statistic const va{true, IndividualSums::none, [this, a, b, n](double W, double) {
                           return (sums_.total / sizes_.total - W) / (a * n) - (W - sums_.I) / (2.0 * b * n);
                       }};
    Statistic const vc{false, IndividualSums::whole_vector, [c](double, double I) { return 1.0 / c * I; }};
    return run_design(design, {vb, va, vc});
}

}  // namespace tov
