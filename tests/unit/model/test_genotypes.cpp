// Enumeration of genotypes, held against a slow literal enumeration.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "model_fixture.h"

namespace tov {
namespace {

using test::genotype_texts;
using test::ModelData;
using test::Reports;
using test::texts;

// The enumeration written down step by step: copies of both chromosomes for each value of a binary counter, linear
// scans everywhere. `previous` restricts it to pairs whose parts at the flagged loci are known.
class SlowEnumeration {
public:
    SlowEnumeration(TPhenotype const& p, TAlleleDB& db, bool recessive, TPopHaploDB const* previous = nullptr,
                    int const* flags = nullptr) {
        int const L = p.pheno_length();
        std::vector<int> het;
        for (int l = 0; l < L; ++l) {
            if (p.pseudo_hapl0(l) != p.pseudo_hapl1(l)) het.push_back(l);
        }
        int const h = static_cast<int>(het.size());
        bool const all = h == L;
        long const candidates = !recessive || all ? (h < 2 ? 1L : 1L << (h - 1)) : 1L << L;
        std::vector<int> counter(static_cast<std::size_t>(L) + 6, 0);
        for (long c = 0; c < candidates; ++c, TPhenotype::binary_inc(counter.data(), L)) {
            TPopHaplotype first(*p.ps_hapl0());
            TPopHaplotype second(*p.ps_hapl1());
            int blank = 0;
            for (int i = 1; i < h && !recessive; ++i) {
                if (counter[static_cast<std::size_t>(i - 1)]) swap(first, second, het[static_cast<std::size_t>(i)]);
            }
            for (int l = 0; l < L && recessive; ++l) {
                if (!counter[static_cast<std::size_t>(l)]) continue;
                bool const dominant = first[l] == second[l] && first[l] != db(l, 0);
                if (dominant) {
                    second.alleles().set_allele(l, db(l, 0));
                    blank = 1;
                } else {
                    swap(first, second, l);
                }
            }
            second.set_blank(blank);
            if (previous && (!known(*previous, flags, first) || !known(*previous, flags, second))) continue;
            int const j = insert(second);
            int const i = insert(first);
            auto const pair = std::pair(i, j);
            auto const mirror = std::pair(j, i);
            if (std::find(genotypes_.begin(), genotypes_.end(), pair) != genotypes_.end() ||
                std::find(genotypes_.begin(), genotypes_.end(), mirror) != genotypes_.end())
                continue;
            genotypes_.push_back(pair);
        }
    }
    void expect_equal(TPhenotype const& p, TPopHaploDB const& pool) const {
        ASSERT_EQ(pool.nb_haplotypes(), static_cast<int>(pool_.size()));
        for (std::size_t i = 0; i < pool_.size(); ++i) {
            TPopHaplotype const& h = pool.haplotype(static_cast<int>(i));
            EXPECT_TRUE(h == pool_[i]) << i;
            EXPECT_EQ(h.freq(), pool_[i].freq()) << i;
            EXPECT_EQ(h.has_blank(), pool_[i].has_blank()) << i;
        }
        ASSERT_EQ(p.genot_real_count(), static_cast<int>(genotypes_.size()));
        for (std::size_t g = 0; g < genotypes_.size(); ++g) {
            EXPECT_EQ(p.genotype(static_cast<int>(g)).first(), &pool.haplotype(genotypes_[g].first)) << g;
            EXPECT_EQ(p.genotype(static_cast<int>(g)).second(), &pool.haplotype(genotypes_[g].second)) << g;
        }
    }

private:
    static void swap(TPopHaplotype& a, TPopHaplotype& b, int l) {
        TAllele* const mine = a[l];
        a.alleles().set_allele(l, b[l]);
        b.alleles().set_allele(l, mine);
    }
    static bool known(TPopHaploDB const& previous, int const* flags, TPopHaplotype const& h) {
        TPopHaplotype sub;
        sub.build_sub_haplotype(flags, h);
        for (TPopHaplotype const* const g : previous.view()) {
            if (*g == sub) return g->freq() > 0.0;
        }
        return false;
    }
    int insert(TPopHaplotype const& h) {
        for (std::size_t i = 0; i < pool_.size(); ++i) {
            if (!(pool_[i] == h)) continue;
            pool_[i] += 1.0;
            return static_cast<int>(i);
        }
        pool_.push_back(h);
        pool_.back().set_freq(1.0);
        return static_cast<int>(pool_.size()) - 1;
    }

    std::vector<TPopHaplotype> pool_;
    std::vector<std::pair<int, int>> genotypes_;
};

TEST(GenotypeEnumeration, OneHeterozygousLocusHasOneGenotypeThreeHaveFour) {
    ModelData data;
    TPopHaploDB pool;
    auto const one = data.phenotype("ABC", "AbC");
    one->build_genotypes(pool, &data.db, 0, false);
    EXPECT_EQ(genotype_texts(*one), std::vector<std::string>{"ABC/AbC"});
    EXPECT_EQ(texts(pool), (std::vector<std::string>{"AbC", "ABC"}));  // the second is inserted first
    auto const three = data.phenotype("ABC", "abc");
    three->build_genotypes(pool, &data.db, 0, false);
    EXPECT_EQ(genotype_texts(*three), (std::vector<std::string>{"ABC/abc", "AbC/aBc", "ABc/abC", "Abc/aBC"}));
    EXPECT_EQ(three->genot_exp_count(), 4);
    EXPECT_EQ(three->no_polym_loci(), 3);
}

TEST(GenotypeEnumeration, HomozygoteHasOneGenotypeOfTheSquaredFrequency) {
    ModelData data;
    TPopHaploDB pool;
    auto const p = data.phenotype("AB", "AB");
    p->build_genotypes(pool, &data.db, 0, false);
    ASSERT_EQ(p->genot_real_count(), 1);
    EXPECT_EQ(p->genotype(0).first(), p->genotype(0).second());
    EXPECT_TRUE(p->is_homozygote());
    EXPECT_EQ(pool.haplotype(0).freq(), 2.0);
    pool.haplotype(0).set_freq(0.3);
    p->update_gen_prob();
    EXPECT_DOUBLE_EQ(p->phen_proba(), 0.09);
    EXPECT_DOUBLE_EQ(p->genotype(0).rel_prob(), 1.0);
}

TEST(GenotypeEnumeration, ThirtyThreeHeterozygousLociGiveNoGenotypeAndReport114) {
    ModelData data;
    TPopHaploDB pool;
    auto const p = data.phenotype(std::string(33, 'A'), std::string(33, 'a'));
    p->build_genotypes(pool, &data.db, 0, false);
    EXPECT_EQ(p->genot_real_count(), 0);
    EXPECT_EQ(pool.nb_haplotypes(), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{114});
    EXPECT_EQ(Reports::origins().back(), "TPhenotype::build_genotypes()");
}

TEST(GenotypeEnumeration, HomozygousLociDoNotCountTowardsTheLimit) {
    ModelData data;
    TPopHaploDB pool;
    auto const p = data.phenotype(std::string(40, 'A') + "BC", std::string(40, 'A') + "bc");
    p->build_genotypes(pool, &data.db, 0, false);
    EXPECT_EQ(p->genot_real_count(), 2);
    EXPECT_TRUE(Reports::codes().empty());
    auto const hidden = data.phenotype(std::string(40, 'A') + "BC", std::string(40, 'A') + "bc");
    hidden->build_genotypes(pool, &data.db, 1, false);
    EXPECT_EQ(hidden->genot_real_count(), 0);
    EXPECT_EQ(Reports::codes(), std::vector<int>{114});
}

TEST(GenotypeEnumeration, SecondCallStartsAnew) {
    ModelData data;
    TPopHaploDB pool;
    auto const p = data.phenotype("AB", "ab");
    p->build_genotypes(pool, &data.db, 0, false);
    p->set_pseudo_hapl1(data.db(0, my_string("A")), 0);
    p->build_genotypes(pool, &data.db, 0, false);
    EXPECT_EQ(genotype_texts(*p), std::vector<std::string>{"AB/Ab"});
    EXPECT_EQ(p->genot_exp_count(), 1);
}

TEST(GenotypeEnumeration, RecessiveHomozygoteMayHideABlankOnTheSecondChromosome) {
    ModelData data;
    data.haplotype("00");  // entry 0 of both loci
    TPopHaploDB pool;
    auto const p = data.phenotype("AB", "AB");
    p->build_genotypes(pool, &data.db, 1, false);
    EXPECT_EQ(genotype_texts(*p), (std::vector<std::string>{"AB/AB", "AB/0B", "AB/A0", "AB/00"}));
    EXPECT_FALSE(p->is_homozygote());
    EXPECT_EQ(texts(pool), (std::vector<std::string>{"AB", "0B", "A0", "00"}));
    EXPECT_EQ(pool.haplotype(0).has_blank(), 0);
    EXPECT_EQ(pool.haplotype(1).has_blank(), 1);
    EXPECT_EQ(pool.haplotype(3).has_blank(), 1);
}

TEST(GenotypeEnumeration, OnlyPositionsThatTheCounterChangesCountAsCandidates) {
    ModelData data;
    data.haplotype("0000");
    auto const p = data.phenotype("A00B", "A0CB");
    p->count_hetero_loci();
    EXPECT_EQ(p->candidate_bits(&data.db, 0), 0);
    EXPECT_EQ(p->candidate_bits(&data.db, 1), 3);
    auto const all = data.phenotype("ABCD", "EFGH");
    all->count_hetero_loci();
    EXPECT_EQ(all->candidate_bits(&data.db, 0), 3);
    EXPECT_EQ(all->candidate_bits(&data.db, 1), 3);
}

TEST(GenotypeEnumeration, EqualPairOfARecessiveRouteIsDoubledToo) {
    ModelData data;
    data.haplotype("0");
    TPopHaploDB pool;
    auto const p = data.phenotype("A", "A");
    p->build_genotypes(pool, &data.db, 1, false);
    pool.haplotype(0).set_freq(0.5);
    pool.haplotype(1).set_freq(0.25);
    p->update_gen_prob();
    EXPECT_DOUBLE_EQ(p->phen_proba(), 2 * 0.5 * 0.5 + 2 * 0.5 * 0.25);
}

std::string random_text(std::mt19937& draw, int loci, std::string const& letters) {
    std::string s;
    for (int l = 0; l < loci; ++l) s += letters[draw() % letters.size()];
    return s;
}

TEST(GenotypeEnumeration, RandomPhenotypesAgreeWithTheSlowEnumeration) {
    std::mt19937 draw(7);
    for (int round = 0; round < 120; ++round) {
        for (bool const recessive : {false, true}) {
            ModelData data;
            int const loci = 1 + static_cast<int>(draw() % 7);
            data.haplotype(std::string(static_cast<std::size_t>(loci), '0'));
            std::string const letters = round % 3 == 0 ? "0A" : "0AB";
            auto const p = data.phenotype(random_text(draw, loci, letters), random_text(draw, loci, letters));
            TPopHaploDB pool;
            p->build_genotypes(pool, &data.db, recessive, false);
            SlowEnumeration(*p, data.db, recessive).expect_equal(*p, pool);
            EXPECT_LE(p->genot_real_count(), 1 << p->candidate_bits(&data.db, recessive));
        }
    }
}

TEST(GenotypeEnumeration, RestrictedFormAgreesWithTheSlowEnumeration) {
    std::mt19937 draw(11);
    for (int round = 0; round < 300; ++round) {
        bool const recessive = round % 2 == 1;
        ModelData data;
        int const loci = 1 + static_cast<int>(draw() % 7);
        data.haplotype(std::string(static_cast<std::size_t>(loci), '0'));
        std::string const letters = round % 3 == 0 ? "0A" : "0AB";
        std::vector<int> flags;
        for (int l = 0; l < loci; ++l) flags.push_back(draw() % 2);
        auto const p = data.phenotype(random_text(draw, loci, letters), random_text(draw, loci, letters));
        TPopHaploDB previous;
        int const earlier = static_cast<int>(draw() % 30);
        for (int i = 0; i < earlier; ++i) {
            TPopHaplotype sub;
            sub.build_sub_haplotype(flags.data(), data.haplotype(random_text(draw, loci, letters)));
            previous.insert(sub, draw() % 5 == 0 ? 0.0 : 0.1);
        }
        p->count_hetero_loci();
        TPopHaploDB pool;
        p->build_compatible_genotypes(previous, flags.data(), pool, &data.db, recessive, 0.0);
        SlowEnumeration(*p, data.db, recessive, &previous, flags.data()).expect_equal(*p, pool);
    }
}

TEST(GenotypeEnumeration, RestrictedFormHasNoLimitOnKnownLoci) {
    ModelData data;
    std::string const upper(70, 'A');
    std::string const lower(70, 'a');
    std::vector<int> flags(71, 1);
    flags[70] = 0;
    TPopHaploDB previous;
    for (std::string const& s : {upper, lower}) {
        TPopHaplotype sub;
        sub.build_sub_haplotype(flags.data(), data.haplotype(s + "X"));
        previous.insert(sub, 0.5);
    }
    auto const p = data.phenotype(upper + "X", lower + "Y");
    p->count_hetero_loci();
    TPopHaploDB pool;
    p->build_compatible_genotypes(previous, flags.data(), pool, &data.db, 0, 0.0);
    EXPECT_EQ(genotype_texts(*p), (std::vector<std::string>{upper + "X/" + lower + "Y", upper + "Y/" + lower + "X"}));
}

TEST(GenotypeEnumeration, UnknownPartsLeaveNoGenotype) {
    ModelData data;
    auto const p = data.phenotype("AB", "ab");
    int flags[] = {1, 0};
    TPopHaploDB const none;
    TPopHaploDB previous(none);
    TPopHaploDB pool;
    p->build_compatible_genotypes(previous, flags, pool, &data.db, 0, 0.0);
    EXPECT_EQ(p->genot_real_count(), 0);
    EXPECT_EQ(pool.nb_haplotypes(), 0);
}

TEST(BinaryCounter, CountsFromTheLowEnd) {
    std::vector<int> bits(3 + 6, 0);
    std::vector<int> values;
    for (int i = 0; i < 9; ++i) {
        values.push_back(bits[0] + 2 * bits[1] + 4 * bits[2] + 8 * bits[3]);
        TPhenotype::binary_inc(bits.data(), 3);
    }
    EXPECT_EQ(values, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(TGenotype, EqualInEitherOrderAndSortedByFallingProbability) {
    TPopHaplotype a;
    TPopHaplotype b;
    TGenotype ab(&a, &b);
    TGenotype ba(&b, &a);
    EXPECT_TRUE(ab == ba);
    EXPECT_FALSE(ab == TGenotype(&a, &a));
    ab.set_prob(0.2);
    ba.set_prob(0.1);
    EXPECT_TRUE(ab < ba);
    EXPECT_FALSE(ba < ab);
}

}  // namespace
}  // namespace tov
