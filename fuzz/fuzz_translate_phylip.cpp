// Fuzz target: Phylip files, read and written.
#include "translate_chain.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::istringstream in(tov::fuzz::as_text(data, size));
    std::ostringstream project;
    tov::phylip_to_project(in, project);
    tov::fuzz::export_all(project.str());
    return 0;
}
