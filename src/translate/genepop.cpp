// Genepop files: reader and writer.
#include "translate/genepop.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>
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

constexpr std::size_t most_fields = 10000;
constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

/// A line that begins a sample. Among the names of the loci only the word alone counts.
bool begins_sample(std::string_view text, bool among_individuals) {
    text = trimmed(text);
    if (text.size() < 3 || !same_without_case(text.substr(0, 3), "pop")) return false;
    if (text.size() > 3 && !among_individuals && !is_blank(text[3])) return false;
    return text.find(',') == std::string_view::npos;
}

bool holds_individual(std::string_view text) { return text.find(',') != std::string_view::npos; }

bool read_title(std::istream& in, std::string& title) {
    if (!read_content_line(in, title)) return false;
    if (title.starts_with(byte_order_mark)) title.erase(0, byte_order_mark.size());
    return true;
}

/// Names of loci in a line: parted by commas, or the line is one.
std::size_t count_names(std::string_view text) {
    std::size_t names = 0;
    for (;;) {
        std::size_t const comma = text.find(',');
        if (!trimmed(text.substr(0, comma)).empty()) ++names;
        if (comma == std::string_view::npos) return names;
        text.remove_prefix(comma + 1);
    }
}

/// What a file holds, before its genotypes are read.
struct Counts {
    std::size_t loci = 0;     ///< names in front of the first sample
    std::vector<long> sizes;  ///< individuals of each sample
};

Counts count(std::istream& in) {
    Counts counts;
    std::string line;
    if (!read_title(in, line)) return counts;
    while (read_content_line(in, line)) {
        if (begins_sample(line, !counts.sizes.empty()))
            counts.sizes.push_back(0);
        else if (counts.sizes.empty())
            counts.loci += count_names(line);
        else if (holds_individual(line))
            ++counts.sizes.back();
    }
    return counts;
}

/// One individual while its lines are read.
class Individual {
public:
    /// @param loci  that each individual has at least.
    Individual(bool diploid, std::size_t loci) : diploid_(diploid), loci_(loci) {}

    void begin(std::string_view name) {
        name_ = entry_name(name, "noname");
        first_.clear();
        second_.clear();
        faults_.clear();
        fields_ = 0;
        open_ = true;
    }

    void add_fields(std::string_view text) {
        auto const parts = [](char c) { return c == ',' || is_blank(c); };
        for (std::size_t at = 0; at < text.size();) {
            while (at < text.size() && parts(text[at])) ++at;
            std::size_t const begin = at;
            while (at < text.size() && !parts(text[at])) ++at;
            if (at > begin) add_field(text.substr(begin, at - begin));
        }
    }

    void write(std::ostream& project) {
        if (!open_) return;
        open_ = false;
        if (fields_ < loci_)
            faults_ += "# error: " + name_ + " has " + std::to_string(fields_) + " fields for " +
                       std::to_string(loci_) + " loci\n";
        project << faults_;
        // Haplotypes of one name have one definition; names of individuals may repeat.
        if (!diploid_) name_ = names_.for_content(name_, first_);
        project << name_ << "   1  ";
        first_ += '\n';
        project.write(first_.data(), static_cast<std::streamsize>(first_.size()));
        if (diploid_) {
            second_ += '\n';
            project.write(second_.data(), static_cast<std::streamsize>(second_.size()));
        }
        // An individual that lacks a locus, as all others may do too, would pass for a good one.
        if (!faults_.empty()) project << unreadable_entry;
    }

    [[nodiscard]] bool open() const { return open_; }

private:
    void add_field(std::string_view field) {
        if (fields_++ >= most_fields) {
            if (fields_ == most_fields + 1) faults_ += "# error in definition of allele : more than 10000 fields\n";
            return;
        }
        if (!holds_two_alleles(field)) {
            faults_ += "# error in definition of allele ";
            faults_ += field;
            faults_ += '\n';
            return;
        }
        std::size_t const half = field.size() / 2;
        add_allele(first_, field.substr(0, half));
        if (diploid_) add_allele(second_, field.substr(half));
    }

    /// Four or six digits, as many as the locus has elsewhere: a field that was cut off is no other pair of alleles.
    /// Missing genotypes are zeros of either length.
    bool holds_two_alleles(std::string_view field) {
        if (field.size() != 4 && field.size() != 6) return false;
        bool zeros = true;
        for (char const c : field) {
            if (c < '0' || c > '9') return false;
            zeros &= c == '0';
        }
        if (zeros) return true;
        if (lengths_.size() < fields_) lengths_.resize(fields_);
        std::uint8_t& length = lengths_[fields_ - 1];
        if (length == 0) length = static_cast<std::uint8_t>(field.size());
        return length == field.size();
    }

    static void add_allele(std::string& line, std::string_view allele) {
        if (allele.find_first_not_of('0') == std::string_view::npos)
            line += '?';
        else
            line += allele;
        line += ' ';
    }

    bool diploid_;
    std::size_t loci_;
    bool open_ = false;
    std::string name_;
    std::string first_;
    std::string second_;
    std::string faults_;  // lines that stand before the individual
    std::size_t fields_ = 0;
    HaplotypeNames names_;
    std::vector<std::uint8_t> lengths_;  // digits of a field by locus, over all individuals; 0 when not yet known
};

void write_profile(std::ostream& project, std::string const& title, std::size_t samples, bool diploid) {
    project << "[Profile]\n"
            << "\t Title=\"" << quoted_text(title) << "\"\n"
            << "\t NbSamples=" << samples << '\n'
            << (diploid ? "\t GenotypicData=1\n" : "\t GenotypicData=0\n") << "\t GameticPhase=0\n"
            << "\t DataType=STANDARD\n"
            << "\t LocusSeparator=WHITESPACE\n"
            << "\t MissingData=\"?\"\n";
}

/// Opens sample number `number`, which has `size` individuals.
void open_sample(std::ostream& project, std::size_t number, long size) {
    project << "\t\t SampleName= \"Population" << number << "\"\n";
    // kept on purpose: the first comment has one blank more, and one at its end; files are compared by their lines.
    project << "\t\t SampleSize=100"
            << (number == 1 ? "  #Wrong on purpose,  but it does not matter here \n"
                            : "  #Wrong on purpose, but it does not matter here\n");
    // The last size before the data counts, so that reading the project reports no adjustment.
    project << "\t\t SampleSize=" << size << "\n\t\t SampleData={\n";
}

/// Closes it.
void close_sample(std::ostream& project, std::size_t number, long size) {
    // A file that ends behind a "Pop" was cut off.
    if (size == 0) mark_unreadable(project, "Population" + std::to_string(number) + " has no individuals");
    project << "     }\n";
}

}  // namespace

void genepop_to_project(std::istream& in, bool diploid, std::ostream& project) {
    Counts const counts = count(in);
    std::vector<long> const& sizes = counts.sizes;
    in.clear();
    in.seekg(0);
    std::string line;
    if (!read_title(in, line)) line.clear();
    write_profile(project, line, sizes.size(), diploid);
    project << "# The names of the loci taken from the GenePop file are listed below as comments\n";
    while (read_foreign_line(in, line) && !begins_sample(line, false)) project << "# " << line << '\n';
    project << "[Data]\n\t [[Samples]]\n";
    if (sizes.empty()) return;

    std::size_t number = 1;
    open_sample(project, number, sizes[0]);
    Individual individual(diploid, std::min(counts.loci, most_fields));
    while (read_content_line(in, line)) {
        if (begins_sample(line, true)) {
            individual.write(project);
            close_sample(project, number, sizes[number - 1]);
            if (number >= sizes.size()) return;  // the file has grown since it was counted
            open_sample(project, number + 1, sizes[number]);
            ++number;
            continue;
        }
        std::string_view fields = line;
        if (std::size_t const comma = line.find(','); comma != std::string::npos) {
            individual.write(project);
            individual.begin(fields.substr(0, comma));
            fields.remove_prefix(comma + 1);
        } else if (!individual.open()) {
            project << "# error in definition of allele " << line << '\n' << unreadable_entry;
            continue;
        }
        individual.add_fields(fields);
    }
    individual.write(project);
    close_sample(project, number, sizes[number - 1]);
}

// --- Writing ---

namespace {

constexpr int most_alleles = 999;
constexpr int most_two_digit_alleles = 99;

/// Numbers of the alleles of every locus: 1, 2, ... in the order of the locus; 0 for missing data and the blank.
class AlleleNumbers {
public:
    AlleleNumbers(TAlleleDB const& alleles, int loci, char missing) : numbers_(static_cast<std::size_t>(loci)) {
        for (int l = 0; l < loci; ++l) {
            TLocus const* const locus = alleles.locus(l);
            int next = 0;
            for (int a = 0; locus && a < locus->nb_alleles(); ++a) {
                bool const blank = a == 0 && locus->allele(a)->name() == alleles.blank_name();
                bool const unknown = locus->allele(a)->name() == std::string_view(&missing, 1);
                numbers_[static_cast<std::size_t>(l)].push_back(blank || unknown ? 0 : ++next);
            }
            highest_ = std::max(highest_, next);
        }
    }

    [[nodiscard]] int of(int locus, int rank) const {
        auto const& ranks = numbers_[static_cast<std::size_t>(locus)];
        return rank >= 0 && static_cast<std::size_t>(rank) < ranks.size() ? ranks[static_cast<std::size_t>(rank)] : 0;
    }
    [[nodiscard]] int highest() const { return highest_; }

private:
    std::vector<std::vector<int>> numbers_;  // by locus and rank
    int highest_ = 0;
};

/// Texts "000" to "999".
class DigitTexts {
public:
    DigitTexts() {
        for (int n = 0; n <= most_alleles; ++n)
            texts_[static_cast<std::size_t>(n)] = {digit(n / 100), digit(n / 10 % 10), digit(n % 10)};
    }
    void append(std::string& line, int number, std::size_t width) const {
        line.append(texts_[static_cast<std::size_t>(number)].data() + (3 - width), width);
    }

private:
    static char digit(int n) { return static_cast<char>('0' + n); }

    std::array<std::array<char, 3>, most_alleles + 1> texts_;
};

std::string genepop_name(std::string_view name) {
    std::string text(name);
    std::replace(text.begin(), text.end(), ',', '_');
    return text;
}

}  // namespace

bool write_genepop(Project& project, std::ostream& out) {
    int const loci = export_loci(project);
    if (loci == 0) {
        log_text("  Data without loci can't be written into Genepop format.");
        return false;
    }
    AlleleNumbers const numbers(project.p_alldb(), loci, project.MissingData);
    if (numbers.highest() > most_alleles) {
        log_text("  Impossible to write this data into Genepop format, because a locus has more than ", most_alleles,
                 " alleles.");
        return false;
    }
    std::size_t const width = numbers.highest() > most_two_digit_alleles ? 3 : 2;
    DigitTexts const digits;
    out << "Title line:" << project.title << '\n';
    for (int l = 1; l <= loci; ++l) out << "Locus_" << l << '\n';
    std::string line;
    for (Population const* const sample : project.p_sam().populations.view()) {
        out << "POP\n";
        for_each_entry(*sample, [&](ExportEntry const& entry) {
            line = genepop_name(entry.name) + " ,";
            for (int l = 0; l < loci; ++l) {
                line += ' ';
                for (int c = 0; c < entry.chromosomes; ++c) digits.append(line, numbers.of(l, entry.rank(c, l)), width);
            }
            line += '\n';
            for (std::int64_t i = 0; i < entry.copies; ++i)
                out.write(line.data(), static_cast<std::streamsize>(line.size()));
        });
    }
    return true;
}

}  // namespace tov
