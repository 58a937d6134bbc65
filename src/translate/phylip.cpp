// Phylip files: reader and writer.
#include "translate/phylip.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "input/block_lines.h"
#include "input/line_text.h"
#include "model/sample.h"
#include "run/project.h"
#include "translate/export_walk.h"
#include "translate/project_text.h"

namespace tov {
namespace {

constexpr std::size_t name_width = 10;

struct PhylipHead {
    std::size_t taxa = 0;
    std::size_t characters = 0;
};

bool read_count(std::string_view& rest, std::size_t& count) {
    std::string_view const word = next_token(rest);
    auto const [end, fault] = std::from_chars(word.data(), word.data() + word.size(), count);
    return fault == std::errc() && end == word.data() + word.size() && count > 0;
}

bool read_head(std::istream& in, PhylipHead& head) {
    std::string line;
    if (!read_content_line(in, line)) return false;
    std::string_view rest = line;
    return read_count(rest, head.taxa) && read_count(rest, head.characters);
}

/// A character is a letter of the line, or a word of it.
enum class Unit { letter, word };
enum class Layout { one_line, interleaved, sequential };

struct Taxon {
    std::string_view name;
    std::string data;
    std::size_t characters = 0;
};

void append_data(Taxon& taxon, std::string_view text, Unit unit) {
    for (;;) {
        std::string_view const word = next_token(text);
        if (word.empty()) return;
        if (unit == Unit::word && taxon.characters > 0) taxon.data += ' ';
        taxon.data += word;
        taxon.characters += unit == Unit::word ? 1 : word.size();
    }
}

Taxon first_line_of_taxon(std::string const& line, Unit unit) {
    Taxon taxon;
    std::string_view const text = line;
    taxon.name = text.substr(0, name_width);
    if (text.size() > name_width) append_data(taxon, text.substr(name_width), unit);
    return taxon;
}

void cut(Taxon& taxon, std::size_t characters, Unit unit) {
    if (taxon.characters <= characters) return;
    if (unit == Unit::letter) {
        taxon.data.resize(characters);
    } else {
        std::size_t end = 0;
        for (std::size_t words = 0; words < characters; ++words) end = taxon.data.find(' ', end + 1);
        taxon.data.resize(end);
    }
    taxon.characters = characters;
}

/// The taxa of a file as one layout sees them.
class LaidOut {
public:
    LaidOut(std::vector<std::string> const& lines, PhylipHead const& head, Layout layout, Unit unit)
        : head_(head), unit_(unit) {
        switch (layout) {
            case Layout::one_line:
                take_lines(lines);
                break;
            case Layout::interleaved:
                take_blocks(lines);
                break;
            case Layout::sequential:
                take_runs(lines);
                break;
        }
    }

    /// Every line is used, every taxon is there with exactly its characters.
    [[nodiscard]] bool fits() const {
        return all_lines_used && taxa.size() == head_.taxa &&
               std::all_of(taxa.begin(), taxa.end(),
                           [this](Taxon const& taxon) { return taxon.characters == head_.characters; });
    }

    std::vector<Taxon> taxa;
    bool all_lines_used = false;

private:
    void take_lines(std::vector<std::string> const& lines) {
        std::size_t const used = std::min(lines.size(), head_.taxa);
        for (std::size_t i = 0; i < used; ++i) taxa.push_back(first_line_of_taxon(lines[i], unit_));
        all_lines_used = used == lines.size();
    }

    void take_blocks(std::vector<std::string> const& lines) {
        take_lines(lines);
        all_lines_used = false;
        if (taxa.empty()) return;
        for (std::size_t i = taxa.size(); i < lines.size(); ++i) append_data(taxa[i % taxa.size()], lines[i], unit_);
        all_lines_used = lines.size() % taxa.size() == 0;
    }

    void take_runs(std::vector<std::string> const& lines) {
        std::size_t at = 0;
        while (at < lines.size() && taxa.size() < head_.taxa) {
            Taxon taxon = first_line_of_taxon(lines[at++], unit_);
            while (at < lines.size() && taxon.characters < head_.characters) append_data(taxon, lines[at++], unit_);
            taxa.push_back(std::move(taxon));
        }
        all_lines_used = at == lines.size();
    }

    PhylipHead head_;
    Unit unit_;
};

/// The layout that fits. Without one: one line a taxon when the first line has that length, else line after line.
LaidOut lay_out(std::vector<std::string> const& lines, PhylipHead const& head, Unit& unit) {
    for (Unit const tried : {Unit::letter, Unit::word})
        for (Layout const layout : {Layout::one_line, Layout::interleaved, Layout::sequential}) {
            LaidOut found(lines, head, layout, tried);
            if (!found.fits()) continue;
            unit = tried;
            return found;
        }
    bool const one_line = !lines.empty() && lines.front().size() == head.characters + name_width;
    unit = Unit::letter;
    return {lines, head, one_line ? Layout::one_line : Layout::sequential, unit};
}

void write_taxa(std::ostream& project, LaidOut& found, PhylipHead const& head, Unit unit) {
    HaplotypeNames names;
    std::size_t number = 0;
    for (Taxon& taxon : found.taxa) {
        ++number;
        cut(taxon, head.characters, unit);
        std::string const name = entry_name(taxon.name, "Taxon" + std::to_string(number));
        if (taxon.characters < head.characters)
            mark_unreadable(project, name + " has " + std::to_string(taxon.characters) + " characters instead of " +
                                         std::to_string(head.characters));
        else if (breaks_data(taxon.data))
            mark_unreadable(project, name + " has a character that a project can't hold");
        else
            project << "\t\t\t" << names.for_content(name, taxon.data) << " 1 " << taxon.data << '\n';
    }
    if (found.taxa.size() < head.taxa)
        mark_unreadable(project, std::to_string(head.taxa) + " taxa are declared, and " +
                                     std::to_string(found.taxa.size()) + " found");
    else if (!found.all_lines_used)
        project << "# lines behind the last taxon are left out\n";
}

}  // namespace

void phylip_to_project(std::istream& in, std::ostream& project) {
    PhylipHead head;
    bool const has_head = read_head(in, head);
    std::vector<std::string> lines;
    for (std::string line; read_content_line(in, line);) lines.push_back(line);
    Unit unit = Unit::letter;
    LaidOut found = lay_out(lines, head, unit);
    project << "[Profile]\n"
            << "\t Title=\"File translated from  PHYLIP\"\n"
            << "\t NbSamples=1\n"
            << "\t GenotypicData=0\n"
            << "\t MissingData=\"?\"\n"
            << "\t DataType=STANDARD\n"
            << (unit == Unit::word ? "\t LocusSeparator=WHITESPACE\n" : "\t LocusSeparator=NONE\n") << "[Data]\n"
            << "\t [[Samples]]\n"
            << "\t\t SampleName= \"Population1\"\n"
            << "\t\t SampleSize= " << head.taxa << "\n\t\t SampleData={\n";
    if (has_head)
        write_taxa(project, found, head, unit);
    else
        mark_unreadable(project, "the first line does not give the numbers of taxa and characters");
    project << "     }\n";
}

bool write_phylip(Project& project, std::ostream& out) {
    int const loci = export_loci(project);
    if (loci == 0) {
        log_text("  Data without loci can't be written into PHYLIP format.");
        return false;
    }
    log_merging_notes(project, "PHYLIP");
    out << export_sizes(project).copies << ' ' << loci << '\n';
    std::int64_t number = 0;
    for (Population const* const sample : project.p_sam().populations.view())
        for_each_entry(*sample, [&](ExportEntry const& entry) {
            for (std::int64_t i = 0; i < entry.copies; ++i)
                for (int c = 0; c < entry.chromosomes; ++c)
                    out << name_column(entry.name, ++number) << exported_definition(project, entry.texts[c]) << '\n';
        });
    return true;
}

}  // namespace tov
