// EM estimation of haplotype frequencies from genotypes of unknown phase, over flat arrays of genotype pairs.
#include "inference/formula/em_terms.h"

#include <algorithm>
#include <cmath>

#include "base/random.h"

namespace tov {

namespace {

// Largest ratio of two weights of a random start, less one.
constexpr int start_range = 1000;

}  // namespace

// --- Data ---

void EmData::clear(int n) {
    pairs.clear();
    end.clear();
    count.clear();
    homozygote.clear();
    blank.assign(static_cast<std::size_t>(std::max(0, n)), 0);
    individuals = 0.0;
    equal_pairs = false;
}

int EmData::add_haplotype(bool has_blank) {
    blank.push_back(has_blank ? 1 : 0);
    return haplotypes() - 1;
}

void EmData::add_phenotype(double n, bool is_homozygote) {
    end.push_back(static_cast<std::int32_t>(pairs.size()));
    count.push_back(n);
    homozygote.push_back(is_homozygote ? 1 : 0);
    individuals += n;
}

void EmData::add_pair(int first, int second) {
    pairs.push_back({first, second});
    end.back() = static_cast<std::int32_t>(pairs.size());
    if (first == second && homozygote.back() == 0) equal_pairs = true;
}

// --- Start ---

double random_frequencies(std::span<double> freq, std::span<char const> blank, int range) {
    double sum = 0.0;
    for (std::size_t h = 0; h < freq.size(); ++h) {
        freq[h] = blank[h] ? 1.0 : 1.0 + range * uniform();
        sum += freq[h];
    }
    double smallest = std::numeric_limits<float>::max();
    for (double& f : freq) {
        f /= sum;
        smallest = std::min(smallest, f);
    }
    return smallest;
}

void em_start(EmData const& data, EmOptions const& options, EmWork& work) {
    work.freq.resize(data.blank.size());
    work.gain.resize(data.blank.size());
    work.ibd.resize(options.inbreeding ? data.blank.size() : 0);
    work.prob.assign(data.pairs.size(), 0.0);
    work.phen_proba.assign(data.count.size(), 0.0);
    random_frequencies(work.freq, data.blank, start_range);
    work.F = options.estimates_F() ? uniform() / 3.0 : options.inbreeding ? options.F : 0.0;
}

// --- One iteration ---

namespace {

// Copies identical by descent, by haplotype; an estimated F follows from them. Returns their sum.
double count_identical_copies(EmData const& data, bool estimates_F, EmWork& work) noexcept {
    std::fill(work.ibd.begin(), work.ibd.end(), 0.0);
    double const F = work.F;
    double sum = 0.0;
    for (std::size_t i = 0; i < data.count.size(); ++i) {
        std::int32_t const from = i == 0 ? 0 : data.end[i - 1];
        if (!data.homozygote[i] || data.end[i] == from) continue;
        auto const h = static_cast<std::size_t>(data.pairs[static_cast<std::size_t>(from)].first);
        double const ibd = data.count[i] * F / ((1.0 - F) * work.freq[h] + F);
        work.ibd[h] += ibd;
        sum += ibd;
    }
    if (estimates_F && data.individuals > 0.0) work.F = sum / data.individuals;
    return sum;
}

// Probability of twice the haplotype of frequency p.
template <bool Inbreeding>
double twin_probability(double p, double F) noexcept {
    if constexpr (Inbreeding) return (1.0 - F) * p * p + F * p;
    return p * p;
}

template <bool Inbreeding, bool EqualPairs>
double pair_probability(HaplotypePair pair, double const* freq, double F) noexcept {
    double const p = freq[pair.first];
    if (EqualPairs && pair.first == pair.second) return twin_probability<Inbreeding>(p, F);
    if constexpr (Inbreeding) return 2.0 * (1.0 - F) * p * freq[pair.second];
    return 2.0 * p * freq[pair.second];
}

// E-step of every phenotype, and the gene copies that it gives to its haplotypes.
template <bool Inbreeding, bool EqualPairs>
void share_copies(EmData const& data, EmWork& work) noexcept {
    HaplotypePair const* const pairs = data.pairs.data();
    double const* const freq = work.freq.data();
    double* const gain = work.gain.data();
    double* const prob = work.prob.data();
    double const F = work.F;
    std::size_t const phenotypes = data.count.size();
    std::int32_t from = 0;
    for (std::size_t i = 0; i < phenotypes; ++i) {
        std::int32_t const to = data.end[i];
        double const n = data.count[i];
        double sum = 0.0;
        if (to - from > 1) {
            for (std::int32_t g = from; g < to; ++g) {
                prob[g] = pair_probability<Inbreeding, EqualPairs>(pairs[g], freq, F);
                sum += prob[g];
            }
            if (sum > 0.0) {
                for (std::int32_t g = from; g < to; ++g) {
                    double const share = n * prob[g] / sum;
                    gain[pairs[g].second] += share;
                    gain[pairs[g].first] += share;
                }
            }
        } else if (to > from) {
            HaplotypePair const pair = pairs[from];
            if (data.homozygote[i]) {
                sum = twin_probability<Inbreeding>(freq[pair.first], F);
                gain[pair.first] += 2.0 * n;
            } else {
                sum = pair_probability<Inbreeding, EqualPairs>(pair, freq, F);
                gain[pair.second] += n;
                gain[pair.first] += n;
            }
            prob[from] = sum;
        }
        work.phen_proba[i] = sum;
        from = to;
    }
}

// Turns the copies into frequencies. Returns the summed change.
template <bool Inbreeding>
double normalize(double copies, EmWork& work) noexcept {
    double change = 0.0;
    std::size_t const n = work.freq.size();
    for (std::size_t h = 0; h < n; ++h) {
        double const kept = Inbreeding ? work.gain[h] - work.ibd[h] : work.gain[h];
        double const f = copies != 0.0 ? kept / copies : 0.0;
        change += std::abs(f - work.freq[h]);
        work.freq[h] = f;
    }
    return change;
}

template <bool Inbreeding>
void share_all(EmData const& data, EmWork& work) noexcept {
    if (data.equal_pairs) {
        share_copies<Inbreeding, true>(data, work);
    } else {
        share_copies<Inbreeding, false>(data, work);
    }
}

}  // namespace

double em_iteration(EmData const& data, EmOptions const& options, EmWork& work) noexcept {
    double const copies = 2.0 * data.individuals;
    std::fill(work.gain.begin(), work.gain.end(), 0.0);
    if (!options.inbreeding) {
        share_all<false>(data, work);
        return normalize<false>(copies, work);
    }
    double const identical = count_identical_copies(data, options.estimates_F(), work);
    share_all<true>(data, work);
    return normalize<true>(copies - identical, work);
}

double em_ln_likelihood(EmData const& data, EmWork const& work) noexcept {
    double sum = 0.0;
    for (std::size_t i = 0; i < data.count.size(); ++i) {
        if (!(work.phen_proba[i] > 0.0)) return impossible_ln_likelihood;
        sum += data.count[i] * std::log(work.phen_proba[i]);
    }
    return sum;
}

// --- All runs ---

void note_solution(std::vector<double>& list, double value) {
    for (double const known : list) {
        if (std::abs(known - value) < same_solution) return;
    }
    list.push_back(value);
}

EmResult em_estimate(EmData const& data, EmOptions const& options, EmWork& work, EmGoesOn const& goes_on) {
    EmResult result;
    result.F = options.F;
    work.solutions.clear();
    work.iterations.clear();
    bool found = false;
    for (int run = 0; run < std::max(1, options.starts); ++run) {
        em_start(data, options, work);
        int iterations = 0;
        while (iterations < options.max_iterations) {
            ++iterations;
            if (em_iteration(data, options, work) < options.epsilon) break;
        }
        work.iterations.push_back(iterations);
        double const lnL = em_ln_likelihood(data, work);
        result.last_ln_likelihood = lnL;
        if (lnL > result.ln_likelihood) {
            found = true;
            result.ln_likelihood = lnL;
            result.F = work.F;
            work.best_freq = work.freq;
        }
        note_solution(work.solutions, lnL);
        if (goes_on && !goes_on()) {
            result.stopped = true;
            break;
        }
    }
    if (!found) work.best_freq = work.freq;
    result.solutions = static_cast<int>(work.solutions.size());
    return result;
}

}  // namespace tov
