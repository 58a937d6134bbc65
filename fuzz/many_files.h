// What the fuzz targets share whose inputs hold several files.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace tov::fuzz {

/// A byte of 0 stands between the files of one input.
inline std::vector<std::string> files_of(std::string_view input) {
    std::vector<std::string> files;
    for (std::size_t begin = 0; begin <= input.size();) {
        std::size_t const end = std::min(input.find('\0', begin), input.size());
        files.emplace_back(input.substr(begin, end - begin));
        begin = end + 1;
    }
    return files;
}

/// A project that names files elsewhere would read those of the machine.
inline bool names_other_files(std::string_view project) {
    return project.find('/') != std::string_view::npos && project.find("EXTERN") != std::string_view::npos;
}

}  // namespace tov::fuzz
