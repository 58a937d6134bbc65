// ann_missmatch: estimation of the sudden expansion of a population from its mismatch distribution, with bootstrap.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "demography/formula/hooke_jeeves.h"
#include "diversity/popgen.h"

namespace tov {

class settings;

/// One estimate of one sample: the fit, its test and its percentile intervals. Serves the three models; the classes of
/// the expansions in space differ in simulation and print only.
class ann_missmatch {
public:
    static constexpr int simulated_sites = 400;
    static constexpr int population_size = 4000000;
    static constexpr double transition_share = 0.33;
    static constexpr double alpha = 0.05;
    static constexpr int capacity = 500;  ///< classes at most
    /// Replicates in a row that do not count before the bootstrap ends with those that did.
    static constexpr int most_failures = 1000;

    ann_missmatch(PopGenetics& pop, settings& set, ExpansionModel model = ExpansionModel::sudden);
    virtual ~ann_missmatch() = default;
    ann_missmatch(ann_missmatch const&) = delete;
    ann_missmatch& operator=(ann_missmatch const&) = delete;

    /// The whole estimate with its print; leaves its results in the sample.
    ///
    /// Draws: those of the fit's random starts (spatial models), then per replicate those of one simulated genealogy
    /// with its mutations and of its refit; replicates that do not count are drawn anew.
    void solve_least_square(std::ostream& out);

protected:
    /// One percentile interval of the report.
    struct IntervalRow {
        char const* label;
        double estimate;
        std::vector<double> values;  ///< of the replicates, sorted for the report
    };
    struct Bootstrap {
        int counted = 0;
        int ssd_hits = 0;
        int raggedness_hits = 0;
        std::vector<ExpansionParameters> fits;
        std::vector<double> ratios, means, sites;
        std::vector<std::vector<double>> classes;  ///< per class its frequencies in the replicates
        std::vector<double> class_means;
        bool stopped = false;
    };

    void read_mismatch_pop();
    SearchOutcome fit(ExpansionFitter& fitter, ExpansionParameters const& start) const;
    /// Genealogy and mutations under the estimates. @return 0 when nothing can be simulated.
    virtual int simulate(ExpansionParameters const& p);
    /// Distribution of the simulated tree into `y`, and its number of polymorphic sites.
    void calc_mismatch(std::vector<double>& y, int& polymorphic_sites) const;
    Bootstrap make_bootstrap();
    void store_results(Bootstrap& bootstrap);
    void store_fit();

    // --- Print (expansion_report.cpp) ---
    virtual void print_heading(std::ostream& out) const;
    virtual void print_estimates(std::ostream& out) const;
    virtual void print_not_converged(std::ostream& out) const;
    virtual std::vector<IntervalRow> interval_rows(Bootstrap const& bootstrap) const;
    [[nodiscard]] virtual char const* tag() const { return "mismatchDemogExp"; }
    void print_plain_table(std::ostream& out);
    void print_bootstrap(std::ostream& out, Bootstrap& bootstrap);
    void print_intervals(std::ostream& out, std::vector<IntervalRow> rows, int replicates) const;
    void print_confidence_region(std::ostream& out, Bootstrap& bootstrap) const;

    PopGenetics& pop_;  // borrowed
    settings& set_;     // borrowed
    ExpansionModel model_;
    std::vector<double> y_;      ///< observed frequencies of classes 0, 1, ...
    std::vector<double> curve_;  ///< of the model at the estimates
    double total_ = 0.0;         ///< pairs in y_
    double observed_raggedness_ = 0.0;
    double observed_mean_ = 0.0;
    SearchOutcome estimate_;
    int nb_boot_ = 0;
};

}  // namespace tov
