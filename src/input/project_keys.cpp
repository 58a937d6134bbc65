// The keys of the [Profile] section, read line by line, and the list of what a project lacks.
#include <string>
#include <string_view>

#include "input/block_lines.h"
#include "input/line_text.h"
#include "input/project_reader.h"
#include "input/public.h"

namespace tov {
namespace {

/// One key line of the profile.
struct KeyLine {
    ProfileSettings& profile;
    SeenItems& seen;
    my_string const& text;
    int line;
};

/// Reads the value of a key. @return false when the reading has to stop.
using LineReader = bool (*)(KeyLine const&);

bool value_of(KeyLine const& key, char const* name, double& value) {
    return checkForPresenceOfEqualSign(key.text, name, key.line) && getValue(key.text, value, name, key.line);
}

bool quoted_value(KeyLine const& key, char const* name, my_string& value) {
    return checkForPresenceOfEqualSign(key.text, name, key.line) && getQuotedString(key.text, value, name, key.line);
}

/// kept on purpose: the value opens with a single quote and closes with a double one.
void log_invalid(KeyLine const& key, my_string const& value, char quote, char const* name) {
    log_project_line(key.line, std::string(" : Invalid value (") + quote + value.str() + "\") assigned to keyword \"" +
                                   name + "\"\n");
}

bool read_title(KeyLine const& key) {
    quoted_value(key, "Title", key.profile.title);
    return true;
}

bool read_nb_samples(KeyLine const& key) {
    double value = 0.0;
    if (!value_of(key, "NbSamples", value)) {
        E.error(ErrorType::Error, "ProfileSettings::read_NbSamples()", 95);
        return false;
    }
    key.profile.NbSamples = rounded_int(value);
    key.seen.nb_samples = true;
    return true;
}

bool read_data_type(KeyLine const& key) {
    if (!checkForPresenceOfEqualSign(key.text, "DataType", key.line)) return true;
    key.seen.data_type = true;
    my_string value;
    getUnQuotedString(key.text, value, "DataType", key.line);
    for (int type = DNA; type <= FREQUENCY; ++type) {
        key.profile.DataType = static_cast<TDataType>(type);
        if (contains_word(value, data_type_name(key.profile.DataType))) return true;
    }
    E.error(ErrorType::Error, "ProfileSettings::read_DataType()", 75);
    key.profile.DataType = STANDARD;
    return true;
}

/// A key of 0 or 1; any other number counts as 1.
void read_flag(KeyLine const& key, char const* name, int& field, bool& seen, char const* function, int code,
               int default_value) {
    if (!checkForPresenceOfEqualSign(key.text, name, key.line)) return;
    double value = default_value;
    seen = true;
    if (getValue(key.text, value, name, key.line)) {
        field = rounded_int(value) != 0;
        return;
    }
    if (code != 0) E.error(ErrorType::Error, function, code);
    field = default_value;
}

bool read_genotypic_data(KeyLine const& key) {
    read_flag(key, "GenotypicData", key.profile.GenotypicData, key.seen.genotypic_data,
              "ProfileSettings::read_GenotypicData()", 74, 0);
    return true;
}

bool read_gametic_phase(KeyLine const& key) {
    read_flag(key, "GameticPhase", key.profile.GameticPhase, key.seen.gametic_phase,
              "ProfileSettings::read_GameticPhase()", 89, 1);
    return true;
}

bool read_recessive_data(KeyLine const& key) {
    bool seen = false;
    read_flag(key, "RecessiveData", key.profile.RecessiveData, seen, "", 0, 0);
    return true;
}

bool read_locus_separator(KeyLine const& key) {
    if (!checkForPresenceOfEqualSign(key.text, "LocusSeparator", key.line)) return true;
    key.seen.locus_separator = true;
    char& separator = key.profile.LocusSeparator;
    my_string word;
    getUnQuotedString(key.text, word, "LocusSeparator", key.line);
    if (contains_word(word, "TAB"))
        separator = '\t';
    else if (contains_word(word, "WHITESPACE"))
        separator = ' ';
    else if (contains_word(word, "NONE") || word.contains("\\0"))
        separator = 0;
    else {
        my_string value;
        bool const quoted = getQuotedString(key.text, value, "LocusSeparator", key.line) != 0;
        bool const one_blank = value.length() == 1 && is_blank(value[0]);
        if (!one_blank) value.remove_blanks();
        if (quoted && value.length() == 1) {
            separator = value[0];
            return true;
        }
        E.error(ErrorType::Error, "ProfileSettings::read_LocusSeparator()", 82);
        separator = ' ';
        log_invalid(key, value, '\'', "LocusSeparator");
    }
    return true;
}

bool read_recessive_allele(KeyLine const& key) {
    my_string value;
    bool const quoted = quoted_value(key, "RecessiveAllele", value);
    value.remove_blanks();
    if (quoted && !value.is_null()) {
        key.seen.recessive_allele = true;
        key.profile.RecessiveAllele = value;
        return true;
    }
    E.error(ErrorType::Error, "ProfileSettings::read_RecessiveAllele()", 90);
    key.profile.RecessiveData = 0;
    log_invalid(key, value, '"', "RecessiveAllele");
    return true;
}

bool read_missing_data(KeyLine const& key) {
    my_string value;
    bool const quoted = quoted_value(key, "MissingData", value);
    value.remove_blanks();
    key.seen.missing_data = true;
    if (quoted && value.length() == 1) {
        key.profile.MissingData = value[0];
        return true;
    }
    E.error(ErrorType::Error, "ProfileSettings::read_MissingData()", 78);
    key.profile.MissingData = '?';
    log_invalid(key, value, '\'', "MissingData");
    return true;
}

bool read_frequency(KeyLine const& key) {
    my_string value;
    if (!checkForPresenceOfEqualSign(key.text, "Frequency", key.line)) return true;
    getUnQuotedString(key.text, value, "Frequency", key.line);
    key.profile.Frequency = 0;
    if (contains_word(value, "ABS")) return true;
    if (contains_word(value, "REL")) {
        key.profile.Frequency = 1;
        return true;
    }
    E.error(ErrorType::Error, "ProfileSettings::read_Frequency()", 87);
    log_invalid(key, my_string(trimmed(value)), '\'', "Frequency");
    return true;
}

bool read_comp_dist_matrix(KeyLine const& key) {
    log_project_line(key.line,
                     " : Keyword \"CompDistMatrix\" is now obsolete. Please set this parameter directly throug the "
                     "interface\n");
    return true;
}

bool read_frequency_threshold(KeyLine const& key) {
    value_of(key, "FrequencyThreshold", key.profile.FrequencyThreshold);
    return true;
}

bool read_epsilon_value(KeyLine const& key) {
    value_of(key, "EpsilonValue", key.profile.EpsilonValue);
    return true;
}

/// A word of the cascade; it decides unless `unless` stands in the line too.
struct CascadeWord {
    std::string_view word;
    LineReader read;
    std::string_view unless;
};

constexpr CascadeWord cascade[] = {
    {"TITLE", read_title, ""},
    {"NBSAMPLES", read_nb_samples, ""},
    {"DATATYPE", read_data_type, ""},
    {"GENOTYPICDATA", read_genotypic_data, ""},
    {"LOCUSSEPARATOR", read_locus_separator, ""},
    {"GAMETICPHASE", read_gametic_phase, ""},
    {"RECESSIVEDATA", read_recessive_data, ""},
    {"RECESSIVEALLELE", read_recessive_allele, ""},
    {"MISSINGDATA", read_missing_data, ""},
    {"FREQUENCY", read_frequency, "FREQUENCYTHRESHOLD"},
    {"COMPDISTMATRIX", read_comp_dist_matrix, ""},
    {"FREQUENCYTHRESHOLD", read_frequency_threshold, ""},
    {"EPSILONVALUE", read_epsilon_value, ""},
};

/// Logs a missing item. @return `met`.
bool need(bool met, std::string_view text) {
    if (!met) *_AOS_ << text;
    return met;
}

bool missing_in_profile(ProfileSettings const& profile, SeenItems const& seen) {
    bool complete = need(seen.profile, "\t[PROFILE] section not defined. Check your project file.\n");
    complete &= need(seen.nb_samples,
                     "\tKeyword \"NbSamples\" not found. Undefined number of samples to read. Check your project "
                     "file.\n");
    complete &=
        need(seen.data_type, "\tKeyword \"DataType\" not found. Undefined data type. Check your project file.\n");
    complete &= need(seen.genotypic_data,
                     "\tKeyword \"GenotypicData\" not found. Undefined data type. Check your project file.\n");
    complete &= need(seen.locus_separator || profile.DataType == FREQUENCY,
                     "\tKeyword \"LocusSeparator\" not found. Check your project file.\n");
    complete &= need(seen.gametic_phase || !profile.GenotypicData,
                     "\tKeyword \"GameticPhase\" not found. Undefined gametic phase for genotypic data. Check your "
                     "project file.\n");
    if (!need(seen.recessive_allele || !profile.RecessiveData,
              "\tKeyword \"RecessiveAllele\" not found. Undefined recessive allele for recessive data. "))
        log_text("\t\tUsing default value (", profile.RecessiveAllele, "). Check your project file.");
    if (!seen.missing_data && profile.DataType != FREQUENCY)
        log_text("\tKeyword \"MissingData\" not found. Using default value (\"", profile.MissingData,
                 "\"). Check your project file.");
    return complete;
}

bool missing_in_matrix(SeenItems const& seen) {
    bool complete = need(seen.hapl_list || !seen.haplotype_definition,
                         "\tKeyword \"HaplList\" not found in Haplotype section. Haplotype list not found. Check your "
                         "project file.\n");
    complete &= need(seen.matrix_size || !seen.distance_matrix,
                     "\tKeyword \"MatrixSize\" not found in Distance Matrix section.Check your project file.\n");
    complete &= need(seen.matrix_data || !seen.distance_matrix,
                     "\tKeyword \"MatrixData\" not found in Distance Matrix section. Distance matrix is undefined. "
                     "Check your project file.\n");
    return complete;
}

bool missing_in_samples(ProfileSettings const& profile, SeenItems const& seen) {
    bool complete = need(seen.samples,
                         "\tSection \"Samples\" not found in project. At least one sample needs to be defined. Check "
                         "your project file.\n");
    if (!need(seen.sample_size, "\tKeyword \"SampleSize\" not found in Samples section. Sample size is undefined.\n"))
        log_text("\t\tUsing sum of ", profile.GenotypicData ? "genotype" : "haplotype",
                 " frequencies. Check your project file.");
    complete &= need(seen.sample_data,
                     "\tKeyword \"SampleData\" not found in Samples section. Sample data is undefined. Check your "
                     "project file.\n");
    return complete;
}

bool missing_in_structure(SeenItems const& seen) {
    if (!seen.structure) return true;
    bool complete = need(seen.nb_groups,
                         "\tKeyword \"NbGroups\" not found in Structure section. Unknown number of groups to read. "
                         "Check your project file.\n");
    complete &= need(seen.group,
                     "\tKeyword \"Group\" not found in Structure section. No groups definition could be read. Check "
                     "your project file.\n");
    return complete;
}

bool missing_in_mantel(SeenItems const& seen) {
    if (!seen.mantel) return true;
    auto const need_key = [](bool met, char const* key) {
        if (!met) log_text("\tKeyword \"", key, "\" not found in Mantel section. Check your project file.");
        return met;
    };
    bool complete = need_key(seen.mantel_size, "MatrixSize");
    complete &= need_key(seen.mantel_number, "MatrixNumber");
    complete &= need_key(seen.mantel_labels, "YMatrixLabels");
    complete &= need_key(seen.mantel_matrix, "DistMatMantel");
    need_key(seen.mantel_used_labels, "UsedYMatrixLabels");  // all labels serve instead
    return complete;
}

}  // namespace

KeyResult read_profile_line(ProfileSettings& profile, SeenItems& seen, my_string const& text, int line) {
    for (CascadeWord const& entry : cascade) {
        if (!contains_word(text, entry.word) || contains_word(text, entry.unless)) continue;
        return entry.read({profile, seen, text, line}) ? KeyResult::done : KeyResult::stop;
    }
    return KeyResult::not_mine;
}

bool report_missing_items(ProfileSettings const& profile, SeenItems const& seen) {
    bool complete = missing_in_profile(profile, seen);
    complete &= need(seen.data, "\t[DATA] section not defined. Check your project file.\n");
    complete &= missing_in_matrix(seen);
    complete &= missing_in_samples(profile, seen);
    complete &= missing_in_structure(seen);
    complete &= missing_in_mantel(seen);
    return complete;
}

}  // namespace tov
