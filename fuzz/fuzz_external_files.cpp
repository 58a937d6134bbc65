// Fuzz target: the readers of the files that a project names by EXTERN.
//
// The input is a byte that chooses the kind of data, then the files, a byte of 0 between them: list of haplotypes,
// matrix of distances, data of one sample, matrix of the Mantel test.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "base/dmat.h"
#include "input/project_reader.h"
#include "input/settings.h"
#include "many_files.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "structure/mantel.h"
#include "support/scratch_directory.h"

namespace {

constexpr std::array<char const*, 4> file_names{"haplotypes", "distances", "sample", "mantel"};

std::string project_of(unsigned choice) {
    constexpr std::array<char const*, 5> types{"DNA", "RFLP", "MICROSAT", "STANDARD", "FREQUENCY"};
    std::string const type = types[choice % 5];
    bool const genotypes = choice / 5 % 2 != 0 && type != "FREQUENCY";
    bool const list = choice / 10 % 2 != 0 && !genotypes;
    bool const labels_in_rows = choice / 20 % 2 != 0;
    std::string text = "[Profile]\nTitle=\"x\"\nNbSamples=1\nDataType=" + type +
                       "\nGenotypicData=" + (genotypes ? "1" : "0") + "\nLocusSeparator=" +
                       (type == "DNA" || type == "RFLP" ? "NONE" : "WHITESPACE") + "\nMissingData='?'\n[Data]\n";
    if (list) text += "[[HaplotypeDefinition]]\nHaplListName=\"l\"\nHaplList= EXTERN \"haplotypes\"\n";
    text += std::string("[[DistanceMatrix]]\nMatrixName=\"m\"\nMatrixSize=4\nLabelPosition=") +
            (labels_in_rows ? "COLUMN" : "LINE") + "\nMatrixData= EXTERN \"distances\"\n";
    text += "[[Samples]]\nSampleName=\"s\"\nSampleSize=4\nSampleData= EXTERN \"sample\"\n";
    text += "[[Structure]]\nStructureName=\"g\"\nNbGroups=1\nGroup={\n\"s\"\n}\n";
    return text +
           "[[Mantel]]\nMatrixSize=3\nMatrixNumber=2\nYMatrix=\"CUSTOM\"\nYMatrixLabels={\n\"a\"\n\"b\"\n\"c\"\n}\n"
           "DistMatMantel= EXTERN \"mantel\"\nDistMatMantel= EXTERN \"mantel\"\nUsedYMatrixLabels={\n\"a\"\n\"b\"\n"
           "\"c\"\n}\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    auto const files = tov::fuzz::files_of({reinterpret_cast<char const*>(data) + 1, size - 1});
    tov::test::ScratchDirectory const directory;
    for (std::size_t i = 0; i < std::min(files.size(), file_names.size()); ++i)
        directory.write(file_names[i], files[i]);
    tov::settings::input_file = (directory.path() / "p.tvp").string();

    tov::ProfileSettings profile;
    tov::Haplo_DB haplotypes;
    tov::DistMat distances;
    tov::Samples samples;
    tov::Structure structure;
    tov::Mantel mantel;
    std::istringstream project(project_of(data[0]));
    int const read = tov::read_project(project, {profile, haplotypes, distances, samples, structure, mantel});
    if (read && profile.NbSamples != samples.NbPopulations()) std::abort();
    for (int i = 0; i < samples.NbPopulations(); ++i)
        if (!(samples[i]->sample_size() >= 0.0)) std::abort();
    std::ostringstream written;
    written << profile << haplotypes << distances << structure;
    return 0;
}
