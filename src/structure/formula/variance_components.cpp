// The designs of the analysis of molecular variance, one after the other.
#include "structure/formula/variance_components.h"

#include <cmath>

namespace tov {

namespace {

double sum_of_squares(std::vector<double> const& values) {
    double sum = 0.0;
    for (double const value : values) {
        sum += value * value;
    }
    return sum;
}

/// part / whole, or 0 when the whole's absolute value is not above 0.
double index_of(double part, double whole) { return std::fabs(whole) > 0.0 ? part / whole : 0.0; }

/// Degrees of freedom, sums of squares and mean squares of the levels; a level with 0 degrees of freedom marks the
/// table as ill defined unless `any` is set.
void set_levels(VarianceTable& t, std::array<int, 4> df, std::array<double, 4> ssd, int levels, bool any = false) {
    t.levels = levels;
    t.df = df;
    t.ssd = ssd;
    for (int k = 0; k < levels; ++k) {
        if (df[k] == 0 && !any) {
            t.ill_defined = true;
        }
        t.msd[k] = ssd[k] * (1.0 / df[k]);
        t.ssd_total += ssd[k];
    }
}

/// The total of the components, and 1e-18 in its place when its absolute value is not above 0. @return whether it is.
bool set_total(VarianceTable& t) {
    t.v_total = 0.0;
    for (int k = 0; k < t.levels; ++k) {
        t.v_total += t.variance[k];
    }
    if (std::fabs(t.v_total) > 0.0 || std::isnan(t.v_total)) {
        return true;
    }
    t.v_total = 1e-18;
    return false;
}

std::size_t element(int p, int q) {
    std::size_t const high = static_cast<std::size_t>(p > q ? p : q);
    std::size_t const low = static_cast<std::size_t>(p > q ? q : p);
    return high * (high + 1) / 2 + low;
}

}  // namespace

void group_sums_into(GroupSums& r, StructureSizes const& sizes, std::span<double const> sums,
                     std::span<int const> order, int units) {
    r.copies.assign(sizes.group_size.size(), 0.0);
    r.terms.assign(sizes.group_size.size(), 0.0);
    r.T = r.Q_over_N = r.Q = r.Z = r.n1_numerator = 0.0;
    int first = 0;
    double const twice_units = 2.0 * units;
    for (int g = 0; g < sizes.groups(); ++g) {
        int const last = first + sizes.group_size[g];
        double pairs = 0.0, squares = 0.0;
        for (int p = first; p < last; ++p) {
            double const np = sizes.copies[order[p]];
            r.copies[g] += np;
            squares += np * np;
            for (int q = first; q <= p; ++q) {
                pairs += sums[element(order[p], order[q])];
            }
        }
        double const Ng = r.copies[g];
        for (int p = first; p < last; ++p) {
            double const np = sizes.copies[order[p]];
            r.n1_numerator += (twice_units - Ng) * np * np / (twice_units * Ng);
        }
        r.terms[g] = pairs / Ng;
        r.T += r.terms[g];
        r.Q += squares;
        r.Q_over_N += squares / Ng;
        r.Z += Ng * Ng;
        first = last;
    }
}

GroupSums group_sums(StructureSizes const& sizes, std::span<double const> sums, std::span<int const> order, int units) {
    GroupSums result;
    group_sums_into(result, sizes, sums, order, units);
    return result;
}

double total_sum(std::span<double const> sums) noexcept {
    double sum = 0.0;
    for (double const value : sums) {
        sum += value;
    }
    return sum;
}

double within_terms(std::span<double const> S, StructureSizes const& sizes) noexcept {
    double sum = 0.0;
    for (std::size_t p = 0; p < S.size(); ++p) {
        sum += S[p] / sizes.copies[p];
    }
    return sum;
}

VarianceTable one_group_haplotypes(StructureSizes const& sizes, AmovaSums const& s) {
    VarianceTable t;
    double const Nu = s.Nu;
    int const a = sizes.populations() - sizes.groups();
    int const b = static_cast<int>(Nu) - sizes.populations();
    set_levels(t, {a, b, 0, 0}, {s.total / Nu - s.W, s.W, 0.0, 0.0}, 2);
    t.n = (Nu - sum_of_squares(sizes.copies) / Nu) / a;
    t.variance = {(t.msd[0] - t.msd[1]) / t.n, t.msd[1], 0.0, 0.0};
    t.FST = set_total(t) ? t.variance[0] / t.v_total : 0.0;
    return t;
}

VarianceTable groups_haplotypes(StructureSizes const& sizes, AmovaSums const& s, GroupSums const& g) {
    VarianceTable t;
    double const Nu = s.Nu;
    int const a = sizes.groups() - 1;
    int const b = sizes.populations() - sizes.groups();
    int const c = static_cast<int>(Nu) - sizes.populations();
    set_levels(t, {a, b, c, 0}, {s.total / Nu - g.T, g.T - s.W, s.W, 0.0}, 3);
    t.n = (Nu - g.Q_over_N) / b;
    t.n1 = (g.Q_over_N - g.Q / Nu) / a;
    t.n2 = (Nu - g.Z / Nu) / a;
    double const Vc = t.msd[2];
    double const Vb = (t.msd[1] - Vc) / t.n;
    double const Va = ((t.msd[0] - Vc) - t.n1 * Vb) / t.n2;
    t.variance = {Va, Vb, Vc, 0.0};
    if (set_total(t)) {
        t.FST = (Va + Vb) / t.v_total;
        t.FCT = Va / t.v_total;
    }
    t.FSC = index_of(Vb, Vb + Vc);
    return t;
}

VarianceTable one_group_individuals(StructureSizes const& sizes, AmovaSums const& s) {
    VarianceTable t;
    double const N = sizes.total;
    int const a = sizes.populations() - 1;
    int const b = static_cast<int>(s.Nu) - sizes.populations();
    int const c = static_cast<int>(s.Nu);
    set_levels(t, {a, b, c, 0}, {s.total / N - s.W, s.W - s.I, s.I, 0.0}, 3);
    t.n = (N - sum_of_squares(sizes.copies) / N) / a;
    double const Vc = t.msd[2];
    double const Vb = 0.5 * (t.msd[1] - t.msd[2]);
    double const Va = (t.msd[0] - t.msd[1]) / t.n;
    t.variance = {Va, Vb, Vc, 0.0};
    if (set_total(t)) {
        t.FST = Va / t.v_total;
        t.FIT = (Va + Vb) / t.v_total;
    }
    t.FIS = index_of(Vb, Vb + Vc);
    return t;
}

VarianceTable groups_individuals(StructureSizes const& sizes, AmovaSums const& s, GroupSums const& g) {
    VarianceTable t;
    double const N = sizes.total;
    double const Nu = s.Nu;
    int const d = static_cast<int>(Nu);
    int const a = sizes.groups() - 1;
    int const b = sizes.populations() - sizes.groups();
    int const c = d - sizes.populations();
    // No refusal of a level without degrees of freedom: its values are inf or nan.
    set_levels(t, {a, b, c, d}, {s.total / N - g.T, g.T - s.W, s.W - s.I, s.I}, 4, true);
    t.n = (2.0 * Nu - g.Q_over_N) / b;
    t.n1 = g.n1_numerator / a;
    t.n2 = (2.0 * Nu - g.Z / (2.0 * Nu)) / a;
    double const Vd = t.msd[3];
    double const Vc = 0.5 * (t.msd[2] - t.msd[3]);
    double const Vb = (t.msd[1] - t.msd[2]) / t.n;
    double const Va = ((t.msd[0] - t.msd[2]) - t.n1 * Vb) / t.n2;
    t.variance = {Va, Vb, Vc, Vd};
    if (set_total(t)) {
        t.FCT = Va / t.v_total;
        t.FSC = Vb / (Vb + Vc + Vd);
        t.FIT = (Va + Vb + Vc) / t.v_total;
        t.FST = (Va + Vb) / t.v_total;
    }
    t.FIS = index_of(Vc, Vc + Vd);
    return t;
}

VarianceTable one_population_individuals(AmovaSums const& s) {
    VarianceTable t;
    int const units = static_cast<int>(s.Nu);
    set_levels(t, {units - 1, units, 0, 0}, {s.W - s.I, s.I, 0.0, 0.0}, 2);
    double const Vb = t.msd[1];
    double const Va = 0.5 * (t.msd[0] - t.msd[1]);
    t.variance = {Va, Vb, 0.0, 0.0};
    set_total(t);
    t.FIS = index_of(Va, Va + Vb);
    return t;
}

std::vector<double> population_fst(VarianceTable const& t, StructureSizes const& sizes, std::span<double const> S,
                                   double Nu) {
    std::vector<double> values(S.size(), 0.0);
    if (t.v_total == 1e-18) {
        return values;
    }
    for (std::size_t p = 0; p < S.size(); ++p) {
        double const within = S[p] / sizes.copies[p];
        values[p] = ((t.msd[0] - within * Nu / t.df[1] / sizes.copies[p]) / t.n) / t.v_total;
    }
    return values;
}

double population_fis(double within_term, double within_individuals, double copies) noexcept {
    double const individuals = copies / 2.0;
    double const w = within_individuals / individuals;
    double b1 = 0.0;
    if (individuals > 1.0) {
        b1 = 0.5 * ((within_term - within_individuals) / (individuals - 1.0) - w);
    }
    return b1 + w == 0.0 ? undefined_fis : b1 / (b1 + w);
}

double va_of_groups_haplotypes(VarianceTable const& t, AmovaSums const& s, GroupSums const& g) {
    double const Nu = s.Nu;
    int const a = t.df[0], b = t.df[1], c = t.df[2];
    double const n = (Nu - g.Q_over_N) / b;
    double const n1 = (g.Q_over_N - g.Q / Nu) / a;
    double const n2 = (Nu - g.Z / Nu) / a;
    return (t.ssd_total - g.T) / (a * n2) - n1 * (g.T - s.W) / (b * n * n2) + (n1 - n) * s.W / (c * n * n2);
}

double va_of_groups_individuals(VarianceTable& t, StructureSizes const& sizes, AmovaSums const& s,
                                GroupSums const& g) {
    double const Nu = s.Nu;
    int const a = t.df[0], b = t.df[1], c = t.df[2];
    t.n = (2.0 * Nu - g.Q_over_N) / b;
    t.n1 = g.n1_numerator / a;
    t.n2 = (2.0 * Nu - g.Z / (2.0 * Nu)) / a;
    t.ssd[0] = s.total / sizes.total - g.T;
    t.ssd[1] = g.T - s.W;
    return t.ssd[0] / (a * t.n2) - t.n1 * t.ssd[1] / (b * t.n * t.n2) + (t.n1 / t.n - 1.0) * t.ssd[2] / (c * t.n2);
}

}  // namespace tov
