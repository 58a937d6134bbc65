// Mismatch distribution of a sample, with the parameters of expansions.
#include <initializer_list>
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

/// Name of the distance; a number without a name counts differences. Of allele sizes any number but 0 squares them.
std::string_view distance_name(TDataType type, int method) {
    if (type == MICROSAT) return distance_method_name(type, method == 0 ? 0 : 1);
    bool const named = (type == DNA && method >= 0 && method <= 6) || (type == RFLP && method >= 0 && method <= 1);
    return named ? distance_method_name(type, method) : std::string_view("Pairwise difference");
}

void print_distance(SampleRun& run) {
    TDataType const type = run.words.type;
    run.out << "Distance method : " << distance_name(type, run.set.MismatchDistanceMethod)
            << gamma_note{type == DNA ? run.set.MismatchGammaAValue : 0.0} << "\n\n";
}

/// Observed counts from class 0 to the largest one.
void append_distribution(TabRow& row, PopGenetics const& pop) {
    for (int c = 0; c <= pop.max_mismatch(); ++c) {
        row << pop.mismatch_[static_cast<std::size_t>(c)];
    }
}

/// A row that begins with names, distance and the estimates of one model.
TabRow table_row(SampleRun const& run, BatchStream const& table, std::initializer_list<double> estimates) {
    TabRow row = batch_row(table, settings::input_file, run.name());
    row << short_distance_title(run.pop.profile.DataType, run.set.MismatchDistanceMethod)
        << run.set.MismatchGammaAValue;
    for (double const estimate : estimates) {
        row << estimate;
    }
    return row;
}

/// The rows of the batch tables: estimates, and the raw distribution, or the number of pairs when there is none.
void write_table_rows(SampleRun const& run) {
    PopGenetics const& pop = run.pop;
    ExpansionFit const& sudden = pop.demographic_fit_;
    ExpansionFit const& one = pop.spatial_one_size_fit_;
    ExpansionFit const& two = pop.spatial_two_sizes_fit_;
    bool const exists = pop.max_mismatch() > 0 && pop.mismatch_.size() > static_cast<std::size_t>(pop.max_mismatch());
    auto const append_counts = [&](TabRow row) {
        long long const n = run.copies();
        if (exists) {
            append_distribution(row, pop);
        } else {
            row << n * (n - 1) / 2;
        }
    };
    append_counts(table_row(run, ofs_mismatch, {sudden.tau.value, sudden.theta0.value, sudden.theta1.value}));
    append_counts(table_row(run, ofs_mismatch_sp3, {one.tau.value, one.theta1.value, one.m.value}));
    table_row(run, ofs_mismatch_sp4, {two.tau.value, two.theta0.value, two.theta1.value, two.m.value});
    if (ofs_only_mismatch && exists) {
        TabRow row(ofs_only_mismatch.get(), {.flush = true});
        append_distribution(row, pop);
    }
}

void print_moments(SampleRun const& run) {
    run.out << "Mismatch observed mean              : " << num{run.pop.mismatch_mean_, 10, 3}
            << "\nMismatch observed variance          : " << num{run.pop.mismatch_variance_, 10, 3};
}

/// The distribution by itself, of data without a model of expansion. Squared sizes leave most classes empty.
void print_distribution(SampleRun const& run) {
    constexpr int length = 27;
    constexpr int width = 13;
    PopGenetics const& pop = run.pop;
    print_moments(run);
    if (pop.mismatch_.empty()) {
        run.out << "\n\nNo pair of gene copies with a difference was counted\n";
        return;
    }
    run.out << "\n\n" << rule{length} << "\n        #Diff     Observed\n" << rule{length} << "\n";
    for (int c = 0; c <= pop.max_mismatch() && c < static_cast<int>(pop.mismatch_.size()); ++c) {
        auto const pairs = static_cast<double>(pop.mismatch_[static_cast<std::size_t>(c)]);
        if (pairs > 0.0) run.out << num{static_cast<double>(c), width, 1} << num{pairs, width, 1} << "\n";
    }
    run.out << rule{length} << "\nClasses without pairs of gene copies are left out\n";
}

/// Heading, moments, and the estimate when there is any variance.
void estimate(SampleRun& run, std::string_view title, void (PopGenetics::*method)(settings*, std::ostream&)) {
    PopGenetics& pop = run.pop;
    run.out << "\n\n" << rule{54, '*'} << "\n" << title << "\n" << rule{54, '*'} << "\n\n";
    print_moments(run);
    if (pop.mismatch_variance_ > least_variance) {
        (pop.*method)(&run.set, run.out);
    } else {
        run.out << "\n\n    The variance of the mismatch distribution is to small,\n"
                << "    no demographic parameters can be estimated.";
    }
}

/// Models of expansion are those of sites; alleles have their distribution alone.
void print_distribution_or_estimates(SampleRun& run) {
    if (run.words.type != DNA && run.words.type != RFLP) {
        print_distribution(run);
        return;
    }
    if (run.set.MismatchDemogExp) {
        estimate(run, "Parameters estimated under the sudden expansion model:", &PopGenetics::est_demog_mis);
    }
    if (run.set.MismatchSpatialExp) {
        estimate(run, "Parameters estimated under the spatial expansion model:", &PopGenetics::est_spatial_mis);
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
    run.start_clock();
    run.ensure_evaluated();
    run.console << "\tComputing mismatch distribution...\n";
    run.choose_distance(run.set.MismatchDistanceMethod, run.set.MismatchGammaAValue);
    bool const measured = run.pop.compute_distance_matrix(nullptr, &run.set, 1) != 0;
    if (!measured) {
        run.pop.max_mismatch_ = 0;  // without a whole matrix there is no distribution
    }
    if (run.stopped()) {
        return;
    }
    run.pop.compute_mm_distr(run.out, run.set);
    print_distance(run);
    if (measured) {
        print_distribution_or_estimates(run);
    } else {
        run.out << "Mismatch distribution cannot be computed \nwithout the distances between all haplotypes.\n";
    }
    write_table_rows(run);
    run.console << "\tdone ! (" << run.milliseconds() << " ms)\n";
}

}  // namespace tov
