// The data model: enumeration of genotypes against its floor, allele vectors of sequences and of microsatellites.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "held.h"
#include "model/popbase.h"

namespace {

using namespace tov;

struct Individual {
    explicit Individual(int heterozygous) {
        TPopHaplotype a;
        TPopHaplotype b;
        for (int l = 0; l < heterozygous; ++l) {
            a.alleles().Add(db.insert_allele(l, "A", 1.0));
            b.alleles().Add(db.insert_allele(l, "B", 1.0));
        }
        phenotype = std::make_unique<TPhenotype>(&a, &b, 0);
    }
    TAlleleDB db;
    std::unique_ptr<TPhenotype> phenotype;
};

// The same haplotype records built in reserved storage, and one look-up by hash for each.
void build_records(TPopHaploDB const& pool, std::unordered_map<std::size_t, int> const& index) {
    std::vector<TPopHaplotype> records;
    records.reserve(static_cast<std::size_t>(pool.nb_haplotypes()));
    long found = 0;
    for (TPopHaplotype const* const h : pool.view()) {
        records.emplace_back(*h);
        found += index.find(records.back().alleles().hash())->second;
    }
    benchmark::DoNotOptimize(found);
}

void EnumerateGenotypes(benchmark::State& state) {
    Individual individual(static_cast<int>(state.range(0)));
    auto const enumerate = [&individual] {
        TPopHaploDB pool;
        individual.phenotype->build_genotypes(pool, &individual.db, 0, false);
        benchmark::DoNotOptimize(pool.nb_haplotypes());
    };
    TPopHaploDB pool;
    individual.phenotype->build_genotypes(pool, &individual.db, 0, false);
    std::unordered_map<std::size_t, int> index;
    for (int i = 0; i < pool.nb_haplotypes(); ++i) index.emplace(pool.haplotype(i).alleles().hash(), i);
    bench::hold(state, 3.0, enumerate, [&] { build_records(pool, index); });
    state.counters["genotypes"] = individual.phenotype->genot_real_count();
}

// Allele vectors of `range(0)` sequences of 10,000 sites: two of a hundred sites differ from the first sequence.
std::vector<HaploDef> sequences(int n, int sites) {
    std::vector<HaploDef> all;
    unsigned state = 1;
    auto const draw = [&state] { return state = state * 1664525U + 1013904223U, state >> 8; };
    std::string const first(static_cast<std::size_t>(sites), 'A');
    for (int i = 0; i < n; ++i) {
        std::string s(first);
        for (int k = 0; k < sites / 50; ++k) s[draw() % s.size()] = "ACGT"[draw() % 4];
        all.emplace_back(my_string(i), my_string(std::move(s)));
    }
    return all;
}

void BuildSequenceVectors(benchmark::State& state) {
    int const n = static_cast<int>(state.range(0));
    std::vector<HaploDef> const data = sequences(n, 10000);
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<HaploDef> work(data);
        std::vector<HaploDef*> list;
        for (HaploDef& h : work) list.push_back(&h);
        auto db = std::make_unique<TAlleleDB>();
        state.ResumeTiming();
        build_haplovects(list, *db, '\0');
        benchmark::DoNotOptimize(db->nb_loci());
        state.PauseTiming();
        db.reset();
        work.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * n * 10000);
}

void BuildMicrosatelliteVectors(benchmark::State& state) {
    int const n = static_cast<int>(state.range(0));
    constexpr int loci = 500;
    Population sample;
    unsigned seed = 1;
    long bytes = 0;
    for (int i = 0; i < n; ++i) {
        auto p = std::make_unique<TPhenotype>();
        p->set_obs_freq(1.0);
        for (int which = 0; which < 2; ++which) {
            std::string s;
            for (int l = 0; l < loci; ++l) {
                seed = seed * 1664525U + 1013904223U;
                s += std::to_string(100 + (seed >> 16) % 20) + ' ';
            }
            bytes += static_cast<long>(s.size());
            p->allele_string(which) = my_string(std::move(s));
        }
        sample.phenotypes.Add(p.release());
    }
    for (auto _ : state) {
        auto db = std::make_unique<TAlleleDB>();
        sample.alleles = db.get();
        sample.build_allele_vectors(' ');
        benchmark::DoNotOptimize(db->nb_loci());
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}

void PhenotypesToHaplotypes(benchmark::State& state) {
    int const n = static_cast<int>(state.range(0));
    Population sample;
    for (int i = 0; i < n; ++i) {
        auto p = std::make_unique<TPhenotype>();
        p->set_obs_freq(1.0);
        p->allele_string(0) = my_string(i);
        p->allele_string(1) = my_string(2 * i);
        sample.phenotypes.Add(p.release());
    }
    for (auto _ : state) {
        Haplo_DB list;
        sample.phen_to_gam(&list, nullptr, nullptr);
        benchmark::DoNotOptimize(list.size());
    }
}

}  // namespace

BENCHMARK(EnumerateGenotypes)->ArgName("heterozygous")->Arg(10)->Arg(15)->Apply(bench::held);
BENCHMARK(BuildSequenceVectors)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BuildMicrosatelliteVectors)->Arg(200)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(PhenotypesToHaplotypes)->Arg(2000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
