// Null distribution of the detection of selected loci: what is simulated, and the loci of earlier runs.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <istream>
#include <string>
#include <string_view>

#include "base/random.h"
#include "input/settings.h"
#include "model/popbase.h"
#include "model/sample.h"
#include "model/struct.h"
#include "structure/loc_by_loc.h"
#include "structure/selection.h"

namespace tov {

namespace {

/// How a structure is analysed: as the AMOVA chooses its design for the data.
FixationUnit unit_of(ProjectView const& view) {
    settings const& set = view.set;
    Samples const& samples = *view.samples;
    if (samples.GenotypicData == 0) return FixationUnit::haplotypes;
    if (samples.RecessiveData != 0) return FixationUnit::none;
    if (samples.GameticPhase == 0 && set.RecessiveAllelesEM != 0) return FixationUnit::none;
    return set.IncludeIndividualLevel != 0 ? FixationUnit::individuals : FixationUnit::haplotypes;
}

StateDistance distance_of(ProjectView const& view) {
    switch (allele_kind(view.samples->DataType, view.set.DistanceMethodAMOVA)) {
        case AlleleKind::nucleotide:
            return StateDistance::table;
        case AlleleKind::size:
            return StateDistance::squared_size;
        default:
            return StateDistance::equality;
    }
}

/// Distances between the bases that simulated sites show.
StateTable base_distances(ProjectView const& view) {
    constexpr int bases = 3;
    std::string text;
    for (int state = 0; state < bases; ++state) text += state_character(MUT_NUCLEOTIDES, state);
    std::string_view const all(text);
    std::string_view const names[bases] = {all.substr(0, 1), all.substr(1, 1), all.substr(2, 1)};
    settings const& set = view.set;
    TriMat const m =
        allele_distances(names, AlleleKind::nucleotide,
                         {set.TransitionWeight, set.TranversionWeight, set.DeletionWeight}, view.samples->MissingData);
    StateTable table{};
    for (int i = 0; i < bases; ++i) {
        for (int j = 0; j < i; ++j) {
            table[static_cast<std::size_t>(i * bases + j)] = m(i, j);
            table[static_cast<std::size_t>(j * bases + i)] = m(i, j);
        }
    }
    return table;
}

StructureSizes sizes_of(Structure const& tested) {
    std::vector<double> copies;
    std::vector<int> groups;
    for (StructureGroup const& group : tested.groups) {
        groups.push_back(group.nb_samples());
        for (Population const* const p : group.populations) copies.push_back(gene_copies_of(*p));
    }
    return StructureSizes(std::move(copies), std::move(groups));
}

std::vector<int> samples_of(Structure const& tested) {
    std::vector<int> samples;
    for (StructureGroup const& group : tested.groups) {
        samples.insert(samples.end(), group.sample_indexes.begin(), group.sample_indexes.end());
    }
    return samples;
}

/// The samples to simulate, in the order of their tips: all of the project, or those of the groups.
SampledCopies sampled_of(ProjectView const& view, Structure const& tested) {
    SampledCopies sampled;
    if (tested.nb_groups() < 2) {
        for (int i = 0; i < view.samples->NbPopulations(); ++i) {
            sampled.copies.push_back(gene_copies_of(*(*view.samples)[i]));
        }
        return sampled;
    }
    for (StructureGroup const& group : tested.groups) {
        sampled.group_sizes.push_back(group.nb_samples());
        for (Population const* const p : group.populations) sampled.copies.push_back(gene_copies_of(*p));
    }
    return sampled;
}

constexpr std::string_view blanks = " \t\r";

std::string_view first_word(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_first_of(blanks));
}

/// Value of a whole text between blanks; false when it isn't a finite number.
bool read_number(std::string_view text, double& value) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    text = text.substr(0, text.find_last_not_of(blanks) + 1);
    auto const [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
    return status == std::errc() && end == text.data() + text.size() && !text.empty() && std::isfinite(value);
}

std::vector<std::string_view> split_tabs(std::string_view line) {
    std::vector<std::string_view> pieces;
    while (true) {
        std::size_t const tab = line.find('\t');
        pieces.push_back(line.substr(0, tab));
        if (tab == std::string_view::npos) return pieces;
        line.remove_prefix(tab + 1);
    }
}

int whole(double x) { return std::fabs(x) < 2147483647.0 ? static_cast<int>(x) : 0; }

}  // namespace

int gene_copies_of(Population const& population) {
    double copies = 0.0;
    if (population.is_genotypic()) {
        copies = 2.0 * population.phenotypes.nb_individuals();
    } else {
        for (PHaploDef const* const entry : population.haplotypes.view()) copies += entry->copies;
    }
    return copies > 0.0 ? whole(copies) : 0;
}

// --- Parameters ---

double theta_of_heterozygosity(double H, Mut_Type type) noexcept {
    switch (type) {
        case MUT_STEPWISE:
            return 0.5 * (1.0 / ((1.0 - H) * (1.0 - H)) - 1.0);
        case MUT_BINARY:
        case MUT_NUCLEOTIDES:
            return H / (1.0 - 2.0 * H);
        case MUT_INFINITE_ALLELES:
            break;
    }
    return 1.0 / (1.0 - H) - 1.0;
}

Mut_Type mutation_type_of(int data_type) noexcept {
    switch (data_type) {
        case DNA:
            return MUT_NUCLEOTIDES;
        case RFLP:
            return MUT_BINARY;
        case MICROSAT:
            return MUT_STEPWISE;
        default:
            return MUT_INFINITE_ALLELES;
    }
}

void read_simulation_parameters(std::istream& in, SimulationPlan& plan, FixationTargets& targets) {
    plan.makes_files = true;
    double values[6] = {
        1.0,         0.0,        static_cast<double>(plan.model.groups), static_cast<double>(plan.model.demes),
        targets.FSC, targets.FCT};
    std::string line;
    int read = 0;
    for (int number = 1; read < 6 && std::getline(in, line); ++number) {
        // the first value stands on line 3, each later one two lines below
        if (number < 3 || number % 2 == 0) continue;
        double value = 0.0;
        if (read_number(first_word(line), value)) values[read] = value;
        ++read;
    }
    plan.files = std::max(0, whole(values[0]));
    if (values[1] > 0.0) plan.simulations = whole(values[1]);
    if (plan.model.two_levels) plan.model.groups = whole(values[2]);
    plan.model.demes = whole(values[3]);
    targets.FSC = values[4];
    targets.FCT = values[5];
    targets.FST = 1.0 - (1.0 - targets.FSC) * (1.0 - targets.FCT);
}

// --- Simulated loci, and those of an earlier run ---

double without_rounding(double F) noexcept {
    constexpr double rounding = 1e-12;
    return std::fabs(F) < rounding ? 0.0 : F;
}

SimulatedLocus simulated_locus(LocusFixation const& locus) noexcept {
    SimulatedLocus s{without_rounding(locus.FST), without_rounding(locus.FSC), without_rounding(locus.FCT)};
    if (s.FST == 0.0) return s;
    s.H = locus.mean_heterozygosity;
    s.het_between = het_between_populations(s.H, s.FST);
    return s;
}

void SimulatedLoci::add(double het_between, double fst, double fct, int nb_mutations) {
    het.push_back(het_between);
    FST.push_back(fst);
    FCT.push_back(fct);
    mutations.push_back(nb_mutations);
    lowest = std::min(lowest, het_between);
    highest = std::max(highest, het_between);
}

bool read_simulated_loci(std::istream& in, bool several_groups, SimulatedLoci& loci) {
    std::string line;
    std::getline(in, line);
    bool read = false;
    while (std::getline(in, line)) {
        std::vector<std::string_view> const pieces = split_tabs(line);
        std::size_t const het = several_groups ? 4 : 2;
        double fst = 0.0, fct = 0.0, h = 0.0, mutations = 0.0;
        if (pieces.size() <= het || !read_number(pieces[0], fst) || !read_number(pieces[het], h)) continue;
        if (several_groups && (pieces.size() < 7 || !read_number(pieces[2], fct))) continue;
        if (pieces.size() > het + 2) read_number(pieces[het + 2], mutations);
        loci.add(h, fst, fct, whole(mutations));
        read = true;
    }
    return read;
}

// --- NullLoci ---

NullLoci::NullLoci(ProjectView const& view, Structure const& tested)
    : simulator_(sampled_of(view, tested)),
      walk_(sizes_of(tested), unit_of(view), distance_of(view), base_distances(view)),
      tested_(samples_of(tested)) {
    mutation_.type = mutation_type_of(view.samples->DataType);
    mutation_.least_derived = view.set.MinDafFreq;
    int const samples = view.samples->NbPopulations();
    if (tested.nb_groups() < 2) {
        for (int i = 0; i < samples; ++i) simulated_.push_back(i);
    } else {
        simulated_ = tested_;
    }
    first_tip_.assign(static_cast<std::size_t>(samples), -1);
    copies_.assign(static_cast<std::size_t>(samples), 0);
    int first = 0;
    for (std::size_t i = 0; i < simulated_.size(); ++i) {
        auto const sample = static_cast<std::size_t>(simulated_[i]);
        first_tip_[sample] = first;
        copies_[sample] = simulator_.sampled().copies[i];
        first += copies_[sample];
    }
}

bool NullLoci::simulate(SimulationPlan const& plan) {
    double H = plan.het_low + uniform() * (plan.het_high - plan.het_low);
    if (has_state_characters(mutation_.type) && H >= 0.5) H = 0.45 + 0.05 * uniform();
    target_het_ = H;
    double theta = theta_of_heterozygosity(H, mutation_.type) / plan.model.demes;
    if (plan.model.two_levels) theta /= plan.model.groups;
    if (!(theta <= plan.theta_limit)) theta = 0.95 * plan.theta_limit;
    mutation_.theta = theta;
    return simulator_.simulateSample(plan.model, mutation_);
}

std::span<int const> NullLoci::states_of_sample(int sample) const {
    auto const i = static_cast<std::size_t>(sample);
    if (i >= first_tip_.size() || first_tip_[i] < 0 || simulator_.states().empty()) return {};
    return simulator_.states().subspan(static_cast<std::size_t>(first_tip_[i]), static_cast<std::size_t>(copies_[i]));
}

LocusFixation NullLoci::statistics() {
    std::span<int const> states = simulator_.states();
    if (simulated_ != tested_) {
        ordered_states_.clear();
        for (int const sample : tested_) {
            std::span<int const> const here = states_of_sample(sample);
            ordered_states_.insert(ordered_states_.end(), here.begin(), here.end());
        }
        states = ordered_states_;
    }
    return walk_.compute(states);
}

}  // namespace tov
