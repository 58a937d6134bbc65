// Genotype assignment.
#include "structure/assignment.h"

#include <memory>
#include <ostream>
#include <string>

#include "input/settings.h"
#include "model/sample.h"
#include "output/html_out.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"
#include "output/xml.h"

namespace tov {

void IndLikelihood::run() {
    print_heading();
    number_alleles();
    calc_alleles_freqs();
    std::ostream& out = set_->ofs();
    for (int i = 0; i < samples_->NbPopulations() && !*set_->is_stop(); ++i) {
        Population const& population = *(*samples_)[i];
        XmlSection const section(out, "genotypeLikelihoodMatrix", "pop", population.pop_name().str());
        out << label{"Sample", width} << "   ";
        for (int s = 0; s < samples_->NbPopulations(); ++s) {
            out << integer{s + 1, width};
        }
        out << "\n----------\n";
        likelihood_in_a_pop(population);
    }
    frequencies_.clear();
}

void IndLikelihood::print_heading() const {
    std::ostream& out = set_->ofs();
    char const* const anchor = samples_->pooled ? "_gr_genot_assignment" : "_genot_assignment";
    print_js_doc_entry(*set_, 1, anchor, "Genotype assignment");
    out << "\n"
        << rule{59, '='} << "\n== LIKELIHOOD OF INDIVIDUAL GENOTYPES IN ALL POPULATIONS ==\n"
        << rule{59, '='} << "\n\n";
    print_references(out, {"paetkau1995", "waser_strobeck1998"});
    out << "\nList of labels for population samples used below:"
        << "\n=================================================\n";
    std::vector<std::string> names;
    for (int i = 0; i < samples_->NbPopulations(); ++i) {
        names.push_back((*samples_)[i]->pop_name().str());
    }
    XmlSection const section(out, "genotPopLabels");
    label_list(out, names, {"Sample label  \tSample name\n------------  \t----------\n", "       ", ":\t"});
}

/// Gives every allele of the project its place in a sample's array.
void IndLikelihood::number_alleles() {
    TAlleleDB const* const database = set_->alleles != nullptr ? set_->alleles : (*samples_)[0]->alleles;
    loci_ = database->nb_loci();
    first_place_.assign(1, 0);
    missing_rank_.clear();
    char const text[] = {samples_->MissingData, '\0'};
    for (int locus = 0; locus < loci_; ++locus) {
        TAllele const* const missing = database->locus(locus)->find_allele_by_name(std::string_view(text));
        missing_rank_.push_back(missing == nullptr ? -1 : missing->rank());
        first_place_.push_back(first_place_.back() + database->locus(locus)->nb_alleles());
    }
}

int IndLikelihood::place(int locus, int rank) const {
    return rank < 0 || rank == missing_rank_[locus] ? -1 : first_place_[locus] + rank;
}

std::vector<AllelePair> IndLikelihood::genotype_of(Population const& population, int individual) const {
    TPhenotype const& phenotype = population.phenotypes.phenotype(individual);
    std::vector<AllelePair> genotype(loci_);
    for (int locus = 0; locus < loci_; ++locus) {
        if (phenotype.ps_hapl0() != nullptr && phenotype.ps_hapl1() != nullptr) {
            genotype[locus] = {place(locus, phenotype.ps_hapl0()->alleles().rank(locus)),
                               place(locus, phenotype.ps_hapl1()->alleles().rank(locus))};
        }
    }
    return genotype;
}

void IndLikelihood::calc_alleles_freqs() {
    frequencies_.assign(samples_->NbPopulations(), std::vector<double>(first_place_.back(), 0.0));
    for (int s = 0; s < samples_->NbPopulations(); ++s) {
        for (int locus = 0; locus < loci_ && !*set_->is_stop(); ++locus) {
            estimate_locus(*(*samples_)[s], locus, frequencies_[s]);
        }
    }
}

/// The EM on one locus, over the individuals with both alleles known; none of them leaves all frequencies at 0.
void IndLikelihood::estimate_locus(Population& population, int locus, std::vector<double>& frequencies) {
    TPhenDB one_locus;
    int const chosen[] = {1, locus};
    for (int i = 0; i < population.phenotypes.size(); ++i) {
        TPhenotype const& phenotype = population.phenotypes.phenotype(i);
        if (phenotype.ps_hapl0() == nullptr || phenotype.ps_hapl1() == nullptr ||
            place(locus, phenotype.ps_hapl0()->alleles().rank(locus)) < 0 ||
            place(locus, phenotype.ps_hapl1()->alleles().rank(locus)) < 0) {
            continue;
        }
        auto restricted = std::make_unique<TPhenotype>();
        restricted->copy_restricted_pheno(chosen, phenotype);
        one_locus.Add(restricted.release());  // owns it from here on
    }
    if (one_locus.size() == 0) {
        return;
    }
    TPopHaploDB estimates;
    int solutions = 0;
    double F = 0.0;
    population.calc_ML_hapl_freq_hill95_LD(one_locus, estimates, *set_, solutions, 0, F, nullptr, nullptr, 0,
                                           set_->InitialConditionsEM, set_->MaximumNumOfIterationsEM,
                                           set_->EpsilonValue);
    for (int h = 0; h < static_cast<int>(estimates.GetItemsInContainer()); ++h) {
        TPopHaplotype const& haplotype = estimates.haplotype(h);
        TAllele const* const allele = haplotype[0];
        int const at = allele == nullptr ? -1 : place(locus, allele->rank());
        if (at >= 0) {
            frequencies[at] = haplotype.freq();
        }
    }
}

void IndLikelihood::likelihood_in_a_pop(Population const& population) {
    std::ostream& out = set_->ofs();
    std::vector<double> floors;
    for (int s = 0; s < samples_->NbPopulations(); ++s) {
        floors.push_back(undetected_frequency((*samples_)[s]->phenotypes.size()));
    }
    for (int i = 0; i < population.phenotypes.size(); ++i) {
        std::vector<AllelePair> const genotype = genotype_of(population, i);
        out << user_text{population.phenotypes.phenotype(i).name().str(), width, false} << "   ";
        for (std::size_t s = 0; s < frequencies_.size(); ++s) {
            out << num{genotype_log_likelihood(genotype, frequencies_[s], floors[s]), width, 3};
        }
        out << std::endl;
    }
}

}  // namespace tov
