// Text of the estimates of haplotype frequencies in one pass, of sub-sets of loci, and of haplotypes that are known.
#include "inference/em_report.h"

#include <ostream>

#include "output/references.h"
#include "output/style.h"

namespace tov {

namespace {

constexpr int likelihood_digits = 5;

void print_copies(std::ostream& out, double gene_copies) {
    out << "No. of gene copies in sample                : " << static_cast<long long>(gene_copies) << '\n';
}
void print_starts(std::ostream& out, int starts) {
    out << "No. of random initial conditions for EM     : " << starts << '\n';
}
void print_solutions(std::ostream& out, EmSummary const& summary) {
    out << "No. of different maximum likelihoods found  : " << summary.solutions << '\n'
        << "Epsilon value for stopping iterations       : " << general_text(summary.epsilon) << '\n';
}

}  // namespace

void print_em_summary(std::ostream& out, EmSummary const& summary) {
    print_copies(out, summary.gene_copies);
    print_starts(out, summary.starts);
    print_solutions(out, summary);
}

void print_one_pass_head(std::ostream& out, EmSummary const& summary) {
    out << "\n-------------------------------------\n"
        << "Conventional EM algorithm  (one pass)\n"
        << "-------------------------------------\n";
    print_em_summary(out, summary);
    out << "LogLHood  : " << num{summary.ln_likelihood, 0, likelihood_digits} << "\n\n";
    print_references(out, {"dempster1977"});
}

void print_inbreeding(std::ostream& out, double F) {
    out << "Inbreeding coefficient                      : " << num{F} << '\n';
}

void print_bootstrap_line(std::ostream& out, int replicates) {
    if (replicates == 0) {
        out << "Standard deviations not computed \n";
    } else {
        out << "No. of bootstraps for generating s.d.'s      : " << replicates << '\n';
    }
}

void print_subset_banner(std::ostream& out, bool pairs, int replicates) {
    out << " \n \n" << rule{61, '*'};
    if (pairs) {
        out << " \n\nBi-locus ML haplotype frequencies : \n\n(" << replicates << " bootstrap replicates)\n";
    } else {
        out << " \n\nAllele frequencies : \n\n(" << replicates << " bootstrap replicates)\n";
    }
}

void print_subset_head(std::ostream& out, std::span<int const> loci, EmSummary const& summary, int replicates) {
    out << "Allele frequencies for ";
    if (loci.size() == 1) {
        out << "the locus " << loci[0] + 1 << "\n--------------------------------\n";
    } else {
        out << "the pair of loci( ";
        for (std::size_t i = 0; i < loci.size(); ++i) out << (i == 0 ? "" : " , ") << loci[i] + 1;
        out << " )\n---------------------------------------\n";
    }
    out << '\n';
    print_copies(out, summary.gene_copies);
    print_starts(out, summary.starts);
    if (replicates > 0) {
        out << "No. of bootstrap replicates                 : " << replicates << '\n';
    } else {
        out << "No bootstrap confidence interval estimation\n";
    }
    print_solutions(out, summary);
    out << "Logarithm of the sample maximum-likelihood  : " << num{summary.ln_likelihood, 0, likelihood_digits} << '\n';
}

void print_known_haplotypes_head(std::ostream& out, double gene_copies) {
    out << '\n';
    print_copies(out, gene_copies);
}

}  // namespace tov
