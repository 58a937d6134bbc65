// The run list `tov_run.txt`: its directive and its lines.
#include "run/run_list.h"

namespace tov {

RunDirective run_directive(std::string const& text) {
    if (text == "translate") return RunDirective::translate;
    if (text == "use_spe_settings") return RunDirective::special_settings;
    if (text == "use_ass_settings") return RunDirective::associated_settings;
    if (text == "explore") return RunDirective::explore;
    return RunDirective::interface_settings;
}

bool read_run_list_line(std::istream& in, std::string& line, std::size_t max_length) {
    std::string read;
    if (!std::getline(in, read)) return false;
    if (read.size() > max_length) read.resize(max_length);
    read.erase(read.find_last_not_of(" \r") + 1);
    // A character that ends a C string ends the line for every reader of a path.
    line = read.c_str();
    return true;
}

void RunList::read_head(std::string& directory) {
    if (!read(directory, path_length)) directory.clear();
    if (!directory.empty() && directory.back() != '/' && directory.back() != '\\') directory += '/';
    std::string text;
    if (read(text, directive_length)) directive = run_directive(text);
}

}  // namespace tov
