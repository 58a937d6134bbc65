/// Errors: the numbered reports of the program, the log stream and the exception of exhausted memory.
#pragma once

#include <fstream>
#include <memory>
#include <ostream>
#include <span>
#include <string_view>

#include "base/arrays.h"
#include "base/cstring.h"

namespace tov {

enum class ErrorType : int { Warning = 0, Error = 1, Memory = 2, Information = 3, Debug = 4 };

/// Thrown by a memory report; caught where a run is cleaned up.
struct ExceptionType {
    int value = 0;
};

/// The running numbers of the reports; the next one of each kind.
struct ErrorCounters {
    int mess_count = 1;
    int error_count = 1;
    int warning_count = 1;
    int info_count = 1;
    int memory_count = 1;
};

/// Report facility with a log file; one global instance, `E`.
///
/// Until a log is open nothing is reported or counted, and a memory report doesn't throw.
class Errors {
public:
    Errors();

    /// Writes one numbered report to the log and, in a shorter form, to `results`.
    ///
    /// @param function  where it comes from: "Class::function()".
    /// @param code      row of the message table; -1 sets all counters to 1 and reports nothing.
    /// Errors: a memory report throws ExceptionType{0} after writing.
    void error(ErrorType type, my_string const& function, int code);
    /// Opens the log, `append` behind what it holds or anew; `_AOS_` becomes its stream, `active` whether it is open.
    void init_log_file(my_string const& path, bool append);
    /// Closes the log. `active` stays: later reports are counted and lost.
    void CloseLog_file();

    int active = 0;                         ///< 1 when the log is open
    std::unique_ptr<std::ofstream> ofs;     ///< owned; the log
    my_string log_name;                     ///< its path
    MY_TArrayAsVector<my_string> messages;  ///< text by code
    std::ostream* results = nullptr;        ///< borrowed; the document of the run in progress, or null
    ErrorCounters counters;                 ///< live as long as the process

    /// Called, when set, with each report that is counted.
    static void (*ErrorProc)(ErrorType type, my_string const& function, int code);

private:
    int take_number(ErrorType type, std::string_view& tag);
};

/// The one report facility of the process.
extern Errors E;
/// The log stream (borrowed), for progress lines. Never null: before the first log it drops its text.
extern std::ostream* _AOS_;

/// Texts by code, 0 .. 208.
[[nodiscard]] std::span<std::string_view const> error_messages() noexcept;

/// `<project>.res/` of `<project>.tvp`.
[[nodiscard]] my_string results_directory(my_string const& project);
/// Name of the log in the results directory of a project, and beside the source of a translation.
inline constexpr char log_file_name[] = "Tovenia_log.txt";
/// Path of a project's log: the name above in `<project>.res/`.
[[nodiscard]] my_string buildToveniaLogFileName(my_string const& project);
/// Makes the results directory of a project.
///
/// @param directory  where "tov_pro.txt" is written, with the line "error", if the project can't be opened.
/// @param log_dir    receives the results directory; left alone on failure.
/// @return           1, or 0 if the project can't be opened.
int create_log_dir(char const* directory, char const* project, my_string& log_dir);

}  // namespace tov
