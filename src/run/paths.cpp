// Path helpers of the run control.
#include "run/paths.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>

namespace tov {

std::string without_extension(std::string const& path) { return path.substr(0, path.rfind('.')); }

std::string directory_of(std::string const& path) { return path.substr(0, path.find_last_of("/\\") + 1); }

std::string file_name_of(std::string const& path) { return path.substr(path.find_last_of("/\\") + 1); }

std::string forward_slashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

bool file_opens(std::string const& path) {
    std::ifstream in(path);
    in.peek();  // a directory opens, but can't be read
    return in.is_open() && !in.bad();
}

std::string current_directory() {
    std::array<char, 1000> buffer{};
    return getcwd(buffer.data(), 999) == nullptr ? std::string() : std::string(buffer.data());
}

}  // namespace tov
