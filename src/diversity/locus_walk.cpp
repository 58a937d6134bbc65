// Allele counts of one locus after the other, from the haplotypes or the individuals of a sample.
#include "diversity/locus_walk.h"

#include <algorithm>
#include <string_view>

#include "model/popbase.h"

namespace tov {

bool is_ambiguous_base(char c) noexcept { return std::string_view("RYMKSWBDHVN").find(c) != std::string_view::npos; }

/// Copies by rank of the allele within its locus.
struct LocusWalk::Tally {
    struct Slot {
        TAllele* allele = nullptr;
        double copies = 0.0;
        bool counts = false;
    };
    std::vector<Slot> slots;
    double uncounted = 0.0;
    char missing = '?';
    bool skip_ambiguous = false;

    [[nodiscard]] bool is_counted(TAllele const& allele) const {
        std::string_view const name(allele.name());
        if (name.size() != 1) {
            return true;
        }
        return name[0] != missing && !(skip_ambiguous && is_ambiguous_base(name[0]));
    }
    /// @return whether the allele counts.
    bool add(TAllele* allele, int rank, double copies) {
        if (allele == nullptr || rank < 0) {
            uncounted += copies;
            return false;
        }
        if (rank >= static_cast<int>(slots.size())) {
            slots.resize(static_cast<std::size_t>(rank) + 1);
        }
        Slot& slot = slots[static_cast<std::size_t>(rank)];
        if (slot.allele == nullptr) {
            slot.allele = allele;
            slot.counts = is_counted(*allele);
        }
        (slot.counts ? slot.copies : uncounted) += copies;
        return slot.counts;
    }
};

LocusWalk::LocusWalk(Population const& sample) : sample_(&sample) {
    for (int i = 0; i < sample.nb_haplotypes(); ++i) {
        nb_loci_ = std::max(nb_loci_, sample.haplotype(i).nb_loci());
    }
    if (nb_loci_ == 0 && sample.phenotypes.size() > 0) {
        *this = LocusWalk(sample, sample.phenotypes);
    }
}

LocusWalk::LocusWalk(Population const& sample, TPhenDB const& phenotypes) : sample_(&sample), phenotypes_(&phenotypes) {
    for (int i = 0; i < phenotypes.size(); ++i) {
        nb_loci_ = std::max(nb_loci_, phenotypes.phenotype(i).pheno_length());
    }
}

void LocusWalk::count_haplotypes(int locus, Tally& tally) const {
    for (int i = 0; i < sample_->nb_haplotypes(); ++i) {
        PHaploDef const& entry = sample_->haplotype(i);
        TAllele* const allele = entry[locus];
        tally.add(allele, allele ? allele->rank() : -1, entry.copies);
    }
}

void LocusWalk::count_phenotypes(int locus, Tally& tally, LocusCounts& counts) const {
    for (int i = 0; i < phenotypes_->size(); ++i) {
        TPhenotype const& phenotype = phenotypes_->phenotype(i);
        TAllele* const a = phenotype.pseudo_hapl0(locus);
        TAllele* const b = phenotype.pseudo_hapl1(locus);
        double const n = phenotype.obs_count();
        bool const first = tally.add(a, a ? a->rank() : -1, n);
        bool const second = tally.add(b, b ? b->rank() : -1, n);
        if (first && second) {
            counts.individuals += n;
            counts.heterozygotes += a != b ? n : 0.0;
        }
    }
}

void LocusWalk::count(int locus, bool skip_ambiguous, LocusCounts& counts) const {
    counts = LocusCounts{};
    Tally tally;
    tally.missing = sample_->profile.MissingData;
    tally.skip_ambiguous = skip_ambiguous;
    if (phenotypes_ != nullptr) {
        count_phenotypes(locus, tally, counts);
    } else {
        count_haplotypes(locus, tally);
    }
    counts.uncounted = tally.uncounted;
    for (Tally::Slot const& slot : tally.slots) {
        if (slot.counts && slot.copies > 0.0) {
            counts.alleles.push_back({slot.allele, slot.copies});
            counts.total += slot.copies;
        }
    }
}

}  // namespace tov
