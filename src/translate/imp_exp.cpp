// Translation between the project format and foreign data formats.
#include "translate/imp_exp.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "base/scoped_swap.h"
#include "base/timing.h"
#include "input/block_lines.h"
#include "input/cleaner.h"
#include "input/line_text.h"
#include "input/public.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/sample.h"
#include "run/errors.h"
#include "run/paths.h"
#include "run/project.h"
#include "translate/biosys.h"
#include "translate/export_walk.h"
#include "translate/genepop.h"
#include "translate/mega.h"
#include "translate/phylip.h"
#include "translate/project_text.h"
#include "translate/zentara.h"

namespace tov {
namespace {

constexpr char scratch_document[] = "trans_out.txt";
constexpr std::int64_t most_lines = 100000000;  // copies of haplotypes or individuals that are listed one by one

/// A format: its name in run lists, and how the head of the intermediate project calls it.
struct FormatRow {
    int number;
    std::string_view name;
    std::string_view in_header;
};
constexpr FormatRow formats[] = {
    {imp_exp::genepop, "Genepop", "\"GenePop\" "}, {imp_exp::phylip, "Phylip", "\"Phylip\" "},
    {imp_exp::mega, "Mega", "\"Mega\" "},          {imp_exp::biosys, "Biosys", "\"Biosys\" "},
    {imp_exp::zentara, "Zentara", "\"Zentara\" "}, {imp_exp::tovenia, "Tovenia", ""},
};

void take_name(std::string& name, char const* text) {
    std::string_view const given = text ? text : "";
    if (given.size() <= imp_exp::longest_name) name = given;
}

bool same_place(std::string const& a, std::string const& b) {
    std::error_code failure;
    namespace fs = std::filesystem;
    return fs::weakly_canonical(fs::absolute(a, failure), failure) ==
           fs::weakly_canonical(fs::absolute(b, failure), failure);
}

}  // namespace

bool is_working_file(std::string const& path, std::string const& directory) {
    return same_place(path, directory + intermediate_project) || same_place(path, intermediate_project) ||
           same_place(path, scratch_document);
}

int imp_exp::format_number(std::string const& name) {
    for (FormatRow const& row : formats)
        if (row.name == name) return row.number;
    return unknown;
}

void imp_exp::set_export_dir(char const* directory) { take_name(export_directory_, directory); }

void imp_exp::take_names(char const* source, char const* target) {
    take_name(source_, source);
    take_name(target_, target);
}

bool imp_exp::is_line_blank(char const* line) { return trimmed(line).empty(); }

bool imp_exp::is_line_blank_rm(char* line) {
    std::string text(line);
    strip_line_end(text);
    line[text.size()] = '\0';
    return !trimmed(text).empty();
}

// --- Import ---

void imp_exp::import_data(int format, char const* source, char const* target, std::unique_ptr<std::ofstream> out) {
    take_names(source, target);
    log_text("\tReading  ", source_, " ...");
    out_ = std::move(out);
    format_ = format;
    if (format_ != tovenia) create_header();
    read_format();
    out_.reset();
    log_text("\tdone.");
}

void imp_exp::read_format() {
    switch (format_) {
        case genepop:
            read_gen_pop();
            break;
        case phylip:
            read_phylip();
            break;
        case mega:
            read_mega();
            break;
        case biosys:
            read_biosys();
            break;
        case zentara:
            read_zentara();
            break;
        case tovenia:
            read_tovenia();
            break;
        default:
            break;
    }
}

void imp_exp::create_header() {
    // kept on purpose: the century and the parenthesis belong to the format that readers of these files know.
    *out_ << "#File created by Tovenia translator on " << local_time_text("%d/%m/19%y at %H:%M:%S)")
          << "\n#The input file was \"" << source_ << "\"  with format ";
    for (FormatRow const& row : formats)
        if (row.number == format_) *out_ << row.in_header;
    *out_ << '\n';
}

bool imp_exp::open_source(std::ifstream& in) {
    if (file_opens(source_)) in.open(source_);
    if (in.is_open()) return true;
    log_text("\t\tUnable to open the file ", source_);
    *out_ << "# error: the input file could not be opened\n";
    return false;
}

void imp_exp::read_gen_pop() {
    if (std::ifstream in; open_source(in)) genepop_to_project(in, diploid != 0, *out_);
}

void imp_exp::read_phylip() {
    if (std::ifstream in; open_source(in)) phylip_to_project(in, *out_);
}

void imp_exp::read_mega() {
    if (std::ifstream in; open_source(in)) mega_to_project(in, source_, *out_);
}

void imp_exp::read_biosys() {
    if (std::ifstream in; open_source(in)) biosys_to_project(in, *out_);
}

void imp_exp::read_zentara() {
    std::ifstream in;
    if (!open_source(in)) return;
    ZentaraSource source;
    source.directory = directory_of(source_);
    source.matrix_file = zentara_matrix;
    source.structure_file = zentara_structure;
    source.directory_in_names = !directory_of(target_).empty();
    source.open = [](std::string const& path) -> std::unique_ptr<std::istream> {
        auto file = std::make_unique<std::ifstream>(path);
        if (!file->is_open()) return nullptr;
        return file;
    };
    zentara_to_project(in, source, *out_);
}

namespace {

/// Lets the external file that a line of a copied project names be found from the copy: a bare name gets the directory
/// of the project. @return true when the line was changed.
bool keep_external_name(std::string& line, std::string const& directory) {
    if (!contains_word_outside_quotes(line, "EXTERN")) return false;
    std::size_t const open = line.find('"');
    std::size_t const close = open == std::string::npos ? open : line.find('"', open + 1);
    if (close == std::string::npos || detectFullPathInFileName(my_string(line.substr(open + 1, close - open - 1))))
        return false;
    line.insert(open + 1, directory.empty() ? "./" : directory);
    return true;
}

/// The same for all lines of a project.
void keep_external_names(std::string const& project, std::string const& directory) {
    std::ifstream in(project);
    std::string text;
    bool changed = false;
    for (std::string line; std::getline(in, line); text += line + '\n') changed |= keep_external_name(line, directory);
    in.close();
    if (changed) std::ofstream(project, std::ios::trunc) << text;
}

}  // namespace

void imp_exp::read_tovenia() {
    out_.reset();  // the copy takes its place
    project->initialize();
    std::error_code failure;
    std::string const results = results_directory(my_string(source_)).str();
    bool const had_results = std::filesystem::exists(results, failure);
    cleaner cleaned;
    cleaned.execute(project->LocusSeparator, source_.c_str());
    my_string const* const copy = cleaned.get_clean_proj();
    if (copy && file_opens(copy->str()) && MY_CopyFile(copy->c_str(), target_.c_str())) {
        keep_external_names(target_, directory_of(source_));
    } else {
        *_AOS_ << "\nAn error has occurred while cleaning-up the project...\n" << source_ << '\n';
    }
    cleaned.rm_clean_files();
    if (!had_results) std::filesystem::remove(results, failure);  // stays when anything is in it
}

// --- Export ---

bool imp_exp::open_project() {
    settings::input_file = source_;
    project->vectorsBuilt = 0;
    project->phenToGamDone = 0;
    if (!project->open()) {
        log_text("\t\tTranslator is unable to open the Tovenia File");
        return false;
    }
    project->p_set().DataType = project->DataType;
    project->p_set().GenotypicData = project->GenotypicData;
    project->p_set().GameticPhase = project->GameticPhase;
    project->p_set().alleles = &project->p_alldb();
    project->unify_definitions();
    return true;
}

void imp_exp::prepare_vectors() {
    settings& set = project->p_set();
    Samples& samples = project->p_sam();
    // Individuals without any data stay in a translation: no allele has the empty character as its name.
    ScopedSwap<char> const keep_all(samples.MissingData, '\0');
    if (!project->GenotypicData) {
        project->make_run_possible();
        if (!project->vectorsBuilt) project->build_all_vectors(project->p_alldb());
        return;
    }
    ScopedSwap<int> const phase(project->GameticPhase, 0);
    ScopedSwap<long> const tasks(set.TaskNumber, task::prepare_permutations);
    ScopedSwap<int> const starts(set.InitialConditionsEM, 0);
    ScopedSwap<int> const replicates(set.NumBootstrapReplicatesEM, 0);
    project->make_run_possible();
    samples.compute_stuff(set);
}

bool imp_exp::has_data() {
    ExportSizes const sizes = export_sizes(*project);
    if (sizes.copies > 0 && sizes.lines <= most_lines) return true;
    log_text(sizes.copies > 0 ? "\t\tToo many copies to list them one by one, nothing is written"
                              : "\t\tThe file holds no data, nothing is written");
    return false;
}

void imp_exp::export_data(int format, char const* source, char const* target, std::unique_ptr<std::ofstream> out) {
    take_names(source, target);
    out_ = std::move(out);
    format_ = format;
    written_ = false;
    settings& set = project->p_set();
    set.result_file = scratch_document;
    std::fstream document(scratch_document, std::ios::out | std::ios::trunc);
    set.set_ofs(&document);
    opened_ = open_project();
    if (opened_) prepare_vectors();
    write_format();
    out_->flush();
    bool const complete = written_ && out_->good();
    if (written_ && !complete) log_text("\t\tUnable to write the file ", target_);
    log_text("    Writing  ", target_, complete ? "... done." : "... failed, it holds no data.");
    out_.reset();
    set.set_ofs(nullptr);
    document.close();
    project->clean();
    // A part of a file would look like all of it.
    if (written_ && !complete) std::ofstream(target_, std::ios::trunc);
}

void imp_exp::write_format() {
    if (format_ == tovenia) {
        write_tovenia();
        return;
    }
    // A part of the data would look like all of it.
    if (!opened_ || !has_data()) return;
    switch (format_) {
        case genepop:
            write_gen_pop();
            break;
        case phylip:
            write_phylip();
            break;
        case mega:
            write_mega();
            break;
        case biosys:
            write_biosys();
            break;
        case zentara:
            write_zentara();
            break;
        default:
            break;
    }
}

void imp_exp::write_gen_pop() { written_ = write_genepop(*project, *out_); }
void imp_exp::write_phylip() { written_ = tov::write_phylip(*project, *out_); }
void imp_exp::write_mega() { written_ = tov::write_mega(*project, *out_); }
void imp_exp::write_biosys() { written_ = tov::write_biosys(*project, *out_); }

void imp_exp::write_zentara() {
    std::string const beside_target = directory_of(target_);
    written_ = tov::write_zentara(*project, beside_target.empty() ? export_directory_ : beside_target, *out_);
}

void imp_exp::write_tovenia() {
    std::ifstream in(source_);
    if (!in.is_open()) return;
    std::string const directory = directory_of(source_);
    bool const elsewhere = !same_place(directory + ".", directory_of(target_) + ".");
    for (std::string line; std::getline(in, line);) {
        if (elsewhere) keep_external_name(line, directory);
        line += '\n';
        out_->write(line.data(), static_cast<std::streamsize>(line.size()));
    }
    written_ = true;
}

}  // namespace tov
