// Mantel correlations from sums over pairs.
#include "structure/formula/mantel_stats.h"

#include <cmath>

namespace tov {

double mantel_correlation(double sp, double ssx_a, double ssx_b) noexcept { return sp / std::sqrt(ssx_a * ssx_b); }

MantelPartials mantel_partials(double rY1, double rY2, double r12) noexcept {
    double const rest = 1.0 - r12 * r12;
    return {(rY1 - rY2 * r12) / std::sqrt(rest * (1.0 - rY2 * rY2)),
            (rY2 - rY1 * r12) / std::sqrt(rest * (1.0 - rY1 * rY1))};
}

MantelCoefficients mantel_two(MantelSums const& sums) noexcept {
    MantelCoefficients c;
    c.bY1 = sums.sp_y1 / sums.ssx_1;
    c.rY1 = mantel_correlation(sums.sp_y1, sums.ssx_y, sums.ssx_1);
    c.determined = true;
    c.b1 = c.rY1;
    c.R2 = c.b1 * c.b1;
    c.unexplained = 1.0 - c.R2;
    return c;
}

MantelCoefficients mantel_three(MantelSums const& sums) noexcept {
    MantelCoefficients c;
    c.bY1 = sums.sp_y1 / sums.ssx_1;
    c.b21 = sums.sp_12 / sums.ssx_2;
    c.b12 = sums.sp_12 / sums.ssx_1;
    c.bY2 = sums.sp_y2 / sums.ssx_2;
    c.bY1_2 = (sums.sp_y1 - c.bY2 * sums.sp_12) / (sums.ssx_1 - c.b21 * sums.sp_12);
    c.bY2_1 = (sums.sp_y2 - c.bY1 * sums.sp_12) / (sums.ssx_2 - c.b12 * sums.sp_12);
    c.rY1 = mantel_correlation(sums.sp_y1, sums.ssx_y, sums.ssx_1);
    c.rY2 = mantel_correlation(sums.sp_y2, sums.ssx_y, sums.ssx_2);
    c.r12 = mantel_correlation(sums.sp_12, sums.ssx_1, sums.ssx_2);
    c.partial = mantel_partials(c.rY1, c.rY2, c.r12);
    double const rest = 1.0 - c.r12 * c.r12;
    if (rest > 0.0) {
        c.determined = true;
        c.b1 = (c.rY1 - c.rY2 * c.r12) / rest;
        c.b2 = (c.rY2 - c.rY1 * c.r12) / rest;
        c.R2 = 2.0 * c.b1 * c.b2 * c.r12 + c.b2 * c.b2 + c.b1 * c.b1;
        c.unexplained = 1.0 - c.R2;
    }
    return c;
}

}  // namespace tov
