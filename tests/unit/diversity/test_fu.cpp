// Fu's Fs.
#include <gtest/gtest.h>

#include <limits>

#include "base/bnum.h"
#include "diversity/formula/fu.h"
#include "diversity/formula/theta.h"

namespace tov {
namespace {

TEST(FuFs, HasTheKnownValues) {
    BnumMat B;
    ASSERT_EQ(B.re_allocate_matrix(200, 80), 1);
    struct Case {
        int n, k;
        double theta, S, Fs;
    };
    for (Case const& c : {Case{20, 8, 2.5, .1918510279, -1.438027238}, Case{50, 12, 3, .1583127652, -1.670835887},
                          Case{10, 4, 5, .9520799141, 2.989114229}}) {
        FuFs const f = fu_fs(c.theta, probability_fewer_alleles(B, c.k, c.n, c.theta));
        EXPECT_EQ(f.status, FuStatus::finite);
        EXPECT_NEAR(f.S, c.S, 1e-9);
        EXPECT_NEAR(f.Fs, c.Fs, 1e-8);
    }
}

TEST(FuFs, ThetaZeroIsNoDiversity) {
    EXPECT_EQ(fu_fs(0.0, 0.5).status, FuStatus::no_diversity);
    EXPECT_EQ(fu_fs(-1.0, 0.5).Fs, theta_infinite);
}

TEST(FuFs, CertaintyGivesTheExtremes) {
    EXPECT_EQ(fu_fs(1.0, 1.0).status, FuStatus::smallest);
    EXPECT_EQ(fu_fs(1.0, 1.0).Fs, -theta_infinite);
    EXPECT_EQ(fu_fs(1.0, 0.0).status, FuStatus::largest);
    EXPECT_EQ(fu_fs(1.0, 0.0).Fs, theta_infinite);
}

TEST(FuFs, AnOverflownTableGivesNoProbability) {
    FuFs const f = fu_fs(1.0, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(f.status, FuStatus::no_probability);
    EXPECT_EQ(f.Fs, 0.0);
    EXPECT_EQ(fu_fs(1.0, 1.5).status, FuStatus::no_probability);
}

}  // namespace
}  // namespace tov
