// Entry of the program: command line, run list of one project, files for the front end.
#pragma once

#include <iosfwd>
#include <string>

namespace tov {

/// The whole program: reads the arguments, checks the input files, runs the list, writes the closing marker.
///
/// @param argv  argc texts as the system gives them; argv[0] is the program's own path.
/// @return      0 on every path; failures show on standard output, in the log, and by the missing marker.
int _main(int argc, char const* const* argv);

/// Prints the help text on standard output.
void showHelp();

/// Writes `tov_run.txt` for one project in the working directory.
void make_tov_run_txt(std::string const& project);

/// Writes `tovenia.ini` in the working directory, the start-up file of the graphical front end.
void make_tovenia_ini(std::string const& program_path);

}  // namespace tov
