// Detection of loci under selection: the course of the analysis.
#include "structure/selection.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <optional>
#include <ostream>
#include <string>

#include "base/scoped_swap.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "structure/formula/selection_p.h"
#include "structure/gen_struct.h"
#include "structure/selection_report.h"
#include "structure/simulated_project.h"

namespace tov {

namespace {

constexpr int poll_every = 10;

void show(std::string const& text) {
    settings::set_message(text);
    settings::print_message();
}

/// Nothing that is printed while this lives gets into the document, its tree of links or its reports.
class QuietDocument {
public:
    explicit QuietDocument(settings& set) : set_(set), script_(set.tree_script, ""), reports_(E.results, nullptr) {
        document_ = set.set_ofs(&nowhere_);
    }
    ~QuietDocument() { set_.set_ofs(document_); }
    QuietDocument(QuietDocument const&) = delete;
    QuietDocument& operator=(QuietDocument const&) = delete;

private:
    settings& set_;  // borrowed
    std::ostream nowhere_{nullptr};
    std::ostream* document_ = nullptr;  // borrowed
    ScopedSwap<std::string> const script_;
    ScopedSwap<std::ostream*> const reports_;
};

/// The settings of an AMOVA of each locus, without permutations and distances between samples.
class LocusAmovaSettings {
public:
    explicit LocusAmovaSettings(settings& set)
        : silent_(set.silent_structure, true),
          by_locus_(set.LocByLocAMOVA, 1),
          of_haplotypes_(set.HaplAMOVA, 0),
          tasks_(set.TaskNumber, task::amova),
          permutations_(set.NumPermutationsAMOVA, 0L),
          matrix_(set.ComputeDistanceMatrixAMOVA, 1),
          conventional_(set.ComputeConventionalFST, 0),
          delta_mu_(set.ComputeDeltaMuSqr, 0),
          pairs_(set.ComputePairwiseFST, 0),
          mismatch_(set.PrintMissIntermatchs, 0),
          null_files_(set.KeepNullDistrib, 0) {}

private:
    ScopedSwap<bool> const silent_;
    ScopedSwap<int> const by_locus_;
    ScopedSwap<int> const of_haplotypes_;
    ScopedSwap<long> const tasks_;
    ScopedSwap<long> const permutations_;
    ScopedSwap<int> const matrix_;
    ScopedSwap<int> const conventional_;
    ScopedSwap<int> const delta_mu_;
    ScopedSwap<int> const pairs_;
    ScopedSwap<int> const mismatch_;
    ScopedSwap<int> const null_files_;
};

/// One detection, from the observed loci to the results.
class SelectionRun {
public:
    SelectionRun(ProjectView const& view, StructureActions const& actions, bool hierarchical)
        : view_(view), actions_(actions), tested_(*view.structure) {
        if (!hierarchical) tested_.merge_groups();
        r_.several_groups = tested_.nb_groups() > 1;
    }

    void run() {
        settings& set = view_.set;
        show("Detecting loci under selection ...");
        if (tested_.nb_samples() < 2) {
            set.ofs() << "\nOnly one sample in structure\n";
            return;
        }
        if (!observe() || !gather_observed()) return;
        r_.targets = target_means(r_.loci, r_.several_groups);
        make_plan();
        if (r_.plan.makes_files) {
            if (can_simulate()) make_projects();
            return;
        }
        if (tested_.nb_groups() == tested_.nb_samples()) {  // no locus could be analysed
            set.ofs() << "\nOnly one sample per group in structure\n";
            return;
        }
        if (!read_null_loci()) {
            if (!can_simulate() || !simulate_null_loci()) return;
        }
        if (!test_loci()) return;
        print_selection_results(set, tested_, r_);
        show("Detecting loci under selection: done ... ");
    }

private:
    [[nodiscard]] bool stopped() const { return *view_.set.is_stop() != 0; }

    /// Heterozygosities, and the AMOVA of each locus under the tested structure.
    bool observe() {
        settings::add_to_do_work(view_.alleles->nb_loci());
        if (stopped()) return false;
        for (int locus = 0; locus < view_.alleles->nb_loci(); ++locus) {
            static_cast<LocusStatistics&>(*(*view_.alleles)[locus]) = {};
        }
        computeMeanHeterozygosityOverSamplesInStructure(tested_, *view_.alleles);
        QuietDocument const quiet(view_.set);
        LocusAmovaSettings const by_locus(view_.set);
        ProjectView inner = view_;
        inner.structure = &tested_;
        gen_struct_calculations(inner, actions_);
        return true;
    }

    bool gather_observed() {
        for (int i = 0; i < view_.alleles->nb_loci(); ++i) {
            TLocus const& locus = *(*view_.alleles)[i];
            TestedLocus tested;
            tested.FST = std::isfinite(locus.FST) ? without_rounding(locus.FST) : unusable_locus;
            tested.het_between = het_between_populations(locus.mean_heterozygosity, tested.FST);
            if (r_.several_groups) {
                tested.FSC = without_rounding(locus.FSC);
                tested.FCT = without_rounding(locus.FCT);
            }
            r_.loci.push_back(tested);
            settings::inc_work_done(1.0);
            if ((i + 1) % poll_every == 0 && stopped()) return false;
        }
        return true;
    }

    void make_plan() {
        settings const& set = view_.set;
        SimulationPlan& plan = r_.plan;
        plan.simulations = std::max(0, set.NumberOfSimsForFDist2);
        plan.model.two_levels = r_.several_groups;
        plan.model.demes = set.NumberOfDemesForFDist2;
        plan.model.groups = r_.several_groups ? set.NumberOfGroupsForFDist2 : 1;
        plan.het_low = set.TargetHetLowBound;
        plan.het_high = set.TargetHetHighBound;
        if (has_state_characters(mutation_type_of(view_.samples->DataType))) {
            plan.het_high = std::min(plan.het_high, 0.5);
        }
        if (std::ifstream in("simParamFile.txt"); in) read_simulation_parameters(in, plan, r_.targets);
        plan.model.groups = std::max(plan.model.groups, tested_.nb_groups());
        plan.model.Fst = r_.targets.FST;
        plan.model.Fct = r_.targets.FCT;
        plan.theta_limit = r_.targets.FST > 0.0 ? std::min(1.0 / r_.targets.FST - 1.0, 1.0) : 0.0;
    }

    bool read_null_loci() {
        settings const& set = view_.set;
        if (set.UseSimFileForFDist2 == 0 || set.SimFileNameForFDist2.empty()) return false;
        std::ifstream in(set.SimFileNameForFDist2);
        return read_simulated_loci(in, r_.several_groups, r_.simulated);
    }

    /// A flat model needs differentiation; otherwise the document says so.
    [[nodiscard]] bool can_simulate() const {
        if (r_.several_groups || r_.targets.FST > 0.0) return true;
        if (r_.loci.empty()) view_.set.ofs() << "\nThe data have no loci to be tested";
        if (view_.samples->GenotypicData != 0 && view_.samples->RecessiveData != 0)
            view_.set.ofs() << "\nThere are no F-statistics of recessive data";
        view_.set.ofs() << "\nMean FST is not positive: no simulations\n";
        return false;
    }

    /// The next locus whose tree could be built. @return false when no more tries are left.
    bool next_locus(NullLoci& loci) {
        while (!loci.simulate(r_.plan)) {
            if (++failures_ > r_.plan.simulations) return false;
        }
        return true;
    }

    /// Every tenth simulation: the progress. @return false after a stop.
    bool progress(int done) {
        if (done % poll_every != 0) return true;
        show("Detecting loci under selection: " + std::to_string(done) + "/" + std::to_string(r_.plan.simulations) +
             " simulations done ... ");
        settings::inc_work_done(poll_every);
        return !stopped();
    }

    bool simulate_null_loci() {
        NullLoci loci(view_, tested_);
        SimulationTable table(view_.set, r_.several_groups, r_.targets);
        for (int i = 1; i <= r_.plan.simulations && next_locus(loci); ++i) {
            SimulatedLocus const locus = simulated_locus(loci.statistics());
            r_.simulated.add(locus.het_between, locus.FST, locus.FCT, loci.mutations());
            table.add(locus, loci.target_het(), loci.mutations(), loci.type());
            if (!progress(i)) return false;
        }
        return true;
    }

    void make_projects() {
        settings const& set = view_.set;
        if (r_.plan.files == 1) {
            SimulationTable const head_alone(set, r_.several_groups, r_.targets);
        }
        std::string base = settings::input_file;
        if (std::size_t const dot = base.find_last_of('.'); dot != std::string::npos) base.resize(dot);
        std::ofstream list(set.project_dir + "sims.tvb", std::ios::trunc);
        NullLoci loci(view_, tested_);
        SimulatedProject project(view_, tested_);
        for (int file = 1; file <= r_.plan.files && !stopped(); ++file) {
            project.clear();
            failures_ = 0;
            for (int i = 1; i <= r_.plan.simulations && next_locus(loci); ++i) {
                project.addLocus(loci);
                if (!progress(i)) return;
            }
            std::string const name = base + "_sim" + std::to_string(file) + ".tvp";
            if (std::ofstream out(name, std::ios::trunc); out) project.write(out);
            if (r_.plan.files < 2) continue;
            show("Detecting loci under selection: File " + std::to_string(file) + "/" + std::to_string(r_.plan.files) +
                 " with " + std::to_string(r_.plan.simulations) + " simulated loci done ... ");
            list << name << '\n';
        }
    }

    /// P-value of a statistic; one of exactly 0 is 1e-07, or 2 above all simulated heterozygosities.
    [[nodiscard]] double p_value(double statistic, double het, std::vector<double> const& null) const {
        SelectionKernel const kernel;
        double const p =
            calcFSTpvalue(statistic, r_.simulated.het, null, kernel.h_stat, het, kernel.h_het, kernel.grid_points);
        if (p != 0.0) return p;
        return het <= r_.simulated.highest ? 1e-07 : 2.0;
    }

    bool test_loci() {
        settings::add_to_do_work(static_cast<double>(r_.loci.size()));
        for (std::size_t i = 0; i < r_.loci.size(); ++i) {
            TestedLocus& locus = r_.loci[i];
            settings::inc_work_done(1.0);
            if ((i + 1) % poll_every == 0 && stopped()) return false;
            if (locus.FST == unusable_locus || locus.het_between == 0.0) continue;
            locus.p_fst = p_value(locus.FST, locus.het_between, r_.simulated.FST);
            if (r_.several_groups) locus.p_fct = p_value(locus.FCT, locus.het_between, r_.simulated.FCT);
        }
        return true;
    }

    ProjectView view_;
    StructureActions const& actions_;  // borrowed
    Structure tested_;                 ///< shares the populations of the project's structure
    SelectionResults r_;
    int failures_ = 0;
};

}  // namespace

double het_between_populations(double H, double FST) noexcept {
    return FST == 1.0 || FST == unusable_locus ? 1.0 : H / (1.0 - FST);
}

FixationTargets target_means(std::vector<TestedLocus> const& loci, bool several_groups) noexcept {
    double weights = 0.0;
    double fst = 0.0;
    double fct = 0.0;
    for (TestedLocus const& locus : loci) {
        if (locus.FST == unusable_locus) continue;
        weights += locus.het_between;
        fst += locus.FST * locus.het_between;
        if (std::isfinite(locus.FCT)) fct += locus.FCT * locus.het_between;
    }
    FixationTargets targets;
    if (!(weights > 0.0)) return targets;
    targets.FST = fst / weights;
    if (!several_groups) return targets;
    targets.FCT = fct / weights;
    if (1.0 - targets.FCT != 0.0) targets.FSC = 1.0 - (1.0 - targets.FST) / (1.0 - targets.FCT);
    return targets;
}

void detect_selected_loci(ProjectView const& view, StructureActions const& actions, bool hierarchical) {
    SelectionRun(view, actions, hierarchical).run();
}

}  // namespace tov
