// The genetic structure block of a run: which analyses run, and in which order.
#include "structure/gen_struct.h"

#include <ctime>
#include <ostream>

#include "base/scoped_swap.h"
#include "base/timing.h"
#include "input/settings.h"
#include "model/sample.h"
#include "output/html_out.h"
#include "output/style.h"
#include "output/xml.h"
#include "run/errors.h"
#include "structure/amova.h"
#include "structure/diffpop.h"
#include "structure/loc_by_loc.h"

namespace tov {

namespace {

/// Conventional F-statistics need known haplotypes.
void refuse_conventional(ProjectView const& view) {
    settings& set = view.set;
    if (view.samples->GameticPhase != 0 || set.ComputeConventionalFST == 0) {
        return;
    }
    for (std::ostream* const out : {&set.ofs(), _AOS_}) {
        *out << "\n\nThe computation of AMOVA with the option \"CONVENTIONAL FST\" is"
             << "\nnot possible with unknown gametic phase data.\n"
             << "SKIPPING COMPUTATION OF GENETIC STRUCTURE\n";
    }
    E.error(ErrorType::Error, "GenStructCalculations()", 202);
    set.TaskNumber &= ~(task::amova | task::pairwise_fst);
}

bool amova_wanted(settings const& set) {
    return set.wants(task::amova) && (set.HaplAMOVA != 0 || set.LocByLocAMOVA != 0);
}

void print_heading(ProjectView const& view) {
    settings const& set = view.set;
    bool const groups = view.samples->pooled != 0;
    bool const wanted = amova_wanted(set) || set.wants(task::pairwise_fst);
    if ((wanted || set.wants(task::exact_test)) && !xmlOutput) {
        print_js_aux_entry(set, 1, groups ? "_gr_gen_struct" : "_pop_gen_struct",
                           groups ? "Genetic structure (samp=group)" : "Genetic structure (samp=pop)");
    }
    if (wanted) {
        set.ofs() << "\n" << rule{78, '='} << "\n== GENETIC STRUCTURE ANALYSIS\n" << rule{78, '='} << "\n";
    }
}

bool matrix_wanted(settings const& set) {
    if (set.ComputeDistanceMatrixAMOVA == 0 && set.ComputeConventionalFST == 0) {
        return false;
    }
    bool const pairs = set.wants(task::pairwise_fst) &&
                       (set.ComputePairwiseFST != 0 || set.UnequalPopSizeDiv != 0 || set.PrintMissIntermatchs != 0);
    return (set.wants(task::amova) && set.HaplAMOVA != 0) || pairs || set.wants(task::mantel);
}

/// The AMOVA of whole haplotypes and the distances between samples.
void run_global(ProjectView const& view) {
    settings& set = view.set;
    if (set.HaplAMOVA == 0 && !set.wants(task::pairwise_fst | task::mantel)) {
        return;
    }
    bool const groups = view.samples->pooled != 0;
    if (set.HaplAMOVA != 0 && !xmlOutput) {
        print_js_doc_entry(set, 2, groups ? "_gr_amova" : "_pop_amova", "AMOVA");
    }
    // Without the global AMOVA only the pairwise work of the machinery runs.
    ScopedSwap<long> const tasks(set.TaskNumber, set.HaplAMOVA == 0 ? set.TaskNumber & ~task::amova : set.TaskNumber);
    run_amova(view);
}

void run_locus_by_locus(ProjectView const& view) {
    settings& set = view.set;
    ScopedSwap<long> const tasks(set.TaskNumber, task::amova);
    ScopedSwap<int> const pairs(set.ComputePairwiseFST, 0);
    ScopedSwap<int> const delta_mu(set.ComputeDeltaMuSqr, 0);
    locus_by_locus_amova(view);
}

void run_variance_analyses(ProjectView const& view) {
    settings& set = view.set;
    bool const loud = !set.silent_structure;
    std::clock_t const start = std::clock();
    if ((set.HaplAMOVA != 0 || set.LocByLocAMOVA != 0) && loud) {
        *_AOS_ << "\t\tComputing F statistics ...\n";
    }
    if (loud) {
        settings::set_message("Computing population genetic structure...");
        settings::print_message();
    }
    run_global(view);
    if (set.LocByLocAMOVA != 0) {
        run_locus_by_locus(view);
    }
    if (loud) {
        *_AOS_ << "\t\tdone ! (" << milliseconds_since(start) << " ms)\n";
    }
}

void convert_genotypes(settings const& set, StructureActions const& actions) {
    bool const loud = !set.silent_structure;
    std::clock_t const start = std::clock();
    if (loud) {
        *_AOS_ << "\tConverting phenotypic to haplotypic data ...\n";
    }
    actions.convert_genotypes();
    if (loud) {
        *_AOS_ << "\tdone ! (" << milliseconds_since(start) << " ms)\n";
    }
}

}  // namespace

void gen_struct_calculations(ProjectView const& view, StructureActions const& actions) {
    settings& set = view.set;
    Samples const& samples = *view.samples;
    if (samples.GenotypicData != 0 && samples.RecessiveData == 0) {
        refuse_conventional(view);
        convert_genotypes(set, actions);
    }
    actions.convert_repeat_lengths();
    if (samples.GenotypicData != 0 && samples.RecessiveData != 0) {
        set.TaskNumber &= ~(task::amova | task::pairwise_fst);
        set.ofs() << "\n\nThe computation of AMOVA and PAIRWISE FST is"
                  << "\nnot implemented yet with recessive data, sorry\n";
    }
    if (set.wants(task::amova | task::pairwise_fst | task::mantel | task::exact_test)) {
        print_heading(view);
    }
    if (matrix_wanted(set)) {
        bool const computed = actions.calc_dist_matrix(set.DistanceMethodAMOVA, set.GammaAValueAMOVA) != 0;
        if (computed && (set.PrintDistanceMatrix != 0 || set.PrintMinSpannNetworkGlob != 0)) {
            actions.print_distance_matrix();
        }
    }
    if (set.wants(task::amova | task::pairwise_fst | task::mantel)) {
        run_variance_analyses(view);
    }
    if (set.wants(task::exact_test)) {
        bool const groups = samples.pooled != 0;
        print_js_doc_entry(set, 2, groups ? "_gr_exct_tests" : "_pop_exct_tests", "Exact tests");
        DiffInterPop(&set, view.samples).make_all_tests();
    }
}

}  // namespace tov
