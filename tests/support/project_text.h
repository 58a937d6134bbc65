/// Projects as text in memory: read in one go, with the log at hand.
#pragma once

#include <sstream>
#include <string>

#include "base/dmat.h"
#include "input/project_reader.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "structure/mantel.h"
#include "support/fresh_process.h"

namespace tov::test {

/// A project read from a text. The state of the process is fresh for its lifetime.
struct ProjectText {
    explicit ProjectText(std::string const& text) {
        std::istringstream is(text);
        result = read_project(is, {profile, haplotypes, distances, samples, structure, mantel});
        log = fresh.log();
    }
    ProjectText(ProjectText const&) = delete;
    ProjectText& operator=(ProjectText const&) = delete;

    [[nodiscard]] bool logs(std::string const& part) const { return log.find(part) != std::string::npos; }

    FreshProcess fresh;
    ProfileSettings profile;
    Haplo_DB haplotypes;
    DistMat distances;
    Samples samples;
    Structure structure;
    Mantel mantel;
    int result = 0;
    std::string log;
};

/// The [Profile] section of haplotypic data and the line "[Data]": lines 1 to 8 of a project.
inline std::string profile_text(std::string const& type, int nb_samples = 1, std::string const& separator = "NONE",
                                std::string const& more = "") {
    return "[Profile]\nTitle=\"t\"\nNbSamples=" + std::to_string(nb_samples) + "\nDataType=" + type +
           "\nGenotypicData=0\nLocusSeparator=" + separator + "\nMissingData='?'" + more + "\n[Data]\n";
}

/// The same for genotypic data: lines 1 to 9.
inline std::string genotypic_profile_text(std::string const& type, int nb_samples = 1,
                                          std::string const& separator = "WHITESPACE", std::string const& more = "") {
    return "[Profile]\nTitle=\"t\"\nNbSamples=" + std::to_string(nb_samples) + "\nDataType=" + type +
           "\nGenotypicData=1\nGameticPhase=0\nLocusSeparator=" + separator + "\nMissingData='?'" + more + "\n[Data]\n";
}

/// A sample in project file form.
inline std::string sample_text(std::string const& name, std::string const& size, std::string const& data) {
    return "SampleName=\"" + name + "\"\nSampleSize=" + size + "\nSampleData={\n" + data + "}\n";
}

}  // namespace tov::test
