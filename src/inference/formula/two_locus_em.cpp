// Likelihoods of two loci of unknown phase, with and without linkage disequilibrium, and their permuted samples.
#include "inference/formula/two_locus_em.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace tov {

void TwoLocusSample::add(TwoLocusGenotype const& genotype, double individuals) {
    genotypes.push_back(genotype);
    counts.push_back(individuals);
    first_alleles = std::max({first_alleles, genotype.first[0] + 1, genotype.first[1] + 1});
    second_alleles = std::max({second_alleles, genotype.second[0] + 1, genotype.second[1] + 1});
}

// --- Keys ---

void KeyIndex::restart(std::size_t most) {
    std::size_t const size = std::bit_ceil(std::max<std::size_t>(2 * most, 16));
    if (size > slots_.size() || round_ == 0xFFFFFFFFU) {
        slots_.assign(std::max(size, slots_.size()), Slot{});
        round_ = 0;
    }
    ++round_;
}

std::int32_t KeyIndex::number(std::uint64_t a, std::uint64_t b, std::int32_t next) noexcept {
    std::uint64_t const hash = (a * 0x9E3779B97F4A7C15U) ^ (b * 0xC2B2AE3D27D4EB4FU);
    std::size_t const mask = slots_.size() - 1;
    for (auto i = static_cast<std::size_t>(hash ^ (hash >> 32)) & mask;; i = (i + 1) & mask) {
        Slot& slot = slots_[i];
        if (slot.round != round_) {
            slot = {a, b, round_, next};
            return next;
        }
        if (slot.a == a && slot.b == b) return slot.number;
    }
}

// --- Likelihoods ---

/// The two haplotypes of one candidate genotype.
struct TwoLocusEm::Chromosomes {
    std::array<std::int32_t, 2> first;   ///< alleles of one chromosome
    std::array<std::int32_t, 2> second;  ///< of the other
    bool second_has_blank = false;
};

void TwoLocusEm::reserve(TwoLocusSample const& sample, EmOptions const& options) {
    double individuals = 0.0;
    for (double const n : sample.counts) individuals += std::max(n, 1.0);
    std::size_t const pairs_each = sample.recessive ? 4 : 2;
    auto const entries = static_cast<std::size_t>(individuals);
    std::size_t const pairs = pairs_each * entries;
    auto const grid = static_cast<std::size_t>(sample.first_alleles) * static_cast<std::size_t>(sample.second_alleles);
    std::size_t const haplotypes = std::min(grid, 2 * pairs);
    auto const starts = static_cast<std::size_t>(std::max(options.starts, 1));
    data_.pairs.reserve(pairs);
    data_.end.reserve(entries);
    data_.count.reserve(entries);
    data_.homozygote.reserve(entries);
    data_.blank.reserve(haplotypes);
    for (auto* const list : {&work_.freq, &work_.gain, &work_.ibd, &work_.best_freq}) list->reserve(haplotypes);
    work_.prob.reserve(pairs);
    work_.phen_proba.reserve(entries);
    work_.solutions.reserve(starts);
    work_.iterations.reserve(starts);
    haplotypes_.restart(haplotypes);
    phenotypes_.restart(entries);
    first_copies_.reserve(static_cast<std::size_t>(sample.first_alleles));
    second_copies_.reserve(static_cast<std::size_t>(sample.second_alleles));
}

std::int32_t TwoLocusEm::haplotype(std::int32_t first, std::int32_t second, bool has_blank) {
    std::int32_t const next = data_.haplotypes();
    std::int32_t const h =
        haplotypes_.number(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second), next);
    if (h == next) data_.add_haplotype(has_blank);
    return h;
}

void TwoLocusEm::add_pair(Chromosomes const& pair, std::size_t from, bool recessive) {
    std::int32_t const second = haplotype(pair.second[0], pair.second[1], pair.second_has_blank);
    std::int32_t const first = haplotype(pair.first[0], pair.first[1], false);
    if (recessive) {
        for (std::size_t g = from; g < data_.pairs.size(); ++g) {
            HaplotypePair const known = data_.pairs[g];
            if ((known.first == first && known.second == second) || (known.first == second && known.second == first)) {
                return;
            }
        }
    }
    data_.add_pair(first, second);
}

void TwoLocusEm::add_phenotype(TwoLocusGenotype const& genotype, double individuals, bool recessive) {
    bool const heterozygous[] = {genotype.first[0] != genotype.first[1], genotype.second[0] != genotype.second[1]};
    int const h = heterozygous[0] + heterozygous[1];
    unsigned const candidates = recessive ? (h == 2 ? 2 : 4) : (h == 2 ? 2 : 1);
    std::size_t const from = data_.pairs.size();
    data_.add_phenotype(individuals, h == 0 && !recessive);
    for (unsigned counter = 0; counter < candidates; ++counter) {
        Chromosomes pair{{genotype.first[0], genotype.second[0]}, {genotype.first[1], genotype.second[1]}};
        if (!recessive && counter == 1) {
            std::swap(pair.first[1], pair.second[1]);  // the first heterozygous locus stays in place
        }
        for (unsigned locus = 0; recessive && locus < 2; ++locus) {
            if ((counter >> locus & 1U) == 0) continue;
            if (pair.first[locus] == pair.second[locus] && pair.first[locus] != 0) {
                pair.second[locus] = 0;
                pair.second_has_blank = true;
            } else {
                std::swap(pair.first[locus], pair.second[locus]);
            }
        }
        add_pair(pair, from, recessive);
    }
}

void TwoLocusEm::load(TwoLocusSample const& sample) {
    std::size_t const entries = sample.genotypes.size();
    std::size_t const most = (sample.recessive ? 8 : 4) * entries;
    auto const grid = static_cast<std::size_t>(sample.first_alleles) * static_cast<std::size_t>(sample.second_alleles);
    data_.clear();
    haplotypes_.restart(std::min(most, grid));
    phenotypes_.restart(entries);
    auto const unordered = [](std::array<std::int32_t, 2> const& pair) {
        auto const low = static_cast<std::uint64_t>(std::min(pair[0], pair[1]));
        return low << 32 | static_cast<std::uint64_t>(std::max(pair[0], pair[1]));
    };
    for (std::size_t i = 0; i < entries; ++i) {
        TwoLocusGenotype const& genotype = sample.genotypes[i];
        std::int32_t const next = data_.phenotypes();
        std::int32_t const known = phenotypes_.number(unordered(genotype.first), unordered(genotype.second), next);
        if (known == next) {
            add_phenotype(genotype, sample.counts[i], sample.recessive);
        } else {
            data_.count[static_cast<std::size_t>(known)] += sample.counts[i];
            data_.individuals += sample.counts[i];
        }
    }
}

double TwoLocusEm::ln_equilibrium(TwoLocusSample const& sample) {
    first_copies_.assign(static_cast<std::size_t>(sample.first_alleles), 0.0);
    second_copies_.assign(static_cast<std::size_t>(sample.second_alleles), 0.0);
    double copies = 0.0;
    for (std::size_t i = 0; i < sample.genotypes.size(); ++i) {
        for (std::size_t c = 0; c < 2; ++c) {
            first_copies_[static_cast<std::size_t>(sample.genotypes[i].first[c])] += sample.counts[i];
            second_copies_[static_cast<std::size_t>(sample.genotypes[i].second[c])] += sample.counts[i];
        }
        copies += 2.0 * sample.counts[i];
    }
    for (double& f : first_copies_) f /= copies;
    for (double& f : second_copies_) f /= copies;
    auto const product = [](std::array<std::int32_t, 2> const& pair, std::vector<double> const& freq) {
        double const p = freq[static_cast<std::size_t>(pair[0])] * freq[static_cast<std::size_t>(pair[1])];
        return pair[0] == pair[1] ? p : 2.0 * p;
    };
    double sum = 0.0;
    for (std::size_t i = 0; i < sample.genotypes.size(); ++i) {
        double const p =
            product(sample.genotypes[i].first, first_copies_) * product(sample.genotypes[i].second, second_copies_);
        if (!(p > 0.0)) return impossible_ln_likelihood;
        sum += sample.counts[i] * std::log(p);
    }
    return sum;
}

LinkageLikelihoods TwoLocusEm::evaluate(TwoLocusSample const& sample, EmOptions const& options,
                                        EmGoesOn const& goes_on) {
    load(sample);
    EmResult const result = em_estimate(data_, options, work_, goes_on);
    return {result.ln_likelihood, ln_equilibrium(sample), result.stopped};
}

// --- Permutation ---

AllelePermutation::AllelePermutation(TwoLocusSample const& sample) {
    constexpr double tolerance = 0.0001;
    sample_.recessive = sample.recessive;
    std::vector<long> copies;
    for (std::size_t i = 0; i < sample.genotypes.size(); ++i) {
        copies.push_back(static_cast<long>(sample.counts[i] + tolerance));
        sample_.add(sample.genotypes[i], copies.back() < 1 ? sample.counts[i] : 1.0);
    }
    for (std::size_t i = 0; i < copies.size(); ++i) {
        for (long copy = 1; copy < copies[i]; ++copy) sample_.add(sample.genotypes[i], 1.0);
    }
    for (TwoLocusGenotype const& genotype : sample_.genotypes) {
        observed_.insert(observed_.end(), genotype.first.begin(), genotype.first.end());
    }
    shuffled_ = observed_;
}

TwoLocusSample const& AllelePermutation::next(Ran3State& generator) noexcept {
    std::size_t const n = observed_.size();
    std::copy(observed_.begin(), observed_.end(), shuffled_.begin());
    for (std::size_t i = 0; i < n; ++i) {
        auto const j =
            static_cast<std::size_t>(static_cast<double>(i) + static_cast<double>(n - i) * generator.draw());
        std::swap(shuffled_[i], shuffled_[std::min(j, n - 1)]);
    }
    for (std::size_t i = 0; i < sample_.genotypes.size(); ++i) {
        sample_.genotypes[i].first = {shuffled_[2 * i], shuffled_[2 * i + 1]};
    }
    return sample_;
}

}  // namespace tov
