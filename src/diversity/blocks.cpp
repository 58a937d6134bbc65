// The analyses of one sample: their order, and what they share.
#include "diversity/blocks.h"

#include <cmath>
#include <ostream>

#include "base/timing.h"
#include "diversity/block_table.h"
#include "diversity/popdna.h"
#include "diversity/popmic.h"
#include "diversity/poprflp.h"
#include "diversity/popsta.h"
#include "input/settings.h"
#include "output/escape.h"
#include "output/style.h"
#include "run/errors.h"

namespace tov {

SampleRun::SampleRun(PopGenetics& sample, settings& s, BlockWords const& block_words)
    : pop(sample), set(s), out(s.ofs()), console(*_AOS_), words(block_words), clock_(std::clock()) {}

SampleRun::~SampleRun() = default;

void SampleRun::ensure_checked() {
    if (!checked_) {
        checked_ = true;
        pop.check_data();
    }
}

void SampleRun::ensure_evaluated() {
    if (!evaluated_) {
        evaluated_ = true;
        start_clock();
        pop.evaluate_polymorphism(set);
    }
}

int SampleRun::milliseconds() const { return milliseconds_since(clock_); }

bool SampleRun::stopped() const { return *set.is_stop() != 0; }

bool SampleRun::stopped_at(std::string_view message) {
    settings::set_message(std::string(message));
    settings::print_message();
    return stopped();
}

void SampleRun::choose_distance(int method, double gamma_a) {
    pop.set_distance({method, gamma_a, {set.TransitionWeight, set.TranversionWeight, set.DeletionWeight}});
}

bool SampleRun::haplotypes_known() const { return pop.phase_known(); }

bool SampleRun::refuse_unknown_phase(std::string_view analysis, bool short_form) {
    if (haplotypes_known()) {
        return false;
    }
    out << analysis << " cannot be computed \n";
    if (!short_form) {
        out << "in case of genotypic data with unknown gametic phase\n\n"
            << "We hope to change it in a future release...\n";
    }
    return true;
}

MY_TISArrayAsVector<AHaplFreq>& SampleRun::frequencies_of_real_haplotypes() {
    if (!real_frequencies_) {
        real_frequencies_ = std::make_unique<MY_TISArrayAsVector<AHaplFreq>>();
        ensure_checked();
        ensure_evaluated();
        pop.set_distance({0, 0.0, SiteWeights{}});
        if (pop.compute_distance_matrix(nullptr, &set, 0) != 0) {
            pop.check_hapl_freqs(pop.get_dist_mat(), *real_frequencies_);
        }
        pop.nb_real_haplotypes_ = static_cast<int>(real_frequencies_->GetItemsInContainer());
    }
    return *real_frequencies_;
}

bool SampleRun::shows_original_number() const {
    return set.InferHaplotypeDefinitionFromDistanceMatrix != 0 && !pop.is_genotypic();
}

std::string_view SampleRun::name() const { return pop.pop_name(); }

int SampleRun::copies() const { return static_cast<int>(std::min(pop.nb_genes(), 2147483647.0)); }

namespace {

void print_sample_banner(SampleRun& run) {
    run.pop.print_population_anchor(2, run.set, run.pop.pooled != 0 ? "group" : "samp");
    run.out << '\n' << rule{79, '='} << "\n== Sample : \t" << doc_text(run.name()) << "\n\n" << rule{79, '='} << "\n\n";
}

/// The preparation for permutations of the structure analyses: allele vectors alone.
void prepare_allele_vectors(PopGenetics& sample) {
    if (sample.profile.RecessiveData != 0) {
        sample.make_all_blanks(sample.profile.LocusSeparator);
    }
    sample.build_allele_vectors(sample.profile.LocusSeparator);
}

}  // namespace

void run_task_blocks(PopGenetics& sample, settings& set, BlockWords const& words) {
    sample.set_recessive_loci(set.RecessiveAllelesEM);
    if (set.TaskNumber == task::prepare_permutations) {
        prepare_allele_vectors(sample);
        return;
    }
    SampleRun run(sample, set, words);
    if (set.check_intrap_pop_task() && set.print_sample_banner) {
        print_sample_banner(run);
    }
    for (BlockRow const& row : block_table) {
        if (set.wants(row.task)) {
            row.run(run);
            if (run.stopped()) {
                return;
            }
        }
    }
}

void PopulDNA::test_methods(settings& s) { run_task_blocks(*this, s, dna_words); }
void PopulRFLP::test_methods(settings& s) { run_task_blocks(*this, s, rflp_words); }
void PopulMicrosat::test_methods(settings& s) { run_task_blocks(*this, s, microsat_words); }
void PopulStandard::test_methods(settings& s) { run_task_blocks(*this, s, standard_words); }

}  // namespace tov
