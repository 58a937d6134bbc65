// Reader of the section [[Structure]].
#include <fstream>
#include <istream>
#include <string>
#include <unordered_map>

#include "input/block_lines.h"
#include "input/line_text.h"
#include "input/public.h"
#include "model/sample.h"
#include "model/struct.h"

namespace tov {
namespace {

constexpr char function_name[] = "Structure::NewReadStructure()";

/// Reads the keys of the section; the groups go into the structure.
class StructureReader {
public:
    StructureReader(Structure& structure, std::istream& is, Samples& samples, int& line, Structure::SeenKeys& seen)
        : structure_(structure), is_(is), samples_(samples), line_(line), seen_(seen) {
        for (int i = 0; i < samples.NbPopulations(); ++i) index_of_.emplace(samples[i]->pop_name().str(), i);
        group_of_.assign(static_cast<std::size_t>(samples.NbPopulations()), 0);
    }

    /// @param text  receives the upper-cased line that ends the section. @return false after a report.
    bool read(my_string& text);

private:
    bool read_line(my_string const& text);
    bool read_name(my_string const& text);
    bool read_number(my_string const& text);
    bool read_group(my_string const& text);
    bool find_opening_brace(std::string& rest);
    bool read_group_names(std::string text, int number);
    bool read_names(std::string_view text, int number, bool& closed);
    bool add_sample(std::string_view name, int number);
    bool check_number();

    Structure& structure_;       // borrowed
    std::istream& is_;           // borrowed
    Samples& samples_;           // borrowed
    int& line_;                  // borrowed
    Structure::SeenKeys& seen_;  // borrowed
    bool passed_over_ = false;
    std::unordered_map<std::string, int> index_of_;  // first sample of a name
    std::vector<int> group_of_;                      // by sample; 0: none yet
};

bool StructureReader::read(my_string& text) {
    std::string raw;
    text = "";
    while (read_text_line(is_, raw, line_)) {
        my_string const line{std::string(without_comment(raw))};
        if (contains_word(line, "[MANTEL]")) {
            text = upper_case(line);
            break;
        }
        if (!passed_over_ && !read_line(line)) return false;
    }
    return passed_over_ || check_number();
}

bool StructureReader::read_line(my_string const& text) {
    if (contains_word(text, "STRUCTURENAME")) return read_name(text);
    if (contains_word(text, "NBGROUPS")) return read_number(text);
    if (contains_word(text, "DISTMATLABEL")) {
        log_text("\tWarning: Keyword \"DistMatLabel\" is obsolete. Skipping keyword.");
    } else if (contains_word(text, "INDIVIDUALLEVEL")) {
        log_text("\tWarning: Keyword \"IndividualLevel\" defined on line ", line_,
                 " is obsolete. Activation of this option is now made through the interface.");
    } else if (contains_word(text, "GROUP")) {
        return read_group(text);
    }
    return true;
}

bool StructureReader::read_name(my_string const& text) {
    if (contains_word_outside_quotes(text, "EXTERN")) {
        E.error(ErrorType::Error, function_name, 195);
        log_text(
            "\tWarning: External definition of the GENETIC STRUCTURE is not possible anymore.\n"
            "\tPlease incorporate it into the project. Skipping reading of the Genetic structure.");
        structure_.reset();
        passed_over_ = true;
        seen_ = {};
        seen_.passed_over = true;
        return true;
    }
    if (checkForPresenceOfEqualSign(text, "StructureName", line_) &&
        getQuotedString(text, structure_.name, "StructureName", line_))
        return true;
    log_text("\tWarning: Bad value assigned to StructureName on line ", line_);
    E.error(ErrorType::Error, function_name, 46);
    return true;
}

bool StructureReader::read_number(my_string const& text) {
    double number = 0.0;
    if (checkForPresenceOfEqualSign(text, "NbGroups", line_) && getValue(text, number, "NbGroups", line_)) {
        structure_.NbGroupsDeclared = rounded_int(number);
        seen_.nb_groups = true;
        return true;
    }
    E.error(ErrorType::Error, function_name, 47);
    return false;
}

bool StructureReader::read_group(my_string const& text) {
    seen_.group = true;
    if (structure_.NbGroupsDeclared <= 0) {
        log_text("\tError: Unexpected \"Group\" section found on line ", line_,
                 ". Expected number of group is zero. Check that \"NbGroups\" has "
                 "been previously defined. Aborting reading project.");
        return false;
    }
    int const number = structure_.nb_groups() + 1;
    bool open = false;
    std::string rest(behind_opening_brace(text, open));
    if (!open && !find_opening_brace(rest)) {
        log_text("\tError: Missing opening brace in Group #", number, ". Aborting reading project");
        return false;
    }
    structure_.add_group();
    return read_group_names(std::move(rest), number);
}

/// The brace may begin the next line that holds text.
bool StructureReader::find_opening_brace(std::string& rest) {
    std::string raw;
    while (read_text_line(is_, raw, line_)) {
        std::string_view const text = trimmed(without_comment(raw));
        if (text.empty()) continue;
        if (text.front() != '{') return false;
        rest = text.substr(1);
        return true;
    }
    return false;
}

bool StructureReader::read_group_names(std::string text, int number) {
    bool closed = false;
    for (;;) {
        if (!read_names(without_comment(text), number, closed)) return false;
        if (closed) break;
        if (!read_text_line(is_, text, line_) || contains_word_outside_quotes(text, "[MANTEL]")) {
            log_text("\tError: Missing closing brace in Group #", number, ". Aborting reading project");
            E.error(ErrorType::Error, function_name, 52);
            return false;
        }
    }
    if (structure_.group(number - 1).nb_samples() > 0) return true;
    log_text("\t\tError while exploring structure of Group # ", number, ". It does not contain any population sample\n",
             "\t\t\tCheck your [[Structure]] section, for unquoted sample names\n", "\t\tAborting reading project.");
    E.error(ErrorType::Error, function_name, 205);
    return false;
}

/// Adds every quoted name of the text; what stands outside quotes is passed over, but for the closing brace.
bool StructureReader::read_names(std::string_view text, int number, bool& closed) {
    while (!text.empty()) {
        std::size_t const mark = text.find_first_of("\"'}");
        if (mark == std::string_view::npos) return true;
        if (text[mark] == '}') {
            closed = true;
            return true;
        }
        std::size_t const end = text.find(text[mark], mark + 1);
        if (end == std::string_view::npos) {
            closed = text.find('}', mark) != std::string_view::npos;
            return true;
        }
        if (!add_sample(text.substr(mark + 1, end - mark - 1), number)) return false;
        text.remove_prefix(end + 1);
    }
    return true;
}

bool StructureReader::add_sample(std::string_view name, int number) {
    auto const found = index_of_.find(std::string(name));
    bool const known = found != index_of_.end();
    int const taken = known ? group_of_[static_cast<std::size_t>(found->second)] : 0;
    if (known && taken == 0) {
        group_of_[static_cast<std::size_t>(found->second)] = number;
        structure_.add_sample(number - 1, samples_[found->second], found->second);
        return true;
    }
    *_AOS_ << "\tError: Sample \"" << name << "\" defined in Group #" << number << " on line " << line_;
    if (known)
        log_text(" has been alredy included in group #", taken, '.');
    else
        log_text(" has not been defined in the [Samples] section.\n", "\tAborting reading project.");
    E.error(ErrorType::Error, function_name, known ? 206 : 51);
    return false;
}

bool StructureReader::check_number() {
    if (structure_.nb_groups() == structure_.NbGroupsDeclared) return true;
    log_text("\tInvalid number of groups defined. ", structure_.NbGroupsDeclared, "were expected, while ",
             structure_.nb_groups(), " have been found!\n",
             "\tCheck your [[Structure]] section, for missing group or unquoted sample names");
    return false;
}

}  // namespace

int Structure::NewReadStructure(std::istream& ifs, ProfileSettings const& profile, Samples& samples, int& line,
                                my_string& text, SeenKeys& seen) {
    reset();
    static_cast<ProfileSettings&>(*this) = profile;
    return StructureReader(*this, ifs, samples, line, seen).read(text);
}

int Structure::explore(std::istream& ifs, char const* file) {
    reset();
    std::ofstream out(file, std::ios::trunc);
    if (!out.is_open()) return 0;
    my_string ident;
    while (get_next_ident(ifs, ident)) explore_content(ifs, ident, out);
    return 1;
}

int Structure::explore_content(std::istream& ifs, my_string const& ident, std::ostream& out) {
    if (ident == "structurename") return get_qstring(ifs, name);
    if (ident == "nbgroups") {
        if (!get_int(ifs, NbGroupsDeclared)) return 0;
        out << NbGroupsDeclared << '\n';
        return 1;
    }
    if (!(ident == "group")) return 0;
    std::string text;
    bool open = false;
    while (!open) {
        int const c = ifs.get();
        if (c == std::istream::traits_type::eof() || c == '[') return 0;
        open = c == '{';
    }
    std::getline(ifs, text, '}');
    StructureGroup& explored = add_group();
    std::string_view rest(text);
    while (!rest.empty()) {
        std::size_t const quote = rest.find('"');
        if (quote == std::string_view::npos) break;
        std::size_t const end = rest.find('"', quote + 1);
        if (end == std::string_view::npos) break;
        explored.sample_names.emplace_back(rest.substr(quote + 1, end - quote - 1));
        rest.remove_prefix(end + 1);
    }
    out << explored.sample_names.size() << '\n';
    for (my_string const& sample : explored.sample_names) out << sample << '\n';
    return 1;
}

}  // namespace tov
