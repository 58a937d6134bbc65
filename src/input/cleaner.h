// Normalises a project and the files it refers to before the reader sees them.
#pragma once

#include <iosfwd>
#include <set>
#include <string>

#include "base/arrays.h"
#include "base/cstring.h"

namespace tov {

/// Writes cleaned copies of a project and of its EXTERN files into <project>.res/: comments dropped, runs of blanks
/// shrunk to one, tabs and carriage returns turned into blanks.
class cleaner {
public:
    enum FileKind : long { PROJECT_FILE = 0, HAPLOTYPE_FILE = 1, MATRIX_FILE = 2, SAMPLE_FILE = 3 };

    /// Cleans the project and every file it refers to; always 1.
    ///
    /// @param separator  locus separator to turn into a blank; 0: none.
    int execute(char separator, char const* file);
    /// Removes each cleaned file that this cleaner has written and that can be opened.
    void rm_clean_files();

    /// Name of the cleaned project, or null before execute or when it could not be written.
    [[nodiscard]] my_string const* get_clean_proj() const;
    /// Name of the project as given, or null before execute.
    [[nodiscard]] my_string const* get_orig_proj() const;
    /// <project>.res/
    [[nodiscard]] my_string const& get_proj_dir() const { return proj_dir; }

    /// Cleans file number i of the list: 1, or 0 when it does not open.
    int clean_proj_file(int i);
    int clean_haplo_file(int i);
    int clean_matrix_file(int i);
    int clean_pop_file(int i);
    /// Cleans the current line. @return 0 when it is longer than 10000 characters and stays as it is.
    int clean_curr_line();
    /// Adds the file of an EXTERN reference of the current line to the lists.
    int line_has_external();
    /// Turns a LocusSeparator key that means white space into the one form the reader needs.
    int line_locus_sep();

    MY_TArrayAsVector<my_string> orig_files{9, 10};
    MY_TArrayAsVector<my_string> clean_files{9, 10};
    MY_TArrayAsVector<long> file_kinds{9, 10};
    my_string proj_dir;
    std::string curr_line;
    char locus_separator = 0;

private:
    int clean_other_file(int i);
    /// A cleaned copy never takes the place of the log, of the document or of the cleaned project itself.
    void keep_results_apart(my_string const& cleaned_project);

    std::set<std::string> known_files_;  // cleaned copies asked for so far, and names that none may have
    std::set<std::string> written_;      // cleaned copies that exist by this cleaner's work
};

}  // namespace tov
