// The generator against its published sequence, deviates against independent values, and the draws that each spends.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <numeric>
#include <set>
#include <vector>

#include "base/random.h"
#include "support/fresh_process.h"
#include "support/scratch_directory.h"

using namespace tov;
using tov::test::draws_since;
using tov::test::FreshProcess;
using tov::test::ScratchDirectory;

TEST(Ran3, SequenceOfSeedMinusOneIsThePublishedOne) {
    FreshProcess fresh(0);
    double const expected[] = {0.298227348, 0.715119168, 0.033021107, 0.874393600, 0.534194424,
                               0.631586247, 0.891029795, 0.257547683, 0.931635120, 0.277246342,
                               0.715817245, 0.483407851, 0.531093545, 0.183439682, 0.271342725,
                               0.603054830, 0.833391258, 0.228066935, 0.668385615, 0.529063645};
    long idum = -1;
    for (double const value : expected) {
        EXPECT_DOUBLE_EQ(value, ran3(&idum));
        EXPECT_EQ(1, idum);
    }
}

TEST(Ran3, FirstCallSeedsItselfFromWhatItIsHanded) {
    FreshProcess fresh(0);
    EXPECT_EQ(0, random_state.ran3.iff);
    long idum = 1;
    EXPECT_DOUBLE_EQ(0.298227348, ran3(&idum));
    EXPECT_EQ(1, random_state.ran3.iff);
    idum = 77;
    EXPECT_DOUBLE_EQ(0.715119168, ran3(&idum)) << "a positive value doesn't reseed";
    EXPECT_EQ(77, idum);
}

TEST(Ran3, ManyNumbersAtOnceAreThoseOfSingleDraws) {
    Ran3State one;
    one.seed(-1);
    Ran3State many = one;
    for (std::size_t const n : {1U, 5U, 23U, 24U, 25U, 0U, 54U, 55U, 56U, 300U, 1U}) {
        std::vector<double> numbers(n);
        many.draw(numbers);
        for (double const x : numbers) ASSERT_EQ(x, one.draw());
        ASSERT_EQ(many.draw(), one.draw());
    }
}

TEST(Ran3, ValuesStayInTheHalfOpenUnitIntervalForManySeeds) {
    FreshProcess fresh(0);
    for (long seed : {-1L, -2L, -4357L, -161803398L, -161803399L, -999999999L, -2000000000L, LONG_MIN}) {
        long idum = seed;
        for (int i = 0; i < 20000; ++i) {
            double const u = ran3(&idum);
            ASSERT_GE(u, 0.0) << seed;
            ASSERT_LT(u, 1.0) << seed;
        }
    }
    EXPECT_EQ("", fresh.console()) << "no strange value";
}

TEST(Ran3, SavedStateComesBackAtTheEndOfTheScope) {
    FreshProcess fresh;
    double first = 0.0;
    {
        SavedRandom saved;
        first = uniform();
        uniform();
    }
    EXPECT_DOUBLE_EQ(first, uniform());
}

TEST(InitializeRan3, PositiveSeedStartsEveryProjectFromTheSameSequence) {
    FreshProcess fresh(0);
    ScratchDirectory directory;
    for (int project = 0; project < 2; ++project) {
        initialize_ran3(1);
        EXPECT_DOUBLE_EQ(0.715119168, uniform()) << "the seeding spends number 1";
    }
    EXPECT_EQ("Random number generator initialized with lidum=-1\nRandom number generator initialized with lidum=-1\n",
              fresh.console());
    EXPECT_EQ("Random number generator initialized with lidum=-1\n", directory.read("randseed.txt"));
}

TEST(InitializeRan3, NegativeSeedIsTakenAsItIs) {
    FreshProcess fresh(0);
    ScratchDirectory directory;
    initialize_ran3(-1);
    EXPECT_DOUBLE_EQ(0.715119168, uniform());
    EXPECT_EQ("Random generator initialized with seed=-1\n", fresh.console());
    EXPECT_EQ("Random number generator initialized with lidum=-1\n", directory.read("randseed.txt"));
    EXPECT_EQ("", fresh.log());
}

TEST(InitializeRan3, SeedZeroTakesTheClockAndRecordsTheSeedReallyUsed) {
    FreshProcess fresh(0);
    ScratchDirectory directory;
    initialize_ran3(0);
    double const first = uniform();
    std::string const record = directory.read("randseed.txt");
    EXPECT_EQ(record, fresh.console());
    long const seed = std::stol(record.substr(record.find('=') + 1));
    EXPECT_LT(seed, 0);
    EXPECT_GT(seed, -2000000);
    initialize_ran3(seed);
    EXPECT_DOUBLE_EQ(first, uniform()) << "the record reproduces the run";
}

TEST(InitializeRan3, SeedBeyondTheRangeWarnsAndTakesTheClock) {
    for (long const seed : {-161803399L, 161803399L, LONG_MIN, LONG_MAX}) {
        FreshProcess fresh(0);
        ScratchDirectory directory;
        initialize_ran3(seed);
        EXPECT_EQ(
            "   1 #[WARNING # 1] from function \"initialize_ran3(const int seed) \" : given seed is too large, "
            "initializing ran3 with random seed \n",
            fresh.log());
        EXPECT_EQ(1, random_state.ran3.iff);
    }
    FreshProcess fresh(0);
    ScratchDirectory directory;
    initialize_ran3(-161803398);
    EXPECT_EQ("", fresh.log()) << "the last seed that fits";
}

TEST(MyRand, GivesAPositiveValueBelowTwoMillion) {
    for (int i = 0; i < 1000; ++i) {
        int const v = my_rand();
        ASSERT_GT(v, 0);
        ASSERT_LT(v, 2000000);
    }
}

TEST(RandLong, CoversZeroToNMinusOneAndSpendsOneDraw) {
    FreshProcess fresh;
    std::set<long> seen;
    for (int i = 0; i < 200; ++i) {
        long n = 5;
        Ran3State const before = random_state.ran3;
        long const x = rand_long(&n);
        EXPECT_EQ(1, draws_since(before));
        EXPECT_EQ(5, n);
        seen.insert(x);
    }
    EXPECT_EQ((std::set<long>{0, 1, 2, 3, 4}), seen);
}

TEST(Permute, ShufflesTenElementsAsTheReferenceDoes) {
    FreshProcess fresh;
    int v[10];
    std::iota(v, v + 10, 0);
    Ran3State const before = random_state.ran3;
    permute(v, 10);
    EXPECT_EQ((std::vector<int>{5, 8, 2, 1, 4, 9, 3, 6, 0, 7}), std::vector<int>(v, v + 10));
    EXPECT_EQ(10, draws_since(before)) << "the last round has one choice and spends its draw";
}

TEST(Permute, OneElementSpendsOneDrawAndNoneSpendsNone) {
    FreshProcess fresh;
    int v = 3;
    Ran3State before = random_state.ran3;
    permute(&v, 1);
    EXPECT_EQ(1, draws_since(before));
    before = random_state.ran3;
    permute(&v, 0);
    permute(&v, -4);
    EXPECT_EQ(0, draws_since(before));
    EXPECT_EQ(3, v);
}

TEST(BootstrapIndex, DrawsTenIndicesAsTheReferenceDoes) {
    FreshProcess fresh;
    std::vector<int> idx(10);
    bootstrap_index(idx.data(), 10);
    EXPECT_EQ((std::vector<int>{7, 0, 8, 5, 6, 8, 2, 9, 2, 7}), idx);
}

namespace {

template <class Deviate>
void expect_sequence(std::vector<double> const& expected, long draws, Deviate deviate) {
    FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    for (double const value : expected) EXPECT_NEAR(value, deviate(), 1e-9 * std::fabs(value));
    EXPECT_EQ(draws, draws_since(before));
}

}  // namespace

TEST(GammaDev, FractionalShapesFollowTheReference) {
    expect_sequence({0.7168297486, 1.212607267, 0.1077434386, 0.327556771, 0.04716781517, 0.07290945209}, 18,
                    [] { return gamma_dev(0.5); });
    expect_sequence({3.761322288, 1.742858421, 3.010516418, 1.26635174, 0.9586409061, 2.481679425}, 32,
                    [] { return gamma_dev(2.3); });
}

TEST(GammaDev, WholeShapeSpendsTheDrawsOfTheIntegerDeviateOnly) {
    FreshProcess fresh;
    RandomState const start = random_state;
    double const from_gamma = gamma_dev(3.0);
    EXPECT_EQ(3, draws_since(start.ran3));
    random_state = start;
    EXPECT_DOUBLE_EQ(igamma_dev(3), from_gamma);
}

TEST(GammaDev, ShapesThatAreNotPositiveGiveZeroAndSpendNothing) {
    FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(0.0, gamma_dev(0.0));
    EXPECT_EQ(0.0, gamma_dev(-1.5));
    EXPECT_EQ(0.0, gamma_dev(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(0.0, igamma_dev(0));
    EXPECT_EQ(0.0, igamma_dev(-3));
    EXPECT_EQ(0, draws_since(before));
}

TEST(IgammaDev, SmallAndLargeShapesFollowTheReference) {
    expect_sequence({3.880139059, 1.2018936, 2.710213289, 1.694042064, 3.505989121, 2.063258172}, 18,
                    [] { return igamma_dev(3); });
    expect_sequence({9.398110541, 7.035463382, 6.300895059, 8.647733197, 11.63893911, 4.983497015}, 30,
                    [] { return igamma_dev(10); });
}

TEST(IgammaDev, MeanAndVarianceAreTheShape) {
    FreshProcess fresh;
    double sum = 0.0;
    double squares = 0.0;
    int const n = 200000;
    for (int i = 0; i < n; ++i) {
        double const x = igamma_dev(8);
        sum += x;
        squares += x * x;
    }
    double const mean = sum / n;
    EXPECT_NEAR(8.0, mean, 0.04);
    EXPECT_NEAR(8.0, squares / n - mean * mean, 0.2);
}

namespace {

std::vector<int> poisson_sequence(float mean, int n) {
    std::vector<int> values;
    long idum = 1;
    for (int i = 0; i < n; ++i) values.push_back(poidev(mean, &idum));
    return values;
}

}  // namespace

TEST(Poidev, BothBranchesFollowTheReference) {
    FreshProcess fresh;
    Ran3State before = random_state.ran3;
    EXPECT_EQ((std::vector<int>{1, 6, 4, 5, 1, 5, 3, 6, 4, 3, 1, 6, 2, 2, 4, 3, 1, 3, 6, 4}),
              poisson_sequence(3.5F, 20));
    EXPECT_EQ(90, draws_since(before));
    fresh.reseed();
    before = random_state.ran3;
    EXPECT_EQ((std::vector<int>{12, 17, 24, 25, 23, 22, 18, 18, 21, 16, 22, 20, 19, 34, 20, 13, 20, 10, 31, 19}),
              poisson_sequence(20.0F, 20));
    EXPECT_EQ(80, draws_since(before));
}

TEST(Poidev, AlternatingMeansGiveWhatAFreshStateWouldGive) {
    FreshProcess fresh;
    for (int i = 0; i < 200; ++i) {
        float const mean = i % 3 == 0 ? 3.5F : i % 3 == 1 ? 20.0F : 0.25F;
        Ran3State const before = random_state.ran3;
        long idum = 1;
        int const with_history = poidev(mean, &idum);
        random_state = RandomState{before, PoissonState()};
        EXPECT_EQ(with_history, poidev(mean, &idum));
    }
}

TEST(Poidev, MeanZeroGivesZeroWithOneDraw) {
    FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(std::vector<int>{0}, poisson_sequence(0.0F, 1));
    EXPECT_EQ(1, draws_since(before));
}

TEST(Poidev, MeanThatIsNoFiniteNumberEndsAtOnce) {
    FreshProcess fresh;
    EXPECT_EQ(std::vector<int>{0}, poisson_sequence(std::numeric_limits<float>::quiet_NaN(), 1));
    EXPECT_EQ(std::vector<int>{0}, poisson_sequence(std::numeric_limits<float>::infinity(), 1));
    EXPECT_LE(0, poisson_sequence(1e30F, 1)[0]) << "held at the largest int";
}

TEST(Geometric, FollowsTheReference) {
    std::vector<double> const expected = {0, 9, 0, 1, 1, 0, 3, 0, 3, 0, 2, 1, 4, 3, 1, 0, 4, 1, 1, 1};
    expect_sequence(expected, 20, [] { return static_cast<double>(geometric(0.7)); });
}

TEST(Geometric, ProbabilityZeroOrOneLeavesTheStreamAlone) {
    FreshProcess fresh;
    Ran3State const before = random_state.ran3;
    EXPECT_EQ(0, geometric(1.0));
    EXPECT_EQ(0, geometric(0.0));
    EXPECT_EQ(0, geometric(9e-11));
    EXPECT_EQ(0, draws_since(before));
}

TEST(Geometric, AUniformOfZeroIsHeldAtTheLargestInt) {
    FreshProcess fresh;
    random_state.ran3.ma.fill(0);
    EXPECT_EQ(std::numeric_limits<int>::max(), geometric(0.5));
}

TEST(Expdev, TruncatesTheQuotientOfLogarithms) {
    FreshProcess fresh;
    // u = 0.715119168: ln(0.284880832) / ln(0.7) = 3.52
    EXPECT_EQ(3, expdev(0.3));
}
