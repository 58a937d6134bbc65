// The analyses of one sample, one function a task block, in the order of their run.
#pragma once

#include <ctime>
#include <iosfwd>
#include <memory>
#include <string_view>

#include "base/arrays.h"
#include "diversity/block_words.h"

namespace tov {

class AHaplFreq;
class PopGenetics;
class settings;

/// One run of the blocks over one sample: what they share, and what is done once only.
class SampleRun {
public:
    SampleRun(PopGenetics& sample, settings& set, BlockWords const& block_words);
    ~SampleRun();
    SampleRun(SampleRun const&) = delete;
    SampleRun& operator=(SampleRun const&) = delete;

    /// Runs check_data() unless it has run.
    void ensure_checked();
    /// Runs evaluate_polymorphism() unless it has run, and then starts the block's clock anew.
    void ensure_evaluated();
    void start_clock() { clock_ = std::clock(); }
    [[nodiscard]] int milliseconds() const;

    /// Shows a progress message. @return whether the user has stopped the run: the block then returns at once.
    [[nodiscard]] bool stopped_at(std::string_view message);
    [[nodiscard]] bool stopped() const;

    /// Distance of the next matrix, with the three weights of the settings.
    void choose_distance(int method, double gamma_a);
    /// For a genotypic sample with unknown phase: prints "<analysis> cannot be computed \n" and, unless `short_form`,
    /// two lines that tell why. @return whether it did.
    bool refuse_unknown_phase(std::string_view analysis, bool short_form = false);
    /// Frequencies of the haplotypes that differ by their pairwise differences; computed once a run. Overwrites the
    /// sample's matrix.
    MY_TISArrayAsVector<AHaplFreq>& frequencies_of_real_haplotypes();
    /// Haplotypes, or genotypes with known phase.
    [[nodiscard]] bool haplotypes_known() const;
    /// The number of distinct haplotypes before equal ones were merged is printed too.
    [[nodiscard]] bool shows_original_number() const;
    [[nodiscard]] std::string_view name() const;
    /// Gene copies, truncated.
    [[nodiscard]] int copies() const;

    PopGenetics& pop;             // borrowed
    settings& set;                // borrowed
    std::ostream& out;            // borrowed: the result document
    std::ostream& console;        // borrowed: the log
    BlockWords const& words;      // borrowed
    bool diversity_done = false;  ///< the block of molecular diversity has left its values in the sample

private:
    bool checked_ = false;
    bool evaluated_ = false;
    std::clock_t clock_ = 0;
    std::unique_ptr<MY_TISArrayAsVector<AHaplFreq>> real_frequencies_;  // owned
};

// --- The blocks; each has a file of its own (blocks_*.cpp) ---

void standard_indices_block(SampleRun& run);
void molecular_diversity_block(SampleRun& run);
void mismatch_block(SampleRun& run);
void haplotype_frequency_block(SampleRun& run);
void linkage_disequilibrium_block(SampleRun& run);
void hardy_weinberg_block(SampleRun& run);
void distance_matrix_block(SampleRun& run);
void tajima_block(SampleRun& run);
void ewens_watterson_block(SampleRun& run);
void chakraborty_block(SampleRun& run);
void fu_block(SampleRun& run);

/// Runs the blocks of all tasks that are on, in their order, until a stop.
void run_task_blocks(PopGenetics& sample, settings& set, BlockWords const& words);

}  // namespace tov
