// Estimation of expansions: fit, simulation and bootstrap.
#include "demography/expdem.h"

#include <algorithm>
#include <fstream>
#include <ostream>

#include "demography/spatialexp.h"
#include "input/settings.h"
#include "output/table_columns.h"
#include "run/errors.h"
#include "simulation/genealgy.h"

namespace tov {

namespace {

/// Starts the table of estimates in the working directory when it does not exist.
void begin_estimates_table() {
    std::ofstream table("glob_res.xl", std::ios::app);
    if (table && table.tellp() == std::streampos(0)) {
        table << head_of(table_text("glob_res.xl"));
    }
}

double mean_of(std::span<double const> y) {
    double sum = 0.0;
    for (std::size_t c = 0; c < y.size(); ++c) {
        sum += static_cast<double>(c) * y[c];
    }
    return sum;
}

/// Value and its four quantiles from the sorted values of the replicates.
QuantileEstimate quantiles(double value, std::vector<double> values, int replicates) {
    QuantileEstimate e;
    e.value = value;
    if (values.empty()) {
        return e;
    }
    std::sort(values.begin(), values.end());
    auto const at = [&](double share) {
        int const position = static_cast<int>(share * replicates - 0.5);
        return values[static_cast<std::size_t>(std::clamp(position, 0, static_cast<int>(values.size()) - 1))];
    };
    e.q025 = at(0.025);
    e.q05 = at(0.05);
    e.q95 = at(0.95);
    e.q975 = at(0.975);
    return e;
}

}  // namespace

ann_missmatch::ann_missmatch(PopGenetics& pop, settings& set, ExpansionModel model)
    : pop_(pop), set_(set), model_(model), nb_boot_(set.NumBootExpDem) {
    begin_estimates_table();
}

/// Classes up to the last one that the reference or the data reach, and then down to the last one with pairs in it.
void ann_missmatch::read_mismatch_pop() {
    int last = pop_.exp_max_mismatch_ > 0 ? pop_.exp_max_mismatch_ : pop_.max_mismatch_;
    last = std::min({last, capacity - 1, static_cast<int>(pop_.mismatch_.size()) - 1});
    while (last > 0 && pop_.mismatch_[last] == 0) {
        --last;
    }
    y_.clear();
    total_ = 0.0;
    for (int c = 0; c <= last; ++c) {
        y_.push_back(static_cast<double>(pop_.mismatch_[c]));
        total_ += y_.back();
    }
    for (double& value : y_) {
        value /= total_;
    }
}

SearchOutcome ann_missmatch::fit(ExpansionFitter& fitter, ExpansionParameters const& start) const {
    SearchOutcome const found =
        model_ == ExpansionModel::sudden ? hook_jeeves_rh(fitter, start) : hook_jeeves_spatial_exp(fitter);
    if (!found.converged) {
        *_AOS_ << "\t\tno convergence after " << found.steps << " steps (#=" << found.largest_step << ")\n";
    }
    return found;
}

void ann_missmatch::solve_least_square(std::ostream& out) {
    read_mismatch_pop();
    if (y_.empty() || !(total_ > 0.0)) {
        return;
    }
    print_heading(out);
    ExpansionFitter fitter(model_, y_);
    estimate_ = fit(fitter, {1.0, 5.0, 3.0, 2.0});
    observed_raggedness_ = raggedness_index(y_);
    observed_mean_ = mean_of(y_);
    print_estimates(out);
    if (!estimate_.converged) {
        print_not_converged(out);
    }
    ExpansionParameters at = estimate_.best;
    auto const curve = fitter.curve(at);
    curve_.assign(curve.begin(), curve.end());
    store_fit();
    if (nb_boot_ <= 0) {
        print_plain_table(out);
        return;
    }
    Bootstrap bootstrap = make_bootstrap();
    if (bootstrap.stopped) {
        return;
    }
    if (bootstrap.counted == 0) {
        *_AOS_ << "\t\tno sample could be simulated under the estimated parameters\n";
        print_plain_table(out);
        return;
    }
    store_results(bootstrap);
    print_bootstrap(out, bootstrap);
}

int ann_missmatch::simulate(ExpansionParameters const& p) {
    if (p.theta1 <= 0.0) {
        return 0;
    }
    double const u = 0.5 * p.theta1 / population_size;
    double const ratio = std::max(p.theta0 / p.theta1, 1.0 / population_size);
    double const t = 0.5 * p.tau / (population_size * u);
    return pop_.simulate_sample_exp(u, simulated_sites, MUT_INFINITE_ALLELES, -1.0, 1.0, 1.0, transition_share, t,
                                    ratio, population_size);
}

int mismatchSpatialExpansion::simulate(ExpansionParameters const& p) {
    // The number of mutations grows with theta, and a search sets no limit to it.
    if (!(p.theta1 > 0.0 && p.theta1 <= largest_theta)) {
        return 0;
    }
    double const u = 0.5 * p.theta1 / population_size;
    return pop_.simulate_range_exp(u, simulated_sites, MUT_INFINITE_ALLELES, -1.0, 1.0, 1.0, transition_share,
                                   p.tau / p.theta1, 0.5 * p.M, population_size);
}

/// Pairs that differ at more sites than there are classes are left out, but count in the denominator.
void ann_missmatch::calc_mismatch(std::vector<double>& y, int& polymorphic_sites) const {
    TTree& tree = pop_.getGeneTree();
    tree.write_sequences();
    int const n = tree.sample_size();
    std::fill(y.begin(), y.end(), 0.0);
    polymorphic_sites = 0;
    if (n == 0 || !tree[0].sequence) {
        return;  // no mutation was placed at all
    }
    std::vector<int> sites;
    for (int s = 0; s < simulated_sites; ++s) {
        for (int i = 1; i < n; ++i) {
            if ((*tree[i].sequence)[s] != (*tree[0].sequence)[s]) {
                sites.push_back(s);
                break;
            }
        }
    }
    polymorphic_sites = static_cast<int>(sites.size());
    for (int i = 1; i < n; ++i) {
        int const* const a = tree[i].sequence->beginning();
        for (int j = 0; j < i; ++j) {
            int const* const b = tree[j].sequence->beginning();
            std::size_t d = 0;
            for (int const s : sites) {
                d += a[s] != b[s];
            }
            if (d < y.size()) {
                y[d] += 1.0;
            }
        }
    }
    double const pairs = 0.5 * n * (n - 1.0);
    for (double& value : y) {
        value /= pairs;
    }
}

ann_missmatch::Bootstrap ann_missmatch::make_bootstrap() {
    Bootstrap b;
    b.classes.resize(y_.size());
    b.class_means.assign(y_.size(), 0.0);
    std::vector<double> y(y_.size());
    ExpansionFitter fitter(model_, y_);
    int failures = 0;
    TNode::hits.Flush();
    while (b.counted < nb_boot_) {
        settings::inc_work_done(1);
        settings::print_message();
        if (*set_.is_stop()) {
            b.stopped = true;
            return b;
        }
        int sites = 0;
        bool usable = simulate(estimate_.best) != 0;
        if (usable) {
            calc_mismatch(y, sites);
            usable = sites > 0;
        }
        TNode::hits.Flush();
        if (!usable) {
            if (++failures > most_failures) {
                break;
            }
            continue;
        }
        double const raggedness = raggedness_index(y);
        fitter.set_data(y);
        SearchOutcome const refit = fit(fitter, estimate_.best);
        if (!refit.converged) {
            if (++failures > most_failures) {
                break;
            }
            continue;
        }
        failures = 0;
        b.ssd_hits += estimate_.ssd <= refit.ssd;
        b.raggedness_hits += observed_raggedness_ <= raggedness;
        b.fits.push_back(refit.best);
        b.sites.push_back(sites);
        if (refit.best.theta0 > 0.0) {
            b.ratios.push_back(refit.best.theta1 / refit.best.theta0);
        }
        b.means.push_back(mean_of(y));
        for (std::size_t c = 0; c < y.size(); ++c) {
            if (y[c] <= 1.0) {
                b.classes[c].push_back(y[c]);
                b.class_means[c] += y[c];
            }
        }
        ++b.counted;
    }
    return b;
}

void ann_missmatch::store_fit() {
    ExpansionFit& fit = model_ == ExpansionModel::sudden ? pop_.demographic_fit_ : pop_.spatial_fit_;
    fit = ExpansionFit{};
    fit.tau.value = estimate_.best.tau;
    fit.theta0.value = estimate_.best.theta0;
    fit.theta1.value = estimate_.best.theta1;
    fit.m.value = model_ == ExpansionModel::sudden ? -1.0 : estimate_.best.M;
    fit.ssd = estimate_.ssd;
    fit.raggedness = observed_raggedness_;
}

void ann_missmatch::store_results(Bootstrap& b) {
    ExpansionFit& fit = model_ == ExpansionModel::sudden ? pop_.demographic_fit_ : pop_.spatial_fit_;
    auto const of = [&](double ExpansionParameters::*member) {
        std::vector<double> values;
        for (ExpansionParameters const& p : b.fits) {
            values.push_back(p.*member);
        }
        return quantiles(estimate_.best.*member, std::move(values), nb_boot_);
    };
    fit.tau = of(&ExpansionParameters::tau);
    fit.theta0 = of(&ExpansionParameters::theta0);
    fit.theta1 = of(&ExpansionParameters::theta1);
    if (model_ != ExpansionModel::sudden) {
        fit.m = of(&ExpansionParameters::M);
    }
    if (b.counted > 0) {
        fit.p_ssd = b.ssd_hits / static_cast<double>(b.counted);
        fit.p_raggedness = b.raggedness_hits / static_cast<double>(b.counted);
    }
}

}  // namespace tov
