// Project: the short path that tells the front end what a project holds, without a run.
#include <fstream>

#include "base/dmat.h"
#include "input/public.h"
#include "input/settings.h"
#include "model/sample.h"
#include "model/struct.h"
#include "run/errors.h"
#include "run/project.h"

namespace tov {
namespace {

constexpr char function_name[] = "Project::explore()";
constexpr int max_sub_sections = 5;

/// Positions in the table of sub-sections, counted from 1.
enum SubSection { distance_matrix = 1, samples = 3, structure = 4 };

void write_separator(std::ostream& out, char separator) {
    switch (separator) {
        case 0:
            out << "NONE";
            break;
        case ' ':
            out << "WHITESPACE";
            break;
        case '\t':
            out << "TAB";
            break;
        default:
            out << separator;
    }
    out << "=LocusSeparator;\n";
}

}  // namespace

int Project::explore_sub_section(std::istream& in, int id) {
    switch (id) {
        case SubSection::samples:
            *_AOS_ << "\tExploring Samples...\n";
            return samples_->explore(in, p_pro());
        case SubSection::structure:
            *_AOS_ << "\tExploring genetic structure...\n";
            if (!structure_->explore(in, "groups.txt")) return 0;
            NbGroups = structure_->NbGroupsDeclared;
            return 1;
        case SubSection::distance_matrix:
            *_AOS_ << "\tReading distance matrix ...\n";
            if (distances_->get_mat_name(in)) DistMatLabel = distances_->name;
            return 1;
        default:
            return 1;
    }
}

int Project::explore(std::string const& directory) {
    // What an earlier project of the list left must not show up as this one's.
    initialize();
    distances_->reset();
    structure_->reset();
    structure_->NbGroupsDeclared = 0;
    std::ofstream("groups.txt", std::ios::trunc) << "0";
    std::ifstream in(settings::input_file);
    if (!in.is_open()) {
        E.error(ErrorType::Error, function_name, 126);
        return 0;
    }
    *_AOS_ << "Reading general settings in input file ...\n";
    if (!get_profile_settings(in)) {
        E.error(ErrorType::Error, function_name, 127);
        return 0;
    }
    *_AOS_ << "done ! \n";
    if (DistMatLabel.is_null()) DistMatLabel = "none";
    go_to_section(in, "data");
    int found = 0;
    my_string name;
    while (skip_comments(in)) {
        int const id = get_next_subsection(in, name);
        if (id == 0) break;
        if (++found > max_sub_sections) {
            E.error(ErrorType::Error, function_name, 131);
            return 0;
        }
        if (!explore_sub_section(in, id)) return 0;
    }
    if (found == 0) {
        E.error(ErrorType::Error, function_name, 128);
        return 0;
    }
    write_front_end_summary(directory);
    return 1;
}

void Project::write_front_end_summary(std::string const& directory) const {
    std::ofstream out(directory + "tov_pro.txt", std::ios::trunc);
    out << title << "=Title;\n"
        << NbSamples << "=NbSamples;\n"
        << NbGroups << "=NbGroups; \n"
        << GenotypicData << "=GenotypicData;\n"
        << GameticPhase << "=GameticPhase;\n"
        << data_type_name(DataType) << "=DataType;\n";
    write_separator(out, LocusSeparator);
    out << MissingData << "=MissingData;\n"
        << DistMatLabel << "=DistMatLabel;\n"
        << UsedHaplList << "=UsedHaplList; \n"
        << ExtHaplFile << "=ExtHaplFile; \n"
        << Interleave << "=Interleave; \n"
        << IndividualLevel << "=IndividualLevel;\n"
        << Frequency << "=Frequency; \n"
        << RecessiveData << "=RecessiveData; \n"
        << RecessiveAllele << "=RecessiveAllele;\n"
        << GivenDistMat << "=GivenDistMat; \n"
        << EpsilonValue << "=EpsilonValue;\n"
        << FrequencyThreshold << "=FrequencyThreshold;\n";
}

}  // namespace tov
