/// Directories and file names.
#pragma once

#include <string>

namespace tov {

/// Makes a directory that group and others can't write to (mode 0755 under the usual mask). One that exists already, or
/// can't be made, is left alone without a word.
void make_directory(std::string const& path) noexcept;

}  // namespace tov
