// Biosys files: reader and writer.
#include "translate/biosys.h"

#include <algorithm>
#include <cstdint>
#include <istream>
#include <ostream>
#include <utility>

#include "input/block_lines.h"
#include "input/line_text.h"
#include "model/alldb.h"
#include "model/sample.h"
#include "run/project.h"
#include "translate/export_walk.h"
#include "translate/project_text.h"

namespace tov {
namespace {

struct BiosysHead {
    std::string title;
    long samples = 0;
    long loci = 0;
    std::string statement;  // the format of the data
};

/// Number behind "KEY=", blanks around '=' allowed; the value stays without one.
void read_head_number(std::string_view line, std::string_view key, long& value) {
    constexpr long largest = 1000000000;
    std::size_t at = upper_case(line).find(key);
    if (at == std::string_view::npos) return;
    at = line.find_first_not_of(" \t", at + key.size());
    if (at == std::string_view::npos || line[at] != '=') return;
    at = line.find_first_not_of(" \t", at + 1);
    long number = 0;
    bool found = false;
    for (; at < line.size() && line[at] >= '0' && line[at] <= '9'; ++at, found = true)
        number = std::min(largest, number * 10 + (line[at] - '0'));
    if (found) value = number;
}

long parentheses(std::string_view text) {
    return static_cast<long>(std::count(text.begin(), text.end(), '(') - std::count(text.begin(), text.end(), ')'));
}

/// Title, numbers and the format statement; the stream stands behind the statement.
bool read_head(std::istream& in, BiosysHead& head) {
    std::string line;
    bool first = true;
    bool in_data = false;
    while (read_content_line(in, line)) {
        if (std::exchange(first, false) && !contains_word(line, "NOTU")) {
            head.title = trimmed(line);
            continue;
        }
        std::string_view rest = line;
        if (!in_data && contains_word(line, "STEP") && contains_word(line, "DATA")) in_data = true;
        if (!in_data) {
            read_head_number(line, "NOTU", head.samples);
            read_head_number(line, "NLOC", head.loci);
            continue;
        }
        std::size_t const key = upper_case(line).find("DATYP");
        if (key == std::string::npos) continue;
        // The statement stands behind the key, on its line or on the next ones.
        rest.remove_prefix(key);
        rest = rest.substr(std::min(rest.find('('), rest.size()));
        head.statement = rest;
        while ((head.statement.empty() || parentheses(head.statement) > 0) && read_content_line(in, line))
            head.statement += trimmed(line);
        return head.statement.find('(') != std::string::npos;
    }
    return false;
}

std::optional<BiosysFormat> read_statement(std::string_view statement) {
    std::optional<BiosysFormat> format = read_format1(statement);
    if (!format) format = read_format2(statement);
    if (!format) format = read_format3(statement);
    return format;
}

/// The samples of a file, individual by individual.
class BiosysReader {
public:
    BiosysReader(std::istream& in, BiosysFormat const& format, bool one_field_a_locus, std::ostream& project)
        : in_(in), format_(format), halves_(one_field_a_locus), project_(project) {}

    /// @return the number of samples.
    long read() {
        bool closed = true;
        std::string line;
        while (read_content_line(in_, line)) {
            std::string const mark_line = end_mark(line);
            if (mark_line.starts_with("NEXT")) {
                write_sample();
                closed = true;
            }
            if (mark_line.ends_with("END")) break;
            if (!mark_line.empty()) continue;
            read_individual(line, closed);
            closed = false;
        }
        if (closed) return number_;
        if (!in_) mark("the last sample has no end");
        write_sample();
        return number_;
    }

private:
    /// "NEXT", "END" or "NEXTEND" for a line of these words, blanks and semicolons; empty for any other line.
    static std::string end_mark(std::string_view line) {
        std::string word = upper_case(line);
        std::erase_if(word, [](char c) { return is_blank(c) || c == ';'; });
        return word == "NEXT" || word == "END" || word == "NEXTEND" ? word : std::string();
    }

    void mark(std::string_view reason) {
        data_ += "# error: ";
        data_ += reason;
        data_ += '\n';
        data_ += unreadable_entry;
    }

    /// @param line  first line of the individual. `first_of_sample`: it may be the sample's name instead.
    void read_individual(std::string const& line, bool first_of_sample) {
        std::vector<std::string> lines = {line};
        bool good = fits(line, 0);
        if (!good && first_of_sample && names_sample(line)) {
            name_ = quoted_text(trimmed(line));
            return;
        }
        while (good && lines.size() < format_.lines.size()) {
            std::string next;
            good = read_foreign_line(in_, next) && fits(next, lines.size());
            lines.push_back(next);
        }
        if (!good) {
            mark("a line does not fit the format: " + lines.back());
            return;
        }
        write_individual(lines);
    }

    /// No alleles, or letters between the name and the first of them.
    bool names_sample(std::string_view text) const {
        std::size_t const behind_name = format_.name.begin + format_.name.width;
        std::vector<BiosysField> const& alleles = format_.lines.front().alleles;
        if (alleles.empty() || text.size() <= alleles.front().begin) return true;
        return !trimmed(text.substr(behind_name, alleles.front().begin - behind_name)).empty();
    }

    /// All fields of a line are there, and between them are blanks.
    bool fits(std::string_view text, std::size_t which) const {
        std::size_t at = 0;
        auto const blanks_up_to = [&](std::size_t begin) {
            for (; at < begin && at < text.size(); ++at)
                if (!is_blank(text[at])) return false;
            return true;
        };
        if (which == 0) at = format_.name.begin + format_.name.width;
        for (BiosysField const& field : format_.lines[which].alleles) {
            if (!blanks_up_to(field.begin)) return false;
            at = field.begin + field.width;
        }
        std::vector<BiosysField> const& fields = format_.lines[which].alleles;
        bool const long_enough = fields.empty() || text.size() > fields.back().begin;
        return long_enough && blanks_up_to(text.size()) && !breaks_data(text);
    }

    static std::string_view field_of(std::string_view text, BiosysField const& field) {
        return field.begin < text.size() ? trimmed(text.substr(field.begin, field.width)) : std::string_view();
    }

    static void add_allele(std::string& line, std::string_view allele) {
        allele = trimmed(allele);
        if (allele.empty()) allele = "?";
        // An allele is one word of the project.
        for (char const c : allele) line += is_blank(c) ? '_' : c;
        line += ' ';
    }

    void write_individual(std::vector<std::string> const& lines) {
        std::string chromosomes[2];
        std::size_t next = 0;
        for (std::size_t l = 0; l < lines.size(); ++l)
            for (BiosysField const& field : format_.lines[l].alleles) {
                std::string_view const text = field_of(lines[l], field);
                if (!halves_) {
                    add_allele(chromosomes[next++ % 2], text);
                    continue;
                }
                std::size_t const half = field.width / 2;
                std::string_view const both = std::string_view(lines[l]).substr(field.begin, field.width);
                add_allele(chromosomes[0], both.substr(0, half));
                add_allele(chromosomes[1], both.size() > half ? both.substr(half) : std::string_view());
            }
        data_ += entry_name(field_of(lines[0], format_.name), "noname") + " 1 " + chromosomes[0] + '\n' + "      " +
                 chromosomes[1] + '\n';
        ++individuals_;
    }

    void write_sample() {
        ++number_;
        if (name_.empty()) name_ = "Population" + std::to_string(number_);
        project_ << "\t\t SampleName= \"" << name_ << "\"\n\t\t SampleSize=" << individuals_ << "\n\t\t SampleData={\n"
                 << data_ << "     }\n";
        name_.clear();
        data_.clear();
        individuals_ = 0;
    }

    std::istream& in_;            // borrowed
    BiosysFormat const& format_;  // borrowed
    bool halves_;                 // a field holds both alleles of its locus
    std::ostream& project_;       // borrowed
    std::string name_;            // of the sample being read
    std::string data_;            // its entries
    long individuals_ = 0;
    long number_ = 0;
};

void write_format(std::ostream& project, BiosysFormat const& format, std::size_t loci, long declared) {
    project << "#Number of lines=" << format.lines.size() << "\n#Name field has length " << format.name.width
            << " followed by " << format.blanks_behind_name << " blanks\n#There are " << loci << " loci, \n";
    for (std::size_t l = 0; l < format.lines.size(); ++l) {
        BiosysLine const& line = format.lines[l];
        project << "#\tformat of line number " << l + 1 << " : ";
        if (!line.alleles.empty()) {
            project << line.blanks << "X, A" << line.alleles[0].width;
            if (line.alleles.size() > 1) project << ", A" << line.alleles[1].width;
        }
        project << '\n';
    }
    project << (static_cast<long>(loci) == declared
                    ? "#The given number of loci is compatible with the actual number of loci\n"
                    : "#!!!#The given number of loci is not compatible with the actual number of loci!!!\n");
}

void write_data(std::istream& in, BiosysHead const& head, std::ostream& project) {
    std::optional<BiosysFormat> const format = read_statement(head.statement);
    if (!format) {
        project << "\t\t SampleName= \"Population1\"\n\t\t SampleSize=0\n\t\t SampleData={\n";
        mark_unreadable(project, "no format statement could be read");
        project << "     }\n";
        return;
    }
    std::size_t const fields = format->allele_fields();
    bool const halves = fields == static_cast<std::size_t>(head.loci) || fields % 2 != 0;
    write_format(project, *format, halves ? fields : fields / 2, head.loci);
    long const samples = BiosysReader(in, *format, halves, project).read();
    if (samples == head.samples) return;
    project << "\t\t SampleName= \"Population" << samples + 1 << "\"\n\t\t SampleSize=0\n\t\t SampleData={\n";
    mark_unreadable(project,
                    std::to_string(head.samples) + " samples are declared, and " + std::to_string(samples) + " found");
    project << "     }\n";
}

}  // namespace

void biosys_to_project(std::istream& in, std::ostream& project) {
    BiosysHead head;
    read_head(in, head);
    project << "[Profile]\n"
            << "\t Title=\"" << quoted_text(head.title) << "\"\n"
            << "\t NbSamples=" << head.samples << '\n'
            << "\t GenotypicData=1\n"
            << "\t GameticPhase=0\n"
            << "\t DataType=STANDARD\n"
            << "\t MissingData=\"?\"\n"
            << "\t LocusSeparator=WHITESPACE\n\n"
            << "[Data]\n"
            << "\t [[Samples]]\n";
    write_data(in, head, project);
}

// --- Writing ---

namespace {

/// Alleles in use at the locus that has most, and the length of the longest name of all.
struct AlleleSizes {
    int most = 0;
    int longest = 1;
};

AlleleSizes allele_sizes(TAlleleDB const& alleles, int loci, char missing) {
    AlleleSizes sizes;
    for (int l = 0; l < loci; ++l) {
        TLocus const* const locus = alleles.locus(l);
        int in_use = 0;
        for (int a = 0; locus && a < locus->nb_alleles(); ++a) {
            if (is_unused_blank(*locus, a)) continue;
            my_string const& name = locus->allele(a)->name();
            sizes.longest = std::max(sizes.longest, name.length());
            if (!(name == std::string_view(&missing, 1))) ++in_use;
        }
        sizes.most = std::max(sizes.most, in_use);
    }
    return sizes;
}

void append_padded(std::string& line, std::string_view text, std::size_t width) {
    line += text.substr(0, width);
    line.append(width - std::min(width, text.size()), ' ');
}

/// The padded texts of the alleles of every locus, "?" for missing data.
class AlleleTexts {
public:
    AlleleTexts(TAlleleDB const& alleles, int loci, char missing, std::size_t width)
        : texts_(static_cast<std::size_t>(loci)) {
        append_padded(unknown_, "?", width);
        for (int l = 0; l < loci; ++l) {
            TLocus const* const locus = alleles.locus(l);
            for (int a = 0; locus && a < locus->nb_alleles(); ++a) {
                std::string_view const name = locus->allele(a)->name();
                std::string& text = texts_[static_cast<std::size_t>(l)].emplace_back();
                append_padded(text, name == std::string_view(&missing, 1) ? "?" : name, width);
            }
        }
    }

    [[nodiscard]] std::string const& of(int locus, int rank) const {
        auto const& ranks = texts_[static_cast<std::size_t>(locus)];
        return rank >= 0 && static_cast<std::size_t>(rank) < ranks.size() ? ranks[static_cast<std::size_t>(rank)]
                                                                          : unknown_;
    }

private:
    std::vector<std::vector<std::string>> texts_;  // by locus and rank
    std::string unknown_;
};

constexpr std::size_t name_width = 7;

void write_head(std::ostream& out, Project& project, int loci, AlleleSizes const& sizes) {
    // A title with the first key of the head would be read as the head.
    out << (contains_word(project.title, "NOTU") ? my_string() : project.title)
        << "\nNOTU=" << project.p_sam().NbPopulations() << ", NLOC=" << loci << ", NALL=" << sizes.most
        << ", CRT;\n"
        // kept on purpose: readers of this statement expect the second parenthesis.
        << "(1X,A7))\n";
    for (int l = 1; l <= loci; ++l) out << (l < 10 ? " LOCI0" : " LOCI") << l << '\n';
    out << "\n\nSTEP DATA:\nDATYP=1,ALPHA\n(A7,3X," << loci << "(1X,A" << sizes.longest << ",A" << sizes.longest
        << "))\n";
}

}  // namespace

bool write_biosys(Project& project, std::ostream& out) {
    if (!project.GenotypicData) {
        log_text("  It is not possible to translate Haplotypic data into the\n  BIOSYS format.");
        return false;
    }
    int const loci = export_loci(project);
    if (loci == 0) {
        log_text("  Data without loci can't be written into BIOSYS format.");
        return false;
    }
    TAlleleDB const& alleles = project.p_alldb();
    AlleleSizes const sizes = allele_sizes(alleles, loci, project.MissingData);
    std::size_t const width = static_cast<std::size_t>(sizes.longest);
    AlleleTexts const texts(alleles, loci, project.MissingData, width);
    write_head(out, project, loci, sizes);
    std::string line;
    for (Population const* const sample : project.p_sam().populations.view()) {
        for_each_entry(*sample, [&](ExportEntry const& entry) {
            line.clear();
            append_padded(line, entry.name, name_width);
            line += "   ";
            for (int l = 0; l < loci; ++l) {
                line += ' ';
                for (int c = 0; c < entry.chromosomes; ++c) line += texts.of(l, entry.rank(c, l));
            }
            line += '\n';
            for (std::int64_t i = 0; i < entry.copies; ++i)
                out.write(line.data(), static_cast<std::streamsize>(line.size()));
        });
        out << "NEXT\n";
    }
    out << "END;\n";
    return true;
}

}  // namespace tov
