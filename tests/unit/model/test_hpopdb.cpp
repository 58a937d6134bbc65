// Working pools of haplotypes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "model_fixture.h"

namespace tov {
namespace {

using test::ModelData;
using test::Reports;
using test::texts;

TEST(TPopHaploDB, InsertAddsToTheEqualHaplotype) {
    ModelData data;
    TPopHaploDB pool;
    TPopHaplotype* const first = pool.insert(data.haplotype("AB"), 1.0);
    EXPECT_EQ(pool.insert(data.haplotype("ab"), 2.0)->freq(), 2.0);
    EXPECT_EQ(pool.insert(data.haplotype("AB"), 0.5), first);
    EXPECT_DOUBLE_EQ(first->freq(), 1.5);
    EXPECT_EQ(pool.nb_haplotypes(), 2);
    EXPECT_EQ(pool.find(data.haplotype("ab")), &pool.haplotype(1));
    EXPECT_EQ(pool.find(data.haplotype("aB")), nullptr);
}

TEST(TPopHaploDB, ThousandsOfHaplotypesKeepTheOrderOfAScan) {
    ModelData data;
    TPopHaploDB pool;
    std::vector<std::string> order;
    for (int i = 0; i < 4096; ++i) {
        std::string name;
        for (int b = 0; b < 12; ++b) name += (i * 2654435761U >> (20 - b) & 1U) ? 'A' : 'a';
        if (std::find(order.begin(), order.end(), name) == order.end()) order.push_back(name);
        pool.insert(data.haplotype(name), 1.0);
    }
    EXPECT_EQ(texts(pool), order);
    for (std::size_t i = 0; i < order.size(); i += 97) {
        EXPECT_EQ(pool.find(data.haplotype(order[i])), &pool.haplotype(static_cast<int>(i)));
    }
}

TEST(TPopHaploDB, LookUpSurvivesRemovalAndCopies) {
    ModelData data;
    TPopHaploDB pool;
    for (char const* const h : {"AA", "AB", "BA", "BB"}) pool.insert(data.haplotype(h), 1.0);
    pool.Detach(1);
    EXPECT_EQ(pool.find(data.haplotype("AB")), nullptr);
    EXPECT_EQ(pool.find(data.haplotype("BB")), &pool.haplotype(2));
    TPopHaploDB copy(pool);
    EXPECT_EQ(copy.find(data.haplotype("BA")), &copy.haplotype(1));
    EXPECT_NE(&copy.haplotype(1), &pool.haplotype(1));
    copy.Destroy(0);
    EXPECT_EQ(copy.find(data.haplotype("AA")), nullptr);
    EXPECT_EQ(copy.find(data.haplotype("BA")), &copy.haplotype(0));
    EXPECT_EQ(texts(copy), (std::vector<std::string>{"BA", "BB"}));
    pool.haplotype(0).set_freq(5.0);
    pool.cleanDB(2.0);
    EXPECT_EQ(texts(pool), std::vector<std::string>{"AA"});
    pool.empty();
    EXPECT_EQ(pool.nb_haplotypes(), 0);
    TPopHaplotype const* const anew = pool.insert(data.haplotype("BB"), 1.0);
    EXPECT_EQ(anew, &pool.haplotype(0));
}

TEST(TPopHaploDB, PrintsItsHaplotypesWithTheirFrequencies) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("AB"), 0.25);
    pool.insert(data.haplotype("ab"), 0.75);
    std::ostringstream os;
    os << pool;
    EXPECT_EQ(os.str(), "AB  0.25\nab  0.75\n\n");
}

TEST(TPopHaploDB, CleanWithTwoEmptiesAPoolOfFrequencies) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.7);
    pool.insert(data.haplotype("B"), 0.3);
    pool.cleanDB(2.0);
    EXPECT_EQ(pool.nb_haplotypes(), 0);
}

TEST(TPopHaploDB, ResetsFrequenciesAndCountsApart) {
    ModelData data;
    TPopHaploDB pool;
    for (std::string_view const alleles : {"AB", "Ab", "aB"}) {
        TPopHaplotype* const h = pool.insert(data.haplotype(alleles), 0.25);
        h->set_homo_freq(7);
    }
    pool.reset_freq();
    for (TPopHaplotype const* const h : pool.view()) {
        EXPECT_EQ(h->freq(), 0.0);
        EXPECT_EQ(h->homo_count(), 7);
        EXPECT_EQ(pool.find(*h), h);
    }
    pool.haplotype(1).set_freq(0.5);
    pool.reset_homo_count();
    for (TPopHaplotype const* const h : pool.view()) EXPECT_EQ(h->homo_count(), 0);
    EXPECT_EQ(pool.haplotype(1).freq(), 0.5);
}

TEST(TPopHaploDB, FlushedPoolFindsNothingAndFillsAnew) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("AB"), 0.5);
    pool.insert(data.haplotype("ab"), 0.5);
    pool.flush_haplotypes();
    EXPECT_EQ(pool.nb_haplotypes(), 0);
    EXPECT_EQ(pool.find(data.haplotype("AB")), nullptr);
    EXPECT_EQ(pool.insert(data.haplotype("ab"), 0.25)->freq(), 0.25) << "not added to the old one";
    EXPECT_EQ(texts(pool), std::vector<std::string>{"ab"});
}

TEST(TPopHaploDB, SelectionIsNullBeyondTheSum) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.25);
    pool.insert(data.haplotype("B"), 0.5);
    EXPECT_EQ(pool.select_haplotype(0.2), &pool.haplotype(0));
    EXPECT_EQ(pool.select_haplotype(0.25), &pool.haplotype(1));
    EXPECT_EQ(pool.select_haplotype(0.75), nullptr);
}

TEST(TPopHaploDB, RandomStartDividesWeightsBetweenOneAndRangePlusOne) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.0);
    pool.insert(data.haplotype("B"), 0.0);
    TPopHaplotype blank = data.haplotype("C");
    blank.set_blank(1);
    pool.insert(blank, 0.0);
    Ran3State const before = random_state.ran3;
    double const smallest = pool.assign_rand_init_freq(1000);
    EXPECT_EQ(test::draws_since(before), 2);
    double const a = 1.0 + 715.119168;
    double const b = 1.0 + 33.021107;
    EXPECT_NEAR(pool.haplotype(0).freq(), a / (a + b + 1.0), 1e-12);
    EXPECT_NEAR(pool.haplotype(1).old_freq(), b / (a + b + 1.0), 1e-12);
    EXPECT_NEAR(smallest, 1.0 / (a + b + 1.0), 1e-12);
}

TEST(TPopHaploDB, RandomStartOfBlanksAloneIsUniformWithoutDraws) {
    ModelData data;
    TPopHaploDB pool;
    for (char const* const name : {"A", "B", "C", "D"}) {
        TPopHaplotype h = data.haplotype(name);
        h.set_blank(1);
        pool.insert(h, 0.0);
    }
    Ran3State const before = random_state.ran3;
    EXPECT_DOUBLE_EQ(pool.assign_rand_init_freq(1000), 0.25);
    EXPECT_EQ(test::draws_since(before), 0);
    for (int i = 0; i < 4; ++i) EXPECT_DOUBLE_EQ(pool.haplotype(i).freq(), 0.25);
}

TEST(TPopHaploDB, ConvergenceIsStrictAndNotesTheFrequencies) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.5);
    EXPECT_FALSE(pool.convergence(0.5));
    EXPECT_DOUBLE_EQ(pool.haplotype(0).old_freq(), 0.5);
    EXPECT_TRUE(pool.convergence(1e-7));
}

TEST(TPopHaploDB, DeviationOfOneReplicateIsLeftAlone) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.5)->set_sd(3.0);
    pool.calc_sd(1);
    EXPECT_EQ(pool.haplotype(0).sd(), 3.0);
}

TEST(TPopHaploDB, DeviationOfFrequencyZeroRepeatsTheVarianceBefore) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("Z"), 0.0)->set_sd(9.0);
    TPopHaplotype* const a = pool.insert(data.haplotype("A"), 0.5);
    a->set_sum_freq(3.0);
    a->set_sd(5.0);  // two replicates, 1 and 2
    pool.insert(data.haplotype("B"), 0.0)->set_sd(7.0);
    pool.calc_sd(2);
    EXPECT_EQ(pool.haplotype(0).sd(), 0.0);
    EXPECT_DOUBLE_EQ(pool.haplotype(1).sd(), std::sqrt(0.5));
    EXPECT_DOUBLE_EQ(pool.haplotype(2).sd(), std::sqrt(0.5));
}

TEST(TPopHaploDB, BootstrapSumsTestTheOwnFrequency) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.5);
    pool.insert(data.haplotype("B"), 0.0);
    TPopHaploDB replicate;
    replicate.insert(data.haplotype("B"), 0.9);
    replicate.insert(data.haplotype("A"), 0.1);
    pool.sums_hapl_frequencies(replicate, 1e-7);
    EXPECT_DOUBLE_EQ(pool.haplotype(0).sum_freq(), 0.1);
    EXPECT_DOUBLE_EQ(pool.haplotype(0).sd(), 0.1 * 0.1);
    EXPECT_EQ(pool.haplotype(1).sum_freq(), 0.0);
}

TEST(TPopHaploDB, LinkageDisequilibriumAgainstAHandTable) {
    // pA = 0.5 (A: AB 0.4, Ab 0.1), pB = 0.6 (AB 0.4, aB 0.2).
    ModelData data;
    TPopHaploDB pool;
    for (auto const& [name, f] : {std::pair{"AB", 0.4}, {"Ab", 0.1}, {"aB", 0.2}, {"ab", 0.3}}) {
        pool.insert(data.haplotype(name), f);
    }
    EXPECT_EQ(pool.update_lk_equil(), 1);
    EXPECT_NEAR(pool.haplotype(0).lk_deseq(), 0.1, 1e-12);
    EXPECT_NEAR(pool.haplotype(0).st_deseq(), 0.1 / std::min(0.5 * 0.6, 0.5 * 0.4), 1e-12);
    EXPECT_NEAR(pool.haplotype(1).lk_deseq(), -0.1, 1e-12);
    EXPECT_NEAR(pool.haplotype(1).st_deseq(), -0.1 / std::min(0.5 * 0.4, 0.5 * 0.6), 1e-12);
}

TEST(TPopHaploDB, NoRangeOfDisequilibriumGivesStandardisedZero) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("AB"), 1.0);
    pool.update_lk_equil();
    EXPECT_EQ(pool.haplotype(0).lk_deseq(), 0.0);
    EXPECT_EQ(pool.haplotype(0).st_deseq(), 0.0);
}

TEST(TPopHaploDB, ExpansionReportsPartsAndGoesOn) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 2.9);
    pool.insert(data.haplotype("B"), 2.0);
    pool.insert(data.haplotype("C"), 1.0);
    pool.explode_base();
    EXPECT_EQ(Reports::codes(), std::vector<int>{106});
    EXPECT_EQ(texts(pool), (std::vector<std::string>{"A", "B", "C", "A", "A", "B"}));
    for (int i = 0; i < 6; ++i) EXPECT_EQ(pool.haplotype(i).freq(), 1.0);
    pool.check_redundancy();
    EXPECT_EQ(texts(pool), (std::vector<std::string>{"A", "B", "C"}));
    EXPECT_EQ(pool.haplotype(0).freq(), 3.0);
    EXPECT_EQ(pool.haplotype(1).freq(), 2.0);
}

TEST(TPopHaploDB, PermutationSpendsOneDrawAHaplotypeAndLocus) {
    ModelData data;
    TPopHaploDB pool;
    for (char const* const h : {"AX", "BX", "CY"}) pool.insert(data.haplotype(h), 1.0);
    int loci[] = {1};
    Ran3State const before = random_state.ran3;
    pool.permute(loci);
    EXPECT_EQ(test::draws_since(before), 3);
    // draws 0.715, 0.033, 0.874: 0 <-> 2, 1 <-> 1, 2 <-> 2
    EXPECT_EQ(texts(pool), (std::vector<std::string>{"CX", "BX", "AY"}));
    EXPECT_NE(pool.find(data.haplotype("CX")), nullptr);
}

TEST(TPopHaploDB, ProductOfExpectedAlleleFrequencies) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("AB"), 0.0);
    data.db(0, my_string("A"))->exp_freq = 0.25;
    data.db(1, my_string("B"))->exp_freq = 0.5;
    pool.comp_link_equil_hapl_freq();
    EXPECT_DOUBLE_EQ(pool.haplotype(0).freq(), 0.125);
}

TEST(TPopHaploDB, LogFactorialsOfTruncatedCounts) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 3.9);
    pool.insert(data.haplotype("B"), 5.0);
    EXPECT_NEAR(pool.calc_hapl_lk_dis(), std::log(6.0) + std::log(120.0), 1e-9);
}

TEST(TPopHaploDB, HomozygotesUnderInbreeding) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("A"), 0.4)->set_homo_freq(3);
    pool.insert(data.haplotype("B"), 0.6);
    EXPECT_DOUBLE_EQ(pool.sum_homoz_inbreeding(0.1), 3.0 / (0.6 * 0.1 + 0.4));
}

TEST(TPopHaploDB, CompactingKeepsPolymorphicLociAndPrintsTheOthersFromTheReference) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("ACG"), 0.75);
    pool.insert(data.haplotype("ACT"), 0.25);
    pool.compact(&data.db, '?');
    EXPECT_EQ(texts(pool), (std::vector<std::string>{"G", "T"}));
    EXPECT_EQ(pool.pol_flag(0), 0);
    EXPECT_EQ(pool.pol_flag(2), 1);
    EXPECT_EQ(pool.find(pool.haplotype(1)), &pool.haplotype(1));
    std::ostringstream os;
    pool.print(os, 1, 0.0);
    EXPECT_NE(os.str().find("\tACG\n"), std::string::npos);
    EXPECT_NE(os.str().find("\tACT\n"), std::string::npos);
}

TEST(TPopHaploDB, ReferenceAvoidsMissingDataAndNeedsAPolymorphicLocus) {
    ModelData data;
    TPopHaploDB fixed;
    fixed.insert(data.haplotype("A"), 1.0);
    fixed.build_reference_haplotype(&data.db, '?');
    EXPECT_EQ(fixed.reference(), nullptr);
    TPopHaploDB pool;
    ModelData other;
    pool.insert(other.haplotype("?"), 0.5);
    pool.insert(other.haplotype("C"), 0.5);
    pool.build_reference_haplotype(&other.db, '?');
    ASSERT_NE(pool.reference(), nullptr);
    EXPECT_EQ((*pool.reference())[0]->name(), "C");
}

TEST(TPopHaploDB, UnusedBlankIsNoSecondAlleleForCompacting) {
    ModelData data;
    data.db.set_blank_name(my_string("null"));
    for (int l = 0; l < 2; ++l) data.db.InsertAllPos(l, my_string("null"), 0.0);
    TPopHaploDB pool;
    pool.insert(data.haplotype("AC"), 0.5);
    pool.insert(data.haplotype("AG"), 0.5);
    pool.compact(&data.db, '?');
    EXPECT_EQ(texts(pool), (std::vector<std::string>{"C", "G"}));
    EXPECT_EQ((*pool.reference())[0]->name(), "A");
}

TEST(TPopHaploDB, ReferenceOfADefaultAlleleIsCopiedWithThePool) {
    TPopHaploDB pool;
    int const n[] = {4};
    pool.init_ref_hapl(n);
    TPopHaploDB const copy(pool);
    pool.empty();
    ASSERT_NE(copy.reference(), nullptr);
    EXPECT_EQ(copy.reference()->nb_loci(), 4);
    EXPECT_EQ((*copy.reference())[3]->name(), "UNDEF");
}

TEST(TPopHaploDB, TableListsSortedHaplotypesAndNumbersTheRestNegatively) {
    ModelData data;
    TPopHaploDB pool;
    pool.insert(data.haplotype("Cb"), 0.5)->set_sd(0.125);
    pool.insert(data.haplotype("Ab"), 0.25);
    pool.insert(data.haplotype("Aa"), 0.0);
    std::ostringstream os;
    pool.print(os, 0, 0.00001);
    EXPECT_EQ(os.str(),
              "\n------------------------------------------\n"
              "Maximum-likelihood haplotype frequencies :\n"
              "------------------------------------------\n\n"
              "Total number of possible haplotypes      :              3\n"
              "Minimum frequency to reach for output    :          0.000\n\n"
              "---------------------------------------\n"
              "    #   Haplotype     Freq.      s.d.\n"
              "---------------------------------------\n"
              "    1              0.250000    0.000000\tAb\n"
              "    2              0.500000    0.125000\tCb\n"
              "---------------------------------------\n"
              "Sum of all 3 haplotype frequencies : 0.750000\n"
              "Sum of 2 listed frequencies : 0.750000\n");
    EXPECT_EQ(pool.haplotype(0).ID(), 2);
    EXPECT_EQ(pool.haplotype(2).ID(), -1);
}

TEST(TPopHaplotype, RestrictionTakesAllelesAndFrequenciesAlong) {
    ModelData data;
    TPopHaplotype h = data.haplotype("ABCD", 0.5);
    h.set_name(my_string("n"));
    h.set_separator(' ');
    h.set_lk_deseq(3.0);
    TPopHaplotype sub;
    int const loci[] = {2, 3, 1};
    sub.copy_restricted_hapl(loci, h);
    EXPECT_EQ(test::text(sub), "DB");
    EXPECT_EQ(sub.freq(), 0.5);
    EXPECT_EQ(sub.lk_deseq(), 0.0);
    EXPECT_EQ(sub.name(), "n");
    int const flags[] = {1, 0, 0, 1};
    sub.build_sub_haplotype(flags, h);
    EXPECT_EQ(test::text(sub), "AD");
    EXPECT_EQ(sub[1]->temp_locus_position(), 3);
    std::ostringstream os;
    os << sub;
    EXPECT_EQ(os.str(), "A D ");
    sub.build_sampled_haplo(12, h[0], h[2]);
    EXPECT_EQ(sub.name(), "12");
    EXPECT_EQ(sub.freq(), 0.0);
    EXPECT_EQ(test::text(sub), "AC");
}

TEST(TPopHaplotype, OrderIsByAlleleNames) {
    ModelData data;
    EXPECT_TRUE(data.haplotype("AC") < data.haplotype("AG"));
    EXPECT_FALSE(data.haplotype("AG") < data.haplotype("AC"));
    EXPECT_FALSE(data.haplotype("AC") < data.haplotype("AC"));
    EXPECT_TRUE(data.haplotype("AT") < data.haplotype("CA"));
}

}  // namespace
}  // namespace tov
