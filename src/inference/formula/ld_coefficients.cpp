// Coefficients of linkage disequilibrium of two loci from the counts of their two-locus haplotypes.
#include "inference/formula/ld_coefficients.h"

#include <cmath>

#include "base/special.h"

namespace tov {

namespace {

// Largest |D| that the frequencies allow.
double largest_D(double D, double pa, double pb) noexcept {
    if (D > 0.0) return std::min((1.0 - pa) * pb, (1.0 - pb) * pa);
    return std::min(pa * pb, (1.0 - pa) * (1.0 - pb));
}

struct Margins {
    std::vector<std::int64_t> rows;
    std::vector<std::int64_t> columns;
    std::int64_t total = 0;
};

Margins margins_of(ContingencyTable const& counts) {
    Margins m;
    m.rows.resize(static_cast<std::size_t>(counts.rows));
    m.columns.resize(static_cast<std::size_t>(counts.columns));
    for (int a = 0; a < counts.rows; ++a) {
        for (int b = 0; b < counts.columns; ++b) {
            m.rows[static_cast<std::size_t>(a)] += counts.at(a, b);
            m.columns[static_cast<std::size_t>(b)] += counts.at(a, b);
            m.total += counts.at(a, b);
        }
    }
    return m;
}

}  // namespace

LdCoefficients ld_coefficients(ContingencyTable const& counts) {
    Margins const m = margins_of(counts);
    LdCoefficients x;
    std::size_t const cells = counts.cells.size();
    for (auto* const table : {&x.expected, &x.D, &x.Dprime, &x.r, &x.chi2, &x.chi2_p}) table->assign(cells, 0.0);
    if (m.total == 0) return x;
    auto const n = static_cast<double>(m.total);
    std::size_t cell = 0;
    for (std::size_t a = 0; a < m.rows.size(); ++a) {
        double const pa = static_cast<double>(m.rows[a]) / n;
        for (std::size_t b = 0; b < m.columns.size(); ++b, ++cell) {
            double const pb = static_cast<double>(m.columns[b]) / n;
            double const D = static_cast<double>(m.total * counts.cells[cell] - m.rows[a] * m.columns[b]) / (n * n);
            double const Dmax = largest_D(D, pa, pb);
            double const variance = pa * (1.0 - pa) * pb * (1.0 - pb);
            x.expected[cell] = n * pa * pb;
            x.D[cell] = D;
            x.Dprime[cell] = Dmax > 0.0 ? D / Dmax : D;
            x.without_Dmax += !(Dmax > 0.0);
            if (variance > 0.0) {
                x.r[cell] = D / std::sqrt(variance);
                x.chi2[cell] = D * D * n / variance;
            }
            x.chi2_p[cell] = static_cast<double>(Prob_of_chi_sq(1.0F, static_cast<float>(x.chi2[cell])));
            x.mean_abs_Dprime += std::abs(x.Dprime[cell]) * pa * pb;
            x.mean_r2 += x.r[cell] * x.r[cell] * pa * pb;
        }
    }
    return x;
}

}  // namespace tov
