// Readers of the entries of a sample: haplotypes, one a line, and genotypes, two lines each.
#include <memory>
#include <unordered_map>

#include "input/block_lines.h"
#include "input/line_text.h"
#include "input/sample_entries.h"
#include "model/hapldb.h"
#include "model/popbase.h"

namespace tov {
namespace {

constexpr EntryWords gametic_words{"Population::New_read_gametic_data()", "haplotype", 141, 1};
constexpr EntryWords genotypic_words{"Population::New_read_genotypic_data()", "genotype", 148, 2};

class GameticReader : public EntryReader {
public:
    GameticReader(Population& sample, Haplo_DB& db, bool has_list, BlockLines& lines, int project_loci)
        : EntryReader(sample, lines, gametic_words, project_loci), db_(db), has_list_(has_list) {}

    bool read_entry() {
        std::string_view rest = lines_.text();
        my_string const id(next_token(rest));
        HaploDef* known = db_.find_id(id);
        if (has_list_ && !known) {
            log_text("\tHaplotype \"", id, "\" listed on line ", lines_.number(),
                     " is undefined. Aborting reading project.");
            return false;
        }
        double frequency = 0.0;
        if (!read_frequency(id, rest, frequency)) return false;
        bool const defined_here = !has_list_ || !trimmed(rest).empty();
        if (defined_here && !read_definition(id, rest, known)) return false;
        sum += frequency;
        add_copies(known, rounded_int(copies(frequency)));
        return true;
    }

private:
    bool read_frequency(my_string const& id, std::string_view& rest, double& frequency) {
        std::string_view const text = next_token(rest);
        if (!text.empty()) return convert_frequency(text, frequency);
        log_text("\tUnable to read haplotype \"", id, "\" frequency on line ", lines_.number(),
                 ", aborting reading procedure");
        return false;
    }

    bool read_definition(my_string const& id, std::string_view text, HaploDef*& known) {
        std::string content;
        int loci = 0;
        DefinitionFault const fault = scanner.scan(text, content, loci);
        if (fault != DefinitionFault::none) {
            report_definition_fault(fault, "HaploDef::read_data()");
            log_text("\tUnable to read haplotype definition on line ", lines_.number());
            return false;
        }
        if (!check_loci(id, loci)) return false;
        if (!known) {
            auto haplotype = std::make_unique<HaploDef>(id);
            haplotype->content = std::move(content);
            known = haplotype.get();
            db_.Add(haplotype.release());
            return true;
        }
        return compare_definitions(*known, content);
    }

    bool compare_definitions(HaploDef const& known, std::string const& content) {
        if (!scanner.same(known.content, content)) {
            log_text("\tDefinition of haplotype ", known.id,
                     " does not match its previous definition, aborting reading project.");
            return false;
        }
        if (!has_list_)
            log_text("\tHaplotype ", known.id, " defined on line ", lines_.number(),
                     " has already been defined previously...");
        return true;
    }

    /// A haplotype that stands twice in a sample is one entry with the sum of its counts.
    void add_copies(HaploDef* haplotype, int number) {
        auto const [entry, is_new] = entries_.try_emplace(haplotype, nullptr);
        if (is_new) {
            auto counted = std::make_unique<PHaploDef>(haplotype, 0);
            entry->second = counted.get();
            sample_.haplotypes.Add(counted.release());
        }
        double const total = static_cast<double>(entry->second->copies) + number;
        entry->second->copies = rounded_int(total);
    }

    Haplo_DB& db_;  // borrowed
    bool has_list_;
    std::unordered_map<HaploDef const*, PHaploDef*> entries_;  // borrowed, from the sample's list
};

class GenotypicReader : public EntryReader {
public:
    GenotypicReader(Population& sample, BlockLines& lines, int project_loci)
        : EntryReader(sample, lines, genotypic_words, project_loci) {}

    bool read_entry() {
        std::string_view rest = lines_.text();
        auto individual = std::make_unique<TPhenotype>();
        my_string const id(next_token(rest));
        if (id == "{") {
            log_text("\tUnable to read genotype ID on line ", lines_.number(), ", aborting reading procedure");
            return false;
        }
        individual->set_name(id);
        double frequency = 0.0;
        if (!read_frequency(rest, frequency)) return false;
        individual->set_obs_freq(copies(frequency));
        if (!read_gamete("genotype", id, rest, individual->allele_string(0).str())) return false;
        lines_.next();
        if (!lines_.text().empty() && missing_brace()) return false;
        if (!read_gamete("phenotype", id, lines_.text(), individual->allele_string(1).str())) return false;
        sum += frequency;
        sample_.phenotypes.Add(individual.release());
        return true;
    }

private:
    bool read_frequency(std::string_view& rest, double& frequency) {
        std::string_view const text = next_token(rest);
        if (!text.empty()) return convert_frequency(text, frequency);
        log_text("\tUnable to read read genotype frequency on line ", lines_.number(), ". Aborting reading project");
        return false;
    }

    bool read_gamete(char const* what, my_string const& id, std::string_view text, std::string& content) {
        int loci = 0;
        DefinitionFault const fault = scanner.scan(text, content, loci);
        if (fault != DefinitionFault::none) {
            report_definition_fault(fault, "TPhenotype::read_data()");
            log_text("\tUnable to read ", what, " \"", id, "\" definition on line ", lines_.number());
            return false;
        }
        return check_loci(id, loci);
    }
};

/// Reads all entries of a block. @return 1, or 0 after a report.
template <class Reader>
int read_entries(Reader& reader, BlockLines& lines, bool external) {
    while (lines.next()) {
        if (reader.missing_brace()) return 0;
        if (!reader.read_entry()) return 0;
    }
    return reader.finish(external);
}

}  // namespace

int Population::New_read_gametic_data(std::istream& is, Haplo_DB& db, int has_list, int& line, my_string& text,
                                      int external, int project_loci) {
    BlockLines lines(is, line, text, !text.is_null());
    GameticReader reader(*this, db, has_list != 0, lines, project_loci);
    if (!read_entries(reader, lines, external != 0)) return 0;
    nb_diff_haplotypes = static_cast<int>(haplotypes.GetItemsInContainer());
    return 1;
}

int Population::New_read_genotypic_data(std::istream& is, int external, int& line, my_string& text, int project_loci) {
    BlockLines lines(is, line, text, !text.is_null());
    GenotypicReader reader(*this, lines, project_loci);
    return read_entries(reader, lines, external != 0);
}

}  // namespace tov
