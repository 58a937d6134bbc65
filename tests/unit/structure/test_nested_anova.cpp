// The designs against a nested analysis of variance coded on its own: projections of allele indicators, expected mean
// squares from traces.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "structure/formula/variance_components.h"
#include "support/structure_data.h"

using namespace tov;
using namespace tov::test;

namespace {

using Matrix = std::vector<std::vector<double>>;

/// Membership of every gene copy at one level.
using Factor = std::vector<int>;

Matrix projection(Factor const& f) {
    std::size_t const n = f.size();
    std::vector<double> size(n, 0.0);
    for (int const k : f) {
        size[k] += 1.0;
    }
    Matrix p(n, std::vector<double>(n, 0.0));
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            p[i][j] = f[i] == f[j] ? 1.0 / size[f[i]] : 0.0;
        }
    }
    return p;
}

Matrix difference(Matrix a, Matrix const& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < a.size(); ++j) {
            a[i][j] -= b[i][j];
        }
    }
    return a;
}

/// x' A x.
double quadratic(Matrix const& a, std::vector<double> const& x) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < a.size(); ++j) {
            sum += x[i] * a[i][j] * x[j];
        }
    }
    return sum;
}

/// trace(A Z Z') for the indicator matrix Z of a factor.
double trace_with(Matrix const& a, Factor const& f) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < a.size(); ++j) {
            sum += f[i] == f[j] ? a[i][j] : 0.0;
        }
    }
    return sum;
}

double trace(Matrix const& a) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i][i];
    }
    return sum;
}

/// Sums of squares and variance components of nested factors, coarsest first; the last level is the gene copy.
struct Anova {
    std::vector<double> ss, variance;
};

/// What the distance of two gene copies is.
enum class Distance { zero_or_one, squared_size };

/// The 0/1 distance is half the sum of the squared differences of allele indicators, that of sizes the squared
/// difference itself.
Anova nested_anova(std::vector<Factor> const& factors, std::vector<int> const& alleles, int kinds, Distance distance) {
    std::size_t const n = alleles.size();
    std::size_t const levels = factors.size() + 1;
    Matrix coarser = projection(Factor(n, 0));
    std::vector<Matrix> steps;
    for (std::size_t k = 0; k < levels; ++k) {
        Matrix finer(n, std::vector<double>(n, 0.0));
        if (k < factors.size()) {
            finer = projection(factors[k]);
        } else {
            for (std::size_t i = 0; i < n; ++i) {
                finer[i][i] = 1.0;
            }
        }
        steps.push_back(difference(finer, coarser));
        coarser = finer;
    }
    Anova result;
    result.ss.assign(levels, 0.0);
    auto const add = [&](std::vector<double> const& x, double weight) {
        for (std::size_t k = 0; k < levels; ++k) {
            result.ss[k] += weight * quadratic(steps[k], x);
        }
    };
    if (distance == Distance::squared_size) {
        add(std::vector<double>(alleles.begin(), alleles.end()), 1.0);
    } else {
        for (int a = 0; a < kinds; ++a) {
            std::vector<double> x(n);
            for (std::size_t i = 0; i < n; ++i) {
                x[i] = alleles[i] == a ? 1.0 : 0.0;
            }
            add(x, 0.5);
        }
    }
    // E[SS of level k] = sum over this and finer levels of the component times its trace; solved from the finest up.
    result.variance.assign(levels, 0.0);
    for (std::size_t k = levels; k-- > 0;) {
        double rest = result.ss[k];
        for (std::size_t m = k + 1; m < levels; ++m) {
            double const t = m < factors.size() ? trace_with(steps[k], factors[m]) : trace(steps[k]);
            rest -= t * result.variance[m];
        }
        double const own = k < factors.size() ? trace_with(steps[k], factors[k]) : trace(steps[k]);
        result.variance[k] = rest / own;
    }
    return result;
}

/// A random structure with its factors.
struct RandomData {
    std::vector<int> alleles;
    std::vector<double> copies;
    std::vector<int> groups;
    Factor group, population, individual;
    int kinds = 4;

    RandomData(std::mt19937& random, int nb_groups, bool balanced) {
        auto const between = [&](int low, int high) { return low + static_cast<int>(random() % (high - low + 1)); };
        for (int g = 0; g < nb_groups; ++g) {
            groups.push_back(balanced ? 3 : between(2, 4));
            for (int p = 0; p < groups.back(); ++p) {
                int const individuals = balanced ? 4 : between(2, 6);
                int const population_number = static_cast<int>(copies.size());
                copies.push_back(2.0 * individuals);
                int const favourite = between(0, kinds - 1);
                for (int k = 0; k < 2 * individuals; ++k) {
                    alleles.push_back(random() % 2 == 0 ? favourite : between(0, kinds - 1));
                    group.push_back(g);
                    population.push_back(population_number);
                    individual.push_back(static_cast<int>(alleles.size() - 1) / 2);
                }
            }
        }
    }
};

struct Observed {
    StructureSizes sizes;
    AmovaSums sums;
    GroupSums groups;
};

Observed observe(RandomData const& data, bool individuals, Distance distance) {
    TriMat matrix(data.kinds);
    matrix.set_conventional_fst(distance == Distance::zero_or_one);
    for (int i = 0; i < data.kinds && distance == Distance::squared_size; ++i) {
        for (int j = 0; j < i; ++j) {
            matrix.set_data((i - j) * (i - j), i, j);
        }
    }
    PairDistances const distances(matrix, data.kinds);
    Observed o;
    o.sizes = StructureSizes(data.copies, data.groups);
    auto const slices = gene_slices(data.copies, static_cast<int>(data.alleles.size()));
    auto const triangle = population_sums(distances, slices, data.alleles);
    std::vector<double> S(data.copies.size());
    WithinSums(distances, slices, data.alleles).compute(data.alleles, S);
    std::vector<int> order(data.copies.size());
    for (std::size_t p = 0; p < order.size(); ++p) {
        order[p] = static_cast<int>(p);
    }
    double const Nu = individuals ? 0.5 * o.sizes.total : o.sizes.total;
    o.sums = {total_sum(triangle), within_terms(S, o.sizes), within_individuals(distances, data.alleles), Nu};
    o.groups = group_sums(o.sizes, triangle, order, static_cast<int>(Nu));
    return o;
}

void expect_equal(VarianceTable const& t, Anova const& a, std::string const& what) {
    ASSERT_EQ(static_cast<std::size_t>(t.levels), a.ss.size());
    for (int k = 0; k < t.levels; ++k) {
        EXPECT_NEAR(t.ssd[k], a.ss[k], 1e-9) << what << " level " << k;
        EXPECT_NEAR(t.variance[k], a.variance[k], 1e-9) << what << " level " << k;
    }
}

}  // namespace

namespace {

/// All designs on one set of random data of several groups, of one group and of one population.
void expect_every_design(std::mt19937& random, bool balanced, Distance distance, std::string const& what) {
    auto const anova = [distance](std::vector<Factor> const& factors, RandomData const& data) {
        return nested_anova(factors, data.alleles, data.kinds, distance);
    };
    RandomData const many(random, 3, balanced);
    Observed const haplotypes = observe(many, false, distance), individuals = observe(many, true, distance);
    expect_equal(groups_haplotypes(haplotypes.sizes, haplotypes.sums, haplotypes.groups),
                 anova({many.group, many.population}, many), what);
    expect_equal(groups_individuals(individuals.sizes, individuals.sums, individuals.groups),
                 anova({many.group, many.population, many.individual}, many), what);
    RandomData const one(random, 1, balanced);
    Observed const flat = observe(one, false, distance), flat_individuals = observe(one, true, distance);
    expect_equal(one_group_haplotypes(flat.sizes, flat.sums), anova({one.population}, one), what);
    expect_equal(one_group_individuals(flat_individuals.sizes, flat_individuals.sums),
                 anova({one.population, one.individual}, one), what);
    RandomData single(random, 1, balanced);
    std::size_t const copies = static_cast<std::size_t>(single.copies[0]);
    single.alleles.resize(copies);
    single.individual.resize(copies);
    single.copies.resize(1);
    single.groups = {1};
    expect_equal(one_population_individuals(observe(single, true, distance).sums), anova({single.individual}, single),
                 what);
}

}  // namespace

TEST(NestedAnova, EveryDesignEqualsItsExpectedMeanSquares) {
    std::mt19937 random(11);
    for (int trial = 0; trial < 48; ++trial) {
        bool const balanced = trial % 3 == 0;
        Distance const distance = trial < 24 ? Distance::zero_or_one : Distance::squared_size;
        expect_every_design(random, balanced, distance, "data set " + std::to_string(trial));
    }
}

TEST(NestedAnova, TwoFixedPopulationsDifferCompletely) {
    StructureSizes const sizes({6.0, 6.0}, {2});
    TriMat matrix(2);
    matrix.set_conventional_fst(1);
    PairDistances const distances(matrix, 2);
    std::vector<int> const genes{0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1};
    auto const slices = gene_slices(sizes.copies, 12);
    auto const triangle = population_sums(distances, slices, genes);
    VarianceTable const t = one_group_haplotypes(sizes, {total_sum(triangle), 0.0, 0.0, 12.0});
    EXPECT_DOUBLE_EQ(t.FST, 1.0);
}

TEST(NestedAnova, EqualGeneCopiesGiveNoIndexAndATinyTotal) {
    Observed o;
    o.sizes = StructureSizes({4.0, 4.0, 4.0, 4.0}, {2, 2});
    o.sums.Nu = 8.0;
    o.groups.Q_over_N = 8.0;
    VarianceTable const t = groups_individuals(o.sizes, o.sums, o.groups);
    EXPECT_EQ(t.v_total, 1e-18);
    EXPECT_EQ(t.FCT, 0.0);
    EXPECT_EQ(t.FIT, 0.0);
}
