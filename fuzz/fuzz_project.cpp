// Fuzz target: the reader of whole projects, and the writers over what it read.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "base/dmat.h"
#include "input/project_reader.h"
#include "input/settings.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "structure/mantel.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    // No file of the machine is read in place of an external one.
    tov::settings::input_file = "/nonexistent/p.res/p.tvp";
    std::string const text(reinterpret_cast<char const*>(data), size);
    if (text.find('/') != std::string::npos && text.find("EXTERN") != std::string::npos) return 0;

    tov::ProfileSettings profile;
    tov::Haplo_DB haplotypes;
    tov::DistMat distances;
    tov::Samples samples;
    tov::Structure structure;
    tov::Mantel mantel;
    std::istringstream project(text);
    int const read = tov::read_project(project, {profile, haplotypes, distances, samples, structure, mantel});

    // What was read hangs together.
    if (read && profile.NbSamples != samples.NbPopulations()) std::abort();
    if (structure.nb_samples() > samples.NbPopulations()) std::abort();
    for (int i = 0; i < samples.NbPopulations(); ++i)
        if (!(samples[i]->sample_size() >= 0.0)) std::abort();
    std::ostringstream written;
    written << profile << haplotypes << distances << structure;

    // The reader by stream takes any text too.
    std::istringstream by_stream(text);
    tov::ProfileSettings explored;
    explored.get_profile_settings(by_stream);
    return 0;
}
