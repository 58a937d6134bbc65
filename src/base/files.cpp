// Directories, by the standard file system library.
#include "base/files.h"

#include <filesystem>

namespace tov {

void make_directory(std::string const& path) noexcept {
    namespace fs = std::filesystem;
    try {
        std::string name = path;
        while (name.size() > 1 && name.back() == '/')
            name.pop_back();  // "made or not" is told wrongly with a slash behind
        if (fs::create_directory(name)) {
            fs::permissions(name, fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove);
        }
    } catch (std::exception const&) {
        // A directory that can't be made shows when its files don't open.
    }
}

}  // namespace tov
