// What the fuzz targets of the translation share: a project from text to the foreign formats, in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include "base/dmat.h"
#include "input/project_reader.h"
#include "input/settings.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/project.h"
#include "structure/mantel.h"
#include "translate/biosys.h"
#include "translate/export_walk.h"
#include "translate/genepop.h"
#include "translate/mega.h"
#include "translate/phylip.h"

namespace tov::fuzz {

inline std::string as_text(std::uint8_t const* data, std::size_t size) {
    return {reinterpret_cast<char const*>(data), size};
}

/// The texts that an opened project becomes; empty ones when it can't be read.
struct Exports {
    bool read = false;
    std::string genepop, phylip, mega, biosys;
};

inline Exports export_all(std::string const& text) {
    constexpr std::int64_t most_copies = 10000;
    settings::input_file = "none/none.tvp";
    auto const project = std::make_unique<Project>();
    std::istringstream in(text);
    Exports exports;
    exports.read = read_project(in, {project->p_pro(), project->p_hdb(), project->p_dmt(), project->p_sam(),
                                     project->p_str(), project->p_mantel()}) != 0;
    if (!exports.read || export_sizes(*project).copies > most_copies) return exports;
    project->p_set().alleles = &project->p_alldb();
    project->unify_definitions();
    if (project->GenotypicData) project->GameticPhase = 0;
    project->make_run_possible();
    std::ostringstream genepop, phylip, mega, biosys;
    write_genepop(*project, genepop);
    write_phylip(*project, phylip);
    write_mega(*project, mega);
    write_biosys(*project, biosys);
    exports.genepop = genepop.str();
    exports.phylip = phylip.str();
    exports.mega = mega.str();
    exports.biosys = biosys.str();
    return exports;
}

/// What stands behind the first `column` characters of each line, without blanks; lines that begin another way than
/// with `mark` are left out.
inline std::string behind_names(std::string const& text, std::size_t column, std::string_view mark = "") {
    std::string data;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(mark) || line.size() < column) continue;
        for (char const c : line.substr(column))
            if (c != ' ') data += c;
        data += '\n';
    }
    return data;
}

inline std::string behind_first_line(std::string const& text) {
    std::size_t const end = text.find('\n');
    return end == std::string::npos ? std::string() : text.substr(end + 1);
}

}  // namespace tov::fuzz
