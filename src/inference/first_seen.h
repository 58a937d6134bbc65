// Numbers for distinct objects in the order in which they are first seen: the rows of a contingency table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "model/hpopdb.h"

namespace tov {

/// Alleles, told apart by their address.
class SeenAlleles {
public:
    /// Number of an allele, the next free one when it is new.
    int number(TAllele const* allele) {
        if (allele == last_) return last_number_;
        last_ = allele;
        return last_number_ = numbers_.try_emplace(allele, static_cast<int>(numbers_.size())).first->second;
    }
    [[nodiscard]] int size() const noexcept { return static_cast<int>(numbers_.size()); }
    /// The alleles by their numbers.
    [[nodiscard]] std::vector<TAllele const*> in_order() const {
        std::vector<TAllele const*> list(numbers_.size());
        for (auto const& [allele, n] : numbers_) list[static_cast<std::size_t>(n)] = allele;
        return list;
    }

private:
    std::unordered_map<TAllele const*, int> numbers_;
    TAllele const* last_ = nullptr;
    int last_number_ = -1;
};

/// Whether a contingency table of that many rows and columns fits into memory: at most 1.6 GB.
[[nodiscard]] constexpr bool table_fits(int rows, int columns) noexcept {
    constexpr std::int64_t most_cells = 400'000'000;
    return std::int64_t{rows} * columns <= most_cells;
}

/// Haplotypes, told apart by their alleles. They are borrowed.
class SeenHaplotypes {
public:
    int number(TPopHaplotype const* haplotype) {
        auto const [from, to] = by_hash_.equal_range(haplotype->alleles().hash());
        for (auto entry = from; entry != to; ++entry) {
            if (*list_[static_cast<std::size_t>(entry->second)] == *haplotype) return entry->second;
        }
        by_hash_.emplace(haplotype->alleles().hash(), size());
        list_.push_back(haplotype);
        return size() - 1;
    }
    [[nodiscard]] int size() const noexcept { return static_cast<int>(list_.size()); }

private:
    std::unordered_multimap<std::size_t, int> by_hash_;
    std::vector<TPopHaplotype const*> list_;
};

}  // namespace tov
