// Standard diversity indices of a sample.
#include <ostream>

#include "diversity/blocks.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/glbobj.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"

namespace tov {
namespace {

constexpr int heading_length = 31;

void print_heading(SampleRun& run) {
    sample_heading(run.out, "Standard diversity indices", run.name(), heading_length);
}

void print_recessive_refusal(SampleRun& run) {
    run.out << "Most standard diversity indices cannot be computed \n"
            << "for recessive data\n\n"
            << "No. of gene copies in sample       : " << run.copies() << '\n';
}

void print_sizes(SampleRun& run) {
    PopGenetics const& pop = run.pop;
    run.out << "No. of gene copies       : " << run.copies();
    if (run.haplotypes_known()) {
        run.out << run.words.distinct << pop.nb_haplotypes();
    }
    if (run.shows_original_number()) {
        run.out << run.words.original << pop.nb_original_haplotypes;
    }
    run.out << "\nNo. of loci              : " << pop.nb_loci()
            << "\nNo. of usable loci       : " << pop.nb_usable_loci() << " loci with less than "
            << num{100.0 * run.set.AllowedLevelOfMissingData, 5, 2} << " % missing data" << run.words.polymorphic
            << pop.numPolymSites() << '\n';
}

void print_locus_tables(SampleRun& run) {
    if (run.pop.is_genotypic()) {
        run.pop.OutputAllelelNumberAndHetPerLocusDipl(run.pop.phenotypes, run.out, run.set, true, true, true);
    } else {
        run.pop.OutputAllelelNumberAndHetPerLocusHapl(run.out, run.set, true, true, true);
    }
}

void print_haplotype_level(SampleRun& run) {
    PopGenetics& pop = run.pop;
    pop.calc_sample_homozygosity();
    pop.calc_sample_sd_heterozygosity();
    run.out << "\nHaplotype-level computations\n"
            << "----------------------------\n"
            << "\nSum of square freqs.     : " << num{pop.calc_F(), 7, 4} << "\nGene diversity           : "
            << plus_minus{pop.sample_heterozygosity(), pop.sd_sample_heterozygosity(), 7, 4} << "\n\n"
            << "(Standard deviation is for the sampling process)\n";
}

void write_table_row(SampleRun& run) {
    PopGenetics const& pop = run.pop;
    TabRow row = batch_row(ofs_gen_div, settings::input_file, run.name());
    row << run.copies() << pop.nb_haplotypes();
    if (run.shows_original_number()) {
        row << pop.nb_original_haplotypes;
    }
    row << pop.nb_loci() << pop.nb_usable_loci() << pop.numPolymSites()
        << (run.haplotypes_known() ? 1.0 - pop.sample_homozygosity() : -1.0);
}

}  // namespace

void standard_indices_block(SampleRun& run) {
    bool const recessive = run.set.RecessiveAllelesEM != 0;
    run.console << "\tComputing standard diversity indices ...\n";
    if (run.stopped_at("Computing standard diversity indices ...")) {
        return;
    }
    run.start_clock();
    print_heading(run);
    if (recessive) {
        print_recessive_refusal(run);
        if (run.words.type == STANDARD) {
            run.console << "\t\tdone ! (" << run.milliseconds() << " ms)\n";
        }
        run.console << "\tdone !\n";
        return;
    }
    if (run.words.type == MICROSAT) {
        print_references(run.out, {"nei1987", "garza_williamson2001"});
    } else {
        print_references(run.out, {"nei1987"});
    }
    run.choose_distance(0, 0.0);
    run.ensure_checked();
    run.ensure_evaluated();
    print_sizes(run);
    print_locus_tables(run);
    if (run.haplotypes_known()) {
        print_haplotype_level(run);
    }
    write_table_row(run);
    if (run.pop.is_genotypic() && run.pop.phenotypes.size() > 0) {
        run.pop.compute_phenotype_heterozygosity(run.set, run.pop.phenotypes);
    }
    run.console << "\tdone !\n";
}

}  // namespace tov
