// Mean number of pairwise differences and nucleotide diversity, with their deviations.
#include "diversity/formula/mean_differences.h"

#include <algorithm>
#include <cmath>

#include "base/recmat.h"

namespace tov {
namespace {

double deviation(double variance, VarianceRoot root) noexcept {
    return root == VarianceRoot::plain || variance > 0.0 ? std::sqrt(variance) : 0.0;
}

}  // namespace

double sum_of_pair_differences(std::span<double const> copies, RectMat const& distances) {
    double sum = 0.0;
    if (distances.conventional_fst() != 0) {
        double before = 0.0;
        for (double const f : copies) {
            sum += f * before;
            before += f;
        }
        return sum;
    }
    int const k = std::min(static_cast<int>(copies.size()), distances.dimension());
    for (int i = 1; i < k; ++i) {
        std::span<double const> const row = distances.row(i);
        double of_row = 0.0;
        for (int j = 0; j < i; ++j) {
            of_row += copies[static_cast<std::size_t>(j)] * row[static_cast<std::size_t>(j)];
        }
        sum += copies[static_cast<std::size_t>(i)] * of_row;
    }
    return sum;
}

DifferenceMean mean_pairwise_differences(double sum, double n, VarianceRoot root, double square) noexcept {
    if (n <= 1.0) {
        return {};
    }
    double const pi = sum / (0.5 * n * (n - 1.0));
    double const m = square * n * n;
    double const variance = (3.0 * (n + m) * pi + 2.0 * (3.0 + n + m) * pi * pi) / (6.0 + 11.0 * m - 7.0 * n);
    return {pi, deviation(variance, root)};
}

DifferenceMean nucleotide_diversity(double mean_differences, double n, double L, VarianceRoot root) noexcept {
    if (n <= 1.0 || L <= 0.0) {
        return {};
    }
    double const p = mean_differences / L;
    double const variance =
        (n + 1.0) * p / (3.0 * L * (n - 1.0)) + 2.0 * (3.0 + n + n * n) * p * p / (9.0 * (n * n - n));
    return {p, deviation(variance, root)};
}

}  // namespace tov
