// The zipper EM: haplotypes of a growing window of loci, each stage built on the haplotypes found by the one before.
#pragma once

#include <iosfwd>
#include <memory>
#include <vector>

#include "model/hpopdb.h"
#include "model/pheno.h"

namespace tov {

class Population;
class settings;
struct EmSummary;

/// The phenotypes over the loci of a window, and the haplotypes found there.
struct ZipperStage {
    std::unique_ptr<TPhenDB> list;      ///< owned; its genotypes point into `pool`
    std::unique_ptr<TPopHaploDB> pool;  ///< owned
    double ln_likelihood = 0.0;
    int solutions = 0;  ///< distinct maximum likelihoods
};

/// The best of all orders of the loci.
struct ZipperResult {
    ZipperStage stage;           ///< the last one of the best order; the first order wins ties
    std::vector<int> order;      ///< loci, from 0, in the order in which they entered
    std::vector<int> in_window;  ///< L flags, by locus: it entered at all
    int window = 1;              ///< loci a stage
    int orders = 1;              ///< orders tried
    bool stopped = false;        ///< by the user; the rest is then not filled
};

/// 0 .. loci - 1; when `random`, from the last position down each changes place with an earlier one, never with itself.
///
/// kept on purpose: the shuffle is not uniform over all orders (it gives cycles through all loci only).
/// Draws: one ran3 a position but the first, none unless `random`. Source: Sattolo 1986.
[[nodiscard]] std::vector<int> zipper_order(int loci, bool random);

/// Runs the EM stage by stage along one or several orders of the loci of the sample's phenotypes.
///
/// Loci behind the last full window of an order don't enter. EMNumZipRandOrders random orders, or the natural one when
/// that is 0; windows of EMWinSize loci, at least 1 and at most all. Each stage starts with the inbreeding coefficient
/// of the settings. @param list  the phenotypes, left alone.
[[nodiscard]] ZipperResult run_zipper(Population& sample, TPhenDB const& list, settings& s);

/// Head of the zipper's report, up to its likelihood.
void print_zipper_head(std::ostream& out, EmSummary const& summary, ZipperResult const& result);

}  // namespace tov
