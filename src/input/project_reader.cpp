// The reader of a whole project, line by line.
#include "input/project_reader.h"

#include <ctime>
#include <fstream>
#include <istream>
#include <string>

#include "base/dmat.h"
#include "base/timing.h"
#include "input/block_lines.h"
#include "input/definition.h"
#include "input/external_file.h"
#include "input/line_text.h"
#include "input/public.h"
#include "model/hapldb.h"
#include "model/sample.h"
#include "model/struct.h"
#include "structure/mantel.h"

namespace tov {
namespace {

constexpr char function_name[] = "Project::newOpen()";
constexpr int largest_matrix = 65535;  // rows; the triangle of a larger one takes more than 16 GB

/// Reads the lines of a project; each section is handed to its own reader.
class ProjectReader {
public:
    ProjectReader(std::istream& is, ProjectParts const& parts) : is_(is), parts_(parts) {}

    /// @return false after a fault that stops the reading.
    bool read();

    SeenItems seen;

private:
    bool read_line(my_string const& text);
    bool read_haplotype_line(my_string const& text, bool& mine);
    bool read_matrix_line(my_string const& text, bool& mine);
    bool read_later_section(my_string const& text);
    bool read_haplotype_list(my_string const& text);
    bool read_matrix_size(my_string const& text);
    bool read_label_position(my_string const& text);
    bool read_matrix_data(my_string const& text);
    bool read_samples();
    bool read_structure();
    bool read_mantel();
    bool open_external(my_string const& text, char const* key, int code, char const* action, std::ifstream& file,
                       my_string& name);
    bool follows(bool met, std::string_view complaint) const;
    bool samples_first(char const* section) const;

    std::istream& is_;           // borrowed
    ProjectParts const& parts_;  // borrowed
    int line_ = 0;
    bool labels_in_line_ = true;
    int matrix_size_ = 0;
    my_string pending_;  // upper-cased line that ended a section
};

bool ProjectReader::read() {
    std::string raw;
    while (read_text_line(is_, raw, line_)) {
        my_string text{std::string(without_comment(raw))};
        if (!read_line(text)) return false;
        // A section reader hands the line over that it could not use.
        while (!pending_.is_null()) {
            text = pending_;
            pending_ = "";
            if (!read_line(text)) return false;
        }
    }
    return true;
}

bool ProjectReader::read_line(my_string const& text) {
    if (trimmed(text).empty()) return true;
    // Once the samples are there, no key may change what they were read with.
    if (seen.samples) return read_later_section(text);
    if (contains_word(text, "[PROFILE]")) seen.profile = true;
    KeyResult const key = read_profile_line(parts_.profile, seen, text, line_);
    if (key != KeyResult::not_mine) return key == KeyResult::done;
    if (contains_word(text, "[DATA]")) {
        seen.data = true;
        return true;
    }
    bool mine = false;
    if (!read_haplotype_line(text, mine)) return false;
    if (!mine && !read_matrix_line(text, mine)) return false;
    if (mine) return true;
    if (contains_word(text, "[SAMPLES]")) return read_samples();
    return read_later_section(text);
}

/// Tells in the log that a word stands too early. @return `met`.
bool ProjectReader::follows(bool met, std::string_view complaint) const {
    if (!met) log_project_line(line_, complaint);
    return met;
}

bool ProjectReader::read_haplotype_line(my_string const& text, bool& mine) {
    mine = true;
    if (contains_word(text, "HAPLOTYPEDEFINITION")) {
        if (!follows(seen.data,
                     " : HaplotypeDefinition keyword declared before the beginning of the 'Data' section...\n"))
            return false;
        seen.haplotype_definition = true;
        return true;
    }
    if (contains_word(text, "HAPLLISTNAME")) {
        if (!follows(seen.haplotype_definition,
                     " : HaplListName keyword declared before the beginning of the 'HaplotypeDefinition' section...\n"))
            return false;
        if (!checkForPresenceOfEqualSign(text, "HaplListName", line_) ||
            !getQuotedString(text, parts_.haplotypes.name, "HaplListName", line_))
            E.error(ErrorType::Error, function_name, 34);
        return true;
    }
    if (contains_word(text, "HAPLLIST") && !contains_word(text, "USEDHAPLLIST")) {
        if (!follows(seen.haplotype_definition,
                     " : HaplList keyword declared before the beginning of the 'HaplotypeDefinition' section...\n"))
            return false;
        seen.hapl_list = true;
        return read_haplotype_list(text);
    }
    mine = false;
    return true;
}

bool ProjectReader::open_external(my_string const& text, char const* key, int code, char const* action,
                                  std::ifstream& file, my_string& name) {
    if (!getQuotedString(text, name, key, line_)) return false;
    if (open_external_file(file, name)) return true;
    log_text("\tWarning: External file \"", name, "\" listed on line ", line_,
             " cannot be open. Check that it exists. ", action);
    E.error(ErrorType::Error, function_name, code);
    return false;
}

bool ProjectReader::read_haplotype_list(my_string const& text) {
    std::clock_t const start = std::clock();
    log_text("Reading Haplotype List ...");
    int read = 0;
    if (contains_word_outside_quotes(text, "EXTERN")) {
        my_string name;
        std::ifstream file;
        if (!open_external(text, "Extern haplotype list", 36, "Aborting reading project", file, name)) return false;
        log_text("\tReading haplotype list in external file \"", name, '"');
        int line_in_file = 0;
        read = parts_.haplotypes.NewReadHaplotypeList(file, parts_.profile, true, line_in_file);
    } else {
        read = parts_.haplotypes.NewReadHaplotypeList(is_, parts_.profile, false, line_, text);
    }
    if (read) log_text("done ! (", milliseconds_since(start), " ms)");
    return read != 0;
}

bool ProjectReader::read_matrix_line(my_string const& text, bool& mine) {
    mine = true;
    if (contains_word(text, "DISTANCEMATRIX")) {
        if (!follows(seen.data,
                     " : DistanceMatrix keyword declared before the beginning of the 'Data' section..., "
                     "aborting project reading!\n"))
            return false;
        seen.distance_matrix = true;
        parts_.distances.name = "undefined";
        return true;
    }
    if (contains_word(text, "MATRIXNAME")) {
        if (!checkForPresenceOfEqualSign(text, "MatrixName", line_) ||
            !getQuotedString(text, parts_.distances.name, "MatrixName", line_)) {
            log_text("\tWarning: Unable to read MatrixName on line ", line_);
            E.error(ErrorType::Error, function_name, 24);
            parts_.distances.name = "undefined";
        }
        return true;
    }
    if (contains_word(text, "MATRIXSIZE")) return read_matrix_size(text);
    if (contains_word(text, "LABELPOSITION")) return read_label_position(text);
    if (contains_word(text, "MATRIXDATA")) return read_matrix_data(text);
    mine = false;
    return true;
}

bool ProjectReader::read_matrix_size(my_string const& text) {
    double size = 0.0;
    if (!checkForPresenceOfEqualSign(text, "MatrixSize", line_) || !getValue(text, size, "MatrixSize", line_)) {
        log_text("\tWarning: Unable to read MatrixSize on line ", line_, ". Aborting project reading.");
        E.error(ErrorType::Error, function_name, 15);
        return false;
    }
    int const n = rounded_int(size);
    if (n <= 0) {
        log_text("\tBad size (", n, ") assigned to MatrixSize on line ", line_, ". Aborting project reading.");
        E.error(ErrorType::Error, function_name, 15);
        return false;
    }
    if (n > largest_matrix) {
        log_text("\tUnable to allocate memory for distance matrix \"", n, '"');
        return false;
    }
    // The triangle itself is made when its rows have been read, so that a size alone costs no memory.
    matrix_size_ = n;
    seen.matrix_size = true;
    return true;
}

bool ProjectReader::read_label_position(my_string const& text) {
    my_string value;
    getUnQuotedString(text, value, "LabelPosition", line_);
    if (contains_word(value, "LINE"))
        labels_in_line_ = true;
    else if (contains_word(value, "COLUMN"))
        labels_in_line_ = false;
    else {
        // kept on purpose: no blank stands before the number.
        log_text("\tInvalid keyword for LabelPosition on line", line_);
        E.error(ErrorType::Error, function_name, 16);
        return false;
    }
    return true;
}

bool ProjectReader::read_matrix_data(my_string const& text) {
    std::clock_t const start = std::clock();
    DistMat& distances = parts_.distances;
    seen.matrix_data = true;
    if (!seen.matrix_size) return false;  // told among the missing items
    distances.nb_labels = matrix_size_;
    int read = 0;
    if (contains_word_outside_quotes(text, "EXTERN")) {
        my_string name;
        std::ifstream file;
        if (!open_external(text, "Extern Distance Matrix ", 200, "Aborting reading project", file, name)) return false;
        log_text("\tReading Distance Matrix in external file \"", name, '"');
        E.error(ErrorType::Information, function_name, 17);
        int line_in_file = 0;
        read = distances.ReadDistanceMatrix(file, labels_in_line_, line_in_file, my_string(), false);
    } else {
        log_text("\tReading distance matrix ...");
        bool open = false;
        std::string_view const behind = behind_opening_brace(text, open);
        my_string first;
        if (open) first = behind.empty() ? std::string_view(" ") : behind;
        read = distances.ReadDistanceMatrix(is_, labels_in_line_, line_, first);
    }
    if (read) {
        log_text("\tdone ! (", milliseconds_since(start), " ms)");
        return true;
    }
    distances.nb_labels = 0;
    log_text("\t\tProblems in reading DistanceMatrix section... aborting reading  project file.");
    return false;
}

bool ProjectReader::samples_first(char const* section) const {
    if (seen.samples) return true;
    log_project_line(line_, std::string(" : ") + section +
                                " section defined before the [SAMPLES] section. Aborting reading project\n");
    return false;
}

bool ProjectReader::read_later_section(my_string const& text) {
    if (contains_word(text, "[STRUCTURE]")) return samples_first("[STRUCTURE]") && read_structure();
    if (contains_word(text, "[MANTEL]")) return samples_first("[MANTEL]") && read_mantel();
    return true;
}

bool ProjectReader::read_samples() {
    if (!follows(seen.data,
                 " : Samples keyword declared before the beginning of the 'Data' section..., "
                 "aborting project reading!\n"))
        return false;
    seen.samples = true;
    ProfileSettings& profile = parts_.profile;
    if (profile.DataType == FREQUENCY && profile.GenotypicData) {
        log_project_line(line_, " : FREQUENCY data have no genotypes, \"GenotypicData\" is taken as 0\n");
        profile.GenotypicData = 0;
    }
    if (parts_.samples.NewReadSamples(is_, profile, parts_.haplotypes, line_, pending_, seen.sample_size,
                                      seen.sample_data, seen.sample_name))
        return true;
    log_text("\tProblems in reading Samples section... aborting reading  project file.");
    return false;
}

bool ProjectReader::read_structure() {
    Structure::SeenKeys keys;
    int const read = parts_.structure.NewReadStructure(is_, parts_.profile, parts_.samples, line_, pending_, keys);
    seen.structure = !keys.passed_over;
    seen.nb_groups = keys.nb_groups;
    seen.group = keys.group;
    if (!read) log_text("\tProblems in reading Structure section... aborting reading  project file.");
    return read != 0;
}

bool ProjectReader::read_mantel() {
    Mantel::SeenKeys keys;
    int const read = parts_.mantel.NewOpenMantel(is_, parts_.profile, line_, pending_, keys);
    seen.mantel = true;
    seen.mantel_size = keys.matrix_size;
    seen.mantel_number = keys.matrix_number;
    seen.mantel_labels = keys.y_matrix_labels;
    seen.mantel_matrix = keys.dist_mat_mantel;
    seen.mantel_used_labels = keys.used_y_matrix_labels;
    if (!read) log_text("\tProblems in reading Mantel section... aborting reading  project file.");
    return read != 0;
}

/// All copies of the profile say the same from here on.
void spread_profile(ProjectParts const& parts) {
    normalise_separator(parts.profile);
    static_cast<ProfileSettings&>(parts.haplotypes) = parts.profile;
    parts.distances.profile = parts.profile;
    parts.samples.set_profile(parts.profile);
    static_cast<ProfileSettings&>(parts.structure) = parts.profile;
}

}  // namespace

int read_project(std::istream& is, ProjectParts const& parts) {
    log_text("Reading input file ...");
    ProjectReader reader(is, parts);
    bool const read = reader.read();
    spread_profile(parts);
    bool const complete = report_missing_items(parts.profile, reader.seen);
    if (!complete) E.error(ErrorType::Error, function_name, 203);
    return read && complete;
}

}  // namespace tov
