// Seeding, and slow obvious counts on the sequences of a tree's tips.
#pragma once

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "base/random.h"
#include "simulation/genealgy.h"
#include "support/fresh_process.h"

namespace tov::test {

/// Starts the generator anew, as a run with this seed would.
inline void seed(long s = -1) {
    random_state = RandomState{};
    random_state.ran3.seed(s);
}

/// Number of draws since seed().
inline long draws_since_seed() {
    Ran3State start{};
    start.seed(-1);
    return draws_since(start);
}

inline std::string text_of(TNode const& node) {
    std::string text;
    for (int i = 0; i < node.sequence->size(); ++i) text += state_character(MUT_NUCLEOTIDES, (*node.sequence)[i]);
    return text;
}

struct SlowCounts {
    int sites = 0;
    long long transitions = 0;
    long long transversions = 0;
    int distinct = 0;
};

/// Counts over all pairs of tips and all sites; sequences must have been written.
inline SlowCounts slow_counts(TTree& tree) {
    SlowCounts c;
    int const L = tree[0].sequence->size();
    std::set<std::vector<int>> distinct;
    for (int i = 0; i < tree.sample_size(); ++i) {
        auto const& s = *tree[i].sequence;
        distinct.insert(std::vector<int>(s.beginning(), s.beginning() + s.size()));
    }
    c.distinct = static_cast<int>(distinct.size());
    for (int site = 0; site < L; ++site) {
        bool varies = false;
        for (int i = 0; i < tree.sample_size(); ++i) {
            for (int j = 0; j < i; ++j) {
                int const a = (*tree[i].sequence)[site];
                int const b = (*tree[j].sequence)[site];
                if (a == b) continue;
                varies = true;
                bool const purines_differ = (a < 2) != (b < 2);
                ++(purines_differ ? c.transversions : c.transitions);
            }
        }
        if (varies) ++c.sites;
    }
    return c;
}

/// Mean and variance of a stream of values.
class Moments {
public:
    void add(double x) {
        ++n_;
        double const d = x - mean_;
        mean_ += d / n_;
        m2_ += d * (x - mean_);
        values_.push_back(x);
    }
    [[nodiscard]] double mean() const { return mean_; }
    [[nodiscard]] double variance() const { return m2_ / (n_ - 1.0); }
    [[nodiscard]] double error_of_mean() const { return std::sqrt(variance() / n_); }
    [[nodiscard]] double error_of_variance() const {
        double m4 = 0.0;
        for (double const x : values_) m4 += std::pow(x - mean_, 4);
        m4 /= n_;
        return std::sqrt((m4 - variance() * variance()) / n_);
    }

private:
    double n_ = 0.0;
    double mean_ = 0.0;
    double m2_ = 0.0;
    std::vector<double> values_;
};

}  // namespace tov::test
