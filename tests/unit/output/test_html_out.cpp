// Document head and foot, anchors, link tree and pages: the bytes that browsers and later runs rely on.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "input/settings.h"
#include "model/sample.h"
#include "output/html_out.h"
#include "output/xml.h"

namespace tov {
namespace {

namespace fs = std::filesystem;

class Document : public ::testing::Test {
protected:
    void SetUp() override {
        reset_document_state();
        char pattern[] = "/tmp/tov_document_XXXXXX";
        directory = ::mkdtemp(pattern);
    }
    void TearDown() override {
        reset_document_state();
        fs::remove_all(directory);
    }
    std::string path(char const* name) const { return (directory / name).string(); }
    static std::string content(std::string const& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    fs::path directory;
    std::ostringstream out;
};

constexpr char xml_foot[] = "</data>\n\n</Tovenia>\n\n";

TEST_F(Document, HeaderIsAnElementInXmlAndPlainTextInHtml) {
    out << THeader{"Tovenia results"};
    EXPECT_EQ(out.str(), "\n<header>\nTovenia results\n</header>");
    xmlOutput = false;
    out.str("");
    out << THeader{"Tovenia results"};
    EXPECT_EQ(out.str(), "Tovenia results");
}

TEST_F(Document, AnchorsHoldTheirName) {
    out << html_anchor{"05/08/26at12:34:56_run"} << xml_anchor{"a\"<b"};
    EXPECT_EQ(out.str(), "<A NAME=\"05/08/26at12:34:56_run\"></A>\n <A NAME=\"a&quot;&lt;b\"></A> ");
}

TEST_F(Document, AnchorNameJoinsRunAndArgumentWithoutBlanks) {
    EXPECT_EQ(anchor_name("05/08/26at12:34:56", "_pop shared 3"), "05/08/26at12:34:56_pop_shared_3");
    EXPECT_EQ(anchor_name("id", ""), "id");
}

TEST_F(Document, ARunOfTheSameSecondGetsAnIdOfItsOwn) {
    std::stringstream script;
    auto begin_run = [&script] {
        std::istringstream earlier(script.str());
        std::string const id = new_run_id(earlier, "05/08/26at12:34:56");
        TJSOut(script).aux(1, "Run", "p.xml#" + id);
        TJSOut(script).doc(2, "Settings", "p.xml#" + id + "_run_information");
        return id;
    };
    EXPECT_EQ(begin_run(), "05/08/26at12:34:56");
    EXPECT_EQ(begin_run(), "05/08/26at12:34:56_2");
    EXPECT_EQ(begin_run(), "05/08/26at12:34:56_3");
    std::ifstream missing(path("none.js"));
    EXPECT_EQ(new_run_id(missing, "05/08/26at12:34:56"), "05/08/26at12:34:56");
    std::istringstream other_second(script.str());
    EXPECT_EQ(new_run_id(other_second, "05/08/26at12:34:57"), "05/08/26at12:34:57");
}

TEST_F(Document, TreeBeginsWithItsOptionsAndItsRoot) {
    TJSOut(out).foldersTree("name.xml", "/work/", "R", "TOVENIA RESULTS (name.tvp)");
    EXPECT_EQ(out.str(),
              "\nUSETEXTLINKS = 1"
              "\nSTARTALLOPEN = 0"
              "\nWRAPTEXT = 1"
              "\nPRESERVESTATE = 0"
              "\nHIGHLIGHT = 1"
              "\nICONPATH = 'file:////work/'    //change if the gif's folder is a subfolder, for example: 'images/'"
              "\n\n"
              "foldersTree = gFld(\"<i>TOVENIA RESULTS (name.tvp)</i>\", \"name.xml\")\n");
}

TEST_F(Document, TreeEntriesHangOnTheFolderOfTheLevelAbove) {
    TJSOut tree(out);
    tree.aux(1, "Run of 05/08/26", "name.xml#id");
    tree.aux(2, "Inner", "name.xml#id2");
    tree.doc(1, "Log", "log.txt");
    tree.doc(2, "Settings", "name.xml#id_run");
    tree.doc(3, "a\"b\\c", "l");
    EXPECT_EQ(out.str(),
              "aux1 = insFld(foldersTree, gFld(\"Run of 05/08/26\", \"name.xml#id\"))\n"
              "aux2 = insFld(aux1, gFld(\"Inner\", \"name.xml#id2\"))\n"
              "insDoc(foldersTree, gLnk(\"R\", \"Log\", \"log.txt\"))\n"
              "insDoc(aux1, gLnk(\"R\", \"Settings\", \"name.xml#id_run\"))\n"
              "insDoc(aux2, gLnk(\"R\", \"a\\\"b\\\\c\", \"l\"))\n");
}

TEST_F(Document, EntriesAppendToTheScriptAndPutAnAnchorIntoTheDocument) {
    EntryTarget const target{&out, path("name.js"), "name.xml", "id"};
    begin_tree_script(target.script, true, "/w/", "name.tvp", "name.xml");
    print_js_aux_entry(target, 1, "", "Run of today");
    print_js_doc_entry(target, 2, "_run information", "Settings");
    EXPECT_EQ(out.str(), " <A NAME=\"id\"></A>  <A NAME=\"id_run_information\"></A> ");
    std::string const script = content(target.script);
    EXPECT_TRUE(
        script.ends_with("foldersTree = gFld(\"<i>TOVENIA RESULTS (name.tvp)</i>\", \"name.xml\")\n"
                         "insDoc(foldersTree, gLnk(\"R\", \"Tovenia log file\", \"Tovenia_log.txt\"))\n"
                         "aux1 = insFld(foldersTree, gFld(\"Run of today\", \"name.xml#id\"))\n"
                         "insDoc(aux1, gLnk(\"R\", \"Settings\", \"name.xml#id_run_information\"))\n"))
        << script;

    begin_tree_script(target.script, false, "/w/", "name.tvp", "name.xml");
    std::string const longer = content(target.script);
    EXPECT_TRUE(longer.starts_with(script));
    EXPECT_NE(longer.find("USETEXTLINKS", script.size()), std::string::npos);
    begin_tree_script(target.script, true, "/w/", "name.tvp", "name.xml");
    EXPECT_EQ(longer, script + content(target.script));
}

TEST_F(Document, EntryWithoutDocumentOrWritableScriptIsHarmless) {
    EntryTarget const target{nullptr, path("missing/name.js"), "name.xml", "id"};
    print_js_doc_entry(target, 2, "_a", "A");
    print_js_aux_entry(target, 0, "_a", "A");
    EXPECT_FALSE(fs::exists(target.script));
}

TEST_F(Document, EntriesTakeTheNamesOfTheRunFromItsSettings) {
    settings set;
    set.result_file = path("name.res") + "/name.xml";
    set.tree_script = path("name.js");
    set.run_id = "id";
    std::ostream* const before = set.set_ofs(&out);
    print_js_tovenia_log_entry(set);
    EXPECT_EQ(content(set.tree_script),
              "insDoc(foldersTree, gLnk(\"R\", \"Tovenia log file\", \"Tovenia_log.txt\"))\n");
    EXPECT_EQ(out.str(), "");
    Samples samples;
    samples.print_computation_anchor(3, set, my_string("Mantel \"test\""), my_string("_man tel"));
    EXPECT_EQ(out.str(), " <A NAME=\"id_man_tel\"></A> ");
    EXPECT_TRUE(content(set.tree_script)
                    .ends_with("insDoc(aux2, gLnk(\"R\", \"Mantel \\\"test\\\"\", \"name.xml#id_man_tel\"))\n"))
        << content(set.tree_script);
    set.set_ofs(before);
}

TEST_F(Document, HtmlAnchorsInHtml) {
    xmlOutput = false;
    print_js_doc_entry(EntryTarget{&out, path("name.js"), "name.htm", "id"}, 2, "_a", "A");
    EXPECT_EQ(out.str(), "<A NAME=\"id_a\"></A>\n");
}

TEST_F(Document, XmlHeadNamesEncodingStyleSheetAndRoot) {
    print_results_header(out, true, "/my work\\dir");
    EXPECT_EQ(out.str(),
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
              "\n<?xml-stylesheet type=\"text/xsl\" href=\"file:////my%20work/dir/ToveniaStyleSheet.xsl\"?>"
              "\n<!--Tovenia results file-->\n"
              "<Tovenia>\n<data>\n");
}

TEST_F(Document, HtmlHeadOpensThePreformattedText) {
    print_results_header(out, false, "/w");
    EXPECT_EQ(out.str(),
              "\n<html>"
              "\n<!--Tovenia results file-->\n"
              "\n<head>"
              "\n<style>"
              "\nBODY {background-color: white; font-size: 8pt; font-family: Courier New}"
              "\n</style>"
              "\n</head>\n"
              "\n<body bgcolor=white>\n"
              "\n<PRE>");
}

TEST_F(Document, HeadSetsTheBaseStyleOfNumbers) {
    print_results_header(out, true, "/w");
    out.str("");
    out << 0.5 << ' ' << 2.0;
    EXPECT_EQ(out.str(), "0.500000 2.000000");
}

TEST_F(Document, FootClosesWhatTheHeadOpened) {
    print_results_footer(out, true);
    EXPECT_EQ(out.str(), xml_foot);
    out.str("");
    print_results_footer(out, false);
    EXPECT_EQ(out.str(), "\n</body>\n</PRE>\n</html>\n");
}

TEST_F(Document, StepBackEndsRightBehindTheClosedData) {
    std::string const foot = xml_foot;
    EXPECT_EQ(xml_append_step_back(), 14u);
    EXPECT_EQ(foot.substr(0, foot.size() - xml_append_step_back()), "</data>");
}

TEST_F(Document, SecondRunReplacesTheFootOfTheFirst) {
    std::string const file = path("name.xml");
    {
        std::ofstream first(file);
        print_results_header(first, true, "/w");
        first << "run 1";
        print_results_footer(first, true);
    }
    std::fstream second(file, std::ios::in | std::ios::out | std::ios::ate);
    ASSERT_TRUE(xml_document_is_complete(second));
    second.seekp(-static_cast<std::streamoff>(xml_append_step_back()), std::ios::end);
    print_results_continuation(second, true);
    second << "run 2";
    print_results_footer(second, true);
    second.close();
    std::string const document = content(file);
    std::size_t const root = document.find("<Tovenia>\n");
    ASSERT_NE(root, std::string::npos);
    EXPECT_EQ(document.substr(root), "<Tovenia>\n<data>\nrun 1</data><data>\n\nrun 2</data>\n\n</Tovenia>\n\n");
}

TEST_F(Document, ContinuationInHtmlOpensPreformattedText) {
    print_results_continuation(out, false);
    EXPECT_EQ(out.str(), "\n<PRE>\n");
}

TEST_F(Document, IncompleteXmlDocumentIsRecognised) {
    for (char const* text : {"", "<data>\n", "<Tovenia>\n<data>\ntext</data>\n", "x</Tovenia>\n\n"}) {
        std::istringstream in(text);
        EXPECT_FALSE(xml_document_is_complete(in)) << text;
    }
    std::istringstream whole(std::string("<Tovenia>\n<data>\n") + xml_foot);
    EXPECT_TRUE(xml_document_is_complete(whole));
    std::ifstream missing(path("missing.xml"));
    EXPECT_FALSE(xml_document_is_complete(missing));
}

TEST_F(Document, FramesShowTreeAndResults) {
    print_html_frames(out, {"a&b.tvp", "name_tree.htm", "name.xml", "/w/", "", "", ""});
    EXPECT_EQ(out.str(),
              "\n<html>"
              "\n<!--Tovenia results frame file-->\n"
              "\n<head>"
              "\n<title> Tovenia Result Browser - a&amp;b.tvp\n</title>"
              "\n<script>"
              "\nfunction op() { //This function is used with folders that do not open pages themselves. See online "
              "docs."
              "\n}"
              "\n</script>"
              "\n</head>"
              "\n<FRAMESET cols=\"200,*\">"
              "\n  <FRAME src=\"name_tree.htm\" name=\"treeframe\">"
              "\n  <FRAME SRC=\"name.xml\" name=\"basefrm\">"
              "\n</FRAMESET>"
              "\n</html>");
}

TEST_F(Document, TreePageHasItsPartsInTheOrderTheTreeCodeNeeds) {
    print_html_tree_page(out, {"name.tvp", "name_tree.htm", "name.xml", "/my w", "/my w/ftie4style.css",
                               "/my w/ftiens4.js", "p/name.res/name.js"});
    std::string const page = out.str();
    std::size_t from = 0;
    for (char const* part :
         {"\n<html>", "ftie4style.css", "\n<style>", "\nBODY {", "\nTD {", "\nA {", "\n.specialClass {", "\n</style>",
          "\n<script src=\"file:////my%20w/ua.js\"></script>", "\n<script src=\"file:////my%20w/ftiens4.js\"></script>",
          "\n<script src=\"file:////my%20w/p/name.res/name.js\"></script>", "\n<body topmargin=16 marginheight=16>",
          "<a href=\"name.xml\" target=\"basefrm\">", "\n<script>initializeDocument()</script>", "\n<noscript>",
          "\nA tree for site navigation will open here if you enable JavaScript in your browser.", "\n</html>"}) {
        std::size_t const found = page.find(part, from);
        ASSERT_NE(found, std::string::npos) << part << " is not behind byte " << from << " of " << page;
        from = found + 1;
    }
}

TEST_F(Document, FileUrlsAreAbsolute) {
    EXPECT_EQ(file_url("/w", "a b.js"), "file:////w/a%20b.js");
    EXPECT_EQ(file_url("/w/", "/abs/x.js"), "file:////abs/x.js");
    EXPECT_EQ(file_url("C:\\w\\", "x.js"), "file:///C:/w/x.js");
    EXPECT_EQ(file_url("/w", "D:\\x.js"), "file:///D:/x.js");
    EXPECT_EQ(file_url("", "x.js"), "file:///x.js");
}

TEST_F(Document, LinksEncodeWhatWouldEndAFileName) {
    EXPECT_EQ(link_to("50%#1?.xml"), "50%25%231%3F.xml");
    EXPECT_EQ(link_to("a&b <c>.xml"), "a&b <c>.xml");
    EXPECT_EQ(file_url("/w#1", "a b.js"), "file:////w%231/a%20b.js");
    EntryTarget const target{nullptr, path("name.js"), "n#1.xml", "id"};
    begin_tree_script(target.script, true, "/w/", "n#1.tvp", target.result_file);
    print_js_aux_entry(target, 1, "", "Run");
    print_js_doc_entry(target, 2, "_a", "A");
    std::string const script = content(target.script);
    EXPECT_TRUE(
        script.ends_with("foldersTree = gFld(\"<i>TOVENIA RESULTS (n#1.tvp)</i>\", \"n%231.xml\")\n"
                         "insDoc(foldersTree, gLnk(\"R\", \"Tovenia log file\", \"Tovenia_log.txt\"))\n"
                         "aux1 = insFld(foldersTree, gFld(\"Run\", \"n%231.xml#id\"))\n"
                         "insDoc(aux1, gLnk(\"R\", \"A\", \"n%231.xml#id_a\"))\n"))
        << script;
    PageNames const names{"n#1.tvp", "n#1_tree.htm", "n#1.xml", "/w/", "", "", ""};
    print_html_frames(out, names);
    EXPECT_NE(out.str().find("<FRAME src=\"n%231_tree.htm\""), std::string::npos);
    EXPECT_NE(out.str().find("<FRAME SRC=\"n%231.xml\""), std::string::npos);
    print_html_tree_page(out, names);
    EXPECT_NE(out.str().find("<a href=\"n%231.xml\""), std::string::npos);
}

TEST_F(Document, ResultPageLiesInTheResultsDirectory) {
    EXPECT_EQ(buildToveniaResultFileName("p/name.tvp"), "p/name.res/name_main.htm");
    EXPECT_EQ(buildToveniaResultFileName("name.tvp"), "name.res/name_main.htm");
}

}  // namespace
}  // namespace tov
