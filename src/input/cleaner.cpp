// Normalises a project and the files it refers to before the reader sees them.
#include "input/cleaner.h"

#include <algorithm>
#include <fstream>
#include <vector>

#include "input/line_text.h"
#include "input/public.h"

namespace tov {
namespace {

constexpr std::size_t longest_cleaned_line = 10000;
constexpr std::size_t longest_external_line = 1000;
constexpr std::size_t buffer_size = 1 << 18;

/// Walks the lines of one file into its cleaned copy. `clean(line)` changes a line in place.
template <class Clean>
int copy_cleaned(my_string const& from, my_string const& to, std::string& line, Clean clean) {
    std::vector<char> in_buffer(buffer_size), out_buffer(buffer_size);
    std::ifstream in;
    in.rdbuf()->pubsetbuf(in_buffer.data(), static_cast<std::streamsize>(in_buffer.size()));
    in.open(from.str());
    if (!in.is_open()) return 0;
    std::ofstream out;
    out.rdbuf()->pubsetbuf(out_buffer.data(), static_cast<std::streamsize>(out_buffer.size()));
    out.open(to.str(), std::ios::trunc);
    if (!out.is_open()) return 0;
    while (std::getline(in, line)) {
        clean();
        line += '\n';
        out.write(line.data(), static_cast<std::streamsize>(line.size()));
    }
    return out.good();
}

}  // namespace

int cleaner::execute(char separator, char const* file) {
    locus_separator = separator;
    orig_files.Add(file);
    file_kinds.Add(PROJECT_FILE);
    for (int i = 0; i < orig_files.GetItemsInContainer(); ++i) {
        switch (file_kinds[i]) {
            case PROJECT_FILE:
                clean_proj_file(i);
                break;
            case HAPLOTYPE_FILE:
                clean_haplo_file(i);
                break;
            case MATRIX_FILE:
                clean_matrix_file(i);
                break;
            default:
                clean_pop_file(i);
                break;
        }
    }
    return 1;
}

int cleaner::clean_proj_file(int i) {
    my_string const original = orig_files[i];
    if (!std::ifstream(original.str()).is_open()) return 0;
    proj_dir = original;
    proj_dir.remove_extension();
    proj_dir += ".res/";
    MY_CreateDirectory(proj_dir.c_str());
    my_string name = original;
    my_string const cleaned = proj_dir + name.rm_path();
    if (!std::ofstream(cleaned.str(), std::ios::app).is_open()) return 0;
    clean_files.Add(cleaned);
    written_.insert(cleaned.str());
    keep_results_apart(cleaned);
    return copy_cleaned(original, cleaned, curr_line, [this] {
        clean_curr_line();
        line_has_external();
        line_locus_sep();
    });
}

void cleaner::keep_results_apart(my_string const& cleaned_project) {
    known_files_.insert(proj_dir.str() + "Tovenia_log.txt");
    my_string base = cleaned_project;
    base.remove_extension();
    known_files_.insert(cleaned_project.str());
    for (char const* const end : {".xml", ".htm", ".js", "_main.htm", "_tree.htm"})
        known_files_.insert(base.str() + end);
}

int cleaner::clean_other_file(int i) {
    my_string directory = orig_files[0];
    if (!copy_cleaned(directory.extract_path() + orig_files[i], clean_files[i], curr_line,
                      [this] { clean_curr_line(); }))
        return 0;
    written_.insert(clean_files[i].str());
    return 1;
}

int cleaner::clean_haplo_file(int i) { return clean_other_file(i); }
int cleaner::clean_matrix_file(int i) { return clean_other_file(i); }
int cleaner::clean_pop_file(int i) { return clean_other_file(i); }

int cleaner::clean_curr_line() {
    if (curr_line.size() > longest_cleaned_line) return 0;
    std::size_t kept = 0;
    for (char c : curr_line) {
        if (c == '#') break;
        if (c == '\r' || c == '\t' || (locus_separator != 0 && c == locus_separator)) c = ' ';
        if (c == ' ' && kept > 0 && curr_line[kept - 1] == ' ') continue;
        curr_line[kept++] = c;
    }
    if (kept > 0 && curr_line[kept - 1] == ' ') --kept;
    curr_line.resize(kept);
    return 1;
}

int cleaner::line_has_external() {
    if (curr_line.size() > longest_external_line || curr_line.find("EXTERN") == std::string::npos) return 0;
    std::size_t const open = curr_line.find('"');
    std::size_t const close = open == std::string::npos ? open : curr_line.find('"', open + 1);
    if (close == std::string::npos || close == open + 1) return 0;
    my_string const name(curr_line.substr(open + 1, close - open - 1));
    if (detectFullPathInFileName(name)) return 0;  // read where it stands
    my_string const cleaned = proj_dir + name;
    if (!known_files_.insert(cleaned.str()).second) return 0;
    orig_files.Add(name);
    clean_files.Add(cleaned);
    file_kinds.Add(HAPLOTYPE_FILE);
    return 1;
}

int cleaner::line_locus_sep() {
    if (locus_separator == 0 || !contains_word(curr_line, "LOCUSSEPARATOR")) return 0;
    std::size_t const equal = curr_line.find('=');
    if (equal == std::string::npos) return 0;
    std::string_view const value = trimmed(std::string_view(curr_line).substr(equal + 1));
    bool const quoted_blank =
        value.size() == 3 && value[0] == value[2] && (value[0] == '"' || value[0] == '\'') && is_blank(value[1]);
    bool const word = contains_word(value, "TAB") || contains_word(value, "WHITESPACE");
    if (contains_word(value, "NONE") || !(quoted_blank || word)) return 0;
    curr_line = "LocusSeparator=WHITESPACE";
    return 1;
}

void cleaner::rm_clean_files() {
    for (my_string const& file : clean_files)
        if (written_.contains(file.str()) && std::ifstream(file.str()).is_open()) MY_DeleteFile(file.c_str());
}

my_string const* cleaner::get_clean_proj() const { return clean_files.IsEmpty() ? nullptr : &clean_files[0]; }
my_string const* cleaner::get_orig_proj() const { return orig_files.IsEmpty() ? nullptr : &orig_files[0]; }

}  // namespace tov
