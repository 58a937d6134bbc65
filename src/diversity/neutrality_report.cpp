// What the neutrality tests print.
#include "diversity/neutrality_report.h"

#include <ostream>
#include <string>

#include "base/arrays.h"
#include "diversity/popgen.h"
#include "output/style.h"
#include "output/table.h"
#include "output/xml.h"

namespace tov {

namespace {

constexpr int WIDTH = 12;
constexpr int DIGITS = 5;
constexpr int MOST_COPIES = 5000;
constexpr int MOST_ALLELES = 1000;

num real(double x) { return {x, WIDTH, DIGITS}; }

}  // namespace

// --- Tajima ---

void print_tajima_sample(std::ostream& out, TajimaReport const& r) {
    out << "Sample size                           : " << r.copies << '\n'
        << "No. of sites with substitutions (S)   : " << r.sites << '\n'
        << "Mean No. of pairwise differences (Pi) : " << real(r.pi) << "\nDistance method                       : "
        << "Pairwise difference (no Gamma correction, indels not taken into account)\n"
        << "\nTajima's D                            : " << real(r.D);
}

void print_tajima_simulation(std::ostream& out, TajimaSimulationReport const& r) {
    out << "\nNo. of simulations                    : " << r.replicates
        << "\nObs. Theta(S)                         : " << real(r.theta_S)
        << "\nMean Theta(S)                         : " << real(r.theta.mean)
        << "\nS.D. Theta(S)                         : " << real(r.theta.sd)
        << "\nMean D                                : " << real(r.D.mean)
        << "\nS.D. D                                : " << real(r.D.sd)
        << "\n\nP(D simul &lt; D obs)                    : " << real(r.p) << "\n\n";
}

// --- Fu ---

void print_fu_single_allele(std::ostream& out, int copies, int alleles) {
    out << "\nSample size                  :" << copies << "\nObs. k                       :" << alleles << '\n'
        << "Fu's Fs test cannot be computed if only one allele in sample\n";
}

void print_fu_sample(std::ostream& out, FuReport const& r) {
    if (r.checks_definition) {
        out << "Original No. of alleles      :" << r.original_alleles
            << "\nActual No. of # alleles  (k) :" << r.alleles;
    } else {
        out << "Original No. of alleles(k)   :" << r.alleles;
    }
    out << "\nTheta(Pi)                    :" << real(r.theta_pi)
        << "\nExp. No. of alleles          :" << real(r.expected_alleles)
        << "\nFs                           :" << label{value_or_na(r.Fs, DIGITS), WIDTH} << '\n';
}

void print_fu_simulation(std::ostream& out, FuSimulationReport const& r) {
    out << "\nNo. of simulations           :" << r.replicates
        << "\nMean Theta(Pi)               :" << real(r.theta.mean)
        << "\nS.D. Theta(Pi)               :" << real(r.theta.sd)
        << "\nMean k                       :" << real(r.alleles.mean)
        << "\nS.D. k                       :" << real(r.alleles.sd)
        << "\n\nProb(sim_Fs &lt;=obs_Fs)        :" << real(r.p) << "\n\n";
}

// --- Ewens-Watterson ---

void print_ewens_obstacle(std::ostream& out, EwensObstacle obstacle, int copies, int alleles) {
    out << "No. of genes in sample   : " << copies << "\nNo. of alleles in sample : " << alleles << '\n';
    switch (obstacle) {
        case EwensObstacle::none: break;
        case EwensObstacle::all_copies_distinct:
            out << "\nThe test is impossible because all gene copies are different";
            break;
        case EwensObstacle::one_allele:
            out << "\nThe test is impossible because there is only one allele in"
                << " the sample";
            break;
        case EwensObstacle::too_large:
            // kept on purpose: no blank in front of the two numbers
            out << "\nThe test is impossible because the number of genes is bigger than" << MOST_COPIES
                << " or the number of Alleles is bigger than" << MOST_ALLELES << " .";
            break;
    }
    out << '\n' << rule{60} << '\n';
}

std::string_view ewens_obstacle_row(EwensObstacle obstacle) {
    switch (obstacle) {
        case EwensObstacle::none: break;
        case EwensObstacle::all_copies_distinct:
            return "Ewens-Watterson test is impossible because all gene copies are different";
        case EwensObstacle::one_allele:
            return "Ewens-Watterson test is impossible because there is only one allele in the sample";
        case EwensObstacle::too_large: return "Ewens-Watterson test is impossible because the sample is too large";
    }
    return {};
}

void print_ewens_table_limit(std::ostream& out) {
    out << "Watterson F test of selective neutrality is not possible with more than " << MOST_ALLELES
        << " alleles or \n"
        << "with more than " << MOST_COPIES << " gene copies\n";
}

void print_ewens(std::ostream& out, EwensReport const& r) {
    if (r.checks_definition) {
        out << "Haplotype real differences were checked before tests\n"
            << "No. of genes in sample                :" << integer{r.copies, WIDTH}
            << "\nNo. of original haplotypes in sample  :" << integer{r.original_haplotypes, WIDTH}
            << "\nNo. of different haplotypes in sample :" << integer{r.haplotypes, WIDTH};
    } else {
        out << "Original haplotype definition was used for the tests\n"
            << "No. of genes in sample       :" << integer{r.copies, WIDTH}
            << "\nNo. of haplotypes in sample  :" << integer{r.haplotypes, WIDTH};
    }
    out << "\nObserved F value             :" << real(r.F_obs) << "\nExpected F value             :" << real(r.F_exp)
        << "\nNo. of simulated samples     :" << integer{r.replicates, WIDTH}
        << "\nWatterson F P.Value          :" << real(r.p_watterson)
        << "\nSlatkin's Exact P.Value      :" << real(r.p_slatkin) << "\n\n";
}

void PopGenetics::print_obs_hapl_freq(std::ostream& out, MY_TISArrayAsVector<AHaplFreq> const& observed) const {
    XmlSection const section(out, "obsHapFreq");
    out << "Observed haplotype frequencies\n\n"
        << label{"All.#", 6} << label{"Rel. freq.", WIDTH} << label{"Abs. Freq.", WIDTH} << '\n'
        << rule{6 + 2 * WIDTH} << '\n';
    int rank = 0;
    for (AHaplFreq const* const f : observed) {
        out << integer{++rank, 6} << real(f->frequency / nb_genes()) << real(f->frequency) << '\n';
    }
    out << '\n';
}

void PopGenetics::print_exp_freq(std::ostream& out, MY_TISArrayAsVector<AHaplFreq> const& ranks) const {
    XmlSection const section(out, "expHapFreq");
    out << "Expected haplotype frequencies under the infinite-allele model\n"
        << "as predicted by Ewens' (1972) sampling distribution\n\n"
        << label{"All.#", 6} << label{"Rel. freq.", WIDTH} << label{"s.d.", WIDTH} << label{"Abs. Freq.", WIDTH}
        << label{"s.d.", WIDTH} << '\n'
        << rule{6 + 4 * WIDTH} << '\n';
    int rank = 0;
    for (AHaplFreq const* const f : ranks) {
        out << integer{++rank, 6} << real(f->frequency) << real(f->sq_frequency) << real(f->mean) << real(f->sd)
            << '\n';
    }
    out << '\n';
}

// --- Chakraborty ---

void print_chakraborty(std::ostream& out, ChakrabortyReport const& r) {
    out << "No. of genes in sample       :" << integer{r.copies, WIDTH}
        << "\nNo. of alleles in sample (k) :" << integer{r.alleles, WIDTH}
        << "\nObserved Homozygosity        :" << real(r.homozygosity)
        << "\nExp. No. of alleles          :" << real(r.expected_alleles)
        << "\nP(exactly k alleles)         :" << real(r.p_exact)
        << "\nP(k or more alleles)         :" << real(r.p_or_more) << "\n\n";
}

void print_chakraborty_distinct(std::ostream& out, int copies, int alleles) {
    out << "No. of genes in sample   : " << copies << "\nNo. of alleles in sample : " << alleles << '\n'
        << "\nThe test is impossible because all gene copies are different\n";
}

void print_chakraborty_limit(std::ostream& out) {
    out << "Chakraborty neutrality test not possible with more than " << MOST_ALLELES << " alleles or\n"
        << "more than " << MOST_COPIES << " gene copy.\n";
}

void warn_single_haplotype(std::ostream& out, std::ostream& console, std::string_view test) {
    std::string const first = "Warning: " + std::string(test) + " test of selective neutrality cannot be performed \n";
    std::string_view const second = "when there is a single haplotype in the sample. Skipping task...\n";
    console << "\t\t" << first << "\t\t" << second;
    out << first << second;
}

}  // namespace tov
