// Text of haplotype pools: the table of estimated frequencies and the plain listings.
#include <algorithm>
#include <ostream>
#include <vector>

#include "model/hpopdb.h"
#include "output/escape.h"
#include "output/style.h"

namespace tov {

namespace {

void print_allele(std::ostream& os, TAllele const* allele, char separator) {
    if (allele) os << doc_text(allele->name().str());
    if (separator) os << separator;
}

}  // namespace

std::ostream& operator<<(std::ostream& os, TPopHaplotype const& haplotype) {
    for (int p = 0; p < haplotype.nb_loci(); ++p) print_allele(os, haplotype[p], haplotype.separator());
    return os;
}

std::ostream& operator<<(std::ostream& os, TPopHaploDB const& pool) {
    for (TPopHaplotype const* const h : pool.view()) os << *h << "  " << h->freq() << '\n';
    return os << '\n';
}

void TPopHaploDB::print_alleles(std::ostream& os, TPopHaplotype const& h, bool compact) const {
    if (!compact || !has_pol_flags() || !reference_) {
        os << h;
        return;
    }
    int next = 0;
    for (int l = 0; l < static_cast<int>(pol_flags_.size()); ++l) {
        bool const polymorphic = pol_flags_[static_cast<std::size_t>(l)] != 0;
        print_allele(os, polymorphic ? h[next++] : (*reference_)[l], h.separator());
    }
}

void TPopHaploDB::print(std::ostream& os, int compact, double minFreq) {
    constexpr int rule_length = 39;
    std::vector<TPopHaplotype*> sorted(view().begin(), view().end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](TPopHaplotype const* a, TPopHaplotype const* b) { return *a < *b; });
    os << "\n------------------------------------------\n"
       << "Maximum-likelihood haplotype frequencies :\n"
       << "------------------------------------------\n\n"
       << "Total number of possible haplotypes      :" << integer{nb_haplotypes(), 15} << '\n'
       << "Minimum frequency to reach for output    :" << num{minFreq, 15, 3} << "\n\n"
       << rule{rule_length} << '\n'
       << label{"#", 5} << label{"Haplotype", 12} << label{"Freq.", 10} << label{"s.d.", 10} << '\n'
       << rule{rule_length} << '\n';
    int listed = 0;
    int unlisted = 0;
    double sum = 0.0;
    double listed_sum = 0.0;
    for (TPopHaplotype* const h : sorted) {
        sum += h->freq();
        if (!(h->freq() > minFreq)) {
            h->setId(--unlisted);
            continue;
        }
        listed_sum += h->freq();
        h->setId(++listed);
        os << integer{listed, 5} << user_text{h->name().str(), 12, false} << num{h->freq(), 10} << num{h->sd(), 12}
           << '\t';
        print_alleles(os, *h, compact != 0);
        os << '\n';
    }
    os << rule{rule_length} << '\n'
       << "Sum of all " << nb_haplotypes() << " haplotype frequencies : " << num{sum} << '\n'
       << "Sum of " << listed << " listed frequencies : " << num{listed_sum} << '\n';
}

std::ostream& operator<<(std::ostream& os, AHaplFreq const& freq) {
    auto const left = [&os](double value, int precision) { os << number_text(value, precision) << ' '; };
    left(freq.frequency, 7);
    left(freq.sq_frequency, 7);
    left(freq.mean, 4);
    left(freq.sd, 4);
    return os;
}

}  // namespace tov
