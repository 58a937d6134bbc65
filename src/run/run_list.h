// The run list `tov_run.txt`: its directive and its lines.
#pragma once

#include <fstream>
#include <istream>
#include <string>

namespace tov {

/// What line 2 of the run list asks for.
enum class RunDirective { interface_settings, special_settings, associated_settings, explore, translate };

/// The directive of a text; any text that is none of the four others means the interface's settings.
[[nodiscard]] RunDirective run_directive(std::string const& text);

/// Reads one line into a buffer of `max_length` characters: a longer line is cut and its rest dropped; a carriage
/// return and blanks at the end go. A last line without a newline counts.
///
/// @param line  untouched when there is no line left.
/// @return      false when there is no line left; the stream has failed then.
bool read_run_list_line(std::istream& in, std::string& line, std::size_t max_length);

/// The opened run list. The stream is good as long as the last read found a line.
class RunList {
public:
    static constexpr std::size_t path_length = 399;
    static constexpr std::size_t directive_length = 58;
    static constexpr std::size_t integer_length = 18;

    explicit RunList(std::string const& path) : in_(path) {}

    [[nodiscard]] bool good() const { return !in_.fail(); }
    bool read(std::string& line, std::size_t max_length) { return read_run_list_line(in_, line, max_length); }
    /// Reads the first two lines: the working directory, to which a '/' is appended when one is missing, and the
    /// directive.
    void read_head(std::string& directory);

    RunDirective directive = RunDirective::interface_settings;

private:
    std::ifstream in_;
};

}  // namespace tov
