// Scanning of plain text: helpers for the line by line readers, helpers on streams, and file helpers.
#pragma once

#include <iosfwd>
#include <string_view>

#include "base/cstring.h"
#include "base/numtext.h"

namespace tov {

inline constexpr int NB_IDENTIFIERS = 40;  ///< keywords that is_identifier compares with
inline constexpr int NB_SUB_SECTIONS = 5;

/// Keyword number i (0 to 44) of the project format, in lower case: 40 keys, then the five sub-sections.
[[nodiscard]] my_string const& identifier(int i);
/// Sub-section number i (0 to 4): distancematrix, haplotypedefinition, samples, structure, mantel.
[[nodiscard]] my_string const& sub_section(int i);
/// 1 if the word is one of the 40 keys.
[[nodiscard]] int is_identifier(my_string const& word);

/// The earlier defaults file of the front end; it plays no part in a run.
class IniFile {
public:
    /// Writes the default file. @return 1, or 0 when it can't be written.
    int write_ini(char const* file = "Tovenia.ini") const;
    /// Does nothing.
    void read_ini() const {}
};
extern IniFile INIFILE;

// --- Helpers of the line by line readers. `name` is the keyword told in messages, `line` the line number. ---

/// Removes everything from the first '#' on, also inside quotes.
void clearLineAfterPoundSign(my_string& text);
/// 1 if the text holds '='; else error 188, a log line and 0.
int checkForPresenceOfEqualSign(my_string const& text, char const* name, int line);
/// Text between the first quote behind '=' (double ones looked for first) and the next quote of the same kind.
/// Errors: 190 without an open or a closing quote; result 0 and `out` as it was.
int getQuotedString(my_string const& text, my_string& out, char const* name, int line);
/// All that stands behind the first '='; always 1.
int getUnQuotedString(my_string const& text, my_string& out, char const* name, int line);
/// Number behind the first '=', blanks around it allowed; nothing counts as 0.
/// Errors: 190 on a value beyond the largest double and on other text; result 0 and `out` as it was.
int getValue(my_string const& text, double& out, char const* name, int line);
/// 1 if the file name holds a path ('/' or '\').
[[nodiscard]] int detectFullPathInFileName(my_string const& name);

/// Writes "\tProject file, Line #", the number and the text into the log.
void log_project_line(int line, std::string_view text);

// --- Helpers on streams: 1 on success, 0 at the end of the data they look for. ---

int get_int(std::istream& ifs, int& value);
int get_qchar(std::istream& ifs, char& value);
int test_end_of_line(std::istream& ifs);
/// Skips white space and comments. Errors: 100 on a character that no item of the format begins with.
int skip_comments(std::istream& ifs);
int get_word(std::istream& ifs, my_string& word);
int get_next_ident(std::istream& ifs, my_string& ident);
/// Errors: 101 on a text of two or more characters in single quotes.
int get_qstring(std::istream& ifs, my_string& text);
/// Reads a token in lower case, at most size - 1 characters of it, into the buffer.
int read_directive_my_string(std::istream& ifs, char* buffer, int size);

/// Stands the stream behind a section, a sub-section and a keyword's '='; an empty name means any.
/// Errors: 102, the stream cleared, result 0.
int position_after(std::istream& ifs, my_string section, my_string sub_section, my_string keyword);
int go_to_section(std::istream& ifs, my_string name);
int go_to_sub_section(std::istream& ifs, my_string name);
/// Skips to the next [[name]]. @return its position among the sub-sections from 1; 0 at the end of the file.
/// Errors: 105 on an unknown name, 104 on a read failure; result 0.
int get_next_subsection(std::istream& ifs, my_string& name);

/// The value of a key of a file, or the default. Errors: 103 when the file does not open.
int get_tov_profile_int(char const* file, char const* section, char const* sub_section, char const* keyword,
                        int default_value);
my_string get_tov_profile_my_string(char const* file, char const* section, char const* sub_section, char const* keyword,
                                    char const* default_value);
char get_tov_profile_char(char const* file, char const* section, char const* sub_section, char const* keyword,
                          char default_value);
/// Writes "key=value" and a newline; always 1.
int aWritePrivateProfileString(char const* key, char const* value, std::ostream& os);

// --- Files ---

/// Makes a directory with mode 0755; always 1.
int MY_CreateDirectory(char const* name);
/// Truncates and removes a file; always 1.
int MY_DeleteFile(char const* name);
/// Copies a whole file. @return 1, or 0 when one of the two does not open.
int MY_CopyFile(char const* from, char const* to);
/// Replaces every '\' by '/' in place.
void convert_to_slash(char* path);

}  // namespace tov
