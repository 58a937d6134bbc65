// The elements of the XML result document.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace tov {

/// The result document is XML (HTML otherwise). Set at the start of each run from the key XMLOutput.
extern bool xmlOutput;

/// An element of the result document.
///
/// The plain text of the analyses stands in <data> elements: open() ends the current one and begins the named element,
/// close() ends that and begins <data> again. write() and end() are the bare tags, for the root and for <data> itself.
/// Between open() and close() no other element and no literature reference may be printed, as each ends "</data>".
class TXmlTag {
public:
    explicit TXmlTag(std::string_view name) : name_(name) {}

    /// "<name>\n"
    [[nodiscard]] std::string write() const;
    /// "</name>\n"
    [[nodiscard]] std::string end() const;
    /// "</data> <name time=\"...\">"
    [[nodiscard]] std::string open() const;
    /// "</data> <name attribute=\"value\" time=\"...\">"; the value is escaped here.
    [[nodiscard]] std::string open(std::string_view attribute, std::string_view value) const;
    /// "</name> <data>\n"
    [[nodiscard]] std::string close() const;
    [[nodiscard]] std::string const& name() const noexcept { return name_; }

    static std::string time;  ///< Time of the run, at first "not set yet".

private:
    std::string name_;
};

/// The elements that more than one source names.
struct TovXmlTags {
    static TXmlTag const rootTag;    ///< "Tovenia"
    static TXmlTag const refTag;     ///< "reference"
    static TXmlTag const dataTag;    ///< "data"
    static TXmlTag const headerTag;  ///< "header"
};

/// An element around what a scope prints: open() at construction, close() at its end. Prints nothing in HTML.
class XmlSection {
public:
    XmlSection(std::ostream& out, std::string_view tag);
    XmlSection(std::ostream& out, std::string_view tag, std::string_view attribute, std::string_view value);
    ~XmlSection();
    XmlSection(XmlSection const&) = delete;
    XmlSection& operator=(XmlSection const&) = delete;
    /// Ends the element before the scope does.
    void close();

private:
    std::ostream& out_;  // borrowed
    TXmlTag tag_;
    bool open_;
};

/// xmlOutput and TXmlTag::time as at the start of the program.
void reset_document_state();

}  // namespace tov
