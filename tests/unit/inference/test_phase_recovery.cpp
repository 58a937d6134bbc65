// Recovery of known phases: the sampler against the EM on simulated samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <numeric>
#include <random>

#include "base/random.h"
#include "inference/formula/em_terms.h"
#include "inference/formula/kpv_sampler.h"
#include "simulation/genealgy.h"

using namespace tov;

namespace {

using Haplotype = std::vector<std::int32_t>;

void seed_one() {
    long idum = -1;
    ran3(&idum);
}

/// Haplotypes of one genealogy of 60 gene copies; loci do not recombine.
std::vector<Haplotype> simulate_haplotypes(Mut_Type type, int loci, double mu) {
    TTree tree;
    TNode::reset_node_count();
    tree.set_sample_size(60);
    tree.build_tree();
    TNode::hits.Flush();
    EXPECT_TRUE(TTree::prepare_hits(loci));
    MutationModel model;
    model.mu = mu;
    model.sites = loci;
    model.type = type;
    tree.add_mutations(model);
    tree.write_sequences();
    TNode::hits.Flush();
    std::vector<Haplotype> haplotypes;
    for (int i = 0; i < 60; ++i) {
        Haplotype h;
        for (int l = 0; l < loci; ++l) {
            h.push_back((*tree[i].sequence)[l] + 100);
        }
        haplotypes.push_back(std::move(h));
    }
    return haplotypes;
}

using Pair = std::pair<Haplotype, Haplotype>;

Pair ordered(Haplotype a, Haplotype b) {
    if (b < a) {
        std::swap(a, b);
    }
    return {std::move(a), std::move(b)};
}

int heterozygous(Pair const& p) {
    int count = 0;
    for (std::size_t l = 0; l < p.first.size(); ++l) {
        count += p.first[l] != p.second[l];
    }
    return count;
}

/// Phases that the EM finds most probable.
std::vector<Pair> phases_by_em(std::vector<Pair> const& truth) {
    std::map<Haplotype, int> number;
    std::vector<Haplotype> haplotypes;
    EmData data;
    auto const index = [&](Haplotype const& h) {
        auto const [at, is_new] = number.try_emplace(h, static_cast<int>(haplotypes.size()));
        if (is_new) {
            haplotypes.push_back(h);
            data.add_haplotype();
        }
        return at->second;
    };
    for (Pair const& p : truth) {
        int const h = heterozygous(p);
        data.add_phenotype(1.0, h == 0);
        std::vector<std::size_t> sites;
        for (std::size_t l = 0; l < p.first.size(); ++l) {
            if (p.first[l] != p.second[l]) {
                sites.push_back(l);
            }
        }
        for (int mask = 0; mask < (h < 2 ? 1 : 1 << (h - 1)); ++mask) {
            Haplotype a = p.first, b = p.second;
            for (int k = 1; k < h; ++k) {
                if ((mask >> (k - 1)) & 1) {
                    std::swap(a[sites[k]], b[sites[k]]);
                }
            }
            int const first = index(a);
            data.add_pair(first, index(b));
        }
    }
    EmWork work;
    EmOptions options;
    options.starts = 20;
    em_estimate(data, options, work);
    std::vector<Pair> phases;
    std::size_t begin = 0;
    for (int i = 0; i < data.phenotypes(); ++i) {
        std::size_t best = begin;
        auto const probability = [&](std::size_t g) {
            return work.best_freq[data.pairs[g].first] * work.best_freq[data.pairs[g].second];
        };
        for (std::size_t g = begin; g < static_cast<std::size_t>(data.end[i]); ++g) {
            if (probability(g) > probability(best)) {
                best = g;
            }
        }
        phases.push_back(ordered(haplotypes[data.pairs[best].first], haplotypes[data.pairs[best].second]));
        begin = static_cast<std::size_t>(data.end[i]);
    }
    return phases;
}

/// Phases that the sampler shows most often.
std::vector<Pair> phases_by_sampler(std::vector<Pair> const& truth, double epsilon) {
    std::vector<std::int32_t> codes;
    for (Pair const& p : truth) {
        codes.insert(codes.end(), p.first.begin(), p.first.end());
        codes.insert(codes.end(), p.second.begin(), p.second.end());
    }
    KpvParameters parameters;
    parameters.epsilon = epsilon;
    KpvChain chain(std::move(codes), static_cast<int>(truth[0].first.size()), parameters);
    chain.randomise_phases();
    for (int step = 0; step < 6000; ++step) {
        chain.step();
    }
    std::vector<std::map<Pair, int>> seen(truth.size());
    for (int sample = 0; sample < 150; ++sample) {
        for (int step = 0; step < 20; ++step) {
            chain.step();
        }
        for (std::size_t i = 0; i < truth.size(); ++i) {
            auto const a = chain.chromosome(static_cast<int>(i), 0), b = chain.chromosome(static_cast<int>(i), 1);
            ++seen[i][ordered(Haplotype(a.begin(), a.end()), Haplotype(b.begin(), b.end()))];
        }
    }
    std::vector<Pair> phases;
    for (auto const& counts : seen) {
        phases.push_back(std::max_element(counts.begin(), counts.end(), [](auto const& a, auto const& b) {
                             return a.second < b.second;
                         })->first);
    }
    return phases;
}

struct Shares {
    double sampler = 0.0, em = 0.0, chance = 0.0;
};

/// Shares of ambiguous individuals whose phase is found, over several samples of 30 individuals.
Shares recovered(Mut_Type type, int loci, double mu, double epsilon, int samples) {
    seed_one();
    std::mt19937 random(1);
    Shares s;
    int ambiguous = 0;
    for (int k = 0; k < samples; ++k) {
        std::vector<Haplotype> haplotypes = simulate_haplotypes(type, loci, mu);
        std::shuffle(haplotypes.begin(), haplotypes.end(), random);
        std::vector<Pair> truth;
        for (int i = 0; i < 30; ++i) {
            truth.push_back(ordered(haplotypes[2 * i], haplotypes[2 * i + 1]));
        }
        auto const em = phases_by_em(truth), sampler = phases_by_sampler(truth, epsilon);
        for (int i = 0; i < 30; ++i) {
            int const h = heterozygous(truth[i]);
            if (h >= 2) {
                ++ambiguous;
                s.em += em[i] == truth[i];
                s.sampler += sampler[i] == truth[i];
                s.chance += 1.0 / (1 << (h - 1));
            }
        }
    }
    s.em /= ambiguous;
    s.sampler /= ambiguous;
    s.chance /= ambiguous;
    std::printf("%d ambiguous individuals: sampler %.3f, EM %.3f, chance %.3f\n", ambiguous, s.sampler, s.em, s.chance);
    return s;
}

}  // namespace

TEST(PhaseRecovery, TenLinkedSitesAreFoundAsOftenAsByTheEm) {
    Shares const s = recovered(MUT_BINARY, 10, 2.0, 0.01, 5);
    EXPECT_GE(s.sampler, s.em - 0.05);
    EXPECT_GT(s.sampler, s.chance + 0.25);
}

TEST(PhaseRecovery, EightLinkedMicrosatellitesAreFoundAsOftenAsByTheEm) {
    Shares const s = recovered(MUT_STEPWISE, 8, 4.0, 0.1, 5);
    EXPECT_GE(s.sampler, s.em - 0.05);
    EXPECT_GT(s.sampler, s.chance + 0.25);
}
