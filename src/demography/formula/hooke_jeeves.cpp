// Pattern searches of the expansion models.
#include "demography/formula/hooke_jeeves.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/random.h"

namespace tov {

ExpansionFitter::ExpansionFitter(ExpansionModel model, std::span<double const> y) : model_(model) { set_data(y); }

void ExpansionFitter::set_data(std::span<double const> y) {
    y_.assign(y.begin(), y.end());
    frequencies_.resize(y.size());
}

std::span<double const> ExpansionFitter::curve(ExpansionParameters& p) {
    switch (model_) {
        case ExpansionModel::sudden: sudden_expansion_curve(p, frequencies_, scratch_); break;
        case ExpansionModel::spatial_3p: spatial_expansion_curve_3p(p, frequencies_, scratch_); break;
        case ExpansionModel::spatial_4p: spatial_expansion_curve_4p(p, frequencies_, scratch_); break;
    }
    return frequencies_;
}

double ExpansionFitter::ssd(ExpansionParameters& p) { return sum_of_squared_deviations(curve(p), y_); }

namespace {

/// One coordinate of a search: how it moves, what it drags along, and the weight of its step in the stop test.
struct Coordinate {
    double ExpansionParameters::*value;
    double step;
    double stop_divisor;             ///< of the step; 0: theta1 + 1
    void (*drag)(ExpansionParameters& p, bool up);
};

void drag_nothing(ExpansionParameters&, bool) {}
void theta1_pulls_theta0(ExpansionParameters& p, bool up) {
    if (!up && p.theta1 < p.theta0) {
        p.theta0 = p.theta1;
    }
}
void theta0_pushes_theta1(ExpansionParameters& p, bool up) {
    if (up && p.theta0 > p.theta1) {
        p.theta1 = p.theta0;
    }
}
void theta0_is_theta1(ExpansionParameters& p, bool) { p.theta0 = p.theta1; }

/// Tries both directions of one coordinate; a rejected move leaves everything as it was.
void move(ExpansionFitter& fitter, Coordinate& c, ExpansionParameters& p, double& ssd, double eps) {
    if (c.step < eps) {
        c.step = 0.0;
        return;
    }
    ExpansionParameters const kept = p;
    for (bool const up : {true, false}) {
        p.*c.value += up ? c.step : -c.step;
        c.drag(p, up);
        double const tried = fitter.ssd(p);
        if (tried < ssd) {
            ssd = tried;
            break;
        }
        p = kept;
    }
    if (p.*c.value == kept.*c.value) {
        c.step *= 0.5;
    } else {
        c.step /= 0.25;
    }
}

double largest_step(std::span<Coordinate const> coordinates, ExpansionParameters const& p) {
    double largest = 0.0;
    for (Coordinate const& c : coordinates) {
        largest = std::max(largest, c.step / (c.stop_divisor == 0.0 ? p.theta1 + 1.0 : c.stop_divisor));
    }
    return largest;
}

SearchOutcome search(ExpansionFitter& fitter, std::span<Coordinate> coordinates, ExpansionParameters p, int max_steps,
                     double eps) {
    SearchOutcome outcome;
    outcome.largest_step = largest_step(coordinates, p);
    while (outcome.steps < max_steps && outcome.largest_step > eps) {
        double ssd = fitter.ssd(p);
        for (Coordinate& c : coordinates) {
            move(fitter, c, p, ssd, eps);
        }
        outcome.ssd = ssd;
        outcome.largest_step = largest_step(coordinates, p);
        ++outcome.steps;
    }
    outcome.best = p;
    outcome.converged = outcome.largest_step <= eps;
    return outcome;
}

/// Means that the random starts of the spatial models depend on.
struct StartScale {
    double tau = 0.0;  ///< mean of the distribution
    double M = 0.0;
};

StartScale start_scale(std::span<double const> y) {
    StartScale scale;
    for (std::size_t i = 0; i < y.size(); ++i) {
        scale.tau += static_cast<double>(i) * y[i];
    }
    scale.M = !y.empty() && y[0] > 0.0 ? 1.0 / y[0] - 1.0 : 100.0;
    return scale;
}

}  // namespace

SearchOutcome hook_jeeves_rh(ExpansionFitter& fitter, ExpansionParameters const& start, int max_steps, double eps) {
    Coordinate coordinates[] = {{&ExpansionParameters::theta1, 10.0, 0.0, theta1_pulls_theta0},
                                {&ExpansionParameters::theta0, 0.9, 1.0, theta0_pushes_theta1},
                                {&ExpansionParameters::tau, 1.0, 1.0, drag_nothing}};
    SearchOutcome outcome = search(fitter, coordinates, start, max_steps, eps);
    outcome.best.theta1 = std::min(outcome.best.theta1, 99999.0);
    return outcome;
}

SearchOutcome hook_jeeves_spatial_exp(ExpansionFitter& fitter, int max_steps, double eps) {
    bool const three = fitter.model() == ExpansionModel::spatial_3p;
    StartScale const scale = start_scale(fitter.data());
    SearchOutcome best;
    best.ssd = std::numeric_limits<float>::max();
    for (int restart = 0; restart < (three ? 3 : 10); ++restart) {
        ExpansionParameters p;
        p.theta1 = 5.0 * uniform();
        p.theta0 = three ? p.theta1 : 2.0 * uniform();
        p.tau = 1.5 * uniform() * scale.tau + scale.tau / 2.0;
        p.M = 1.5 * uniform() * scale.M + scale.M / 2.0;
        Coordinate for_three[] = {{&ExpansionParameters::M, 0.5 + scale.M / 2.0, 20.0, drag_nothing},
                                  {&ExpansionParameters::theta1, 0.95, 1.0, theta0_is_theta1},
                                  {&ExpansionParameters::tau, 0.5 + scale.tau / 2.0, 1.0, drag_nothing}};
        Coordinate for_four[] = {{&ExpansionParameters::theta1, 0.95, 1.0, drag_nothing},
                                 {&ExpansionParameters::tau, 0.89, 1.0, drag_nothing},
                                 {&ExpansionParameters::M, 1.1, 20.0, drag_nothing},
                                 {&ExpansionParameters::theta0, 1.0, 10.0, drag_nothing}};
        std::span<Coordinate> const coordinates =
            three ? std::span<Coordinate>(for_three) : std::span<Coordinate>(for_four);
        SearchOutcome const found = search(fitter, coordinates, p, max_steps, eps);
        if (found.ssd < best.ssd) {
            best.best = found.best;
            best.ssd = found.ssd;
        }
        best.converged = best.converged || found.converged;
        best.steps = found.steps;
        best.largest_step = found.largest_step;
    }
    best.best.M = std::min(best.best.M, 99999.0);
    return best;
}

}  // namespace tov
