// Fuzz target: Zentara files. The input is the main file, a line "===", and the text of every other file.
#include "translate/zentara.h"
#include "translate_chain.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text = tov::fuzz::as_text(data, size);
    std::size_t const mark = text.find("\n===\n");
    std::string const other = mark == std::string::npos ? text : text.substr(mark + 5);
    tov::ZentaraSource source;
    source.matrix_file = "m.dis";
    source.structure_file = "s";
    source.open = [&other](std::string const&) { return std::make_unique<std::istringstream>(other); };
    std::istringstream in(text.substr(0, mark));
    std::ostringstream project;
    tov::zentara_to_project(in, source, project);
    tov::fuzz::export_all(project.str());
    return 0;
}
