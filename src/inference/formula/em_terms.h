// EM estimation of haplotype frequencies from genotypes of unknown phase, over flat arrays of genotype pairs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <vector>

namespace tov {

/// ln likelihood of a sample in which some phenotype has no probability.
inline constexpr double impossible_ln_likelihood = -static_cast<double>(std::numeric_limits<float>::max());

/// Two likelihoods nearer than this count as one solution.
inline constexpr double same_solution = 1e-06;

/// One genotype: the indices of its two haplotypes.
struct HaplotypePair {
    std::int32_t first;
    std::int32_t second;
};

/// Phenotypes, each with the genotypes that may underlie it. clear() keeps the memory, so that a list refilled with no
/// more than before allocates nothing.
struct EmData {
    /// Empties the lists; the next haplotypes have the indices 0 .. n - 1, none of them with a blank.
    void clear(int n = 0);
    /// @return the index of a further haplotype.
    int add_haplotype(bool has_blank = false);
    /// Begins a phenotype of `n` individuals; the pairs that follow are its genotypes.
    ///
    /// @param is_homozygote  its only genotype is twice one haplotype and has the probability p^2 (with inbreeding
    ///                       (1 - F) p^2 + F p).
    void add_phenotype(double n, bool is_homozygote);
    /// Adds a genotype to the phenotype begun last; both indices in [0, haplotypes()).
    void add_pair(int first, int second);

    [[nodiscard]] int haplotypes() const noexcept { return static_cast<int>(blank.size()); }
    [[nodiscard]] int phenotypes() const noexcept { return static_cast<int>(count.size()); }

    std::vector<HaplotypePair> pairs;     ///< G genotypes, phenotype by phenotype
    std::vector<std::int32_t> end;        ///< P: phenotype i owns pairs[end[i - 1]] .. pairs[end[i] - 1], end[-1] = 0
    std::vector<double> count;            ///< P numbers of individuals
    std::vector<char> homozygote;         ///< P flags
    std::vector<char> blank;              ///< H flags: haplotypes that hold a blank allele
    double individuals = 0.0;             ///< sum of the counts; the sample has twice as many gene copies
    bool equal_pairs = false;             ///< some genotype of a phenotype that is no homozygote has first = second
};

/// How an estimation runs.
struct EmOptions {
    int starts = 1;              ///< random initial conditions; below 1 counts as 1
    int max_iterations = 1000;   ///< of one run
    double epsilon = 1e-7;       ///< a run ends when the frequencies' summed absolute change is below it
    bool inbreeding = false;
    double F = 0.0;              ///< inbreeding coefficient; 0 with inbreeding: to be estimated

    [[nodiscard]] bool estimates_F() const noexcept { return inbreeding && F == 0.0; }
};

/// What an estimation leaves behind, and the memory that it works in; may serve any number of estimations.
struct EmWork {
    std::vector<double> freq;        ///< H frequencies of the run in progress
    std::vector<double> gain;        ///< H gene copies gained in the iteration in progress
    std::vector<double> ibd;         ///< H gene copies identical by descent, with inbreeding only
    std::vector<double> prob;        ///< G probabilities of the genotypes in the last E-step
    std::vector<double> phen_proba;  ///< P probabilities of the phenotypes in the last E-step
    std::vector<double> best_freq;   ///< H frequencies of the best run; those of the last one when none was possible
    std::vector<double> solutions;   ///< distinct ln likelihoods, in order of appearance
    std::vector<int> iterations;     ///< by run
    double F = 0.0;                  ///< inbreeding coefficient of the run in progress
};

/// Result of an estimation.
struct EmResult {
    double ln_likelihood = impossible_ln_likelihood;  ///< of the best run, the first of equal ones
    double last_ln_likelihood = impossible_ln_likelihood;  ///< of the last run
    double F = 0.0;                                   ///< of the best run; the given value when none was possible
    int solutions = 0;                                ///< ln likelihoods that differ by 1e-06 or more
    bool stopped = false;                             ///< ended between two runs
};

/// Random frequencies: 1 + range u for a haplotype without blank, 1 for one with a blank, over their sum.
///
/// @param freq   receives H frequencies.
/// @param blank  H flags.
/// @return       the smallest frequency; the largest float for H = 0. Draws: one ran3 a haplotype without blank.
double random_frequencies(std::span<double> freq, std::span<char const> blank, int range);

/// Sizes the arrays of `work` for `data`, sets all probabilities to 0 and draws the start of a run.
///
/// Frequencies by random_frequencies with range 1000; F is the given value, 0 without inbreeding, or u / 3 when it is
/// estimated. Draws: those of random_frequencies, then one when F is estimated.
void em_start(EmData const& data, EmOptions const& options, EmWork& work);

/// One iteration: E-step on work.freq, then M-step into work.freq.
///
/// Probability of a genotype: 2 p q, or p^2 when both haplotypes are one; with inbreeding 2 (1 - F) p q and
/// (1 - F) p^2 + F p. A homozygote gives its haplotype 2 n copies, a phenotype with one genotype gives n to each of its
/// haplotypes, any other n prob / sum for each genotype, second haplotype first. No genotype, or no probability: none.
/// With inbreeding the copies identical by descent, n F / ((1 - F) p + F) for a homozygote, are taken from its
/// haplotype and from the total, and an estimated F is their number by individual.
///
/// @return  sum of the absolute changes of the frequencies, in order of the haplotypes.
/// Errors: none; no individuals leave frequencies of 0. Draws: none. Cost: G + P + H.
/// Source: Dempster et al. 1977; Long et al. 1995.
double em_iteration(EmData const& data, EmOptions const& options, EmWork& work) noexcept;

/// Sum of n ln(probability) over phenotypes, from the last E-step: one M-step behind the frequencies.
///
/// @return  impossible_ln_likelihood as soon as a phenotype has no probability.
[[nodiscard]] double em_ln_likelihood(EmData const& data, EmWork const& work) noexcept;

/// Asked after each run whether to go on; an empty one counts as yes.
using EmGoesOn = std::function<bool()>;

/// Runs the EM from several random starts and keeps the run of the highest ln likelihood, the first of equal ones.
///
/// @return  see EmResult; the frequencies are in work.best_freq.
/// Draws: those of em_start, start by start.
EmResult em_estimate(EmData const& data, EmOptions const& options, EmWork& work, EmGoesOn const& goes_on = {});

/// Notes `value` unless it lies within same_solution of one of `list`.
void note_solution(std::vector<double>& list, double value);

}  // namespace tov
