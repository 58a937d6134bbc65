// Head, foot, anchors and link tree of the result document, and the pages around it.
#include "output/html_out.h"

#include <fstream>
#include <istream>
#include <iterator>
#include <ostream>

#include "base/cstring.h"
#include "output/escape.h"
#include "output/style.h"
#include "output/xml.h"
#include "run/errors.h"

namespace tov {

namespace {

/// The foot of an XML document behind the "</data>" that ends the text of its last run.
std::string xml_tail() { return "\n\n" + TovXmlTags::rootTag.end() + "\n"; }

/// Anchor into the document, in the form of its kind.
void print_anchor(std::ostream& document, std::string const& name) {
    if (xmlOutput)
        document << xml_anchor{name};
    else
        document << html_anchor{name};
}

}  // namespace

// --- Headings and anchors ---

std::ostream& operator<<(std::ostream& out, THeader const& header) {
    if (!xmlOutput) return out << header.text;
    return out << "\n<" << TovXmlTags::headerTag.name() << ">\n"
               << header.text << "\n</" << TovXmlTags::headerTag.name() << '>';
}

std::ostream& operator<<(std::ostream& out, html_anchor const& anchor) {
    return out << "<A NAME=\"" << doc_attribute(anchor.name) << "\"></A>\n";
}

std::ostream& operator<<(std::ostream& out, xml_anchor const& anchor) {
    return out << " <A NAME=\"" << doc_attribute(anchor.name) << "\"></A> ";
}

// --- Tree of links ---

std::string TJSOut::parent(int level) {
    return level <= 1 ? std::string("foldersTree") : "aux" + std::to_string(level - 1);
}

void TJSOut::foldersTree(std::string_view link, std::string_view icons, std::string_view /*target*/,
                         std::string_view title) {
    out_ << "\nUSETEXTLINKS = 1"
         << "\nSTARTALLOPEN = 0"
         << "\nWRAPTEXT = 1"
         << "\nPRESERVESTATE = 0"
         << "\nHIGHLIGHT = 1"
         << "\nICONPATH = 'file:///" << js_text(icons, '\'')
         << "'    //change if the gif's folder is a subfolder, for example: 'images/'"
         << "\n\n"
         << "foldersTree = gFld(\"<i>" << js_text(title) << "</i>\", \"" << js_text(link) << "\")\n";
}

void TJSOut::aux(int level, std::string_view title, std::string_view link) {
    out_ << "aux" << std::to_string(level) << " = insFld(" << parent(level) << ", gFld(\"" << js_text(title) << "\", \""
         << js_text(link) << "\"))\n";
}

void TJSOut::doc(int level, std::string_view title, std::string_view link) {
    out_ << "insDoc(" << parent(level) << ", gLnk(\"R\", \"" << js_text(title) << "\", \"" << js_text(link) << "\"))\n";
}

std::string new_run_id(std::istream& script, std::string_view time) {
    std::string const text{std::istreambuf_iterator<char>(script), std::istreambuf_iterator<char>()};
    std::string id(time);
    for (int runs = 2; text.find('#' + id + '"') != std::string::npos; ++runs)
        id = std::string(time) + '_' + std::to_string(runs);
    return id;
}

std::string anchor_name(std::string_view run_id, std::string_view anchor) {
    std::string name(run_id);
    for (char const c : anchor) name += c == ' ' ? '_' : c;
    return name;
}

void print_js_doc_entry(EntryTarget const& target, int level, std::string_view anchor, std::string_view title) {
    std::ofstream script(target.script, std::ios::app);
    std::string const name = anchor_name(target.run_id, anchor);
    if (target.document != nullptr) print_anchor(*target.document, name);
    TJSOut(script).doc(level, title, link_to(target.result_file) + '#' + name);
}

void print_js_aux_entry(EntryTarget const& target, int level, std::string_view anchor, std::string_view title) {
    std::ofstream script(target.script, std::ios::app);
    std::string const name = anchor_name(target.run_id, anchor);
    if (target.document != nullptr) print_anchor(*target.document, name);
    TJSOut(script).aux(level, title, link_to(target.result_file) + '#' + name);
}

void print_js_tovenia_log_entry(std::string const& script) {
    std::ofstream out(script, std::ios::app);
    TJSOut(out).doc(1, "Tovenia log file", log_file_name);
}

void begin_tree_script(std::string const& script, bool truncate, std::string_view working_directory,
                       std::string_view project, std::string_view result_file) {
    {
        std::ofstream out(script, truncate ? std::ios::trunc : std::ios::app);
        TJSOut(out).foldersTree(link_to(result_file), working_directory, {},
                                "TOVENIA RESULTS (" + std::string(project) + ")");
    }
    print_js_tovenia_log_entry(script);
}

// --- Document ---

void print_results_header(std::ostream& out, bool xml, std::string_view working_directory) {
    set_document_style(out);
    if (xml) {
        out << "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
            << "\n<?xml-stylesheet type=\"text/xsl\" href=\""
            << doc_attribute(file_url(working_directory, "ToveniaStyleSheet.xsl")) << "\"?>"
            << "\n<!--Tovenia results file-->\n"
            << TovXmlTags::rootTag.write() << TovXmlTags::dataTag.write();
        return;
    }
    out << "\n<html>"
        << "\n<!--Tovenia results file-->\n"
        << "\n<head>"
        << "\n<style>"
        << "\nBODY {background-color: white; font-size: 8pt; font-family: Courier New}"
        << "\n</style>"
        << "\n</head>\n"
        << "\n<body bgcolor=white>\n"
        << "\n<PRE>";
}

void print_results_continuation(std::ostream& out, bool xml) {
    set_document_style(out);
    if (xml)
        out << TovXmlTags::dataTag.write() << '\n';
    else
        out << "\n<PRE>\n";
}

void print_results_footer(std::ostream& out, bool xml) {
    if (xml)
        out << TovXmlTags::dataTag.end() << '\n' << TovXmlTags::rootTag.end() << '\n';
    else  // kept on purpose: body ends before the preformatted text in it; browsers show the document all the same
        out << "\n</body>"
            << "\n</PRE>"
            << "\n</html>\n";
}

std::size_t xml_append_step_back() { return TovXmlTags::rootTag.end().size() + 3; }

bool xml_document_is_complete(std::istream& in) {
    std::string const foot = "</data>" + xml_tail();
    in.clear();
    in.seekg(0, std::ios::end);
    auto const size = in.tellg();
    if (size < static_cast<std::streamoff>(foot.size())) return false;
    std::string end(foot.size(), '\0');
    in.seekg(-static_cast<std::streamoff>(foot.size()), std::ios::end);
    in.read(end.data(), static_cast<std::streamsize>(end.size()));
    return in.good() && end == foot;
}

// --- Names ---

std::string link_to(std::string_view path) {
    std::string link;
    for (char const c : path) {
        if (c == '%')
            link += "%25";
        else if (c == '#')
            link += "%23";
        else if (c == '?')
            link += "%3F";
        else
            link += c;
    }
    return link;
}

std::string file_url(std::string_view working_directory, std::string_view path) {
    bool const absolute = path.starts_with('/') || path.starts_with('\\') || (path.size() > 1 && path[1] == ':');
    std::string full(absolute ? std::string_view() : working_directory);
    if (!full.empty() && full.back() != '/' && full.back() != '\\') full += '/';
    full += path;
    return "file:///" + my_string(link_to(full)).convert_to_html_slash().convert_blank_to_html_blank().str();
}

std::string buildToveniaResultFileName(std::string_view project) {
    my_string const path(project);
    return results_directory(path).str() + my_string(path).rm_path().remove_extension().str() + "_main.htm";
}

}  // namespace tov
