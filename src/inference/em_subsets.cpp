// EM estimates for sub-sets of loci: all pairs, all single loci.
#include <ostream>
#include <vector>

#include "inference/em_report.h"
#include "input/settings.h"
#include "model/popbase.h"

namespace tov {

namespace {

constexpr double bootstrap_epsilon = 1e-07;

}  // namespace

void Population::calc_subset_hapl_freq(std::ostream& out, int const* loci, TPhenDB const& ph, settings& s,
                                       int const& nbInit, int const& nbBoot, int const& maxIter,
                                       double const& epsilon) {
    TPhenDB subset;
    subset.create_temp_PhenDB(loci, ph);
    TPopHaploDB estimates;
    int solutions = 0;
    double F = 0.0;
    double const lnL = calc_ML_hapl_freq_hill95_LD(subset, estimates, s, solutions, 0, F, nullptr, nullptr, 0, nbInit,
                                                   maxIter, epsilon);
    if (*s.is_stop()) return;
    calc_sd_hapl_freq(subset, estimates, s, s.NumInitCondBootstrapEM, nbBoot, maxIter, bootstrap_epsilon);
    std::span<int const> const chosen(loci + 1, static_cast<std::size_t>(loci[0]));
    print_subset_head(out, chosen, {sample_size(), nbInit, solutions, epsilon, lnL}, nbBoot);
    estimates.print(out, 0, s.FrequencyThreshold);
    out << "\n\n";
}

void Population::calc_all_pairs(std::ostream& out, TPhenDB const& ph, settings& s, int const& nbInit, int const& nbBoot,
                                int const& maxIter, double const& epsilon) {
    int const L = ph.num_loci();
    for (int j = 0; j < L; ++j) {
        for (int i = 0; i < j; ++i) {
            int const loci[] = {2, j, i};
            calc_subset_hapl_freq(out, loci, ph, s, nbInit, nbBoot, maxIter, epsilon);
            if (*s.is_stop()) return;
        }
    }
}

void Population::calc_all_sites(std::ostream& out, TPhenDB const& ph, settings& s, int const& nbInit, int const& nbBoot,
                                int const& maxIter, double const& epsilon) {
    int const L = ph.num_loci();
    for (int l = 0; l < L; ++l) {
        int const loci[] = {1, l};
        calc_subset_hapl_freq(out, loci, ph, s, nbInit, nbBoot, maxIter, epsilon);
        if (*s.is_stop()) return;
    }
}

}  // namespace tov
