// Phenotypes and their list.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

#include "base/special.h"
#include "model_fixture.h"

namespace tov {
namespace {

using test::ModelData;
using test::Reports;
using test::text;

TEST(TPhenotype, PhaseDoesNotMatterForEquality) {
    ModelData data;
    EXPECT_TRUE(*data.phenotype("AB", "ab") == *data.phenotype("aB", "Ab"));
    EXPECT_EQ(data.phenotype("AB", "ab")->hash(), data.phenotype("aB", "Ab")->hash());
    EXPECT_FALSE(*data.phenotype("AB", "ab") == *data.phenotype("AB", "aB"));
    EXPECT_FALSE(*data.phenotype("AB", "ab") == *data.phenotype("A", "a"));
    TPhenotype empty;
    empty.set_obs_freq(2.0);
    auto const other = data.phenotype("A", "A", 2.0);
    EXPECT_TRUE(empty == *other);  // without chromosomes the counts are compared
    EXPECT_FALSE(*other == empty);
}

TEST(TPhenotype, ChromosomesFromTexts) {
    ModelData data;
    TPhenotype p;
    p.set_obs_freq(3.0);
    p.allele_string(0) = my_string("101 99");
    p.allele_string(1) = my_string("101  97");
    p.build_pseudo_hapl1(data.db, ' ', 0, p.obs_count());
    p.build_pseudo_hapl1(data.db, ' ', 1, p.obs_count());
    EXPECT_EQ(p.pheno_length(), 2);
    EXPECT_EQ(p.pseudo_hapl0(0), p.pseudo_hapl1(0));
    EXPECT_EQ(p.pseudo_hapl0(0)->freq(), 6.0);
    EXPECT_EQ(p.pseudo_hapl1(1)->name(), "97");
    EXPECT_EQ(p.count_hetero_loci(), 1);
    EXPECT_EQ(p.ps_hapl0()->separator(), ' ');
    p.build_pseudo_hapl1(data.db, ' ', 0, 0.0);
    EXPECT_EQ(p.pheno_length(), 2);
    p.allele_string(0) = my_string("ACG");
    p.build_pseudo_hapl0(data.db, 0, 1.0);
    EXPECT_EQ(text(*p.ps_hapl0()), "ACG");
}

TEST(TPhenotype, ProbabilityUnderLinkageEquilibrium) {
    ModelData data;
    auto const p = data.phenotype("AB", "Ab");
    data.db(0, my_string("A"))->set_freq(0.5);
    data.db(1, my_string("B"))->set_freq(0.2);
    data.db(1, my_string("b"))->set_freq(0.3);
    EXPECT_DOUBLE_EQ(p->link_equil_pheno_prob(), 0.5 * 0.5 * 2 * 0.2 * 0.3);
    data.db(1, my_string("b"))->selected = 0;
    EXPECT_DOUBLE_EQ(p->link_equil_pheno_prob(), 0.25);
    EXPECT_EQ(Reports::codes(), std::vector<int>{115});
}

TEST(TPhenotype, CopiesHaveNoGenotypes) {
    ModelData data;
    TPopHaploDB pool;
    auto const p = data.phenotype("AB", "ab", 3.0);
    p->build_genotypes(pool, &data.db, 0, false);
    TPhenotype const copy(*p);
    EXPECT_EQ(copy.genot_real_count(), 0);
    EXPECT_EQ(copy.obs_count(), 3.0);
    EXPECT_EQ(text(*copy.ps_hapl1()), "ab");
    EXPECT_NE(copy.ps_hapl1(), p->ps_hapl1());
}

TEST(TPhenotype, WalkOfGenotypesRewinds) {
    ModelData data;
    TPopHaploDB pool;
    auto const p = data.phenotype("AB", "ab");
    p->build_genotypes(pool, &data.db, 0, false);
    p->getIterator();
    int n = 0;
    while (p->nextGen()) ++n;
    EXPECT_EQ(n, 2);
    EXPECT_EQ(p->nextGen(), nullptr);
    p->getIterator();
    EXPECT_EQ(p->nextGen(), &p->genotype(0));
}

TEST(TPhenDB, OneRoundOfEMByHand) {
    // AB/ab x 2 (AB ab or Ab aB), AB/AB x 2; all four frequencies 1/4.
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AB", "ab", 2.0}, {"AB", "AB", 2.0}});
    TPopHaploDB pool;
    list.build_all_genotypes(pool, &data.db, 0);
    EXPECT_EQ(test::texts(pool), (std::vector<std::string>{"ab", "AB", "aB", "Ab"}));
    for (int i = 0; i < 4; ++i) pool.haplotype(i).set_freq(0.25);
    list.update_genotypes();
    EXPECT_DOUBLE_EQ(list.phenotype(0).phen_proba(), 2 * 2.0 / 16);
    EXPECT_DOUBLE_EQ(list.phenotype(1).phen_proba(), 1.0 / 16);
    EXPECT_DOUBLE_EQ(list.calc_ln_likelihood(), 2 * std::log(0.25) + 2 * std::log(1.0 / 16));
    EXPECT_DOUBLE_EQ(list.ln_likelihood, 2 * std::log(0.25) + 2 * std::log(1.0 / 16));
    list.convert_freq_to_real();
    EXPECT_DOUBLE_EQ(list.phenotype(0).rel_freq(), 0.5);
    list.update_hapl_freq(pool);
    EXPECT_DOUBLE_EQ(pool.haplotype(0).freq(), 1.0);
    EXPECT_DOUBLE_EQ(pool.haplotype(1).freq(), 1.0 + 4.0);
    EXPECT_DOUBLE_EQ(pool.haplotype(2).freq(), 1.0);
}

TEST(TPhenDB, OneImpossiblePhenotypeMakesTheLikelihoodImpossible) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "A", 2.0}, {"B", "B", 1.0}});
    list.phenotype(0).set_phen_proba(0.5);
    list.phenotype(1).set_phen_proba(0.0);
    EXPECT_EQ(list.calc_ln_likelihood(), -3.4028234663852886e+38);
    EXPECT_EQ(list.ln_likelihood, -3.4028234663852886e+38);
    data.db(0, my_string("A"))->set_freq(1.0);
    data.db(0, my_string("B"))->set_freq(0.0);
    EXPECT_EQ(list.link_equil_ln_likelihood(), -3.4028234663852886e+38);
}

TEST(TPhenDB, LinkageEquilibriumLikelihoodOfTheReferenceList) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AB", "AB", 6},
                     {"AB", "ab", 9},
                     {"ab", "ab", 5},
                     {"AB", "Ab", 3},
                     {"AB", "aB", 2},
                     {"Ab", "ab", 3},
                     {"aB", "ab", 2}});
    double const n = 60.0;
    data.db(0, my_string("A"))->set_freq((12 + 9 + 6 + 2 + 3) / n);
    data.db(0, my_string("a"))->set_freq((9 + 10 + 2 + 3 + 4) / n);
    data.db(1, my_string("B"))->set_freq((12 + 9 + 3 + 4 + 2) / n);
    data.db(1, my_string("b"))->set_freq((9 + 10 + 3 + 6 + 2) / n);
    EXPECT_NEAR(list.link_equil_ln_likelihood(), -63.6361083367, 1e-9);
    EXPECT_EQ(list.nb_individuals(), 30);
    EXPECT_EQ(list.get_num_of_deg_freed(), 1);
    EXPECT_EQ(list.num_loci(), 2);
}

TEST(TPhenDB, LogOfTheMultinomialCoefficientOfTruncatedCounts) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "A", 3.9}, {"A", "B", 2.0}});
    EXPECT_NEAR(list.calc_ln_multinom(), std::log(10.0), 1e-9);
    TPhenDB huge;
    data.fill(huge, {{"A", "A", 2e9}, {"A", "B", 2e9}});
    EXPECT_DOUBLE_EQ(huge.calc_ln_multinom(), factln(2147483647) - 2.0 * factln(2000000000))
        << "held at the largest int";
}

TEST(TPhenDB, MergingKeepsTheFirstOfEachClass) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AB", "ab", 1}, {"AA", "AA", 2}, {"aB", "Ab", 3}, {"AA", "AA", 4}, {"BB", "BB", 1}});
    list.convert_freq_to_real();
    list.check_pheno_redundancy();
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl0()), "AB");
    EXPECT_EQ(list.phenotype(0).obs_count(), 4.0);
    EXPECT_DOUBLE_EQ(list.phenotype(0).rel_freq(), 4.0 / 11.0);
    EXPECT_EQ(list.phenotype(1).obs_count(), 6.0);
    EXPECT_EQ(list.phenotype(2).obs_count(), 1.0);
}

TEST(TPhenDB, PhenotypesWithoutChromosomesMergeByCount) {
    TPhenDB list;
    for (double const n : {2.0, 1.0, 2.0, 4.0}) {
        auto p = std::make_unique<TPhenotype>();
        p->set_obs_freq(n);
        list.Add(p.release());
    }
    list.check_pheno_redundancy();
    ASSERT_EQ(list.size(), 2);  // 2 and 2 make 4, which equals the last one
    EXPECT_EQ(list.phenotype(0).obs_count(), 8.0);
    EXPECT_EQ(list.phenotype(1).obs_count(), 1.0);
}

TEST(TPhenDB, ExpansionGivesOneEntryAnIndividual) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "A", 3.0}, {"A", "B", 1.0}, {"B", "B", 2.0}});
    list.phenotype(0).set_rel_freq(0.3);
    list.explode_base();
    ASSERT_EQ(list.size(), 6);
    for (TPhenotype const* const p : list.view()) EXPECT_EQ(p->obs_count(), 1.0);
    EXPECT_DOUBLE_EQ(list.phenotype(0).rel_freq(), 0.1);
    std::string order;
    for (TPhenotype const* const p : list.view()) order += text(*p->ps_hapl0()) + text(*p->ps_hapl1()) + ' ';
    EXPECT_EQ(order, "AA AB BB AA AA BB ");
    EXPECT_DOUBLE_EQ(list.phenotype(4).rel_freq(), 0.1);
    EXPECT_TRUE(Reports::codes().empty());
}

TEST(TPhenDB, MoreIndividualsThanMemoryHoldsEndTheRun) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "a", 2147483647}, {"A", "A", 2147483647}});
    EXPECT_EQ(list.nb_individuals(), 2147483647);
    EXPECT_THROW(list.explode_base(), ExceptionType);
    EXPECT_EQ(list.size(), 2);
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 1.0);
    EXPECT_THROW(TPhenDB(most_individuals + 1, pool), ExceptionType);
    EXPECT_EQ(Reports::codes(), (std::vector<int>{0, 0}));
}

TEST(TPhenDB, ExpansionOfNobodyReports120) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "A", 0.4}});
    list.explode_base();
    EXPECT_EQ(Reports::codes(), std::vector<int>{120});
}

TEST(TPhenDB, RestrictedListsTakeTheChosenLoci) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"ABC", "abC", 3.0}});
    list.phenotype(0).count_hetero_loci();
    list.ln_likelihood = -5.0;
    int const loci[] = {2, 2, 0};
    TPhenDB temp;
    temp.create_temp_PhenDB(loci, list);
    EXPECT_EQ(text(*temp.phenotype(0).ps_hapl1()), "Ca");
    EXPECT_EQ(temp.phenotype(0).no_polym_loci(), 2);
    EXPECT_EQ(temp.phenotype(0).obs_count(), 3.0);
    EXPECT_EQ(temp.ln_likelihood, -5.0);
    int const flags[] = {0, 1, 1};
    temp.build_sub_PhenDB(flags, list);
    ASSERT_EQ(temp.size(), 1);
    EXPECT_EQ(text(*temp.phenotype(0).ps_hapl1()), "bC");
    EXPECT_EQ(temp.phenotype(0).no_polym_loci(), 0);
}

TEST(TPhenDB, PermutationShufflesTheFirstPositionAmongAllChromosomes) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AX", "BY", 1.0}, {"CX", "DY", 1.0}});
    int const loci[] = {1};
    long seed = 1;
    Ran3State const before = random_state.ran3;
    list.permute_alleles(loci, seed);
    EXPECT_EQ(test::draws_since(before), 4);
    // draws .715119168 .033021107 .874393600 .534194424: A B C D -> C B A D -> same -> D A swap (2,3) -> same
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl0()), "CX");
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl1()), "BY");
    EXPECT_EQ(text(*list.phenotype(1).ps_hapl0()), "DX");
    EXPECT_EQ(text(*list.phenotype(1).ps_hapl1()), "AY");
    EXPECT_TRUE(Reports::codes().empty());
}

TEST(TPhenDB, PermutationOfAWrongNumberOfLociReports118) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "B", 1.0}});
    int const none[] = {0};
    long seed = 1;
    Ran3State const before = random_state.ran3;
    list.permute_alleles(none, seed);
    EXPECT_EQ(Reports::codes(), std::vector<int>{118});
    EXPECT_EQ(test::draws_since(before), 0);
    int const three[] = {3};
    list.permute_alleles(three, seed);
    EXPECT_EQ(Reports::codes(), (std::vector<int>{118, 118}));
    EXPECT_EQ(test::draws_since(before), 2);
}

TEST(HardyWeinbergStatistic, ReferenceTable) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"0", "0", 5}, {"0", "1", 3}, {"1", "1", 4}, {"0", "2", 6}, {"1", "2", 2}, {"2", "2", 5}});
    int df = -1;
    EXPECT_NEAR(list.hw_chi_stat(&data.db, 0, '?', df), 6.52301276313, 1e-10);
    EXPECT_EQ(df, 3);
}

TEST(HardyWeinbergStatistic, EqualPhenotypesOfSeveralEntriesCountAsOneGenotype) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"0", "0", 2},
                     {"0", "0", 3},
                     {"0", "1", 1},
                     {"1", "0", 2},
                     {"1", "1", 4},
                     {"0", "2", 6},
                     {"2", "1", 2},
                     {"2", "2", 5},
                     {"?", "2", 9},
                     {"?", "?", 2}});
    int df = -1;
    EXPECT_NEAR(list.hw_chi_stat(&data.db, 0, '?', df), 6.52301276313, 1e-10);
    EXPECT_EQ(df, 3);
}

TEST(HardyWeinbergStatistic, OneAlleleGivesZeroAndNoDegree) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "A", 7.0}});
    int df = -1;
    EXPECT_EQ(list.hw_chi_stat(&data.db, 0, '?', df), 0.0);
    EXPECT_EQ(df, 0);
    TPhenDB const none;
    EXPECT_EQ(none.hw_chi_stat(&data.db, 0, '?', df), 0.0);
}

TEST(HardyWeinbergStatistic, ExactProportionsGiveZero) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "A", 1.0}, {"A", "B", 2.0}, {"B", "B", 1.0}});
    int df = -1;
    EXPECT_NEAR(list.hw_chi_stat(&data.db, 0, '?', df), 0.0, 1e-12);
    EXPECT_EQ(df, 1);
}

TEST(HardyWeinbergStatistic, MoreThanOneLocusReports118) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AB", "AB", 1.0}});
    int df = -1;
    EXPECT_EQ(list.hw_chi_stat(&data.db, 0, '?', df), -1000.0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{118});
    EXPECT_EQ(Reports::origins().back(), "TPhenDB::hw_chi_stat()");
}

TEST(TPhenDB, DegreesOfFreedomOfShortPhenotypesAreZero) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AX", "BY", 1.0}, {"CX", "AZ", 1.0}});
    EXPECT_EQ(list.get_num_of_deg_freed(), 2 * 2);
    data.fill(list, {{"A", "B", 1.0}});
    EXPECT_EQ(list.get_num_of_deg_freed(), 0);
}

TEST(TPhenDB, RandomListDrawsTwoHaplotypesAnIndividual) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.5);
    pool.insert(data.haplotype("B"), 0.5);
    Ran3State const before = random_state.ran3;
    TPhenDB const list(2, pool);
    EXPECT_EQ(test::draws_since(before), 4);
    ASSERT_EQ(list.size(), 2);  // draws .7151 .0330 .8744 .5342
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl0()), "B");
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl1()), "A");
    EXPECT_EQ(text(*list.phenotype(1).ps_hapl0()), "B");
    EXPECT_EQ(list.phenotype(1).name(), "1");
    EXPECT_EQ(list.phenotype(1).obs_count(), 1.0);
}

TEST(TPhenDB, RandomListRepeatsAFailedDrawAndGivesUpAfterAHundred) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.5);
    TPhenDB const list(2, pool);
    EXPECT_EQ(list.size(), 2);
    EXPECT_FALSE(Reports::codes().empty());
    EXPECT_EQ(Reports::codes().front(), 116);
    Reports::codes().clear();
    TPopHaploDB const nothing;
    EXPECT_EQ(TPhenDB(5, nothing).size(), 0);
    EXPECT_EQ(Reports::codes().size(), 101U);
}

TEST(TPhenDB, ResamplingDrawsFourAllelesAnIndividual) {
    ModelData data;
    data.haplotype("00");
    TPopHaploDB locus1;
    TPopHaploDB locus2;
    TPopHaplotype const ax = data.haplotype("AX");
    TPopHaplotype const by = data.haplotype("BY");
    int const first[] = {1, 0};
    int const second[] = {1, 1};
    TPopHaplotype one;
    for (TPopHaplotype const* const h : {&ax, &by}) {
        one.copy_restricted_hapl(first, *h);
        locus1.insert(one, 0.5);
        one.copy_restricted_hapl(second, *h);
        locus2.insert(one, 0.5);
    }
    TPhenDB list;
    data.fill(list, {{"A", "A", 1.0}});
    long seed = 1;
    list.resample(2, locus1, locus2, seed, &data.db);
    ASSERT_EQ(list.size(), 2);  // draws .7151 .0330 .8744 .5342 | .6316 .8910 .2575 .9316
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl0()), "BX");
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl1()), "BY");
    EXPECT_EQ(text(*list.phenotype(1).ps_hapl0()), "BY");
    EXPECT_EQ(text(*list.phenotype(1).ps_hapl1()), "AY");
    EXPECT_EQ(list.phenotype(1).ps_hapl0()->name(), "2");
    EXPECT_EQ(list.phenotype(1).ps_hapl1()->name(), "3");
    EXPECT_DOUBLE_EQ(list.phenotype(0).rel_freq(), 0.5);
    EXPECT_EQ(list.phenotype(0).no_polym_loci(), 2);
}

TEST(TPhenDB, ResamplingPairsMissingAllelesOfTheFirstLocus) {
    ModelData data;
    data.haplotype("0X");
    TPopHaploDB locus1;
    TPopHaploDB locus2;
    int const first[] = {1, 0};
    int const second[] = {1, 1};
    TPopHaplotype one;
    one.copy_restricted_hapl(first, data.haplotype("AX"));
    locus1.insert(one, 0.5);
    one.copy_restricted_hapl(first, data.haplotype("0X"));
    locus1.insert(one, 0.5);
    one.copy_restricted_hapl(second, data.haplotype("0X"));
    locus2.insert(one, 1.0);
    TPhenDB list;
    long seed = 1;
    list.resample(2, locus1, locus2, seed, &data.db);
    // draws a1 .7151 (missing), b1 .8744 (missing) | a1 .6316 (missing), b1 .2575 (A)
    EXPECT_EQ(text(*list.phenotype(0).ps_hapl0()), "0X");
    EXPECT_EQ(text(*list.phenotype(1).ps_hapl0()), "AX");
    EXPECT_EQ(text(*list.phenotype(1).ps_hapl1()), "AX");
}

TEST(TPhenDB, ResamplingRefusesFrequenciesThatDoNotSumToOne) {
    ModelData data;
    TPopHaploDB locus1;
    locus1.insert(data.haplotype("A"), 0.9);
    TPhenDB list;
    data.fill(list, {{"A", "A", 1.0}});
    long seed = 1;
    list.resample(3, locus1, locus1, seed, &data.db);
    EXPECT_EQ(list.size(), 0);
    EXPECT_NE(data.process.log().find("     TPhenDB::resample:  summ of freqs is not 1"), std::string::npos);
    data.fill(list, {{"A", "A", 1.0}});
    Ran3State const before = random_state.ran3;
    list.resample(3, locus1, seed, &data.db);
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(test::draws_since(before), 0);
}

TEST(PhaseScore, SharesOfIndividualsWithTheTruePhase) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AB", "ab", 2.0}, {"AB", "AB", 1.0}, {"Ab", "aB", 1.0}});
    TPopHaploDB pool;
    list.build_all_genotypes(pool, &data.db, 0);
    for (TPopHaplotype* const h : pool.view()) h->set_freq(text(*h) == "AB" || text(*h) == "ab" ? 0.4 : 0.1);
    list.update_genotypes();
    std::ostringstream os;
    EXPECT_DOUBLE_EQ(list.percent_correct_gametic_phase(os), 3.0 / 4.0);
    EXPECT_EQ(list.multi_heterozygotes, 3);
    EXPECT_EQ(list.correct_phases, 2);
    EXPECT_EQ(os.str(),
              "Phenotype : 1 (freq: 2)\n\tCorrect genotype      : \t0.94118\t[AB] & [ab]\n"
              "\tMost likely genotype  : \t0.94118\t[AB] & [ab]\tPhase OK\n"
              "Phenotype : 2 (freq: 1)\n\tCorrect genotype      : \t1\t[AB] & [AB]\n"
              "\tMost likely genotype  : \t1\t[AB] & [AB]\tPhase OK\n"
              "Phenotype : 3 (freq: 1)\n\tCorrect genotype      : \t0.058824\t[Ab] & [aB]\n"
              "\tMost likely genotype  : \t0.94118\t[AB] & [ab]\tBad phase\n");
}

TEST(IdentityCoefficient, ComparesTrueAndEstimatedFrequencies) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"AB", "ab", 1.0}, {"AB", "Ab", 1.0}});  // truth AB 1/2, ab 1/4, Ab 1/4
    TPopHaploDB estimated;
    estimated.insert(data.haplotype("AB"), 0.6);
    estimated.insert(data.haplotype("ab"), 0.3);
    estimated.insert(data.haplotype("aB"), 0.1);
    EXPECT_NEAR(list.compute_IF_coeff(&estimated), 1.0 - 0.5 * (0.1 + 0.05 + 0.25 + 0.1), 1e-12);
    EXPECT_DOUBLE_EQ(list.IF_coefficient, list.compute_IF_coeff(&estimated));
}

TEST(TPhenDB, GenotypeTableSortsByFallingProbabilityAndUsesTheListsInbreeding) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"Ab", "aB", 1.0}});
    list.phenotype(0).set_name(my_string("ind1"));
    TPopHaploDB pool;
    list.build_all_genotypes(pool, &data.db, 0);
    for (TPopHaplotype* const h : pool.view()) h->set_freq(text(*h) == "AB" || text(*h) == "ab" ? 0.4 : 0.1);
    list.F = 0.5;
    std::ostringstream os;
    list.printGenotypeFrequencies(os, 1.0);
    EXPECT_NEAR(list.phenotype(0).phen_proba(), 0.5 * 2 * (0.16 + 0.01), 1e-12);
    EXPECT_NE(os.str().find("\n================\nPhenotype #1\n================\n"
                            "Name    Abs. Freq. Rel. Freq.\n"
                            "ind1        1          0.170000\n"),
              std::string::npos)
        << os.str();
    EXPECT_NE(os.str().find("List of genotypes (    2)\n-------------------------\n"), std::string::npos);
    EXPECT_LT(os.str().find("    1\t    0.941176\t    0.160000"), os.str().find("    2\t    0.058824\t    0.010000"));
    auto const undefined = data.phenotype("A", "A");
    std::ostringstream none;
    undefined->printGenotypeFreqs(none, 0, 1.0);
    EXPECT_EQ(none.str(), "\nGenotypes are undefined for this phenotype...\n");
}

TEST(TPhenDB, DetailedListPrintsBothHaplotypesOfEachGenotype) {
    ModelData data;
    TPhenDB list;
    data.fill(list, {{"A", "B", 1.0}});
    TPopHaploDB pool;
    list.build_all_genotypes(pool, &data.db, 0);
    for (TPopHaplotype* const h : pool.view()) h->set_freq(0.5);
    list.update_genotypes();
    std::ostringstream os;
    list.print_all_genotypes(os);
    EXPECT_EQ(os.str(),
              "\n\nList of detailed genotypes\n==========================\n\n"
              "0          0.500\n1.00000       A\n               B\n");
}

TEST(TGenotype, PrintsItsShareOfATotalAndBothHaplotypes) {
    ModelData data;
    TPopHaplotype first = data.haplotype("AB");
    TPopHaplotype second = data.haplotype("ab");
    first.set_separator(' ');
    second.set_separator(' ');
    TGenotype g(&first, &second);
    g.set_prob(0.125);
    std::ostringstream os;
    g.print_genot(os, 0.5);
    EXPECT_EQ(os.str(), "0.25000       A B \n               a b \n");
    os.str("");
    g.print_genot(os, 0.0);
    EXPECT_EQ(os.str(), "0.00000       A B \n               a b \n");
}

TEST(TPhenotype, PrintsItsProbabilityAndTheSharesOfItsGenotypes) {
    // AB/ab or Ab/aB with frequencies 0.4 0.3 0.2 0.1: 2 (0.12 + 0.02) = 0.28, of which 6/7 and 1/7.
    ModelData data;
    auto const p = data.phenotype("AB", "ab");
    p->set_name("one & only");
    TPopHaploDB pool;
    p->build_genotypes(pool, &data.db, 0, false);
    for (TPopHaplotype* const h : pool.view()) {
        std::string const alleles = text(*h);
        h->set_freq(alleles == "AB" ? 0.4 : alleles == "ab" ? 0.3 : alleles == "Ab" ? 0.2 : 0.1);
    }
    p->update_gen_prob();
    std::ostringstream os;
    p->print_detailed_genotypes(os);
    std::string const printed = os.str();
    EXPECT_TRUE(printed.starts_with("one &amp; only          0.280\n")) << printed;
    EXPECT_NE(printed.find("0.85714       "), std::string::npos) << printed;
    EXPECT_NE(printed.find("0.14286       "), std::string::npos) << printed;
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 5);
}

TEST(TPhenotype, GivesItsCountToTheHaplotypesByTheSharesOfItsGenotypes) {
    // The same phenotype, 14 times: 12 of AB and ab each, 2 of Ab and aB each, on top of what the haplotypes have.
    ModelData data;
    auto const p = data.phenotype("AB", "ab", 14.0);
    TPopHaploDB pool;
    p->build_genotypes(pool, &data.db, 0, false);
    std::map<std::string, double> frequency{{"AB", 0.4}, {"ab", 0.3}, {"Ab", 0.2}, {"aB", 0.1}};
    for (TPopHaplotype* const h : pool.view()) h->set_freq(frequency.at(text(*h)));
    p->update_gen_prob();
    p->update_hapl_freq_in_genotypes();
    std::map<std::string, double> const gained{{"AB", 12.0}, {"ab", 12.0}, {"Ab", 2.0}, {"aB", 2.0}};
    ASSERT_EQ(pool.nb_haplotypes(), 4);
    for (TPopHaplotype const* const h : pool.view()) {
        EXPECT_NEAR(h->freq(), frequency.at(text(*h)) + gained.at(text(*h)), 1e-12) << text(*h);
    }
    // A homozygote gives twice its count.
    auto const same = data.phenotype("AB", "AB", 3.0);
    TPopHaploDB one;
    same->build_genotypes(one, &data.db, 0, false);
    one.haplotype(0).set_freq(0.5);
    same->update_gen_prob();
    one.reset_freq();
    same->update_hapl_freq_in_genotypes();
    EXPECT_DOUBLE_EQ(one.haplotype(0).freq(), 6.0);
}

TEST(TPhenotype, PrintsNameCountAndChromosomes) {
    ModelData data;
    auto const p = data.phenotype("AB", "ab", 3.0);
    p->set_name("a<b");
    std::ostringstream os;
    os << *p;
    EXPECT_EQ(os.str(), "a&lt;b\t3\tAB\n\tab\n");
}

TEST(TPhenotype, ChromosomesAreReplacedByCopies) {
    ModelData data;
    auto const p = data.phenotype("AB", "ab");
    {
        TPopHaplotype const other = data.haplotype("XY", 0.25);
        p->set_pseudo_hapl(other, 0);
        EXPECT_NE(p->ps_hapl0(), &other);
    }
    EXPECT_EQ(text(*p->ps_hapl0()), "XY");
    EXPECT_EQ(p->ps_hapl0()->freq(), 0.25);
    EXPECT_EQ(text(*p->ps_hapl1()), "ab");
    p->set_pseudo_hapl(data.haplotype("Zb"), 1);
    EXPECT_EQ(text(*p->ps_hapl1()), "Zb");
    p->set_pseudo_hapl0(data.db(1, my_string("b")), 1);
    EXPECT_EQ(text(*p->ps_hapl0()), "Xb");
    EXPECT_EQ(text(*p->ps_hapl1()), "Zb");
    p->delete_pheno();
    p->set_pseudo_hapl0(data.db(1, my_string("b")), 1);
    EXPECT_EQ(p->ps_hapl0(), nullptr) << "no chromosome, nothing to set";
}

}  // namespace
}  // namespace tov
