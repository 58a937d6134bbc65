// Averages over loci, their bootstrap and their tests.
#include "structure/formula/locus_average.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/structure_data.h"

using namespace tov;
using namespace tov::test;

namespace {

/// Components Va, Vb, Vc of seven loci.
std::vector<std::array<double, 4>> const loci{{.02, .01, .30, 0}, {0, .03, .25, 0},    {.05, -.01, .40, 0},
                                              {.01, .02, .35, 0}, {-.01, 0, .20, 0},   {.08, .04, .45, 0},
                                              {.03, .01, .28, 0}};
constexpr ComponentRatio fst{0, 2, 3}, fsc{1, 2, 3}, fct{0, 1, 3};

double average(ComponentRatio const& ratio) {
    std::array<double, 4> sums{};
    for (auto const& locus : loci) {
        for (int k = 0; k < 4; ++k) {
            sums[k] += locus[k];
        }
    }
    return component_ratio(ratio, sums);
}

}  // namespace

TEST(LocusAverage, IndicesAreRatiosOfSums) {
    EXPECT_NEAR(average(fst), 0.1115537849, 5e-11);
    EXPECT_NEAR(average(fsc), 0.04291845494, 5e-12);
    EXPECT_NEAR(average(fct), 0.07171314741, 5e-12);
    std::array<double, 4> const nothing{};
    EXPECT_EQ(component_ratio(fst, nothing), 0.0);
}

TEST(LocusAverage, BootstrapPercentilesOfSevenLoci) {
    seed_one();
    double const expected[3][3] = {{0.05529953917, 0.1093117409, 0.1596091205},
                                   {0.009009009009, 0.04329004329, 0.07291666667},
                                   {0.02030456853, 0.07089552239, 0.1103896104}};
    ComponentRatio const ratios[] = {fst, fsc, fct};
    for (int k = 0; k < 3; ++k) {
        std::vector<double> const values = bootstrap_over_loci(loci, ratios[k]);
        ASSERT_EQ(values.size(), 20000u);
        EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
        EXPECT_NEAR(values[500], expected[k][0], 5e-11);
        EXPECT_NEAR(values[10000], expected[k][1], 5e-11);
        EXPECT_NEAR(values[19500], expected[k][2], 5e-11);
        EXPECT_LT(values[500], average(ratios[k]));
        EXPECT_GT(values[19500], average(ratios[k]));
    }
    EXPECT_NEAR(uniform(), 0.102765890, 1e-12);
}

TEST(LocusAverage, ValuesWithinTheToleranceCountAsEqual) {
    std::vector<double> const first{1.0, 2.0, 3.0, 4.0}, second{1.0, 2.0, 3.0 + 1e-10};
    std::vector<std::vector<double> const*> const values{&first, &second};
    AverageTest const above = average_test(values, 3.0, false, 4);
    EXPECT_EQ(above.equal, 1);   // (3 + 3) / 2
    EXPECT_EQ(above.beyond, 0);  // the fourth has one locus only: 4 / 2
    EXPECT_EQ(average_test(values, 1.5, true, 4).beyond, 1);
    EXPECT_EQ(average_test(values, 1.5, true, 0).p, 0.0);
}
