// Feeds arbitrary bytes to the readers of simulation parameters and simulated loci, and tests loci against the latter.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "structure/formula/selection_p.h"
#include "structure/selection.h"

namespace {

using namespace tov;

void require(bool holds) {
    if (!holds) std::abort();
}

/// A byte of 0 stands between the two files.
constexpr char between_files = '\0';

void read_parameters(std::string const& text, bool two_levels) {
    SimulationPlan plan;
    plan.simulations = 100;
    plan.model.two_levels = two_levels;
    plan.model.demes = 50;
    FixationTargets targets{0.1, 0.06, 0.05};
    std::istringstream in(text);
    read_simulation_parameters(in, plan, targets);
    require(plan.makes_files && plan.files >= 0 && plan.simulations >= 0);
    require(two_levels || plan.model.groups == 1);
    require(std::isfinite(targets.FSC) && std::isfinite(targets.FCT));
}

void read_loci(std::string const& text, bool several_groups) {
    SimulatedLoci loci;
    std::istringstream in(text);
    bool const read = read_simulated_loci(in, several_groups, loci);
    require(read == !loci.het.empty());
    require(loci.FST.size() == loci.het.size() && loci.FCT.size() == loci.het.size());
    require(loci.mutations.size() == loci.het.size());
    for (std::size_t i = 0; i < loci.het.size(); ++i) {
        require(std::isfinite(loci.FST[i]) && std::isfinite(loci.FCT[i]));
        require(loci.lowest <= loci.het[i] && loci.het[i] <= loci.highest);
    }
    if (!read) return;

    SelectionKernel const kernel;
    std::vector<double> const quantiles{0.05, 0.5, 0.95};
    std::vector<double> limits;
    for (double const het : {loci.lowest, 0.5 * (loci.lowest + loci.highest), loci.highest}) {
        for (double const obs : {-0.05, 0.0, 0.1, 1.0}) {
            double const p =
                calcFSTpvalue(obs, loci.het, loci.FST, kernel.h_stat, het, kernel.h_het, kernel.grid_points);
            require(p >= 0.0 && p <= 1.01);
        }
        calcCILimits(loci.het, loci.FCT, kernel.h_stat, het, kernel.h_het, kernel.grid_points, quantiles, limits);
        require(limits.size() == quantiles.size());
        for (double const limit : limits) require((limit >= 0.0 && limit < 1.0) || limit == 2.0);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    std::size_t const end = text.find(between_files);
    std::string const simulated = end == std::string::npos ? text : text.substr(end + 1);
    for (bool const several_groups : {false, true}) {
        read_parameters(text.substr(0, end), several_groups);
        read_loci(simulated, several_groups);
    }
    return 0;
}
