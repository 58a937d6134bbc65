// Reader of the section [[Mantel]].
#include <algorithm>
#include <ctime>
#include <fstream>
#include <istream>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/timing.h"
#include "input/block_lines.h"
#include "input/external_file.h"
#include "input/line_text.h"
#include "input/matrix_rows.h"
#include "input/public.h"
#include "structure/mantel.h"

namespace tov {
namespace {

constexpr char function_name[] = "Mantel::NewOpenMantel()";
constexpr std::size_t most_matrices = 3;

/// Reads the keys of the section line by line.
class MantelReader {
public:
    MantelReader(Mantel& mantel, std::istream& is, int& line, Mantel::SeenKeys& seen)
        : mantel_(mantel), is_(is), line_(line), seen_(seen) {}

    bool read();

private:
    bool read_line(my_string const& text);
    bool read_y_type(my_string const& text);
    bool read_size(my_string const& text);
    bool read_number(my_string const& text);
    bool read_labels(my_string const& text);
    bool read_used_labels(my_string const& text);
    bool read_label_block(my_string const& text, char const* key, std::vector<my_string>& labels);
    bool take_labels(BlockLines& lines, char const* key, std::vector<my_string>& labels);
    bool read_matrix(my_string const& text);
    bool read_matrix_data(my_string const& text, TriMat& matrix);
    bool refuse_number_of_matrices() const;
    bool assign_matrices();
    void use_all_labels();

    Mantel& mantel_;          // borrowed
    std::istream& is_;        // borrowed
    int& line_;               // borrowed
    Mantel::SeenKeys& seen_;  // borrowed
    std::vector<TriMat> matrices_;
    std::unordered_set<std::string> label_set_;
};

bool MantelReader::read() {
    std::string raw;
    while (read_text_line(is_, raw, line_)) {
        my_string const text{std::string(without_comment(raw))};
        if (!read_line(text)) return false;
    }
    if (!seen_.used_y_matrix_labels) use_all_labels();
    return assign_matrices();
}

bool MantelReader::read_line(my_string const& text) {
    if (contains_word(text, "YMATRIX") && !contains_word(text, "YMATRIXLABELS")) return read_y_type(text);
    if (contains_word(text, "MATRIXSIZE")) return read_size(text);
    if (contains_word(text, "MATRIXNUMBER")) return read_number(text);
    if (contains_word(text, "YMATRIXLABELS") && !contains_word(text, "USEDYMATRIXLABELS")) return read_labels(text);
    if (contains_word(text, "DISTMATMANTEL")) return read_matrix(text);
    if (contains_word(text, "USEDYMATRIXLABELS")) return read_used_labels(text);
    return true;
}

bool MantelReader::read_y_type(my_string const& text) {
    if (text.str().find('=') == std::string::npos) {
        log_text("\tMissing '=' sign after keyword \"YMatrix\" on line ", line_);
        return false;
    }
    my_string value;
    getUnQuotedString(text, value, "YMatrix", line_);
    std::string_view rest(value);
    std::string_view word;
    next_label(rest, word);
    my_string const type = my_string(word).Lower();
    if (std::find(mantel_.Y_types.begin(), mantel_.Y_types.end(), type) != mantel_.Y_types.end()) {
        mantel_.Y_type = type;
        return true;
    }
    log_project_line(line_, " : Invalid value ('" + std::string(word) + "') assigned to keyword \"YMatrix\"\n");
    log_text("\tInvalid YMatrix type (\"", word, "\")defined on line ", line_, ". Aborting reading project.");
    return false;
}

bool MantelReader::read_size(my_string const& text) {
    double size = 0.0;
    if (!checkForPresenceOfEqualSign(text, "MatrixSize", line_) || !getValue(text, size, "MatrixSize", line_)) {
        log_text("Bad value (\"", trimmed(text.extract_after('=')), "\") assigned to MatrixSize on line ", line_);
        return false;
    }
    if (rounded_int(size) < 3) {
        log_text("\tInvalid value assigned to MatrixSize on line ", line_,
                 ". Value of MatrixSize needs to be at least 3. Aborting reading project.");
        return false;
    }
    bool const in_use = !mantel_.labels.empty() || !matrices_.empty();
    if (in_use && rounded_int(size) != mantel_.nb_labels) {
        log_text("\tMatrixSize found on line ", line_,
                 " differs from the size of the labels or matrices read before. Aborting reading project.");
        return false;
    }
    mantel_.nb_labels = rounded_int(size);
    seen_.matrix_size = true;
    return true;
}

bool MantelReader::read_number(my_string const& text) {
    double number = 0.0;
    bool const read =
        checkForPresenceOfEqualSign(text, "MatrixNumber", line_) && getValue(text, number, "MatrixNumber", line_);
    if (!read || (rounded_int(number) != 2 && rounded_int(number) != 3)) {
        log_text("Invalid value (", trimmed(text.extract_after('=')), ") assigned to MatrixNumber on line ", line_,
                 ". Value needs to be either 2 or 3. Aborting reading project.");
        return false;
    }
    mantel_.nb_matrices = rounded_int(number);
    seen_.matrix_number = true;
    return true;
}

bool MantelReader::read_labels(my_string const& text) {
    if (!seen_.matrix_size) {
        log_text("\tKeyword YMatrixLabels found on line ", line_,
                 " before MatrixSize has been defined. Abort reading matrix.");
        return false;
    }
    seen_.y_matrix_labels = true;
    if (!read_label_block(text, "YMatrixLabels", mantel_.labels)) return false;
    int const found = static_cast<int>(mantel_.labels.size());
    if (found < mantel_.nb_labels) {
        log_text("\tInsufficient number of labels defined in YMatrixLabels section (", found, " instead of ",
                 mantel_.nb_labels, "). Aborting reading project");
        return false;
    }
    for (my_string const& label : mantel_.labels) label_set_.insert(label.str());
    return true;
}

bool MantelReader::read_used_labels(my_string const& text) {
    seen_.used_y_matrix_labels = true;
    std::vector<my_string> used;
    if (!read_label_block(text, "UsedYMatrixLabels", used)) return false;
    if (used.size() < 2) {
        log_text("\tToo few labels (", used.size(),
                 ") defined in UsedYMatrixLabels section. At least 2 labels need to be defined. Aborting reading "
                 "project.");
        return false;
    }
    mantel_.used_labels.Flush();
    for (my_string const& label : used) mantel_.used_labels.Add(label);
    return true;
}

bool MantelReader::read_label_block(my_string const& text, char const* key, std::vector<my_string>& labels) {
    labels.clear();
    bool open = false;
    std::string_view const first = behind_opening_brace(text, open);
    BlockLines lines(is_, line_, first, open);
    if (!open && !lines.skip_opening_brace()) {
        log_text("\tMissing opening brace in ", key, " definition. Aborting reading project");
        return false;
    }
    if (!take_labels(lines, key, labels)) return false;
    if (lines.closed()) return true;
    log_text("\tMissing closing brace in ", key, " definition. Aborting reading project.");
    return false;
}

bool MantelReader::take_labels(BlockLines& lines, char const* key, std::vector<my_string>& labels) {
    bool const used = key == std::string_view("UsedYMatrixLabels");
    auto const expected = static_cast<std::size_t>(mantel_.nb_labels);
    while (lines.next()) {
        std::string_view rest = lines.text();
        if (rest.find('=') != std::string_view::npos && contains_word_outside_quotes(rest, "MATRIX")) return true;
        std::size_t const before = labels.size();
        while (!(rest = trimmed(rest)).empty()) {
            std::string_view label;
            if (!next_label(rest, label)) {
                log_text("\tUnable to read label #", labels.size() + 1, " on line ", line_,
                         ". Aborting reading project");
                return false;
            }
            if (used && !label_set_.contains(std::string(label))) {
                log_text("\tLabel \"", label, "\" defined on line ", line_,
                         " has not been defined previously in YMatrixLabels section.", " Aborting reading project.");
                return false;
            }
            if (labels.size() == expected) {
                if (labels.size() > before)
                    log_text("\tToo many labels found on line ", line_);
                else
                    log_text("\tToo many ", key, " are defined. Only ", expected,
                             " labels were expected. Check for additional labels potentially present on line ", line_);
                return false;
            }
            labels.emplace_back(label);
        }
    }
    return true;
}

bool MantelReader::read_matrix(my_string const& text) {
    if (!seen_.matrix_size) {
        log_text("\tKeyword DistMatMantel found on line ", line_,
                 " before MatrixSize has been defined. Abort reading matrix.");
        return false;
    }
    seen_.dist_mat_mantel = true;
    if (matrices_.size() == most_matrices) {
        log_text("\tUnexpected number of matrices defined (", matrices_.size() + 1, "). Aborting reading project.");
        return false;
    }
    std::clock_t const start = std::clock();
    TriMat matrix;
    if (!read_matrix_data(text, matrix)) {
        log_text("\t\tProblems in reading DisMatMantel section... aborting reading  project file.");
        return false;
    }
    log_text("\t\tdone ! (", milliseconds_since(start), " ms)");
    matrices_.push_back(std::move(matrix));
    return true;
}

bool MantelReader::read_matrix_data(my_string const& text, TriMat& matrix) {
    if (!contains_word_outside_quotes(text, "EXTERN")) {
        log_text("\t\tReading Mantel distance matrix ...");
        bool open = false;
        std::string_view const behind = behind_opening_brace(text, open);
        my_string first;
        if (open) first = behind.empty() ? std::string_view(" ") : behind;
        return mantel_.newReadMatrixData(is_, matrix, true, line_, first) != 0;
    }
    my_string name;
    std::ifstream file;
    if (!getQuotedString(text, name, "Extern Distance Matrix ", line_)) return false;
    if (!open_external_file(file, name)) {
        log_text("\tWarning: External file \"", name, "\" listed on line ", line_,
                 " cannot be open. Check that it exists. Aborting reading project");
        E.error(ErrorType::Error, function_name, 200);
        return false;
    }
    log_text("\tReading Distance Matrix in external file \"", name, '"');
    E.error(ErrorType::Information, function_name, 17);
    log_text("\t\tReading Mantel distance matrix ...");
    int line_in_file = 0;
    return mantel_.newReadMatrixData(file, matrix, false, line_in_file) != 0;
}

/// With a computed Y the project may leave its matrix out; a last matrix too many is then not used.
bool MantelReader::refuse_number_of_matrices() const {
    int const count = static_cast<int>(matrices_.size());
    if (mantel_.nb_matrices == 0 || count == 0) return false;  // told as missing keys
    bool const custom = mantel_.Y_type == mantel_.Y_types[5];
    return count != mantel_.nb_matrices && (custom || count != mantel_.nb_matrices - 1);
}

bool MantelReader::assign_matrices() {
    if (refuse_number_of_matrices()) {
        log_text("\tUnexpected number of matrices defined (", matrices_.size(), "). Aborting reading project.");
        return false;
    }
    std::vector<TriMat*> targets{&mantel_.X1, &mantel_.X2};
    if (mantel_.Y_type == mantel_.Y_types[5]) targets.insert(targets.begin(), &mantel_.Y_custom);
    for (std::size_t i = 0; i < targets.size() && i < matrices_.size(); ++i) *targets[i] = matrices_[i];
    return true;
}

void MantelReader::use_all_labels() {
    log_text("\tWarning: Section UsedYMatrixLabels not found. We shall assume that all ",
             "labels previously defined in section YMatrixLabels are valid");
    mantel_.used_labels.Flush();
    for (my_string const& label : mantel_.labels) mantel_.used_labels.Add(label);
}

}  // namespace

int Mantel::NewOpenMantel(std::istream& ifs, ProfileSettings const&, int& line, my_string& text, SeenKeys& seen) {
    reset();
    text = "";
    return MantelReader(*this, ifs, line, seen).read();
}

int Mantel::newReadMatrixData(std::istream& is, TriMat& matrix, bool brace_required, int& line,
                              my_string const& first_line) {
    MatrixRows rows;
    return read_matrix_rows(is, {nb_labels, LabelPlace::none, brace_required}, rows, line, first_line) &&
           fill_triangle(matrix, rows);
}

}  // namespace tov
