// How the writers of foreign formats see an opened project: entry by entry, each with its copies.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

#include "model/popbase.h"

namespace tov {

class Project;

/// A haplotype, or an individual with its two chromosomes. All pointers and texts are borrowed from the sample.
struct ExportEntry {
    std::string_view name;
    int chromosomes = 1;
    AlleleRow const* rows[2] = {nullptr, nullptr};  ///< null where no alleles were built
    std::string_view texts[2];                      ///< definitions as they were read
    std::int64_t copies = 0;                        ///< gene copies of a haplotype, or individuals

    /// Rank of the allele of a chromosome at a locus; -1 without one.
    [[nodiscard]] int rank(int chromosome, int locus) const {
        return rows[chromosome] ? rows[chromosome]->rank(locus) : -1;
    }
};

/// Calls f(ExportEntry const&) for each entry of a sample, in order.
template <class F>
void for_each_entry(Population const& sample, F f) {
    ExportEntry entry;
    if (!sample.is_genotypic()) {
        for (PHaploDef const* const h : sample.haplotypes.view()) {
            if (!h->haplotype) continue;
            entry.name = h->haplotype->id;
            entry.rows[0] = h->haplotype;
            entry.texts[0] = h->haplotype->content;
            entry.copies = h->copies;
            f(entry);
        }
        return;
    }
    entry.chromosomes = 2;
    for (TPhenotype const* const p : sample.phenotypes.view()) {
        entry.name = p->name();
        for (int which = 0; which < 2; ++which) {
            entry.rows[which] = p->ps_hapl(which) ? &p->ps_hapl(which)->alleles() : nullptr;
            entry.texts[which] = p->allele_string(which);
        }
        entry.copies = std::llround(p->obs_count());
        f(entry);
    }
}

/// Samples, entries and copies over all samples of a project.
struct ExportSizes {
    int samples = 0;
    std::int64_t entries = 0;
    std::int64_t lines = 0;   ///< individuals, or copies of haplotypes
    std::int64_t copies = 0;  ///< gene copies
};
[[nodiscard]] ExportSizes export_sizes(Project const& project);

/// Loci of the project's entries: words, or characters when no separator parts them.
[[nodiscard]] int export_loci(Project const& project);

/// A definition with '?' for the project's own sign of missing data.
[[nodiscard]] std::string exported_definition(Project const& project, std::string_view definition);

/// A definition without the separator of its loci.
[[nodiscard]] std::string without_separator(std::string_view definition, char separator);

/// Name column of ten characters: at most six of the name, the number, blanks. A number of more than four digits leaves
/// less room for the name.
[[nodiscard]] std::string name_column(std::string_view name, std::int64_t number);

/// Tells in the log that several samples become one, and that chromosomes are written as if they were haplotypes.
void log_merging_notes(Project const& project, std::string_view format);

}  // namespace tov
