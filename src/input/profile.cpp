// The keys of a project's [Profile] section: defaults, writing, and the reader that looks for them by stream.
#include "input/profile.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <string_view>

#include "input/line_text.h"
#include "input/public.h"
#include "run/errors.h"

namespace tov {
namespace {

constexpr char const* type_names[] = {"DNA", "RFLP", "MICROSAT", "STANDARD", "FREQUENCY"};
constexpr int nb_types = 5;

/// One key read from a stream: its value goes into the profile. @return 0 when the value is missing or invalid.
using KeyReader = int (*)(ProfileSettings&, std::istream&);

/// A key of the earlier reader, with the code of a value that can't be read.
struct ProfileKey {
    std::string_view name;
    KeyReader read;
    std::string_view function;
    int code;
};

int read_flag(std::istream& ifs, int& field, int default_value) {
    int value = default_value;
    int const found = get_int(ifs, value);
    bool const valid = found && (value == 0 || value == 1);
    field = valid ? value : default_value;
    return valid;
}

int read_count(std::istream& ifs, int& field) {
    field = 0;
    return get_int(ifs, field);
}

int read_number(std::istream& ifs, double& field, double default_value) {
    my_string text;
    field = default_value;
    return get_qstring(ifs, text) && parse_number(text, field);
}

int read_data_type(ProfileSettings& p, std::istream& ifs) {
    my_string word;
    p.DataType = STANDARD;
    if (!get_qstring(ifs, word)) return 0;
    word.to_upper();
    for (int i = 0; i < nb_types; ++i)
        if (word == type_names[i]) {
            p.DataType = static_cast<TDataType>(i);
            return 1;
        }
    return 0;
}

int read_locus_listing(ProfileSettings& p, std::istream& ifs) {
    my_string word;
    p.LocusListing = TABLE;
    if (!get_qstring(ifs, word)) return 0;
    word.to_upper();
    if (word == "ONE_BY_ONE") p.LocusListing = ONE_BY_ONE;
    return word == "TABLE" || word == "ONE_BY_ONE";
}

int read_locus_separator(ProfileSettings& p, std::istream& ifs) {
    my_string word;
    p.LocusSeparator = ' ';
    if (!get_qstring(ifs, word)) return 0;
    my_string const upper = word.Upper();
    if (upper == "TAB")
        p.LocusSeparator = '\t';
    else if (upper == "NONE" || upper == "\\0")
        p.LocusSeparator = 0;
    else if (upper == "WHITESPACE")
        p.LocusSeparator = ' ';
    else if (word.length() == 1)
        p.LocusSeparator = word[0];
    else
        return 0;
    return 1;
}

int read_frequency(ProfileSettings& p, std::istream& ifs) {
    my_string word;
    p.Frequency = 0;
    if (!get_qstring(ifs, word)) return 0;
    word.to_upper();
    if (word == "REL") p.Frequency = 1;
    return word == "REL" || word == "ABS";
}

int read_recessive_allele(ProfileSettings& p, std::istream& ifs) {
    my_string word;
    if (get_qstring(ifs, word) && !word.remove_blanks().is_null()) {
        p.RecessiveAllele = word;
        return 1;
    }
    p.RecessiveData = 0;
    return 0;
}

int read_missing_data(ProfileSettings& p, std::istream& ifs) {
    p.MissingData = '?';
    return get_qchar(ifs, p.MissingData);
}

int read_computed_matrix(ProfileSettings& p, std::istream& ifs) {
    int computed = 0;
    if (read_flag(ifs, computed, 0)) p.GivenDistMat = computed ? 0 : 1;
    return 1;
}

int read_loci_labels(ProfileSettings& p, std::istream& ifs) {
    my_string label;
    p.LociLabels.Flush();
    while (!test_end_of_line(ifs) && get_qstring(ifs, label)) p.LociLabels.Add(label);
    return !p.LociLabels.IsEmpty();
}

constexpr ProfileKey keys[] = {
    {"title", [](ProfileSettings& p, std::istream& s) { return get_qstring(s, p.title); },
     "ProfileSettings::read_Title()", 93},
    {"nbsamples", [](ProfileSettings& p, std::istream& s) { return read_count(s, p.NbSamples); },
     "ProfileSettings::read_NbSamples()", 95},
    {"nbgroups", [](ProfileSettings& p, std::istream& s) { return read_count(s, p.NbGroups); },
     "ProfileSettings::read_NbGroups()", 97},
    {"genotypicdata", [](ProfileSettings& p, std::istream& s) { return read_flag(s, p.GenotypicData, 0); },
     "ProfileSettings::read_GenotypicData()", 74},
    {"gameticphase", [](ProfileSettings& p, std::istream& s) { return read_flag(s, p.GameticPhase, 1); },
     "ProfileSettings::read_GameticPhase()", 89},
    {"datatype", read_data_type, "ProfileSettings::read_DataType()", 75},
    {"locuslisting", read_locus_listing, "ProfileSettings::read_LocusListing()", 80},
    {"nbloci", [](ProfileSettings& p, std::istream& s) { return read_count(s, p.NbLoci); },
     "ProfileSettings::read_NbLoci()", 81},
    {"interleave", [](ProfileSettings& p, std::istream& s) { return read_flag(s, p.Interleave, 0); },
     "ProfileSettings::read_Interleave()", 86},
    {"locusseparator", read_locus_separator, "ProfileSettings::read_LocusSeparator()", 82},
    {"missingdata", read_missing_data, "ProfileSettings::read_MissingData()", 78},
    {"distmatlabel", [](ProfileSettings& p, std::istream& s) { return get_qstring(s, p.DistMatLabel); },
     "ProfileSettings::read_DistMatLabel()", 57},
    {"usedhapllist", [](ProfileSettings& p, std::istream& s) { return get_qstring(s, p.UsedHaplList); },
     "ProfileSettings::read_UsedHaplList()", 77},
    {"exthaplfile", [](ProfileSettings& p, std::istream& s) { return get_qstring(s, p.ExtHaplFile); },
     "ProfileSettings::read_ExtHaplFile()", 55},
    {"individuallevel", [](ProfileSettings& p, std::istream& s) { return read_flag(s, p.IndividualLevel, 0); },
     "ProfileSettings::read_IndividualLevel()", 84},
    {"frequency", read_frequency, "ProfileSettings::read_Frequency()", 87},
    {"recessivedata", [](ProfileSettings& p, std::istream& s) { return read_flag(s, p.RecessiveData, 0); },
     "ProfileSettings::read_RecessiveData()", 55},
    {"recessiveallele", read_recessive_allele, "ProfileSettings::read_RecessiveAllele()", 90},
    {"compdistmatrix", read_computed_matrix, "ProfileSettings::read_CompDistMatrix()", 55},
    {"frequencythreshold",
     [](ProfileSettings& p, std::istream& s) { return read_number(s, p.FrequencyThreshold, 1e-5); },
     "ProfileSettings::read_FrequencyThreshold()", 91},
    {"epsilonvalue", [](ProfileSettings& p, std::istream& s) { return read_number(s, p.EpsilonValue, 1e-7); },
     "ProfileSettings::read_EpsilonValue()", 92},
    {"locilabels", read_loci_labels, "ProfileSettings::read_LociLabels()", 76},
};

void write_separator(std::ostream& os, char separator) {
    os << "\n\tLocusSeparator=";
    switch (separator) {
        case 0:
            os << "NONE";
            break;
        case ' ':
            os << "WHITESPACE";
            break;
        case '\t':
            os << "TAB";
            break;
        default:
            os << '\'' << separator << '\'';
    }
}

}  // namespace

char const* data_type_name(TDataType type) noexcept { return type >= DNA && type <= FREQUENCY ? type_names[type] : ""; }

ProfileSettings::ProfileSettings() { initialize(); }

void ProfileSettings::initialize() {
    title = "";
    LociLabels.Flush();
    NbSamples = 0;
    NbGroups = 0;
    GenotypicData = 0;
    GameticPhase = 1;
    DataType = STANDARD;
    LocusListing = TABLE;
    NbLoci = 0;
    Interleave = 0;
    LocusSeparator = ' ';
    MissingData = '?';
    DistMatLabel = "";
    UsedHaplList = UsedHaplListDefault;
    ExtHaplFile = "";
    IndividualLevel = 0;
    Frequency = 0;
    RecessiveData = 0;
    RecessiveAllele = RecessiveAlleleDefault;
    GivenDistMat = 1;
    EpsilonValue = 1e-7;
    FrequencyThreshold = 1e-5;
}

int ProfileSettings::get_profile_settings(std::istream& ifs) {
    initialize();
    if (!go_to_section(ifs, "Profile")) return 0;
    my_string ident;
    while (get_next_ident(ifs, ident)) read_profile_id_content(ifs, ident);
    return 1;
}

int ProfileSettings::read_profile_id_content(std::istream& ifs, my_string const& ident) {
    for (ProfileKey const& key : keys) {
        if (!(ident == key.name)) continue;
        if (key.read(*this, ifs)) return 1;
        E.error(ErrorType::Error, std::string_view(key.function), key.code);
        return 0;
    }
    E.error(ErrorType::Warning, "ProfileSettings::read_profile_id_content()", 98);
    return 0;
}

std::ostream& operator<<(std::ostream& os, ProfileSettings& profile) {
    os << "# Project definition generated by Tovenia \n\n\n[Profile]"
       << "\n\tTitle=\"" << profile.title << '"' << "\n\tNbSamples=" << profile.NbSamples
       << "\n\tDataType=" << data_type_name(profile.DataType) << "\n\tGenotypicData=" << profile.GenotypicData
       << "\n\tGameticPhase=" << profile.GameticPhase;
    write_separator(os, profile.LocusSeparator);
    os << "\n\tRecessiveData=" << profile.RecessiveData << "\n\tRecessiveAllele=\"" << profile.RecessiveAllele << '"'
       << "\n\tMissingData='" << profile.MissingData << '\'' << "\n\tFrequency=" << (profile.Frequency ? "REL" : "ABS")
       << "\n\tFrequencyThreshold=" << profile.FrequencyThreshold << "\n\tEpsilonValue=" << profile.EpsilonValue
       << "\n\n[Data]\n";
    return os;
}

}  // namespace tov
