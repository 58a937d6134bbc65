// PopulSequence: the reference, the arrays of sites, and molecular diversity.
#include "diversity/popseq.h"

namespace tov {

void PopulSequence::clean() {
    PopGenetics::clean();
    reference_.clear();
}

int PopulSequence::build_arbitrary_haplotype() {
    if (reference_.empty()) {
        reference_ = reference_sequence();
    }
    return 1;
}

void PopulSequence::begin_sites() {
    std::size_t const n = reference_.size();
    nb_loci_ = static_cast<int>(n);
    use_site_.assign(n, 0);
    polym_sites.assign(n, 0);
    missing_share_.assign(n, 0.0);
}

int PopulSequence::molecular_diversity(settings& s, char const* function, bool per_site, VarianceRoot root) {
    if (!ready_for_molecular_diversity(s, function, true)) {
        return has_dist_mat() && nb_haplotypes() > 0 ? 1 : 0;
    }
    double const scale = per_site ? nb_usable_loci_ : 1.0;
    store_molecular_diversity(scale * sum_of_pair_differences(haplotype_copies(), *dist_mat_), root, 1.0);
    return 1;
}

}  // namespace tov
