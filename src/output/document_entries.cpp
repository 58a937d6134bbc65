// Entries of the link tree for a run whose names the settings hold.
#include "input/settings.h"
#include "output/html_out.h"

namespace tov {

EntryTarget entry_target(settings const& set) {
    std::string const& result = set.result_file;
    std::size_t const slash = result.find_last_of("/\\");
    return {&set.ofs(), set.tree_script, slash == std::string::npos ? result : result.substr(slash + 1), set.run_id};
}

void print_js_doc_entry(settings const& set, int level, std::string_view anchor, std::string_view title) {
    print_js_doc_entry(entry_target(set), level, anchor, title);
}

void print_js_aux_entry(settings const& set, int level, std::string_view anchor, std::string_view title) {
    print_js_aux_entry(entry_target(set), level, anchor, title);
}

void print_js_tovenia_log_entry(settings const& set) { print_js_tovenia_log_entry(set.tree_script); }

}  // namespace tov
