// Loci at which two rows of allele codes differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tov {

/// Loci that are compared together; rows are filled up to a multiple of it, so that the loop over a block has a fixed
/// length and becomes one of vector instructions.
inline constexpr std::size_t code_block = 64;

/// Rows of allele codes of one length, row-major; 0 stands for missing data, alleles of a locus have distinct codes.
template <class Code>
class AlleleCodes {
public:
    AlleleCodes(std::size_t rows, std::size_t loci)
        : stride_((loci + code_block - 1) / code_block * code_block), codes_(rows * stride_, 0) {}
    /// Row i with the missing data that fill it up.
    [[nodiscard]] std::span<Code> row(std::size_t i) noexcept { return {codes_.data() + i * stride_, stride_}; }
    [[nodiscard]] std::span<Code const> row(std::size_t i) const noexcept {
        return {codes_.data() + i * stride_, stride_};
    }

private:
    std::size_t stride_;
    std::vector<Code> codes_;
};

/// Number of loci at which both rows hold alleles, and different ones.
///
/// @param a, b  rows of AlleleCodes, of one length.
template <class Code>
[[nodiscard]] int count_different_loci(std::span<Code const> a, std::span<Code const> b) noexcept {
    int total = 0;
    for (std::size_t start = 0; start < a.size(); start += code_block) {
        Code const* const x = a.data() + start;
        Code const* const y = b.data() + start;
        Code sum = 0;
        for (std::size_t k = 0; k < code_block; ++k) {
            sum = static_cast<Code>(sum + (int{x[k] != y[k]} & int{x[k] != 0} & int{y[k] != 0}));
        }
        total += static_cast<int>(sum);
    }
    return total;
}

/// Sum over loci of the squared difference of two rows of allele sizes; a size that is not a number is missing.
[[nodiscard]] inline double sum_of_squared_differences(std::span<double const> a, std::span<double const> b) noexcept {
    double sum = 0.0;
    std::size_t const n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t k = 0; k < n; ++k) {
        double const x = a[k] - b[k];
        sum += x == x ? x * x : 0.0;
    }
    return sum;
}

}  // namespace tov
