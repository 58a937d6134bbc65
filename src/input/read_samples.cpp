// Reader of the section [[Samples]].
#include <ctime>
#include <fstream>
#include <istream>
#include <memory>
#include <string>
#include <unordered_set>

#include "base/timing.h"
#include "input/block_lines.h"
#include "input/definition.h"
#include "input/external_file.h"
#include "input/line_text.h"
#include "input/public.h"
#include "input/sample_entries.h"
#include "input/settings.h"
#include "model/sample.h"

namespace tov {
namespace {

constexpr char function_name[] = "Samples::NewReadSamples()";

/// Which keys were met in the whole section.
struct SeenSampleKeys {
    bool& size;
    bool& data;
    bool& name;
};

/// Reads samples line by line into a list.
class SamplesReader {
public:
    SamplesReader(Samples& samples, std::istream& is, ProfileSettings& profile, Haplo_DB& db, int& line,
                  SeenSampleKeys seen)
        : samples_(samples), is_(is), profile_(profile), db_(db), line_(line), seen_(seen), has_list_(db.size() > 0) {
        if (has_list_) project_loci_ = DefinitionScanner(profile).nb_loci(db[0].content);
    }

    /// @param text  receives the upper-cased line that ends the section. @return false after a report.
    bool read(my_string& text);

private:
    bool read_line(my_string const& text);
    bool read_name(my_string const& text);
    void read_size(my_string const& text);
    bool read_data(my_string const& text);
    bool read_population(std::istream& is, int& line, bool external, my_string& first_text);
    std::unique_ptr<Population> new_sample();
    void rename_if_taken(Population& sample);
    void note_loci(Population const& sample);
    void check_number(bool at_end);

    Samples& samples_;          // borrowed
    std::istream& is_;          // borrowed
    ProfileSettings& profile_;  // borrowed
    Haplo_DB& db_;              // borrowed
    int& line_;                 // borrowed
    SeenSampleKeys seen_;
    bool has_list_;
    int project_loci_ = 0;
    my_string name_;
    bool named_ = false;
    double size_ = 0.0;
    double gene_copies_ = 0.0;  // of the samples read so far
    std::unordered_set<std::string> names_;
};

bool SamplesReader::read(my_string& text) {
    std::string raw;
    while (read_text_line(is_, raw, line_)) {
        my_string const line{std::string(without_comment(raw))};
        if (begins_later_section(line)) {
            text = upper_case(line);
            check_number(false);
            return true;
        }
        if (!read_line(line)) return false;
    }
    text = "";
    check_number(true);
    return true;
}

bool SamplesReader::read_line(my_string const& text) {
    if (contains_word(text, "SAMPLENAME")) return read_name(text);
    if (contains_word(text, "SAMPLESIZE"))
        read_size(text);
    else if (contains_word(text, "SAMPLEDATA"))
        return read_data(text);
    return true;
}

bool SamplesReader::read_name(my_string const& text) {
    if (!checkForPresenceOfEqualSign(text, "SampleName", line_) || !getQuotedString(text, name_, "SampleName", line_)) {
        E.error(ErrorType::Error, function_name, 62);
        return false;
    }
    named_ = true;
    seen_.name = true;
    return true;
}

void SamplesReader::read_size(my_string const& text) {
    seen_.size = true;
    size_ = 0.0;
    if (checkForPresenceOfEqualSign(text, "SampleSize", line_) && getValue(text, size_, "SampleSize", line_)) return;
    size_ = 0.0;
    E.error(ErrorType::Error, function_name, 62);
}

bool SamplesReader::read_data(my_string const& text) {
    seen_.data = true;
    if (!named_) {
        E.error(ErrorType::Error, function_name, 207);
        log_text("Warning: Keyword \"SampleName\" not found while data is defined for population #",
                 samples_.NbPopulations() + 1);
        name_ = "noName";
    }
    my_string first_text;
    bool read = false;
    if (contains_word_outside_quotes(text, "EXTERN")) {
        my_string file_name;
        std::ifstream file;
        E.error(ErrorType::Information, function_name, 191);
        if (!getQuotedString(text, file_name, "Extern sample data", line_)) return false;
        if (!open_external_file(file, file_name)) {
            log_text("\tWarning: External file \"", file_name, "\" listed on line ", line_,
                     " cannot be open. Check that it exists...");
            return false;
        }
        log_text("\tReading sample data for population \"", name_, "\" in external file\"", file_name, '"');
        int line_in_file = 0;
        read = read_population(file, line_in_file, true, first_text);
    } else {
        bool open = false;
        std::string_view const behind = behind_opening_brace(text, open);
        // A blank tells the entry reader that the brace has been met.
        if (open) first_text = behind.empty() ? std::string_view(" ") : behind;
        read = read_population(is_, line_, false, first_text);
    }
    name_ = "";
    named_ = false;
    size_ = 0.0;
    return read;
}

std::unique_ptr<Population> SamplesReader::new_sample() {
    std::unique_ptr<Population> sample = new_population(profile_.DataType);
    sample->profile = profile_;
    sample->set_name(name_);
    sample->set_sample_size(size_ > 0.0 ? rounded_int(size_) : 0.0);
    sample->set_index(samples_.NbPopulations());
    return sample;
}

bool SamplesReader::read_population(std::istream& is, int& line, bool external, my_string& first_text) {
    std::clock_t const start = std::clock();
    *_AOS_ << "\tReading " << name_ << " ... ";
    std::unique_ptr<Population> sample = new_sample();
    int read = profile_.GenotypicData
                   ? sample->New_read_genotypic_data(is, external, line, first_text, project_loci_)
                   : sample->New_read_gametic_data(is, db_, has_list_, line, first_text, external, project_loci_);
    if (read && gene_copies_ + sample->sample_size() >= too_many_copies) {
        log_text("\tToo many gene copies up to sample \"", name_, "\". Aborting reading project.");
        read = 0;
    }
    if (!read) {
        E.error(ErrorType::Error, function_name, 63);
        return false;
    }
    gene_copies_ += sample->sample_size();
    log_text("\tdone ! (", milliseconds_since(start), " ms)");
    note_loci(*sample);
    rename_if_taken(*sample);
    normalise_separator(sample->profile);
    samples_.Add(sample.release());
    return true;
}

/// The number of loci of the project is that of its first haplotype or genotype.
void SamplesReader::note_loci(Population const& sample) {
    if (project_loci_ > 0) return;
    DefinitionScanner const scanner(profile_);
    if (!profile_.GenotypicData && db_.size() > 0) project_loci_ = scanner.nb_loci(db_[0].content);
    if (profile_.GenotypicData && sample.phenotypes.size() > 0)
        project_loci_ = scanner.nb_loci(sample.phenotypes.phenotype(0).allele_string(0));
}

void SamplesReader::rename_if_taken(Population& sample) {
    if (names_.insert(sample.pop_name().str()).second) return;
    E.error(ErrorType::Error, function_name, 65);
    int number = samples_.NbPopulations() + 1;
    std::string name = sample.pop_name().str() + std::to_string(number);
    while (!names_.insert(name).second) name = sample.pop_name().str() + std::to_string(++number);
    sample.set_name(name);
}

void SamplesReader::check_number(bool at_end) {
    int const count = samples_.NbPopulations();
    if (count == profile_.NbSamples) return;
    E.error(ErrorType::Error, "Samples::NewRead()", 95);
    log_text("Warning: ", count, " samples are actually listed in project file, while ", at_end ? "\n" : "",
             profile_.NbSamples, " are defined in the [[Profile]] section",
             at_end ? ". Adjusting no. of samples..." : "");
    profile_.NbSamples = count;
    samples_.NbSamples = count;
}

}  // namespace

int Samples::NewReadSamples(std::istream& is, ProfileSettings& profile, Haplo_DB& db, int& line, my_string& text,
                            bool& size_seen, bool& data_seen, bool& name_seen) {
    clean();
    set_profile(profile);
    if (profile.NbSamples == 0) {
        E.error(ErrorType::Error, function_name, 95);
        return 0;
    }
    SamplesReader reader(*this, is, profile, db, line, {size_seen, data_seen, name_seen});
    if (!reader.read(text)) return 0;
    if (!profile.GenotypicData) sum_copies(db);
    return 1;
}

int Samples::explore(std::istream& is, ProfileSettings& profile) {
    std::ofstream out("samples.txt", std::ios::trunc);
    out << profile.NbSamples << '\n';
    std::string line;
    int found = 0;
    while (found < profile.NbSamples && std::getline(is, line)) {
        if (!contains_word(line, "SAMPLENAME")) continue;
        std::size_t const open = line.find('"');
        if (open == std::string::npos) continue;
        std::size_t const close = line.find('"', open + 1);
        out << line.substr(open + 1, close == std::string::npos ? close : close - open - 1) << '\n';
        ++found;
    }
    if (found == profile.NbSamples) return 1;
    log_text("Samples::explore(): Unable to extract all population names");
    return 0;
}

my_string Samples::ext_name(my_string const& file) const {
    if (detectFullPathInFileName(file)) return file;
    if (run_settings && !run_settings->project_dir.empty()) return my_string(run_settings->project_dir + file.str());
    log_text("Pointer to project dir is not initialized. ERROR");
    return file;
}

void Samples::build_ext_name(std::span<char> dest, char const* file) const {
    std::string const path = ext_name(file).str();
    if (dest.empty()) return;
    std::size_t const length = path.size() < dest.size() ? path.size() : 0;
    path.copy(dest.data(), length);
    dest[length] = '\0';
}

}  // namespace tov
