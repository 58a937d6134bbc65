// Distances between two sequences: reference values, edge cases, and the packed form against the plain scan.
#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include "diversity/formula/nucleotide_distance.h"
#include "diversity/formula/site_planes.h"
#include "oracle/site_scan.h"

namespace tov {
namespace {

constexpr double digits = 1e-9;
constexpr NucleotideFrequencies freqs{.c = 0.2, .t = 0.3, .a = 0.3, .g = 0.2};
constexpr SiteWeights ones{};
constexpr SiteWeights uneven{.transition = 1.0, .transversion = 2.0, .deletion = 0.5};

void expect_close(double value, double wanted) {
    EXPECT_NEAR(value, wanted, std::fabs(wanted) * digits) << "wanted " << wanted;
}

PairCounts counts(char const* a, char const* b, char missing = '?') { return count_pair(a, b, {}, missing); }

struct Pairs {
    PairCounts p1 = counts("ACGTACGTACGTACGTACGT", "ACGTACGTGCGTACTTACGT");
    PairCounts p2 = counts("ACGT-CGTRCGTACGTNCG?ACGTACG-AA", "ATGTACGTTCGAACGTA?GTACGTGCGTAB");
    PairCounts p3 = counts("ACGTACGTACGTACGTACGTACGTACGTACGTACGTACGT", "GCGTATGTACTTACGTGCGTACGAACGCACGTCCGTATGT");
};

struct Wanted {
    double distance, variance, R, var_R;
};

void expect_pair(PairDistance const& d, Wanted const& w) {
    ASSERT_EQ(d.status, DistanceStatus::ok);
    expect_close(d.distance, w.distance);
    expect_close(d.variance, w.variance);
    if (w.R != 0.0) expect_close(d.R, w.R);
    if (w.var_R != 0.0) expect_close(d.var_R, w.var_R);
}

TEST(PairwiseDifference, GivesTheReferenceValues) {
    Pairs const p;
    expect_pair(pairwise_difference(p.p1, ones), {2, 1.8, 0, 0});
    expect_pair(pairwise_difference(p.p2, ones), {7, 5.366666667, 0, 0});
    expect_pair(pairwise_difference(p.p3, ones), {8, 6.4, 0, 0});
    EXPECT_EQ(pairwise_difference(p.p2, ones).sites, 30);
    expect_pair(pairwise_difference(p.p1, uneven), {3, 2.571428571, 0, 0});
    expect_pair(pairwise_difference(p.p2, uneven), {8, 5.935483871, 0, 0});
    expect_pair(pairwise_difference(p.p3, uneven), {11, 8.186046512, 0, 0});
    EXPECT_EQ(pairwise_difference(p.p2, uneven).sites, 31);
}

TEST(ProportionOfDifference, GivesTheReferenceValues) {
    Pairs const p;
    expect_pair(proportion_of_difference(p.p1, ones), {.1, .0045, 1, 2});
    expect_pair(proportion_of_difference(p.p2, ones), {.2333333333, .005962962963, 1.5, 1.875});
    expect_pair(proportion_of_difference(p.p3, ones), {.2, .004, 1.666666667, 1.481481481});
    expect_pair(proportion_of_difference(p.p1, uneven), {.1428571429, .00583090379, .5, .375});
    expect_pair(proportion_of_difference(p.p2, uneven), {.2580645161, .006176361989, .75, .328125});
    expect_pair(proportion_of_difference(p.p3, uneven), {.2558139535, .004427283132, .8333333333, .2546296296});
}

TEST(JukesCantor, GivesTheReferenceValues) {
    Pairs const p;
    expect_pair(jukes_cantor(p.p1, ones, 0), {.1073256327, .00599112426, 0, 0});
    expect_pair(jukes_cantor(p.p2, ones, 0), {.1884858212, .007653061224, 0, 0});
    expect_pair(jukes_cantor(p.p3, ones, 0), {.2326161962, .007438016529, 0, 0});
    EXPECT_EQ(jukes_cantor(p.p2, ones, 0).sites, 30);
    EXPECT_EQ(jukes_cantor(p.p2, ones, 0).differences, 5);
    expect_pair(jukes_cantor(p.p1, ones, .5), {.124260355, .01061939938, 0, 0});
    expect_pair(jukes_cantor(p.p2, ones, .5), {.2448979592, .02091284244, 0, 0});
    expect_pair(jukes_cantor(p.p3, ones, .5), {.3223140496, .02571884344, 0, 0});
}

TEST(Kimura2P, GivesTheReferenceValues) {
    Pairs const p;
    expect_pair(kimura_2p(p.p1, ones, 0), {.1075995937, .006057899739, 1.042503171, 2.388160092});
    expect_pair(kimura_2p(p.p2, ones, 0), {.1473469866, .005791831032, 1.059344764, 1.276594985});
    expect_pair(kimura_2p(p.p3, ones, 0), {.2371510264, .008141685475, 1.918441897, 2.293486011});
    expect_pair(kimura_2p(p.p1, ones, .5), {.1253417489, .01103061472, 1.137406665, -1});
    expect_pair(kimura_2p(p.p2, ones, .5), {.1820451183, .01321543911, 1.197544643, -1});
    expect_pair(kimura_2p(p.p3, ones, .5), {.3467072256, .03551553581, 2.610752728, -1});
}

TEST(TajimaNei, GivesTheReferenceValues) {
    Pairs const p;
    expect_pair(tajima_nei(p.p1, ones, freqs), {.1118467395, .007103550296, 0, 0});
    expect_pair(tajima_nei(p.p2, ones, freqs), {.148022917, .008270771722, 0, 0});
    expect_pair(tajima_nei(p.p3, ones, freqs), {.2418969831, .008782974784, 0, 0});
    EXPECT_EQ(tajima_nei(p.p2, ones, freqs).sites, 23);
    EXPECT_EQ(tajima_nei(p.p2, ones, freqs).differences, 3);
}

TEST(Tamura, GivesTheReferenceValues) {
    Pairs const p;
    expect_pair(tamura(p.p1, ones, freqs), {.1077615473, .0060962894, 1.045577447, 2.404396413});
    expect_pair(tamura(p.p2, ones, freqs), {.1733856688, .008176008847, 1.075802805, 1.348710112});
    expect_pair(tamura(p.p3, ones, freqs), {.2383805222, .008336570583, 1.93357239, 2.341175725});
    EXPECT_EQ(tamura(p.p2, ones, freqs).sites, 26);
}

TEST(TamuraNei, GivesTheReferenceValues) {
    Pairs const p;
    expect_pair(tamura_nei(p.p1, ones, freqs, 0), {.1114294143, .007091498412, .5272320313, -1});
    expect_pair(tamura_nei(p.p2, ones, freqs, 0), {.1457765907, .007792422983, .687975354, -1});
    expect_pair(tamura_nei(p.p3, ones, freqs, 0), {.2398591096, .008650397656, .6612200184, -1});
    expect_pair(tamura_nei(p.p1, ones, freqs, .5), {.1416120895, .01924073403, 0, 0});
    expect_pair(tamura_nei(p.p2, ones, freqs, .5), {.1851514545, .01998403615, 0, 0});
    expect_pair(tamura_nei(p.p3, ones, freqs, .5), {.3634373233, .04620505342, 0, 0});
}

TEST(NucleotideDistance, OfIdenticalSequencesIsZeroUnderEveryMethod) {
    PairCounts const c = counts("ACGTACGTAC-?RG", "ACGTACGTAC-?RG");
    NucleotideMethod m;
    m.frequencies = freqs;
    for (double const a : {0.0, 0.5}) {
        m.gamma_a = a;
        for (m.code = 0; m.code <= 6; ++m.code) {
            PairDistance const d = nucleotide_distance(m, c);
            EXPECT_EQ(d.status, DistanceStatus::ok) << m.code;
            EXPECT_EQ(d.distance, 0.0) << m.code;
            EXPECT_EQ(d.variance, 0.0) << m.code;
            EXPECT_EQ(d.P, 0.0);
            EXPECT_EQ(d.Q, 0.0);
        }
    }
    EXPECT_EQ(kimura_2p(c, ones, 0).R, -1.0);
    EXPECT_EQ(proportion_of_difference(c, ones).R, -1.0);
    EXPECT_EQ(tamura(c, ones, freqs).R, -1.0);
    EXPECT_EQ(tamura_nei(c, ones, freqs, 0).R, 0.0);
}

TEST(NucleotideDistance, OfSequencesThatShareNoKnownSiteIsZero) {
    PairCounts const c = counts("????", "????");
    NucleotideMethod m;
    m.frequencies = freqs;
    for (m.code = 0; m.code <= 6; ++m.code) {
        PairDistance const d = nucleotide_distance(m, c);
        EXPECT_EQ(d.status, DistanceStatus::ok) << m.code;
        EXPECT_EQ(d.distance, 0.0) << m.code;
        EXPECT_EQ(d.variance, 0.0) << m.code;
    }
    EXPECT_EQ(proportion_of_difference(c, ones).R, -1.0);
}

TEST(NucleotideDistance, DeletionIsADifferenceOfUncorrectedDistancesOnly) {
    PairCounts const c = counts("ACGTA", "AC-TA");
    EXPECT_EQ(pairwise_difference(c, ones).distance, 1.0);
    EXPECT_EQ(pairwise_difference(c, uneven).distance, 0.5);
    NucleotideMethod m;
    m.frequencies = freqs;
    for (int const code : {1, 2, 4, 5, 6}) {
        m.code = code;
        EXPECT_EQ(nucleotide_distance(m, c).distance, 0.0) << code;
    }
    SiteWeights const without_deletions{.deletion = 0.0};
    EXPECT_EQ(pairwise_difference(c, without_deletions).distance, 0.0);
    EXPECT_EQ(pairwise_difference(c, without_deletions).sites, 5.0);
}

TEST(JukesCantor, FailsAtThreeQuarters) {
    PairDistance const d = jukes_cantor(counts("ACGT", "AAAA"), ones, 0);
    EXPECT_EQ(d.status, DistanceStatus::jukes_cantor_divergent);
    EXPECT_EQ(d.distance, -0.75);
}

TEST(Kimura2P, FailsOnlyWhenALogarithmIsOfZero) {
    EXPECT_EQ(kimura_2p(counts("AC", "GC"), ones, 0).status, DistanceStatus::kimura_divergent);
    PairDistance const beyond = kimura_2p(counts("AAC", "GGC"), ones, 0);
    EXPECT_EQ(beyond.status, DistanceStatus::ok);
    EXPECT_TRUE(std::isnan(beyond.distance));
}

TEST(TajimaNei, FailsWhenABaseDoesNotOccur) {
    NucleotideFrequencies const no_g{.c = .4, .t = .3, .a = .3, .g = 0};
    EXPECT_EQ(tajima_nei(counts("ACT", "ACC"), ones, no_g).status, DistanceStatus::base_absent);
    EXPECT_EQ(tajima_nei(counts("ACT", "ACT"), ones, no_g).status, DistanceStatus::ok);
    EXPECT_EQ(tamura_nei(counts("ACT", "ACC"), ones, no_g, 0).status, DistanceStatus::tamura_nei_unbalanced);
}

TEST(TajimaNei, FailsForDivergentSequences) {
    EXPECT_EQ(tajima_nei(counts("ACGT", "CATG"), ones, freqs).status, DistanceStatus::tajima_nei_divergent);
}

TEST(Tamura, FailsWithoutVariationInGcContentAndForDivergentSequences) {
    NucleotideFrequencies const at_only{.c = 0, .t = .5, .a = .5, .g = 0};
    EXPECT_EQ(tamura(counts("AAT", "AAT"), ones, at_only).status, DistanceStatus::tamura_unbalanced);
    EXPECT_EQ(tamura(counts("ACAC", "CAAC"), ones, freqs).status, DistanceStatus::tamura_unbalanced);
}

TEST(TamuraNei, FailsForDivergentSequencesWithAndWithoutGamma) {
    EXPECT_EQ(tamura_nei(counts("ACGT", "GTAC"), ones, freqs, 0).status, DistanceStatus::tamura_nei_unbalanced);
    EXPECT_EQ(tamura_nei(counts("ACGT", "GTAC"), ones, freqs, .7).status, DistanceStatus::tamura_nei_not_finite);
}

TEST(PairwiseDifference, AmbiguousPairFollowsTheTransitionWeight) {
    PairCounts const c = counts("AC", "BC");  // A against B is ambiguous
    SiteWeights const no_transversions{.transition = 1.0, .transversion = 0.0, .deletion = 1.0};
    EXPECT_EQ(pairwise_difference(c, no_transversions).distance, 0.0);
    EXPECT_EQ(pairwise_difference(c, no_transversions).sites, 1.0);
    SiteWeights const no_transitions{.transition = 0.0, .transversion = 3.0, .deletion = 1.0};
    EXPECT_EQ(pairwise_difference(c, no_transitions).distance, 0.0);
    EXPECT_EQ(pairwise_difference(c, no_transitions).sites, 4.0);
    SiteWeights const none{.transition = 0.0, .transversion = 0.0, .deletion = 0.0};
    EXPECT_EQ(pairwise_difference(c, none).sites, 2.0);
}

TEST(NucleotidePairClass, AgreesWithTheListOfPairsForAllCharacters) {
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            if (a != b) {
                EXPECT_EQ(nucleotide_pair_class(static_cast<char>(a), static_cast<char>(b)),
                          oracle::pair_class(static_cast<char>(a), static_cast<char>(b)))
                    << a << ' ' << b;
            }
        }
    }
    EXPECT_EQ(nucleotide_pair_class('-', 'B'), SiteClass::deletion);
    EXPECT_EQ(nucleotide_pair_class('B', '-'), SiteClass::none);
}

/// Random sequences over an alphabet; a linear congruential generator keeps the tests apart from the program's own.
class Sequences {
public:
    std::vector<std::string> make(std::size_t n, std::size_t length, std::string const& alphabet) {
        std::vector<std::string> all(n);
        for (std::string& s : all) {
            for (std::size_t i = 0; i < length; ++i) {
                s += alphabet[next() % alphabet.size()];
            }
        }
        return all;
    }
    unsigned next() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<unsigned>(state_ >> 33);
    }

private:
    unsigned long long state_ = 12345;
};

struct PlaneCase {
    char const* alphabet;
    char missing;
};

void PrintTo(PlaneCase const& c, std::ostream* out) { *out << c.alphabet << " missing " << c.missing; }

class NucleotidePlanesOver : public testing::TestWithParam<PlaneCase> {};

TEST_P(NucleotidePlanesOver, CountTheSameAsThePlainScan) {
    Sequences source;
    for (std::size_t const length : {1, 63, 64, 65, 200, 2100}) {
        std::vector<std::string> sequences = source.make(6, length, GetParam().alphabet);
        sequences.push_back(sequences[0].substr(0, length / 2));  // ends early
        std::vector<int> usable(length, 1);
        for (int& flag : usable) {
            flag = source.next() % 5 != 0;
        }
        std::vector<std::string_view> const views(sequences.begin(), sequences.end());
        NucleotidePlanes const planes(views, usable, GetParam().missing);
        NucleotidePlanes const portable(views, usable, GetParam().missing, WordCount::portable);
        for (std::size_t i = 0; i < sequences.size(); ++i) {
            for (std::size_t j = 0; j < sequences.size(); ++j) {
                PairCounts const wanted = oracle::scan(sequences[i], sequences[j], usable, GetParam().missing);
                EXPECT_EQ(count_pair(sequences[i], sequences[j], usable, GetParam().missing), wanted);
                EXPECT_EQ(planes.compare(i, j, true), wanted) << length << ' ' << i << ' ' << j;
                EXPECT_EQ(portable.compare(i, j, true), wanted) << length << ' ' << i << ' ' << j;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Alphabets, NucleotidePlanesOver,
                         testing::Values(PlaneCase{"ACGT", '?'}, PlaneCase{"ACGT-", '?'}, PlaneCase{"ACGT?", '?'},
                                         PlaneCase{"AAACCGGTT-?", '?'}, PlaneCase{"ACGTN-", 'N'},
                                         PlaneCase{"ACGT-", '-'}, PlaneCase{"ACGT-R", '-'},
                                         PlaneCase{"ACGT-?BDHKMNRSVWY01xz", '?'}, PlaneCase{"ACGTRY?", 'R'},
                                         PlaneCase{"ACGT-", 'A'}, PlaneCase{"01-?", '?'}));

TEST(NucleotidePlanes, CountSitesThatNeverVary) {
    Sequences source;
    std::string const common = source.make(1, 700, "ACGT-?R")[0];
    std::vector<std::string> s(4, common);
    for (std::size_t i = 0; i < s.size(); ++i) {
        for (std::size_t site = i; site < 700; site += 97) {
            s[i][site] = "ACGT-?RY"[(i + site) % 8];
        }
    }
    s.push_back(common.substr(0, 350));
    std::vector<int> const usable(700, 1);
    for (std::size_t const k : {std::size_t{4}, s.size()}) {  // without and with the short one
        std::vector<std::string_view> const views(s.begin(), s.begin() + static_cast<std::ptrdiff_t>(k));
        NucleotidePlanes const planes(views, usable, '?');
        for (std::size_t i = 0; i < k; ++i) {
            for (std::size_t j = 0; j < k; ++j) {
                EXPECT_EQ(planes.compare(i, j, true), oracle::scan(s[i], s[j], usable, '?'));
            }
        }
    }
}

TEST(NucleotidePlanes, TakeAnyCharacter) {
    std::string all;
    for (int c = 0; c < 256; ++c) {
        all += static_cast<char>(c);
    }
    std::vector<std::string> const s = {all, all.substr(1) + all[0], all.substr(2, 200)};
    std::vector<std::string_view> const views(s.begin(), s.end());
    std::vector<int> const usable(all.size(), 1);
    NucleotidePlanes const planes(views, usable, '?');
    for (std::size_t i = 0; i < s.size(); ++i) {
        for (std::size_t j = 0; j < s.size(); ++j) {
            EXPECT_EQ(planes.compare(i, j, true), oracle::scan(s[i], s[j], usable, '?')) << i << ' ' << j;
        }
    }
}

TEST(PairwiseDifference, AgreesWithSummingSiteBySite) {
    Sequences source;
    std::vector<std::string> const s = source.make(8, 300, "ACGT-?BDHKMNRSVWY");
    std::vector<int> const usable(300, 1);
    for (SiteWeights const w :
         {ones, uneven, SiteWeights{0, 1, 1}, SiteWeights{2, 0, 0.25}, SiteWeights{0, 0, 0}, SiteWeights{-1, 3, 0.5}}) {
        for (std::size_t i = 1; i < s.size(); ++i) {
            oracle::WeightedScan const wanted = oracle::weighted_scan(s[i], s[i - 1], usable, '?', w);
            PairDistance const d = pairwise_difference(count_pair(s[i], s[i - 1], usable, '?'), w);
            EXPECT_DOUBLE_EQ(d.distance, wanted.differences);
            EXPECT_DOUBLE_EQ(d.sites, wanted.sites);
        }
    }
}

TEST(NucleotideDistanceRow, StopsAtTheFirstPairThatCannotBeCorrected) {
    std::vector<std::string_view> const s = {"ACGTACGT", "TGCATGCA", "ACGTACGA"};
    std::vector<int> const usable(8, 1);
    NucleotidePlanes const planes(s, usable, '?');
    NucleotideMethod m;
    m.code = 1;
    std::vector<double> d(3, -1.0);
    std::vector<double> v(3, -1.0);
    RowResult const r = nucleotide_distance_row(planes, 2, m, d, v);
    EXPECT_EQ(r.status, DistanceStatus::jukes_cantor_divergent);
    EXPECT_EQ(r.failed_at, 1U);
    EXPECT_GT(d[0], 0.0);
    EXPECT_EQ(d[1], -1.0);
}

TEST(RflpDistance, CountsDeletionsWhenTheirWeightIsPositive) {
    RflpCounts const c = count_rflp_pair("0101?-1-", "0110?11?", {}, '?');
    EXPECT_EQ(c.sites, 8);
    EXPECT_EQ(c.changes, 2);
    EXPECT_EQ(c.deletions, 1);
    EXPECT_EQ(rflp_difference(c, 1.0).distance, 3.0);
    EXPECT_DOUBLE_EQ(rflp_difference(c, 1.0).variance, 8 * (1 - 3.0 / 8) * (3.0 / 8));
    EXPECT_EQ(rflp_difference(c, 0.0).distance, 2.0);
    EXPECT_DOUBLE_EQ(rflp_proportion(c, 1.0).distance, 3.0 / 8);
    EXPECT_DOUBLE_EQ(rflp_proportion(c, 1.0).variance, (1 - 3.0 / 8) * (3.0 / 8) / 8);
    EXPECT_EQ(rflp_proportion({}, 1.0).distance, 0.0);
}

TEST(RflpRows, CountTheSameAsThePlainScan) {
    Sequences source;
    for (std::size_t const length : {1, 254, 255, 256, 1000}) {
        std::vector<std::string> s = source.make(5, length, "01-?x");
        s.push_back(s[0].substr(0, length / 3));
        std::vector<int> usable(length, 1);
        for (int& flag : usable) {
            flag = source.next() % 4 != 0;
        }
        std::vector<std::string_view> const views(s.begin(), s.end());
        RflpRows const rows(views, usable, '?');
        for (std::size_t i = 0; i < s.size(); ++i) {
            for (std::size_t j = 0; j < s.size(); ++j) {
                EXPECT_EQ(rows.compare(i, j), count_rflp_pair(s[i], s[j], usable, '?'));
            }
        }
    }
}

}  // namespace
}  // namespace tov
