// The frameset and the page of the link tree.
#include <ostream>

#include "output/escape.h"
#include "output/html_out.h"

namespace tov {

void print_html_frames(std::ostream& out, PageNames const& names) {
    out << "\n<html>"
        << "\n<!--Tovenia results frame file-->\n"
        << "\n<head>"
        << "\n<title> Tovenia Result Browser - " << doc_text(names.project) << "\n</title>"
        << "\n<script>"
        << "\nfunction op() { //This function is used with folders that do not open pages themselves. See online docs."
        << "\n}"
        << "\n</script>"
        << "\n</head>"
        << "\n<FRAMESET cols=\"200,*\">"
        << "\n  <FRAME src=\"" << doc_attribute(link_to(names.tree_page)) << "\" name=\"treeframe\">"
        << "\n  <FRAME SRC=\"" << doc_attribute(link_to(names.result_file)) << "\" name=\"basefrm\">"
        << "\n</FRAMESET>"
        << "\n</html>";
}

void print_html_tree_page(std::ostream& out, PageNames const& names) {
    auto const url = [&names](std::string_view path) { return doc_attribute(file_url(names.working_directory, path)); };
    out << "\n<html>"
        << "\n<!--Tovenia results tree file-->\n"
        << "\n<head>"
        << "\n<link rel=\"stylesheet\" type=\"text/css\" href=\"" << url(names.style_sheet) << "\">"
        << "\n<style>"
        << "\nBODY {background-color: white}"
        << "\nTD {font-size: 8pt; font-family: verdana,helvetica; text-decoration: none; white-space: nowrap}"
        << "\nA {text-decoration: none; color: black}"
        << "\n.specialClass {font-family: garamond; font-size: 12pt; color: green; font-weight: bold}"
        << "\n</style>"
        << "\n<script src=\"" << url("ua.js") << "\"></script>"
        << "\n<script src=\"" << url(names.tree_code) << "\"></script>"
        << "\n<script src=\"" << url(names.tree_script) << "\"></script>"
        << "\n</head>"
        << "\n<body topmargin=16 marginheight=16>"
        << "\n<!-- The tree code expects a link on its page, in front of the call that builds the tree. -->"
        << "\n<div><a href=\"" << doc_attribute(link_to(names.result_file)) << "\" target=\"basefrm\">Results</a></div>"
        << "\n<script>initializeDocument()</script>"
        << "\n<noscript>"
        << "\nA tree for site navigation will open here if you enable JavaScript in your browser."
        << "\n</noscript>"
        << "\n</body>"
        << "\n</html>";
}

}  // namespace tov
