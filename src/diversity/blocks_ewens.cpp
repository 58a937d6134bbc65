// Ewens-Watterson and Chakraborty's tests of a sample.
#include <ostream>

#include "diversity/blocks.h"
#include "diversity/neutrality_report.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/references.h"
#include "output/table.h"

namespace tov {
namespace {

constexpr int ewens_heading_length = 50;
constexpr int chakraborty_heading_length = 47;

/// One frequency a haplotype of the sample's own definition.
void add_haplotype_frequencies(PopGenetics const& pop, MY_TISArrayAsVector<AHaplFreq>& target) {
    for (int i = 0; i < pop.nb_haplotypes(); ++i) {
        target.Add(new AHaplFreq(pop.haplotype(i).copies));
    }
}

}  // namespace

void ewens_watterson_block(SampleRun& run) {
    if (run.refuse_unknown_phase("Ewens-Watterson tests")) {
        return;
    }
    sample_heading(run.out, "Ewens-Watterson tests of selective neutrality", run.name(), ewens_heading_length);
    print_references(run.out, {"ewens1972", "watterson1978", "slatkin1994b", "slatkin1996"});
    if (run.stopped_at("Testing neutrality: Ewens-Watterson tests ...")) {
        return;
    }
    run.start_clock();
    PopGenetics& pop = run.pop;
    bool const single = pop.nb_haplotypes() < 2;
    if (single) {
        warn_single_haplotype(run.out, run.console, run.words.one_haplotype_test);
    }
    run.console << "\t\tComputing BMat ...";
    // kept on purpose: a sample with a single haplotype is said to lack the table
    if (PopGenetics::get_B_num_mat() == 0 || single) {
        run.console << run.words.table_failure;
        return;
    }
    run.console << "\tTesting neutrality (Ewens-Watterson )...";
    if (run.set.InferHaplotypeDefinitionFromDistanceMatrix != 0) {
        pop.EW_neutrality_tests(run.set, run.out, run.frequencies_of_real_haplotypes());
    } else {
        MY_TISArrayAsVector<AHaplFreq> frequencies;
        add_haplotype_frequencies(pop, frequencies);
        pop.EW_neutrality_tests(run.set, run.out, frequencies);
    }
    run.console << "\tdone ! (" << run.milliseconds() << " ms)\n";
}

void chakraborty_block(SampleRun& run) {
    if (run.refuse_unknown_phase("Chakraborty's test", true)) {
        return;
    }
    sample_heading(run.out, "Chakraborty's test of selective neutrality", run.name(), chakraborty_heading_length);
    print_references(run.out, {"chakraborty1990"});
    if (run.stopped_at("Testing neutrality: Chakraborty's test ...")) {
        return;
    }
    if (PopGenetics::get_B_num_mat() == 0) {
        run.console << "\t\tFile not found... skipping task !\n";
        return;
    }
    run.console << "\tPerforming Chakraborty's neutrality and amalgamation test ...";
    PopGenetics& pop = run.pop;
    if (run.set.InferHaplotypeDefinitionFromDistanceMatrix == 0) {
        pop.Chakraborty_neutr_test(run.out);
    } else if (pop.nb_haplotypes() < 2) {
        run.frequencies_of_real_haplotypes();
        warn_single_haplotype(run.out, run.console, "Chakraborty's");
    } else {
        pop.Chakraborty_neutr_test(run.out, run.frequencies_of_real_haplotypes());
    }
    run.console << '\n';
}

}  // namespace tov
