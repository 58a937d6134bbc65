// Fuzz target: Mega files, read, written, and read and written again.
#include <cstdlib>

#include "translate_chain.h"

namespace {

std::string project_of(std::string const& text) {
    std::istringstream in(text);
    std::ostringstream project;
    tov::mega_to_project(in, "source", project);
    return project.str();
}

std::string sequences(std::string const& mega) { return tov::fuzz::behind_names(mega, 12, "#"); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    tov::fuzz::Exports const first = tov::fuzz::export_all(project_of(tov::fuzz::as_text(data, size)));
    if (first.mega.empty()) return 0;
    // What was written reads as the same sequences, taxon by taxon.
    tov::fuzz::Exports const second = tov::fuzz::export_all(project_of(first.mega));
    if (!second.read || sequences(first.mega) != sequences(second.mega)) std::abort();
    return 0;
}
