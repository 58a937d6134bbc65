// Rows of alleles kept as small indices.
#include <gtest/gtest.h>

#include "model/allele_row.h"

namespace tov {
namespace {

class AlleleRows : public ::testing::Test {
protected:
    TAllele* allele(int locus, std::string const& name) { return db.insert_allele(locus, name, 0.0); }
    AlleleRow row(std::string const& names, int first = 0) {
        AlleleRow r;
        for (std::size_t i = 0; i < names.size(); ++i) r.Add(allele(first + static_cast<int>(i), names.substr(i, 1)));
        return r;
    }
    void SetUp() override {
        for (int l = 0; l < 60; ++l) allele(l, "A");
    }
    TAlleleDB db;
};

TEST_F(AlleleRows, FullRowTakesAByteASite) {
    AlleleRow const r = row("ACGT");
    EXPECT_EQ(r.size(), 4);
    EXPECT_EQ(r.narrow_ranks().size(), 4U);
    EXPECT_EQ(r[1], db(1, my_string("C")));
    EXPECT_EQ(r.rank(0), 0);
    EXPECT_EQ(r.rank(1), 1);
    EXPECT_EQ(r[4], nullptr);
    EXPECT_EQ(r[-1], nullptr);
    EXPECT_EQ(r.rank(9), -1);
}

TEST_F(AlleleRows, LongRowsMoveToTheHeapAndCopyWhole) {
    std::string const names(50, 'C');
    AlleleRow const r = row(names);
    AlleleRow copy(r);
    EXPECT_TRUE(copy == r);
    copy.set_allele(49, allele(49, "A"));
    EXPECT_FALSE(copy == r);
    AlleleRow moved(std::move(copy));
    EXPECT_EQ(moved[49], db(49, 0));
    moved = r;
    EXPECT_TRUE(moved == r);
    EXPECT_EQ(moved.hash(), r.hash());
}

TEST_F(AlleleRows, MoreThan256AllelesWidenTheRow) {
    for (int i = 0; i < 300; ++i) allele(0, std::to_string(i));
    AlleleRow r;
    r.Add(db(0, 3));
    EXPECT_EQ(r.narrow_ranks().size(), 1U);
    AlleleRow const narrow(r);
    r.set_allele(0, db(0, 299));
    EXPECT_TRUE(r.narrow_ranks().empty());
    EXPECT_EQ(r[0], db(0, 299));
    r.set_allele(0, db(0, 3));
    EXPECT_TRUE(r == narrow);
    EXPECT_EQ(r.hash(), narrow.hash());
}

TEST_F(AlleleRows, SubSetsOfLociKeepPointers) {
    AlleleRow r;
    r.Add(db(3, 0));
    r.Add(db(7, 0));
    r.Add(nullptr);
    TAllele free_one('X');
    r.Add(&free_one);
    EXPECT_EQ(r[0], db(3, 0));
    EXPECT_EQ(r[1], db(7, 0));
    EXPECT_EQ(r[2], nullptr);
    EXPECT_EQ(r[3], &free_one);
    EXPECT_EQ(r.rank(2), -1);
    AlleleRow const copy(r);
    EXPECT_TRUE(copy == r);
}

TEST_F(AlleleRows, TheSameAllelesAreEqualWhateverTheForm) {
    AlleleRow const narrow = row("CC", 4);
    AlleleRow wide;
    wide.Add(db(4, my_string("C")));
    wide.Add(db(9, 0));
    wide.set_allele(1, db(5, my_string("C")));
    EXPECT_TRUE(narrow == wide);
    EXPECT_TRUE(wide == narrow);
    EXPECT_EQ(narrow.hash(), wide.hash());
    EXPECT_TRUE(narrow.same_at(1, wide));
    EXPECT_FALSE(row("CC", 6) == narrow);
}

TEST_F(AlleleRows, SwapExchangesOnePosition) {
    AlleleRow a = row("AAA");
    AlleleRow b = row("CCC");
    a.swap_allele(1, b);
    EXPECT_TRUE(a == row("ACA"));
    EXPECT_TRUE(b == row("CAC"));
    a.swap_allele(5, b);
    EXPECT_TRUE(a == row("ACA"));
}

TEST_F(AlleleRows, DetachClosesTheGap) {
    AlleleRow r = row("ACCA");
    r.Detach(1);
    ASSERT_EQ(r.size(), 3);
    EXPECT_EQ(r[0], db(0, 0));
    EXPECT_EQ(r[1], db(2, my_string("C")));
    EXPECT_EQ(r[2], db(3, 0));
    AlleleRow head = row("ACCA");
    head.Detach(0);
    EXPECT_EQ(head[0], db(1, my_string("C")));
    head.Detach(2);
    EXPECT_EQ(head.size(), 2);
    head.Detach(7);
    EXPECT_EQ(head.size(), 2);
}

TEST_F(AlleleRows, FlushedRowStartsAnew) {
    AlleleRow r = row("ACC");
    r.Flush();
    EXPECT_TRUE(r.IsEmpty());
    EXPECT_EQ(r.Add(db(9, 0)), 1);
    EXPECT_EQ(r[0], db(9, 0));
    r.Reallocate(100);
    EXPECT_TRUE(r == AlleleRow());
}

}  // namespace
}  // namespace tov
