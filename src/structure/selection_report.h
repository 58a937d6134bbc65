// What the detection of selected loci writes: the document, its side tables and the batch table.
#pragma once

#include <fstream>
#include <iosfwd>
#include <string>
#include <vector>

#include "structure/selection.h"

namespace tov {

class settings;

/// "fdist2_simOut.txt" in the project's directory: a head, then one line a simulated locus, with all digits.
class SimulationTable {
public:
    SimulationTable(settings const& set, bool several_groups, FixationTargets const& targets);
    /// @param target_het  heterozygosity aimed at; not shown for single sites.
    void add(SimulatedLocus const& locus, double target_het, int mutations, Mut_Type type);

private:
    std::ofstream out_;
    bool several_groups_;
};

/// All that the results of a run consist of.
struct SelectionResults {
    bool several_groups = false;
    FixationTargets targets;
    SimulationPlan plan;
    std::vector<TestedLocus> loci;
    SimulatedLoci simulated;
};

/// Structure, P-values, quantiles of the null distributions and the closing lines into the document; the table of the
/// observed values into "fdist2_ObsOut.txt"; a line into the batch table, if it is wanted.
void print_selection_results(settings const& set, Structure const& tested, SelectionResults const& results);

}  // namespace tov
