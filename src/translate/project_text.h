// What the readers of foreign formats share: lines, words and texts that a project can hold, marks of bad data.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tov {

/// Stands in a project for data that couldn't be read. It is no entry: a project with it fails when it is read.
inline constexpr std::string_view unreadable_entry = " ***** ERROR *****\n";

/// Takes blanks, carriage returns and other control characters off the end of a line.
void strip_line_end(std::string& line);

/// Reads one line without what strip_line_end takes. @return false at the end of the data.
bool read_foreign_line(std::istream& in, std::string& line);

/// The next line that isn't blank. @return false at the end of the data.
bool read_content_line(std::istream& in, std::string& line);

/// One word that can stand as the identifier of an entry: blanks drop out, characters with a meaning of their own in a
/// project become '_'. `spare` when nothing is left.
[[nodiscard]] std::string entry_name(std::string_view text, std::string_view spare);

/// A text that can stand in double quotes: quotes, '#' and control characters become blanks.
[[nodiscard]] std::string quoted_text(std::string_view text);

/// Characters that end a line of data or a block: no definition can hold them.
[[nodiscard]] bool breaks_data(std::string_view text) noexcept;

/// A comment with the reason, and the line that makes the project fail.
void mark_unreadable(std::ostream& project, std::string_view reason);

/// Identifiers of haplotypes: in a project, one identifier has one definition.
class HaplotypeNames {
public:
    /// The name itself the first time and as long as the content stays the same; then the name with '_' and the
    /// lowest number from 2 that is free.
    [[nodiscard]] std::string for_content(std::string const& name, std::string_view content);

private:
    std::unordered_map<std::string, std::size_t> content_hashes_;
};

}  // namespace tov
