// Head, foot, anchors and link tree of the result document, and the pages around it.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tov {

class settings;

// --- Headings and anchors ---

/// A heading: in XML "\n<header>\n", the text, "\n</header>", in HTML the text alone. The text stands as it is given.
struct THeader {
    std::string text;
};
std::ostream& operator<<(std::ostream& out, THeader const& header);

/// "<A NAME=\"name\"></A>\n"
struct html_anchor {
    std::string name;
};
std::ostream& operator<<(std::ostream& out, html_anchor const& anchor);

/// " <A NAME=\"name\"></A> "
struct xml_anchor {
    std::string name;
};
std::ostream& operator<<(std::ostream& out, xml_anchor const& anchor);

// --- Tree of links ---

/// Writes the statements of the tree script. Titles and links are escaped here.
class TJSOut {
public:
    explicit TJSOut(std::ostream& out) : out_(out) {}
    /// The head of the tree: options of the tree code, and the root with its title.
    ///
    /// @param link   page of the root.
    /// @param icons  directory of the icons: the working directory with its trailing '/'.
    void foldersTree(std::string_view link, std::string_view icons, std::string_view target, std::string_view title);
    /// A folder at a level from 1 on.
    void aux(int level, std::string_view title, std::string_view link);
    /// A document link at a level from 1 on.
    void doc(int level, std::string_view title, std::string_view link);

private:
    [[nodiscard]] static std::string parent(int level);
    std::ostream& out_;  // borrowed
};

/// Where an entry of the tree goes.
struct EntryTarget {
    std::ostream* document = nullptr;  ///< borrowed; receives the anchor, null for none
    std::string script;                ///< path of the tree script
    std::string result_file;           ///< the document's file name in links, without its path
    std::string run_id;                ///< makes the anchors of two runs in one document differ
};
[[nodiscard]] EntryTarget entry_target(settings const& set);

/// Id of a run that begins at `time` (given without blanks): the time, followed by "_2", "_3" ... when the tree script
/// holds a run of that id already, so that anchors of runs of one second differ too.
///
/// @param script  the script that the run goes on with; an empty stream when it begins anew.
[[nodiscard]] std::string new_run_id(std::istream& script, std::string_view time);
/// Name of an anchor: run id, then the anchor argument with its blanks turned into underlines.
[[nodiscard]] std::string anchor_name(std::string_view run_id, std::string_view anchor);

/// An anchor in the document and a link to it in the tree script, which is opened in append mode for each entry.
/// Errors: none; a script that can't be written stays as it is.
void print_js_doc_entry(EntryTarget const& target, int level, std::string_view anchor, std::string_view title);
void print_js_doc_entry(settings const& set, int level, std::string_view anchor, std::string_view title);
/// The same with a folder in place of the link; later entries of the next level stand under it.
void print_js_aux_entry(EntryTarget const& target, int level, std::string_view anchor, std::string_view title);
void print_js_aux_entry(settings const& set, int level, std::string_view anchor, std::string_view title);
/// The link "Tovenia log file" at level 1.
void print_js_tovenia_log_entry(std::string const& script);
void print_js_tovenia_log_entry(settings const& set);

/// Begins the tree script: head of the tree and the link to the log.
///
/// @param project    name of the project file without its path ("name.tvp").
/// @param truncate   false: the script is appended to.
void begin_tree_script(std::string const& script, bool truncate, std::string_view working_directory,
                       std::string_view project, std::string_view result_file);

// --- Pages ---

/// Names that the pages hold. The first three are bare file names, since all lie in one directory.
struct PageNames {
    std::string project;            ///< shown in the browser's title
    std::string tree_page;          ///< name_tree.htm
    std::string result_file;        ///< name.xml or name.htm
    std::string working_directory;  ///< directory of the tree code; relative paths below are meant from here
    std::string style_sheet;        ///< path of ftie4style.css
    std::string tree_code;          ///< path of ftiens4.js
    std::string tree_script;        ///< path of name.js
};
/// The frameset: left the tree, right the results.
void print_html_frames(std::ostream& out, PageNames const& names);
/// The page that runs the tree code.
void print_html_tree_page(std::ostream& out, PageNames const& names);

/// Head of a new result document, and the base style of its numbers.
void print_results_header(std::ostream& out, bool xml, std::string_view working_directory);
/// What stands in its place when a run is added to a document.
void print_results_continuation(std::ostream& out, bool xml);
/// Foot of the document.
void print_results_footer(std::ostream& out, bool xml);

/// Bytes at the end of an XML document that the next run overwrites: from behind "</data>" on.
[[nodiscard]] std::size_t xml_append_step_back();
/// The XML document read from `in` ends in the whole foot, so that a run can be added to it.
[[nodiscard]] bool xml_document_is_complete(std::istream& in);

// --- Names ---

/// A file name as a link holds it: "%", "#" and "?", which browsers would not take for parts of the name, are encoded.
[[nodiscard]] std::string link_to(std::string_view path);
/// "file:///" and the path as a link, made absolute by the working directory, with forward slashes and "%20" for
/// blanks.
[[nodiscard]] std::string file_url(std::string_view working_directory, std::string_view path);
/// "p/name.res/name_main.htm" of "p/name.tvp".
[[nodiscard]] std::string buildToveniaResultFileName(std::string_view project);

}  // namespace tov
