// Path helpers of the run control over std::string.
#pragma once

#include <string>

namespace tov {

/// `path` less its extension: cut from the last '.' on, wherever it stands.
[[nodiscard]] std::string without_extension(std::string const& path);
/// Everything up to and including the last '/' or '\'; empty for a bare name.
[[nodiscard]] std::string directory_of(std::string const& path);
/// What stands behind the last '/' or '\'.
[[nodiscard]] std::string file_name_of(std::string const& path);
/// `path` with every '\' turned into '/'.
[[nodiscard]] std::string forward_slashes(std::string path);
/// Whether the file opens for reading; a directory doesn't.
[[nodiscard]] bool file_opens(std::string const& path);
/// The working directory by a system call into a buffer of 999 characters; empty when the call fails.
[[nodiscard]] std::string current_directory();

}  // namespace tov
