// Fuzz target: whole runs of the program, from project and settings to the closed document.
//
// The input is eight bytes that choose analyses and options, then the project and the files that it names by EXTERN as
// "a", "b" and "c", a byte of 0 between them. The numbers of steps, permutations and simulations are small and large
// projects are passed over, so that an input takes well below a second.
#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>

#include "base/dmat.h"
#include "input/project_reader.h"
#include "input/settings.h"
#include "many_files.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/project.h"
#include "run/tovcore35.h"
#include "structure/mantel.h"
#include "support/scratch_directory.h"
#include "translate/export_walk.h"

namespace {

using namespace tov;

constexpr std::size_t choice_bytes = 8;
using Choices = std::array<unsigned, choice_bytes>;

/// Numbers of steps, permutations and simulations that take milliseconds.
void keep_it_short(settings& set) {
    set.MarkovChainStepsHW = set.MarkovChainStepsLD = 200;
    set.MarkovChainDememorisationStepsHW = set.MarkovChainDememorisationStepsLD = 50;
    set.NumBootExpDem = 2;
    set.NumSimulFuTest = set.NumIterationsNeutralityTests = 8;
    set.NumPermutationsAMOVA = set.NumPermutationsFST = set.NumPermMantel = 20;
    set.NumPermutPopDiff = 200;
    set.NumDememoPopDiff = 50;
    set.InitialConditionsEM = set.InitialCondEMLD = set.NumInitCondBootstrapEM = 2;
    set.MaximumNumOfIterationsEM = 50;
    set.GibbsBurnIn = 20;
    set.GibbsSamplingInterval = 5;
    set.GibbsNumSamples = 5;
    set.NumberOfDemesForFDist2 = 10;
    set.NumberOfGroupsForFDist2 = 3;
    set.NumberOfSimsForFDist2 = 20;
}

void choose_options(settings& set, Choices const& choice) {
    auto const bit = [&choice](unsigned byte, unsigned number) {
        return static_cast<int>(choice[byte] >> number & 1U);
    };
    set.TaskNumber = static_cast<long>(choice[0] | choice[1] << 8U | (choice[2] & 1U) << 16U);
    set.XMLOutput = 1 - bit(2, 1);
    set.ComputeSumStatsWithinGroups = bit(2, 2);
    set.InferHaplotypeDefinitionFromDistanceMatrix = bit(2, 3);
    set.EliminateRedondHaplodefs = bit(2, 4);
    set.IncludeIndividualLevel = bit(2, 5);
    set.LocByLocAMOVA = bit(2, 6);
    set.ComputeConventionalFST = bit(2, 7);
    set.RecessiveAllelesEM = bit(3, 0);
    set.EMUseZipper = bit(3, 1);
    set.EMEstimateInbreedingCoeff = bit(3, 2);
    set.UnequalPopSizeDiv = bit(3, 3);
    set.DetectSelectedLoci = bit(3, 4);
    set.UseHierarchicalIslandModel = bit(3, 5);
    set.GibbsInferGamPhase = bit(3, 6);
    set.HaplAMOVA = 1 - bit(3, 7);
    set.DistanceMethod = set.MismatchDistanceMethod = static_cast<int>(choice[4] % 9);
    set.DistanceMethodAMOVA = static_cast<int>(choice[4] / 9 % 9);
    set.AllowedLevelOfMissingData = choice[5] / 255.0;
    set.TypeOfTestHW = static_cast<int>(choice[6] % 3);
    set.MismatchDemogExp = bit(6, 2) != 0;
    set.MismatchSpatialExp = bit(6, 3) != 0;
    set.MismatchSpatialExpNumParams = 3 + bit(7, 7);
    set.ComputeTheta = static_cast<int>(choice[6] >> 4U);
    set.GammaAValue = set.GammaAValueAMOVA = set.MismatchGammaAValue = choice[7] / 64.0;
}

std::string settings_text(Choices const& choice) {
    settings set;
    keep_it_short(set);
    set.MakeHWExactTest = set.MakeExactTestLD = set.ComputeDvalues = set.PrintFlagHistogramLD = 1;
    set.ComputeStandardDiversityIndices = set.PrintHaplDistMat = set.PrintPopDistMat = set.PrintMinSpannNetworkPop = 1;
    set.ComputeAllAlleleFreqs = true;
    set.ComputeAllHaplotypesEM = set.ComputeAllAllelesEM = set.ComputeAllSubHaplotypesEM = 1;
    set.NumBootstrapReplicatesEM = 2;
    set.PopSpecificFST = set.PopSpecificFIS = set.TestSignificanceAMOVA = set.KeepNullDistrib = 1;
    set.PrintDistanceMatrix = set.PrintMinSpannNetworkGlob = 1;
    set.TestSignificancePairewiseFST = set.ComputePairwiseFST = set.ComputeDeltaMuSqr = 1;
    set.PrintFstVals = set.PrintConcestryCoeff = set.PrintSlatkinsDist = set.PrintMissIntermatchs = 1;
    set.EwensWattersonHomozygosityTest = 1;
    choose_options(set, choice);
    std::ostringstream text;
    set.print_settings(text);
    return text.str();
}

/// The project is so small that no analysis of it takes long.
bool is_small(std::string const& text) {
    constexpr std::int64_t most_copies = 300;
    constexpr int most_samples = 8, most_loci = 40, most_unphased_loci = 6;
    settings::input_file = "./p.tvp";
    auto const project = std::make_unique<Project>();
    std::istringstream in(text);
    bool const read = read_project(in, {project->p_pro(), project->p_hdb(), project->p_dmt(), project->p_sam(),
                                        project->p_str(), project->p_mantel()}) != 0;
    if (!read) return true;
    ExportSizes const sizes = export_sizes(*project);
    bool const unphased = project->GenotypicData && !project->GameticPhase;
    return sizes.copies <= most_copies && sizes.samples <= most_samples &&
           export_loci(*project) <= (unphased ? most_unphased_loci : most_loci);
}

void require(bool holds, char const* what) {
    if (holds) return;
    std::cerr << what << '\n';
    std::abort();
}

void check_document(bool xml) {
    std::ifstream in(xml ? "p.res/p.xml" : "p.res/p.htm", std::ios::binary);
    if (!in) return;  // the project was refused before a document was opened
    std::string const text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!xml) return require(text.ends_with("</html>\n"), "the document is not closed");
    xmlDocPtr const document =
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "p.xml", nullptr, XML_PARSE_NONET | XML_PARSE_HUGE);
    require(document != nullptr, "the document is not well-formed");
    xmlFreeDoc(document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    constexpr std::size_t most_bytes = 20000;
    if (size < choice_bytes || size > most_bytes) return 0;
    Choices choice{};
    for (std::size_t i = 0; i < choice_bytes; ++i) choice[i] = data[i];
    auto const files = fuzz::files_of({reinterpret_cast<char const*>(data) + choice_bytes, size - choice_bytes});
    if (fuzz::names_other_files(files[0])) return 0;

    test::ScratchDirectory const directory;
    constexpr std::array<char const*, 4> names{"p.tvp", "a", "b", "c"};
    for (std::size_t i = 0; i < std::min(files.size(), names.size()); ++i) directory.write(names[i], files[i]);
    directory.write("p.tvs", settings_text(choice));
    std::streambuf* const console = std::cout.rdbuf(nullptr);
    if (is_small(files[0])) {
        constexpr std::array<char const*, 4> arguments{"tovcore", "p.tvp", "p.tvs", "run_silent"};
        require(_main(static_cast<int>(arguments.size()), arguments.data()) == 0, "the exit status is not 0");
        check_document((choice[2] & 2U) == 0);
    }
    std::cout.rdbuf(console);
    std::cout.clear();
    return 0;
}
