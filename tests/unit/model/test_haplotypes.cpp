// Named haplotypes, their list, and the accumulator of frequencies.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "base/dmat.h"
#include "model/hapldb.h"
#include "model_fixture.h"

namespace tov {
namespace {

using test::ModelData;
using test::Reports;

TEST(HaploDef, ContentWithoutSeparatorIsOneAlleleACharacter) {
    TAlleleDB db;
    HaploDef h(my_string("h1"), my_string("ACA"));
    h.build_haplovect(&db, '\0', 0, 3.0);
    EXPECT_EQ(h.nb_loci(), 3);
    EXPECT_EQ(h[1]->name(), "C");
    EXPECT_EQ(h[1]->freq(), 3.0);
    EXPECT_EQ(db.nb_loci(), 3);
}

TEST(HaploDef, SecondCallCountsAgainButDoesNotGrow) {
    TAlleleDB db;
    HaploDef h(my_string("h1"), my_string("AC"));
    h.build_haplovect(&db, '\0', 0, 3.0);
    h.build_haplovect(&db, '\0', 0, 3.0);
    EXPECT_EQ(h.nb_loci(), 2);
    EXPECT_EQ(h[0]->freq(), 6.0);
}

TEST(HaploDef, EmptyPiecesBetweenSeparatorsAreSkipped) {
    TAlleleDB db;
    HaploDef h(my_string("h1"), my_string(" 101  99 7"));
    h.build_haplovect(&db, ' ', 0, 1.0);
    ASSERT_EQ(h.nb_loci(), 3);
    EXPECT_EQ(h[0]->name(), "101");
    EXPECT_EQ(h[1]->name(), "99");
    EXPECT_EQ(h[2]->name(), "7");
}

TEST(HaploDef, AllTogetherGiveWhatEachAloneGives) {
    std::string const letters = "ACGT?-N";
    std::vector<HaploDef> one_by_one;
    for (int i = 0; i < 40; ++i) {
        std::string s;
        for (int l = 0; l < (i == 7 ? 200 : 300); ++l) s += letters[static_cast<std::size_t>((i * l + l / 3) % 7)];
        one_by_one.emplace_back(my_string(i), my_string(std::move(s)));
        one_by_one.back().copies = i % 3;
    }
    std::vector<HaploDef> together(one_by_one);
    std::vector<HaploDef*> list;
    for (HaploDef& h : together) list.push_back(&h);
    TAlleleDB a;
    TAlleleDB b;
    for (int round = 0; round < 2; ++round) {
        for (HaploDef& h : one_by_one) h.build_haplovect(&a, '\0', 0, h.copies);
        build_haplovects(list, b, '\0');
    }
    ASSERT_EQ(a.nb_loci(), b.nb_loci());
    for (int l = 0; l < a.nb_loci(); ++l) {
        ASSERT_EQ(a.locus(l)->nb_alleles(), b.locus(l)->nb_alleles()) << l;
        for (int r = 0; r < a.locus(l)->nb_alleles(); ++r) {
            EXPECT_EQ(a(l, r)->name(), b(l, r)->name());
            EXPECT_EQ(a(l, r)->freq(), b(l, r)->freq());
            EXPECT_EQ(a(l, r)->was_observed(), b(l, r)->was_observed());
            EXPECT_EQ(b(l, r)->is_in_loci(), l);
        }
    }
    for (std::size_t i = 0; i < together.size(); ++i) {
        ASSERT_EQ(together[i].nb_loci(), one_by_one[i].nb_loci());
        for (int l = 0; l < together[i].nb_loci(); ++l) EXPECT_EQ(together[i].rank(l), one_by_one[i].rank(l));
        EXPECT_FALSE(together[i].narrow_ranks().empty());
    }
}

TEST(HaploDef, SameAllelesUnderTwoIdsAreTwoDefinitionsOfTheSameContent) {
    TAlleleDB db;
    HaploDef a(my_string("a"), my_string("ACGT"));
    HaploDef b(my_string("b"), my_string("ACGT"));
    HaploDef c(my_string("c"), my_string("ACG"));
    for (HaploDef* const h : {&a, &b, &c}) h->build_haplovect(&db, '\0', 0, 1.0);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a.hasSameAllelicContent(b));
    EXPECT_TRUE(c.hasSameAllelicContent(a));  // stops at its own length
    EXPECT_FALSE(a.hasSameAllelicContent(c));
    TPopHaplotype pa;
    TPopHaplotype pb;
    pa.alleles() = a;
    pb.alleles() = b;
    EXPECT_TRUE(pa == pb);
}

TEST(HaploDef, PrintsIdTabContent) {
    std::ostringstream os;
    os << HaploDef(my_string("h1"), my_string("ACGT")) << '|' << HaploDef(my_string("h2"));
    EXPECT_EQ(os.str(), "h1\tACGT| h2");
}

TEST(PHaploDef, NullReferenceIsNamedError) {
    PHaploDef const none;
    EXPECT_EQ(none.name(), "ERROR");
    EXPECT_EQ(none[0], nullptr);
    EXPECT_EQ(none(3), "ERROR");
}

TEST(HaploDB, FindsByContentAndByIdTheFirstThatFits) {
    Haplo_DB db;
    db.Add(new HaploDef(my_string("x"), my_string("AAA")));
    db.Add(new HaploDef(my_string("y"), my_string("AAA")));
    db.Add(new HaploDef(my_string("x"), my_string("CCC")));
    EXPECT_EQ(db.find(my_string("AAA")), &db[0]);
    EXPECT_EQ(db.find_id(my_string("x")), &db[0]);
    EXPECT_EQ(db.find(my_string("CCC")), &db[2]);
    EXPECT_EQ(db.find(my_string("x")), nullptr);
    db.Add(new HaploDef(my_string("z"), my_string("GGG")));
    EXPECT_EQ(db.find_id(my_string("z")), &db[3]);
}

TEST(HaploDB, RemovedSeparatorsCutEachContentToTheFirstOnesLength) {
    Haplo_DB db;
    db.Add(new HaploDef(my_string("a"), my_string("A C G")));
    db.Add(new HaploDef(my_string("b"), my_string("A C GTTT")));
    db.Add(new HaploDef(my_string("c"), my_string("A")));
    EXPECT_NE(db.find(my_string("A C G")), nullptr);
    db.rm_separators(' ');
    EXPECT_EQ(db[0].content, "ACG");
    EXPECT_EQ(db[1].content, "ACG");
    EXPECT_EQ(db[2].content, "A");
    EXPECT_EQ(db.find(my_string("A C G")), nullptr);
    EXPECT_EQ(db.find(my_string("ACG")), &db[0]);
}

TEST(HaploDB, ResetNamesTheListAnew) {
    Haplo_DB db;
    db.name = my_string("mine");
    db.Add(new HaploDef(my_string("a"), my_string("A")));
    db.reset();
    EXPECT_TRUE(db.is_null());
    EXPECT_EQ(db.name, "no_name");
    EXPECT_EQ(db.find_id(my_string("a")), nullptr);
}

TEST(HaploDB, SectionOfAProjectFile) {
    Haplo_DB db;
    std::ostringstream none;
    none << db;
    EXPECT_EQ(none.str(), "");
    db.name = my_string("UNKNOWN");
    db.Add(new HaploDef(my_string("a"), my_string("AC")));
    std::ostringstream os;
    os << db;
    EXPECT_EQ(
        os.str(),
        "\n\t[[HaplotypeDefinition]]\n\n\t\tHaplListName=\"generated by tovenia\"\n\t\tHaplList={\na\tAC\n\t\t}\n\n");
}

DistMat labelled_matrix(std::initializer_list<char const*> labels) {
    DistMat m;
    m.initializeMatrixAndArrays(static_cast<int>(labels.size()));
    int i = 0;
    for (char const* const label : labels) m.labels[static_cast<std::size_t>(i++)] = my_string(label);
    m.nb_labels = i;
    return m;
}

TEST(HaploDB, LabelsGiveTheirRowsToTheHaplotypes) {
    ModelData data;
    Haplo_DB db;
    db.Add(new HaploDef(my_string("b")));
    db.Add(new HaploDef(my_string("a")));
    EXPECT_EQ(db.associate_with1(labelled_matrix({"a", "unknown", "b"})), 1);
    EXPECT_EQ(db[0].matrix_index, 2);
    EXPECT_EQ(db[1].matrix_index, 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{28});
    EXPECT_NE(data.process.log().find("\tHaplotype \"unknown\" defined in the labels of the user-defined\n\tdistance "
                                      "matrix was not found in any population sample"),
              std::string::npos);
}

TEST(HaploDB, HaplotypeWithoutLabelFails) {
    ModelData data;
    Haplo_DB db;
    db.Add(new HaploDef(my_string("b")));
    db.Add(new HaploDef(my_string("a")));
    EXPECT_EQ(db.associate_with1(labelled_matrix({"a"})), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{173});
    EXPECT_EQ(db.associate_with1(DistMat()), 0);
    EXPECT_EQ(Reports::codes(), (std::vector<int>{173, 29}));
}

TEST(HaploDB, ListPositionsAreRowsOfAMatrixOfTheSameSize) {
    ModelData data;
    Haplo_DB db;
    db.Add(new HaploDef(my_string("b")));
    db.Add(new HaploDef(my_string("a")));
    EXPECT_EQ(db.associate_with2(DistMat(3)), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{30});
    EXPECT_EQ(db.associate_with2(DistMat(2)), 1);
    EXPECT_EQ(db[1].matrix_index, 1);
    DistMat conventional(3);
    conventional.set_conventional_fst(1);
    EXPECT_EQ(db.associate_with2(conventional), 1);
}

TEST(AHaplFreq, MeanAndDeviationRelativeToTheSampleSize) {
    AHaplFreq f(4);
    EXPECT_EQ(f.sq_frequency, 16.0);
    f += AHaplFreq(6);
    f.calc_mean_freq(2, 10);
    EXPECT_DOUBLE_EQ(f.mean, 5.0);
    EXPECT_DOUBLE_EQ(f.sd, std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(f.frequency, 0.5);
    EXPECT_DOUBLE_EQ(f.sq_frequency, std::sqrt(2.0) / 10.0);
    AHaplFreq one(7);
    one.calc_mean_freq(1, 7);
    EXPECT_EQ(one.sd, 0.0);
    one.calc_mean_freq(3, 0);
    EXPECT_EQ(one.frequency, 0.0);
    EXPECT_EQ(one.mean, 0.0);
}

TEST(AHaplFreq, PrintsSumsWithSevenDecimalsAndMomentsWithFour) {
    AHaplFreq freq(3);
    freq.mean = 0.125;
    freq.sd = 2.0 / 3.0;
    std::ostringstream os;
    os << freq;
    EXPECT_EQ(os.str(), "3.0000000 9.0000000 0.1250 0.6667 ");
}

TEST(AHaplFreq, DeviationOfEqualFrequenciesIsNeverTheRootOfANegativeNumber) {
    for (int n = 2; n <= 40; ++n) {
        AHaplFreq sum;
        AHaplFreq each;
        each.set_frequencies(0.1);
        for (int i = 0; i < n; ++i) sum += each;
        sum.calc_mean_freq(n, 1);
        EXPECT_NEAR(sum.sd, 0.0, 1e-7) << n;  // a root of less than 0 is no number
    }
}

}  // namespace
}  // namespace tov
