// Haplotype frequencies of a sample: counted, or estimated when the gametic phase is unknown.
#include <ostream>

#include "diversity/blocks.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/references.h"
#include "output/table.h"

namespace tov {

namespace {

constexpr int heading_length = 36;

void print_haplotype_heading(SampleRun& run) {
    if (!run.set.print_sample_banner) return;
    sample_heading(run.out, "Haplotypes frequency estimation", run.name(), heading_length);
    if (run.haplotypes_known()) {
        print_references(run.out, {"weir1996"});
    } else {
        print_references(run.out, {"hill1974", "long1995"});
    }
}

}  // namespace

void haplotype_frequency_block(SampleRun& run) {
    print_haplotype_heading(run);
    if (run.haplotypes_known()) {
        if (run.stopped_at("Computing haplotype frequencies ... \n")) return;
        run.console << "\tComputing haplotype frequencies ...\n";
        run.pop.calc_hapl_dat_hapl_freq(run.set);
        run.console << "\tdone !";
        return;
    }
    if (run.stopped_at("Computing ML haplotype frequencies ...")) return;
    if (run.set.GibbsInferGamPhase != 0) run.pop.comp_gam_phase_Gibbs(run.set);
    if (run.stopped()) return;
    if (run.set.ComputeAllHaplotypesEM != 0 || run.set.ComputeAllAllelesEM != 0) run.pop.comp_gam_phase_EM(run.set);
}

}  // namespace tov
