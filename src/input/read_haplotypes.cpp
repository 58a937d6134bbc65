// Readers of allelic definitions and of the list of haplotypes.
#include <istream>

#include "input/block_lines.h"
#include "input/definition.h"
#include "input/line_text.h"
#include "model/hapldb.h"
#include "model/pheno.h"

namespace tov {
namespace {

/// Reads the haplotypes of a list, one a line.
class ListReader {
public:
    ListReader(Haplo_DB& list, ProfileSettings const& profile, BlockLines& lines)
        : list_(list), scanner_(profile), lines_(lines) {
        if (list.size() > 0) loci_ = scanner_.nb_loci(list[0].content);
    }

    bool read() {
        while (lines_.next()) {
            if (contains_word(lines_.text(), "DISTANCEMATRIX") || contains_word(lines_.text(), "[SAMPLES]") ||
                begins_later_section(lines_.text()))
                return missing_brace();
            if (!read_haplotype(lines_.text())) return false;
        }
        return true;
    }
    static bool missing_brace() {
        log_text("\tMissing closing brace in Haplotype definition list, aborting reading procedure");
        return false;
    }

private:
    bool read_haplotype(std::string_view rest) {
        auto haplotype = std::make_unique<HaploDef>(my_string(next_token(rest)));
        if (list_.find_id(haplotype->id)) {
            log_text("\tHaplotype \"", haplotype->id, "\" listed on line ", lines_.number(),
                     " is already defined previously, aborting reading procedure...");
            return false;
        }
        int loci = 0;
        DefinitionFault const fault = scanner_.scan(rest, haplotype->content.str(), loci);
        if (fault != DefinitionFault::none) {
            report_definition_fault(fault, "HaploDef::read_data()");
            log_text("\tUnable to read haplotype definition on line ", lines_.number(), ", aborting reading procedure");
            return false;
        }
        if (list_.size() == 0) loci_ = loci;
        if (loci != loci_) {
            log_text("\tNumber of loci for haplotype \"", haplotype->id, "\" is different (", loci,
                     ") from that previously defined (", loci_, ") on line ", lines_.number());
            return false;
        }
        list_.Add(haplotype.release());
        return true;
    }

    Haplo_DB& list_;
    DefinitionScanner scanner_;
    BlockLines& lines_;
    int loci_ = 0;
};

}  // namespace

int HaploDef::read_data(my_string& text, ProfileSettings& profile) {
    int loci = 0;
    std::string scanned;
    DefinitionFault const fault = DefinitionScanner(profile).scan(text, scanned, loci);
    if (fault == DefinitionFault::none) {
        content = std::move(scanned);
        return 1;
    }
    report_definition_fault(fault, "HaploDef::read_data()");
    return 0;
}

int HaploDef::read_data(std::istream& is, ProfileSettings& profile) {
    std::string text;
    std::getline(is, text);
    my_string line(std::move(text));
    return read_data(line, profile);
}

int TPhenotype::read_data(std::istream& is, TDataType type, char separator) {
    std::string text, content;
    std::getline(is, text);
    ProfileSettings profile;
    profile.DataType = type;
    profile.LocusSeparator = separator;
    int loci = 0;
    DefinitionFault const fault = DefinitionScanner(profile).scan(text, content, loci);
    if (fault != DefinitionFault::none) {
        report_definition_fault(fault, "TPhenotype::read_data()");
        return 0;
    }
    allele_string_[allele_string_[0].is_null() ? 0 : 1] = std::move(content);
    return 1;
}

int Haplo_DB::NewReadHaplotypeList(std::istream& is, ProfileSettings& profile, bool external, int& line,
                                   my_string const& opening) {
    static_cast<ProfileSettings&>(*this) = profile;
    bool open = false;
    std::string_view const first = behind_opening_brace(opening, open);
    BlockLines lines(is, line, first, open);
    if (!open && !external && !(lines.skip_opening_brace())) {
        log_text("\tUnable to read haplotype list, aborting reading procedure");
        E.error(ErrorType::Error, "Haplo_DB::NewReadHaplotypeList()", 40);
        return 0;
    }
    if (!ListReader(*this, profile, lines).read()) return 0;
    return lines.closed() || external || ListReader::missing_brace();
}

}  // namespace tov
