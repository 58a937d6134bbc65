// Samples::computeAndOutputAlleFreqPerPop: tables of allele frequencies, one file a locus and one for all.
#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "input/settings.h"
#include "model/sample.h"

namespace tov {

namespace {

/// Alleles of a locus by name, without the blank that no sample holds and without missing data.
std::vector<TAllele const*> named_alleles(TLocus const& locus, char missing) {
    std::vector<TAllele const*> alleles;
    char const text[] = {missing, '\0'};
    for (int a = 0; a < locus.nb_alleles(); ++a) {
        TAllele const* const allele = locus.allele(a);
        if (!is_unused_blank(locus, a) && !(allele->name() == my_string(text))) {
            alleles.push_back(allele);
        }
    }
    std::stable_sort(alleles.begin(), alleles.end(),
                     [](TAllele const* a, TAllele const* b) { return a->name() < b->name(); });
    return alleles;
}

void write_frequencies(std::ostream& out, TAllele const& allele, int samples) {
    out << allele.name();
    double const* const frequencies = allele.pop_freq();
    for (int s = 0; s < samples; ++s) {
        out << '\t' << (frequencies != nullptr && s < allele.pop_freq_slots() ? frequencies[s] : 0.0);
    }
    out << '\n';
}

}  // namespace

void Samples::computeAndOutputAlleFreqPerPop(settings& s) {
    TAlleleDB const* const database = IsEmpty() ? nullptr : (*this)[0]->alleles;
    if (database == nullptr) {
        return;
    }
    int const n = NbPopulations();
    std::string const& directory = s.project_dir;
    std::ofstream names(directory + "PopNames.txt", std::ios::trunc);
    std::string head = "Allele";
    for (int i = 0; i < n; ++i) {
        names << "Pop_" << i + 1 << '\t' << (*this)[i]->pop_name() << '\n';
        head += "\tPop_" + std::to_string(i + 1);
    }
    std::ofstream all(directory + "AllAlleleFreqs.txt", std::ios::trunc);
    all << "Locus\t" << head << '\n';
    for (int l = 0; l < database->nb_loci(); ++l) {
        std::ofstream one(directory + "AllFreqLocus_" + std::to_string(l + 1) + ".txt", std::ios::trunc);
        one << head << '\n';
        for (TAllele const* const allele : named_alleles(*database->locus(l), MissingData)) {
            write_frequencies(one, *allele, n);
            all << "Locus_" << l + 1 << '\t';
            write_frequencies(all, *allele, n);
        }
    }
}

}  // namespace tov
