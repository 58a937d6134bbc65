// Scanning of plain text: keywords, helpers of the line by line readers, file helpers.
#include "input/public.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>

#include "base/files.h"
#include "input/line_text.h"
#include "run/errors.h"

namespace tov {
namespace {

constexpr int NB_WORDS = NB_IDENTIFIERS + NB_SUB_SECTIONS;

std::array<my_string, NB_WORDS> const& identifiers() {
    static std::array<my_string, NB_WORDS> const words{"recessiveallele",
                                                       "datatype",
                                                       "distmat",
                                                       "distmatlabel",
                                                       "exthaplfile",
                                                       "frequency",
                                                       "genotypicdata",
                                                       "group",
                                                       "gameticphase",
                                                       "hapllabels",
                                                       "hapllistname",
                                                       "hapllist",
                                                       "individuallevel",
                                                       "interleave",
                                                       "labelposition",
                                                       "locilabels",
                                                       "locuslisting",
                                                       "locusseparator",
                                                       "matrixname",
                                                       "matrixsize",
                                                       "matrixdata",
                                                       "missingdata",
                                                       "nbgroups",
                                                       "nbloci",
                                                       "nbsamples",
                                                       "sampledata",
                                                       "samplename",
                                                       "samplesize",
                                                       "structurename",
                                                       "title",
                                                       "usedhapllist",
                                                       "recessivedata",
                                                       "compdistmatrix",
                                                       "frequencythreshold",
                                                       "epsilonvalue",
                                                       "distmatmantel",
                                                       "usedymatrixlabels",
                                                       "matrixnumber",
                                                       "ymatrix",
                                                       "ymatrixlabels",
                                                       "distancematrix",
                                                       "haplotypedefinition",
                                                       "samples",
                                                       "structure",
                                                       "mantel"};
    return words;
}

my_string const& word_at(int i) {
    static my_string const none;
    return i >= 0 && i < NB_WORDS ? identifiers()[static_cast<std::size_t>(i)] : none;
}

void bad_value(char const* function, int line, std::string_view text, char const* name, std::string_view end) {
    E.error(ErrorType::Error, function, 190);
    std::string message(text);
    message.append(name).append(end);
    log_project_line(line, message);
}

}  // namespace

IniFile INIFILE;

my_string const& identifier(int i) { return word_at(i); }
my_string const& sub_section(int i) { return word_at(i < 0 ? -1 : NB_IDENTIFIERS + i); }

int is_identifier(my_string const& word) {
    auto const first = identifiers().begin();
    return std::find(first, first + NB_IDENTIFIERS, word) != first + NB_IDENTIFIERS;
}

int IniFile::write_ini(char const* file) const {
    std::ofstream out(file, std::ios::trunc);
    out << "[Tovenia]\n\n[Directories]\n\n[Startup]\n\n[Project]\n\n[options]\n"
        << "SaveProject=1\nPrintHaploDataInSamples=1\nPrettyPrintDistMat=1\nGenerateLogFile=1\n";
    return out.good();
}

void log_project_line(int line, std::string_view text) { *_AOS_ << "\tProject file, Line #" << line << text; }

void clearLineAfterPoundSign(my_string& text) {
    std::size_t const at = text.str().find('#');
    if (at != std::string::npos) text.str().resize(at);
}

int checkForPresenceOfEqualSign(my_string const& text, char const* name, int line) {
    if (text.str().find('=') != std::string::npos) return 1;
    E.error(ErrorType::Error, "checkForPresenceOfEqualSign(...)", 188);
    log_project_line(line, " : Missing equal sign after keyword '" + std::string(name) + "'\n");
    return 0;
}

int getQuotedString(my_string const& text, my_string& out, char const* name, int line) {
    static constexpr char function[] = "readStringContent(...)";
    std::string_view rest(text);
    std::size_t const equal = rest.find('=');
    rest = equal == std::string_view::npos ? std::string_view() : rest.substr(equal + 1);
    std::size_t open = rest.find('"');
    if (open == std::string_view::npos) open = rest.find('\'');
    if (open == std::string_view::npos) {
        bad_value(function, line, " : No open quote after keyword '", name, "'\n");
        return 0;
    }
    std::size_t const close = rest.find(rest[open], open + 1);
    if (close == std::string_view::npos) {
        bad_value(function, line, " : Opened quote not closed after keyword '", name,
                  "'. Unable to assign value to key...\n");
        return 0;
    }
    out = rest.substr(open + 1, close - open - 1);
    return 1;
}

int getUnQuotedString(my_string const& text, my_string& out, char const*, int) {
    std::size_t const equal = text.str().find('=');
    out = equal == std::string::npos ? std::string() : text.str().substr(equal + 1);
    return 1;
}

int getValue(my_string const& text, double& out, char const* name, int line) {
    my_string value;
    getUnQuotedString(text, value, name, line);
    if (trimmed(value).empty()) {
        out = 0.0;  // kept on purpose: a key with nothing behind its '=' counts as 0
        return 1;
    }
    if (parse_number(value, out)) return 1;
    bad_value("getValue(...)", line, " : Bad value after keyword '", name, "'\n");
    return 0;
}

int detectFullPathInFileName(my_string const& name) { return name.str().find_first_of("/\\") != std::string::npos; }

int aWritePrivateProfileString(char const* key, char const* value, std::ostream& os) {
    os << key << '=' << value << '\n';
    return 1;
}

int MY_CreateDirectory(char const* name) {
    make_directory(name);
    return 1;
}

int MY_DeleteFile(char const* name) {
    std::ofstream(name, std::ios::trunc).close();
    std::remove(name);
    return 1;
}

int MY_CopyFile(char const* from, char const* to) {
    std::ifstream in(from, std::ios::binary);
    if (!in.is_open()) return 0;
    std::ofstream out(to, std::ios::binary | std::ios::trunc);
    if (!out.is_open()) return 0;
    if (in.peek() != std::ifstream::traits_type::eof()) out << in.rdbuf();
    return 1;
}

void convert_to_slash(char* path) {
    for (; *path; ++path)
        if (*path == '\\') *path = '/';
}

}  // namespace tov
