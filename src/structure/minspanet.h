// Minimum spanning tree and network of haplotypes, and how they are printed.
#pragma once

#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "structure/formula/mst.h"

namespace tov {

class RectMat;

/// A node of the rooted binary tree that records a spanning tree: when OTU `second` joins OTU `first`, the leaf of
/// `first` gets a left son that is again `first` and a right son `second`.
struct TListElem {
    int parent = -1;  ///< -1 at the root
    int left = -1;    ///< -1 at a leaf
    int right = -1;
    int otu = 0;
    double length = 0.0;  ///< of the link that leaves this node
};

class TMinSpaNet {
public:
    /// @param distances  borrowed; its lower triangle is read, row = larger index.
    explicit TMinSpaNet(RectMat const* distances) : distances_(distances) {}

    /// Builds tree and network. An OTU that cannot be attached is warning 204. Returns 1.
    int MakeNetwork();

    [[nodiscard]] SpanningNetwork const& network() const noexcept { return network_; }

    /// Numbers from 1, lengths of the links and distances of the matrix.
    void PrintNetwork(std::ostream& out) const;
    /// The tree in NEXUS notation.
    ///
    /// @param name    of the tree, "_MST" follows; labels and name are written as they come.
    /// @param labels  one an OTU.
    void printMST(std::ostream& out, std::string_view name, std::span<std::string const> labels) const;

private:
    void AddSon(TreeLink const& link);
    void print_tree_structure(std::ostream& out, std::span<std::string const> labels) const;
    [[nodiscard]] std::string branch(int node) const;

    RectMat const* distances_;  // borrowed
    SpanningNetwork network_;
    std::vector<TListElem> nodes_;  ///< node 0 is the root
    std::vector<int> leaf_;         ///< per OTU its leaf, -1 while it is not in the tree
};

/// Prints the sections "MINIMUM SPANNING TREE", NEXUS notation and the alternative connections of a matrix.
///
/// @param labels  haplotype identifiers, as the user's data give them.
void print_spanning_network(std::ostream& out, RectMat const& distances, std::string_view name,
                            std::span<std::string const> labels);

}  // namespace tov
