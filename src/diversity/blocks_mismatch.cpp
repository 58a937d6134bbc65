// Mismatch distribution of a sample, with the parameters of expansions.
#include <ostream>

#include "diversity/blocks.h"
#include "diversity/blocks_molecular_report.h"
#include "diversity/popgen.h"
#include "input/distance_names.h"
#include "input/settings.h"
#include "output/glbobj.h"
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

/// The beginning of the rows of the batch tables: names and distance.
void begin_table_rows(SampleRun& run) {
    for (BatchStream const* const table : {&ofs_mismatch, &ofs_mismatch_sp3, &ofs_mismatch_sp4}) {
        if (*table) {
            begin_batch_row(*table, settings::input_file, run.name());
            **table << short_distance_title(run.pop.profile.DataType, run.set.MismatchDistanceMethod) << '\t'
                    << run.set.MismatchGammaAValue << '\t';
        }
    }
}

/// Observed counts from class 0 to the largest one, separated by tabs.
void write_distribution(std::ostream& table, PopGenetics const& pop) {
    for (int c = 0; c <= pop.max_mismatch(); ++c) {
        table << (c > 0 ? "\t" : "") << pop.mismatch_[static_cast<std::size_t>(c)];
    }
}

/// The raw distribution, or the number of pairs when there is none, and the end of the rows.
void end_table_rows(SampleRun& run) {
    PopGenetics const& pop = run.pop;
    bool const exists = pop.max_mismatch() > 0 && pop.mismatch_.size() > static_cast<std::size_t>(pop.max_mismatch());
    for (BatchStream const* const table : {&ofs_mismatch, &ofs_mismatch_sp3}) {
        if (*table) {
            long long const n = run.copies();
            if (exists) {
                write_distribution(**table, pop);
            } else {
                **table << n * (n - 1) / 2;
            }
        }
    }
    for (BatchStream const* const table : {&ofs_mismatch, &ofs_mismatch_sp3, &ofs_mismatch_sp4}) {
        if (*table) {
            **table << '\n';
        }
    }
    if (ofs_only_mismatch && exists) {
        write_distribution(*ofs_only_mismatch, pop);
        *ofs_only_mismatch << '\n';
    }
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
    // Without a whole matrix the distribution is that of a sample without differences.
    if (run.pop.compute_distance_matrix(nullptr, &run.set, 1) == 0) {
        run.pop.max_mismatch_ = 0;
    }
    if (run.stopped()) {
        return;
    }
    run.pop.compute_mm_distr(run.out, run.set);
    print_distance(run);
    begin_table_rows(run);
    bool const estimates = run.words.type == DNA || run.words.type == RFLP;
    if (estimates && run.set.MismatchDemogExp) {
        estimate(run, "Parameters estimated under the sudden expansion model:", &PopGenetics::est_demog_mis);
    }
    if (estimates && run.set.MismatchSpatialExp) {
        estimate(run, "Parameters estimated under the spatial expansion model:", &PopGenetics::est_spatial_mis);
    }
    end_table_rows(run);
    run.console << "\tdone ! (" << run.milliseconds() << " ms)\n";
}

}  // namespace tov
