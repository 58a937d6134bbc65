// Literature references.
#include <gtest/gtest.h>

#include <sstream>

#include "output/references.h"
#include "output/xml.h"

namespace tov {
namespace {

class Reference : public ::testing::Test {
protected:
    void SetUp() override { reset_document_state(); }
    void TearDown() override { reset_document_state(); }
    std::ostringstream out;
};

TEST_F(Reference, IsFoundByItsTag) {
    EXPECT_EQ(References::get_reference("wright1951"),
              "Wright, S. 1951. The genetical structure of populations. Ann. Eugen. 15: 323-354.");
    EXPECT_EQ(References::get_reference("Wright1951"), "");
    EXPECT_EQ(References::get_reference(""), "");
}

TEST_F(Reference, AloneInXmlStandsBetweenTwoDataElements) {
    References(out, "no<tag");
    EXPECT_EQ(out.str(), "Reference: </data>\n<Reference>no&lt;tag</Reference>\n<data>\n");
}

TEST_F(Reference, AloneInHtmlIsInItalics) {
    xmlOutput = false;
    References(out, "a");
    EXPECT_EQ(out.str(), "Reference: <i>a</i>\n");
}

TEST_F(Reference, ListInXmlOpensGoesOnAndEnds) {
    print_references(out, {"a", "b", "c"});
    EXPECT_EQ(out.str(),
              "</data>\n<Reference>a</Reference>\n<Reference>b</Reference>\n<Reference>c</Reference>\n<data>\n");
}

TEST_F(Reference, ListOfTwoHasNoMiddle) {
    print_references(out, {"a", "b"});
    EXPECT_EQ(out.str(), "</data>\n<Reference>a</Reference>\n<Reference>b</Reference>\n<data>\n");
}

TEST_F(Reference, ListOfOneIsAReferenceOfItsOwn) {
    print_references(out, {"a"});
    EXPECT_EQ(out.str(), "Reference: </data>\n<Reference>a</Reference>\n<data>\n");
}

TEST_F(Reference, ListInHtmlIndentsTheFurtherOnes) {
    xmlOutput = false;
    print_references(out, {"a", "b", "c"});
    EXPECT_EQ(out.str(), "Reference: <i>a</i>\n           <i>b</i>\n           <i>c</i>\n");
}

TEST_F(Reference, EmptyListPrintsNothing) {
    print_references(out, {});
    EXPECT_EQ(out.str(), "");
}

}  // namespace
}  // namespace tov
