// Tajima's and Fu's tests of a sample, with their simulations.
#include <cmath>
#include <ostream>
#include <vector>

#include "diversity/blocks.h"
#include "diversity/formula/tajima.h"
#include "diversity/neutral_simulation.h"
#include "diversity/neutrality_report.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "output/glbobj.h"
#include "output/references.h"
#include "output/table.h"
#include "run/errors.h"

namespace tov {
namespace {

constexpr int tajima_heading_length = 42;
constexpr int fu_heading_length = 47;

/// Pi, Theta(S) and Theta(Pi) of the block of molecular diversity: they return when a test is done, so that the summary
/// shows them. Without that block the values of the test stay.
class DiversityOfBlock {
public:
    explicit DiversityOfBlock(SampleRun const& run) : pop_(run.pop), restore_(run.diversity_done) {
        for (double* const field : fields()) {
            saved_.push_back(*field);
        }
    }
    ~DiversityOfBlock() {
        std::size_t i = 0;
        for (double* const field : fields()) {
            *field = restore_ ? saved_[i++] : *field;
        }
    }
    DiversityOfBlock(DiversityOfBlock const&) = delete;
    DiversityOfBlock& operator=(DiversityOfBlock const&) = delete;

private:
    std::vector<double*> fields() const {
        return {&pop_.pi_,      &pop_.sd_pi_,      &pop_.nucleotide_diversity_, &pop_.sd_nucleotide_diversity_,
                &pop_.theta_S_, &pop_.sd_theta_S_, &pop_.theta_pi_,             &pop_.sd_theta_pi_};
    }

    PopGenetics& pop_;
    bool restore_;
    std::vector<double> saved_;
};

/// Sums of a statistic over the replicates.
class ReplicateSums {
public:
    void add(double x) {
        sum_ += x;
        squares_ += x * x;
    }
    /// @param no_variance  set when there are replicates but no positive variance.
    [[nodiscard]] ReplicateMoments moments(int m, bool& no_variance) const {
        ReplicateMoments r;
        r.mean = sum_ / m;
        if (m > 1) {
            double const variance = (squares_ - sum_ * sum_ / m) / (m - 1);
            no_variance = no_variance || !(variance > 0.0);
            r.sd = variance > 0.0 ? std::sqrt(variance) : 0.0;
        }
        return r;
    }

private:
    double sum_ = 0.0;
    double squares_ = 0.0;
};

/// Runs `one` for each replicate. @return 0 when the user stopped.
template <class One>
bool run_replicates(SampleRun const& run, int replicates, One&& one) {
    for (int i = 1; i <= replicates; ++i) {
        if (run.stopped()) {
            return false;
        }
        one();
        if (i % 50 == 0) {
            settings::inc_work_done(1);
            settings::print_message();
            if (run.stopped()) {
                return false;
            }
        }
    }
    return true;
}

Mut_Type mutation_type(SampleRun const& run) { return run.words.type == RFLP ? MUT_BINARY : MUT_NUCLEOTIDES; }

/// Restriction data report it, others don't.
void report_missing_variance(SampleRun const& run, bool no_variance, char const* function) {
    if (no_variance && run.words.type == RFLP) {
        E.error(ErrorType::Warning, function, 180);
    }
}

/// Replicates to run; a sample without usable sites has none.
int replicates_of(SampleRun const& run) { return run.pop.nb_usable_loci() > 0 ? run.set.NumSimulFuTest : 0; }

/// Checked and evaluated sample, its matrix of pairwise differences, and Pi. @return whether there is one.
bool compute_pi(SampleRun& run, SiteWeights const& weights) {
    run.pop.set_distance({0, 0.0, weights});
    run.ensure_checked();
    run.ensure_evaluated();
    if (run.pop.compute_distance_matrix(nullptr, &run.set, 0) == 0) {
        return false;
    }
    run.pop.compute_molecular_diversity(run.set);
    return true;
}

// --- Tajima's test ---

/// Replicates of D, stored and printed, also at the end of the batch row. @return whether they were run to their end.
bool simulate_tajima(SampleRun& run, SiteWeights const& weights, TabRow& row) {
    PopGenetics& pop = run.pop;
    int const replicates = replicates_of(run);
    if (replicates < 1) {
        return false;
    }
    double const D_obs = pop.tajimaD();
    TajimaTerms const terms = tajima_terms(run.copies(), SquaredTerms::inverse_twice);
    ReplicateSums thetas;
    ReplicateSums values;
    int not_above = 0;
    int not_positive = 0;
    NeutralSimulation simulation(pop, run.set, mutation_type(run), pop.thetaS(), weights);
    bool const complete = run_replicates(run, replicates, [&] {
        SimulatedSample const sample = simulation.next_sites();
        double const D = fast_tajima_d(terms, sample.pi, sample.sites).D;
        not_above += D <= D_obs ? 1 : 0;
        not_positive += D <= 0.0 ? 1 : 0;
        thetas.add(terms.a1 > 0.0 ? sample.sites / terms.a1 : 0.0);
        values.add(D);
    });
    if (!complete) {
        return false;
    }
    pop.p_tajima_D_ = static_cast<double>(not_above) / replicates;
    bool no_variance = false;
    TajimaSimulationReport report;
    report.replicates = replicates;
    report.theta_S = pop.thetaS();
    report.theta = thetas.moments(replicates, no_variance);
    report.D = values.moments(replicates, no_variance);
    report.p = pop.pTajimaD();
    report_missing_variance(run, no_variance, "PopulRFLP::test_methods#Tajima's test()");
    print_tajima_simulation(run.out, report);
    row << report.p << static_cast<double>(not_positive) / replicates << replicates;
    return true;
}

// --- Fu's test ---

void store_no_fs(PopGenetics& pop) {
    pop.p_fus_FS_ = -1.0;
    pop.fus_FS_ = 0.0;
}

/// Replicates of Fs, stored and printed, also at the end of the batch row. @return whether they were run to their end.
bool simulate_fu(SampleRun& run, SiteWeights const& weights, TabRow& row) {
    PopGenetics& pop = run.pop;
    int const replicates = replicates_of(run);
    if (replicates < 1) {
        return false;
    }
    double const Fs_obs = pop.fusFS();
    ReplicateSums thetas;
    ReplicateSums alleles;
    int not_above = 0;
    int not_positive = 0;
    NeutralSimulation simulation(pop, run.set, mutation_type(run), pop.thetaPi(), weights);
    bool const complete = run_replicates(run, replicates, [&] {
        SimulatedSample const sample = simulation.next_haplotypes();
        double Fs = 0.0;
        pop.Fu_Fs(sample.pi, sample.haplotypes, Fs, false);
        not_above += Fs <= Fs_obs ? 1 : 0;
        not_positive += Fs <= 0.0 ? 1 : 0;
        thetas.add(sample.pi);
        alleles.add(sample.haplotypes);
    });
    if (!complete) {
        return false;
    }
    pop.p_fus_FS_ = static_cast<double>(not_above) / replicates;
    bool no_variance = false;
    FuSimulationReport report;
    report.replicates = replicates;
    report.theta = thetas.moments(replicates, no_variance);
    report.alleles = alleles.moments(replicates, no_variance);
    report.p = pop.pFusFS();
    report_missing_variance(run, no_variance, "PopulRFLP::test_methods#Fu's test()");
    print_fu_simulation(run.out, report);
    row << report.p << static_cast<double>(not_positive) / replicates << replicates;
    return true;
}

/// The observed Fs, stored, printed and appended to the batch row. @return whether there is one to compare replicates
/// with.
bool observed_fu(SampleRun& run, int k, bool checks_definition, TabRow& row) {
    PopGenetics& pop = run.pop;
    int const n = run.copies();
    double Fs = 0.0;
    bool const finite = pop.Fu_Fs(pop.thetaPi(), k, Fs, true) != 0;
    pop.fus_FS_ = Fs;
    double const expected = PopGenetics::k_est(pop.thetaPi(), n);
    print_fu_sample(run.out, {checks_definition, pop.nb_original_haplotypes, k, pop.thetaPi(), expected, Fs});
    row << n << k << pop.thetaPi() << expected << Fs;
    return finite || Fs != 0.0;  // an infinite Fs can be compared, a missing one can't
}

}  // namespace

void tajima_block(SampleRun& run) {
    if (run.refuse_unknown_phase("Tajima's test")) {
        return;
    }
    sample_heading(run.out, "Tajima's test of selective neutrality", run.name(), tajima_heading_length);
    print_references(run.out, {"tajima1989a"});
    if (!run.words.refused_data.empty()) {
        run.out << "Tajima's test is not possible for " << run.words.refused_data << '\n';
        return;
    }
    if (run.stopped_at("Testing neutrality: Tajima's test ...")) {
        return;
    }
    run.console << "\n\t\tComputing Tajima's D ...\n";
    DiversityOfBlock const keep(run);
    SiteWeights const weights{run.set.TransitionWeight, run.set.TranversionWeight, 0.0};
    if (!compute_pi(run, weights)) {
        return;
    }
    PopGenetics& pop = run.pop;
    int const n = run.copies();
    int const S = pop.segregating_sites();
    pop.theta_S(n, S);
    pop.tajimaD(n, pop.pi(), S);
    pop.tajima_S_ = S;
    pop.tajima_pi_ = pop.pi();
    print_tajima_sample(run.out, {n, S, pop.pi(), pop.tajimaD()});
    TabRow row = batch_row(ofs_tajima, settings::input_file, run.name());
    row << n << S << pop.thetaS() << pop.pi() << pop.tajimaD() << pop.pTajimaD();
    if (!simulate_tajima(run, weights, row)) {
        run.out << "\n\n";
    }
}

void fu_block(SampleRun& run) {
    PopGenetics& pop = run.pop;
    if (run.refuse_unknown_phase("Fu's Fs test")) {
        store_no_fs(pop);
        return;
    }
    sample_heading(run.out, "Fu's Fs test of selective neutrality", run.name(), fu_heading_length);
    print_references(run.out, {"fu1997"});
    if (!run.words.refused_data.empty()) {
        run.out << "Fu's Fs test is not possible for " << run.words.refused_data << '\n';
        return;
    }
    store_no_fs(pop);
    if (run.stopped_at("Testing neutrality: Fu's Fs test ...")) {
        return;
    }
    if (!(pop.nb_genes() > 1.0)) {
        run.out << "Fu's Fs test cannot be computed if only one gene in sample\n";
        return;
    }
    run.start_clock();
    run.console << "\t\tComputing BMat ...";
    if (PopGenetics::get_B_num_mat() == 0) {
        run.console << "\t\tFile not found... skipping task !\n";
        return;
    }
    run.console << "\tPerforming Fu's Fs neutrality test ...";
    DiversityOfBlock const keep(run);
    bool const checks_definition = run.set.InferHaplotypeDefinitionFromDistanceMatrix != 0;
    int const k = checks_definition ? run.frequencies_of_real_haplotypes().GetItemsInContainer() : pop.nb_haplotypes();
    SiteWeights const weights{run.set.TransitionWeight, run.set.TranversionWeight, run.set.DeletionWeight};
    if (!compute_pi(run, weights)) {
        return;
    }
    pop.theta_pi(pop.pi());
    if (k < 2) {
        print_fu_single_allele(run.out, run.copies(), k);
    } else {
        TabRow row = batch_row(ofs_fu_fs, settings::input_file, run.name());
        if (!observed_fu(run, k, checks_definition, row) || !simulate_fu(run, weights, row)) {
            row << pop.pFusFS();
        }
    }
    run.console << "\tdone ! (" << run.milliseconds() << " ms)\n";
}

}  // namespace tov
