// The Mantel test: correlations of the matrices and their permutation test.
#include "structure/mantel.h"

#include <cmath>
#include <ctime>
#include <ostream>

#include "base/recmat.h"
#include "base/timing.h"
#include "run/errors.h"
#include "structure/formula/mantel_stats.h"
#include "structure/formula/pairwise.h"

namespace tov {

namespace {

double constexpr impossible = 10000000.0;

void count_value(MantelCounts& counts, double value, double observed) {
    if (value < observed) {
        ++counts.smaller;
    } else if (value > observed) {
        ++counts.larger;
    } else {
        ++counts.equal;
    }
}

double p_value(MantelCounts const& counts, int nperm) { return 1.0 - counts.smaller / static_cast<double>(nperm); }

double linearised(double f) { return f / (1.0 - f); }

/// Announces a test in the log and tells its time when it ends.
class TimedTest {
public:
    explicit TimedTest(int nperm) : start_(std::clock()) {
        *_AOS_ << "\nStarting " << nperm << " permutations ...\n";
    }
    ~TimedTest() {
        *_AOS_ << "\ndone in " << milliseconds_since(start_) << "ms";
    }
    TimedTest(TimedTest const&) = delete;
    TimedTest& operator=(TimedTest const&) = delete;

private:
    std::clock_t start_;
};

}  // namespace

double Mantel::FstMatr_funct(int i, int j, TriMat& fst) {
    if (has_custom_Y()) {
        return Y_custom(i, j);
    }
    double const f = fst(i, j);
    if (Y_type == Y_types[0]) {
        return f;
    }
    if (Y_type == Y_types[2]) {
        return f >= 1.0 ? impossible : linearised(f);
    }
    bool const logarithm = Y_type == Y_types[1];
    bool const linear_logarithm = Y_type == Y_types[3];
    bool const migrants = Y_type == Y_types[4];
    if (i == j || !(logarithm || linear_logarithm || migrants)) {
        return 0.0;
    }
    if (!(f > 0.0)) {
        return -impossible;
    }
    if (logarithm) {
        return std::log(f);
    }
    if (migrants) {
        return migrants_of_fst(f);
    }
    return f >= 1.0 ? std::log(impossible) : std::log(linearised(f));
}

void Mantel::compute_correlation(RectMat& Y, RectMat& X) {
    Y.create_index();
    X.create_index();
    SSXY = Y.compute_SSX();
    SSX1 = X.compute_SSX();
    meanY = Y.mean();
    meanX1 = X.mean();
    SPY1 = Y.sum_of_products(X);
    ZY1 = Y.Z();
    MantelCoefficients const c = mantel_two({.ssx_y = SSXY, .ssx_1 = SSX1, .sp_y1 = SPY1});
    bY1 = c.bY1;
    rY1 = c.rY1;
    b1 = c.b1;
    R2 = c.R2;
    unexplained = c.unexplained;
}

void Mantel::compute_correlation(RectMat& Y, RectMat& Xa, RectMat& Xb) {
    compute_correlation(Y, Xa);
    Xb.create_index();
    SSX2 = Xb.compute_SSX();
    meanX2 = Xb.mean();
    SPY2 = Y.sum_of_products(Xb);
    ZY2 = Y.Z();
    SP12 = Xa.sum_of_products(Xb);
    Z12 = Xa.Z();
    MantelCoefficients const c = mantel_three({.ssx_y = SSXY,
                                               .ssx_1 = SSX1,
                                               .ssx_2 = SSX2,
                                               .sp_y1 = SPY1,
                                               .sp_y2 = SPY2,
                                               .sp_12 = SP12});
    bY1 = c.bY1;
    bY2 = c.bY2;
    b21 = c.b21;
    b12 = c.b12;
    bY1_2 = c.bY1_2;
    bY2_1 = c.bY2_1;
    rY1 = c.rY1;
    rY2 = c.rY2;
    r12 = c.r12;
    rY1_2 = c.partial.rY1_2;
    rY2_1 = c.partial.rY2_1;
    if (c.determined) {
        b1 = c.b1;
        b2 = c.b2;
        R2 = c.R2;
        unexplained = c.unexplained;
    }
}

void Mantel::test_correlation(RectMat& Y, RectMat& X, int const& nperm) {
    if (nperm <= 0) {
        return;
    }
    nperm_done = nperm;
    TimedTest const timed(nperm);
    double const observed = Y.computeZ(X);
    count_rY1 = {};
    for (int round = 0; round < nperm; ++round) {
        Y.permute_index();
        count_value(count_rY1, Y.computeZ(X), observed);
    }
    P_rY1 = p_value(count_rY1, nperm);
}

void Mantel::test_correlation(RectMat& Y, RectMat& Xa, RectMat& Xb, int const& nperm) {
    if (nperm <= 0) {
        return;
    }
    nperm_done = nperm;
    TimedTest const timed(nperm);
    count_rY1 = count_rY2 = count_rY1_2 = count_rY2_1 = {};
    for (int round = 0; round < nperm; ++round) {
        Y.permute_index();
        double const r1 = mantel_correlation(Y.sum_of_products(Xa), SSXY, SSX1);
        count_value(count_rY1, Y.Z(), ZY1);
        double const r2 = mantel_correlation(Y.sum_of_products(Xb), SSXY, SSX2);
        count_value(count_rY2, Y.Z(), ZY2);
        MantelPartials const partial = mantel_partials(r1, r2, r12);
        count_value(count_rY1_2, partial.rY1_2, rY1_2);
        count_value(count_rY2_1, partial.rY2_1, rY2_1);
    }
    P_rY1 = p_value(count_rY1, nperm);
    P_rY2 = p_value(count_rY2, nperm);
    P_rY1_2 = p_value(count_rY1_2, nperm);
    P_rY2_1 = p_value(count_rY2_1, nperm);
}

}  // namespace tov
