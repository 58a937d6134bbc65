// Lineages of a genealogy in the demes of an island model, while the genealogy is being built.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tov {

/// How migrants choose their target. Only the islands are served.
enum MigrationModel : int { ISLAND = 0, STEPPING_STONE = 1 };

/// Gene copies of the samples to simulate: one entry a sample, group after group.
struct SampledCopies {
    std::vector<int> copies;
    std::vector<int> group_sizes;  ///< samples of each group; a flat model needs none

    [[nodiscard]] int total() const noexcept;
};

/// Migration rates per lineage and generation of an island model that reaches given F-statistics at equilibrium.
///
/// Flat: m = (d - 1) (1 / FST - 1) / (2 N d), exact for FST = 1 - T0 / T1 (Slatkin 1991).
struct MigrationRates {
    double within = 0.0;   ///< to another deme (of the same group)
    double between = 0.0;  ///< to a deme of another group
    [[nodiscard]] double total() const noexcept { return within + between; }
};

/// Coalescent scale of the island models: the size of a deme.
inline constexpr double deme_size = 1000.0;

/// @param demes  islands, at least 1. @param Fst  in (0, 1].
[[nodiscard]] MigrationRates flat_island_rates(double Fst, int demes) noexcept;
/// Groups of demes: x = 1 - (1 - FST) / (1 - FCT) is FSC; values of FCT and x that no model reaches count as 0.001.
///
/// m_within = (s - 1) (1 / x - 1) / (2 s N), m_between = (g - 1) (1 - FCT) x m_within / ((s - 1) g FCT).
[[nodiscard]] MigrationRates two_level_island_rates(double Fst, double Fct, int demes_per_group, int groups) noexcept;

/// Which lineages are in which deme. Lineages are node numbers; the coalescence rate of a deme with c of them is
/// c (c - 1) / 2. All rates are sums of whole numbers and exact.
class DemeLineages {
public:
    /// A lineage on the move.
    struct Place {
        int slot;      ///< of the deme in the list of occupied ones
        int position;  ///< of the lineage in its deme
    };

    /// d demes in groups of `per_group`; the same shape as before only empties them.
    void create(int d, int per_group);
    /// No lineage anywhere; the memory stays.
    void clean() noexcept;

    [[nodiscard]] int demes() const noexcept { return static_cast<int>(demes_.size()); }
    [[nodiscard]] int per_group() const noexcept { return per_group_; }
    [[nodiscard]] int groups() const noexcept { return static_cast<int>(first_of_group_.size()); }
    [[nodiscard]] int active() const noexcept { return active_; }
    [[nodiscard]] int occupied() const noexcept { return nb_occupied_; }
    [[nodiscard]] int count(int deme) const noexcept { return static_cast<int>(demes_[index(deme)].lineages.size()); }
    [[nodiscard]] int count_in_group(int group) const noexcept;
    [[nodiscard]] std::span<int const> lineages(int deme) const noexcept { return demes_[index(deme)].lineages; }
    [[nodiscard]] int group_of(int deme) const noexcept { return demes_[index(deme)].group; }
    [[nodiscard]] int first_of_group(int group) const noexcept { return first_of_group_[index(group)]; }
    [[nodiscard]] int deme_at(int slot) const noexcept { return occupied_[index(slot)].deme; }
    /// Total coalescence rate.
    [[nodiscard]] double coalescence_rate() const noexcept { return static_cast<double>(pairs_); }

    /// Lineages first .. first + n - 1 enter an empty deme.
    void settle(int deme, int first, int n);

    /// First occupied deme at which the summed coalescence rates reach v; its rate is above 0. @return its slot, -1
    /// when no deme has two lineages.
    [[nodiscard]] int slot_of_rate(double v) const noexcept;
    /// The j-th lineage, counted through the occupied demes in their order.
    [[nodiscard]] Place place_of(int j) const noexcept {
        if (occupied() == active_) return {j, 0};
        // Blocks of slots are passed over as a whole; in the last one no step asks whether it is the last. What stands
        // behind the occupied slots is never reached by the sums.
        Occupied const* block = occupied_.data();
        while (true) {
            int const sum = block[0].count + block[1].count + block[2].count + block[3].count;
            if (j < sum) break;
            j -= sum;
            block += scanned_at_once;
        }
        int const first = block[0].count;
        int const second = first + block[1].count;
        int const third = second + block[2].count;
        int const passed = (j >= first) + (j >= second) + (j >= third);
        int before = j >= first ? first : 0;
        before = j >= second ? second : before;
        before = j >= third ? third : before;
        return {static_cast<int>(block - occupied_.data()) + passed, j - before};
    }

    /// Two lineages of the deme in `slot` join: `node` takes the place of the second one.
    struct Pair {
        int left;
        int right;
    };
    /// @param left   position of the first pick; the last lineage fills its place.
    /// @param right  position of the second pick among the others.
    Pair coalesce(int slot, int left, int right, int node) noexcept;
    /// Moves a lineage to another deme; a deme left empty is no longer occupied, the last one takes its slot.
    void move(Place const& from, int target) {
        Occupied& source = occupied_[index(from.slot)];
        std::vector<int>& here = demes_[index(source.deme)].lineages;
        int const lineage = here[index(from.position)];
        here[index(from.position)] = here.back();
        here.pop_back();
        pairs_ -= static_cast<std::int64_t>(here.size());
        if (--source.count == 0) {
            source = occupied_[index(--nb_occupied_)];
            demes_[index(source.deme)].slot = from.slot;
        }
        add_lineage(target, lineage);
    }

private:
    struct Deme {
        std::vector<int> lineages;
        int slot = -1;  ///< valid while occupied
        int group = 0;
    };
    struct Occupied {
        int deme = 0;
        int count = 0;  ///< of its lineages
    };

    static constexpr int scanned_at_once = 4;

    static std::size_t index(int i) noexcept { return static_cast<std::size_t>(i); }
    [[nodiscard]] std::span<Occupied const> occupied_slots() const noexcept {
        return {occupied_.data(), index(nb_occupied_)};
    }
    static std::int64_t pairs_of(std::int64_t c) noexcept { return c * (c - 1) / 2; }
    void add_lineage(int deme, int lineage) {
        Deme& target = demes_[index(deme)];
        std::size_t const before = target.lineages.size();
        target.lineages.push_back(lineage);
        pairs_ += static_cast<std::int64_t>(before);
        if (before == 0) {
            target.slot = nb_occupied_++;
            occupied_[index(target.slot)] = {deme, 1};
        } else {
            ++occupied_[index(target.slot)].count;
        }
    }

    int per_group_ = 0;
    std::vector<Deme> demes_;
    /// In the order of their first lineage, but for filled gaps; sized for all demes and a block.
    std::vector<Occupied> occupied_;
    int nb_occupied_ = 0;
    std::vector<int> first_of_group_;
    std::int64_t pairs_ = 0;
    int active_ = 0;
};

}  // namespace tov
