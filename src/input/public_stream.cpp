// Scanning of plain text: helpers on streams, which look for sections, keys and values anywhere in a file.
#include <cctype>
#include <fstream>
#include <istream>
#include <string>

#include "input/public.h"
#include "run/errors.h"

namespace tov {
namespace {

constexpr int eof = std::istream::traits_type::eof();
constexpr int rest_of_line = 80;  // characters of a line that are dropped in one go

bool graphic(int c) { return c != eof && c > ' ' && c != 0x7f; }
bool alphanumeric(int c) { return c != eof && c < 0x80 && std::isalnum(c) != 0; }

/// Drops the rest of the line, at most `limit` characters of it.
void drop_line(std::istream& ifs, int limit = rest_of_line) {
    for (int i = 0; i < limit; ++i) {
        int const c = ifs.get();
        if (c == eof || c == '\n') return;
    }
}

void drop_comment(std::istream& ifs) {
    int c = ifs.get();
    while (c != eof && c != '\n') c = ifs.get();
}

/// Skips white space and comments; the next graphic character stays on the stream. @return it, or eof.
int skip_blank(std::istream& ifs) {
    for (;;) {
        int const c = ifs.peek();
        if (c == eof || graphic(c)) {
            if (c != '#') return c;
            drop_comment(ifs);
        } else {
            ifs.get();
        }
    }
}

/// Skips characters that don't show, up to a newline or a graphic one, which is consumed. @return it, or eof.
int next_on_line(std::istream& ifs) {
    int c = ifs.get();
    while (c != eof && c != '\n' && !graphic(c)) c = ifs.get();
    return c;
}

void fail_section(std::istream& ifs, int step) {
    ifs.clear();
    E.error(ErrorType::Error, std::string("position_after() (") + std::to_string(step) + ")", 102);
}

/// Skips to a '[', over comments and over the lines that begin with a letter or digit. @return false at the end.
bool skip_to_bracket(std::istream& ifs) {
    for (;;) {
        int const c = skip_blank(ifs);
        if (c == eof) return false;
        ifs.get();
        if (c == '[') return true;
        if (alphanumeric(c)) drop_line(ifs);
    }
}

/// Steps 1 to 3: stands the stream behind "[section]".
bool find_section(std::istream& ifs, my_string const& section) {
    my_string name;
    for (;;) {
        if (!ifs.good()) {
            fail_section(ifs, 5);
            return false;
        }
        if (!skip_to_bracket(ifs)) {
            fail_section(ifs, 1);
            return false;
        }
        name.read_to_delim(ifs, ']');
        if (name.to_lower() == section) return true;
    }
}

/// Stands the stream behind "[[sub_section]", the second ']' still to come.
bool find_sub_section(std::istream& ifs, my_string const& sub_section) {
    my_string name;
    for (;;) {
        if (!skip_to_bracket(ifs)) {
            fail_section(ifs, 2);
            return false;
        }
        int const c = ifs.peek();
        if (c == eof) {
            fail_section(ifs, 3);
            return false;
        }
        if (c != '[') continue;
        ifs.get();
        name.read_to_delim(ifs, ']');
        if (name.to_lower() == sub_section) {
            if (ifs.peek() == ']') ifs.get();
            return true;
        }
    }
}

bool find_keyword(std::istream& ifs, my_string const& keyword) {
    my_string ident;
    while (get_next_ident(ifs, ident))
        if (ident == keyword) return true;
    fail_section(ifs, 4);
    return false;
}

/// Opens a file and stands it behind a key. @return false when the key can't be reached.
bool open_at_key(std::ifstream& ifs, char const* file, char const* section, char const* sub_section,
                 char const* keyword, char const* function) {
    ifs.open(file);
    if (!ifs.is_open()) {
        E.error(ErrorType::Error, function, 103);
        return false;
    }
    return position_after(ifs, section, sub_section, keyword) != 0;
}

}  // namespace

int get_int(std::istream& ifs, int& value) {
    int const c = next_on_line(ifs);
    if (c == eof || c < '0' || c > '9') return 0;
    ifs.putback(static_cast<char>(c));
    int number = 0;
    if (!(ifs >> number)) {
        ifs.clear();
        return 0;
    }
    value = number;
    return 1;
}

int get_qchar(std::istream& ifs, char& value) {
    int const open = next_on_line(ifs);
    if (open != '\'' && open != '"') {
        if (open != eof && open != '\n') ifs.putback(static_cast<char>(open));
        return 0;
    }
    std::istream::pos_type const after_quote = ifs.tellg();
    int const content = ifs.get();
    int const close = content == eof ? eof : ifs.get();
    if (close == '\'' || close == '"') {
        value = static_cast<char>(content);
        return 1;
    }
    ifs.clear();
    ifs.seekg(after_quote);
    ifs.putback(static_cast<char>(open));
    return 0;
}

int test_end_of_line(std::istream& ifs) {
    int const c = next_on_line(ifs);
    if (c == eof || c == '\n') return 1;
    if (c == '#') {
        drop_comment(ifs);
        return 1;
    }
    ifs.putback(static_cast<char>(c));
    return 0;
}

int skip_comments(std::istream& ifs) {
    int const c = skip_blank(ifs);
    if (c == eof) return 0;
    if (alphanumeric(c) || c == '[' || c == '}' || c == '"' || c == '\'') return 1;
    ifs.get();
    char const shown = static_cast<char>(c);
    *_AOS_ << " ** a_public::skip_comments_l_253:the character is not the expected one c:" << shown << '\n';
    E.error(ErrorType::Error, std::string("skip_comments(ifstream& ifs) (\"") + shown + "\")", 100);
    return 0;
}

int get_word(std::istream& ifs, my_string& word) {
    word = "";
    int c = ifs.get();
    while (c != eof && c != '\n' && !alphanumeric(c)) {
        if (c == '#') drop_line(ifs);
        c = ifs.get();
    }
    if (c == eof || c == '\n') return 0;
    ifs.putback(static_cast<char>(c));
    word.read_token(ifs);
    word.to_lower();
    return !word.is_null();
}

int get_next_ident(std::istream& ifs, my_string& ident) {
    ident = "";
    if (!skip_comments(ifs) || ifs.peek() == '[') return 0;
    ident.read_to_delim(ifs, '=');
    if (ifs.fail()) {
        ident = "";
        return 0;
    }
    std::size_t const blank = ident.str().find_first_of(" \t\r");
    if (blank != std::string::npos) ident.str().resize(blank);
    ident.to_lower();
    return 1;
}

int get_qstring(std::istream& ifs, my_string& text) {
    text = "";
    int const c = skip_blank(ifs);
    if (c == '"') {
        ifs.get();
        text.read_to_delim(ifs, '"');
        return 1;
    }
    if (c == '\'') {
        ifs.get();
        text.read_to_delim(ifs, '\'');
        if (text.length() < 2) return 1;
        E.error(ErrorType::Error, "get_qstring(ifstream& ifs, my_string& s)", 101);
        return 0;
    }
    if (!alphanumeric(c)) return 0;
    bool in_token = true;  // what stands behind a '/' is read and dropped
    for (int next = ifs.peek(); graphic(next) && next != '}'; next = ifs.peek()) {
        ifs.get();
        if (next == '/') in_token = false;
        if (in_token) text += static_cast<char>(next);
    }
    return 1;
}

int read_directive_my_string(std::istream& ifs, char* buffer, int size) {
    my_string token;
    token.read_token(ifs);
    token.to_lower();
    if (size < 1) return ifs.good();
    std::size_t const kept = token.str().copy(buffer, static_cast<std::size_t>(size) - 1);
    buffer[kept] = '\0';
    return ifs.good();
}

int position_after(std::istream& ifs, my_string section, my_string sub_section, my_string keyword) {
    if (!ifs.good()) {
        fail_section(ifs, 5);
        return 0;
    }
    if (!section.is_null() && !find_section(ifs, section.to_lower())) return 0;
    if (!sub_section.is_null() && !find_sub_section(ifs, sub_section.to_lower())) return 0;
    if (!keyword.is_null() && !find_keyword(ifs, keyword.to_lower())) return 0;
    return 1;
}

int go_to_section(std::istream& ifs, my_string name) { return position_after(ifs, std::move(name), "", ""); }
int go_to_sub_section(std::istream& ifs, my_string name) { return position_after(ifs, "", std::move(name), ""); }

int get_next_subsection(std::istream& ifs, my_string& name) {
    name = "";
    for (;;) {
        int c = ifs.get();
        while (c != eof && c != '[') {
            if (c == '#') drop_comment(ifs);
            c = ifs.get();
        }
        if (c == eof) {
            ifs.clear();
            return 0;
        }
        if (ifs.peek() == '[') break;
    }
    ifs.get();
    name.read_to_delim(ifs, ']');
    if (ifs.fail()) {
        ifs.clear();
        E.error(ErrorType::Error, "get_next_subsection()", 104);
        return 0;
    }
    drop_line(ifs);
    name.to_lower();
    for (int i = 0; i < NB_SUB_SECTIONS; ++i)
        if (name == sub_section(i)) return i + 1;
    E.error(ErrorType::Error, "get_next_subsection() (\"" + name.str() + "\"", 105);
    return 0;
}

int get_tov_profile_int(char const* file, char const* section, char const* sub_section, char const* keyword,
                        int default_value) {
    std::ifstream ifs;
    int value = default_value;
    if (open_at_key(ifs, file, section, sub_section, keyword, "get_tov_profile_int()")) get_int(ifs, value);
    return value;
}

my_string get_tov_profile_my_string(char const* file, char const* section, char const* sub_section, char const* keyword,
                                    char const* default_value) {
    std::ifstream ifs;
    my_string value;
    if (open_at_key(ifs, file, section, sub_section, keyword, "get_tov_profile_my_string()") && get_qstring(ifs, value))
        return value;
    return default_value;
}

char get_tov_profile_char(char const* file, char const* section, char const* sub_section, char const* keyword,
                          char default_value) {
    std::ifstream ifs;
    char value = default_value;
    if (open_at_key(ifs, file, section, sub_section, keyword, "get_tov_profile_char()")) get_qchar(ifs, value);
    return value;
}

}  // namespace tov
