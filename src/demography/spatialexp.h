// mismatchSpatialExpansion: estimation of an expansion in space from a mismatch distribution.
#pragma once

#include "demography/expdem.h"

namespace tov {

/// A deme that exchanges M migrants with an infinitely large population since tau; of one size (3 parameters) or of
/// two (4). Both are simulated with one size.
class mismatchSpatialExpansion : public ann_missmatch {
public:
    /// Of a simulated sample; without an end in time beyond it.
    static constexpr double largest_theta = 1e6;

    mismatchSpatialExpansion(PopGenetics& pop, settings& set, ExpansionModel model) : ann_missmatch(pop, set, model) {}

    [[nodiscard]] double get_M() const { return estimate_.best.M; }

protected:
    int simulate(ExpansionParameters const& p) override;
    void print_heading(std::ostream& out) const override;
    void print_estimates(std::ostream& out) const override;
    void print_not_converged(std::ostream& out) const override;
    std::vector<IntervalRow> interval_rows(Bootstrap const& bootstrap) const override;
    [[nodiscard]] char const* tag() const override { return "mismatchSpatialExp"; }

private:
    [[nodiscard]] bool three() const { return model_ == ExpansionModel::spatial_3p; }
};

}  // namespace tov
