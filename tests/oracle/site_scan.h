// Slow, obvious counts of the sites of a pair of sequences, one nested test a character.
#pragma once

#include <string>
#include <vector>

#include "diversity/formula/nucleotide_distance.h"

namespace tov::oracle {

/// Class of two different characters, by a list of all pairs.
SiteClass pair_class(char a, char b);
/// Counts of a pair of sequences.
PairCounts scan(std::string const& s1, std::string const& s2, std::vector<int> const& usable, char missing);
/// Weighted sites and differences, added up site by site.
struct WeightedScan {
    double sites = 0.0;
    double differences = 0.0;
};
WeightedScan weighted_scan(std::string const& s1, std::string const& s2, std::vector<int> const& usable, char missing,
                           SiteWeights const& w);

}  // namespace tov::oracle
