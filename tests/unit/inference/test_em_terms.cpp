// The EM over flat arrays: single steps by hand, a direct evaluation of the likelihood, the rise of the likelihood.
#include "inference/formula/em_terms.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "support/fresh_process.h"

using namespace tov;

namespace {

// Genotypes of two haplotypes each, over two biallelic loci: haplotypes 0 = AB, 1 = Ab, 2 = aB, 3 = ab.
EmData two_locus_data() {
    EmData data;
    data.clear(4);
    data.add_phenotype(6, true);
    data.add_pair(0, 0);
    data.add_phenotype(9, false);
    data.add_pair(0, 3);
    data.add_pair(1, 2);
    data.add_phenotype(3, false);
    data.add_pair(0, 1);
    data.add_phenotype(2, true);
    data.add_pair(2, 2);
    return data;
}

EmWork work_at(EmData const& data, std::vector<double> freq) {
    EmWork work;
    work.freq = std::move(freq);
    work.gain.assign(data.blank.size(), 0.0);
    work.ibd.assign(data.blank.size(), 0.0);
    work.prob.assign(data.pairs.size(), 0.0);
    work.phen_proba.assign(data.count.size(), 0.0);
    return work;
}

// Random phenotypes with 1 to 8 genotypes over `haplotypes` haplotypes.
EmData random_phenotypes(std::mt19937& engine, int haplotypes, bool with_equal_pairs) {
    EmData data;
    data.clear(haplotypes);
    std::uniform_int_distribution<int> any(0, haplotypes - 1);
    std::uniform_int_distribution<int> number(1, 8);
    for (int i = 0; i < 40; ++i) {
        if (i % 5 == 0) {
            int const h = any(engine);
            data.add_phenotype(number(engine), true);
            data.add_pair(h, h);
            continue;
        }
        data.add_phenotype(number(engine), false);
        for (int g = number(engine); g > 0; --g) {
            int const a = any(engine);
            int b = any(engine);
            if (a == b && !with_equal_pairs) b = (b + 1) % haplotypes;
            data.add_pair(a, b);
        }
    }
    return data;
}

// ln likelihood of frequencies, straight from the definition of the model.
double direct_ln_likelihood(EmData const& data, std::vector<double> const& f, double F) {
    double sum = 0.0;
    for (int i = 0; i < data.phenotypes(); ++i) {
        double proba = 0.0;
        for (int g = i ? data.end[static_cast<std::size_t>(i) - 1] : 0; g < data.end[static_cast<std::size_t>(i)];
             ++g) {
            HaplotypePair const pair = data.pairs[static_cast<std::size_t>(g)];
            double const p = f[static_cast<std::size_t>(pair.first)];
            double const q = f[static_cast<std::size_t>(pair.second)];
            proba += pair.first == pair.second ? (1 - F) * p * p + F * p : 2 * (1 - F) * p * q;
        }
        sum += data.count[static_cast<std::size_t>(i)] * std::log(proba);
    }
    return sum;
}

}  // namespace

TEST(EmIteration, SharesCopiesByTheProbabilitiesOfTheGenotypes) {
    EmData const data = two_locus_data();
    EmWork work = work_at(data, {0.4, 0.1, 0.2, 0.3});
    double const change = em_iteration(data, {}, work);
    // P(AB/ab) = 0.24, P(Ab/aB) = 0.04: the nine individuals count as 54/7 and 9/7.
    double const coupling = 9.0 * 0.24 / 0.28;
    double const repulsion = 9.0 * 0.04 / 0.28;
    std::vector<double> const expected = {(12 + coupling + 3) / 40, (repulsion + 3) / 40, (repulsion + 4) / 40,
                                          coupling / 40};
    std::vector<double> const before = {0.4, 0.1, 0.2, 0.3};
    double summed = 0.0;
    for (std::size_t h = 0; h < 4; ++h) {
        EXPECT_NEAR(work.freq[h], expected[h], 1e-15);
        summed += std::abs(expected[h] - before[h]);
    }
    EXPECT_NEAR(change, summed, 1e-14);
    EXPECT_DOUBLE_EQ(work.phen_proba[0], 0.4 * 0.4);
    EXPECT_NEAR(work.phen_proba[1], 0.28, 1e-15);
    EXPECT_DOUBLE_EQ(work.phen_proba[2], 2 * 0.4 * 0.1);
    EXPECT_DOUBLE_EQ(work.phen_proba[3], 0.2 * 0.2);
}

TEST(EmIteration, WithInbreedingTakesOutTheCopiesIdenticalByDescent) {
    EmData const data = two_locus_data();
    EmWork work = work_at(data, {0.4, 0.1, 0.2, 0.3});
    work.F = 0.25;
    em_iteration(data, {.inbreeding = true, .F = 0.25}, work);
    double const ibd_AB = 6 * 0.25 / (0.75 * 0.4 + 0.25);
    double const ibd_aB = 2 * 0.25 / (0.75 * 0.2 + 0.25);
    double const copies = 40 - ibd_AB - ibd_aB;
    double const coupling = 9.0 * 0.24 / 0.28;
    double const repulsion = 9.0 * 0.04 / 0.28;
    EXPECT_NEAR(work.freq[0], (12 + coupling + 3 - ibd_AB) / copies, 1e-15);
    EXPECT_NEAR(work.freq[1], (repulsion + 3) / copies, 1e-15);
    EXPECT_NEAR(work.freq[2], (repulsion + 4 - ibd_aB) / copies, 1e-15);
    EXPECT_NEAR(work.freq[3], coupling / copies, 1e-15);
    EXPECT_NEAR(work.phen_proba[0], 0.75 * 0.16 + 0.25 * 0.4, 1e-15);
    EXPECT_NEAR(work.phen_proba[1], 0.75 * 0.28, 1e-15);
    EXPECT_EQ(work.F, 0.25);
}

TEST(EmIteration, EstimatesTheInbreedingCoefficientAsTheShareIdenticalByDescent) {
    EmData const data = two_locus_data();
    EmWork work = work_at(data, {0.4, 0.1, 0.2, 0.3});
    work.F = 0.25;
    em_iteration(data, {.inbreeding = true, .F = 0.0}, work);
    EXPECT_NEAR(work.F, (6 * 0.25 / (0.75 * 0.4 + 0.25) + 2 * 0.25 / (0.75 * 0.2 + 0.25)) / 20, 1e-15);
}

TEST(EmIteration, OneEntryAnIndividualEqualsOneMergedEntry) {
    EmData merged;
    merged.clear(2);
    merged.add_phenotype(3, true);
    merged.add_pair(0, 0);
    merged.add_phenotype(2, false);
    merged.add_pair(0, 1);
    EmData single;
    single.clear(2);
    for (int i = 0; i < 3; ++i) {
        single.add_phenotype(1, true);
        single.add_pair(0, 0);
    }
    for (int i = 0; i < 2; ++i) {
        single.add_phenotype(1, false);
        single.add_pair(0, 1);
    }
    EmWork a = work_at(merged, {0.6, 0.4});
    EmWork b = work_at(single, {0.6, 0.4});
    a.F = b.F = 0.2;
    EmOptions const options{.inbreeding = true, .F = 0.2};
    for (int i = 0; i < 5; ++i) {
        em_iteration(merged, options, a);
        em_iteration(single, options, b);
        EXPECT_NEAR(a.freq[0], b.freq[0], 1e-15);
        EXPECT_NEAR(a.freq[1], b.freq[1], 1e-15);
        EXPECT_NEAR(b.freq[0] + b.freq[1], 1.0, 1e-15);
    }
}

TEST(EmIteration, EqualHaplotypesOfAHiddenBlankHaveTheSquareAlone) {
    EmData data;
    data.clear(2);
    data.add_phenotype(4, false);
    data.add_pair(0, 0);
    data.add_pair(0, 1);
    EXPECT_TRUE(data.equal_pairs);
    EmWork work = work_at(data, {0.5, 0.5});
    em_iteration(data, {}, work);
    EXPECT_DOUBLE_EQ(work.prob[0], 0.25);
    EXPECT_DOUBLE_EQ(work.prob[1], 0.5);
    EXPECT_NEAR(work.freq[0], (4.0 / 3 * 2 + 8.0 / 3) / 8, 1e-15);
    EXPECT_NEAR(work.freq[1], (8.0 / 3) / 8, 1e-15);
}

TEST(EmIteration, APhenotypeWithoutGenotypesGivesNothing) {
    EmData data;
    data.clear(1);
    data.add_phenotype(2, false);
    data.add_phenotype(3, true);
    data.add_pair(0, 0);
    EmWork work = work_at(data, {1.0});
    em_iteration(data, {}, work);
    EXPECT_DOUBLE_EQ(work.freq[0], 6.0 / 10.0);
    EXPECT_EQ(work.phen_proba[0], 0.0);
    EXPECT_EQ(em_ln_likelihood(data, work), impossible_ln_likelihood);
}

TEST(EmIteration, WithoutInbreedingTheLikelihoodNeverFallsAndEqualsItsDirectEvaluation) {
    test::FreshProcess fresh;
    std::mt19937 engine(7);
    for (int sample = 0; sample < 60; ++sample) {
        EmData const data = random_phenotypes(engine, 3 + sample % 17, sample % 2 == 1);
        EmWork work;
        em_start(data, {}, work);
        double last = impossible_ln_likelihood;
        for (int i = 0; i < 200; ++i) {
            double const direct = direct_ln_likelihood(data, work.freq, 0.0);
            double const change = em_iteration(data, {}, work);
            double const lnL = em_ln_likelihood(data, work);
            ASSERT_NEAR(lnL, direct, 1e-9 * std::abs(direct));
            ASSERT_GE(lnL, last - 1e-9) << "sample " << sample << ", iteration " << i;
            last = lnL;
            if (change == 0.0) break;
        }
    }
}

TEST(EmIteration, WithInbreedingTheLikelihoodEqualsItsDirectEvaluationAndFrequenciesSumToOne) {
    test::FreshProcess fresh;
    std::mt19937 engine(11);
    for (int sample = 0; sample < 30; ++sample) {
        EmData const data = random_phenotypes(engine, 3 + sample % 9, false);
        EmOptions const options{.inbreeding = true, .F = sample % 2 ? 0.3 : 0.0};
        EmWork work;
        em_start(data, options, work);
        for (int i = 0; i < 50; ++i) {
            std::vector<double> const before = work.freq;
            em_iteration(data, options, work);
            double const direct = direct_ln_likelihood(data, before, work.F);
            ASSERT_NEAR(em_ln_likelihood(data, work), direct, 1e-9 * std::abs(direct));
            double sum = 0.0;
            for (double const f : work.freq) sum += f;
            ASSERT_NEAR(sum, 1.0, 1e-12);
        }
    }
}

TEST(EmStart, DrawsOneNumberAHaplotypeWithoutBlankThenOneForTheInbreedingCoefficient) {
    test::FreshProcess fresh;
    EmData data;
    data.clear();
    EXPECT_EQ(data.add_haplotype(), 0);
    EXPECT_EQ(data.add_haplotype(true), 1);
    EXPECT_EQ(data.add_haplotype(), 2);
    EmWork work;
    Ran3State before = random_state.ran3;
    em_start(data, {}, work);
    EXPECT_EQ(test::draws_since(before), 2);
    // Numbers 2 and 3 of the sequence.
    double const weights[] = {1 + 1000 * 0.715119168, 1.0, 1 + 1000 * 0.033021107};
    double const sum = weights[0] + weights[1] + weights[2];
    for (std::size_t h = 0; h < 3; ++h) EXPECT_NEAR(work.freq[h], weights[h] / sum, 1e-12);
    EXPECT_EQ(work.F, 0.0);
    before = random_state.ran3;
    em_start(data, {.inbreeding = true}, work);
    EXPECT_EQ(test::draws_since(before), 3);
    EXPECT_GT(work.F, 0.0);
    EXPECT_LT(work.F, 1.0 / 3.0);
    before = random_state.ran3;
    em_start(data, {.inbreeding = true, .F = 0.1}, work);
    EXPECT_EQ(test::draws_since(before), 2);
    EXPECT_EQ(work.F, 0.1);
}

TEST(EmEstimate, AChangeEqualToEpsilonGoesOn) {
    test::FreshProcess fresh;
    EmData data;
    data.clear(1);
    data.add_phenotype(1, true);
    data.add_pair(0, 0);
    EmWork work;
    // One haplotype: its frequency is 1 from the start, so that every change is exactly 0.
    em_estimate(data, {.max_iterations = 9, .epsilon = 0.0}, work);
    EXPECT_EQ(work.iterations, std::vector<int>{9});
    em_estimate(data, {.max_iterations = 9, .epsilon = 1e-300}, work);
    EXPECT_EQ(work.iterations, std::vector<int>{1});
}

TEST(EmEstimate, AHomozygousSampleGivesItsFrequenciesAtOnce) {
    test::FreshProcess fresh;
    EmData data;
    data.clear(2);
    data.add_phenotype(3, true);
    data.add_pair(0, 0);
    data.add_phenotype(1, true);
    data.add_pair(1, 1);
    EmWork work;
    EmResult const result = em_estimate(data, {.starts = 3}, work);
    EXPECT_DOUBLE_EQ(work.best_freq[0], 0.75);
    EXPECT_DOUBLE_EQ(work.best_freq[1], 0.25);
    EXPECT_EQ(work.iterations, (std::vector<int>{2, 2, 2}));  // the second finds no change any more
    EXPECT_EQ(result.solutions, 1);
    EXPECT_NEAR(result.ln_likelihood, 6 * std::log(0.75) + 2 * std::log(0.25), 1e-12);
}

TEST(EmEstimate, NoStartCountsAsOneAndNoPhenotypeIsNoError) {
    test::FreshProcess fresh;
    EmData data;
    data.clear();
    EmWork work;
    EmResult const result = em_estimate(data, {.starts = 0}, work);
    EXPECT_EQ(work.iterations.size(), 1U);
    EXPECT_EQ(result.ln_likelihood, 0.0);
    EXPECT_EQ(result.solutions, 1);
}

TEST(EmEstimate, AnImpossibleSampleKeepsTheLastRun) {
    test::FreshProcess fresh;
    EmData data;
    data.clear(1);
    data.add_phenotype(2, false);
    data.add_phenotype(1, true);
    data.add_pair(0, 0);
    EmWork work;
    EmResult const result = em_estimate(data, {.starts = 2}, work);
    EXPECT_EQ(result.ln_likelihood, impossible_ln_likelihood);
    EXPECT_EQ(result.solutions, 1);
    EXPECT_DOUBLE_EQ(work.best_freq[0], 2.0 / 6.0);
}

TEST(EmEstimate, StopsBetweenTwoRuns) {
    test::FreshProcess fresh;
    EmData const data = two_locus_data();
    EmWork work;
    int asked = 0;
    EmResult const result = em_estimate(data, {.starts = 5}, work, [&asked] { return ++asked < 2; });
    EXPECT_TRUE(result.stopped);
    EXPECT_EQ(work.iterations.size(), 2U);
}

TEST(EmEstimate, KeepsTheBestOfSeveralMaxima) {
    test::FreshProcess fresh;
    // Two individuals, each AB/ab or Ab/aB and each a haplotype of its own: more than one maximum.
    EmData data;
    data.clear(4);
    data.add_phenotype(5, false);
    data.add_pair(0, 3);
    data.add_pair(1, 2);
    data.add_phenotype(1, true);
    data.add_pair(0, 0);
    EmWork work;
    EmResult const result = em_estimate(data, {.starts = 20, .epsilon = 1e-12}, work);
    EXPECT_GE(result.solutions, 2);
    double best = impossible_ln_likelihood;
    for (double const lnL : work.solutions) best = std::max(best, lnL);
    EXPECT_NEAR(result.ln_likelihood, best, same_solution);
    EXPECT_NEAR(direct_ln_likelihood(data, work.best_freq, 0.0), result.ln_likelihood, 1e-9);
    // Coupling: AB 7/12, ab 5/12.
    EXPECT_NEAR(work.best_freq[0], 7.0 / 12.0, 1e-6);
    EXPECT_NEAR(work.best_freq[3], 5.0 / 12.0, 1e-6);
}

// --- Runs of known lengths ---

namespace {

/// Haplotypes 0 = AB, 1 = ab, 2 = aB, 3 = Ab; phenotypes of unknown phase that no two entries share.
struct TwoLocusList : EmData {
    TwoLocusList() { clear(4); }
    void homozygotes(double n, int haplotype) {
        add_phenotype(n, true);
        add_pair(haplotype, haplotype);
    }
    void known_phase(double n, int first, int second) {
        add_phenotype(n, false);
        add_pair(first, second);
    }
    void double_heterozygotes(double n) {
        add_phenotype(n, false);
        add_pair(0, 1);
        add_pair(3, 2);
    }
};

TwoLocusList thirty_individuals() {
    TwoLocusList data;
    data.homozygotes(6, 0);
    data.double_heterozygotes(9);
    data.homozygotes(5, 1);
    data.known_phase(3, 0, 3);
    data.known_phase(2, 0, 2);
    data.known_phase(3, 3, 1);
    data.known_phase(2, 2, 1);
    return data;
}

TwoLocusList inbred_individuals() {
    TwoLocusList data;
    data.homozygotes(8, 0);
    data.homozygotes(8, 1);
    data.double_heterozygotes(4);
    data.known_phase(2, 0, 3);
    data.homozygotes(2, 3);
    data.known_phase(1, 2, 1);
    return data;
}

/// Haplotypes ABC abc aBc AbC abC ABc aBC Abc.
EmData three_locus_data() {
    EmData data;
    data.clear(8);
    auto const add = [&data](double n, bool homozygote, std::initializer_list<HaplotypePair> pairs) {
        data.add_phenotype(n, homozygote);
        for (HaplotypePair const& p : pairs) data.add_pair(p.first, p.second);
    };
    add(4, true, {{0, 0}});
    add(5, false, {{0, 1}, {3, 2}, {5, 4}, {7, 6}});
    add(3, false, {{5, 4}, {7, 6}, {0, 1}, {3, 2}});
    add(2, false, {{3, 6}, {0, 4}});
    add(3, true, {{1, 1}});
    add(3, false, {{0, 7}, {5, 3}});
    return data;
}

}  // namespace

TEST(EmEstimate, RunsHaveTheirKnownLengths) {
    struct Known {
        EmData data;
        EmOptions options;
        std::vector<int> iterations;
        double ln_likelihood;
        double F;
    };
    Known const cases[] = {
        {thirty_individuals(), {.starts = 3}, {12, 11, 11}, -54.8393399996, 0.0},
        {inbred_individuals(), {.starts = 3, .inbreeding = true}, {18, 20, 23}, -41.5280587819, 0.5445683782},
        {inbred_individuals(), {.starts = 3, .inbreeding = true, .F = 0.1}, {10, 9, 9}, -45.6257303160, 0.1}};
    for (Known const& known : cases) {
        test::FreshProcess fresh;
        EmWork work;
        EmResult const result = em_estimate(known.data, known.options, work);
        EXPECT_EQ(work.iterations, known.iterations);
        EXPECT_NEAR(result.ln_likelihood, known.ln_likelihood, 0.6e-10);
        EXPECT_NEAR(result.F, known.F, 0.6e-10);
    }
}

TEST(EmEstimate, RunsOfOneMaximumDifferByWhatIsLeftOfTheirConvergence) {
    test::FreshProcess fresh;
    EmData const data = three_locus_data();
    EmOptions const options;
    for (double const known : {-32.9803598672, -32.9803599080, -32.9803600666}) {
        EmWork work;
        em_start(data, options, work);
        for (int i = 0; i < options.max_iterations && !(em_iteration(data, options, work) < options.epsilon); ++i) {
        }
        EXPECT_NEAR(em_ln_likelihood(data, work), known, 0.6e-10);
    }
    fresh.reseed();
    EmWork work;
    EXPECT_EQ(em_estimate(data, {.starts = 3}, work).solutions, 1);
    EXPECT_EQ(em_estimate(data, {.starts = 1}, work).solutions, 1);
}

TEST(NoteSolution, TakesValuesOfAMillionthApartAsTwo) {
    std::vector<double> list;
    note_solution(list, -1.0);
    note_solution(list, -1.0 + 0.9e-6);
    EXPECT_EQ(list.size(), 1U);
    note_solution(list, -1.0 + 1.1e-6);
    EXPECT_EQ(list.size(), 2U);
    note_solution(list, -1.0 + 0.5e-6);
    EXPECT_EQ(list.size(), 2U);
}
