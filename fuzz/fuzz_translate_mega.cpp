// Fuzz target: Mega files, read and written.
#include "translate_chain.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::istringstream in(tov::fuzz::as_text(data, size));
    std::ostringstream project;
    tov::mega_to_project(in, "source", project);
    tov::fuzz::export_all(project.str());
    return 0;
}
