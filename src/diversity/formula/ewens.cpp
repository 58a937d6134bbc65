// Random allele configurations under Ewens' sampling formula.
#include "diversity/formula/ewens.h"

#include <algorithm>
#include <cmath>

#include "base/bnum.h"
#include "base/random.h"

namespace tov {

namespace {

/// Smallest i at which the sum of term(1) / 1 .. term(i) / i reaches the target, at most `limit`.
template <class Term>
int scan(double target, int limit, Term&& term) noexcept {
    int i = 0;
    double sum = 0.0;
    while (sum < target && i < limit) {
        ++i;
        sum += term(i) / i;
    }
    return i;
}

/// Ascending order. The few counts of most samples are sorted without a branch on their values.
void sort_counts(std::vector<int>& counts) noexcept {
    if (counts.size() > 24) {
        std::sort(counts.begin(), counts.end());
        return;
    }
    int* const c = counts.data();
    std::size_t const k = counts.size();
    for (std::size_t i = 1; i < k; ++i) {
        int largest = c[i];
        for (std::size_t j = 0; j < i; ++j) {
            int const x = c[j];
            c[j] = x < largest ? x : largest;
            largest = x < largest ? largest : x;
        }
        c[i] = largest;
    }
}

}  // namespace

int random_allele_count(BnumMat const& B, int n, int k) {
    double const target = uniform() * B(n, k);
    return scan(target, n - k + 1, [&](int i) { return B(n - i, k - 1); });
}

EwensSampler::EwensSampler(BnumMat const& B, int n, int k)
    : n_(n),
      k_(k),
      columns_(static_cast<std::size_t>(k) * static_cast<std::size_t>(n + 1)),
      squares_(static_cast<std::size_t>(n + 1)),
      logs_(static_cast<std::size_t>(n + 1)),
      counts_(static_cast<std::size_t>(k)) {
    std::size_t const height = static_cast<std::size_t>(n) + 1;
    for (int g = 1; g <= n; ++g) {
        auto const row = B.row(g);
        std::size_t const width = std::min(row.size(), static_cast<std::size_t>(k));
        for (std::size_t a = 0; a < width; ++a) columns_[a * height + static_cast<std::size_t>(g)] = row[a];
        double const share = g / static_cast<double>(n);
        squares_[static_cast<std::size_t>(g)] = share * share;
        logs_[static_cast<std::size_t>(g)] = std::log(static_cast<double>(g));
    }
}

std::span<int const> EwensSampler::draw() noexcept {
    std::size_t const height = static_cast<std::size_t>(n_) + 1;
    int left = n_;
    std::size_t at = 0;
    for (int a = k_; a > 1; --a) {  // alleles still to come, this one included
        double const* const column = columns_.data() + static_cast<std::size_t>(a - 1) * height;
        double const* const next = columns_.data() + static_cast<std::size_t>(a - 2) * height + left;
        int const count = scan(uniform() * column[left], left - a + 1, [next](int i) { return next[-i]; });
        counts_[at++] = count;
        left -= count;
    }
    counts_[at] = left;
    return counts_;
}

std::span<int const> EwensSampler::draw_sorted() noexcept {
    draw();
    sort_counts(counts_);
    return counts_;
}

double EwensSampler::homozygosity(std::span<int const> counts) const noexcept {
    double F = 0.0;
    for (int const count : counts) F += squares_[static_cast<std::size_t>(count)];
    return F;
}

double EwensSampler::exact_statistic(std::span<int const> counts) const noexcept {
    double before = 0.0;  // the sum over smaller counts
    double e = 0.0;
    double equal = 0.0;  // alleles with the present count so far
    int last = -1;
    for (int const count : counts) {
        bool const again = count == last;
        before = again ? before : e;
        equal = again ? equal + 1.0 : 1.0;
        e = before - equal * logs_[static_cast<std::size_t>(count)];
        last = count;
    }
    return e;
}

}  // namespace tov
