// Distances between two aligned DNA sequences or restriction haplotypes.
#include "diversity/formula/nucleotide_distance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace tov {
namespace {

constexpr double four_thirds = 1.3333333333333333;

constexpr double sq(double x) noexcept { return x * x; }

/// One row of the table of classes: the second characters of each class for a first character.
struct ClassRow {
    char first;
    char const* transition;
    char const* transversion;
    char const* deletion;
    char const* ambiguous;
};

constexpr ClassRow class_rows[] = {
    {'-', "", "", "ABCDGHKMNRSTVWY", ""},
    {'0', "", "", "-", "1"},
    {'1', "", "", "-", "0"},
    {'A', "G", "CTY", "-", "BKS"},
    {'B', "", "", "", "A"},  // kept on purpose: no rule for '-', so that a gap after B is no deletion
    {'C', "T", "AGR", "-", "DKW"},
    {'D', "", "", "-", "C"},
    {'G', "A", "CTY", "-", "HMW"},
    {'H', "", "", "-", "G"},
    {'K', "", "", "-", "ACM"},
    {'M', "", "", "-", "GKT"},
    {'N', "", "", "-", ""},
    {'R', "", "CTY", "-", ""},
    {'S', "", "", "-", "ATW"},
    {'T', "C", "AGR", "-", "MSV"},
    {'V', "", "", "-", "T"},
    {'W', "", "", "-", "CGS"},
    {'Y', "", "AGR", "-", ""},
};
constexpr int nb_codes = 1 + static_cast<int>(std::size(class_rows));

struct ClassTable {
    std::array<unsigned char, 256> code{};  ///< 0 for a character without a row
    std::array<std::array<SiteClass, nb_codes>, nb_codes> classes{};
};

constexpr ClassTable make_class_table() {
    ClassTable t;
    for (std::size_t r = 0; r < std::size(class_rows); ++r) {
        t.code[static_cast<unsigned char>(class_rows[r].first)] = static_cast<unsigned char>(r + 1);
    }
    for (std::size_t r = 0; r < std::size(class_rows); ++r) {
        auto fill = [&](char const* seconds, SiteClass c) {
            for (; *seconds != '\0'; ++seconds) {
                t.classes[r + 1][t.code[static_cast<unsigned char>(*seconds)]] = c;
            }
        };
        fill(class_rows[r].transition, SiteClass::transition);
        fill(class_rows[r].transversion, SiteClass::transversion);
        fill(class_rows[r].deletion, SiteClass::deletion);
        fill(class_rows[r].ambiguous, SiteClass::ambiguous);
    }
    return t;
}

constexpr ClassTable class_table = make_class_table();

/// Adds an unordered pair of two different bases; other characters are passed over.
void add_base_pair(PairCounts& c, char a, char b) noexcept {
    char const low = std::min(a, b);
    char const high = std::max(a, b);
    if (low == 'A') {
        c.ag += high == 'G';
        c.ac += high == 'C';
        c.at += high == 'T';
    } else if (low == 'C') {
        c.ct += high == 'T';
        c.cg += high == 'G';
    } else if (low == 'G') {
        c.gt += high == 'T';
    }
}

/// Variance of a distance whose derivatives by P and Q are c1 and c3.
double delta_variance(double P, double Q, double c1, double c3, double sites) noexcept {
    return (c3 * c3 * Q + c1 * c1 * P - sq(Q * c3 + P * c1)) / sites;
}

/// Sites and differences of the two uncorrected distances, the differences by kind.
struct WeightedCounts {
    double sites = 0.0;
    double transitions = 0.0;
    double transversions = 0.0;
    double deletions = 0.0;
};

WeightedCounts weigh(PairCounts const& c, SiteWeights const& w) noexcept {
    WeightedCounts r;
    r.sites = c.equal + c.equal_gap + c.unclassified;
    auto add = [&r](int n, double weight, double& kind) {
        if (weight <= 0.0) {
            r.sites += n;
        } else {
            kind += n * weight;
            r.sites += n * weight;
        }
    };
    add(c.transitions, w.transition, r.transitions);
    add(c.transversions, w.transversion, r.transversions);
    add(c.deletions, w.deletion, r.deletions);
    if (c.ambiguous > 0) {
        // kept on purpose: the transition weight alone is tested, so that with a transversion weight of 0 an ambiguous
        // pair is neither a site nor a difference.
        if (w.transition > 0.0) {
            bool const as_transversion = w.transversion < w.transition;
            double const weight = as_transversion ? w.transversion : w.transition;
            (as_transversion ? r.transversions : r.transitions) += c.ambiguous * weight;
            r.sites += c.ambiguous * weight;
        } else {
            r.sites += w.transversion <= 0.0 ? c.ambiguous : c.ambiguous * w.transversion;
        }
    }
    return r;
}

int counted(int n, double weight) noexcept { return weight > 0.0 ? n : 0; }

/// Sites compared, and the shares P and Q of transitions and transversions among them.
/// @param uncorrectable  sites that are compared though a gap or an unknown character stands there.
PairDistance shares_of_changes(PairCounts const& c, SiteWeights const& w, int uncorrectable) noexcept {
    PairDistance r;
    r.sites = c.equal + c.transitions + c.transversions + c.ambiguous + uncorrectable;
    int const ts = counted(c.transitions, w.transition);
    int const tv = counted(c.transversions, w.transversion);
    r.differences = ts + tv;
    if (r.sites > 0.0) {
        r.P = ts / r.sites;
        r.Q = tv / r.sites;
    }
    return r;
}

/// Ratio of transitions to transversions of Tamura's model, and its variance.
///
/// w1 = 1 - P / h - Q and w2 = 1 - 2 Q, neither 0, w2 not 1; h = 1/2 is Kimura's model.
void set_ratio(PairDistance& r, double w1, double w2, double h) noexcept {
    double const l1 = std::log(w1);
    double const l = std::log(w2);
    double const da = -2.0 * (1.0 / w1) / l;
    double const db = (4.0 * (1.0 / w2) * l1 / (l * l) + da) * h;
    r.R = 2.0 * h * l1 / l - h;
    r.var_R = delta_variance(r.P, r.Q, da, db, r.sites);
}

PairDistance failed(DistanceStatus status, PairDistance r) noexcept {
    r.status = status;
    r.distance = 0.0;
    r.variance = 0.0;
    return r;
}

/// Sites of the distances that count pairs of pure bases.
int base_pair_sites(PairCounts const& c) noexcept { return c.equal + c.ag + c.ct + c.ac + c.at + c.cg + c.gt; }

}  // namespace

SiteClass nucleotide_pair_class(char a, char b) noexcept {
    return class_table
        .classes[class_table.code[static_cast<unsigned char>(a)]][class_table.code[static_cast<unsigned char>(b)]];
}

void add_site(PairCounts& c, char a, char b, char missing) noexcept {
    if (a == b) {
        if (a != missing) {
            ++(a == '-' ? c.equal_gap : c.equal);
        }
        return;
    }
    add_base_pair(c, a, b);
    SiteClass const kind = nucleotide_pair_class(a, b);
    switch (kind) {
        case SiteClass::transition:
            ++c.transitions;
            break;
        case SiteClass::transversion:
            ++c.transversions;
            break;
        case SiteClass::ambiguous:
            ++c.ambiguous;
            break;
        case SiteClass::deletion:
        case SiteClass::none:
            ++(kind == SiteClass::none ? c.unclassified : c.deletions);
            c.uncorrectable += (a != missing && b != '-') || (b != missing && a != '-');
            c.uncorrectable_known += a != missing && b != missing && a != '-' && b != '-';
            break;
    }
}

PairCounts count_pair(std::string_view s1, std::string_view s2, std::span<int const> usable, char missing) noexcept {
    PairCounts c;
    std::size_t n = std::min(s1.size(), s2.size());
    if (usable.data() != nullptr) {
        n = std::min(n, usable.size());
    }
    for (std::size_t site = 0; site < n; ++site) {
        if (usable.data() == nullptr || usable[site] != 0) {
            add_site(c, s1[site], s2[site], missing);
        }
    }
    return c;
}

PairDistance pairwise_difference(PairCounts const& c, SiteWeights const& w) noexcept {
    WeightedCounts const n = weigh(c, w);
    PairDistance r;
    r.sites = n.sites;
    r.differences = n.transitions + n.transversions + n.deletions;
    double const p = n.sites > 0.0 ? r.differences / n.sites : 0.0;
    r.distance = r.differences;
    r.variance = (1.0 - p) * p * n.sites;
    return r;
}

PairDistance proportion_of_difference(PairCounts const& c, SiteWeights const& w) noexcept {
    WeightedCounts const n = weigh(c, w);
    PairDistance r;
    r.sites = n.sites;
    r.differences = n.transitions + n.transversions + n.deletions;
    r.R = -1.0;
    r.var_R = -1.0;
    if (n.sites <= 0.0) {
        return r;
    }
    r.P = n.transitions / n.sites;
    r.Q = n.transversions / n.sites;
    if (r.Q != 0.0) {
        double const a = 1.0 / r.Q;
        double const b = -r.P / (r.Q * r.Q);
        r.R = r.P / r.Q;
        r.var_R = (b * b * r.Q + a * a * r.P - sq(r.Q * b + r.P * a)) / n.sites;
    }
    r.distance = r.differences / n.sites;
    r.variance = (1.0 - r.distance) * r.distance / n.sites;
    return r;
}

PairDistance jukes_cantor(PairCounts const& c, SiteWeights const& w, double a) noexcept {
    PairDistance r;
    r.sites = c.equal + c.transitions + c.transversions + c.ambiguous + c.uncorrectable;
    r.differences = counted(c.transitions, w.transition) + counted(c.transversions, w.transversion) +
                    counted(c.ambiguous, w.transition);
    if (r.sites < 1.0) {
        return r;
    }
    double const p = r.differences / r.sites;
    if (p >= 0.75) {
        r = failed(DistanceStatus::jukes_cantor_divergent, r);
        r.distance = -p;
        return r;
    }
    double const u = 1.0 - four_thirds * p;
    if (a != 0.0) {
        r.distance = 0.75 * a * (std::pow(u, -1.0 / a) - 1.0);
        r.variance = (1.0 - p) * p * std::pow(u, -2.0 * (1.0 / a + 1.0)) / r.sites;
    } else {
        r.distance = -0.75 * std::log(u);
        r.variance = (1.0 - p) * p / (r.sites * u * u);
    }
    return r;
}

PairDistance kimura_2p(PairCounts const& c, SiteWeights const& w, double a) noexcept {
    PairDistance r = shares_of_changes(c, w, c.uncorrectable);
    if (r.sites <= 0.0) {
        return r;
    }
    double const w1 = 1.0 - 2.0 * r.P - r.Q;
    double const w2 = 1.0 - 2.0 * r.Q;
    if (w1 == 0.0 || w2 == 0.0) {
        return failed(DistanceStatus::kimura_divergent, r);
    }
    r.R = -1.0;
    r.var_R = -1.0;
    if (a != 0.0) {
        double const e = -1.0 / a;
        double const c1 = std::pow(w1, e - 1.0);
        double const c2 = std::pow(w2, e - 1.0);
        double const w1e = std::pow(w1, e);
        double const w2e = std::pow(w2, e);
        r.distance = (a / 2.0) * (w1e + w2e / 2.0 - 1.5);
        r.variance = delta_variance(r.P, r.Q, c1, (c1 + c2) / 2.0, r.sites);
        if (r.Q != 0.0) {
            r.R = (w1e - w2e / 2.0 - 0.5) / (w2e - 1.0);
        }
        return r;
    }
    double const c1 = 1.0 / w1;
    double const c2 = 1.0 / w2;
    r.distance = 0.5 * std::log(c1) + 0.25 * std::log(c2);
    r.variance = delta_variance(r.P, r.Q, c1, (c1 + c2) / 2.0, r.sites);
    if (w2 != 1.0) {
        set_ratio(r, w1, w2, 0.5);
    }
    return r;
}

PairDistance tajima_nei(PairCounts const& c, SiteWeights const& w, NucleotideFrequencies const& f) noexcept {
    PairDistance r;
    r.sites = base_pair_sites(c);
    r.differences = counted(c.ag + c.ct, w.transition) + counted(c.ac + c.at + c.cg + c.gt, w.transversion);
    if (r.differences == 0.0) {
        return r;
    }
    if (f.c <= 0.0 || f.t <= 0.0 || f.a <= 0.0 || f.g <= 0.0) {
        return failed(DistanceStatus::base_absent, r);
    }
    auto term = [&r](int n, double g1, double g2) { return sq(n / r.sites) / (g1 * g2); };
    double h = term(c.ct, f.t, f.c) + term(c.ac, f.a, f.c) + term(c.at, f.a, f.t) + term(c.cg, f.g, f.c) +
               term(c.gt, f.g, f.t) + term(c.ag, f.g, f.a);
    h *= 0.5;
    if (h == 0.0) {
        return failed(DistanceStatus::base_absent, r);
    }
    double const s = sq(f.c) + sq(f.t) + sq(f.a) + sq(f.g);
    double const p = r.differences / r.sites;
    double const b = 0.5 * (p * p / h + 1.0 - s);
    if (p / b >= 1.0) {
        return failed(DistanceStatus::tajima_nei_divergent, r);
    }
    double const u = 1.0 - p / b;
    r.distance = -b * std::log(u);
    r.variance = (1.0 - p) * p / (r.sites * u * u);
    return r;
}

PairDistance tamura(PairCounts const& c, SiteWeights const& w, NucleotideFrequencies const& f) noexcept {
    PairDistance r = shares_of_changes(c, w, c.uncorrectable_known);
    if (r.sites <= 0.0) {
        return r;
    }
    double const theta = f.theta();
    double const h = 2.0 * theta * (1.0 - theta);
    if (h <= 0.0) {
        return failed(DistanceStatus::tamura_unbalanced, r);
    }
    double const w1 = 1.0 - r.P / h - r.Q;
    double const w2 = 1.0 - 2.0 * r.Q;
    if (w1 <= 0.0 || w2 <= 0.0) {
        return failed(DistanceStatus::tamura_unbalanced, r);
    }
    double const c1 = 1.0 / w1;
    double const c2 = 1.0 / w2;
    r.distance = -h * std::log(w1) - 0.5 * (1.0 - h) * std::log(w2);
    r.variance = delta_variance(r.P, r.Q, c1, (c1 - c2) * h + c2, r.sites);
    r.R = -1.0;
    r.var_R = -1.0;
    if (r.Q > 0.0) {
        if (w2 == 1.0) {
            return failed(DistanceStatus::log_of_zero, r);
        }
        set_ratio(r, w1, w2, h);
    }
    return r;
}

namespace {

/// Quantities of the Tamura and Nei distance that depend on the base frequencies and the shares of changes alone.
struct TamuraNeiTerms {
    double gA, gC, gG, gT, gR, gY, k1, k2, k3, w1, w2, w3, P1, P2, Q, sites;
};

void tamura_nei_gamma(TamuraNeiTerms const& t, double a, PairDistance& r) noexcept {
    double const e = -1.0 / a;
    double const d = a * (t.k1 * std::pow(t.w1, e) + t.k2 * std::pow(t.w2, e) + t.k3 * std::pow(t.w3, e) -
                          2.0 * (t.gR * t.gY + t.gC * t.gT + t.gA * t.gG));
    constexpr double low = std::numeric_limits<float>::min();
    constexpr double high = std::numeric_limits<float>::max();
    if (!(d >= low && d <= high)) {
        r = failed(DistanceStatus::tamura_nei_not_finite, r);
        return;
    }
    double const f = -(1.0 / a + 1.0);
    double const c1 = std::pow(t.w1, f);
    double const c2 = std::pow(t.w2, f);
    double const c3 =
        t.k2 / (2.0 * t.gY) * c2 + t.k1 / (2.0 * t.gR) * c1 +
        std::pow(t.w3, f) * ((sq(t.gC) + sq(t.gT)) / (2.0 * sq(t.gY)) + (sq(t.gA) + sq(t.gG)) / (2.0 * sq(t.gR)));
    r.distance = d;
    r.variance = (c3 * c3 * t.Q + c2 * c2 * t.P2 + c1 * c1 * t.P1 - sq(t.Q * c3 + t.P2 * c2 + t.P1 * c1)) / t.sites;
    r.R = -1.0;
    r.var_R = -1.0;
}

void tamura_nei_plain(TamuraNeiTerms const& t, PairDistance& r) noexcept {
    if (t.w1 <= 0.0 || t.w2 <= 0.0 || t.w3 <= 0.0) {
        r = failed(DistanceStatus::tamura_nei_unbalanced, r);
        return;
    }
    double const l3 = std::log(t.w3);
    r.distance = -t.k1 * std::log(t.w1) - t.k2 * std::log(t.w2) - t.k3 * l3;
    double const A = 2.0 * t.gA * t.gG * t.gR;
    double const B = 2.0 * t.gC * t.gT * t.gY;
    double const u1 = A - sq(t.gR) * t.P1 - t.gA * t.gG * t.Q;
    double const u2 = B - sq(t.gY) * t.P2 - t.gC * t.gT * t.Q;
    double const c1 = A / u1;
    double const c2 = B / u2;
    double const c3 = ((sq(t.gA) + sq(t.gG)) * sq(t.gY) + (sq(t.gT) + sq(t.gC)) * sq(t.gR)) /
                          (2.0 * sq(t.gR) * sq(t.gY) - t.gR * t.gY * t.Q) +
                      2.0 * sq(t.gC) * sq(t.gT) / (u2 * t.gY) + 2.0 * sq(t.gA) * sq(t.gG) / (u1 * t.gR);
    r.variance = (c3 * c3 * t.Q + c2 * c2 * t.P2 + c1 * c1 * t.P1 - sq(t.Q * c3 + t.P2 * c2 + t.P1 * c1)) / t.sites;
    r.transition_part = r.distance + 2.0 * t.gR * t.gY * l3;
    r.transversion_part = r.distance - r.transition_part;
    r.R = r.distance != 0.0 ? r.transition_part / r.distance : 0.0;
    r.var_R = -1.0;
}

}  // namespace

PairDistance tamura_nei(PairCounts const& c, SiteWeights const& w, NucleotideFrequencies const& f, double a) noexcept {
    PairDistance r;
    r.sites = base_pair_sites(c);
    int const n1 = counted(c.ag, w.transition);
    int const n2 = counted(c.ct, w.transition);
    int const n3 = counted(c.ac + c.at + c.cg + c.gt, w.transversion);
    r.differences = n1 + n2 + n3;
    if (r.differences == 0.0 || r.sites == 0.0) {
        return r;
    }
    TamuraNeiTerms t{};
    t.sites = r.sites;
    t.P1 = n1 / r.sites;
    t.P2 = n2 / r.sites;
    t.Q = n3 / r.sites;
    r.P = t.P1 + t.P2;
    r.Q = t.Q;
    if (f.c == 0.0 || f.t == 0.0 || f.a == 0.0 || f.g == 0.0) {
        return failed(DistanceStatus::tamura_nei_unbalanced, r);
    }
    t.gA = f.a;
    t.gC = f.c;
    t.gG = f.g;
    t.gT = f.t;
    t.gR = f.a + f.g;
    t.gY = f.c + f.t;
    t.k1 = 2.0 * f.a * f.g / t.gR;
    t.k2 = 2.0 * f.c * f.t / t.gY;
    t.k3 = 2.0 * t.gR * t.gY - t.k1 * t.gY - t.k2 * t.gR;
    t.w1 = 1.0 - t.P1 / t.k1 - t.Q / (2.0 * t.gR);
    t.w2 = 1.0 - t.P2 / t.k2 - t.Q / (2.0 * t.gY);
    t.w3 = 1.0 - t.Q / (2.0 * t.gR * t.gY);
    if (a != 0.0) {
        tamura_nei_gamma(t, a, r);
    } else {
        tamura_nei_plain(t, r);
    }
    return r;
}

RflpCounts count_rflp_pair(std::string_view s1, std::string_view s2, std::span<int const> usable,
                           char missing) noexcept {
    RflpCounts c;
    std::size_t n = std::min(s1.size(), s2.size());
    if (usable.data() != nullptr) {
        n = std::min(n, usable.size());
    }
    for (std::size_t site = 0; site < n; ++site) {
        if (usable.data() != nullptr && usable[site] == 0) {
            continue;
        }
        char const a = s1[site];
        char const b = s2[site];
        bool const differ = (a != b) & (a != missing) & (b != missing);
        bool const gap = (a == '-') | (b == '-');
        ++c.sites;
        c.changes += differ & !gap;
        c.deletions += differ & gap;
    }
    return c;
}

PairDistance rflp_difference(RflpCounts const& c, double deletion_weight) noexcept {
    PairDistance r;
    r.sites = c.sites;
    r.differences = c.changes + counted(c.deletions, deletion_weight);
    r.distance = r.differences;
    if (c.sites > 0) {
        double const p = r.differences / r.sites;
        r.variance = r.sites * (1.0 - p) * p;
    }
    return r;
}

PairDistance rflp_proportion(RflpCounts const& c, double deletion_weight) noexcept {
    PairDistance r;
    r.sites = c.sites;
    r.differences = c.changes + counted(c.deletions, deletion_weight);
    if (c.sites > 0) {
        r.distance = r.differences / r.sites;
        r.variance = (1.0 - r.distance) * r.distance / r.sites;
    }
    return r;
}

}  // namespace tov
