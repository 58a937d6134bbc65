// Numbers from text, conforming and not.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "base/cstring.h"
#include "base/numtext.h"
#include "base/random.h"
#include "support/fresh_process.h"

using namespace tov;

TEST(MyAtol, ReadsDigitsFromTheEndAndPassesOverTheRest) {
    EXPECT_EQ(0, my_atol(""));
    EXPECT_EQ(12, my_atol("1a2"));
    EXPECT_EQ(12, my_atol(" 1 2 "));
    EXPECT_EQ(-5, my_atol("e-5"));
    EXPECT_EQ(5, my_atol("+5"));
    EXPECT_EQ(0, my_atol("abc"));
    EXPECT_EQ(999999999999999999L, my_atol("999999999999999999"));
    EXPECT_EQ(17, my_atol(my_string("17")));
    EXPECT_EQ(-34, my_atoi("-34"));
}

TEST(MyAtol, EveryMinusFlipsWhatStandsToItsRight) {
    EXPECT_EQ(117, my_atol("12-3"));
    EXPECT_EQ(3, my_atol("--3"));
    EXPECT_EQ(-3, my_atol("---3"));
    EXPECT_EQ(3, my_atol("3-"));
}

TEST(MyAtol, LongTextWrapsWithoutHarm) {
    EXPECT_EQ(0, my_atol("1" + std::string(70, '0'))) << "10^70 is a multiple of 2^64";
    EXPECT_EQ(-1, my_atol("18446744073709551615"));
}

TEST(MyAtof, HonoursSignFractionAndExponent) {
    EXPECT_EQ(0.0, my_atof(""));
    EXPECT_EQ(-12.5, my_atof("-12.5"));
    EXPECT_EQ(-1.5, my_atof("-1.5"));
    EXPECT_EQ(-0.5, my_atof("-0.5"));
    EXPECT_EQ(1e-7, my_atof("1e-7"));
    EXPECT_EQ(1e-7, my_atof("1E-7"));
    EXPECT_EQ(1.5e10, my_atof("1.5e+10"));
    EXPECT_EQ(0.05, my_atof("0.05"));
    EXPECT_EQ(0.1, my_atof(".1"));
    EXPECT_EQ(7.0, my_atof("7."));
    EXPECT_EQ(-7.0, my_atof("-7"));
    EXPECT_EQ(-5.25, my_atof("  -5.25"));
}

TEST(MyAtof, PassesOverWhatIsNoDigit) {
    EXPECT_EQ(12.5, my_atof("1a2.5"));
    EXPECT_EQ(0.0, my_atof("abc"));
    EXPECT_EQ(0.0, my_atof("-"));
    EXPECT_EQ(0.0, my_atof("."));
    EXPECT_EQ(0.0, my_atof("e5"));
    EXPECT_EQ(1.5, my_atof("1. 5")) << "a blank in the fraction counts for nothing";
}

TEST(MyAtof, KnowsNoExponentLetterD) { EXPECT_EQ(1.53, my_atof("1.5d3")) << "'d' is passed over like any letter"; }

TEST(MyAtof, ExtremeTextGivesTheLimitsOfDoubles) {
    EXPECT_EQ(0.0, my_atof("0e999999"));
    EXPECT_EQ(0.0, my_atof("1e-999999"));
    EXPECT_TRUE(std::isinf(my_atof("1e999999")));
    EXPECT_EQ(0.0, my_atof("1.234567e-9223372036854775808")) << "the least 64-bit exponent";
    EXPECT_TRUE(std::isinf(my_atof("1.234567e9223372036854775807")));
    EXPECT_TRUE(std::isinf(my_atof("-1e99999")));
    EXPECT_NEAR(1.0, my_atof("1e308") / 1e308, 1e-12);
    EXPECT_NEAR(1.0, my_atof("1e-300") / 1e-300, 1e-12);
    EXPECT_DOUBLE_EQ(1e25, my_atof("10000000000000000000000000"));
    EXPECT_DOUBLE_EQ(1.0 / 3.0, my_atof("0.333333333333333333333333333333333333"));
}

TEST(MyAtof, UpToFifteenDigitsGiveTheNearestDouble) {
    test::FreshProcess fresh;
    for (int i = 0; i < 20000; ++i) {
        std::string text = uniform() < 0.5 ? "-" : "";
        int const whole = static_cast<int>(uniform() * 7);
        int const decimals = static_cast<int>(uniform() * 9);
        for (int k = 0; k < whole; ++k) text += static_cast<char>('0' + static_cast<int>(uniform() * 10));
        text += '.';
        for (int k = 0; k < decimals; ++k) text += static_cast<char>('0' + static_cast<int>(uniform() * 10));
        if (whole + decimals == 0) text += '0';
        if (uniform() < 0.5) text += "e" + std::to_string(static_cast<int>(uniform() * 20) - 12);
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), my_atof(text)) << text;
    }
}
