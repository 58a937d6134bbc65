// Amova::CalcPairDist: distances between all pairs of samples and their tests.
#include "structure/pairdist.h"

#include <array>
#include <ctime>
#include <ostream>

#include "base/dmat.h"
#include "base/scoped_swap.h"
#include "base/timing.h"
#include "demography/broyden.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "structure/amova.h"
#include "structure/formula/pairwise.h"
#include "structure/mantel.h"
#include "structure/pairdist_report.h"
#include "structure/pairdist_tables.h"

namespace tov {

namespace {

std::unique_ptr<PairwiseResults> latest;

/// Which quantities a run over pairs computes.
struct PairTasks {
    bool fst = false;         ///< FST and mean differences
    bool test = false;        ///< their permutation test
    bool delta_mu = false;
    bool divergence = false;  ///< divergence times for unequal sizes
    bool individuals = false; ///< whole individuals are shuffled
};

PairTasks tasks_of(settings& set, bool phase_known) {
    bool const wanted = set.ComputePairwiseFST != 0 || set.PrintMissIntermatchs != 0;
    // kept on purpose: the key is overwritten.
    set.TestSignificancePairewiseFST = set.NumPermutationsFST >= 1 && wanted ? 1 : 0;
    PairTasks tasks;
    tasks.delta_mu = set.ComputeDeltaMuSqr != 0;
    tasks.divergence = set.UnequalPopSizeDiv != 0;
    tasks.fst = wanted && (set.wants(task::pairwise_fst) || tasks.delta_mu);
    tasks.test = set.TestSignificancePairewiseFST != 0;
    tasks.individuals = !phase_known;
    return tasks;
}

/// Haplotype numbers of a sample's gene copies, each entry as many times as its count.
std::vector<int> gene_copies_of(Population const& population, int known, int listed) {
    std::vector<int> genes;
    for (int k = 0; k < population.nb_haplotypes(); ++k) {
        PHaploDef const& entry = population.haplotype(k);
        genes.insert(genes.end(), std::max(entry.copies, 0), entry.haplotype->matrix_index);
    }
    SetUpVectorsAfterPermutation(population, genes, known, listed);
    return genes;
}

double delta_mu_square(std::vector<double> const& a, std::vector<double> const& b) {
    double sum = 0.0;
    int loci = 0;
    for (std::size_t locus = 0; locus < a.size() && locus < b.size(); ++locus) {
        if (a[locus] != 0.0 && b[locus] != 0.0) {
            sum += (a[locus] - b[locus]) * (a[locus] - b[locus]);
            ++loci;
        }
    }
    return loci > 0 ? sum / loci : 0.0;
}

/// tau, k and theta0 of one arrangement, or none.
struct DivergenceEstimate {
    bool converged = false;
    double tau = 0.0, k = 0.0, theta0 = 0.0;
    bool tried = false;
};

DivergenceEstimate divergence_of(PairStatistics const& s) {
    DivergenceEstimate e;
    if (s.PiX == 0.0 || s.PiY == 0.0 || s.PiXY == 0.0) {
        return e;
    }
    TSolveDivTimes solver(s.PiX, s.PiY, s.PiXY);
    e.tried = true;
    e.converged = !solver.solve(50);
    e.tau = solver.T();
    e.k = solver.k();
    e.theta0 = solver.theta0();
    return e;
}

/// Permuted values at or above the observed ones; these comparisons have no tolerance.
struct PairCounts {
    int pixy = 0, corrected = 0, solved = 0, tau = 0, k = 0, theta0 = 0;
};

}  // namespace

PairwiseResults const* last_pairwise_results() noexcept { return latest.get(); }
void forget_pairwise_results() noexcept { latest.reset(); }

namespace {

/// One pair at a time.
class PairRun {
public:
    PairRun(settings& set, PairTasks const& tasks, PairwiseResults& results) : set_(set), tasks_(tasks), r_(results) {}

    enum class End { done, stopped, no_copies };

    End run(int i, int j, std::vector<int> const& first, std::vector<int> const& second,
            PairDistances const& distances) {
        PairSums sums(distances, first, second);
        a_ = static_cast<int>(first.size());
        b_ = static_cast<int>(second.size());
        PairStatistics const observed = pair_statistics(a_, b_, sums.compute(sums.genes()));
        if (observed.n == 0.0) {
            return End::no_copies;
        }
        store(i, j, observed);
        DivergenceEstimate estimate;
        if (tasks_.divergence) {
            estimate = divergence_of(observed);
            store(i, j, estimate);
        }
        return !tasks_.test || test(i, j, sums, observed, estimate) ? End::done : End::stopped;
    }

private:
    void store(int i, int j, PairStatistics const& s) {
        r_.fst.set_data(s.FST, i, j);
        r_.va.set_data(s.Va, i, j);
        r_.differences(i, i) = s.PiX;
        r_.differences(j, j) = s.PiY;
        r_.differences(i, j) = s.PiXY;
        r_.differences(j, i) = s.corrected;
    }

    void store(int i, int j, DivergenceEstimate const& e) {
        DivergenceMatrices& d = *r_.divergence;
        d.converged.set_data(e.converged ? 1.0 : 0.0, i, j);
        if (e.tried) {
            d.tau.set_data(e.tau, i, j);
            d.k.set_data(e.k, i, j);
            d.theta0.set_data(e.theta0, i, j);
        }
    }

    bool test(int i, int j, PairSums& sums, PairStatistics const& observed, DivergenceEstimate const& estimate) {
        // Hundreds of arrangements may have no solution: the log tells of each, the document keeps its tables.
        ScopedSwap<std::ostream*> const quiet_document(E.results, nullptr);
        double const p1 = 1.0 / observed.n;
        double const p2 = -observed.c / observed.n;
        PairCounts counts;
        auto const statistic = [&](PairOfSums const& permuted) {
            PairStatistics const s = pair_statistics(a_, b_, permuted);
            counts.pixy += s.PiXY >= observed.PiXY;
            counts.corrected += s.corrected >= observed.corrected;
            if (tasks_.divergence) {
                count(counts, divergence_of(s), estimate);
            }
            return p2 * s.W + p1 * s.ssd_among;
        };
        // The solver of divergence times draws too, so its permutations can't be drawn ahead.
        PairPermutations permutations(sums, a_, tasks_.individuals, !tasks_.divergence, statistic);
        auto const poll = [this] {
            settings::inc_work_done(1.0);
            settings::print_message();
            return *set_.is_stop() != 0;
        };
        // kept on purpose: one more in the denominator than permutations, and the observed value is not counted.
        PermutationOutcome const outcome = permutation_p<double>(
            r_.plan, observed.Va, PermutationTail::above, r_.plan.permutations + 1, permutations, poll,
            [](double) {});
        if (outcome.stopped) {
            return false;
        }
        r_.p_fst.set_data(outcome.p, i, j);
        r_.sd_fst.set_data(outcome.sd, i, j);
        double const rounds = r_.plan.permutations;
        r_.p_pixy.set_data(counts.pixy / rounds, i, j);
        r_.p_corrected.set_data(counts.corrected / rounds, i, j);
        if (tasks_.divergence) {
            auto const share = [&](int count) { return counts.solved > 0 ? count / double(counts.solved) : 0.0; };
            r_.divergence->p_tau.set_data(share(counts.tau), i, j);
            r_.divergence->p_k.set_data(share(counts.k), i, j);
            r_.divergence->p_theta0.set_data(share(counts.theta0), i, j);
        }
        return true;
    }

    static void count(PairCounts& counts, DivergenceEstimate const& e, DivergenceEstimate const& observed) {
        if (e.converged) {
            ++counts.solved;
            counts.tau += e.tau >= observed.tau;
            counts.k += e.k >= observed.k;
            counts.theta0 += e.theta0 >= observed.theta0;
        }
    }

    settings& set_;
    PairTasks tasks_;
    PairwiseResults& r_;
    int a_ = 0, b_ = 0;
};

std::vector<std::vector<double>> allele_sizes(Samples const& samples) {
    std::vector<std::vector<double>> sizes;
    for (int i = 0; i < samples.NbPopulations(); ++i) {
        auto* const population = dynamic_cast<PopGenetics*>(samples[i]);
        if (population != nullptr) {
            population->computeMeanAlleleSizes();
            sizes.push_back(population->mean_allele_sizes());
        } else {
            sizes.emplace_back();
        }
    }
    return sizes;
}

}  // namespace

int Amova::CalcPairDist() {
    settings& set = view_.set;
    Samples const& samples = *view_.samples;
    int const R = samples.NbPopulations();
    bool const phase_known = samples.GenotypicData == 0 || samples.GameticPhase != 0;
    PairTasks tasks = tasks_of(set, phase_known);
    if (!phase_known && set.RecessiveAllelesEM != 0) {
        set.ofs() << "Population pairwise FSTs not possible with recessive Data";
        return 0;
    }
    bool const mantel = set.wants(task::mantel);
    if (mantel && !view_.mantel->has_custom_Y()) {
        tasks.fst = true;
    }
    auto results = std::make_unique<PairwiseResults>(R);
    results->plan = PermutationPlan(set.NumPermutationsFST < 1 ? 1 : set.NumPermutationsFST);
    results->tested = tasks.test;
    results->has_fst = tasks.fst;
    results->has_delta_mu = tasks.delta_mu;
    if (tasks.divergence) {
        results->divergence = std::make_unique<DivergenceMatrices>(R);
    }
    if (*set.is_stop()) {
        return 0;
    }
    settings::set_message("Computing pairwise distances...");
    settings::print_message();
    std::clock_t const start = std::clock();
    std::vector<std::vector<int>> genes;
    for (int i = 0; i < R && tasks.fst; ++i) {
        genes.push_back(gene_copies_of(*samples[i], distances_.size(), view_.haplotypes->size()));
    }
    auto const sizes = tasks.delta_mu ? allele_sizes(samples) : std::vector<std::vector<double>>();
    PairRun pairs(set, tasks, *results);
    for (int i = 0; i < R; ++i) {
        for (int j = i + 1; j < R; ++j) {
            if (tasks.delta_mu) {
                results->delta_mu.set_data(delta_mu_square(sizes[i], sizes[j]), i, j);
            }
            if (!tasks.fst) {
                continue;
            }
            PairRun::End const end = pairs.run(i, j, genes[i], genes[j], distances_);
            if (end == PairRun::End::no_copies) {
                E.error(ErrorType::Error, "Amova::CalcPairDist()", 105);
            }
            if (end != PairRun::End::done) {
                return 0;
            }
        }
    }
    int const elapsed = milliseconds_since(start);
    *_AOS_ << "\t\t" << elapsed << " ms to compute pairwise differences"
           << (tasks.test ? " and test significance" : "") << "\n";
    if (set.wants(task::pairwise_fst) || tasks.delta_mu) {
        print_pairwise_distances(view_, *results);
    }
    if (tasks.fst) {
        write_pairwise_tables(*results, samples, settings::input_file);
    }
    set.ofs() << std::endl;
    latest = std::move(results);
    if (mantel) {
        std::vector<Population*> populations;
        for (int i = 0; i < R; ++i) {
            populations.push_back(samples[i]);
        }
        view_.mantel->do_mantel_test(latest->fst, populations, view_, static_cast<int>(set.NumPermMantel));
    }
    return 1;
}

}  // namespace tov
