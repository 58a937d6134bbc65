// Alleles, loci and their database.
#include <gtest/gtest.h>

#include <sstream>

#include "model/alldb.h"
#include "model_fixture.h"

namespace tov {
namespace {

TEST(TAlleleDB, SameNameTwiceIsOneAlleleWithTheSumOfBothValues) {
    TAlleleDB db;
    EXPECT_EQ(db.InsertAllPos(0, my_string("A"), 2.0), 0);
    EXPECT_EQ(db.InsertAllPos(0, my_string("G"), 1.0), 1);
    EXPECT_EQ(db.InsertAllPos(0, my_string("A"), 3.5), 0);
    EXPECT_EQ(db.locus(0)->nb_alleles(), 2);
    EXPECT_DOUBLE_EQ(db(0, 0)->freq(), 5.5);
}

TEST(TAlleleDB, IndexBeyondTheEndMakesOneLocusNamedByTheIndexAsked) {
    TAlleleDB db;
    db.InsertAllPos(0, my_string("A"), 1.0);
    db.InsertAllPos(1, my_string("A"), 1.0);
    EXPECT_EQ(db.InsertAllPos(7, my_string("T"), 1.0), 0);
    EXPECT_EQ(db.nb_loci(), 3);
    EXPECT_EQ(db.locus(2)->name(), "Locus 7");
    EXPECT_EQ(db(2, 0)->is_in_loci(), 7);
    EXPECT_EQ(db(2, 0)->home()->position(), 2);
}

TEST(TAlleleDB, InsertionByNameFindsTheLocusAndNotesItsTrueIndex) {
    TAlleleDB db;
    db.InsertAllPos(my_string("HLA"), my_string("a1"), 1.0);
    db.InsertAllPos(my_string("Rh"), my_string("D"), 1.0);
    EXPECT_EQ(db.InsertAllPos(my_string("HLA"), my_string("a2"), 1.0), 1);
    EXPECT_EQ(db.nb_loci(), 2);
    EXPECT_EQ(db(my_string("Rh"), 0)->is_in_loci(), 1);
    double two = 2.0;
    EXPECT_EQ(db.InsertAllPos(1, my_string("D"), two, 99), 0);
    EXPECT_DOUBLE_EQ(db(my_string("Rh"), my_string("D"))->freq(), 3.0);
}

TEST(TAlleleDB, LookUpsGiveNullForWhatIsAbsent) {
    TAlleleDB db;
    db.InsertAllPos(0, my_string("A"), 1.0);
    EXPECT_EQ(db(1, my_string("A")), nullptr);
    EXPECT_EQ(db(1, 0), nullptr);
    EXPECT_EQ(db(0, 1), nullptr);
    EXPECT_EQ(db(-1, 0), nullptr);
    EXPECT_EQ(db(my_string("nowhere"), 0), nullptr);
    EXPECT_EQ(db(my_string("nowhere"), my_string("A")), nullptr);
    EXPECT_EQ(db.nb_loci(), 1);
}

TEST(TAlleleDB, ManyLongNamesAreFoundInTheOrderOfInsertion) {
    TAlleleDB db;
    for (int i = 0; i < 300; ++i) EXPECT_EQ(db.InsertAllPos(0, my_string(100 + i), 1.0), i);
    for (int i = 299; i >= 0; --i) EXPECT_EQ(db.InsertAllPos(0, my_string(100 + i), 1.0), i);
    EXPECT_EQ(db.locus(0)->nb_alleles(), 300);
    EXPECT_EQ(db.locus(0)->get_allele_index(db(0, 123)), 123);
    TAllele const stranger(my_string("100"));
    EXPECT_EQ(db.locus(0)->get_allele_index(&stranger), -1);
}

TEST(TAlleleDB, CopyHasItsOwnAlleles) {
    TAlleleDB db;
    db.InsertAllPos(0, my_string("A"), 2.0);
    db.locus(0)->FST = 0.25;
    TAlleleDB const copy(db);
    ASSERT_NE(copy(0, 0), nullptr);
    EXPECT_NE(copy(0, 0), db(0, 0));
    EXPECT_EQ(copy(0, 0)->home(), copy.locus(0));
    EXPECT_EQ(copy(0, 0)->home()->database(), &copy);
    EXPECT_DOUBLE_EQ(copy.locus(0)->FST, 0.25);
}

TEST(TAlleleDB, DestroyLeavesAnEmptyDatabaseWithCounterZero) {
    TAlleleDB db;
    db.InsertAllPos(my_string("L"), my_string("A"), 2.0);
    db.counter = 1;
    db.destroy();
    EXPECT_EQ(db.nb_loci(), 0);
    EXPECT_EQ(db.counter, 0);
    EXPECT_EQ(db.find_locus(my_string("L")), -1);
}

TEST(TLocus, PolymorphyFollowsTheThresholdsOnEntries) {
    TLocus two(my_string("two"));
    two.insert("A", 1.0, 0);
    two.insert("G", 1.0, 0);
    EXPECT_FALSE(two.is_polymorph('?'));
    TLocus with_missing(two);
    with_missing.insert("?", 1.0, 0);
    EXPECT_FALSE(with_missing.is_polymorph('?'));
    EXPECT_TRUE(with_missing.is_polymorph('N'));
    TLocus three(two);
    three.insert("C", 1.0, 0);
    EXPECT_TRUE(three.is_polymorph('?'));
    three.insert("?", 1.0, 0);
    EXPECT_TRUE(three.is_polymorph('?'));
    EXPECT_FALSE(TLocus().is_polymorph('?'));
}

TEST(TAlleleDB, UnusedBlankIsEntryZeroThatNoSampleHolds) {
    TAlleleDB db;
    db.set_blank_name(my_string("null"));
    db.InsertAllPos(0, my_string("null"), 0.0);
    db.InsertAllPos(0, my_string("A"), 3.0);
    EXPECT_TRUE(db.is_unused_blank(0, 0));
    EXPECT_FALSE(db.is_unused_blank(0, 1));
    EXPECT_FALSE(db.is_unused_blank(1, 0));
    db.InsertAllPos(0, my_string("null"), 1.0);
    EXPECT_FALSE(db.is_unused_blank(0, 0));
    db(0, 0)->set_freq(0.0);  // another sample's frequencies
    EXPECT_FALSE(db.is_unused_blank(0, 0));
}

TEST(TAlleleDB, UpdateWithNoGeneCopiesChangesNothing) {
    TAlleleDB db;
    db.InsertAllPos(0, my_string("A"), 1.0);
    db.create_pop_freq_vector(2);
    db(0, 0)->pop_freq()[0] = 5.0;
    db(0, 0)->ibd_sum = 2.0;
    EXPECT_EQ(db.update_all_freq_with_inbreeding(0.0), -1.0);
    EXPECT_EQ(db.update_all_freq_with_inbreeding(-3.0), -1.0);
    EXPECT_EQ(db(0, 0)->exp_freq, 0.0);
    EXPECT_EQ(db(0, 0)->ibd_sum, 2.0);
}

TEST(TAlleleDB, UpdateTakesTheIdenticalCopiesOutAndSumsTheChanges) {
    TAlleleDB db;
    db.InsertAllPos(0, my_string("A"), 1.0);
    db.InsertAllPos(0, my_string("B"), 1.0);
    db.create_pop_freq_vector(2);
    db(0, 0)->pop_freq()[0] = 6.0;
    db(0, 0)->pop_freq()[1] = 0.5;
    db(0, 0)->ibd_sum = 2.0;
    db(0, 1)->pop_freq()[0] = 4.0;
    db(0, 1)->pop_freq()[1] = 0.5;
    EXPECT_DOUBLE_EQ(db.update_all_freq_with_inbreeding(8.0), 0.0);
    EXPECT_DOUBLE_EQ(db(0, 0)->exp_freq, 0.5);
    EXPECT_DOUBLE_EQ(db.update_all_freq_with_inbreeding(10.0), 0.1 + 0.1);
    EXPECT_DOUBLE_EQ(db(0, 0)->pop_freq()[1], 0.6);
    EXPECT_DOUBLE_EQ(db(0, 1)->exp_freq, 0.4);
}

TEST(TAlleleDB, RandomExpectedFrequenciesSumToOneALocusAndSpendOneDrawAnAllele) {
    test::FreshProcess process;
    TAlleleDB db;
    for (char const* const name : {"A", "B", "C"}) db.InsertAllPos(0, my_string(name), 1.0);
    db.InsertAllPos(1, my_string("A"), 1.0);
    Ran3State const before = random_state.ran3;
    db.assign_rand_exp_freq();
    EXPECT_EQ(test::draws_since(before), 4);
    EXPECT_NEAR(db(0, 0)->exp_freq, 0.715119168 / (0.715119168 + 0.033021107 + 0.874393600), 1e-9);
    EXPECT_DOUBLE_EQ(db(1, 0)->exp_freq, 1.0);
    db.reset_exp_freq();
    EXPECT_EQ(db(0, 1)->exp_freq, 0.0);
}

TEST(TAlleleDB, FrequencyVectorsComeZeroedAndGoOnFlush) {
    TAlleleDB db;
    db.InsertAllPos(0, my_string("A"), 1.0);
    EXPECT_EQ(db(0, 0)->pop_freq(), nullptr);
    db.create_pop_freq_vector(3);
    db.create_group_freq_vector(2);
    EXPECT_EQ(TAllele::numPop, 3);
    EXPECT_EQ(TAllele::numGroup, 2);
    db(0, 0)->pop_freq()[2] = 7.0;
    TAllele const copy(*db(0, 0));
    EXPECT_EQ(copy.pop_freq()[2], 7.0);
    db.create_pop_freq_vector(3);
    EXPECT_EQ(db(0, 0)->pop_freq()[2], 0.0);
    db.InsertAllPos(1, my_string("B"), 1.0);
    db.create_pop_freq_vector(3);
    db.flush_pop_freq_vector();
    EXPECT_EQ(db(0, 0)->pop_freq(), nullptr);
    EXPECT_EQ(db(1, 0)->pop_freq(), nullptr);
    EXPECT_NE(db(0, 0)->group_freq(), nullptr) << "those of groups stay";
    EXPECT_EQ(TAllele::numPop, 3);
    db.flush_pop_freq_vector();
    db.create_pop_freq_vector(1);
    db.reset_all_pop_freqs();
    db.flush_group_freq_vector();
    EXPECT_EQ(db(0, 0)->pop_freq(), nullptr);
    EXPECT_EQ(db(0, 0)->group_freq(), nullptr);
    EXPECT_EQ(TAllele::numPop, 1);
}

TEST(TAllele, PrintsItsName) {
    TAlleleDB db;
    std::ostringstream os;
    os << *db.insert_allele(0, "B*07", 1.0);
    EXPECT_EQ(os.str(), "B*07");
}

TEST(TAllele, DefaultIsNamedUndefAndSelected) {
    TAllele const a;
    EXPECT_EQ(a.name(), "UNDEF");
    EXPECT_EQ(a.freq(), 0.0);
    EXPECT_EQ(a.selected, 1);
    EXPECT_EQ(TAllele('T').name(), "T");
    EXPECT_TRUE(TAllele('A') < TAllele('C'));
    EXPECT_TRUE(TAllele('A') == TAllele(my_string("A"), 5.0, 3));
}

TEST(TAlleleDB, PrintedTableHasAColumnALocusAndPassesOverTheUnusedBlank) {
    TAlleleDB db;
    db.set_blank_name(my_string("null"));
    for (int l = 0; l < 2; ++l) db.InsertAllPos(l, my_string("null"), 0.0);
    db.InsertAllPos(0, my_string("102"), 0.25);
    db.InsertAllPos(0, my_string("98"), 0.759);
    db.InsertAllPos(1, my_string("A"), 1.0);
    std::ostringstream os;
    os << db;
    EXPECT_EQ(os.str(), "102 25  %|A 100 %|\n98  75  %|       |\n");
}

}  // namespace
}  // namespace tov
