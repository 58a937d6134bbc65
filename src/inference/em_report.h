// Text of the estimates of haplotype frequencies in one pass, of sub-sets of loci, and of haplotypes that are known.
#pragma once

#include <iosfwd>
#include <span>

namespace tov {

/// What a report says about an estimation.
struct EmSummary {
    double gene_copies;    ///< printed truncated
    int starts;            ///< random initial conditions
    int solutions;         ///< distinct maximum likelihoods
    double epsilon;
    double ln_likelihood;
};

/// The four lines that all reports of an estimation share.
void print_em_summary(std::ostream& out, EmSummary const& summary);

/// Head of the estimation in one pass: its summary, the likelihood and the reference.
void print_one_pass_head(std::ostream& out, EmSummary const& summary);
/// The line of an inbreeding coefficient.
void print_inbreeding(std::ostream& out, double F);
/// The line on the bootstrap: its number of replicates, or that there is none.
void print_bootstrap_line(std::ostream& out, int replicates);
/// Head of the tables of all pairs of loci, or of all single loci.
void print_subset_banner(std::ostream& out, bool pairs, int replicates);
/// Head of the table of one sub-set of loci.
///
/// @param loci  indices from 0, printed from 1.
void print_subset_head(std::ostream& out, std::span<int const> loci, EmSummary const& summary, int replicates);
/// Head of the table of known haplotypes.
void print_known_haplotypes_head(std::ostream& out, double gene_copies);

}  // namespace tov
