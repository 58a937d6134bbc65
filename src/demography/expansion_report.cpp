// What the estimation of an expansion prints.
#include <algorithm>
#include <ostream>

#include "demography/expdem.h"
#include "demography/spatialexp.h"
#include "input/settings.h"
#include "output/style.h"
#include "output/table.h"
#include "output/xml.h"

namespace tov {

namespace {

void print_value(std::ostream& out, char const* text, double value) { out << text << num{value, 12, 3}; }

/// A value of a sorted list at the share of the replicates; nothing in the list gives 0.
double at_share(std::vector<double> const& sorted, double share) {
    if (sorted.empty()) {
        return 0.0;
    }
    int const n = static_cast<int>(sorted.size());
    int const position = static_cast<int>(share * n - 0.5);
    return sorted[static_cast<std::size_t>(std::clamp(position, 0, n - 1))];
}

std::vector<double> column(std::vector<ExpansionParameters> const& fits, double ExpansionParameters::*member) {
    std::vector<double> values;
    for (ExpansionParameters const& p : fits) {
        values.push_back(p.*member);
    }
    return values;
}

}  // namespace

void ann_missmatch::print_heading(std::ostream&) const {}

void ann_missmatch::print_estimates(std::ostream& out) const {
    print_value(out, "\nTau                                 : ", estimate_.best.tau);
    print_value(out, "\nTheta0                              : ", estimate_.best.theta0);
    print_value(out, "\nTheta1                              : ", estimate_.best.theta1);
    out << "\n";
}

void ann_missmatch::print_not_converged(std::ostream& out) const {
    out << "\nLeast-square procedure to fit expected and observed"
        << "\nmismatch distribution did not converge after " << search_max_steps << "steps \n";
}

std::vector<ann_missmatch::IntervalRow> ann_missmatch::interval_rows(Bootstrap const& b) const {
    return {{"Tau:", estimate_.best.tau, column(b.fits, &ExpansionParameters::tau)},
            {"Theta0:", estimate_.best.theta0, column(b.fits, &ExpansionParameters::theta0)},
            {"Theta1:", estimate_.best.theta1, column(b.fits, &ExpansionParameters::theta1)}};
}

void ann_missmatch::print_plain_table(std::ostream& out) {
    out << rule{41} << "\n        #Diff     Observed    Model Freq.\n" << rule{41} << "\n";
    for (std::size_t c = 0; c < y_.size(); ++c) {
        out << num{static_cast<double>(c), 13, 1} << num{y_[c] * total_, 13, 1} << num{curve_[c] * total_, 13, 1}
            << "\n";
    }
    out << rule{41} << "\n";
}

void ann_missmatch::print_bootstrap(std::ostream& out, Bootstrap& b) {
    double const B = b.counted;
    out << "\nTest of goodness-of-fit:\n------------------------\n"
        << "\n         Sum of Squared deviation: " << num{estimate_.ssd, 10, 8}
        << "\n          P(Sim. Ssd >= Obs. Ssd): " << num{b.ssd_hits / B, 10, 8}
        << "\n    Harpending's Raggedness index: " << num{observed_raggedness_, 10, 8}
        << "\n        P(Sim. Rag. >= Obs. Rag.): " << num{b.raggedness_hits / B, 10, 8} << "\n"
        << "\nMismatch distributions:\n---------------------\n";
    {
        XmlSection const section(out, tag(), "pop", pop_.pop_name().str());
        out << rule{54} << "\n        #Diff     Observed    Simulated   Model Freq.\n" << rule{54} << "\n";
        for (std::size_t c = 0; c < y_.size(); ++c) {
            out << num{static_cast<double>(c), 13, 1} << num{y_[c] * total_, 13, 1}
                << num{b.class_means[c] / B * total_, 13, 1} << num{curve_[c] * total_, 13, 1} << "\n";
        }
        out << rule{54} << "\n";
    }
    print_intervals(out, interval_rows(b), b.counted);
    std::vector<double> means = b.means, sites = b.sites;
    std::vector<IntervalRow> common{{"Mean No. of pairwise diff.", observed_mean_, std::move(means)},
                                    {"No. pol. sites:", static_cast<double>(pop_.num_polym_sites_), std::move(sites)}};
    print_intervals(out, std::move(common), 0);
    out << rule{91} << "\n";
    print_confidence_region(out, b);
}

/// @param replicates  0: rows only, without the head.
void ann_missmatch::print_intervals(std::ostream& out, std::vector<IntervalRow> rows, int replicates) const {
    if (replicates > 0) {
        out << "\n\nConfidence intervals (Percentile method):\t alpha=\t" << num{alpha, 0, 3} << "\nBased on "
            << replicates << " replicates\n" << rule{91}
            << "\n                  Variable:       Est. val:     Low. bound:      Up. bound:     Mean Value:\n"
            << rule{91} << "\n";
    }
    for (IntervalRow& row : rows) {
        std::sort(row.values.begin(), row.values.end());
        double sum = 0.0;
        for (double const value : row.values) {
            sum += value;
        }
        double const mean = row.values.empty() ? 0.0 : sum / static_cast<double>(row.values.size());
        interval_row(out, row.label,
                     {row.estimate, at_share(row.values, 0.5 * alpha), at_share(row.values, 1.0 - 0.5 * alpha), mean});
    }
}

void ann_missmatch::print_confidence_region(std::ostream& out, Bootstrap& b) const {
    out << "\nConfidence region for the observed mismatch:\n\n";
    XmlSection const section(out, std::string(tag()) + "CI", "_" + number_text(alpha, 6), pop_.pop_name().str());
    out << rule{67} << "\n        #Diff     Observed    Low. bound  Up. bound   Model Freq.\n" << rule{67} << "\n";
    for (std::size_t c = 0; c < y_.size(); ++c) {
        std::sort(b.classes[c].begin(), b.classes[c].end());
        out << num{static_cast<double>(c), 13, 1} << num{y_[c] * total_, 13, 1}
            << num{at_share(b.classes[c], 0.5 * alpha) * total_, 13, 1}
            << num{at_share(b.classes[c], 1.0 - 0.5 * alpha) * total_, 13, 1} << num{curve_[c] * total_, 13, 1}
            << "\n";
    }
    out << rule{67} << "\n";
}

// --- Expansion in space ---

void mismatchSpatialExpansion::print_heading(std::ostream& out) const {
    if (three()) {
        out << "\n\n" << rule{63, '='} << "\nParameters of the spatial expansion assuming constant deme size\n"
            << rule{63, '='} << "\n\n";
        return;
    }
    std::string_view const text =
        "Parameters of the spatial expansion assuming different deme size before (theta0) and after (theta1) expansion";
    int const length = static_cast<int>(text.size());
    out << "\n\n" << rule{length} << "\n" << text << "\n" << rule{length} << "\n\n";
}

void mismatchSpatialExpansion::print_estimates(std::ostream& out) const {
    print_value(out, "\nTau                                 : ", estimate_.best.tau);
    if (three()) {
        print_value(out, "\nTheta                               : ", estimate_.best.theta1);
    } else {
        print_value(out, "\nTheta0                              : ", estimate_.best.theta0);
        print_value(out, "\nTheta1                              : ", estimate_.best.theta1);
    }
    print_value(out, "\nM                                   : ", estimate_.best.M);
    out << "\n";
}

void mismatchSpatialExpansion::print_not_converged(std::ostream& out) const {
    if (three()) {
        out << "\nLeast-square procedure to fit expected to observed mismatch distribution\n"
            << "did not converge after " << search_max_steps << " steps\n";
    } else {
        out << "\nLeast square procedure to fit model mismatch distribution\n"
            << "and observed distribution did not converge after " << search_max_steps << "steps\n";
    }
}

std::vector<ann_missmatch::IntervalRow> mismatchSpatialExpansion::interval_rows(Bootstrap const& b) const {
    IntervalRow tau{"Tau:", estimate_.best.tau, column(b.fits, &ExpansionParameters::tau)};
    IntervalRow m{"M:", estimate_.best.M, column(b.fits, &ExpansionParameters::M)};
    if (three()) {
        return {std::move(tau), std::move(m),
                {"Theta:", estimate_.best.theta1, column(b.fits, &ExpansionParameters::theta1)}};
    }
    return {std::move(tau),
            {"Theta0:", estimate_.best.theta0, column(b.fits, &ExpansionParameters::theta0)},
            {"Theta1:", estimate_.best.theta1, column(b.fits, &ExpansionParameters::theta1)},
            std::move(m)};
}

}  // namespace tov
