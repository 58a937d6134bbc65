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

int PopulRFLP::check_data() {
    char const* const function = "PopulRFLP::check_data()";
    return check_counts(function) && check_lengths(function) ? 1 : 0;
}

void PopulRFLP::set_distance(DistanceChoice const& choice) {
    set_distance_method(static_cast<rflp_distance_method>(choice.method));
    set_deletion_weight(choice.weights.deletion);
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
    char const missing = profile.MissingData;
    walk_sites(s.AllowedLevelOfMissingData, [&](std::size_t site, std::vector<std::string_view> const& contents) {
        double copies = 0.0;
        bool polymorphic = false;
        for (std::size_t i = 0; i < contents.size(); ++i) {
            char const c = site < contents[i].size() ? contents[i][site] : missing;
            copies += c == missing ? haplotype(static_cast<int>(i)).copies : 0;
            int const kind = compare_sites(reference_[site], c);
            polymorphic = polymorphic || kind == 1 || (kind == 2 && deletion_weight_ > 0.0);
        }
        polym_sites[site] = polymorphic ? 1 : 0;
        return copies;
    });
    for (std::size_t site = 0; site < polym_sites.size(); ++site) {
        polym_sites[site] = use_site_[site] != 0 ? polym_sites[site] : 0;
    }
    count_sites();
    return 1;
}

int PopulRFLP::one_pair(rflp_distance_method m, char const* s1, char const* s2) {
    pair_ = PairDistance{};
    if (nb_usable_loci_ <= 0) {
        return 0;
    }
    RflpCounts const counts = count_rflp_pair(s1, s2, use_site_, profile.MissingData);
    pair_ = m == RFLP_P_DIST ? rflp_proportion(counts, deletion_weight_) : rflp_difference(counts, deletion_weight_);
    return 1;
}

int PopulRFLP::diff_no_weight(char const* s1, char const* s2) { return one_pair(RFLP_DIFF, s1, s2); }
int PopulRFLP::p_diff(char const* s1, char const* s2) { return one_pair(RFLP_P_DIST, s1, s2); }

}  // namespace tov
