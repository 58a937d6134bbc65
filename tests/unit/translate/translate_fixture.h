// Translations as text: foreign file to project, project to foreign file.
#pragma once

#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "input/settings.h"
#include "run/project.h"
#include "support/fresh_process.h"
#include "support/project_text.h"
#include "support/scratch_directory.h"
#include "support/text.h"
#include "translate/imp_exp.h"

namespace tov::test {

/// What a reader makes of a text.
inline std::string project_of(std::string const& text, std::function<void(std::istream&, std::ostream&)> const& read) {
    std::istringstream in(text);
    std::ostringstream project;
    read(in, project);
    return project.str();
}

inline int count_of(std::string const& text, std::string const& part) {
    int n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++n;
    return n;
}

/// The project opens without any report.
inline bool reads_cleanly(std::string const& project) {
    ProjectText const read(project);
    return read.result == 1 && !read.logs("#[ERROR") && !read.logs("#[WARNING");
}

inline bool fails_when_read(std::string const& project) { return ProjectText(project).result == 0; }

/// Exports in a directory of its own.
struct Export {
    Export() { fresh.keep(settings::input_file); }

    /// The target that a project becomes; further files lie in the directory, the log in fresh.
    std::string write(int format, std::string const& project_text) {
        directory.write("p.tvp", project_text);
        Project project;
        imp_exp translator;
        translator.project = &project;
        translator.export_data(format, "p.tvp", "out", std::make_unique<std::ofstream>("out"));
        return directory.read("out");
    }

    ScratchDirectory directory;
    FreshProcess fresh;
};

}  // namespace tov::test
