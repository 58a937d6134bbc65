// Sums over pairs of gene copies within and among two samples.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "structure/formula/pair_kernels.h"
#include "structure/formula/pairwise.h"

namespace tov {

namespace {

constexpr int arrangements = 32;  ///< of a block: enough to keep the adders of the widest registers busy

}  // namespace

PairSums::PairSums(PairDistances const& distances, std::span<int const> first, std::span<int const> second,
                   Registers registers)
    : a_(static_cast<int>(first.size())),
      conventional_(distances.conventional()),
      registers_(registers),
      genes_(first.begin(), first.end()) {
    genes_.insert(genes_.end(), second.begin(), second.end());
    std::vector<int> kinds(genes_);
    std::sort(kinds.begin(), kinds.end());
    kinds.erase(std::unique(kinds.begin(), kinds.end()), kinds.end());
    for (int& h : genes_) {
        h = static_cast<int>(std::lower_bound(kinds.begin(), kinds.end(), h) - kinds.begin());
    }
    n_ = static_cast<int>(kinds.size());
    if (conventional_) {
        tally_.assign(kinds.size(), 0);
        std::int64_t const all = static_cast<std::int64_t>(genes_.size());
        std::int64_t equal = 0;
        for (int const h : genes_) {
            equal += tally_[h]++;
        }
        all_pairs_ = static_cast<double>(all * (all - 1) / 2 - equal);
        std::fill(tally_.begin(), tally_.end(), 0);
    } else {
        f_.assign(kinds.size(), 0.0);
        g_.assign(kinds.size(), 0.0);
        d_.reserve(kinds.size() * kinds.size());
        for (int const i : kinds) {
            for (int const j : kinds) {
                d_.push_back(distances.at(i, j));
            }
        }
        set_up_table();
    }
    sums_.resize(block_);
}

void PairSums::set_up_table() {
    double largest = 0.0;
    bool whole = true, finite = true;
    for (int i = 0; i < n_; ++i) {
        for (int j = 0; j < n_; ++j) {
            double const dij = d_[static_cast<std::size_t>(i) * n_ + j];
            finite = finite && std::isfinite(dij);
            whole = whole && dij >= 0.0 && dij == std::floor(dij) && (i != j || dij == 0.0);
            largest = std::max(largest, dij);
        }
    }
    if (!finite) {
        return;
    }
    total_.assign(n_, 0.0);
    for (int const h : genes_) {
        total_[h] += 1.0;
    }
    block_ = arrangements;
    stride_ = 2 * arrangements;
    double const copies = static_cast<double>(genes_.size());
    // Below 2^24 single precision holds every whole number.
    if (!whole || largest * copies * copies >= 16777216.0) {
        path_ = Path::table;
        table_.assign(static_cast<std::size_t>(n_) * stride_, 0.0);
        table_sums_.assign(3 * static_cast<std::size_t>(stride_), 0.0);
        for (double const total : total_) {
            single_.push_back(total == 1.0);
        }
        return;
    }
    path_ = Path::whole_table;
    whole_table_.assign(static_cast<std::size_t>(n_) * stride_, 0.0F);
    whole_sums_.assign(stride_, 0.0F);
    for (int i = 0; i < n_; ++i) {
        for (int j = i; j < n_; ++j) {
            double const dij = d_[static_cast<std::size_t>(i) * n_ + j];
            whole_distances_.push_back(static_cast<float>(dij));
            all_pairs_ += dij * (total_[i] * total_[j]);
        }
    }
}

PairOfSums PairSums::compute(std::span<int const> v) { return conventional_ ? by_equal_pairs(v) : in_order(v); }

PairOfSums PairSums::by_equal_pairs(std::span<int const> v) {
    auto const different = [this](std::span<int const> slice) {
        std::int64_t equal = 0;
        for (int const h : slice) {
            equal += tally_[h]++;
        }
        for (int const h : slice) {
            tally_[h] = 0;
        }
        std::int64_t const n = static_cast<std::int64_t>(slice.size());
        return static_cast<double>(n * (n - 1) / 2 - equal);
    };
    double const first = different(v.first(a_));
    double const second = different(v.subspan(a_));
    return {first, second, all_pairs_ - first - second};
}

/// Ascending haplotypes, one addition a pair: the order that fixes the digits of broken distances.
PairOfSums PairSums::in_order(std::span<int const> v) {
    std::fill(f_.begin(), f_.end(), 0.0);
    std::fill(g_.begin(), g_.end(), 0.0);
    for (int const h : v.first(a_)) {
        f_[h] += 1.0;
    }
    for (int const h : v.subspan(a_)) {
        g_[h] += 1.0;
    }
    PairOfSums s;
    for (int i = 0; i < n_; ++i) {
        double const* const d = d_.data() + static_cast<std::size_t>(i) * n_;
        double const fi = f_[i], gi = g_[i];
        s.first += 0.5 * fi * (fi - 1.0) * d[i];
        s.second += 0.5 * gi * (gi - 1.0) * d[i];
        for (int j = i + 1; j < n_; ++j) {
            s.first += fi * f_[j] * d[j];
            s.second += gi * g_[j] * d[j];
        }
        for (int j = 0; j < n_; ++j) {
            s.among += fi * g_[j] * d[j];
        }
    }
    return s;
}

void PairSums::add(std::span<int const> v) {
    switch (path_) {
        case Path::one_by_one: sums_[0] = compute(v); break;
        case Path::whole_table: add_to_table(v, whole_table_.data()); break;
        case Path::table: add_to_table(v, table_.data()); break;
    }
    ++added_;
}

/// Counts the smaller sample; the other is what is left of all copies.
template <class Count>
void PairSums::add_to_table(std::span<int const> v, Count* table) const {
    bool const front = 2 * static_cast<std::size_t>(a_) <= v.size();
    Count* const lane = table + (front ? 0 : arrangements) + added_;
    for (int const h : front ? v.first(a_) : v.subspan(a_)) {
        lane[static_cast<std::size_t>(h) * stride_] += Count(1);
    }
}

template <class Count>
void PairSums::fill_other_sample(Count* table) const {
    bool const front = 2 * static_cast<std::size_t>(a_) <= genes_.size();
    for (int h = 0; h < n_; ++h) {
        Count* const row = table + static_cast<std::size_t>(h) * stride_;
        Count const* const counted = row + (front ? 0 : arrangements);
        Count* const other = row + (front ? arrangements : 0);
        Count const total = static_cast<Count>(total_[h]);
        for (int k = 0; k < arrangements; ++k) {
            other[k] = total - counted[k];
        }
    }
}

void PairSums::evaluate() {
    int const lanes = rounded_lanes(added_);
    if (path_ == Path::whole_table) {
        fill_other_sample(whole_table_.data());
        WholeWithin walk{n_, whole_distances_.data(), whole_table_.data(), stride_, lanes, whole_sums_.data()};
        if (lanes == arrangements) {
            walk.lanes = stride_;  // both samples in one go
            run_kernel(walk, registers_);
        } else {
            run_kernel(walk, registers_);
            walk.counts += arrangements;
            walk.sums += arrangements;
            run_kernel(walk, registers_);
        }
        for (int k = 0; k < added_; ++k) {
            double const first = whole_sums_[k], second = whole_sums_[arrangements + k];
            sums_[k] = {first, second, all_pairs_ - first - second};
        }
        std::fill(whole_table_.begin(), whole_table_.end(), 0.0F);
    } else if (path_ == Path::table) {
        fill_other_sample(table_.data());
        run_kernel(DensePair{n_, d_.data(), single_.data(), table_.data(), table_.data() + arrangements, stride_, lanes,
                             table_sums_.data()},
                   registers_);
        for (int k = 0; k < added_; ++k) {
            sums_[k] = {table_sums_[k], table_sums_[stride_ + k], table_sums_[2 * stride_ + k]};
        }
        std::fill(table_.begin(), table_.end(), 0.0);
    }
    added_ = 0;
}

}  // namespace tov
