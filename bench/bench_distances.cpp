// Distance matrices of a DNA sample held against one pass that compares the same bytes.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "diversity/popdna.h"
#include "floors.h"
#include "input/settings.h"
#include "model/hapdef.h"

namespace {

/// What stands in the sequences beside the four bases.
enum class Content { bases, with_gaps, with_gaps_and_codes };

/// Sequences that differ from one of them at a few per cent of their sites.
std::vector<std::string> make_sequences(std::size_t k, std::size_t sites, Content content) {
    std::mt19937_64 engine(7);
    auto below = [&engine](unsigned n) { return static_cast<unsigned>(engine() % n); };
    std::string ancestor;
    for (std::size_t i = 0; i < sites; ++i) ancestor += "ACGT"[below(4)];
    std::vector<std::string> all(k, ancestor);
    for (std::string& s : all) {
        for (char& c : s) {
            unsigned const u = below(1000);
            if (u < 40) c = "ACGT"[below(4)];
            if (content != Content::bases && u >= 40 && u < 70) c = "-?"[below(2)];
            if (content == Content::with_gaps_and_codes && u >= 70 && u < 75) c = "RY"[below(2)];
        }
    }
    return all;
}

/// A sample of k distinct sequences, ready for its matrices.
class Sample {
public:
    Sample(std::size_t k, std::size_t sites, Content content) : sequences_(make_sequences(k, sites, content)) {
        set_.AllowedLevelOfMissingData = 1.0;
        for (std::size_t i = 0; i < k; ++i) {
            definitions_.push_back(
                std::make_unique<tov::HaploDef>(tov::my_string(static_cast<int>(i)), tov::my_string(sequences_[i])));
            pop_.haplotypes.Add(new tov::PHaploDef(definitions_.back().get(), 1));
            bytes_ += sequences_[i];
        }
        pop_.set_sample_size(static_cast<double>(k));
        pop_.evaluate_polymorphism(set_);
        counts_.resize(k * (k - 1) / 2);
    }
    double matrix(int method) {
        pop_.set_distance({method, 0.0, {}});
        pop_.compute_distance_matrix(nullptr, &set_, 0);
        return pop_.get_dist_mat()(1, 0);
    }
    int floor() {
        tov::floors::count_different_bytes(bytes_.data(), sequences_.size(), sequences_[0].size(), counts_.data());
        return counts_[0];
    }

private:
    std::vector<std::string> sequences_;
    std::vector<std::unique_ptr<tov::HaploDef>> definitions_;
    std::string bytes_;
    std::vector<int> counts_;
    tov::settings set_;
    tov::PopulDNA pop_;
};

void distance_matrix(benchmark::State& state) {
    Sample sample(static_cast<std::size_t>(state.range(0)), 1000, Content::bases);
    for (auto _ : state) benchmark::DoNotOptimize(sample.matrix(static_cast<int>(state.range(1))));
}
BENCHMARK(distance_matrix)
    ->ArgNames({"haplotypes", "method"})
    ->ArgsProduct({{100, 1000}, {0, 1, 2, 3, 4, 5, 6}})
    ->Unit(benchmark::kMillisecond);

void compared_bytes(benchmark::State& state) {
    Sample sample(static_cast<std::size_t>(state.range(0)), 1000, Content::bases);
    for (auto _ : state) benchmark::DoNotOptimize(sample.floor());
}
BENCHMARK(compared_bytes)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

template <class Run>
double milliseconds(Run run) {
    std::clock_t const start = std::clock();
    benchmark::DoNotOptimize(run());
    return static_cast<double>(std::clock() - start) * 1e3 / CLOCKS_PER_SEC;
}

/// Prints the ratio of every method to the floor. @return whether all are within their limits.
bool hold_against_floor(char const* title, Content content) {
    static constexpr char const* names[] = {"differences", "Jukes-Cantor", "Kimura",    "share",
                                            "Tajima-Nei",  "Tamura",       "Tamura-Nei"};
    Sample sample(1000, 1000, content);
    bool good = true;
    for (int method = 0; method <= 6; ++method) {
        double ours = 1e300;
        double floor = 1e300;
        for (int round = 0; round < 9; ++round) {  // in turn, so that a busy machine slows both
            floor = std::min(floor, milliseconds([&] { return sample.floor(); }));
            ours = std::min(ours, milliseconds([&] { return sample.matrix(method); }));
        }
        double const limit = method == 0 && content != Content::with_gaps_and_codes ? 1.5 : 6.0;
        std::printf("%-24s %-13s %7.1f ms, compared bytes %6.1f ms, ratio %5.2f (limit %.1f)\n", title, names[method],
                    ours, floor, ours / floor, limit);
        good = good && ours / floor <= limit;
    }
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    bool const bases = hold_against_floor("bases", Content::bases);
    bool const gaps = hold_against_floor("with gaps and missing", Content::with_gaps);
    bool const codes = hold_against_floor("with ambiguity codes too", Content::with_gaps_and_codes);
    return bases && gaps && codes ? 0 : 1;
}
