/// Minimum spanning tree and the links of equal length that could replace a link of it.
#pragma once

#include <span>
#include <vector>

namespace tov {

/// One link of the tree: an OTU of the tree so far, the OTU that joined, and their distance.
struct TreeLink {
    int first = 0;
    int second = 0;
    double length = 0.0;
};

struct SpanningNetwork {
    std::vector<TreeLink> links;                 ///< n - 1 links in the order built
    std::vector<std::vector<int>> alternatives;  ///< per OTU, partners at the length of a tree link between the two
    int unattached = 0;                          ///< links whose first OTU was not in the tree
};

/// Minimum spanning tree of n OTUs by Prim's algorithm from OTU 0, with the alternative links of its network.
///
/// Ties keep the first candidate in the order of the OTUs still to attach. An alternative of a link (u, v), found when
/// v joins, is a pair (v, k) at exactly the link's length that lies on the tree path between v and k; each pair stands
/// once, on the side where it was found first. Lengths are compared exactly.
///
/// @param n     number of OTUs; below 2 gives no link.
/// @param dist  n x n, row-major; only dist[i*n + j], j < i, is read. A distance of 3.4028234663852886e+38 or more is
///              never taken: the OTU then hangs on itself with that length and counts as unattached.
/// Draws: none. Cost: n^2, and a tree path for each alternative.
/// Source: Prim 1957, Bell Syst. Tech. J. 36: 1389-1401; Rohlf 1973, Comput. J. 16: 93-95.
[[nodiscard]] SpanningNetwork minimum_spanning_network(int n, std::span<double const> dist);

}  // namespace tov
