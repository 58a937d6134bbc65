// Distances between all pairs of samples of a project.
#pragma once

#include <memory>
#include <vector>

#include "base/recmat.h"
#include "base/trimat.h"
#include "structure/formula/permutation_p.h"

namespace tov {

/// A divergence time estimate that allows for unequal population sizes, with its tests, one matrix a quantity.
struct DivergenceMatrices {
    explicit DivergenceMatrices(int n) : tau(n), converged(n), p_tau(n), k(n), p_k(n), theta0(n), p_theta0(n) {}
    TriMat tau, converged, p_tau, k, p_k, theta0, p_theta0;
};

/// Matrices over R samples.
struct PairwiseResults {
    explicit PairwiseResults(int n)
        : fst(n), va(n), p_fst(n), sd_fst(n), p_pixy(n), p_corrected(n), differences(n, n), delta_mu(n) {}
    TriMat fst;
    TriMat va;
    TriMat p_fst, sd_fst;
    TriMat p_pixy, p_corrected;
    RectMat differences;  ///< above the diagonal PiXY, on it PiX, below it the corrected values
    TriMat delta_mu;
    std::unique_ptr<DivergenceMatrices> divergence;  ///< only with unequal population sizes
    PermutationPlan plan{0};
    bool tested = false;
    bool has_fst = false;       ///< FST and mean differences are computed
    bool has_delta_mu = false;  ///< delta_mu is computed
};

/// Results of the last run over pairs, for the summary statistics; null before the first.
[[nodiscard]] PairwiseResults const* last_pairwise_results() noexcept;
/// Makes them null again: the pairs of another level or project begin.
void forget_pairwise_results() noexcept;

}  // namespace tov
