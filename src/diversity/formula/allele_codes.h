// Loci at which two rows of allele codes differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tov {

/// Rows of allele codes of one length, row-major; 0 stands for missing data, alleles of a locus have distinct codes.
template <class Code>
class AlleleCodes {
public:
    AlleleCodes(std::size_t rows, std::size_t loci) : loci_(loci), codes_(rows * loci, 0) {}
    [[nodiscard]] std::span<Code> row(std::size_t i) noexcept { return {codes_.data() + i * loci_, loci_}; }
    [[nodiscard]] std::span<Code const> row(std::size_t i) const noexcept { return {codes_.data() + i * loci_, loci_}; }

private:
    std::size_t loci_;
    std::vector<Code> codes_;
};

/// Number of loci at which both rows hold alleles, and different ones.
///
/// @param a, b  n codes each. Blocks of 255 loci are counted in bytes, so that the loop is one of vector instructions.
template <class Code>
[[nodiscard]] int count_different_loci(std::span<Code const> a, std::span<Code const> b) noexcept {
    int total = 0;
    std::size_t const n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t start = 0; start < n; start += 255) {
        std::size_t const end = n - start < 255 ? n : start + 255;
        Code sum = 0;
        for (std::size_t k = start; k < end; ++k) {
            sum = static_cast<Code>(sum + (int{a[k] != b[k]} & int{a[k] != 0} & int{b[k] != 0}));
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

/// Number of loci at which two rows of allele sizes differ; a size that is not a number is missing.
[[nodiscard]] inline int count_different_sizes(std::span<double const> a, std::span<double const> b) noexcept {
    int count = 0;
    std::size_t const n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t k = 0; k < n; ++k) {
        count += int{a[k] < b[k]} + int{a[k] > b[k]};
    }
    return count;
}

}  // namespace tov
