// Slow, obvious counts of the sites of a pair of sequences.
#include "oracle/site_scan.h"

#include <set>
#include <string>

namespace tov::oracle {
namespace {

std::set<std::string> const transitions = {"AG", "GA", "CT", "TC"};
std::set<std::string> const transversions = {"AC", "AT", "AY", "CA", "CG", "CR", "GC", "GT", "GY",
                                             "RC", "RT", "RY", "TA", "TG", "TR", "YA", "YG", "YR"};
std::set<std::string> const ambiguous = {"01", "10", "AB", "AK", "AS", "BA", "CD", "CK", "CW", "DC",
                                         "GH", "GM", "GW", "HG", "KA", "KC", "KM", "MG", "MK", "MT",
                                         "SA", "ST", "SW", "TM", "TS", "TV", "VT", "WC", "WG", "WS"};
std::string const gap_first = "ABCDGHKMNRSTVWY";
std::string const gap_second = "01ACDGHKMNRSTVWY";

bool is_base(char c) { return c == 'A' || c == 'C' || c == 'G' || c == 'T'; }

int& base_pair(PairCounts& c, char a, char b) {
    std::string const key{a < b ? a : b, a < b ? b : a};
    if (key == "AC") return c.ac;
    if (key == "AG") return c.ag;
    if (key == "AT") return c.at;
    if (key == "CG") return c.cg;
    if (key == "CT") return c.ct;
    return c.gt;
}

}  // namespace

SiteClass pair_class(char a, char b) {
    std::string const key{a, b};
    if (transitions.count(key) != 0) return SiteClass::transition;
    if (transversions.count(key) != 0) return SiteClass::transversion;
    if (ambiguous.count(key) != 0) return SiteClass::ambiguous;
    if (a == '-' && gap_first.find(b) != std::string::npos) return SiteClass::deletion;
    if (b == '-' && gap_second.find(a) != std::string::npos) return SiteClass::deletion;
    return SiteClass::none;
}

PairCounts scan(std::string const& s1, std::string const& s2, std::vector<int> const& usable, char missing) {
    PairCounts c;
    for (std::size_t i = 0; i < s1.size() && i < s2.size() && i < usable.size(); ++i) {
        if (usable[i] == 0) continue;
        char const a = s1[i];
        char const b = s2[i];
        if (a == b) {
            if (a == missing) continue;
            if (a == '-') {
                c.equal_gap += 1;
            } else {
                c.equal += 1;
            }
            continue;
        }
        if (is_base(a) && is_base(b)) base_pair(c, a, b) += 1;
        SiteClass const k = pair_class(a, b);
        if (k == SiteClass::transition) c.transitions += 1;
        if (k == SiteClass::transversion) c.transversions += 1;
        if (k == SiteClass::ambiguous) c.ambiguous += 1;
        if (k == SiteClass::deletion) c.deletions += 1;
        if (k == SiteClass::none) c.unclassified += 1;
        if (k == SiteClass::none || k == SiteClass::deletion) {
            if ((a != missing && b != '-') || (b != missing && a != '-')) c.uncorrectable += 1;
            if (a != missing && b != missing && a != '-' && b != '-') c.uncorrectable_known += 1;
        }
    }
    return c;
}

WeightedScan weighted_scan(std::string const& s1, std::string const& s2, std::vector<int> const& usable, char missing,
                           SiteWeights const& w) {
    WeightedScan r;
    auto differ = [&r](double weight) {
        if (weight <= 0) {
            r.sites += 1;
        } else {
            r.sites += weight;
            r.differences += weight;
        }
    };
    for (std::size_t i = 0; i < s1.size() && i < s2.size() && i < usable.size(); ++i) {
        if (usable[i] == 0) continue;
        char const a = s1[i];
        char const b = s2[i];
        if (a == b) {
            if (a != missing) r.sites += 1;
            continue;
        }
        switch (pair_class(a, b)) {
            case SiteClass::transition:
                differ(w.transition);
                break;
            case SiteClass::transversion:
                differ(w.transversion);
                break;
            case SiteClass::deletion:
                differ(w.deletion);
                break;
            case SiteClass::none:
                r.sites += 1;
                break;
            case SiteClass::ambiguous:
                if (w.transition > 0) {
                    double const least = w.transversion < w.transition ? w.transversion : w.transition;
                    r.sites += least;
                    r.differences += least;
                } else if (w.transversion <= 0) {
                    r.sites += 1;
                } else {
                    r.sites += w.transversion;
                }
                break;
        }
    }
    return r;
}

}  // namespace tov::oracle
