// Samples::computeAndOutputAlleFreqPerPop: tables of allele frequencies, one file a locus and one for all.
#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "input/settings.h"
#include "model/sample.h"
#include "output/summary_table.h"
#include "output/tab_row.h"

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

void append_frequencies(TabRow& row, TAllele const& allele, int samples) {
    row << allele.name();
    double const* const frequencies = allele.pop_freq();
    for (int s = 0; s < samples; ++s) {
        row << (frequencies != nullptr && s < allele.pop_freq_slots() ? frequencies[s] : 0.0);
    }
}

std::string label(char const* word, int number) { return word + std::to_string(number); }

}  // namespace

void Samples::computeAndOutputAlleFreqPerPop(settings& s) {
    TAlleleDB const* const database = IsEmpty() ? nullptr : (*this)[0]->alleles;
    if (database == nullptr) {
        return;
    }
    int const n = NbPopulations();
    std::ofstream names(side_table_path(s, "PopNames.txt", pooled != 0), std::ios::trunc);
    for (int i = 0; i < n; ++i) {
        TabRow(names) << label("Pop_", i + 1) << (*this)[i]->pop_name();
    }
    auto const append_head = [n](TabRow& row) {
        row << "Allele";
        for (int i = 0; i < n; ++i) {
            row << label("Pop_", i + 1);
        }
    };
    std::ofstream all(side_table_path(s, "AllAlleleFreqs.txt", pooled != 0), std::ios::trunc);
    {
        TabRow head(all);
        head << "Locus";
        append_head(head);
    }
    for (int l = 0; l < database->nb_loci(); ++l) {
        std::ofstream one(side_table_path(s, label("AllFreqLocus_", l + 1) + ".txt", pooled != 0), std::ios::trunc);
        {
            TabRow head(one);
            append_head(head);
        }
        for (TAllele const* const allele : named_alleles(*database->locus(l), MissingData)) {
            TabRow of_locus(one), of_all(all);
            append_frequencies(of_locus, *allele, n);
            of_all << label("Locus_", l + 1);
            append_frequencies(of_all, *allele, n);
        }
    }
}

}  // namespace tov
