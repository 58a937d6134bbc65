// Samples: the run of the per-sample analyses, and the estimate of the work that it makes.
#include <fstream>
#include <string>

#include "input/settings.h"
#include "model/sample.h"
#include "run/run_state.h"

namespace tov {

namespace {

// List of the project files that the phase sampler writes, one a sample, beside the result document.
void write_phase_batch_list(Samples const& samples, settings const& s) {
    std::string base = my_string(settings::input_file).rm_path().remove_extension().str();
    std::ofstream list(s.project_dir + base + "_KPV.tvb");
    for (int i = 1; i <= samples.NbPopulations(); ++i) list << base << "_KPV_" << i << ".tvp\n";
}

bool samples_phases(Samples const& samples, settings const& s) {
    return s.wants(task::haplotype_frequencies) && s.GibbsInferGamPhase && s.GibbsOutputGamPhase &&
           samples.GenotypicData && !samples.GameticPhase;
}

}  // namespace

void Samples::compute_stuff(settings& s) {
    if (IsEmpty()) return;
    TAlleleDB* const database = (*this)[0]->alleles ? (*this)[0]->alleles : s.alleles;
    if (database) {
        init_all_pointers(database);
        database->create_pop_freq_vector(NbPopulations());
    }
    if (samples_phases(*this, s)) write_phase_batch_list(*this, s);
    for (int i = 0; i < NbPopulations() && !*s.is_stop(); ++i) {
        Population& population = *(*this)[i];
        population.set_index(i);
        population.pooled = pooled;
        population.test_methods(s);
        ++numSamplesAnalysed;
    }
    summarise(s);
}

/// What is told of all samples together; nothing when the samples are only prepared for other analyses.
void Samples::summarise(settings& s) {
    if (s.TaskNumber == task::prepare_permutations || s.TaskNumber == task::pairwise_distances) return;
    computeNumPrivateSubstSitesPerPop(s);
    if (s.check_intrap_pop_task()) WriteSummaryStatistics(s);
    // Recessive data have no frequencies: their standard indices are refused.
    bool const frequencies = s.wants(task::standard_indices) && s.RecessiveAllelesEM == 0;
    if (s.ComputeAllAlleleFreqs && frequencies) computeAndOutputAlleFreqPerPop(s);
}

// --- Work, in arbitrary units: the scale of the progress shown ---

void Population::evaluate_work(settings* s) const {
    if (!s) return;
    double const loci = evaluate_nb_loci();
    double const pairs = loci * (loci - 1.0) / 2.0;
    double work = 0.0;
    if (s->wants(task::haplotype_frequencies) && !phase_known()) {
        double const starts =
            s->InitialConditionsEM + double{1} * s->NumBootstrapReplicatesEM * s->NumInitCondBootstrapEM;
        if (s->em_wanted) work += 100.0 * starts;
        if (s->ComputeAllAllelesEM) work += 100.0 * starts * loci;
        if (s->ComputeAllSubHaplotypesEM) work += 100.0 * starts * pairs;
    }
    if (s->wants(task::hardy_weinberg)) work += 0.001 * static_cast<double>(s->MarkovChainStepsHW) * loci;
    if (s->wants(task::linkage_disequilibrium)) {
        double const steps = static_cast<double>(s->MarkovChainStepsLD) * pairs;
        work += phase_known() ? 0.001 * steps : 100.0 * steps * s->InitialCondEMLD;
    }
    if (s->wants(task::mismatch) && (s->MismatchDemogExp || s->MismatchSpatialExp)) work += s->NumBootExpDem;
    if (s->wants(task::tajima | task::fu_fs)) work += s->NumSimulFuTest;
    if (s->wants(task::ewens_watterson)) work += s->NumIterationsNeutralityTests;
    s->add_to_do_work(work);
}

void Samples::evaluate_work(settings& s) const {
    settings::set_to_do_work(0.0);
    for (Population const* const p : populations.view()) p->evaluate_work(&s);
    double work = 0.0;
    if (s.wants(task::amova)) work += static_cast<double>(s.NumPermutationsAMOVA);
    if (s.wants(task::pairwise_fst)) work += static_cast<double>(s.NumPermutationsFST);
    if (s.wants(task::exact_test)) work += 0.001 * static_cast<double>(s.NumPermutPopDiff);
    if (s.wants(task::mantel)) work += static_cast<double>(s.NumPermMantel);
    settings::add_to_do_work(work);
}

}  // namespace tov
