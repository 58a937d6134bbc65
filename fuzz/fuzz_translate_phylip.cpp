// Fuzz target: Phylip files, read, written, and read and written again.
#include <cstdlib>

#include "translate_chain.h"

namespace {

std::string project_of(std::string const& text) {
    std::istringstream in(text);
    std::ostringstream project;
    tov::phylip_to_project(in, project);
    return project.str();
}

std::string sequences(std::string const& phylip) {
    return tov::fuzz::behind_names(tov::fuzz::behind_first_line(phylip), 10);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    tov::fuzz::Exports const first = tov::fuzz::export_all(project_of(tov::fuzz::as_text(data, size)));
    if (first.phylip.empty()) return 0;
    // What was written reads as the same sequences, taxon by taxon.
    tov::fuzz::Exports const second = tov::fuzz::export_all(project_of(first.phylip));
    if (!second.read || sequences(first.phylip) != sequences(second.phylip)) std::abort();
    return 0;
}
