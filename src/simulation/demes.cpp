// Demes of an island model: rates, and the moves of their lineages.
#include "simulation/demes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tov {

int SampledCopies::total() const noexcept { return std::accumulate(copies.begin(), copies.end(), 0); }

MigrationRates flat_island_rates(double Fst, int demes) noexcept {
    double const d = demes;
    return {(d - 1.0) * (1.0 / Fst - 1.0) / (2.0 * deme_size * d), 0.0};
}

MigrationRates two_level_island_rates(double Fst, double Fct, int demes_per_group, int groups) noexcept {
    constexpr double least = 0.001;
    double const s = demes_per_group;
    double const g = groups;
    if (Fct <= 0.0) Fct = least;
    double x = Fct == 1.0 ? 0.0 : 1.0 - (1.0 - Fst) / (1.0 - Fct);
    if (x < 0.0) x = least;
    MigrationRates rates;
    if (x != 0.0) rates.within = (s - 1.0) * (1.0 / x - 1.0) / (2.0 * s * deme_size);
    rates.between = (g - 1.0) * (1.0 - Fct) * x * rates.within / ((s - 1.0) * g * Fct);
    return rates;
}

void DemeLineages::create(int d, int per_group) {
    if (d == demes() && per_group == per_group_) {
        clean();
        return;
    }
    std::size_t const n = index(std::max(0, d));
    per_group_ = std::max(1, per_group);
    lineages_.assign(n, {});
    slot_.assign(n, -1);
    occupied_.clear();
    occupied_.reserve(n);
    occupied_counts_.clear();
    occupied_counts_.reserve(n);
    group_of_.clear();
    first_of_group_.clear();
    for (int deme = 0; deme < d; ++deme) {
        if (deme % per_group_ == 0) first_of_group_.push_back(deme);
        group_of_.push_back(deme / per_group_);
    }
    group_counts_.assign(first_of_group_.size(), 0);
    pairs_ = 0;
    active_ = 0;
}

void DemeLineages::clean() noexcept {
    for (std::vector<int>& lineages : lineages_) lineages.clear();
    occupied_.clear();
    occupied_counts_.clear();
    std::fill(group_counts_.begin(), group_counts_.end(), 0);
    pairs_ = 0;
    active_ = 0;
}

void DemeLineages::settle(int deme, int first, int n) {
    for (int i = 0; i < n; ++i) add_lineage(deme, first + i);
    active_ += n;
}

void DemeLineages::add_lineage(int deme, int lineage) {
    std::vector<int>& here = lineages_[index(deme)];
    if (here.empty()) {
        slot_[index(deme)] = occupied();
        occupied_.push_back(deme);
        occupied_counts_.push_back(0);
    }
    pairs_ += static_cast<std::int64_t>(here.size());
    here.push_back(lineage);
    ++occupied_counts_[index(slot_[index(deme)])];
    ++group_counts_[index(group_of_[index(deme)])];
}

int DemeLineages::slot_of_rate(double v) const noexcept {
    // The sums are whole numbers, and a deme with a single lineage can't be the first to reach 1 or more.
    std::int64_t const wanted =
        std::clamp<std::int64_t>(static_cast<std::int64_t>(std::ceil(v)), 1, pairs_ > 0 ? pairs_ : 1);
    std::int64_t sum = 0;
    for (std::size_t slot = 0; slot < occupied_counts_.size(); ++slot) {
        sum += pairs_of(occupied_counts_[slot]);
        if (sum >= wanted) return static_cast<int>(slot);
    }
    return -1;
}

DemeLineages::Place DemeLineages::place_of(int j) const noexcept {
    int const* const counts = occupied_counts_.data();
    int slot = 0;
    while (j >= counts[slot]) j -= counts[slot++];
    return {slot, j};
}

DemeLineages::Pair DemeLineages::coalesce(int slot, int left, int right, int node) noexcept {
    int const deme = deme_at(slot);
    std::vector<int>& here = lineages_[index(deme)];
    Pair pair{here[index(left)], 0};
    here[index(left)] = here.back();
    here.pop_back();
    pair.right = here[index(right)];
    here[index(right)] = node;
    pairs_ -= static_cast<std::int64_t>(here.size());
    --occupied_counts_[index(slot)];
    --group_counts_[index(group_of(deme))];
    --active_;
    return pair;
}

void DemeLineages::move(Place const& from, int target) {
    int const source = deme_at(from.slot);
    std::vector<int>& here = lineages_[index(source)];
    int const lineage = here[index(from.position)];
    here[index(from.position)] = here.back();
    here.pop_back();
    pairs_ -= static_cast<std::int64_t>(here.size());
    --group_counts_[index(group_of(source))];
    if (--occupied_counts_[index(from.slot)] == 0) {
        int const last = occupied_.back();
        occupied_[index(from.slot)] = last;
        occupied_counts_[index(from.slot)] = occupied_counts_.back();
        slot_[index(last)] = from.slot;
        occupied_.pop_back();
        occupied_counts_.pop_back();
    }
    add_lineage(target, lineage);
}

}  // namespace tov
