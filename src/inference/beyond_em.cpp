// Haplotype frequencies of a sample: the zipper EM, the one-pass EM, sub-sets of loci, and known haplotypes.
#include "inference/beyond_em.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numeric>
#include <ostream>

#include "base/random.h"
#include "diversity/popgen.h"
#include "inference/association_tables.h"
#include "inference/em_report.h"
#include "input/settings.h"
#include "model/hapdef.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr int stopped_by_user = -1000;

bool stopped_at(settings& s, std::string_view message) {
    settings::set_message(message);
    settings::print_message();
    return *s.is_stop() != 0;
}

}  // namespace

// --- Zipper ---

std::vector<int> zipper_order(int loci, bool random) {
    std::vector<int> order(static_cast<std::size_t>(std::max(0, loci)));
    std::iota(order.begin(), order.end(), 0);
    if (!random) return order;
    for (int t = loci - 1; t >= 1; --t) {
        auto const j = static_cast<std::size_t>(t * uniform());
        std::swap(order[static_cast<std::size_t>(t)], order[j]);
    }
    return order;
}

namespace {

// One order of the loci, from the first window to the last.
class Zipper {
public:
    Zipper(Population& sample, TPhenDB const& list, settings& s, std::vector<int> const& order, int window)
        : sample_(sample), list_(list), set_(s), order_(order), window_(window), flags_(order.size(), 0) {}

    /// @return the last stage; its list is null when the user stopped it.
    ZipperStage run() {
        ZipperStage stage;
        int const stages = static_cast<int>(order_.size()) / window_;
        for (int t = 0; t < stages; ++t) {
            std::vector<int> before = flags_;
            for (int k = 0; k < window_; ++k) flags_[static_cast<std::size_t>(locus(t * window_ + k))] = 1;
            ZipperStage next = grow(t > 0 ? stage.pool.get() : nullptr, before);
            if (*set_.is_stop()) return {};
            stage = std::move(next);
        }
        return stage;
    }
    [[nodiscard]] std::vector<int> const& flags() const { return flags_; }

private:
    [[nodiscard]] int locus(int position) const { return order_[static_cast<std::size_t>(position)]; }

    ZipperStage grow(TPopHaploDB* previous, std::vector<int>& previous_flags) {
        ZipperStage stage{std::make_unique<TPhenDB>(), std::make_unique<TPopHaploDB>(), 0.0, 0};
        stage.list->build_sub_PhenDB(flags_.data(), list_);
        double F = set_.EMInbreedingFixedVal;
        stage.ln_likelihood = sample_.calc_ML_hapl_freq_hill95_LD(
            *stage.list, *stage.pool, set_, stage.solutions, set_.EMEstimateInbreedingCoeff, F, previous,
            previous_flags.data(), 0, set_.InitialConditionsEM, set_.MaximumNumOfIterationsEM, set_.EpsilonValue);
        return stage;
    }

    Population& sample_;
    TPhenDB const& list_;
    settings& set_;
    std::vector<int> const& order_;
    int window_;
    std::vector<int> flags_;
};

}  // namespace

ZipperResult run_zipper(Population& sample, TPhenDB const& list, settings& s) {
    ZipperResult best;
    int const loci = list.num_loci();
    bool const random = s.EMNumZipRandOrders != 0;
    best.window = std::min(std::max(s.EMWinSize, 1), std::max(loci, 1));
    best.orders = random ? std::max(1, s.EMNumZipRandOrders) : 1;
    for (int o = 0; o < best.orders; ++o) {
        std::vector<int> order = zipper_order(loci, random);
        Zipper zipper(sample, list, s, order, best.window);
        ZipperStage stage = zipper.run();
        if (!stage.list) {
            best.stopped = true;
            return best;
        }
        if (o > 0 && !(stage.ln_likelihood > best.stage.ln_likelihood)) continue;
        best.stage = std::move(stage);
        best.in_window = zipper.flags();
        best.order = std::move(order);
    }
    return best;
}

// --- The task ---

namespace {

// Estimation of all haplotypes by the zipper. Returns 0, or -1000.
int estimate_by_zipper(PopGenetics& sample, settings& s) {
    std::ostream& out = s.ofs();
    ZipperResult const result = run_zipper(sample, sample.phenotypes, s);
    if (result.stopped) return stopped_by_user;
    ZipperStage const& stage = result.stage;
    print_zipper_head(out, {sample.sample_size(), s.InitialConditionsEM, stage.solutions, s.EpsilonValue,
                            stage.ln_likelihood}, result);
    if (s.EMEstimateInbreedingCoeff) print_inbreeding(out, stage.list->F);
    *_AOS_ << "\t\tdone.";
    stage.pool->print(out, 0, s.FrequencyThreshold);
    out << "\n//------------------------------------------------------\n\n";
    stage.list->printGenotypeFrequencies(out, sample.sample_size());
    return 0;
}

// Standard deviations of the pool's frequencies. Returns 0, or -1000.
int bootstrap_deviations(PopGenetics& sample, settings& s) {
    constexpr double epsilon = 1e-07;
    print_bootstrap_line(s.ofs(), s.NumBootstrapReplicatesEM);
    if (s.NumBootstrapReplicatesEM == 0) return 0;
    if (stopped_at(s, "Computing ML hapl. freq. standard deviations ...")) return stopped_by_user;
    *_AOS_ << "\t\tComputing ML haplotype frequencies standard deviations ...\n";
    sample.calc_sd_hapl_freq(sample.phenotypes, sample.pool, s, s.NumInitCondBootstrapEM, s.NumBootstrapReplicatesEM,
                             s.MaximumNumOfIterationsEM, epsilon);
    *_AOS_ << "\t\tdone !";
    return *s.is_stop() ? stopped_by_user : 0;
}

// Estimation of all haplotypes in one pass. Returns 0, or -1000.
int estimate_in_one_pass(PopGenetics& sample, settings& s) {
    std::ostream& out = s.ofs();
    sample.pool.empty();
    int solutions = 0;
    double F = s.EMInbreedingFixedVal;
    double const lnL = sample.calc_ML_hapl_freq_hill95_LD(
        sample.phenotypes, sample.pool, s, solutions, s.EMEstimateInbreedingCoeff, F, nullptr, nullptr,
        s.CompactHaplotypeDataBaseEM, s.InitialConditionsEM, s.MaximumNumOfIterationsEM, s.EpsilonValue);
    if (*s.is_stop()) return stopped_by_user;
    print_one_pass_head(out, {sample.sample_size(), s.InitialConditionsEM, solutions, s.EpsilonValue, lnL});
    if (s.EMEstimateInbreedingCoeff) print_inbreeding(out, F);
    if (bootstrap_deviations(sample, s) != 0) return stopped_by_user;
    sample.pool.print(out, 1, s.FrequencyThreshold);
    sample.phenotypes.printGenotypeFrequencies(out, sample.sample_size());
    return 0;
}

int estimate_all(PopGenetics& sample, settings& s) {
    bool const zipper = s.EMUseZipper == 1;
    bool const haplotypes = s.ComputeAllHaplotypesEM != 0;
    std::ostream& out = s.ofs();
    if (zipper && haplotypes) {
        sample.phenotypes.explode_base();
        if (estimate_by_zipper(sample, s) != 0) return stopped_by_user;
    }
    if ((!zipper || s.ComputeAllAllelesEM) && haplotypes && estimate_in_one_pass(sample, s) != 0) {
        return stopped_by_user;
    }
    if (s.ComputeAllSubHaplotypesEM) {
        if (stopped_at(s, "Computing bi-locus haplotype ML frequencies ...")) return stopped_by_user;
        print_subset_banner(out, true, s.NumBootstrapReplicatesEM);
        sample.calc_all_pairs(out, sample.phenotypes, s, s.InitialConditionsEM, s.NumBootstrapReplicatesEM,
                              s.MaximumNumOfIterationsEM, s.EpsilonValue);
    }
    if (s.ComputeAllAllelesEM && !*s.is_stop()) {
        print_subset_banner(out, false, s.NumBootstrapReplicatesEM);
        sample.calc_all_sites(out, sample.phenotypes, s, s.InitialConditionsEM, s.NumBootstrapReplicatesEM,
                              s.MaximumNumOfIterationsEM, s.EpsilonValue);
    }
    return *s.is_stop() ? stopped_by_user : 0;
}

}  // namespace

int PopGenetics::comp_gam_phase_EM(settings& s) {
    try {
        return phenotypes.IsEmpty() ? 0 : estimate_all(*this, s);
    } catch (std::bad_alloc const&) {
        E.error(ErrorType::Memory, "PopGenetics::comp_gam_phase_EM()", 0);
        return stopped_by_user;
    }
}

// --- Known haplotypes ---

void PopGenetics::calc_hapl_dat_hapl_freq(settings& s) {
    double n = 0.0;
    for (PHaploDef const* const h : haplotypes.view()) n += h->copies;
    pool.empty();
    for (PHaploDef const* const h : haplotypes.view()) {
        if (!h->haplotype || n <= 0.0) continue;
        auto entry = std::make_unique<TPopHaplotype>(h->haplotype->id);
        double const p = h->copies / n;
        entry->alleles() = *h->haplotype;
        entry->set_separator(profile.LocusSeparator);
        entry->set_freq(p);
        entry->set_sd(n < 2.0 ? 0.0 : std::sqrt(p * (1.0 - p) / (n - 1.0)));
        pool.Add(entry.release());
    }
    print_known_haplotypes_head(s.ofs(), n);
    pool.print(s.ofs(), 0, s.FrequencyThreshold);
    write_frequency_batch_rows(pop_name().str(), pool);
}

}  // namespace tov
