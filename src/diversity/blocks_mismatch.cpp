// Mismatch distribution of a sample, with the parameters of expansions.
#include <ostream>

#include "diversity/blocks.h"
#include "diversity/popgen.h"
#include "input/distance_names.h"
#include "input/settings.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"

namespace tov {
namespace {

constexpr int heading_length = 26;
constexpr double least_variance = 1e-7;

void print_distance(SampleRun& run) {
    TDataType const type = run.words.type;
    run.out << "Distance method : "
            << (type == DNA || type == RFLP ? distance_method_name(type, run.set.MismatchDistanceMethod)
                                            : std::string_view("Pairwise difference"))
            << gamma_note{run.set.MismatchGammaAValue} << "\n\n";
}

/// Heading, moments, and the estimate when there is any variance.
void estimate(SampleRun& run, std::string_view title, void (PopGenetics::*method)(settings*, std::ostream&)) {
    PopGenetics& pop = run.pop;
    run.out << "\n\n" << rule{54, '*'} << "\n" << title << "\n" << rule{54, '*'}
            << "\n\nMismatch observed mean              : " << num{pop.mismatch_mean_, 10, 3}
            << "\nMismatch observed variance          : " << num{pop.mismatch_variance_, 10, 3};
    if (pop.mismatch_variance_ > least_variance) {
        (pop.*method)(&run.set, run.out);
    } else {
        run.out << "\n\n    The variance of the mismatch distribution is to small,\n"
                << "    no demographic parameters can be estimated.";
    }
}

}  // namespace

void mismatch_block(SampleRun& run) {
    if (run.refuse_unknown_phase("Mismatch distribution")) {
        return;
    }
    if (run.words.type == STANDARD && run.pop.profile.DataType == FREQUENCY) {
        run.out << "Mismatch distribution cannot be computed \n"
                << "in case of FREQUENCY data type.";
        return;
    }
    sample_heading(run.out, "Mismatch distribution", run.name(), heading_length);
    print_references(run.out, {"rogers_harpending1992", "harpending1994", "slatkin_hudson1991"});
    if (run.stopped_at("Computing mismatch distribution ...")) {
        return;
    }
    run.ensure_evaluated();
    run.console << "\tComputing mismatch distribution...\n";
    run.choose_distance(run.set.MismatchDistanceMethod, run.set.MismatchGammaAValue);
    run.pop.compute_distance_matrix(nullptr, &run.set, 1);
    run.pop.compute_mm_distr(run.out, run.set);
    print_distance(run);
    bool const estimates = run.words.type == DNA || run.words.type == RFLP;
    if (estimates && run.set.MismatchDemogExp) {
        estimate(run, "Parameters estimated under the sudden expansion model:", &PopGenetics::est_demog_mis);
    }
    if (estimates && run.set.MismatchSpatialExp) {
        estimate(run, "Parameters estimated under the spatial expansion model:", &PopGenetics::est_spatial_mis);
    }
    run.console << "\tdone ! (" << run.milliseconds() << " ms)\n";
}

}  // namespace tov
