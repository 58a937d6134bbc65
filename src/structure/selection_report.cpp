// The document, the side tables and the batch table of the detection of selected loci.
#include "structure/selection_report.h"

#include <array>
#include <ostream>

#include "input/settings.h"
#include "model/struct.h"
#include "output/glbobj.h"
#include "output/style.h"
#include "output/xml.h"
#include "structure/formula/selection_p.h"

namespace tov {

namespace {

constexpr int all_digits = 17;  // a value read again is the same
constexpr int column = 15;
constexpr int p_digits = 7;  // the smallest P-value shows
constexpr double not_computed = 2.0;

constexpr char out_of_bounds[] = "(if P-value=2 -> uncomputed value due to Obs.Het.BP out. of simulated bounds)";

void print_head(std::ostream& out, SelectionResults const& r) {
    std::size_t const simulations = r.simulated.het.size();
    if (r.several_groups) {
        out << "\nHierarchical island model:\n"
            << "No. of simulated groups:                 " << r.plan.model.groups << '\n'
            << "No. of simulated demes per groups:       " << r.plan.model.demes << '\n'
            << "No. of coalescent simulations performed: " << simulations << "\n\n";
    } else {
        out << "\nFinite island model:\n"
            << "No. of simulated demes:       " << r.plan.model.demes << '\n'
            << "No. of coalescent simulations performed: " << simulations << "\n\n";
    }
    out << label{"Locus", 8};
    for (char const* const text : {"Obs. Het. BP", "Obs. FST", "FST P-value"}) out << label{text, column};
    if (r.several_groups) out << label{"Obs FCT", column} << label{"FCT P-value", column};
    out << '\t' << out_of_bounds << '\n';
}

void print_p_values(std::ostream& out, SelectionResults const& r) {
    XmlSection const section(out, "detSel_FStat_Pval");
    print_head(out, r);
    int number = 0;
    for (TestedLocus const& locus : r.loci) {
        ++number;
        if (locus.FST == unusable_locus) continue;
        out << integer{number, 8} << num{locus.het_between, column} << num{locus.FST, column}
            << num{locus.p_fst, column, p_digits};
        if (r.several_groups) out << num{locus.FCT, column} << num{locus.p_fct, column, p_digits};
        out << '\n';
    }
}

void write_observed(settings const& set, SelectionResults const& r) {
    std::ofstream out(set.project_dir + "fdist2_ObsOut.txt", std::ios::trunc);
    out << "Locus\tObs. Het. BP\tObs FST\tFST P-value" << (r.several_groups ? "\tObs FCT\tFCT P-value" : "")
        << " (if P-value=2 -> uncomputed value because Obs.Het.BP is out of simulated bounds)\n";
    auto const shown = [](double p) { return p < not_computed ? p : not_computed; };
    int number = 0;
    for (TestedLocus const& locus : r.loci) {
        ++number;
        if (locus.FST == unusable_locus) continue;
        TabRow row(out, {.digits = all_digits});
        row << number << locus.het_between << locus.FST << shown(locus.p_fst);
        if (r.several_groups) row << locus.FCT << shown(locus.p_fct);
    }
}

/// Quantiles of the null distribution at heterozygosities from the lowest to the highest simulated one.
void print_quantiles(std::ostream& out, char const* tag, char const* title, SimulatedLoci const& simulated,
                     std::vector<double> const& stat) {
    constexpr int rows = 20;
    constexpr int width = 10;
    constexpr std::array quantiles{0.01, 0.05, 0.1, 0.5, 0.9, 0.95, 0.99};
    SelectionKernel const kernel;
    XmlSection const section(out, tag);
    out << '\n' << label{"Het. BP.", width} << "    " << title << '\n' << label{"", width};
    for (char const* const text : {"0.01", "0.05", "0.10", "0.50", "0.90", "0.95", "0.99"}) out << label{text, width};
    out << '\n';
    double const step = (simulated.highest - simulated.lowest) / (rows - 1);
    std::vector<double> limits;
    for (int i = 0; i < rows; ++i) {
        double const het = simulated.lowest + i * step;
        calcCILimits(simulated.het, stat, kernel.h_stat, het, kernel.h_het, kernel.grid_points, quantiles, limits);
        out << num{het, width};
        for (double const limit : limits) {
            if (limit > 1.0) {
                out << label{"", width};
            } else {
                out << num{limit, width};
            }
        }
        out << '\n';
    }
}

constexpr std::array levels{0.001, 0.005, 0.01, 0.025, 0.05};

/// Loci significant at each level, with the statistic below the mean and above it.
struct SignificantLoci {
    std::array<int, levels.size()> below{};
    std::array<int, levels.size()> above{};

    void add(double statistic, double mean, double p) noexcept {
        if (p < 0.0) return;
        auto& counts = statistic < mean ? below : above;
        for (std::size_t i = 0; i < levels.size(); ++i) counts[i] += p <= levels[i];
    }
};

void append(TabRow& row, SignificantLoci const& loci) {
    for (int const n : loci.below) row << n;
    for (int const n : loci.above) row << n;
}

void write_batch_line(SelectionResults const& r) {
    if (!ofs_selection_res) return;
    SignificantLoci fst;
    SignificantLoci fct;
    for (TestedLocus const& locus : r.loci) {
        if (locus.FST == unusable_locus || locus.het_between == 0.0) continue;
        fst.add(locus.FST, r.targets.FST, locus.p_fst);
        fct.add(locus.FCT, r.targets.FCT, locus.p_fct);
    }
    TabRow row = batch_row(ofs_selection_res, settings::input_file);
    row << r.simulated.het.size() << r.loci.size();
    append(row, fst);
    if (r.several_groups) append(row, fct);
}

}  // namespace

SimulationTable::SimulationTable(settings const& set, bool several_groups, FixationTargets const& targets)
    : out_(set.project_dir + "fdist2_simOut.txt", std::ios::trunc), several_groups_(several_groups) {
    out_.precision(all_digits);
    if (several_groups) {
        out_ << "FST\tFSC\tFCT\tTarget Het.\tExpHetBP\tMeanHetWP\tNumMutsOnTree\tTarget Mean FST = " << targets.FST
             << "\tTarget Mean FCT = " << targets.FCT << '\n';
    } else {
        out_ << "FST\tTarget Het.\tMeanHetBP\tMeanHetWP\tNumMutsOnTree\tTarget Mean FST = " << targets.FST << '\n';
    }
}

void SimulationTable::add(SimulatedLocus const& locus, double target_het, int mutations, Mut_Type type) {
    TabRow row(out_, {.digits = all_digits});
    row << locus.FST;
    if (several_groups_) row << locus.FSC << locus.FCT;
    if (has_state_characters(type)) {
        row << "NA";
    } else {
        row << target_het;
    }
    row << locus.het_between << locus.H << mutations;
}

void print_selection_results(settings const& set, Structure const& tested, SelectionResults const& r) {
    std::ostream& out = set.ofs();
    out << "\n\nTested Genetic Structure:\n" << rule{25} << "\nNo. of groups : " << tested.nb_groups() << '\n';
    tested.print_groups(out);
    print_p_values(out, r);
    write_observed(set, r);
    if (!r.simulated.het.empty()) {
        print_quantiles(out, "detSel_FST_CI", "FST null distribution quantiles", r.simulated, r.simulated.FST);
        if (r.several_groups) {
            print_quantiles(out, "detSel_FCT_CI", "FCT null distribution quantiles", r.simulated, r.simulated.FCT);
        }
    }
    out << "\nAdditional results can be found in files \"fdist2_ObsOut.txt\" and  \"fdist2_simOut.txt\"\n"
        << "File \"fdist2_ObsOut.txt\" contains observed F-statistics and their associated p-values\n"
        << "File \"fdist2_simOut.txt\" contains all simulated heterozygosities and F-statistics\n"
        << "These files can be used to produce graphical representations of observed  vs. simulated data\n\n";
    write_batch_line(r);
}

}  // namespace tov
