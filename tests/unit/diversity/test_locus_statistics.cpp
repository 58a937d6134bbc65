// Statistics of one locus and their means over loci.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "base/recmat.h"
#include "diversity/formula/locus_statistics.h"
#include "diversity/formula/mean_differences.h"

namespace tov {
namespace {

TEST(ExpectedHeterozygosity, IsUnbiasedAndZeroForOneCopy) {
    std::vector<double> const counts = {6, 3, 1};
    EXPECT_DOUBLE_EQ(expected_heterozygosity(counts), 10.0 / 9.0 * (1.0 - 0.46));
    std::vector<double> const one = {1};
    EXPECT_EQ(expected_heterozygosity(one), 0.0);
    EXPECT_EQ(expected_heterozygosity({}), 0.0);
}

TEST(GarzaWilliamson, IsAllelesOverRangePlusOne) {
    EXPECT_DOUBLE_EQ(garza_williamson_ratio(4, 10), 4.0 / 11.0);
    EXPECT_DOUBLE_EQ(garza_williamson_ratio(1, 0), 1.0);
}

TEST(MeanOverLoci, HasTheUsualDeviation) {
    std::vector<double> const x = {1, 2, 4};
    ColumnMean const m = mean_over_loci(x, 3);
    EXPECT_DOUBLE_EQ(m.mean, 7.0 / 3.0);
    EXPECT_DOUBLE_EQ(m.sd, std::sqrt(7.0 / 3.0));
}

TEST(MeanOverLoci, OfOneLocusIsTheSumWithoutDeviation) {
    std::vector<double> const x = {3};
    EXPECT_EQ(mean_over_loci(x, 5).mean, 3.0);
    EXPECT_EQ(mean_over_loci(x, 5).sd, 0.0);
    EXPECT_EQ(mean_over_loci({}, 5).mean, 0.0);
}

TEST(MeanOverLoci, OfEqualValuesHasNoDeviation) {
    std::vector<double> const x = {0.1, 0.1, 0.1};
    EXPECT_EQ(mean_over_loci(x, 3).sd, 0.0);
}

TEST(SumOfPairDifferences, WeighsTheLowerTriangleByCopies) {
    RectMat d(3, 3);
    d(1, 0) = 2;
    d(2, 0) = 3;
    d(2, 1) = 5;
    d(0, 1) = d(0, 2) = d(1, 2) = 99;  // upper triangle: not read
    std::vector<double> const copies = {2, 3, 4};
    EXPECT_EQ(sum_of_pair_differences(copies, d), 2 * 3 * 2 + 2 * 4 * 3 + 3 * 4 * 5);
    d.set_conventional_fst(1);
    EXPECT_EQ(sum_of_pair_differences(copies, d), 2 * 3 + 2 * 4 + 3 * 4);
    EXPECT_EQ(sum_of_pair_differences({}, d), 0.0);
}

}  // namespace
}  // namespace tov
