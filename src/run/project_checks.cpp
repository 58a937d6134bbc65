// Project: which tasks the data allow, and the conversions of the data that the tasks need.
#include <ctime>
#include <ostream>

#include "base/dmat.h"
#include "base/timing.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "run/errors.h"
#include "run/project.h"
#include "structure/mantel.h"

namespace tov {
namespace {

constexpr char function_name[] = "Project::make_run_possible()";
constexpr long least_dememorisation_steps = 500;
constexpr long default_dememorisation_steps = 1000;

void clear_task(settings& set, long bits) { set.TaskNumber &= ~bits; }

/// Frames a step by its log lines with the time it took.
template <class Step>
auto timed_step(char const* text, Step step) {
    std::clock_t const start = std::clock();
    *_AOS_ << text;
    auto const result = step();
    *_AOS_ << "\n\t\tdone in " << milliseconds_since(start) << " ms\n";
    return result;
}

}  // namespace

bool Project::phase_known_or_haplotypic() const { return !GenotypicData || GameticPhase; }

int Project::build_all_vectors(TAlleleDB& database) {
    samples_->sum_copies(*haplotypes_);
    // The individuals of genotypic data have been counted already, chromosome by chromosome.
    build_haplovects(haplotypes_->list().view(), database, LocusSeparator, !GenotypicData);
    vectorsBuilt = 1;
    return 1;
}

void Project::convertMicrosatToNumberOfRepeats() {
    if (DataType == MICROSAT) *_AOS_ << "\nSkipping microsat repeat length detection\n";
}

void Project::build_sample_vectors() {
    if (GenotypicData)
        timed_step("\t\tBuilding vectors of alleles...", [this] {
            samples_->build_all_vectors(LocusSeparator);
            return 1;
        });
    else
        build_missing_vectors();
}

int Project::build_missing_vectors() {
    if (vectorsBuilt) return 1;
    return timed_step("\t\tBuilding vectors of alleles...", [this] { return build_all_vectors(*alleles_); });
}

int Project::convert_phenotypes_and_build_vectors() {
    if (!phenToGamDone) {
        timed_step("\t\tProcessing phenotypes into pseudo-haplotypes...", [this] {
            samples_->phen_to_gam(*haplotypes_, this, settings_.get());
            return 1;
        });
        phenToGamDone = 1;
    }
    return build_missing_vectors();
}

/// Distances between haplotypes: which matrix the genetic structure analyses take. @return 1, or 0 after a report.
int Project::adapt_distance_settings() {
    settings& set = *settings_;
    if (GenotypicData && RecessiveData && GameticPhase) {
        E.error(ErrorType::Error, function_name, 138);
        return 0;
    }
    if (set.ComputeConventionalFST) set.ComputeDistanceMatrixAMOVA = 1;
    bool const no_matrix = distances_->dimension() == 0;
    if (!set.ComputeDistanceMatrixAMOVA && no_matrix) {
        *_AOS_ << "    !!!No matrix was specified in input file, Tovenia will compute it from the data\n";
        set.ComputeDistanceMatrixAMOVA = 1;
    }
    if (DataType == FREQUENCY && no_matrix && !set.ComputeConventionalFST) {
        *_AOS_ << "   !!!No molecular information is available for testing genetic structure,\n"
               << "      haplotype frequencies will be used, and conventional Fst will be computed\n";
        set.ComputeConventionalFST = 1;
        set.ComputeDistanceMatrixAMOVA = 1;
    }
    if (DataType == FREQUENCY && set.ComputeDistanceMatrixAMOVA) set.ComputeConventionalFST = 1;
    if (set.ComputeDistanceMatrixAMOVA == 1 && !vectorsBuilt && !GenotypicData && DataType != DNA && DataType != RFLP)
        return build_all_vectors(*alleles_);
    return 1;
}

void Project::adapt_markov_chains() {
    settings& set = *settings_;
    *_AOS_ << "  done!\n  check selected settings...\n";
    // kept on purpose: both messages show the value of the linkage disequilibrium test.
    auto raise = [&set](long& steps, char const* test) {
        if (steps >= least_dememorisation_steps) return;
        *_AOS_ << " Too few steps for dememorization (" << set.MarkovChainDememorisationStepsLD << ") in " << test
               << " test, setting it to 1000...\n";
        steps = default_dememorisation_steps;
    };
    raise(set.MarkovChainDememorisationStepsLD, "linkage disequilibrium");
    raise(set.MarkovChainDememorisationStepsHW, "Hardy-Weinberg disequilibrium");
    *_AOS_ << "  done!\n";
}

void Project::drop_amova_without_structure() {
    settings& set = *settings_;
    if (!set.wants(task::amova) || (!set.HaplAMOVA && !set.LocByLocAMOVA) || IsAmovaStructure()) return;
    clear_task(set, task::amova);
    for (std::ostream* out : {_AOS_, &document()})
        *out << "  An AMOVA analysis was selected and no Genetic structure\n"
             << "  is defined, AMOVA task is skipped.\n";
}

void Project::adapt_remaining_tasks() {
    settings& set = *settings_;
    if (DataType == FREQUENCY) set.InferHaplotypeDefinitionFromDistanceMatrix = 0;
    if (set.wants(task::hardy_weinberg) && set.RecessiveAllelesEM) {
        *_AOS_ << "Hardy-Weinberg disequilibrium test is not possible with recessive data\nskipping task...\n";
        clear_task(set, task::hardy_weinberg);
    }
    if ((set.EliminateRedondHaplodefs || set.InferHaplotypeDefinitionFromDistanceMatrix) &&
        phase_known_or_haplotypic()) {
        eliminate_redond_haplodef();
        if (set.ComputeDistanceMatrixAMOVA) distances_->reset();
    }
    // kept on purpose: no message says that these tests don't run on microsatellites.
    if (DataType == MICROSAT) clear_task(set, task::ewens_watterson | task::chakraborty);
    if (mantel_needs_fst()) set.TaskNumber |= task::pairwise_fst;
    if (!phase_known_or_haplotypic()) {
        set.PrintMinSpannNetworkPop = 0;
        set.PrintMinSpannNetworkGlob = 0;
        set.PrintDistanceMatrix = 0;
        set.PrintPopDistMat = 0;
        set.PrintHaplDistMat = 0;
    }
}

/// The Mantel test takes its Y from the pairwise FSTs, unless the project gives it.
bool Project::mantel_needs_fst() const { return settings_->wants(task::mantel) && !mantel_->has_custom_Y(); }

/// Samples there, blanks and allele vectors made, data consistent, phenotypes converted. @return 1, or 0 after a
/// report.
int Project::prepare_data_for_tasks() {
    settings& set = *settings_;
    samples_->init_all_pointers(alleles_.get());
    if (samples_->IsEmpty()) {
        E.error(ErrorType::Error, function_name, 123);
        return 0;
    }
    if (DataType != FREQUENCY) {
        (*samples_)[0]->make_all_blanks(LocusSeparator);
        build_sample_vectors();
    }
    if (!samples_->verify_data()) return 0;
    bool const haplotypes_of_unknown_phase =
        !GameticPhase && !set.RecessiveAllelesEM &&
        (set.wants(task::standard_indices | task::molecular_diversity) || set.DetectSelectedLoci);
    if (GenotypicData && (GameticPhase || haplotypes_of_unknown_phase)) convert_phenotypes_and_build_vectors();
    return 1;
}

int Project::make_run_possible() {
    settings& set = *settings_;
    *_AOS_ << "  Checking all selected options...\n";
    if (!GenotypicData && set.wants(task::hardy_weinberg)) {
        *_AOS_ << "     !!!Hardy-Weinberg disequilibrium test is not possible on Haplotypic data,\n"
               << "        this task will be skipped.\n";
        clear_task(set, task::hardy_weinberg);
    }
    if (!prepare_data_for_tasks()) return 0;
    if (set.wants(task::exact_test) && GenotypicData && RecessiveData && GameticPhase) {
        E.error(ErrorType::Error, function_name, 138);
        return 0;
    }
    if (set.wants(task::genotype_assignment) && !GenotypicData) {
        *_AOS_ << "   !!!The computation of the likelihood of all individuals in each\n"
               << "      population is only possible for Genotypic data \n"
               << "      skipping the task...\n";
        clear_task(set, task::genotype_assignment);
    }
    bool const needs_matrix = set.wants(task::amova | task::pairwise_fst) || mantel_needs_fst() ||
                              (DataType == FREQUENCY && set.EliminateRedondHaplodefs);
    if (needs_matrix && !adapt_distance_settings()) return 0;
    drop_amova_without_structure();
    adapt_markov_chains();
    adapt_remaining_tasks();
    _AOS_->flush();
    return 1;
}

}  // namespace tov
