// A step of the phase sampler held against a plain walk over the alleles of its windows, and assignment held against its
// look-ups and multiplications.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

#include "base/random.h"
#include "inference/formula/kpv_sampler.h"
#include "structure/formula/assignment.h"

namespace {

using namespace tov;

template <class Run>
double shortest(Run run, int rounds) {
    double best = 1e300;
    for (int round = 0; round < 10; ++round) {
        std::clock_t const start = std::clock();
        for (int k = 0; k < rounds; ++k) {
            run();
        }
        best = std::min(best, static_cast<double>(std::clock() - start) * (1e6 / CLOCKS_PER_SEC) / rounds);
    }
    return best;
}

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

void report_step() {
    KpvChain chain = linked_sample();
    for (int step = 0; step < 2000; ++step) {
        chain.step();
    }
    int const individual = chain.ambiguous()[0];
    for (int const length : {2, 4, 8}) {
        double const floor = shortest(
            [&] { benchmark::DoNotOptimize(plain_walk(chain, individual, 10, length)); }, 2000);
        double const full = shortest(
            [&] { benchmark::DoNotOptimize(chain.support(individual, 10, length, 10)); }, 2000);
        std::printf("support in a window of %d loci, 50 individuals: %.2f us, a plain walk over its alleles %.2f us, "
                    "ratio %.2f (limit 4)\n",
                    length, full, floor, full / floor);
    }
    double const step = shortest([&] { chain.step(); }, 200);
    std::printf("sampler step, 50 individuals, 30 loci: %.1f us\n", step);
}

void report_assignment() {
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
    double const full = shortest(
        [&] {
            double sum = 0.0;
            for (auto const& genotype : individuals) {
                for (auto const& sample : samples) {
                    sum += genotype_log_likelihood(genotype, sample, 0.001);
                }
            }
            benchmark::DoNotOptimize(sum);
        },
        3);
    double const floor = shortest(
        [&] {
            double sum = 0.0;
            for (auto const& genotype : individuals) {
                for (auto const& sample : samples) {
                    double product = 1.0;
                    for (AllelePair const& locus : genotype) {
                        product *= sample[locus.first] * sample[locus.second];
                    }
                    sum += product;
                }
            }
            benchmark::DoNotOptimize(sum);
        },
        3);
    std::printf("assignment, 1,000 individuals x 20 samples x 20 loci: %.0f us, look-ups and multiplications %.0f us, "
                "ratio %.2f (limit 4)\n",
                full, floor, full / floor);
}

void step(benchmark::State& state) {
    KpvChain chain = linked_sample();
    for (auto _ : state) {
        chain.step();
    }
}
BENCHMARK(step);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    long idum = -1;
    tov::ran3(&idum);
    benchmark::RunSpecifiedBenchmarks();
    report_step();
    report_assignment();
    return 0;
}
