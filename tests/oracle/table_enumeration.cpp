// Exact probabilities of contingency tables by visiting every table with the same margins.
#include "oracle/table_enumeration.h"

#include <cmath>
#include <functional>

namespace tov::oracle {

namespace {

double ln_factorial(int n) { return std::lgamma(n + 1.0); }

// Sums the probabilities of all tables, and of those no more probable than the observed one.
struct Tally {
    double observed;
    double all = 0.0;
    double extreme = 0.0;

    void add(double ln_probability) {
        double const relative = std::exp(ln_probability - observed);
        all += relative;
        if (ln_probability <= observed + 1e-9) extreme += relative;
    }
};

double ln_genotypes(ContingencyTable const& t) {
    double sum = 0.0;
    for (int a = 0; a < t.rows; ++a) {
        for (int b = a; b < t.rows; ++b) {
            sum -= ln_factorial(t.genotype(a, b));
            if (a != b) sum += t.genotype(a, b) * std::log(2.0);
        }
    }
    return sum;
}

double ln_cells(ContingencyTable const& t) {
    double sum = 0.0;
    for (int const n : t.cells) sum -= ln_factorial(n);
    return sum;
}

}  // namespace

double exact_hardy_weinberg(ContingencyTable const& observed) {
    int const k = observed.rows;
    std::vector<int> left(static_cast<std::size_t>(k), 0);
    for (int a = 0; a < k; ++a) {
        for (int b = a; b < k; ++b) {
            left[static_cast<std::size_t>(a)] += observed.genotype(a, b);
            left[static_cast<std::size_t>(b)] += observed.genotype(a, b);
        }
    }
    Tally tally{ln_genotypes(observed)};
    ContingencyTable t;
    t.shape(k, k);
    std::function<void(int, int)> const fill = [&](int a, int b) {
        if (a == k) {
            tally.add(ln_genotypes(t));
            return;
        }
        if (b == k) {
            if (left[static_cast<std::size_t>(a)] == 0) fill(a + 1, a + 1);
            return;
        }
        int& first = left[static_cast<std::size_t>(a)];
        int& second = left[static_cast<std::size_t>(b)];
        for (int n = 0; a == b ? 2 * n <= first : n <= std::min(first, second); ++n) {
            t.genotype(a, b) = n;
            first -= n;
            second -= n;
            fill(a, b + 1);
            first += n;
            second += n;
        }
        t.genotype(a, b) = 0;
    };
    fill(0, 0);
    return tally.extreme / tally.all;
}

ContingencyTable table_of(Rows const& rows) {
    ContingencyTable t;
    t.shape(static_cast<int>(rows.size()), static_cast<int>(rows[0].size()));
    for (int r = 0; r < t.rows; ++r) {
        for (int c = 0; c < t.columns; ++c) {
            t.at(r, c) = rows[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)];
        }
    }
    return t;
}

double exact_two_way(ContingencyTable const& observed) {
    std::vector<int> rows(static_cast<std::size_t>(observed.rows), 0);
    std::vector<int> columns(static_cast<std::size_t>(observed.columns), 0);
    for (int i = 0; i < observed.rows; ++i) {
        for (int j = 0; j < observed.columns; ++j) {
            rows[static_cast<std::size_t>(i)] += observed.at(i, j);
            columns[static_cast<std::size_t>(j)] += observed.at(i, j);
        }
    }
    Tally tally{ln_cells(observed)};
    ContingencyTable t;
    t.shape(observed.rows, observed.columns);
    std::function<void(int, int)> const fill = [&](int i, int j) {
        if (i == t.rows) {
            for (int const n : columns) {
                if (n != 0) return;
            }
            tally.add(ln_cells(t));
            return;
        }
        int& row = rows[static_cast<std::size_t>(i)];
        if (j == t.columns) {
            if (row == 0) fill(i + 1, 0);
            return;
        }
        int& column = columns[static_cast<std::size_t>(j)];
        for (int n = 0; n <= std::min(row, column); ++n) {
            t.at(i, j) = n;
            row -= n;
            column -= n;
            fill(i, j + 1);
            row += n;
            column += n;
        }
        t.at(i, j) = 0;
    };
    fill(0, 0);
    return tally.extreme / tally.all;
}

}  // namespace tov::oracle
