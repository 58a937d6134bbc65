// Sums within populations.
#include "structure/formula/within_sums.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <utility>

namespace tov {

PresentCounts::PresentCounts(int n)
    : n_(n), counts_(static_cast<std::size_t>(n) + 1, 0), present_(static_cast<std::size_t>(n) / 64 + 1, 0) {}

template <class Each>
void PresentCounts::drain(Each&& each) {
    for (std::size_t word = 0; word < present_.size(); ++word) {
        std::uint64_t bits = std::exchange(present_[word], 0);
        for (; bits != 0; bits &= bits - 1) {
            int const h = static_cast<int>(word * 64) + std::countr_zero(bits);
            int const count = std::exchange(counts_[h], 0);
            if (h < n_) {
                each(h, static_cast<double>(count));
            }
        }
    }
}

WithinSums::WithinSums(PairDistances const& distances, std::vector<GeneSlice> slices, std::span<int const> genes,
                       Registers registers)
    : distances_(&distances), slices_(std::move(slices)), registers_(registers) {
    if (distances.conventional()) {
        tally_.assign(static_cast<std::size_t>(distances.size()) + 1, 0);
    } else {
        counts_ = PresentCounts(distances.size());
        path_ = choose_path(genes);
        int most = 0;
        for (GeneSlice const& slice : slices_) {
            most = std::max(most, slice.end - slice.begin);
        }
        present_.assign(most, 0);
        present_counts_.assign(most, 0.0);
    }
    if (path_ == Path::lists) {
        set_up_lists();
    } else if (path_ != Path::one_by_one) {
        set_up_tables(genes);
    }
    sums_.assign(static_cast<std::size_t>(block_) * slices_.size(), 0.0);
}

/// Compares the terms of all haplotypes with those of the haplotypes present, at what a term of a table costs in terms
/// of a list.
WithinSums::Path WithinSums::choose_path(std::span<int const> genes) const {
    PairDistances const& d = *distances_;
    if (!d.products_are_finite() || slices_.empty()) {
        return Path::one_by_one;
    }
    double const n = d.size();
    double of_present = 0.0, most = 0.0;
    for (GeneSlice const& slice : slices_) {
        double const copies = slice.end - slice.begin;
        double const present = most_present(slice);
        of_present += 10.0 * copies + 0.5 * present * present;
        most = std::max(most, copies);
    }
    double const of_all = 0.5 * n * (n + 1.0) * static_cast<double>(slices_.size());
    bool const whole = d.sums_are_whole(most);
    double const cost = registers_ == Registers::narrow ? 0.5 : registers_ == Registers::wide ? 0.2 : 0.15;
    if (of_all * cost * (whole ? 0.5 : 1.0) > of_present) {
        return Path::lists;
    }
    if (whole) {
        return Path::whole_table;
    }
    bool const two_of_all = slices_.size() == 2 && slices_[0].begin == 0 && slices_[0].end == slices_[1].begin &&
                            slices_[1].end == static_cast<int>(genes.size());
    return two_of_all && most_are_single(genes) ? Path::table_of_two : Path::table;
}

/// At least half of the haplotypes have one copy in all.
bool WithinSums::most_are_single(std::span<int const> genes) const {
    std::vector<int> total(static_cast<std::size_t>(distances_->size()) + 1, 0);
    for (int const h : genes) {
        ++total[h];
    }
    return 2 * std::count(total.begin(), total.end() - 1, 1) >= distances_->size();
}

void WithinSums::set_up_tables(std::span<int const> genes) {
    if (path_ == Path::table_of_two) {
        set_up_table_of_two(genes);
        return;
    }
    // Enough lanes to keep the adders busy, few enough to stay within the nearest cache.
    int const enough = path_ == Path::table ? 32 : 64;
    block_ = 4;
    while (block_ < 32 && block_ * populations() < enough) {
        block_ *= 2;
    }
    stride_ = rounded_lanes(block_ * populations());
    std::size_t const cells = (static_cast<std::size_t>(distances_->size()) + 1) * stride_;
    if (path_ == Path::table) {
        table_.assign(cells, 0.0);
        table_sums_.assign(stride_, 0.0);
        std::vector<int> total(static_cast<std::size_t>(distances_->size()) + 1, 0);
        for (int const h : genes) {
            ++total[h];
        }
        for (int const copies : total) {
            single_.push_back(copies == 1);
        }
        return;
    }
    whole_table_.assign(cells, 0.0F);
    whole_sums_.assign(stride_, 0.0F);
    for (double const d : distances_->upper()) {
        whole_distances_.push_back(static_cast<float>(d));
    }
}

void WithinSums::set_up_table_of_two(std::span<int const> genes) {
    block_ = stride_ = 32;
    halves_.assign(static_cast<std::size_t>(distances_->size()) + 1, 0.0);
    for (int const h : genes) {
        halves_[h] += 0.5;
    }
    table_.assign(halves_.size() * stride_, 0.0);
    table_sums_.assign(2 * static_cast<std::size_t>(stride_), 0.0);
    clear_table_of_two();
}

void WithinSums::set_up_lists() {
    constexpr int entries_at_most = 1 << 16;  // what the second cache holds
    int entries = 0;
    for (GeneSlice const& slice : slices_) {
        entries += most_present(slice);
    }
    block_ = std::clamp(entries_at_most / entries, 4, 32);
    int at = 0;
    for (int k = 0; k < block_; ++k) {
        for (GeneSlice const& slice : slices_) {
            chain_begin_.push_back(at);
            at += most_present(slice) + ListedWithin::padding;
        }
    }
    chain_end_ = chain_begin_;
    chain_haplotypes_.assign(at, 0);
    chain_counts_.assign(at, 0.0);
    row_begin_.assign(static_cast<std::size_t>(distances_->size()) + 1, 0);
    row_end_.assign(distances_->size(), 0);
    row_entries_.resize(static_cast<std::size_t>(block_) * entries);
    by_size_.resize(slices_.size());
    std::iota(by_size_.begin(), by_size_.end(), 0);
    std::stable_sort(by_size_.begin(), by_size_.end(), [this](int p, int q) {
        return slices_[p].end - slices_[p].begin > slices_[q].end - slices_[q].begin;
    });
}

void WithinSums::compute(std::span<int const> genes, std::span<double> sums) {
    if (distances_->conventional()) {
        by_equal_pairs(genes, sums);
    } else {
        by_present_haplotypes(genes, sums);
    }
}

/// The 0/1 distance: all pairs less the pairs of equal copies, in whole numbers.
void WithinSums::by_equal_pairs(std::span<int const> genes, std::span<double> sums) {
    int const unknown = distances_->size();
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        auto const slice = copies_of(genes, p);
        std::int64_t equal = 0;
        for (int const h : slice) {
            equal += tally_[h]++;
        }
        std::int64_t const lost = tally_[unknown];
        std::int64_t const n = static_cast<std::int64_t>(slice.size()) - lost;
        equal -= lost * (lost - 1) / 2;
        for (int const h : slice) {
            tally_[h] = 0;
        }
        sums[p] = static_cast<double>(n * (n - 1) / 2 - equal);
    }
}

void WithinSums::by_present_haplotypes(std::span<int const> genes, std::span<double> sums) {
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        for (int const h : copies_of(genes, p)) {
            counts_.add(h);
        }
        int many = 0;
        counts_.drain([&](int h, double count) {
            present_[many] = h;
            present_counts_[many] = count;
            ++many;
        });
        double sum = 0.0;
        for (int i = 0; i < many; ++i) {
            double const f = present_counts_[i];
            double const* const d = distances_->row(present_[i]) - present_[i];
            sum += 0.5 * f * (f - 1.0) * d[present_[i]];
            for (int j = i + 1; j < many; ++j) {
                sum += f * present_counts_[j] * d[present_[j]];
            }
        }
        sums[p] = sum;
    }
}

void WithinSums::add(std::span<int const> genes) {
    switch (path_) {
        case Path::one_by_one: compute(genes, sums_); break;
        case Path::whole_table: add_to_table(genes, whole_table_.data()); break;
        case Path::table: add_to_table(genes, table_.data()); break;
        case Path::table_of_two: add_to_table_of_two(genes); break;
        case Path::lists: add_to_lists(genes); break;
    }
    ++added_;
}

template <class Count>
void WithinSums::add_to_table(std::span<int const> genes, Count* table) {
    Count* const lanes = table + static_cast<std::size_t>(added_) * slices_.size();
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        for (int const h : copies_of(genes, p)) {
            lanes[static_cast<std::size_t>(h) * stride_ + p] += Count(1);
        }
    }
}

void WithinSums::add_to_lists(std::span<int const> genes) {
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        for (int const h : copies_of(genes, p)) {
            counts_.add(h);
        }
        std::size_t const chain = static_cast<std::size_t>(added_) * slices_.size() + p;
        int at = chain_begin_[chain];
        counts_.drain([&](int h, double count) {
            chain_haplotypes_[at] = h;
            chain_counts_[at] = count;
            ++at;
        });
        chain_end_[chain] = at;
        std::fill_n(chain_haplotypes_.begin() + at, ListedWithin::padding, distances_->size());
        std::fill_n(chain_counts_.begin() + at, ListedWithin::padding, 0.0);
    }
}

void WithinSums::evaluate() {
    switch (path_) {
        case Path::one_by_one: break;
        case Path::whole_table: evaluate_whole_table(); break;
        case Path::table: evaluate_table(); break;
        case Path::table_of_two: evaluate_table_of_two(); break;
        case Path::lists: evaluate_lists(); break;
    }
    added_ = 0;
}

void WithinSums::evaluate_table() {
    int const used = added_ * populations();
    run_kernel(DenseWithin{distances_->size(), distances_->upper().data(), single_.data(), table_.data(), stride_,
                           rounded_lanes(used), table_sums_.data()},
               registers_);
    std::copy_n(table_sums_.begin(), used, sums_.begin());
    std::fill(table_.begin(), table_.end(), 0.0);
}

/// All copies in the second sample.
void WithinSums::clear_table_of_two() {
    auto at = table_.begin();
    for (double const half : halves_) {
        at = std::fill_n(at, stride_, -half);
    }
}

void WithinSums::add_to_table_of_two(std::span<int const> genes) {
    for (int const h : copies_of(genes, 0)) {
        table_[static_cast<std::size_t>(h) * stride_ + added_] += 1.0;
    }
}

void WithinSums::evaluate_table_of_two() {
    double* const first = table_sums_.data();
    double* const second = first + stride_;
    run_kernel(DenseTwo{distances_->size(), distances_->upper().data(), halves_.data(), table_.data(), stride_,
                        rounded_lanes(added_), first, second},
               registers_);
    for (int k = 0; k < added_; ++k) {
        sums_[2 * k] = first[k];
        sums_[2 * k + 1] = second[k];
    }
    clear_table_of_two();
}

void WithinSums::evaluate_whole_table() {
    int const used = added_ * populations();
    run_kernel(WholeWithin{distances_->size(), whole_distances_.data(), whole_table_.data(), stride_,
                           rounded_lanes(used), whole_sums_.data()},
               registers_);
    std::copy_n(whole_sums_.begin(), used, sums_.begin());
    std::fill(whole_table_.begin(), whole_table_.end(), 0.0F);
}

/// Entries by haplotype; chains of about the same length stand side by side.
void WithinSums::sort_chain_entries() {
    std::size_t const chains = static_cast<std::size_t>(added_) * slices_.size();
    std::fill(row_end_.begin(), row_end_.end(), 0);
    for (std::size_t chain = 0; chain < chains; ++chain) {
        for (int at = chain_begin_[chain]; at < chain_end_[chain]; ++at) {
            ++row_end_[chain_haplotypes_[at]];
        }
    }
    std::inclusive_scan(row_end_.begin(), row_end_.end(), row_begin_.begin() + 1);
    std::copy_n(row_begin_.begin(), row_end_.size(), row_end_.begin());
    for (int const p : by_size_) {
        for (int k = 0; k < added_; ++k) {
            int const chain = k * populations() + p;
            int const end = chain_end_[chain];
            for (int at = chain_begin_[chain]; at < end; ++at) {
                row_entries_[row_end_[chain_haplotypes_[at]]++] = {at, end - at - 1, chain};
            }
        }
    }
}

void WithinSums::evaluate_lists() {
    sort_chain_entries();
    std::fill(sums_.begin(), sums_.end(), 0.0);
    ListedWithin{distances_->size(),
                 distances_->upper().data(),
                 distances_->row_starts().data(),
                 row_begin_.data(),
                 row_entries_.data(),
                 chain_haplotypes_.data(),
                 chain_counts_.data(),
                 sums_.data()}
        .run();
}

}  // namespace tov
