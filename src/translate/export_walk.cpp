// How the writers of foreign formats see an opened project.
#include "translate/export_walk.h"

#include <algorithm>

#include "input/block_lines.h"
#include "model/sample.h"
#include "run/project.h"

namespace tov {

ExportSizes export_sizes(Project const& project) {
    ExportSizes sizes;
    for (Population const* const sample : project.p_sam().populations.view()) {
        ++sizes.samples;
        for_each_entry(*sample, [&](ExportEntry const& entry) {
            ++sizes.entries;
            sizes.lines += entry.copies;
            sizes.copies += entry.copies * entry.chromosomes;
        });
    }
    return sizes;
}

int export_loci(Project const& project) {
    if (project.DataType == FREQUENCY) return 0;
    int loci = 0;
    for (Population const* const sample : project.p_sam().populations.view())
        for_each_entry(*sample, [&](ExportEntry const& entry) {
            if (loci == 0) loci = count_loci(my_string(entry.texts[0]), project.LocusSeparator);
        });
    return loci;
}

std::string exported_definition(Project const& project, std::string_view definition) {
    std::string text(definition);
    char const missing = project.MissingData;
    if (missing == '?') return text;
    char const separator = project.LocusSeparator;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool const whole_word = separator == 0 || ((i == 0 || text[i - 1] == separator) &&
                                                   (i + 1 == text.size() || text[i + 1] == separator));
        if (text[i] == missing && whole_word) text[i] = '?';
    }
    return text;
}

std::string without_separator(std::string_view definition, char separator) {
    std::string sites(definition);
    if (separator) std::erase(sites, separator);
    return sites;
}

std::string name_column(std::string_view name, std::int64_t number) {
    constexpr std::size_t width = 10;
    constexpr std::size_t longest_name = 6;
    std::string const digits = std::to_string(number);
    std::size_t const room = digits.size() < width ? width - digits.size() : 0;
    std::string column(name.substr(0, std::min(longest_name, room)));
    column += digits;
    column.resize(std::max(width, column.size()), ' ');
    return column;
}

void log_merging_notes(Project const& project, std::string_view format) {
    if (project.p_sam().NbPopulations() > 1)
        log_text("  As it is not possible to convert files containing more than one population\n  into ", format,
                 " format, original population samples have been merged into \n  a single population.");
    if (project.GenotypicData)
        log_text("  The original data was of genotypic type and ", format,
                 " accepts only\n  haplotypic data. We have therefore made two dummy haplotypes with each\n"
                 "  genotype.");
}

}  // namespace tov
