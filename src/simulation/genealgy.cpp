// Construction of genealogies, their times and their statistics.
#include "simulation/genealgy.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "base/random.h"

namespace tov {

// --- TNode ---

MY_TArrayAsVector<long> TNode::hits;
GammaRates TNode::mut_rates;
int TNode::node_count = 0;
int TNode::_tot_mut = 0;
int TNode::min_mic = 0;
int TNode::max_mic = 0;

int TNode::count_desc() {
    if (is_tip()) return 1;
    left_count = left ? left->count_desc() : 0;
    right_count = right ? right->count_desc() : 0;
    return left_count + right_count;
}

void TNode::build_lists_of_descendent_nodes() {
    auto const list_of = [](TNode* child, std::vector<int>& list) {
        list.clear();
        if (!child) return;
        child->build_lists_of_descendent_nodes();
        list.push_back(child->node_id);
        list.insert(list.end(), child->left_nodes.begin(), child->left_nodes.end());
        list.insert(list.end(), child->right_nodes.begin(), child->right_nodes.end());
    };
    list_of(left, left_nodes);
    list_of(right, right_nodes);
}

void TNode::compute_moments_of_pairwise_divergence(double& sum, double& sum_of_squares) const {
    if (is_tip()) return;
    double const pairs = static_cast<double>(left_count) * right_count;
    sum += pairs * 2.0 * time;
    sum_of_squares += pairs * 4.0 * time * time;
    if (left) left->compute_moments_of_pairwise_divergence(sum, sum_of_squares);
    if (right) right->compute_moments_of_pairwise_divergence(sum, sum_of_squares);
}

// --- TListNode ---

void TListNode::start(int n, TNode* nodes) {
    list_.resize(static_cast<std::size_t>(std::max(0, n)));
    length_ = std::max(0, n);
    for (int i = 0; i < length_; ++i) {
        TNode& node = nodes[i];
        node.time = 0.0;
        node.left = nullptr;
        node.right = nullptr;
        list_[static_cast<std::size_t>(i)] = &node;
    }
}

void TListNode::push(TNode* node) {
    if (static_cast<std::size_t>(length_) == list_.size()) {
        list_.push_back(node);
    } else {
        list_[static_cast<std::size_t>(length_)] = node;
    }
    ++length_;
}

TNode* TListNode::take(int i) noexcept {
    TNode* const taken = (*this)[i];
    (*this)[i] = (*this)[--length_];
    return taken;
}

void TListNode::coalesce(TNode& node) noexcept {
    int const left = static_cast<int>(length_ * uniform());
    node.left = take(left);
    node.left->ancestor = &node;
    int const right = static_cast<int>(uniform() * length_);
    node.right = (*this)[right];
    node.right->ancestor = &node;
    (*this)[right] = &node;
}

// --- TTree ---

void TTree::allocate_tree(int const& n) {
    sample_size_ = std::max(0, n);
    nodes_ = std::vector<TNode>(static_cast<std::size_t>(nb_nodes()));
    log_.clear();
    branches_ = BranchList();
    int id = 0;
    for (TNode& node : nodes_) node.node_id = id++;
    TNode::node_count += nb_nodes();
}

void TTree::set_sample_size(int const& n) {
    int const wanted = std::max(0, n);
    if (wanted == sample_size_) return;
    if (wanted > 0 && nodes_.size() < static_cast<std::size_t>(2 * wanted - 1)) {
        allocate_tree(wanted);
    } else {
        sample_size_ = wanted;
    }
}

void TTree::build_tree() {
    int const n = sample_size_;
    if (n < 1) return;
    TNode* const nodes = nodes_.data();
    active_.start(n, nodes);
    double t = 0.0;
    for (int i = n; i > 1; --i) {
        t += -2.0 * std::log(1.0 - uniform()) / (static_cast<double>(i) * (i - 1));
        nodes[2 * n - i].time = t;
    }
    for (int i = n; i > 1; --i) active_.coalesce(nodes[2 * n - i]);
    root().ancestor = nullptr;
}

void TTree::build_tree_range_exp(double const& tau, double const& m) {
    int const n = sample_size_;
    if (n < 1) return;
    TNode* const nodes = nodes_.data();
    active_.start(n, nodes);
    away_.clear();
    int next = n;
    double t = 0.0;
    while (active_.length() + away_.length() > 1) {
        int const k = active_.length();
        bool migrates = false;
        if (t < tau) {
            if (k == 0) {
                t = tau;
            } else {
                double const rate = ((k - 1) / 2.0 + m) * k;
                t += (-1.0 / rate) * std::log(1.0 - uniform());
            }
            if (!(t < tau)) {
                for (int i = 0; i < away_.length(); ++i) active_.push(away_[i]);  // in the order in which they left
                away_.clear();
                t = tau;
                continue;
            }
            migrates = uniform() < 2.0 * m / (2.0 * m + k - 1) || k == 1;
        } else {
            t += (-1.0 / (k * (k - 1.0) / 2.0)) * std::log(1.0 - uniform());
        }
        if (migrates) {
            away_.push(active_.take(static_cast<int>(k * uniform())));
        } else {
            nodes[next].time = t;
            active_.coalesce(nodes[next++]);
        }
    }
    root().ancestor = nullptr;
}

void TTree::bottleneck(double t, double factor) {
    for (int i = sample_size_; i < nb_nodes(); ++i) {
        TNode& node = (*this)[i];
        if (node.time > t) node.time = (node.time - t) * factor + t;
    }
}

void TTree::scale_to_num_generations(long const& scale) {
    for (int i = sample_size_; i < nb_nodes(); ++i) (*this)[i].time *= static_cast<double>(scale);
}

void TTree::count_descendants() noexcept {
    // a node's children stand before it
    for (int i = sample_size_; i < nb_nodes(); ++i) {
        TNode& node = (*this)[i];
        node.left_count = node.left ? node.left->num_desc() : 0;
        node.right_count = node.right ? node.right->num_desc() : 0;
    }
}

int TTree::compute_moments_of_coalescence_times() {
    double const pairs = 0.5 * sample_size_ * (sample_size_ - 1.0);
    if (!(pairs > 0.0)) return 0;
    root().count_desc();
    double sum = 0.0;
    double sum_of_squares = 0.0;
    root().compute_moments_of_pairwise_divergence(sum, sum_of_squares);
    mean = 0.5 * sum / pairs;
    if (pairs > 1.0) sd = 0.5 * std::sqrt((sum_of_squares - sum * sum / pairs) / (pairs - 1.0));
    return 1;
}

int TGenealogy::build_genealogy(std::ostream& out, int n, double factor, double t, double mu) {
    out << "Building tree structure\n";
    TNode::reset_node_count();
    set_sample_size(n);
    build_tree();
    out << "Done !\n";
    if (t > 0.0) {
        out << "Applying bottleneck: Factor " << factor << ", Time : " << t << "\n";
        bottleneck(t, factor);
    }
    MutationModel model;
    model.mu = mu;
    model.type = MUT_STEPWISE;
    model.sites = 1;
    if (prepare_hits(model.sites)) add_mutations(model);
    TNode::hits.Flush();
    out << "Sould never be called\n";
    return 1;
}

}  // namespace tov
