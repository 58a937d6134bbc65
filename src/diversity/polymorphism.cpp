// Usable and polymorphic loci of a sample from its alleles.
#include <algorithm>
#include <span>
#include <vector>

#include "diversity/locus_walk.h"
#include "diversity/popgen.h"
#include "input/settings.h"

namespace tov {

int PopGenetics::evaluate_loci(settings const& s) {
    LocusWalk const walk(*this);
    nb_loci_ = walk.nb_loci();
    auto const n = static_cast<std::size_t>(nb_loci_);
    use_site_.assign(n, 0);
    polym_sites.assign(n, 0);
    missing_share_.assign(n, 0.0);
    LocusCounts counts;
    for (int locus = 0; locus < nb_loci_; ++locus) {
        walk.count(locus, MissingOnly{}, counts);
        auto const i = static_cast<std::size_t>(locus);
        double const total = counts.total + counts.uncounted;
        missing_share_[i] = total > 0.0 ? counts.uncounted / total : 1.0;
        use_site_[i] = missing_share_[i] <= s.AllowedLevelOfMissingData ? 1 : 0;
        polym_sites[i] = use_site_[i] != 0 && counts.alleles.size() > 1 ? 1 : 0;
    }
    count_sites();
    return 1;
}

}  // namespace tov
