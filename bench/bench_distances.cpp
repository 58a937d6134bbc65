// Distance matrices of a DNA sample held against one pass that compares the same bytes.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "diversity/popdna.h"
#include "floors.h"
#include "held.h"
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

void distance_matrix(benchmark::State& state, Content content) {
    Sample sample(1000, 1000, content);
    int const method = static_cast<int>(state.range(0));
    double const limit = method == 0 ? 1.5 : 6.0;  // counting differences; corrected distances take logarithms
    tov::bench::hold(state, limit, [&] { return sample.matrix(method); }, [&] { return sample.floor(); });
}

void each_method(benchmark::internal::Benchmark* b) {
    b->ArgName("method")->DenseRange(0, 6)->Apply(tov::bench::held);
    b->Iterations(7);
}
BENCHMARK_CAPTURE(distance_matrix, bases, Content::bases)->Apply(each_method);
BENCHMARK_CAPTURE(distance_matrix, gaps_and_missing, Content::with_gaps)->Apply(each_method);
BENCHMARK_CAPTURE(distance_matrix, ambiguity_codes_too, Content::with_gaps_and_codes)->Apply(each_method);

}  // namespace

BENCHMARK_MAIN();
