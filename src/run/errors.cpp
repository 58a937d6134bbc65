// Numbered reports to the log and the result document, and the names of a project's results directory.
#include "run/errors.h"

#include <utility>

#include "base/files.h"

namespace tov {

namespace {

std::ofstream dropped_text;  // never opened: the log before there is a log

/// Number as text, right aligned in 4 columns.
my_string in_four_columns(int number) {
    std::string text = std::to_string(number);
    if (text.size() < 4) text.insert(0, 4 - text.size(), ' ');
    return text;
}

}  // namespace

void (*Errors::ErrorProc)(ErrorType, my_string const&, int) = nullptr;
std::ostream* _AOS_ = &dropped_text;
Errors E;

Errors::Errors() : messages(210, 10) {
    for (std::string_view const text : error_messages()) messages.Add(my_string(text));
}

/// Number of a report among those of its type, counted; `tag` receives the type's tag.
int Errors::take_number(ErrorType type, std::string_view& tag) {
    switch (type) {
        case ErrorType::Warning:
            tag = " #[WARNING # ";
            return counters.warning_count++;
        case ErrorType::Memory:
            tag = " #[MEMORY # ";
            return counters.memory_count++;
        case ErrorType::Information:
            tag = " #[INFO # ";
            return counters.info_count++;
        case ErrorType::Debug:
            tag = " #[DEBUG # ";
            return counters.error_count++;
        case ErrorType::Error:
            break;
    }
    tag = " #[ERROR # ";
    return counters.error_count++;
}

void Errors::error(ErrorType type, my_string const& function, int code) {
    if (active == 0) return;
    if (code == -1) {
        counters = ErrorCounters();
        return;
    }
    my_string line = in_four_columns(counters.mess_count++);
    std::string_view tag;
    my_string const number = take_number(type, tag);
    line += tag;
    line += number;
    line += "] ";
    if (type == ErrorType::Debug) {
        line += function + "\n";
        *_AOS_ << line.str() << std::flush;
    } else {
        my_string const& text = std::as_const(messages)[code];
        line += "from function \"" + function + "\" : " + text + "\n";
        *_AOS_ << line.str() << std::flush;
        if (results) *results << tag << number.str() << "] : " << text.str() << '\n';
    }
    if (ErrorProc) ErrorProc(type, function, code);
    if (type == ErrorType::Memory) throw ExceptionType{0};
}

void Errors::init_log_file(my_string const& path, bool append) {
    _AOS_ = &dropped_text;
    ofs = std::make_unique<std::ofstream>();
    ofs->open(path.str(), append ? std::ios::app : std::ios::trunc);
    active = ofs->is_open() ? 1 : 0;
    log_name = path;
    _AOS_ = ofs.get();
}

void Errors::CloseLog_file() {
    if (ofs) ofs->close();
}

my_string results_directory(my_string const& project) {
    my_string directory = project;
    directory.remove_extension();
    return directory + ".res/";
}

my_string buildToveniaLogFileName(my_string const& project) { return results_directory(project) + log_file_name; }

int create_log_dir(char const* directory, char const* project, my_string& log_dir) {
    if (!std::ifstream(project)) {
        std::ofstream(std::string(directory) + "tov_pro.txt", std::ios::trunc) << "error\n";
        return 0;
    }
    log_dir = results_directory(project);
    make_directory(log_dir.str());
    return 1;
}

}  // namespace tov
