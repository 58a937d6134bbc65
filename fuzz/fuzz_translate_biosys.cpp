// Fuzz target: Biosys files, read, written, and read and written again.
#include <cstdlib>

#include "translate_chain.h"

namespace {

std::string project_of(std::string const& text) {
    std::istringstream in(text);
    std::ostringstream project;
    tov::biosys_to_project(in, project);
    return project.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    tov::fuzz::Exports const first = tov::fuzz::export_all(project_of(tov::fuzz::as_text(data, size)));
    if (first.biosys.empty()) return 0;
    // What was written reads as the same individuals and genotypes; alleles stand in the same order.
    tov::fuzz::Exports const second = tov::fuzz::export_all(project_of(first.biosys));
    if (!second.read || tov::fuzz::behind_first_line(first.biosys) != tov::fuzz::behind_first_line(second.biosys))
        std::abort();
    return 0;
}
