// Look-up of keys in flat key=value text.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "input/private_profile.h"

namespace tov {
namespace {

/// What the look-up gives, or "(none)".
std::string look_up(std::string const& text, std::string const& key, std::size_t bound = 100) {
    std::istringstream in(text);
    std::string value = "left over";
    bool const found = PrivateProfile(in, bound).find(key, value);
    if (!found) {
        EXPECT_EQ(value, "");
        return "(none)";
    }
    return value;
}

TEST(PrivateProfile, GivesTheTextBehindTheEqualSign) {
    EXPECT_EQ(look_up("a=1\nkey=two words \nb=3\n", "key"), "two words ");
    EXPECT_EQ(look_up("key=a=b\n", "key"), "a=b");
    EXPECT_EQ(look_up("key = 5", "key"), " 5");
}

TEST(PrivateProfile, FindsNothingInAnEmptyTextOrUnderAnotherName) {
    EXPECT_EQ(look_up("", "key"), "(none)");
    EXPECT_EQ(look_up("\n\n\n", "key"), "(none)");
    EXPECT_EQ(look_up("Key=1\n", "key"), "(none)");
}

TEST(PrivateProfile, TakesTheFirstLineThatContainsTheKey) {
    EXPECT_EQ(look_up("MismatchDistanceMethod=4\nDistanceMethod=1\n", "DistanceMethod"), "4");
    EXPECT_EQ(look_up("#a comment on key = 7\nkey=1\n", "key"), " 7");
    EXPECT_EQ(look_up("other=key\nkey=1\n", "key"), "key");
}

TEST(PrivateProfile, PassesOverLinesWithoutEqualSignOrWithoutValue) {
    EXPECT_EQ(look_up("#key tells\nkey=\nkey=3\n", "key"), "3");
    EXPECT_EQ(look_up("key=\n", "key"), "(none)");
}

TEST(PrivateProfile, EndsAValueWhereTheLineReachesTheBound) {
    std::string const pad_97(94, '.');  // "key" and 94 points: the '=' stands at index 97
    EXPECT_EQ(look_up("key" + pad_97 + "=12345\n", "key"), "12");
    EXPECT_EQ(look_up("key" + pad_97 + ".=12345\n", "key"), "1");
    EXPECT_EQ(look_up("key" + pad_97 + "..=12345\n", "key"), "(none)");
    EXPECT_EQ(look_up("key" + pad_97 + "..=12345\nkey=6\n", "key"), "6");
    EXPECT_EQ(look_up("key" + pad_97 + std::string(50, '.') + "=1\n", "key"), "(none)");
}

TEST(PrivateProfile, FindsAKeyBeyondTheBoundOfItsLine) {
    EXPECT_EQ(look_up("a=12" + std::string(200, ' ') + "key\n", "key", 4), "12");
}

TEST(PrivateProfile, ABoundOfZeroFindsNothing) { EXPECT_EQ(look_up("key=1\n", "key", 0), "(none)"); }

TEST(PrivateProfile, CarriageReturnsAndControlCharactersBelongToTheValue) {
    EXPECT_EQ(look_up("key=1\r\n", "key"), "1\r");
    EXPECT_EQ(look_up(std::string("key=1\0002\n", 8), "key"), std::string("1\0002", 3));
}

TEST(PrivateProfile, ReadsTheCommentOnRandomOrdersOfTheWrittenFileAsNoValue) {
    // The '=' of the first line stands at index 99, so that nothing of it lies below the bound.
    std::string const text =
        "#EMNumZipRandOrders specifies how many random orders have to be considered assuming EMLociRandOrder=1\n"
        "EMNumZipRandOrders=8\n";
    EXPECT_EQ(text.find('='), 99u);
    EXPECT_EQ(look_up(text, "EMNumZipRandOrders"), "8");
    EXPECT_EQ(look_up(text, "EMNumZipRandOrders", 101), "1");
}

TEST(GetPrivateProfileString, LooksUpInAFile) {
    std::string const name = testing::TempDir() + "/private_profile.tvs";
    { std::ofstream(name) << "[Section]\nkey=value\n"; }
    std::string out = "left over";
    EXPECT_EQ(GetPrivateProfileString("Another", "key", "default", out, 100, name.c_str()), 1);
    EXPECT_EQ(out, "value");
    EXPECT_EQ(GetPrivateProfileString("Section", "missing", "default", out, 100, name.c_str()), 0);
    EXPECT_EQ(out, "");
    EXPECT_EQ(GetPrivateProfileString("Section", "key", "", out, -5, name.c_str()), 0);
    std::remove(name.c_str());
    out = "left over";
    EXPECT_EQ(GetPrivateProfileString("Section", "key", "default", out, 100, name.c_str()), 0);
    EXPECT_EQ(out, "");
}

}  // namespace
}  // namespace tov
