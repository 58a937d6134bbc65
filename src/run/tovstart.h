// Scheduling: obeys the run list, one project after the other.
#pragma once

namespace tov {

class Project;

/// The project object of the process, reused for all projects; null before tovstart(). Owned here.
extern Project* PPP;

/// Obeys `tov_run.txt` in `directory`.
///
/// @param directory  prefix of the run list's name; the program itself passes the empty text.
/// @return           the data type field of the settings; its callers ignore it.
/// Throws: ExceptionType or std::bad_alloc when memory runs out.
int tovstart(char const* directory);

/// Releases the project object and clears the names of the run.
void release_project();

}  // namespace tov
