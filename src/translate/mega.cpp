// Mega files: reader and writer.
#include "translate/mega.h"

#include <algorithm>
#include <istream>
#include <iterator>
#include <ostream>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "input/block_lines.h"
#include "input/line_text.h"
#include "model/alldb.h"
#include "model/sample.h"
#include "run/project.h"
#include "translate/export_walk.h"
#include "translate/project_text.h"

namespace tov {
namespace {

struct MegaTaxon {
    std::string name;
    std::string text;  // words joined by single blanks
};

/// What a Mega file holds.
struct MegaFile {
    std::string title;
    std::vector<MegaTaxon> taxa;
    char missing = '?';
    char identical = '\0';    ///< 0: none declared
    long declared_taxa = 0;   ///< 0: none declared
    long declared_sites = 0;  ///< likewise
    bool distances = false;
    bool upper_triangle = false;
};

/// Comments in brackets out; they may hold brackets and go over lines.
std::string without_brackets(std::string_view text) {
    std::string kept;
    int depth = 0;
    for (char const c : text) {
        if (c == '[')
            ++depth;
        else if (c == ']' && depth > 0)
            --depth;
        else if (depth == 0 || c == '\n')
            kept += c;
    }
    return kept;
}

/// What is given to a word of a command: "missing=N", blanks around '=' allowed. Empty without the word.
std::string_view value_of(std::string_view command, std::string_view word) {
    std::string const upper = upper_case(command);
    std::size_t at = upper.find(word);
    if (at == std::string::npos) return {};
    at = command.find_first_not_of(" \t\r\n", at + word.size());
    if (at == std::string_view::npos || command[at] != '=') return {};
    std::string_view rest = command.substr(at + 1);
    return next_token(rest);
}

void take_character(std::string_view command, std::string_view word, char& character) {
    if (std::string_view const value = value_of(command, word); !value.empty()) character = value.front();
}

void take_number(std::string_view command, std::string_view word, long& number) {
    if (double value = 0.0; parse_number(value_of(command, word), value) && value > 0.0 && value < 1e9)
        number = static_cast<long>(value);
}

/// Reads a file piece by piece: title, commands, taxa.
class MegaScanner {
public:
    explicit MegaScanner(std::string const& text) : text_(text) {}

    MegaFile scan() {
        for (std::string_view line; next_line(line);) {
            std::string_view const content = trimmed(line);
            if (content.empty()) continue;
            if (content.front() == '!')
                take_command(content);
            else if (content.front() == '#')
                take_name(content.substr(1));
            else if (current_)
                append(content);
            else
                take_title(content);
        }
        return std::move(file_);
    }

private:
    bool next_line(std::string_view& line) {
        if (at_ >= text_.size()) return false;
        std::size_t const end = std::min(text_.find('\n', at_), text_.size());
        line = text_.substr(at_, end - at_);
        at_ = end + 1;
        return true;
    }

    /// A command goes up to its ';', over lines if need be.
    void take_command(std::string_view first) {
        std::string command(first);
        for (std::string_view line; command.find(';') == std::string::npos && next_line(line);) {
            command += ' ';
            command += line;
        }
        command.resize(std::min(command.find(';'), command.size()));
        if (contains_word(command.substr(0, 6), "!TITLE")) {
            file_.title = trimmed(std::string_view(command).substr(6));
        } else if (contains_word(command.substr(0, 7), "!FORMAT")) {
            take_character(command, "MISSING", file_.missing);
            take_character(command, "IDENTICAL", file_.identical);
            take_number(command, "NSEQS", file_.declared_taxa);
            take_number(command, "NTAXA", file_.declared_taxa);
            take_number(command, "NSITES", file_.declared_sites);
            file_.distances |= contains_word(command, "DISTANCE");
            file_.upper_triangle |= contains_word(command, "UPPERRIGHT");
        }
    }

    void take_title(std::string_view text) {
        constexpr std::string_view key = "TITLE";
        if (!file_.title.empty() || !same_without_case(text.substr(0, key.size()), key)) return;
        text.remove_prefix(key.size());
        text = trimmed(text);
        if (text.starts_with(':')) text.remove_prefix(1);
        file_.title = trimmed(text);
    }

    void take_name(std::string_view text) {
        std::string_view name = next_token(text);
        if (!in_data_ && same_without_case(name, "mega")) {
            in_data_ = true;
            return;
        }
        in_data_ = true;
        // A group in braces may follow a name, with or without a blank between them.
        name = name.substr(0, name.find('{'));
        if (std::string_view const more = trimmed(text); more.starts_with('{')) {
            std::size_t const end = text.find('}');
            text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        }
        std::string known = entry_name(name, "Taxon" + std::to_string(file_.taxa.size() + 1));
        // A quote at its beginning would open a label of the distance matrix.
        if (known.front() == '"' || known.front() == '\'') known.front() = '_';
        auto const [place, is_new] = places_.emplace(known, file_.taxa.size());
        if (is_new) file_.taxa.push_back({known, ""});
        place_ = place->second;
        current_ = true;
        append(text);
    }

    void append(std::string_view words) {
        std::string& text = file_.taxa[place_].text;
        for (;;) {
            std::string_view const word = next_token(words);
            if (word.empty()) return;
            if (!text.empty()) text += ' ';
            text += word;
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    MegaFile file_;
    std::unordered_map<std::string, std::size_t> places_;
    std::size_t place_ = 0;
    bool current_ = false;  // a name has been met
    bool in_data_ = false;
};

// --- Distances ---

/// All numbers of the file, in order. @return false when a word is no number.
bool distances_of(MegaFile const& file, std::vector<std::string_view>& numbers) {
    for (MegaTaxon const& taxon : file.taxa) {
        std::string_view rest = taxon.text;
        for (;;) {
            std::string_view const word = next_token(rest);
            if (word.empty()) break;
            double value = 0.0;
            if (!parse_number(word, value)) return false;
            numbers.push_back(word);
        }
    }
    return true;
}

/// Numbers that fill a triangle without or with its diagonal.
bool fills_triangle(std::size_t taxa, std::size_t numbers, bool& diagonal) {
    diagonal = numbers == taxa * (taxa + 1) / 2;
    return taxa > 0 && taxa < 100000 && (diagonal || numbers == taxa * (taxa - 1) / 2);
}

/// A matrix when it is declared, or when the file reads like one: the first name has nothing behind it, and all else
/// are as many numbers as a lower triangle has.
bool is_matrix(MegaFile const& file) {
    if (file.distances) return true;
    std::vector<std::string_view> numbers;
    bool diagonal = false;
    return file.taxa.size() > 1 && file.taxa.front().text.empty() && distances_of(file, numbers) &&
           fills_triangle(file.taxa.size(), numbers.size(), diagonal);
}

void write_rows(std::ostream& project, std::size_t n, std::vector<std::string_view> const& numbers, bool diagonal,
                bool upper) {
    // Place of the distance between i and j < i among the numbers.
    auto const place = [&](std::size_t i, std::size_t j) {
        std::size_t const own = diagonal ? 1 : 0;
        if (!upper) return (diagonal ? i * (i + 1) / 2 : i * (i - 1) / 2) + j;
        // Row j of the upper triangle begins behind the rows of n - 1 + own, n - 2 + own, ... numbers.
        std::size_t const before = j * (n - 1 + own) - (j > 0 ? j * (j - 1) / 2 : 0);
        return before + (i - j - 1 + own);
    };
    for (std::size_t i = 0; i < n; ++i) {
        project << "\t\t\t";
        for (std::size_t j = 0; j < i; ++j) project << numbers[place(i, j)] << ' ';
        project << "0.0\n";
    }
}

void write_matrix(std::ostream& project, MegaFile const& file) {
    std::vector<std::string_view> numbers;
    bool diagonal = false;
    bool const good = distances_of(file, numbers) && fills_triangle(file.taxa.size(), numbers.size(), diagonal);
    project << "\t\t[[DistanceMatrix]] \n"
            << "\t\t     MatrixName=\"Generic Distmat\"\n"
            << "\t\t     MatrixSize=" << file.taxa.size() << '\n'
            << "\t\t     LabelPosition=LINE \n"
            << "\t\t     MatrixData={ \n\t\t\t";
    for (MegaTaxon const& taxon : file.taxa) project << taxon.name << ' ';
    project << '\n';
    if (good)
        write_rows(project, file.taxa.size(), numbers, diagonal, file.upper_triangle);
    else
        mark_unreadable(project, "the distances do not fill a triangle");
    project << "       }\n";
}

// --- Sequences ---

/// Sequences without blanks, the file's own signs resolved.
void unify_sequences(MegaFile& file) {
    for (MegaTaxon& taxon : file.taxa) {
        std::erase(taxon.text, ' ');
        if (file.missing != '?') std::replace(taxon.text.begin(), taxon.text.end(), file.missing, '?');
        if (file.identical == '\0') continue;
        std::string const& first = file.taxa.front().text;
        for (std::size_t i = 0; i < std::min(taxon.text.size(), first.size()); ++i)
            if (taxon.text[i] == file.identical) taxon.text[i] = first[i];
    }
}

void write_entries(std::ostream& project, MegaFile const& file, bool matrix) {
    for (MegaTaxon const& taxon : file.taxa) {
        if (matrix)
            project << "\t\t\t" << taxon.name << " 1 \n";
        else if (taxon.text.empty())
            mark_unreadable(project, taxon.name + " has no sequence");
        else if (file.declared_sites > 0 && taxon.text.size() != static_cast<std::size_t>(file.declared_sites))
            mark_unreadable(project, taxon.name + " has " + std::to_string(taxon.text.size()) + " sites instead of " +
                                         std::to_string(file.declared_sites));
        else if (breaks_data(taxon.text))
            mark_unreadable(project, taxon.name + " has a character that a project can't hold");
        else
            project << "\t\t\t" << taxon.name << " 1 " << taxon.text << '\n';
    }
    if (file.taxa.empty()) mark_unreadable(project, "no sequence was found");
    if (file.declared_taxa > 0 && file.taxa.size() != static_cast<std::size_t>(file.declared_taxa))
        mark_unreadable(project, std::to_string(file.declared_taxa) + " taxa are declared, and " +
                                     std::to_string(file.taxa.size()) + " found");
}

}  // namespace

void mega_to_project(std::istream& in, std::string const& source, std::ostream& project) {
    std::string const text = without_brackets(std::string(std::istreambuf_iterator<char>(in), {}));
    MegaFile file = MegaScanner(text).scan();
    bool const matrix = is_matrix(file);
    if (!matrix) unify_sequences(file);
    std::string const title = quoted_text(file.title);
    project << "# A data file tranlated from " << source << '\n'
            << "[Profile]\n"
            << "\t Title= \" " << title << " \"\n"
            << "\t NbSamples=1\n"
            << "\t GenotypicData=0\n"
            // Haplotypes that only a matrix tells apart have no alleles.
            << (matrix ? "\t DataType=FREQUENCY\n" : "\t DataType=STANDARD\n") << "\t MissingData=\"?\"\n"
            << "\t LocusSeparator=NONE\n\n"
            << "[Data]\n";
    if (matrix) write_matrix(project, file);
    project << "\t [[Samples]]\n"
            << "\t\t SampleName=\"" << (title.empty() ? "Population1" : title) << "\"\n"
            << "\t\t SampleSize=" << file.taxa.size() << "\n\t\t SampleData={\n";
    write_entries(project, file, matrix);
    project << "       }\n";
}

// --- Writing ---

namespace {

/// Brackets hold comments in a Mega file, and braces a group.
bool has_meaning(char c) { return c == '[' || c == ']' || c == '{' || c == '}'; }

bool single_characters(TAlleleDB const& alleles, int loci) {
    for (int l = 0; l < loci; ++l) {
        TLocus const* const locus = alleles.locus(l);
        for (int a = 0; locus && a < locus->nb_alleles(); ++a) {
            if (is_unused_blank(*locus, a)) continue;
            std::string_view const name = locus->allele(a)->name();
            if (name.size() != 1 || has_meaning(name.front())) return false;
        }
    }
    return loci > 0;
}

std::string mega_text(std::string_view text) {
    std::string plain(text);
    std::replace_if(plain.begin(), plain.end(), has_meaning, '_');
    return plain;
}

/// At most six characters of the name and the number, in a column that no other copy has: one name is one taxon.
std::string mega_name(std::string_view name, std::int64_t number) {
    constexpr std::size_t longest_name = 6;
    constexpr std::size_t width = 10;
    std::string text = mega_text(name.substr(0, longest_name));
    // "h1" and 1 would be "h" and 11.
    if (!text.empty() && text.back() >= '0' && text.back() <= '9') text += '_';
    text += std::to_string(number);
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

}  // namespace

bool write_mega(Project& project, std::ostream& out) {
    if (!single_characters(project.p_alldb(), export_loci(project))) {
        log_text(
            "  Impossible to write this data into MEGA format, because each\n"
            "  character is supposed to be a single allele.");
        return false;
    }
    log_merging_notes(project, "MEGA");
    out << "#mega\nTITLE:" << mega_text(project.title.str()) << '\n';
    std::int64_t number = 0;
    for (Population const* const sample : project.p_sam().populations.view())
        for_each_entry(*sample, [&](ExportEntry const& entry) {
            for (std::int64_t i = 0; i < entry.copies; ++i)
                for (int c = 0; c < entry.chromosomes; ++c)
                    out << '#' << mega_name(entry.name, ++number) << ' '
                        << without_separator(exported_definition(project, entry.texts[c]), project.LocusSeparator)
                        << '\n';
        });
    return true;
}

}  // namespace tov
