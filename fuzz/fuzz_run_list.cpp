// Feeds arbitrary bytes to the reader of the run list, line by line as the scheduler takes them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "base/numtext.h"
#include "run/run_list.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
    std::string line;
    tov::read_run_list_line(in, line, tov::RunList::path_length);
    if (tov::read_run_list_line(in, line, tov::RunList::directive_length)) static_cast<void>(tov::run_directive(line));
    while (tov::read_run_list_line(in, line, tov::RunList::path_length)) {
        if (line.size() > tov::RunList::path_length) std::abort();
        if (line.find('\n') != std::string::npos || line.find('\0') != std::string::npos) std::abort();
        if (tov::read_run_list_line(in, line, tov::RunList::integer_length)) static_cast<void>(tov::my_atoi(line));
    }
    return 0;
}
