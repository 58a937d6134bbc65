// Projects made of simulated loci.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "simulation/mutation.h"
#include "structure/selection.h"

namespace tov {

/// Gathers simulated loci, gene copy by gene copy, and writes them as a project that can be read again.
///
/// Alleles are numbered from 1 on (state + 1 times `factor`), or single characters for sites. Individuals are formed
/// of neighbouring gene copies.
class SimulatedProject {
public:
    SimulatedProject(ProjectView const& view, Structure const& tested, int factor = 1);

    /// Appends the locus at hand.
    void addLocus(NullLoci const& locus);
    void clear();
    /// Profile, samples and structure. @return 1, or 0 when the stream fails.
    int write(std::ostream& out) const;

private:
    [[nodiscard]] std::string allele_text(int state, Mut_Type type) const;

    ProjectView view_;
    Structure const& tested_;  // borrowed
    int factor_;
    std::vector<std::vector<std::string>> contents_;  ///< by sample and gene copy: the alleles so far
};

}  // namespace tov
