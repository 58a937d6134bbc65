// Process-wide state of a run that low floors read: paths of the run list, silence, sample counter.
#pragma once

#include <string>

namespace tov {

extern std::string proj_file;            ///< Current line of the run list that names a project, or "end" after a stop.
extern std::string set_file;             ///< Path of the settings file in force.
extern std::string run_file;             ///< Path of the run list.
extern std::string ToveniaExeDirectory;  ///< Working directory of the run, with a trailing '/', or empty.
extern bool silentTovenia;               ///< No progress lines on standard output.
extern int numSamplesAnalysed;           ///< Samples analysed since the start of the run list.

}  // namespace tov
