// Molecular diversity indices of a sample and its estimates of theta.
#include <ctime>
#include <ostream>

#include "base/timing.h"
#include "diversity/blocks.h"
#include "diversity/blocks_molecular_report.h"
#include "diversity/formula/theta.h"
#include "diversity/popdna.h"
#include "input/settings.h"
#include "output/glbobj.h"
#include "output/style.h"
#include "output/table.h"

namespace tov {
namespace {

bool is_frequency_data(SampleRun const& run) { return run.pop.profile.DataType == FREQUENCY; }

/// Matrix and indices from it. @return whether there is a result.
bool compute_diversity(SampleRun& run) {
    if (is_frequency_data(run) || run.pop.compute_distance_matrix(nullptr, &run.set, 0) == 0) {
        return false;
    }
    run.pop.compute_molecular_diversity(run.set);
    run.diversity_done = true;
    return true;
}

void print_diversity(SampleRun& run) {
    PopGenetics& pop = run.pop;
    if (run.set.PrintHaplDistMat != 0 || run.set.PrintMinSpannNetworkPop != 0) {
        pop.print_out_dist_mat(run.out, run.set);
    }
    print_mean_differences(run);
}

/// The estimators that need a sample with equal gene copies: Theta(Hom) and Theta(k).
void estimate_from_alleles(SampleRun& run, TabRow& table_row) {
    PopGenetics& pop = run.pop;
    settings const& set = run.set;
    if ((set.ComputeTheta & theta_bit::hom) != 0) {
        pop.calc_theta_Hom();
        print_theta(run, table_row, "Hom", pop.theta_hom_, pop.sd_theta_hom_);
    }
    if (run.words.type == MICROSAT || (set.ComputeTheta & theta_bit::k) == 0 || !run.haplotypes_known()) {
        return;
    }
    std::clock_t const start = std::clock();
    run.console << "\t\tComputing BMat ...";
    if (PopGenetics::get_B_num_mat() == 0) {
        run.console << "\t\t\tFile 500k100.bnb not found... skipping task !\n";
        return;
    }
    run.console << "\t\tdone ! (" << milliseconds_since(start) << " ms)\n";
    int const distinct = pop.nb_haplotypes();
    pop.theta_k(run.copies(), distinct, 0.05);
    bool const limits = distinct < 1000 && pop.nb_genes() < 5000.0;
    print_theta_k(run, table_row, limits);
    if (!limits) {
        run.console << "\t\t\tToo many aleles or gene copies in sample to compute Theta(k)\n";
    }
}

void estimate_from_sites(SampleRun& run, TabRow& table_row) {
    PopGenetics& pop = run.pop;
    int const wanted = run.set.ComputeTheta;
    if (run.words.type == STANDARD) {
        print_theta_refusals(run);
        return;
    }
    if ((wanted & theta_bit::S) != 0) {
        pop.theta_S(run.copies(), pop.segregating_sites());
        print_theta(run, table_row, "S", pop.theta_S_, pop.sd_theta_S_);
    }
    if ((wanted & theta_bit::pi) != 0) {
        pop.theta_pi(pop.pi());
        print_theta(run, table_row, "Pi", pop.theta_pi_, pop.sd_theta_pi_);
    }
}

void estimate_thetas(SampleRun& run) {
    if (run.set.ComputeTheta == 0) {
        return;
    }
    run.out << '\n';
    TabRow table_row = batch_row(ofs_theta, settings::input_file, run.name());
    if (run.words.type == MICROSAT) {
        print_theta_refusals(run);
    }
    if (run.pop.nb_genes() != run.pop.nb_haplotypes()) {
        estimate_from_alleles(run, table_row);
    } else {
        print_distinct_copies(run);
    }
    if (run.words.type != MICROSAT) {
        estimate_from_sites(run, table_row);
    }
}

void print_counts(SampleRun& run, TabRow& table_row) {
    print_sample_sizes(run, table_row);
    if (auto* const dna = dynamic_cast<PopulDNA*>(&run.pop)) {
        dna->comp_nucl_freq();
        print_substitution_counts(run, dna->substitution_counts());
        print_site_numbers(run, table_row);
        print_composition(run, dna->nucleotide_frequencies());
    } else {
        print_site_numbers(run, table_row);
    }
    print_distance_choice(run, table_row);
}

/// The sample's counts and, when `compute` yields a result, its diversity, in the document and in its batch row.
template <class Compute>
void print_indices(SampleRun& run, Compute const& compute) {
    TabRow table_row = batch_row(ofs_mol_div, settings::input_file, run.name());
    print_counts(run, table_row);
    if (compute()) {
        print_diversity(run);
    }
    if (!is_frequency_data(run)) {
        write_diversity_values(run, table_row);
    }
}

/// Standard data compute first and print then; all others the other way round.
void standard_data(SampleRun& run) {
    run.console << "\tComputing molecular diversity...\n";
    run.choose_distance(run.set.DistanceMethod, 0.0);
    run.ensure_checked();
    run.ensure_evaluated();
    bool const computed = compute_diversity(run);
    run.console << "\t\tdone ! (" << run.milliseconds() << " ms)\n";
    if (run.stopped()) {
        return;
    }
    print_molecular_heading(run);
    print_indices(run, [computed] { return computed; });
    run.start_clock();
}

void sequence_data(SampleRun& run) {
    run.start_clock();
    print_molecular_heading(run);
    run.choose_distance(run.set.DistanceMethod, run.set.GammaAValue);
    run.ensure_checked();
    run.ensure_evaluated();
    print_indices(run, [&run] { return compute_diversity(run); });
}

}  // namespace

void molecular_diversity_block(SampleRun& run) {
    if (run.set.RecessiveAllelesEM != 0) {
        run.out << "Molecular diversity indices cannot be computed \n"
                << "for recessive data\n";
        return;
    }
    run.console << "\tComputing molecular diversity indices ...\n";
    if (run.stopped_at("Computing molecular diversity indices ...")) {
        return;
    }
    run.start_clock();
    if (run.words.type == STANDARD) {
        standard_data(run);
    } else {
        sequence_data(run);
    }
    if (run.stopped()) {
        return;
    }
    estimate_thetas(run);
    run.console << "\tdone ! (" << run.milliseconds() << " ms)\n";
}

}  // namespace tov
