// The distance matrix of a sample for the analyses of genetic structure.
#include "diversity/blocks.h"
#include "diversity/popgen.h"
#include "input/settings.h"

namespace tov {

void distance_matrix_block(SampleRun& run) {
    settings& set = run.set;
    if (set.ComputeConventionalFST != 0) {
        run.ensure_checked();
        run.ensure_evaluated();
        run.pop.compute_dist_mat_for_conventional_FST(run.out, set);
        return;
    }
    run.choose_distance(set.DistanceMethodAMOVA, set.GammaAValueAMOVA);
    run.ensure_checked();
    run.ensure_evaluated();
    run.pop.compute_distance_matrix(nullptr, &set, set.DistanceMethodAMOVA == 0 ? 0 : 1);
}

}  // namespace tov
