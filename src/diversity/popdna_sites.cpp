// PopulDNA: usable and polymorphic sites of a sample.
#include <algorithm>
#include <string_view>
#include <vector>

#include "diversity/popdna.h"
#include "input/settings.h"

namespace tov {
namespace {

// What a site shows against the reference; bits of site_class_.
constexpr unsigned char has_transition = 1;
constexpr unsigned char has_transversion = 2;
constexpr unsigned char has_two_transversions = 4;
constexpr unsigned char has_deletion = 8;
constexpr unsigned char has_other = 16;

}  // namespace

int PopulDNA::compare_nucleotides(char const& a, char const& b) const {
    return static_cast<int>(nucleotide_pair_class(a, b));
}

bool PopulDNA::has_substitution(int site) const {
    return site >= 0 && site < static_cast<int>(site_class_.size()) && usableSite(site) != 0 &&
           (site_class_[static_cast<std::size_t>(site)] & (has_transition | has_transversion)) != 0;
}

int PopulDNA::evaluate_polymorphism(settings const& s) {
    counts_ = SubstitutionCounts{};
    site_class_.clear();
    return has_contents() ? compare_DNA_sequences(s) : evaluate_loci(s);
}

unsigned char PopulDNA::class_of_site(std::size_t site, std::span<std::string_view const> contents, double& missing) {
    char const base = reference_[site];
    char transversion = '\0';
    unsigned char flags = 0;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        char const c = site < contents[i].size() ? contents[i][site] : profile.MissingData;
        if (c == base) {
            continue;
        }
        if (c == profile.MissingData) {
            missing += haplotype(static_cast<int>(i)).copies;
            continue;
        }
        switch (nucleotide_pair_class(base, c)) {
            case SiteClass::transition:
                flags |= weights_.transition > 0.0 ? has_transition : 0;
                break;
            case SiteClass::transversion:
                if (weights_.transversion > 0.0) {
                    flags |= has_transversion;
                    flags |= transversion != '\0' && transversion != c ? has_two_transversions : 0;
                    transversion = c;
                }
                break;
            case SiteClass::deletion:
                flags |= weights_.deletion > 0.0 ? has_deletion : 0;
                break;
            case SiteClass::ambiguous:
                flags |= has_other;
                break;
            case SiteClass::none:
                break;
        }
    }
    return flags;
}

int PopulDNA::compare_DNA_sequences(settings const& s) {
    build_arbitrary_haplotype();
    site_class_.assign(reference_.size(), 0);
    walk_sites(s.AllowedLevelOfMissingData, [this](std::size_t site, std::vector<std::string_view> const& contents) {
        double missing = 0.0;
        site_class_[site] = class_of_site(site, contents, missing);
        return missing;
    });
    count_site_classes();
    count_sites();
    return 1;
}

void PopulDNA::count_site_classes() {
    int const private_sites = counts_.private_sites;
    counts_ = SubstitutionCounts{};
    counts_.private_sites = private_sites;
    if (globalSubstPolymSites.GetItemsInContainer() < nb_loci_) {
        globalSubstPolymSites.Resize(nb_loci_);
        while (globalSubstPolymSites.GetItemsInContainer() < nb_loci_) {
            globalSubstPolymSites.Add(0);
        }
    }
    for (std::size_t site = 0; site < site_class_.size(); ++site) {
        unsigned char const flags = site_class_[site];
        if (use_site_[site] == 0 || flags == 0) {
            continue;
        }
        bool const transition = (flags & has_transition) != 0;
        bool const transversion = (flags & has_transversion) != 0;
        bool const deletion = (flags & has_deletion) != 0;
        counts_.transition_sites += transition;
        counts_.transversion_sites += transversion;
        counts_.transversions += transversion + ((flags & has_two_transversions) != 0);
        counts_.substitution_sites += transition || transversion;
        counts_.indel_sites += deletion;
        polym_sites[site] = 1;
        if (transition || transversion) {
            globalSubstPolymSites[static_cast<long>(site)] = 1;
        }
    }
    counts_.transitions = counts_.transition_sites;
    counts_.substitutions = counts_.transitions + counts_.transversions;
    counts_.indels = counts_.indel_sites;
}

}  // namespace tov
