// Elements of the XML document.
#include <gtest/gtest.h>

#include <sstream>

#include "output/xml.h"

namespace tov {
namespace {

class XmlTag : public ::testing::Test {
protected:
    void SetUp() override { reset_document_state(); }
    void TearDown() override { reset_document_state(); }
};

TEST_F(XmlTag, WritesItsFourForms) {
    TXmlTag const tag("PairFstMat");
    EXPECT_EQ(tag.write(), "<PairFstMat>\n");
    EXPECT_EQ(tag.end(), "</PairFstMat>\n");
    EXPECT_EQ(tag.open(), "</data> <PairFstMat time=\"not set yet\">");
    EXPECT_EQ(tag.close(), "</PairFstMat> <data>\n");
}

TEST_F(XmlTag, CarriesTheTimeOfTheRun) {
    TXmlTag::time = "05/08/26 at 12:34:56";
    EXPECT_EQ(TXmlTag("run").open(), "</data> <run time=\"05/08/26 at 12:34:56\">");
}

TEST_F(XmlTag, PutsAnAttributeInFrontOfTheTimeAndEscapesIt) {
    EXPECT_EQ(TXmlTag("obsHapFreq").open("pop", "a \"b\" & <c>"),
              "</data> <obsHapFreq pop=\"a &quot;b&quot; &amp; &lt;c>\" time=\"not set yet\">");
}

TEST_F(XmlTag, NamesTheSharedElements) {
    EXPECT_EQ(TovXmlTags::rootTag.write(), "<Tovenia>\n");
    EXPECT_EQ(TovXmlTags::refTag.write(), "<reference>\n");
    EXPECT_EQ(TovXmlTags::dataTag.write(), "<data>\n");
    EXPECT_EQ(TovXmlTags::headerTag.write(), "<header>\n");
}

TEST_F(XmlTag, SectionEnclosesWhatItsScopePrints) {
    std::ostringstream out;
    {
        XmlSection const section(out, "obsHapFreq", "pop", "P1");
        out << "x";
    }
    out << "y";
    EXPECT_EQ(out.str(), "</data> <obsHapFreq pop=\"P1\" time=\"not set yet\">x</obsHapFreq> <data>\ny");
}

TEST_F(XmlTag, SectionClosedEarlyIsClosedOnce) {
    std::ostringstream out;
    {
        XmlSection section(out, "run");
        out << "x";
        section.close();
        out << "y";
    }
    EXPECT_EQ(out.str(), "</data> <run time=\"not set yet\">x</run> <data>\ny");
}

TEST_F(XmlTag, SectionPrintsNothingInHtml) {
    xmlOutput = false;
    std::ostringstream out;
    {
        XmlSection const section(out, "run");
        out << "x";
    }
    EXPECT_EQ(out.str(), "x");
}

}  // namespace
}  // namespace tov
