// Text of phenotypes and their genotypes: detailed lists, estimated frequencies, scores of phases.
#include <algorithm>
#include <ostream>

#include "model/pheno.h"
#include "output/escape.h"
#include "output/style.h"

namespace tov {

void TGenotype::print_genot(std::ostream& os, double const& total) const {
    constexpr int width = 13;
    os << left_label{number_text(total != 0.0 ? prob_ / total : 0.0, 5), width} << ' ' << *first_ << '\n'
       << left_label{"", width} << "  " << *second_ << '\n';
}

void TGenotype::printGenotFreqs(std::ostream& os, int const& i, double const& total) const {
    os << integer{i + 1, 5} << '\t' << num{total != 0.0 ? prob_ / total : 0.0, 12} << '\t' << num{prob_, 12} << '\t'
       << integer{first_->ID(), 12} << '\t' << *first_ << '\n'
       << label{"", 5} << '\t' << label{"", 12} << '\t' << label{"", 12} << '\t' << integer{second_->ID(), 12} << '\t'
       << *second_ << '\n';
}

std::ostream& operator<<(std::ostream& os, TPhenotype const& phenotype) {
    os << doc_text(phenotype.name().str()) << '\t' << phenotype.obs_count();
    for (int which = 0; which < 2; ++which) {
        os << '\t';
        if (TPopHaplotype const* const chromosome = phenotype.ps_hapl(which)) os << *chromosome;
        os << '\n';
    }
    return os;
}

void TPhenotype::print_detailed_genotypes(std::ostream& os) const {
    os << doc_text(name_.str()) << num{phen_proba_, 15, 3} << '\n';
    for (TGenotype const* const g : genotypes_.view()) g->print_genot(os, phen_proba_);
}

void TPhenotype::printGenotypeFreqs(std::ostream& os, int const& i, double const& /*N*/, double F) {
    if (genotypes_.IsEmpty()) {
        os << "\nGenotypes are undefined for this phenotype...\n";
        return;
    }
    phen_proba_ = 0.0;
    for (TGenotype* const g : genotypes_.view()) {
        double const p = g->first()->freq();
        double const q = g->second()->freq();
        g->set_prob(g->first() == g->second() ? (1.0 - F) * p * p + F * p : 2.0 * (1.0 - F) * q * p);
        phen_proba_ += g->prob();
    }
    os << "\n================\n"
       << "Phenotype #" << i + 1 << '\n'
       << "================\n";
    os << left_label{"Name", name_.length() + 2} << label{"Abs. Freq.", 12} << label{"Rel. Freq.\n", 12};
    os << user_text{name_.str(), name_.length() + 2} << integer{static_cast<long long>(obs_count_), 7}
       << num{phen_proba_, 18} << "\n\n";
    genotypes_.quickSortArray();
    os << "List of genotypes (" << integer{genot_real_count(), 5} << ")\n"
       << "-------------------------\n"
       << label{"Gen. #", 5} << '\t' << label{"Rel. Freq.", 12} << '\t' << label{"Exp. Freq.", 12} << '\t'
       << label{"Hapl. IDs", 12} << '\t' << "Haplotypes\n";
    int row = 0;
    for (TGenotype const* const g : genotypes_.view()) g->printGenotFreqs(os, row++, phen_proba_);
}

void TPhenDB::print_all_genotypes(std::ostream& os) const {
    os << "\n\nList of detailed genotypes"
       << "\n==========================\n\n";
    for (TPhenotype const* const p : view()) p->print_detailed_genotypes(os);
}

void TPhenDB::printGenotypeFrequencies(std::ostream& os, double const& N) {
    os << "\n\n-------------------------------------------"
       << "\nMaximum-likelihood frequencies of genotypes"
       << "\n-------------------------------------------\n\n"
       << "(Haplotypes that are not listed above have a negative id)\n\n";
    int i = 0;
    for (TPhenotype* const p : view()) p->printGenotypeFreqs(os, i++, N, F);
}

namespace {

double summed_probability(TPhenotype const& p) {
    double sum = 0.0;
    for (TGenotype const* const g : p.genotypes().view()) sum += g->prob();
    return sum;
}

// The first one wins ties.
TGenotype const* most_likely(TPhenotype const& p) {
    double best = -1.0;
    TGenotype const* winner = nullptr;
    for (TGenotype const* const g : p.genotypes().view()) {
        if (g->prob() > best) {
            best = g->prob();
            winner = g;
        }
    }
    return winner;
}

bool phase_is_right(TPhenotype const& p, TGenotype const& g) {
    TPopHaplotype const* const a = p.ps_hapl0();
    TPopHaplotype const* const b = p.ps_hapl1();
    if (!a || !b) return false;
    return (*g.first() == *a && *g.second() == *b) || (*g.first() == *b && *g.second() == *a);
}

void print_share(std::ostream& os, TGenotype const& g, double sum) {
    auto const flags = os.flags();
    auto const precision = os.precision(5);
    os.unsetf(std::ios::floatfield);
    os << (sum != 0.0 ? g.prob() / sum : 0.0);
    os.precision(precision);
    os.flags(flags);
    os << "\t[" << *g.first() << "] & [" << *g.second();
}

}  // namespace

double TPhenDB::percent_correct_gametic_phase(std::ostream& os) {
    multi_heterozygotes = 0;
    correct_phases = 0;
    int right = 0;
    int all = 0;
    for (int i = 0; i < size(); ++i) {
        TPhenotype& p = phenotype(i);
        int const count = static_cast<int>(p.obs_count());
        all += count;
        TGenotype const* const best = most_likely(p);
        bool const ambiguous = p.count_hetero_loci() >= 2;
        if (ambiguous) multi_heterozygotes += count;
        if (!best) continue;
        bool const ok = phase_is_right(p, *best);
        if (ok) right += count;
        if (ok && ambiguous) correct_phases += count;
        if (!os.good()) continue;
        double const sum = summed_probability(p);
        os << "Phenotype : " << i + 1 << " (freq: " << p.obs_count() << ")\n"
           << "\tCorrect genotype      : \t";
        print_share(os, p.genotype(0), sum);
        os << "]\n\tMost likely genotype  : \t";
        print_share(os, *best, sum);
        os << "]\t" << (ok ? "Phase OK\n" : "Bad phase\n");
    }
    return all > 0 ? static_cast<double>(right) / all : 0.0;
}

}  // namespace tov
