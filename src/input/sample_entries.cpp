// What the readers of haplotypic and of genotypic entries of a sample have in common.
#include "input/sample_entries.h"

#include <cmath>
#include <sstream>

#include "input/line_text.h"

namespace tov {
namespace {

constexpr double tolerated_gap = 0.001;  // of a sum of relative frequencies from 1
constexpr double rounding_noise = 1e-9;  // of sums that are equal

}  // namespace

EntryReader::EntryReader(Population& sample, BlockLines& lines, EntryWords const& words, int project_loci)
    : scanner(sample.profile),
      sample_(sample),
      lines_(lines),
      words_(words),
      relative_(sample.profile.Frequency != 0),
      declared_(sample.sample_size()),
      project_loci_(project_loci) {
    if (relative_ && !(declared_ > 0.0)) E.error(ErrorType::Error, words.function, 140);
}

bool EntryReader::missing_brace() {
    if (!contains_word(lines_.text(), "SAMPLENAME") && !begins_later_section(lines_.text())) return false;
    log_text("\tMissing closing brace for sample \"", sample_.pop_name(), "\". New section found on line ",
             lines_.number(), " before finding closing brace.  Aborting reading procedure");
    E.error(ErrorType::Error, words_.function, 194);
    return true;
}

bool EntryReader::convert_frequency(std::string_view text, double& frequency) {
    if (parse_number(text, frequency) && frequency >= 0.0 &&
        words_.copies_each * (copies(sum) + copies(frequency)) < too_many_copies)
        return true;
    log_text("\tProblem reading ", words_.what, " frequency (\"", text, "\") on line ", lines_.number());
    return false;
}

bool EntryReader::check_loci(std::string_view id, int loci) {
    if (project_loci_ == 0) project_loci_ = loci;
    if (loci == project_loci_) return true;
    log_text("\tNumber of loci for ", words_.what, " \"", id, "\" is different (", loci,
             ") from that previously defined (", project_loci_, ") on line ", lines_.number());
    return false;
}

bool EntryReader::finish(bool external) {
    if (!lines_.closed() && !external) {
        log_text("\tMissing closing brace for sample \"", sample_.pop_name(), "\". End of file found on line ",
                 lines_.number());
        E.error(ErrorType::Error, words_.function, 194);
        return false;
    }
    std::string const function(words_.function);
    if (relative_) {
        if (std::fabs(sum - 1.0) > tolerated_gap + rounding_noise)
            E.error(ErrorType::Error, function + " sum of Relative frequencies=" + std::to_string(sum), 174);
        sample_.set_sample_size(words_.copies_each * declared_);
        return true;
    }
    if (std::fabs(sum - declared_) > rounding_noise * sum) {
        std::ostringstream text;
        text << function << " (SampleSize=" << declared_ << "; Sum. Freq.=" << sum << ')';
        E.error(ErrorType::Error, text.str(), words_.size_code);
    }
    sample_.set_sample_size(words_.copies_each * sum);
    return true;
}

}  // namespace tov
