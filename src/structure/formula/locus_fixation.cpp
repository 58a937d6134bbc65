// F-statistics and heterozygosity of one locus from the states of its gene copies.
#include "structure/formula/locus_fixation.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "diversity/formula/locus_statistics.h"

namespace tov {

LocusFixationWalk::LocusFixationWalk(StructureSizes sizes, FixationUnit unit, StateDistance distance,
                                     StateTable const& table)
    : sizes_(std::move(sizes)), unit_(unit), distance_(distance), table_(table) {
    auto const populations = static_cast<std::size_t>(sizes_.populations());
    order_.resize(populations);
    std::iota(order_.begin(), order_.end(), 0);
    std::size_t end = 0;
    for (double const copies : sizes_.copies) ends_.push_back(end += static_cast<std::size_t>(copies));
    population_sums_.resize(populations * (populations + 1) / 2);
    within_.resize(populations);
}

/// Numbers the states that occur in ascending order and counts them in each population.
void LocusFixationWalk::count(std::span<int const> states) {
    auto const [smallest, largest] = std::minmax_element(states.begin(), states.end());
    int const base = *smallest;
    allele_of_.assign(static_cast<std::size_t>(*largest - base) + 1, -1);
    for (int const state : states) allele_of_[static_cast<std::size_t>(state - base)] = 0;
    state_of_.clear();
    for (std::size_t i = 0; i < allele_of_.size(); ++i) {
        if (allele_of_[i] < 0) continue;
        allele_of_[i] = static_cast<int>(state_of_.size());
        state_of_.push_back(base + static_cast<int>(i));
    }
    alleles_ = state_of_.size();
    counts_.assign(ends_.size() * alleles_, 0.0);
    std::size_t k = 0;
    for (std::size_t p = 0; p < ends_.size(); ++p) {
        double* const f = row(p);
        for (; k < ends_[p]; ++k) f[allele_of_[static_cast<std::size_t>(states[k] - base)]] += 1.0;
    }
}

/// All pairs less those of equal copies.
void LocusFixationWalk::sums_of_equality() {
    std::size_t at = 0;
    for (std::size_t p = 0; p < ends_.size(); ++p) {
        for (std::size_t q = 0; q <= p; ++q) {
            double equal = 0.0;
            for (std::size_t a = 0; a < alleles_; ++a) equal += row(p)[a] * row(q)[a];
            double const pairs = sizes_.copies[p] * sizes_.copies[q] - equal;
            population_sums_[at++] = p == q ? 0.5 * pairs : pairs;
        }
    }
}

/// Sum over pairs of (x - y)^2 from the first two moments of the sizes, shifted to the smallest one.
void LocusFixationWalk::sums_of_sizes() {
    std::size_t at = 0;
    moments_.clear();
    for (std::size_t p = 0; p < ends_.size(); ++p) {
        double sum = 0.0, squares = 0.0;
        for (std::size_t a = 0; a < alleles_; ++a) {
            double const x = static_cast<double>(state_of_[a]) - state_of_[0];
            sum += row(p)[a] * x;
            squares += row(p)[a] * x * x;
        }
        moments_.emplace_back(sum, squares);
        double const n = sizes_.copies[p];
        for (std::size_t q = 0; q < p; ++q) {
            population_sums_[at++] =
                n * moments_[q].second + sizes_.copies[q] * squares - 2.0 * sum * moments_[q].first;
        }
        population_sums_[at++] = n * squares - sum * sum;
    }
}

void LocusFixationWalk::sums_of_table() {
    std::size_t at = 0;
    for (std::size_t p = 0; p < ends_.size(); ++p) {
        for (std::size_t q = 0; q < p; ++q) {
            double sum = 0.0;
            for (std::size_t a = 0; a < alleles_; ++a) {
                for (std::size_t b = 0; b < alleles_; ++b) {
                    sum += row(p)[a] * row(q)[b] * distance_of(state_of_[a], state_of_[b]);
                }
            }
            population_sums_[at++] = sum;
        }
        double sum = 0.0;
        for (std::size_t a = 0; a < alleles_; ++a) {
            for (std::size_t b = a + 1; b < alleles_; ++b) {
                sum += row(p)[a] * row(p)[b] * distance_of(state_of_[a], state_of_[b]);
            }
        }
        population_sums_[at++] = sum;
    }
}

double LocusFixationWalk::distance_of(int x, int y) const noexcept {
    switch (distance_) {
        case StateDistance::equality:
            return x == y ? 0.0 : 1.0;
        case StateDistance::squared_size: {
            double const d = static_cast<double>(x) - y;
            return d * d;
        }
        case StateDistance::table:
            break;
    }
    auto const cell = static_cast<std::size_t>(std::clamp(x, 0, 2) * 3 + std::clamp(y, 0, 2));
    return table_[cell];
}

double LocusFixationWalk::within_individuals(std::span<int const> states) const noexcept {
    double sum = 0.0;
    for (std::size_t k = 0; k + 1 < states.size(); k += 2) sum += distance_of(states[k], states[k + 1]);
    return 0.5 * sum;
}

double LocusFixationWalk::mean_heterozygosity() const noexcept {
    double sum = 0.0;
    for (std::size_t p = 0; p < ends_.size(); ++p) {
        sum += expected_heterozygosity({row(p), alleles_}) * sizes_.copies[p];
    }
    return sizes_.total > 0.0 ? sum / sizes_.total : 0.0;
}

VarianceTable LocusFixationWalk::variances(std::span<int const> states) {
    for (std::size_t p = 0; p < within_.size(); ++p) within_[p] = population_sums_[p * (p + 1) / 2 + p];
    bool const individuals = unit_ == FixationUnit::individuals;
    AmovaSums sums;
    sums.total = total_sum(population_sums_);
    sums.W = within_terms(within_, sizes_);
    sums.I = individuals ? within_individuals(states) : 0.0;
    sums.Nu = individuals ? 0.5 * sizes_.total : sizes_.total;
    if (sizes_.groups() < 2) {
        return individuals ? one_group_individuals(sizes_, sums) : one_group_haplotypes(sizes_, sums);
    }
    group_sums_into(groups_, sizes_, population_sums_, order_, static_cast<int>(sums.Nu));
    return individuals ? groups_individuals(sizes_, sums, groups_) : groups_haplotypes(sizes_, sums, groups_);
}

LocusFixation LocusFixationWalk::compute(std::span<int const> states) {
    LocusFixation result;
    if (ends_.empty() || states.empty() || states.size() != ends_.back()) return result;
    count(states);
    result.mean_heterozygosity = mean_heterozygosity();
    if (alleles_ < 2 || unit_ == FixationUnit::none) return result;
    switch (distance_) {
        case StateDistance::equality:
            sums_of_equality();
            break;
        case StateDistance::squared_size:
            sums_of_sizes();
            break;
        case StateDistance::table:
            sums_of_table();
            break;
    }
    VarianceTable const t = variances(states);
    if (t.ill_defined) return result;
    result.FST = t.FST;
    result.FSC = t.FSC;
    result.FCT = t.FCT;
    return result;
}

}  // namespace tov
