// Fuzz target: Genepop files, read, written, and read and written again.
#include <cstdlib>

#include "translate_chain.h"

namespace {

std::string project_of(std::string const& text, bool diploid) {
    std::istringstream in(text);
    std::ostringstream project;
    tov::genepop_to_project(in, diploid, project);
    return project.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text = tov::fuzz::as_text(data, size);
    tov::fuzz::export_all(project_of(text, false));
    tov::fuzz::Exports const first = tov::fuzz::export_all(project_of(text, true));
    if (first.genepop.empty()) return 0;
    // What was written reads as the same individuals and genotypes.
    tov::fuzz::Exports const second = tov::fuzz::export_all(project_of(first.genepop, true));
    if (!second.read || tov::fuzz::behind_first_line(first.genepop) != tov::fuzz::behind_first_line(second.genepop))
        std::abort();
    return 0;
}
