// Both forms of the mutation walk, all types and all kinds of rates, against a recursion that copies every sequence.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "base/random.h"
#include "diversity/popdna.h"
#include "simulation/genealgy.h"
#include "tree_support.h"

namespace tov {
namespace {

/// Places mutations node by node; each node gets a copy of its ancestor's states and changes it.
class SlowWalk {
public:
    SlowWalk(TTree& tree, MutationModel const& model) : model_(model) {
        hits.assign(static_cast<std::size_t>(model.sites), 0);
        states.resize(static_cast<std::size_t>(tree.nb_nodes()));
        if (model.gamma_a != 0.0) {
            rates_.build(model.sites, model.gamma_a, model.first_rate, model.first_fraction);
        }
        std::vector<int> start(static_cast<std::size_t>(model.sites), 0);
        if (model.type == MUT_NUCLEOTIDES) {
            for (int& state : start) state = static_cast<int>(4.0 * uniform());
        }
        walk(tree.root(), start, 0);
    }

    std::vector<long> hits;
    std::vector<std::vector<int>> states;  ///< by node number
    int placed = 0;

private:
    void walk(TNode const& node, std::vector<int> sequence, int mutations) {
        for (int i = 0; i < mutations; ++i) {
            auto const site = static_cast<std::size_t>(next_site());
            ++hits[site];
            ++placed;
            sequence[site] = changed(sequence[site], hits[site]);
        }
        states[static_cast<std::size_t>(node.node_id)] = sequence;
        for (TNode const* const child : {node.left, node.right}) {
            if (child == nullptr) continue;
            long idum = 1;
            int const next = poidev(static_cast<float>((node.time - child->time) * model_.mu), &idum);
            walk(*child, sequence, next);
        }
    }

    int next_site() {
        if (std::fabs(model_.gamma_a) < 1e-7) {
            if (!model_.allele_steps && placed < model_.sites) return placed;
            return static_cast<int>(model_.sites * uniform());
        }
        double const u = uniform();
        double sum = 0.0;
        int site = model_.allele_steps ? model_.sites : -1;
        if (model_.allele_steps) {
            while (site - 1 >= 0) {
                sum += rates_.rates()[static_cast<std::size_t>(--site)];
                if (sum > u) break;
            }
        } else {
            while (site < model_.sites - 1) {
                sum += rates_.rates()[static_cast<std::size_t>(++site)];
                if (sum > u) break;
            }
        }
        return site;
    }

    int changed(int state, long hit) {
        switch (model_.type) {
            case MUT_STEPWISE:
                return model_.allele_steps ? stepped(state) : state + (uniform() < 0.5 ? -1 : 1);
            case MUT_BINARY:
                return state == 0 ? 1 : 0;
            case MUT_NUCLEOTIDES: {
                constexpr int transition[] = {1, 0, 3, 2};
                if (uniform() < model_.transition_share) return transition[state];
                bool const low = uniform() < 0.5;
                return state < 2 ? (low ? 2 : 3) : (low ? 0 : 1);
            }
            case MUT_INFINITE_ALLELES:
                break;
        }
        return static_cast<int>(hit);
    }

    int stepped(int state) {
        int const step = model_.geometric_p > 0.0 ? geometric(model_.geometric_p) + 1 : 1;
        if (model_.constrained == 0) {
            bool const low = uniform() < 0.5;
            if (model_.geometric_p > 0.0) return low ? state + step : state - step;
            return low ? state - step : state + step;
        }
        int moved = 0;
        if (state <= TNode::min_mic) {
            moved = state + step;
        } else if (state >= TNode::max_mic) {
            moved = state - step;
        } else {
            moved = uniform() < 0.5 ? state - step : state + step;
        }
        return std::clamp(moved, TNode::min_mic, TNode::max_mic);
    }

    MutationModel const& model_;
    GammaRates rates_;
};

class MutationWalks : public testing::Test {
protected:
    void SetUp() override { TNode::hits.Flush(); }
    void TearDown() override {
        TNode::hits.Flush();
        TNode::min_mic = TNode::max_mic = 0;
    }

    void expect_slow_walk(MutationModel const& model, long seed, bool expansion) {
        test::seed(-seed);
        TTree tree;
        tree.allocate_tree(7);
        TNode::reset_node_count();
        if (expansion) {
            tree.build_tree_range_exp(0.4, 1.5);
        } else {
            tree.build_tree();
        }
        RandomState const built = random_state;
        TNode::hits.Flush();
        ASSERT_TRUE(TTree::prepare_hits(model.sites));
        int const placed = tree.add_mutations(model);
        tree.write_sequences();
        RandomState const after = random_state;
        random_state = built;
        SlowWalk const slow(tree, model);
        EXPECT_EQ(placed, slow.placed);
        total += placed;
        EXPECT_EQ(after.ran3.ma, random_state.ran3.ma);
        EXPECT_EQ(after.ran3.inext, random_state.ran3.inext);
        for (int site = 0; site < model.sites; ++site) {
            EXPECT_EQ(TNode::hits[site], slow.hits[static_cast<std::size_t>(site)]);
            for (int tip = 0; tip < 7; ++tip) {
                EXPECT_EQ((*tree[tip].sequence)[site],
                          slow.states[static_cast<std::size_t>(tip)][static_cast<std::size_t>(site)]);
            }
        }
    }

    int total = 0;
};

TEST_F(MutationWalks, EqualTheRecursion) {
    long seed = 0;
    for (Mut_Type const type : {MUT_STEPWISE, MUT_BINARY, MUT_NUCLEOTIDES, MUT_INFINITE_ALLELES}) {
        for (double const gamma_a : {0.0, 1e-8, -1.0, 0.6, 2.3}) {
            for (bool const allele_steps : {false, true}) {
                for (double const mu : {0.4, 3.0, 20.0}) {
                    MutationModel model;
                    model.mu = mu;
                    model.sites = mu < 1.0 ? 1 : 12;
                    model.type = type;
                    model.gamma_a = gamma_a;
                    model.first_rate = 4.0;
                    model.first_fraction = 0.3;
                    model.allele_steps = allele_steps;
                    ++seed;
                    expect_slow_walk(model, seed, seed % 2 == 0);
                }
            }
        }
    }
    EXPECT_GT(total, 5000);
}

TEST_F(MutationWalks, OfAllelesInStepsEqualTheRecursion) {
    long seed = 1000;
    for (int const constrained : {0, 1}) {
        for (double const p : {-1.0, 0.0, 0.5}) {
            for (int const highest : {0, 1, 4}) {
                TNode::min_mic = -1;
                TNode::max_mic = highest;
                MutationModel model;
                model.mu = 8.0;
                model.sites = 2;
                model.type = MUT_STEPWISE;
                model.allele_steps = true;
                model.constrained = constrained;
                model.geometric_p = p;
                expect_slow_walk(model, ++seed, false);
            }
        }
    }
    EXPECT_GT(total, 300);
}

TEST_F(MutationWalks, OfASampleAreRefusedWithCountersOfAnotherNumberOfSites) {
    test::FreshProcess fresh;
    static std::vector<std::string> reports;
    reports.clear();
    Errors::ErrorProc = [](ErrorType type, my_string const& where, int code) {
        reports.push_back(std::to_string(static_cast<int>(type)) + " " + where.str() + " " + std::to_string(code));
    };
    PopulDNA sample;
    sample.set_sample_size(6.0);
    sample.fast_build_tree();
    EXPECT_GT(sample.sprinkle_mutations(20.0, 10, MUT_NUCLEOTIDES, 0.0, 1.0, 1.0, 0.33), 0);
    EXPECT_TRUE(reports.empty());
    EXPECT_EQ(sample.sprinkle_mutations(20.0, 11, MUT_NUCLEOTIDES, 0.0, 1.0, 1.0, 0.33), 0);
    EXPECT_EQ(sample.getGeneTree().nb_mutations(), 0);
    EXPECT_EQ(reports, (std::vector<std::string>{std::to_string(static_cast<int>(ErrorType::Warning)) +
                                                 " PopGenetics::sprinkle_mutations() 177"}));
    EXPECT_GT(sample.sprinkle_mutations(20.0, 10, MUT_NUCLEOTIDES, 0.0, 1.0, 1.0, 0.33), 0);
}

}  // namespace
}  // namespace tov
