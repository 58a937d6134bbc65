// Likelihood of genotypes in samples.
#include "structure/formula/assignment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <span>

using namespace tov;

TEST(Assignment, AHomozygoteGetsNoFactorTwo) {
    std::vector<double> const f{0.6, 0.4};
    std::vector<AllelePair> const homozygote{{0, 0}}, heterozygote{{0, 1}};
    EXPECT_DOUBLE_EQ(genotype_log_likelihood(homozygote, f, 0.01), std::log(0.36));
    EXPECT_DOUBLE_EQ(genotype_log_likelihood(heterozygote, f, 0.01), std::log(0.48));
}

TEST(Assignment, AnAbsentAlleleTakesTheUndetectedFrequency) {
    double const e = undetected_frequency(10);
    EXPECT_DOUBLE_EQ(e, 1.0 - std::pow(0.95, 1.0 / 20.0));
    std::vector<double> const f{0.0, 1.0};
    std::vector<AllelePair> const genotype{{0, 1}};
    EXPECT_DOUBLE_EQ(genotype_log_likelihood(genotype, f, e), std::log(2.0 * e));
}

TEST(Assignment, AnEmptySampleMissesEveryAllele) {
    EXPECT_EQ(undetected_frequency(0), 1.0);
}

TEST(Assignment, AMissingAlleleLeavesItsLocusOut) {
    std::vector<double> const f{0.5, 0.5};
    std::vector<AllelePair> const genotype{{-1, 1}, {0, 0}, {-1, -1}};
    EXPECT_DOUBLE_EQ(genotype_log_likelihood(genotype, f, 0.01), std::log(0.25));
    EXPECT_EQ(genotype_log_likelihood({}, f, 0.01), 0.0);
}

TEST(Assignment, HundredsOfRareAllelesUnderflowToMinusInfinity) {
    std::vector<double> const f{0.001, 0.002};
    std::vector<AllelePair> const genotype(500, AllelePair{0, 1});
    EXPECT_EQ(genotype_log_likelihood(genotype, f, 0.01), -std::numeric_limits<double>::infinity());
    std::span<AllelePair const> const some(genotype.data(), 50);
    EXPECT_NEAR(genotype_log_likelihood(some, f, 0.01), 50.0 * std::log(2.0 * 0.001 * 0.002), 1e-8);
}

TEST(Assignment, EqualsTheSumOfLogarithmsOnRandomGenotypes) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> frequency(0.01, 1.0);
    for (int trial = 0; trial < 50; ++trial) {
        std::vector<double> f(12);
        for (double& value : f) {
            value = frequency(random);
        }
        std::vector<AllelePair> genotype;
        double expected = 0.0;
        for (int locus = 0; locus < 20; ++locus) {
            int const x = static_cast<int>(random() % 12), y = static_cast<int>(random() % 12);
            genotype.push_back({x, y});
            expected += std::log(f[x]) + std::log(f[y]) + (x != y ? std::log(2.0) : 0.0);
        }
        EXPECT_NEAR(genotype_log_likelihood(genotype, f, 0.01), expected, 1e-10);
    }
}
