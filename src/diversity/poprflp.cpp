// PopulRFLP: life, settings of the distance, and polymorphic restriction sites.
#include "diversity/poprflp.h"

#include <string_view>
#include <vector>

#include "input/settings.h"

namespace tov {

PopulRFLP::PopulRFLP() = default;
PopulRFLP::~PopulRFLP() = default;

void PopulRFLP::initialize() {
    PopGenetics::initialize();
    initialize_RFLP();
}

void PopulRFLP::initialize_RFLP() {
    rflp_distance_method_ = RFLP_DIFF;
    deletion_weight_ = 1.0;
    pair_ = PairDistance{};
}

void PopulRFLP::clean() {
    PopGenetics::clean();
    reference_.clear();
}

int PopulRFLP::check_data() {
    char const* const function = "PopulRFLP::check_data()";
    return check_counts(function) && check_lengths(function) ? 1 : 0;
}

void PopulRFLP::set_distance(DistanceChoice const& choice) {
    set_distance_method(static_cast<rflp_distance_method>(choice.method));
    set_deletion_weight(choice.weights.deletion);
}

int PopulRFLP::build_arbitrary_haplotype() {
    if (reference_.empty()) {
        reference_ = reference_sequence();
    }
    return 1;
}

int PopulRFLP::compare_sites(char const& a, char const& b) const {
    if (a == b || a == profile.MissingData || b == profile.MissingData) {
        return 0;
    }
    return a == '-' || b == '-' ? 2 : 1;
}

int PopulRFLP::evaluate_polymorphism(settings const& s) {
    return has_contents() ? compare_RFLP_haplotypes(s) : evaluate_loci(s);
}

int PopulRFLP::compare_RFLP_haplotypes(settings const& s) {
    build_arbitrary_haplotype();
    std::vector<std::string_view> const contents = haplotype_contents();
    std::size_t const n = reference_.size();
    nb_loci_ = static_cast<int>(n);
    use_site_.assign(n, 0);
    polym_sites.assign(n, 0);
    missing_share_.assign(n, 0.0);
    char const missing = profile.MissingData;
    for (std::size_t site = 0; site < n; ++site) {
        char const base = reference_[site];
        if (base == missing || base == '-') {
            missing_share_[site] = 1.0;
            continue;
        }
        double copies = 0.0;
        bool polymorphic = false;
        for (std::size_t i = 0; i < contents.size(); ++i) {
            char const c = site < contents[i].size() ? contents[i][site] : missing;
            copies += c == missing ? haplotype(static_cast<int>(i)).copies : 0;
            int const kind = compare_sites(base, c);
            polymorphic = polymorphic || kind == 1 || (kind == 2 && deletion_weight_ > 0.0);
        }
        missing_share_[site] = sample_size() > 0.0 ? copies / sample_size() : 0.0;
        use_site_[site] = missing_share_[site] <= s.AllowedLevelOfMissingData ? 1 : 0;
        polym_sites[site] = polymorphic && use_site_[site] != 0 ? 1 : 0;
    }
    count_sites();
    return 1;
}

int PopulRFLP::diff_no_weight(char const* s1, char const* s2) {
    pair_ = rflp_difference(count_rflp_pair(s1, s2, use_site_, profile.MissingData), deletion_weight_);
    return nb_usable_loci_ > 0 ? 1 : 0;
}

int PopulRFLP::p_diff(char const* s1, char const* s2) {
    pair_ = rflp_proportion(count_rflp_pair(s1, s2, use_site_, profile.MissingData), deletion_weight_);
    return nb_usable_loci_ > 0 ? 1 : 0;
}

}  // namespace tov
