/// Regressions and correlations of a matrix Y with one or two explanatory matrices, from their sums over pairs.
#pragma once

namespace tov {

/// Sums over the strict lower triangles: squared deviations of each matrix, products of deviations of each pair.
struct MantelSums {
    double ssx_y = 0.0, ssx_1 = 0.0, ssx_2 = 0.0;
    double sp_y1 = 0.0, sp_y2 = 0.0, sp_12 = 0.0;
};

struct MantelPartials {
    double rY1_2 = 0.0;  ///< correlation of Y and X1 with X2 held constant
    double rY2_1 = 0.0;  ///< correlation of Y and X2 with X1 held constant
};

struct MantelCoefficients {
    double bY1 = 0.0, bY2 = 0.0, b21 = 0.0, b12 = 0.0;  ///< regressions of the first on the second
    double bY1_2 = 0.0, bY2_1 = 0.0;                    ///< partial regressions
    double rY1 = 0.0, rY2 = 0.0, r12 = 0.0;
    MantelPartials partial;
    bool determined = false;     ///< X1 and X2 are not collinear: the next four are set
    double b1 = 0.0, b2 = 0.0;   ///< standardised coefficients
    double R2 = 0.0;             ///< fraction of Y's variation that X1 and X2 determine
    double unexplained = 0.0;    ///< 1 - R2
};

/// Correlation from a sum of products and two sums of squares; a zero sum of squares gives inf or nan.
[[nodiscard]] double mantel_correlation(double sp, double ssx_a, double ssx_b) noexcept;

/// Partial correlations from the three simple ones; collinear matrices give inf or nan.
[[nodiscard]] MantelPartials mantel_partials(double rY1, double rY2, double r12) noexcept;

/// All coefficients for one explanatory matrix: bY1, rY1, b1 = rY1, R2 = rY1^2, unexplained.
/// Source: Smouse, Long & Sokal 1986, Syst. Zool. 35: 627-632.
[[nodiscard]] MantelCoefficients mantel_two(MantelSums const& sums) noexcept;

/// All coefficients for two explanatory matrices. Source: as above.
[[nodiscard]] MantelCoefficients mantel_three(MantelSums const& sums) noexcept;

}  // namespace tov
