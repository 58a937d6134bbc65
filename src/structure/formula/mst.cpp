// Minimum spanning tree and network.
#include "structure/formula/mst.h"

#include <algorithm>
#include <limits>

namespace tov {

namespace {

/// The tree as parent pointers: an OTU's parent is the OTU that it joined.
struct Ancestry {
    std::vector<int> parent, depth;
    std::vector<double> length;

    explicit Ancestry(int n) : parent(n, -1), depth(n, 0), length(n, 0.0) {}

    void join(TreeLink const& link) {
        parent[link.second] = link.first;
        depth[link.second] = depth[link.first] + 1;
        length[link.second] = link.length;
    }

    /// Whether a link of exactly this length lies on the tree path between a and b; not when there is no path.
    [[nodiscard]] bool path_has(int a, int b, double wanted) const {
        bool found = false;
        while (a != b) {
            if (depth[a] < depth[b]) {
                std::swap(a, b);
            }
            if (parent[a] < 0) {
                return false;
            }
            found = found || length[a] == wanted;
            a = parent[a];
        }
        return found;
    }
};

bool holds(std::vector<int> const& list, int otu) { return std::find(list.begin(), list.end(), otu) != list.end(); }

void drop(std::vector<int>& list, int otu) { list.erase(std::remove(list.begin(), list.end(), otu), list.end()); }

class Builder {
public:
    Builder(int n, std::span<double const> dist) : n_(n), dist_(dist), tree_(n), in_tree_(n, false) {
        network_.alternatives.resize(n);
    }

    SpanningNetwork build() {
        scan();
        drop_tree_links();
        keep_each_pair_once();
        keep_pairs_on_their_path();
        return std::move(network_);
    }

private:
    [[nodiscard]] double at(int i, int j) const {
        return dist_[static_cast<std::size_t>(std::max(i, j)) * n_ + std::min(i, j)];
    }

    void scan() {
        std::vector<int> order(n_), from(n_);
        std::vector<double> best(n_, std::numeric_limits<float>::max());
        for (int k = 0; k < n_; ++k) {
            order[k] = from[k] = k;
        }
        in_tree_[0] = true;
        int current = 0;
        int start = 0;
        for (int t = 0; t < n_ - 1; ++t) {
            int const v = order[current];
            order[current] = order[start];
            ++start;
            double minimum = best[order[start]];
            int chosen = start;
            for (int k = start; k < n_; ++k) {
                int const w = order[k];
                if (double const d = at(v, w); d < best[w]) {
                    best[w] = d;
                    from[w] = v;
                }
                if (best[w] < minimum) {
                    minimum = best[w];
                    chosen = k;
                }
            }
            add_link({from[order[chosen]], order[chosen], minimum});
            current = chosen;
        }
    }

    void add_link(TreeLink const& link) {
        network_.links.push_back(link);
        if (link.first != link.second && in_tree_[link.first]) {
            in_tree_[link.second] = true;
            tree_.join(link);
        } else {
            ++network_.unattached;
        }
        auto& list = network_.alternatives[link.second];
        for (int k = 0; k < n_; ++k) {
            if (k != link.first && k != link.second && at(link.second, k) == link.length && !holds(list, k)) {
                list.push_back(k);
            }
        }
    }

    void drop_tree_links() {
        for (TreeLink const& link : network_.links) {
            drop(network_.alternatives[link.second], link.first);
            drop(network_.alternatives[link.first], link.second);
        }
    }

    void keep_each_pair_once() {
        for (int i = 0; i < n_; ++i) {
            auto const partners = network_.alternatives[i];
            for (int const j : partners) {
                drop(network_.alternatives[j], i);
            }
        }
    }

    void keep_pairs_on_their_path() {
        for (int i = 0; i < n_; ++i) {
            auto const partners = network_.alternatives[i];
            for (int const j : partners) {
                if (!tree_.path_has(i, j, at(i, j))) {
                    drop(network_.alternatives[i], j);
                    drop(network_.alternatives[j], i);
                }
            }
        }
    }

    int n_;
    std::span<double const> dist_;
    Ancestry tree_;
    std::vector<bool> in_tree_;
    SpanningNetwork network_;
};

}  // namespace

SpanningNetwork minimum_spanning_network(int n, std::span<double const> dist) {
    return n < 1 ? SpanningNetwork{} : Builder(n, dist).build();
}

}  // namespace tov
