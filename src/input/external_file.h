// The files that a project refers to by EXTERN.
#pragma once

#include <fstream>

#include "base/cstring.h"

namespace tov {

/// Opens a file that the project of settings::input_file names.
///
/// A name with a slash is taken as it stands. Any other is looked for beside the file that is read, and then, if that
/// is a cleaned copy in <project>.res/, beside the project itself.
/// @return true if `file` is open.
bool open_external_file(std::ifstream& file, my_string const& name);

}  // namespace tov
