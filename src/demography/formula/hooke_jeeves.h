/// Fits of expansion models to a mismatch distribution: coordinate pattern searches on the sum of squared deviations.
#pragma once

#include <span>
#include <vector>

#include "demography/formula/mismatch_model.h"

namespace tov {

enum class ExpansionModel {
    sudden,     ///< theta0, theta1, tau
    spatial_3p, ///< theta (both), tau, M
    spatial_4p, ///< theta0, theta1, tau, M
};

/// Sum of squared deviations of a model from frequencies y of classes 0, 1, ...; keeps its work space.
class ExpansionFitter {
public:
    ExpansionFitter(ExpansionModel model, std::span<double const> y);

    void set_data(std::span<double const> y);
    /// Evaluates the curve at p, which it may repair, and compares it with the data.
    double ssd(ExpansionParameters& p);
    /// The curve at p.
    std::span<double const> curve(ExpansionParameters& p);
    [[nodiscard]] ExpansionModel model() const noexcept { return model_; }
    [[nodiscard]] std::span<double const> data() const noexcept { return y_; }

private:
    ExpansionModel model_;
    std::vector<double> y_;
    std::vector<double> frequencies_;
    CurveScratch scratch_;
};

struct SearchOutcome {
    ExpansionParameters best;
    double ssd = 0.0;
    bool converged = false;   ///< the largest scaled step fell to eps (for several starts: at any of them)
    int steps = 0;            ///< of the last search
    double largest_step = 0.0;
};

inline constexpr int search_max_steps = 2000;
inline constexpr double search_eps = 0.001;

/// Fit of the sudden expansion from `start`: coordinates theta1, theta0, tau with steps 10, 0.9 and 1; theta0 and
/// theta1 push each other. A failed move halves the step, a successful one makes it four times as large; a step below
/// eps becomes 0 for good. theta1 is cut at 99999 at the end. Draws: none.
/// Source: Hooke & Jeeves 1961, J. ACM 8: 212-229, one coordinate at a time.
[[nodiscard]] SearchOutcome hook_jeeves_rh(ExpansionFitter& fitter, ExpansionParameters const& start,
                                           int max_steps = search_max_steps, double eps = search_eps);

/// Fit of an expansion in space from random starts; the best one wins, its M cut at 99999.
/// Draws: three starts of 3 (theta, tau, M), or ten of 4 (theta1, theta0, tau, M), whatever converges.
[[nodiscard]] SearchOutcome hook_jeeves_spatial_exp(ExpansionFitter& fitter, int max_steps = search_max_steps,
                                                    double eps = search_eps);

}  // namespace tov
