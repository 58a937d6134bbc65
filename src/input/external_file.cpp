// The files that a project refers to by EXTERN.
#include "input/external_file.h"

#include "input/public.h"
#include "input/settings.h"
#include "run/paths.h"

namespace tov {
namespace {

bool open_file(std::ifstream& file, std::string const& path) {
    file.clear();
    if (!file_opens(path)) return false;
    file.open(path);
    return file.is_open();
}

}  // namespace

bool open_external_file(std::ifstream& file, my_string const& name) {
    if (name.is_null()) return false;
    if (detectFullPathInFileName(name)) return open_file(file, name.str());
    my_string directory(settings::input_file);
    directory.extract_path();
    if (open_file(file, directory.str() + name.str())) return true;
    std::string parent = directory.str();
    constexpr std::string_view results = ".res/";
    if (!parent.ends_with(results)) return false;
    parent.pop_back();
    my_string above(parent);
    return open_file(file, above.extract_path().str() + name.str());
}

}  // namespace tov
