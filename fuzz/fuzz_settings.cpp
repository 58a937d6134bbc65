// Fuzz target: the reader of settings files, and the writer over what it read.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "input/settings.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    tov::settings set;
    std::istringstream in(std::string(reinterpret_cast<char const*>(data), size));
    set.read_settings(in);

    std::ostringstream document;
    set.DataType = static_cast<tov::TDataType>(set.DistanceMethod % 5);
    set.print_pretty_settings(document);

    // What is written and read back has the same tasks.
    std::stringstream file;
    set.print_settings(file);
    tov::settings back;
    back.read_settings(file);
    if (back.TaskNumber != set.TaskNumber) std::abort();
    return 0;
}
