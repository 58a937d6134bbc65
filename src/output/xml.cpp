// The elements of the XML result document.
#include "output/xml.h"

#include <ostream>

#include "output/escape.h"

namespace tov {

bool xmlOutput = true;

namespace {
constexpr char time_not_set[] = "not set yet";
}

std::string TXmlTag::time = time_not_set;

TXmlTag const TovXmlTags::rootTag{"Tovenia"};
TXmlTag const TovXmlTags::refTag{"reference"};
TXmlTag const TovXmlTags::dataTag{"data"};
TXmlTag const TovXmlTags::headerTag{"header"};

std::string TXmlTag::write() const { return '<' + name_ + ">\n"; }

std::string TXmlTag::end() const { return "</" + name_ + ">\n"; }

std::string TXmlTag::open() const { return "</data> <" + name_ + " time=\"" + doc_attribute(time) + "\">"; }

std::string TXmlTag::open(std::string_view attribute, std::string_view value) const {
    return "</data> <" + name_ + ' ' + std::string(attribute) + "=\"" + doc_attribute(value) + "\" time=\"" +
           doc_attribute(time) + "\">";
}

std::string TXmlTag::close() const { return "</" + name_ + "> <data>\n"; }

XmlSection::XmlSection(std::ostream& out, std::string_view tag) : out_(out), tag_(tag), open_(xmlOutput) {
    if (open_) out_ << tag_.open();
}

XmlSection::XmlSection(std::ostream& out, std::string_view tag, std::string_view attribute, std::string_view value)
    : out_(out), tag_(tag), open_(xmlOutput) {
    if (open_) out_ << tag_.open(attribute, value);
}

XmlSection::~XmlSection() { close(); }

void XmlSection::close() {
    if (open_) out_ << tag_.close();
    open_ = false;
}

void reset_document_state() {
    xmlOutput = true;
    TXmlTag::time = time_not_set;
}

}  // namespace tov
