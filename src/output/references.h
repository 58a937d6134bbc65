// Literature references printed in the result document.
#pragma once

#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tov {

/// Prints a citation at construction.
///
/// A tag is the authors and the year in lower case ("tajima1989", "weir_cockerham1984"); references.cpp lists them. An
/// unknown tag is printed itself. In XML the reference is an element between two <data>, so it may be printed only
/// where the document's plain text stands, never inside an element that TXmlTag::open() began.
class References {
public:
    /// A reference of its own.
    References(std::ostream& out, std::string_view tag);
    /// One of a list: position 0 begins it, 1 goes on, 2 ends it (a list of two has 0 and 2).
    References(std::ostream& out, std::string_view tag, int position);

    /// The citation of a tag by plain comparison, or an empty string.
    [[nodiscard]] static std::string get_reference(std::string_view tag);
};

/// Prints the references of one heading, alone or as a list.
void print_references(std::ostream& out, std::initializer_list<std::string_view> tags);

}  // namespace tov
