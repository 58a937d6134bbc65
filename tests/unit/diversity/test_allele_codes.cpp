// Rows of allele codes and sizes against a plain count.
#include "diversity/formula/allele_codes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace tov {
namespace {

template <class Code>
void compare_with_plain_count(unsigned alleles) {
    std::mt19937 engine(11);
    for (std::size_t const loci : {0, 1, 63, 64, 65, 200}) {
        AlleleCodes<Code> codes(4, loci);
        for (std::size_t i = 0; i < 4; ++i) {
            for (std::size_t k = 0; k < loci; ++k) {
                codes.row(i)[k] = static_cast<Code>(engine() % alleles);
            }
        }
        for (std::size_t i = 0; i < 4; ++i) {
            for (std::size_t j = 0; j < 4; ++j) {
                int wanted = 0;
                for (std::size_t k = 0; k < loci; ++k) {
                    Code const a = codes.row(i)[k];
                    Code const b = codes.row(j)[k];
                    wanted += a != b && a != 0 && b != 0;
                }
                AlleleCodes<Code> const& fixed = codes;
                EXPECT_EQ(count_different_loci(fixed.row(i), fixed.row(j)), wanted) << loci;
            }
        }
    }
}

TEST(AlleleCodes, OfAByteCountLociThatDiffer) { compare_with_plain_count<std::uint8_t>(4); }

TEST(AlleleCodes, OfAWordCountLociThatDiffer) { compare_with_plain_count<std::uint32_t>(70000); }

TEST(AlleleSizes, LeaveMissingDataOutOfTheSquares) {
    double const missing = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> const a = {10, missing, 7, missing};
    std::vector<double> const b = {14, 3, 6, missing};
    EXPECT_EQ(sum_of_squared_differences(a, b), 17.0);
    EXPECT_EQ(sum_of_squared_differences({}, {}), 0.0);
}

}  // namespace
}  // namespace tov
