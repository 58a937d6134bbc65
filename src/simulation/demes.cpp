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
    per_group_ = std::max(1, per_group);
    demes_.assign(index(std::max(0, d)), Deme());
    occupied_.assign(demes_.size() + scanned_at_once, Occupied());
    nb_occupied_ = 0;
    first_of_group_.clear();
    for (int deme = 0; deme < d; ++deme) {
        if (deme % per_group_ == 0) first_of_group_.push_back(deme);
        demes_[index(deme)].group = deme / per_group_;
    }
    pairs_ = 0;
    active_ = 0;
}

void DemeLineages::clean() noexcept {
    for (Occupied const& o : occupied_slots()) demes_[index(o.deme)].lineages.clear();
    nb_occupied_ = 0;
    pairs_ = 0;
    active_ = 0;
}

int DemeLineages::count_in_group(int group) const noexcept {
    int sum = 0;
    for (Occupied const& o : occupied_slots()) sum += group_of(o.deme) == group ? o.count : 0;
    return sum;
}

void DemeLineages::settle(int deme, int first, int n) {
    for (int i = 0; i < n; ++i) add_lineage(deme, first + i);
    active_ += n;
}

int DemeLineages::slot_of_rate(double v) const noexcept {
    // The sums are whole numbers, and a deme with a single lineage can't be the first to reach 1 or more.
    std::int64_t const wanted =
        std::clamp<std::int64_t>(static_cast<std::int64_t>(std::ceil(v)), 1, std::max<std::int64_t>(pairs_, 1));
    std::int64_t sum = 0;
    for (int slot = 0; slot < nb_occupied_; ++slot) {
        sum += pairs_of(occupied_[index(slot)].count);
        if (sum >= wanted) return slot;
    }
    return -1;
}

DemeLineages::Pair DemeLineages::coalesce(int slot, int left, int right, int node) noexcept {
    Occupied& deme = occupied_[index(slot)];
    std::vector<int>& here = demes_[index(deme.deme)].lineages;
    Pair pair{here[index(left)], 0};
    here[index(left)] = here.back();
    here.pop_back();
    pair.right = here[index(right)];
    here[index(right)] = node;
    pairs_ -= static_cast<std::int64_t>(here.size());
    --deme.count;
    --active_;
    return pair;
}

}  // namespace tov
