// Text from the user's data on its way into a document: escaping for XML and HTML, and for the tree script.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace tov {

/// `text` as element content of the result document, XML and HTML alike.
///
/// & becomes "&amp;", < becomes "&lt;", and > behind "]]" becomes "&gt;", since XML ends other sections by "]]>"; any
/// other > stays. Bytes below 0x20 other than tab and newline are dropped, as XML 1.0 has no way to hold them. Bytes
/// from 0x80 on pass: the document is ISO-8859-1, in which every byte is a character. Everything that comes from input
/// files goes through it (names, titles, labels, alleles, file names); fixed texts of the program do not, they are
/// written in their escaped form.
[[nodiscard]] std::string doc_text(std::string_view text);

/// `text` as the value of an attribute between double quotes: as doc_text, and " becomes "&quot;".
[[nodiscard]] std::string doc_attribute(std::string_view text);

/// `text` inside a string of the tree script, between double or single quotes: the backslash is doubled, both quotes
/// get a backslash (only the kind of `quote` does), bytes below 0x20 are dropped.
[[nodiscard]] std::string js_text(std::string_view text, char quote = '"');

/// User text in a field of `width` columns as the reader sees it: padded by its shown length, then escaped.
struct user_text {
    std::string_view text;
    int width = 0;
    bool left = true;
};
std::ostream& operator<<(std::ostream& out, user_text const& x);

/// Number of columns that `text` takes in the document.
[[nodiscard]] int shown_length(std::string_view text) noexcept;

}  // namespace tov
