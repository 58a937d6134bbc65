// PopulSequence: what samples of DNA sequences and of restriction haplotypes share.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "diversity/popgen.h"

namespace tov {

/// A sample whose haplotypes are aligned texts: one character a site, compared with an arbitrary reference.
class PopulSequence : public PopGenetics {
public:
    void clean() override;
    /// Builds the reference unless there is one. @return 1.
    virtual int build_arbitrary_haplotype();

    std::string reference_;  ///< arbitrary reference haplotype; empty until built

protected:
    /// Walks the sites of the reference, which stands: each is usable when its share of missing data is allowed.
    ///
    /// Sites whose reference is missing data or '-' are unusable and not looked at. No site is polymorphic before
    /// `look` says so.
    /// @param allowed  largest share of missing data of a usable site.
    /// @param look     look(site, contents) notes what the haplotypes show at a site and returns the gene copies with
    ///                 missing data there. @see haplotype_contents()
    template <class Look>
    void walk_sites(double allowed, Look const& look) {
        std::vector<std::string_view> const contents = haplotype_contents();
        begin_sites();
        for (std::size_t site = 0; site < reference_.size(); ++site) {
            if (reference_[site] == profile.MissingData || reference_[site] == '-') {
                missing_share_[site] = 1.0;
                continue;
            }
            double const missing = look(site, contents);
            missing_share_[site] = sample_size() > 0.0 ? missing / sample_size() : 0.0;
            use_site_[site] = missing_share_[site] <= allowed ? 1 : 0;
        }
    }
    /// Pi and nucleotide diversity from the matrix, whose distances are per site or counts of sites.
    ///
    /// Haplotypes without texts leave the values alone. @return 1, or 0 after a report from `function`.
    int molecular_diversity(settings& s, char const* function, bool per_site, VarianceRoot root);

private:
    void begin_sites();
};

}  // namespace tov
