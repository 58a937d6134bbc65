// Linkage disequilibrium and Hardy-Weinberg proportions of a sample.
#include <algorithm>
#include <limits>
#include <ostream>

#include "diversity/blocks.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/references.h"
#include "output/table.h"

namespace tov {

namespace {

constexpr long most_permutations = std::numeric_limits<int>::max();

}  // namespace

void linkage_disequilibrium_block(SampleRun& run) {
    sample_heading(run.out, "Pairwise linkage disequilibrium", run.name(), 36);
    if (run.stopped_at("Testing linkage disequilibrium ...")) {
        return;
    }
    run.ensure_evaluated();
    if (run.haplotypes_known()) {
        print_references(run.out, {"raymond_rousset1995", "guo_thompson1992", "lewontin_kojima1960", "lewontin1964",
                                   "hill_robertson1968"});
        run.console << "\tTesting linkage disequilibrium (haplotypic data)...\n";
        run.pop.calc_all_gam_des(run.out, run.set.MarkovChainStepsLD, run.set);
    } else {
        print_references(run.out, {"hill1974", "dempster1977", "long1995"});
        run.console << "\tTesting linkage disequilibrium (phenotypic data)...\n";
        auto const permutations = static_cast<int>(std::clamp(run.set.MarkovChainStepsLD, 0L, most_permutations));
        run.pop.calc_all_link_dis(run.out, run.pop.phenotypes, run.set, permutations, 1, run.set.InitialCondEMLD,
                                  run.set.EpsilonValue);
    }
    run.console << "\tdone !";
}

void hardy_weinberg_block(SampleRun& run) {
    sample_heading(run.out, "Hardy-Weinberg equilibrium", run.name(), 31);
    print_references(run.out, {"guo_thompson1992", "levene1949"});
    if (run.stopped_at("Testing Hardy-Weinberg equilibrium ...")) {
        return;
    }
    run.console << "\tTesting Hardy-Weinberg equilibrium ...\n";
    run.pop.make_all_hw(run.out, run.pop.phenotypes, run.set.MarkovChainStepsHW, run.set);
    run.console << "\tdone !\n";
}

}  // namespace tov
