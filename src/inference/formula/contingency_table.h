// Tables of counts, and exact sums of logarithms of whole numbers: what the Markov chains on tables work with.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tov {

/// A table of counts, row-major.
///
/// As a table of genotypes it is square and the upper triangle alone is used: the count of genotype {a, b} stands in
/// row min(a, b), column max(a, b), homozygotes on the diagonal.
struct ContingencyTable {
    /// r x c zeros; the memory of a larger table before it is used again.
    void shape(int r, int c) {
        rows = r;
        columns = c;
        cells.assign(static_cast<std::size_t>(r) * static_cast<std::size_t>(c), 0);
    }
    /// 0 x 0, and no memory.
    void release() { *this = ContingencyTable{}; }
    [[nodiscard]] bool is_empty() const noexcept { return rows == 0; }

    /// Cell of a row and a column, both in range.
    [[nodiscard]] int& at(int row, int column) noexcept {
        return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                     static_cast<std::size_t>(column)];
    }
    [[nodiscard]] int at(int row, int column) const noexcept {
        return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                     static_cast<std::size_t>(column)];
    }
    /// Cell of genotype {a, b}.
    [[nodiscard]] int& genotype(int a, int b) noexcept { return at(std::min(a, b), std::max(a, b)); }
    [[nodiscard]] int genotype(int a, int b) const noexcept { return at(std::min(a, b), std::max(a, b)); }
    /// Sum of all cells.
    [[nodiscard]] std::int64_t total() const noexcept {
        std::int64_t sum = 0;
        for (int const n : cells) sum += n;
        return sum;
    }

    int rows = 0;
    int columns = 0;
    std::vector<int> cells;
};

/// A logarithm as a whole number of 2^-44.
using FixedLn = std::int64_t;
inline constexpr FixedLn fixed_ln_one = FixedLn{1} << 44;

/// ln(n) of whole numbers, exactly additive: ln(a b) = ln(a) + ln(b) to the last bit.
///
/// An entry is the sum of the logarithms of n's prime factors, each rounded once to 2^-44, so that equal products have
/// equal logarithms and two tables of one probability are told apart by no rounding. Beyond 2^20 a logarithm is
/// rounded on its own: the way back to a table still sums to 0, as its terms cancel one by one.
class LnTable {
public:
    /// Makes sure that the logarithms up to n (at most 2^20) are tabulated.
    void reach(std::int64_t n);
    /// ln(n), n >= 1; ln(0), which has no value, is given as 0.
    [[nodiscard]] FixedLn operator()(std::int64_t n) const noexcept { return View(*this)(n); }

    /// The logarithms for inner loops; borrowed, valid until the table grows.
    class View {
    public:
        View(LnTable const& table) noexcept : values_(table.values_.data()), size_(table.values_.size()) {}
        [[nodiscard]] FixedLn operator()(std::int64_t n) const noexcept {
            if (static_cast<std::uint64_t>(n) < size_) [[likely]] return values_[n];
            return rounded(n);
        }

    private:
        FixedLn const* values_;
        std::size_t size_;
    };

private:
    static FixedLn rounded(std::int64_t n) noexcept;

    std::vector<FixedLn> values_;
};

/// The table of the process, with logarithms up to n at least.
[[nodiscard]] LnTable const& ln_table(std::int64_t n);

/// A sum of logarithms without rounding and without overflow.
class ExactLnSum {
public:
    /// |x| <= 2^61.
    void add(FixedLn x) noexcept {
        low_ += x;
        if (low_ >= block || low_ <= -block) [[unlikely]] carry();
    }
    /// Whether the sum is at or below `limit`, |limit| < 2^61.
    [[nodiscard]] bool at_most(FixedLn limit) const noexcept {
        if (blocks_ == 0) [[likely]] return low_ <= limit;
        if (blocks_ == 1) return low_ <= limit - block;
        if (blocks_ == -1) return low_ <= limit + block;
        return blocks_ < 0;
    }
    [[nodiscard]] double value() const noexcept {
        return (static_cast<double>(blocks_) * static_cast<double>(block) + static_cast<double>(low_)) /
               static_cast<double>(fixed_ln_one);
    }

private:
    static constexpr FixedLn block = FixedLn{1} << 61;
    void carry() noexcept {
        FixedLn const sign = low_ > 0 ? 1 : -1;
        blocks_ += sign;
        low_ -= sign * block;
    }

    FixedLn low_ = 0;          // the sum is blocks_ * 2^61 + low_, |low_| < 2^61
    std::int64_t blocks_ = 0;
};

}  // namespace tov
