// A step of the phase sampler held against a plain walk over the alleles of its windows, and assignment held against
// its look-ups and multiplications.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "base/random.h"
#include "held.h"
#include "inference/formula/kpv_sampler.h"
#include "structure/formula/assignment.h"

namespace {

using namespace tov;

KpvChain linked_sample() {
    std::mt19937 random(1);
    std::vector<std::vector<std::int32_t>> founders(8, std::vector<std::int32_t>(30));
    for (auto& founder : founders) {
        for (auto& allele : founder) {
            allele = static_cast<std::int32_t>(random() % 2);
        }
    }
    std::vector<std::int32_t> codes;
    for (int c = 0; c < 100; ++c) {
        auto const& founder = founders[random() % founders.size()];
        codes.insert(codes.end(), founder.begin(), founder.end());
    }
    KpvChain chain(std::move(codes), 30, {});
    chain.randomise_phases();
    return chain;
}

/// The alleles of one window in all chromosomes, compared with both of an individual's.
long plain_walk(KpvChain const& chain, int individual, int start, int length) {
    long equal = 0;
    auto const g0 = chain.chromosome(individual, 0), g1 = chain.chromosome(individual, 1);
    for (int i = 0; i < chain.individuals(); ++i) {
        for (int c = 0; c < 2; ++c) {
            auto const other = chain.chromosome(i, c);
            for (int l = start; l < start + length; ++l) {
                equal += other[l] == g0[l];
                equal += other[l] == g1[l];
            }
        }
    }
    return equal;
}

void support_in_a_window(benchmark::State& state) {
    KpvChain chain = linked_sample();
    for (int step = 0; step < 2000; ++step) {
        chain.step();
    }
    int const individual = chain.ambiguous()[0];
    int const length = static_cast<int>(state.range(0));
    bench::hold(state, 4.0, [&] { return chain.support(individual, 10, length, 10); },
                [&] { return plain_walk(chain, individual, 10, length); });
}
BENCHMARK(support_in_a_window)->ArgName("loci")->Arg(2)->Arg(4)->Arg(8)->Apply(bench::held);

/// A thousand individuals in twenty samples by twenty loci.
void assignment(benchmark::State& state) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> frequency(0.01, 0.2);
    std::vector<std::vector<double>> samples(20, std::vector<double>(200));
    for (auto& sample : samples) {
        for (double& f : sample) {
            f = frequency(random);
        }
    }
    std::vector<std::vector<AllelePair>> individuals(1000);
    for (auto& genotype : individuals) {
        for (int l = 0; l < 20; ++l) {
            genotype.push_back({10 * l + static_cast<int>(random() % 10), 10 * l + static_cast<int>(random() % 10)});
        }
    }
    auto const all = [&](auto const& term) {
        double sum = 0.0;
        for (auto const& genotype : individuals) {
            for (auto const& sample : samples) {
                sum += term(genotype, sample);
            }
        }
        return sum;
    };
    auto const product_alone = [](std::vector<AllelePair> const& genotype, std::vector<double> const& sample) {
        double product = 1.0;
        for (AllelePair const& locus : genotype) {
            product *= sample[locus.first] * sample[locus.second];
        }
        return product;
    };
    bench::hold(
        state, 4.0,
        [&] {
            return all([](auto const& genotype, auto const& sample) {
                return genotype_log_likelihood(genotype, sample, 0.001);
            });
        },
        [&] { return all(product_alone); });
}
BENCHMARK(assignment)->Apply(bench::held);

void step(benchmark::State& state) {
    KpvChain chain = linked_sample();
    for (auto _ : state) {
        chain.step();
    }
}
BENCHMARK(step);

}  // namespace

BENCHMARK_MAIN();
